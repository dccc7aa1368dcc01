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

namespace {

/// Asks the index of the drawing.
class IndexQuery : public SpatialQuery {
public:
    std::vector<Placed> overlapping(AcDbObjectId block, const Box2d& box) override {
        return block.isNull() ? std::vector<Placed>() : block.database()->impl().places.of(block).search(box);
    }
};

class BlockWalk : public SpatialQuery {
public:
    std::vector<Placed> overlapping(AcDbObjectId block, const Box2d& box) override {
        std::vector<Placed> found;
        const auto* record = peek<AcDbBlockTableRecord>(block);
        for (AcDbStub* stub : record != nullptr ? record->entities() : std::vector<AcDbStub*>()) {
            const auto* entity = peek<AcDbEntity>(AcDbObjectId(stub));
            if (entity == nullptr) {
                continue;
            }
            const ReadAccess access(*entity);
            AcDbExtents extents;
            if (entity->getGeomExtents(extents) != Acad::eOk) {
                found.push_back({stub, {}});
                continue;
            }
            const Box2d own{to2d(extents.minPoint()), to2d(extents.maxPoint())};
            if (own.touches(box)) {
                found.push_back({stub, own});
            }
        }
        return found;
    }
};

std::unique_ptr<SpatialQuery>& installedQuery() {
    static std::unique_ptr<SpatialQuery> query = std::make_unique<IndexQuery>();
    return query;
}

FlattenOptions pictureOptions(double deviation, const Box2d& view) {
    FlattenOptions options;
    options.view = {{view.minimum.x, view.minimum.y, 0.0}, {view.maximum.x, view.maximum.y, 0.0}};
    options.deviation = deviation;
    options.dashResolution = HUGE_VAL; // gaps of a linetype belong to the line
    return options;
}

/// Whether the entity is drawn as its lines and arcs and nothing else.
bool isPlainCurve(const AcDbEntity& entity) {
    const AcRxClass* kind = entity.isA();
    if (kind == AcDbPolyline::desc()) {
        return !static_cast<const AcDbPolyline&>(entity).hasWidth();
    }
    return kind == AcDbLine::desc() || kind == AcDbCircle::desc() || kind == AcDbArc::desc() ||
           entity.dxfRecordName() == "ELLIPSE";
}

/// Draws entities into a sink: plain curves exactly, others as they are drawn.
class Picture {
public:
    Picture(AcDbDatabase& database, PlanSink& sink, double deviation, const Box2d& view)
        : mDatabase(database), mSink(sink), mOptions(pictureOptions(deviation, view)) {}

    void draw(AcDbEntity& entity) {
        const ReadAccess access(entity);
        mPieces.clear();
        if (isPlainCurve(entity) && entity.curvePieces(mPieces)) {
            for (const CurvePiece& piece : mPieces) {
                mSink.piece(flattened(mIsMoved ? piece.transformed(mTransform) : piece));
            }
            return;
        }
        if (mFlattener == nullptr) {
            mSource = drawingSource(mDatabase);
            mFlattener = std::make_unique<Flattener>(*mSource, mSink, mOptions);
        }
        mFlattener->setTransform(mTransform);
        mFlattener->draw(entity);
    }
    void setTransform(const AcGeMatrix3d& transform) {
        mTransform = transform;
        mIsMoved = true;
    }

private:
    AcDbDatabase& mDatabase;
    PlanSink& mSink;
    FlattenOptions mOptions;
    AcGeMatrix3d mTransform;
    bool mIsMoved = false;
    std::vector<CurvePiece> mPieces;
    std::unique_ptr<DrawingSource> mSource;
    std::unique_ptr<Flattener> mFlattener;
};

bool isRectangle(const SelectionShape& shape, const Box2d& box) {
    if (shape.kind == SelectionShape::Kind::fence || shape.points.size() != 4) {
        return false;
    }
    return std::all_of(shape.points.begin(), shape.points.end(), [&](const AcGePoint2d& point) {
        return (point.x == box.minimum.x || point.x == box.maximum.x) &&
               (point.y == box.minimum.y || point.y == box.maximum.y);
    });
}

bool contains(const Box2d& outer, const Box2d& inner) {
    return !inner.isEmpty() && outer.contains(inner.minimum) && outer.contains(inner.maximum);
}

Box2d around(const AcGePoint3d& point, double aperture) {
    return Box2d{to2d(point), to2d(point)}.grownBy(aperture);
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
    for (const Placed& place :
         spatialQuery().overlapping(database.currentSpaceId(), around(point, aperture))) {
        auto* entity = peek<AcDbEntity>(AcDbObjectId(place.stub));
        if (entity != nullptr && isSelectable(*entity)) {
            sink.start();
            picture.draw(*entity);
            if (sink.distance() <= aperture) {
                hits.push_back({entity->objectId(), sink.distance()});
            }
        }
    }
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
          mPoint(point), mAperture(aperture) {}

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
        for (const Placed& place : spatialQuery().overlapping(block, apertureIn(toWorld))) {
            auto* entity = peek<AcDbEntity>(AcDbObjectId(place.stub));
            if (entity == nullptr || AcDbAttributeDefinition::cast(entity) != nullptr) {
                continue;
            }
            const double distance = distanceOf(*entity, toWorld);
            if (distance <= mAperture) {
                hits.push_back({entity->objectId(), distance});
            }
        }
        return hits.empty() ? AcDbObjectId() : nearest(hits.begin(), hits.end())->id;
    }

    /// The box of the aperture in a block's coordinates; everything when the block's plane is not the
    /// world's.
    Box2d apertureIn(const AcGeMatrix3d& toWorld) const {
        constexpr double endless = 1e300;
        Box2d box{{-endless, -endless}, {endless, endless}};
        const AcGeVector3d axis = toWorld * AcGeVector3d::kZAxis;
        if (!toWorld.isSingular() && axis.isParallelTo(AcGeVector3d::kZAxis)) {
            const AcGeMatrix3d inverse = toWorld.inverse();
            box = {};
            for (const double x : {mPoint.x - mAperture, mPoint.x + mAperture}) {
                for (const double y : {mPoint.y - mAperture, mPoint.y + mAperture}) {
                    box.add(to2d(inverse * AcGePoint3d(x, y, 0.0)));
                }
            }
        }
        return box;
    }

    DistanceSink mSink;
    Picture mPicture;
    AcGePoint3d mPoint;
    double mAperture;
};

} // namespace

SpatialQuery& spatialQuery() {
    return *installedQuery();
}

void setSpatialQuery(std::unique_ptr<SpatialQuery> query) {
    installedQuery() = query != nullptr ? std::move(query) : std::make_unique<IndexQuery>();
}

std::unique_ptr<SpatialQuery> makeBlockWalk() {
    return std::make_unique<BlockWalk>();
}

bool isSelectable(const AcDbEntity& entity) {
    if (entity.isErased() || entity.visibility() == AcDb::kInvisible) {
        return false;
    }
    const AcDbObjectId layerId = entity.layerId();
    const auto* layer = peek<AcDbLayerTableRecord>(layerId);
    if (layer != nullptr && (layer->isOff() || layer->isFrozen())) {
        return false;
    }
    const AcDbDatabase* database = entity.database();
    const auto* viewport = database != nullptr ? peek<AcDbViewport>(database->activeViewportId()) : nullptr;
    if (viewport == nullptr || entity.ownerId() != database->modelSpaceId()) {
        return true;
    }
    const ReadAccess access(*viewport);
    return !viewport->isLayerFrozenInViewport(layerId);
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
    Box2d box;
    for (const AcGePoint2d& point : shape.points) {
        box.add(point);
    }
    const bool rectangle = isRectangle(shape, box);
    ShapeSink sink(shape);
    Picture picture(*database, sink, std::max(std::max(box.width(), box.height()) * 1e-5, 1e-9), box);
    for (const Placed& place : spatialQuery().overlapping(database->currentSpaceId(), box)) {
        auto* entity = peek<AcDbEntity>(AcDbObjectId(place.stub));
        if (entity == nullptr || !isSelectable(*entity)) {
            continue;
        }
        // A rectangle holds what its box holds, and nothing of what its box does not.
        bool selected = rectangle && contains(box, place.box);
        if (!selected && !(rectangle && shape.kind == SelectionShape::Kind::window)) {
            sink.start();
            picture.draw(*entity);
            selected = sink.isSelected();
        }
        if (selected) {
            found.push_back(entity->objectId());
        }
    }
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
