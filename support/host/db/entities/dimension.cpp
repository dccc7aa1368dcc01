// Dimensions: properties, style and overrides, drawing, grips, transformation.
#include "host/db/entities/dimension.h"

#include "host/db/dbents.h"
#include "host/db/entities/curvepiece.h"
#include "host/db/entities/dimensionpainter.h"
#include "host/db/entities/fields.h"
#include "host/db/entities/transforms.h"

ACRX_NO_CONS_DEFINE_MEMBERS(AcDbDimension, AcDbEntity)

AcGePoint3d AcDbDimension::point(Point which) const {
    assertReadEnabled();
    return which == Point::arc ? host::toWorld(m.normal, m.points[which]) : m.points[which];
}

Acad::ErrorStatus AcDbDimension::setPoint(Point which, const AcGePoint3d& point) {
    if (!host::isFinite(point)) {
        return Acad::eInvalidInput;
    }
    changing();
    m.points[which] = which == Point::arc ? host::toObject(m.normal, point) : point;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbDimension::setAngle(double host::DimensionData::*member, double angle) {
    if (!std::isfinite(angle)) {
        return Acad::eInvalidInput;
    }
    changing();
    m.*member = angle;
    return Acad::eOk;
}

AcGePoint2d AcDbDimension::flat(Point which) const {
    return host::to2d(which == Point::arc ? m.points[which] : host::toObject(m.normal, m.points[which]));
}

void AcDbDimension::changing() {
    assertWriteEnabled();
    mStale = true;
}

AcGePoint3d AcDbDimension::textPosition() const {
    assertReadEnabled();
    return host::toWorld(m.normal, m.textPosition);
}
Acad::ErrorStatus AcDbDimension::setTextPosition(const AcGePoint3d& point) {
    if (!host::isFinite(point)) {
        return Acad::eInvalidInput;
    }
    changing();
    m.textPosition = host::toObject(m.normal, point);
    m.set(m.textIsPlaced, true);
    return Acad::eOk;
}
bool AcDbDimension::isUsingDefaultTextPosition() const {
    assertReadEnabled();
    return !m.has(m.textIsPlaced);
}
Acad::ErrorStatus AcDbDimension::useDefaultTextPosition() {
    changing();
    m.set(m.textIsPlaced, false);
    return Acad::eOk;
}
Acad::ErrorStatus AcDbDimension::useSetTextPosition() {
    changing();
    m.set(m.textIsPlaced, true);
    return Acad::eOk;
}

AcGeVector3d AcDbDimension::normal() const {
    assertReadEnabled();
    return m.normal;
}
Acad::ErrorStatus AcDbDimension::setNormal(const AcGeVector3d& normal) {
    if (!host::isFinite(normal) || normal.isZeroLength()) {
        return Acad::eInvalidInput;
    }
    changing();
    m.normal = host::unitNormal(normal);
    return Acad::eOk;
}
double AcDbDimension::elevation() const {
    assertReadEnabled();
    return host::toObject(m.normal, m.points[Point::first]).z;
}
Acad::ErrorStatus AcDbDimension::setElevation(double elevation) {
    if (!std::isfinite(elevation)) {
        return Acad::eInvalidInput;
    }
    changing();
    AcGePoint3d flat = host::toObject(m.normal, m.points[Point::first]);
    flat.z = elevation;
    m.points[Point::first] = host::toWorld(m.normal, flat);
    m.textPosition.z = elevation;
    return Acad::eOk;
}

ACHAR* AcDbDimension::dimensionText() const {
    assertReadEnabled();
    ACHAR* copy = nullptr;
    acutNewString(m.text.kwszPtr(), copy);
    return copy;
}
Acad::ErrorStatus AcDbDimension::dimensionText(AcString& text) const {
    assertReadEnabled();
    text = m.text;
    return Acad::eOk;
}
Acad::ErrorStatus AcDbDimension::setDimensionText(const ACHAR* text) {
    changing();
    m.text = text;
    return Acad::eOk;
}

double AcDbDimension::textRotation() const {
    assertReadEnabled();
    return m.textRotation;
}
Acad::ErrorStatus AcDbDimension::setTextRotation(double angle) {
    const Acad::ErrorStatus status = setAngle(&host::DimensionData::textRotation, angle);
    if (status == Acad::eOk) {
        m.hasTextRotation = angle != 0.0;
    }
    return status;
}
double AcDbDimension::horizontalRotation() const {
    assertReadEnabled();
    return m.horizontalRotation;
}
Acad::ErrorStatus AcDbDimension::setHorizontalRotation(double angle) {
    return setAngle(&host::DimensionData::horizontalRotation, angle);
}

AcDbObjectId AcDbDimension::dimensionStyle() const {
    assertReadEnabled();
    return m.style;
}
Acad::ErrorStatus AcDbDimension::setDimensionStyle(AcDbObjectId style) {
    if (host::peek<AcDbDimStyleTableRecord>(style) == nullptr) {
        return Acad::eInvalidInput;
    }
    if (database() != nullptr && style.database() != database()) {
        return Acad::eWrongDatabase;
    }
    changing();
    m.style = style;
    return Acad::eOk;
}

AcDbMText::AttachmentPoint AcDbDimension::textAttachment() const {
    assertReadEnabled();
    return static_cast<AcDbMText::AttachmentPoint>(m.textAttachment);
}
Acad::ErrorStatus AcDbDimension::setTextAttachment(AcDbMText::AttachmentPoint point) {
    if (point < AcDbMText::kTopLeft || point > AcDbMText::kBottomRight) {
        return Acad::eInvalidInput;
    }
    changing();
    m.textAttachment = static_cast<Adesk::Int16>(point);
    return Acad::eOk;
}
AcDb::LineSpacingStyle AcDbDimension::textLineSpacingStyle() const {
    assertReadEnabled();
    return static_cast<AcDb::LineSpacingStyle>(m.textSpacingStyle);
}
Acad::ErrorStatus AcDbDimension::setTextLineSpacingStyle(AcDb::LineSpacingStyle style) {
    if (style != AcDb::kAtLeast && style != AcDb::kExactly) {
        return Acad::eInvalidInput;
    }
    changing();
    m.textSpacingStyle = static_cast<Adesk::Int16>(style);
    return Acad::eOk;
}
double AcDbDimension::textLineSpacingFactor() const {
    assertReadEnabled();
    return m.textSpacing;
}
Acad::ErrorStatus AcDbDimension::setTextLineSpacingFactor(double factor) {
    if (!(factor >= 0.25 && factor <= 4.0)) {
        return Acad::eInvalidInput;
    }
    changing();
    m.textSpacing = factor;
    return Acad::eOk;
}

bool AcDbDimension::getArrowFirstIsFlipped() const {
    assertReadEnabled();
    return (m.flip & 1) != 0;
}
bool AcDbDimension::getArrowSecondIsFlipped() const {
    assertReadEnabled();
    return (m.flip & 2) != 0;
}
Acad::ErrorStatus AcDbDimension::setArrowFirstIsFlipped(bool flipped) {
    changing();
    m.flip = static_cast<Adesk::Int16>((m.flip & 2) | (flipped ? 1 : 0));
    return Acad::eOk;
}
Acad::ErrorStatus AcDbDimension::setArrowSecondIsFlipped(bool flipped) {
    changing();
    m.flip = static_cast<Adesk::Int16>((m.flip & 1) | (flipped ? 2 : 0));
    return Acad::eOk;
}

// Measurement and style.

Acad::ErrorStatus AcDbDimension::getMeasurement(double& value) const {
    assertReadEnabled();
    value = subMeasurement();
    return Acad::eOk;
}

std::wstring AcDbDimension::shownText(const host::DimVariables& variables) const {
    host::DimTextRequest request;
    request.measure = measures();
    request.value = subMeasurement();
    request.sign = sign();
    request.text = m.text.view();
    const auto* block = host::peek<AcDbBlockTableRecord>(ownerId());
    request.inLayout = block != nullptr && block->isPaperSpace();
    return host::dimensionText(variables, request);
}

Acad::ErrorStatus AcDbDimension::formatMeasurement(AcString& text, double value,
                                                   const ACHAR* dimensionText) const {
    assertReadEnabled();
    host::DimTextRequest request;
    request.measure = measures();
    request.value = value;
    request.sign = sign();
    request.text = dimensionText != nullptr ? dimensionText : L"";
    text = host::dimensionText(dimVariables(), request).c_str();
    return Acad::eOk;
}

host::DimVariables AcDbDimension::dimVariables() const {
    assertReadEnabled();
    return host::annotationVariables(*this, m.style);
}

Acad::ErrorStatus AcDbDimension::setDimVariable(const host::DimVariables& values, std::size_t index) {
    changing();
    setXdataGroups(host::withDimOverride(xdataGroups(), values, index));
    return Acad::eOk;
}

Acad::ErrorStatus AcDbDimension::setDimstyleData(AcDbDimStyleTableRecord* values) {
    if (values == nullptr) {
        return Acad::eNullObjectPointer;
    }
    changing();
    const host::DimVariables before = dimVariables();
    for (std::size_t index = 0; index < host::dimVariables().size(); ++index) {
        if (!host::equalDimVariable(before, values->dimVariables(), index)) {
            setDimVariable(values->dimVariables(), index);
        }
    }
    return Acad::eOk;
}
Acad::ErrorStatus AcDbDimension::setDimstyleData(AcDbObjectId style) {
    auto* record = host::peek<AcDbDimStyleTableRecord>(style);
    return record != nullptr ? setDimstyleData(record) : Acad::eInvalidInput;
}
Acad::ErrorStatus AcDbDimension::getDimstyleData(AcDbDimStyleTableRecord*& values) const {
    values = new AcDbDimStyleTableRecord;
    return values->setDimVariables(dimVariables());
}

Acad::ErrorStatus AcDbDimension::setXData(const resbuf* data) {
    const Acad::ErrorStatus status = AcDbEntity::setXData(data);
    if (status == Acad::eOk) {
        mStale = true;
    }
    return status;
}

void AcDbDimension::subSetDatabaseDefaults(AcDbDatabase* database) {
    m.style = database->dimstyle();
    const auto* style = host::peek<AcDbDimStyleTableRecord>(m.style);
    if (style == nullptr) {
        return;
    }
    // Current values that differ from the style's become overrides.
    const host::DimVariables current = host::currentDimVariables(*database);
    for (std::size_t index = 0; index < host::dimVariables().size(); ++index) {
        const bool isReference =
            std::holds_alternative<AcDbObjectId host::DimVariables::*>(host::dimVariables()[index].member);
        if (!isReference && !host::equalDimVariable(current, style->dimVariables(), index)) {
            setDimVariable(current, index);
        }
    }
}

Acad::ErrorStatus AcDbDimension::getPlane(AcGePlane& plane, AcDb::Planarity& planarity) const {
    assertReadEnabled();
    planarity = AcDb::kPlanar;
    plane.set(m.points[Point::first], m.normal);
    return Acad::eOk;
}

// What is seen.

std::vector<std::unique_ptr<AcDbEntity>> AcDbDimension::computedParts(AcGePoint3d* textPosition) const {
    const host::DimVariables variables = dimVariables();
    const double elevation = host::toObject(m.normal, m.points[Point::first]).z;
    host::DimensionPainter painter(*this, variables, shownText(variables), elevation);
    paint(painter);
    if (textPosition != nullptr && painter.textPlace()) {
        *textPosition = host::to3d(*painter.textPlace(), elevation);
    }
    return painter.take();
}

bool AcDbDimension::showsBlock() const {
    const auto* block = mStale ? nullptr : host::peek<AcDbBlockTableRecord>(m.block);
    return block != nullptr && !block->isLayout();
}

AcGeMatrix3d AcDbDimension::blockToWorld() const {
    const AcGePoint3d place = host::toWorld(m.normal, m.blockPosition);
    const auto* block = host::peek<AcDbBlockTableRecord>(m.block);
    const AcGePoint3d origin = block != nullptr ? block->origin() : AcGePoint3d::kOrigin;
    return AcGeMatrix3d::translation(place - origin + mMoved);
}

template <class Visit>
void AcDbDimension::forShown(Visit&& visit) const {
    if (!showsBlock()) {
        for (const std::unique_ptr<AcDbEntity>& part : computedParts()) {
            visit(*part, AcGeMatrix3d::kIdentity);
        }
        return;
    }
    const AcGeMatrix3d transform = blockToWorld();
    for (AcDbStub* stub : host::peek<AcDbBlockTableRecord>(m.block)->entities()) {
        // A dimension in a dimension's block would be one that shows itself.
        const auto* entity = host::peek<AcDbEntity>(AcDbObjectId(stub));
        if (entity != nullptr && entity->visibility() == AcDb::kVisible &&
            AcDbDimension::cast(entity) == nullptr) {
            const host::ReadAccess access(*entity);
            visit(*entity, transform);
        }
    }
}

Adesk::UInt32 AcDbDimension::subSetAttributes(AcGiDrawableTraits* traits) {
    return AcDbEntity::subSetAttributes(traits) | kDrawableIsCompoundObject | kDrawableIsDimension;
}

bool AcDbDimension::subWorldDraw(AcGiWorldDraw* draw) {
    assertReadEnabled();
    if (showsBlock()) {
        draw->geometry().pushModelTransform(blockToWorld());
        draw->geometry().draw(host::peek<AcDbBlockTableRecord>(m.block));
        draw->geometry().popModelTransform();
        return true;
    }
    for (const std::unique_ptr<AcDbEntity>& part : computedParts()) {
        if (AcDbPoint::cast(part.get()) == nullptr) {
            draw->geometry().draw(part.get());
        }
    }
    return true;
}

bool AcDbDimension::subCurvePieces(std::vector<host::CurvePiece>& pieces) const {
    assertReadEnabled();
    forShown([&](const AcDbEntity& entity, const AcGeMatrix3d& transform) {
        const std::size_t begin = pieces.size();
        entity.curvePieces(pieces);
        for (std::size_t index = begin; index < pieces.size(); ++index) {
            pieces[index] = pieces[index].transformed(transform);
        }
    });
    return true;
}

Acad::ErrorStatus AcDbDimension::subGetExtentsUnder(const AcGeMatrix3d& transform,
                                                    AcDbExtents& extents) const {
    assertReadEnabled();
    AcDbExtents box;
    forShown([&](const AcDbEntity& entity, const AcGeMatrix3d& own) {
        AcDbExtents part;
        if (entity.getExtentsUnder(transform * own, part) == Acad::eOk) {
            box.addExt(part);
        }
    });
    if (box.isEmpty()) {
        return Acad::eInvalidExtents;
    }
    extents = box;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbDimension::subExplode(AcDbVoidPtrArray& parts) const {
    assertReadEnabled();
    Acad::ErrorStatus status = Acad::eOk;
    std::vector<std::unique_ptr<AcDbEntity>> made;
    forShown([&](const AcDbEntity& entity, const AcGeMatrix3d& transform) {
        AcDbEntity* copy = nullptr;
        const Acad::ErrorStatus one = entity.getTransformedCopy(transform, copy);
        status = one != Acad::eOk ? one : status;
        if (copy != nullptr) {
            if (copy->entityColor().isByBlock()) { // it takes the dimension's
                copy->setEntityColor(entityColor());
            }
            made.emplace_back(copy);
        }
    });
    if (status == Acad::eOk) {
        for (std::unique_ptr<AcDbEntity>& one : made) {
            parts.append(one.release());
        }
    }
    return status;
}

Acad::ErrorStatus AcDbDimension::subGetOsnapPoints(AcDb::OsnapMode mode, Adesk::GsMarker marker,
                                                   const AcGePoint3d& pick, const AcGePoint3d& last,
                                                   const AcGeMatrix3d& view, AcGePoint3dArray& points,
                                                   AcDbIntArray& geometryIds) const {
    assertReadEnabled();
    if (mode == AcDb::kOsModeNode) {
        for (const Point which : usedPoints()) {
            points.append(point(which));
        }
        return Acad::eOk;
    }
    forShown([&](const AcDbEntity& entity, const AcGeMatrix3d& transform) {
        const AcGeMatrix3d inverse = transform.inverse();
        AcGePoint3dArray inside;
        entity.getOsnapPoints(mode, marker, inverse * pick, inverse * last, view * transform, inside,
                              geometryIds);
        for (const AcGePoint3d& found : inside) {
            points.append(transform * found);
        }
    });
    return Acad::eOk;
}

// Changes of place.

Acad::ErrorStatus AcDbDimension::subTransformBy(const AcGeMatrix3d& transform) {
    const host::PlanarTransform planar(transform, m.normal,
                                       host::toObject(m.normal, m.points[Point::first]).z);
    if (planar.isSingular) {
        return Acad::eDegenerateGeometry;
    }
    const bool isMove = transform == AcGeMatrix3d::translation(transform.translation());
    if (isMove) {
        assertWriteEnabled();
        mMoved += transform.translation();
    } else {
        changing();
    }
    const double before = host::toObject(m.normal, m.points[Point::first]).z;
    const auto inPlane = [&](const AcGePoint3d& point) {
        const AcGePoint2d flat = planar(host::to2d(point));
        return AcGePoint3d(flat.x, flat.y, planar.elevation + (point.z - before) * planar.normalScale);
    };
    const auto turned = [&](double angle) {
        return host::normalizedAngle((planar.local * host::direction(angle)).angle());
    };
    m.textPosition = inPlane(m.textPosition);
    m.points[Point::arc] = inPlane(m.points[Point::arc]);
    for (const Point which : {Point::first, Point::second, Point::third, Point::fourth}) {
        m.points[which] = transform * m.points[which];
    }
    m.normal = planar.normal;
    if (!isMove) {
        m.rotation = turned(m.rotation);
        m.leaderLength *= planar.scale;
        m.oblique = planar.isMirrored ? -m.oblique : m.oblique;
        // What is horizontal turns along with a turned coordinate system only, so texts stay readable.
        m.blockPosition = AcGePoint3d::kOrigin;
    }
    return Acad::eOk;
}

Acad::ErrorStatus AcDbDimension::subGetGripPoints(AcGePoint3dArray& points, AcDbIntArray&,
                                                  AcDbIntArray&) const {
    for (const Point which : usedPoints()) {
        points.append(point(which));
    }
    points.append(textPosition());
    return Acad::eOk;
}

Acad::ErrorStatus AcDbDimension::subMoveGripPointsAt(const AcDbIntArray& indices,
                                                     const AcGeVector3d& offset) {
    const std::vector<Point> used = usedPoints();
    const int count = static_cast<int>(used.size()) + 1;
    bool all = true;
    for (int index = 0; index < count; ++index) {
        all = all && indices.contains(index);
    }
    for (const int index : indices) {
        if (index < 0 || index >= count) {
            return Acad::eInvalidIndex;
        }
    }
    if (all) {
        return subTransformBy(AcGeMatrix3d::translation(offset));
    }
    return host::forGrips(indices, count, [&](int index) {
        if (index + 1 == count) {
            setTextPosition(textPosition() + offset);
        } else {
            const Point which = used[static_cast<std::size_t>(index)];
            setPoint(which, point(which) + offset);
        }
    });
}
