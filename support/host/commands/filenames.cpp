// Names of drawing files as they are typed.
#include "host/commands/filenames.h"

#include "host/commands/ask.h"
#include "host/win/win.h"

namespace host {

std::wstring drawingFileName(std::wstring text) {
    text = unquoted(std::move(text));
    const std::size_t name = text.find_last_of(L"/\\");
    const std::size_t dot = text.rfind(L'.');
    if (dot == std::wstring::npos || (name != std::wstring::npos && dot < name)) {
        text += L".dxf";
    }
    return text;
}

bool mayWriteFile(const std::wstring& name) {
    std::error_code error;
    if (!std::filesystem::exists(toNativePath(name), error) || systemVariableInteger(L"EXPERT") >= 2) {
        return true;
    }
    return askYesNo(L"\n该名称的图形已存在，是否替换它?", false).value_or(false);
}

} // namespace host
