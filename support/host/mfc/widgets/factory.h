// The makers of the windows, one a class name.
#pragma once

#include "host/mfc/widgets/window.h"

class QButtonGroup;

namespace host {

struct WindowSpec {
    std::wstring className, text;
    UINT image = 0; // number of the resource that stands in the text's place
    DWORD style = 0, exStyle = 0;
    QRect rect;
    HWND parent = nullptr;
    UINT id = 0;
    QFont font;

    QWidget* parentWidget() const { return parent != nullptr ? parent->content.data() : nullptr; }
};

HWND makeButton(const WindowSpec& spec);
HWND makeStatic(const WindowSpec& spec);
HWND makeEdit(const WindowSpec& spec);
HWND makeComboBox(const WindowSpec& spec);
HWND makeListBox(const WindowSpec& spec);
HWND makeListView(const WindowSpec& spec);
HWND makeUpDown(const WindowSpec& spec);
// A window whose class paints it.
HWND makeCustom(const WindowSpec& spec);

HWND createWindow(const WindowSpec& spec);

// After the controls of a dialog are there: radio buttons of a group exclude each other, labels lead to the
// controls after them, spin buttons find their edits.
void joinControls(HWND dialog);

// Radio buttons and check boxes.
int checkOf(HWND button);
void setCheck(HWND button, int check);
bool isRadio(HWND button);
bool isPushButton(HWND button);
void setDefault(HWND button, bool isDefault);
void setButtonGroup(HWND button, QButtonGroup* group);
void attachLabel(HWND label, HWND control);
void attachBuddy(HWND spin, HWND edit);

} // namespace host
