// A drawing as the sections of a DXF file.
#include "host/formats/dxf/writer.h"

#include "host/db/entities/subentities.h"
#include "host/formats/dxf/versions.h"
#include "host/formats/headervalues.h"
#include "host/formats/ownerchain.h"
#include "host/rx/text.h"

namespace host::dxf {
namespace {

/// The name of the record an id stands for; empty for none.
AcString recordName(AcDbObjectId id) {
    const auto* record = peek<AcDbSymbolTableRecord>(id);
    return record != nullptr ? record->name() : AcString();
}

/// Entities of the two spaces of release 12 stand in the entities section, all others in their block.
bool isMainSpace(const AcDbDatabase& database, const AcDbBlockTableRecord& block) {
    return block.objectId() == database.modelSpaceId() || block.objectId() == database.paperSpaceId();
}

/// The name of a kept section, which is its first group.
std::string_view sectionName(const GroupList& section) {
    return section.empty() ? std::string_view("TABLES") : (*section.begin()).text;
}

template <class Visit>
void forEachBlock(const AcDbDatabase& database, Visit&& visit) {
    const auto* table = peek<AcDbBlockTable>(database.blockTableId());
    for (AcDbStub* stub : table->records()) {
        if (const auto* block = peek<AcDbBlockTableRecord>(AcDbObjectId(stub))) {
            const ReadAccess access(*block);
            visit(*block);
        }
    }
}

} // namespace

Writer::Writer(AcDbDatabase& database, GroupWriter& out, VersionFilter* filter)
    : mDatabase(database), mImpl(database.impl()), mFilter(filter),
      mOut(filter != nullptr ? static_cast<GroupWriter&>(*filter) : out), mVersion(out.version()),
      mClasses(database, [this](const AcDbObject& object) { return !leavesOut(object); }) {}

void Writer::write() {
    completeBlocks();
    writeHeader();
    writeClasses();
    writeTables();
    writeBlocks();
    writeEntities();
    writeObjects();
    writeUnknownSections();
    record("EOF");
    mOut.flush();
}

/// Blocks that were made by hand may lack the entities that begin and end them in files.
void Writer::completeBlocks() {
    const UndoLog::Suspend suspend(mImpl.undo);
    forEachBlock(mDatabase, [](const AcDbBlockTableRecord& block) {
        if (!block.blockBeginId().isValid() || !block.blockEndId().isValid()) {
            ensureBlockEnds(const_cast<AcDbBlockTableRecord&>(block));
        }
    });
}

void Writer::beginSection(std::string_view name) {
    record("SECTION");
    mOut.writeKept(2, name);
}

void Writer::endSection() {
    record("ENDSEC");
}

void Writer::writeHeader() {
    beginSection("HEADER");
    mOut.writeText(9, "$ACADVER");
    mOut.writeText(1, versionName(mVersion));
    mOut.writeText(9, "$DWGCODEPAGE");
    mOut.writeText(3, mVersion < AcDb::kDHL_1021 ? codePageName(mOut.codePage()) : mImpl.codePage);
    const std::span<const HeaderVariable> variables = headerVariables();
    for (HeaderIndex index = 0; index < variables.size(); ++index) {
        const HeaderVariable& variable = variables[index];
        const HeaderValue value = effectiveHeaderValue(mDatabase, index);
        if (mFilter == nullptr || !mFilter->leavesOutVariable(variable.name)) {
            writeHeaderVariable(variable, value);
        } else if (value != initialHeaderValue(index)) {
            mFilter->noteVariable(variable.name);
        }
    }
    mOut.writeText(9, "$HANDSEED");
    mOut.writeHandle(5, mImpl.nextHandle());
    writeUnknownVariables();
    endSection();
}

void Writer::writeUnknownVariables() {
    bool written = true;
    for (const GroupList::Group group : mImpl.unknownHeader) {
        if (group.code == 9 && mFilter != nullptr) {
            written = !mFilter->leavesOutVariable(group.text.substr(group.text.starts_with('$') ? 1 : 0));
        }
        if (written) {
            mOut.writeKept(group.code, group.text);
        }
    }
}

void Writer::writeHeaderVariable(const HeaderVariable& variable, const HeaderValue& value) {
    mOut.writeText(9, "$" + std::string(variable.name));
    const short code = variable.code;
    struct Visitor {
        GroupWriter& out;
        const HeaderVariable& variable;
        short code;

        void operator()(Adesk::Int16 number) const { out.writeInteger(code, number); }
        void operator()(Adesk::Int32 number) const { out.writeInteger(code, number); }
        void operator()(double number) const { out.writeReal(code, number); }
        void operator()(const AcString& text) const { out.writeString(code, text); }
        void operator()(const AcGePoint2d& point) const { out.writePoint2d(code, point); }
        void operator()(const AcGePoint3d& point) const { out.writePoint3d(code, point); }
        void operator()(const AcDbObjectId& id) const {
            if (variable.kind == HeaderKind::handle) {
                out.writeReference(code, id.stub());
            } else {
                out.writeString(code, recordName(id));
            }
        }
    };
    std::visit(Visitor{mOut, variable, code}, value);
}

void Writer::writeClasses() {
    beginSection("CLASSES");
    for (const DatabaseImpl::FileClass& listed : mClasses.classes()) {
        record("CLASS");
        mOut.writeString(1, listed.dxfName);
        mOut.writeString(2, listed.className);
        mOut.writeString(3, listed.appName);
        mOut.writeInteger(90, listed.proxyFlags);
        if (mVersion >= AcDb::kDHL_1800) {
            mOut.writeInteger(91, listed.instances);
        }
        mOut.writeInteger(280, listed.wasProxy ? 1 : 0);
        mOut.writeInteger(281, listed.isEntity ? 1 : 0);
    }
    endSection();
}

void Writer::writeTables() {
    beginSection("TABLES");
    const DatabaseImpl::Containers& known = mImpl.containers;
    writeTable(known.viewportTable, "VPORT");
    writeTable(known.linetypeTable, "LTYPE");
    writeTable(known.layerTable, "LAYER");
    writeTable(known.textStyleTable, "STYLE");
    writeTable(known.viewTable, "VIEW");
    writeTable(known.ucsTable, "UCS");
    writeTable(known.regAppTable, "APPID");
    writeTable(known.dimStyleTable, "DIMSTYLE");
    writeTable(known.blockTable, "BLOCK_RECORD");
    for (const GroupList& section : mImpl.unknownSections) {
        if (!section.empty() && sectionName(section) == "TABLES") {
            writeSectionGroups(section);
        }
    }
    endSection();
}

void Writer::writeTable(AcDbObjectId id, std::string_view name) {
    const auto* table = peek<AcDbSymbolTable>(id);
    if (table == nullptr) {
        return;
    }
    const ReadAccess access(*table);
    record("TABLE");
    mOut.writeText(2, name);
    table->dxfOutFields(&mOut);
    if (name == "DIMSTYLE") {
        writeDimensionStyleList(*table);
    }
    mOut.writeKept(table->xdataGroups());
    for (AcDbStub* stub : table->records()) {
        if (const auto* object = peek<AcDbSymbolTableRecord>(AcDbObjectId(stub))) {
            writeObject(*object);
        }
    }
    record("ENDTAB");
}

/// The table of dimension styles lists its records.
void Writer::writeDimensionStyleList(const AcDbSymbolTable& table) {
    std::vector<AcDbStub*> styles;
    std::copy_if(table.records().begin(), table.records().end(), std::back_inserter(styles),
                 [](const AcDbStub* stub) { return !stub->erased; });
    mOut.writeText(100, "AcDbDimStyleTable");
    mOut.writeInteger(71, static_cast<Adesk::Int64>(styles.size()));
    for (AcDbStub* style : styles) {
        mOut.writeReference(340, style);
    }
}

void Writer::writeBlocks() {
    beginSection("BLOCKS");
    forEachBlock(mDatabase, [this](const AcDbBlockTableRecord& block) {
        writeBlockBegin(block);
        if (!isMainSpace(mDatabase, block)) {
            writeEntitiesOf(block);
        }
        if (const auto* end = peek<AcDbBlockEnd>(block.blockEndId())) {
            const ReadAccess access(*end);
            record("ENDBLK");
            end->dxfOutFields(&mOut);
            mOut.writeText(100, "AcDbBlockEnd");
            mOut.writeKept(end->xdataGroups());
        }
    });
    endSection();
}

void Writer::writeBlockBegin(const AcDbBlockTableRecord& block) {
    const auto* begin = peek<AcDbBlockBegin>(block.blockBeginId());
    if (begin == nullptr) {
        return;
    }
    constexpr Adesk::Int16 hasAttributes = 2;
    const ReadAccess access(*begin);
    record("BLOCK");
    begin->dxfOutFields(&mOut);
    mOut.writeText(100, "AcDbBlockBegin");
    mOut.writeString(2, block.name());
    const bool attributes = !block.isLayout() && block.hasAttributeDefinitions();
    mOut.writeInteger(70, (block.standardFlags() & ~hasAttributes) | (attributes ? hasAttributes : 0));
    mOut.writePoint3d(10, block.origin());
    mOut.writeString(3, block.name());
    AcString text;
    block.pathName(text);
    mOut.writeString(1, text);
    if (block.comments(text) == Acad::eOk && !text.isEmpty()) {
        mOut.writeString(4, text);
    }
    mOut.writeKept(begin->xdataGroups());
}

void Writer::writeEntities() {
    beginSection("ENTITIES");
    for (const AcDbObjectId id : {mDatabase.modelSpaceId(), mDatabase.paperSpaceId()}) {
        if (const auto* space = peek<AcDbBlockTableRecord>(id)) {
            writeEntitiesOf(*space);
        }
    }
    endSection();
}

void Writer::writeEntitiesOf(const AcDbBlockTableRecord& block) {
    for (AcDbStub* stub : block.entities()) {
        if (stub->object != nullptr && !stub->erased && !leavesOut(*stub->object)) {
            writeEntity(*static_cast<const AcDbEntity*>(stub->object));
        }
    }
}

void Writer::writeEntity(const AcDbEntity& entity) {
    writeObject(entity);
    const SubentityList* parts = entity.subentities();
    if (parts == nullptr || entity.isA()->isCustom()) {
        return;
    }
    bool some = false;
    for (AcDbStub* stub : parts->ids()) {
        if (stub->object != nullptr && !stub->erased) {
            writeObject(*stub->object);
            some = true;
        }
    }
    AcDbStub* end = parts->sequenceEnd();
    if (end != nullptr && end->object != nullptr && (some || entity.dxfRecordName() == "POLYLINE")) {
        writeObject(*end->object);
    }
}

void Writer::writeObjects() {
    beginSection("OBJECTS");
    AcDbStub* root = mImpl.containers.namedObjects.stub();
    if (root != nullptr && root->object != nullptr) {
        writeObject(*root->object);
    }
    OwnerChain owners = erasedOwners();
    mImpl.forEachStub([&](AcDbStub& stub) {
        if (stub.object == nullptr || stub.erased || &stub == root ||
            stub.object->isKindOf(AcDbEntity::desc()) || stub.object->isKindOf(AcDbSymbolTable::desc()) ||
            stub.object->isKindOf(AcDbSymbolTableRecord::desc())) {
            return;
        }
        if (!owners.reachesMarked(stub) && !leavesOut(*stub.object)) {
            writeObject(*stub.object);
        }
    });
    endSection();
}

/// All groups of a kept section but its name.
void Writer::writeSectionGroups(const GroupList& section) {
    auto group = section.begin();
    for (++group; group != section.end(); ++group) {
        mOut.writeKept((*group).code, (*group).text);
    }
}

void Writer::writeUnknownSections() {
    for (const GroupList& section : mImpl.unknownSections) {
        const std::string_view name = sectionName(section);
        if (mFilter != nullptr && mFilter->leavesOutSection(name)) {
            // What it holds belongs to objects that are left out too.
        } else if (name != "TABLES") {
            beginSection(name);
            writeSectionGroups(section);
            endSection();
        }
    }
}

void Writer::writeObject(const AcDbObject& object) {
    const ReadAccess access(object);
    const AcRxClass* objectClass = object.isA();
    if (objectClass->isCustom()) {
        writeCustom(object);
    } else if (objectClass == AcDbProxyEntity::desc()) {
        writeProxy(object, static_cast<const AcDbProxyEntity&>(object).proxy);
    } else if (objectClass == AcDbProxyObject::desc()) {
        writeProxy(object, static_cast<const AcDbProxyObject&>(object).proxy);
    } else {
        record(object.dxfRecordName());
        object.dxfOut(&mOut);
    }
}

} // namespace host::dxf
