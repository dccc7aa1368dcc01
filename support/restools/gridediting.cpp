// The table at work: focus, keys, mouse, editing in place, filling by a script.
#include "restools/gridctrl.h"

#include <algorithm>

BEGIN_MESSAGE_MAP(CGridEdit, CEdit)
ON_WM_KEYDOWN()
ON_WM_KILLFOCUS()
ON_WM_GETDLGCODE()
END_MESSAGE_MAP()

void CGridEdit::OnKeyDown(UINT key, UINT repeat, UINT flags) {
    switch (key) {
    case VK_ESCAPE:
        mGrid.EndEdit(false);
        break;
    case VK_RETURN:
    case VK_DOWN:
        mGrid.EndEdit(true);
        mGrid.MoveFocus(1, 0);
        break;
    case VK_UP:
        mGrid.EndEdit(true);
        mGrid.MoveFocus(-1, 0);
        break;
    case VK_TAB:
        mGrid.EndEdit(true);
        mGrid.MoveFocus(0, GetKeyState(static_cast<int>(VK_SHIFT)) < 0 ? -1 : 1);
        break;
    default:
        CEdit::OnKeyDown(key, repeat, flags);
    }
}

void CGridEdit::OnKillFocus(CWnd* next) {
    CEdit::OnKillFocus(next);
    mGrid.EndEdit(true);
}

bool CGridCtrl::canEdit(int row, int column) const {
    return mEditable && cell(row, column) != nullptr && !isFixed(row, column) && !IsItemReadOnly(row, column);
}

void CGridCtrl::tell(UINT code, CCellID at) {
    if (CWnd* parent = GetParent()) {
        NM_GRIDVIEW told{{m_hWnd, static_cast<UINT_PTR>(GetDlgCtrlID()), code}, at.row, at.col};
        parent->SendMessage(WM_NOTIFY, told.hdr.idFrom, reinterpret_cast<LPARAM>(&told));
    }
}

void CGridCtrl::SetFocusCell(int row, int column) {
    const CCellID wanted{row, column};
    if (wanted == mFocus || (cell(row, column) == nullptr && wanted.IsValid())) {
        return;
    }
    mFocus = wanted;
    if (wanted.IsValid()) {
        scrollTo(row, column);
    }
    Invalidate();
    tell(GVN_SELCHANGED, mFocus);
}

void CGridCtrl::MoveFocus(int rows, int columns) {
    if (!mFocus.IsValid()) {
        SetFocusCell(mFixedRows, mFixedColumns);
        return;
    }
    SetFocusCell(
        std::clamp(mFocus.row + rows, mFixedRows, std::max(mFixedRows, GetRowCount() - 1)),
        std::clamp(mFocus.col + columns, mFixedColumns, std::max(mFixedColumns, GetColumnCount() - 1)));
}

bool CGridCtrl::BeginEdit() {
    CRect rect;
    if (!canEdit(mFocus.row, mFocus.col) || !GetCellRect(mFocus.row, mFocus.col, rect)) {
        return false;
    }
    rect.DeflateRect(0, 0, 1, 1);
    if (mEdit.m_hWnd == nullptr) {
        mEdit.Create(WS_CHILD | ES_AUTOHSCROLL, rect, this, 1);
    }
    mEdited = mFocus;
    mEdit.MoveWindow(rect);
    mEdit.SetWindowText(GetItemText(mFocus.row, mFocus.col));
    mEdit.ShowWindow(SW_SHOW);
    mEdit.SetFocus();
    mEdit.SetSel(0, -1);
    return true;
}

void CGridCtrl::EndEdit(bool keep) {
    if (!mEdited.IsValid()) {
        return;
    }
    const CCellID at = std::exchange(mEdited, {}); // first, since hiding the edit takes its focus away
    CString text;
    mEdit.GetWindowText(text);
    mEdit.ShowWindow(SW_HIDE);
    SetFocus();
    if (keep && text != GetItemText(at.row, at.col)) {
        SetItemText(at.row, at.col, text);
        tell(GVN_ENDLABELEDIT, at);
    }
    Invalidate();
}

void CGridCtrl::OnLButtonDown(UINT flags, CPoint point) {
    CWnd::OnLButtonDown(flags, point);
    EndEdit(true);
    SetFocus();
    const CCellID at = GetCellFromPt(point);
    if (!at.IsValid() || isFixed(at.row, at.col)) {
        return;
    }
    // A second click on the cell edits it.
    if (at == mFocus) {
        BeginEdit();
    } else {
        SetFocusCell(at.row, at.col);
    }
}

void CGridCtrl::OnLButtonDblClk(UINT flags, CPoint point) {
    CWnd::OnLButtonDblClk(flags, point);
    const CCellID at = GetCellFromPt(point);
    if (at.IsValid() && !isFixed(at.row, at.col)) {
        SetFocusCell(at.row, at.col);
        BeginEdit();
    }
}

void CGridCtrl::OnKeyDown(UINT key, UINT repeat, UINT flags) {
    constexpr int page = 10;
    switch (key) {
    case VK_LEFT:
        return MoveFocus(0, -1);
    case VK_RIGHT:
        return MoveFocus(0, 1);
    case VK_UP:
        return MoveFocus(-1, 0);
    case VK_DOWN:
        return MoveFocus(1, 0);
    case VK_PRIOR:
        return MoveFocus(-page, 0);
    case VK_NEXT:
        return MoveFocus(page, 0);
    case VK_HOME:
        return MoveFocus(-GetRowCount(), 0);
    case VK_END:
        return MoveFocus(GetRowCount(), 0);
    case VK_F2:
        BeginEdit();
        return;
    case VK_DELETE:
        if (canEdit(mFocus.row, mFocus.col)) {
            SetItemText(mFocus.row, mFocus.col, L"");
            tell(GVN_ENDLABELEDIT, mFocus);
        }
        return;
    default:
        CWnd::OnKeyDown(key, repeat, flags);
    }
}

void CGridCtrl::OnChar(UINT character, UINT repeat, UINT flags) {
    constexpr UINT firstPrintable = 32;
    if (character < firstPrintable || !BeginEdit()) {
        CWnd::OnChar(character, repeat, flags);
        return;
    }
    mEdit.SetWindowText(CString(static_cast<wchar_t>(character)));
    mEdit.SetSel(1, 1);
}

void CGridCtrl::OnSetFocus(CWnd* before) {
    CWnd::OnSetFocus(before);
    Invalidate();
}

void CGridCtrl::OnKillFocus(CWnd* next) {
    CWnd::OnKillFocus(next);
    Invalidate();
}

bool CGridCtrl::FillCell(int row, int column, const CString& text) {
    if (!canEdit(row, column)) {
        return false;
    }
    SetFocusCell(row, column);
    if (text != GetItemText(row, column)) {
        SetItemText(row, column, text);
        tell(GVN_ENDLABELEDIT, {row, column});
    }
    return true;
}

// Row, column and text, with tabs between them.
BOOL CGridCtrl::OnCopyData(CWnd*, COPYDATASTRUCT* data) {
    constexpr ULONG_PTR fillCell = 1;
    if (data->dwData != fillCell) {
        return FALSE;
    }
    const CString line(static_cast<const wchar_t*>(data->lpData),
                       static_cast<int>(data->cbData / sizeof(wchar_t)));
    const int first = line.Find(L'\t');
    const int second = line.Find(L'\t', first + 1);
    return first > 0 && second > first &&
                   FillCell(_wtoi(line.Left(first)), _wtoi(line.Mid(first + 1, second - first - 1)),
                            line.Mid(second + 1))
               ? TRUE
               : FALSE;
}

// The table as text: cells with tabs between them, a line for each row.
CString CGridCtrl::wholeText() const {
    CString text;
    for (int row = mFixedRows; row < GetRowCount(); ++row) {
        for (int column = 0; column < GetColumnCount(); ++column) {
            text += (column > 0 ? L"\t" : row > mFixedRows ? L"\n" : L"") + GetItemText(row, column);
        }
    }
    return text;
}

LRESULT CGridCtrl::OnGetText(WPARAM size, LPARAM text) {
    const CString whole = wholeText().Left(static_cast<int>(size) - 1);
    if (size > 0) {
        wcscpy_s(reinterpret_cast<wchar_t*>(text), size, whole);
    }
    return whole.GetLength();
}

LRESULT CGridCtrl::OnGetTextLength(WPARAM, LPARAM) {
    return wholeText().GetLength();
}
