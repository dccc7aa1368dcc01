// ERASE, MOVE, COPY and OOPS.
#include "host/commands/ask.h"
#include "host/commands/edit/editing.h"
#include "host/commands/erasing.h"
#include "host/commands/registry.h"
#include "host/ed/dragging.h"

namespace host {

AcDbObjectIdArray eraseForOops(const AcDbObjectIdArray& ids) {
    AcDbObjectIdArray erased;
    std::vector<AcDbStub*> stubs;
    for (const AcDbObjectId id : ids) {
        if (eraseEntity(id)) {
            erased.append(id);
            stubs.push_back(id.stub());
        }
    }
    if (!stubs.empty()) {
        currentDatabase().undoLog().setLastErased(std::move(stubs));
    }
    return erased;
}

namespace {

void runErase() {
    const Selection selection = Selection::askEditable();
    if (selection.empty()) {
        return;
    }
    eraseForOops(selection.ids());
}

/// Brings back the records that the entity names and that were purged since; false when a new one has the
/// name.
bool bringBackRecords(const AcDbEntity& entity) {
    IdCollector collector(AcDb::kPurgeFiler);
    {
        const ReadAccess access(entity);
        entity.dwgOutFields(&collector);
    }
    for (const IdCollector::Reference& reference : collector.references) {
        const auto* record = peek<AcDbSymbolTableRecord>(reference.id, true);
        if (record == nullptr || !reference.id.isErased()) {
            continue;
        }
        const auto* table = peek<AcDbSymbolTable>(record->ownerId());
        const ReadAccess access(*table);
        if (table->has(record->name())) {
            return false;
        }
        const Opened<AcDbSymbolTableRecord> opened(reference.id, AcDb::kForWrite, true);
        if (opened) {
            opened->erase(false);
        }
    }
    return true;
}

void runOops() {
    for (AcDbStub* stub : std::vector(currentDatabase().undoLog().lastErased())) {
        const auto* erased = peek<AcDbEntity>(stub, true);
        if (erased == nullptr || !stub->erased || !bringBackRecords(*erased)) {
            continue;
        }
        const Opened<AcDbEntity> entity(stub, AcDb::kForWrite, true);
        if (entity) {
            entity->erase(false);
        }
    }
}

/// A displacement in the world, asked for as base point and second point or as one vector.
std::optional<AcGeVector3d> askDisplacement(std::optional<AcGePoint3d>* base = nullptr) {
    const PointAnswer first = askPoint(L"\n指定基点或 [位移(D)] <位移>: ", L"Displacement");
    if (first.isCancelled()) {
        return std::nullopt;
    }
    if (!first.isValue()) {
        const PointAnswer vector = askPoint(L"\n指定位移 <0.0000, 0.0000, 0.0000>: ");
        return vector.isValue() ? std::optional(ucsMatrix() * vector.ucs.asVector()) : std::nullopt;
    }
    const PointAnswer second = askPoint(L"\n指定第二个点或 <使用第一个点作为位移>: ", nullptr, &first.ucs);
    if (second.isCancelled()) {
        return std::nullopt;
    }
    if (second.isNone()) {
        return ucsMatrix() * first.ucs.asVector();
    }
    if (base != nullptr) {
        *base = first.ucs;
    }
    return second.world - first.world;
}

AcGeMatrix3d movedTo(const AcGePoint3d& base, const AcGePoint3d& point) {
    return AcGeMatrix3d::translation(point - base);
}

void runMove() {
    const Selection selection = Selection::askEditable();
    if (selection.empty()) {
        return;
    }
    const Dragging preview(selection.ids(), movedTo);
    const std::optional<AcGeVector3d> displacement = askDisplacement();
    if (!displacement) {
        return;
    }
    const AcGeMatrix3d matrix = AcGeMatrix3d::translation(*displacement);
    const int refused = transformEntities(selection.ids(), matrix);
    if (refused > 0) {
        acutPrintf(L"\n%d 个对象无法移动。", refused);
    }
}

void copyBy(const AcDbObjectIdArray& ids, const AcGeVector3d& displacement) {
    const int refused =
        copyTransformed(ids, currentDatabase().currentSpaceId(), AcGeMatrix3d::translation(displacement));
    if (refused > 0) {
        acutPrintf(L"\n%d 个对象无法复制。", refused);
    }
}

void runCopy() {
    const Selection selection = Selection::ask();
    if (selection.empty()) {
        return;
    }
    const Dragging preview(selection.ids(), movedTo);
    std::optional<AcGePoint3d> base;
    const std::optional<AcGeVector3d> first = askDisplacement(&base);
    if (!first) {
        return;
    }
    copyBy(selection.ids(), *first);
    // Base and second point given: further copies until Enter, unless COPYMODE asks for one only.
    while (base && systemVariableInteger(L"COPYMODE") == 0) {
        const PointAnswer next =
            askPoint(L"\n指定第二个点或 [退出(E)/放弃(U)] <退出>: ", L"Exit Undo", &*base);
        if (!next.isValue()) {
            return;
        }
        copyBy(selection.ids(), next.world - ucsToWorld(*base));
    }
}

constexpr Adesk::Int32 flags = ACRX_CMD_USEPICKSET | ACRX_CMD_REDRAW;
constexpr CommandRow rows[] = {{L"ERASE", L"删除", flags, runErase},
                               {L"OOPS", L"恢复", ACRX_CMD_MODAL, runOops},
                               {L"MOVE", L"移动", flags, runMove},
                               {L"COPY", L"复制", flags, runCopy}};

} // namespace

std::span<const CommandRow> modifyCommands() {
    return rows;
}

} // namespace host
