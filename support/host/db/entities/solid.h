// AcDbTrace and AcDbSolid: filled areas of three or four corners.
#pragma once

#include "host/db/dbentity.h"

#include <array>

namespace host {

/// Corners in object coordinates; the third and fourth lie across: 0, 1, 3, 2 run around the area.
struct TraceData {
    std::array<AcGePoint3d, 4> corners;
    double thickness = 0.0;
    AcGeVector3d normal = AcGeVector3d::kZAxis;

    template <class Self, class Walk>
    static void fields(Self& data, Walk& walk) {
        walk(data.thickness);
        for (auto& corner : data.corners) {
            walk(corner);
        }
        walk(data.normal);
    }
};

} // namespace host

class AcDbTrace : public AcDbEntity {
    ACRX_DECLARE_MEMBERS(AcDbTrace);

public:
    AcDbTrace() = default;
    /// With three points the last two corners are one.
    AcDbTrace(const AcGePoint3d& point0, const AcGePoint3d& point1, const AcGePoint3d& point2,
              const AcGePoint3d& point3);

    Acad::ErrorStatus getPointAt(Adesk::UInt16 index, AcGePoint3d& point) const;
    Acad::ErrorStatus setPointAt(Adesk::UInt16 index, const AcGePoint3d& point);
    double thickness() const;
    Acad::ErrorStatus setThickness(double thickness);
    AcGeVector3d normal() const;
    /// The corners keep their places.
    Acad::ErrorStatus setNormal(const AcGeVector3d& normal);

    Acad::ErrorStatus dwgInFields(AcDbDwgFiler* filer) override;
    Acad::ErrorStatus dwgOutFields(AcDbDwgFiler* filer) const override;
    Acad::ErrorStatus dxfInFields(AcDbDxfFiler* filer) override;
    Acad::ErrorStatus dxfOutFields(AcDbDxfFiler* filer) const override;
    bool isPlanar() const override { return true; }
    Acad::ErrorStatus getPlane(AcGePlane& plane, AcDb::Planarity& planarity) const override;

protected:
    AcGeVector3d subEcsNormal() const override { return m.normal; }
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
    AcGePoint3d corner(std::size_t index) const;
    /// The corners around the area, in world coordinates; three for a triangle.
    std::vector<AcGePoint3d> outline() const;

    host::TraceData m;
    Adesk::UInt8 mGiven = 0; ///< corners a file has given
};

class AcDbSolid : public AcDbTrace {
    ACRX_DECLARE_MEMBERS(AcDbSolid);

public:
    using AcDbTrace::AcDbTrace;
    AcDbSolid() = default;
    AcDbSolid(const AcGePoint3d& point0, const AcGePoint3d& point1, const AcGePoint3d& point2)
        : AcDbTrace(point0, point1, point2, point2) {}
};
