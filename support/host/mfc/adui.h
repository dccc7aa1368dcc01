// The dialogs and windows of the host's own user-interface library, and its windows.
#pragma once

#include "host/mfc/dialog.h"

class CAdUiBaseDialog : public CDialog {
public:
    using CDialog::CDialog;
    CAdUiBaseDialog(UINT id, CWnd* parent, HINSTANCE resources)
        : CDialog(id, parent), m_hDialogResourceSaved(resources) {}

protected:
    HINSTANCE m_hDialogResourceSaved = nullptr;
};
class CAdUiDialog : public CAdUiBaseDialog {
public:
    explicit CAdUiDialog(UINT id = 0, CWnd* parent = nullptr, HINSTANCE resources = nullptr)
        : CAdUiBaseDialog(id, parent, resources) {}
};
// A dialog over the drawing's window.
class CAcUiDialog : public CAdUiDialog {
public:
    explicit CAcUiDialog(UINT id = 0, CWnd* parent = nullptr, HINSTANCE resources = nullptr);
    INT_PTR DoModal() override;
};

// Asks a dialog beside the drawing whether it keeps the keyboard when the cursor comes over the drawing.
inline constexpr UINT WM_ACAD_KEEPFOCUS = 0x7101;

// The main window and the drawing's; without a window they are there and do nothing.
CWnd* acedGetAcadFrame();
CWnd* acedGetAcadDwgView();
HWND adsw_acadMainWnd();
HWND adsw_acadDocWnd();

// A filter sees messages of keys and mouse before the windows do. TRUE swallows the message. Registering a
// function twice, or removing one that is not there, is refused.
using AcedFilterWinMsgFn = BOOL (*)(MSG*);
BOOL acedRegisterFilterWinMsg(AcedFilterWinMsgFn function);
BOOL acedRemoveFilterWinMsg(AcedFilterWinMsgFn function);
