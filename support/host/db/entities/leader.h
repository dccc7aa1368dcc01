// AcDbLeader: a line with an arrow that leads to an annotation and follows it.
#pragma once

#include "host/db/dbsymtb.h"

namespace host {

/// Points and directions are in world coordinates.
struct LeaderData {
    std::vector<AcGePoint3d> vertices;
    AcGeVector3d normal = AcGeVector3d::kZAxis;
    AcGeVector3d horizontal = AcGeVector3d::kXAxis;
    AcGeVector3d blockOffset;      ///< of the last vertex from a block's insertion point
    AcGeVector3d annotationOffset; ///< of the last vertex from the annotation's place
    double annotationHeight = 0.0;
    double annotationWidth = 0.0;
    Adesk::Int16 annotationType = 3; ///< 0 text, 1 tolerance, 2 block, 3 none
    Adesk::Int16 color = 0;          ///< group 77
    bool arrow = true;
    bool splined = false;
    bool hookLine = false;
    bool hookAlongHorizontal = false;
    AcDbObjectId style;
    AcDbObjectId annotation;

    template <class Self, class Walk>
    static void fields(Self& data, Walk& walk) {
        auto count = static_cast<Adesk::UInt32>(data.vertices.size());
        walk(count);
        if constexpr (Walk::reads) {
            data.vertices.clear();
            for (Adesk::UInt32 index = 0; index < count && walk.isGood(); ++index) {
                walk(data.vertices.emplace_back());
            }
        } else {
            for (const AcGePoint3d& vertex : data.vertices) {
                walk(vertex);
            }
        }
        walk(data.normal, data.horizontal, data.blockOffset, data.annotationOffset, data.annotationHeight,
             data.annotationWidth, data.annotationType, data.color, data.arrow, data.splined, data.hookLine,
             data.hookAlongHorizontal);
        walk.hardPointer(data.style);
        if constexpr (Walk::reads) {
            AcDbSoftPointerId annotation;
            walk.filer().readSoftPointerId(&annotation);
            data.annotation = annotation;
        } else {
            walk.filer().writeSoftPointerId(AcDbSoftPointerId(data.annotation));
        }
    }
};

} // namespace host

class AcDbLeader : public AcDbCurve, public host::DimVariableAccess<AcDbLeader> {
    ACRX_DECLARE_MEMBERS(AcDbLeader);

public:
    enum AnnoType { kMText = 0, kFcf = 1, kBlockRef = 2, kNoAnno = 3 };

    AcGeVector3d normal() const;
    Acad::ErrorStatus setPlane(const AcGePlane& plane);
    int numVertices() const;
    bool appendVertex(const AcGePoint3d& point);
    void removeLastVertex();
    AcGePoint3d firstVertex() const;
    AcGePoint3d lastVertex() const;
    AcGePoint3d vertexAt(int index) const;
    Acad::ErrorStatus setVertexAt(int index, const AcGePoint3d& point);
    bool hasArrowHead() const;
    void enableArrowHead();
    void disableArrowHead();
    bool hasHookLine() const;
    bool isSplined() const;
    Acad::ErrorStatus setToSplineLeader();
    void setToStraightLeader();
    AcDbObjectId dimensionStyle() const;
    void setDimensionStyle(AcDbObjectId style);
    AcGeVector3d annotationOffset() const;
    Acad::ErrorStatus setAnnotationOffset(const AcGeVector3d& offset);
    AnnoType annoType() const;
    AcDbObjectId annotationObjId() const;
    /// The leader ends at the annotation from now on.
    Acad::ErrorStatus attachAnnotation(AcDbObjectId annotation);
    Acad::ErrorStatus detachAnnotation();
    /// Brings the last vertex to the annotation and decides on the hook line.
    Acad::ErrorStatus evaluateLeader();
    double annoHeight() const;
    double annoWidth() const;

    host::DimVariables dimVariables() const;
    Acad::ErrorStatus setDimVariable(const host::DimVariables& values, std::size_t index);
    /// The line as drawn: the vertices, or points along the spline; the hook line last.
    std::vector<AcGePoint3d> path() const;

    Acad::ErrorStatus getStartPoint(AcGePoint3d& point) const override;
    Acad::ErrorStatus getEndPoint(AcGePoint3d& point) const override;
    void modified(const AcDbObject* annotation) override;
    Acad::ErrorStatus dwgInFields(AcDbDwgFiler* filer) override;
    Acad::ErrorStatus dwgOutFields(AcDbDwgFiler* filer) const override;
    Acad::ErrorStatus dxfInFields(AcDbDxfFiler* filer) override;
    Acad::ErrorStatus dxfOutFields(AcDbDxfFiler* filer) const override;
    bool isPlanar() const override { return true; }
    const host::LeaderData& data() const { return m; }

protected:
    void subBecameResident() override;
    void subSetDatabaseDefaults(AcDbDatabase* database) override;
    AcGeVector3d subEcsNormal() const override { return m.normal; }
    bool subCurvePieces(std::vector<host::CurvePiece>& pieces) const override;
    Acad::ErrorStatus subTransformBy(const AcGeMatrix3d& transform) override;
    Acad::ErrorStatus subGetGripPoints(AcGePoint3dArray& points, AcDbIntArray& snapModes,
                                       AcDbIntArray& geometryIds) const override;
    Acad::ErrorStatus subMoveGripPointsAt(const AcDbIntArray& indices, const AcGeVector3d& offset) override;
    Acad::ErrorStatus subExplode(AcDbVoidPtrArray& parts) const override;
    bool subWorldDraw(AcGiWorldDraw* draw) override;
    std::string_view dxfSubclass(std::string_view marker) const override;
    bool takeDxfGroup(AcDbDxfFiler* filer, const host::DxfGroup& group, std::string_view subclass) override;
    Acad::ErrorStatus dxfGroupsRead(AcDbDxfFiler* filer) override;

private:
    std::vector<std::unique_ptr<AcDbEntity>> parts() const;

    host::LeaderData m;
};
