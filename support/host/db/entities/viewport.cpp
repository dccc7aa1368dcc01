// Viewports of layouts.
#include "host/db/entities/viewport.h"

#include "host/db/dbdatabase.h"
#include "host/db/dbsortents.h"
#include "host/db/entities/curvepiece.h"
#include "host/db/entities/transforms.h"
#include "host/gi/curves.h"
#include "host/gi/gi.h"
#include "host/gi/modelview.h"

#include <algorithm>
#include <cmath>
#include <unordered_set>

ACRX_DXF_DEFINE_MEMBERS(AcDbViewport, AcDbEntity, AcDb::kDHL_CURRENT, AcDb::kMReleaseCurrent, 0, VIEWPORT,
                        ObjectDBX Classes)

namespace {

template <class Value>
Acad::ErrorStatus put(AcDbViewport& viewport, Value& field, const Value& value) {
    viewport.assertWriteEnabled();
    field = value;
    return Acad::eOk;
}

/// What may be seen, in drawing order.
std::vector<AcDbStub*> seenThrough(const AcDbViewport& viewport, const AcDbBlockTableRecord& space) {
    AcDbExtents seen; // in the model's plan
    const AcGeMatrix3d toModel = viewport.modelToPaper().inverse();
    for (const AcGePoint3d& corner : viewport.clipOutline()) {
        seen.addPoint(toModel * corner);
    }
    const bool isFromAbove = viewport.viewDirection().isParallelTo(AcGeVector3d::kZAxis);
    std::vector<AcDbStub*> order = host::drawOrder(space);
    if (!isFromAbove || seen.isEmpty()) {
        return order;
    }
    const host::Box2d box{host::to2d(seen.minPoint()), host::to2d(seen.maxPoint())};
    std::unordered_set<AcDbStub*> near;
    for (const host::Placed& placed : space.database()->impl().places.of(space.objectId()).search(box)) {
        near.insert(placed.stub);
    }
    std::erase_if(order, [&](AcDbStub* stub) { return !near.contains(stub); });
    return order;
}

} // namespace

AcGePoint3d AcDbViewport::centerPoint() const {
    assertReadEnabled();
    return m.center;
}
Acad::ErrorStatus AcDbViewport::setCenterPoint(const AcGePoint3d& center) {
    return put(*this, m.center, center);
}
double AcDbViewport::width() const {
    assertReadEnabled();
    return m.width;
}
Acad::ErrorStatus AcDbViewport::setWidth(double width) {
    return width > 0.0 && std::isfinite(width) ? put(*this, m.width, width) : Acad::eInvalidInput;
}
double AcDbViewport::height() const {
    assertReadEnabled();
    return m.height;
}
Acad::ErrorStatus AcDbViewport::setHeight(double height) {
    return height > 0.0 && std::isfinite(height) ? put(*this, m.height, height) : Acad::eInvalidInput;
}
Adesk::Int16 AcDbViewport::number() const {
    assertReadEnabled();
    return m.number;
}
Acad::ErrorStatus AcDbViewport::setNumber(Adesk::Int16 number) {
    assertWriteEnabled();
    m.status = m.status > 0 ? number : m.status; // its place in the stack of viewports that are on
    return put(*this, m.number, number);
}
bool AcDbViewport::isSheet() const {
    assertReadEnabled();
    if (m.number > 0) {
        return m.number == 1;
    }
    // Files do not number the viewports of layouts that are not shown; the sheet's own is the first.
    const auto* block = host::peek<AcDbBlockTableRecord>(ownerId());
    if (block == nullptr) {
        return false;
    }
    const auto first = std::find_if(block->entities().begin(), block->entities().end(), [](AcDbStub* stub) {
        return host::peek<AcDbViewport>(AcDbObjectId(stub)) != nullptr;
    });
    return first != block->entities().end() && *first == objectId().stub();
}
bool AcDbViewport::isOn() const {
    assertReadEnabled();
    return (m.flags & host::ViewportData::off) == 0 && (m.status != 0 || m.number <= 0);
}
Acad::ErrorStatus AcDbViewport::setOn() {
    assertWriteEnabled();
    m.flags &= ~host::ViewportData::off;
    m.status = m.status == 0 ? Adesk::Int16{-1} : m.status;
    return Acad::eOk;
}
Acad::ErrorStatus AcDbViewport::setOff() {
    return put(*this, m.flags, m.flags | host::ViewportData::off);
}
bool AcDbViewport::isLocked() const {
    assertReadEnabled();
    return (m.flags & host::ViewportData::zoomLocked) != 0;
}
Acad::ErrorStatus AcDbViewport::setLocked(bool locked) {
    return put(*this, m.flags,
               locked ? m.flags | host::ViewportData::zoomLocked : m.flags & ~host::ViewportData::zoomLocked);
}

AcGePoint2d AcDbViewport::viewCenter() const {
    assertReadEnabled();
    return m.viewCenter;
}
Acad::ErrorStatus AcDbViewport::setViewCenter(const AcGePoint2d& center) {
    return put(*this, m.viewCenter, center);
}
double AcDbViewport::viewHeight() const {
    assertReadEnabled();
    return m.viewHeight;
}
Acad::ErrorStatus AcDbViewport::setViewHeight(double height) {
    return height > 0.0 && std::isfinite(height) ? put(*this, m.viewHeight, height) : Acad::eInvalidInput;
}
AcGePoint3d AcDbViewport::viewTarget() const {
    assertReadEnabled();
    return m.viewTarget;
}
Acad::ErrorStatus AcDbViewport::setViewTarget(const AcGePoint3d& target) {
    return put(*this, m.viewTarget, target);
}
AcGeVector3d AcDbViewport::viewDirection() const {
    assertReadEnabled();
    return m.viewDirection;
}
Acad::ErrorStatus AcDbViewport::setViewDirection(const AcGeVector3d& direction) {
    return direction.isZeroLength() ? Acad::eInvalidInput : put(*this, m.viewDirection, direction);
}
double AcDbViewport::twistAngle() const {
    assertReadEnabled();
    return m.twist;
}
Acad::ErrorStatus AcDbViewport::setTwistAngle(double angle) {
    return put(*this, m.twist, angle);
}
double AcDbViewport::customScale() const {
    assertReadEnabled();
    return m.viewHeight > 0.0 ? m.height / m.viewHeight : 1.0;
}
Acad::ErrorStatus AcDbViewport::setCustomScale(double scale) {
    return scale > 0.0 ? setViewHeight(m.height / scale) : Acad::eInvalidInput;
}
AcDbObjectId AcDbViewport::nonRectClipEntityId() const {
    assertReadEnabled();
    return m.clipEntity;
}
Acad::ErrorStatus AcDbViewport::setNonRectClipEntityId(AcDbObjectId id) {
    assertWriteEnabled();
    m.clipEntity = id;
    m.flags = id.isNull() ? m.flags & ~host::ViewportData::clippedByEntity
                          : m.flags | host::ViewportData::clippedByEntity;
    return Acad::eOk;
}

bool AcDbViewport::isLayerFrozenInViewport(AcDbObjectId layer) const {
    assertReadEnabled();
    return std::find(m.frozenLayers.begin(), m.frozenLayers.end(), layer) != m.frozenLayers.end();
}
Acad::ErrorStatus AcDbViewport::freezeLayersInViewport(const AcDbObjectIdArray& layers) {
    assertWriteEnabled();
    for (const AcDbObjectId& layer : layers) {
        if (!isLayerFrozenInViewport(layer)) {
            m.frozenLayers.push_back(layer);
        }
    }
    return Acad::eOk;
}
Acad::ErrorStatus AcDbViewport::thawLayersInViewport(const AcDbObjectIdArray& layers) {
    assertWriteEnabled();
    std::erase_if(m.frozenLayers, [&](const AcDbObjectId& layer) { return layers.contains(layer); });
    return Acad::eOk;
}

AcGeMatrix3d AcDbViewport::modelToPaper() const {
    assertReadEnabled();
    const AcGeMatrix3d toDisplay =
        AcGeMatrix3d::rotation(m.twist, AcGeVector3d::kZAxis, AcGePoint3d::kOrigin) *
        AcGeMatrix3d::worldToPlane(host::unitNormal(m.viewDirection)) *
        AcGeMatrix3d::translation(-m.viewTarget.asVector());
    return AcGeMatrix3d::translation(m.center.asVector()) *
           AcGeMatrix3d::scaling(customScale(), AcGePoint3d::kOrigin) *
           AcGeMatrix3d::translation({-m.viewCenter.x, -m.viewCenter.y, 0.0}) * toDisplay;
}

std::vector<AcGePoint3d> AcDbViewport::corners() const {
    const AcGeVector3d x(m.width / 2.0, 0.0, 0.0);
    const AcGeVector3d y(0.0, m.height / 2.0, 0.0);
    return {m.center - x - y, m.center + x - y, m.center + x + y, m.center - x + y};
}

bool AcDbViewport::subCurvePieces(std::vector<host::CurvePiece>& pieces) const {
    if (isSheet()) {
        return true;
    }
    const std::vector<AcGePoint3d> points = corners();
    for (std::size_t index = 0; index < points.size(); ++index) {
        pieces.push_back(host::CurvePiece::line(points[index], points[(index + 1) % points.size()]));
    }
    return true;
}

Acad::ErrorStatus AcDbViewport::subTransformBy(const AcGeMatrix3d& transform) {
    AcDbExtents box;
    for (const AcGePoint3d& corner : corners()) {
        box.addPoint(transform * corner);
    }
    const AcGeVector3d x = transform * AcGeVector3d::kXAxis;
    const AcGeVector3d y = transform * AcGeVector3d::kYAxis;
    const bool upright = std::fabs(x.x * x.y) <= 1e-10 * x.lengthSqrd();
    const double width = upright ? box.maxPoint().x - box.minPoint().x : m.width * x.length();
    const double height = upright ? box.maxPoint().y - box.minPoint().y : m.height * y.length();
    if (!(width > 0.0 && height > 0.0)) {
        return Acad::eDegenerateGeometry;
    }
    assertWriteEnabled();
    m.center = transform * m.center;
    if (x != AcGeVector3d::kXAxis || y != AcGeVector3d::kYAxis) {
        m.width = width;
        m.height = height;
    }
    return Acad::eOk;
}

Acad::ErrorStatus AcDbViewport::subGetGripPoints(AcGePoint3dArray& points, AcDbIntArray&,
                                                 AcDbIntArray&) const {
    assertReadEnabled();
    if (!isSheet()) {
        points.append(m.center);
        for (const AcGePoint3d& corner : corners()) {
            points.append(corner);
        }
    }
    return Acad::eOk;
}

Acad::ErrorStatus AcDbViewport::subMoveGripPointsAt(const AcDbIntArray& indices, const AcGeVector3d& offset) {
    if (const Acad::ErrorStatus status = host::forGrips(indices, isSheet() ? 0 : 5, [](int) {});
        status != Acad::eOk) {
        return status;
    }
    if (indices.contains(0)) {
        return subTransformBy(AcGeMatrix3d::translation(offset));
    }
    const auto moves = [&](int a, int b) { return indices.contains(a) || indices.contains(b) ? 1.0 : 0.0; };
    const double left = moves(1, 4) * offset.x;
    const double right = moves(2, 3) * offset.x;
    const double bottom = moves(1, 2) * offset.y;
    const double top = moves(3, 4) * offset.y;
    const double width = m.width + right - left;
    const double height = m.height + top - bottom;
    if (!(width > 0.0 && height > 0.0)) {
        return Acad::eInvalidInput;
    }
    assertWriteEnabled();
    const double scale = customScale();
    const AcGeVector2d shift((left + right) / 2.0, (bottom + top) / 2.0);
    m.center += host::to3d(shift);
    m.width = width;
    m.height = height;
    // What is seen stays where it is.
    m.viewHeight = height / scale;
    m.viewCenter += shift / scale;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbViewport::subGetOsnapPoints(AcDb::OsnapMode mode, Adesk::GsMarker,
                                                  const AcGePoint3d& pick, const AcGePoint3d& last,
                                                  const AcGeMatrix3d& view, AcGePoint3dArray& points,
                                                  AcDbIntArray&) const {
    assertReadEnabled();
    std::vector<host::CurvePiece> pieces;
    curvePieces(pieces);
    host::addOsnapPoints(pieces, mode, pick, last, view, points);
    return Acad::eOk;
}

std::vector<AcGePoint3d> AcDbViewport::clipOutline() const {
    assertReadEnabled();
    const auto* entity = host::peek<AcDbEntity>(m.clipEntity);
    std::vector<host::CurvePiece> pieces;
    if (entity == nullptr || (m.flags & host::ViewportData::clippedByEntity) == 0) {
        return corners();
    }
    const host::ReadAccess access(*entity);
    if (!entity->curvePieces(pieces) || pieces.empty()) {
        return corners();
    }
    constexpr double within = 1e-4; // of the radius, chords from arcs
    constexpr int bezierChords = 16;
    std::vector<AcGePoint3d> outline;
    for (const host::CurvePiece& piece : pieces) {
        const int chords = piece.isArc() ? host::chordCount(1.0, piece.to - piece.from, within)
                                         : (piece.isBezier() ? bezierChords : 1);
        for (int chord = 0; chord < chords; ++chord) {
            outline.push_back(piece.pointAt(std::lerp(piece.from, piece.to, chord / double(chords))));
        }
    }
    if (pieces.size() > 1 || outline.size() < 2) {
        outline.push_back(pieces.back().end());
    }
    return outline;
}

void AcDbViewport::drawModel(AcGiWorldDraw* draw) const {
    const AcDbDatabase* home = database();
    const auto* space = home != nullptr ? host::peek<AcDbBlockTableRecord>(home->modelSpaceId()) : nullptr;
    auto* view = dynamic_cast<host::ModelViewDraw*>(draw);
    if (space == nullptr || view == nullptr || ownerId() == home->modelSpaceId()) {
        return;
    }
    view->beginModelView(modelToPaper(), clipOutline());
    for (const AcDbObjectId& layer : m.frozenLayers) {
        draw->subEntityTraits().setLayer(layer);
        view->hideLayer();
    }
    for (AcDbStub* stub : seenThrough(*this, *space)) {
        auto* entity = host::peek<AcDbEntity>(AcDbObjectId(stub));
        if (entity == nullptr || entity->isKindOf(desc())) {
            continue;
        }
        if (draw->regenAbort()) {
            break;
        }
        const host::ReadAccess access(*entity);
        draw->geometry().draw(entity);
    }
    view->endModelView();
}

Adesk::UInt32 AcDbViewport::subSetAttributes(AcGiDrawableTraits* traits) {
    return AcDbEntity::subSetAttributes(traits) | kDrawableIsWindow | kDrawableUsesNesting;
}

bool AcDbViewport::subWorldDraw(AcGiWorldDraw* draw) {
    assertReadEnabled();
    if (isSheet()) {
        return true;
    }
    if (host::peek<AcDbEntity>(m.clipEntity) == nullptr) { // else that is the frame
        std::vector<AcGePoint3d> frame = corners();
        frame.push_back(frame.front());
        draw->geometry().polyline(static_cast<Adesk::UInt32>(frame.size()), frame.data());
    }
    // Nothing of the model reaches beyond the frame; a picture for other programs holds no other drawing.
    const AcGiRegenType regen = draw->regenType();
    if (isOn() && regen != kAcGiForExtents && regen != kAcGiSaveWorldDrawForProxy) {
        drawModel(draw);
    }
    return true;
}

// Filing.

Acad::ErrorStatus AcDbViewport::dwgOutFields(AcDbDwgFiler* filer) const {
    const Acad::ErrorStatus status = AcDbEntity::dwgOutFields(filer);
    return status == Acad::eOk ? host::writeFields(filer, m) : status;
}

Acad::ErrorStatus AcDbViewport::dwgInFields(AcDbDwgFiler* filer) {
    const Acad::ErrorStatus status = AcDbEntity::dwgInFields(filer);
    return status == Acad::eOk ? host::readFields(filer, m) : status;
}

Acad::ErrorStatus AcDbViewport::dxfInFields(AcDbDxfFiler* filer) {
    assertWriteEnabled();
    m = {};
    const Acad::ErrorStatus status = AcDbEntity::dxfInFields(filer);
    return status == Acad::eOk ? readDxfGroups(filer) : status;
}

std::string_view AcDbViewport::dxfSubclass(std::string_view marker) const {
    return marker.empty() || marker == "AcDbViewport" ? "AcDbViewport" : std::string_view();
}

bool AcDbViewport::takeDxfGroup(AcDbDxfFiler*, const host::DxfGroup& group, std::string_view) {
    switch (group.code) {
    case 10:
        m.center = group.point();
        return true;
    case 40:
        m.width = group.real;
        return true;
    case 41:
        m.height = group.real;
        return true;
    case 68:
        m.status = group.int16();
        return true;
    case 69:
        m.number = group.int16();
        return true;
    case 12:
        m.viewCenter = group.point2d();
        return true;
    case 13:
        m.snapBase = group.point2d();
        return true;
    case 14:
        m.snapSpacing = group.point2d();
        return true;
    case 15:
        m.gridSpacing = group.point2d();
        return true;
    case 16:
        m.viewDirection = group.vector();
        return true;
    case 17:
        m.viewTarget = group.point();
        return true;
    case 42:
        m.lens = group.real;
        return true;
    case 43:
        m.frontClip = group.real;
        return true;
    case 44:
        m.backClip = group.real;
        return true;
    case 45:
        m.viewHeight = group.real;
        return true;
    case 50:
        m.snapAngle = host::radiansOf(group.real);
        return true;
    case 51:
        m.twist = host::radiansOf(group.real);
        return true;
    case 72:
        m.circleSides = group.int16();
        return true;
    case 90:
        m.flags = group.int32();
        return true;
    case 331:
        if (group.id != nullptr) {
            m.frozenLayers.emplace_back(group.id);
        }
        return true;
    case 340:
        m.clipEntity = AcDbObjectId(group.id);
        return true;
    default:
        return false;
    }
}

Acad::ErrorStatus AcDbViewport::dxfGroupsRead(AcDbDxfFiler*) {
    host::MemoryDwgFiler filer(AcDb::kFileFiler);
    host::writeFields(&filer, m);
    filer.rewind();
    host::ViewportData checked;
    return host::readFields(&filer, checked);
}

Acad::ErrorStatus AcDbViewport::dxfOutFields(AcDbDxfFiler* filer) const {
    if (const Acad::ErrorStatus status = AcDbEntity::dxfOutFields(filer); status != Acad::eOk) {
        return status;
    }
    filer->writeText(100, "AcDbViewport");
    filer->writePoint3d(10, m.center);
    filer->writeReal(40, m.width);
    filer->writeReal(41, m.height);
    filer->writeInt16(68, m.status);
    filer->writeInt16(69, m.number);
    filer->writePoint2d(12, m.viewCenter);
    filer->writePoint2d(13, m.snapBase);
    filer->writePoint2d(14, m.snapSpacing);
    filer->writePoint2d(15, m.gridSpacing);
    filer->writeVector3d(16, m.viewDirection);
    filer->writePoint3d(17, m.viewTarget);
    filer->writeReal(42, m.lens);
    filer->writeReal(43, m.frontClip);
    filer->writeReal(44, m.backClip);
    filer->writeReal(45, m.viewHeight);
    filer->writeAngle(50, m.snapAngle);
    filer->writeAngle(51, m.twist);
    filer->writeInt16(72, m.circleSides);
    for (const AcDbObjectId& layer : m.frozenLayers) {
        filer->writeObjectId(331, layer);
    }
    filer->writeInt32(90, m.flags);
    if (!m.clipEntity.isNull()) {
        filer->writeObjectId(340, m.clipEntity);
    }
    writeKeptGroups(filer, "AcDbViewport");
    return filer->filerStatus();
}
