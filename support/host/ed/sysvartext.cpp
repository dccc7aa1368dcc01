// What the user is told about a system variable's value that was refused.
#include "host/ed/sysvars.h"
#include "host/rx/format.h"
#include "host/rx/text.h"

namespace host {
namespace {

std::wstring typeRefusal(int type) {
    switch (type) {
    case RTSHORT:
    case RTLONG:
        return L"需要整数。";
    case RTREAL:
        return L"需要数值。";
    case RTPOINT:
        return L"需要二维点。";
    case RT3DPOINT:
        return L"需要点。";
    default:
        return L"需要文字。";
    }
}

std::wstring rangeRefusal(const VariableInfo& info) {
    constexpr double endless = 1e98;
    const bool whole = info.type == RTSHORT || info.type == RTLONG;
    if (info.minimum > info.maximum) {
        // No range of its own: what the type holds.
        return L"需要 -32768 到 32767 之间的整数。";
    }
    if (info.maximum > endless) {
        return info.minimum > 0.0 ? L"值必须为正且非零。" : L"值不能为负。";
    }
    return formatted(whole ? L"需要 %g 到 %g 之间的整数。" : L"需要 %g 到 %g 之间的数值。", info.minimum,
                     info.maximum);
}

} // namespace

std::wstring variableErrorText(VariableError error, std::wstring_view name) {
    const std::wstring shown = toUpper(name);
    switch (error) {
    case VariableError::none:
        return {};
    case VariableError::unknown:
        return L"未知变量名: " + shown;
    case VariableError::readOnly:
        return L"系统变量 " + shown + L" 是只读的";
    case VariableError::wrongType:
        return typeRefusal(systemVariableInfo(name)->type);
    case VariableError::outOfRange:
        return rangeRefusal(*systemVariableInfo(name));
    case VariableError::refused:
        break;
    }
    return L"无法将 " + shown + L" 设置为该值。*无效*";
}

} // namespace host
