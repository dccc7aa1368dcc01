// The block polyline entity: its stored field after those of a polyline, its drawing, and its making from
// other curves.
#include "entities/blockpline.h"

#include "entities/customclasses.h"
#include "entities/proxytext.h"

#include <cmath>
#include <memory>
#include <numbers>

namespace {

constexpr Adesk::Int16 currentVersion = 2;

/// A width that is not given.
constexpr double noWidth = -1.0;

AcGePoint2d inPlan(const AcGePoint3d& point) {
    return {point.x, point.y};
}

// Shapes are taken as seen in plan; the normal of a circle or arc is not looked at.

void takeShape(CQDVBlockPline& polyline, const AcDbLine& line) {
    polyline.addVertexAt(0, inPlan(line.endPoint()), 0.0, noWidth, noWidth);
    polyline.addVertexAt(0, inPlan(line.startPoint()), 0.0, noWidth, noWidth);
}

void takeShape(CQDVBlockPline& polyline, const AcDbCircle& circle) {
    const AcGePoint3d center = circle.center();
    const double radius = circle.radius();
    const double halfCircle = std::tan(std::numbers::pi / 4.0);
    polyline.addVertexAt(0, AcGePoint2d(center.x - radius, center.y), halfCircle, noWidth, noWidth);
    polyline.addVertexAt(1, AcGePoint2d(center.x + radius, center.y), halfCircle, noWidth, noWidth);
    polyline.setClosed(Adesk::kTrue);
}

void takeShape(CQDVBlockPline& polyline, const AcDbArc& arc) {
    AcGePoint3d start;
    AcGePoint3d end;
    arc.getStartPoint(start);
    arc.getEndPoint(end);
    const double from = arc.startAngle();
    double to = arc.endAngle();
    if (from > to) {
        to += 2.0 * std::numbers::pi;
    }
    polyline.addVertexAt(0, inPlan(start), std::tan((to - from) * 0.25), noWidth, noWidth);
    polyline.addVertexAt(1, inPlan(end), 0.0, noWidth, noWidth);
}

/// An empty one with the properties of what it is made from.
std::unique_ptr<CQDVBlockPline> newFrom(const AcDbObject& source) {
    auto polyline = std::make_unique<CQDVBlockPline>();
    if (const AcDbEntity* entity = AcDbEntity::cast(&source)) {
        polyline->setPropertiesFrom(entity, true);
    }
    polyline->setSourceClassName(source.isA()->name());
    return polyline;
}

/// Puts a new entity of the curve's shape into the block and erases the curve.
template <class Curve>
void replaceCurve(CArxEntity& entity, const Curve& curve, AcDbBlockTableRecord& space) {
    std::unique_ptr<CQDVBlockPline> polyline = newFrom(curve);
    takeShape(*polyline, curve);
    if (entity->erase() != Acad::eOk) {
        return;
    }
    entity.Close();
    CArxEntity added(polyline.release());
    space.appendAcDbEntity(added.Get());
}

/// The new entity takes the 2D polyline's place, id and handle.
void replacePolyline(CArxEntity& entity) {
    std::unique_ptr<CQDVBlockPline> polyline = newFrom(*entity);
    AcDbEntity* replaced = entity.Release();
    if (polyline->convertFrom(replaced, true) != Acad::eOk) {
        entity.Attach(replaced);
        return;
    }
    polyline.release()->close();
}

} // namespace

AcRxClass* CQDVBlockPline::gpDesc = nullptr;

AcRxClass* CQDVBlockPline::desc() {
    return FindDescriptor(CustomClasses()[2]);
}
AcRxClass* CQDVBlockPline::isA() const {
    return desc();
}
void CQDVBlockPline::rxInit() {
    RegisterCustomClass(CustomClasses()[2]);
}

const AcString& CQDVBlockPline::sourceClassName() const {
    assertReadEnabled();
    return mSourceClassName;
}

void CQDVBlockPline::setSourceClassName(const ACHAR* name) {
    assertWriteEnabled();
    mSourceClassName = name;
}

// After the fields of the polyline: version, source class name.

Acad::ErrorStatus CQDVBlockPline::dwgOutFields(AcDbDwgFiler* filer) const {
    assertReadEnabled();
    if (const Acad::ErrorStatus status = AcDbPolyline::dwgOutFields(filer); status != Acad::eOk) {
        return status;
    }
    filer->writeInt16(currentVersion);
    filer->writeString(mSourceClassName);
    return filer->filerStatus();
}

Acad::ErrorStatus CQDVBlockPline::dwgInFields(AcDbDwgFiler* filer) {
    assertWriteEnabled();
    if (const Acad::ErrorStatus status = AcDbPolyline::dwgInFields(filer); status != Acad::eOk) {
        return status;
    }
    Adesk::Int16 version = 0;
    filer->readInt16(&version);
    if (version > currentVersion) {
        return Acad::eMakeMeProxy;
    }
    if (version > 0) {
        filer->readString(mSourceClassName);
    }
    return filer->filerStatus();
}

Adesk::Boolean CQDVBlockPline::subWorldDraw(AcGiWorldDraw* draw) {
    assertReadEnabled();
    if (draw->regenType() == kAcGiStandardDisplay) {
        return AcDbPolyline::subWorldDraw(draw);
    }
    AcGePoint3d first;
    getPointAt(0, first);
    drawProxyText(*draw, first, 1.0, 1.0);
    return Adesk::kTrue;
}

Acad::ErrorStatus CQDVBlockPline::subExplode(AcDbVoidPtrArray&) const {
    return Acad::eNotApplicable;
}

CQDVBlockPline* QDVB_CreatePolyline() {
    auto polyline = std::make_unique<CQDVBlockPline>();
    polyline->setSourceClassName(AcDbPolyline::desc()->name());
    return polyline.release();
}

CQDVBlockPline* QDVB_CopyFrom(const AcDbObject* source) {
    if (source == nullptr || CQDVBlockPline::cast(source) != nullptr) {
        return nullptr;
    }
    std::unique_ptr<CQDVBlockPline> polyline = newFrom(*source);
    if (const AcDbLine* line = AcDbLine::cast(source)) {
        takeShape(*polyline, *line);
    } else if (AcDbEntity* heavy = AcDb2dPolyline::cast(source)) {
        polyline->convertFrom(heavy, false);
    } else if (AcDbPolyline::cast(source) != nullptr) {
        polyline->copyFrom(source);
    } else if (const AcDbCircle* circle = AcDbCircle::cast(source)) {
        takeShape(*polyline, *circle);
    } else if (const AcDbArc* arc = AcDbArc::cast(source)) {
        takeShape(*polyline, *arc);
    }
    return polyline.release();
}

void QDVB_ConvertOneEnt(CArxEntity& entity, CArxObjTemplateBase<CArxObject, AcDbBlockTableRecord>& space) {
    if (!entity || entity.As<CQDVBlockPline>() != nullptr) {
        return;
    }
    if (!space && !space.OpenObject(entity->ownerId(), true)) {
        return;
    }
    if (const auto* line = entity.As<AcDbLine>()) {
        replaceCurve(entity, *line, *space);
    } else if (entity.As<AcDb2dPolyline>() != nullptr) {
        replacePolyline(entity);
    } else if (entity.As<AcDbPolyline>() != nullptr) {
        AcDbPolyline* light = AcDbPolyline::cast(entity.Release());
        AcDb2dPolyline* heavy = nullptr;
        if (light->convertTo(heavy, true) == Acad::eOk) {
            entity.Attach(heavy);
            replacePolyline(entity);
        } else {
            entity.Attach(light);
        }
    } else if (const auto* circle = entity.As<AcDbCircle>()) {
        replaceCurve(entity, *circle, *space);
    } else if (const auto* arc = entity.As<AcDbArc>()) {
        replaceCurve(entity, *arc, *space);
    }
}

void QDVB_ConvertOneEnt(CArxEntity& entity) {
    CArxObjTemplate<AcDbBlockTableRecord> space;
    QDVB_ConvertOneEnt(entity, space);
}
