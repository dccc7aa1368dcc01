// Selection: sets of entities behind ads_names, filters, what lies at a point or in a window, and the
// dialogue "选择对象".
#pragma once

#include "host/db/db.h"

#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <unordered_map>
#include <unordered_set>
#include <vector>

class AcApDocument;

namespace host {

/// How entities came into a set, as acedSSNameX tells: at a point, or in a shape.
struct SelectedBy {
    enum class Method { other = 0, pick = 1, window = 2, crossing = 3, fence = 4 };
    Method method = Method::other;
    std::vector<AcGePoint3d> points; ///< UCS: of the pick, the polygon, the fence
};

/// Entities in the order they were selected, each once.
struct PickSet {
    std::vector<AcDbObjectId> ids;

    bool add(AcDbObjectId id, std::shared_ptr<const SelectedBy> how = nullptr);
    /// Null when that is not known.
    std::shared_ptr<const SelectedBy> selectedBy(AcDbObjectId id) const;
    bool remove(AcDbObjectId id);
    /// In time of both sizes together.
    void removeAll(const std::vector<AcDbObjectId>& gone);
    bool contains(AcDbObjectId id) const { return mMembers.count(id.stub()) > 0; }
    std::size_t size() const { return ids.size(); }
    bool empty() const { return ids.empty(); }
    void clear();

private:
    std::unordered_map<AcDbStub*, std::shared_ptr<const SelectedBy>> mMembers;
};

/// A name for a copy of the set; freed with acedSSFree.
void makePickSetName(PickSet set, ads_name name);
/// The set of a name; null when the name is none.
PickSet* pickSetOf(const ads_name name);
bool freePickSet(const ads_name name);
/// How many names are in use.
std::size_t pickSetCount();

/// Finds entities by place. The default asks the drawing's index.
class SpatialQuery {
public:
    virtual ~SpatialQuery() = default;
    /// Entities of the block that are not erased and whose box in the plan of the world may touch the given
    /// one, in drawing order.
    virtual std::vector<Placed> overlapping(AcDbObjectId block, const Box2d& box) = 0;
};
SpatialQuery& spatialQuery();
/// Null gives back the default.
void setSpatialQuery(std::unique_ptr<SpatialQuery> query);
/// Looks at every entity of the block: what the index must agree with.
std::unique_ptr<SpatialQuery> makeBlockWalk();

/// A result-buffer list as a condition on entities: group values with wildcards in names, -4 operators,
/// extended data by application.
class SelectionFilter {
public:
    /// Null or empty: accepts everything. `isValid` is false for operators that do not pair.
    explicit SelectionFilter(const resbuf* list);
    ~SelectionFilter();
    SelectionFilter(SelectionFilter&&) noexcept;
    bool isValid() const;
    bool accepts(AcDbEntity& entity) const;

    struct Node;

private:
    std::unique_ptr<Node> mRoot;
    bool mValid = true;
};

/// The polygon's inside, or a line.
struct SelectionShape {
    enum class Kind { window, crossing, fence };
    Kind kind = Kind::crossing;
    std::vector<AcGePoint2d> points; ///< world; a polygon is closed by itself

    /// Through points in UCS coordinates.
    static SelectionShape through(Kind kind, const std::vector<AcGePoint3d>& points);
};
/// The corners of a rectangle along the axes of the UCS, from two opposite ones.
std::vector<AcGePoint3d> rectangleCorners(const AcGePoint3d& a, const AcGePoint3d& b);
std::shared_ptr<const SelectedBy> selectedBy(SelectionShape::Kind kind, std::vector<AcGePoint3d> points);
std::shared_ptr<const SelectedBy> selectedByPick(const AcGePoint3d& point);

/// What may be picked: not erased, on a layer that is on and thawed, visible.
bool isSelectable(const AcDbEntity& entity);

/// Entities of the current space in a shape, in drawing order.
std::vector<AcDbObjectId> entitiesIn(const SelectionShape& shape);
/// The entity nearest to a point within the aperture, the topmost of equals; null when there is none. World
/// coordinates.
AcDbObjectId entityAt(const AcGePoint3d& point, double aperture);
/// Everything within the aperture, nearest first.
std::vector<AcDbObjectId> entitiesAt(const AcGePoint3d& point, double aperture);
/// What a reference holds at the point: the innermost entity, the references on the way from the outermost
/// one, and the transform from the entity's coordinates to the world.
struct NestedPick {
    AcDbObjectId entity;
    std::vector<AcDbObjectId> containers; ///< innermost first
    AcGeMatrix3d toWorld;
};
std::optional<NestedPick> nestedEntityAt(const AcGePoint3d& point, double aperture);
/// Half the pick box in drawing units.
double pickAperture();

/// With groups selected as a whole (PICKSTYLE): the other members of the selectable groups that the entities
/// belong to, added behind them.
void addGroupMembers(std::vector<AcDbObjectId>& ids);
/// The members of a group by its name; nothing when there is none.
std::optional<std::vector<AcDbObjectId>> groupMembers(std::wstring_view name);

struct SelectOptions {
    std::wstring addPrompt = L"\n选择对象: ";
    std::wstring removePrompt = L"\n删除对象: ";
    bool single = false;          ///< one answer ends it, whatever it finds
    bool everythingInBox = false; ///< a pick takes all in the aperture
    bool rejectLocked = false;    ///< entities on locked layers are left out, and told
    bool silent = false;
    bool useImplied = false; ///< a pick-first set is the answer
};
/// The dialogue. RTNORM with a set that is not empty, RTNONE with an empty one, RTCAN, or RTKWORD.
int selectEntities(const SelectOptions& options, const SelectionFilter& filter, PickSet& result);

/// The pick-first set and the set selected last, of the current document.
PickSet& impliedSelection();
PickSet& previousSelection();

} // namespace host

/// Told of what is being selected; may take entities out again.
class AcEdSelectionSetService {
public:
    explicit AcEdSelectionSetService(const AcDbObjectIdArray& ids) : mIds(ids) {}
    Acad::ErrorStatus ssNameX(resbuf**, int = 0) const { return Acad::eNotApplicable; }
    Acad::ErrorStatus remove(int index);
    Acad::ErrorStatus highlight(int, const AcDbFullSubentPath&) { return Acad::eOk; }
    bool isRemoved(int index) const { return mRemoved.count(index) > 0; }

private:
    const AcDbObjectIdArray& mIds;
    std::unordered_set<int> mRemoved;
};

class AcEdSSGetFilter : public AcRxObject {
    ACRX_DECLARE_MEMBERS(AcEdSSGetFilter);

public:
    virtual void ssgetAddFilter(int /*flags*/, AcEdSelectionSetService&, const AcDbObjectIdArray& /*set*/,
                                const AcDbObjectIdArray& /*subSet*/) {}
    virtual void ssgetRemoveFilter(int, AcEdSelectionSetService&, const AcDbObjectIdArray&,
                                   const AcDbObjectIdArray&, AcDbObjectIdArray&) {}
    virtual void ssgetAddFailed(int, int, AcEdSelectionSetService&, resbuf*) {}
    virtual void ssgetRemoveFailed(int, int, AcEdSelectionSetService&, resbuf*, AcDbObjectIdArray&) {}
};

Acad::ErrorStatus addSSgetFilterInputContextReactor(AcApDocument* document, AcEdSSGetFilter* filter);
Acad::ErrorStatus removeSSgetFilterInputContextReactor(AcApDocument* document, AcEdSSGetFilter* filter);
