// Symbol tables and their records: layers, linetypes, text styles, blocks and the rest.
#pragma once

#include "host/db/dbentity.h"
#include "host/db/dimvariables.h"
#include "host/rx/text.h"

#include <memory>
#include <unordered_map>

class AcDbSymbolTable;
class AcDbSymbolTableIterator;

/// A named record of a symbol table. Names compare without regard to case.
class AcDbSymbolTableRecord : public AcDbObject {
    ACRX_DECLARE_MEMBERS(AcDbSymbolTableRecord);

public:
    Acad::ErrorStatus getName(ACHAR*& name) const; ///< a copy; freed with acutDelString
    Acad::ErrorStatus getName(const ACHAR*& name) const;
    Acad::ErrorStatus getName(AcString& name) const;
    const AcString& name() const { return mName; }
    /// eDuplicateRecordName when the table has the name; eInvalidInput for forbidden characters.
    virtual Acad::ErrorStatus setName(const ACHAR* name);
    bool isDependent() const { return (mFlags & 16) != 0; }
    bool isResolved() const { return (mFlags & 32) != 0; }
    Adesk::Int16 standardFlags() const { return mFlags; }

    Acad::ErrorStatus dwgInFields(AcDbDwgFiler* filer) override;
    Acad::ErrorStatus dwgOutFields(AcDbDwgFiler* filer) const override;
    Acad::ErrorStatus dxfInFields(AcDbDxfFiler* filer) override;
    Acad::ErrorStatus dxfOutFields(AcDbDxfFiler* filer) const override;

protected:
    /// One group of the record's own subclass; false when it is not known.
    virtual bool takeRecordGroup(AcDbDxfFiler*, const host::DxfGroup&) { return false; }
    /// Marker of the record's own subclass.
    virtual std::string_view recordSubclass() const = 0;
    virtual void writeRecordGroups(AcDbDxfFiler*) const {}
    virtual Adesk::Int16 flagsForFile() const { return mFlags; }

    AcString mName;
    Adesk::Int16 mFlags = 0; ///< group 70 as in files
    friend class AcDbSymbolTable;
};

/// Owner of records, found by name in constant time; iteration is in the order of adding.
class AcDbSymbolTable : public AcDbObject {
    ACRX_DECLARE_MEMBERS(AcDbSymbolTable);

public:
    Acad::ErrorStatus getAt(const ACHAR* name, AcDbObjectId& id, bool getErased = false) const;
    Acad::ErrorStatus getAt(const ACHAR* name, AcDbSymbolTableRecord*& record, AcDb::OpenMode mode,
                            bool openErased = false) const;
    bool has(const ACHAR* name) const;
    bool has(AcDbObjectId id) const;
    Acad::ErrorStatus newIterator(AcDbSymbolTableIterator*& iterator, bool atBeginning = true,
                                  bool skipDeleted = true) const;
    Acad::ErrorStatus add(AcDbSymbolTableRecord* record);
    Acad::ErrorStatus add(AcDbObjectId& id, AcDbSymbolTableRecord* record);
    /// Ids in order, erased ones included.
    const std::vector<AcDbStub*>& records() const { return mRecords; }

    Acad::ErrorStatus dwgInFields(AcDbDwgFiler* filer) override;
    Acad::ErrorStatus dwgOutFields(AcDbDwgFiler* filer) const override;
    Acad::ErrorStatus dxfInFields(AcDbDxfFiler* filer) override;
    Acad::ErrorStatus dxfOutFields(AcDbDxfFiler* filer) const override;
    /// Keeps the index true when a record's name changes.
    void renamed(AcDbStub* record, const AcString& from, const AcString& to);
    /// For readers: links a record that already is in the database.
    void adopt(AcDbStub* record);

private:
    std::vector<AcDbStub*> mRecords;
    std::unordered_map<std::wstring, AcDbStub*, host::NoCaseHash, host::NoCaseEqual>
        mByName; ///< the latest record of a name
};

class AcDbSymbolTableIterator {
public:
    AcDbSymbolTableIterator(const AcDbSymbolTable& table, bool skipDeleted);
    void start(bool atBeginning = true, bool skipDeleted = true);
    bool done() const;
    void step(bool forward = true, bool skipDeleted = true);
    Acad::ErrorStatus getRecordId(AcDbObjectId& id) const;
    Acad::ErrorStatus getRecord(AcDbSymbolTableRecord*& record, AcDb::OpenMode mode = AcDb::kForRead,
                                bool openErased = false) const;
    Acad::ErrorStatus seek(AcDbObjectId id);

private:
    bool skipped(std::size_t index) const;
    const AcDbSymbolTable& mTable;
    std::ptrdiff_t mIndex = 0;
    bool mSkipDeleted;
};
using AcDbLayerTableIterator = AcDbSymbolTableIterator;
using AcDbLinetypeTableIterator = AcDbSymbolTableIterator;
using AcDbTextStyleTableIterator = AcDbSymbolTableIterator;
using AcDbBlockTableIterator = AcDbSymbolTableIterator;
using AcDbRegAppTableIterator = AcDbSymbolTableIterator;
using AcDbDimStyleTableIterator = AcDbSymbolTableIterator;

/// A table of one kind of record: typed getAt and add.
template <class Record>
class AcDbSymbolTableOf : public AcDbSymbolTable {
public:
    using AcDbSymbolTable::add;
    using AcDbSymbolTable::getAt;
    Acad::ErrorStatus getAt(const ACHAR* name, Record*& record, AcDb::OpenMode mode,
                            bool openErased = false) const {
        AcDbSymbolTableRecord* any = nullptr;
        const Acad::ErrorStatus status = AcDbSymbolTable::getAt(name, any, mode, openErased);
        record = static_cast<Record*>(any);
        return status;
    }
    Acad::ErrorStatus newIterator(AcDbSymbolTableIterator*& iterator, bool atBeginning = true,
                                  bool skipDeleted = true) const {
        return AcDbSymbolTable::newIterator(iterator, atBeginning, skipDeleted);
    }
};

class AcDbLayerTableRecord : public AcDbSymbolTableRecord {
    ACRX_DECLARE_MEMBERS(AcDbLayerTableRecord);

public:
    AcDbLayerTableRecord();
    bool isFrozen() const { return (mFlags & 1) != 0; }
    Acad::ErrorStatus setIsFrozen(bool frozen);
    bool isOff() const { return mOff; }
    void setIsOff(bool off);
    bool isLocked() const { return (mFlags & 4) != 0; }
    void setIsLocked(bool locked);
    bool VPDFLT() const { return (mFlags & 2) != 0; }
    void setVPDFLT(bool frozen);
    bool isPlottable() const { return mPlottable; }
    Acad::ErrorStatus setIsPlottable(bool plottable);
    bool isHidden() const { return false; }
    bool isInUse() const { return true; }
    AcCmColor color() const { return AcCmColor(mColor); }
    AcCmEntityColor entityColor() const { return mColor; }
    void setColor(const AcCmColor& color);
    AcDbObjectId linetypeObjectId() const { return mLinetype; }
    Acad::ErrorStatus setLinetypeObjectId(AcDbObjectId linetype);
    AcDb::LineWeight lineWeight() const { return static_cast<AcDb::LineWeight>(mLineWeight); }
    Acad::ErrorStatus setLineWeight(AcDb::LineWeight weight);

    Acad::ErrorStatus dwgInFields(AcDbDwgFiler* filer) override;
    Acad::ErrorStatus dwgOutFields(AcDbDwgFiler* filer) const override;

protected:
    std::string_view recordSubclass() const override { return "AcDbLayerTableRecord"; }
    bool takeRecordGroup(AcDbDxfFiler* filer, const host::DxfGroup& group) override;
    void writeRecordGroups(AcDbDxfFiler* filer) const override;

private:
    AcDbObjectId mLinetype;
    AcDbObjectId mPlotStyle;
    AcDbObjectId mMaterial;
    AcCmEntityColor mColor;
    Adesk::Int16 mLineWeight = -3;
    bool mOff = false;
    bool mPlottable = true;
};

class AcDbLinetypeTableRecord : public AcDbSymbolTableRecord {
    ACRX_DECLARE_MEMBERS(AcDbLinetypeTableRecord);

public:
    /// One element: pen down for a positive length, up for a negative one, a dot for zero; with an optional
    /// text or shape set into the line after it.
    struct Dash {
        double length = 0.0;
        AcDbObjectId style;
        Adesk::Int16 shapeNumber = 0;
        AcString text;
        bool hasText = false;
        bool hasShape = false;
        bool absoluteRotation = false;
        bool uprightRotation = false; ///< turned where it would stand on its head
        double scale = 1.0;
        double rotation = 0.0; ///< radians
        AcGeVector2d offset;
    };

    const ACHAR* asciiDescription() const { return mComments.kwszPtr(); }
    Acad::ErrorStatus comments(AcString& text) const;
    Acad::ErrorStatus setComments(const ACHAR* text);
    double patternLength() const { return mPatternLength; }
    Acad::ErrorStatus setPatternLength(double length);
    int numDashes() const { return static_cast<int>(mDashes.size()); }
    Acad::ErrorStatus setNumDashes(int count);
    double dashLengthAt(int index) const { return mDashes[static_cast<std::size_t>(index)].length; }
    Acad::ErrorStatus setDashLengthAt(int index, double length);
    const std::vector<Dash>& dashes() const { return mDashes; }
    void setDashes(std::vector<Dash> dashes);
    bool isScaledToFit() const { return mScaledToFit; }
    void setIsScaledToFit(bool scaled);

    Acad::ErrorStatus dwgInFields(AcDbDwgFiler* filer) override;
    Acad::ErrorStatus dwgOutFields(AcDbDwgFiler* filer) const override;

protected:
    std::string_view recordSubclass() const override { return "AcDbLinetypeTableRecord"; }
    bool takeRecordGroup(AcDbDxfFiler* filer, const host::DxfGroup& group) override;
    void writeRecordGroups(AcDbDxfFiler* filer) const override;

private:
    AcString mComments;
    double mPatternLength = 0.0;
    std::vector<Dash> mDashes;
    bool mScaledToFit = false;
};

class AcDbTextStyleTableRecord : public AcDbSymbolTableRecord {
    ACRX_DECLARE_MEMBERS(AcDbTextStyleTableRecord);

public:
    Acad::ErrorStatus fileName(AcString& name) const;
    const AcString& fontFileName() const { return mFileName; }
    Acad::ErrorStatus setFileName(const ACHAR* name);
    Acad::ErrorStatus bigFontFileName(AcString& name) const;
    const AcString& bigFontName() const { return mBigFontFileName; }
    Acad::ErrorStatus setBigFontFileName(const ACHAR* name);
    Acad::ErrorStatus font(AcString& typeface, bool& bold, bool& italic, int& charset,
                           int& pitchAndFamily) const;
    Acad::ErrorStatus setFont(const ACHAR* typeface, bool bold, bool italic, int charset, int pitchAndFamily);
    double textSize() const { return mTextSize; }
    Acad::ErrorStatus setTextSize(double size);
    double priorSize() const { return mPriorSize; }
    Acad::ErrorStatus setPriorSize(double size);
    double xScale() const { return mXScale; }
    Acad::ErrorStatus setXScale(double scale);
    double obliquingAngle() const { return mObliquingAngle; } ///< radians
    Acad::ErrorStatus setObliquingAngle(double angle);
    Adesk::UInt8 flagBits() const {
        return static_cast<Adesk::UInt8>(mGeneration);
    } ///< 2 backwards, 4 upside down
    Acad::ErrorStatus setFlagBits(Adesk::UInt8 flags);
    bool isVertical() const { return (mFlags & 4) != 0; }
    Acad::ErrorStatus setIsVertical(bool vertical);
    bool isShapeFile() const { return (mFlags & 1) != 0; }
    Acad::ErrorStatus setIsShapeFile(bool shape);
    /// The style as the text engine takes it.
    void toGiTextStyle(AcGiTextStyle& style) const;

    Acad::ErrorStatus dwgInFields(AcDbDwgFiler* filer) override;
    Acad::ErrorStatus dwgOutFields(AcDbDwgFiler* filer) const override;

protected:
    std::string_view recordSubclass() const override { return "AcDbTextStyleTableRecord"; }
    bool takeRecordGroup(AcDbDxfFiler* filer, const host::DxfGroup& group) override;
    void writeRecordGroups(AcDbDxfFiler* filer) const override;

private:
    void setTypefaceData(const AcString& typeface, Adesk::Int32 flags);

    AcString mFileName;
    AcString mBigFontFileName;
    double mTextSize = 0.0;
    double mPriorSize = 2.5;
    double mXScale = 1.0;
    double mObliquingAngle = 0.0;
    Adesk::Int16 mGeneration = 0;
};

/// The style of a text style record, for measuring and drawing.
Acad::ErrorStatus fromAcDbTextStyle(AcGiTextStyle& style, const AcDbObjectId& record);

class AcDbRegAppTableRecord : public AcDbSymbolTableRecord {
    ACRX_DECLARE_MEMBERS(AcDbRegAppTableRecord);

protected:
    std::string_view recordSubclass() const override { return "AcDbRegAppTableRecord"; }
};

/// A dimension style: values of all dimension variables.
class AcDbDimStyleTableRecord : public AcDbSymbolTableRecord,
                                public host::DimVariableAccess<AcDbDimStyleTableRecord> {
    ACRX_DECLARE_MEMBERS(AcDbDimStyleTableRecord);

public:
    const host::DimVariables& dimVariables() const { return mVariables; }
    /// Takes one variable's value.
    Acad::ErrorStatus setDimVariable(const host::DimVariables& values, std::size_t index);
    /// Takes all values. Dimensions of the style are made anew when the record is closed.
    Acad::ErrorStatus setDimVariables(const host::DimVariables& values);

    Acad::ErrorStatus dwgInFields(AcDbDwgFiler* filer) override;
    Acad::ErrorStatus dwgOutFields(AcDbDwgFiler* filer) const override;

protected:
    Acad::ErrorStatus subClose() override;
    bool takeRecordGroup(AcDbDxfFiler* filer, const host::DxfGroup& group) override;
    void writeRecordGroups(AcDbDxfFiler* filer) const override;
    std::string_view recordSubclass() const override { return "AcDbDimStyleTableRecord"; }

private:
    host::DimVariables mVariables;
    host::DimVariableSet mGiven; ///< what a file or a caller has set: written even where it is the default
    bool mChanged = false;
};

// Records whose fields the host so far only keeps.

class AcDbViewTableRecord : public AcDbSymbolTableRecord {
    ACRX_DECLARE_MEMBERS(AcDbViewTableRecord);

protected:
    std::string_view recordSubclass() const override { return "AcDbViewTableRecord"; }
};
class AcDbViewportTableRecord : public AcDbSymbolTableRecord {
    ACRX_DECLARE_MEMBERS(AcDbViewportTableRecord);

protected:
    std::string_view recordSubclass() const override { return "AcDbViewportTableRecord"; }
};
/// A named user coordinate system: origin and axes in world coordinates.
class AcDbUCSTableRecord : public AcDbSymbolTableRecord {
    ACRX_DECLARE_MEMBERS(AcDbUCSTableRecord);

public:
    AcGePoint3d origin() const { return mOrigin; }
    Acad::ErrorStatus setOrigin(const AcGePoint3d& origin);
    AcGeVector3d xAxis() const { return mXAxis; }
    AcGeVector3d yAxis() const { return mYAxis; }
    /// eInvalidInput for an axis without length.
    Acad::ErrorStatus setXAxis(const AcGeVector3d& axis);
    Acad::ErrorStatus setYAxis(const AcGeVector3d& axis);

    Acad::ErrorStatus dwgInFields(AcDbDwgFiler* filer) override;
    Acad::ErrorStatus dwgOutFields(AcDbDwgFiler* filer) const override;

protected:
    std::string_view recordSubclass() const override { return "AcDbUCSTableRecord"; }
    bool takeRecordGroup(AcDbDxfFiler* filer, const host::DxfGroup& group) override;
    void writeRecordGroups(AcDbDxfFiler* filer) const override;

private:
    AcGePoint3d mOrigin;
    AcGeVector3d mXAxis = AcGeVector3d::kXAxis;
    AcGeVector3d mYAxis = AcGeVector3d::kYAxis;
    double mElevation = 0.0;
    Adesk::Int16 mOrthographicType = 0; ///< group 79
};

class AcDbBlockTableRecordIterator;
class AcDbSortentsTable;

namespace host {
class BlockExtents;
}

/// A block: model space, a paper space layout, or a definition. Owns its entities in drawing order.
class AcDbBlockTableRecord : public AcDbSymbolTableRecord {
    ACRX_DECLARE_MEMBERS(AcDbBlockTableRecord);

public:
    AcDbBlockTableRecord();
    ~AcDbBlockTableRecord() override;
    /// eSelfReference for a reference of a block that holds this one.
    Acad::ErrorStatus appendAcDbEntity(AcDbEntity* entity);
    Acad::ErrorStatus appendAcDbEntity(AcDbObjectId& id, AcDbEntity* entity);
    Acad::ErrorStatus newIterator(AcDbBlockTableRecordIterator*& iterator, bool atBeginning = true,
                                  bool skipDeleted = true) const;
    /// Entities in order, erased ones included.
    const std::vector<AcDbStub*>& entities() const { return mEntities; }
    std::vector<AcDbStub*>& entitiesForReaders() { return mEntities; }

    AcGePoint3d origin() const { return mOrigin; }
    Acad::ErrorStatus setOrigin(const AcGePoint3d& origin);
    Acad::ErrorStatus comments(AcString& text) const;
    Acad::ErrorStatus setComments(const ACHAR* text);
    Acad::ErrorStatus pathName(AcString& path) const;
    Acad::ErrorStatus setPathName(const ACHAR* path);
    bool isAnonymous() const { return (mFlags & 1) != 0; }
    bool hasAttributeDefinitions() const;
    bool isFromExternalReference() const { return (mFlags & 4) != 0; }
    bool isFromOverlayReference() const { return (mFlags & 8) != 0; }
    AcDb::XrefStatus xrefStatus() const {
        return !isFromExternalReference() ? AcDb::kXrfNotAnXref
               : isResolved()             ? AcDb::kXrfResolved
                                          : AcDb::kXrfUnresolved;
    }
    bool isLayout() const { return !mLayout.isNull(); }
    AcDbObjectId getLayoutId() const { return mLayout; }
    Acad::ErrorStatus setLayoutId(AcDbObjectId layout);
    bool explodable() const { return mExplodable; }
    Acad::ErrorStatus setExplodable(bool explodable);
    Adesk::Int16 blockInsertUnits() const { return mInsertUnits; }
    Acad::ErrorStatus setBlockInsertUnits(Adesk::Int16 units);
    /// Block references of this record in the database. Costs a pass over all entities.
    Acad::ErrorStatus getBlockReferenceIds(AcDbObjectIdArray& ids, bool directOnly = true,
                                           bool forceValidity = false);
    AcDbObjectId blockBeginId() const { return mBlockBegin; }
    AcDbObjectId blockEndId() const { return mBlockEnd; }
    void setBlockBeginAndEnd(AcDbObjectId begin, AcDbObjectId end) {
        mBlockBegin = begin;
        mBlockEnd = end;
    }
    bool isModelSpace() const;
    bool isPaperSpace() const; ///< any layout but model space
    /// The table that orders the drawing of the entities; made when there is none and it is wanted.
    /// eKeyNotFound without one.
    Acad::ErrorStatus getSortentsTable(AcDbSortentsTable*& table, AcDb::OpenMode mode = AcDb::kForRead,
                                       bool createIfNecessary = false);
    /// What references of the block have measured of it.
    host::BlockExtents& measuredExtents() const;

    Acad::ErrorStatus dwgInFields(AcDbDwgFiler* filer) override;
    Acad::ErrorStatus dwgOutFields(AcDbDwgFiler* filer) const override;
    Acad::ErrorStatus dxfInFields(AcDbDxfFiler* filer) override;
    Acad::ErrorStatus dxfOutFields(AcDbDxfFiler* filer) const override;
    /// For the BLOCK record of a file, which holds what the table entry does not.
    void setBlockData(Adesk::Int16 flags, const AcGePoint3d& origin, AcString comments, AcString pathName);

protected:
    std::string_view recordSubclass() const override { return "AcDbBlockTableRecord"; }
    bool takeRecordGroup(AcDbDxfFiler* filer, const host::DxfGroup& group) override;
    void writeRecordGroups(AcDbDxfFiler* filer) const override;
    Acad::ErrorStatus subErase(bool erasing) override;
    /// Draws what a reference of the block shows; a layout draws all.
    bool subWorldDraw(AcGiWorldDraw* draw) override;
    Adesk::UInt32 subSetAttributes(AcGiDrawableTraits* traits) override;

private:
    friend class AcDbSymbolTable;
    void appendPending();

    std::vector<AcDbStub*> mEntities;
    std::vector<std::unique_ptr<AcDbEntity>> mPending; ///< appended before the record had a database
    AcDbObjectId mLayout;
    AcDbObjectId mBlockBegin;
    AcDbObjectId mBlockEnd;
    AcGePoint3d mOrigin;
    AcString mComments;
    AcString mPathName;
    Adesk::Int16 mInsertUnits = 0;
    bool mExplodable = true;
    bool mUniformScaling = false;
    mutable std::unique_ptr<host::BlockExtents> mMeasured;
};

class AcDbBlockTableRecordIterator {
public:
    AcDbBlockTableRecordIterator(const AcDbBlockTableRecord& block, bool atBeginning, bool skipDeleted);
    void start(bool atBeginning = true, bool skipDeleted = true);
    bool done() const {
        return mIndex < 0 || mIndex >= static_cast<std::ptrdiff_t>(mBlock.entities().size());
    }
    void step(bool forward = true, bool skipDeleted = true);
    Acad::ErrorStatus getEntityId(AcDbObjectId& id) const;
    Acad::ErrorStatus getEntity(AcDbEntity*& entity, AcDb::OpenMode mode = AcDb::kForRead,
                                bool openErased = false) const;
    Acad::ErrorStatus seek(AcDbObjectId id);

private:
    bool skipped() const;
    const AcDbBlockTableRecord& mBlock;
    std::ptrdiff_t mIndex = 0;
    bool mSkipDeleted;
};

/// The BLOCK and ENDBLK entities of a record; they carry a handle, a layer and perhaps extended data.
class AcDbBlockBegin : public AcDbEntity {
    ACRX_DECLARE_MEMBERS(AcDbBlockBegin);
};
class AcDbBlockEnd : public AcDbEntity {
    ACRX_DECLARE_MEMBERS(AcDbBlockEnd);
};

class AcDbBlockTable : public AcDbSymbolTableOf<AcDbBlockTableRecord> {
    ACRX_DECLARE_MEMBERS(AcDbBlockTable);
};
class AcDbLayerTable : public AcDbSymbolTableOf<AcDbLayerTableRecord> {
    ACRX_DECLARE_MEMBERS(AcDbLayerTable);
};
class AcDbLinetypeTable : public AcDbSymbolTableOf<AcDbLinetypeTableRecord> {
    ACRX_DECLARE_MEMBERS(AcDbLinetypeTable);
};
class AcDbTextStyleTable : public AcDbSymbolTableOf<AcDbTextStyleTableRecord> {
    ACRX_DECLARE_MEMBERS(AcDbTextStyleTable);
};
class AcDbRegAppTable : public AcDbSymbolTableOf<AcDbRegAppTableRecord> {
    ACRX_DECLARE_MEMBERS(AcDbRegAppTable);
};
class AcDbDimStyleTable : public AcDbSymbolTableOf<AcDbDimStyleTableRecord> {
    ACRX_DECLARE_MEMBERS(AcDbDimStyleTable);
};
class AcDbViewTable : public AcDbSymbolTableOf<AcDbViewTableRecord> {
    ACRX_DECLARE_MEMBERS(AcDbViewTable);
};
class AcDbViewportTable : public AcDbSymbolTableOf<AcDbViewportTableRecord> {
    ACRX_DECLARE_MEMBERS(AcDbViewportTable);
};
class AcDbUCSTable : public AcDbSymbolTableOf<AcDbUCSTableRecord> {
    ACRX_DECLARE_MEMBERS(AcDbUCSTable);
};

#define ACDB_MODEL_SPACE L"*Model_Space"
#define ACDB_PAPER_SPACE L"*Paper_Space"
