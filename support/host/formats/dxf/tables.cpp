// Symbol tables of a DXF file, whatever order they come in, and the records that are named without being
// there.
#include "host/formats/dxf/reader.h"
#include "host/rx/format.h"
#include "host/rx/text.h"

#include <algorithm>
#include <iterator>

namespace host::dxf {
namespace {

struct TableKind {
    std::string_view name; ///< of the table and of its records
    const wchar_t* tableClass;
    const wchar_t* recordClass;
    AcDbObjectId DatabaseImpl::Containers::*container;
};

/// In the order they are read: linetypes name text styles, layers linetypes, dimension styles all of them.
constexpr TableKind tableKinds[] = {
    {"APPID", L"AcDbRegAppTable", L"AcDbRegAppTableRecord", &DatabaseImpl::Containers::regAppTable},
    {"STYLE", L"AcDbTextStyleTable", L"AcDbTextStyleTableRecord", &DatabaseImpl::Containers::textStyleTable},
    {"LTYPE", L"AcDbLinetypeTable", L"AcDbLinetypeTableRecord", &DatabaseImpl::Containers::linetypeTable},
    {"LAYER", L"AcDbLayerTable", L"AcDbLayerTableRecord", &DatabaseImpl::Containers::layerTable},
    {"BLOCK_RECORD", L"AcDbBlockTable", L"AcDbBlockTableRecord", &DatabaseImpl::Containers::blockTable},
    {"UCS", L"AcDbUCSTable", L"AcDbUCSTableRecord", &DatabaseImpl::Containers::ucsTable},
    {"VIEW", L"AcDbViewTable", L"AcDbViewTableRecord", &DatabaseImpl::Containers::viewTable},
    {"DIMSTYLE", L"AcDbDimStyleTable", L"AcDbDimStyleTableRecord", &DatabaseImpl::Containers::dimStyleTable},
    {"VPORT", L"AcDbViewportTable", L"AcDbViewportTableRecord", &DatabaseImpl::Containers::viewportTable},
};

const TableKind* tableKind(std::string_view name) {
    const auto* const found = std::find_if(std::begin(tableKinds), std::end(tableKinds),
                                           [&](const TableKind& kind) { return kind.name == name; });
    return found != std::end(tableKinds) ? found : nullptr;
}

/// A list of the references of a block, which follows from the drawing and would grow wrong with changes.
void dropReferenceList(AcDbObject& record) {
    if (record.extras() == nullptr) {
        return;
    }
    GroupList others;
    for (const ObjectExtras::Kept& kept : record.extras()->kept) {
        if (kept.subclass == "102" && (*kept.groups.begin()).text != "{BLKREFS") {
            others.append(kept.groups);
        }
    }
    record.replaceKeptGroups("102", std::move(others));
}

/// Several records of one name are usual among viewports; a shape file's style has no name.
bool mayRepeat(const AcDbSymbolTableRecord& record) {
    return record.name().isEmpty() || record.isKindOf(AcDbViewportTableRecord::desc());
}

} // namespace

void Reader::readTables() {
    if (mTablesRead.has_value() && mFiler.place().position.offset == mTablesRead->position.offset) {
        while (nextInSection()) {
        }
        return;
    }
    mHasTables = true;
    struct Table {
        std::string name;
        FileFiler::Place place;
    };
    std::vector<Table> tables;
    while (nextInSection()) {
        if (mFiler.recordName() != "TABLE") {
            continue; // a record, or the end of a table
        }
        const FileFiler::Place place = mFiler.place();
        const DxfGroup* group = mFiler.nextGroup();
        if (group == nullptr || group->code != 2) {
            report(L"没有表名的 TABLE", Done::leftOut);
            continue;
        }
        tables.push_back({std::string(trimmed(group->text)), place});
    }
    const FileFiler::Place end = mFiler.place();
    const auto readNamed = [&](auto&& wanted) {
        for (const Table& table : tables) {
            if (wanted(table.name)) {
                mFiler.seek(table.place);
                mFiler.nextRecord();
                mFiler.nextGroup();
                readTable(table.name);
            }
        }
    };
    for (const TableKind& kind : tableKinds) {
        readNamed([&](const std::string& name) { return name == kind.name; });
    }
    readNamed([](const std::string& name) { return tableKind(name) == nullptr; });
    completeTables();
    mFiler.seek(end);
    mFiler.nextRecord();
    if (mFiler.recordName() != "ENDSEC") {
        mFiler.repeatRecord();
    }
}

void Reader::readTable(std::string_view name) {
    const TableKind* kind = tableKind(name);
    if (kind == nullptr) {
        keepTable(name);
        return;
    }
    AcDbObjectId& container = mImpl.containers.*kind->container;
    if (container.isNull()) {
        std::unique_ptr<AcDbObject> object(
            static_cast<AcDbObject*>(acrxFindAcRxClass(kind->tableClass)->create()));
        object->dxfIn(&mFiler);
        if (kind->name == "DIMSTYLE") {
            object->replaceKeptGroups("AcDbSymbolTable", {}); // a list that is written new
        }
        mFiler.resetFilerStatus();
        reportFault(Done::leftOut);
        if (mFiler.owner() != nullptr) {
            report(L"表 " + fromUtf8(name) + L" 有所有者", Done::repaired);
        }
        AcDbStub* stub = adopt(std::move(object), nullptr);
        setOwner(*stub, nullptr);
        container = AcDbObjectId(stub);
    } else {
        report(L"第二个表 " + fromUtf8(name), Done::repaired);
    }
    mFiler.inDimStyles(kind->name == "DIMSTYLE");
    readTableRecords(*static_cast<AcDbSymbolTable*>(container.stub()->object),
                     acrxFindAcRxClass(kind->recordClass), kind->name);
    mFiler.inDimStyles(false);
}

void Reader::readTableRecords(AcDbSymbolTable& table, AcRxClass* recordClass, std::string_view recordName) {
    AcDbStub* owner = table.objectId().stub();
    while (mFiler.nextRecord() && mFiler.recordName() != "ENDTAB" && mFiler.recordName() != "ENDSEC" &&
           mFiler.recordName() != "TABLE") {
        if (mFiler.recordName() != recordName) {
            report(L"表 " + fromUtf8(recordName) + L" 中的记录 " + fromUtf8(mFiler.recordName()),
                   Done::leftOut);
            continue;
        }
        std::unique_ptr<AcDbSymbolTableRecord> record(
            static_cast<AcDbSymbolTableRecord*>(recordClass->create()));
        record->dxfIn(&mFiler);
        dropReferenceList(*record);
        mFiler.resetFilerStatus();
        reportFault(Done::leftOut);
        const ReadAccess access(table);
        if (!mayRepeat(*record) && table.has(record->name())) {
            report(fromUtf8(recordName) + L" \"" + record->name().constPtr() + L"\" 重复", Done::leftOut);
            continue;
        }
        AcDbSymbolTableRecord& adopted = *record;
        table.adopt(adopt(std::move(record), owner));
        noteRecord(adopted);
    }
}

/// Remembers the records that the database knows by heart.
void Reader::noteRecord(AcDbSymbolTableRecord& record) {
    DatabaseImpl::Containers& known = mImpl.containers;
    const auto note = [&](const AcRxClass* recordClass, const ACHAR* name, AcDbObjectId& place) {
        if (record.isA() == recordClass && place.isNull() && record.name().compareNoCase(name) == 0) {
            place = record.objectId();
        }
    };
    note(AcDbLayerTableRecord::desc(), L"0", known.layerZero);
    note(AcDbLinetypeTableRecord::desc(), L"Continuous", known.continuous);
    note(AcDbLinetypeTableRecord::desc(), L"ByLayer", known.byLayer);
    note(AcDbLinetypeTableRecord::desc(), L"ByBlock", known.byBlock);
    note(AcDbTextStyleTableRecord::desc(), L"Standard", known.standardTextStyle);
    note(AcDbBlockTableRecord::desc(), ACDB_MODEL_SPACE, known.modelSpace);
    note(AcDbBlockTableRecord::desc(), ACDB_PAPER_SPACE, known.paperSpace);
}

/// A table of a kind the host does not know goes back into the tables section as it came.
void Reader::keepTable(std::string_view name) {
    GroupList groups;
    groups.add(2, "TABLES");
    groups.add(0, "TABLE");
    groups.add(2, name);
    do {
        while (const DxfGroup* group = mFiler.nextGroup()) {
            groups.add(*group);
        }
        const std::string& record = mFiler.recordName();
        if (!mFiler.nextRecord() || record == "ENDSEC" || record == "TABLE" || record == "SECTION" ||
            record == "EOF") {
            break;
        }
        groups.add(0, mFiler.recordName());
    } while (mFiler.recordName() != "ENDTAB");
    mImpl.unknownSections.push_back(std::move(groups));
    report(L"未知的表 " + fromUtf8(name), Done::kept);
}

void Reader::completeTables() {
    for (const TableKind& kind : tableKinds) {
        AcDbObjectId& container = mImpl.containers.*kind.container;
        if (container.isNull()) {
            AcDbStub* stub = freshStub();
            mImpl.adopt(stub, static_cast<AcDbObject*>(acrxFindAcRxClass(kind.tableClass)->create()),
                        nullptr);
            container = AcDbObjectId(stub);
        }
    }
    DatabaseImpl::Containers& known = mImpl.containers;
    const auto need = [&](AcDbObjectId& place, AcDbObjectId table, const ACHAR* recordClass,
                          const ACHAR* name) {
        if (place.isNull()) {
            addRecord(table, recordClass, AcString(name));
        }
    };
    need(known.byBlock, known.linetypeTable, L"AcDbLinetypeTableRecord", L"ByBlock");
    need(known.byLayer, known.linetypeTable, L"AcDbLinetypeTableRecord", L"ByLayer");
    need(known.continuous, known.linetypeTable, L"AcDbLinetypeTableRecord", L"Continuous");
    need(known.standardTextStyle, known.textStyleTable, L"AcDbTextStyleTableRecord", L"Standard");
    if (static_cast<AcDbSymbolTable*>(known.dimStyleTable.stub()->object)->records().empty()) {
        mMadeDimStyle = AcDbDimStyleTableRecord::cast(
            addRecord(known.dimStyleTable, L"AcDbDimStyleTableRecord", L"Standard"));
    }
    need(known.layerZero, known.layerTable, L"AcDbLayerTableRecord", L"0");
    mMadeModelSpace = known.modelSpace.isNull();
    need(known.modelSpace, known.blockTable, L"AcDbBlockTableRecord", ACDB_MODEL_SPACE);
    need(known.paperSpace, known.blockTable, L"AcDbBlockTableRecord", ACDB_PAPER_SPACE);
    mFiler.setSymbolFinder([this](SymbolKind kind, std::string_view name) { return symbol(kind, name); });
}

AcDbSymbolTableRecord* Reader::addRecord(AcDbObjectId tableId, const ACHAR* recordClass,
                                         const AcString& name) {
    AcDbStub* stub = freshStub();
    auto* table = static_cast<AcDbSymbolTable*>(tableId.stub()->object);
    auto* record = static_cast<AcDbSymbolTableRecord*>(acrxFindAcRxClass(recordClass)->create());
    mImpl.adopt(stub, record, tableId.stub());
    stub->openForWrite = true;
    // Through a group, since names of files may be such that no command would give them.
    const ResbufList named = ResbufBuilder().string(2, name.view()).release();
    ResbufDxfReader reader(&mDatabase, named.get());
    record->dxfIn(&reader);
    if (auto* layer = AcDbLayerTableRecord::cast(record)) {
        layer->setLinetypeObjectId(mImpl.containers.continuous);
    }
    stub->openForWrite = false;
    table->adopt(stub);
    noteRecord(*record);
    return record;
}

AcDbStub* Reader::symbol(SymbolKind kind, std::string_view utf8) {
    const DatabaseImpl::Containers& known = mImpl.containers;
    const AcDbObjectId tables[] = {known.layerTable, known.linetypeTable, known.textStyleTable,
                                   known.blockTable};
    const auto* table =
        static_cast<const AcDbSymbolTable*>(tables[static_cast<std::size_t>(kind)].stub()->object);
    const AcString name(fromUtf8(decodeDxfText(utf8)).c_str());
    const ReadAccess access(*table);
    AcDbObjectId id;
    return table->getAt(name, id) == Acad::eOk ? id.stub() : addSymbol(kind, name);
}

AcDbStub* Reader::addSymbol(SymbolKind kind, const AcString& name) {
    const DatabaseImpl::Containers& known = mImpl.containers;
    if (name.isEmpty()) {
        return nullptr;
    }
    const std::wstring quoted = L" \"" + std::wstring(name.view()) + L"\"";
    AcDbSymbolTableRecord* record = nullptr;
    switch (kind) {
    case SymbolKind::layer:
        report(L"图层" + quoted + L" 没有定义, 已新建", Done::repaired, mFiler.valueLine(), 0);
        record = addRecord(known.layerTable, L"AcDbLayerTableRecord", name);
        break;
    case SymbolKind::linetype:
        report(L"线型" + quoted + L" 没有定义, 已新建为实线", Done::repaired, mFiler.valueLine(), 0);
        record = addRecord(known.linetypeTable, L"AcDbLinetypeTableRecord", name);
        break;
    case SymbolKind::textStyle:
        report(L"文字样式" + quoted + L" 没有定义, 已新建", Done::repaired, mFiler.valueLine(), 0);
        record = addRecord(known.textStyleTable, L"AcDbTextStyleTableRecord", name);
        break;
    case SymbolKind::block:
        // The definition may come later; old releases have no table of blocks.
        record = addRecord(known.blockTable, L"AcDbBlockTableRecord", name);
        mBlocksWithoutDefinition.emplace(record->objectId().stub(), mFiler.valueLine());
        break;
    }
    return record->objectId().stub();
}

} // namespace host::dxf
