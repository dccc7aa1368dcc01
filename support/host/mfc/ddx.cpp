// Exchange and validation.
#include "host/mfc/ddx.h"

#include "host/mfc/controls.h"
#include "host/mfc/widgets/window.h"
#include "host/rx/format.h"

#include <cmath>
#include <cwchar>
#include <limits>

namespace {

CString controlText(HWND control) {
    CString text;
    CWnd::FromHandle(control)->GetWindowText(text);
    return text;
}

void setControlText(HWND control, const CString& text) {
    // A text that is there already is not set again: nothing has changed.
    if (controlText(control) != text)
        CWnd::FromHandle(control)->SetWindowText(text);
}

[[noreturn]] void refuse(CDataExchange* exchange, const std::wstring& line) {
    AfxMessageBox(line.c_str(), MB_ICONEXCLAMATION);
    exchange->Fail();
}

// The fewest digits that read as the number again.
std::wstring numberText(double value) {
    for (int digits = 6; digits <= 17; ++digits) {
        const std::wstring text = host::formatted(L"%.*g", digits, value);
        if (digits == 17 || std::wcstod(text.c_str(), nullptr) == value)
            return text;
    }
    return {};
}

template <class Number>
void exchangeInteger(CDataExchange* exchange, int id, Number& value, const wchar_t* wanted) {
    const HWND control = exchange->PrepareEditCtrl(id);
    if (!exchange->m_bSaveAndValidate) {
        setControlText(control, CString(std::to_wstring(value).c_str()));
        return;
    }
    const CString text = controlText(control).Trim();
    wchar_t* end = nullptr;
    const long long number = std::wcstoll(text, &end, 10);
    if (text.IsEmpty() || *end != 0 || number < static_cast<long long>(std::numeric_limits<Number>::min()) ||
        number > static_cast<long long>(std::numeric_limits<Number>::max()))
        refuse(exchange, wanted);
    value = static_cast<Number>(number);
}

template <class Number>
void exchangeReal(CDataExchange* exchange, int id, Number& value) {
    const HWND control = exchange->PrepareEditCtrl(id);
    if (!exchange->m_bSaveAndValidate) {
        setControlText(control, CString(numberText(static_cast<double>(value)).c_str()));
        return;
    }
    const CString text = controlText(control).Trim();
    wchar_t* end = nullptr;
    const double number = std::wcstod(text, &end);
    if (text.IsEmpty() || *end != 0 || !std::isfinite(number))
        refuse(exchange, L"请输入一个数。");
    value = static_cast<Number>(number);
}

template <class Number>
void checkRange(CDataExchange* exchange, Number value, Number least, Number most, const wchar_t* kind,
                std::wstring (*text)(Number)) {
    if (exchange->m_bSaveAndValidate && !(value >= least && value <= most))
        refuse(exchange,
               std::wstring(L"请输入 ") + text(least) + L" 到 " + text(most) + L" 之间的" + kind + L"。");
}

template <class Number>
std::wstring integerText(Number value) {
    return std::to_wstring(value);
}

CComboBox& comboBox(HWND control) {
    return static_cast<CComboBox&>(*CWnd::FromHandle(control));
}
CListBox& listBox(HWND control) {
    return static_cast<CListBox&>(*CWnd::FromHandle(control));
}

} // namespace

HWND CDataExchange::PrepareCtrl(int id) {
    HWND control = nullptr;
    m_pDlgWnd->GetDlgItem(id, &control);
    if (control == nullptr)
        throw CUserException(); // the template lacks it
    m_hWndLastControl = control;
    m_idLastControl = static_cast<UINT>(id);
    m_bEditLastControl = FALSE;
    return control;
}

HWND CDataExchange::PrepareEditCtrl(int id) {
    const HWND control = PrepareCtrl(id);
    m_bEditLastControl = TRUE;
    return control;
}

void CDataExchange::Fail() {
    if (m_hWndLastControl != nullptr) {
        CWnd* control = CWnd::FromHandle(m_hWndLastControl);
        control->SetFocus();
        if (m_bEditLastControl)
            control->SendMessage(EM_SETSEL, 0, -1);
    }
    throw CUserException();
}

void DDX_Control(CDataExchange* exchange, int id, CWnd& control) {
    if (control.m_hWnd == nullptr) {
        const HWND window = exchange->PrepareCtrl(id);
        control.SubclassWindow(window);
    }
}

void DDX_Text(CDataExchange* exchange, int id, CString& value) {
    const HWND control = exchange->PrepareEditCtrl(id);
    if (exchange->m_bSaveAndValidate)
        value = controlText(control);
    else
        setControlText(control, value);
}
void DDX_Text(CDataExchange* exchange, int id, int& value) {
    exchangeInteger(exchange, id, value, L"请输入一个整数。");
}
void DDX_Text(CDataExchange* exchange, int id, UINT& value) {
    exchangeInteger(exchange, id, value, L"请输入一个正整数。");
}
void DDX_Text(CDataExchange* exchange, int id, short& value) {
    exchangeInteger(exchange, id, value, L"请输入一个整数。");
}
void DDX_Text(CDataExchange* exchange, int id, float& value) {
    exchangeReal(exchange, id, value);
}
void DDX_Text(CDataExchange* exchange, int id, double& value) {
    exchangeReal(exchange, id, value);
}

void DDX_Check(CDataExchange* exchange, int id, int& value) {
    CWnd* control = CWnd::FromHandle(exchange->PrepareCtrl(id));
    if (exchange->m_bSaveAndValidate)
        value = static_cast<int>(control->SendMessage(BM_GETCHECK));
    else
        control->SendMessage(BM_SETCHECK, static_cast<WPARAM>(value));
}

void DDX_Radio(CDataExchange* exchange, int firstId, int& index) {
    HWND at = exchange->PrepareCtrl(firstId);
    if (exchange->m_bSaveAndValidate)
        index = -1;
    int place = 0;
    do {
        CWnd* control = CWnd::FromHandle(at);
        if (dynamic_cast<CButton*>(control) != nullptr || control->SendMessage(BM_GETCHECK) != 0) {
            if (!exchange->m_bSaveAndValidate)
                control->SendMessage(BM_SETCHECK, place == index ? BST_CHECKED : BST_UNCHECKED);
            else if (control->SendMessage(BM_GETCHECK) != 0)
                index = place;
            ++place;
        }
        CWnd* next = control->GetWindow(GW_HWNDNEXT);
        at = next != nullptr ? next->m_hWnd : nullptr;
    } while (at != nullptr && (at->style & WS_GROUP) == 0);
}

void DDX_CBIndex(CDataExchange* exchange, int id, int& index) {
    CWnd* control = CWnd::FromHandle(exchange->PrepareCtrl(id));
    if (exchange->m_bSaveAndValidate)
        index = static_cast<int>(control->SendMessage(CB_GETCURSEL));
    else
        control->SendMessage(CB_SETCURSEL, static_cast<WPARAM>(index));
}

void DDX_CBStringExact(CDataExchange* exchange, int id, CString& value) {
    CComboBox& combo = comboBox(exchange->PrepareCtrl(id));
    if (exchange->m_bSaveAndValidate)
        combo.GetWindowText(value);
    else if (combo.SetCurSel(combo.FindStringExact(-1, value)) == CB_ERR)
        combo.SetWindowText(value);
}
void DDX_CBString(CDataExchange* exchange, int id, CString& value) {
    CComboBox& combo = comboBox(exchange->PrepareCtrl(id));
    if (exchange->m_bSaveAndValidate)
        combo.GetWindowText(value);
    else if (combo.SelectString(-1, value) == CB_ERR)
        combo.SetWindowText(value);
}

void DDX_LBIndex(CDataExchange* exchange, int id, int& index) {
    CListBox& list = listBox(exchange->PrepareCtrl(id));
    if (exchange->m_bSaveAndValidate)
        index = list.GetCurSel();
    else
        list.SetCurSel(index);
}
void DDX_LBString(CDataExchange* exchange, int id, CString& value) {
    CListBox& list = listBox(exchange->PrepareCtrl(id));
    if (exchange->m_bSaveAndValidate)
        list.GetText(list.GetCurSel(), value);
    else
        list.SelectString(-1, value);
}

void DDV_MinMaxInt(CDataExchange* exchange, int value, int least, int most) {
    checkRange(exchange, value, least, most, L"整数", integerText<int>);
}
void DDV_MinMaxUInt(CDataExchange* exchange, UINT value, UINT least, UINT most) {
    checkRange(exchange, value, least, most, L"整数", integerText<UINT>);
}
void DDV_MinMaxDouble(CDataExchange* exchange, const double& value, double least, double most) {
    checkRange(exchange, value, least, most, L"数", numberText);
}

void DDV_MaxChars(CDataExchange* exchange, const CString& value, int most) {
    if (exchange->m_bSaveAndValidate) {
        if (value.GetLength() > most)
            refuse(exchange, L"最多输入 " + std::to_wstring(most) + L" 个字符。");
    } else if (exchange->m_hWndLastControl != nullptr && exchange->m_bEditLastControl) {
        CWnd::FromHandle(exchange->m_hWndLastControl)->SendMessage(EM_LIMITTEXT, static_cast<WPARAM>(most));
    }
}
