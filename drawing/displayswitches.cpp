// The crosshair and the layer of road centre lines.
#include "drawing/displayswitches.h"

#include "restools/drawing.h"
#include "restools/hostcommand.h"
#include "restools/sysvar.h"

namespace {

constexpr const ACHAR* roadCenterLayer = L"$CEN";

// Percent of the screen.
constexpr int fullCrosshair = 100;
constexpr int smallCrosshair = 5;

} // namespace

void SetCursorStyle() {
    AcString style;
    acedInitGet(RSG_NONULL, L"R12 R2000");
    if (acedGetKword(L"\n十字丝风格设为 [R12/R2000]:", style) == RTNORM) {
        SetVar(L"CURSORSIZE", style == L"R12" ? fullCrosshair : smallCrosshair);
    }
}

void CloseRoadCenter() {
    const CArxObjTemplate<AcDbLayerTableRecord> layer(FindRecord<AcDbLayerTable>(roadCenterLayer), false);
    if (!layer || layer->upgradeOpen() != Acad::eOk) {
        return;
    }
    // The current layer refuses to be frozen; it is turned off and locked all the same.
    layer->setIsFrozen(true);
    layer->setIsOff(true);
    layer->setIsLocked(true);
}

void OpenRoadCenter() {
    SetVar(L"CMDECHO", 0);
    RunHostCommand(
        {L"_.-LAYER", L"_T", roadCenterLayer, L"_ON", roadCenterLayer, L"_U", roadCenterLayer, L""});
}
