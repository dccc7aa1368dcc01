// Exchange of values between a dialog's controls and its fields, and their validation. What is wrong is said
// in a message box, the control gets the focus, and the exchange ends (UpdateData gives FALSE).
#pragma once

#include "host/mfc/cstring.h"
#include "host/mfc/wnd.h"

// Ends an exchange; UpdateData catches it.
class CUserException {};

class CDataExchange {
public:
    CDataExchange(CWnd* dialog, BOOL saveAndValidate)
        : m_bSaveAndValidate(saveAndValidate), m_pDlgWnd(dialog) {}

    BOOL m_bSaveAndValidate; // TRUE: controls to fields
    CWnd* m_pDlgWnd;
    HWND m_hWndLastControl = nullptr;
    BOOL m_bEditLastControl = FALSE;
    UINT m_idLastControl = 0;

    HWND PrepareCtrl(int id);
    HWND PrepareEditCtrl(int id);
    // Gives the last control the focus (an edit with its text selected).
    [[noreturn]] void Fail();
};

void DDX_Control(CDataExchange* exchange, int id, CWnd& control);
void DDX_Text(CDataExchange* exchange, int id, CString& value);
void DDX_Text(CDataExchange* exchange, int id, int& value);
void DDX_Text(CDataExchange* exchange, int id, UINT& value);
void DDX_Text(CDataExchange* exchange, int id, short& value);
void DDX_Text(CDataExchange* exchange, int id, float& value);
void DDX_Text(CDataExchange* exchange, int id, double& value);
void DDX_Check(CDataExchange* exchange, int id, int& value);
void DDX_Radio(CDataExchange* exchange, int firstId, int& index);
void DDX_CBIndex(CDataExchange* exchange, int id, int& index);
void DDX_CBString(CDataExchange* exchange, int id, CString& value);
void DDX_CBStringExact(CDataExchange* exchange, int id, CString& value);
void DDX_LBIndex(CDataExchange* exchange, int id, int& index);
void DDX_LBString(CDataExchange* exchange, int id, CString& value);

// After the DDX_ of the same control.
void DDV_MinMaxInt(CDataExchange* exchange, int value, int least, int most);
void DDV_MinMaxUInt(CDataExchange* exchange, UINT value, UINT least, UINT most);
void DDV_MinMaxDouble(CDataExchange* exchange, const double& value, double least, double most);
void DDV_MaxChars(CDataExchange* exchange, const CString& value, int most);
