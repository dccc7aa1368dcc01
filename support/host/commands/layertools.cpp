// LAYISO, LAYOFF, LAYFRZ, LAYLCK and the other tools that take layers by picking what stands on them.
#include "host/commands/edit/layertools.h"

#include "host/commands/ask.h"
#include "host/commands/registry.h"
#include "host/commands/tables.h"
#include "host/ed/acdocman.h"
#include "host/rx/text.h"

#include <algorithm>

namespace host {
namespace {

AcDbObjectId layerOf(AcDbObjectId entity) {
    const auto* found = peek<AcDbEntity>(entity);
    return found != nullptr ? found->layerId() : AcDbObjectId();
}

std::wstring quoted(AcDbObjectId layer) {
    return L"\"" + recordName(layer) + L"\"";
}

/// A setting of these tools, kept from run to run.
std::wstring setting(const wchar_t* name, const wchar_t* standard) {
    AcString value;
    return acedGetEnv(name, value) == RTNORM ? value.kwszPtr() : standard;
}

// LAYISO and LAYUNISO.

constexpr const wchar_t* isolationSetting = L"LayerIsolation";

bool isolatesByOff() {
    return setting(isolationSetting, L"Lock") == L"Off";
}

void askIsolation() {
    const Answer answer = askKeyword(std::wstring(L"\n输入未隔离图层的设置 [关闭(O)/锁定和淡入(L)] <") +
                                         (isolatesByOff() ? L"关闭" : L"锁定和淡入") + L">: ",
                                     L"Off Lockandfade");
    if (answer.isKeyword(L"Off")) {
        acedSetEnv(isolationSetting, L"Off");
    } else if (answer.isKeyword(L"Lockandfade")) {
        acedSetEnv(isolationSetting, L"Lock");
    }
    if (answer.isCancelled() || isolatesByOff()) {
        return;
    }
    const IntegerAnswer fade =
        askInteger(L"\n输入淡入度值 (0-90) <" +
                       std::to_wstring(std::abs(systemVariableInteger(L"LAYLOCKFADECTL"))) + L">: ",
                   nullptr, RSG_NONEG);
    if (fade.isValue()) {
        setSystemVariable(L"LAYLOCKFADECTL", std::min(fade.value, 90));
    }
}

void isolate(const Selection& selection) {
    AcDbDatabase& database = currentDatabase();
    LayerSet kept;
    for (const AcDbObjectId id : selection.ids()) {
        kept.insert(layerOf(id).stub());
    }
    const AcDbObjectId last = layerOf(selection.ids()[selection.ids().length() - 1]);
    if (!kept.contains(database.clayer().stub())) {
        database.setClayer(last);
    }
    curDoc()->state().isolation =
        isolateLayers(database, kept, isolatesByOff() ? Isolation::off : Isolation::lock);
    if (kept.size() == 1) {
        acutPrintf(L"\n图层 %s 已隔离。", quoted(last).c_str());
    } else {
        acutPrintf(L"\n%d 个图层已隔离。图层 %s 为当前图层。", static_cast<int>(kept.size()),
                   quoted(database.clayer()).c_str());
    }
}

void runIsolate() {
    for (;;) {
        if (isolatesByOff()) {
            acutPrintf(L"\n当前设置: 关闭图层");
        } else {
            acutPrintf(L"\n当前设置: 锁定图层，淡入度=%d",
                       std::abs(systemVariableInteger(L"LAYLOCKFADECTL")));
        }
        acedInitGet(0, L"Settings");
        const Selection selection = Selection::askWith(L"\n选择要隔离的图层上的对象或 [设置(S)]: ");
        if (selection.isKeyword()) {
            askIsolation();
            continue;
        }
        if (!selection.empty()) {
            isolate(selection);
        }
        return;
    }
}

void runUnisolate() {
    std::vector<LayerChange>& changes = curDoc()->state().isolation;
    const int restored = restoreLayers(changes);
    changes.clear();
    acutPrintf(restored > 0 ? L"\n由 LAYISO 命令隔离的图层已恢复。" : L"\n没有可恢复的图层。");
}

// One layer after the other, by a pick.

constexpr const wchar_t* nestingSetting = L"LayerToolNesting";

void askNesting() {
    const bool entity = setting(nestingSetting, L"Block") == L"Entity";
    const Answer answer = askKeyword(std::wstring(L"\n输入块选择嵌套级别 [块(B)/图元(E)] <") +
                                         (entity ? L"图元" : L"块") + L">: ",
                                     L"Block Entity");
    if (answer.kind == Answer::Kind::keyword) {
        acedSetEnv(nestingSetting, answer.keyword.c_str());
    }
}

/// The layer of what was picked: of the reference, or of what it shows there.
AcDbObjectId pickedLayer(const EntityAnswer& pick) {
    if (pick.hasPoint && setting(nestingSetting, L"Block") == L"Entity") {
        if (const std::optional<NestedPick> nested = nestedEntityAt(pick.world, pickAperture())) {
            return layerOf(nested->entity);
        }
    }
    return layerOf(pick.id);
}

/// Changes the layers of objects picked one after the other. `apply` tells what it did; false when the layer
/// stays. `revert` takes a change back.
void changePicked(const std::wstring& prompt, const std::function<bool(AcDbLayerTableRecord&)>& apply,
                  const std::function<void(AcDbLayerTableRecord&)>& revert) {
    std::vector<AcDbObjectId> changed;
    for (;;) {
        const EntityAnswer pick = askEntity(prompt + L"或 [设置(S)/放弃(U)]: ", L"Settings Undo");
        if (pick.isKeyword(L"Settings")) {
            askNesting();
        } else if (pick.isKeyword(L"Undo")) {
            if (changed.empty()) {
                acutPrintf(L"\n没有可放弃的操作。");
                continue;
            }
            if (const Opened<AcDbLayerTableRecord> layer(changed.back(), AcDb::kForWrite); layer) {
                revert(*layer.get());
            }
            changed.pop_back();
        } else if (pick.isValue()) {
            const Opened<AcDbLayerTableRecord> layer(pickedLayer(pick), AcDb::kForWrite);
            if (layer && apply(*layer.get())) {
                changed.push_back(layer->objectId());
            }
        } else {
            return;
        }
    }
}

void runOff() {
    changePicked(
        L"\n选择要关闭的图层上的对象",
        [](AcDbLayerTableRecord& layer) {
            if (layer.objectId() == currentDatabase().clayer()) {
                const std::optional<bool> sure =
                    askYesNo(L"\n图层 " + quoted(layer.objectId()) + L" 为当前图层，是否要将其关闭?", false);
                if (!sure.value_or(false)) {
                    return false;
                }
            }
            layer.setIsOff(true);
            acutPrintf(L"\n图层 %s 已关闭。", quoted(layer.objectId()).c_str());
            return true;
        },
        [](AcDbLayerTableRecord& layer) {
            layer.setIsOff(false);
            acutPrintf(L"\n图层 %s 已打开。", quoted(layer.objectId()).c_str());
        });
}

void runFreeze() {
    changePicked(
        L"\n选择要冻结的图层上的对象",
        [](AcDbLayerTableRecord& layer) {
            if (layer.setIsFrozen(true) != Acad::eOk) {
                acutPrintf(L"\n不能冻结图层 %s，因为它是当前图层。", quoted(layer.objectId()).c_str());
                return false;
            }
            acutPrintf(L"\n图层 %s 已冻结。", quoted(layer.objectId()).c_str());
            return true;
        },
        [](AcDbLayerTableRecord& layer) {
            layer.setIsFrozen(false);
            acutPrintf(L"\n图层 %s 已解冻。", quoted(layer.objectId()).c_str());
        });
}

void runOn() {
    forEachLayer(currentDatabase(), [](AcDbLayerTableRecord& layer) {
        if (layer.isOff()) {
            layer.setIsOff(false);
        }
    });
    acutPrintf(L"\n所有图层均已打开。");
}

void runThaw() {
    forEachLayer(currentDatabase(), [](AcDbLayerTableRecord& layer) {
        if (layer.isFrozen()) {
            layer.setIsFrozen(false);
        }
    });
    acutPrintf(L"\n所有图层均已解冻。");
}

/// What was picked before the command, or is picked now; null when the user gives up.
AcDbObjectId askObject(const std::wstring& prompt) {
    const PickSet picked = impliedSelection();
    if (!picked.empty() && systemVariableInteger(L"PICKFIRST") != 0) {
        return picked.ids.front();
    }
    const EntityAnswer answer = askEntity(prompt);
    return answer.isValue() ? answer.id : AcDbObjectId();
}

void setLocked(const std::wstring& prompt, bool locked) {
    const AcDbObjectId id = askObject(prompt);
    const Opened<AcDbLayerTableRecord> layer(layerOf(id), AcDb::kForWrite);
    if (layer) {
        layer->setIsLocked(locked);
        acutPrintf(L"\n图层 %s 已%s。", quoted(layer->objectId()).c_str(), locked ? L"锁定" : L"解锁");
    }
}

void runLock() {
    setLocked(L"\n选择要锁定的图层上的对象: ", true);
}

void runUnlock() {
    setLocked(L"\n选择要解锁的图层上的对象: ", false);
}

void runMakeCurrent() {
    const AcDbObjectId layer = layerOf(askObject(L"\n选择将使其图层成为当前图层的对象: "));
    if (!layer.isNull() && currentDatabase().setClayer(layer) == Acad::eOk) {
        acutPrintf(L"\n%s 现在是当前图层。", quoted(layer).c_str());
    }
}

// Moving objects to a layer.

void moveTo(const Selection& selection, AcDbObjectId layer, const wchar_t* remark) {
    int moved = 0;
    for (const AcDbObjectId id : selection.ids()) {
        const Opened<AcDbEntity> entity(id, AcDb::kForWrite);
        moved += entity && entity->setLayer(layer) == Acad::eOk ? 1 : 0;
    }
    acutPrintf(L"\n%d 个对象已更改到图层 %s%s。", moved, quoted(layer).c_str(), remark);
    if (moved < selection.ids().length()) {
        acutPrintf(L"\n%d 个对象没有更改。", selection.ids().length() - moved);
    }
}

void runToCurrent() {
    const Selection selection = Selection::askWith(L"\n选择要更改到当前图层的对象: ", true);
    if (!selection.empty()) {
        moveTo(selection, currentDatabase().clayer(), L" (当前图层)");
    }
}

void listLayers() {
    for (AcDbStub* stub : peek<AcDbLayerTable>(currentDatabase().layerTableId())->records()) {
        if (!stub->erased) {
            acutPrintf(L"\n  %s", recordName(stub).c_str());
        }
    }
}

/// The name of a layer, of one to be made too when the user agrees.
std::optional<std::wstring> askTargetName() {
    for (;;) {
        const TextAnswer answer = askName(L"\n输入目标图层名或 [?]: ");
        if (!answer.isValue()) {
            return std::nullopt;
        }
        if (answer.text == L"?") {
            listLayers();
            continue;
        }
        if (peek<AcDbLayerTable>(currentDatabase().layerTableId())->has(answer.text.c_str())) {
            return answer.text;
        }
        if (acdbSNValid(answer.text.c_str(), 0) != RTNORM) {
            acutPrintf(L"\n图层名 \"%s\" 无效。", answer.text.c_str());
            continue;
        }
        const std::optional<bool> sure =
            askYesNo(L"\n图层 \"" + answer.text + L"\" 不存在。是否要创建它?", true);
        if (!sure) {
            return std::nullopt;
        }
        if (*sure) {
            return answer.text;
        }
    }
}

/// The name of the layer that something goes to, by an object on it or by name; nothing when the user gives
/// up.
std::optional<std::wstring> askTarget() {
    const EntityAnswer pick = askEntity(L"\n选择目标图层上的对象或 [名称(N)]: ", L"Name");
    if (pick.isKeyword(L"Name")) {
        return askTargetName();
    }
    return pick.isValue() ? std::optional(recordName(layerOf(pick.id))) : std::nullopt;
}

void runMatch() {
    const Selection selection = Selection::askWith(L"\n选择要更改的对象: ", true);
    if (selection.empty()) {
        return;
    }
    if (const std::optional<std::wstring> name = askTarget()) {
        moveTo(selection, layerNamed(*name), L"");
    }
}

// Taking layers out of the drawing.

/// The layers chosen so far, in the order they were.
class ChosenLayers {
public:
    void add(AcDbObjectId layer) {
        if (const wchar_t* refusal = removalRefusal(currentDatabase(), layer)) {
            acutPrintf(L"\n%s", refusal);
        } else if (mSet.insert(layer.stub()).second) {
            mOrder.push_back(layer);
            mSteps.back() += 1;
        }
    }
    void beginStep() { mSteps.push_back(0); }
    bool undoStep() {
        while (!mSteps.empty() && mSteps.back() == 0) {
            mSteps.pop_back();
        }
        if (mSteps.empty()) {
            return false;
        }
        for (int left = mSteps.back(); left > 0; --left) {
            mSet.erase(mOrder.back().stub());
            mOrder.pop_back();
        }
        mSteps.pop_back();
        return true;
    }
    const LayerSet& set() const { return mSet; }
    const std::vector<AcDbObjectId>& order() const { return mOrder; }
    std::wstring names() const {
        std::wstring names;
        for (const AcDbObjectId id : mOrder) {
            names += (names.empty() ? L"" : L",") + recordName(id);
        }
        return names;
    }

private:
    std::vector<AcDbObjectId> mOrder;
    std::vector<int> mSteps; ///< how many layers each answer added
    LayerSet mSet;
};

void addByName(ChosenLayers& chosen, const std::wstring& what) {
    for (;;) {
        const TextAnswer answer = askName(L"\n输入要" + what + L"的图层名或 [?]: ");
        if (!answer.isValue()) {
            return;
        }
        if (answer.text == L"?") {
            listLayers();
            continue;
        }
        forEachMatch(
            *peek<AcDbLayerTable>(currentDatabase().layerTableId()), answer.text,
            [&](AcDbObjectId id) { chosen.add(id); },
            [](const std::wstring& pattern) {
                acutPrintf(L"\n找不到匹配的图层名 \"%s\"。", pattern.c_str());
            });
        return;
    }
}

/// False when the user gives up, or nothing was chosen.
bool askLayers(ChosenLayers& chosen, const std::wstring& what) {
    for (;;) {
        const bool any = !chosen.order().empty();
        const EntityAnswer pick =
            askEntity(L"\n选择要" + what + L"的图层上的对象或 [名称(N)" + (any ? L"/放弃(U)" : L"") + L"]: ",
                      any ? L"Name Undo" : L"Name");
        if (pick.isCancelled()) {
            return false;
        }
        if (pick.isNone()) {
            return any;
        }
        if (pick.isKeyword(L"Undo")) {
            chosen.undoStep();
        } else {
            chosen.beginStep();
            pick.isValue() ? chosen.add(layerOf(pick.id)) : addByName(chosen, what);
        }
        if (!chosen.order().empty()) {
            acutPrintf(L"\n选定的图层: %s。", chosen.names().c_str());
        }
    }
}

/// With a target the layers' objects go to that layer, which is made when there is none.
void remove(const ChosenLayers& chosen, const std::optional<std::wstring>& target) {
    acutPrintf(L"\n******** 警告 ********");
    for (const AcDbObjectId id : chosen.order()) {
        target ? acutPrintf(L"\n将要把图层 %s 合并到图层 \"%s\" 中。", quoted(id).c_str(), target->c_str())
               : acutPrintf(L"\n将要从该图形中删除图层 %s 和它上面的所有对象。", quoted(id).c_str());
    }
    const std::optional<bool> sure = askYesNo(L"\n是否要继续?", false);
    if (!sure.value_or(false)) {
        return;
    }
    for (const AcDbObjectId id : chosen.order()) {
        acutPrintf(L"\n正在删除图层 %s。", quoted(id).c_str());
    }
    const AcDbObjectId layer = target ? layerNamed(*target) : AcDbObjectId();
    const LayerRemoval removal = removeLayers(currentDatabase(), chosen.set(), layer);
    acutPrintf(L"\n已删除 %d 个图层。", static_cast<int>(removal.layers));
}

void runDelete() {
    ChosenLayers chosen;
    if (askLayers(chosen, L"删除")) {
        remove(chosen, std::nullopt);
    }
}

void runMerge() {
    ChosenLayers chosen;
    if (!askLayers(chosen, L"合并")) {
        return;
    }
    for (;;) {
        const std::optional<std::wstring> target = askTarget();
        if (!target) {
            return;
        }
        const auto& sources = chosen.order();
        if (std::ranges::none_of(sources,
                                 [&](AcDbObjectId id) { return equalNoCase(recordName(id), *target); })) {
            remove(chosen, target);
            return;
        }
        acutPrintf(L"\n目标图层不能是要合并的图层。");
    }
}

constexpr Adesk::Int32 picked = ACRX_CMD_USEPICKSET | ACRX_CMD_REDRAW;
constexpr CommandRow rows[] = {{L"LAYISO", L"图层隔离", ACRX_CMD_USEPICKSET, runIsolate},
                               {L"LAYUNISO", L"取消图层隔离", ACRX_CMD_MODAL, runUnisolate},
                               {L"LAYOFF", L"关闭图层", ACRX_CMD_MODAL, runOff},
                               {L"LAYON", L"打开所有图层", ACRX_CMD_MODAL, runOn},
                               {L"LAYFRZ", L"冻结图层", ACRX_CMD_MODAL, runFreeze},
                               {L"LAYTHW", L"解冻所有图层", ACRX_CMD_MODAL, runThaw},
                               {L"LAYLCK", L"锁定图层", ACRX_CMD_USEPICKSET, runLock},
                               {L"LAYULK", L"解锁图层", ACRX_CMD_USEPICKSET, runUnlock},
                               {L"LAYMCUR", L"对象的图层置为当前", picked, runMakeCurrent},
                               {L"LAYCUR", L"更改为当前图层", picked, runToCurrent},
                               {L"LAYMCH", L"图层匹配", picked, runMatch},
                               {L"LAYDEL", L"删除图层", ACRX_CMD_MODAL, runDelete},
                               {L"LAYMRG", L"合并图层", ACRX_CMD_MODAL, runMerge}};

} // namespace

std::span<const CommandRow> layerToolCommands() {
    return rows;
}

} // namespace host
