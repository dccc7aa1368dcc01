// Images, wipeouts and image definitions in files.
#include "host/db/dbdatabase.h"
#include "host/db/entities/rasterimage.h"

ACRX_DXF_DEFINE_MEMBERS(AcDbRasterImageDef, AcDbObject, AcDb::kDHL_CURRENT, AcDb::kMReleaseCurrent, 0,
                        IMAGEDEF, ISM)

namespace {

constexpr const ACHAR* imageDictionaryName = L"ACAD_IMAGE_DICT";

/// Whether all numbers of filed data are such.
template <class Data>
Acad::ErrorStatus checkNumbers(const Data& data) {
    host::MemoryDwgFiler filer(AcDb::kFileFiler);
    host::writeFields(&filer, data);
    filer.rewind();
    Data checked;
    return host::readFields(&filer, checked);
}

} // namespace

Acad::ErrorStatus AcDbRasterImage::dwgOutFields(AcDbDwgFiler* filer) const {
    const Acad::ErrorStatus status = AcDbEntity::dwgOutFields(filer);
    return status == Acad::eOk ? host::writeFields(filer, m) : status;
}

Acad::ErrorStatus AcDbRasterImage::dwgInFields(AcDbDwgFiler* filer) {
    const Acad::ErrorStatus status = AcDbEntity::dwgInFields(filer);
    return status == Acad::eOk ? host::readFields(filer, m) : status;
}

Acad::ErrorStatus AcDbRasterImage::dxfInFields(AcDbDxfFiler* filer) {
    assertWriteEnabled();
    m = {};
    mGivesClip = false;
    const Acad::ErrorStatus status = AcDbEntity::dxfInFields(filer);
    return status == Acad::eOk ? readDxfGroups(filer) : status;
}

std::string_view AcDbRasterImage::dxfSubclass(std::string_view marker) const {
    return marker.empty() || marker == "AcDbRasterImage" ? "AcDbRasterImage" : std::string_view();
}

std::string_view AcDbWipeout::dxfSubclass(std::string_view marker) const {
    return marker.empty() || marker == "AcDbWipeout" ? "AcDbWipeout" : std::string_view();
}

bool AcDbRasterImage::takeDxfGroup(AcDbDxfFiler*, const host::DxfGroup& group, std::string_view) {
    switch (group.code) {
    case 90:
        m.classVersion = group.int32();
        return true;
    case 10:
        m.origin = group.point();
        return true;
    case 11:
        m.u = group.vector();
        return true;
    case 12:
        m.v = group.vector();
        return true;
    case 13:
        m.width = group.real;
        m.height = group.y;
        return true;
    case 340:
        m.definition = AcDbObjectId(group.id);
        return true;
    case 360:
        m.reactor = AcDbObjectId(group.id);
        return true;
    case 70:
        m.options = group.int16();
        return true;
    case 280:
        m.clipped = group.boolean();
        return true;
    case 281:
        m.brightness = group.int16();
        return true;
    case 282:
        m.contrast = group.int16();
        return true;
    case 283:
        m.fade = group.int16();
        return true;
    case 71:
        m.clipType = group.int16();
        return true;
    case 91:
        m.clip.clear();
        mGivesClip = true;
        return true;
    case 14:
        if (!mGivesClip) {
            m.clip.clear();
            mGivesClip = true;
        }
        m.clip.push_back(group.point2d());
        return true;
    case 290:
        m.clipsInside = group.boolean();
        return true;
    default:
        return false;
    }
}

Acad::ErrorStatus AcDbRasterImage::dxfGroupsRead(AcDbDxfFiler*) {
    const bool usable = m.width > 0.0 && m.height > 0.0 && m.u.crossProduct(m.v).length() > 0.0;
    return usable ? checkNumbers(m) : Acad::eInvalidInput;
}

Acad::ErrorStatus AcDbRasterImage::dxfOutFields(AcDbDxfFiler* filer) const {
    if (const Acad::ErrorStatus status = AcDbEntity::dxfOutFields(filer); status != Acad::eOk) {
        return status;
    }
    filer->writeText(100, imageSubclass());
    filer->writeInt32(90, m.classVersion);
    filer->writePoint3d(10, m.origin);
    filer->writeVector3d(11, m.u);
    filer->writeVector3d(12, m.v);
    filer->writePoint2d(13, {m.width, m.height});
    filer->writeObjectId(340, m.definition);
    filer->writeInt16(70, m.options);
    filer->writeInt16(280, m.clipped ? 1 : 0);
    filer->writeInt16(281, m.brightness);
    filer->writeInt16(282, m.contrast);
    filer->writeInt16(283, m.fade);
    filer->writeObjectId(360, m.reactor);
    filer->writeInt16(71, m.clipType);
    filer->writeInt32(91, static_cast<Adesk::Int32>(m.clip.size()));
    for (const AcGePoint2d& point : m.clip) {
        filer->writePoint2d(14, point);
    }
    filer->writeBool(290, m.clipsInside);
    writeKeptGroups(filer, imageSubclass());
    return filer->filerStatus();
}

// Definitions.

Acad::ErrorStatus AcDbRasterImageDef::setSourceFileName(const ACHAR* name) {
    assertWriteEnabled();
    m.file = name;
    return Acad::eOk;
}
Acad::ErrorStatus AcDbRasterImageDef::setSize(const AcGeVector2d& pixels) {
    if (!(pixels.x > 0.0 && pixels.y > 0.0)) {
        return Acad::eInvalidInput;
    }
    assertWriteEnabled();
    m.width = pixels.x;
    m.height = pixels.y;
    return Acad::eOk;
}

AcDbObjectId AcDbRasterImageDef::imageDictionary(AcDbDatabase* database) {
    const auto* root = host::peek<AcDbDictionary>(database->namedObjectsDictionaryId());
    AcDbObjectId id;
    if (root != nullptr) {
        root->getAt(imageDictionaryName, id);
    }
    return id;
}

Acad::ErrorStatus AcDbRasterImageDef::createImageDictionary(AcDbDatabase* database, AcDbObjectId& id) {
    id = imageDictionary(database);
    if (!id.isNull()) {
        return Acad::eOk;
    }
    const host::Opened<AcDbDictionary> root(database->namedObjectsDictionaryId(), AcDb::kForWrite);
    if (!root) {
        return root.status();
    }
    auto made = std::make_unique<AcDbDictionary>();
    const Acad::ErrorStatus status = root->setAt(imageDictionaryName, made.get(), id);
    if (status == Acad::eOk) {
        made.release()->close();
    }
    return status;
}

Acad::ErrorStatus AcDbRasterImageDef::dwgOutFields(AcDbDwgFiler* filer) const {
    const Acad::ErrorStatus status = AcDbObject::dwgOutFields(filer);
    return status == Acad::eOk ? host::writeFields(filer, m) : status;
}

Acad::ErrorStatus AcDbRasterImageDef::dwgInFields(AcDbDwgFiler* filer) {
    const Acad::ErrorStatus status = AcDbObject::dwgInFields(filer);
    return status == Acad::eOk ? host::readFields(filer, m) : status;
}

Acad::ErrorStatus AcDbRasterImageDef::dxfInFields(AcDbDxfFiler* filer) {
    assertWriteEnabled();
    m = {};
    return readDxfGroups(filer);
}

std::string_view AcDbRasterImageDef::dxfSubclass(std::string_view marker) const {
    return marker == "AcDbRasterImageDef" ? "AcDbRasterImageDef" : std::string_view();
}

bool AcDbRasterImageDef::takeDxfGroup(AcDbDxfFiler*, const host::DxfGroup& group, std::string_view) {
    switch (group.code) {
    case 90:
        m.classVersion = group.int32();
        return true;
    case 1:
        m.file = group.string();
        return true;
    case 10:
        m.width = group.real;
        m.height = group.y;
        return true;
    case 11:
        m.pixelWidth = group.real;
        m.pixelHeight = group.y;
        return true;
    case 280:
        m.loaded = group.boolean();
        return true;
    case 281:
        m.units = static_cast<Adesk::UInt8>(group.integer);
        return true;
    default:
        return false;
    }
}

Acad::ErrorStatus AcDbRasterImageDef::dxfGroupsRead(AcDbDxfFiler*) {
    return checkNumbers(m);
}

Acad::ErrorStatus AcDbRasterImageDef::dxfOutFields(AcDbDxfFiler* filer) const {
    if (const Acad::ErrorStatus status = AcDbObject::dxfOutFields(filer); status != Acad::eOk) {
        return status;
    }
    filer->writeText(100, "AcDbRasterImageDef");
    filer->writeInt32(90, m.classVersion);
    filer->writeString(1, m.file);
    filer->writePoint2d(10, {m.width, m.height});
    filer->writePoint2d(11, {m.pixelWidth, m.pixelHeight});
    filer->writeInt16(280, m.loaded ? 1 : 0);
    filer->writeInt16(281, m.units);
    writeKeptGroups(filer, "AcDbRasterImageDef");
    return filer->filerStatus();
}
