// Vertices of 3D polylines.
#include "host/db/entities/fields.h"
#include "host/db/entities/polyline3d.h"
#include "host/db/entities/transforms.h"

ACRX_DXF_DEFINE_MEMBERS(AcDb3dPolylineVertex, AcDbVertex, AcDb::kDHL_CURRENT, AcDb::kMReleaseCurrent, 0,
                        VERTEX, ObjectDBX Classes)

using host::Vertex3dData;

AcDb3dPolylineVertex::AcDb3dPolylineVertex(const AcGePoint3d& position) {
    m.position = position;
}

AcDb::Vertex3dType AcDb3dPolylineVertex::vertexType() const {
    assertReadEnabled();
    if ((m.flags & Vertex3dData::splineControl) != 0) {
        return AcDb::k3dControlVertex;
    }
    return (m.flags & Vertex3dData::splineFit) != 0 ? AcDb::k3dFitVertex : AcDb::k3dSimpleVertex;
}

Acad::ErrorStatus AcDb3dPolylineVertex::setVertexType(AcDb::Vertex3dType type) {
    assertWriteEnabled();
    int flags = m.flags & ~(Vertex3dData::splineControl | Vertex3dData::splineFit);
    flags |= type == AcDb::k3dControlVertex ? Vertex3dData::splineControl
             : type == AcDb::k3dFitVertex   ? Vertex3dData::splineFit
                                            : 0;
    m.flags = static_cast<Adesk::Int16>(flags);
    return Acad::eOk;
}

AcGePoint3d AcDb3dPolylineVertex::position() const {
    assertReadEnabled();
    return m.position;
}
Acad::ErrorStatus AcDb3dPolylineVertex::setPosition(const AcGePoint3d& position) {
    assertWriteEnabled();
    m.position = position;
    return Acad::eOk;
}

Acad::ErrorStatus AcDb3dPolylineVertex::dwgOutFields(AcDbDwgFiler* filer) const {
    const Acad::ErrorStatus status = AcDbVertex::dwgOutFields(filer);
    return status == Acad::eOk ? host::writeFields(filer, m) : status;
}

Acad::ErrorStatus AcDb3dPolylineVertex::dwgInFields(AcDbDwgFiler* filer) {
    const Acad::ErrorStatus status = AcDbVertex::dwgInFields(filer);
    return status == Acad::eOk ? host::readFields(filer, m) : status;
}

Acad::ErrorStatus AcDb3dPolylineVertex::dxfInFields(AcDbDxfFiler* filer) {
    assertWriteEnabled();
    m = {};
    const Acad::ErrorStatus status = AcDbVertex::dxfInFields(filer);
    return status == Acad::eOk ? readDxfGroups(filer) : status;
}

std::string_view AcDb3dPolylineVertex::dxfSubclass(std::string_view marker) const {
    if (marker.empty() || marker == "AcDb3dPolylineVertex") {
        return "AcDb3dPolylineVertex";
    }
    return marker == "AcDbVertex" ? "AcDbVertex" : std::string_view();
}

bool AcDb3dPolylineVertex::takeDxfGroup(AcDbDxfFiler*, const host::DxfGroup& group, std::string_view) {
    switch (group.code) {
    case 10:
        m.position = group.point();
        return true;
    case 70:
        m.flags = static_cast<Adesk::Int16>(group.int16() | Vertex3dData::ofPolyline3d);
        return true;
    default:
        return false;
    }
}

Acad::ErrorStatus AcDb3dPolylineVertex::dxfGroupsRead(AcDbDxfFiler*) {
    return host::isFinite(m.position) ? Acad::eOk : Acad::eInvalidInput;
}

Acad::ErrorStatus AcDb3dPolylineVertex::dxfOutFields(AcDbDxfFiler* filer) const {
    if (const Acad::ErrorStatus status = AcDbVertex::dxfOutFields(filer); status != Acad::eOk) {
        return status;
    }
    filer->writeText(100, "AcDbVertex");
    writeKeptGroups(filer, "AcDbVertex");
    filer->writeText(100, "AcDb3dPolylineVertex");
    filer->writePoint3d(10, m.position);
    filer->writeInteger(70, m.flags);
    writeKeptGroups(filer, "AcDb3dPolylineVertex");
    return filer->filerStatus();
}
