// Appending and erasing of entities, layers, references of blocks, points relative to another.
#include "restools/drawing.h"

#include <algorithm>

AcDbDatabase* WorkingDatabase() {
    return acdbHostApplicationServices()->workingDatabase();
}

Acad::ErrorStatus AppendEnt(CArxObject& entity, AcDbDatabase* database) {
    const AcDbDatabase* target = database != nullptr ? database : WorkingDatabase();
    CArxObjTemplate<AcDbBlockTableRecord> modelSpace;
    if (!modelSpace.OpenObject(target->modelSpaceId(), true)) {
        return Acad::eNotOpenForWrite;
    }
    return modelSpace->appendAcDbEntity(entity.As<AcDbEntity>());
}

Acad::ErrorStatus AppendEnt(AcDbEntity* entity, AcDbDatabase* database) {
    AcDbObjectId id;
    return AppendEnt(entity, id, database);
}

Acad::ErrorStatus AppendEnt(AcDbEntity* entity, AcDbObjectId& id, AcDbDatabase* database) {
    CArxEntity held(entity);
    const Acad::ErrorStatus status = AppendEnt(held, database);
    id = held.IsNull() ? AcDbObjectId::kNull : held->objectId();
    return status;
}

Acad::ErrorStatus EraseEnt(AcDbObjectId id) {
    CArxEntity entity(id, true);
    return entity ? entity->erase() : Acad::eNotOpenForWrite;
}

AcDbObjectId CreateNewLayer(const ACHAR* name, const ACHAR* linetype, Adesk::UInt16 colorIndex,
                            AcDbDatabase* database) {
    AcDbDatabase* target = database != nullptr ? database : WorkingDatabase();
    if (const AcDbObjectId existing = FindRecord<AcDbLayerTable>(name, target); !existing.isNull()) {
        return existing;
    }
    CArxObjTemplate<AcDbLayerTable> layers(target->layerTableId(), true);
    CArxObjTemplate<AcDbLayerTableRecord> layer;
    if (!layers || layer.New()->setName(name) != Acad::eOk) {
        return AcDbObjectId::kNull;
    }
    AcCmColor color;
    color.setColorIndex(colorIndex);
    layer->setColor(color);
    const AcDbObjectId dashes = FindRecord<AcDbLinetypeTable>(linetype, target);
    layer->setLinetypeObjectId(dashes.isNull() ? target->continuousLinetype() : dashes);
    AcDbObjectId id;
    return layers->add(id, layer.Get()) == Acad::eOk ? id : AcDbObjectId::kNull;
}

namespace {

/// Gives a new reference, which is open for write, the attributes that its block defines.
void appendAttributes(AcDbBlockReference& reference, const AcDbBlockTableRecord& block,
                      const AttributeTexts& texts) {
    AcDbBlockTableRecordIterator* started = nullptr;
    if (block.newIterator(started) != Acad::eOk) {
        return;
    }
    for (const std::unique_ptr<AcDbBlockTableRecordIterator> iterator(started); !iterator->done();
         iterator->step()) {
        AcDbObjectId id;
        iterator->getEntityId(id);
        const CArxObjTemplate<AcDbAttributeDefinition> definition(id, false);
        if (!definition || definition->isConstant()) {
            continue;
        }
        CArxObjTemplate<AcDbAttribute> attribute;
        attribute.New()->setAttributeFromBlock(definition.Get(), reference.blockTransform());
        const auto given = std::find_if(texts.begin(), texts.end(), [&](const auto& text) {
            return text.first.compareNoCase(definition->tagConst()) == 0;
        });
        attribute->setTextString(given != texts.end() ? given->second.constPtr()
                                                      : definition->textStringConst());
        reference.appendAttribute(attribute.Get());
    }
}

} // namespace

AcDbObjectId InsertBlock(AcDbObjectId block, const AcGePoint3d& position, const AcGeScale3d& scale,
                         const ACHAR* layer, double rotation, const AttributeTexts& attributes) {
    CArxObjTemplate<AcDbBlockTableRecord> definition(block, false);
    if (!definition) {
        return AcDbObjectId::kNull;
    }
    const bool hasAttributes = definition->hasAttributeDefinitions();
    CArxObject held(new AcDbBlockReference(position, block));
    auto* reference = static_cast<AcDbBlockReference*>(held.Get());
    reference->setScaleFactors(scale);
    reference->setRotation(rotation);
    reference->setLayer(layer);
    if (AppendEnt(held, block.database()) != Acad::eOk) {
        return AcDbObjectId::kNull;
    }
    if (hasAttributes) {
        appendAttributes(*reference, *definition, attributes);
    }
    return reference->objectId();
}

bool GetRelativePoint(AcGePoint3d& point) {
    ads_point reference;
    acedInitGet(0, nullptr);
    if (acedGetPoint(nullptr, L"\n参考点 <退出>:", reference) != RTNORM) {
        return false;
    }
    ads_point offset;
    acedInitGet(0, nullptr);
    if (acedGetPoint(reference, L"\n偏移到 (@dx,dy 或 @距离<角度) <退出>:", offset) != RTNORM) {
        return false;
    }
    point.set(offset[X], offset[Y], offset[Z]);
    return true;
}

void RegenDrawing() {
    acedCommandS(RTSTR, L"_.REGEN", RTNONE);
}

std::vector<std::unique_ptr<AcDbEntity>> TakeEntities(AcDbVoidPtrArray& entities) {
    std::vector<std::unique_ptr<AcDbEntity>> owned;
    owned.reserve(static_cast<std::size_t>(entities.length()));
    for (void* entity : entities) {
        owned.emplace_back(static_cast<AcDbEntity*>(entity));
    }
    entities.setLogicalLength(0);
    return owned;
}
