// What a handle of a menu points to, and the templates of menus as resource compilers write them.
#pragma once

#include "host/mfc/menu.h"

#include <cstddef>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace host {

struct MenuItem {
    UINT type = 0;  // MF_SEPARATOR, MFT_RADIOCHECK
    UINT state = 0; // MF_GRAYED, MF_DISABLED, MF_CHECKED, MF_DEFAULT
    UINT id = 0;
    HMENU popup = nullptr; // that it opens
    std::wstring text;

    bool isSeparator() const { return (type & MF_SEPARATOR) != 0; }
    bool isEnabled() const { return (state & (MF_GRAYED | MF_DISABLED)) == 0; }
};

struct MenuTemplateItem {
    UINT type = 0, state = 0, id = 0;
    bool isPopup = false;
    std::wstring text;
    std::vector<MenuTemplateItem> items;
};

// The old and the extended form. Nothing when the bytes end early, are none, or nest deeper than any menu.
std::optional<std::vector<MenuTemplateItem>> readMenuTemplate(std::span<const std::byte> bytes);

} // namespace host

struct HMENU__ {
    std::vector<host::MenuItem> items;
    CMenu* object = nullptr;          // attached
    std::unique_ptr<CMenu> temporary; // of FromHandle
};
