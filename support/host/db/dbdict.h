// Named-object dictionaries, records of free data, and objects whose code the host does not have.
#pragma once

#include "host/db/dbentity.h"
#include "host/rx/text.h"

#include <unordered_map>

class AcDbDictionaryIterator;

/// Name to object, in the order of adding; names compare without regard to case.
class AcDbDictionary : public AcDbObject {
    ACRX_DECLARE_MEMBERS(AcDbDictionary);

public:
    Acad::ErrorStatus getAt(const ACHAR* name, AcDbObjectId& id) const;
    Acad::ErrorStatus getAt(const ACHAR* name, AcDbObject*& object, AcDb::OpenMode mode) const;
    template <class T>
    Acad::ErrorStatus getAt(const ACHAR* name, T*& object, AcDb::OpenMode mode) const {
        AcDbObjectId id;
        object = nullptr;
        const Acad::ErrorStatus status = getAt(name, id);
        return status == Acad::eOk ? acdbOpenObject(object, id, mode) : status;
    }
    bool has(const ACHAR* name) const;
    bool has(AcDbObjectId id) const;
    Acad::ErrorStatus nameAt(AcDbObjectId id, AcString& name) const;
    Adesk::UInt32 numEntries() const;
    /// Adds the object to the database when it is in none. An entry of that name is replaced.
    Acad::ErrorStatus setAt(const ACHAR* name, AcDbObject* value, AcDbObjectId& id);
    Acad::ErrorStatus remove(const ACHAR* name);
    Acad::ErrorStatus remove(const ACHAR* name, AcDbObjectId& id);
    Acad::ErrorStatus remove(AcDbObjectId id);
    bool setName(const ACHAR* from, const ACHAR* to);
    AcDbDictionaryIterator* newIterator() const;
    bool isTreatElementsAsHard() const { return mHard; }
    void setTreatElementsAsHard(bool hard);
    Adesk::Int16 mergeStyle() const { return mMergeStyle; }
    void setMergeStyle(Adesk::Int16 style);

    struct Entry {
        AcString name;
        AcDbObjectId id;
    };
    const std::vector<Entry>& entries() const { return mEntries; }
    /// For readers: takes an entry as it is.
    void adopt(AcString name, AcDbObjectId id);

    Acad::ErrorStatus dwgInFields(AcDbDwgFiler* filer) override;
    Acad::ErrorStatus dwgOutFields(AcDbDwgFiler* filer) const override;
    Acad::ErrorStatus dxfInFields(AcDbDxfFiler* filer) override;
    Acad::ErrorStatus dxfOutFields(AcDbDxfFiler* filer) const override;

protected:
    Acad::ErrorStatus subErase(bool erasing) override;
    Acad::ErrorStatus readGroups(AcDbDxfFiler* filer);

private:
    std::ptrdiff_t find(std::wstring_view name) const;
    void reindex();

    std::vector<Entry> mEntries;
    std::unordered_map<std::wstring, std::size_t, host::NoCaseHash, host::NoCaseEqual> mIndex;
    Adesk::Int16 mMergeStyle = 1;
    bool mHard = false;
};

/// A dictionary with an entry for names it does not hold.
class AcDbDictionaryWithDefault : public AcDbDictionary {
    ACRX_DECLARE_MEMBERS(AcDbDictionaryWithDefault);

public:
    AcDbObjectId defaultId() const { return mDefault; }
    Acad::ErrorStatus setDefaultId(AcDbObjectId id);
    Acad::ErrorStatus dwgInFields(AcDbDwgFiler* filer) override;
    Acad::ErrorStatus dwgOutFields(AcDbDwgFiler* filer) const override;
    Acad::ErrorStatus dxfInFields(AcDbDxfFiler* filer) override;
    Acad::ErrorStatus dxfOutFields(AcDbDxfFiler* filer) const override;

private:
    AcDbObjectId mDefault;
};

class AcDbDictionaryIterator {
public:
    explicit AcDbDictionaryIterator(const AcDbDictionary& dictionary) : mDictionary(dictionary) { skip(); }
    const ACHAR* name() const { return mDictionary.entries()[mIndex].name.kwszPtr(); }
    AcDbObjectId objectId() const { return mDictionary.entries()[mIndex].id; }
    Acad::ErrorStatus getObject(AcDbObject*& object, AcDb::OpenMode mode = AcDb::kForRead);
    bool done() const { return mIndex >= mDictionary.entries().size(); }
    bool next() {
        ++mIndex;
        skip();
        return !done();
    }

private:
    void skip() {
        while (!done() && objectId().isErased()) {
            ++mIndex;
        }
    }
    const AcDbDictionary& mDictionary;
    std::size_t mIndex = 0;
};

/// A list of groups of any kind.
class AcDbXrecord : public AcDbObject {
    ACRX_DECLARE_MEMBERS(AcDbXrecord);

public:
    Acad::ErrorStatus rbChain(resbuf** list, AcDbDatabase* database = nullptr) const;
    Acad::ErrorStatus setFromRbChain(const resbuf& list, AcDbDatabase* database = nullptr);
    AcDb::DuplicateRecordCloning mergeStyle() const {
        return static_cast<AcDb::DuplicateRecordCloning>(mMergeStyle);
    }

    Acad::ErrorStatus dwgInFields(AcDbDwgFiler* filer) override;
    Acad::ErrorStatus dwgOutFields(AcDbDwgFiler* filer) const override;
    Acad::ErrorStatus dxfInFields(AcDbDxfFiler* filer) override;
    Acad::ErrorStatus dxfOutFields(AcDbDxfFiler* filer) const override;

private:
    host::GroupList mGroups;
    Adesk::Int16 mMergeStyle = 1;
};

class AcDbPlaceHolder : public AcDbObject {
    ACRX_DECLARE_MEMBERS(AcDbPlaceHolder);
};

namespace host {

/// An object or entity of a kind the host has no code for: its groups are kept as they came, references
/// among them followed when it is cloned. Shared by the two classes below.
class KeptRecord {
public:
    std::string recordName; ///< group 0
    GroupList groups;       ///< all groups after the ones common to objects (and entities)
    void dwgIn(AcDbDwgFiler* filer);
    void dwgOut(AcDbDwgFiler* filer, AcDbDatabase* database) const;
};

class KeptObject : public AcDbObject {
    ACRX_DECLARE_MEMBERS(KeptObject);

public:
    KeptRecord record;
    const std::string& dxfRecordName() const override { return record.recordName; }
    Acad::ErrorStatus dwgInFields(AcDbDwgFiler* filer) override;
    Acad::ErrorStatus dwgOutFields(AcDbDwgFiler* filer) const override;
    Acad::ErrorStatus dxfInFields(AcDbDxfFiler* filer) override;
    Acad::ErrorStatus dxfOutFields(AcDbDxfFiler* filer) const override;
};

class KeptEntity : public AcDbEntity {
    ACRX_DECLARE_MEMBERS(KeptEntity);

public:
    KeptEntity();
    ~KeptEntity() override;
    KeptRecord record;
    const std::string& dxfRecordName() const override { return record.recordName; }
    /// Vertices of a polyline or mesh of a kind that is only kept.
    SubentityList* subentities() override;
    Acad::ErrorStatus dwgInFields(AcDbDwgFiler* filer) override;
    Acad::ErrorStatus dwgOutFields(AcDbDwgFiler* filer) const override;
    Acad::ErrorStatus dxfInFields(AcDbDxfFiler* filer) override;
    Acad::ErrorStatus dxfOutFields(AcDbDxfFiler* filer) const override;

protected:
    Acad::ErrorStatus subErase(bool erasing) override;
    void subBecameResident() override;

private:
    std::unique_ptr<SubentityList> mParts;
};

/// What a proxy holds: the class it stands for and the bytes that class filed.
struct ProxyData {
    AcString className; ///< of the class that is absent
    AcString dxfName;
    AcString appName;
    Adesk::Int32 proxyFlags = 0;
    std::string data; ///< what the class files after the common data
    std::vector<ProxyDataFiler::Reference> references;
    std::string graphics;      ///< proxy graphics of an entity
    Adesk::Int32 dataBits = 0; ///< size of `data` in bits, as the file says it
    Adesk::Int32 format = 0;   ///< drawing format of the data (group 95 or 71), 0 for our own
    bool fromDxf = false;
    GroupList groups; ///< further groups of the record, kept
    void dwgIn(AcDbDwgFiler* filer);
    void dwgOut(AcDbDwgFiler* filer, AcDbDatabase* database) const;
    /// Groups of ACAD_PROXY_ENTITY or ACAD_PROXY_OBJECT after the marker. `classNumber` is the class of
    /// group 91.
    void dxfIn(AcDbDxfFiler* filer, int& classNumber);
    void dxfOut(AcDbDxfFiler* filer, int classNumber, bool entity) const;
};

class DrawingSource;
/// What a proxy of the object would hold; the picture only with a source to draw it from.
ProxyData proxyDataOf(AcDbObject& object, DrawingSource* source);

} // namespace host

/// Stands for an entity whose class is not loaded: keeps its data, shows its picture, allows nothing that
/// the class did not allow.
class AcDbProxyEntity : public AcDbEntity {
    ACRX_DECLARE_MEMBERS(AcDbProxyEntity);

public:
    const ACHAR* originalClassName() const { return proxy.className.kwszPtr(); }
    const ACHAR* originalDxfName() const { return proxy.dxfName.kwszPtr(); }
    const ACHAR* applicationDescription() const { return proxy.appName.kwszPtr(); }
    int proxyFlags() const { return proxy.proxyFlags; }
    enum GraphicsMetafileType { kNoMetafile = 0, kBoundingBox = 1, kFullGraphics = 2 };
    GraphicsMetafileType graphicsMetafileType() const {
        return proxy.graphics.empty() ? kNoMetafile : kFullGraphics;
    }

    host::ProxyData proxy;

    Acad::ErrorStatus dwgInFields(AcDbDwgFiler* filer) override;
    Acad::ErrorStatus dwgOutFields(AcDbDwgFiler* filer) const override;
    Acad::ErrorStatus dxfInFields(AcDbDxfFiler* filer) override;
    Acad::ErrorStatus dxfOutFields(AcDbDxfFiler* filer) const override;

protected:
    bool subWorldDraw(AcGiWorldDraw* draw) override;
    Acad::ErrorStatus subGetGeomExtents(AcDbExtents& extents) const override;
    Acad::ErrorStatus subTransformBy(const AcGeMatrix3d& transform) override;
    Acad::ErrorStatus subErase(bool erasing) override;
    Acad::ErrorStatus subExplode(AcDbVoidPtrArray& parts) const override;
};

class AcDbProxyObject : public AcDbObject {
    ACRX_DECLARE_MEMBERS(AcDbProxyObject);

public:
    const ACHAR* originalClassName() const { return proxy.className.kwszPtr(); }
    const ACHAR* originalDxfName() const { return proxy.dxfName.kwszPtr(); }
    const ACHAR* applicationDescription() const { return proxy.appName.kwszPtr(); }
    int proxyFlags() const { return proxy.proxyFlags; }

    host::ProxyData proxy;

    Acad::ErrorStatus dwgInFields(AcDbDwgFiler* filer) override;
    Acad::ErrorStatus dwgOutFields(AcDbDwgFiler* filer) const override;
    Acad::ErrorStatus dxfInFields(AcDbDxfFiler* filer) override;
    Acad::ErrorStatus dxfOutFields(AcDbDxfFiler* filer) const override;
};
