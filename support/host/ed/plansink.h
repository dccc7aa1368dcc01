// Tests of what an entity draws against shapes in the plan.
#pragma once

#include "host/db/entities/curvepiece.h"
#include "host/ed/selection.h"
#include "host/gi/flatten.h"
#include "host/gi/primitives.h"

namespace host {

/// Receives an entity's picture as lines, arcs, filled areas and the boxes of texts in the plan.
class PlanSink : public PrimitiveSink {
public:
    /// A line or arc in the plane, exactly; `flat` has no heights.
    virtual void piece(const CurvePiece& flat) = 0;
    void polyline(std::span<const AcGePoint3d> points, const Pen&) final;
    void area(const Area& area, const Pen&) final;
    void dot(const AcGePoint3d& point, const Pen&) final { segment(to2d(point), to2d(point)); }
    void glyphs(const GlyphRun& run, const Pen&) final;

protected:
    virtual void segment(const AcGePoint2d& from, const AcGePoint2d& to) = 0;
    /// The contours of a filled area; their edges come as segments too.
    virtual void filled(std::span<const AcGePoint2d> contour) = 0;
};

/// Relation to a polygon or a line.
class ShapeSink final : public PlanSink {
public:
    explicit ShapeSink(const SelectionShape& shape);
    void start() {
        mAny = mTouches = false;
        mInside = true;
    }
    bool isSelected() const {
        return mAny && (mShape.kind == SelectionShape::Kind::window ? mInside : mTouches);
    }
    /// The answer will not change any more.
    bool isDecided() const { return mShape.kind == SelectionShape::Kind::window ? !mInside : mTouches; }
    void piece(const CurvePiece& flat) override;

protected:
    void segment(const AcGePoint2d& from, const AcGePoint2d& to) override;
    void filled(std::span<const AcGePoint2d> contour) override;

private:
    std::size_t edgeCount() const;
    bool crossesShape(const AcGePoint2d& from, const AcGePoint2d& to) const;
    /// Parameters at which a piece meets the shape's edges.
    std::vector<double> crossings(const CurvePiece& flat) const;
    bool staysInside(const CurvePiece& flat) const;
    bool isInside(const AcGePoint2d& point) const;
    const SelectionShape& mShape;
    double mTolerance = 0.0; ///< a point this near an edge is on it
    bool mAny = false;
    bool mTouches = false;
    bool mInside = true;
};

/// Distance from a point; inside a filled area it is half the aperture, so that lines come first.
class DistanceSink final : public PlanSink {
public:
    DistanceSink(const AcGePoint2d& point, double aperture) : mPoint(point), mInsideArea(aperture / 2.0) {}
    void start() { mDistance = HUGE_VAL; }
    double distance() const { return mDistance; }
    void piece(const CurvePiece& flat) override;

protected:
    void segment(const AcGePoint2d& from, const AcGePoint2d& to) override;
    void filled(std::span<const AcGePoint2d> contour) override;

private:
    AcGePoint2d mPoint;
    double mInsideArea;
    double mDistance = HUGE_VAL;
};

/// The curve as it is seen from above.
CurvePiece flattened(const CurvePiece& piece);
/// Parameters at which a flat piece meets a segment.
std::vector<double> meetings(const CurvePiece& flat, const AcGePoint2d& from, const AcGePoint2d& to);
/// Points on the edge count as inside.
bool insidePolygon(const AcGePoint2d& point, std::span<const AcGePoint2d> polygon);
bool segmentsCross(const AcGePoint2d& a, const AcGePoint2d& b, const AcGePoint2d& c, const AcGePoint2d& d);
double distanceToSegment(const AcGePoint2d& point, const AcGePoint2d& from, const AcGePoint2d& to);

} // namespace host
