// The block polyline entity: its stored field after those of a polyline, its drawing, and its making from
// other curves.
#include "entities/blockpline.h"

#include "entities/customclasses.h"
#include "entities/proxytext.h"
#include "restools/polylineshape.h"

#include <memory>

namespace {

constexpr Adesk::Int16 currentVersion = 2;

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
    AddShape(*polyline, curve);
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
        AddShape(*polyline, *line);
    } else if (AcDbEntity* heavy = AcDb2dPolyline::cast(source)) {
        polyline->convertFrom(heavy, false);
    } else if (AcDbPolyline::cast(source) != nullptr) {
        polyline->copyFrom(source);
    } else if (const AcDbCircle* circle = AcDbCircle::cast(source)) {
        AddShape(*polyline, *circle);
    } else if (const AcDbArc* arc = AcDbArc::cast(source)) {
        AddShape(*polyline, *arc);
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
