// AcDb3dPolyline and its vertices: straight segments in space, or a spline over a frame of vertices.
#pragma once

#include "host/db/entities/polyline2d.h"
#include "host/db/entities/spacecurve.h"
#include "host/db/entities/subentities.h"

namespace AcDb {
enum Poly3dType { k3dSimplePoly = 0, k3dQuadSplinePoly = 1, k3dCubicSplinePoly = 2 };
enum Vertex3dType { k3dSimpleVertex = 0, k3dControlVertex = 1, k3dFitVertex = 2 };
} // namespace AcDb

namespace host {

struct Vertex3dData {
    // Bits of group 70.
    static constexpr int splineFit = 8;
    static constexpr int splineControl = 16;
    static constexpr int ofPolyline3d = 32;

    AcGePoint3d position;
    Adesk::Int16 flags = ofPolyline3d;

    template <class Self, class Walk>
    static void fields(Self& data, Walk& walk) {
        walk(data.flags, data.position);
    }
};

struct Polyline3dData {
    Adesk::Int16 flags = 8;     ///< group 70 of files
    Adesk::Int16 curveType = 0; ///< group 75: 5 quadratic, 6 cubic spline

    template <class Self, class Walk>
    static void fields(Self& data, Walk& walk) {
        walk(data.flags, data.curveType);
    }
};

} // namespace host

class AcDb3dPolylineVertex : public AcDbVertex {
    ACRX_DECLARE_MEMBERS(AcDb3dPolylineVertex);

public:
    AcDb3dPolylineVertex() = default;
    explicit AcDb3dPolylineVertex(const AcGePoint3d& position);

    AcDb::Vertex3dType vertexType() const;
    Acad::ErrorStatus setVertexType(AcDb::Vertex3dType type);
    AcGePoint3d position() const;
    Acad::ErrorStatus setPosition(const AcGePoint3d& position);

    Acad::ErrorStatus dwgInFields(AcDbDwgFiler* filer) override;
    Acad::ErrorStatus dwgOutFields(AcDbDwgFiler* filer) const override;
    Acad::ErrorStatus dxfInFields(AcDbDxfFiler* filer) override;
    Acad::ErrorStatus dxfOutFields(AcDbDxfFiler* filer) const override;

    const host::Vertex3dData& data() const { return m; }

protected:
    std::string_view dxfSubclass(std::string_view marker) const override;
    bool takeDxfGroup(AcDbDxfFiler* filer, const host::DxfGroup& group, std::string_view subclass) override;
    Acad::ErrorStatus dxfGroupsRead(AcDbDxfFiler* filer) override;

private:
    host::Vertex3dData m;
};

/// The parameter is the index of a drawn vertex plus the fraction of the chord after it. A spline-fitted one
/// shows the fitted vertices, not their frame.
class AcDb3dPolyline : public host::SpaceCurve {
    ACRX_DECLARE_MEMBERS(AcDb3dPolyline);

public:
    AcDb3dPolyline() = default;
    AcDb3dPolyline(AcDb::Poly3dType type, const AcGePoint3dArray& vertices, bool closed = false);

    AcDb::Poly3dType polyType() const;
    Acad::ErrorStatus setPolyType(AcDb::Poly3dType type);
    Acad::ErrorStatus makeClosed();
    Acad::ErrorStatus makeOpen();
    Acad::ErrorStatus length(double& length) const;

    /// Gives up fitted vertices.
    Acad::ErrorStatus straighten();
    /// As SPLINETYPE and SPLINESEGS of the drawing say.
    Acad::ErrorStatus splineFit();
    Acad::ErrorStatus splineFit(AcDb::Poly3dType type, Adesk::Int16 segments);
    Acad::ErrorStatus convertToPolyType(AcDb::Poly3dType type);

    /// The vertex becomes the polyline's; one of a resident polyline becomes a resident, open for write.
    Acad::ErrorStatus appendVertex(AcDb3dPolylineVertex* vertex);
    Acad::ErrorStatus appendVertex(AcDbObjectId& id, AcDb3dPolylineVertex* vertex);
    /// After the given vertex; a null one means in front of all.
    Acad::ErrorStatus insertVertexAt(const AcDb3dPolylineVertex* after, AcDb3dPolylineVertex* vertex);
    Acad::ErrorStatus insertVertexAt(AcDbObjectId& id, AcDbObjectId after, AcDb3dPolylineVertex* vertex);
    Acad::ErrorStatus openVertex(AcDb3dPolylineVertex*& vertex, AcDbObjectId id, AcDb::OpenMode mode,
                                 bool openErased = false) const;
    Acad::ErrorStatus openSequenceEnd(AcDbSequenceEnd*& end, AcDb::OpenMode mode) const;
    /// Owned by the caller.
    AcDbObjectIterator* vertexIterator() const { return mVertices.newIterator(); }

    Acad::ErrorStatus dwgInFields(AcDbDwgFiler* filer) override;
    Acad::ErrorStatus dwgOutFields(AcDbDwgFiler* filer) const override;
    Acad::ErrorStatus dxfInFields(AcDbDxfFiler* filer) override;
    Acad::ErrorStatus dxfOutFields(AcDbDxfFiler* filer) const override;
    bool isClosed() const override { return (m.flags & 1) != 0; }
    Acad::ErrorStatus getOffsetCurves(double, AcDbVoidPtrArray&) const override {
        return Acad::eNotApplicable;
    }
    Acad::ErrorStatus extend(double parameter) override;
    Acad::ErrorStatus extend(bool extendStart, const AcGePoint3d& toPoint) override;
    Acad::ErrorStatus reverseCurve() override;

    host::SubentityList* subentities() override { return &mVertices; }

protected:
    bool isEmpty() const override { return drawn().size() < 2; }
    host::CurveView geometry() const override;
    AcGeNurbCurve3d asNurbs() const override;
    std::unique_ptr<AcDbCurve> newPart(double from, double to) const override;
    void subBecameResident() override { mVertices.ownerBecameResident(*this); }
    Acad::ErrorStatus subErase(bool erasing) override;
    bool subCurvePieces(std::vector<host::CurvePiece>& pieces) const override;
    Acad::ErrorStatus subTransformBy(const AcGeMatrix3d& transform) override;
    /// The vertices; of a fitted polyline those of its frame.
    Acad::ErrorStatus subGetGripPoints(AcGePoint3dArray& points, AcDbIntArray& snapModes,
                                       AcDbIntArray& geometryIds) const override;
    Acad::ErrorStatus subMoveGripPointsAt(const AcDbIntArray& indices, const AcGeVector3d& offset) override;
    Acad::ErrorStatus subGetOsnapPoints(AcDb::OsnapMode mode, Adesk::GsMarker marker, const AcGePoint3d& pick,
                                        const AcGePoint3d& last, const AcGeMatrix3d& view,
                                        AcGePoint3dArray& points, AcDbIntArray& geometryIds) const override;
    Acad::ErrorStatus subExplode(AcDbVoidPtrArray& parts) const override;
    bool subWorldDraw(AcGiWorldDraw* draw) override;
    std::string_view dxfSubclass(std::string_view marker) const override;
    bool takeDxfGroup(AcDbDxfFiler* filer, const host::DxfGroup& group, std::string_view subclass) override;
    Acad::ErrorStatus dxfGroupsRead(AcDbDxfFiler* filer) override;

private:
    void setFlag(int flag, bool on);
    std::vector<AcGePoint3d> drawn() const;
    /// The vertices that fitting starts from.
    std::vector<AcGePoint3d> frame() const;
    /// The drawn vertices, and of a closed polyline the first one again.
    std::vector<AcGePoint3d> outline() const;
    Acad::ErrorStatus append(const AcGePoint3d& position, int flags);
    int fittedSegments() const;

    host::Polyline3dData m;
    host::SubentityList mVertices;
};
