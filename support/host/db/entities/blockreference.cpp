// Block references: transforms, attributes, contents.
#include "host/db/entities/blockreference.h"

#include "host/db/dbdatabase.h"
#include "host/db/dbsortents.h"
#include "host/db/entities/blockextents.h"
#include "host/db/entities/curvepiece.h"
#include "host/db/entities/explodedparts.h"
#include "host/db/entities/fields.h"
#include "host/db/entities/transforms.h"
#include "host/gi/gi.h"

#include <algorithm>

ACRX_DXF_DEFINE_MEMBERS(AcDbBlockReference, AcDbEntity, AcDb::kDHL_CURRENT, AcDb::kMReleaseCurrent, 0, INSERT,
                        ObjectDBX Classes)

namespace host {
namespace {

/// A block being visited on this thread. One that holds itself ends, and so do blocks that multiply without
/// bound: how many references one reference shows is limited.
class VisitScope {
public:
    explicit VisitScope(const AcDbBlockTableRecord* block) : mBlock(block) {
        State& now = state();
        mEntered = block != nullptr && now.blocks.size() < deepestBlocks &&
                   (now.definitions == 0 || now.left > 0) &&
                   std::find(now.blocks.begin(), now.blocks.end(), block) == now.blocks.end();
        if (!mEntered) {
            return;
        }
        now.blocks.push_back(block);
        if (!block->isLayout()) {
            now.left = now.definitions++ == 0 ? mostNestedReferences : now.left - 1;
        }
    }
    ~VisitScope() {
        if (mEntered) {
            state().blocks.pop_back();
            state().definitions -= mBlock->isLayout() ? 0 : 1;
        }
    }
    VisitScope(const VisitScope&) = delete;
    VisitScope& operator=(const VisitScope&) = delete;
    bool entered() const { return mEntered; }

private:
    struct State {
        std::vector<const AcDbBlockTableRecord*> blocks;
        int definitions = 0; ///< of them that are no layouts
        int left = 0;
    };
    static State& state() {
        thread_local State now;
        return now;
    }
    const AcDbBlockTableRecord* mBlock;
    bool mEntered = false;
};

/// Calls visit(entity) for what a reference of the block shows.
template <class Visit>
void forShown(const AcDbBlockTableRecord& block, Visit&& visit) {
    for (AcDbStub* stub : block.entities()) {
        auto* entity = peek<AcDbEntity>(AcDbObjectId(stub));
        if (entity == nullptr || entity->visibility() == AcDb::kInvisible) {
            continue;
        }
        const ReadAccess access(*entity);
        if (const auto* definition = AcDbAttributeDefinition::cast(entity);
            definition == nullptr || (definition->isConstant() && !definition->isInvisible())) {
            visit(*entity);
        }
    }
}

} // namespace

namespace {

std::optional<AcDbExtents> extentsOfShown(const AcDbBlockTableRecord& block, const AcGeMatrix3d& linear) {
    AcDbExtents box;
    forShown(block, [&](const AcDbEntity& entity) {
        AcDbExtents part;
        if (entity.getExtentsUnder(linear, part) == Acad::eOk) {
            box.addExt(part);
        }
    });
    return box.isEmpty() ? std::nullopt : std::optional(box);
}

} // namespace

bool drawBlockContents(const AcDbBlockTableRecord& block, AcGiWorldDraw* draw) {
    const VisitScope scope(&block);
    if (!scope.entered()) {
        return true;
    }
    const bool isReferenced = !block.isLayout();
    const AcDbSortentsTable* table = sortentsOf(block);
    const std::vector<AcDbStub*> sorted =
        table != nullptr ? table->drawOrder(block) : std::vector<AcDbStub*>();
    for (AcDbStub* stub : table != nullptr ? sorted : block.entities()) {
        auto* entity = peek<AcDbEntity>(AcDbObjectId(stub));
        if (entity == nullptr || draw->regenAbort()) {
            continue;
        }
        const auto* definition = isReferenced ? AcDbAttributeDefinition::cast(entity) : nullptr;
        const ReadAccess access(*entity);
        if (definition == nullptr || (definition->isConstant() && !definition->isInvisible())) {
            draw->geometry().draw(entity);
        }
    }
    return true;
}

} // namespace host

bool AcDbBlockTableRecord::subWorldDraw(AcGiWorldDraw* draw) {
    return host::drawBlockContents(*this, draw);
}

Adesk::UInt32 AcDbBlockTableRecord::subSetAttributes(AcGiDrawableTraits*) {
    return isLayout() ? kDrawableNone : kDrawableIsBlockDefinition;
}

AcDbBlockReference::AcDbBlockReference(const AcGePoint3d& position, AcDbObjectId block) {
    m.position = position;
    m.block = block;
}

AcDbObjectId AcDbBlockReference::blockTableRecord() const {
    assertReadEnabled();
    return m.block;
}

Acad::ErrorStatus AcDbBlockReference::setBlockTableRecord(AcDbObjectId block) {
    if (host::peek<AcDbBlockTableRecord>(block) == nullptr) {
        return Acad::eInvalidInput;
    }
    if (!ownerId().isNull() && host::blockContains(block, ownerId())) {
        return Acad::eSelfReference;
    }
    assertWriteEnabled();
    m.block = block;
    return Acad::eOk;
}

AcGePoint3d AcDbBlockReference::position() const {
    assertReadEnabled();
    return host::toWorld(m.normal, m.position);
}
Acad::ErrorStatus AcDbBlockReference::setPosition(const AcGePoint3d& position) {
    assertWriteEnabled();
    m.position = host::toObject(m.normal, position);
    return Acad::eOk;
}

AcGeScale3d AcDbBlockReference::scaleFactors() const {
    assertReadEnabled();
    return m.scale;
}
Acad::ErrorStatus AcDbBlockReference::setScaleFactors(const AcGeScale3d& scale) {
    const double product = scale.sx * scale.sy * scale.sz;
    if (!std::isfinite(product) || scale.sx == 0.0 || scale.sy == 0.0 || scale.sz == 0.0) {
        return Acad::eInvalidInput;
    }
    assertWriteEnabled();
    m.scale = scale;
    return Acad::eOk;
}

double AcDbBlockReference::rotation() const {
    assertReadEnabled();
    return m.rotation;
}
Acad::ErrorStatus AcDbBlockReference::setRotation(double angle) {
    if (!std::isfinite(angle)) {
        return Acad::eInvalidInput;
    }
    assertWriteEnabled();
    m.rotation = host::normalizedAngle(angle);
    return Acad::eOk;
}

AcGeVector3d AcDbBlockReference::normal() const {
    assertReadEnabled();
    return m.normal;
}
Acad::ErrorStatus AcDbBlockReference::setNormal(const AcGeVector3d& normal) {
    assertWriteEnabled();
    const AcGePoint3d at = host::toWorld(m.normal, m.position);
    m.normal = host::unitNormal(normal);
    m.position = host::toObject(m.normal, at);
    return Acad::eOk;
}

AcGeMatrix3d AcDbBlockReference::blockTransform() const {
    assertReadEnabled();
    AcGePoint3d origin;
    if (const auto* block = host::peek<AcDbBlockTableRecord>(m.block, true)) {
        origin = block->origin();
    }
    const AcGeVector2d x = host::direction(m.rotation);
    AcGeMatrix3d transform;
    transform.setCoordSystem(AcGePoint3d::kOrigin, AcGeVector3d(x.x, x.y, 0.0) * m.scale.sx,
                             AcGeVector3d(-x.y, x.x, 0.0) * m.scale.sy, AcGeVector3d(0.0, 0.0, m.scale.sz));
    transform.setTranslation(m.position - transform * origin);
    return host::isWorldNormal(m.normal) ? transform : AcGeMatrix3d::planeToWorld(m.normal) * transform;
}

Acad::ErrorStatus AcDbBlockReference::setBlockTransform(const AcGeMatrix3d& transform) {
    if (transform.isSingular()) {
        return Acad::eInvalidInput;
    }
    assertWriteEnabled();
    const AcGeMatrix3d before = blockTransform();
    return subTransformBy(transform * before.inverse());
}

namespace {

bool standAtRightAngles(const AcGeVector3d& a, const AcGeVector3d& b) {
    return std::fabs(a.dotProduct(b)) <= 1e-10 * a.length() * b.length();
}

} // namespace

Acad::ErrorStatus AcDbBlockReference::subTransformBy(const AcGeMatrix3d& transform) {
    const AcGeVector2d direction = host::direction(m.rotation);
    const AcGeMatrix3d plane = AcGeMatrix3d::planeToWorld(m.normal);
    const AcGeVector3d x = transform * (plane * AcGeVector3d(direction.x, direction.y, 0.0));
    const AcGeVector3d y = transform * (plane * AcGeVector3d(-direction.y, direction.x, 0.0));
    const AcGeVector3d z = transform * m.normal;
    const double sizeX = x.length();
    const double sizeY = y.length();
    const double sizeZ = z.length();
    if (!(sizeX > 0.0 && sizeY > 0.0 && sizeZ > 0.0)) {
        return Acad::eDegenerateGeometry;
    }
    if (!standAtRightAngles(x, y) || !standAtRightAngles(y, z) || !standAtRightAngles(z, x)) {
        return Acad::eCannotScaleNonUniformly;
    }
    assertWriteEnabled();
    const AcGePoint3d at = transform * host::toWorld(m.normal, m.position);
    // A mirroring shows in the sign of the first factor; the axis then points the other way.
    const bool mirrored = x.crossProduct(y).dotProduct(z) < 0.0;
    const bool turns = !(x == plane * AcGeVector3d(direction.x, direction.y, 0.0)) || !(z == m.normal);
    m.normal = host::unitNormal(z / sizeZ);
    m.position = host::toObject(m.normal, at);
    if (turns || mirrored) {
        const AcGeVector3d along = host::toObject(m.normal, mirrored ? -x : x);
        m.rotation = host::normalizedAngle(std::atan2(along.y, along.x));
    }
    const auto factor = [](double size) { return std::fabs(size - 1.0) <= 1e-14 ? 1.0 : size; };
    m.scale = {m.scale.sx * (mirrored ? -factor(sizeX) : factor(sizeX)), m.scale.sy * factor(sizeY),
               m.scale.sz * factor(sizeZ)};
    if (mAttributes == nullptr) {
        return Acad::eOk;
    }
    return mAttributes->change<AcDbAttribute>(
        [&](AcDbAttribute& attribute) { attribute.transformBy(transform); });
}

host::SubentityList& AcDbBlockReference::needAttributes() {
    if (mAttributes == nullptr) {
        mAttributes = std::make_unique<host::SubentityList>();
    }
    return *mAttributes;
}

Acad::ErrorStatus AcDbBlockReference::appendAttribute(AcDbAttribute* attribute) {
    AcDbObjectId id;
    return appendAttribute(id, attribute);
}

Acad::ErrorStatus AcDbBlockReference::appendAttribute(AcDbObjectId& id, AcDbAttribute* attribute) {
    return needAttributes().append(*this, id, attribute);
}

Acad::ErrorStatus AcDbBlockReference::openAttribute(AcDbAttribute*& attribute, AcDbObjectId id,
                                                    AcDb::OpenMode mode, bool openErased) const {
    attribute = nullptr;
    return mAttributes != nullptr && mAttributes->find(id) >= 0
               ? acdbOpenObject(attribute, id, mode, openErased)
               : Acad::eInvalidInput;
}

Acad::ErrorStatus AcDbBlockReference::openSequenceEnd(AcDbSequenceEnd*& end, AcDb::OpenMode mode) const {
    end = nullptr;
    return mAttributes != nullptr ? acdbOpenObject(end, AcDbObjectId(mAttributes->sequenceEnd()), mode)
                                  : Acad::eNullObjectId;
}

AcDbObjectIterator* AcDbBlockReference::attributeIterator() const {
    return const_cast<AcDbBlockReference*>(this)->needAttributes().newIterator();
}

void AcDbBlockReference::subBecameResident() {
    if (mAttributes != nullptr) {
        mAttributes->ownerBecameResident(*this);
    }
}

Acad::ErrorStatus AcDbBlockReference::subErase(bool erasing) {
    const Acad::ErrorStatus status = AcDbEntity::subErase(erasing);
    return status == Acad::eOk && mAttributes != nullptr ? mAttributes->erase(erasing) : status;
}

// Contents.

template <class Visit>
void AcDbBlockReference::visitBlock(Visit&& visit) const {
    const auto* block = host::peek<AcDbBlockTableRecord>(m.block);
    const host::VisitScope scope(block);
    if (scope.entered()) {
        const AcGeMatrix3d own = blockTransform();
        forShowings(Showings::all, [&](const AcGeVector3d& shift) {
            const AcGeMatrix3d transform = AcGeMatrix3d::translation(shift) * own;
            host::forShown(*block, [&](AcDbEntity& entity) { visit(entity, transform); });
        });
    }
}

bool AcDbBlockReference::subCurvePieces(std::vector<host::CurvePiece>& pieces) const {
    visitBlock([&](const AcDbEntity& entity, const AcGeMatrix3d& transform) {
        const std::size_t begin = pieces.size();
        entity.curvePieces(pieces);
        for (std::size_t index = begin; index < pieces.size(); ++index) {
            pieces[index] = pieces[index].transformed(transform);
        }
    });
    return true;
}

Acad::ErrorStatus AcDbBlockReference::subGetExtentsUnder(const AcGeMatrix3d& transform,
                                                         AcDbExtents& extents) const {
    assertReadEnabled();
    AcDbExtents box;
    AcDbExtents part;
    const auto* block = host::peek<AcDbBlockTableRecord>(m.block);
    if (const host::VisitScope scope(block); scope.entered()) {
        const AcGeMatrix3d whole = transform * blockTransform();
        const std::optional<AcDbExtents> own = block->measuredExtents().under(
            whole, block->database()->impl().changeStamp,
            [&](const AcGeMatrix3d& linear) { return host::extentsOfShown(*block, linear); });
        forShowings(Showings::corners, [&](const AcGeVector3d& shift) {
            if (own.has_value()) {
                const AcGeVector3d way = whole.translation() + transform * shift;
                box.addExt(AcDbExtents(own->minPoint() + way, own->maxPoint() + way));
            }
        });
    }
    if (mAttributes != nullptr) {
        mAttributes->forEach<AcDbAttribute>([&](const AcDbAttribute& attribute) {
            if (!attribute.isInvisible() && attribute.getExtentsUnder(transform, part) == Acad::eOk) {
                box.addExt(part);
            }
        });
    }
    if (box.isEmpty()) {
        return Acad::eInvalidExtents;
    }
    extents = box;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbBlockReference::getPlane(AcGePlane& plane, AcDb::Planarity& planarity) const {
    assertReadEnabled();
    planarity = AcDb::kPlanar;
    plane.set(position(), m.normal);
    return Acad::eOk;
}

Acad::ErrorStatus AcDbBlockReference::subGetGripPoints(AcGePoint3dArray& points, AcDbIntArray&,
                                                       AcDbIntArray&) const {
    points.append(position());
    if (mAttributes != nullptr) {
        mAttributes->forEach<AcDbAttribute>([&](const AcDbAttribute& attribute) {
            points.append(attribute.isDefaultAlignment() ? attribute.position() : attribute.alignmentPoint());
        });
    }
    return Acad::eOk;
}

Acad::ErrorStatus AcDbBlockReference::subMoveGripPointsAt(const AcDbIntArray& indices,
                                                          const AcGeVector3d& offset) {
    int count = 1;
    if (mAttributes != nullptr) {
        mAttributes->forEach<AcDbAttribute>([&](const AcDbAttribute&) { ++count; });
    }
    for (const int index : indices) {
        if (index < 0 || index >= count) {
            return Acad::eInvalidIndex;
        }
    }
    const AcGeMatrix3d move = AcGeMatrix3d::translation(offset);
    if (indices.contains(0)) {
        return subTransformBy(move);
    }
    assertWriteEnabled();
    int at = 0;
    return mAttributes == nullptr ? Acad::eOk
                                  : mAttributes->change<AcDbAttribute>([&](AcDbAttribute& attribute) {
                                        if (indices.contains(++at)) {
                                            attribute.transformBy(move);
                                        }
                                    });
}

Acad::ErrorStatus AcDbBlockReference::subGetOsnapPoints(AcDb::OsnapMode mode, Adesk::GsMarker marker,
                                                        const AcGePoint3d& pick, const AcGePoint3d& last,
                                                        const AcGeMatrix3d& view, AcGePoint3dArray& points,
                                                        AcDbIntArray& geometryIds) const {
    assertReadEnabled();
    if (mode == AcDb::kOsModeIns) {
        points.append(position());
        return Acad::eOk;
    }
    // Everything else snaps to what is shown.
    visitBlock([&](const AcDbEntity& entity, const AcGeMatrix3d& transform) {
        const AcGeMatrix3d inverse = transform.inverse();
        AcGePoint3dArray inside;
        entity.getOsnapPoints(mode, marker, inverse * pick, inverse * last, view * transform, inside,
                              geometryIds);
        for (const AcGePoint3d& point : inside) {
            points.append(transform * point);
        }
    });
    return Acad::eOk;
}

Acad::ErrorStatus AcDbBlockReference::subExplode(AcDbVoidPtrArray& parts) const {
    assertReadEnabled();
    const auto* block = host::peek<AcDbBlockTableRecord>(m.block);
    if (block == nullptr) {
        return Acad::eInvalidInput;
    }
    if (!block->explodable()) {
        return Acad::eCannotExplodeEntity;
    }
    const AcGeMatrix3d transform = blockTransform();
    std::vector<std::unique_ptr<AcDbEntity>> made;
    constexpr int deepest = 8;
    for (AcDbStub* stub : block->entities()) {
        const auto* entity = host::peek<AcDbEntity>(AcDbObjectId(stub));
        if (entity == nullptr) {
            continue;
        }
        const host::ReadAccess access(*entity);
        if (const Acad::ErrorStatus status = host::transformedParts(*entity, transform, made, deepest);
            status != Acad::eOk) {
            return status;
        }
    }
    for (std::unique_ptr<AcDbEntity>& part : made) {
        parts.append(part.release());
    }
    return Acad::eOk;
}

Acad::ErrorStatus AcDbBlockReference::explodeToOwnerSpace() const {
    AcDbVoidPtrArray parts;
    if (const Acad::ErrorStatus status = explode(parts); status != Acad::eOk) {
        return status;
    }
    const host::Opened<AcDbBlockTableRecord> owner(ownerId(), AcDb::kForWrite);
    for (void* part : parts) {
        auto* entity = static_cast<AcDbEntity*>(part);
        if (!owner || owner->appendAcDbEntity(entity) != Acad::eOk) {
            delete entity;
            continue;
        }
        entity->close();
    }
    return owner ? Acad::eOk : owner.status();
}

Adesk::UInt32 AcDbBlockReference::subSetAttributes(AcGiDrawableTraits* traits) {
    return AcDbEntity::subSetAttributes(traits) | kDrawableIsCompoundObject;
}

bool AcDbBlockReference::subWorldDraw(AcGiWorldDraw* draw) {
    assertReadEnabled();
    auto* block = host::peek<AcDbBlockTableRecord>(m.block);
    const AcGeMatrix3d own = blockTransform();
    forShowings(Showings::all, [&](const AcGeVector3d& shift) {
        if (draw->regenAbort()) {
            return;
        }
        const AcGeMatrix3d move = AcGeMatrix3d::translation(shift);
        if (block != nullptr) {
            draw->geometry().pushModelTransform(move * own);
            draw->geometry().draw(block);
            draw->geometry().popModelTransform();
        }
        if (mAttributes != nullptr) {
            draw->geometry().pushModelTransform(move);
            mAttributes->forEach<AcDbAttribute>([&](const AcDbAttribute& attribute) {
                draw->geometry().draw(const_cast<AcDbAttribute*>(&attribute));
            });
            draw->geometry().popModelTransform();
        }
    });
    return true;
}
