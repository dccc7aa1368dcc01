// Filers: the way an object's fields travel. The DWG filers carry bare values in a fixed order and tell ids
// by four kinds of ownership; the DXF filers carry groups, values tagged by a code.
#pragma once

#include "host/db/dbid.h"

#include <string>
#include <string_view>
#include <vector>

class AcDbAuditInfo;

class AcDbDwgFiler {
public:
    virtual ~AcDbDwgFiler() = default;

    virtual Acad::ErrorStatus filerStatus() const = 0;
    virtual AcDb::FilerType filerType() const = 0;
    virtual void setFilerStatus(Acad::ErrorStatus status) = 0;
    virtual void resetFilerStatus() = 0;
    virtual Acad::ErrorStatus dwgVersion(AcDb::AcDbDwgVersion& version,
                                         AcDb::MaintenanceReleaseVersion& maintenance) const;
    /// False where the fields of AcDbObject and AcDbEntity travel by another way (the data of a proxy).
    virtual bool filesCommonData() const { return true; }
    /// The database whose objects the ids name; null outside of one.
    virtual AcDbDatabase* database() const { return nullptr; }

    virtual Acad::ErrorStatus readHardOwnershipId(AcDbHardOwnershipId* id) = 0;
    virtual Acad::ErrorStatus writeHardOwnershipId(const AcDbHardOwnershipId& id) = 0;
    virtual Acad::ErrorStatus readSoftOwnershipId(AcDbSoftOwnershipId* id) = 0;
    virtual Acad::ErrorStatus writeSoftOwnershipId(const AcDbSoftOwnershipId& id) = 0;
    virtual Acad::ErrorStatus readHardPointerId(AcDbHardPointerId* id) = 0;
    virtual Acad::ErrorStatus writeHardPointerId(const AcDbHardPointerId& id) = 0;
    virtual Acad::ErrorStatus readSoftPointerId(AcDbSoftPointerId* id) = 0;
    virtual Acad::ErrorStatus writeSoftPointerId(const AcDbSoftPointerId& id) = 0;

    virtual Acad::ErrorStatus readInt8(Adesk::Int8* value) = 0;
    virtual Acad::ErrorStatus writeInt8(Adesk::Int8 value) = 0;
    virtual Acad::ErrorStatus readInt16(Adesk::Int16* value) = 0;
    virtual Acad::ErrorStatus writeInt16(Adesk::Int16 value) = 0;
    virtual Acad::ErrorStatus readInt32(Adesk::Int32* value) = 0;
    virtual Acad::ErrorStatus writeInt32(Adesk::Int32 value) = 0;
    virtual Acad::ErrorStatus readInt64(Adesk::Int64* value) = 0;
    virtual Acad::ErrorStatus writeInt64(Adesk::Int64 value) = 0;
    virtual Acad::ErrorStatus readUInt8(Adesk::UInt8* value) = 0;
    virtual Acad::ErrorStatus writeUInt8(Adesk::UInt8 value) = 0;
    virtual Acad::ErrorStatus readUInt16(Adesk::UInt16* value) = 0;
    virtual Acad::ErrorStatus writeUInt16(Adesk::UInt16 value) = 0;
    virtual Acad::ErrorStatus readUInt32(Adesk::UInt32* value) = 0;
    virtual Acad::ErrorStatus writeUInt32(Adesk::UInt32 value) = 0;
    virtual Acad::ErrorStatus readUInt64(Adesk::UInt64* value) = 0;
    virtual Acad::ErrorStatus writeUInt64(Adesk::UInt64 value) = 0;
    virtual Acad::ErrorStatus readBool(bool* value) = 0;
    virtual Acad::ErrorStatus writeBool(bool value) = 0;
    Acad::ErrorStatus readBoolean(Adesk::Boolean* value) { return readBool(value); }
    Acad::ErrorStatus writeBoolean(Adesk::Boolean value) { return writeBool(value); }
    virtual Acad::ErrorStatus readDouble(double* value) = 0;
    virtual Acad::ErrorStatus writeDouble(double value) = 0;
    virtual Acad::ErrorStatus readString(AcString& value) = 0;
    virtual Acad::ErrorStatus writeString(const ACHAR* value) = 0;
    Acad::ErrorStatus writeString(const AcString& value) { return writeString(value.kwszPtr()); }
    Acad::ErrorStatus readString(ACHAR** value);
    virtual Acad::ErrorStatus readBytes(void* bytes, Adesk::UIntPtr count) = 0;
    virtual Acad::ErrorStatus writeBytes(const void* bytes, Adesk::UIntPtr count) = 0;
    Acad::ErrorStatus readBChunk(ads_binary* chunk);
    Acad::ErrorStatus writeBChunk(const ads_binary& chunk);
    virtual Acad::ErrorStatus readAcDbHandle(AcDbHandle* handle) = 0;
    virtual Acad::ErrorStatus writeAcDbHandle(const AcDbHandle& handle) = 0;
    virtual Acad::ErrorStatus readPoint2d(AcGePoint2d* point);
    virtual Acad::ErrorStatus writePoint2d(const AcGePoint2d& point);
    virtual Acad::ErrorStatus readPoint3d(AcGePoint3d* point);
    virtual Acad::ErrorStatus writePoint3d(const AcGePoint3d& point);
    Acad::ErrorStatus readVector2d(AcGeVector2d* vector);
    Acad::ErrorStatus writeVector2d(const AcGeVector2d& vector);
    Acad::ErrorStatus readVector3d(AcGeVector3d* vector);
    Acad::ErrorStatus writeVector3d(const AcGeVector3d& vector);
    Acad::ErrorStatus readScale3d(AcGeScale3d* scale);
    Acad::ErrorStatus writeScale3d(const AcGeScale3d& scale);
    Acad::ErrorStatus readAddress(void** address);
    Acad::ErrorStatus writeAddress(const void* address);
    virtual Acad::ErrorStatus seek(Adesk::Int64 offset, int method) = 0;
    virtual Adesk::Int64 tell() const = 0;

    template <class T>
    Acad::ErrorStatus readItem(T* value);
};

namespace host {

/// One DXF group as a reader sees it. Coordinates that follow each other (10, 20, 30) are one group.
/// `text` is UTF-8 in the form DXF files have it (a control character as a caret and a letter, a caret as a
/// caret and a blank; string() resolves that) and lives until the next group is asked for.
struct DxfGroup {
    short code = 0;
    short dimensions = 0; ///< 2 or 3 for a point, as the source had them
    ResbufKind kind = ResbufKind::none;
    Adesk::Int64 integer = 0; ///< integers; handles as numbers
    double real = 0.0;        ///< reals; x of a point
    double y = 0.0;
    double z = 0.0;
    std::string_view text; ///< strings and hexadecimal digits; a number's digits when from a file
    AcDbStub* id =
        nullptr; ///< references (330 to 369, 390 to 399, 480, 481): the stub in the target database

    AcGePoint3d point() const { return {real, y, z}; }
    AcGePoint2d point2d() const { return {real, y}; }
    AcGeVector3d vector() const { return {real, y, z}; }
    bool boolean() const { return integer != 0; }
    Adesk::Int16 int16() const { return static_cast<Adesk::Int16>(integer); }
    Adesk::Int32 int32() const { return static_cast<Adesk::Int32>(integer); }
    AcString string() const;
};

/// Groups kept as DXF text, packed: extended data, and what a file holds that is not understood.
/// Numbers keep the digits they came with; references are hexadecimal handles of the owning database.
class GroupList {
public:
    struct Group {
        short code;
        std::string_view text;
    };
    class Iterator {
    public:
        explicit Iterator(const char* at) : mAt(at) {}
        Group operator*() const;
        Iterator& operator++();
        bool operator!=(const Iterator& other) const { return mAt != other.mAt; }

    private:
        const char* mAt;
    };

    bool empty() const { return mBytes.empty(); }
    void clear() { mBytes.clear(); }
    void add(short code, std::string_view text);
    void addReal(short code, double value);
    void addInteger(short code, Adesk::Int64 value);
    /// Adds a group from a reader; a point becomes its two or three groups again.
    void add(const DxfGroup& group);
    void append(const GroupList& other) { mBytes += other.mBytes; }
    Iterator begin() const { return Iterator(mBytes.data()); }
    Iterator end() const { return Iterator(mBytes.data() + mBytes.size()); }
    const std::string& bytes() const { return mBytes; }
    /// Takes bytes made by bytes(); false when they are not well formed.
    bool setBytes(std::string bytes);
    std::size_t capacityBytes() const { return mBytes.capacity(); }
    void shrink() { mBytes.shrink_to_fit(); }

    /// Files the bytes; a cloning filer gets the references too, and reading back puts in what they became.
    void dwgOut(AcDbDwgFiler* filer, AcDbDatabase* database) const;
    void dwgIn(AcDbDwgFiler* filer);

    /// The list as result buffers (points joined, references as entity names of `database`).
    ResbufList toResbuf(AcDbDatabase* database) const;
    static GroupList fromResbuf(const resbuf* list);

private:
    std::string mBytes;
};

/// The canonical DXF text of a real: shortest digits that read back equal, always with a point or exponent.
std::string_view formatReal(double value, char (&buffer)[40]);
/// Text in UTF-8 to and from the form in which a line of a DXF file holds it: ^J for a line end, "^ " for ^.
std::string encodeDxfText(std::string_view text);
std::string decodeDxfText(std::string_view text);
std::string hexFromBytes(const void* bytes, std::size_t count);
std::string bytesFromHex(std::string_view digits);
/// How ids are held by group codes.
enum class ReferenceKind { none, softPointer, hardPointer, softOwnership, hardOwnership, handleOnly };
ReferenceKind referenceKind(int code);
bool isPointCode(int code);

} // namespace host

class AcDbDxfFiler {
public:
    virtual ~AcDbDxfFiler() = default;

    virtual Acad::ErrorStatus filerStatus() const { return mStatus; }
    virtual void setFilerStatus(Acad::ErrorStatus status) { mStatus = status; }
    virtual void resetFilerStatus() { mStatus = Acad::eOk; }
    virtual AcDb::FilerType filerType() const = 0;
    virtual AcDbDatabase* database() const = 0;
    virtual Acad::ErrorStatus dwgVersion(AcDb::AcDbDwgVersion& version,
                                         AcDb::MaintenanceReleaseVersion& maintenance) const;
    /// Fields with default values are written too.
    virtual bool includesDefaultValues() const { return false; }

    // Reading.

    /// The next group of the object, or null at its end. The group lives until the next call.
    virtual const host::DxfGroup* nextGroup() { return nullptr; }
    /// Makes nextGroup give the same group again.
    virtual void pushBackItem() {}
    /// True, and the marker consumed, when the next group is the subclass marker `name`.
    bool atSubclassData(const ACHAR* name);
    bool atSubclassData(std::string_view name);
    bool atEOF();
    bool atExtendedData();
    Acad::ErrorStatus readResBuf(resbuf* buffer);
    Acad::ErrorStatus readItem(resbuf* buffer) { return readResBuf(buffer); }
    Acad::ErrorStatus setError(Acad::ErrorStatus status, const ACHAR* format, ...);
    const ACHAR* errorMessage() const { return mMessage.kwszPtr(); }

    // Writing. Codes are group codes; an id is written by its handle.

    virtual Acad::ErrorStatus writeReal(short code, double value) = 0;
    virtual Acad::ErrorStatus writeInteger(short code, Adesk::Int64 value) = 0;
    /// Text in UTF-8.
    virtual Acad::ErrorStatus writeText(short code, std::string_view value) = 0;
    virtual Acad::ErrorStatus writePoint(short code, double x, double y, double z, int dimensions) = 0;
    virtual Acad::ErrorStatus writeReference(short code, AcDbStub* id) = 0;
    virtual Acad::ErrorStatus writeBinary(short code, const void* bytes, std::size_t count) = 0;
    /// A group in its DXF text form.
    virtual Acad::ErrorStatus writeKept(short code, std::string_view text) = 0;
    Acad::ErrorStatus writeKept(const host::GroupList& groups);

    Acad::ErrorStatus writeInt8(short code, Adesk::Int8 value) { return writeInteger(code, value); }
    Acad::ErrorStatus writeInt16(short code, Adesk::Int16 value) { return writeInteger(code, value); }
    Acad::ErrorStatus writeInt32(short code, Adesk::Int32 value) { return writeInteger(code, value); }
    Acad::ErrorStatus writeInt64(short code, Adesk::Int64 value) { return writeInteger(code, value); }
    Acad::ErrorStatus writeUInt8(short code, Adesk::UInt8 value) { return writeInteger(code, value); }
    Acad::ErrorStatus writeUInt16(short code, Adesk::UInt16 value) { return writeInteger(code, value); }
    Acad::ErrorStatus writeUInt32(short code, Adesk::UInt32 value) { return writeInteger(code, value); }
    Acad::ErrorStatus writeBool(short code, bool value) { return writeInteger(code, value ? 1 : 0); }
    Acad::ErrorStatus writeBoolean(short code, Adesk::Boolean value) {
        return writeInteger(code, value ? 1 : 0);
    }
    Acad::ErrorStatus writeDouble(short code, double value, int = -1) { return writeReal(code, value); }
    /// An angle held in radians, written in degrees.
    Acad::ErrorStatus writeAngle(short code, double radians, int = -1);
    Acad::ErrorStatus writeString(short code, const ACHAR* value);
    Acad::ErrorStatus writeString(short code, const AcString& value) {
        return writeString(code, value.kwszPtr());
    }
    Acad::ErrorStatus writePoint2d(short code, const AcGePoint2d& p, int = -1) {
        return writePoint(code, p.x, p.y, 0.0, 2);
    }
    Acad::ErrorStatus writePoint3d(short code, const AcGePoint3d& p, int = -1) {
        return writePoint(code, p.x, p.y, p.z, 3);
    }
    Acad::ErrorStatus writeVector2d(short code, const AcGeVector2d& v, int = -1) {
        return writePoint(code, v.x, v.y, 0.0, 2);
    }
    Acad::ErrorStatus writeVector3d(short code, const AcGeVector3d& v, int = -1) {
        return writePoint(code, v.x, v.y, v.z, 3);
    }
    Acad::ErrorStatus writeScale3d(short code, const AcGeScale3d& s, int = -1) {
        return writePoint(code, s.sx, s.sy, s.sz, 3);
    }
    Acad::ErrorStatus writeObjectId(short code, const AcDbObjectId& id) {
        return writeReference(code, id.stub());
    }
    Acad::ErrorStatus writeAcDbHandle(short code, const AcDbHandle& handle);
    Acad::ErrorStatus writeBChunk(short code, const ads_binary& chunk);
    Acad::ErrorStatus writeResBuf(const resbuf& buffer);
    Acad::ErrorStatus writeItem(const resbuf& buffer) { return writeResBuf(buffer); }
    Acad::ErrorStatus writeItem(short code, const ACHAR* value) { return writeString(code, value); }
    Acad::ErrorStatus writeItem(short code, Adesk::Int16 value) { return writeInt16(code, value); }
    Acad::ErrorStatus writeItem(short code, Adesk::Int32 value) { return writeInt32(code, value); }
    Acad::ErrorStatus writeItem(short code, double value) { return writeReal(code, value); }
    Acad::ErrorStatus writeItem(short code, const AcGePoint3d& value) { return writePoint3d(code, value); }
    Acad::ErrorStatus writeItem(short code, const AcDbObjectId& value) { return writeObjectId(code, value); }

private:
    Acad::ErrorStatus mStatus = Acad::eOk;
    AcString mMessage;
};

namespace host {

/// A DWG filer over bytes in memory: undo images, clones, the data of proxies. Ids are kept as stubs (or,
/// with `idTable`, as positions in a list beside the bytes, as the data of a proxy holds them).
class MemoryDwgFiler : public AcDbDwgFiler {
public:
    explicit MemoryDwgFiler(AcDb::FilerType type, AcDbDatabase* database = nullptr)
        : mType(type), mDatabase(database) {}
    /// For reading what was written elsewhere; the bytes must outlive the filer.
    MemoryDwgFiler(AcDb::FilerType type, AcDbDatabase* database, std::string_view bytes)
        : mType(type), mDatabase(database), mReading(bytes) {}

    const std::string& bytes() const { return mBytes; }
    std::string takeBytes() { return std::move(mBytes); }
    /// Starts reading what this filer wrote.
    void rewind() {
        mReading = mBytes;
        mAt = 0;
    }

    Acad::ErrorStatus filerStatus() const override { return mStatus; }
    AcDb::FilerType filerType() const override { return mType; }
    void setFilerStatus(Acad::ErrorStatus status) override { mStatus = status; }
    void resetFilerStatus() override { mStatus = Acad::eOk; }
    AcDbDatabase* database() const override { return mDatabase; }

    Acad::ErrorStatus readHardOwnershipId(AcDbHardOwnershipId* id) override {
        return readId(ReferenceKind::hardOwnership, *id);
    }
    Acad::ErrorStatus writeHardOwnershipId(const AcDbHardOwnershipId& id) override {
        return writeId(ReferenceKind::hardOwnership, id);
    }
    Acad::ErrorStatus readSoftOwnershipId(AcDbSoftOwnershipId* id) override {
        return readId(ReferenceKind::softOwnership, *id);
    }
    Acad::ErrorStatus writeSoftOwnershipId(const AcDbSoftOwnershipId& id) override {
        return writeId(ReferenceKind::softOwnership, id);
    }
    Acad::ErrorStatus readHardPointerId(AcDbHardPointerId* id) override {
        return readId(ReferenceKind::hardPointer, *id);
    }
    Acad::ErrorStatus writeHardPointerId(const AcDbHardPointerId& id) override {
        return writeId(ReferenceKind::hardPointer, id);
    }
    Acad::ErrorStatus readSoftPointerId(AcDbSoftPointerId* id) override {
        return readId(ReferenceKind::softPointer, *id);
    }
    Acad::ErrorStatus writeSoftPointerId(const AcDbSoftPointerId& id) override {
        return writeId(ReferenceKind::softPointer, id);
    }

    Acad::ErrorStatus readInt8(Adesk::Int8* value) override { return readPlain(value); }
    Acad::ErrorStatus writeInt8(Adesk::Int8 value) override { return writePlain(value); }
    Acad::ErrorStatus readInt16(Adesk::Int16* value) override { return readPlain(value); }
    Acad::ErrorStatus writeInt16(Adesk::Int16 value) override { return writePlain(value); }
    Acad::ErrorStatus readInt32(Adesk::Int32* value) override { return readPlain(value); }
    Acad::ErrorStatus writeInt32(Adesk::Int32 value) override { return writePlain(value); }
    Acad::ErrorStatus readInt64(Adesk::Int64* value) override { return readPlain(value); }
    Acad::ErrorStatus writeInt64(Adesk::Int64 value) override { return writePlain(value); }
    Acad::ErrorStatus readUInt8(Adesk::UInt8* value) override { return readPlain(value); }
    Acad::ErrorStatus writeUInt8(Adesk::UInt8 value) override { return writePlain(value); }
    Acad::ErrorStatus readUInt16(Adesk::UInt16* value) override { return readPlain(value); }
    Acad::ErrorStatus writeUInt16(Adesk::UInt16 value) override { return writePlain(value); }
    Acad::ErrorStatus readUInt32(Adesk::UInt32* value) override { return readPlain(value); }
    Acad::ErrorStatus writeUInt32(Adesk::UInt32 value) override { return writePlain(value); }
    Acad::ErrorStatus readUInt64(Adesk::UInt64* value) override { return readPlain(value); }
    Acad::ErrorStatus writeUInt64(Adesk::UInt64 value) override { return writePlain(value); }
    Acad::ErrorStatus readBool(bool* value) override;
    Acad::ErrorStatus writeBool(bool value) override;
    Acad::ErrorStatus readDouble(double* value) override { return readPlain(value); }
    Acad::ErrorStatus writeDouble(double value) override { return writePlain(value); }
    using AcDbDwgFiler::readString;
    using AcDbDwgFiler::writeString;
    Acad::ErrorStatus readString(AcString& value) override;
    Acad::ErrorStatus writeString(const ACHAR* value) override;
    Acad::ErrorStatus readBytes(void* bytes, Adesk::UIntPtr count) override;
    Acad::ErrorStatus writeBytes(const void* bytes, Adesk::UIntPtr count) override;
    Acad::ErrorStatus readAcDbHandle(AcDbHandle* handle) override;
    Acad::ErrorStatus writeAcDbHandle(const AcDbHandle& handle) override;
    Acad::ErrorStatus seek(Adesk::Int64 offset, int method) override;
    Adesk::Int64 tell() const override {
        return static_cast<Adesk::Int64>(mReading.data() != nullptr ? mAt : mBytes.size());
    }

protected:
    virtual Acad::ErrorStatus readId(ReferenceKind kind, AcDbObjectId& id);
    virtual Acad::ErrorStatus writeId(ReferenceKind kind, const AcDbObjectId& id);

    template <class T>
    Acad::ErrorStatus readPlain(T* value) {
        return readBytes(value, sizeof(T));
    }
    template <class T>
    Acad::ErrorStatus writePlain(T value) {
        return writeBytes(&value, sizeof(T));
    }

private:
    AcDb::FilerType mType;
    AcDbDatabase* mDatabase;
    Acad::ErrorStatus mStatus = Acad::eOk;
    std::string mBytes;
    std::string_view mReading;
    std::size_t mAt = 0;
};

/// A filer for bytes that leave the program: proxy data. Common entity data is left to the carrier, ids go
/// into a list beside the bytes, texts are UTF-8, numbers little-endian.
class ProxyDataFiler : public MemoryDwgFiler {
public:
    struct Reference {
        ReferenceKind kind;
        AcDbObjectId id;
    };
    explicit ProxyDataFiler(AcDbDatabase* database) : MemoryDwgFiler(AcDb::kFileFiler, database) {}
    ProxyDataFiler(AcDbDatabase* database, std::string_view bytes, std::vector<Reference> references)
        : MemoryDwgFiler(AcDb::kFileFiler, database, bytes), mReferences(std::move(references)) {}
    bool filesCommonData() const override { return false; }
    const std::vector<Reference>& references() const { return mReferences; }

protected:
    Acad::ErrorStatus readId(ReferenceKind kind, AcDbObjectId& id) override;
    Acad::ErrorStatus writeId(ReferenceKind kind, const AcDbObjectId& id) override;

private:
    std::vector<Reference> mReferences;
    std::size_t mNext = 0;
};

/// Collects the ids that an object files, with their kinds; everything else is passed over.
class IdCollector : public MemoryDwgFiler {
public:
    explicit IdCollector(AcDb::FilerType type = AcDb::kIdFiler) : MemoryDwgFiler(type) {}
    struct Reference {
        ReferenceKind kind;
        AcDbObjectId id;
    };
    std::vector<Reference> references;
    Acad::ErrorStatus writeBytes(const void*, Adesk::UIntPtr) override { return Acad::eOk; }

protected:
    Acad::ErrorStatus writeId(ReferenceKind kind, const AcDbObjectId& id) override;
};

/// A DXF filer over result buffers: entget and entmake.
class ResbufDxfWriter : public AcDbDxfFiler {
public:
    explicit ResbufDxfWriter(AcDbDatabase* database) : mDatabase(database) {}
    AcDb::FilerType filerType() const override { return AcDb::kBagFiler; }
    bool includesDefaultValues() const override { return true; }
    AcDbDatabase* database() const override { return mDatabase; }
    Acad::ErrorStatus writeReal(short code, double value) override;
    Acad::ErrorStatus writeInteger(short code, Adesk::Int64 value) override;
    Acad::ErrorStatus writeText(short code, std::string_view value) override;
    Acad::ErrorStatus writePoint(short code, double x, double y, double z, int dimensions) override;
    Acad::ErrorStatus writeReference(short code, AcDbStub* id) override;
    Acad::ErrorStatus writeBinary(short code, const void* bytes, std::size_t count) override;
    using AcDbDxfFiler::writeKept;
    Acad::ErrorStatus writeKept(short code, std::string_view text) override;
    ResbufBuilder& builder() { return mBuilder; }
    ResbufList release() { return mBuilder.release(); }

private:
    AcDbDatabase* mDatabase;
    ResbufBuilder mBuilder;
};

class ResbufDxfReader : public AcDbDxfFiler {
public:
    /// The list must outlive the reader.
    ResbufDxfReader(AcDbDatabase* database, const resbuf* list) : mDatabase(database), mNext(list) {}
    AcDb::FilerType filerType() const override { return AcDb::kBagFiler; }
    AcDbDatabase* database() const override { return mDatabase; }
    const DxfGroup* nextGroup() override;
    void pushBackItem() override { mPushedBack = true; }
    Acad::ErrorStatus writeReal(short, double) override { return Acad::eNotApplicable; }
    Acad::ErrorStatus writeInteger(short, Adesk::Int64) override { return Acad::eNotApplicable; }
    Acad::ErrorStatus writeText(short, std::string_view) override { return Acad::eNotApplicable; }
    Acad::ErrorStatus writePoint(short, double, double, double, int) override { return Acad::eNotApplicable; }
    Acad::ErrorStatus writeReference(short, AcDbStub*) override { return Acad::eNotApplicable; }
    Acad::ErrorStatus writeBinary(short, const void*, std::size_t) override { return Acad::eNotApplicable; }
    using AcDbDxfFiler::writeKept;
    Acad::ErrorStatus writeKept(short, std::string_view) override { return Acad::eNotApplicable; }

private:
    AcDbDatabase* mDatabase;
    const resbuf* mNext;
    DxfGroup mGroup;
    std::string mText;
    bool mPushedBack = false;
    bool mEnded = false;
};

} // namespace host

template <class T>
Acad::ErrorStatus AcDbDwgFiler::readItem(T* value) {
    if constexpr (std::is_same_v<T, AcGePoint3d>) {
        return readPoint3d(value);
    } else if constexpr (std::is_same_v<T, AcGePoint2d>) {
        return readPoint2d(value);
    } else if constexpr (std::is_same_v<T, AcGeVector3d>) {
        return readVector3d(value);
    } else if constexpr (std::is_same_v<T, AcGeVector2d>) {
        return readVector2d(value);
    } else if constexpr (std::is_same_v<T, AcGeScale3d>) {
        return readScale3d(value);
    } else if constexpr (std::is_same_v<T, double>) {
        return readDouble(value);
    } else if constexpr (std::is_same_v<T, bool>) {
        return readBool(value);
    } else if constexpr (std::is_same_v<T, AcString>) {
        return readString(*value);
    } else if constexpr (std::is_same_v<T, Adesk::Int16>) {
        return readInt16(value);
    } else if constexpr (std::is_same_v<T, Adesk::UInt16>) {
        return readUInt16(value);
    } else if constexpr (std::is_same_v<T, Adesk::Int32>) {
        return readInt32(value);
    } else if constexpr (std::is_same_v<T, Adesk::UInt32>) {
        return readUInt32(value);
    } else {
        static_assert(std::is_same_v<T, Adesk::UInt8>);
        return readUInt8(value);
    }
}
