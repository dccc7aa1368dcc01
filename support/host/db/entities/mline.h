// AcDbMline: parallel lines along an axis, as a multiline style says.
#pragma once

#include "host/db/dbentity.h"
#include "host/db/entities/curvepiece.h"
#include "host/db/entities/mlinestyle.h"

namespace Mline {
enum MlineJustification { kTop = 0, kZero = 1, kBottom = 2 };
}

namespace host {

/// How one element of the style runs from a vertex on. The first number is its place on the mitre of the
/// vertex; those after it are distances from there, along the segment, at which the line begins, ends, begins
/// again: without a last end it goes on to the next vertex.
struct MlineElementRun {
    std::vector<double> line;
    std::vector<double> fill;
};

struct MlineVertex {
    AcGePoint3d point;
    AcGeVector3d direction; ///< of the segment that begins here, a unit vector
    AcGeVector3d miter;     ///< a unit vector to the left of the axis
    std::vector<MlineElementRun> runs;
};

/// World coordinates.
struct MlineData {
    enum Flag : Adesk::Int16 { hasVertices = 1, closed = 2, noStartCaps = 4, noEndCaps = 8 };
    AcDbObjectId style;
    AcString styleName = L"STANDARD"; ///< as in the file, where the style is not there
    double scale = 1.0;               ///< negative: the elements lie on the other side of the axis
    Adesk::UInt8 justification = 0;
    Adesk::Int16 flags = 0;
    AcGeVector3d normal = AcGeVector3d::kZAxis;
    AcGePoint3d start; ///< group 10
    Adesk::Int16 elementCount = 0;
    std::vector<MlineVertex> vertices;

    template <class Self, class Walk>
    static void fields(Self& data, Walk& walk);
};

} // namespace host

class AcDbMline : public AcDbEntity {
    ACRX_DECLARE_MEMBERS(AcDbMline);

public:
    AcDbMline() = default;

    AcDbObjectId style() const;
    /// Lays the multiline anew.
    Acad::ErrorStatus setStyle(AcDbObjectId style);
    Mline::MlineJustification justification() const;
    Acad::ErrorStatus setJustification(Mline::MlineJustification justification);
    double scale() const;
    Acad::ErrorStatus setScale(double scale);
    AcGeVector3d normal() const;
    Acad::ErrorStatus setNormal(const AcGeVector3d& normal);
    bool closedMline() const;
    Acad::ErrorStatus setClosedMline(bool closed);
    bool supressStartCaps() const;
    Acad::ErrorStatus setSupressStartCaps(bool suppress);
    bool supressEndCaps() const;
    Acad::ErrorStatus setSupressEndCaps(bool suppress);

    int numVertices() const;
    AcGePoint3d vertexAt(int index) const;
    AcGeVector3d axisAt(int index) const;
    AcGeVector3d miterAt(int index) const;
    /// eInvalidInput for a vertex in the place of the last one.
    Acad::ErrorStatus appendSeg(const AcGePoint3d& vertex);
    Acad::ErrorStatus removeLastSeg(AcGePoint3d& removed);
    Acad::ErrorStatus moveVertexAt(int index, const AcGePoint3d& to);
    Acad::ErrorStatus getParametersAt(int vertex, int element, AcGeDoubleArray& line,
                                      AcGeDoubleArray& fill) const;
    /// For cuts and welds.
    Acad::ErrorStatus setParametersAt(int vertex, int element, const AcGeDoubleArray& line);

    Acad::ErrorStatus dwgInFields(AcDbDwgFiler* filer) override;
    Acad::ErrorStatus dwgOutFields(AcDbDwgFiler* filer) const override;
    Acad::ErrorStatus dxfInFields(AcDbDxfFiler* filer) override;
    Acad::ErrorStatus dxfOutFields(AcDbDxfFiler* filer) const override;
    bool isPlanar() const override { return true; }
    Acad::ErrorStatus getPlane(AcGePlane& plane, AcDb::Planarity& planarity) const override;
    const host::MlineData& data() const { return m; }

protected:
    AcGeVector3d subEcsNormal() const override { return m.normal; }
    void subSetDatabaseDefaults(AcDbDatabase* database) override;
    bool subCurvePieces(std::vector<host::CurvePiece>& pieces) const override;
    Acad::ErrorStatus subTransformBy(const AcGeMatrix3d& transform) override;
    Acad::ErrorStatus subGetGripPoints(AcGePoint3dArray& points, AcDbIntArray& snapModes,
                                       AcDbIntArray& geometryIds) const override;
    Acad::ErrorStatus subMoveGripPointsAt(const AcDbIntArray& indices, const AcGeVector3d& offset) override;
    Acad::ErrorStatus subGetOsnapPoints(AcDb::OsnapMode mode, Adesk::GsMarker marker, const AcGePoint3d& pick,
                                        const AcGePoint3d& last, const AcGeMatrix3d& view,
                                        AcGePoint3dArray& points, AcDbIntArray& geometryIds) const override;
    /// Lines and arcs with the colours and linetypes of their elements.
    Acad::ErrorStatus subExplode(AcDbVoidPtrArray& parts) const override;
    bool subWorldDraw(AcGiWorldDraw* draw) override;
    std::string_view dxfSubclass(std::string_view marker) const override;
    bool takeDxfGroup(AcDbDxfFiler* filer, const host::DxfGroup& group, std::string_view subclass) override;
    Acad::ErrorStatus dxfGroupsRead(AcDbDxfFiler* filer) override;

private:
    using Visit = std::function<void(const host::CurvePiece& piece, int element)>;

    bool has(host::MlineData::Flag flag) const { return (m.flags & flag) != 0; }
    void setFlag(host::MlineData::Flag flag, bool on);
    const AcDbMlineStyle* styleObject() const;
    /// Directions, mitres and places of the elements from the vertices, style, scale and justification. Cuts
    /// stay with their segments.
    void layOut();
    void layVertex(std::size_t index, const host::MlineStyleData& style);
    AcGePoint3d placeAt(std::size_t vertex, int element) const;
    std::size_t next(std::size_t vertex) const { return vertex + 1 < m.vertices.size() ? vertex + 1 : 0; }
    std::size_t segmentCount() const;
    /// Everything that is drawn but the filling, with the element it looks like.
    void forPieces(const Visit& visit) const;
    void forRuns(std::size_t vertex, int element, const Visit& visit) const;
    void forCap(bool atStart, const host::MlineStyleData& style, const Visit& visit) const;
    /// Half a circle over the places of two elements, away from the multiline.
    host::CurvePiece capArc(bool atStart, int first, int second) const;
    void drawFilling(AcGiWorldDraw* draw, const host::MlineStyleData& style) const;
    void takeVertexGroup(const host::DxfGroup& group);

    host::MlineData m;
};
