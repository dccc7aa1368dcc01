// A drawing: its objects by handle, symbol tables, dictionaries, header variables, undo log and reactors.
#pragma once

#include "host/db/dbdict.h"
#include "host/db/dblayout.h"
#include "host/db/dbsymtb.h"
#include "host/db/headervars.h"
#include "host/db/spatialindex.h"
#include "host/db/undolog.h"

#include <functional>
#include <memory>

class AcDbDatabase;
class AcDbTransactionManager;
class AcTransaction;

/// Told of changes in a database. Notifications come when an object is closed.
class AcDbDatabaseReactor : public AcRxObject {
    ACRX_DECLARE_MEMBERS(AcDbDatabaseReactor);

public:
    virtual void objectAppended(const AcDbDatabase*, const AcDbObject*) {}
    virtual void objectUnAppended(const AcDbDatabase*, const AcDbObject*) {}
    virtual void objectReAppended(const AcDbDatabase*, const AcDbObject*) {}
    virtual void objectOpenedForModify(const AcDbDatabase*, const AcDbObject*) {}
    virtual void objectModified(const AcDbDatabase*, const AcDbObject*) {}
    virtual void objectErased(const AcDbDatabase*, const AcDbObject*, bool = true) {}
    virtual void headerSysVarWillChange(const AcDbDatabase*, const ACHAR*) {}
    virtual void headerSysVarChanged(const AcDbDatabase*, const ACHAR*, bool) {}
    virtual void goodbye(const AcDbDatabase*) {}
};

/// Source and result ids of a cloning.
class AcDbIdPair {
public:
    AcDbIdPair() = default;
    AcDbIdPair(AcDbObjectId key, AcDbObjectId value, bool cloned, bool primary = false,
               bool ownerTranslated = false)
        : mKey(key), mValue(value), mCloned(cloned), mPrimary(primary), mOwnerTranslated(ownerTranslated) {}
    AcDbObjectId key() const { return mKey; }
    AcDbObjectId value() const { return mValue; }
    bool isCloned() const { return mCloned; }
    bool isPrimary() const { return mPrimary; }
    bool isOwnerXlated() const { return mOwnerTranslated; }
    void setKey(AcDbObjectId id) { mKey = id; }
    void setValue(AcDbObjectId id) { mValue = id; }

private:
    AcDbObjectId mKey;
    AcDbObjectId mValue;
    bool mCloned = false;
    bool mPrimary = false;
    bool mOwnerTranslated = false;
};

class AcDbIdMapping {
public:
    Acad::ErrorStatus assign(const AcDbIdPair& pair);
    /// Looks up pair.key().
    bool compute(AcDbIdPair& pair) const;
    bool change(const AcDbIdPair& pair);
    AcDbDatabase* destDb() const { return mDestination; }
    Acad::ErrorStatus destDb(AcDbDatabase*& database) const {
        database = mDestination;
        return Acad::eOk;
    }
    void setDestDb(AcDbDatabase* database) { mDestination = database; }
    AcDb::DeepCloneType deepCloneContext() const { return mContext; }
    AcDb::DuplicateRecordCloning duplicateRecordCloning() const { return mDuplicates; }
    void setContext(AcDb::DeepCloneType context, AcDb::DuplicateRecordCloning duplicates) {
        mContext = context;
        mDuplicates = duplicates;
    }
    const std::vector<AcDbIdPair>& pairs() const { return mPairs; }

private:
    std::vector<AcDbIdPair> mPairs;
    std::unordered_map<AcDbStub*, std::size_t> mIndex;
    AcDbDatabase* mDestination = nullptr;
    AcDb::DeepCloneType mContext = AcDb::kDcCopy;
    AcDb::DuplicateRecordCloning mDuplicates = AcDb::kDrcIgnore;
};

class AcDbDatabase : public AcRxObject {
    ACRX_DECLARE_MEMBERS(AcDbDatabase);

public:
    /// With `buildDefaultDrawing` a drawing ready for use: model and paper space, layer 0, standard styles,
    /// dictionaries, metric settings. Without, an empty one for a reader to fill.
    explicit AcDbDatabase(bool buildDefaultDrawing = true, bool noDocument = false);
    ~AcDbDatabase() override;
    AcDbDatabase(const AcDbDatabase&) = delete;
    AcDbDatabase& operator=(const AcDbDatabase&) = delete;

    // Objects.

    Acad::ErrorStatus addAcDbObject(AcDbObject* object);
    Acad::ErrorStatus addAcDbObject(AcDbObjectId& id, AcDbObject* object);
    Acad::ErrorStatus getAcDbObjectId(AcDbObjectId& id, bool createIfNotFound,
                                      const AcDbHandle& handle) const;
    AcDbHandle handseed() const;
    Acad::ErrorStatus setHandseed(const AcDbHandle& handle);
    Adesk::Int32 approxNumObjects() const;

    // Containers.

    AcDbObjectId blockTableId() const;
    AcDbObjectId layerTableId() const;
    AcDbObjectId linetypeTableId() const;
    AcDbObjectId textStyleTableId() const;
    AcDbObjectId regAppTableId() const;
    AcDbObjectId dimStyleTableId() const;
    AcDbObjectId viewTableId() const;
    AcDbObjectId viewportTableId() const;
    AcDbObjectId UCSTableId() const;
    AcDbObjectId namedObjectsDictionaryId() const;
    AcDbObjectId groupDictionaryId() const;
    AcDbObjectId layoutDictionaryId() const;
    AcDbObjectId mLStyleDictionaryId() const;
    Acad::ErrorStatus getMLStyleDictionary(AcDbDictionary*& dictionary, AcDb::OpenMode mode = AcDb::kForRead);
    Acad::ErrorStatus getGroupDictionary(AcDbDictionary*& dictionary, AcDb::OpenMode mode = AcDb::kForRead);
    /// The linetype of a linetype file; as acdbLoadLineTypeFile.
    Acad::ErrorStatus loadLineTypeFile(const ACHAR* linetypeName, const ACHAR* fileName);
    template <class Table>
    Acad::ErrorStatus getSymbolTable(Table*& table, AcDb::OpenMode mode = AcDb::kForRead) const;
    Acad::ErrorStatus getBlockTable(AcDbBlockTable*& table, AcDb::OpenMode mode = AcDb::kForRead) const {
        return getSymbolTable(table, mode);
    }
    Acad::ErrorStatus getNamedObjectsDictionary(AcDbDictionary*& dictionary,
                                                AcDb::OpenMode mode = AcDb::kForRead) const;
    AcDbObjectId modelSpaceId() const;
    AcDbObjectId paperSpaceId() const;
    /// The space that drawing goes to: in a layout the sheet, or the model space while one of the layout's
    /// viewports is active.
    AcDbObjectId currentSpaceId() const;
    /// The active viewport of the current layout; null on the sheet and in the model tab.
    AcDbObjectId activeViewportId() const;
    /// Null: back to the sheet. eInvalidInput for what is no viewport of the current layout that is on.
    Acad::ErrorStatus setActiveViewport(AcDbObjectId viewport);
    AcDbObjectId layerZero() const;
    AcDbObjectId continuousLinetype() const;
    AcDbObjectId byLayerLinetype() const;
    AcDbObjectId byBlockLinetype() const;
    AcDbObjectId standardTextStyle() const;

    // Header variables: the named ones below are short for variable().

    host::HeaderValue variable(host::HeaderIndex index) const;
    /// Recorded for undo; eOutOfRange and eInvalidInput leave the value as it was.
    Acad::ErrorStatus setVariable(host::HeaderIndex index, const host::HeaderValue& value);

    AcDbObjectId clayer() const;
    Acad::ErrorStatus setClayer(AcDbObjectId layer);
    AcDbObjectId celtype() const;
    Acad::ErrorStatus setCeltype(AcDbObjectId linetype);
    AcDbObjectId textstyle() const;
    Acad::ErrorStatus setTextstyle(AcDbObjectId style);
    AcDbObjectId dimstyle() const;
    /// Makes the style current; its values stay as they are until setDimstyleData.
    Acad::ErrorStatus setDimstyle(AcDbObjectId style);
    /// Makes the style's values those of new dimensions.
    Acad::ErrorStatus setDimstyleData(AcDbObjectId style);
    AcCmColor cecolor() const;
    Acad::ErrorStatus setCecolor(const AcCmColor& color);
    AcDb::LineWeight celweight() const;
    Acad::ErrorStatus setCelweight(AcDb::LineWeight weight);
    double ltscale() const;
    Acad::ErrorStatus setLtscale(double scale);
    double celtscale() const;
    Acad::ErrorStatus setCeltscale(double scale);
    double textsize() const;
    Acad::ErrorStatus setTextsize(double size);
    double plinewid() const;
    Acad::ErrorStatus setPlinewid(double width);
    bool plinegen() const;
    Acad::ErrorStatus setPlinegen(bool on);
    bool tilemode() const;
    Acad::ErrorStatus setTilemode(bool on);
    bool orthomode() const;
    Acad::ErrorStatus setOrthomode(bool on);
    Adesk::Int16 lunits() const;
    Acad::ErrorStatus setLunits(Adesk::Int16 units);
    Adesk::Int16 luprec() const;
    Acad::ErrorStatus setLuprec(Adesk::Int16 digits);
    Adesk::Int16 aunits() const;
    Acad::ErrorStatus setAunits(Adesk::Int16 units);
    Adesk::Int16 auprec() const;
    Acad::ErrorStatus setAuprec(Adesk::Int16 digits);
    double angbase() const;
    bool angdir() const;
    Adesk::Int16 insunits() const;
    AcGePoint3d insbase() const;
    Acad::ErrorStatus setInsbase(const AcGePoint3d& point);
    AcGePoint3d ucsorg() const;
    AcGeVector3d ucsxdir() const;
    AcGeVector3d ucsydir() const;
    void setUcs(const AcGePoint3d& origin, const AcGeVector3d& x, const AcGeVector3d& y);
    AcGePoint3d extmin() const;
    AcGePoint3d extmax() const;
    /// Recomputes EXTMIN and EXTMAX from what is drawn in model space. Not recorded for undo.
    Acad::ErrorStatus updateExt(bool exact = true);
    /// The same when the drawing changed since they were last computed (or read from a file).
    void keepExtents();

    // Cloning.

    /// Copies objects within this database below the new owner, with what they own. Insides of the copies
    /// refer to the copies.
    Acad::ErrorStatus deepCloneObjects(const AcDbObjectIdArray& objects, const AcDbObjectId& owner,
                                       AcDbIdMapping& mapping, bool deferTranslation = false);
    /// Copies objects from another database below an owner of this one, with all that they need (layers,
    /// styles, blocks). Records that exist here by name are used or replaced as `duplicates` says.
    Acad::ErrorStatus wblockCloneObjects(const AcDbObjectIdArray& objects, const AcDbObjectId& owner,
                                         AcDbIdMapping& mapping, AcDb::DuplicateRecordCloning duplicates,
                                         bool deferTranslation = false);
    /// Makes the model space of `source` a block of this drawing. Definitions of this drawing win.
    Acad::ErrorStatus insert(AcDbObjectId& block, const ACHAR* blockName, AcDbDatabase* source,
                             bool preserveSource = true);
    /// Puts the model space of `source` into this model space under a transform.
    Acad::ErrorStatus insert(const AcGeMatrix3d& transform, AcDbDatabase* source, bool preserveSource = true);
    /// A new drawing of everything, of a block, or of some entities. Owned by the caller.
    Acad::ErrorStatus wblock(AcDbDatabase*& output);
    Acad::ErrorStatus wblock(AcDbDatabase*& output, AcDbObjectId block);
    Acad::ErrorStatus wblock(AcDbDatabase*& output, const AcDbObjectIdArray& entities,
                             const AcGePoint3d& base);
    /// Takes from the list what something else still refers to.
    Acad::ErrorStatus purge(AcDbObjectIdArray& ids);

    // Files. Implemented by formats; the format goes by the extension.

    Acad::ErrorStatus readDwgFile(const ACHAR* fileName, int shareMode = 0, bool allowConversion = false,
                                  const ACHAR* password = nullptr);
    Acad::ErrorStatus saveAs(const ACHAR* fileName, bool backup = true);
    Acad::ErrorStatus dxfIn(const ACHAR* fileName, const ACHAR* logFile = nullptr);
    Acad::ErrorStatus dxfOut(const ACHAR* fileName, int precision = 16,
                             AcDb::AcDbDwgVersion version = AcDb::kDHL_CURRENT);
    Acad::ErrorStatus getFilename(const ACHAR*& name) const;
    void setFilename(const std::wstring& name);

    // Reactors, undo, transactions.

    Acad::ErrorStatus addReactor(AcDbDatabaseReactor* reactor) const;
    Acad::ErrorStatus removeReactor(AcDbDatabaseReactor* reactor) const;
    void disableUndoRecording(bool disable);
    bool undoRecording() const;
    AcDbTransactionManager* transactionManager() const;
    host::UndoLog& undoLog() const;
    host::DatabaseImpl& impl() const { return *mImpl; }

private:
    std::unique_ptr<host::DatabaseImpl> mImpl;
};

namespace host {

/// What readers and the insides of the database need beyond the interface.
class DatabaseImpl {
public:
    explicit DatabaseImpl(AcDbDatabase& database);
    ~DatabaseImpl();

    /// The stub of a handle, made when there is none yet. Constant time for handles given out in order.
    AcDbStub* stubFor(Adesk::UInt64 handle);
    AcDbStub* findStub(Adesk::UInt64 handle) const;
    /// A stub with the next free handle.
    AcDbStub* newStub();
    /// Makes the object a resident with the given stub (from stubFor or newStub), closed, without undo and
    /// notification. The database owns the object from now on.
    void adopt(AcDbStub* stub, AcDbObject* object, AcDbStub* owner);
    /// Replaces the object of a stub (a proxy that came alive, or the reverse); returns the old one, which
    /// the caller owns. Extras (extended data, reactors, extension dictionary) move along.
    AcDbObject* replaceObject(AcDbStub* stub, AcDbObject* object, bool keepExtras);
    /// Calls for every stub that ever was, in order of handles.
    void forEachStub(const std::function<void(AcDbStub&)>& visit) const;
    std::size_t stubCount() const;
    void reserve(std::size_t objects);

    /// Ids of the well-known containers; set by a reader or by buildDefault.
    struct Containers {
        AcDbObjectId blockTable, layerTable, linetypeTable, textStyleTable, regAppTable, dimStyleTable,
            viewTable, viewportTable, ucsTable, namedObjects, groups, layouts, mlineStyles, modelSpace,
            paperSpace, layerZero, continuous, byLayer, byBlock, standardTextStyle;
    };
    Containers containers;
    /// The plot style "Normal", which layers name when they have no other.
    AcDbObjectId normalPlotStyle() const;
    /// Adds every table, record and dictionary that a complete drawing has and this one lacks: for new
    /// drawings and for what old or damaged files leave out. Says what it added through `report`.
    void completeDrawing(const std::function<void(const std::wstring&)>& report = {});

    Adesk::UInt64 nextHandle() const;
    void raiseNextHandle(Adesk::UInt64 handle);

    std::vector<HeaderValue> header; ///< by HeaderIndex
    /// Variables of a file that the table does not know, in order: group 9 and what follows.
    GroupList unknownHeader;
    /// Sections of a file that the host does not read (name of the section first, then all groups).
    std::vector<GroupList> unknownSections;
    /// CLASSES as the file had them: what stands behind a class number of a proxy.
    struct FileClass {
        AcString dxfName, className, appName;
        Adesk::Int32 proxyFlags = 0;
        Adesk::Int32 instances = 0;
        bool wasProxy = false;
        bool isEntity = false;
    };
    std::vector<FileClass> classes;
    /// The number by which proxies name their class: 500 for the first of `classes`. Added when missing.
    int classNumber(const ProxyData& proxy);
    AcDb::AcDbDwgVersion originalVersion = AcDb::kDHL_CURRENT;
    std::string codePage = "ANSI_936";
    std::wstring fileName;

    /// What CECOLOR's index stands for when it was set as a true colour; files hold the index only.
    std::optional<AcCmEntityColor> currentTrueColor;

    /// Grows whenever an object may have changed: what was computed before is then out of date.
    Adesk::UInt64 changeStamp = 1;

    UndoLog undo;
    SpatialIndexes places; ///< where entities lie
    std::vector<AcDbDatabaseReactor*> reactors;
    std::unique_ptr<AcDbTransactionManager> transactions;

    /// EXTMIN and EXTMAX hold for the drawing as it is (it was just read).
    void extentsHold() { mExtentsAt = places.generation(); }

    void notifyAppended(const AcDbObject& object);
    void notifyModified(const AcDbObject& object);
    void notifyErased(const AcDbObject& object, bool erased);

private:
    void initializeHeader();

    friend class ::AcDbDatabase;

    AcDbDatabase& mDatabase;
    Adesk::UInt64 mExtentsAt = 0; ///< generation for which EXTMIN and EXTMAX hold
    struct Handles;
    std::unique_ptr<Handles> mHandles;
};

/// Gives the drawing's only dimension style the variables of the header, as files without styles mean them.
void setStandardDimVariables(AcDbDimStyleTableRecord& style);

/// Gives a block record its BLOCK and ENDBLK entities when it has none.
void ensureBlockEnds(AcDbBlockTableRecord& block);

/// All open databases, for class changes and shutdown.
const std::vector<AcDbDatabase*>& openDatabases();

/// Registers the classes of the database area. Once, after initializeRuntime.
void initializeDatabaseClasses();
void initializeSymbolTableClasses();
void initializeDictionaryClasses();

/// Turns proxies whose class is registered into objects of it, in one database; returns how many.
int reviveProxies(AcDbDatabase& database);
/// Turns objects of a class that goes away into proxies, in all databases.
void makeProxies(AcRxClass* descriptor);

/// A linetype definition file's reader is hung in by formats, so that acdbLoadLineTypeFile can be here.
using LinetypeLoader =
    std::function<Acad::ErrorStatus(const ACHAR* name, const ACHAR* file, AcDbDatabase& database)>;
LinetypeLoader& linetypeLoader();
/// How a drawing is written: the release of the file, and in text or binary where there are both.
struct SaveFormat {
    AcDb::AcDbDwgVersion version = AcDb::kDHL_CURRENT;
    bool binary = false;
    bool backup = true; ///< the old file stays as NAME.bak
};

/// Readers and writers of drawing files, hung in by formats. On success the message has a line for each thing
/// that did not come over as it stood, bounded; else one line on what went wrong.
struct FileFormats {
    std::function<Acad::ErrorStatus(AcDbDatabase&, const std::wstring& path, std::wstring& message)> read;
    std::function<Acad::ErrorStatus(AcDbDatabase&, const std::wstring& path, const SaveFormat& format,
                                    std::wstring& message)>
        write;
};
FileFormats& fileFormats();

} // namespace host

Acad::ErrorStatus acdbLoadLineTypeFile(const ACHAR* linetypeName, const ACHAR* fileName,
                                       AcDbDatabase* database);

/// The application that holds databases: what the database asks of its surroundings.
class AcDbHostApplicationServices : public AcRxObject {
    ACRX_DECLARE_MEMBERS(AcDbHostApplicationServices);

public:
    AcDbDatabase* workingDatabase() const { return mWorking; }
    void setWorkingDatabase(AcDbDatabase* database) { mWorking = database; }
    virtual Acad::ErrorStatus findFile(ACHAR* path, int maximum, const ACHAR* name,
                                       AcDbDatabase* database = nullptr, int hint = 0);
    virtual bool userBreak(bool = true) const { return false; }
    /// Never null.
    AcDbLayoutManager* layoutManager() const;

private:
    AcDbDatabase* mWorking = nullptr;
};
AcDbHostApplicationServices* acdbHostApplicationServices();
void acdbSetHostApplicationServices(AcDbHostApplicationServices* services);

template <class Table>
Acad::ErrorStatus AcDbDatabase::getSymbolTable(Table*& table, AcDb::OpenMode mode) const {
    if constexpr (std::is_same_v<Table, AcDbBlockTable>) {
        return acdbOpenObject(table, blockTableId(), mode);
    } else if constexpr (std::is_same_v<Table, AcDbLayerTable>) {
        return acdbOpenObject(table, layerTableId(), mode);
    } else if constexpr (std::is_same_v<Table, AcDbLinetypeTable>) {
        return acdbOpenObject(table, linetypeTableId(), mode);
    } else if constexpr (std::is_same_v<Table, AcDbTextStyleTable>) {
        return acdbOpenObject(table, textStyleTableId(), mode);
    } else if constexpr (std::is_same_v<Table, AcDbRegAppTable>) {
        return acdbOpenObject(table, regAppTableId(), mode);
    } else if constexpr (std::is_same_v<Table, AcDbDimStyleTable>) {
        return acdbOpenObject(table, dimStyleTableId(), mode);
    } else if constexpr (std::is_same_v<Table, AcDbViewTable>) {
        return acdbOpenObject(table, viewTableId(), mode);
    } else if constexpr (std::is_same_v<Table, AcDbViewportTable>) {
        return acdbOpenObject(table, viewportTableId(), mode);
    } else {
        static_assert(std::is_same_v<Table, AcDbUCSTable>);
        return acdbOpenObject(table, UCSTableId(), mode);
    }
}
