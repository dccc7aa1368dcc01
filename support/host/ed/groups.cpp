// Groups as selection sees them: picking a member selects them all.
#include "host/db/dbents.h"
#include "host/ed/aced.h"
#include "host/ed/selection.h"
#include "host/ed/sysvars.h"

#include <algorithm>
#include <unordered_set>

namespace host {
namespace {

constexpr int selectsGroups = 1; ///< bit of PICKSTYLE

AcDbObjectIdArray membersOf(const AcDbGroup& group) {
    const ReadAccess access(group);
    AcDbObjectIdArray members;
    group.allEntityIds(members);
    return members;
}

const AcDbDictionary* groupDictionary() {
    const AcDbDatabase* database = acdbCurDwg();
    return database != nullptr ? peek<AcDbDictionary>(database->groupDictionaryId()) : nullptr;
}

} // namespace

void addGroupMembers(std::vector<AcDbObjectId>& ids) {
    const AcDbDictionary* groups = groupDictionary();
    if (ids.empty() || groups == nullptr || (systemVariableInteger(L"PICKSTYLE") & selectsGroups) == 0) {
        return;
    }
    const ReadAccess access(*groups);
    if (groups->numEntries() == 0) {
        return;
    }
    const auto* first = peek<AcDbEntity>(ids.front());
    const AcDbObjectId block = first != nullptr ? first->ownerId() : AcDbObjectId();
    const std::unordered_set<AcDbStub*> chosen(ids.begin(), ids.end());
    std::unordered_set<AcDbStub*> known = chosen;
    const std::unique_ptr<AcDbDictionaryIterator> iterator(groups->newIterator());
    for (; !iterator->done(); iterator->next()) {
        const auto* group = peek<AcDbGroup>(iterator->objectId());
        if (group == nullptr || !group->isSelectable()) {
            continue;
        }
        const AcDbObjectIdArray members = membersOf(*group);
        const bool isChosen = std::any_of(members.begin(), members.end(),
                                          [&](AcDbObjectId id) { return chosen.contains(id.stub()); });
        for (const AcDbObjectId id : isChosen ? members : AcDbObjectIdArray()) {
            const auto* entity = peek<AcDbEntity>(id);
            // Those that were pulled in do not pull in others.
            if (entity->ownerId() == block && isSelectable(*entity) && known.insert(id.stub()).second) {
                ids.push_back(id);
            }
        }
    }
}

std::optional<std::vector<AcDbObjectId>> groupMembers(std::wstring_view name) {
    const AcDbDictionary* groups = groupDictionary();
    if (groups == nullptr) {
        return std::nullopt;
    }
    const ReadAccess access(*groups);
    AcDbObjectId id;
    groups->getAt(std::wstring(name).c_str(), id);
    const auto* group = peek<AcDbGroup>(id);
    if (group == nullptr) {
        return std::nullopt;
    }
    const AcDbObjectIdArray members = membersOf(*group);
    return std::vector<AcDbObjectId>(members.begin(), members.end());
}

} // namespace host
