// Settings to draw by, as commands: ORTHO, SNAP, GRID, OSNAP, FILL, QTEXT, COLOR, LWEIGHT, BASE, ELEV.
#include "host/commands/ask.h"
#include "host/commands/registry.h"
#include "host/commands/tables.h"
#include "host/ed/colornames.h"
#include "host/ed/osnap.h"
#include "host/ed/sysvars.h"

namespace host {
namespace {

void askSwitch(const wchar_t* variable) {
    const bool on = systemVariableInteger(variable) != 0;
    const Answer answer =
        askKeyword(std::wstring(L"\n输入模式 [开(ON)/关(OFF)] <") + (on ? L"开" : L"关") + L">: ", L"ON OFF");
    if (answer.kind == Answer::Kind::keyword) {
        setSystemVariable(variable, answer.isKeyword(L"ON") ? 1 : 0);
    }
}

void runOrtho() {
    askSwitch(L"ORTHOMODE");
}

void runFill() {
    askSwitch(L"FILLMODE");
}

void runQuickText() {
    askSwitch(L"QTEXTMODE");
}

AcGePoint2d spacingOf(const wchar_t* variable) {
    const ResbufList value = systemVariable(variable);
    return {value->resval.rpoint[0], value->resval.rpoint[1]};
}

void setSpacing(const wchar_t* variable, double x, double y) {
    resbuf value{};
    value.restype = RTPOINT;
    value.resval.rpoint[0] = x;
    value.resval.rpoint[1] = y;
    setSystemVariable(variable, value);
}

/// Two spacings, the second Enter is as the first.
void askAspect(const wchar_t* variable, const wchar_t* mode) {
    const AcGePoint2d old = spacingOf(variable);
    const RealAnswer x = askDistance(L"\n指定水平间距 <" + shown(old.x) + L">: ", nullptr, nullptr, 6);
    const double horizontal = x.isValue() ? x.value : old.x;
    const RealAnswer y =
        x.isCancelled() ? x : askDistance(L"\n指定垂直间距 <" + shown(old.y) + L">: ", nullptr, nullptr, 6);
    if (!y.isCancelled()) {
        setSpacing(variable, horizontal, y.isValue() ? y.value : old.y);
        setSystemVariable(mode, 1);
    }
}

void askSpacing(const wchar_t* what, const wchar_t* variable, const wchar_t* mode) {
    const RealAnswer answer =
        askDistance(L"\n指定" + std::wstring(what) + L"间距或 [开(ON)/关(OFF)/纵横向间距(A)] <" +
                        shown(spacingOf(variable).x) + L">: ",
                    L"ON OFF Aspect", nullptr, 6);
    if (answer.isKeyword(L"Aspect")) {
        askAspect(variable, mode);
    } else if (answer.kind == Answer::Kind::keyword) {
        setSystemVariable(mode, answer.isKeyword(L"ON") ? 1 : 0);
    } else if (answer.isValue()) {
        setSpacing(variable, answer.value, answer.value);
        setSystemVariable(mode, 1);
    }
}

void runSnap() {
    askSpacing(L"捕捉", L"SNAPUNIT", L"SNAPMODE");
}

void runGrid() {
    askSpacing(L"栅格", L"GRIDUNIT", L"GRIDMODE");
}

void runObjectSnap() {
    for (;;) {
        acutPrintf(L"\n当前对象捕捉模式:  %s", snapModesText(systemVariableInteger(L"OSMODE")).c_str());
        const TextAnswer answer = askText(L"\n输入对象捕捉模式列表: ", true);
        if (answer.isCancelled()) {
            return;
        }
        const std::optional<int> modes =
            answer.isValue() ? parseSnapModes(answer.text) : AcDb::kOsMaskNoneOverride;
        if (modes) {
            setSystemVariable(L"OSMODE", *modes & ~static_cast<int>(AcDb::kOsMaskNoneOverride));
            return;
        }
        acutPrintf(L"\n不是对象捕捉模式: \"%s\"。", answer.text.c_str());
    }
}

void runColor() {
    const std::optional<AcCmEntityColor> color =
        askColor(L"输入默认对象颜色", systemVariableText(L"CECOLOR"));
    if (color) {
        setSystemVariable(L"CECOLOR", colorText(*color));
    }
}

void runLineWeight() {
    for (;;) {
        const TextAnswer answer =
            askText(L"\n输入新对象的默认线宽（毫米），或 [随层(ByLayer)/随块(ByBlock)/默认(DEFAULT)]: ");
        if (!answer.isValue()) {
            return;
        }
        if (const std::optional<AcDb::LineWeight> weight = parseLineWeight(answer.text)) {
            currentDatabase().setCelweight(*weight);
            return;
        }
        acutPrintf(L"\n无效的线宽: \"%s\"。", answer.text.c_str());
    }
}

void runBase() {
    const AcGePoint3d base = currentDatabase().insbase();
    const PointAnswer answer =
        askPoint(L"\n输入基点 <" + shown(base.x) + L"," + shown(base.y) + L"," + shown(base.z) + L">: ");
    if (answer.isValue()) {
        currentDatabase().setInsbase(answer.world);
    }
}

/// Asks for a length that is kept in a variable; false when cancelled.
bool askLength(const wchar_t* prompt, const wchar_t* variable) {
    const RealAnswer answer = askDistance(prompt + (L" <" + shown(systemVariableReal(variable))) + L">: ");
    if (answer.isValue()) {
        setSystemVariable(variable, answer.value);
    }
    return !answer.isCancelled();
}

void runElevation() {
    if (askLength(L"\n指定新的默认标高", L"ELEVATION")) {
        askLength(L"\n指定新的默认厚度", L"THICKNESS");
    }
}

constexpr Adesk::Int32 transparent = ACRX_CMD_MODAL | ACRX_CMD_TRANSPARENT;
constexpr CommandRow rows[] = {{L"ORTHO", L"正交", transparent, runOrtho},
                               {L"SNAP", L"捕捉", transparent, runSnap},
                               {L"GRID", L"栅格", transparent, runGrid},
                               {L"OSNAP", L"对象捕捉", transparent, runObjectSnap},
                               {L"-OSNAP", L"-对象捕捉", transparent, runObjectSnap},
                               {L"FILL", L"填充显示", transparent, runFill},
                               {L"QTEXT", L"快速文字", transparent, runQuickText},
                               {L"COLOR", L"颜色", transparent, runColor},
                               {L"-COLOR", L"-颜色", transparent, runColor},
                               {L"LWEIGHT", L"线宽", transparent, runLineWeight},
                               {L"-LWEIGHT", L"-线宽", transparent, runLineWeight},
                               {L"BASE", L"基点", transparent, runBase},
                               {L"ELEV", L"标高", transparent, runElevation}};

} // namespace

std::span<const CommandRow> draftingCommands() {
    return rows;
}

} // namespace host
