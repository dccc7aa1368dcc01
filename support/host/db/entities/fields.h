// Filing by one walk: a class lists its stored fields once, and the same list writes and reads them. Reading
// goes into a fresh value, so damaged data leaves the object as it was.
#pragma once

#include "host/db/dbobject.h"
#include "host/ge/ge.h"

#include <cmath>
#include <type_traits>

namespace host {

class FieldWriter {
public:
    static constexpr bool reads = false;
    explicit FieldWriter(AcDbDwgFiler& filer) : mFiler(filer) {}
    AcDbDwgFiler& filer() const { return mFiler; }

    template <class... Fields>
    void operator()(const Fields&... fields) {
        (put(fields), ...);
    }
    void hardPointer(const AcDbObjectId& id) { mFiler.writeHardPointerId(AcDbHardPointerId(id)); }
    void softPointer(const AcDbObjectId& id) { mFiler.writeSoftPointerId(AcDbSoftPointerId(id)); }

private:
    void put(double value) { mFiler.writeDouble(value); }
    void put(bool value) { mFiler.writeBool(value); }
    void put(Adesk::UInt8 value) { mFiler.writeUInt8(value); }
    void put(Adesk::Int16 value) { mFiler.writeInt16(value); }
    void put(Adesk::Int32 value) { mFiler.writeInt32(value); }
    void put(Adesk::UInt32 value) { mFiler.writeUInt32(value); }
    void put(const AcGePoint2d& value) { mFiler.writePoint2d(value); }
    void put(const AcGePoint3d& value) { mFiler.writePoint3d(value); }
    void put(const AcGeVector3d& value) { mFiler.writeVector3d(value); }
    void put(const AcGeScale3d& value) { mFiler.writeScale3d(value); }
    void put(const AcString& value) { mFiler.writeString(value); }

    AcDbDwgFiler& mFiler;
};

/// Numbers of a file that are not finite end reading with eInvalidInput; images of undo and of clones are
/// taken as they are.
class FieldReader {
public:
    static constexpr bool reads = true;
    explicit FieldReader(AcDbDwgFiler& filer)
        : mFiler(filer), mChecks(filer.filerType() == AcDb::kFileFiler) {}
    AcDbDwgFiler& filer() const { return mFiler; }
    bool isGood() const { return mFiler.filerStatus() == Acad::eOk; }

    template <class... Fields>
    void operator()(Fields&... fields) {
        (get(fields), ...);
    }
    void hardPointer(AcDbObjectId& id) {
        AcDbHardPointerId pointer;
        mFiler.readHardPointerId(&pointer);
        id = pointer;
    }
    void softPointer(AcDbObjectId& id) {
        AcDbSoftPointerId pointer;
        mFiler.readSoftPointerId(&pointer);
        id = pointer;
    }

private:
    void check(double value) {
        if (mChecks && !std::isfinite(value) && isGood()) {
            mFiler.setFilerStatus(Acad::eInvalidInput);
        }
    }
    void get(double& value) {
        mFiler.readDouble(&value);
        check(value);
    }
    void get(bool& value) { mFiler.readBool(&value); }
    void get(Adesk::UInt8& value) { mFiler.readUInt8(&value); }
    void get(Adesk::Int16& value) { mFiler.readInt16(&value); }
    void get(Adesk::Int32& value) { mFiler.readInt32(&value); }
    void get(Adesk::UInt32& value) { mFiler.readUInt32(&value); }
    void get(AcGePoint2d& value) {
        mFiler.readPoint2d(&value);
        check(value.x + value.y);
    }
    void get(AcGePoint3d& value) {
        mFiler.readPoint3d(&value);
        check(value.x + value.y + value.z);
    }
    void get(AcGeVector3d& value) {
        mFiler.readVector3d(&value);
        check(value.x + value.y + value.z);
    }
    void get(AcGeScale3d& value) {
        mFiler.readScale3d(&value);
        check(value.sx + value.sy + value.sz);
    }
    void get(AcString& value) { mFiler.readString(value); }

    AcDbDwgFiler& mFiler;
    bool mChecks;
};

/// Writes the fields of a value whose type lists them in `static void fields(value, walk)`.
template <class Data>
Acad::ErrorStatus writeFields(AcDbDwgFiler* filer, const Data& data) {
    FieldWriter walk(*filer);
    Data::fields(data, walk);
    return filer->filerStatus();
}

/// Reads into `data`; on failure it stays as it was.
template <class Data>
Acad::ErrorStatus readFields(AcDbDwgFiler* filer, Data& data) {
    if (filer->filerStatus() != Acad::eOk) {
        return filer->filerStatus();
    }
    Data read;
    FieldReader walk(*filer);
    Data::fields(read, walk);
    if (filer->filerStatus() == Acad::eOk) {
        data = std::move(read);
    }
    return filer->filerStatus();
}

/// Copies what class T files, from an object of that class into one of a class that comes from it.
template <class T>
Acad::ErrorStatus copyFieldsAs(T& target, const AcDbObject& source) {
    MemoryDwgFiler filer(AcDb::kCopyFiler, source.database());
    const Acad::ErrorStatus status = static_cast<const T&>(source).T::dwgOutFields(&filer);
    if (status != Acad::eOk) {
        return status;
    }
    filer.rewind();
    return target.T::dwgInFields(&filer);
}

/// Degrees of files to radians; writeAngle of the DXF filers is its inverse.
inline double radiansOf(double degrees) {
    return degrees * pi / 180.0;
}

/// A normal as an object may hold it: of unit length, the Z axis for one without length. Normals of files
/// that are unit vectors to the digits written stay as they are.
inline AcGeVector3d unitNormal(const AcGeVector3d& vector) {
    const double size = vector.length();
    if (!(size > 1e-300) || !std::isfinite(size)) {
        return AcGeVector3d::kZAxis;
    }
    return std::fabs(size - 1.0) <= 1e-12 ? vector : vector / size;
}

inline bool isWorldNormal(const AcGeVector3d& normal) {
    return normal.x == 0.0 && normal.y == 0.0 && normal.z > 0.0;
}

// Object coordinates (of the arbitrary axis rule) to world coordinates and back; free for a flat entity.

template <class Value>
Value toWorld(const AcGeVector3d& normal, const Value& value) {
    return isWorldNormal(normal) ? value : AcGeMatrix3d::planeToWorld(normal) * value;
}
template <class Value>
Value toObject(const AcGeVector3d& normal, const Value& value) {
    return isWorldNormal(normal) ? value : AcGeMatrix3d::worldToPlane(normal) * value;
}

// Groups that many entities share.

inline void writeThickness(AcDbDxfFiler* filer, double thickness) {
    if (thickness != 0.0 || filer->includesDefaultValues()) {
        filer->writeReal(39, thickness);
    }
}
inline void writeNormal(AcDbDxfFiler* filer, const AcGeVector3d& normal) {
    if (normal.x != 0.0 || normal.y != 0.0 || normal.z != 1.0 || filer->includesDefaultValues()) {
        filer->writeVector3d(210, normal);
    }
}
inline void writeUnlessDefault(AcDbDxfFiler* filer, short code, double value, double standard) {
    if (value != standard || filer->includesDefaultValues()) {
        filer->writeReal(code, value);
    }
}
inline void writeAngleUnlessZero(AcDbDxfFiler* filer, short code, double radians) {
    if (radians != 0.0 || filer->includesDefaultValues()) {
        filer->writeAngle(code, radians);
    }
}
inline void writeUnlessZero(AcDbDxfFiler* filer, short code, Adesk::Int64 value) {
    if (value != 0 || filer->includesDefaultValues()) {
        filer->writeInteger(code, value);
    }
}

} // namespace host
