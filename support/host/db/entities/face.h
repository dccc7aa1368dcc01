// AcDbFace: an area of three or four corners in space, any of whose edges may be invisible.
#pragma once

#include "host/db/dbentity.h"

#include <array>

namespace host {

struct FaceData {
    std::array<AcGePoint3d, 4> corners; ///< a triangle has its third one twice
    Adesk::Int16 hiddenEdges = 0;       ///< bit k: the edge from corner k to the next

    template <class Self, class Walk>
    static void fields(Self& data, Walk& walk) {
        walk(data.hiddenEdges);
        for (auto& corner : data.corners) {
            walk(corner);
        }
    }
};

} // namespace host

class AcDbFace : public AcDbEntity {
    ACRX_DECLARE_MEMBERS(AcDbFace);

public:
    AcDbFace() = default;
    AcDbFace(const AcGePoint3d& point0, const AcGePoint3d& point1, const AcGePoint3d& point2,
             const AcGePoint3d& point3, bool edge0Visible = true, bool edge1Visible = true,
             bool edge2Visible = true, bool edge3Visible = true);
    AcDbFace(const AcGePoint3d& point0, const AcGePoint3d& point1, const AcGePoint3d& point2,
             bool edge0Visible = true, bool edge1Visible = true, bool edge2Visible = true,
             bool edge3Visible = true);

    Acad::ErrorStatus getVertexAt(Adesk::UInt16 index, AcGePoint3d& point) const;
    Acad::ErrorStatus setVertexAt(Adesk::UInt16 index, const AcGePoint3d& point);
    Acad::ErrorStatus isEdgeVisibleAt(Adesk::UInt16 index, bool& visible) const;
    Acad::ErrorStatus makeEdgeVisibleAt(Adesk::UInt16 index);
    Acad::ErrorStatus makeEdgeInvisibleAt(Adesk::UInt16 index);

    Acad::ErrorStatus dwgInFields(AcDbDwgFiler* filer) override;
    Acad::ErrorStatus dwgOutFields(AcDbDwgFiler* filer) const override;
    Acad::ErrorStatus dxfInFields(AcDbDxfFiler* filer) override;
    Acad::ErrorStatus dxfOutFields(AcDbDxfFiler* filer) const override;
    bool isPlanar() const override;
    Acad::ErrorStatus getPlane(AcGePlane& plane, AcDb::Planarity& planarity) const override;

protected:
    bool subCurvePieces(std::vector<host::CurvePiece>& pieces) const override;
    Acad::ErrorStatus subGetExtentsUnder(const AcGeMatrix3d& transform, AcDbExtents& extents) const override;
    Acad::ErrorStatus subTransformBy(const AcGeMatrix3d& transform) override;
    Acad::ErrorStatus subGetGripPoints(AcGePoint3dArray& points, AcDbIntArray& snapModes,
                                       AcDbIntArray& geometryIds) const override;
    Acad::ErrorStatus subMoveGripPointsAt(const AcDbIntArray& indices, const AcGeVector3d& offset) override;
    Acad::ErrorStatus subGetOsnapPoints(AcDb::OsnapMode mode, Adesk::GsMarker marker, const AcGePoint3d& pick,
                                        const AcGePoint3d& last, const AcGeMatrix3d& view,
                                        AcGePoint3dArray& points, AcDbIntArray& geometryIds) const override;
    bool subWorldDraw(AcGiWorldDraw* draw) override;
    std::string_view dxfSubclass(std::string_view marker) const override;
    bool takeDxfGroup(AcDbDxfFiler* filer, const host::DxfGroup& group, std::string_view subclass) override;
    Acad::ErrorStatus dxfGroupsRead(AcDbDxfFiler* filer) override;

private:
    bool isTriangle() const { return m.corners[2] == m.corners[3]; }
    /// Calls visit(start, end) for the edges that are shown; with `all` for every one.
    template <class Visit>
    void forEdges(bool all, Visit&& visit) const;

    host::FaceData m;
    Adesk::UInt8 mGiven = 0; ///< corners a file has given
};
