// The palette of the text commands. Left alone it folds up to its title bar, unless it is pinned there.
#include "text/texttool.h"

#include "resources/resource.h"
#include "restools/ownmodule.h"
#include "restools/sysvar.h"

#include <algorithm>
#include <array>

namespace {

struct CommandButton {
    UINT control;
    const ACHAR* command;
};
constexpr std::array commandButtons{
    CommandButton{IDC_TOOL_EDIT, L"V7_EditText"},
    CommandButton{IDC_TOOL_LINK, L"V7_LinkText"},
    CommandButton{IDC_TOOL_HALIGN, L"V7_THAlign"},
    CommandButton{IDC_TOOL_VALIGN, L"V7_TVAlign"},
    CommandButton{IDC_TOOL_PHRASES, L"COMMTEXT"},
    CommandButton{IDC_TOOL_SUM, L"V7_SumNum"},
    CommandButton{IDC_TOOL_DIMENSION, L"V7_Scadimh"},
    CommandButton{IDC_TOOL_RATIO, L"V7_CCEScale"},
    CommandButton{IDC_TOOL_FIND, L"FIND"},
    CommandButton{IDC_TOOL_DELTA, L"V7_DeltaMark"},
};
constexpr auto controlOrder = [](const CommandButton& left, const CommandButton& right) {
    return left.control < right.control;
};
constexpr UINT firstControl = std::ranges::min(commandButtons, controlOrder).control;
constexpr UINT lastControl = std::ranges::max(commandButtons, controlOrder).control;

/// Leaves a running command and starts another; the keyboard goes back to the drawing.
void sendCommand(const ACHAR* command) {
    constexpr ACHAR escape = 27;
    int active = 0;
    GetVar(L"CMDACTIVE", active);
    CString line;
    if (active != 0) {
        line.Format(L"%c%c_.%s ", escape, escape, command);
    } else {
        line.Format(L"_.%s ", command);
    }
    acDocManagerPtr()->sendStringToExecute(acDocManagerPtr()->curDocument(), line, true, false, true);
    acedGetAcadDwgView()->SetFocus();
}

class CTextToolDialog : public CAcUiDialog {
public:
    explicit CTextToolDialog(CWnd* parent) : CAcUiDialog(IDD_TEXT_TOOL, parent, GetOwnModule().instance) {}

protected:
    DECLARE_MESSAGE_MAP()
    BOOL OnInitDialog() override;
    void OnOK() override {}
    void OnCancel() override { DestroyWindow(); }
    void PostNcDestroy() override;

    void OnCommandButton(UINT control);
    void OnTimer(UINT_PTR id);
    void OnMouseMove(UINT flags, CPoint point);
    void OnNcMouseMove(UINT hit, CPoint point);
    void OnNcLButtonDown(UINT hit, CPoint point);
    void OnNcLButtonDblClk(UINT, CPoint) {}
    void OnSysCommand(UINT command, LPARAM parameter);
    BOOL OnSetCursor(CWnd* window, UINT hit, UINT message);

private:
    static constexpr UINT_PTR foldTimer = 1;
    static constexpr UINT foldAtStart = 3000, foldAfterLeaving = 500; // milliseconds

    bool isCursorInside() const;
    void expectLeaving();
    void setHeight(int height);
    void expand();
    void togglePinned();

    CSize mClientSize;
    CSize mWindowSize;
    bool mIsCollapsed = false;
    bool mIsPinned = false;
    HICON mUnpinnedIcon = nullptr;
    HICON mPinnedIcon = nullptr;
};

CTextToolDialog* palette = nullptr;

BEGIN_MESSAGE_MAP(CTextToolDialog, CAcUiDialog)
ON_CONTROL_RANGE(BN_CLICKED, firstControl, lastControl, &CTextToolDialog::OnCommandButton)
ON_WM_TIMER()
ON_WM_MOUSEMOVE()
ON_WM_NCMOUSEMOVE()
ON_WM_NCLBUTTONDOWN()
ON_WM_NCLBUTTONDBLCLK()
ON_WM_SYSCOMMAND()
ON_WM_SETCURSOR()
END_MESSAGE_MAP()

BOOL CTextToolDialog::OnInitDialog() {
    CAcUiDialog::OnInitDialog();
    CRect client, window;
    GetClientRect(client);
    GetWindowRect(window);
    mClientSize = client.Size();
    mWindowSize = window.Size();
    mUnpinnedIcon = LoadIcon(GetOwnModule().instance, MAKEINTRESOURCE(IDI_UNPINNED));
    mPinnedIcon = LoadIcon(GetOwnModule().instance, MAKEINTRESOURCE(IDI_PINNED));
    SetIcon(mUnpinnedIcon, FALSE);
    SetTimer(foldTimer, foldAtStart, nullptr);
    return TRUE;
}

void CTextToolDialog::PostNcDestroy() {
    CAcUiDialog::PostNcDestroy();
    palette = nullptr;
    delete this;
}

void CTextToolDialog::OnCommandButton(UINT control) {
    const auto button = std::ranges::find(commandButtons, control, &CommandButton::control);
    if (button != commandButtons.end()) {
        sendCommand(button->command);
    }
}

bool CTextToolDialog::isCursorInside() const {
    CPoint cursor;
    CRect window;
    GetCursorPos(&cursor);
    GetWindowRect(window);
    return window.PtInRect(cursor) != FALSE;
}

void CTextToolDialog::OnTimer(UINT_PTR id) {
    if (id == foldTimer) {
        KillTimer(foldTimer);
        if (!mIsCollapsed && !isCursorInside()) {
            mIsCollapsed = true;
            setHeight(mWindowSize.cy - mClientSize.cy);
        }
    }
    CAcUiDialog::OnTimer(id);
}

void CTextToolDialog::expectLeaving() {
    if (!mIsPinned) {
        SetTimer(foldTimer, foldAfterLeaving, nullptr);
    }
}

void CTextToolDialog::OnMouseMove(UINT flags, CPoint point) {
    expectLeaving();
    CAcUiDialog::OnMouseMove(flags, point);
}

void CTextToolDialog::OnNcMouseMove(UINT hit, CPoint point) {
    expectLeaving();
    CAcUiDialog::OnNcMouseMove(hit, point);
}

void CTextToolDialog::OnNcLButtonDown(UINT hit, CPoint point) {
    expand();
    CAcUiDialog::OnNcLButtonDown(hit, point);
}

void CTextToolDialog::setHeight(int height) {
    SetWindowPos(nullptr, 0, 0, mWindowSize.cx, height, SWP_NOMOVE | SWP_NOZORDER | SWP_NOACTIVATE);
}

void CTextToolDialog::expand() {
    if (mIsCollapsed) {
        mIsCollapsed = false;
        setHeight(mWindowSize.cy);
    }
}

void CTextToolDialog::togglePinned() {
    mIsPinned = !mIsPinned;
    SetIcon(mIsPinned ? mPinnedIcon : mUnpinnedIcon, FALSE);
    if (mIsPinned) {
        KillTimer(foldTimer);
        expand();
    }
}

void CTextToolDialog::OnSysCommand(UINT command, LPARAM parameter) {
    constexpr UINT meaning = 0xFFF0; // the low bits are the system's own
    if ((command & meaning) == SC_MOUSEMENU || (command & meaning) == SC_DEFAULT) {
        togglePinned();
    } else {
        CAcUiDialog::OnSysCommand(command, parameter);
    }
}

BOOL CTextToolDialog::OnSetCursor(CWnd* window, UINT hit, UINT message) {
    if (hit != HTSYSMENU) {
        return CAcUiDialog::OnSetCursor(window, hit, message);
    }
    SetCursor(LoadCursor(nullptr, IDC_UPARROW));
    return TRUE;
}

} // namespace

void ShowTextTool() {
    if (palette == nullptr) {
        const CAcModuleResourceOverride resources(GetOwnModule().instance);
        palette = new CTextToolDialog(acedGetAcadFrame());
        if (!palette->Create(IDD_TEXT_TOOL, acedGetAcadFrame())) {
            delete palette;
            palette = nullptr;
            return;
        }
    }
    palette->ShowWindow(SW_SHOWNORMAL);
}
