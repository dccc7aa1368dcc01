// Making and changing objects from lists.
#include "host/db/dbents.h"
#include "host/ed/acdocman.h"
#include "host/ed/aced.h"
#include "host/ed/documentstate.h"
#include "host/ed/entitylist.h"
#include "host/ed/question.h"
#include "host/rx/text.h"

#include <algorithm>
#include <map>
#include <set>

namespace host {
namespace {

constexpr short xdataMark = -3;
constexpr short applicationCode = 1001;

const resbuf* findGroup(const resbuf* list, int code) {
    for (; list != nullptr; list = list->rbnext) {
        if (list->restype == code) {
            return list;
        }
    }
    return nullptr;
}

std::wstring textOf(const resbuf* list, int code) {
    const resbuf* found = findGroup(list, code);
    if (found == nullptr && code == 0) {
        found = findGroup(list, RTDXF0);
    }
    return found != nullptr && found->resval.rstring != nullptr ? found->resval.rstring : L"";
}

int integerOf(const resbuf* list, int code, int otherwise = 0) {
    const resbuf* found = findGroup(list, code);
    return found != nullptr ? found->resval.rint : otherwise;
}

/// Groups of a list that an object reads from it: names, handles, owners and extended data are not among
/// them, and angles are in degrees.
class ReadableGroups {
public:
    explicit ReadableGroups(const resbuf* list) {
        bool inReactors = false;
        mAngles = !equalNoCase(textOf(list, 0), L"XRECORD");
        for (; list != nullptr && list->restype != xdataMark; list = list->rbnext) {
            const short code = list->restype;
            if (code == 102 && list->resval.rstring != nullptr) {
                const std::wstring_view text = list->resval.rstring;
                inReactors =
                    text == L"{ACAD_REACTORS" || text == L"{ACAD_XDICTIONARY" || (inReactors && text != L"}");
                if (inReactors || text == L"}") {
                    continue;
                }
            }
            const bool identity =
                code == -1 || code == -2 || code == 0 || code == RTDXF0 || code == 5 || code == 105;
            if (inReactors || identity || (code == 330 && mOwnerPending)) {
                mOwnerPending = mOwnerPending && (inReactors || code != 330);
                continue;
            }
            mOwnerPending = mOwnerPending && code != 100;
            mBuilder.take(copyResbuf(*list).release());
        }
    }

    void addMissing(int code, const resbuf* list, const std::function<void(ResbufBuilder&)>& add) {
        if (findGroup(list, code) == nullptr) {
            add(mBefore);
        }
    }

    ResbufList release() {
        mBefore.take(mBuilder.release().release());
        ResbufList list = mBefore.release();
        for (resbuf* at = list.get(); at != nullptr; at = at->rbnext) {
            if (mAngles && at->restype >= 50 && at->restype <= 58) {
                at->resval.rreal *= 180.0 / pi;
            }
        }
        return list;
    }

private:
    ResbufBuilder mBefore;
    ResbufBuilder mBuilder;
    bool mAngles = true;
    bool mOwnerPending = true; ///< the first 330 in front of a subclass names the owner
};

/// A layer that an entity's list names is made when the drawing lacks it. False when it can't be a layer's
/// name.
bool addMissingLayer(const resbuf* list, AcDbDatabase& database) {
    const std::wstring name = textOf(list, 8);
    AcDbLayerTable* table = nullptr;
    if (findGroup(list, 8) == nullptr || database.getSymbolTable(table, AcDb::kForRead) != Acad::eOk) {
        return true;
    }
    bool present = table->has(name.c_str());
    if (!present && acdbSNValid(name.c_str(), 0) == RTNORM && table->upgradeOpen() == Acad::eOk) {
        auto layer = std::make_unique<AcDbLayerTableRecord>();
        layer->setName(name.c_str());
        layer->setLinetypeObjectId(database.continuousLinetype());
        if (table->add(layer.get()) == Acad::eOk) {
            layer.release()->close();
            present = true;
        }
    }
    table->close();
    return present;
}

/// What an entity takes from the drawing's current settings when its list does not say.
ResbufList withCurrentProperties(const resbuf* list, AcDbDatabase& database) {
    ReadableGroups groups(list);
    const auto name = [](AcDbObjectId id) {
        const auto* record = peek<AcDbSymbolTableRecord>(id);
        return record != nullptr ? std::wstring(record->name().kwszPtr()) : std::wstring(L"0");
    };
    groups.addMissing(8, list, [&](ResbufBuilder& b) { b.string(8, name(database.clayer())); });
    groups.addMissing(6, list, [&](ResbufBuilder& b) { b.string(6, name(database.celtype())); });
    groups.addMissing(
        62, list, [&](ResbufBuilder& b) { b.integer(62, database.cecolor().entityColor().colorIndex()); });
    if (const AcCmEntityColor color = database.cecolor().entityColor();
        color.isByColor() && findGroup(list, 62) == nullptr) {
        const int packed = (color.red() << 16) | (color.green() << 8) | color.blue();
        groups.addMissing(420, list, [&](ResbufBuilder& b) { b.integer(420, packed); });
    }
    groups.addMissing(370, list, [&](ResbufBuilder& b) { b.integer(370, database.celweight()); });
    groups.addMissing(48, list, [&](ResbufBuilder& b) { b.real(48, database.celtscale()); });
    return groups.release();
}

/// Puts the extended data of a list behind -3 in the place of that of the same applications; an application
/// without data loses what it had.
Acad::ErrorStatus applyExtendedData(AcDbObject& object, const resbuf* list) {
    const resbuf* mark = findGroup(list, xdataMark);
    if (mark == nullptr) {
        return Acad::eOk;
    }
    ResbufBuilder builder;
    for (const resbuf* at = mark->rbnext; at != nullptr; at = at->rbnext) {
        if (at->restype >= 1000 && at->restype <= 1071) {
            builder.take(copyResbuf(*at).release());
        }
    }
    const ResbufList data = builder.release();
    return data != nullptr ? object.setXData(data.get()) : Acad::eOk;
}

Acad::ErrorStatus readInto(AcDbObject& object, const resbuf* groups, AcDbDatabase& database) {
    ResbufDxfReader reader(&database, groups);
    const Acad::ErrorStatus status = object.dxfIn(&reader);
    if (auto* text = AcDbText::cast(&object); text != nullptr && status == Acad::eOk) {
        text->adjustAlignment(&database); // a list's author may not know where the text begins
    }
    return status;
}

AcRxClass* partClass(const std::wstring& name, const AcDbEntity& whole) {
    if (equalNoCase(name, L"ATTRIB")) {
        return acrxFindAcRxClass(L"AcDbAttribute");
    }
    static const std::map<std::wstring_view, const wchar_t*> vertexClasses = {
        {L"AcDb2dPolyline", L"AcDb2dVertex"},
        {L"AcDb3dPolyline", L"AcDb3dPolylineVertex"},
        {L"AcDbPolygonMesh", L"AcDbPolygonMeshVertex"},
        {L"AcDbPolyFaceMesh", L"AcDbPolyFaceMeshVertex"},
    };
    const auto found = vertexClasses.find(whole.isA()->name());
    return found != vertexClasses.end() ? acrxFindAcRxClass(found->second) : nullptr;
}

AcRxClass* classFor(const std::wstring& name, const resbuf* list) {
    if (equalNoCase(name, L"POLYLINE")) {
        const int flags = integerOf(list, 70);
        const wchar_t* className = (flags & 8) != 0    ? L"AcDb3dPolyline"
                                   : (flags & 16) != 0 ? L"AcDbPolygonMesh"
                                   : (flags & 64) != 0 ? L"AcDbPolyFaceMesh"
                                                       : L"AcDb2dPolyline";
        return acrxFindAcRxClass(className);
    }
    if (equalNoCase(name, L"DIMENSION")) {
        return acrxFindAcRxClass(dimensionClassName(integerOf(list, 70)));
    }
    if (equalNoCase(name, L"INSERT")) {
        const bool several = integerOf(list, 70) > 1 || integerOf(list, 71) > 1;
        return acrxFindAcRxClass(several ? L"AcDbMInsertBlock" : L"AcDbBlockReference");
    }
    AcRxClass* found = classOfDxfName(name);
    return found != nullptr && found->isDerivedFrom(AcDbObject::desc()) ? found : nullptr;
}

template <class T>
std::unique_ptr<T> createFrom(AcRxClass* descriptor) {
    AcRxObject* made = descriptor != nullptr ? descriptor->create() : nullptr;
    T* object = T::cast(made);
    if (object == nullptr) {
        delete made;
    }
    return std::unique_ptr<T>(object);
}

/// Whether a list has the groups without which it describes no entity of its kind; a radius or height (40) is
/// above zero.
bool hasNeededGroups(const resbuf* list) {
    struct Needed {
        const wchar_t* name;
        int codes[4]; ///< 0: none
    };
    constexpr Needed rows[] = {
        {L"LINE", {10, 11}},      {L"CIRCLE", {10, 40}},     {L"ARC", {10, 40, 50, 51}},
        {L"POINT", {10}},         {L"TEXT", {10, 40, 1}},    {L"ATTDEF", {10, 40, 2}},
        {L"INSERT", {10, 2}},     {L"LWPOLYLINE", {10}},     {L"SOLID", {10, 11, 12}},
        {L"TRACE", {10, 11, 12}}, {L"3DFACE", {10, 11, 12}}, {L"ELLIPSE", {10, 11, 40}},
        {L"MTEXT", {10, 1}},      {L"RAY", {10, 11}},        {L"XLINE", {10, 11}},
    };
    const std::wstring name = textOf(list, 0);
    const Needed* row =
        std::ranges::find_if(rows, [&](const Needed& r) { return equalNoCase(r.name, name); });
    return row == std::end(rows) || std::ranges::all_of(row->codes, [&](int code) {
               const resbuf* found = code != 0 ? findGroup(list, code) : list;
               return found != nullptr && (code != 40 || found->resval.rreal > 0.0);
           });
}

/// Makes a new entity in a block. Null when the list does not describe one.
AcDbEntity* makeEntity(const resbuf* list, AcDbObjectId owner, AcDbDatabase& database) {
    std::unique_ptr<AcDbEntity> entity = createFrom<AcDbEntity>(classFor(textOf(list, 0), list));
    if (entity == nullptr || !hasNeededGroups(list) || !addMissingLayer(list, database)) {
        return nullptr;
    }
    const ResbufList groups = withCurrentProperties(list, database);
    if (readInto(*entity, groups.get(), database) != Acad::eOk) {
        return nullptr;
    }
    const Opened<AcDbBlockTableRecord> block(owner, AcDb::kForWrite);
    AcDbObjectId id;
    if (!block || block->appendAcDbEntity(id, entity.get()) != Acad::eOk) {
        return nullptr;
    }
    AcDbEntity* resident = entity.release();
    applyExtendedData(*resident, list);
    return resident;
}

bool appendPart(AcDbEntity& whole, const resbuf* list, AcDbDatabase& database) {
    std::unique_ptr<AcDbEntity> part = createFrom<AcDbEntity>(partClass(textOf(list, 0), whole));
    SubentityList* parts = whole.needSubentities();
    if (part == nullptr || parts == nullptr || !addMissingLayer(list, database)) {
        return false;
    }
    const ResbufList groups = withCurrentProperties(list, database);
    if (readInto(*part, groups.get(), database) != Acad::eOk) {
        return false;
    }
    AcDbObjectId id;
    AcDbEntity* resident = part.get();
    if (parts->append(whole, id, resident) != Acad::eOk) {
        return false;
    }
    part.release();
    applyExtendedData(*resident, list);
    resident->close();
    return true;
}

/// The whole; null when a list does not describe its part.
AcDbObjectId makeComplex(const std::vector<ResbufList>& parts, AcDbObjectId owner, AcDbDatabase& database) {
    AcDbEntity* whole = makeEntity(parts.front().get(), owner, database);
    if (whole == nullptr) {
        return {};
    }
    const AcDbObjectId id = whole->objectId();
    bool good = true;
    for (std::size_t i = 1; i < parts.size() && good; ++i) {
        good = appendPart(*whole, parts[i].get(), database);
    }
    if (!good) {
        whole->erase();
    }
    whole->close();
    return good ? id : AcDbObjectId();
}

/// Records of symbol tables.
template <class Table, class Record>
AcDbObjectId makeRecordIn(const resbuf* list, AcDbDatabase& database) {
    Table* table = nullptr;
    const std::wstring name = textOf(list, 2);
    AcDbObjectId id;
    if (name.empty() || database.getSymbolTable(table, AcDb::kForWrite) != Acad::eOk) {
        return id;
    }
    if (!table->has(name.c_str())) {
        auto record = std::make_unique<Record>();
        const ResbufList groups = ReadableGroups(list).release();
        if (readInto(*record, groups.get(), database) == Acad::eOk &&
            table->add(id, record.get()) == Acad::eOk) {
            applyExtendedData(*record, list);
            record.release()->close();
        }
    }
    table->close();
    return id;
}

using RecordMaker = AcDbObjectId (*)(const resbuf*, AcDbDatabase&);
const std::map<std::wstring_view, RecordMaker>& recordMakers() {
    static const std::map<std::wstring_view, RecordMaker> makers = {
        {L"LAYER", makeRecordIn<AcDbLayerTable, AcDbLayerTableRecord>},
        {L"LTYPE", makeRecordIn<AcDbLinetypeTable, AcDbLinetypeTableRecord>},
        {L"STYLE", makeRecordIn<AcDbTextStyleTable, AcDbTextStyleTableRecord>},
        {L"APPID", makeRecordIn<AcDbRegAppTable, AcDbRegAppTableRecord>},
        {L"DIMSTYLE", makeRecordIn<AcDbDimStyleTable, AcDbDimStyleTableRecord>},
        {L"VIEW", makeRecordIn<AcDbViewTable, AcDbViewTableRecord>},
        {L"UCS", makeRecordIn<AcDbUCSTable, AcDbUCSTableRecord>},
    };
    return makers;
}

// Blocks.

/// The record that a definition fills: a new one, or the one of that name emptied.
AcDbObjectId blockFor(const resbuf* list, AcDbDatabase& database, std::wstring& name) {
    name = textOf(list, 2);
    AcDbBlockTable* table = nullptr;
    if (name.empty() || database.getSymbolTable(table, AcDb::kForWrite) != Acad::eOk) {
        return {};
    }
    const bool anonymous = (integerOf(list, 70) & 1) != 0 || (name.size() <= 2 && name.front() == L'*');
    if (anonymous) { // of a kind that the first letter names; the table gives it a number
        name = {L'*', name.front() != L'*' ? name.front() : name.size() > 1 ? name[1] : L'U'};
    }
    AcDbObjectId id;
    if (anonymous || table->getAt(name.c_str(), id) != Acad::eOk) {
        auto record = std::make_unique<AcDbBlockTableRecord>();
        record->setName(name.c_str());
        if (table->add(id, record.get()) == Acad::eOk) {
            name = record->name().kwszPtr();
            record.release()->close();
        }
    } else if (const auto* record = peek<AcDbBlockTableRecord>(id)) {
        for (AcDbStub* stub : std::vector(record->entities())) {
            if (Opened<AcDbEntity> entity(AcDbObjectId(stub), AcDb::kForWrite); entity) {
                entity->erase();
            }
        }
    }
    table->close();
    const Opened<AcDbBlockTableRecord> record(id, AcDb::kForWrite);
    if (record) {
        if (const resbuf* origin = findGroup(list, 10)) {
            record->setOrigin(asPoint3d(origin->resval.rpoint));
        }
    }
    return id;
}

/// Whether the list begins something that further lists complete.
bool opensComplex(const std::wstring& name, const resbuf* list) {
    return equalNoCase(name, L"POLYLINE") || (equalNoCase(name, L"INSERT") && integerOf(list, 66) != 0);
}

bool makeAll(std::vector<ResbufList>& lists, AcDbObjectId owner, AcDbDatabase& database) {
    for (std::size_t i = 0; i < lists.size();) {
        if (!opensComplex(textOf(lists[i].get(), 0), lists[i].get())) {
            AcDbEntity* entity = makeEntity(lists[i++].get(), owner, database);
            if (entity == nullptr) {
                return false;
            }
            entity->close();
            continue;
        }
        std::vector<ResbufList> parts;
        for (; i < lists.size() && !equalNoCase(textOf(lists[i].get(), 0), L"SEQEND"); ++i) {
            parts.push_back(std::move(lists[i]));
        }
        ++i;
        if (makeComplex(parts, owner, database).isNull()) {
            return false;
        }
    }
    return true;
}

int finishBlock(PendingEntity pending, AcDbDatabase& database, AcDbObjectId& block) {
    std::wstring name;
    block = blockFor(pending.parts.front().get(), database, name);
    if (block.isNull()) {
        return RTERROR;
    }
    pending.parts.erase(pending.parts.begin());
    if (!makeAll(pending.parts, block, database)) {
        return RTERROR;
    }
    lastInput() = name;
    return RTKWORD;
}

AcDbObjectId spaceOf(const resbuf* list, const AcDbDatabase& database) {
    const resbuf* paper = findGroup(list, 67);
    if (paper != nullptr) {
        return paper->resval.rint != 0 ? database.paperSpaceId() : database.modelSpaceId();
    }
    return database.currentSpaceId();
}

/// A further list of a complex entity or a block under construction; its end gives what was made.
int continuePending(PendingEntity& pending, const std::wstring& name, const resbuf* list,
                    AcDbDatabase& database, AcDbObjectId& made) {
    const bool inBlock = pending.kind == PendingEntity::Kind::block;
    if (equalNoCase(name, inBlock ? L"ENDBLK" : L"SEQEND")) {
        PendingEntity complete = std::exchange(pending, {});
        if (inBlock) {
            return finishBlock(std::move(complete), database, made);
        }
        made = makeComplex(complete.parts, complete.owner, database);
        return made.isNull() ? RTERROR : RTNORM;
    }
    if (!inBlock && !equalNoCase(name, L"VERTEX") && !equalNoCase(name, L"ATTRIB")) {
        pending = {};
        return RTERROR;
    }
    pending.parts.push_back(copyResbufList(list));
    return RTNORM;
}

/// An object of a dictionary, or of no owner yet: in the database only.
AcDbObjectId makeUnowned(const resbuf* list, AcDbDatabase& database) {
    AcDbObjectId id;
    std::unique_ptr<AcDbObject> object = createFrom<AcDbObject>(classFor(textOf(list, 0), list));
    if (object == nullptr || object->isKindOf(AcDbEntity::desc()) ||
        object->isKindOf(AcDbSymbolTableRecord::desc())) {
        return id;
    }
    const ResbufList groups = ReadableGroups(list).release();
    if (readInto(*object, groups.get(), database) == Acad::eOk &&
        database.addAcDbObject(id, object.get()) == Acad::eOk) {
        applyExtendedData(*object, list);
        object.release()->close();
    }
    return id;
}

/// Makes what the list describes or adds it to what is being made. `made` is null while that is not complete.
int make(const resbuf* list, AcDbObjectId& made, bool mayBeUnowned) {
    AcApDocument* document = curDoc();
    const std::wstring name = textOf(list, 0);
    if (document == nullptr || name.empty()) {
        return RTERROR;
    }
    AcDbDatabase& database = *document->database();
    PendingEntity& pending = document->state().pending;
    if (pending.kind != PendingEntity::Kind::none) {
        return continuePending(pending, name, list, database, made);
    }
    if (equalNoCase(name, L"BLOCK") || opensComplex(name, list)) {
        pending.kind = equalNoCase(name, L"BLOCK")      ? PendingEntity::Kind::block
                       : equalNoCase(name, L"POLYLINE") ? PendingEntity::Kind::polyline
                                                        : PendingEntity::Kind::insert;
        pending.owner = spaceOf(list, database);
        pending.parts.push_back(copyResbufList(list));
        return RTNORM;
    }
    if (const auto maker = recordMakers().find(toUpper(name)); maker != recordMakers().end()) {
        made = maker->second(list, database);
    } else if (AcDbEntity* entity = makeEntity(list, spaceOf(list, database), database)) {
        made = entity->objectId();
        entity->close();
    } else if (mayBeUnowned) {
        made = makeUnowned(list, database);
    }
    return made.isNull() ? RTERROR : RTNORM;
}

int makeNamed(const resbuf* list, ads_name result) {
    AcDbObjectId made;
    const int code = make(list, made, true);
    ads_name_clear(result);
    if (!made.isNull()) {
        ads_name name;
        acdbGetAdsName(name, made);
        ads_name_set(name, result);
    }
    return code;
}

void giveUpPending() {
    if (AcApDocument* document = curDoc()) {
        document->state().pending = {};
    }
}

int makeAnonymously(const resbuf* list) {
    AcDbObjectId made;
    return make(list, made, false);
}

// Changing.

bool isComplete(const resbuf* list) {
    return findGroup(list, 100) != nullptr;
}

/// The present list with the values of the new one: the n-th group of a code takes the n-th new value, what
/// is left of the new ones comes behind.
ResbufList merged(ResbufList present, const resbuf* changes) {
    std::map<int, const resbuf*> next;
    const auto find = [](const resbuf* from, int code) {
        while (from != nullptr && from->restype != code) {
            from = from->rbnext;
        }
        return from;
    };
    ResbufBuilder builder;
    std::set<int> replaced;
    for (const resbuf* at = present.get(); at != nullptr; at = at->rbnext) {
        const int code = at->restype;
        if (!next.contains(code)) {
            next[code] = find(changes, code);
        }
        const resbuf*& with = next[code];
        builder.take(copyResbuf(with != nullptr ? *with : *at).release());
        with = with != nullptr ? find(with->rbnext, code) : nullptr;
        replaced.insert(code);
    }
    for (const resbuf* at = changes; at != nullptr && at->restype != xdataMark; at = at->rbnext) {
        const bool left =
            !replaced.contains(at->restype) || (next[at->restype] != nullptr && next[at->restype] == at);
        if (left) {
            builder.take(copyResbuf(*at).release());
            if (replaced.contains(at->restype)) {
                next[at->restype] = find(at->rbnext, at->restype);
            }
        }
    }
    return builder.release();
}

void forgetKeptGroups(AcDbObject& object) {
    if (object.extras() == nullptr) {
        return;
    }
    std::vector<std::string> subclasses;
    for (const ObjectExtras::Kept& kept : object.extras()->kept) {
        if (kept.subclass != "102") {
            subclasses.push_back(kept.subclass);
        }
    }
    for (const std::string& subclass : subclasses) {
        object.replaceKeptGroups(subclass, {});
    }
}

int modify(const resbuf* list) {
    const resbuf* named = findGroup(list, -1);
    AcDbObjectId id;
    if (named == nullptr || acdbGetObjectId(id, named->resval.rlname) != Acad::eOk) {
        return RTERROR;
    }
    ResbufList whole = isComplete(list) ? copyResbufList(list) : merged(objectList(id), list);
    const ResbufList groups = ReadableGroups(whole.get()).release();
    AcDbObject* object = nullptr;
    if (acdbOpenAcDbObject(object, id, AcDb::kForWrite) != Acad::eOk) {
        return RTERROR;
    }
    object->assertWriteEnabled();
    if (object->isKindOf(AcDbEntity::desc()) && !addMissingLayer(groups.get(), *object->database())) {
        object->cancel();
        return RTERROR;
    }
    // The table of a record learns its new name; one that another has, or that can't be, is refused.
    auto* record = AcDbSymbolTableRecord::cast(object);
    const std::wstring name = textOf(groups.get(), 2);
    if (record != nullptr && !name.empty() && name != record->name().kwszPtr() &&
        record->setName(name.c_str()) != Acad::eOk) {
        object->cancel();
        return RTERROR;
    }
    forgetKeptGroups(*object);
    if (readInto(*object, groups.get(), *object->database()) != Acad::eOk ||
        applyExtendedData(*object, list) != Acad::eOk) {
        object->cancel();
        return RTERROR;
    }
    object->close();
    return RTNORM;
}

} // namespace
} // namespace host

int acdbEntMake(const resbuf* list) {
    if (list == nullptr) {
        host::giveUpPending();
        return RTERROR;
    }
    return host::makeAnonymously(list);
}

int acdbEntMakeX(const resbuf* list, ads_name object) {
    return list != nullptr ? host::makeNamed(list, object) : RTERROR;
}

int acdbEntMod(const resbuf* list) {
    return list != nullptr ? host::modify(list) : RTERROR;
}
