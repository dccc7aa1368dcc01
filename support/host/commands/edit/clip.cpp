#include "host/commands/edit/clip.h"

#include "host/commands/edit/editing.h"
#include "host/db/dbents.h"
#include "host/rx/format.h"

namespace host {
namespace {

AcGeMatrix3d ucsOf(const AcDbDatabase& drawing) {
    const AcGeVector3d x = drawing.ucsxdir();
    const AcGeVector3d y = drawing.ucsydir();
    AcGeMatrix3d ucs;
    ucs.setCoordSystem(drawing.ucsorg(), x, y, x.crossProduct(y));
    return ucs;
}

} // namespace

AcGePoint3d lowerLeftOf(const AcDbObjectIdArray& entities, const AcGeMatrix3d& ucs) {
    const AcGeMatrix3d toUcs = ucs.inverse();
    AcDbExtents all;
    for (const AcDbObjectId id : entities) {
        const auto* entity = peek<AcDbEntity>(id);
        AcDbExtents own;
        if (entity != nullptr) {
            const ReadAccess access(*entity);
            if (entity->getExtentsUnder(toUcs, own) == Acad::eOk) {
                all.addExt(own);
            }
        }
    }
    return ucs * (all.isEmpty() ? AcGePoint3d::kOrigin : all.minPoint());
}

std::shared_ptr<AcDbDatabase> makeClip(AcDbDatabase& drawing, const AcDbObjectIdArray& entities,
                                       const AcGePoint3d& base) {
    AcDbDatabase* made = nullptr;
    if (drawing.wblock(made, entities, base) != Acad::eOk) {
        return nullptr;
    }
    std::shared_ptr<AcDbDatabase> clip(made);
    clip->disableUndoRecording(true);
    clip->setTilemode(true);
    clip->setUcs(drawing.ucsorg(), drawing.ucsxdir(), drawing.ucsydir());
    return clip;
}

AcDbObjectIdArray entitiesOf(const AcDbDatabase& clip) {
    AcDbObjectIdArray ids;
    for (AcDbStub* stub : peek<AcDbBlockTableRecord>(clip.modelSpaceId())->entities()) {
        if (peek<AcDbEntity>(stub) != nullptr) {
            ids.append(AcDbObjectId(stub));
        }
    }
    return ids;
}

AcGeMatrix3d clipPlacing(const AcDbDatabase& clip, const AcGeMatrix3d& ucs, const AcGePoint3d& point) {
    const auto turned = [](AcGeMatrix3d matrix) { return matrix.setTranslation(AcGeVector3d::kIdentity); };
    return AcGeMatrix3d::translation(point.asVector()) * turned(ucs) * turned(ucsOf(clip)).inverse() *
           AcGeMatrix3d::translation(AcGePoint3d::kOrigin - clip.insbase());
}

int pasteClip(AcDbDatabase& clip, AcDbObjectId block, const AcGeMatrix3d& placing) {
    AcDbIdMapping mapping;
    mapping.assign(AcDbIdPair(clip.modelSpaceId(), block, false));
    const AcDbObjectIdArray entities = entitiesOf(clip);
    if (block.database()->wblockCloneObjects(entities, block, mapping, AcDb::kDrcIgnore) != Acad::eOk) {
        return entities.length();
    }
    std::vector<AcDbObjectId> copies;
    for (const AcDbIdPair& pair : mapping.pairs()) {
        if (pair.isPrimary()) {
            copies.push_back(pair.value());
        }
    }
    return placeCopies(copies, placing);
}

std::unique_ptr<AcDbEntity> blockOfClip(AcDbDatabase& clip, AcDbDatabase& drawing) {
    const auto* blocks = peek<AcDbBlockTable>(drawing.blockTableId());
    std::wstring name;
    for (Adesk::UInt64 number = drawing.impl().nextHandle(); name.empty() || blocks->has(name.c_str());
         ++number) {
        name = formatted(L"A$C%08X", static_cast<unsigned>(number));
    }
    AcDbObjectId block;
    if (drawing.insert(block, name.c_str(), &clip) != Acad::eOk) {
        return nullptr;
    }
    auto reference = std::make_unique<AcDbBlockReference>(clip.insbase(), block);
    reference->setDatabaseDefaults(&drawing);
    return reference;
}

std::wstring mtextContents(std::wstring_view plain) {
    plain = plain.substr(0, plain.find_last_not_of(L"\r\n") + 1);
    std::wstring contents;
    for (const wchar_t c : plain) {
        switch (c) {
        case L'\\':
        case L'{':
        case L'}':
            contents += L'\\';
            contents += c;
            break;
        case L'\n':
            contents += L"\\P";
            break;
        default:
            if (c >= L' ' || c == L'\t') {
                contents += c;
            }
        }
    }
    return contents;
}

} // namespace host
