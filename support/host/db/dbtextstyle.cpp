// Text style records.
#include "host/db/dbdatabase.h"
#include "host/rx/text.h"

#include <cstdlib>

namespace {

constexpr double degree = 3.14159265358979323846 / 180.0;

} // namespace

Acad::ErrorStatus AcDbTextStyleTableRecord::fileName(AcString& name) const {
    name = mFileName;
    return Acad::eOk;
}
Acad::ErrorStatus AcDbTextStyleTableRecord::setFileName(const ACHAR* name) {
    assertWriteEnabled();
    mFileName = name;
    setTypefaceData({}, 0);
    return Acad::eOk;
}
Acad::ErrorStatus AcDbTextStyleTableRecord::bigFontFileName(AcString& name) const {
    name = mBigFontFileName;
    return Acad::eOk;
}
Acad::ErrorStatus AcDbTextStyleTableRecord::setBigFontFileName(const ACHAR* name) {
    assertWriteEnabled();
    mBigFontFileName = name;
    return Acad::eOk;
}

namespace {

// The typeface of a TrueType style travels in extended data of this application: the name (1000) and a
// number (1071) with italic, bold, character set and pitch.
constexpr std::string_view typefaceApplication = "ACAD";
constexpr Adesk::Int32 italicBit = 0x1000000;
constexpr Adesk::Int32 boldBit = 0x2000000;

struct TypefaceData {
    AcString name;
    Adesk::Int32 flags = 0;
};

TypefaceData typefaceData(const host::GroupList& xdata) {
    TypefaceData data;
    bool inside = false;
    for (const host::GroupList::Group group : xdata) {
        if (group.code == 1001) {
            inside = group.text == typefaceApplication;
        } else if (inside && group.code == 1000) {
            data.name = host::fromUtf8(group.text).c_str();
        } else if (inside && group.code == 1071) {
            data.flags = static_cast<Adesk::Int32>(std::strtol(std::string(group.text).c_str(), nullptr, 10));
        }
    }
    return data;
}

} // namespace

void AcDbTextStyleTableRecord::setTypefaceData(const AcString& typeface, Adesk::Int32 flags) {
    host::GroupList groups;
    bool inside = false;
    for (const host::GroupList::Group group : xdataGroups()) {
        if (group.code == 1001) {
            inside = group.text == typefaceApplication;
        }
        if (!inside) {
            groups.add(group.code, group.text);
        }
    }
    if (!typeface.isEmpty()) {
        groups.add(1001, typefaceApplication);
        groups.add(1000, host::toUtf8(typeface.kwszPtr()));
        groups.addInteger(1071, flags);
    }
    setXdataGroups(std::move(groups));
}

Acad::ErrorStatus AcDbTextStyleTableRecord::font(AcString& typeface, bool& bold, bool& italic, int& charset,
                                                 int& pitchAndFamily) const {
    const TypefaceData data = typefaceData(xdataGroups());
    typeface = data.name;
    bold = (data.flags & boldBit) != 0;
    italic = (data.flags & italicBit) != 0;
    charset = (data.flags >> 8) & 0xFF;
    pitchAndFamily = data.flags & 0xFF;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbTextStyleTableRecord::setFont(const ACHAR* typeface, bool bold, bool italic,
                                                    int charset, int pitchAndFamily) {
    assertWriteEnabled();
    setTypefaceData(typeface, (bold ? boldBit : 0) | (italic ? italicBit : 0) | (charset & 0xFF) << 8 |
                                  (pitchAndFamily & 0xFF));
    mBigFontFileName.setEmpty();
    return Acad::eOk;
}

Acad::ErrorStatus AcDbTextStyleTableRecord::setTextSize(double size) {
    if (!(size >= 0.0)) {
        return Acad::eInvalidInput;
    }
    assertWriteEnabled();
    mTextSize = size;
    return Acad::eOk;
}
Acad::ErrorStatus AcDbTextStyleTableRecord::setPriorSize(double size) {
    assertWriteEnabled();
    mPriorSize = size;
    return Acad::eOk;
}
Acad::ErrorStatus AcDbTextStyleTableRecord::setXScale(double scale) {
    if (!(scale > 0.0)) {
        return Acad::eInvalidInput;
    }
    assertWriteEnabled();
    mXScale = scale;
    return Acad::eOk;
}
Acad::ErrorStatus AcDbTextStyleTableRecord::setObliquingAngle(double angle) {
    assertWriteEnabled();
    mObliquingAngle = angle;
    return Acad::eOk;
}
Acad::ErrorStatus AcDbTextStyleTableRecord::setFlagBits(Adesk::UInt8 flags) {
    assertWriteEnabled();
    mGeneration = static_cast<Adesk::Int16>(flags & 6);
    return Acad::eOk;
}
Acad::ErrorStatus AcDbTextStyleTableRecord::setIsVertical(bool vertical) {
    assertWriteEnabled();
    mFlags = static_cast<Adesk::Int16>(vertical ? mFlags | 4 : mFlags & ~4);
    return Acad::eOk;
}
Acad::ErrorStatus AcDbTextStyleTableRecord::setIsShapeFile(bool shape) {
    assertWriteEnabled();
    mFlags = static_cast<Adesk::Int16>(shape ? mFlags | 1 : mFlags & ~1);
    return Acad::eOk;
}

Acad::ErrorStatus AcDbTextStyleTableRecord::dwgOutFields(AcDbDwgFiler* filer) const {
    if (const Acad::ErrorStatus status = AcDbSymbolTableRecord::dwgOutFields(filer); status != Acad::eOk) {
        return status;
    }
    filer->writeString(mFileName);
    filer->writeString(mBigFontFileName);
    filer->writeDouble(mTextSize);
    filer->writeDouble(mPriorSize);
    filer->writeDouble(mXScale);
    filer->writeDouble(mObliquingAngle);
    filer->writeInt16(mGeneration);
    return filer->filerStatus();
}

Acad::ErrorStatus AcDbTextStyleTableRecord::dwgInFields(AcDbDwgFiler* filer) {
    if (const Acad::ErrorStatus status = AcDbSymbolTableRecord::dwgInFields(filer); status != Acad::eOk) {
        return status;
    }
    filer->readString(mFileName);
    filer->readString(mBigFontFileName);
    filer->readDouble(&mTextSize);
    filer->readDouble(&mPriorSize);
    filer->readDouble(&mXScale);
    filer->readDouble(&mObliquingAngle);
    filer->readInt16(&mGeneration);
    return filer->filerStatus();
}

bool AcDbTextStyleTableRecord::takeRecordGroup(AcDbDxfFiler*, const host::DxfGroup& group) {
    switch (group.code) {
    case 40:
        mTextSize = group.real;
        return true;
    case 41:
        mXScale = group.real;
        return true;
    case 50:
        mObliquingAngle = group.real * degree;
        return true;
    case 71:
        mGeneration = group.int16();
        return true;
    case 42:
        mPriorSize = group.real;
        return true;
    case 3:
        mFileName = group.string();
        return true;
    case 4:
        mBigFontFileName = group.string();
        return true;
    default:
        return false;
    }
}

void AcDbTextStyleTableRecord::writeRecordGroups(AcDbDxfFiler* filer) const {
    filer->writeDouble(40, mTextSize);
    filer->writeDouble(41, mXScale);
    filer->writeAngle(50, mObliquingAngle);
    filer->writeInt16(71, mGeneration);
    filer->writeDouble(42, mPriorSize);
    filer->writeString(3, mFileName);
    filer->writeString(4, mBigFontFileName);
}

void AcDbTextStyleTableRecord::toGiTextStyle(AcGiTextStyle& style) const {
    style.setStyleName(mName.kwszPtr());
    style.setFileName(mFileName.kwszPtr());
    style.setBigFontFileName(mBigFontFileName.kwszPtr());
    if (const TypefaceData data = typefaceData(xdataGroups()); !data.name.isEmpty()) {
        style.setFont(data.name.kwszPtr(), (data.flags & boldBit) != 0, (data.flags & italicBit) != 0,
                      (data.flags >> 8) & 0xFF, data.flags & 0xFF);
    }
    style.setTextSize(mTextSize);
    style.setXScale(mXScale);
    style.setObliquingAngle(mObliquingAngle);
    style.setBackward((mGeneration & 2) != 0);
    style.setUpsideDown((mGeneration & 4) != 0);
    style.setVertical(isVertical());
}

Acad::ErrorStatus fromAcDbTextStyle(AcGiTextStyle& style, const AcDbObjectId& record) {
    AcDbTextStyleTableRecord* opened = nullptr;
    const Acad::ErrorStatus status = acdbOpenObject(opened, record, AcDb::kForRead);
    if (status == Acad::eOk) {
        opened->toGiTextStyle(style);
        opened->close();
    }
    return status;
}
