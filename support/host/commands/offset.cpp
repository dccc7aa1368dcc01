// OFFSET: parallel curves at a distance or through a point.
#include "host/commands/ask.h"
#include "host/commands/edit/editing.h"
#include "host/commands/edit/parallels.h"
#include "host/commands/registry.h"

namespace host {
namespace {

/// What the first question settles.
struct Settings {
    double distance = -1.0; ///< negative: through a point
    bool erases = false;
    bool onCurrentLayer = false;

    bool isThrough() const { return distance < 0.0; }
};

/// What one offset did, for taking it back.
struct Step {
    std::vector<AcDbObjectId> made;
    AcDbObjectId erased;
};

class Offsetting {
public:
    void run();

private:
    bool askSettings();
    /// False ends the command.
    bool offsetOne(AcDbObjectId source);
    enum class Side { done, again, exit };
    Side askSide(AcDbObjectId& source, bool multiple, bool& turnsMultiple);
    bool make(AcDbObjectId& source, const AcGePoint3d& side);
    void undo();

    Settings mSettings;
    std::vector<Step> mSteps;
};

const wchar_t* refuseUnlessCurve(const AcDbEntity& entity) {
    if (AcDbCurve::cast(&entity) == nullptr) {
        return L"无法偏移该对象。";
    }
    return isOnLockedLayer(entity) ? L"该对象在锁定的图层上。" : nullptr;
}

bool Offsetting::askSettings() {
    mSettings.distance = systemVariableReal(L"OFFSETDIST");
    for (;;) {
        acutPrintf(L"\n当前设置: 删除源=%s  图层=%s  OFFSETGAPTYPE=%d", mSettings.erases ? L"是" : L"否",
                   mSettings.onCurrentLayer ? L"当前" : L"源", systemVariableInteger(L"OFFSETGAPTYPE"));
        const std::wstring standard = mSettings.isThrough() ? L"通过" : shown(mSettings.distance);
        const RealAnswer answer =
            askDistance(L"\n指定偏移距离或 [通过(T)/删除(E)/图层(L)] <" + standard + L">: ",
                        L"Through Erase Layer", nullptr, RSG_NOZERO | RSG_NONEG);
        if (answer.isCancelled()) {
            return false;
        }
        if (answer.isKeyword(L"Erase")) {
            const std::optional<bool> erases = askYesNo(L"\n要在偏移后删除源对象吗?", mSettings.erases);
            if (!erases) {
                return false;
            }
            mSettings.erases = *erases;
            continue;
        }
        if (answer.isKeyword(L"Layer")) {
            const Answer layer = askKeyword(std::wstring(L"\n输入偏移对象的图层选项 [当前(C)/源(S)] <") +
                                                (mSettings.onCurrentLayer ? L"C>: " : L"S>: "),
                                            L"Current Source");
            if (layer.isCancelled()) {
                return false;
            }
            mSettings.onCurrentLayer =
                layer.isNone() ? mSettings.onCurrentLayer : layer.isKeyword(L"Current");
            continue;
        }
        if (answer.isKeyword(L"Through")) {
            mSettings.distance = -1.0;
        } else if (answer.isValue()) {
            mSettings.distance = answer.value;
        }
        setSystemVariable(L"OFFSETDIST", mSettings.distance);
        return true;
    }
}

void Offsetting::run() {
    if (!askSettings()) {
        return;
    }
    for (;;) {
        const EntityAnswer picked =
            askEntity(L"\n选择要偏移的对象，或 [退出(E)/放弃(U)] <退出>: ", L"Exit Undo", refuseUnlessCurve);
        if (picked.isKeyword(L"Undo")) {
            undo();
        } else if (!picked.isValue() || !offsetOne(picked.id)) {
            return;
        }
    }
}

bool Offsetting::offsetOne(AcDbObjectId source) {
    bool multiple = false;
    for (;;) {
        bool turnsMultiple = false;
        const Side side = askSide(source, multiple, turnsMultiple);
        multiple = multiple || turnsMultiple;
        if (side == Side::exit) {
            return multiple; // with many, Enter goes on to the next object
        }
        if (side == Side::done && !multiple) {
            return true;
        }
    }
}

Offsetting::Side Offsetting::askSide(AcDbObjectId& source, bool multiple, bool& turnsMultiple) {
    const std::wstring what = mSettings.isThrough() ? L"\n指定通过点或 " : L"\n指定要偏移的那一侧上的点，或 ";
    const std::wstring prompt =
        what + (multiple ? L"[退出(E)/放弃(U)] <下一个对象>: " : L"[退出(E)/多个(M)/放弃(U)] <退出>: ");
    const PointAnswer point = askPoint(prompt, multiple ? L"Exit Undo" : L"Exit Multiple Undo");
    if (point.isKeyword(L"Multiple")) {
        turnsMultiple = true;
        return Side::again;
    }
    if (point.isKeyword(L"Undo")) {
        undo();
        return Side::again;
    }
    if (!point.isValue()) {
        return Side::exit;
    }
    return make(source, point.world) ? Side::done : Side::again;
}

/// Many offsets go on from what was made last.
bool Offsetting::make(AcDbObjectId& source, const AcGePoint3d& side) {
    std::vector<std::unique_ptr<AcDbCurve>> curves;
    if (const auto* curve = peek<AcDbCurve>(source)) {
        const ReadAccess access(*curve);
        curves = mSettings.isThrough() ? parallelsThrough(*curve, side)
                                       : parallelsTowards(*curve, mSettings.distance, side);
    }
    if (curves.empty()) {
        acutPrintf(L"\n无法偏移该对象。");
        return false;
    }
    Step step;
    for (std::unique_ptr<AcDbCurve>& curve : curves) {
        if (mSettings.onCurrentLayer) {
            curve->setLayer(currentDatabase().clayer());
        }
        step.made.push_back(appendToCurrentSpace(curve.release()));
    }
    if (mSettings.erases && eraseEntity(source)) {
        step.erased = source;
    }
    source = step.made.front();
    mSteps.push_back(std::move(step));
    return true;
}

void Offsetting::undo() {
    if (mSteps.empty()) {
        acutPrintf(L"\n没有可放弃的偏移。");
        return;
    }
    const Step step = std::move(mSteps.back());
    mSteps.pop_back();
    std::for_each(step.made.begin(), step.made.end(), eraseEntity);
    if (const Opened<AcDbEntity> entity(step.erased, AcDb::kForWrite, true); entity) {
        entity->erase(false);
    }
}

void runOffset() {
    Offsetting().run();
}

constexpr CommandRow rows[] = {{L"OFFSET", L"偏移", ACRX_CMD_MODAL, runOffset}};

} // namespace

std::span<const CommandRow> offsetCommands() {
    return rows;
}

} // namespace host
