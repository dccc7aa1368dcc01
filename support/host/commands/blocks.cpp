// BLOCK, WBLOCK and EXPLODE: definitions of entities, drawings of parts of the drawing, and entities taken
// apart.
#include "host/commands/ask.h"
#include "host/commands/edit/editing.h"
#include "host/commands/edit/purging.h"
#include "host/commands/erasing.h"
#include "host/commands/filenames.h"
#include "host/commands/registry.h"
#include "host/win/win.h"

#include <unordered_set>

namespace host {
namespace {

AcDbBlockTable& blocks() {
    return *peek<AcDbBlockTable>(currentDatabase().blockTableId());
}

/// Whether the block, or a block in it, shows the other one.
bool showsBlock(AcDbObjectId block, AcDbObjectId other, std::unordered_set<AcDbStub*>& visited) {
    if (block == other) {
        return true;
    }
    const auto* record = peek<AcDbBlockTableRecord>(block);
    if (record == nullptr || !visited.insert(block.stub()).second) {
        return false;
    }
    return std::any_of(record->entities().begin(), record->entities().end(), [&](AcDbStub* stub) {
        const auto* reference = peek<AcDbBlockReference>(stub);
        return reference != nullptr && showsBlock(reference->data().block, other, visited);
    });
}

bool wouldHoldItself(const AcDbObjectIdArray& ids, AcDbObjectId block) {
    std::unordered_set<AcDbStub*> visited;
    return std::any_of(ids.begin(), ids.end(), [&](AcDbObjectId id) {
        const auto* reference = peek<AcDbBlockReference>(id);
        return reference != nullptr && showsBlock(reference->data().block, block, visited);
    });
}

void listBlocks(const std::wstring& pattern) {
    int user = 0;
    int anonymous = 0;
    acutPrintf(L"\n已定义的块。");
    for (AcDbStub* stub : blocks().records()) {
        const auto* block = peek<AcDbBlockTableRecord>(stub);
        if (block == nullptr || block->isLayout()) {
            continue;
        }
        block->isAnonymous() ? ++anonymous : ++user;
        if (!block->isAnonymous() && wildcardMatch(block->name().kwszPtr(), pattern)) {
            acutPrintf(L"\n  \"%s\"", block->name().kwszPtr());
        }
    }
    acutPrintf(L"\n用户块: %d    未命名块: %d", user, anonymous);
}

/// A valid name; nothing when the user gives up.
std::optional<std::wstring> askBlockName() {
    for (;;) {
        const TextAnswer answer = askName(L"\n输入块名或 [?]: ");
        if (!answer.isValue()) {
            return std::nullopt;
        }
        if (answer.text == L"?") {
            const TextAnswer pattern = askName(L"\n输入要列出的块 <*>: ");
            if (pattern.isCancelled()) {
                return std::nullopt;
            }
            listBlocks(pattern.isNone() ? L"*" : pattern.text);
            continue;
        }
        const std::wstring& name = answer.text;
        AcDbObjectId existing;
        if (blocks().getAt(name.c_str(), existing) == Acad::eOk) {
            if (peek<AcDbBlockTableRecord>(existing)->isLayout()) {
                acutPrintf(L"\n块名 \"%s\" 属于布局。", name.c_str());
                continue;
            }
            const std::optional<bool> again =
                askYesNo(L"\n块 \"" + name + L"\" 已经存在。是否重定义?", false);
            if (!again) {
                return std::nullopt;
            }
            if (!*again) {
                continue;
            }
        } else if (acdbSNValid(name.c_str(), 0) != RTNORM) {
            acutPrintf(L"\n块名 \"%s\" 无效。", name.c_str());
            continue;
        }
        return name;
    }
}

/// The record of the name, emptied when there is one.
AcDbObjectId emptyBlock(const std::wstring& name) {
    AcDbObjectId id;
    if (blocks().getAt(name.c_str(), id) == Acad::eOk) {
        const Opened<AcDbBlockTableRecord> block(id, AcDb::kForWrite);
        if (!block) {
            return {};
        }
        const std::vector<AcDbStub*> old = block->entities();
        std::for_each(old.begin(), old.end(), [](AcDbStub* stub) { eraseEntity(stub); });
        block->setOrigin(AcGePoint3d::kOrigin);
        return id;
    }
    const Opened<AcDbBlockTable> table(currentDatabase().blockTableId(), AcDb::kForWrite);
    auto block = std::make_unique<AcDbBlockTableRecord>();
    if (!table || block->setName(name.c_str()) != Acad::eOk || table->add(id, block.get()) != Acad::eOk) {
        return {};
    }
    block->setBlockInsertUnits(currentDatabase().insunits());
    block.release()->close();
    return id;
}

void runBlock() {
    const std::optional<std::wstring> name = askBlockName();
    if (!name) {
        return;
    }
    const PointAnswer base = askPoint(L"\n指定插入基点: ", nullptr, nullptr, RSG_NONULL);
    if (!base.isValue()) {
        return;
    }
    const Selection selection = Selection::ask();
    AcDbObjectId existing;
    const bool redefines = blocks().getAt(name->c_str(), existing) == Acad::eOk;
    if (redefines && wouldHoldItself(selection.ids(), existing)) {
        reportFailure(L"块 \"" + *name + L"\" 不能包含它自身");
        return;
    }
    const AcDbObjectId block = emptyBlock(*name);
    if (block.isNull()) {
        reportFailure(L"块 \"" + *name + L"\" 无法创建");
        return;
    }
    // The base point becomes the origin of a definition along the axes of the UCS.
    const AcGeMatrix3d toBlock =
        AcGeMatrix3d::translation(AcGePoint3d::kOrigin - base.ucs) * ucsMatrix().inverse();
    const int refused = copyTransformed(selection.ids(), block, toBlock);
    if (refused > 0) {
        acutPrintf(L"\n%d 个对象无法成为块的一部分。", refused);
    }
    eraseForOops(selection.ids());
    if (redefines) {
        acutPrintf(L"\n块 \"%s\" 已重定义。", name->c_str());
    }
}

/// Writes a drawing of its own to a file; failures are told.
bool writeDrawing(std::unique_ptr<AcDbDatabase> drawing, const std::wstring& file) {
    std::wstring message;
    if (drawing == nullptr) {
        reportFailure(L"无法写出 \"" + file + L"\"");
        return false;
    }
    if (fileFormats().write(*drawing, file, {}, message) != Acad::eOk) {
        reportFailure(message);
        return false;
    }
    return true;
}

/// Everything, without the definitions that nothing uses: the drawing is written and read again, so that
/// this one stays as it is.
void writeWhole(const std::wstring& file) {
    std::wstring message;
    if (fileFormats().write(currentDatabase(), file, {}, message) != Acad::eOk) {
        reportFailure(message);
        return;
    }
    auto copy = std::make_unique<AcDbDatabase>(false);
    if (fileFormats().read(*copy, file, message) != Acad::eOk) {
        reportFailure(message);
        return;
    }
    const UndoLog::Suspend suspend(copy->undoLog());
    const int purged = purgeUnused(*copy, purgeCandidates(*copy, L"All", L"*"),
                                   [](const PurgeCandidate&) { return std::optional(true); });
    SaveFormat format;
    format.backup = false;
    if (purged > 0 && fileFormats().write(*copy, file, format, message) != Acad::eOk) {
        reportFailure(message);
    }
}

void writeBlock(const std::wstring& name, const std::wstring& file) {
    AcDbObjectId block;
    if (blocks().getAt(name.c_str(), block) != Acad::eOk) {
        reportFailure(L"找不到块 \"" + name + L"\"");
        return;
    }
    AcDbDatabase* drawing = nullptr;
    currentDatabase().wblock(drawing, block);
    writeDrawing(std::unique_ptr<AcDbDatabase>(drawing), file);
}

void writeSelection(const std::wstring& file) {
    const PointAnswer base = askPoint(L"\n指定插入基点: ", nullptr, nullptr, RSG_NONULL);
    if (!base.isValue()) {
        return;
    }
    const Selection selection = Selection::ask();
    if (selection.empty()) {
        return;
    }
    AcDbDatabase* drawing = nullptr;
    currentDatabase().wblock(drawing, selection.ids(), base.world);
    if (writeDrawing(std::unique_ptr<AcDbDatabase>(drawing), file)) {
        eraseForOops(selection.ids());
    }
}

void runWblock() {
    const TextAnswer answer = askText(L"\n输入输出文件的名称: ", true);
    if (!answer.isValue()) {
        return;
    }
    const std::wstring file = drawingFileName(answer.text);
    if (!mayWriteFile(file)) {
        return;
    }
    for (;;) {
        const TextAnswer source = askName(L"\n输入现有块名或\n[块=输出文件(=)/整个图形(*)] <定义新图形>: ");
        if (source.isCancelled()) {
            return;
        }
        std::wstring name = source.text;
        if (source.isNone()) {
            writeSelection(file);
            return;
        }
        if (name == L"*") {
            writeWhole(file);
            return;
        }
        if (name == L"=") {
            name = std::filesystem::path(toNativePath(file)).stem().wstring();
        }
        AcDbObjectId block;
        if (blocks().getAt(name.c_str(), block) == Acad::eOk) {
            writeBlock(name, file);
            return;
        }
        acutPrintf(L"\n找不到块 \"%s\"。", name.c_str());
    }
}

/// Puts the parts in the entity's place. Widths of polylines are lost, which is told by the caller.
Acad::ErrorStatus explodeEntity(AcDbObjectId id) {
    AcDbVoidPtrArray parts;
    AcDbObjectId owner;
    {
        const Opened<AcDbEntity> entity(id, AcDb::kForWrite);
        if (!entity) {
            return entity.status();
        }
        if (const auto* reference = AcDbBlockReference::cast(entity.get())) {
            const auto* block = peek<AcDbBlockTableRecord>(reference->blockTableRecord());
            if (block != nullptr && !block->explodable()) {
                return Acad::eNotApplicable;
            }
        }
        if (const Acad::ErrorStatus status = entity->explode(parts); status != Acad::eOk) {
            return status;
        }
        owner = entity->ownerId();
        entity->erase();
    }
    for (void* part : parts) {
        appendTo(owner, std::unique_ptr<AcDbEntity>(static_cast<AcDbEntity*>(part)));
    }
    return Acad::eOk;
}

bool hasWidth(AcDbObjectId id) {
    const auto* entity = peek<AcDbEntity>(id);
    const ReadAccess access(*entity);
    const std::optional<FlatPath> flat = flatPathOf(*entity);
    return flat && !flat->shape.widths.empty();
}

void runExplode() {
    // A program names one object, without an Enter after it.
    const Selection selection = isProgramAnswering() ? Selection::askSingle() : Selection::askEditable();
    int refused = 0;
    bool losesWidth = false;
    for (const AcDbObjectId id : selection.ids()) {
        const bool wide = hasWidth(id);
        if (explodeEntity(id) == Acad::eOk) {
            losesWidth = losesWidth || wide;
        } else {
            ++refused;
        }
    }
    if (losesWidth) {
        acutPrintf(L"\n分解此多段线时丢失宽度信息。可用 UNDO 命令恢复。");
    }
    if (refused > 0) {
        acutPrintf(L"\n%d 个对象不能分解。", refused);
    }
}

constexpr Adesk::Int32 flags = ACRX_CMD_USEPICKSET | ACRX_CMD_REDRAW;
constexpr CommandRow rows[] = {{L"BLOCK", L"块", flags, runBlock},
                               {L"-BLOCK", L"-块", flags, runBlock},
                               {L"WBLOCK", L"写块", flags, runWblock},
                               {L"-WBLOCK", L"-写块", flags, runWblock},
                               {L"EXPLODE", L"分解", flags, runExplode}};

} // namespace

std::span<const CommandRow> blockCommands() {
    return rows;
}

} // namespace host
