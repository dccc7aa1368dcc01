// AcDb2dPolyline and its vertices: the polyline of old drawings and of fitted curves.
#pragma once

#include "host/db/entities/pathcurve.h"
#include "host/db/entities/subentities.h"

namespace AcDb {
enum Poly2dType { k2dSimplePoly = 0, k2dFitCurvePoly = 1, k2dQuadSplinePoly = 2, k2dCubicSplinePoly = 3 };
enum Vertex2dType { k2dVertex = 0, k2dSplineCtlVertex = 1, k2dSplineFitVertex = 2, k2dCurveFitVertex = 3 };
} // namespace AcDb

namespace host {

struct Vertex2dData {
    AcGePoint3d position; ///< in the polyline's object coordinates
    // Bits of group 70.
    static constexpr int curveFit = 1;
    static constexpr int tangentUsed = 2;
    static constexpr int splineFit = 8;
    static constexpr int splineControl = 16;
    static constexpr double widthNotGiven = -1.0; ///< the polyline's default width

    double startWidth = 0.0;
    double endWidth = 0.0;
    double bulge = 0.0;
    double tangent = 0.0; ///< direction of a fitted curve, radians
    Adesk::Int32 identifier = 0;
    Adesk::Int16 flags = 0; ///< group 70 of files

    template <class Self, class Walk>
    static void fields(Self& data, Walk& walk) {
        walk(data.flags, data.position, data.startWidth, data.endWidth, data.bulge, data.identifier,
             data.tangent);
    }
};

struct Polyline2dData {
    Adesk::Int16 flags = 0;     ///< group 70 of files
    Adesk::Int16 curveType = 0; ///< group 75: 5 quadratic, 6 cubic spline
    double startWidth = 0.0;    ///< for vertices without their own
    double endWidth = 0.0;
    double thickness = 0.0;
    double elevation = 0.0;
    AcGeVector3d normal = AcGeVector3d::kZAxis;

    template <class Self, class Walk>
    static void fields(Self& data, Walk& walk) {
        walk(data.flags, data.curveType, data.startWidth, data.endWidth, data.thickness, data.elevation,
             data.normal);
    }
};

} // namespace host

/// A vertex of any polyline that has vertices as entities.
class AcDbVertex : public AcDbEntity {
    ACRX_DECLARE_MEMBERS(AcDbVertex);
};

class AcDb2dVertex : public AcDbVertex {
    ACRX_DECLARE_MEMBERS(AcDb2dVertex);

public:
    AcDb2dVertex() = default;
    explicit AcDb2dVertex(const AcGePoint3d& position, double bulge = 0.0, double startWidth = 0.0,
                          double endWidth = 0.0, double tangent = 0.0, Adesk::Int32 vertexIdentifier = 0);

    AcDb::Vertex2dType vertexType() const;
    Acad::ErrorStatus setVertexType(AcDb::Vertex2dType type);
    AcGePoint3d position() const; ///< in the polyline's object coordinates
    Acad::ErrorStatus setPosition(const AcGePoint3d& position);
    double startWidth() const;
    Acad::ErrorStatus setStartWidth(double width);
    double endWidth() const;
    Acad::ErrorStatus setEndWidth(double width);
    double bulge() const;
    Acad::ErrorStatus setBulge(double bulge);
    bool isTangentUsed() const;
    Acad::ErrorStatus useTangent();
    Acad::ErrorStatus ignoreTangent();
    double tangent() const;
    Acad::ErrorStatus setTangent(double angle);
    Acad::ErrorStatus setVertexIdentifier(Adesk::Int32 identifier);
    Adesk::Int32 vertexIdentifier() const;

    Acad::ErrorStatus dwgInFields(AcDbDwgFiler* filer) override;
    Acad::ErrorStatus dwgOutFields(AcDbDwgFiler* filer) const override;
    Acad::ErrorStatus dxfInFields(AcDbDxfFiler* filer) override;
    Acad::ErrorStatus dxfOutFields(AcDbDxfFiler* filer) const override;

    const host::Vertex2dData& data() const { return m; }
    void setData(const host::Vertex2dData& data);

protected:
    std::string_view dxfSubclass(std::string_view marker) const override;
    bool takeDxfGroup(AcDbDxfFiler* filer, const host::DxfGroup& group, std::string_view subclass) override;
    Acad::ErrorStatus dxfGroupsRead(AcDbDxfFiler* filer) override;

private:
    const class AcDb2dPolyline* owner() const;
    host::Vertex2dData m;
};

/// A polyline of lines and arcs in a plane whose vertices are entities of their own. Spline-fitted ones show
/// the fitted vertices, not their frame.
class AcDb2dPolyline : public host::PathCurve {
    ACRX_DECLARE_MEMBERS(AcDb2dPolyline);

public:
    AcDb2dPolyline() = default;
    /// `vertices` are points in object coordinates; bulges and widths (start, end of each vertex) may be
    /// null.
    AcDb2dPolyline(AcDb::Poly2dType type, const AcGePoint3dArray& vertices, double elevation = 0.0,
                   bool closed = false, double defaultStartWidth = 0.0, double defaultEndWidth = 0.0,
                   const AcGeDoubleArray* bulges = nullptr, const AcGeDoubleArray* vertexWidths = nullptr);

    AcDb::Poly2dType polyType() const;
    Acad::ErrorStatus setPolyType(AcDb::Poly2dType type);
    /// Takes out what fitting added and makes all segments straight.
    Acad::ErrorStatus straighten();
    /// Pairs of arcs through the vertices; directions of vertices that have one are kept.
    Acad::ErrorStatus curveFit();
    /// The chords of a spline that has the vertices as its frame, as SPLINETYPE and SPLINESEGS of the drawing
    /// say.
    Acad::ErrorStatus splineFit();
    /// With a negative number of segments the spline is followed by arcs instead of chords.
    Acad::ErrorStatus splineFit(AcDb::Poly2dType type, Adesk::Int16 segments);
    Acad::ErrorStatus convertToPolyType(AcDb::Poly2dType type);
    Acad::ErrorStatus makeClosed();
    Acad::ErrorStatus makeOpen();
    double defaultStartWidth() const;
    Acad::ErrorStatus setDefaultStartWidth(double width);
    double defaultEndWidth() const;
    Acad::ErrorStatus setDefaultEndWidth(double width);
    /// eInvalidInput when the widths differ.
    Acad::ErrorStatus constantWidth(double& width) const;
    Acad::ErrorStatus setConstantWidth(double width);
    double thickness() const;
    Acad::ErrorStatus setThickness(double thickness);
    AcGeVector3d normal() const;
    Acad::ErrorStatus setNormal(const AcGeVector3d& normal);
    double elevation() const;
    Acad::ErrorStatus setElevation(double elevation);
    bool isLinetypeGenerationOn() const;
    Acad::ErrorStatus setLinetypeGenerationOn();
    Acad::ErrorStatus setLinetypeGenerationOff();
    Acad::ErrorStatus length(double& length) const;

    /// The vertex becomes the polyline's; one of a resident polyline becomes a resident, open for write.
    Acad::ErrorStatus appendVertex(AcDb2dVertex* vertex);
    Acad::ErrorStatus appendVertex(AcDbObjectId& id, AcDb2dVertex* vertex);
    /// After the given vertex; a null one means in front of all.
    Acad::ErrorStatus insertVertexAt(const AcDb2dVertex* after, AcDb2dVertex* vertex);
    Acad::ErrorStatus insertVertexAt(AcDbObjectId& id, AcDbObjectId after, AcDb2dVertex* vertex);
    Acad::ErrorStatus openVertex(AcDb2dVertex*& vertex, AcDbObjectId id, AcDb::OpenMode mode,
                                 bool openErased = false) const;
    Acad::ErrorStatus openSequenceEnd(AcDbSequenceEnd*& end, AcDb::OpenMode mode) const;
    /// Owned by the caller.
    AcDbObjectIterator* vertexIterator() const { return mVertices.newIterator(); }
    /// In world coordinates.
    AcGePoint3d vertexPosition(const AcDb2dVertex& vertex) const;

    Acad::ErrorStatus dwgInFields(AcDbDwgFiler* filer) override;
    Acad::ErrorStatus dwgOutFields(AcDbDwgFiler* filer) const override;
    Acad::ErrorStatus dxfInFields(AcDbDxfFiler* filer) override;
    Acad::ErrorStatus dxfOutFields(AcDbDxfFiler* filer) const override;
    bool isClosed() const override { return (m.flags & 1) != 0; }
    Acad::ErrorStatus reverseCurve() override;

    host::SubentityList* subentities() override { return &mVertices; }
    /// The path that is drawn, with the widths of its segments (none when all are zero).
    host::WidePath shape() const;
    /// Replaces all vertices.
    void setShape(const host::WidePath& shape);
    void eraseVertices();

protected:
    AcGeVector3d subEcsNormal() const override { return m.normal; }
    void subBecameResident() override { mVertices.ownerBecameResident(*this); }
    Acad::ErrorStatus subErase(bool erasing) override;
    Acad::ErrorStatus subTransformBy(const AcGeMatrix3d& transform) override;
    /// The vertices; of a fitted polyline those that the fitting starts from.
    Acad::ErrorStatus subGetGripPoints(AcGePoint3dArray& points, AcDbIntArray& snapModes,
                                       AcDbIntArray& geometryIds) const override;
    Acad::ErrorStatus subMoveGripPointsAt(const AcDbIntArray& indices, const AcGeVector3d& offset) override;
    bool subWorldDraw(AcGiWorldDraw* draw) override;
    std::string_view dxfSubclass(std::string_view marker) const override;
    bool takeDxfGroup(AcDbDxfFiler* filer, const host::DxfGroup& group, std::string_view subclass) override;
    Acad::ErrorStatus dxfGroupsRead(AcDbDxfFiler* filer) override;

    host::PathView path() const override { return host::PathView(shape().path); }
    std::vector<host::SegmentWidths> segmentWidths() const override { return shape().widths; }
    double pathElevation() const override { return m.elevation; }
    double pathThickness() const override { return m.thickness; }
    std::unique_ptr<AcDbCurve> newSimilar(host::WidePath shape) const override;
    Acad::ErrorStatus changeEnd(bool start, const AcGePoint2d& point, double bulge) override;

private:
    void setFlag(int flag, bool on);
    std::vector<host::Vertex2dData> drawnVertices() const;
    /// The vertices that fitting starts from.
    std::vector<host::Vertex2dData> frameVertices() const;
    static bool isAdded(const AcDb2dVertex& vertex);
    Acad::ErrorStatus append(const host::Vertex2dData& data);
    /// Fits again as the polyline is fitted now.
    Acad::ErrorStatus fitAgain();
    int fittedSegments() const;
    /// Gives the drawn vertices new data, in order.
    Acad::ErrorStatus assignVertices(const std::vector<host::Vertex2dData>& data);

    host::Polyline2dData m;
    host::SubentityList mVertices;
};
