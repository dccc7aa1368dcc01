// Names of the Windows user interface: messages, styles, notification codes, identifiers, virtual keys and
// the structures that messages carry.
#pragma once

#include "host/win/types.h"

#include <cstdint>

struct MSG {
    HWND hwnd;
    UINT message;
    WPARAM wParam;
    LPARAM lParam;
    DWORD time; // milliseconds, as GetTickCount
    POINT pt;   // the cursor on the screen
};
using LPMSG = MSG*;
struct NMHDR {
    HWND hwndFrom;
    UINT_PTR idFrom;
    UINT code;
};
struct CREATESTRUCT {
    LPVOID lpCreateParams;
    HINSTANCE hInstance;
    HMENU hMenu;
    HWND hwndParent;
    int cy, cx, y, x;
    LONG style;
    LPCWSTR lpszName, lpszClass;
    DWORD dwExStyle;
};
using LPCREATESTRUCT = CREATESTRUCT*;
struct WNDCLASS {
    UINT style;
    void* lpfnWndProc;
    int cbClsExtra, cbWndExtra;
    HINSTANCE hInstance;
    HICON hIcon;
    HCURSOR hCursor;
    HBRUSH hbrBackground;
    LPCWSTR lpszMenuName, lpszClassName;
};
struct MINMAXINFO {
    POINT ptReserved, ptMaxSize, ptMaxPosition, ptMinTrackSize, ptMaxTrackSize;
};
struct WINDOWPOS {
    HWND hwnd, hwndInsertAfter;
    int x, y, cx, cy;
    UINT flags;
};
struct DRAWITEMSTRUCT {
    UINT CtlType, CtlID, itemID, itemAction, itemState;
    HWND hwndItem;
    HDC hDC;
    RECT rcItem;
    ULONG_PTR itemData;
};
using LPDRAWITEMSTRUCT = DRAWITEMSTRUCT*;
struct MEASUREITEMSTRUCT {
    UINT CtlType, CtlID, itemID, itemWidth, itemHeight;
    ULONG_PTR itemData;
};
using LPMEASUREITEMSTRUCT = MEASUREITEMSTRUCT*;
// Bytes from one program to another; scripts fill cells of tables with it.
struct COPYDATASTRUCT {
    ULONG_PTR dwData;
    DWORD cbData;
    LPVOID lpData;
};
struct NCCALCSIZE_PARAMS {
    RECT rgrc[3];
    WINDOWPOS* lppos;
};

inline constexpr UINT WM_NULL = 0x0000, WM_CREATE = 0x0001, WM_DESTROY = 0x0002, WM_MOVE = 0x0003,
                      WM_SIZE = 0x0005, WM_ACTIVATE = 0x0006, WM_SETFOCUS = 0x0007, WM_KILLFOCUS = 0x0008,
                      WM_ENABLE = 0x000A, WM_SETREDRAW = 0x000B, WM_SETTEXT = 0x000C, WM_GETTEXT = 0x000D,
                      WM_GETTEXTLENGTH = 0x000E, WM_PAINT = 0x000F, WM_CLOSE = 0x0010, WM_ERASEBKGND = 0x0014,
                      WM_SHOWWINDOW = 0x0018, WM_SETCURSOR = 0x0020, WM_MOUSEACTIVATE = 0x0021,
                      WM_GETMINMAXINFO = 0x0024, WM_NEXTDLGCTL = 0x0028, WM_DRAWITEM = 0x002B,
                      WM_MEASUREITEM = 0x002C, WM_SETFONT = 0x0030, WM_GETFONT = 0x0031,
                      WM_COMPAREITEM = 0x0039, WM_COPYDATA = 0x004A, WM_WINDOWPOSCHANGING = 0x0046,
                      WM_WINDOWPOSCHANGED = 0x0047, WM_NOTIFY = 0x004E, WM_HELP = 0x0053,
                      WM_CONTEXTMENU = 0x007B, WM_SETICON = 0x0080, WM_NCDESTROY = 0x0082,
                      WM_NCCALCSIZE = 0x0083, WM_NCHITTEST = 0x0084, WM_NCPAINT = 0x0085,
                      WM_NCACTIVATE = 0x0086, WM_GETDLGCODE = 0x0087, WM_NCMOUSEMOVE = 0x00A0,
                      WM_NCLBUTTONDOWN = 0x00A1, WM_NCLBUTTONUP = 0x00A2, WM_NCLBUTTONDBLCLK = 0x00A3,
                      WM_NCRBUTTONDOWN = 0x00A4, WM_NCRBUTTONUP = 0x00A5, WM_KEYDOWN = 0x0100,
                      WM_KEYUP = 0x0101, WM_CHAR = 0x0102, WM_SYSKEYDOWN = 0x0104, WM_SYSKEYUP = 0x0105,
                      WM_KEYFIRST = 0x0100, WM_KEYLAST = 0x0109, WM_INITDIALOG = 0x0110, WM_COMMAND = 0x0111,
                      WM_SYSCOMMAND = 0x0112, WM_TIMER = 0x0113, WM_HSCROLL = 0x0114, WM_VSCROLL = 0x0115,
                      WM_INITMENU = 0x0116, WM_INITMENUPOPUP = 0x0117, WM_CTLCOLOREDIT = 0x0133,
                      WM_CTLCOLORLISTBOX = 0x0134, WM_CTLCOLORBTN = 0x0135, WM_CTLCOLORDLG = 0x0136,
                      WM_CTLCOLORSTATIC = 0x0138, WM_MOUSEFIRST = 0x0200, WM_MOUSEMOVE = 0x0200,
                      WM_LBUTTONDOWN = 0x0201, WM_LBUTTONUP = 0x0202, WM_LBUTTONDBLCLK = 0x0203,
                      WM_RBUTTONDOWN = 0x0204, WM_RBUTTONUP = 0x0205, WM_RBUTTONDBLCLK = 0x0206,
                      WM_MBUTTONDOWN = 0x0207, WM_MBUTTONUP = 0x0208, WM_MOUSEWHEEL = 0x020A,
                      WM_MOUSELAST = 0x020E, WM_MOUSELEAVE = 0x02A3, WM_CUT = 0x0300, WM_COPY = 0x0301,
                      WM_PASTE = 0x0302, WM_CLEAR = 0x0303, WM_UNDO = 0x0304, WM_USER = 0x0400,
                      WM_APP = 0x8000;

inline constexpr DWORD WS_POPUP = 0x80000000, WS_CHILD = 0x40000000, WS_MINIMIZE = 0x20000000,
                       WS_VISIBLE = 0x10000000, WS_DISABLED = 0x08000000, WS_CLIPSIBLINGS = 0x04000000,
                       WS_CLIPCHILDREN = 0x02000000, WS_MAXIMIZE = 0x01000000, WS_CAPTION = 0x00C00000,
                       WS_BORDER = 0x00800000, WS_DLGFRAME = 0x00400000, WS_VSCROLL = 0x00200000,
                       WS_HSCROLL = 0x00100000, WS_SYSMENU = 0x00080000, WS_THICKFRAME = 0x00040000,
                       WS_GROUP = 0x00020000, WS_TABSTOP = 0x00010000, WS_MINIMIZEBOX = 0x00020000,
                       WS_MAXIMIZEBOX = 0x00010000;
inline constexpr DWORD WS_EX_TOPMOST = 0x00000008, WS_EX_TOOLWINDOW = 0x00000080,
                       WS_EX_CLIENTEDGE = 0x00000200, WS_EX_CONTROLPARENT = 0x00010000,
                       WS_EX_NOACTIVATE = 0x08000000;
inline constexpr DWORD DS_SETFONT = 0x40, DS_MODALFRAME = 0x80, DS_CONTROL = 0x400, DS_CENTER = 0x800,
                       DS_SHELLFONT = 0x48;
inline constexpr UINT CS_VREDRAW = 0x0001, CS_HREDRAW = 0x0002, CS_DBLCLKS = 0x0008, CS_SAVEBITS = 0x0800;

inline constexpr DWORD ES_LEFT = 0, ES_CENTER = 1, ES_RIGHT = 2, ES_MULTILINE = 4, ES_UPPERCASE = 8,
                       ES_LOWERCASE = 16, ES_PASSWORD = 32, ES_AUTOVSCROLL = 64, ES_AUTOHSCROLL = 128,
                       ES_NOHIDESEL = 256, ES_READONLY = 0x800, ES_WANTRETURN = 0x1000, ES_NUMBER = 0x2000;
inline constexpr DWORD BS_PUSHBUTTON = 0, BS_DEFPUSHBUTTON = 1, BS_CHECKBOX = 2, BS_AUTOCHECKBOX = 3,
                       BS_RADIOBUTTON = 4, BS_3STATE = 5, BS_AUTO3STATE = 6, BS_GROUPBOX = 7,
                       BS_AUTORADIOBUTTON = 9, BS_OWNERDRAW = 11, BS_TYPEMASK = 15, BS_ICON = 0x40,
                       BS_BITMAP = 0x80;
inline constexpr DWORD SS_LEFT = 0, SS_CENTER = 1, SS_RIGHT = 2, SS_ICON = 3, SS_BLACKFRAME = 7,
                       SS_GRAYFRAME = 8, SS_SIMPLE = 11, SS_LEFTNOWORDWRAP = 12, SS_OWNERDRAW = 13,
                       SS_BITMAP = 14, SS_ETCHEDHORZ = 16, SS_ETCHEDVERT = 17, SS_ETCHEDFRAME = 18,
                       SS_TYPEMASK = 31, SS_NOPREFIX = 0x80, SS_NOTIFY = 0x100, SS_CENTERIMAGE = 0x200,
                       SS_SUNKEN = 0x1000;
inline constexpr DWORD CBS_SIMPLE = 1, CBS_DROPDOWN = 2, CBS_DROPDOWNLIST = 3, CBS_AUTOHSCROLL = 0x40,
                       CBS_SORT = 0x100, CBS_HASSTRINGS = 0x200;
inline constexpr DWORD LBS_NOTIFY = 1, LBS_SORT = 2, LBS_MULTIPLESEL = 8, LBS_HASSTRINGS = 0x40,
                       LBS_NOINTEGRALHEIGHT = 0x100, LBS_EXTENDEDSEL = 0x800;
inline constexpr DWORD UDS_WRAP = 1, UDS_SETBUDDYINT = 2, UDS_ALIGNRIGHT = 4, UDS_ALIGNLEFT = 8,
                       UDS_AUTOBUDDY = 16, UDS_ARROWKEYS = 32;

inline constexpr UINT BN_CLICKED = 0, BN_DOUBLECLICKED = 5, BN_SETFOCUS = 6, BN_KILLFOCUS = 7;
inline constexpr UINT EN_SETFOCUS = 0x100, EN_KILLFOCUS = 0x200, EN_CHANGE = 0x300, EN_UPDATE = 0x400;
inline constexpr UINT CBN_SELCHANGE = 1, CBN_DBLCLK = 2, CBN_SETFOCUS = 3, CBN_KILLFOCUS = 4,
                      CBN_EDITCHANGE = 5, CBN_EDITUPDATE = 6, CBN_DROPDOWN = 7, CBN_CLOSEUP = 8,
                      CBN_SELENDOK = 9, CBN_SELENDCANCEL = 10;
inline constexpr UINT LBN_SELCHANGE = 1, LBN_DBLCLK = 2, LBN_SELCANCEL = 3, LBN_SETFOCUS = 4,
                      LBN_KILLFOCUS = 5;
inline constexpr UINT STN_CLICKED = 0, STN_DBLCLK = 1;
inline constexpr UINT NM_CLICK = static_cast<UINT>(-2), NM_DBLCLK = static_cast<UINT>(-3),
                      NM_RETURN = static_cast<UINT>(-4), NM_RCLICK = static_cast<UINT>(-5),
                      NM_SETFOCUS = static_cast<UINT>(-7), NM_KILLFOCUS = static_cast<UINT>(-8),
                      NM_CUSTOMDRAW = static_cast<UINT>(-12);

inline constexpr UINT BM_GETCHECK = 0xF0, BM_SETCHECK = 0xF1, BM_CLICK = 0xF5, EM_GETSEL = 0xB0,
                      EM_SETSEL = 0xB1, EM_LIMITTEXT = 0xC5, EM_SETREADONLY = 0xCF, CB_GETCURSEL = 0x147,
                      CB_SETCURSEL = 0x14E, CB_GETCOUNT = 0x146, LB_GETCURSEL = 0x188, LB_SETCURSEL = 0x186;
// Of menu items. MF_GRAYED and MF_DISABLED both make an item that can't be chosen.
inline constexpr UINT MF_BYCOMMAND = 0, MF_BYPOSITION = 0x400, MF_STRING = 0, MF_BITMAP = 4, MF_POPUP = 0x10,
                      MF_MENUBARBREAK = 0x20, MF_MENUBREAK = 0x40, MF_OWNERDRAW = 0x100, MF_SEPARATOR = 0x800,
                      MF_ENABLED = 0, MF_GRAYED = 1, MF_DISABLED = 2, MF_UNCHECKED = 0, MF_CHECKED = 8,
                      MF_END = 0x80, MF_DEFAULT = 0x1000;
inline constexpr UINT MFT_STRING = MF_STRING, MFT_SEPARATOR = MF_SEPARATOR, MFT_RADIOCHECK = 0x200,
                      MFS_ENABLED = MF_ENABLED, MFS_GRAYED = MF_GRAYED | MF_DISABLED,
                      MFS_DISABLED = MFS_GRAYED, MFS_UNCHECKED = MF_UNCHECKED, MFS_CHECKED = MF_CHECKED,
                      MFS_DEFAULT = MF_DEFAULT;
inline constexpr UINT TPM_LEFTBUTTON = 0, TPM_RIGHTBUTTON = 2, TPM_LEFTALIGN = 0, TPM_CENTERALIGN = 4,
                      TPM_RIGHTALIGN = 8, TPM_TOPALIGN = 0, TPM_VCENTERALIGN = 0x10, TPM_BOTTOMALIGN = 0x20,
                      TPM_HORIZONTAL = 0, TPM_VERTICAL = 0x40, TPM_NONOTIFY = 0x80, TPM_RETURNCMD = 0x100,
                      TPM_RECURSE = 1;
inline constexpr int BST_UNCHECKED = 0, BST_CHECKED = 1, BST_INDETERMINATE = 2;
inline constexpr int CB_ERR = -1, CB_ERRSPACE = -2, LB_ERR = -1, LB_ERRSPACE = -2;

inline constexpr int IDOK = 1, IDCANCEL = 2, IDABORT = 3, IDRETRY = 4, IDIGNORE = 5, IDYES = 6, IDNO = 7,
                     IDCLOSE = 8, IDHELP = 9;
inline constexpr UINT IDC_STATIC = 0xFFFF;
inline constexpr UINT MB_OK = 0, MB_OKCANCEL = 1, MB_ABORTRETRYIGNORE = 2, MB_YESNOCANCEL = 3, MB_YESNO = 4,
                      MB_RETRYCANCEL = 5, MB_TYPEMASK = 0x0F, MB_ICONHAND = 0x10, MB_ICONSTOP = 0x10,
                      MB_ICONERROR = 0x10, MB_ICONQUESTION = 0x20, MB_ICONEXCLAMATION = 0x30,
                      MB_ICONWARNING = 0x30, MB_ICONASTERISK = 0x40, MB_ICONINFORMATION = 0x40,
                      MB_ICONMASK = 0xF0, MB_DEFBUTTON1 = 0, MB_DEFBUTTON2 = 0x100, MB_DEFBUTTON3 = 0x200,
                      MB_DEFMASK = 0xF00;

inline constexpr int SW_HIDE = 0, SW_SHOWNORMAL = 1, SW_NORMAL = 1, SW_SHOWMINIMIZED = 2,
                     SW_SHOWMAXIMIZED = 3, SW_SHOWNOACTIVATE = 4, SW_SHOW = 5, SW_SHOWNA = 8, SW_RESTORE = 9;
inline constexpr UINT SWP_NOSIZE = 1, SWP_NOMOVE = 2, SWP_NOZORDER = 4, SWP_NOREDRAW = 8, SWP_NOACTIVATE = 16,
                      SWP_FRAMECHANGED = 32, SWP_SHOWWINDOW = 64, SWP_HIDEWINDOW = 128;
inline constexpr UINT RDW_INVALIDATE = 1, RDW_ERASE = 4, RDW_ALLCHILDREN = 0x80, RDW_UPDATENOW = 0x100,
                      RDW_FRAME = 0x400;
inline constexpr UINT GW_HWNDFIRST = 0, GW_HWNDLAST = 1, GW_HWNDNEXT = 2, GW_HWNDPREV = 3, GW_OWNER = 4,
                      GW_CHILD = 5;
inline constexpr UINT SIZE_RESTORED = 0, SIZE_MINIMIZED = 1, SIZE_MAXIMIZED = 2;
inline constexpr UINT WA_INACTIVE = 0, WA_ACTIVE = 1, WA_CLICKACTIVE = 2;
inline constexpr UINT MK_LBUTTON = 1, MK_RBUTTON = 2, MK_SHIFT = 4, MK_CONTROL = 8, MK_MBUTTON = 16;
inline constexpr int HTNOWHERE = 0, HTCLIENT = 1, HTCAPTION = 2, HTSYSMENU = 3, HTBORDER = 18, HTCLOSE = 20;
inline constexpr UINT SC_CLOSE = 0xF060, SC_MOUSEMENU = 0xF090, SC_KEYMENU = 0xF100, SC_RESTORE = 0xF120,
                      SC_DEFAULT = 0xF160;
inline constexpr UINT SB_LINEUP = 0, SB_LINEDOWN = 1, SB_PAGEUP = 2, SB_PAGEDOWN = 3, SB_THUMBPOSITION = 4,
                      SB_THUMBTRACK = 5, SB_TOP = 6, SB_BOTTOM = 7, SB_ENDSCROLL = 8;
inline constexpr int SB_HORZ = 0, SB_VERT = 1;
inline constexpr UINT SIF_RANGE = 1, SIF_PAGE = 2, SIF_POS = 4, SIF_DISABLENOSCROLL = 8, SIF_TRACKPOS = 16,
                      SIF_ALL = 23;
struct SCROLLINFO {
    UINT cbSize, fMask;
    int nMin, nMax;
    UINT nPage;
    int nPos, nTrackPos;
};
inline constexpr UINT DLGC_WANTARROWS = 1, DLGC_WANTTAB = 2, DLGC_WANTALLKEYS = 4, DLGC_WANTCHARS = 0x80;
inline constexpr UINT ODS_SELECTED = 1, ODS_GRAYED = 2, ODS_DISABLED = 4, ODS_CHECKED = 8, ODS_FOCUS = 16;
inline constexpr UINT ODT_LISTBOX = 2, ODT_COMBOBOX = 3, ODT_BUTTON = 4, ODT_STATIC = 5;

inline constexpr int COLOR_SCROLLBAR = 0, COLOR_WINDOW = 5, COLOR_WINDOWFRAME = 6, COLOR_WINDOWTEXT = 8,
                     COLOR_HIGHLIGHT = 13, COLOR_HIGHLIGHTTEXT = 14, COLOR_BTNFACE = 15, COLOR_3DFACE = 15,
                     COLOR_BTNSHADOW = 16, COLOR_3DSHADOW = 16, COLOR_GRAYTEXT = 17, COLOR_BTNTEXT = 18,
                     COLOR_BTNHIGHLIGHT = 20, COLOR_3DHILIGHT = 20, COLOR_3DDKSHADOW = 21, COLOR_3DLIGHT = 22,
                     COLOR_INFOTEXT = 23, COLOR_INFOBK = 24;
inline constexpr int SM_CXSCREEN = 0, SM_CYSCREEN = 1, SM_CXVSCROLL = 2, SM_CYHSCROLL = 3, SM_CYCAPTION = 4,
                     SM_CXBORDER = 5, SM_CYBORDER = 6, SM_CXICON = 11, SM_CYICON = 12, SM_CXCURSOR = 13,
                     SM_CYCURSOR = 14, SM_CXEDGE = 45, SM_CYEDGE = 46, SM_CXSMICON = 49, SM_CYSMICON = 50,
                     SM_CYSMCAPTION = 51, SM_CXMENUCHECK = 71, SM_CYMENUCHECK = 72;
inline constexpr UINT ICON_SMALL = 0, ICON_BIG = 1;
inline constexpr UINT IMAGE_BITMAP = 0, IMAGE_ICON = 1, IMAGE_CURSOR = 2;

inline constexpr UINT VK_BACK = 0x08, VK_TAB = 0x09, VK_RETURN = 0x0D, VK_SHIFT = 0x10, VK_CONTROL = 0x11,
                      VK_MENU = 0x12, VK_ESCAPE = 0x1B, VK_SPACE = 0x20, VK_PRIOR = 0x21, VK_NEXT = 0x22,
                      VK_END = 0x23, VK_HOME = 0x24, VK_LEFT = 0x25, VK_UP = 0x26, VK_RIGHT = 0x27,
                      VK_DOWN = 0x28, VK_INSERT = 0x2D, VK_DELETE = 0x2E, VK_F1 = 0x70, VK_F2 = 0x71,
                      VK_F3 = 0x72, VK_F4 = 0x73, VK_F5 = 0x74, VK_F6 = 0x75, VK_F7 = 0x76, VK_F8 = 0x77,
                      VK_F9 = 0x78, VK_F10 = 0x79, VK_F11 = 0x7A, VK_F12 = 0x7B;

inline LPCWSTR const IDC_ARROW = MAKEINTRESOURCEW(32512), IDC_IBEAM = MAKEINTRESOURCEW(32513),
                     IDC_WAIT = MAKEINTRESOURCEW(32514), IDC_CROSS = MAKEINTRESOURCEW(32515),
                     IDC_UPARROW = MAKEINTRESOURCEW(32516), IDC_SIZEALL = MAKEINTRESOURCEW(32646),
                     IDC_HAND = MAKEINTRESOURCEW(32649);

constexpr WPARAM MAKEWPARAM(unsigned low, unsigned high) {
    return static_cast<DWORD>(MAKELONG(low, high));
}
constexpr int GET_X_LPARAM(LPARAM value) {
    return static_cast<SHORT>(value & 0xFFFF);
}
constexpr int GET_Y_LPARAM(LPARAM value) {
    return static_cast<SHORT>((value >> 16) & 0xFFFF);
}
