// Pieces of curves in space: straight lines, arcs of circles and ellipses, Bezier curves. All kinds stay what
// they are under every affine map, projections among them, so that one set of functions serves intersection,
// closest points, snapping and extents of all entities, within blocks of any scale too.
#pragma once

#include "host/db/dbentity.h"
#include "host/ge/ge.h"

#include <span>
#include <vector>

namespace host {

struct CurvePiece {
    enum class Kind : Adesk::UInt8 { line, arc, bezier };

    static CurvePiece line(const AcGePoint3d& start, const AcGePoint3d& end);
    /// origin + cos t u + sin t v for t in [from, to].
    static CurvePiece arc(const AcGePoint3d& center, const AcGeVector3d& u, const AcGeVector3d& v,
                          double from, double to);
    /// The curve runs over [0, 1] while t does over [from, to].
    static CurvePiece bezierCurve(BezierCurve curve, double from, double to);

    bool isArc() const { return kind == Kind::arc; }
    bool isBezier() const { return kind == Kind::bezier; }
    /// u and v have equal lengths and stand at right angles.
    bool isCircular() const;
    /// A whole circle or ellipse.
    bool isFull() const;
    AcGePoint3d pointAt(double t) const;
    /// Derivative with respect to t.
    AcGeVector3d derivativeAt(double t) const;
    AcGePoint3d start() const { return pointAt(from); }
    AcGePoint3d end() const { return pointAt(to); }
    double radius() const { return u.length(); }
    /// Normal of an arc's plane, not of unit length; zero for an arc that is seen as a line.
    AcGeVector3d normal() const { return u.crossProduct(v); }
    CurvePiece transformed(const AcGeMatrix3d& transform) const;
    void addExtents(AcDbExtents& extents) const;
    /// Parameter of the closest point; beyond the ends only where the piece is open.
    double closestParameter(const AcGePoint3d& point) const;
    /// The parameter, turned by whole circles into the piece's own range, when it lies there within the slack
    /// (in parameters); open ends do not limit it.
    bool contains(double& t, double slack) const;
    /// Parameters at which the line from the point to the curve stands at right angles to the curve.
    std::vector<double> perpendicularParameters(const AcGePoint3d& point) const;
    /// Parameters at which the line from a point in the curve's plane touches it.
    std::vector<double> tangentParameters(const AcGePoint3d& point) const;

    Kind kind = Kind::line;
    bool openBefore = false; ///< goes on before `from`: a ray's far end, an extended curve
    bool openAfter = false;
    AcGePoint3d origin; ///< start of a line (t 0), centre of an arc
    AcGeVector3d u;     ///< from start to end of a line; of an arc the radius at t 0
    AcGeVector3d v;     ///< the radius at t = pi/2
    double from = 0.0;
    double to = 1.0;
    BezierCurve bezier; ///< of a Bezier piece, which uses none of origin, u and v

private:
    /// Between the parameter of a Bezier piece and its curve's.
    double curveParameter(double t) const { return (t - from) / (to - from); }
    double pieceParameter(double t) const { return t == 1.0 ? to : from + (to - from) * t; }
    void addBezierExtents(AcDbExtents& extents) const;
};

/// Opens the two ends of an open curve: lines and arcs go on along themselves, a spline along its tangents.
void openEnds(std::vector<CurvePiece>& pieces);

/// A common point of two curves: the pieces, the parameters on them, the point on the first.
struct PieceHit {
    std::size_t first = 0;
    std::size_t second = 0;
    double firstParameter = 0.0;
    double secondParameter = 0.0;
    AcGePoint3d point;
};

/// Distance within which points count as one, for coordinates of this size.
double pointTolerance(double magnitude);
double pointTolerance(std::span<const CurvePiece> pieces);

/// Common points in space, each once, in the order of the first curve. Where pieces share a stretch there
/// are none, save a common end.
std::vector<PieceHit> intersect(std::span<const CurvePiece> first, std::span<const CurvePiece> second);

/// Common points of the curves projected onto a plane; the points given are those of the first curve itself.
std::vector<PieceHit> intersectProjected(std::span<const CurvePiece> first,
                                         std::span<const CurvePiece> second, const AcGePlane& plane);

} // namespace host
