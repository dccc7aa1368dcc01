// Vertices of 2D polylines.
#include "host/db/entities/fields.h"
#include "host/db/entities/polyline2d.h"
#include "host/db/entities/transforms.h"

#include <algorithm>

ACRX_DXF_DEFINE_MEMBERS(AcDbVertex, AcDbEntity, AcDb::kDHL_CURRENT, AcDb::kMReleaseCurrent, 0, VERTEX,
                        ObjectDBX Classes)
ACRX_DXF_DEFINE_MEMBERS(AcDb2dVertex, AcDbVertex, AcDb::kDHL_CURRENT, AcDb::kMReleaseCurrent, 0, VERTEX,
                        ObjectDBX Classes)

using host::Vertex2dData;

AcDb2dVertex::AcDb2dVertex(const AcGePoint3d& position, double bulge, double startWidth, double endWidth,
                           double tangent, Adesk::Int32 vertexIdentifier) {
    m.position = position;
    m.bulge = bulge;
    m.startWidth = startWidth;
    m.endWidth = endWidth;
    m.tangent = tangent;
    m.identifier = vertexIdentifier;
}

void AcDb2dVertex::setData(const Vertex2dData& data) {
    assertWriteEnabled();
    m = data;
}

AcDb::Vertex2dType AcDb2dVertex::vertexType() const {
    assertReadEnabled();
    if ((m.flags & Vertex2dData::splineControl) != 0) {
        return AcDb::k2dSplineCtlVertex;
    }
    if ((m.flags & Vertex2dData::splineFit) != 0) {
        return AcDb::k2dSplineFitVertex;
    }
    return (m.flags & Vertex2dData::curveFit) != 0 ? AcDb::k2dCurveFitVertex : AcDb::k2dVertex;
}

Acad::ErrorStatus AcDb2dVertex::setVertexType(AcDb::Vertex2dType type) {
    assertWriteEnabled();
    int flags = m.flags & ~(Vertex2dData::splineControl | Vertex2dData::splineFit | Vertex2dData::curveFit);
    flags |= type == AcDb::k2dSplineCtlVertex   ? Vertex2dData::splineControl
             : type == AcDb::k2dSplineFitVertex ? Vertex2dData::splineFit
             : type == AcDb::k2dCurveFitVertex  ? Vertex2dData::curveFit
                                                : 0;
    m.flags = static_cast<Adesk::Int16>(flags);
    return Acad::eOk;
}

AcGePoint3d AcDb2dVertex::position() const {
    assertReadEnabled();
    return m.position;
}
Acad::ErrorStatus AcDb2dVertex::setPosition(const AcGePoint3d& position) {
    assertWriteEnabled();
    m.position = position;
    return Acad::eOk;
}

const AcDb2dPolyline* AcDb2dVertex::owner() const {
    return host::peek<AcDb2dPolyline>(ownerId(), true);
}

double AcDb2dVertex::startWidth() const {
    assertReadEnabled();
    if (m.startWidth != Vertex2dData::widthNotGiven || owner() == nullptr) {
        return std::max(m.startWidth, 0.0);
    }
    const host::ReadAccess access(*owner());
    return owner()->defaultStartWidth();
}
Acad::ErrorStatus AcDb2dVertex::setStartWidth(double width) {
    if (!(width >= 0.0)) {
        return Acad::eInvalidInput;
    }
    assertWriteEnabled();
    m.startWidth = width;
    return Acad::eOk;
}
double AcDb2dVertex::endWidth() const {
    assertReadEnabled();
    if (m.endWidth != Vertex2dData::widthNotGiven || owner() == nullptr) {
        return std::max(m.endWidth, 0.0);
    }
    const host::ReadAccess access(*owner());
    return owner()->defaultEndWidth();
}
Acad::ErrorStatus AcDb2dVertex::setEndWidth(double width) {
    if (!(width >= 0.0)) {
        return Acad::eInvalidInput;
    }
    assertWriteEnabled();
    m.endWidth = width;
    return Acad::eOk;
}
double AcDb2dVertex::bulge() const {
    assertReadEnabled();
    return m.bulge;
}
Acad::ErrorStatus AcDb2dVertex::setBulge(double bulge) {
    assertWriteEnabled();
    m.bulge = bulge;
    return Acad::eOk;
}
bool AcDb2dVertex::isTangentUsed() const {
    assertReadEnabled();
    return (m.flags & Vertex2dData::tangentUsed) != 0;
}
Acad::ErrorStatus AcDb2dVertex::useTangent() {
    assertWriteEnabled();
    m.flags = static_cast<Adesk::Int16>(m.flags | Vertex2dData::tangentUsed);
    return Acad::eOk;
}
Acad::ErrorStatus AcDb2dVertex::ignoreTangent() {
    assertWriteEnabled();
    m.flags = static_cast<Adesk::Int16>(m.flags & ~Vertex2dData::tangentUsed);
    return Acad::eOk;
}
double AcDb2dVertex::tangent() const {
    assertReadEnabled();
    return m.tangent;
}
Acad::ErrorStatus AcDb2dVertex::setTangent(double angle) {
    assertWriteEnabled();
    m.tangent = angle;
    return Acad::eOk;
}
Acad::ErrorStatus AcDb2dVertex::setVertexIdentifier(Adesk::Int32 identifier) {
    assertWriteEnabled();
    m.identifier = identifier;
    return Acad::eOk;
}
Adesk::Int32 AcDb2dVertex::vertexIdentifier() const {
    assertReadEnabled();
    return m.identifier;
}

Acad::ErrorStatus AcDb2dVertex::dwgOutFields(AcDbDwgFiler* filer) const {
    const Acad::ErrorStatus status = AcDbVertex::dwgOutFields(filer);
    return status == Acad::eOk ? host::writeFields(filer, m) : status;
}

Acad::ErrorStatus AcDb2dVertex::dwgInFields(AcDbDwgFiler* filer) {
    const Acad::ErrorStatus status = AcDbVertex::dwgInFields(filer);
    return status == Acad::eOk ? host::readFields(filer, m) : status;
}

Acad::ErrorStatus AcDb2dVertex::dxfInFields(AcDbDxfFiler* filer) {
    assertWriteEnabled();
    m = {};
    m.startWidth = Vertex2dData::widthNotGiven;
    m.endWidth = Vertex2dData::widthNotGiven;
    const Acad::ErrorStatus status = AcDbVertex::dxfInFields(filer);
    return status == Acad::eOk ? readDxfGroups(filer) : status;
}

std::string_view AcDb2dVertex::dxfSubclass(std::string_view marker) const {
    if (marker.empty() || marker == "AcDb2dVertex") {
        return "AcDb2dVertex";
    }
    return marker == "AcDbVertex" ? "AcDbVertex" : std::string_view();
}

bool AcDb2dVertex::takeDxfGroup(AcDbDxfFiler*, const host::DxfGroup& group, std::string_view) {
    switch (group.code) {
    case 10:
        m.position = group.point();
        return true;
    case 40:
        m.startWidth = group.real;
        return true;
    case 41:
        m.endWidth = group.real;
        return true;
    case 42:
        m.bulge = group.real;
        return true;
    case 50:
        m.tangent = host::radiansOf(group.real);
        return true;
    case 70:
        m.flags = group.int16();
        return true;
    case 91:
        m.identifier = group.int32();
        return true;
    default:
        return false;
    }
}

Acad::ErrorStatus AcDb2dVertex::dxfGroupsRead(AcDbDxfFiler*) {
    if ((m.flags & (32 | 64 | 128)) != 0) {
        return Acad::eNotThatKindOfClass; // of a 3D polyline or a mesh
    }
    const double sum = m.startWidth + m.endWidth + m.bulge + m.tangent;
    return host::isFinite(m.position) && std::isfinite(sum) ? Acad::eOk : Acad::eInvalidInput;
}

Acad::ErrorStatus AcDb2dVertex::dxfOutFields(AcDbDxfFiler* filer) const {
    if (const Acad::ErrorStatus status = AcDbVertex::dxfOutFields(filer); status != Acad::eOk) {
        return status;
    }
    const bool all = filer->includesDefaultValues();
    filer->writeText(100, "AcDbVertex");
    writeKeptGroups(filer, "AcDbVertex");
    filer->writeText(100, "AcDb2dVertex");
    filer->writePoint3d(10, m.position);
    // A zero is the polyline's default width unless it says so itself.
    const AcDb2dPolyline* polyline = owner();
    bool defaultsAreZero = true;
    if (polyline != nullptr) {
        const host::ReadAccess access(*polyline);
        defaultsAreZero = polyline->defaultStartWidth() == 0.0 && polyline->defaultEndWidth() == 0.0;
    }
    const auto writeWidth = [&](short code, double own, double effective) {
        if (all || (own != Vertex2dData::widthNotGiven && (own != 0.0 || !defaultsAreZero))) {
            filer->writeReal(code, effective);
        }
    };
    writeWidth(40, m.startWidth, startWidth());
    writeWidth(41, m.endWidth, endWidth());
    host::writeUnlessDefault(filer, 42, m.bulge, 0.0);
    host::writeUnlessZero(filer, 91, m.identifier);
    host::writeUnlessZero(filer, 70, m.flags);
    if (m.tangent != 0.0 || (m.flags & Vertex2dData::tangentUsed) != 0 || all) {
        filer->writeAngle(50, m.tangent);
    }
    writeKeptGroups(filer, "AcDb2dVertex");
    return filer->filerStatus();
}
