// Light polylines in files, and their change into 2D polylines and back.
#include "host/db/entities/fields.h"
#include "host/db/entities/polyline.h"
#include "host/db/entities/polyline2d.h"
#include "host/db/entities/transforms.h"

#include <algorithm>

namespace {

/// Bits of the flags that lead a light polyline's fields.
enum Present : Adesk::Int16 {
    hasNormal = 1,
    hasThickness = 2,
    hasConstantWidth = 4,
    hasElevation = 8,
    hasBulgeList = 16,
    hasWidthList = 32,
    generatesLinetype = 256,
    isClosedPath = 512,
    hasIdentifierList = 1024
};

/// Group 70 of DXF.
constexpr int dxfClosed = 1;
constexpr int dxfLinetypeGeneration = 128;

/// A count that a file announces, as far as memory is to be set aside for it.
std::size_t roomFor(Adesk::Int64 announced) {
    return announced > 0 ? static_cast<std::size_t>(std::min<Adesk::Int64>(announced, 1 << 16)) : 0;
}

} // namespace

Acad::ErrorStatus AcDbPolyline::copyFromBase(const AcDbObject& source) {
    return source.isKindOf(AcDbPolyline::desc()) ? host::copyFieldsAs<AcDbPolyline>(*this, source)
                                                 : AcDbCurve::copyFromBase(source);
}

Acad::ErrorStatus AcDbPolyline::dwgOutFields(AcDbDwgFiler* filer) const {
    if (const Acad::ErrorStatus status = AcDbCurve::dwgOutFields(filer); status != Acad::eOk) {
        return status;
    }
    const std::vector<host::BulgeVertex>& vertices = m.path->vertices;
    const bool varies = m.path.extras != nullptr && !m.path.extras->widths.empty();
    int flags = 0;
    const auto set = [&](bool present, Present bit) { flags |= present ? bit : 0; };
    set(!host::isWorldNormal(m.rest->normal) || m.rest->normal.z != 1.0, hasNormal);
    set(m.rest->thickness != 0.0, hasThickness);
    set(m.rest->constantWidth != 0.0, hasConstantWidth);
    set(m.rest->elevation != 0.0, hasElevation);
    set(hasBulges(), hasBulgeList);
    set(varies, hasWidthList);
    set(m.linetypeGeneration, generatesLinetype);
    set(m.path->closed, isClosedPath);
    set(hasVertexIdentifiers(), hasIdentifierList);
    filer->writeInt16(static_cast<Adesk::Int16>(flags));
    if ((flags & hasConstantWidth) != 0) {
        filer->writeDouble(m.rest->constantWidth);
    }
    if ((flags & hasElevation) != 0) {
        filer->writeDouble(m.rest->elevation);
    }
    if ((flags & hasThickness) != 0) {
        filer->writeDouble(m.rest->thickness);
    }
    if ((flags & hasNormal) != 0) {
        filer->writeVector3d(m.rest->normal);
    }
    filer->writeInt32(static_cast<Adesk::Int32>(vertices.size()));
    for (const host::BulgeVertex& vertex : vertices) {
        filer->writePoint2d(vertex.point);
    }
    if ((flags & hasBulgeList) != 0) {
        for (const host::BulgeVertex& vertex : vertices) {
            filer->writeDouble(vertex.bulge);
        }
    }
    if ((flags & hasIdentifierList) != 0) {
        for (const Adesk::Int32 identifier : m.path.extras->identifiers) {
            filer->writeInt32(identifier);
        }
    }
    if (varies) {
        for (const host::SegmentWidths& widths : m.path.extras->widths) {
            filer->writeDouble(widths.start);
            filer->writeDouble(widths.end);
        }
    }
    return filer->filerStatus();
}

Acad::ErrorStatus AcDbPolyline::dwgInFields(AcDbDwgFiler* filer) {
    if (const Acad::ErrorStatus status = AcDbCurve::dwgInFields(filer); status != Acad::eOk) {
        return status;
    }
    host::PolylineData read;
    host::PolylineRest rest;
    host::FieldReader get(*filer);
    Adesk::Int16 flags = 0;
    Adesk::Int32 count = 0;
    get(flags);
    if ((flags & hasConstantWidth) != 0) {
        get(rest.constantWidth);
    }
    if ((flags & hasElevation) != 0) {
        get(rest.elevation);
    }
    if ((flags & hasThickness) != 0) {
        get(rest.thickness);
    }
    if ((flags & hasNormal) != 0) {
        get(rest.normal);
    }
    read.rest.assign(rest);
    get(count);
    if (get.isGood() && count < 0) {
        filer->setFilerStatus(Acad::eInvalidInput);
    }
    read.linetypeGeneration = (flags & generatesLinetype) != 0;
    host::BulgePath& path = read.path.change();
    path.closed = (flags & isClosedPath) != 0;
    path.vertices.reserve(roomFor(count));
    for (Adesk::Int32 index = 0; index < count && get.isGood(); ++index) {
        get(path.vertices.emplace_back().point);
    }
    if ((flags & hasBulgeList) != 0) {
        for (std::size_t index = 0; index < path.vertices.size() && get.isGood(); ++index) {
            get(path.vertices[index].bulge);
        }
    }
    if ((flags & (hasIdentifierList | hasWidthList)) != 0) {
        read.path.extras = std::make_unique<host::PolylineExtras>();
    }
    if ((flags & hasIdentifierList) != 0) {
        for (Adesk::Int32 index = 0; index < count && get.isGood(); ++index) {
            get(read.path.extras->identifiers.emplace_back());
        }
    }
    if ((flags & hasWidthList) != 0) {
        for (Adesk::Int32 index = 0; index < count && get.isGood(); ++index) {
            host::SegmentWidths& widths = read.path.extras->widths.emplace_back();
            get(widths.start, widths.end);
        }
    }
    if (get.isGood()) {
        m = std::move(read);
    }
    return filer->filerStatus();
}

Acad::ErrorStatus AcDbPolyline::dxfInFields(AcDbDxfFiler* filer) {
    assertWriteEnabled();
    m = {};
    const Acad::ErrorStatus status = AcDbCurve::dxfInFields(filer);
    return status == Acad::eOk ? readDxfGroups(filer) : status;
}

std::string_view AcDbPolyline::dxfSubclass(std::string_view marker) const {
    return marker.empty() || marker == "AcDbPolyline" ? "AcDbPolyline" : std::string_view();
}

bool AcDbPolyline::takeDxfGroup(AcDbDxfFiler*, const host::DxfGroup& group, std::string_view) {
    std::vector<host::BulgeVertex>& vertices = m.path.change().vertices;
    switch (group.code) {
    case 10:
        vertices.push_back({group.point2d(), 0.0});
        if (m.path.extras != nullptr && !m.path.extras->widths.empty()) {
            m.path.extras->widths.emplace_back();
        }
        return true;
    case 42:
        if (!vertices.empty()) {
            vertices.back().bulge = group.real;
        }
        return true;
    case 40:
    case 41:
        if (!vertices.empty() &&
            (group.real != 0.0 || (m.path.extras != nullptr && !m.path.extras->widths.empty()))) {
            if (m.path.extras == nullptr) {
                m.path.extras = std::make_unique<host::PolylineExtras>();
            }
            // Widths that came before were zero.
            m.path.extras->widths.resize(vertices.size());
            (group.code == 40 ? m.path.extras->widths.back().start : m.path.extras->widths.back().end) =
                group.real;
        }
        return true;
    case 91:
        if (group.integer != 0 && !vertices.empty()) {
            setVertexIdentifierAt(static_cast<unsigned int>(vertices.size()) - 1, group.int32());
        }
        return true;
    case 43:
        m.rest.set(&host::PolylineRest::constantWidth, group.real);
        return true;
    case 38:
        m.rest.set(&host::PolylineRest::elevation, group.real);
        return true;
    case 39:
        m.rest.set(&host::PolylineRest::thickness, group.real);
        return true;
    case 70:
        m.path.change().closed = (group.integer & dxfClosed) != 0;
        m.linetypeGeneration = (group.integer & dxfLinetypeGeneration) != 0;
        return true;
    case 90:
        vertices.reserve(roomFor(group.integer));
        return true;
    case 210:
        m.rest.set(&host::PolylineRest::normal, host::unitNormal(group.vector()));
        return true;
    default:
        return false;
    }
}

Acad::ErrorStatus AcDbPolyline::dxfGroupsRead(AcDbDxfFiler*) {
    double sum = m.rest->elevation + m.rest->thickness + m.rest->constantWidth;
    for (const host::BulgeVertex& vertex : m.path->vertices) {
        sum += vertex.point.x + vertex.point.y + vertex.bulge;
    }
    if (m.path.extras != nullptr) {
        for (const host::SegmentWidths& widths : m.path.extras->widths) {
            sum += widths.start + widths.end;
        }
        if (hasVertexIdentifiers()) {
            m.path.extras->identifiers.resize(m.path->vertices.size());
        }
        simplify();
    }
    if (m.path->vertices.capacity() > m.path->vertices.size() + m.path->vertices.size() / 4) {
        m.path.change().vertices.shrink_to_fit();
    }
    return std::isfinite(sum) ? Acad::eOk : Acad::eInvalidInput;
}

Acad::ErrorStatus AcDbPolyline::dxfOutFields(AcDbDxfFiler* filer) const {
    if (const Acad::ErrorStatus status = AcDbCurve::dxfOutFields(filer); status != Acad::eOk) {
        return status;
    }
    const bool all = filer->includesDefaultValues();
    const bool varies = m.path.extras != nullptr && !m.path.extras->widths.empty();
    filer->writeText(100, "AcDbPolyline");
    filer->writeInteger(90, static_cast<Adesk::Int64>(m.path->vertices.size()));
    filer->writeInteger(70, (m.path->closed ? dxfClosed : 0) |
                                (m.linetypeGeneration ? dxfLinetypeGeneration : 0));
    if (!varies) {
        filer->writeReal(43, m.rest->constantWidth);
    }
    host::writeUnlessDefault(filer, 38, m.rest->elevation, 0.0);
    host::writeThickness(filer, m.rest->thickness);
    for (std::size_t index = 0; index < m.path->vertices.size(); ++index) {
        const host::BulgeVertex& vertex = m.path->vertices[index];
        filer->writePoint2d(10, vertex.point);
        if (varies || all) {
            const host::SegmentWidths widths = widthsOf(index);
            filer->writeReal(40, widths.start);
            filer->writeReal(41, widths.end);
        }
        if (vertex.bulge != 0.0 || all) {
            filer->writeReal(42, vertex.bulge);
        }
        if (hasVertexIdentifiers() || all) {
            filer->writeInteger(91, hasVertexIdentifiers() ? m.path.extras->identifiers[index] : 0);
        }
    }
    host::writeNormal(filer, m.rest->normal);
    writeKeptGroups(filer, "AcDbPolyline");
    return filer->filerStatus();
}

Acad::ErrorStatus AcDbPolyline::convertFrom(AcDbEntity*& entity, bool transferId) {
    auto* heavy = AcDb2dPolyline::cast(entity);
    if (heavy == nullptr) {
        return entity == nullptr ? Acad::eNullEntityPointer : Acad::eIllegalEntityType;
    }
    if (heavy->polyType() != AcDb::k2dSimplePoly && heavy->polyType() != AcDb::k2dFitCurvePoly) {
        return Acad::eNotApplicable;
    }
    const bool takesPlace = transferId && heavy->database() != nullptr;
    if (takesPlace && (database() != nullptr || !heavy->isWriteEnabled())) {
        return database() != nullptr ? Acad::eIllegalReplacement : Acad::eNotOpenForWrite;
    }
    assertWriteEnabled();
    setPropertiesFrom(heavy);
    m.rest.set(&host::PolylineRest::normal, heavy->normal());
    m.rest.set(&host::PolylineRest::elevation, heavy->elevation());
    m.rest.set(&host::PolylineRest::thickness, heavy->thickness());
    m.linetypeGeneration = heavy->isLinetypeGenerationOn();
    setShape(heavy->shape());
    if (!transferId) {
        return Acad::eOk;
    }
    if (takesPlace) {
        heavy->eraseVertices();
        if (const Acad::ErrorStatus status = heavy->handOverTo(this); status != Acad::eOk) {
            return status;
        }
    }
    delete heavy;
    entity = nullptr;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbPolyline::convertTo(AcDb2dPolyline*& polyline, bool transferId) const {
    assertReadEnabled();
    polyline = nullptr;
    auto heavy = host::newLike<AcDb2dPolyline>(*this);
    heavy->setNormal(m.rest->normal);
    heavy->setElevation(m.rest->elevation);
    heavy->setThickness(m.rest->thickness);
    m.linetypeGeneration ? heavy->setLinetypeGenerationOn() : heavy->setLinetypeGenerationOff();
    heavy->setShape({*m.path, segmentWidths()});
    if (!transferId) {
        polyline = heavy.release();
        return Acad::eOk;
    }
    auto* self = const_cast<AcDbPolyline*>(this);
    if (database() != nullptr) {
        if (const Acad::ErrorStatus status = self->handOverTo(heavy.get()); status != Acad::eOk) {
            return status;
        }
        polyline = heavy.release();
        delete self;
        return Acad::eOk;
    }
    polyline = heavy.release();
    return Acad::eOk;
}
