// Selection sets and their names.
#include "host/ed/acdocman.h"
#include "host/ed/aced.h"
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

bool PickSet::add(AcDbObjectId id, std::shared_ptr<const SelectedBy> how) {
    if (id.isNull() || !mMembers.emplace(id.stub(), std::move(how)).second) {
        return false;
    }
    ids.push_back(id);
    return true;
}

std::shared_ptr<const SelectedBy> PickSet::selectedBy(AcDbObjectId id) const {
    const auto found = mMembers.find(id.stub());
    return found != mMembers.end() ? found->second : nullptr;
}

SelectionShape SelectionShape::through(Kind kind, const std::vector<AcGePoint3d>& points) {
    SelectionShape shape{kind, {}};
    const AcGeMatrix3d toWorld = ucsMatrix();
    for (const AcGePoint3d& point : points) {
        shape.points.push_back(to2d(toWorld * point));
    }
    return shape;
}

std::vector<AcGePoint3d> rectangleCorners(const AcGePoint3d& a, const AcGePoint3d& b) {
    return {a, {b.x, a.y, a.z}, b, {a.x, b.y, a.z}};
}

std::shared_ptr<const SelectedBy> selectedBy(SelectionShape::Kind kind, std::vector<AcGePoint3d> points) {
    const SelectedBy::Method method = kind == SelectionShape::Kind::window     ? SelectedBy::Method::window
                                      : kind == SelectionShape::Kind::crossing ? SelectedBy::Method::crossing
                                                                               : SelectedBy::Method::fence;
    return std::make_shared<const SelectedBy>(SelectedBy{method, std::move(points)});
}

std::shared_ptr<const SelectedBy> selectedByPick(const AcGePoint3d& point) {
    return std::make_shared<const SelectedBy>(SelectedBy{SelectedBy::Method::pick, {point}});
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
