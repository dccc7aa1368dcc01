// The menu of edits, as the other platform has it, and what its items do.
#pragma once

#include "host/mfc/widgets/window.h"

#include <QLineEdit>
#include <QPlainTextEdit>

namespace host {

// Asks for what is to be done, and sends it to the window as WM_UNDO, WM_CUT, WM_COPY, WM_PASTE or WM_CLEAR;
// or selects all. `at` is the parameter of WM_CONTEXTMENU.
void showEditMenu(QLineEdit& edit, HWND window, LPARAM at);
void showEditMenu(QPlainTextEdit& edit, HWND window, LPARAM at);

// Does what one of these messages asks for; false when it is none of them.
bool runEditMessage(QLineEdit& edit, UINT message);
bool runEditMessage(QPlainTextEdit& edit, UINT message);

} // namespace host
