// Objects that are closed make their outline themselves; of others the ways are looked for that they make
// together. Which of several is the one a loop had is told by its objects, its direction, area and place.
#include "host/commands/edit/hatchoutline.h"

#include "host/commands/edit/editing.h"
#include "host/db/dbents.h"
#include "host/db/entities/fields.h"
#include "host/db/entities/transforms.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <unordered_set>

namespace host {
namespace {

std::optional<HatchOutline> outlineOf(AcDbObjectId id, const AcGeVector3d& normal) {
    const auto* entity = peek<AcDbEntity>(id);
    if (entity == nullptr) {
        return std::nullopt;
    }
    const ReadAccess access(*entity);
    HatchOutline outline;
    outline.sources.push_back(id);
    outline.type = AcDbHatch::kExternal;
    outline.path.closed = true;
    if (const auto* circle = AcDbCircle::cast(entity)) {
        if (!circle->normal().isParallelTo(normal)) {
            return std::nullopt;
        }
        const AcGePoint2d center = to2d(toObject(normal, circle->center()));
        outline.path.add(center + AcGeVector2d(circle->radius(), 0.0), 1.0);
        outline.path.add(center - AcGeVector2d(circle->radius(), 0.0), 1.0);
        return outline;
    }
    const std::optional<FlatPath> flat = flatPathOf(*entity);
    if (!flat || !flat->normal.isEqualTo(normal)) {
        return std::nullopt;
    }
    outline.path = flat->shape.path;
    std::vector<BulgeVertex>& vertices = outline.path.vertices;
    if (!outline.path.closed && vertices.size() > 2 &&
        vertices.front().point.isEqualTo(vertices.back().point)) {
        vertices.pop_back();
        outline.path.closed = true;
    }
    return outline.path.closed && vertices.size() >= 2 ? std::optional(outline) : std::nullopt;
}

/// A path where its arcs are those of circles.
HatchOutline outlineOf(const TracedLoop& traced) {
    HatchOutline outline;
    outline.sources = traced.sources;
    outline.type = AcDbHatch::kDerived;
    outline.path.closed = true;
    for (const CurvePiece& piece : traced.pieces) {
        if (piece.isArc() && !piece.isCircular()) {
            outline.edges = traced.pieces;
            outline.path = {};
            return outline;
        }
        const double turn = piece.normal().z < 0.0 ? -1.0 : 1.0;
        const double bulge = piece.isArc() ? bulgeOfSweep(turn * (piece.to - piece.from)) : 0.0;
        outline.path.add(to2d(piece.pointAt(piece.from)), bulge);
    }
    return outline;
}

/// The outline as a loop, for measuring.
std::vector<BoundaryPiece> piecesOf(const HatchOutline& outline) {
    AcDbHatch hatch;
    appendOutline(hatch, outline);
    return hatch.data().loops.empty() ? std::vector<BoundaryPiece>()
                                      : boundaryPieces(hatch.data().loops.front());
}

/// Opens an object for writing on a locked layer too, for what is noted on it; null while it is open
/// elsewhere. To be closed.
AcDbObject* openForNote(AcDbObjectId id) {
    AcDbObject* object = nullptr;
    if (id.isNull() || id.isErased() || (id.stub()->object != nullptr && id.stub()->readers > 0) ||
        acdbOpenAcDbObject(object, id, AcDb::kForNotify) != Acad::eOk) {
        return nullptr;
    }
    object->upgradeOpen();
    return object;
}

/// What a loop comes from is noted with it.
void setSources(AcDbHatch& hatch, int loop, const HatchOutline& outline) {
    AcDbObjectIdArray sources;
    for (const AcDbObjectId source : outline.sources) {
        sources.append(source);
    }
    hatch.setAssocObjIdsAt(loop, sources);
}

/// The way that is most like the loop that was there.
std::optional<HatchOutline> likeliest(const HatchLoop& loop, const AcGeVector3d& normal) {
    const std::vector<BoundaryPiece> old = boundaryPieces(loop);
    const double oldArea = signedArea(old);
    const Box2d oldBox = extents(old);
    const double size = std::max(std::fabs(oldArea), 1e-300);
    const std::unordered_set<AcDbObjectId> known(loop.sources.begin(), loop.sources.end());
    std::optional<HatchOutline> best;
    std::array<double, 3> least{};
    for (const TracedLoop& way : closedWays(loop.sources, normal)) {
        HatchOutline outline = outlineOf(way);
        const std::vector<BoundaryPiece> pieces = piecesOf(outline);
        if (pieces.empty()) {
            continue;
        }
        const double area = signedArea(pieces);
        const Box2d box = extents(pieces);
        const AcGeVector2d shift =
            (box.minimum - oldBox.minimum) * 0.5 + (box.maximum - oldBox.maximum) * 0.5;
        const std::array<double, 3> unlike{
            static_cast<double>(known.size()) - static_cast<double>(way.sources.size()),
            (area > 0.0) == (oldArea > 0.0) ? 0.0 : 1.0,
            std::fabs(std::fabs(area) - size) / size + shift.length() / std::sqrt(size)};
        if (!best || unlike < least) {
            least = unlike;
            best = std::move(outline);
        }
    }
    return best;
}

} // namespace

std::vector<HatchOutline> outlinesOf(const TracedBoundary& boundary) {
    std::vector<HatchOutline> outlines;
    std::vector<std::vector<BoundaryPiece>> pieces;
    for (const TracedLoop& loop : boundary.loops) {
        pieces.push_back(piecesOf(outlines.emplace_back(outlineOf(loop))));
    }
    const std::vector<int> depths = nestingDepths(pieces);
    for (std::size_t i = 0; i < outlines.size(); ++i) {
        outlines[i].type |= depths[i] == 0   ? AcDbHatch::kExternal
                            : depths[i] == 1 ? AcDbHatch::kOutermost
                                             : AcDbHatch::kDefault;
    }
    return outlines;
}

std::vector<HatchOutline> outlinesOf(const std::vector<AcDbObjectId>& objects, const AcGeVector3d& normal,
                                     std::vector<AcDbObjectId>& refused) {
    std::vector<HatchOutline> outlines;
    std::vector<AcDbObjectId> parts;
    for (const AcDbObjectId id : objects) {
        if (std::optional<HatchOutline> outline = outlineOf(id, normal)) {
            outlines.push_back(std::move(*outline));
        } else {
            parts.push_back(id);
        }
    }
    std::unordered_set<AcDbObjectId> used;
    for (const TracedLoop& way : parts.empty() ? std::vector<TracedLoop>() : closedWays(parts, normal)) {
        if (signedArea(way) > 0.0) {
            used.insert(way.sources.begin(), way.sources.end());
            outlines.push_back(outlineOf(way));
            outlines.back().type |= AcDbHatch::kExternal;
        }
    }
    std::ranges::copy_if(parts, std::back_inserter(refused),
                         [&](AcDbObjectId id) { return !used.contains(id); });
    return outlines;
}

Acad::ErrorStatus appendOutline(AcDbHatch& hatch, const HatchOutline& outline) {
    if (outline.edges.empty()) {
        AcGePoint2dArray vertices;
        AcGeDoubleArray bulges;
        for (const BulgeVertex& vertex : outline.path.vertices) {
            vertices.append(vertex.point);
            bulges.append(vertex.bulge);
        }
        return hatch.appendLoop(outline.type | AcDbHatch::kPolyline, vertices, bulges);
    }
    AcGeVoidPointerArray edges;
    AcGeIntArray kinds;
    for (const CurvePiece& piece : outline.edges) {
        const AcGePoint2d start = to2d(piece.pointAt(piece.from));
        if (!piece.isArc()) {
            edges.append(new AcGeLineSeg2d(start, to2d(piece.pointAt(piece.to))));
            kinds.append(AcDbHatch::kLine);
            continue;
        }
        // A piece gone along backwards runs the other way round, with the angles' signs turned.
        const PrincipalAxes axes = principalAxes(piece.u, piece.v);
        const double way = piece.to < piece.from ? -1.0 : 1.0;
        edges.append(new AcGeEllipArc2d(to2d(piece.origin), to2d(axes.major).normal(),
                                        to2d(axes.minor).normal() * way, axes.major.length(),
                                        axes.minor.length(), way * (piece.from - axes.shift),
                                        way * (piece.to - axes.shift)));
        kinds.append(AcDbHatch::kEllArc);
    }
    return hatch.appendLoop(outline.type, edges, kinds);
}

BulgePath pathOf(const HatchLoop& loop) {
    BulgePath path = loop.path;
    path.closed = true;
    if (loop.isPolyline()) {
        return path;
    }
    const std::vector<BoundaryPiece> pieces = boundaryPieces(loop);
    const auto isCircular = [](const BoundaryPiece& piece) {
        const double size = piece.u.length();
        return !piece.isArc || (std::fabs(size - piece.v.length()) <= 1e-9 * size &&
                                std::fabs(piece.u.dotProduct(piece.v)) <= 1e-9 * size * size);
    };
    if (std::ranges::all_of(pieces, isCircular)) {
        for (const BoundaryPiece& piece : pieces) {
            const double turn = piece.u.crossProduct(piece.v) < 0.0 ? -1.0 : 1.0;
            const double sweep = turn * (piece.to - piece.from);
            if (piece.isArc && std::fabs(sweep) > 1.5 * pi) { // a bulge can't hold a whole circle
                path.add(piece.start, bulgeOfSweep(sweep / 2.0));
                path.add(piece.pointAt((piece.from + piece.to) / 2.0), bulgeOfSweep(sweep / 2.0));
            } else {
                path.add(piece.start, piece.isArc ? bulgeOfSweep(sweep) : 0.0);
            }
        }
        return path;
    }
    const Box2d box = extents(pieces);
    for (const AcGePoint2d& corner : polygonOf(pieces, 1e-4 * (box.maximum - box.minimum).length())) {
        path.add(corner);
    }
    return path;
}

void associate(AcDbObjectId id, const std::vector<HatchOutline>& outlines) {
    for (const HatchOutline& outline : outlines) {
        for (const AcDbObjectId source : outline.sources) {
            const auto* object = peek<AcDbObject>(source);
            if (object == nullptr || object->hasPersistentReactor(id)) {
                continue;
            }
            if (AcDbObject* opened = openForNote(source)) {
                opened->addPersistentReactor(id);
                opened->close();
            }
        }
    }
    if (auto* hatch = AcDbHatch::cast(openForNote(id))) {
        const int first = hatch->numLoops() - static_cast<int>(outlines.size());
        for (int i = 0; i < static_cast<int>(outlines.size()); ++i) {
            setSources(*hatch, first + i, outlines[static_cast<std::size_t>(i)]);
        }
        hatch->setAssociative(true);
        hatch->close();
    }
}

void forgetFollower(AcDbObjectId source, AcDbObjectId hatch) {
    const auto* object = peek<AcDbObject>(source);
    AcDbObject* opened =
        object != nullptr && object->hasPersistentReactor(hatch) ? openForNote(source) : nullptr;
    if (opened != nullptr) {
        opened->removePersistentReactor(hatch);
        opened->close();
    }
}

void dissociate(AcDbObjectId id) {
    AcDbObjectIdArray sources;
    if (auto* hatch = AcDbHatch::cast(openForNote(id))) {
        hatch->getAssocObjIds(sources);
        hatch->removeAssocObjIds();
        hatch->close();
    }
    for (const AcDbObjectId source : sources) {
        forgetFollower(source, id);
    }
}

std::optional<std::vector<HatchOutline>> remadeOutlines(const AcDbHatch& hatch) {
    const HatchData& data = hatch.data();
    std::vector<HatchOutline> outlines;
    for (const HatchLoop& loop : data.loops) {
        HatchOutline& made = outlines.emplace_back();
        if (loop.sources.empty()) {
            continue;
        }
        const auto isGone = [](AcDbObjectId id) { return peek<AcDbEntity>(id) == nullptr; };
        if (std::ranges::any_of(loop.sources, isGone)) {
            return std::nullopt;
        }
        std::optional<HatchOutline> outline =
            loop.sources.size() == 1 ? outlineOf(loop.sources.front(), data.normal) : std::nullopt;
        if (!outline) {
            outline = likeliest(loop, data.normal);
        }
        if (!outline) {
            return std::nullopt;
        }
        made = std::move(*outline);
        made.type = loop.type & ~HatchLoop::polylineFlag;
    }
    return outlines;
}

bool remakeLoops(AcDbObjectId id) {
    const auto* known = peek<AcDbHatch>(id);
    const std::optional<std::vector<HatchOutline>> outlines =
        known != nullptr ? remadeOutlines(*known) : std::nullopt;
    auto* hatch = outlines ? AcDbHatch::cast(openForNote(id)) : nullptr;
    if (hatch == nullptr) {
        return false;
    }
    // New loops come behind those without sources; the old ones go.
    for (const HatchOutline& outline : *outlines) {
        if (!outline.sources.empty() && appendOutline(*hatch, outline) == Acad::eOk) {
            setSources(*hatch, hatch->numLoops() - 1, outline);
        }
    }
    for (int i = static_cast<int>(outlines->size()) - 1; i >= 0; --i) {
        if (!(*outlines)[static_cast<std::size_t>(i)].sources.empty()) {
            hatch->removeLoopAt(i);
        }
    }
    hatch->close();
    return true;
}

} // namespace host
