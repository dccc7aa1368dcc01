// The curve interface of polylines in a plane, light and heavy alike, over the path of lines and arcs that
// they are.
#pragma once

#include "host/db/dbentity.h"
#include "host/ge/bulge_polyline.h"

#include <memory>
#include <utility>

namespace host {

/// Widths of a segment at its two ends.
struct SegmentWidths {
    double start = 0.0;
    double end = 0.0;
    bool operator==(const SegmentWidths&) const = default;
};

/// A path held by an entity, or made for the moment.
class PathView {
public:
    explicit PathView(const BulgePath& path) : mPath(&path) {}
    explicit PathView(BulgePath&& path) : mOwn(std::move(path)) {}
    const BulgePath& operator*() const { return mPath != nullptr ? *mPath : mOwn; }
    const BulgePath* operator->() const { return &**this; }

private:
    BulgePath mOwn;
    const BulgePath* mPath = nullptr;
};

/// A path with the widths of its segments; no widths when all are zero.
struct WidePath {
    BulgePath path;
    std::vector<SegmentWidths> widths;
};

/// Whether the parameter lies on the path; one that lies beyond its ends by no more than rounding is put onto
/// them.
bool inRange(const BulgePath& path, double& parameter);
/// The parts of a path between the parameters, given in any order. A closed path is opened at the first.
std::vector<WidePath> splitWidePath(const BulgePath& path, const std::vector<SegmentWidths>& widths,
                                    std::vector<double> parameters);
/// Lines and arcs of the path in world coordinates; segments without length are left out.
void appendPieces(const BulgePath& path, const AcGeVector3d& normal, double elevation,
                  std::vector<CurvePiece>& pieces);
/// The segments as new lines and arcs with the properties of an entity.
void explodePath(const AcDbEntity& entity, const BulgePath& path, const AcGeVector3d& normal,
                 double elevation, double thickness, AcDbVoidPtrArray& parts);

/// Base of the polylines in a plane. The parameter is the vertex index plus the fraction of the segment.
class PathCurve : public AcDbCurve {
public:
    using AcDbCurve::getClosestPointTo;
    using AcDbCurve::getFirstDeriv;
    using AcDbCurve::getSecondDeriv;
    using AcDbCurve::getSplitCurves;
    bool isClosed() const override { return path()->closed; }
    Acad::ErrorStatus getStartParam(double& parameter) const override;
    Acad::ErrorStatus getEndParam(double& parameter) const override;
    Acad::ErrorStatus getPointAtParam(double parameter, AcGePoint3d& point) const override;
    Acad::ErrorStatus getParamAtPoint(const AcGePoint3d& point, double& parameter) const override;
    Acad::ErrorStatus getDistAtParam(double parameter, double& distance) const override;
    Acad::ErrorStatus getParamAtDist(double distance, double& parameter) const override;
    Acad::ErrorStatus getFirstDeriv(double parameter, AcGeVector3d& derivative) const override;
    Acad::ErrorStatus getSecondDeriv(double parameter, AcGeVector3d& derivative) const override;
    Acad::ErrorStatus getClosestPointTo(const AcGePoint3d& given, AcGePoint3d& closest,
                                        bool extend = false) const override;
    Acad::ErrorStatus getOffsetCurves(double distance, AcDbVoidPtrArray& curves) const override;
    Acad::ErrorStatus getSplitCurves(const AcGeDoubleArray& parameters,
                                     AcDbVoidPtrArray& pieces) const override;
    Acad::ErrorStatus extend(double parameter) override;
    Acad::ErrorStatus extend(bool extendStart, const AcGePoint3d& toPoint) override;
    Acad::ErrorStatus getArea(double& area) const override;
    bool isPlanar() const override { return true; }
    Acad::ErrorStatus getPlane(AcGePlane& plane, AcDb::Planarity& planarity) const override;

protected:
    virtual PathView path() const = 0;
    /// Of every segment; empty when all are zero.
    virtual std::vector<SegmentWidths> segmentWidths() const = 0;
    virtual double pathElevation() const = 0;
    virtual double pathThickness() const = 0;
    /// A curve of the same kind, plane and properties.
    virtual std::unique_ptr<AcDbCurve> newSimilar(WidePath shape) const = 0;
    /// Moves the first or the last vertex and sets the bulge of its segment.
    virtual Acad::ErrorStatus changeEnd(bool start, const AcGePoint2d& point, double bulge) = 0;

    AcGePoint3d toWorldPoint(const AcGePoint2d& point) const;
    AcGePoint2d toPlanePoint(const AcGePoint3d& point) const;
    bool subCurvePieces(std::vector<CurvePiece>& pieces) const override;
    Acad::ErrorStatus subGetExtentsUnder(const AcGeMatrix3d& transform, AcDbExtents& extents) const override;
    Acad::ErrorStatus subExplode(AcDbVoidPtrArray& parts) const override;
};

} // namespace host
