// CWnd: a window of the other platform over a widget. Messages come through WindowProc to the message map; a
// method on a window that is not there does nothing and gives 0.
#pragma once

#include "host/mfc/cstring.h"
#include "host/mfc/gdi.h"
#include "host/mfc/geometry.h"
#include "host/mfc/object.h"

class CDataExchange;
class CScrollBar;
class CMenu;

class CWnd : public CCmdTarget {
public:
    CWnd();
    // Destroys the window without telling the class.
    ~CWnd() override;

    HWND m_hWnd = nullptr;

    HWND GetSafeHwnd() const { return m_hWnd; }
    operator HWND() const { return m_hWnd; }
    // The object of a window; a temporary one when it has none, which lives as long as the window.
    static CWnd* FromHandle(HWND window);
    static CWnd* FromHandlePermanent(HWND window);
    BOOL Attach(HWND window);
    HWND Detach();
    BOOL SubclassWindow(HWND window);
    BOOL SubclassDlgItem(UINT id, CWnd* parent);
    HWND UnsubclassWindow();
    virtual void PreSubclassWindow() {}
    virtual BOOL PreCreateWindow(CREATESTRUCT&) { return TRUE; }

    virtual BOOL Create(LPCTSTR className, LPCTSTR title, DWORD style, const RECT& rect, CWnd* parent,
                        UINT id);
    BOOL CreateEx(DWORD exStyle, LPCTSTR className, LPCTSTR title, DWORD style, int x, int y, int width,
                  int height, HWND parent, HMENU id, LPVOID parameter = nullptr);
    BOOL CreateEx(DWORD exStyle, LPCTSTR className, LPCTSTR title, DWORD style, const RECT& rect,
                  CWnd* parent, UINT id);
    virtual BOOL DestroyWindow();

    LRESULT SendMessage(UINT message, WPARAM wParam = 0, LPARAM lParam = 0) const;
    BOOL PostMessage(UINT message, WPARAM wParam = 0, LPARAM lParam = 0);
    LRESULT SendDlgItemMessage(int id, UINT message, WPARAM wParam = 0, LPARAM lParam = 0) const;

    void SetWindowText(LPCTSTR text);
    void GetWindowText(CString& text) const;
    int GetWindowText(LPTSTR text, int size) const;
    int GetWindowTextLength() const;
    void SetFont(CFont* font, BOOL redraw = TRUE);
    CFont* GetFont() const;
    HICON SetIcon(HICON icon, BOOL big);
    HICON GetIcon(BOOL big) const;

    DWORD GetStyle() const;
    DWORD GetExStyle() const;
    BOOL ModifyStyle(DWORD remove, DWORD add, UINT flags = 0);
    BOOL ModifyStyleEx(DWORD remove, DWORD add, UINT flags = 0);
    BOOL EnableWindow(BOOL enable = TRUE); // TRUE when it was disabled
    BOOL IsWindowEnabled() const;
    BOOL ShowWindow(int command); // TRUE when it was visible
    BOOL IsWindowVisible() const;
    CWnd* SetFocus(); // the one that had it
    static CWnd* GetFocus();
    CWnd* SetActiveWindow();
    void SetForegroundWindow() { SetActiveWindow(); }
    void BringWindowToTop();
    CWnd* SetCapture();
    static CWnd* GetCapture();

    CWnd* GetParent() const;
    CWnd* GetOwner() const { return GetParent(); }
    CWnd* GetTopLevelParent() const;
    CWnd* SetParent(CWnd* parent);
    CWnd* GetDlgItem(int id) const;
    void GetDlgItem(int id, HWND* window) const;
    CWnd* GetWindow(UINT command) const;
    CWnd* GetNextDlgTabItem(CWnd* control, BOOL previous = FALSE) const;
    int GetDlgCtrlID() const;
    int SetDlgCtrlID(int id);
    BOOL IsChild(const CWnd* window) const;
    int GetDlgItemText(int id, CString& text) const;
    void SetDlgItemText(int id, LPCTSTR text);
    UINT GetDlgItemInt(int id, BOOL* good = nullptr, BOOL isSigned = TRUE) const;
    void SetDlgItemInt(int id, UINT value, BOOL isSigned = TRUE);
    void CheckDlgButton(int id, UINT check);
    UINT IsDlgButtonChecked(int id) const;
    void CheckRadioButton(int first, int last, int checked);
    int GetCheckedRadioButton(int first, int last) const;

    // On the screen; relative to the client area.
    void GetWindowRect(LPRECT rect) const;
    void GetClientRect(LPRECT rect) const;
    void MoveWindow(int x, int y, int width, int height, BOOL redraw = TRUE);
    void MoveWindow(LPCRECT rect, BOOL redraw = TRUE);
    BOOL SetWindowPos(const CWnd* after, int x, int y, int width, int height, UINT flags);
    void CenterWindow(CWnd* over = nullptr);
    void ScreenToClient(LPPOINT point) const;
    void ScreenToClient(LPRECT rect) const;
    void ClientToScreen(LPPOINT point) const;
    void ClientToScreen(LPRECT rect) const;

    void Invalidate(BOOL erase = TRUE);
    void InvalidateRect(LPCRECT rect, BOOL erase = TRUE);
    void UpdateWindow();
    BOOL RedrawWindow(LPCRECT rect = nullptr, void* region = nullptr,
                      UINT flags = RDW_INVALIDATE | RDW_UPDATENOW | RDW_ERASE);
    void SetRedraw(BOOL redraw = TRUE);
    CDC* GetDC(); // for measuring; give it back
    int ReleaseDC(CDC* context);

    UINT_PTR SetTimer(UINT_PTR id, UINT milliseconds, void* function);
    BOOL KillTimer(UINT_PTR id);

    // Of a window that paints itself.
    BOOL SetScrollInfo(int bar, SCROLLINFO* info, BOOL redraw = TRUE);
    BOOL GetScrollInfo(int bar, SCROLLINFO* info, UINT mask = SIF_ALL);
    int GetScrollPos(int bar) const;
    int SetScrollPos(int bar, int position, BOOL redraw = TRUE);
    void SetScrollRange(int bar, int least, int most, BOOL redraw = TRUE);

    int MessageBox(LPCTSTR text, LPCTSTR caption = nullptr, UINT type = MB_OK);
    BOOL UpdateData(BOOL saveAndValidate = TRUE);
    int RunModalLoop();
    void EndModalLoop(int result);

    virtual BOOL PreTranslateMessage(MSG* message);
    LRESULT callWindowProc(UINT message, WPARAM wParam, LPARAM lParam);

protected:
    static const AFX_MSGMAP* GetThisMessageMap();
    const AFX_MSGMAP* GetMessageMap() const override;

    virtual LRESULT WindowProc(UINT message, WPARAM wParam, LPARAM lParam);
    virtual BOOL OnWndMsg(UINT message, WPARAM wParam, LPARAM lParam, LRESULT* result);
    virtual LRESULT DefWindowProc(UINT message, WPARAM wParam, LPARAM lParam);
    LRESULT Default();
    virtual BOOL OnCommand(WPARAM wParam, LPARAM lParam);
    virtual BOOL OnNotify(WPARAM wParam, LPARAM lParam, LRESULT* result);
    virtual BOOL OnChildNotify(UINT message, WPARAM wParam, LPARAM lParam, LRESULT* result);
    virtual void DoDataExchange(CDataExchange*) {}
    virtual void PostNcDestroy() {}

    int OnCreate(LPCREATESTRUCT) { return static_cast<int>(Default()); }
    void OnDestroy() { Default(); }
    void OnNcDestroy() { Default(); }
    void OnClose() { Default(); }
    void OnPaint() { Default(); }
    void OnNcPaint() { Default(); }
    BOOL OnEraseBkgnd(CDC*) { return static_cast<BOOL>(Default()); }
    void OnSize(UINT, int, int) { Default(); }
    void OnMove(int, int) { Default(); }
    void OnShowWindow(BOOL, UINT) { Default(); }
    void OnEnable(BOOL) { Default(); }
    void OnTimer(UINT_PTR) { Default(); }
    void OnSetFocus(CWnd*) { Default(); }
    void OnKillFocus(CWnd*) { Default(); }
    void OnActivate(UINT, CWnd*, BOOL) { Default(); }
    void OnKeyDown(UINT, UINT, UINT) { Default(); }
    void OnKeyUp(UINT, UINT, UINT) { Default(); }
    void OnChar(UINT, UINT, UINT) { Default(); }
    UINT OnGetDlgCode() { return static_cast<UINT>(Default()); }
    void OnMouseMove(UINT, CPoint) { Default(); }
    void OnLButtonDown(UINT, CPoint) { Default(); }
    void OnLButtonUp(UINT, CPoint) { Default(); }
    void OnLButtonDblClk(UINT, CPoint) { Default(); }
    void OnRButtonDown(UINT, CPoint) { Default(); }
    void OnRButtonUp(UINT, CPoint) { Default(); }
    BOOL OnMouseWheel(UINT, short, CPoint) { return static_cast<BOOL>(Default()); }
    void OnNcMouseMove(UINT, CPoint) { Default(); }
    void OnNcLButtonDown(UINT, CPoint) { Default(); }
    void OnNcLButtonUp(UINT, CPoint) { Default(); }
    void OnNcLButtonDblClk(UINT, CPoint) { Default(); }
    LRESULT OnNcHitTest(CPoint) { return Default(); }
    BOOL OnSetCursor(CWnd*, UINT, UINT) { return static_cast<BOOL>(Default()); }
    void OnSysCommand(UINT, LPARAM) { Default(); }
    void OnGetMinMaxInfo(MINMAXINFO*) { Default(); }
    void OnHScroll(UINT, UINT, CScrollBar*) { Default(); }
    void OnVScroll(UINT, UINT, CScrollBar*) { Default(); }
    BOOL OnCopyData(CWnd*, COPYDATASTRUCT*) { return static_cast<BOOL>(Default()); }
    void OnDrawItem(int, LPDRAWITEMSTRUCT) { Default(); }
    void OnContextMenu(CWnd*, CPoint) { Default(); }
    void OnInitMenu(CMenu*) { Default(); }
    void OnInitMenuPopup(CMenu*, UINT, BOOL) { Default(); }
    HBRUSH OnCtlColor(CDC*, CWnd*, UINT) { return reinterpret_cast<HBRUSH>(Default()); }

private:
    friend struct ::HWND__;
    LRESULT notified(UINT message, WPARAM wParam, LPARAM lParam, bool& handled);
};

// A class name for windows that paint themselves; class styles and brush are taken note of.
LPCTSTR AfxRegisterWndClass(UINT classStyle, HCURSOR cursor = nullptr, HBRUSH background = nullptr,
                            HICON icon = nullptr);
// Makes a class name known for dialog templates; every unknown name is such a class here.
BOOL AfxRegisterClass(WNDCLASS* window);
int AfxMessageBox(LPCTSTR text, UINT type = MB_OK, UINT help = 0);
int AfxMessageBox(UINT id, UINT type = MB_OK, UINT help = 0);

LRESULT SendMessage(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
BOOL PostMessage(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
BOOL IsWindow(HWND window);
BOOL GetCursorPos(LPPOINT point);
SHORT GetKeyState(int virtualKey);
BOOL ReleaseCapture();
HCURSOR SetCursor(HCURSOR cursor);
HCURSOR LoadCursor(HINSTANCE module, LPCWSTR name);
HICON LoadIcon(HINSTANCE module, LPCWSTR name);
BOOL DestroyIcon(HICON icon);

// The hourglass while in scope.
class CWaitCursor {
public:
    CWaitCursor();
    ~CWaitCursor();
    CWaitCursor(const CWaitCursor&) = delete;
    CWaitCursor& operator=(const CWaitCursor&) = delete;
    void Restore() {}
};
