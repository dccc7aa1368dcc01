// The table of commands, and their way onto the host's command stack.
#include "frame/commandtable.h"

#include "drawing/bridge.h"
#include "drawing/displayswitches.h"
#include "drawing/doublelineenclose.h"
#include "drawing/enclose.h"
#include "drawing/riverdialog.h"
#include "text/deltamark.h"
#include "text/dimensionheight.h"
#include "text/fontreplacement.h"
#include "text/linetypechange.h"
#include "text/linktext.h"
#include "text/sumnumbers.h"
#include "text/textalign.h"
#include "text/textedit.h"
#include "text/texttool.h"

#include <array>
#include <utility>

namespace {

constexpr const ACHAR* groupName = L"QDVCOMMTOOLS";

constexpr Adesk::Int32 pickSet = ACRX_CMD_USEPICKSET;
constexpr Adesk::Int32 modelOnly = ACRX_CMD_NOPAPERSPACE;
constexpr AcRxFunctionPtr notProvided = nullptr;

constexpr CommandRow commands[] = {
    {L"V7_SumNum", L"V7_合计数字", pickSet, SumNumbers},
    {L"V7_Scadimh", L"V7_改标注字高", pickSet, ScaleDimensionTextHeights},
    {L"V7_SetCursor", L"V7_十字丝设定", ACRX_CMD_TRANSPARENT, SetCursorStyle},
    {L"V7_StandardDWG", L"V7_标准图库", modelOnly, notProvided},
    {L"V7_Enclose", L"V7_围墙", modelOnly, DrawEnclose},
    {L"V7_CloseRoadCenter", L"V7_关闭公路中心线", modelOnly, CloseRoadCenter},
    {L"V7_OpenRoadCenter", L"V7_打开公路中心线", modelOnly, OpenRoadCenter},
    {L"V7_SelBorderMark", L"V7_设置图签", modelOnly, notProvided},
    {L"V7_EditText", L"V7_文本编辑", pickSet, EditTexts},
    {L"V7_LinkDrawingLine", L"V7_绘接图线", ACRX_CMD_MODAL, notProvided},
    {L"V7_TextTool", L"V7_文本工具", ACRX_CMD_MODAL, ShowTextTool},
    {L"V7_CCEScale", L"V7_中西文比例", ACRX_CMD_MODAL, ScaleWesternRuns},
    {L"V7_LinkText", L"V7_文本连接", pickSet, LinkTexts},
    {L"V7_THAlign", L"V7_文本水平对齐", pickSet, AlignTextsHorizontally},
    {L"V7_TVAlign", L"V7_文本垂直对齐", pickSet, AlignTextsVertically},
    {L"V7_DLEnclose", L"V7_双线围墙", modelOnly, DrawDoubleLineEnclose},
    {L"V7_DrawRiver", L"V7_河流", modelOnly, DrawRiver},
    {L"V7_ChgLType", L"V7_快速修改线型", modelOnly | pickSet, ChangeLinetype},
    {L"V7_DeltaMark", L"V7_差值标注", modelOnly | pickSet, PlaceDeltaMarks},
    {L"V7_ReplaceFontFile", L"V7_字体智能替换", modelOnly | pickSet, ReplaceMissingFonts},
    {L"V7_DrawBridge", L"V7_桥梁", modelOnly | pickSet, DrawBridge},
    {L"V7_BatchPlot", L"V7_批量打印", ACRX_CMD_MODAL, notProvided},
};

/// The handler of a row that has none of its own.
template <std::size_t row>
void tellNotProvided() {
    acutPrintf(L"\n命令 %s 尚未提供。", commands[row].globalName);
}

template <std::size_t... rows>
constexpr std::array<AcRxFunctionPtr, sizeof...(rows)> fallbackHandlers(std::index_sequence<rows...>) {
    return {tellNotProvided<rows>...};
}

constexpr auto fallbacks = fallbackHandlers(std::make_index_sequence<std::size(commands)>());

/// Null when the host has no command stack, with which it would be broken.
AcEdCommandStack* commandStack() {
    AcRxObject* service = acrxSysRegistry()->at(ACRX_COMMAND_DOCK);
    return service != nullptr && service->isA()->isDerivedFrom(AcEdCommandStack::desc())
               ? static_cast<AcEdCommandStack*>(service)
               : nullptr;
}

} // namespace

std::span<const CommandRow> CommandTable() {
    return commands;
}

void AddCommands() {
    for (std::size_t i = 0; i < std::size(commands); ++i) {
        const CommandRow& row = commands[i];
        if (AcEdCommandStack* stack = commandStack()) {
            stack->addCommand(groupName, row.globalName, row.localName, row.flags,
                              row.handler != nullptr ? row.handler : fallbacks[i], nullptr, -1, nullptr);
        }
    }
}

void RemoveCommands() {
    if (AcEdCommandStack* stack = commandStack()) {
        stack->removeGroup(groupName);
    }
}
