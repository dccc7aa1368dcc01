// Traces and solids.
#include "host/db/entities/solid.h"

#include "host/db/entities/curvepiece.h"
#include "host/db/entities/fields.h"
#include "host/db/entities/transforms.h"
#include "host/gi/gi.h"

#include <algorithm>

ACRX_DXF_DEFINE_MEMBERS(AcDbTrace, AcDbEntity, AcDb::kDHL_CURRENT, AcDb::kMReleaseCurrent, 0, TRACE,
                        ObjectDBX Classes)
ACRX_DXF_DEFINE_MEMBERS(AcDbSolid, AcDbTrace, AcDb::kDHL_CURRENT, AcDb::kMReleaseCurrent, 0, SOLID,
                        ObjectDBX Classes)

AcDbTrace::AcDbTrace(const AcGePoint3d& point0, const AcGePoint3d& point1, const AcGePoint3d& point2,
                     const AcGePoint3d& point3) {
    m.corners = {point0, point1, point2, point3};
}

AcGePoint3d AcDbTrace::corner(std::size_t index) const {
    return host::toWorld(m.normal, m.corners[index]);
}

Acad::ErrorStatus AcDbTrace::getPointAt(Adesk::UInt16 index, AcGePoint3d& point) const {
    assertReadEnabled();
    if (index >= m.corners.size()) {
        return Acad::eInvalidIndex;
    }
    point = corner(index);
    return Acad::eOk;
}

Acad::ErrorStatus AcDbTrace::setPointAt(Adesk::UInt16 index, const AcGePoint3d& point) {
    assertWriteEnabled();
    if (index >= m.corners.size()) {
        return Acad::eInvalidIndex;
    }
    m.corners[index] = host::toObject(m.normal, point);
    return Acad::eOk;
}

double AcDbTrace::thickness() const {
    assertReadEnabled();
    return m.thickness;
}
Acad::ErrorStatus AcDbTrace::setThickness(double thickness) {
    assertWriteEnabled();
    m.thickness = thickness;
    return Acad::eOk;
}
AcGeVector3d AcDbTrace::normal() const {
    assertReadEnabled();
    return m.normal;
}
Acad::ErrorStatus AcDbTrace::setNormal(const AcGeVector3d& normal) {
    assertWriteEnabled();
    const AcGeVector3d unit = host::unitNormal(normal);
    for (AcGePoint3d& corner : m.corners) {
        corner = host::toObject(unit, host::toWorld(m.normal, corner));
    }
    m.normal = unit;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbTrace::dwgOutFields(AcDbDwgFiler* filer) const {
    const Acad::ErrorStatus status = AcDbEntity::dwgOutFields(filer);
    return status == Acad::eOk ? host::writeFields(filer, m) : status;
}

Acad::ErrorStatus AcDbTrace::dwgInFields(AcDbDwgFiler* filer) {
    const Acad::ErrorStatus status = AcDbEntity::dwgInFields(filer);
    return status == Acad::eOk ? host::readFields(filer, m) : status;
}

Acad::ErrorStatus AcDbTrace::dxfInFields(AcDbDxfFiler* filer) {
    assertWriteEnabled();
    m = {};
    mGiven = 0;
    const Acad::ErrorStatus status = AcDbEntity::dxfInFields(filer);
    return status == Acad::eOk ? readDxfGroups(filer) : status;
}

std::string_view AcDbTrace::dxfSubclass(std::string_view marker) const {
    return marker.empty() || marker == "AcDbTrace" ? "AcDbTrace" : std::string_view();
}

bool AcDbTrace::takeDxfGroup(AcDbDxfFiler*, const host::DxfGroup& group, std::string_view) {
    switch (group.code) {
    case 10:
    case 11:
    case 12:
    case 13:
        m.corners[static_cast<std::size_t>(group.code - 10)] = group.point();
        mGiven = std::max(mGiven, static_cast<Adesk::UInt8>(group.code - 9));
        return true;
    case 39:
        m.thickness = group.real;
        return true;
    case 210:
        m.normal = host::unitNormal(group.vector());
        return true;
    default:
        return false;
    }
}

Acad::ErrorStatus AcDbTrace::dxfGroupsRead(AcDbDxfFiler*) {
    if (mGiven == 3) {
        m.corners[3] = m.corners[2];
    }
    const bool finite = std::all_of(m.corners.begin(), m.corners.end(),
                                    [](const AcGePoint3d& corner) { return host::isFinite(corner); });
    return finite && std::isfinite(m.thickness) ? Acad::eOk : Acad::eInvalidInput;
}

Acad::ErrorStatus AcDbTrace::dxfOutFields(AcDbDxfFiler* filer) const {
    if (const Acad::ErrorStatus status = AcDbEntity::dxfOutFields(filer); status != Acad::eOk) {
        return status;
    }
    filer->writeText(100, "AcDbTrace");
    for (std::size_t index = 0; index < m.corners.size(); ++index) {
        filer->writePoint3d(static_cast<short>(10 + index), m.corners[index]);
    }
    host::writeThickness(filer, m.thickness);
    host::writeNormal(filer, m.normal);
    writeKeptGroups(filer, "AcDbTrace");
    return filer->filerStatus();
}

Acad::ErrorStatus AcDbTrace::getPlane(AcGePlane& plane, AcDb::Planarity& planarity) const {
    assertReadEnabled();
    planarity = AcDb::kPlanar;
    plane.set(corner(0), m.normal);
    return Acad::eOk;
}

std::vector<AcGePoint3d> AcDbTrace::outline() const {
    std::vector<AcGePoint3d> points;
    for (const std::size_t index : {0U, 1U, 3U, 2U}) {
        const AcGePoint3d point = corner(index);
        if (points.empty() || !point.isEqualTo(points.back())) {
            points.push_back(point);
        }
    }
    return points;
}

bool AcDbTrace::subCurvePieces(std::vector<host::CurvePiece>& pieces) const {
    const std::vector<AcGePoint3d> points = outline();
    for (std::size_t index = 0; index < points.size(); ++index) {
        pieces.push_back(host::CurvePiece::line(points[index], points[(index + 1) % points.size()]));
    }
    return true;
}

Acad::ErrorStatus AcDbTrace::subGetExtentsUnder(const AcGeMatrix3d& transform, AcDbExtents& extents) const {
    assertReadEnabled();
    extents = AcDbExtents();
    for (std::size_t index = 0; index < m.corners.size(); ++index) {
        extents.addPoint(transform * corner(index));
    }
    extents.expandBy(transform * (m.normal * m.thickness));
    return Acad::eOk;
}

Acad::ErrorStatus AcDbTrace::subTransformBy(const AcGeMatrix3d& transform) {
    const host::PlanarTransform planar(transform, m.normal, m.corners[0].z);
    if (planar.isSingular) {
        return Acad::eDegenerateGeometry;
    }
    assertWriteEnabled();
    const double level = m.corners[0].z;
    for (AcGePoint3d& corner : m.corners) {
        const AcGePoint2d flat = planar(host::to2d(corner));
        corner.set(flat.x, flat.y, planar.elevation + (corner.z - level) * planar.normalScale);
    }
    m.normal = planar.normal;
    m.thickness *= planar.normalScale;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbTrace::subGetGripPoints(AcGePoint3dArray& points, AcDbIntArray&, AcDbIntArray&) const {
    assertReadEnabled();
    for (std::size_t index = 0; index < m.corners.size(); ++index) {
        points.append(corner(index));
    }
    return Acad::eOk;
}

Acad::ErrorStatus AcDbTrace::subMoveGripPointsAt(const AcDbIntArray& indices, const AcGeVector3d& offset) {
    assertWriteEnabled();
    const AcGeVector3d move = host::toObject(m.normal, offset);
    // The two last corners of a triangle are one.
    const bool triangle = m.corners[2] == m.corners[3];
    return host::forGrips(indices, 4, [&](int index) {
        m.corners[static_cast<std::size_t>(index)] += move;
        if (triangle && index >= 2 && !indices.contains(5 - index)) {
            m.corners[static_cast<std::size_t>(5 - index)] += move;
        }
    });
}

Acad::ErrorStatus AcDbTrace::subGetOsnapPoints(AcDb::OsnapMode mode, Adesk::GsMarker, const AcGePoint3d&,
                                               const AcGePoint3d&, const AcGeMatrix3d&,
                                               AcGePoint3dArray& points, AcDbIntArray&) const {
    assertReadEnabled();
    if (mode == AcDb::kOsModeEnd) {
        for (const AcGePoint3d& point : outline()) {
            points.append(point);
        }
    }
    return Acad::eOk;
}

bool AcDbTrace::subWorldDraw(AcGiWorldDraw* draw) {
    assertReadEnabled();
    if (m.thickness != 0.0) {
        draw->subEntityTraits().setThickness(m.thickness);
    }
    draw->subEntityTraits().setFillType(kAcGiFillAlways);
    const std::vector<AcGePoint3d> points = outline();
    draw->geometry().polygon(static_cast<Adesk::UInt32>(points.size()), points.data());
    return true;
}
