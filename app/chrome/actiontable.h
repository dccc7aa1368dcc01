// What menus and tool bars offer: one row for each command.
#pragma once

#include <span>

namespace app {

struct ActionRow {
    const char* menu; ///< in which it stands; null: only on the bar
    const char* text; ///< null: a separator
    const char*
        command;      ///< typed for the user, with line ends as blanks; or "@name", something of the window
    const char* icon; ///< null: none
    const char* shortcut; ///< null: none
    const char* bar;      ///< tool bar; null: none
    bool transparent = false;
};

std::span<const ActionRow> actionRows();
/// Titles of menus and tool bars, in their order.
std::span<const char* const> menuTitles();

} // namespace app
