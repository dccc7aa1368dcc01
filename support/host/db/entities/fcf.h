// AcDbFcf: a geometric tolerance, cells of symbols and numbers in a frame.
#pragma once

#include "host/db/dbsymtb.h"
#include "host/db/entities/mtextlayout.h"

namespace host {

/// Points and directions are in world coordinates.
struct FcfData {
    AcGePoint3d location; ///< middle of the frame's left side, in its first row
    AcGeVector3d normal = AcGeVector3d::kZAxis;
    AcGeVector3d direction = AcGeVector3d::kXAxis;
    AcString text; ///< rows end with a line feed, cells with %%v
    AcDbObjectId style;

    template <class Self, class Walk>
    static void fields(Self& data, Walk& walk) {
        walk(data.location, data.normal, data.direction, data.text);
        walk.hardPointer(data.style);
    }
};

} // namespace host

class AcDbFcf : public AcDbEntity, public host::DimVariableAccess<AcDbFcf> {
    ACRX_DECLARE_MEMBERS(AcDbFcf);

public:
    AcDbFcf() = default;
    AcDbFcf(const ACHAR* text, const AcGePoint3d& location, const AcGeVector3d& normal,
            const AcGeVector3d& direction);

    ACHAR* text() const; ///< a copy; freed with acutDelString
    Acad::ErrorStatus text(AcString& text) const;
    void setText(const ACHAR* text);
    AcGePoint3d location() const;
    void setLocation(const AcGePoint3d& point);
    AcGeVector3d normal() const;
    AcGeVector3d direction() const;
    void setOrientation(const AcGeVector3d& normal, const AcGeVector3d& direction);
    AcDbObjectId dimensionStyle() const;
    void setDimensionStyle(AcDbObjectId style);
    /// Corners of the frame, around it.
    void getBoundingPoints(AcGePoint3dArray& corners) const;

    host::DimVariables dimVariables() const;
    Acad::ErrorStatus setDimVariable(const host::DimVariables& values, std::size_t index);

    Acad::ErrorStatus dwgInFields(AcDbDwgFiler* filer) override;
    Acad::ErrorStatus dwgOutFields(AcDbDwgFiler* filer) const override;
    Acad::ErrorStatus dxfInFields(AcDbDxfFiler* filer) override;
    Acad::ErrorStatus dxfOutFields(AcDbDxfFiler* filer) const override;
    bool isPlanar() const override { return true; }
    Acad::ErrorStatus getPlane(AcGePlane& plane, AcDb::Planarity& planarity) const override;

protected:
    AcGeVector3d subEcsNormal() const override { return m.normal; }
    void subBecameResident() override;
    void subSetDatabaseDefaults(AcDbDatabase* database) override;
    bool subCurvePieces(std::vector<host::CurvePiece>& pieces) const override;
    Acad::ErrorStatus subTransformBy(const AcGeMatrix3d& transform) override;
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
    /// Texts and lines in world coordinates.
    std::vector<std::unique_ptr<AcDbEntity>> parts() const;

    host::FcfData m;
};
