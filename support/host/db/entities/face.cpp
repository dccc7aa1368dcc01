// 3D faces.
#include "host/db/entities/face.h"

#include "host/db/entities/curvepiece.h"
#include "host/db/entities/fields.h"
#include "host/db/entities/transforms.h"
#include "host/gi/gi.h"

#include <algorithm>

ACRX_DXF_DEFINE_MEMBERS(AcDbFace, AcDbEntity, AcDb::kDHL_CURRENT, AcDb::kMReleaseCurrent, 0, 3DFACE,
                        ObjectDBX Classes)

AcDbFace::AcDbFace(const AcGePoint3d& point0, const AcGePoint3d& point1, const AcGePoint3d& point2,
                   const AcGePoint3d& point3, bool edge0Visible, bool edge1Visible, bool edge2Visible,
                   bool edge3Visible) {
    m.corners = {point0, point1, point2, point3};
    m.hiddenEdges = static_cast<Adesk::Int16>((edge0Visible ? 0 : 1) | (edge1Visible ? 0 : 2) |
                                              (edge2Visible ? 0 : 4) | (edge3Visible ? 0 : 8));
}

AcDbFace::AcDbFace(const AcGePoint3d& point0, const AcGePoint3d& point1, const AcGePoint3d& point2,
                   bool edge0Visible, bool edge1Visible, bool edge2Visible, bool edge3Visible)
    : AcDbFace(point0, point1, point2, point2, edge0Visible, edge1Visible, edge2Visible, edge3Visible) {}

Acad::ErrorStatus AcDbFace::getVertexAt(Adesk::UInt16 index, AcGePoint3d& point) const {
    assertReadEnabled();
    if (index >= m.corners.size()) {
        return Acad::eInvalidIndex;
    }
    point = m.corners[index];
    return Acad::eOk;
}

Acad::ErrorStatus AcDbFace::setVertexAt(Adesk::UInt16 index, const AcGePoint3d& point) {
    if (index >= m.corners.size()) {
        return Acad::eInvalidIndex;
    }
    assertWriteEnabled();
    m.corners[index] = point;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbFace::isEdgeVisibleAt(Adesk::UInt16 index, bool& visible) const {
    assertReadEnabled();
    if (index >= m.corners.size()) {
        return Acad::eInvalidIndex;
    }
    visible = (m.hiddenEdges & (1 << index)) == 0;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbFace::makeEdgeVisibleAt(Adesk::UInt16 index) {
    if (index >= m.corners.size()) {
        return Acad::eInvalidIndex;
    }
    assertWriteEnabled();
    m.hiddenEdges = static_cast<Adesk::Int16>(m.hiddenEdges & ~(1 << index));
    return Acad::eOk;
}

Acad::ErrorStatus AcDbFace::makeEdgeInvisibleAt(Adesk::UInt16 index) {
    if (index >= m.corners.size()) {
        return Acad::eInvalidIndex;
    }
    assertWriteEnabled();
    m.hiddenEdges = static_cast<Adesk::Int16>(m.hiddenEdges | (1 << index));
    return Acad::eOk;
}

Acad::ErrorStatus AcDbFace::dwgOutFields(AcDbDwgFiler* filer) const {
    const Acad::ErrorStatus status = AcDbEntity::dwgOutFields(filer);
    return status == Acad::eOk ? host::writeFields(filer, m) : status;
}

Acad::ErrorStatus AcDbFace::dwgInFields(AcDbDwgFiler* filer) {
    const Acad::ErrorStatus status = AcDbEntity::dwgInFields(filer);
    return status == Acad::eOk ? host::readFields(filer, m) : status;
}

Acad::ErrorStatus AcDbFace::dxfInFields(AcDbDxfFiler* filer) {
    assertWriteEnabled();
    m = {};
    mGiven = 0;
    const Acad::ErrorStatus status = AcDbEntity::dxfInFields(filer);
    return status == Acad::eOk ? readDxfGroups(filer) : status;
}

std::string_view AcDbFace::dxfSubclass(std::string_view marker) const {
    return marker.empty() || marker == "AcDbFace" ? "AcDbFace" : std::string_view();
}

bool AcDbFace::takeDxfGroup(AcDbDxfFiler*, const host::DxfGroup& group, std::string_view) {
    switch (group.code) {
    case 10:
    case 11:
    case 12:
    case 13:
        m.corners[static_cast<std::size_t>(group.code - 10)] = group.point();
        mGiven = std::max(mGiven, static_cast<Adesk::UInt8>(group.code - 9));
        return true;
    case 70:
        m.hiddenEdges = group.int16();
        return true;
    default:
        return false;
    }
}

Acad::ErrorStatus AcDbFace::dxfGroupsRead(AcDbDxfFiler*) {
    if (mGiven == 3) {
        m.corners[3] = m.corners[2];
    }
    const bool finite = std::all_of(m.corners.begin(), m.corners.end(),
                                    [](const AcGePoint3d& corner) { return host::isFinite(corner); });
    return finite ? Acad::eOk : Acad::eInvalidInput;
}

Acad::ErrorStatus AcDbFace::dxfOutFields(AcDbDxfFiler* filer) const {
    if (const Acad::ErrorStatus status = AcDbEntity::dxfOutFields(filer); status != Acad::eOk) {
        return status;
    }
    filer->writeText(100, "AcDbFace");
    for (std::size_t index = 0; index < m.corners.size(); ++index) {
        filer->writePoint3d(static_cast<short>(10 + index), m.corners[index]);
    }
    host::writeUnlessZero(filer, 70, m.hiddenEdges);
    writeKeptGroups(filer, "AcDbFace");
    return filer->filerStatus();
}

bool AcDbFace::isPlanar() const {
    AcGePlane plane;
    AcDb::Planarity planarity{};
    return getPlane(plane, planarity) == Acad::eOk;
}

Acad::ErrorStatus AcDbFace::getPlane(AcGePlane& plane, AcDb::Planarity& planarity) const {
    assertReadEnabled();
    const AcGeVector3d normal = (m.corners[2] - m.corners[0]).crossProduct(m.corners[3] - m.corners[1]);
    if (normal.isZeroLength()) {
        planarity = AcDb::kLinear;
        return Acad::eDegenerateGeometry;
    }
    const AcGePlane through(m.corners[0], normal.normal());
    AcGeTol tolerance;
    tolerance.setEqualPoint(host::onCurveTolerance(m.corners[0]));
    const bool isFlat = std::all_of(m.corners.begin(), m.corners.end(), [&](const AcGePoint3d& corner) {
        return through.isOn(corner, tolerance);
    });
    planarity = isFlat ? AcDb::kPlanar : AcDb::kNonPlanar;
    plane = through;
    return isFlat ? Acad::eOk : Acad::eNotApplicable;
}

template <class Visit>
void AcDbFace::forEdges(bool all, Visit&& visit) const {
    for (std::size_t index = 0; index < m.corners.size(); ++index) {
        const AcGePoint3d& start = m.corners[index];
        const AcGePoint3d& end = m.corners[(index + 1) % m.corners.size()];
        if (start != end && (all || (m.hiddenEdges & (1 << index)) == 0)) {
            visit(start, end);
        }
    }
}

bool AcDbFace::subCurvePieces(std::vector<host::CurvePiece>& pieces) const {
    forEdges(false, [&](const AcGePoint3d& start, const AcGePoint3d& end) {
        pieces.push_back(host::CurvePiece::line(start, end));
    });
    return true;
}

Acad::ErrorStatus AcDbFace::subGetExtentsUnder(const AcGeMatrix3d& transform, AcDbExtents& extents) const {
    assertReadEnabled();
    extents = AcDbExtents();
    for (const AcGePoint3d& corner : m.corners) {
        extents.addPoint(transform * corner);
    }
    return Acad::eOk;
}

Acad::ErrorStatus AcDbFace::subTransformBy(const AcGeMatrix3d& transform) {
    assertWriteEnabled();
    for (AcGePoint3d& corner : m.corners) {
        corner.transformBy(transform);
    }
    return Acad::eOk;
}

Acad::ErrorStatus AcDbFace::subGetGripPoints(AcGePoint3dArray& points, AcDbIntArray&, AcDbIntArray&) const {
    assertReadEnabled();
    for (const AcGePoint3d& corner : m.corners) {
        points.append(corner);
    }
    return Acad::eOk;
}

Acad::ErrorStatus AcDbFace::subMoveGripPointsAt(const AcDbIntArray& indices, const AcGeVector3d& offset) {
    assertWriteEnabled();
    const bool triangle = isTriangle();
    return host::forGrips(indices, 4, [&](int index) {
        m.corners[static_cast<std::size_t>(index)] += offset;
        if (triangle && index >= 2 && !indices.contains(5 - index)) {
            m.corners[static_cast<std::size_t>(5 - index)] += offset;
        }
    });
}

Acad::ErrorStatus AcDbFace::subGetOsnapPoints(AcDb::OsnapMode mode, Adesk::GsMarker, const AcGePoint3d& pick,
                                              const AcGePoint3d& last, const AcGeMatrix3d&,
                                              AcGePoint3dArray& points, AcDbIntArray&) const {
    assertReadEnabled();
    double nearest = HUGE_VAL;
    AcGePoint3d found;
    forEdges(false, [&](const AcGePoint3d& start, const AcGePoint3d& end) {
        const AcGeVector3d along = end - start;
        const double foot = (last - start).dotProduct(along) / along.lengthSqrd();
        const double seen = std::clamp((pick - start).dotProduct(along) / along.lengthSqrd(), 0.0, 1.0);
        switch (mode) {
        case AcDb::kOsModeEnd:
            for (const AcGePoint3d& point : {start, end}) {
                if (!points.contains(point)) {
                    points.append(point);
                }
            }
            break;
        case AcDb::kOsModeMid:
            points.append(start + along * 0.5);
            break;
        case AcDb::kOsModePerp:
            points.append(start + along * foot);
            break;
        case AcDb::kOsModeNear:
            if (const AcGePoint3d point = start + along * seen; point.distanceTo(pick) < nearest) {
                nearest = point.distanceTo(pick);
                found = point;
            }
            break;
        default:
            break;
        }
    });
    if (std::isfinite(nearest)) {
        points.append(found);
    }
    return Acad::eOk;
}

bool AcDbFace::subWorldDraw(AcGiWorldDraw* draw) {
    assertReadEnabled();
    forEdges(false, [&](const AcGePoint3d& start, const AcGePoint3d& end) {
        const AcGePoint3d points[] = {start, end};
        draw->geometry().polyline(2, points);
    });
    return true;
}
