// What lies at a point or in a shape of the current space.
#include "host/db/dbents.h"
#include "host/db/drawingsource.h"
#include "host/ed/aced.h"
#include "host/ed/plansink.h"
#include "host/ed/selection.h"
#include "host/ed/sysvars.h"

#include <algorithm>
#include <cmath>

namespace host {

PlanBox PlanBox::of(std::span<const AcGePoint2d> points) {
    PlanBox box{HUGE_VAL, HUGE_VAL, -HUGE_VAL, -HUGE_VAL};
    for (const AcGePoint2d& point : points) {
        box.minX = std::min(box.minX, point.x);
        box.minY = std::min(box.minY, point.y);
        box.maxX = std::max(box.maxX, point.x);
        box.maxY = std::max(box.maxY, point.y);
    }
    return box;
}

namespace {

/// The plan of an entity's extents; nothing for one without any (an infinite line).
std::optional<PlanBox> planOf(const AcDbEntity& entity) {
    AcDbExtents extents;
    if (entity.getGeomExtents(extents) != Acad::eOk) {
        return std::nullopt;
    }
    return PlanBox{extents.minPoint().x, extents.minPoint().y, extents.maxPoint().x, extents.maxPoint().y};
}

/// Looks at every entity of the block.
class BlockWalk : public SpatialQuery {
public:
    void overlapping(AcDbObjectId block, const PlanBox& box,
                     const std::function<bool(AcDbEntity&)>& visit) override {
        const auto* record = peek<AcDbBlockTableRecord>(block);
        if (record == nullptr) {
            return;
        }
        for (AcDbStub* stub : record->entities()) {
            auto* entity = peek<AcDbEntity>(AcDbObjectId(stub));
            if (entity == nullptr) {
                continue;
            }
            const ReadAccess access(*entity);
            const std::optional<PlanBox> plan = planOf(*entity);
            if ((!plan || plan->overlaps(box)) && !visit(*entity)) {
                return;
            }
        }
    }
};

std::unique_ptr<SpatialQuery>& installedQuery() {
    static std::unique_ptr<SpatialQuery> query = std::make_unique<BlockWalk>();
    return query;
}

FlattenOptions pictureOptions(double deviation, const PlanBox& view) {
    FlattenOptions options;
    options.view = {{view.minX, view.minY, 0.0}, {view.maxX, view.maxY, 0.0}};
    options.deviation = deviation;
    options.dashResolution = HUGE_VAL; // gaps of a linetype belong to the line
    return options;
}

/// Draws entities into a sink.
class Picture {
public:
    Picture(AcDbDatabase& database, PrimitiveSink& sink, double deviation, const PlanBox& view)
        : mSource(drawingSource(database)), mFlattener(*mSource, sink, pictureOptions(deviation, view)) {}
    void draw(AcDbEntity& entity) {
        const ReadAccess access(entity);
        mFlattener.draw(entity);
    }
    void setTransform(const AcGeMatrix3d& transform) { mFlattener.setTransform(transform); }

private:
    std::unique_ptr<DrawingSource> mSource;
    Flattener mFlattener;
};

bool isRectangle(const SelectionShape& shape, const PlanBox& box) {
    if (shape.kind == SelectionShape::Kind::fence || shape.points.size() != 4) {
        return false;
    }
    return std::all_of(shape.points.begin(), shape.points.end(), [&](const AcGePoint2d& point) {
        return (point.x == box.minX || point.x == box.maxX) && (point.y == box.minY || point.y == box.maxY);
    });
}

PlanBox around(const AcGePoint3d& point, double aperture) {
    return {point.x - aperture, point.y - aperture, point.x + aperture, point.y + aperture};
}

struct Hit {
    AcDbObjectId id;
    double distance;
};

/// Hits of a block's selectable entities within the aperture, in drawing order.
std::vector<Hit> hitsAt(AcDbDatabase& database, const AcGePoint3d& point, double aperture) {
    std::vector<Hit> hits;
    DistanceSink sink(to2d(point), aperture);
    Picture picture(database, sink, aperture / 20.0, around(point, aperture));
    spatialQuery().overlapping(database.currentSpaceId(), around(point, aperture), [&](AcDbEntity& entity) {
        if (isSelectable(entity)) {
            sink.start();
            picture.draw(entity);
            if (sink.distance() <= aperture) {
                hits.push_back({entity.objectId(), sink.distance()});
            }
        }
        return true;
    });
    return hits;
}

/// The nearest of several, the later of equals.
template <class Iterator>
Iterator nearest(Iterator first, Iterator last) {
    Iterator best = first;
    for (Iterator at = first; at != last; ++at) {
        if (at->distance <= best->distance) {
            best = at;
        }
    }
    return best;
}

/// Goes down into references at a point.
class NestedSearch {
public:
    NestedSearch(AcDbDatabase& database, const AcGePoint3d& point, double aperture)
        : mSink(to2d(point), aperture), mPicture(database, mSink, aperture / 20.0, around(point, aperture)),
          mAperture(aperture) {}

    void descend(NestedPick& pick) {
        constexpr int deepest = 100;
        for (int depth = 0; depth < deepest; ++depth) {
            const auto* reference = peek<AcDbBlockReference>(pick.entity);
            if (reference == nullptr) {
                return;
            }
            const ReadAccess access(*reference);
            if (const AcDbObjectId attribute = attributeAt(*reference, pick.toWorld); !attribute.isNull()) {
                // An attribute belongs to the reference and lies in its coordinates.
                pick.entity = attribute;
                return;
            }
            const AcGeMatrix3d inner = pick.toWorld * reference->blockTransform();
            const AcDbObjectId part = partAt(reference->blockTableRecord(), inner);
            if (part.isNull()) {
                return;
            }
            pick.containers.insert(pick.containers.begin(), pick.entity);
            pick.entity = part;
            pick.toWorld = inner;
        }
    }

private:
    double distanceOf(AcDbEntity& entity, const AcGeMatrix3d& toWorld) {
        mSink.start();
        mPicture.setTransform(toWorld);
        mPicture.draw(entity);
        return mSink.distance();
    }

    AcDbObjectId attributeAt(const AcDbBlockReference& reference, const AcGeMatrix3d& toWorld) {
        AcDbObjectId found;
        const std::unique_ptr<AcDbObjectIterator> iterator(reference.attributeIterator());
        for (; iterator != nullptr && !iterator->done(); iterator->step()) {
            auto* attribute = peek<AcDbEntity>(iterator->objectId());
            if (attribute != nullptr && distanceOf(*attribute, toWorld) <= mAperture) {
                found = attribute->objectId();
            }
        }
        return found;
    }

    AcDbObjectId partAt(AcDbObjectId block, const AcGeMatrix3d& toWorld) {
        std::vector<Hit> hits;
        if (const auto* record = peek<AcDbBlockTableRecord>(block)) {
            for (AcDbStub* stub : record->entities()) {
                auto* entity = peek<AcDbEntity>(AcDbObjectId(stub));
                if (entity == nullptr || AcDbAttributeDefinition::cast(entity) != nullptr) {
                    continue;
                }
                const double distance = distanceOf(*entity, toWorld);
                if (distance <= mAperture) {
                    hits.push_back({entity->objectId(), distance});
                }
            }
        }
        return hits.empty() ? AcDbObjectId() : nearest(hits.begin(), hits.end())->id;
    }

    DistanceSink mSink;
    Picture mPicture;
    double mAperture;
};

} // namespace

SpatialQuery& spatialQuery() {
    return *installedQuery();
}

void setSpatialQuery(std::unique_ptr<SpatialQuery> query) {
    installedQuery() = query != nullptr ? std::move(query) : std::make_unique<BlockWalk>();
}

bool isSelectable(const AcDbEntity& entity) {
    if (entity.isErased() || entity.visibility() == AcDb::kInvisible) {
        return false;
    }
    const auto* layer = peek<AcDbLayerTableRecord>(entity.layerId());
    return layer == nullptr || (!layer->isOff() && !layer->isFrozen());
}

double pickAperture() {
    const double viewHeight = systemVariableReal(L"VIEWSIZE");
    const ResbufList screen = systemVariable(L"SCREENSIZE");
    const double pixels = screen != nullptr ? screen->resval.rpoint[1] : 0.0;
    const double unitsAPixel = pixels > 0.0 && viewHeight > 0.0 ? viewHeight / pixels : 0.1;
    return std::max(systemVariableInteger(L"PICKBOX"), 1) * unitsAPixel;
}

std::vector<AcDbObjectId> entitiesIn(const SelectionShape& shape) {
    std::vector<AcDbObjectId> found;
    AcDbDatabase* database = acdbCurDwg();
    const std::size_t least = shape.kind == SelectionShape::Kind::fence ? 2 : 3;
    if (database == nullptr || shape.points.size() < least) {
        return found;
    }
    const PlanBox box = PlanBox::of(shape.points);
    const bool rectangle = isRectangle(shape, box);
    ShapeSink sink(shape);
    const double size = std::max(box.maxX - box.minX, box.maxY - box.minY);
    Picture picture(*database, sink, std::max(size * 1e-4, 1e-9), box);
    spatialQuery().overlapping(database->currentSpaceId(), box, [&](AcDbEntity& entity) {
        if (!isSelectable(entity)) {
            return true;
        }
        const std::optional<PlanBox> plan = planOf(entity);
        bool selected = rectangle && plan && box.contains(*plan);
        if (!selected && !(rectangle && shape.kind == SelectionShape::Kind::window)) {
            sink.start();
            picture.draw(entity);
            selected = sink.isSelected();
        }
        if (selected) {
            found.push_back(entity.objectId());
        }
        return true;
    });
    return found;
}

std::vector<AcDbObjectId> entitiesAt(const AcGePoint3d& point, double aperture) {
    std::vector<AcDbObjectId> ids;
    if (AcDbDatabase* database = acdbCurDwg()) {
        std::vector<Hit> hits = hitsAt(*database, point, aperture);
        std::reverse(hits.begin(), hits.end());
        std::stable_sort(hits.begin(), hits.end(),
                         [](const Hit& a, const Hit& b) { return a.distance < b.distance; });
        std::transform(hits.begin(), hits.end(), std::back_inserter(ids),
                       [](const Hit& hit) { return hit.id; });
    }
    return ids;
}

AcDbObjectId entityAt(const AcGePoint3d& point, double aperture) {
    AcDbDatabase* database = acdbCurDwg();
    if (database == nullptr) {
        return {};
    }
    const std::vector<Hit> hits = hitsAt(*database, point, aperture);
    return hits.empty() ? AcDbObjectId() : nearest(hits.begin(), hits.end())->id;
}

std::optional<NestedPick> nestedEntityAt(const AcGePoint3d& point, double aperture) {
    NestedPick pick;
    pick.entity = entityAt(point, aperture);
    AcDbDatabase* database = acdbCurDwg();
    if (pick.entity.isNull() || database == nullptr) {
        return std::nullopt;
    }
    NestedSearch(*database, point, aperture).descend(pick);
    return pick;
}

} // namespace host
