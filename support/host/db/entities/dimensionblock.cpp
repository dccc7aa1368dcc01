// The anonymous blocks of dimensions: made, moved and given up when a dimension is closed after a change.
#include "host/db/dbents.h"
#include "host/db/entities/dimension.h"
#include "host/db/entities/fields.h"
#include "host/db/entities/recordlookup.h"

namespace {

/// A table of the drawing, open for the host's own additions whatever its open state is.
class OpenedTable {
public:
    explicit OpenedTable(AcDbObjectId id)
        : mStub(id.stub()), mWasOpen(std::exchange(mStub->openForWrite, true)) {}
    ~OpenedTable() { mStub->openForWrite = mWasOpen; }
    OpenedTable(const OpenedTable&) = delete;
    OpenedTable& operator=(const OpenedTable&) = delete;
    template <class Table>
    Table& as() const {
        return *static_cast<Table*>(mStub->object);
    }

private:
    AcDbStub* mStub;
    bool mWasOpen;
};

/// Points of dimensions stand on a layer that is never plotted.
AcDbObjectId definitionPointLayer(AcDbDatabase& database) {
    AcDbObjectId layer(host::findRecord<AcDbLayerTable>(database.layerTableId(), L"Defpoints"));
    if (layer.isNull()) {
        const OpenedTable table(database.layerTableId());
        auto* record = new AcDbLayerTableRecord;
        record->setName(L"Defpoints");
        if (table.as<AcDbLayerTable>().add(layer, record) == Acad::eOk) {
            record->close();
        } else {
            delete record;
        }
    }
    return layer;
}

/// Whether a dimension may do away with a block: whatever a file says, only with one made for dimensions.
bool isDimensionBlock(AcDbObjectId id) {
    const auto* block = host::peek<AcDbBlockTableRecord>(id, true);
    return block != nullptr && !block->isLayout() && block->name().matchNoCase(L"*D") == 2;
}

void eraseBlock(AcDbObjectId id) {
    if (isDimensionBlock(id) && !id.isErased()) {
        const host::Opened<AcDbBlockTableRecord> block(id, AcDb::kForWrite);
        if (block) {
            block->erase();
        }
    }
}

} // namespace

void AcDbDimension::replaceBlock(std::vector<std::unique_ptr<AcDbEntity>> parts) {
    AcDbDatabase& home = *database();
    auto* record = new AcDbBlockTableRecord;
    record->setName(L"*D"); // the table gives it a number
    record->setBlockData(1, AcGePoint3d::kOrigin, {}, {});
    AcDbObjectId id;
    {
        const OpenedTable table(home.blockTableId());
        if (table.as<AcDbBlockTable>().add(id, record) != Acad::eOk) {
            delete record;
            return;
        }
    }
    const AcDbObjectId definitionLayer = definitionPointLayer(home);
    for (std::unique_ptr<AcDbEntity>& part : parts) {
        if (AcDbPoint::cast(part.get()) != nullptr && !definitionLayer.isNull()) {
            part->setLayer(definitionLayer);
        }
        AcDbEntity* entity = part.get();
        if (record->appendAcDbEntity(entity) == Acad::eOk) {
            part.release()->close();
        }
    }
    record->close();
    const bool isOwn = m.has(m.ownsBlock) && !mBorrowed;
    const AcDbObjectId old = std::exchange(m.block, id);
    m.set(m.ownsBlock, true);
    m.blockPosition = AcGePoint3d::kOrigin;
    mStale = mBorrowed = false;
    mMoved = AcGeVector3d();
    if (isOwn) {
        eraseBlock(old);
    }
}

void AcDbDimension::updateBlock() {
    if (!showsBlock()) {
        assertWriteEnabled();
        mStale = true;
        AcGePoint3d place = m.textPosition;
        std::vector<std::unique_ptr<AcDbEntity>> parts = computedParts(&place);
        m.textPosition = place;
        m.fileMeasurement = subMeasurement();
        m.hasFileMeasurement = true;
        replaceBlock(std::move(parts));
    } else if (mBorrowed || !mMoved.isZeroLength()) {
        assertWriteEnabled();
        std::vector<std::unique_ptr<AcDbEntity>> parts;
        const AcGeMatrix3d transform = blockToWorld();
        for (AcDbStub* stub : host::peek<AcDbBlockTableRecord>(m.block)->entities()) {
            const auto* entity = host::peek<AcDbEntity>(AcDbObjectId(stub));
            AcDbEntity* copy = nullptr;
            if (entity == nullptr) {
                continue;
            }
            const host::ReadAccess access(*entity);
            if (entity->getTransformedCopy(transform, copy) == Acad::eOk) {
                parts.emplace_back(copy);
            }
        }
        replaceBlock(std::move(parts));
    }
}

Acad::ErrorStatus AcDbDimension::subClose() {
    if (database() != nullptr && isWriteEnabled() && !isErased() && !database()->undoLog().isApplying()) {
        updateBlock();
    }
    return AcDbEntity::subClose();
}

Acad::ErrorStatus AcDbDimension::subErase(bool erasing) {
    const Acad::ErrorStatus status = AcDbEntity::subErase(erasing);
    if (status == Acad::eOk && m.has(m.ownsBlock) && !mBorrowed && isDimensionBlock(m.block)) {
        host::eraseWithOwner(m.block.stub(), erasing);
    }
    return status;
}

void AcDbDimension::subBecameResident() {
    if (m.style.isNull()) {
        m.style = database()->dimstyle();
    }
}

AcDbObjectId AcDbDimension::dimBlockId() const {
    assertReadEnabled();
    return m.block;
}
Acad::ErrorStatus AcDbDimension::setDimBlockId(AcDbObjectId block) {
    if (!block.isNull() && host::peek<AcDbBlockTableRecord>(block) == nullptr) {
        return Acad::eInvalidInput;
    }
    assertWriteEnabled();
    m.block = block;
    m.set(m.ownsBlock, false);
    mStale = mBorrowed = false;
    return Acad::eOk;
}
AcGePoint3d AcDbDimension::dimBlockPosition() const {
    assertReadEnabled();
    return host::toWorld(m.normal, m.blockPosition);
}
Acad::ErrorStatus AcDbDimension::setDimBlockPosition(const AcGePoint3d& point) {
    assertWriteEnabled();
    m.blockPosition = host::toObject(m.normal, point);
    return Acad::eOk;
}

Acad::ErrorStatus AcDbDimension::recomputeDimBlock(bool forceUpdate) {
    if (database() == nullptr) {
        return Acad::eNoDatabase;
    }
    assertWriteEnabled();
    mStale = mStale || forceUpdate;
    updateBlock();
    return Acad::eOk;
}

void host::rebuildDimensionsOf(AcDbObjectId style) {
    AcDbDatabase* database = style.database();
    if (database == nullptr || database->undoLog().isApplying()) {
        return;
    }
    std::vector<AcDbObjectId> found;
    database->impl().forEachStub([&](AcDbStub& stub) {
        const auto* dimension = stub.erased ? nullptr : AcDbDimension::cast(stub.object);
        if (dimension != nullptr && dimension->data().style == style) {
            found.emplace_back(&stub);
        }
    });
    for (const AcDbObjectId id : found) {
        const Opened<AcDbDimension> dimension(id, AcDb::kForWrite);
        if (dimension) { // one on a locked layer keeps its picture until it is changed
            dimension->recomputeDimBlock();
        }
    }
}
