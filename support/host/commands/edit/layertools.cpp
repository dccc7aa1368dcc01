// Setting layers apart, and taking layers out of a drawing.
#include "host/commands/edit/layertools.h"

#include "host/commands/edit/editing.h"
#include "host/db/dbents.h"
#include "host/db/entities/subentities.h"
#include "host/rx/text.h"

#include <algorithm>

namespace host {

std::vector<LayerChange> isolateLayers(AcDbDatabase& database, const LayerSet& kept, Isolation how) {
    std::vector<LayerChange> changes;
    forEachLayer(database, [&](AcDbLayerTableRecord& layer) {
        if (kept.contains(layer.objectId().stub())) {
            return;
        }
        LayerChange change{layer.objectId(), layer.isOff(), layer.isLocked(), layer.isOff(),
                           layer.isLocked()};
        bool& state = how == Isolation::off ? change.isOff : change.isLocked;
        if (!std::exchange(state, true)) {
            how == Isolation::off ? layer.setIsOff(true) : layer.setIsLocked(true);
            changes.push_back(change);
        }
    });
    return changes;
}

int restoreLayers(const std::vector<LayerChange>& changes) {
    int restored = 0;
    for (const LayerChange& change : changes) {
        const Opened<AcDbLayerTableRecord> layer(change.layer, AcDb::kForWrite);
        if (!layer) {
            continue; // erased since
        }
        const bool off = change.isOff != change.wasOff && layer->isOff() == change.isOff;
        const bool lock = change.isLocked != change.wasLocked && layer->isLocked() == change.isLocked;
        if (off) {
            layer->setIsOff(change.wasOff);
        }
        if (lock) {
            layer->setIsLocked(change.wasLocked);
        }
        restored += off || lock ? 1 : 0;
    }
    return restored;
}

const wchar_t* removalRefusal(const AcDbDatabase& database, AcDbObjectId layer) {
    const auto* record = peek<AcDbLayerTableRecord>(layer);
    if (layer == database.layerZero()) {
        return L"不能删除图层 \"0\"。";
    }
    if (layer == database.clayer()) {
        return L"不能删除当前图层。";
    }
    if (record->isDependent()) {
        return L"不能删除依赖外部参照的图层。";
    }
    return record->name().compareNoCase(L"Defpoints") == 0 ? L"不能删除图层 \"Defpoints\"。" : nullptr;
}

namespace {

/// Reads an object's fields again with other ids in the place of the layers'.
class ReplacingFiler : public MemoryDwgFiler {
public:
    ReplacingFiler(AcDbDatabase* database, std::string_view bytes, const LayerSet& layers,
                   AcDbObjectId target)
        : MemoryDwgFiler(AcDb::kDeepCloneFiler, database, bytes), mLayers(layers), mTarget(target) {}

protected:
    Acad::ErrorStatus readId(ReferenceKind kind, AcDbObjectId& id) override {
        const Acad::ErrorStatus status = MemoryDwgFiler::readId(kind, id);
        if (mLayers.contains(id.stub())) {
            id = mTarget;
        }
        return status;
    }

private:
    const LayerSet& mLayers;
    AcDbObjectId mTarget;
};

class Remover {
public:
    Remover(AcDbDatabase& database, const LayerSet& layers, AcDbObjectId target)
        : mDatabase(database), mLayers(layers), mTarget(target) {
        for (AcDbStub* stub : layers) {
            mNames.insert(peek<AcDbLayerTableRecord>(stub)->name().kwszPtr());
        }
        if (!target.isNull()) {
            mTargetName = toUtf8(peek<AcDbLayerTableRecord>(target)->name().kwszPtr());
        }
    }

    LayerRemoval run() {
        // Found first, changed then: what is made anew by a change must not be met on the way.
        std::vector<AcDbStub*> concerned;
        UnlockedLayers unlocked;
        mDatabase.impl().forEachStub([&](AcDbStub& stub) {
            if (stub.object != nullptr && !stub.erased && refersToThem(*stub.object)) {
                concerned.push_back(&stub);
            }
        });
        for (AcDbStub* stub : concerned) {
            if (const auto* entity = AcDbEntity::cast(stub->object)) {
                unlocked.unlock(entity->layerId());
            }
        }
        for (AcDbStub* stub : concerned) {
            change(stub);
        }
        for (AcDbStub* stub : mLayers) {
            const Opened<AcDbLayerTableRecord> layer(stub, AcDb::kForWrite);
            mResult.layers += layer && layer->erase() == Acad::eOk ? 1 : 0;
        }
        return mResult;
    }

private:
    static bool isPointer(const IdCollector::Reference& reference) {
        return reference.kind != ReferenceKind::hardOwnership &&
               reference.kind != ReferenceKind::softOwnership;
    }

    bool namesThem(const GroupList& xdata) const {
        for (const GroupList::Group group : xdata) {
            if (isName(group)) {
                return true;
            }
        }
        return false;
    }
    bool isName(const GroupList::Group& group) const {
        return group.code == 1003 && mNames.contains(fromUtf8(decodeDxfText(group.text)));
    }

    bool refersToThem(const AcDbObject& object) {
        const auto* entity = AcDbEntity::cast(&object);
        if (entity != nullptr && mLayers.contains(entity->layerId().stub())) {
            return true;
        }
        if (object.extras() != nullptr && namesThem(object.extras()->xdata)) {
            return true;
        }
        mCollector.references.clear();
        {
            const ReadAccess access(object);
            object.dwgOutFields(&mCollector);
        }
        return std::any_of(mCollector.references.begin(), mCollector.references.end(),
                           [&](const auto& reference) {
                               return isPointer(reference) && mLayers.contains(reference.id.stub()) &&
                                      reference.id != object.ownerId();
                           });
    }

    void change(AcDbStub* stub) {
        if (stub->erased) {
            return; // with its owner
        }
        if (AcDbEntity::cast(stub->object) != nullptr) {
            const Opened<AcDbEntity> entity(stub, AcDb::kForWrite);
            if (!entity || (mLayers.contains(entity->layerId().stub()) && !takeOffLayer(*entity.get()))) {
                return;
            }
            if (auto* viewport = AcDbViewport::cast(entity.get())) {
                thaw(*viewport);
            }
            replaceReferences(*entity.get());
            return;
        }
        if (const Opened<AcDbObject> object(stub, AcDb::kForWrite); object) {
            replaceReferences(*object.get());
        }
    }

    /// False when the entity went with the layer.
    bool takeOffLayer(AcDbEntity& entity) {
        ++mResult.entities;
        AcDbObjectId layer = mTarget;
        if (layer.isNull()) {
            const auto* viewport = AcDbViewport::cast(&entity);
            const auto* owner = peek<AcDbEntity>(entity.ownerId());
            if (owner != nullptr && AcDbAttribute::cast(&entity) == nullptr) {
                layer = owner->layerId(); // vertices, and the end of a list, stay with what they belong to
            } else if (AcDbBlockBegin::cast(&entity) != nullptr || AcDbBlockEnd::cast(&entity) != nullptr ||
                       (viewport != nullptr && viewport->number() == 1)) {
                layer = mDatabase.layerZero();
            }
            if (layer.isNull() || mLayers.contains(layer.stub())) {
                entity.erase();
                return false;
            }
            --mResult.entities;
        }
        entity.setLayer(layer, false);
        return true;
    }

    void thaw(AcDbViewport& viewport) {
        AcDbObjectIdArray frozen;
        for (AcDbStub* stub : mLayers) {
            if (viewport.isLayerFrozenInViewport(AcDbObjectId(stub))) {
                frozen.append(AcDbObjectId(stub));
            }
        }
        if (!frozen.isEmpty()) {
            viewport.thawLayersInViewport(frozen);
        }
    }

    /// The object is open for writing.
    void replaceReferences(AcDbObject& object) {
        if (object.extras() != nullptr && namesThem(object.extras()->xdata)) {
            GroupList renamed;
            for (const GroupList::Group group : object.extras()->xdata) {
                renamed.add(group.code, isName(group) ? encodeDxfText(mTargetName) : std::string(group.text));
            }
            object.assertWriteEnabled();
            object.setXdataGroups(std::move(renamed));
        }
        if (!refersToThem(object)) {
            return;
        }
        MemoryDwgFiler filed(AcDb::kDeepCloneFiler, &mDatabase);
        object.dwgOutFields(&filed);
        object.assertWriteEnabled();
        ReplacingFiler replacing(&mDatabase, filed.bytes(), mLayers, mTarget);
        object.dwgInFields(&replacing);
    }

    AcDbDatabase& mDatabase;
    const LayerSet& mLayers;
    AcDbObjectId mTarget;
    std::unordered_set<std::wstring, NoCaseHash, NoCaseEqual> mNames;
    std::string mTargetName = "0"; ///< that extended data name instead
    IdCollector mCollector{AcDb::kPurgeFiler};
    LayerRemoval mResult;
};

} // namespace

LayerRemoval removeLayers(AcDbDatabase& database, const LayerSet& layers, AcDbObjectId target) {
    return Remover(database, layers, target).run();
}

} // namespace host
