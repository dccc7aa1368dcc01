// The upper floors of the DXF reader: sections, tables, blocks, entities and objects into a database. One
// pass; references are ids from the start, and what they lack at the end is told.
#pragma once

#include "host/formats/dxf/filefiler.h"
#include "host/formats/dxf/recordclasses.h"
#include "host/formats/formats.h"

#include <memory>
#include <optional>
#include <string>
#include <unordered_set>
#include <vector>

namespace host {
class AttributeText;
}

namespace host::dxf {

class Reader {
public:
    Reader(AcDbDatabase& database, GroupScanner& scanner, ReadReport& report);

    /// Throws FormatError when the file ends reading.
    void read();

private:
    using Done = ReadEntry::Done;

    // Sections (reader.cpp).

    void readSection();
    void readHeader();
    void readHeaderVariable(const std::string& name);
    void takeVersion(std::string_view text);
    void readClasses();
    void readClass();
    void readObjects();
    void readUnknownSection(std::string_view name);
    /// Tables that stand behind the sections that need them are read first.
    void findTablesAhead();
    /// The next record of a section; false at its end. A file that ends here is broken.
    bool nextInSection();
    void tellProgress();

    // Tables (tables.cpp).

    void readTables();
    void readTable(std::string_view name);
    void readTableRecords(AcDbSymbolTable& table, AcRxClass* recordClass, std::string_view recordName);
    void keepTable(std::string_view name);
    /// Tables the file does not have are made, with the records that others name without asking.
    void completeTables();
    /// The record of a name in an entity; one that no table has is added.
    AcDbStub* symbol(SymbolKind kind, std::string_view name);
    AcDbStub* addSymbol(SymbolKind kind, const AcString& name);
    /// Adds a record of the class under the name to a table.
    AcDbSymbolTableRecord* addRecord(AcDbObjectId table, const ACHAR* recordClass, const AcString& name);
    void noteRecord(AcDbSymbolTableRecord& record);

    // Blocks and entities (entities.cpp).

    struct Sequence {
        AcDbEntity* parent = nullptr;
        bool leftOut = false;               ///< the parent was left out; its parts go with it
        AttributeText* attribute = nullptr; ///< the part before
    };
    void readBlocks();
    void readBlock();
    void readBlockEnd(AcDbBlockTableRecord& block);
    AcDbBlockTableRecord* blockOf(AcDbStub* owner, const AcString& name);
    AcDbBlockTableRecord* blockNamed(const AcString& name);
    void readEntities();
    /// One entity into the block, or where its owner says; keeps the sequence of parts going.
    void readEntity(AcDbBlockTableRecord* block, Sequence& sequence);
    void readPart(Sequence& sequence);
    void readLines(AttributeText& attribute);
    AcDbBlockTableRecord* spaceOf(AcDbBlockTableRecord* block);
    bool isSpace(const AcDbBlockTableRecord& block) const;
    bool takeForModelSpace(AcDbBlockTableRecord& block);

    // Records to objects (records.cpp).

    /// Reads the record with the class; when that fails, keeps its groups. Null when it was left out.
    std::unique_ptr<AcDbObject> readObject(AcRxClass* recordClass, bool isEntity);
    std::unique_ptr<AcDbObject> readKept(bool isEntity);
    /// Makes it a resident under the record's handle, or under a new one.
    AcDbStub* adopt(std::unique_ptr<AcDbObject> object, AcDbStub* owner);
    /// A stub for what has no handle in the file; never one that the file uses.
    AcDbStub* freshStub();
    void reportFault(Done done);
    void report(std::wstring what, Done done);
    void report(std::wstring what, Done done, std::size_t line, Adesk::UInt64 handle);

    // What is done when everything is there (finish.cpp).

    void finish();
    void findContainers();
    void resolveHeader();
    bool isLost(const AcDbStub& stub) const;
    void inferOwners();
    void takeByDictionaries();
    void breakOwnerCycles();
    void setOwner(AcDbStub& stub, AcDbStub* owner);
    void addMissingApplications();
    void reportDangling();

    AcDbDatabase& mDatabase;
    DatabaseImpl& mImpl;
    GroupScanner& mScanner;
    FileFiler mFiler;
    ReadReport& mReport;
    RecordClasses mClasses;

    std::optional<FileFiler::Place> mTablesRead; ///< the TABLES section that was read ahead
    std::size_t mRecordCount = 0;
    bool mHasTables = false;
    bool mHasHeader = false;
    bool mEnded = false;        ///< the EOF record was read
    bool mHandlesKnown = false; ///< the next free handle is above all of the file
    bool mHasProxies = false;
    std::vector<AcDbStub*> mObjects;                                     ///< what the objects section had
    bool mMadeModelSpace = false;                                        ///< the file's tables have none
    AcDbDimStyleTableRecord* mMadeDimStyle = nullptr;                    ///< the file's tables have none
    std::vector<std::pair<HeaderIndex, AcString>> mHeaderNames;          ///< variables that name records
    std::unordered_map<AcDbStub*, std::size_t> mBlocksWithoutDefinition; ///< with the line that names them
    AcDbStub* mLastOwner = nullptr;
    AcDbBlockTableRecord* mLastBlock = nullptr;
};

} // namespace host::dxf
