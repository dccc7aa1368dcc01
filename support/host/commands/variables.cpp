// SETVAR, and system variables typed as commands by those of them that are.
#include "host/commands/ask.h"
#include "host/commands/registry.h"

namespace host {
namespace {

std::wstring valueText(const resbuf& value) {
    switch (value.restype) {
    case RTSHORT:
        return std::to_wstring(value.resval.rint);
    case RTLONG:
        return std::to_wstring(value.resval.rlong);
    case RTREAL:
        return shown(value.resval.rreal);
    case RTSTR:
        return L"\"" + std::wstring(value.resval.rstring) + L"\"";
    case RTPOINT:
        return shown(value.resval.rpoint[0]) + L"," + shown(value.resval.rpoint[1]);
    default:
        return shown(value.resval.rpoint[0]) + L"," + shown(value.resval.rpoint[1]) + L"," +
               shown(value.resval.rpoint[2]);
    }
}

void listVariables(const std::wstring& pattern) {
    for (const std::wstring& name : systemVariableNames()) {
        const ResbufList value = wildcardMatch(name, pattern) ? systemVariable(name) : nullptr;
        if (value != nullptr) {
            const bool readOnly = systemVariableInfo(name)->readOnly;
            acutPrintf(L"\n%-20s %s%s", name.c_str(), valueText(*value).c_str(),
                       readOnly ? L"   (只读)" : L"");
        }
    }
}

void changeVariable(const std::wstring& name) {
    const ResbufList value = systemVariable(name);
    if (value == nullptr) {
        acutPrintf(L"\n%s", variableErrorText(VariableError::unknown, name).c_str());
        return;
    }
    if (systemVariableInfo(name)->readOnly) {
        acutPrintf(L"\n%s = %s (只读)", name.c_str(), valueText(*value).c_str());
        return;
    }
    const bool text = value->restype == RTSTR;
    for (;;) {
        const TextAnswer answer =
            askText(L"\n输入 " + name + L" 的新值" + (text ? L"，或输入 . 表示无 <" : L" <") +
                        valueText(*value) + L">: ",
                    text);
        if (!answer.isValue()) {
            return;
        }
        const std::wstring given = text && answer.text == L"." ? L"" : answer.text;
        const VariableError error = setSystemVariableFromText(name, given);
        if (error == VariableError::none) {
            return;
        }
        acutPrintf(L"\n%s", variableErrorText(error, name).c_str());
        if (isProgramAnswering()) {
            return; // it will not answer otherwise when it is asked again
        }
    }
}

void runSetvar() {
    const TextAnswer answer = askText(L"\n输入变量名或 [?]: ");
    if (!answer.isValue()) {
        return;
    }
    if (answer.text == L"?") {
        const TextAnswer pattern = askText(L"\n输入要列出的变量 <*>: ");
        if (!pattern.isCancelled()) {
            listVariables(pattern.isNone() ? L"*" : pattern.text);
        }
        return;
    }
    std::wstring name = answer.text;
    std::transform(name.begin(), name.end(), name.begin(),
                   [](wchar_t c) { return static_cast<wchar_t>(acutToUpper(c)); });
    changeVariable(name);
}

constexpr CommandRow rows[] = {{L"SETVAR", L"设置变量", ACRX_CMD_TRANSPARENT, runSetvar}};

} // namespace

std::span<const CommandRow> variableCommands() {
    variableCommand() = changeVariable;
    return rows;
}

} // namespace host
