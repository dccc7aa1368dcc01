// Message maps: tables that lead from messages, commands and notifications to member functions.
#pragma once

#include "host/win/winuser.h"

#include <cstddef>
#include <type_traits>

class CCmdTarget;
class CWnd;
class CDC;
class CPoint;
class CCmdUI;
class CMenu;

namespace host {

// A message on its way to a handler. A notification's result and whether it was dealt with are set by the
// entry.
struct MessageCall {
    UINT message = 0;
    WPARAM wParam = 0;
    LPARAM lParam = 0;
    UINT id = 0;
    LRESULT result = 0;
    bool handled = true;
};

// CWnd objects for handles in messages; null for null.
CWnd* windowOf(HWND window);
CWnd* windowOf(WPARAM window);
CDC* contextOf(WPARAM context);
CMenu* menuOf(WPARAM menu);

} // namespace host

struct AFX_MSGMAP_ENTRY {
    UINT nMessage; // 0 in the last entry
    UINT nCode;    // of a command or notification
    UINT nID, nLastID;
    void (*pfn)(CCmdTarget& target, host::MessageCall& call);
};
struct AFX_MSGMAP {
    const AFX_MSGMAP* (*pfnGetBaseMap)();
    const AFX_MSGMAP_ENTRY* lpEntries;
};

// Messages that a control gets back from its parent.
inline constexpr UINT WM_REFLECT_BASE = 0xBC00;

#define DECLARE_MESSAGE_MAP()                                                                                \
protected:                                                                                                   \
    static const AFX_MSGMAP* GetThisMessageMap();                                                            \
    const AFX_MSGMAP* GetMessageMap() const override;

#define BEGIN_MESSAGE_MAP(theClass, baseClass)                                                               \
    const AFX_MSGMAP* theClass::GetMessageMap() const {                                                      \
        return GetThisMessageMap();                                                                          \
    }                                                                                                        \
    const AFX_MSGMAP* theClass::GetThisMessageMap() {                                                        \
        using ThisClass [[maybe_unused]] = theClass;                                                         \
        using TheBaseClass = baseClass;                                                                      \
        static const AFX_MSGMAP_ENTRY entries[] = {
#define END_MESSAGE_MAP()                                                                                    \
    { 0, 0, 0, 0, nullptr }                                                                                  \
    }                                                                                                        \
    ;                                                                                                        \
    static const AFX_MSGMAP map = {[]() -> const AFX_MSGMAP* { return TheBaseClass::GetThisMessageMap(); },  \
                                   entries};                                                                 \
    return &map;                                                                                             \
    }

// An entry whose body sees the object as `self` and the message as `call`.
#define HOST_MESSAGE_ENTRY(message, code, id, lastId, ...)                                                   \
    {static_cast<UINT>(message), static_cast<UINT>(code), static_cast<UINT>(id), static_cast<UINT>(lastId),  \
     [](CCmdTarget& target, [[maybe_unused]] host::MessageCall& call) {                                      \
         auto& self = static_cast<ThisClass&>(target);                                                       \
         __VA_ARGS__;                                                                                        \
     }},
#define HOST_WINDOW_ENTRY(message, ...) HOST_MESSAGE_ENTRY(message, 0, 0, 0, __VA_ARGS__)

#define ON_MESSAGE(message, memberFxn)                                                                       \
    HOST_WINDOW_ENTRY(message, call.result = (self.*(memberFxn))(call.wParam, call.lParam))
#define ON_COMMAND(id, memberFxn) HOST_MESSAGE_ENTRY(WM_COMMAND, 0, id, id, (self.*(memberFxn))())
#define ON_COMMAND_RANGE(firstId, lastId, memberFxn)                                                         \
    HOST_MESSAGE_ENTRY(WM_COMMAND, 0, firstId, lastId, (self.*(memberFxn))(call.id))
#define ON_CONTROL(code, id, memberFxn) HOST_MESSAGE_ENTRY(WM_COMMAND, code, id, id, (self.*(memberFxn))())
#define ON_CONTROL_RANGE(code, firstId, lastId, memberFxn)                                                   \
    HOST_MESSAGE_ENTRY(WM_COMMAND, code, firstId, lastId, (self.*(memberFxn))(call.id))
#define ON_CONTROL_REFLECT(code, memberFxn)                                                                  \
    HOST_MESSAGE_ENTRY(WM_REFLECT_BASE + WM_COMMAND, code, 0, 0, (self.*(memberFxn))())
#define ON_NOTIFY(code, id, memberFxn)                                                                       \
    HOST_MESSAGE_ENTRY(WM_NOTIFY, code, id, id,                                                              \
                       (self.*(memberFxn))(reinterpret_cast<NMHDR*>(call.lParam), &call.result))
#define ON_NOTIFY_RANGE(code, firstId, lastId, memberFxn)                                                    \
    HOST_MESSAGE_ENTRY(WM_NOTIFY, code, firstId, lastId,                                                     \
                       (self.*(memberFxn))(call.id, reinterpret_cast<NMHDR*>(call.lParam), &call.result))
#define ON_NOTIFY_REFLECT(code, memberFxn)                                                                   \
    HOST_MESSAGE_ENTRY(WM_REFLECT_BASE + WM_NOTIFY, code, 0, 0,                                              \
                       (self.*(memberFxn))(reinterpret_cast<NMHDR*>(call.lParam), &call.result))

#define ON_BN_CLICKED(id, memberFxn) ON_CONTROL(BN_CLICKED, id, memberFxn)
#define ON_BN_DOUBLECLICKED(id, memberFxn) ON_CONTROL(BN_DOUBLECLICKED, id, memberFxn)
#define ON_EN_CHANGE(id, memberFxn) ON_CONTROL(EN_CHANGE, id, memberFxn)
#define ON_EN_UPDATE(id, memberFxn) ON_CONTROL(EN_UPDATE, id, memberFxn)
#define ON_EN_SETFOCUS(id, memberFxn) ON_CONTROL(EN_SETFOCUS, id, memberFxn)
#define ON_EN_KILLFOCUS(id, memberFxn) ON_CONTROL(EN_KILLFOCUS, id, memberFxn)
#define ON_CBN_SELCHANGE(id, memberFxn) ON_CONTROL(CBN_SELCHANGE, id, memberFxn)
#define ON_CBN_EDITCHANGE(id, memberFxn) ON_CONTROL(CBN_EDITCHANGE, id, memberFxn)
#define ON_CBN_DROPDOWN(id, memberFxn) ON_CONTROL(CBN_DROPDOWN, id, memberFxn)
#define ON_CBN_CLOSEUP(id, memberFxn) ON_CONTROL(CBN_CLOSEUP, id, memberFxn)
#define ON_CBN_SELENDOK(id, memberFxn) ON_CONTROL(CBN_SELENDOK, id, memberFxn)
#define ON_CBN_SETFOCUS(id, memberFxn) ON_CONTROL(CBN_SETFOCUS, id, memberFxn)
#define ON_CBN_KILLFOCUS(id, memberFxn) ON_CONTROL(CBN_KILLFOCUS, id, memberFxn)
#define ON_LBN_SELCHANGE(id, memberFxn) ON_CONTROL(LBN_SELCHANGE, id, memberFxn)
#define ON_LBN_DBLCLK(id, memberFxn) ON_CONTROL(LBN_DBLCLK, id, memberFxn)
#define ON_STN_CLICKED(id, memberFxn) ON_CONTROL(STN_CLICKED, id, memberFxn)

#define ON_WM_CREATE()                                                                                       \
    HOST_WINDOW_ENTRY(WM_CREATE, call.result = self.OnCreate(reinterpret_cast<LPCREATESTRUCT>(call.lParam)))
#define ON_WM_DESTROY() HOST_WINDOW_ENTRY(WM_DESTROY, self.OnDestroy())
#define ON_WM_NCDESTROY() HOST_WINDOW_ENTRY(WM_NCDESTROY, self.OnNcDestroy())
#define ON_WM_CLOSE() HOST_WINDOW_ENTRY(WM_CLOSE, self.OnClose())
#define ON_WM_PAINT() HOST_WINDOW_ENTRY(WM_PAINT, self.OnPaint())
#define ON_WM_ERASEBKGND()                                                                                   \
    HOST_WINDOW_ENTRY(WM_ERASEBKGND, call.result = self.OnEraseBkgnd(host::contextOf(call.wParam)))
#define ON_WM_SIZE()                                                                                         \
    HOST_WINDOW_ENTRY(WM_SIZE,                                                                               \
                      self.OnSize(static_cast<UINT>(call.wParam), LOWORD(call.lParam), HIWORD(call.lParam)))
#define ON_WM_MOVE()                                                                                         \
    HOST_WINDOW_ENTRY(WM_MOVE, self.OnMove(GET_X_LPARAM(call.lParam), GET_Y_LPARAM(call.lParam)))
#define ON_WM_SHOWWINDOW()                                                                                   \
    HOST_WINDOW_ENTRY(WM_SHOWWINDOW,                                                                         \
                      self.OnShowWindow(static_cast<BOOL>(call.wParam), static_cast<UINT>(call.lParam)))
#define ON_WM_ENABLE() HOST_WINDOW_ENTRY(WM_ENABLE, self.OnEnable(static_cast<BOOL>(call.wParam)))
#define ON_WM_TIMER() HOST_WINDOW_ENTRY(WM_TIMER, self.OnTimer(static_cast<UINT_PTR>(call.wParam)))
#define ON_WM_SETFOCUS() HOST_WINDOW_ENTRY(WM_SETFOCUS, self.OnSetFocus(host::windowOf(call.wParam)))
#define ON_WM_KILLFOCUS() HOST_WINDOW_ENTRY(WM_KILLFOCUS, self.OnKillFocus(host::windowOf(call.wParam)))
#define ON_WM_ACTIVATE()                                                                                     \
    HOST_WINDOW_ENTRY(WM_ACTIVATE,                                                                           \
                      self.OnActivate(LOWORD(call.wParam), host::windowOf(static_cast<WPARAM>(call.lParam)), \
                                      HIWORD(call.wParam)))
#define HOST_KEY_ENTRY(message, handler)                                                                     \
    HOST_WINDOW_ENTRY(                                                                                       \
        message, self.handler(static_cast<UINT>(call.wParam), LOWORD(call.lParam), HIWORD(call.lParam)))
#define ON_WM_KEYDOWN() HOST_KEY_ENTRY(WM_KEYDOWN, OnKeyDown)
#define ON_WM_KEYUP() HOST_KEY_ENTRY(WM_KEYUP, OnKeyUp)
#define ON_WM_CHAR() HOST_KEY_ENTRY(WM_CHAR, OnChar)
#define ON_WM_GETDLGCODE() HOST_WINDOW_ENTRY(WM_GETDLGCODE, call.result = self.OnGetDlgCode())
#define HOST_MOUSE_ENTRY(message, handler)                                                                   \
    HOST_WINDOW_ENTRY(message, self.handler(static_cast<UINT>(call.wParam), CPoint(call.lParam)))
#define ON_WM_MOUSEMOVE() HOST_MOUSE_ENTRY(WM_MOUSEMOVE, OnMouseMove)
#define ON_WM_LBUTTONDOWN() HOST_MOUSE_ENTRY(WM_LBUTTONDOWN, OnLButtonDown)
#define ON_WM_LBUTTONUP() HOST_MOUSE_ENTRY(WM_LBUTTONUP, OnLButtonUp)
#define ON_WM_LBUTTONDBLCLK() HOST_MOUSE_ENTRY(WM_LBUTTONDBLCLK, OnLButtonDblClk)
#define ON_WM_RBUTTONDOWN() HOST_MOUSE_ENTRY(WM_RBUTTONDOWN, OnRButtonDown)
#define ON_WM_RBUTTONUP() HOST_MOUSE_ENTRY(WM_RBUTTONUP, OnRButtonUp)
#define ON_WM_NCMOUSEMOVE() HOST_MOUSE_ENTRY(WM_NCMOUSEMOVE, OnNcMouseMove)
#define ON_WM_NCLBUTTONDOWN() HOST_MOUSE_ENTRY(WM_NCLBUTTONDOWN, OnNcLButtonDown)
#define ON_WM_NCLBUTTONUP() HOST_MOUSE_ENTRY(WM_NCLBUTTONUP, OnNcLButtonUp)
#define ON_WM_NCLBUTTONDBLCLK() HOST_MOUSE_ENTRY(WM_NCLBUTTONDBLCLK, OnNcLButtonDblClk)
#define ON_WM_MOUSEWHEEL()                                                                                   \
    HOST_WINDOW_ENTRY(WM_MOUSEWHEEL, call.result = self.OnMouseWheel(                                        \
                                         LOWORD(call.wParam), static_cast<SHORT>(HIWORD(call.wParam)),       \
                                         CPoint(call.lParam)))
#define ON_WM_NCHITTEST() HOST_WINDOW_ENTRY(WM_NCHITTEST, call.result = self.OnNcHitTest(CPoint(call.lParam)))
#define ON_WM_NCPAINT() HOST_WINDOW_ENTRY(WM_NCPAINT, self.OnNcPaint())
#define ON_WM_SETCURSOR()                                                                                    \
    HOST_WINDOW_ENTRY(WM_SETCURSOR,                                                                          \
                      call.result = self.OnSetCursor(host::windowOf(call.wParam), LOWORD(call.lParam),       \
                                                     HIWORD(call.lParam)))
#define ON_WM_SYSCOMMAND()                                                                                   \
    HOST_WINDOW_ENTRY(WM_SYSCOMMAND, self.OnSysCommand(static_cast<UINT>(call.wParam), call.lParam))
#define ON_WM_GETMINMAXINFO()                                                                                \
    HOST_WINDOW_ENTRY(WM_GETMINMAXINFO, self.OnGetMinMaxInfo(reinterpret_cast<MINMAXINFO*>(call.lParam)))
#define HOST_SCROLL_ENTRY(message, handler)                                                                  \
    HOST_WINDOW_ENTRY(message, self.handler(LOWORD(call.wParam), static_cast<SHORT>(HIWORD(call.wParam)),    \
                                            host::scrollBarOf(call.lParam)))
#define ON_WM_HSCROLL() HOST_SCROLL_ENTRY(WM_HSCROLL, OnHScroll)
#define ON_WM_VSCROLL() HOST_SCROLL_ENTRY(WM_VSCROLL, OnVScroll)
#define ON_WM_COPYDATA()                                                                                     \
    HOST_WINDOW_ENTRY(WM_COPYDATA,                                                                           \
                      call.result = self.OnCopyData(host::windowOf(call.wParam),                             \
                                                    reinterpret_cast<COPYDATASTRUCT*>(call.lParam)))
// The place is that on the screen; -1,-1 when the menu was asked for by the keyboard.
#define ON_WM_CONTEXTMENU()                                                                                  \
    HOST_WINDOW_ENTRY(WM_CONTEXTMENU, self.OnContextMenu(host::windowOf(call.wParam), CPoint(call.lParam)))
#define ON_WM_INITMENU() HOST_WINDOW_ENTRY(WM_INITMENU, self.OnInitMenu(host::menuOf(call.wParam)))
#define ON_WM_INITMENUPOPUP()                                                                                \
    HOST_WINDOW_ENTRY(WM_INITMENUPOPUP, self.OnInitMenuPopup(host::menuOf(call.wParam), LOWORD(call.lParam), \
                                                             static_cast<BOOL>(HIWORD(call.lParam))))
#define ON_WM_DRAWITEM()                                                                                     \
    HOST_WINDOW_ENTRY(WM_DRAWITEM, self.OnDrawItem(static_cast<int>(call.wParam),                            \
                                                   reinterpret_cast<LPDRAWITEMSTRUCT>(call.lParam)))
// The kind of control stands in the message.
#define ON_WM_CTLCOLOR()                                                                                     \
    HOST_WINDOW_ENTRY(WM_CTLCOLORSTATIC,                                                                     \
                      call.result = reinterpret_cast<LRESULT>(self.OnCtlColor(                               \
                          host::contextOf(call.wParam), host::windowOf(static_cast<WPARAM>(call.lParam)),    \
                          call.message - WM_CTLCOLOREDIT + CTLCOLOR_EDIT)))
// Of a control, whose parent passes the question on.
#define ON_WM_CTLCOLOR_REFLECT()                                                                             \
    HOST_WINDOW_ENTRY(WM_REFLECT_BASE + WM_CTLCOLORSTATIC,                                                   \
                      call.result = reinterpret_cast<LRESULT>(self.CtlColor(                                 \
                          host::contextOf(call.wParam), call.message - WM_CTLCOLOREDIT + CTLCOLOR_EDIT)))
inline constexpr UINT CTLCOLOR_MSGBOX = 0, CTLCOLOR_EDIT = 1, CTLCOLOR_LISTBOX = 2, CTLCOLOR_BTN = 3,
                      CTLCOLOR_DLG = 4, CTLCOLOR_SCROLLBAR = 5, CTLCOLOR_STATIC = 6;

class CScrollBar;
namespace host {
CScrollBar* scrollBarOf(LPARAM window);
} // namespace host
