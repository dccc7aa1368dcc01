// CListCtrl: lists with columns or with pictures; the items are the list's own or asked for as they are
// shown.
#pragma once

#include "host/mfc/wnd.h"

inline constexpr DWORD LVS_ICON = 0, LVS_REPORT = 1, LVS_SMALLICON = 2, LVS_LIST = 3, LVS_TYPEMASK = 3,
                       LVS_SINGLESEL = 4, LVS_SHOWSELALWAYS = 8, LVS_SORTASCENDING = 0x10,
                       LVS_AUTOARRANGE = 0x100, LVS_EDITLABELS = 0x200, LVS_OWNERDATA = 0x1000,
                       LVS_NOCOLUMNHEADER = 0x4000, LVS_NOSORTHEADER = 0x8000;
inline constexpr DWORD LVS_EX_GRIDLINES = 1, LVS_EX_CHECKBOXES = 4, LVS_EX_FULLROWSELECT = 0x20,
                       LVS_EX_DOUBLEBUFFER = 0x10000;
inline constexpr UINT LVIF_TEXT = 1, LVIF_IMAGE = 2, LVIF_PARAM = 4, LVIF_STATE = 8;
inline constexpr UINT LVIS_FOCUSED = 1, LVIS_SELECTED = 2;
inline constexpr int LVCF_FMT = 1, LVCF_WIDTH = 2, LVCF_TEXT = 4, LVCFMT_LEFT = 0, LVCFMT_RIGHT = 1,
                     LVCFMT_CENTER = 2;
inline constexpr int LVNI_ALL = 0, LVNI_FOCUSED = 1, LVNI_SELECTED = 2;
inline constexpr int LVSIL_NORMAL = 0, LVSIL_SMALL = 1;
inline constexpr int LVIR_BOUNDS = 0, LVIR_ICON = 1, LVIR_LABEL = 2;
inline constexpr int LVSCW_AUTOSIZE = -1, LVSCW_AUTOSIZE_USEHEADER = -2;
inline constexpr UINT LVN_FIRST = static_cast<UINT>(-100), LVN_ITEMCHANGED = LVN_FIRST - 1,
                      LVN_COLUMNCLICK = LVN_FIRST - 8, LVN_ITEMACTIVATE = LVN_FIRST - 14,
                      LVN_KEYDOWN = LVN_FIRST - 55, LVN_GETDISPINFO = LVN_FIRST - 77;
inline constexpr DWORD CDDS_PREPAINT = 1, CDDS_ITEM = 0x10000, CDDS_ITEMPREPAINT = 0x10001;
inline constexpr LRESULT CDRF_DODEFAULT = 0, CDRF_SKIPDEFAULT = 4, CDRF_NOTIFYITEMDRAW = 0x20;
inline constexpr UINT CDIS_SELECTED = 1, CDIS_FOCUS = 0x10;

inline constexpr LPWSTR LPSTR_TEXTCALLBACK = nullptr;

struct LVITEM {
    UINT mask;
    int iItem, iSubItem;
    UINT state, stateMask;
    LPWSTR pszText;
    int cchTextMax, iImage;
    LPARAM lParam;
};
struct LVCOLUMN {
    UINT mask;
    int fmt, cx;
    LPWSTR pszText;
    int cchTextMax, iSubItem;
};
struct NMLISTVIEW {
    NMHDR hdr;
    int iItem, iSubItem;
    UINT uNewState, uOldState, uChanged;
    POINT ptAction;
    LPARAM lParam;
};
using LPNMLISTVIEW = NMLISTVIEW*;
struct NMITEMACTIVATE {
    NMHDR hdr;
    int iItem, iSubItem;
    UINT uNewState, uOldState, uChanged;
    POINT ptAction;
    LPARAM lParam;
    UINT uKeyFlags;
};
using LPNMITEMACTIVATE = NMITEMACTIVATE*;
struct NMLVDISPINFO {
    NMHDR hdr;
    LVITEM item;
};
struct NMCUSTOMDRAW {
    NMHDR hdr;
    DWORD dwDrawStage;
    HDC hdc;
    RECT rc;
    DWORD_PTR dwItemSpec;
    UINT uItemState;
    LPARAM lItemlParam;
};
struct NMLVCUSTOMDRAW {
    NMCUSTOMDRAW nmcd;
    COLORREF clrText, clrTextBk;
    int iSubItem;
};
using LPNMLVCUSTOMDRAW = NMLVCUSTOMDRAW*;
struct NMLVKEYDOWN {
    NMHDR hdr;
    WORD wVKey;
    UINT flags;
};

// Pictures of one size.
class CImageList : public CObject {
public:
    BOOL Create(int width, int height, UINT flags, int initial, int grow);
    int Add(CBitmap* bitmap, COLORREF mask);
    int Add(HICON icon);
    int GetImageCount() const { return static_cast<int>(images_.size()); }
    CSize size() const { return size_; }
    HBITMAP image(int index) const;

private:
    CSize size_;
    std::vector<std::shared_ptr<CBitmap>> images_;
};
inline constexpr UINT ILC_COLOR = 0, ILC_MASK = 1, ILC_COLOR24 = 0x18, ILC_COLOR32 = 0x20;

class CHeaderCtrl : public CWnd {};

class CListCtrl : public CWnd {
public:
    BOOL Create(DWORD style, const RECT& rect, CWnd* parent, UINT id);
    DWORD SetExtendedStyle(DWORD style);
    DWORD GetExtendedStyle() const;

    int InsertColumn(int index, LPCTSTR heading, int format = LVCFMT_LEFT, int width = -1, int subItem = -1);
    int InsertColumn(int index, const LVCOLUMN* column);
    BOOL DeleteColumn(int index);
    int GetColumnWidth(int index) const;
    BOOL SetColumnWidth(int index, int width);
    int columnCount() const;

    int GetItemCount() const;
    void SetItemCount(int count); // of a list that asks for its items
    BOOL SetItemCountEx(int count, DWORD flags = 0);
    int InsertItem(int index, LPCTSTR text);
    int InsertItem(int index, LPCTSTR text, int image);
    int InsertItem(const LVITEM* item);
    BOOL DeleteItem(int index);
    BOOL DeleteAllItems();
    BOOL SetItem(const LVITEM* item);
    BOOL GetItem(LVITEM* item) const;
    BOOL SetItemText(int index, int subItem, LPCTSTR text);
    CString GetItemText(int index, int subItem) const;
    BOOL SetItemData(int index, DWORD_PTR data);
    DWORD_PTR GetItemData(int index) const;
    BOOL SetItemState(int index, UINT state, UINT mask); // -1: every item
    UINT GetItemState(int index, UINT mask) const;
    int GetNextItem(int after, int flags) const;
    POSITION GetFirstSelectedItemPosition() const;
    int GetNextSelectedItem(POSITION& position) const;
    UINT GetSelectedCount() const;
    int GetSelectionMark() const;
    int SetSelectionMark(int index);
    BOOL EnsureVisible(int index, BOOL partly);
    BOOL RedrawItems(int first, int last);
    BOOL Update(int index);
    BOOL GetItemRect(int index, LPRECT rect, UINT part) const;
    int HitTest(CPoint point, UINT* flags = nullptr) const;
    CImageList* SetImageList(CImageList* images, int kind);
    CSize SetIconSpacing(int width, int height);
    COLORREF GetBkColor() const;
    BOOL SetBkColor(COLORREF color);
    BOOL SetTextColor(COLORREF color);
    BOOL SetTextBkColor(COLORREF color);
};
