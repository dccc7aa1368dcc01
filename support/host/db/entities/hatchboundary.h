// The boundary of a hatch: closed loops of polylines or of edges, in the plane of the hatch, and what is
// computed from them - pieces, areas, nesting, polygons.
#pragma once

#include "host/db/entities/fields.h"
#include "host/ge/ge.h"

#include <algorithm>
#include <memory>
#include <span>
#include <vector>

namespace host {

/// A spline edge. Without control points it goes through its fit points.
struct HatchSpline {
    Adesk::Int32 degree = 3;
    bool rational = false;
    bool periodic = false;
    std::vector<double> knots;
    std::vector<AcGePoint2d> controlPoints;
    std::vector<double> weights; ///< of a rational one, a weight a control point
    std::vector<AcGePoint2d> fitPoints;
    AcGeVector2d startTangent; ///< told where there are fit points
    AcGeVector2d endTangent;
};

/// One edge of a loop. Angles are radians and run in the direction of the edge: of a clockwise edge they are
/// measured clockwise, as files have it; those of an ellipse are parameters.
struct HatchEdge {
    enum class Kind : Adesk::UInt8 { line = 1, arc = 2, ellipse = 3, spline = 4 };

    Kind kind = Kind::line;
    AcGePoint2d start;            ///< of a line; centre of an arc
    AcGePoint2d end;              ///< of a line
    AcGeVector2d major{1.0, 0.0}; ///< longer half axis; of an arc (radius, 0)
    double ratio = 1.0;           ///< of the shorter half axis to the longer one
    double startAngle = 0.0;
    double endAngle = 0.0;
    bool counterclockwise = true;
    std::unique_ptr<HatchSpline> spline;
};

struct HatchLoop {
    static constexpr Adesk::Int32 polylineFlag = 2; ///< of `type`: the loop is a polyline

    Adesk::Int32 type = 0; ///< flags, AcDbHatch::HatchLoopType
    BulgePath path;        ///< of a polyline
    bool hasBulges = false;
    std::vector<HatchEdge> edges;
    std::vector<AcDbObjectId> sources; ///< objects the loop was made from

    bool isPolyline() const { return (type & polylineFlag) != 0; }
};

/// A straight line, or an arc center + cos t u + sin t v for t in [from, to] with the ends given.
struct BoundaryPiece {
    bool isArc = false;
    AcGePoint2d start;
    AcGePoint2d end;
    AcGePoint2d center;
    AcGeVector2d u;
    AcGeVector2d v;
    double from = 0.0;
    double to = 0.0;

    AcGePoint2d pointAt(double t) const { return center + u * std::cos(t) + v * std::sin(t); }
    void addExtents(Box2d& box) const;
};

/// Parallel lines at whole-numbered levels: the line of level 0 runs through the base.
struct LineFamily {
    AcGePoint2d base;
    AcGeVector2d along;  ///< unit vector
    AcGeVector2d across; ///< at right angles to it; a step of one level has the scalar product 1 with it

    double levelOf(const AcGePoint2d& point) const { return (point - base).dotProduct(across); }
    double alongOf(const AcGePoint2d& point) const { return (point - base).dotProduct(along); }
};

/// Calls visit(level1, level2, alongAt) for every stretch of a piece on which its level only rises or only
/// falls, with the levels at its ends; alongAt(level) tells where along the lines it has a level between.
/// Stretches that follow each other have exactly the same level where they meet.
template <class Visit>
void forMonotone(const BoundaryPiece& piece, const LineFamily& lines, Visit&& visit) {
    const double first = lines.levelOf(piece.start);
    const double last = lines.levelOf(piece.end);
    if (!piece.isArc) {
        const double alongFirst = lines.alongOf(piece.start);
        const double alongLast = lines.alongOf(piece.end);
        visit(first, last, [=](double level) {
            return alongFirst + (level - first) / (last - first) * (alongLast - alongFirst);
        });
        return;
    }
    const double centerLevel = lines.levelOf(piece.center);
    const double risingU = piece.u.dotProduct(lines.across);
    const double risingV = piece.v.dotProduct(lines.across);
    const double reach = std::hypot(risingU, risingV);
    const double top = std::atan2(risingV, risingU); // levels are highest at top, lowest half a turn on
    double from = piece.from;
    for (double turn = std::floor((from - top) / pi) + 1.0; from < piece.to; ++turn) {
        const double to = std::min(piece.to, top + turn * pi);
        if (!(to > from)) {
            continue;
        }
        const bool falling = std::fmod(std::fabs(turn), 2.0) == 1.0;
        const double high = centerLevel + reach;
        const double low = centerLevel - reach;
        const double begin = from == piece.from ? first : (falling ? high : low);
        const double end = to == piece.to ? last : (falling ? low : high);
        visit(begin, end, [&, from, to](double level) {
            const double share = std::clamp((level - centerLevel) / reach, -1.0, 1.0);
            const double t = top + (turn - 1.0) * pi + std::acos(falling ? share : -share);
            return lines.alongOf(piece.pointAt(std::clamp(t, from, to)));
        });
        from = to;
    }
}

/// A loop as pieces, each beginning exactly where the one before it ends, the first where the last ends:
/// gaps are bridged by lines. Splines become chords.
std::vector<BoundaryPiece> boundaryPieces(const HatchLoop& loop);
/// The chords of a spline edge; of another edge its one piece.
std::vector<BoundaryPiece> edgeChords(const HatchEdge& edge);
Box2d extents(std::span<const BoundaryPiece> pieces);
/// Positive when counterclockwise.
double signedArea(std::span<const BoundaryPiece> pieces);
/// Even-odd rule.
bool isInside(std::span<const BoundaryPiece> pieces, const AcGePoint2d& point);
/// The pieces as the corners of a polygon; chords of arcs keep within the deviation.
std::vector<AcGePoint2d> polygonOf(std::span<const BoundaryPiece> pieces, double deviation);
/// How many of the other loops each loop lies in. About n log n for loops that are nested a few deep.
std::vector<int> nestingDepths(std::span<const std::vector<BoundaryPiece>> loops);

/// Maps a loop. A map that is not uniform makes ellipses of its arcs, and edges of a polyline that has arcs.
void transformLoop(HatchLoop& loop, const AcGeMatrix2d& transform, bool uniform);

/// Lists of fields: a count and the items, filed by `each`. Reading ends with the filer's data.
template <class Walk, class List, class Each>
void walkList(Walk& walk, List& list, Each&& each) {
    auto count = static_cast<Adesk::UInt32>(list.size());
    walk(count);
    if constexpr (Walk::reads) {
        list.clear();
        for (; count > 0 && walk.isGood(); --count) {
            each(list.emplace_back());
        }
    } else {
        for (const auto& item : list) {
            each(item);
        }
    }
}
template <class Walk, class List>
void walkValues(Walk& walk, List& list) {
    walkList(walk, list, [&](auto& value) { walk(value); });
}

} // namespace host
