// What all entities share: common properties, extents, and the operations that follow from an entity's curve
// pieces.
#include "host/db/dbentity.h"

#include "host/db/dbents.h"
#include "host/db/entities/curvepiece.h"
#include "host/db/entities/recordlookup.h"
#include "host/db/entities/subentities.h"
#include "host/rx/text.h"

#include <algorithm>

ACRX_NO_CONS_DEFINE_MEMBERS(AcDbEntity, AcDbObject)

namespace {

constexpr std::string_view subclassName = "AcDbEntity";

AcDbDatabase* databaseFor(const AcDbEntity& entity) {
    return entity.database() != nullptr ? entity.database()
                                        : acdbHostApplicationServices()->workingDatabase();
}

template <class Change>
void changeParts(AcDbEntity& entity, bool wanted, Change&& change) {
    if (host::SubentityList* parts = wanted ? entity.subentities() : nullptr) {
        parts->change<AcDbEntity>([&](AcDbEntity& part) {
            // Attributes have properties of their own; vertices share those of their polyline.
            if (!part.isKindOf(AcDbText::desc())) {
                change(part);
            }
        });
    }
}

} // namespace

Acad::ErrorStatus AcDbExtents::set(const AcGePoint3d& min, const AcGePoint3d& max) {
    if (min.x > max.x || min.y > max.y || min.z > max.z) {
        return Acad::eInvalidInput;
    }
    mMin = min;
    mMax = max;
    return Acad::eOk;
}

void AcDbExtents::addPoint(const AcGePoint3d& point) {
    mMin.set(std::min(mMin.x, point.x), std::min(mMin.y, point.y), std::min(mMin.z, point.z));
    mMax.set(std::max(mMax.x, point.x), std::max(mMax.y, point.y), std::max(mMax.z, point.z));
}

void AcDbExtents::addExt(const AcDbExtents& other) {
    if (!other.isEmpty()) {
        addPoint(other.mMin);
        addPoint(other.mMax);
    }
}

void AcDbExtents::expandBy(const AcGeVector3d& by) {
    if (!isEmpty()) {
        const AcGePoint3d min = mMin + by;
        const AcGePoint3d max = mMax + by;
        addPoint(min);
        addPoint(max);
    }
}

void AcDbExtents::transformBy(const AcGeMatrix3d& transform) {
    if (isEmpty()) {
        return;
    }
    AcDbExtents moved;
    for (int corner = 0; corner < 8; ++corner) {
        moved.addPoint(transform * AcGePoint3d((corner & 1) != 0 ? mMax.x : mMin.x,
                                               (corner & 2) != 0 ? mMax.y : mMin.y,
                                               (corner & 4) != 0 ? mMax.z : mMin.z));
    }
    *this = moved;
}

AcDbEntity::AcDbEntity() = default;

AcCmColor AcDbEntity::color() const {
    assertReadEnabled();
    AcCmColor color(mColor);
    if (const host::GroupList* kept = keptGroups(subclassName)) {
        for (const host::GroupList::Group group : *kept) {
            if (group.code == 430) {
                const std::wstring name = host::fromUtf8(group.text);
                const std::size_t split = name.find(L'$');
                if (split == std::wstring::npos) {
                    color.setNames(name.c_str());
                } else {
                    color.setNames(name.substr(split + 1).c_str(), name.substr(0, split).c_str());
                }
            }
        }
    }
    return color;
}

Adesk::UInt16 AcDbEntity::colorIndex() const {
    assertReadEnabled();
    return static_cast<Adesk::UInt16>(mColor.colorIndex());
}

Acad::ErrorStatus AcDbEntity::setColor(const AcCmColor& color, bool doSubents, AcDbDatabase*) {
    assertWriteEnabled();
    mColor = color.entityColor();
    mHasColor = true;
    // A colour's name in a colour book travels as a kept group.
    if (color.hasColorName() || keptGroups(subclassName) != nullptr) {
        for (host::ObjectExtras::Kept& kept : needExtras().kept) {
            if (kept.subclass == subclassName) {
                host::GroupList others;
                for (const host::GroupList::Group group : kept.groups) {
                    if (group.code != 430) {
                        others.add(group.code, group.text);
                    }
                }
                kept.groups = std::move(others);
            }
        }
    }
    if (color.hasColorName()) {
        host::DxfGroup name;
        const std::string text =
            host::toUtf8(color.hasBookName() ? std::wstring(color.bookName()) + L"$" + color.colorName()
                                             : color.colorName());
        name.code = 430;
        name.kind = host::ResbufKind::string;
        name.text = text;
        keepGroup(subclassName, name);
    }
    changeParts(*this, doSubents, [&](AcDbEntity& part) { part.setColor(color); });
    return Acad::eOk;
}

Acad::ErrorStatus AcDbEntity::setColorIndex(Adesk::UInt16 index, bool doSubents) {
    AcCmColor color;
    const Acad::ErrorStatus status = color.setColorIndex(index);
    return status == Acad::eOk ? setColor(color, doSubents) : status;
}

Acad::ErrorStatus AcDbEntity::setEntityColor(const AcCmEntityColor& color) {
    return setColor(AcCmColor(color));
}

ACHAR* AcDbEntity::layer() const {
    ACHAR* copy = nullptr;
    acutNewString(host::recordName(AcDbObjectId(mLayer)).kwszPtr(), copy);
    return copy;
}

Acad::ErrorStatus AcDbEntity::layer(AcString& name) const {
    assertReadEnabled();
    name = host::recordName(AcDbObjectId(mLayer));
    return mLayer != nullptr ? Acad::eOk : Acad::eNullObjectId;
}

Acad::ErrorStatus AcDbEntity::setLayer(const ACHAR* name, bool doSubents, bool allowHidden) {
    AcDbDatabase* database = databaseFor(*this);
    if (database == nullptr) {
        return Acad::eNoDatabase;
    }
    AcDbStub* record =
        name != nullptr ? host::findRecord<AcDbLayerTable>(database->layerTableId(), name) : nullptr;
    return record != nullptr ? setLayer(AcDbObjectId(record), doSubents, allowHidden) : Acad::eKeyNotFound;
}

Acad::ErrorStatus AcDbEntity::setLayer(AcDbObjectId layer, bool doSubents, bool) {
    if (layer.isNull()) {
        return Acad::eNullObjectId;
    }
    if (host::peek<AcDbLayerTableRecord>(layer) == nullptr) {
        return Acad::eInvalidLayer;
    }
    if (database() != nullptr && layer.database() != database()) {
        return Acad::eWrongDatabase;
    }
    assertWriteEnabled();
    mLayer = layer.stub();
    changeParts(*this, doSubents, [&](AcDbEntity& part) { part.setLayer(layer); });
    return Acad::eOk;
}

ACHAR* AcDbEntity::linetype() const {
    ACHAR* copy = nullptr;
    acutNewString(host::recordName(AcDbObjectId(mLinetype)).kwszPtr(), copy);
    return copy;
}

Acad::ErrorStatus AcDbEntity::linetype(AcString& name) const {
    assertReadEnabled();
    name = host::recordName(AcDbObjectId(mLinetype));
    return mLinetype != nullptr ? Acad::eOk : Acad::eNullObjectId;
}

Acad::ErrorStatus AcDbEntity::setLinetype(const ACHAR* name, bool doSubents) {
    AcDbDatabase* database = databaseFor(*this);
    if (database == nullptr) {
        return Acad::eNoDatabase;
    }
    AcDbStub* record =
        name != nullptr ? host::findRecord<AcDbLinetypeTable>(database->linetypeTableId(), name) : nullptr;
    return record != nullptr ? setLinetype(AcDbObjectId(record), doSubents) : Acad::eKeyNotFound;
}

Acad::ErrorStatus AcDbEntity::setLinetype(AcDbObjectId linetype, bool doSubents) {
    if (linetype.isNull()) {
        return Acad::eNullObjectId;
    }
    if (host::peek<AcDbLinetypeTableRecord>(linetype) == nullptr) {
        return Acad::eInvalidLineType;
    }
    if (database() != nullptr && linetype.database() != database()) {
        return Acad::eWrongDatabase;
    }
    assertWriteEnabled();
    mLinetype = linetype.stub();
    changeParts(*this, doSubents, [&](AcDbEntity& part) { part.setLinetype(linetype); });
    return Acad::eOk;
}

Acad::ErrorStatus AcDbEntity::setLinetypeScale(double scale, bool doSubents) {
    if (!(scale > 0.0) || !std::isfinite(scale)) {
        return Acad::eInvalidInput;
    }
    assertWriteEnabled();
    mLinetypeScale = scale;
    mHasLinetypeScale = true;
    changeParts(*this, doSubents, [&](AcDbEntity& part) { part.setLinetypeScale(scale); });
    return Acad::eOk;
}

Acad::ErrorStatus AcDbEntity::setVisibility(AcDb::Visibility visibility, bool doSubents) {
    assertWriteEnabled();
    mVisible = visibility == AcDb::kVisible;
    changeParts(*this, doSubents, [&](AcDbEntity& part) { part.setVisibility(visibility); });
    return Acad::eOk;
}

Acad::ErrorStatus AcDbEntity::setLineWeight(AcDb::LineWeight weight, bool doSubents) {
    if (weight > AcDb::kLnWt211 || weight < AcDb::kLnWtByLwDefault) {
        return Acad::eInvalidInput;
    }
    assertWriteEnabled();
    mLineWeight = static_cast<Adesk::Int16>(host::nearestLineWeight(weight));
    mHasLineWeight = true;
    changeParts(*this, doSubents, [&](AcDbEntity& part) { part.setLineWeight(weight); });
    return Acad::eOk;
}

Acad::ErrorStatus AcDbEntity::setPropertiesFrom(const AcDbEntity* other, bool doSubents) {
    if (other == nullptr) {
        return Acad::eNullEntityPointer;
    }
    if (database() != nullptr && other->database() != nullptr && database() != other->database()) {
        return Acad::eWrongDatabase;
    }
    other->assertReadEnabled();
    assertWriteEnabled();
    const AcCmColor color = other->color();
    if (!(color == this->color())) {
        setColor(color, false);
    }
    mLayer = other->mLayer;
    mLinetype = other->mLinetype;
    mLinetypeScale = other->mLinetypeScale;
    mLineWeight = other->mLineWeight;
    mVisible = other->mVisible;
    setAllGiven();
    changeParts(*this, doSubents, [&](AcDbEntity& part) { part.setPropertiesFrom(other); });
    return Acad::eOk;
}

void AcDbEntity::setDatabaseDefaults(AcDbDatabase* database) {
    if (database == nullptr) {
        database = databaseFor(*this);
    }
    if (database == nullptr) {
        return;
    }
    assertWriteEnabled();
    setColor(database->cecolor(), false);
    mLayer = database->clayer().stub();
    mLinetype = database->celtype().stub();
    mLinetypeScale = database->celtscale();
    mLineWeight = static_cast<Adesk::Int16>(database->celweight());
    mVisible = true;
    setAllGiven();
    subSetDatabaseDefaults(database);
}

void AcDbEntity::completeProperties(AcDbDatabase& database) {
    if (mLayer == nullptr) {
        mLayer = database.clayer().stub();
    }
    if (mLinetype == nullptr) {
        mLinetype = database.celtype().stub();
    }
    if (!mHasColor) {
        setColor(database.cecolor(), false);
    }
    if (!mHasLinetypeScale) {
        mLinetypeScale = database.celtscale();
    }
    if (!mHasLineWeight) {
        mLineWeight = static_cast<Adesk::Int16>(database.celweight());
    }
    setAllGiven();
}

AcGeMatrix3d AcDbEntity::getEcs() const {
    assertReadEnabled();
    return AcGeMatrix3d::planeToWorld(subEcsNormal());
}

// Geometry: what follows from the curve pieces.

Acad::ErrorStatus AcDbEntity::subGetTransformedCopy(const AcGeMatrix3d& transform, AcDbEntity*& copy) const {
    assertReadEnabled();
    copy = nullptr;
    std::unique_ptr<AcDbEntity> result(AcDbEntity::cast(clone()));
    if (result == nullptr) {
        return Acad::eNotApplicable;
    }
    if (const Acad::ErrorStatus status = result->transformBy(transform); status != Acad::eOk) {
        return status;
    }
    copy = result.release();
    return Acad::eOk;
}

Acad::ErrorStatus AcDbEntity::subGetGripPoints(AcGePoint3dArray&, AcDbIntArray&, AcDbIntArray&) const {
    return Acad::eNotApplicable;
}

Acad::ErrorStatus AcDbEntity::subMoveGripPointsAt(const AcDbIntArray&, const AcGeVector3d&) {
    return Acad::eNotApplicable;
}

Acad::ErrorStatus AcDbEntity::subGetStretchPoints(AcGePoint3dArray& points) const {
    AcDbIntArray modes;
    AcDbIntArray ids;
    return getGripPoints(points, modes, ids);
}

Acad::ErrorStatus AcDbEntity::subMoveStretchPointsAt(const AcDbIntArray& indices,
                                                     const AcGeVector3d& offset) {
    return moveGripPointsAt(indices, offset);
}

Acad::ErrorStatus AcDbEntity::subGetOsnapPoints(AcDb::OsnapMode, Adesk::GsMarker, const AcGePoint3d&,
                                                const AcGePoint3d&, const AcGeMatrix3d&, AcGePoint3dArray&,
                                                AcDbIntArray&) const {
    return Acad::eOk; // nothing to snap to
}

Acad::ErrorStatus AcDbEntity::subGetGeomExtents(AcDbExtents& extents) const {
    return getExtentsUnder(AcGeMatrix3d::kIdentity, extents);
}

Acad::ErrorStatus AcDbEntity::subGetExtentsUnder(const AcGeMatrix3d& transform, AcDbExtents& extents) const {
    assertReadEnabled();
    AcDbExtents box;
    std::vector<host::CurvePiece> pieces;
    if (curvePieces(pieces)) {
        for (const host::CurvePiece& piece : pieces) {
            piece.transformed(transform).addExtents(box);
        }
    } else if (transform != AcGeMatrix3d::kIdentity) {
        // A class with extents of its own only.
        if (const Acad::ErrorStatus status = getGeomExtents(box); status != Acad::eOk) {
            return status;
        }
        box.transformBy(transform);
    }
    if (box.isEmpty()) {
        return Acad::eInvalidExtents;
    }
    extents = box;
    return Acad::eOk;
}

namespace {

/// Opens the ends of a curve that are to be extended.
void extendEnds(const AcDbEntity& entity, std::vector<host::CurvePiece>& pieces) {
    const auto* curve = AcDbCurve::cast(&entity);
    if (curve != nullptr && !curve->isClosed()) {
        host::openEnds(pieces);
    }
}

AcDb::Intersect swapped(AcDb::Intersect type) {
    switch (type) {
    case AcDb::kExtendThis:
        return AcDb::kExtendArg;
    case AcDb::kExtendArg:
        return AcDb::kExtendThis;
    default:
        return type;
    }
}

/// Pieces of both, extended as asked; eNotApplicable when one of them has none.
Acad::ErrorStatus piecesOfBoth(const AcDbEntity& first, const AcDbEntity& second, AcDb::Intersect type,
                               std::vector<host::CurvePiece>& ofFirst,
                               std::vector<host::CurvePiece>& ofSecond) {
    if (!first.curvePieces(ofFirst) || !second.curvePieces(ofSecond)) {
        return Acad::eNotApplicable;
    }
    if (type == AcDb::kExtendThis || type == AcDb::kExtendBoth) {
        extendEnds(first, ofFirst);
    }
    if (type == AcDb::kExtendArg || type == AcDb::kExtendBoth) {
        extendEnds(second, ofSecond);
    }
    return Acad::eOk;
}

} // namespace

Acad::ErrorStatus AcDbEntity::subIntersectWith(const AcDbEntity* other, AcDb::Intersect type,
                                               AcGePoint3dArray& points, Adesk::GsMarker thisMarker,
                                               Adesk::GsMarker otherMarker) const {
    assertReadEnabled();
    if (other == nullptr) {
        return Acad::eNullEntityPointer;
    }
    std::vector<host::CurvePiece> own;
    std::vector<host::CurvePiece> others;
    if (piecesOfBoth(*this, *other, type, own, others) != Acad::eOk) {
        // A class that computes its intersections itself may know this one.
        std::vector<host::CurvePiece> mine;
        return curvePieces(mine) ? other->intersectWith(this, swapped(type), points, otherMarker, thisMarker)
                                 : Acad::eNotApplicable;
    }
    for (const host::PieceHit& hit : host::intersect(own, others)) {
        points.append(hit.point);
    }
    return Acad::eOk;
}

Acad::ErrorStatus AcDbEntity::subIntersectWith(const AcDbEntity* other, AcDb::Intersect type,
                                               const AcGePlane& plane, AcGePoint3dArray& points,
                                               Adesk::GsMarker thisMarker,
                                               Adesk::GsMarker otherMarker) const {
    assertReadEnabled();
    if (other == nullptr) {
        return Acad::eNullEntityPointer;
    }
    std::vector<host::CurvePiece> own;
    std::vector<host::CurvePiece> others;
    if (piecesOfBoth(*this, *other, type, own, others) != Acad::eOk) {
        std::vector<host::CurvePiece> mine;
        return curvePieces(mine)
                   ? other->intersectWith(this, swapped(type), plane, points, otherMarker, thisMarker)
                   : Acad::eNotApplicable;
    }
    for (const host::PieceHit& hit : host::intersectProjected(own, others, plane)) {
        points.append(hit.point);
    }
    return Acad::eOk;
}

Acad::ErrorStatus AcDbEntity::subExplode(AcDbVoidPtrArray&) const {
    return Acad::eNotApplicable;
}

Adesk::UInt32 AcDbEntity::subSetAttributes(AcGiDrawableTraits* traits) {
    assertReadEnabled();
    if (mLayer != nullptr) {
        traits->setLayer(AcDbObjectId(mLayer));
    }
    if (mLinetype != nullptr) {
        traits->setLineType(AcDbObjectId(mLinetype));
    }
    traits->setTrueColor(mColor);
    traits->setLineTypeScale(mLinetypeScale);
    traits->setLineWeight(lineWeight());
    return kDrawableIsAnEntity | (mVisible ? 0U : static_cast<Adesk::UInt32>(kDrawableIsInvisible));
}
