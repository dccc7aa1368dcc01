// Numbers typed and shown.
#include "restools/numedit.h"

#include <cmath>
#include <cwchar>
#include <limits>

BEGIN_MESSAGE_MAP(CNumEdit, CEdit)
ON_WM_CHAR()
ON_WM_CTLCOLOR_REFLECT()
END_MESSAGE_MAP()

void CNumEdit::SetRange(double maximum, double minimum) {
    mMaximum = maximum;
    mMinimum = minimum;
    mHasRange = true;
}

CString CNumEdit::textOf(double value) const {
    CString text;
    text.Format(L"%.*f", mPrecision, value);
    if (text.Find(L'.') >= 0) {
        text.TrimRight(L'0').TrimRight(L'.');
    }
    return text == L"-0" ? CString(L"0") : text;
}

void CNumEdit::SetValue(double value) {
    mShown = value;
    mShownText = textOf(value);
    SetWindowText(mShownText);
}

bool CNumEdit::read(double& value) const {
    CString text;
    GetWindowText(text);
    text.Trim();
    if (!text.IsEmpty() && text == mShownText) {
        value = mShown;
        return true;
    }
    // Neither hexadecimal numbers nor words.
    if (text.IsEmpty() || text.SpanIncluding(L"0123456789.+-eE") != text) {
        return false;
    }
    wchar_t* end = nullptr;
    value = std::wcstod(text, &end);
    return *end == 0 && std::isfinite(value);
}

double CNumEdit::GetValue() const {
    double value = 0.0;
    return read(value) ? value : 0.0;
}

bool CNumEdit::IsValid() const {
    double value = 0.0;
    return read(value) && (!mHasRange || (value >= mMinimum && value <= mMaximum));
}

bool CNumEdit::Validate(const ACHAR* name) {
    if (IsValid()) {
        return true;
    }
    CString line = CString(name) + L"应为一个数。";
    if (mHasRange && mMaximum >= std::numeric_limits<double>::max()) {
        line.Format(L"%s应为不小于 %s 的数。", name, textOf(mMinimum).GetString());
    } else if (mHasRange) {
        line.Format(L"%s应为 %s 到 %s 之间的数。", name, textOf(mMinimum).GetString(),
                    textOf(mMaximum).GetString());
    }
    MessageBox(line, L"提示", MB_OK | MB_ICONEXCLAMATION);
    SetFocus();
    SetSel(0, -1);
    return false;
}

void CNumEdit::OnChar(UINT character, UINT repeat, UINT flags) {
    constexpr UINT firstPrintable = 32;
    if (character < firstPrintable ||
        wcschr(L"0123456789.+-eE", static_cast<wchar_t>(character)) != nullptr) {
        CEdit::OnChar(character, repeat, flags);
    }
}

HBRUSH CNumEdit::CtlColor(CDC* context, UINT) {
    if (!IsValid()) {
        context->SetTextColor(RGB(200, 0, 0));
    }
    return nullptr;
}
