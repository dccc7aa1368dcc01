// Selection sets and their names.
#include "host/ed/acdocman.h"
#include "host/ed/documentstate.h"
#include "host/ed/selection.h"

#include <algorithm>
#include <unordered_map>

ACRX_NO_CONS_DEFINE_MEMBERS(AcEdSSGetFilter, AcRxObject)

namespace host {
namespace {

/// Tells names of sets from names of entities.
constexpr std::int64_t setMark = 0x53455453;

struct Registry {
    std::unordered_map<std::int64_t, PickSet> sets;
    std::int64_t next = 1;
};

Registry& registry() {
    static Registry instance;
    return instance;
}

PickSet& noSelection() {
    static PickSet none;
    none.clear();
    return none;
}

} // namespace

bool PickSet::add(AcDbObjectId id) {
    if (id.isNull() || !mMembers.insert(id.stub()).second) {
        return false;
    }
    ids.push_back(id);
    return true;
}

bool PickSet::remove(AcDbObjectId id) {
    if (mMembers.erase(id.stub()) == 0) {
        return false;
    }
    // Taking out what came last is the usual case.
    const auto last = std::find(ids.rbegin(), ids.rend(), id);
    ids.erase(std::next(last).base());
    return true;
}

void PickSet::removeAll(const std::vector<AcDbObjectId>& gone) {
    for (const AcDbObjectId id : gone) {
        mMembers.erase(id.stub());
    }
    std::erase_if(ids, [&](AcDbObjectId id) { return !contains(id); });
}

void PickSet::clear() {
    ids.clear();
    mMembers.clear();
}

void makePickSetName(PickSet set, ads_name name) {
    Registry& all = registry();
    name[0] = all.next++;
    name[1] = setMark;
    all.sets.emplace(name[0], std::move(set));
}

PickSet* pickSetOf(const ads_name name) {
    if (name == nullptr || name[1] != setMark) {
        return nullptr;
    }
    const auto found = registry().sets.find(name[0]);
    return found != registry().sets.end() ? &found->second : nullptr;
}

bool freePickSet(const ads_name name) {
    return name != nullptr && name[1] == setMark && registry().sets.erase(name[0]) > 0;
}

std::size_t pickSetCount() {
    return registry().sets.size();
}

PickSet& impliedSelection() {
    AcApDocument* document = curDoc();
    return document != nullptr ? document->state().implied : noSelection();
}

PickSet& previousSelection() {
    AcApDocument* document = curDoc();
    return document != nullptr ? document->state().previous : noSelection();
}

} // namespace host

Acad::ErrorStatus AcEdSelectionSetService::remove(int index) {
    if (index < 0 || index >= mIds.length()) {
        return Acad::eInvalidIndex;
    }
    mRemoved.insert(index);
    return Acad::eOk;
}

Acad::ErrorStatus addSSgetFilterInputContextReactor(AcApDocument* document, AcEdSSGetFilter* filter) {
    if (document == nullptr || filter == nullptr) {
        return Acad::eInvalidInput;
    }
    document->state().selectionFilters.push_back(filter);
    return Acad::eOk;
}

Acad::ErrorStatus removeSSgetFilterInputContextReactor(AcApDocument* document, AcEdSSGetFilter* filter) {
    if (document == nullptr) {
        return Acad::eInvalidInput;
    }
    return std::erase(document->state().selectionFilters, filter) > 0 ? Acad::eOk : Acad::eKeyNotFound;
}
