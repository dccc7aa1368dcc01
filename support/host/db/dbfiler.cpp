// What filers share, and the filers over memory and over result buffers.
#include "host/db/dbfiler.h"

#include "host/db/dbdatabase.h"
#include "host/rx/format.h"
#include "host/rx/text.h"

#include <cmath>
#include <cstdarg>
#include <cstring>

Acad::ErrorStatus AcDbDwgFiler::dwgVersion(AcDb::AcDbDwgVersion& version,
                                           AcDb::MaintenanceReleaseVersion& maintenance) const {
    version = AcDb::kDHL_CURRENT;
    maintenance = AcDb::kMReleaseCurrent;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbDwgFiler::readString(ACHAR** value) {
    AcString text;
    const Acad::ErrorStatus status = readString(text);
    ACHAR* copy = nullptr;
    acutNewString(text.kwszPtr(), copy);
    *value = copy;
    return status;
}

Acad::ErrorStatus AcDbDwgFiler::readBChunk(ads_binary* chunk) {
    Adesk::Int16 count = 0;
    readInt16(&count);
    if (count < 0) {
        setFilerStatus(Acad::eFilerError);
        return Acad::eFilerError;
    }
    chunk->clen = count;
    chunk->buf = new char[static_cast<std::size_t>(count) + 1];
    return readBytes(chunk->buf, static_cast<Adesk::UIntPtr>(count));
}

Acad::ErrorStatus AcDbDwgFiler::writeBChunk(const ads_binary& chunk) {
    writeInt16(chunk.clen);
    return writeBytes(chunk.buf, static_cast<Adesk::UIntPtr>(chunk.clen));
}

Acad::ErrorStatus AcDbDwgFiler::readPoint2d(AcGePoint2d* point) {
    readDouble(&point->x);
    return readDouble(&point->y);
}
Acad::ErrorStatus AcDbDwgFiler::writePoint2d(const AcGePoint2d& point) {
    writeDouble(point.x);
    return writeDouble(point.y);
}
Acad::ErrorStatus AcDbDwgFiler::readPoint3d(AcGePoint3d* point) {
    readDouble(&point->x);
    readDouble(&point->y);
    return readDouble(&point->z);
}
Acad::ErrorStatus AcDbDwgFiler::writePoint3d(const AcGePoint3d& point) {
    writeDouble(point.x);
    writeDouble(point.y);
    return writeDouble(point.z);
}
Acad::ErrorStatus AcDbDwgFiler::readVector2d(AcGeVector2d* vector) {
    readDouble(&vector->x);
    return readDouble(&vector->y);
}
Acad::ErrorStatus AcDbDwgFiler::writeVector2d(const AcGeVector2d& vector) {
    writeDouble(vector.x);
    return writeDouble(vector.y);
}
Acad::ErrorStatus AcDbDwgFiler::readVector3d(AcGeVector3d* vector) {
    readDouble(&vector->x);
    readDouble(&vector->y);
    return readDouble(&vector->z);
}
Acad::ErrorStatus AcDbDwgFiler::writeVector3d(const AcGeVector3d& vector) {
    writeDouble(vector.x);
    writeDouble(vector.y);
    return writeDouble(vector.z);
}
Acad::ErrorStatus AcDbDwgFiler::readScale3d(AcGeScale3d* scale) {
    readDouble(&scale->sx);
    readDouble(&scale->sy);
    return readDouble(&scale->sz);
}
Acad::ErrorStatus AcDbDwgFiler::writeScale3d(const AcGeScale3d& scale) {
    writeDouble(scale.sx);
    writeDouble(scale.sy);
    return writeDouble(scale.sz);
}
Acad::ErrorStatus AcDbDwgFiler::readAddress(void** address) {
    return readBytes(address, sizeof *address);
}
Acad::ErrorStatus AcDbDwgFiler::writeAddress(const void* address) {
    return writeBytes(&address, sizeof address);
}

AcString host::DxfGroup::string() const {
    return AcString(
        fromUtf8(text.find('^') == text.npos ? text : std::string_view(decodeDxfText(text))).c_str());
}

Acad::ErrorStatus AcDbDxfFiler::dwgVersion(AcDb::AcDbDwgVersion& version,
                                           AcDb::MaintenanceReleaseVersion& maintenance) const {
    version = AcDb::kDHL_CURRENT;
    maintenance = AcDb::kMReleaseCurrent;
    return Acad::eOk;
}

bool AcDbDxfFiler::atSubclassData(const ACHAR* name) {
    return atSubclassData(host::toUtf8(name));
}

bool AcDbDxfFiler::atSubclassData(std::string_view name) {
    const host::DxfGroup* group = nextGroup();
    if (group == nullptr) {
        return false;
    }
    if (group->code == 100 && group->text == name) {
        return true;
    }
    pushBackItem();
    return false;
}

bool AcDbDxfFiler::atEOF() {
    if (nextGroup() == nullptr) {
        return true;
    }
    pushBackItem();
    return false;
}

bool AcDbDxfFiler::atExtendedData() {
    const host::DxfGroup* group = nextGroup();
    if (group == nullptr) {
        return false;
    }
    const bool extended = group->code >= 1000;
    pushBackItem();
    return extended;
}

Acad::ErrorStatus AcDbDxfFiler::readResBuf(resbuf* buffer) {
    const host::DxfGroup* group = nextGroup();
    if (group == nullptr) {
        return Acad::eEndOfObject;
    }
    *buffer = {};
    buffer->restype = group->code;
    switch (group->kind) {
    case host::ResbufKind::real:
        buffer->resval.rreal = group->real;
        break;
    case host::ResbufKind::point:
        buffer->resval.rpoint[0] = group->real;
        buffer->resval.rpoint[1] = group->y;
        buffer->resval.rpoint[2] = group->z;
        break;
    case host::ResbufKind::int16:
        buffer->resval.rint = static_cast<short>(group->integer);
        break;
    case host::ResbufKind::int32:
        buffer->resval.rlong = static_cast<std::int32_t>(group->integer);
        break;
    case host::ResbufKind::int64:
        buffer->resval.mnInt64 = group->integer;
        break;
    case host::ResbufKind::name:
        buffer->resval.rlname[0] = AcDbObjectId(group->id).asOldId();
        break;
    default:
        acutNewString(group->string().kwszPtr(), buffer->resval.rstring);
        break;
    }
    return Acad::eOk;
}

Acad::ErrorStatus AcDbDxfFiler::setError(Acad::ErrorStatus status, const ACHAR* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    mMessage = host::formatWide(format, arguments).c_str();
    va_end(arguments);
    mStatus = status;
    return status;
}

Acad::ErrorStatus AcDbDxfFiler::writeKept(const host::GroupList& groups) {
    for (const host::GroupList::Group group : groups) {
        if (const Acad::ErrorStatus status = writeKept(group.code, group.text); status != Acad::eOk) {
            return status;
        }
    }
    return Acad::eOk;
}

namespace {

/// Degrees that convert back to exactly these radians, the plainest number if there are several: an angle
/// that was read is written as it came.
double degreesOf(double radians) {
    constexpr double pi = 3.14159265358979323846;
    const auto back = [](double degrees) { return degrees * pi / 180.0; };
    const double degrees = radians * 180.0 / pi;
    if (const double plain = std::round(degrees * 1e10) / 1e10; back(plain) == radians) {
        return plain;
    }
    for (const double near :
         {degrees, std::nextafter(degrees, 0.0), std::nextafter(degrees, 2.0 * degrees)}) {
        if (back(near) == radians) {
            return near;
        }
    }
    return degrees;
}

} // namespace

Acad::ErrorStatus AcDbDxfFiler::writeAngle(short code, double radians, int) {
    return writeReal(code, degreesOf(radians));
}
Acad::ErrorStatus AcDbDxfFiler::writeString(short code, const ACHAR* value) {
    return writeText(code, host::toUtf8(value != nullptr ? value : L""));
}
Acad::ErrorStatus AcDbDxfFiler::writeAcDbHandle(short code, const AcDbHandle& handle) {
    return writeText(code, host::toUtf8(handle.toString()));
}
Acad::ErrorStatus AcDbDxfFiler::writeBChunk(short code, const ads_binary& chunk) {
    return writeBinary(code, chunk.buf, static_cast<std::size_t>(chunk.clen));
}

Acad::ErrorStatus AcDbDxfFiler::writeResBuf(const resbuf& buffer) {
    const short code = buffer.restype;
    switch (host::resbufKind(code)) {
    case host::ResbufKind::real:
        return writeReal(code, buffer.resval.rreal);
    case host::ResbufKind::point:
        return writePoint(code, buffer.resval.rpoint[0], buffer.resval.rpoint[1], buffer.resval.rpoint[2], 3);
    case host::ResbufKind::int16:
        return writeInteger(code, buffer.resval.rint);
    case host::ResbufKind::int32:
        return writeInteger(code, buffer.resval.rlong);
    case host::ResbufKind::int64:
        return writeInteger(code, buffer.resval.mnInt64);
    case host::ResbufKind::name: {
        AcDbObjectId id;
        acdbGetObjectId(id, buffer.resval.rlname);
        return writeReference(code, id.stub());
    }
    case host::ResbufKind::binary:
        return writeBChunk(code, buffer.resval.rbinary);
    default:
        return writeString(code, buffer.resval.rstring);
    }
}

namespace host {

Acad::ErrorStatus MemoryDwgFiler::readBytes(void* bytes, Adesk::UIntPtr count) {
    if (mStatus != Acad::eOk || count > mReading.size() - mAt) {
        std::memset(bytes, 0, count);
        if (mStatus == Acad::eOk) {
            mStatus = Acad::eEndOfObject;
        }
        return mStatus;
    }
    std::memcpy(bytes, mReading.data() + mAt, count);
    mAt += count;
    return Acad::eOk;
}

Acad::ErrorStatus MemoryDwgFiler::writeBytes(const void* bytes, Adesk::UIntPtr count) {
    mBytes.append(static_cast<const char*>(bytes), count);
    return Acad::eOk;
}

Acad::ErrorStatus MemoryDwgFiler::readBool(bool* value) {
    Adesk::UInt8 byte = 0;
    const Acad::ErrorStatus status = readPlain(&byte);
    *value = byte != 0;
    return status;
}

Acad::ErrorStatus MemoryDwgFiler::writeBool(bool value) {
    return writePlain(static_cast<Adesk::UInt8>(value));
}

Acad::ErrorStatus MemoryDwgFiler::readString(AcString& value) {
    Adesk::UInt32 size = 0;
    readPlain(&size);
    if (mStatus != Acad::eOk || size > mReading.size() - mAt) {
        value.setEmpty();
        if (mStatus == Acad::eOk) {
            mStatus = Acad::eEndOfObject;
        }
        return mStatus;
    }
    value = fromUtf8(mReading.substr(mAt, size)).c_str();
    mAt += size;
    return Acad::eOk;
}

Acad::ErrorStatus MemoryDwgFiler::writeString(const ACHAR* value) {
    const std::string text = toUtf8(value != nullptr ? value : L"");
    writePlain(static_cast<Adesk::UInt32>(text.size()));
    return writeBytes(text.data(), text.size());
}

Acad::ErrorStatus MemoryDwgFiler::readAcDbHandle(AcDbHandle* handle) {
    Adesk::UInt64 value = 0;
    const Acad::ErrorStatus status = readPlain(&value);
    *handle = AcDbHandle(value);
    return status;
}

Acad::ErrorStatus MemoryDwgFiler::writeAcDbHandle(const AcDbHandle& handle) {
    return writePlain(static_cast<Adesk::UInt64>(handle));
}

Acad::ErrorStatus MemoryDwgFiler::seek(Adesk::Int64 offset, int method) {
    const auto size = static_cast<Adesk::Int64>(mReading.size());
    const Adesk::Int64 base = method == 1 ? static_cast<Adesk::Int64>(mAt) : method == 2 ? size : 0;
    if (base + offset < 0 || base + offset > size) {
        return mStatus = Acad::eFilerError;
    }
    mAt = static_cast<std::size_t>(base + offset);
    return Acad::eOk;
}

Acad::ErrorStatus MemoryDwgFiler::readId(ReferenceKind, AcDbObjectId& id) {
    AcDbStub* stub = nullptr;
    const Acad::ErrorStatus status = readPlain(&stub);
    id = AcDbObjectId(stub);
    return status;
}

Acad::ErrorStatus MemoryDwgFiler::writeId(ReferenceKind, const AcDbObjectId& id) {
    return writePlain(id.stub());
}

Acad::ErrorStatus ProxyDataFiler::readId(ReferenceKind, AcDbObjectId& id) {
    if (mNext >= mReferences.size()) {
        id.setNull();
        setFilerStatus(Acad::eEndOfObject);
        return Acad::eEndOfObject;
    }
    id = mReferences[mNext++].id;
    return Acad::eOk;
}

Acad::ErrorStatus ProxyDataFiler::writeId(ReferenceKind kind, const AcDbObjectId& id) {
    mReferences.push_back({kind, id});
    return Acad::eOk;
}

Acad::ErrorStatus IdCollector::writeId(ReferenceKind kind, const AcDbObjectId& id) {
    if (!id.isNull()) {
        references.push_back({kind, id});
    }
    return Acad::eOk;
}

Acad::ErrorStatus ResbufDxfWriter::writeReal(short code, double value) {
    mBuilder.real(code, value);
    return Acad::eOk;
}
Acad::ErrorStatus ResbufDxfWriter::writeInteger(short code, Adesk::Int64 value) {
    mBuilder.integer(code, value);
    return Acad::eOk;
}
Acad::ErrorStatus ResbufDxfWriter::writeText(short code, std::string_view value) {
    mBuilder.string(code, fromUtf8(value));
    return Acad::eOk;
}
Acad::ErrorStatus ResbufDxfWriter::writePoint(short code, double x, double y, double z, int dimensions) {
    mBuilder.point(code, x, y, dimensions == 3 ? z : 0.0);
    return Acad::eOk;
}
Acad::ErrorStatus ResbufDxfWriter::writeReference(short code, AcDbStub* id) {
    if (resbufKind(code) != ResbufKind::name) {
        mBuilder.string(code, AcDbObjectId(id).handle().toString());
        return Acad::eOk;
    }
    const ads_name name = {AcDbObjectId(id).asOldId(), 0};
    mBuilder.name(code, name);
    return Acad::eOk;
}
Acad::ErrorStatus ResbufDxfWriter::writeBinary(short code, const void* bytes, std::size_t count) {
    mBuilder.binary(code, bytes, count);
    return Acad::eOk;
}
Acad::ErrorStatus ResbufDxfWriter::writeKept(short code, std::string_view text) {
    GroupList one;
    one.add(code, text);
    mBuilder.take(one.toResbuf(mDatabase).release());
    return Acad::eOk;
}

const DxfGroup* ResbufDxfReader::nextGroup() {
    if (mPushedBack) {
        mPushedBack = false;
        return mEnded ? nullptr : &mGroup;
    }
    while (mNext != nullptr && (mNext->restype < -3 || mNext->restype == -1)) {
        mNext = mNext->rbnext;
    }
    if (mNext == nullptr) {
        mEnded = true;
        return nullptr;
    }
    const resbuf& from = *mNext;
    mNext = mNext->rbnext;
    mGroup = {};
    mGroup.code = from.restype;
    mGroup.kind = resbufKind(from.restype);
    switch (mGroup.kind) {
    case ResbufKind::real:
        mGroup.real = from.resval.rreal;
        break;
    case ResbufKind::point:
        mGroup.real = from.resval.rpoint[0];
        mGroup.y = from.resval.rpoint[1];
        mGroup.z = from.resval.rpoint[2];
        mGroup.dimensions = 3;
        break;
    case ResbufKind::int16:
        mGroup.integer = from.resval.rint;
        break;
    case ResbufKind::int32:
        mGroup.integer = from.resval.rlong;
        break;
    case ResbufKind::int64:
        mGroup.integer = from.resval.mnInt64;
        break;
    case ResbufKind::name: {
        AcDbObjectId id;
        acdbGetObjectId(id, from.resval.rlname);
        mGroup.id = id.stub();
        mGroup.integer = static_cast<Adesk::Int64>(static_cast<Adesk::UInt64>(id.handle()));
        mText = toUtf8(id.handle().toString());
        mGroup.text = mText;
        break;
    }
    case ResbufKind::binary:
        mText = hexFromBytes(from.resval.rbinary.buf, static_cast<std::size_t>(from.resval.rbinary.clen));
        mGroup.text = mText;
        break;
    default:
        mText = encodeDxfText(toUtf8(from.resval.rstring != nullptr ? from.resval.rstring : L""));
        mGroup.text = mText;
        if (mGroup.kind == ResbufKind::handle || mGroup.code == 5 || mGroup.code == 105) {
            mGroup.integer =
                static_cast<Adesk::Int64>(static_cast<Adesk::UInt64>(AcDbHandle(fromUtf8(mText).c_str())));
        }
        break;
    }
    return &mGroup;
}

} // namespace host
