// The classes of the standard controls: labels, buttons, edits, combo boxes, list boxes, spin buttons.
#pragma once

#include "host/mfc/wnd.h"

class CStatic : public CWnd {
public:
    BOOL Create(LPCTSTR text, DWORD style, const RECT& rect, CWnd* parent, UINT id = IDC_STATIC);
    HICON SetIcon(HICON icon);
    HBITMAP SetBitmap(HBITMAP bitmap);
};

class CButton : public CWnd {
public:
    BOOL Create(LPCTSTR text, DWORD style, const RECT& rect, CWnd* parent, UINT id);
    int GetCheck() const;
    void SetCheck(int check);
    UINT GetButtonStyle() const;
    void SetButtonStyle(UINT style, BOOL redraw = TRUE);
    HICON SetIcon(HICON icon);
    HBITMAP SetBitmap(HBITMAP bitmap);
    virtual void DrawItem(LPDRAWITEMSTRUCT) {}

protected:
    BOOL OnChildNotify(UINT message, WPARAM wParam, LPARAM lParam, LRESULT* result) override;
};

class CEdit : public CWnd {
public:
    BOOL Create(DWORD style, const RECT& rect, CWnd* parent, UINT id);
    void SetSel(int start, int end, BOOL noScroll = FALSE); // 0, -1: everything
    void SetSel(DWORD selection, BOOL noScroll = FALSE);
    void GetSel(int& start, int& end) const;
    DWORD GetSel() const;
    void ReplaceSel(LPCTSTR text, BOOL canUndo = FALSE);
    void SetLimitText(UINT most);
    void LimitText(int most = 0) { SetLimitText(static_cast<UINT>(most)); }
    BOOL SetReadOnly(BOOL readOnly = TRUE);
    BOOL GetModify() const;
    void SetModify(BOOL modified = TRUE);
    int GetLineCount() const;
    void SetPasswordChar(TCHAR character);
    void Clear();
    void Copy();
    void Cut();
    void Paste();
    BOOL Undo();
};

// An item's data stays with it when the list is sorted.
class CComboBox : public CWnd {
public:
    BOOL Create(DWORD style, const RECT& rect, CWnd* parent, UINT id);
    int GetCount() const;
    int GetCurSel() const;
    int SetCurSel(int index); // CB_ERR, and nothing selected, when there is no such item
    int AddString(LPCTSTR text);
    int InsertString(int index, LPCTSTR text); // -1: at the end; never sorted
    int DeleteString(UINT index);
    void ResetContent();
    int FindString(int after, LPCTSTR start) const;
    int FindStringExact(int after, LPCTSTR text) const;
    int SelectString(int after, LPCTSTR start);
    int GetLBText(int index, LPTSTR text) const;
    void GetLBText(int index, CString& text) const;
    int GetLBTextLen(int index) const;
    DWORD_PTR GetItemData(int index) const;
    int SetItemData(int index, DWORD_PTR data);
    void* GetItemDataPtr(int index) const { return reinterpret_cast<void*>(GetItemData(index)); }
    int SetItemDataPtr(int index, void* data) {
        return SetItemData(index, reinterpret_cast<DWORD_PTR>(data));
    }
    BOOL LimitText(int most);
    DWORD GetEditSel() const;
    BOOL SetEditSel(int start, int end);
    void ShowDropDown(BOOL show = TRUE);
    BOOL GetDroppedState() const;
    int SetDroppedWidth(UINT width);
};

class CListBox : public CWnd {
public:
    BOOL Create(DWORD style, const RECT& rect, CWnd* parent, UINT id);
    int GetCount() const;
    int GetCurSel() const;
    int SetCurSel(int index);
    int GetSel(int index) const;
    int SetSel(int index, BOOL select = TRUE); // of a list with several selected
    int GetSelCount() const;
    int GetSelItems(int most, int* indices) const;
    int AddString(LPCTSTR text);
    int InsertString(int index, LPCTSTR text);
    int DeleteString(UINT index);
    void ResetContent();
    int FindString(int after, LPCTSTR start) const;
    int FindStringExact(int after, LPCTSTR text) const;
    int SelectString(int after, LPCTSTR start);
    int GetText(int index, LPTSTR text) const;
    void GetText(int index, CString& text) const;
    int GetTextLen(int index) const;
    DWORD_PTR GetItemData(int index) const;
    int SetItemData(int index, DWORD_PTR data);
    int GetTopIndex() const;
    int SetTopIndex(int index);
};

struct NMUPDOWN {
    NMHDR hdr;
    int iPos, iDelta;
};
inline constexpr UINT UDN_DELTAPOS = static_cast<UINT>(-722);

// Steps the number in its buddy.
class CSpinButtonCtrl : public CWnd {
public:
    void SetRange(short least, short most) { SetRange32(least, most); }
    void SetRange32(int least, int most);
    void GetRange32(int& least, int& most) const;
    int SetPos(int position);
    int GetPos() const;
    int SetPos32(int position) { return SetPos(position); }
    int GetPos32() const { return GetPos(); }
    CWnd* SetBuddy(CWnd* buddy);
    CWnd* GetBuddy() const;
};

class CScrollBar : public CWnd {};
