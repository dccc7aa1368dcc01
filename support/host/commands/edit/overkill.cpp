#include "host/commands/edit/overkill.h"

#include "host/commands/edit/coverings.h"
#include "host/commands/edit/editing.h"
#include "host/db/dbents.h"
#include "host/db/entities/subentities.h"

#include <algorithm>
#include <cmath>
#include <tuple>
#include <unordered_map>

namespace host {
namespace {

/// What an entity files of its own, real numbers apart from all else: two entities are equal when the numbers
/// are near each other and the rest is the same.
class Fields : public MemoryDwgFiler {
public:
    explicit Fields(const AcDbEntity& entity) : MemoryDwgFiler(AcDb::kFileFiler, entity.database()) {
        entity.dwgOutFields(this);
        if (const SubentityList* parts = entity.subentities()) {
            parts->forEach<AcDbEntity>([&](const AcDbEntity& part) { part.dwgOutFields(this); });
        }
    }
    bool filesCommonData() const override { return false; }
    Acad::ErrorStatus writeDouble(double value) override {
        mNumbers.push_back(value);
        return Acad::eOk;
    }
    Acad::ErrorStatus writePoint2d(const AcGePoint2d& point) override {
        mNumbers.insert(mNumbers.end(), {point.x, point.y});
        return Acad::eOk;
    }
    Acad::ErrorStatus writePoint3d(const AcGePoint3d& point) override {
        mNumbers.insert(mNumbers.end(), {point.x, point.y, point.z});
        return Acad::eOk;
    }
    bool isNear(const Fields& other, double tolerance) const {
        return bytes() == other.bytes() &&
               std::ranges::equal(mNumbers, other.mNumbers,
                                  [&](double a, double b) { return std::fabs(a - b) <= tolerance; });
    }

protected:
    Acad::ErrorStatus writeId(ReferenceKind kind, const AcDbObjectId& id) override {
        const bool owns = kind == ReferenceKind::hardOwnership || kind == ReferenceKind::softOwnership;
        return owns ? Acad::eOk : MemoryDwgFiler::writeId(kind, id); // each has parts of its own
    }

private:
    std::vector<double> mNumbers;
};

/// Everything but the shape.
struct Properties {
    std::tuple<Adesk::UInt32, AcDbStub*, AcDbStub*, double, int, bool, AcDbStub*> values;

    Properties(const AcDbEntity& entity, unsigned ignored) {
        const auto isCompared = [&](OverkillOptions::Property property) { return (ignored & property) == 0; };
        values = {isCompared(OverkillOptions::color) ? entity.entityColor().color() : 0,
                  isCompared(OverkillOptions::layer) ? entity.layerId().stub() : nullptr,
                  isCompared(OverkillOptions::linetype) ? entity.linetypeId().stub() : nullptr,
                  isCompared(OverkillOptions::linetypeScale) ? entity.linetypeScale() : 0.0,
                  isCompared(OverkillOptions::lineWeight) ? static_cast<int>(entity.lineWeight()) : 0,
                  entity.visibility() == AcDb::kVisible,
                  entity.ownerId().stub()};
    }
    auto operator<=>(const Properties&) const = default;
};

/// Numbers that tell roughly where an entity is, in cells wide enough that those of equals are the same or
/// neighbours.
class Places {
public:
    static constexpr std::size_t dimensions = 4;
    using Key = std::array<double, dimensions>;

    explicit Places(double tolerance) : mTolerance(tolerance), mCell(std::max(tolerance * 1024.0, 1e-4)) {}
    void add(const Key& key, std::uint32_t item) { mItems[hashOf(cellsOf(key, 0.0))].push_back(item); }
    /// Calls visit(item) for those that may be near; false ends it.
    template <class Visit>
    void near(const Key& key, Visit&& visit) const {
        const Cells low = cellsOf(key, -mTolerance);
        const Cells high = cellsOf(key, mTolerance);
        for (unsigned corner = 0; corner < 1U << dimensions; ++corner) {
            Cells cells = low;
            bool isNew = true;
            for (std::size_t i = 0; i < dimensions; ++i) {
                if ((corner >> i & 1U) != 0) {
                    isNew = isNew && high[i] != low[i];
                    cells[i] = high[i];
                }
            }
            const auto found = isNew ? mItems.find(hashOf(cells)) : mItems.end();
            if (found == mItems.end()) {
                continue;
            }
            for (const std::uint32_t item : found->second) {
                if (!visit(item)) {
                    return;
                }
            }
        }
    }

private:
    using Cells = std::array<double, dimensions>;
    Cells cellsOf(const Key& key, double shift) const {
        Cells cells;
        for (std::size_t i = 0; i < dimensions; ++i) {
            cells[i] = std::floor((key[i] + shift) / mCell);
        }
        return cells;
    }
    static std::size_t hashOf(const Cells& cells) {
        std::size_t hash = 0;
        for (const double cell : cells) {
            hash = hash * 0x9E3779B97F4A7C15ULL + std::hash<double>()(cell + 0.0) + (hash >> 29);
        }
        return hash;
    }
    double mTolerance;
    double mCell;
    std::unordered_map<std::size_t, std::vector<std::uint32_t>> mItems;
};

Places::Key placeOf(const AcDbEntity& entity) {
    AcDbExtents box;
    return entity.getGeomExtents(box) == Acad::eOk
               ? Places::Key{box.minPoint().x, box.minPoint().y, box.maxPoint().x, box.maxPoint().y}
               : Places::Key{};
}

/// A line the other way round is the same line.
bool isSameLine(const AcDbEntity& a, const AcDbEntity& b, double tolerance) {
    const auto* first = AcDbLine::cast(&a);
    const auto* second = AcDbLine::cast(&b);
    const auto isNear = [&](const AcGePoint3d& p, const AcGePoint3d& q) {
        return (p - q).length() <= tolerance;
    };
    return first != nullptr && second != nullptr && first->thickness() == second->thickness() &&
           isNear(first->startPoint(), second->endPoint()) && isNear(first->endPoint(), second->startPoint());
}

bool isSame(const AcDbEntity& a, const AcDbEntity& b, const OverkillOptions& options) {
    return a.isA() == b.isA() && a.dxfRecordName() == b.dxfRecordName() &&
           Properties(a, options.ignored) == Properties(b, options.ignored) &&
           (Fields(a).isNear(Fields(b), options.tolerance) || isSameLine(a, b, options.tolerance));
}

/// Erases those that equal an earlier one; leaves the others in the list.
int eraseEqual(std::vector<AcDbObjectId>& ids, const OverkillOptions& options) {
    Places places(options.tolerance);
    std::vector<AcDbObjectId> kept;
    int erased = 0;
    for (const AcDbObjectId id : ids) {
        const auto* entity = peek<AcDbEntity>(id);
        if (entity == nullptr) {
            continue;
        }
        bool isDouble = false;
        const Places::Key key = [&] {
            const ReadAccess access(*entity);
            return placeOf(*entity);
        }();
        places.near(key, [&](std::uint32_t item) {
            const auto* other = peek<AcDbEntity>(kept[item]);
            const ReadAccess access(*entity);
            const ReadAccess otherAccess(*other);
            isDouble = isSame(*entity, *other, options);
            return !isDouble;
        });
        if (isDouble && eraseEntity(id)) {
            ++erased;
            continue;
        }
        places.add(key, static_cast<std::uint32_t>(kept.size()));
        kept.push_back(id);
    }
    ids = std::move(kept);
    return erased;
}

/// Numbers for equal properties, so that coverings compare one number.
class PropertyNumbers {
public:
    explicit PropertyNumbers(unsigned ignored) : mIgnored(ignored) {}
    int operator()(const AcDbEntity& entity, double thickness) {
        return mNumbers
            .try_emplace({Properties(entity, mIgnored), thickness}, static_cast<int>(mNumbers.size()))
            .first->second;
    }

private:
    unsigned mIgnored;
    std::map<std::pair<Properties, double>, int> mNumbers;
};

int mergeLines(const std::vector<AcDbObjectId>& ids, const OverkillOptions& options) {
    PropertyNumbers numbers(options.ignored);
    std::vector<AcDbObjectId> lines;
    std::vector<Segment> segments;
    for (const AcDbObjectId id : ids) {
        if (const auto* line = peek<AcDbLine>(id)) {
            const ReadAccess access(*line);
            lines.push_back(id);
            segments.push_back({line->startPoint(), line->endPoint(), numbers(*line, line->thickness())});
        }
    }
    int erased = 0;
    for (const SegmentCover& cover : coverSegments(segments, {options.tolerance, options.mergesEnds})) {
        const Opened<AcDbLine> kept(lines[cover.members.front()], AcDb::kForWrite);
        if (!kept) {
            continue;
        }
        kept->setStartPoint(cover.start);
        kept->setEndPoint(cover.end);
        for (std::size_t i = 1; i < cover.members.size(); ++i) {
            erased += eraseEntity(lines[cover.members[i]]) ? 1 : 0;
        }
    }
    return erased;
}

/// Puts a full circle with the properties of the arc in its place.
bool closeArc(AcDbObjectId id) {
    const auto* arc = peek<AcDbArc>(id);
    std::unique_ptr<AcDbCircle> circle;
    {
        const ReadAccess access(*arc);
        circle = std::make_unique<AcDbCircle>(arc->center(), arc->normal(), arc->radius());
        circle->setThickness(arc->thickness());
        circle->setPropertiesFrom(arc);
    }
    return replaceEntity(id, std::move(circle));
}

int mergeArcs(const std::vector<AcDbObjectId>& ids, const OverkillOptions& options) {
    PropertyNumbers numbers(options.ignored);
    std::vector<AcDbObjectId> arcs;
    std::vector<CircleArc> shapes;
    for (const AcDbObjectId id : ids) {
        if (const auto* arc = peek<AcDbArc>(id)) {
            const ReadAccess access(*arc);
            arcs.push_back(id);
            shapes.push_back({arc->center(), arc->normal(), arc->radius(), arc->startAngle(),
                              arc->totalAngle(), numbers(*arc, arc->thickness())});
        } else if (const auto* circle = peek<AcDbCircle>(id)) {
            const ReadAccess access(*circle);
            arcs.push_back(id);
            shapes.push_back({circle->center(), circle->normal(), circle->radius(), 0.0, CircleArc::full,
                              numbers(*circle, circle->thickness())});
        }
    }
    int erased = 0;
    for (const ArcCover& cover : coverArcs(shapes, {options.tolerance, options.mergesEnds})) {
        const AcDbObjectId id = arcs[cover.members.front()];
        if (cover.sweep < CircleArc::full) {
            const Opened<AcDbArc> kept(id, AcDb::kForWrite);
            if (!kept) {
                continue;
            }
            kept->setStartAngle(cover.start);
            kept->setEndAngle(cover.start + cover.sweep);
        } else if (peek<AcDbArc>(id) != nullptr && !closeArc(id)) {
            continue;
        }
        for (std::size_t i = 1; i < cover.members.size(); ++i) {
            erased += eraseEntity(arcs[cover.members[i]]) ? 1 : 0;
        }
    }
    return erased;
}

} // namespace

OverkillResult removeDuplicates(const AcDbObjectIdArray& entities, const OverkillOptions& options) {
    OverkillResult result;
    std::vector<AcDbObjectId> ids(entities.begin(), entities.end());
    result.duplicates = eraseEqual(ids, options);
    if (options.mergesOverlaps) {
        result.overlaps = mergeLines(ids, options) + mergeArcs(ids, options);
    }
    return result;
}

} // namespace host
