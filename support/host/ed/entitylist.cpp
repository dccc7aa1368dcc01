// Objects as lists, and the order in which the entities of a drawing follow each other.
#include "host/ed/entitylist.h"

#include "host/db/dbents.h"
#include "host/ed/aced.h"
#include "host/ed/selection.h"
#include "host/rx/text.h"

#include <algorithm>

namespace host {
namespace {

constexpr short entityCode = -1;
constexpr short xdataMark = -3;
constexpr short firstXdataCode = 1000;
constexpr short applicationCode = 1001;

bool isAngleCode(int code) {
    return code >= 50 && code <= 58;
}

class ListWriter : public ResbufDxfWriter {
public:
    using ResbufDxfWriter::ResbufDxfWriter;
    bool includesDefaultValues() const override { return true; }
};

/// Files hold angles in degrees, lists in radians.
void turnIntoRadians(resbuf* list) {
    for (resbuf* at = list; at != nullptr; at = at->rbnext) {
        if (isAngleCode(at->restype)) {
            at->resval.rreal *= pi / 180.0;
        }
    }
}

/// Takes off what begins with extended data.
void cutExtendedData(resbuf* list) {
    for (resbuf* at = list; at != nullptr; at = at->rbnext) {
        if (at->rbnext != nullptr && at->rbnext->restype >= firstXdataCode) {
            acutRelRb(at->rbnext);
            at->rbnext = nullptr;
        }
    }
}

/// Coordinates that stand one by one, as kept groups do, become points.
void joinCoordinates(resbuf* list) {
    const auto takeNext = [](resbuf& point, int code, double& coordinate) {
        resbuf* next = point.rbnext;
        if (next == nullptr || next->restype != code || resbufKind(code) != ResbufKind::real) {
            return false;
        }
        coordinate = next->resval.rreal;
        point.rbnext = std::exchange(next->rbnext, nullptr);
        acutRelRb(next);
        return true;
    };
    for (resbuf* at = list; at != nullptr; at = at->rbnext) {
        if (resbufKind(at->restype) == ResbufKind::point &&
            takeNext(*at, at->restype + 10, at->resval.rpoint[1])) {
            takeNext(*at, at->restype + 20, at->resval.rpoint[2]);
        }
    }
}

/// What a BLOCK entity says of its block.
void appendBlock(ResbufBuilder& builder, const AcDbBlockTableRecord& block) {
    const ReadAccess access(block);
    const AcGePoint3d origin = block.origin();
    const int flags = (block.isAnonymous() ? 1 : 0) | (block.hasAttributeDefinitions() ? 2 : 0);
    builder.string(100, L"AcDbBlockBegin").integer(70, flags).point(10, origin.x, origin.y, origin.z);
    builder.string(2, block.name().kwszPtr()).string(1, L"");
    const std::vector<AcDbStub*>& entities = block.entities();
    const auto first = std::ranges::find_if(entities, [](const AcDbStub* stub) { return !stub->erased; });
    if (first != entities.end()) {
        const ads_name name = {AcDbObjectId(*first).asOldId(), 0};
        builder.name(-2, name);
    }
}

/// Lists have the owner in front of the handle when nothing stands between them.
void putOwnerFirst(resbuf* list) {
    if (list != nullptr && list->rbnext != nullptr && list->restype == 5 && list->rbnext->restype == 330) {
        std::swap(list->restype, list->rbnext->restype);
        std::swap(list->resval, list->rbnext->resval);
    }
}

bool isWanted(std::string_view application, const resbuf* wanted) {
    for (; wanted != nullptr; wanted = wanted->rbnext) {
        const bool isName = wanted->restype == RTSTR || wanted->restype == applicationCode;
        if (isName && wanted->resval.rstring != nullptr &&
            wildcardMatch(fromUtf8(application), wanted->resval.rstring)) {
            return true;
        }
    }
    return false;
}

/// The groups of the applications, behind the mark; nothing when there are none.
void addExtendedData(ResbufBuilder& builder, const AcDbObject& object, const resbuf* applications) {
    GroupList wanted;
    bool taking = false;
    for (const GroupList::Group group : object.xdataGroups()) {
        if (group.code == applicationCode) {
            taking = isWanted(group.text, applications);
        }
        if (taking) {
            wanted.add(group.code, group.text);
        }
    }
    if (!wanted.empty()) {
        builder.mark(xdataMark);
        builder.take(wanted.toResbuf(object.database()).release());
    }
}

/// The blocks whose entities are the drawing's main entities, in order.
std::vector<AcDbObjectId> spacesOf(const AcDbDatabase& database) {
    std::vector<AcDbObjectId> spaces{database.modelSpaceId()};
    const auto* blocks = peek<AcDbBlockTable>(database.blockTableId());
    for (AcDbStub* stub : blocks != nullptr ? blocks->records() : std::vector<AcDbStub*>()) {
        const AcDbObjectId id(stub);
        const auto* record = peek<AcDbBlockTableRecord>(id);
        if (record != nullptr && id != database.modelSpaceId() && record->isLayout()) {
            spaces.push_back(id);
        }
    }
    return spaces;
}

/// Position of an entity in its block; looks first behind where it found one last time, so that walking over
/// a drawing takes constant time for each step.
std::size_t positionOf(const AcDbBlockTableRecord& record, const AcDbStub* stub) {
    static std::size_t last = 0;
    const std::vector<AcDbStub*>& entities = record.entities();
    for (const std::size_t guess : {last, last + 1}) {
        if (guess < entities.size() && entities[guess] == stub) {
            return last = guess;
        }
    }
    last = static_cast<std::size_t>(std::find(entities.begin(), entities.end(), stub) - entities.begin());
    return last;
}

AcDbObjectId firstFrom(const AcDbBlockTableRecord& record, std::size_t position) {
    const std::vector<AcDbStub*>& entities = record.entities();
    for (; position < entities.size(); ++position) {
        if (peek<AcDbEntity>(AcDbObjectId(entities[position])) != nullptr) {
            return AcDbObjectId(entities[position]);
        }
    }
    return {};
}

AcDbObjectId nextInList(const SubentityList& parts, std::size_t position) {
    for (; position < parts.ids().size(); ++position) {
        if (!parts.ids()[position]->erased) {
            return AcDbObjectId(parts.ids()[position]);
        }
    }
    return AcDbObjectId(parts.sequenceEnd());
}

/// The vertex, attribute or end of sequence that follows; null when there is none.
AcDbObjectId nextPart(AcDbObjectId id) {
    auto* entity = peek<AcDbEntity>(id, true);
    if (const SubentityList* own = entity != nullptr ? entity->subentities() : nullptr) {
        return nextInList(*own, 0);
    }
    auto* owner = entity != nullptr ? peek<AcDbEntity>(entity->ownerId()) : nullptr;
    const SubentityList* parts = owner != nullptr ? owner->subentities() : nullptr;
    if (parts == nullptr || parts->sequenceEnd() == id.stub()) {
        return {};
    }
    const std::ptrdiff_t position = parts->find(id);
    return position < 0 ? AcDbObjectId() : nextInList(*parts, static_cast<std::size_t>(position) + 1);
}

AcDbDatabase* currentDatabase() {
    return acdbCurDwg();
}

} // namespace

ResbufList objectList(AcDbObjectId id, const resbuf* applications) {
    auto* object = peek<AcDbObject>(id);
    if (object == nullptr) {
        return nullptr;
    }
    const ReadAccess access(*object);
    ListWriter writer(object->database());
    if (object->dxfOut(&writer) != Acad::eOk) {
        return nullptr;
    }
    ResbufList groups = writer.release();
    cutExtendedData(groups.get());
    putOwnerFirst(groups.get());
    if (!object->isKindOf(AcDbXrecord::desc())) {
        joinCoordinates(groups.get());
        turnIntoRadians(groups.get());
    }
    ads_name name;
    acdbGetAdsName(name, id);
    ResbufBuilder builder;
    builder.name(entityCode, name);
    builder.string(0, fromUtf8(object->dxfRecordName()));
    builder.take(groups.release());
    if (object->isKindOf(AcDbBlockBegin::desc())) {
        if (const auto* block = peek<AcDbBlockTableRecord>(object->ownerId())) {
            appendBlock(builder, *block);
        }
    }
    if (applications != nullptr) {
        addExtendedData(builder, *object, applications);
    }
    return builder.release();
}

AcDbObjectId nextMainEntity(AcDbObjectId after) {
    const AcDbDatabase* database = currentDatabase();
    if (database == nullptr) {
        return {};
    }
    const std::vector<AcDbObjectId> spaces = spacesOf(*database);
    auto space = spaces.begin();
    if (!after.isNull()) {
        const auto* entity = peek<AcDbEntity>(after, true);
        const AcDbObjectId block = entity != nullptr ? entity->ownerId() : AcDbObjectId();
        const auto* record = peek<AcDbBlockTableRecord>(block);
        if (record == nullptr) {
            return {};
        }
        if (record->blockBeginId() == after) {
            return firstFrom(*record, 0);
        }
        if (const AcDbObjectId next = firstFrom(*record, positionOf(*record, after.stub()) + 1);
            !next.isNull()) {
            return next;
        }
        space = std::find(spaces.begin(), spaces.end(), block);
        if (space == spaces.end()) {
            return {}; // the end of a block's definition
        }
        ++space;
    }
    for (; space != spaces.end(); ++space) {
        const auto* record = peek<AcDbBlockTableRecord>(*space);
        if (const AcDbObjectId first = record != nullptr ? firstFrom(*record, 0) : AcDbObjectId();
            !first.isNull()) {
            return first;
        }
    }
    return {};
}

AcDbObjectId lastMainEntity() {
    const AcDbDatabase* database = currentDatabase();
    AcDbObjectId last;
    for (const AcDbObjectId space : database != nullptr ? spacesOf(*database) : std::vector<AcDbObjectId>()) {
        const auto* record = peek<AcDbBlockTableRecord>(space);
        if (record == nullptr) {
            continue;
        }
        const std::vector<AcDbStub*>& entities = record->entities();
        const auto found = std::find_if(entities.rbegin(), entities.rend(),
                                        [](const AcDbStub* stub) { return !stub->erased; });
        if (found != entities.rend() && (last.isNull() || (*found)->handle > last.stub()->handle)) {
            last = AcDbObjectId(*found);
        }
    }
    return last;
}

} // namespace host

namespace {

AcDbObjectId idOf(const ads_name name) {
    AcDbObjectId id;
    return name != nullptr && host::pickSetOf(name) == nullptr && acdbGetObjectId(id, name) == Acad::eOk
               ? id
               : AcDbObjectId();
}

int give(AcDbObjectId id, ads_name result) {
    ads_name name;
    if (id.isNull()) {
        ads_name_clear(result);
        return RTERROR;
    }
    acdbGetAdsName(name, id);
    ads_name_set(name, result);
    return RTNORM;
}

} // namespace

resbuf* acdbEntGet(const ads_name entity) {
    return host::objectList(idOf(entity)).release();
}

resbuf* acdbEntGetX(const ads_name entity, const resbuf* applications) {
    return host::objectList(idOf(entity), applications).release();
}

int acdbEntNext(const ads_name entity, ads_name next) {
    const AcDbObjectId id = entity == nullptr || ads_name_nil(entity) ? AcDbObjectId() : idOf(entity);
    if (id.isNull()) {
        return entity == nullptr || ads_name_nil(entity) ? give(host::nextMainEntity({}), next) : RTERROR;
    }
    if (const AcDbObjectId part = host::nextPart(id); !part.isNull()) {
        return give(part, next);
    }
    const auto* object = host::peek<AcDbEntity>(id, true);
    const auto* owner = object != nullptr ? host::peek<AcDbEntity>(object->ownerId(), true) : nullptr;
    return give(host::nextMainEntity(owner != nullptr ? owner->objectId() : id), next);
}

int acdbEntLast(ads_name entity) {
    return give(host::lastMainEntity(), entity);
}

int acdbEntDel(const ads_name entity) {
    AcDbObject* object = nullptr;
    if (acdbOpenAcDbObject(object, idOf(entity), AcDb::kForWrite, true) != Acad::eOk) {
        return RTERROR;
    }
    const Acad::ErrorStatus status = object->erase(!object->isErased());
    object->close();
    return status == Acad::eOk ? RTNORM : RTERROR;
}

int acdbEntUpd(const ads_name entity) {
    const auto* object = host::peek<AcDbEntity>(idOf(entity));
    return object != nullptr ? RTNORM : RTERROR;
}

int acdbHandEnt(const ACHAR* handle, ads_name entity) {
    const AcDbDatabase* database = acdbCurDwg();
    AcDbObjectId id;
    if (handle == nullptr || database == nullptr ||
        database->getAcDbObjectId(id, false, AcDbHandle(handle)) != Acad::eOk || !id.isValid()) {
        return RTERROR;
    }
    return give(id, entity);
}
