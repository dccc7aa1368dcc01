// Dialog templates as resource compilers write them, in their old and their extended form.
#pragma once

#include "host/win/winuser.h"

#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace host {

// A rectangle in dialog units.
struct TemplateRect {
    int left = 0, top = 0, width = 0, height = 0;
};

struct TemplateItem {
    std::wstring className; // "Button", "Edit", ... or a class of its own
    std::wstring text;
    UINT image = 0; // number of a resource in the text's place
    DWORD style = 0, exStyle = 0;
    TemplateRect rect;
    UINT id = 0;
};

struct DialogTemplate {
    DWORD style = 0, exStyle = 0;
    TemplateRect rect;
    std::wstring caption;
    int points = 9, weight = 400;
    bool italic = false;
    std::wstring face;
    std::vector<TemplateItem> items;
};

// Nothing when the bytes end early or are none.
std::optional<DialogTemplate> readDialogTemplate(std::span<const std::byte> bytes);
// The dialog of this name from the first module that has it.
std::optional<DialogTemplate> findDialogTemplate(LPCWSTR name);

} // namespace host
