// AcDbPolyline: the light polyline.
#pragma once

#include "host/db/entities/pathcurve.h"
#include "host/db/entities/uncommon.h"

class AcDb2dPolyline;
class AcGeCircArc2d;
class AcGeCircArc3d;
class AcGeLineSeg2d;
class AcGeLineSeg3d;

namespace host {

/// What only some polylines have: widths that vary, identifiers of vertices - each is empty or has an entry a
/// vertex - and distances along the path, kept from when they are asked for until it changes.
struct PolylineExtras {
    std::vector<SegmentWidths> widths;
    std::vector<Adesk::Int32> identifiers;
    std::unique_ptr<PathMeasure> measure;
};

/// What most polylines have at its standard value.
struct PolylineRest {
    AcGeVector3d normal = AcGeVector3d::kZAxis;
    double elevation = 0.0;
    double thickness = 0.0;
    double constantWidth = 0.0; ///< of all segments when the widths do not vary
};

class MeasuredPath {
public:
    const BulgePath& operator*() const { return mPath; }
    const BulgePath* operator->() const { return &mPath; }
    BulgePath& change() {
        if (extras != nullptr) {
            extras->measure.reset();
        }
        return mPath;
    }
    const PathMeasure& measure() const {
        if (extras == nullptr) {
            extras = std::make_unique<PolylineExtras>();
        }
        if (extras->measure == nullptr) {
            extras->measure = std::make_unique<PathMeasure>(mPath);
        }
        return *extras->measure;
    }

    mutable std::unique_ptr<PolylineExtras> extras;

private:
    [[no_unique_address]] BulgePath mPath;
};

/// Drawings have them by the hundred thousand, so the order of the fields leaves no gaps.
struct PolylineData {
    [[no_unique_address]] MeasuredPath path; ///< in object coordinates
    bool linetypeGeneration = false;
    Uncommon<PolylineRest> rest;
};

} // namespace host

/// A polyline of lines and arcs in a plane, with widths. Vertices are points in the plane's object
/// coordinates. A width of -1 stands for one that is not given: the polyline's constant width.
class AcDbPolyline : public host::PathCurve {
    ACRX_DECLARE_MEMBERS(AcDbPolyline);

public:
    enum SegType { kLine, kArc, kCoincident, kPoint, kEmpty };

    AcDbPolyline() = default;
    /// Makes room for vertices; there are none yet.
    explicit AcDbPolyline(unsigned int vertexCount);

    /// Takes the shape and the properties of a 2D polyline that is not spline-fitted. With `transferId` this
    /// one takes its place in the database too: the old one must be open for write, is deleted, and the
    /// pointer set to null.
    Acad::ErrorStatus convertFrom(AcDbEntity*& entity, bool transferId = true);
    /// Makes a 2D polyline of the same shape and properties. With `transferId` it takes the place of this
    /// one, which must be open for write and is deleted: the pointer to it is no longer valid.
    Acad::ErrorStatus convertTo(AcDb2dPolyline*& polyline, bool transferId = true) const;

    unsigned int numVerts() const;
    Acad::ErrorStatus getPointAt(unsigned int index, AcGePoint3d& point) const; ///< world coordinates
    Acad::ErrorStatus getPointAt(unsigned int index, AcGePoint2d& point) const;
    Acad::ErrorStatus setPointAt(unsigned int index, const AcGePoint2d& point);
    Acad::ErrorStatus getBulgeAt(unsigned int index, double& bulge) const;
    Acad::ErrorStatus setBulgeAt(unsigned int index, double bulge);
    Acad::ErrorStatus getWidthsAt(unsigned int index, double& startWidth, double& endWidth) const;
    Acad::ErrorStatus setWidthsAt(unsigned int index, double startWidth, double endWidth);
    /// eInvalidInput when the widths differ.
    Acad::ErrorStatus getConstantWidth(double& width) const;
    Acad::ErrorStatus setConstantWidth(double width);
    /// An index beyond the last vertex is eInvalidIndex.
    Acad::ErrorStatus addVertexAt(unsigned int index, const AcGePoint2d& point, double bulge = 0.0,
                                  double startWidth = -1.0, double endWidth = -1.0,
                                  Adesk::Int32 vertexIdentifier = 0);
    Acad::ErrorStatus removeVertexAt(unsigned int index);
    Acad::ErrorStatus setVertexIdentifierAt(unsigned int index, Adesk::Int32 identifier);
    Acad::ErrorStatus getVertexIdentifierAt(unsigned int index, Adesk::Int32& identifier) const;
    bool hasVertexIdentifiers() const;
    bool hasBulges() const;
    bool hasWidth() const;
    bool isOnlyLines() const { return !hasBulges(); }
    bool hasPlinegen() const;
    void setPlinegen(bool generate);
    void setClosed(bool closed);
    /// Takes out a last vertex in the place of the first one, and closes.
    void makeClosedIfStartAndEndVertexCoincide(double tolerance);
    double elevation() const;
    void setElevation(double elevation);
    double thickness() const;
    Acad::ErrorStatus setThickness(double thickness);
    AcGeVector3d normal() const;
    Acad::ErrorStatus setNormal(const AcGeVector3d& normal);

    SegType segType(unsigned int index) const;
    Acad::ErrorStatus getLineSegAt(unsigned int index, AcGeLineSeg3d& line) const;
    Acad::ErrorStatus getLineSegAt(unsigned int index, AcGeLineSeg2d& line) const;
    Acad::ErrorStatus getArcSegAt(unsigned int index, AcGeCircArc3d& arc) const;
    Acad::ErrorStatus getArcSegAt(unsigned int index, AcGeCircArc2d& arc) const;
    /// Whether the point is on the segment; the parameter is the fraction of the segment.
    bool onSegAt(unsigned int index, const AcGePoint2d& point, double& parameter) const;

    /// With `reuse` the first vertices are kept, up to the number; else all go, and the widths.
    void reset(bool reuse, unsigned int vertexCount);
    void maximizeMemory();
    void minimizeMemory();

    Acad::ErrorStatus dwgInFields(AcDbDwgFiler* filer) override;
    Acad::ErrorStatus dwgOutFields(AcDbDwgFiler* filer) const override;
    Acad::ErrorStatus dxfInFields(AcDbDxfFiler* filer) override;
    Acad::ErrorStatus dxfOutFields(AcDbDxfFiler* filer) const override;
    Acad::ErrorStatus reverseCurve() override;
    // The distances of the vertices are kept: O(1) and O(log n).
    Acad::ErrorStatus getDistAtParam(double parameter, double& distance) const override;
    Acad::ErrorStatus getParamAtDist(double distance, double& parameter) const override;

    /// The vertices and bulges as they are held.
    const host::BulgePath& bulgePath() const { return *m.path; }
    /// Takes a shape whole. Widths are those of the segments, or none.
    void setShape(host::WidePath shape);

protected:
    Acad::ErrorStatus copyFromBase(const AcDbObject& source) override;
    AcGeVector3d subEcsNormal() const override { return m.rest->normal; }
    Acad::ErrorStatus subTransformBy(const AcGeMatrix3d& transform) override;
    /// The vertices, then the middles of the arcs.
    Acad::ErrorStatus subGetGripPoints(AcGePoint3dArray& points, AcDbIntArray& snapModes,
                                       AcDbIntArray& geometryIds) const override;
    Acad::ErrorStatus subMoveGripPointsAt(const AcDbIntArray& indices, const AcGeVector3d& offset) override;
    Acad::ErrorStatus subGetStretchPoints(AcGePoint3dArray& points) const override;
    Acad::ErrorStatus subMoveStretchPointsAt(const AcDbIntArray& indices,
                                             const AcGeVector3d& offset) override;
    bool subWorldDraw(AcGiWorldDraw* draw) override;
    std::string_view dxfSubclass(std::string_view marker) const override;
    bool takeDxfGroup(AcDbDxfFiler* filer, const host::DxfGroup& group, std::string_view subclass) override;
    Acad::ErrorStatus dxfGroupsRead(AcDbDxfFiler* filer) override;

    host::PathView path() const override { return host::PathView(*m.path); }
    std::vector<host::SegmentWidths> segmentWidths() const override;
    double pathElevation() const override { return m.rest->elevation; }
    double pathThickness() const override { return m.rest->thickness; }
    std::unique_ptr<AcDbCurve> newSimilar(host::WidePath shape) const override;
    Acad::ErrorStatus changeEnd(bool start, const AcGePoint2d& point, double bulge) override;

private:
    bool isVertex(unsigned int index) const { return index < m.path->vertices.size(); }
    host::SegmentWidths widthsOf(std::size_t index) const;
    /// The list of varying widths, made when there is none yet.
    std::vector<host::SegmentWidths>& varyingWidths();
    /// Gives up lists that say nothing: equal widths, identifiers of zero.
    void simplify();

    host::PolylineData m;
};
