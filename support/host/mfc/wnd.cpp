// CWnd: attaching, making and asking windows.
#include "host/mfc/wnd.h"

#include "host/mfc/controls.h"
#include "host/mfc/ddx.h"
#include "host/mfc/modulestate.h"
#include "host/mfc/widgets/application.h"
#include "host/mfc/widgets/context.h"
#include "host/mfc/widgets/custom.h"
#include "host/mfc/widgets/factory.h"

#include <QApplication>
#include <QCursor>
#include <set>

namespace {

QWidget* widgetOf(HWND window) {
    return window != nullptr && !window->dying ? window->widget.data() : nullptr;
}
QWidget* contentOf(HWND window) {
    return window != nullptr && !window->dying ? window->content.data() : nullptr;
}
// Without a window manager there is no order of windows.
void bringToFront(QWidget& window) {
    if (!host::isOffscreen())
        window.raise();
    window.activateWindow();
}
HWND handleOf(const CWnd* window) {
    return window != nullptr ? window->m_hWnd : nullptr;
}

} // namespace

CWnd::CWnd() = default;

CWnd::~CWnd() {
    if (m_hWnd != nullptr && m_hWnd->object == this) {
        HWND window = Detach();
        host::destroyWindow(window);
    }
}

CWnd* CWnd::FromHandle(HWND window) {
    if (window == nullptr)
        return nullptr;
    return window->object != nullptr ? window->object : host::temporaryWindow(window);
}

CWnd* CWnd::FromHandlePermanent(HWND window) {
    return window != nullptr ? window->object : nullptr;
}

BOOL CWnd::Attach(HWND window) {
    if (window == nullptr)
        return FALSE;
    m_hWnd = window;
    window->object = this;
    return TRUE;
}

HWND CWnd::Detach() {
    if (m_hWnd != nullptr && m_hWnd->object == this)
        m_hWnd->object = nullptr;
    return std::exchange(m_hWnd, nullptr);
}

BOOL CWnd::SubclassWindow(HWND window) {
    if (Attach(window) == FALSE)
        return FALSE;
    PreSubclassWindow();
    return TRUE;
}

BOOL CWnd::SubclassDlgItem(UINT id, CWnd* parent) {
    CWnd* item = parent != nullptr ? parent->GetDlgItem(static_cast<int>(id)) : nullptr;
    return item != nullptr ? SubclassWindow(item->m_hWnd) : FALSE;
}

HWND CWnd::UnsubclassWindow() {
    return Detach();
}

BOOL CWnd::Create(LPCTSTR className, LPCTSTR title, DWORD style, const RECT& rect, CWnd* parent, UINT id) {
    return CreateEx(0, className, title, style | WS_CHILD, rect, parent, id);
}

BOOL CWnd::CreateEx(DWORD exStyle, LPCTSTR className, LPCTSTR title, DWORD style, int x, int y, int width,
                    int height, HWND parent, HMENU id, LPVOID) {
    CREATESTRUCT made{nullptr, nullptr,   id,     parent, height, width, y, x, static_cast<LONG>(style),
                      title,   className, exStyle};
    if (m_hWnd != nullptr || PreCreateWindow(made) == FALSE)
        return FALSE;
    HWND window = host::createWindow(className != nullptr ? className : L"", title != nullptr ? title : L"",
                                     style & ~WS_VISIBLE, exStyle, QRect(x, y, width, height), parent,
                                     static_cast<UINT>(reinterpret_cast<UINT_PTR>(id)));
    Attach(window);
    PreSubclassWindow();
    if (window->send(WM_CREATE, 0, reinterpret_cast<LPARAM>(&made)) < 0) {
        DestroyWindow();
        return FALSE;
    }
    if (m_hWnd != nullptr && (style & WS_VISIBLE) != 0) {
        m_hWnd->style |= WS_VISIBLE;
        m_hWnd->widget->show();
    }
    return m_hWnd != nullptr ? TRUE : FALSE;
}

BOOL CWnd::CreateEx(DWORD exStyle, LPCTSTR className, LPCTSTR title, DWORD style, const RECT& rect,
                    CWnd* parent, UINT id) {
    return CreateEx(exStyle, className, title, style, rect.left, rect.top, rect.right - rect.left,
                    rect.bottom - rect.top, handleOf(parent),
                    reinterpret_cast<HMENU>(static_cast<UINT_PTR>(id)));
}

BOOL CWnd::DestroyWindow() {
    if (m_hWnd == nullptr)
        return FALSE;
    host::destroyWindow(m_hWnd);
    return TRUE;
}

LRESULT CWnd::SendMessage(UINT message, WPARAM wParam, LPARAM lParam) const {
    return ::SendMessage(m_hWnd, message, wParam, lParam);
}
BOOL CWnd::PostMessage(UINT message, WPARAM wParam, LPARAM lParam) {
    return ::PostMessage(m_hWnd, message, wParam, lParam);
}
LRESULT CWnd::SendDlgItemMessage(int id, UINT message, WPARAM wParam, LPARAM lParam) const {
    const CWnd* item = GetDlgItem(id);
    return item != nullptr ? item->SendMessage(message, wParam, lParam) : 0;
}

void CWnd::SetWindowText(LPCTSTR text) {
    SendMessage(WM_SETTEXT, 0, reinterpret_cast<LPARAM>(text != nullptr ? text : L""));
}

void CWnd::GetWindowText(CString& text) const {
    const int length = GetWindowTextLength();
    SendMessage(WM_GETTEXT, static_cast<WPARAM>(length) + 1,
                reinterpret_cast<LPARAM>(text.GetBufferSetLength(length + 1)));
    text.ReleaseBuffer(length);
    if (m_hWnd == nullptr)
        text.Empty();
}
int CWnd::GetWindowText(LPTSTR text, int size) const {
    if (size > 0)
        *text = 0;
    return static_cast<int>(
        SendMessage(WM_GETTEXT, static_cast<WPARAM>(size), reinterpret_cast<LPARAM>(text)));
}
int CWnd::GetWindowTextLength() const {
    return static_cast<int>(SendMessage(WM_GETTEXTLENGTH));
}

void CWnd::SetFont(CFont* font, BOOL) {
    SendMessage(WM_SETFONT, reinterpret_cast<WPARAM>(font != nullptr ? static_cast<HFONT>(*font) : nullptr));
}

CFont* CWnd::GetFont() const {
    if (m_hWnd == nullptr)
        return nullptr;
    // Of the widget; kept with the window.
    if (m_hWnd->ownFont == nullptr && widgetOf(m_hWnd) != nullptr) {
        m_hWnd->ownFont = std::make_unique<CFont>();
        m_hWnd->ownFont->Attach(host::newFont(m_hWnd->widget->font()));
    }
    return m_hWnd->ownFont.get();
}

HICON CWnd::SetIcon(HICON icon, BOOL big) {
    return reinterpret_cast<HICON>(
        SendMessage(WM_SETICON, big != FALSE ? ICON_BIG : ICON_SMALL, reinterpret_cast<LPARAM>(icon)));
}
HICON CWnd::GetIcon(BOOL) const {
    return m_hWnd != nullptr ? m_hWnd->icon : nullptr;
}

DWORD CWnd::GetStyle() const {
    if (m_hWnd == nullptr)
        return 0;
    DWORD style = m_hWnd->style & ~(WS_VISIBLE | WS_DISABLED);
    const QWidget* widget = widgetOf(m_hWnd);
    return style | (widget != nullptr && !widget->isHidden() ? WS_VISIBLE : 0) |
           (m_hWnd->isEnabled() ? 0 : WS_DISABLED);
}
DWORD CWnd::GetExStyle() const {
    return m_hWnd != nullptr ? m_hWnd->exStyle : 0;
}
BOOL CWnd::ModifyStyle(DWORD remove, DWORD add, UINT) {
    if (m_hWnd == nullptr)
        return FALSE;
    m_hWnd->style = (m_hWnd->style & ~remove) | add;
    m_hWnd->applyStyle();
    return TRUE;
}
BOOL CWnd::ModifyStyleEx(DWORD remove, DWORD add, UINT) {
    if (m_hWnd == nullptr)
        return FALSE;
    m_hWnd->exStyle = (m_hWnd->exStyle & ~remove) | add;
    m_hWnd->applyStyle();
    return TRUE;
}

BOOL CWnd::EnableWindow(BOOL enable) {
    QWidget* widget = widgetOf(m_hWnd);
    if (widget == nullptr)
        return FALSE;
    const BOOL was = m_hWnd->isEnabled() ? FALSE : TRUE;
    if ((was != FALSE) == (enable != FALSE)) {
        widget->setEnabled(enable != FALSE);
        SendMessage(WM_ENABLE, static_cast<WPARAM>(enable));
    }
    return was;
}
BOOL CWnd::IsWindowEnabled() const {
    return m_hWnd != nullptr && m_hWnd->isEnabled() ? TRUE : FALSE;
}

BOOL CWnd::ShowWindow(int command) {
    QWidget* widget = widgetOf(m_hWnd);
    if (widget == nullptr)
        return FALSE;
    const BOOL was = IsWindowVisible();
    const bool show = command != SW_HIDE;
    widget->setAttribute(Qt::WA_ShowWithoutActivating, command == SW_SHOWNOACTIVATE || command == SW_SHOWNA);
    if (show == widget->isHidden())
        SendMessage(WM_SHOWWINDOW, show ? TRUE : FALSE);
    if (command == SW_SHOWMAXIMIZED && widget->isWindow())
        widget->showMaximized();
    else
        widget->setVisible(show);
    if (show && widget->isWindow() && command != SW_SHOWNOACTIVATE && command != SW_SHOWNA) {
        bringToFront(*widget);
    }
    return was;
}
BOOL CWnd::IsWindowVisible() const {
    const QWidget* widget = widgetOf(m_hWnd);
    return widget != nullptr && widget->isVisible() ? TRUE : FALSE;
}

CWnd* CWnd::SetFocus() {
    CWnd* before = GetFocus();
    if (QWidget* widget = widgetOf(m_hWnd)) {
        const bool isBehind = widget->window()->isVisible() && !widget->isActiveWindow();
        if (isBehind || widget->isWindow() ||
            (widget->focusPolicy() == Qt::NoFocus && widget->focusProxy() == nullptr))
            widget->activateWindow();
        widget->setFocus(Qt::OtherFocusReason);
    }
    return before;
}
CWnd* CWnd::GetFocus() {
    if (!host::hasApplication())
        return nullptr;
    const QWidget* widget = QApplication::focusWidget();
    if (widget == nullptr && !host::openDialogs().empty()) // a window that is not in front keeps its own
        widget = host::openDialogs().back()->widget->focusWidget();
    return FromHandle(host::windowOfWidget(widget));
}
CWnd* CWnd::SetActiveWindow() {
    if (QWidget* widget = widgetOf(m_hWnd)) {
        bringToFront(*widget->window());
    }
    return this;
}
void CWnd::BringWindowToTop() {
    QWidget* widget = widgetOf(m_hWnd);
    if (widget != nullptr && !(widget->isWindow() && host::isOffscreen()))
        widget->raise();
}
CWnd* CWnd::SetCapture() {
    if (QWidget* widget = contentOf(m_hWnd); widget != nullptr && !host::isOffscreen())
        widget->grabMouse();
    return nullptr;
}
CWnd* CWnd::GetCapture() {
    return FromHandle(host::windowOfWidget(QWidget::mouseGrabber()));
}

CWnd* CWnd::GetParent() const {
    return m_hWnd != nullptr ? FromHandle(m_hWnd->parent) : nullptr;
}
CWnd* CWnd::GetTopLevelParent() const {
    HWND at = m_hWnd;
    while (at != nullptr && (at->style & WS_CHILD) != 0 && at->parent != nullptr)
        at = at->parent;
    return FromHandle(at);
}
CWnd* CWnd::SetParent(CWnd* parent) {
    CWnd* const before = GetParent();
    HWND to = handleOf(parent);
    if (QWidget* widget = widgetOf(m_hWnd); widget != nullptr && contentOf(to) != nullptr) {
        if (m_hWnd->parent != nullptr)
            std::erase(m_hWnd->parent->children, m_hWnd);
        m_hWnd->parent = to;
        to->children.push_back(m_hWnd);
        const bool shown = !widget->isHidden();
        widget->setParent(contentOf(to));
        widget->setVisible(shown);
    }
    return before;
}

CWnd* CWnd::GetDlgItem(int id) const {
    if (m_hWnd == nullptr)
        return nullptr;
    const auto found = std::ranges::find(m_hWnd->children, static_cast<UINT>(id), &HWND__::id);
    return found != m_hWnd->children.end() ? FromHandle(*found) : nullptr;
}
void CWnd::GetDlgItem(int id, HWND* window) const {
    *window = handleOf(GetDlgItem(id));
}

CWnd* CWnd::GetWindow(UINT command) const {
    if (m_hWnd == nullptr)
        return nullptr;
    if (command == GW_CHILD)
        return m_hWnd->children.empty() ? nullptr : FromHandle(m_hWnd->children.front());
    if (command == GW_OWNER)
        return GetParent();
    if (m_hWnd->parent == nullptr)
        return nullptr;
    const std::vector<HWND>& all = m_hWnd->parent->children;
    const auto here = std::ranges::find(all, m_hWnd);
    if (here == all.end())
        return nullptr;
    switch (command) {
    case GW_HWNDFIRST:
        return FromHandle(all.front());
    case GW_HWNDLAST:
        return FromHandle(all.back());
    case GW_HWNDNEXT:
        return here + 1 == all.end() ? nullptr : FromHandle(here[1]);
    default:
        return here == all.begin() ? nullptr : FromHandle(here[-1]);
    }
}

CWnd* CWnd::GetNextDlgTabItem(CWnd* control, BOOL previous) const {
    if (m_hWnd == nullptr || m_hWnd->children.empty())
        return nullptr;
    const std::vector<HWND>& all = m_hWnd->children;
    const int count = static_cast<int>(all.size());
    const auto here = std::ranges::find(all, handleOf(control));
    int at = here == all.end() ? (previous != FALSE ? count : -1) : static_cast<int>(here - all.begin());
    for (int step = 0; step < count; ++step) {
        at = (at + (previous != FALSE ? count - 1 : 1) + count) % count;
        const HWND each = all[static_cast<std::size_t>(at)];
        if ((each->style & WS_TABSTOP) != 0 && each->isEnabled() && !each->widget->isHidden())
            return FromHandle(each);
    }
    return nullptr;
}

int CWnd::GetDlgCtrlID() const {
    return m_hWnd != nullptr ? static_cast<int>(m_hWnd->id) : 0;
}
int CWnd::SetDlgCtrlID(int id) {
    return m_hWnd != nullptr ? static_cast<int>(std::exchange(m_hWnd->id, static_cast<UINT>(id))) : 0;
}
BOOL CWnd::IsChild(const CWnd* window) const {
    for (HWND at = handleOf(window); at != nullptr && (at->style & WS_CHILD) != 0; at = at->parent)
        if (at->parent == m_hWnd)
            return TRUE;
    return FALSE;
}

int CWnd::GetDlgItemText(int id, CString& text) const {
    text.Empty();
    if (const CWnd* item = GetDlgItem(id))
        item->GetWindowText(text);
    return text.GetLength();
}
void CWnd::SetDlgItemText(int id, LPCTSTR text) {
    if (CWnd* item = GetDlgItem(id))
        item->SetWindowText(text);
}
UINT CWnd::GetDlgItemInt(int id, BOOL* good, BOOL isSigned) const {
    CString text;
    GetDlgItemText(id, text);
    bool read = false;
    const QString number = host::toQt(text.Trim().GetString());
    const UINT value = isSigned != FALSE ? static_cast<UINT>(number.toInt(&read)) : number.toUInt(&read);
    if (good != nullptr)
        *good = read ? TRUE : FALSE;
    return read ? value : 0;
}
void CWnd::SetDlgItemInt(int id, UINT value, BOOL isSigned) {
    const std::wstring text =
        isSigned != FALSE ? std::to_wstring(static_cast<int>(value)) : std::to_wstring(value);
    SetDlgItemText(id, text.c_str());
}
void CWnd::CheckDlgButton(int id, UINT check) {
    SendDlgItemMessage(id, BM_SETCHECK, check);
}
UINT CWnd::IsDlgButtonChecked(int id) const {
    return static_cast<UINT>(SendDlgItemMessage(id, BM_GETCHECK));
}
void CWnd::CheckRadioButton(int first, int last, int checked) {
    for (int id = first; id <= last; ++id)
        CheckDlgButton(id, id == checked ? BST_CHECKED : BST_UNCHECKED);
}
int CWnd::GetCheckedRadioButton(int first, int last) const {
    for (int id = first; id <= last; ++id)
        if (IsDlgButtonChecked(id) == static_cast<UINT>(BST_CHECKED))
            return id;
    return 0;
}

void CWnd::GetWindowRect(LPRECT rect) const {
    const QWidget* widget = widgetOf(m_hWnd);
    *rect = {};
    if (widget == nullptr)
        return;
    *rect = host::toRect(widget->isWindow() ? widget->frameGeometry()
                                            : QRect(widget->mapToGlobal(QPoint()), widget->size()));
}
void CWnd::GetClientRect(LPRECT rect) const {
    const QWidget* content = contentOf(m_hWnd);
    *rect = content != nullptr ? RECT{0, 0, content->width(), content->height()} : RECT{};
}
void CWnd::MoveWindow(int x, int y, int width, int height, BOOL) {
    SetWindowPos(nullptr, x, y, width, height, SWP_NOZORDER | SWP_NOACTIVATE);
}
void CWnd::MoveWindow(LPCRECT rect, BOOL redraw) {
    MoveWindow(rect->left, rect->top, rect->right - rect->left, rect->bottom - rect->top, redraw);
}

BOOL CWnd::SetWindowPos(const CWnd*, int x, int y, int width, int height, UINT flags) {
    QWidget* widget = widgetOf(m_hWnd);
    if (widget == nullptr)
        return FALSE;
    const QPoint place = (flags & SWP_NOMOVE) != 0 ? widget->pos() : QPoint(x, y);
    QSize size = (flags & SWP_NOSIZE) != 0 ? widget->size() : QSize(std::max(0, width), std::max(0, height));
    if (widget->isWindow() && (flags & SWP_NOSIZE) == 0) // what the window manager draws around it counts
        size -= widget->frameGeometry().size() - widget->geometry().size();
    const bool moved = place != widget->pos();
    const QSize before = widget->size();
    if (!widget->isWindow()) {
        widget->setGeometry(QRect(place, size));
    } else {
        host::resizeWidget(*widget, size);
        widget->move(place);
    }
    if (widget->size() != before)
        m_hWnd->resized();
    if (moved)
        SendMessage(WM_MOVE, 0, host::packed(place));
    if ((flags & (SWP_SHOWWINDOW | SWP_HIDEWINDOW)) != 0)
        ShowWindow((flags & SWP_SHOWWINDOW) != 0 ? SW_SHOW : SW_HIDE);
    if ((flags & SWP_NOZORDER) == 0)
        BringWindowToTop();
    return TRUE;
}

void CWnd::CenterWindow(CWnd* over) {
    CWnd* const owner = over != nullptr ? over : GetParent();
    QWidget* widget = widgetOf(m_hWnd);
    const QWidget* around = owner != nullptr ? widgetOf(owner->m_hWnd) : nullptr;
    if (widget != nullptr && around != nullptr)
        widget->move(around->frameGeometry().center() - widget->rect().center());
}

void CWnd::ScreenToClient(LPPOINT point) const {
    if (const QWidget* content = contentOf(m_hWnd)) {
        const QPoint mapped = content->mapFromGlobal(QPoint(point->x, point->y));
        *point = {mapped.x(), mapped.y()};
    }
}
void CWnd::ClientToScreen(LPPOINT point) const {
    if (const QWidget* content = contentOf(m_hWnd)) {
        const QPoint mapped = content->mapToGlobal(QPoint(point->x, point->y));
        *point = {mapped.x(), mapped.y()};
    }
}
void CWnd::ScreenToClient(LPRECT rect) const {
    POINT corners[2] = {{rect->left, rect->top}, {rect->right, rect->bottom}};
    ScreenToClient(&corners[0]);
    ScreenToClient(&corners[1]);
    *rect = {corners[0].x, corners[0].y, corners[1].x, corners[1].y};
}
void CWnd::ClientToScreen(LPRECT rect) const {
    POINT corners[2] = {{rect->left, rect->top}, {rect->right, rect->bottom}};
    ClientToScreen(&corners[0]);
    ClientToScreen(&corners[1]);
    *rect = {corners[0].x, corners[0].y, corners[1].x, corners[1].y};
}

void CWnd::Invalidate(BOOL) {
    if (QWidget* widget = widgetOf(m_hWnd))
        widget->update();
    if (QWidget* content = contentOf(m_hWnd))
        content->update();
}
void CWnd::InvalidateRect(LPCRECT rect, BOOL erase) {
    QWidget* content = contentOf(m_hWnd);
    if (rect == nullptr)
        Invalidate(erase);
    else if (content != nullptr)
        content->update(host::toQRect(*rect));
}
void CWnd::UpdateWindow() {
    if (QWidget* content = contentOf(m_hWnd); content != nullptr && content->isVisible())
        content->repaint();
}
BOOL CWnd::RedrawWindow(LPCRECT rect, void*, UINT flags) {
    InvalidateRect(rect);
    if ((flags & RDW_UPDATENOW) != 0)
        UpdateWindow();
    return TRUE;
}
void CWnd::SetRedraw(BOOL redraw) {
    if (QWidget* widget = widgetOf(m_hWnd))
        widget->setUpdatesEnabled(redraw != FALSE);
}
CDC* CWnd::GetDC() {
    return new CClientDC(this);
}
int CWnd::ReleaseDC(CDC* context) {
    delete context;
    return 1;
}

UINT_PTR CWnd::SetTimer(UINT_PTR id, UINT milliseconds, void*) {
    return m_hWnd != nullptr && m_hWnd->setTimer(id, milliseconds) ? id : 0;
}
BOOL CWnd::KillTimer(UINT_PTR id) {
    return m_hWnd != nullptr && m_hWnd->killTimerOf(id) ? TRUE : FALSE;
}

BOOL CWnd::SetScrollInfo(int bar, SCROLLINFO* info, BOOL) {
    auto* window = dynamic_cast<host::CustomWindow*>(m_hWnd);
    if (window == nullptr)
        return FALSE;
    window->setScroll(bar, *info);
    return TRUE;
}
BOOL CWnd::GetScrollInfo(int bar, SCROLLINFO* info, UINT) {
    const auto* window = dynamic_cast<const host::CustomWindow*>(m_hWnd);
    if (window == nullptr)
        return FALSE;
    *info = window->scroll(bar);
    return TRUE;
}
int CWnd::GetScrollPos(int bar) const {
    const auto* window = dynamic_cast<const host::CustomWindow*>(m_hWnd);
    return window != nullptr ? window->scroll(bar).nPos : 0;
}
int CWnd::SetScrollPos(int bar, int position, BOOL redraw) {
    const int before = GetScrollPos(bar);
    SCROLLINFO info{};
    info.fMask = SIF_POS;
    info.nPos = position;
    SetScrollInfo(bar, &info, redraw);
    return before;
}
void CWnd::SetScrollRange(int bar, int least, int most, BOOL redraw) {
    SCROLLINFO info{};
    info.fMask = SIF_RANGE;
    info.nMin = least;
    info.nMax = most;
    SetScrollInfo(bar, &info, redraw);
}

int CWnd::MessageBox(LPCTSTR text, LPCTSTR caption, UINT type) {
    return host::showMessageBox(this, text != nullptr ? text : L"", caption != nullptr ? caption : L"", type);
}

BOOL CWnd::UpdateData(BOOL saveAndValidate) {
    if (m_hWnd == nullptr)
        return FALSE;
    CDataExchange exchange(this, saveAndValidate);
    try {
        DoDataExchange(&exchange);
    } catch (const CUserException&) {
        return FALSE;
    }
    return TRUE;
}

int CWnd::RunModalLoop() {
    host::DialogWindow* dialog = host::dialogOf(m_hWnd);
    return dialog != nullptr ? host::runModal(*dialog) : IDCANCEL;
}
void CWnd::EndModalLoop(int result) {
    if (host::DialogWindow* dialog = host::dialogOf(m_hWnd))
        dialog->end(result);
}

LPCTSTR AfxRegisterWndClass(UINT classStyle, HCURSOR, HBRUSH, HICON) {
    // A name serves all windows with the same style.
    static std::set<std::wstring> names;
    return names.insert(L"AfxWnd:" + std::to_wstring(classStyle)).first->c_str();
}

BOOL AfxRegisterClass(WNDCLASS* window) {
    return window != nullptr && window->lpszClassName != nullptr ? TRUE : FALSE;
}

BOOL IsWindow(HWND window) {
    return window != nullptr && !window->dying ? TRUE : FALSE;
}
BOOL GetCursorPos(LPPOINT point) {
    host::application();
    const QPoint at = QCursor::pos();
    *point = {at.x(), at.y()};
    return TRUE;
}
SHORT GetKeyState(int virtualKey) {
    const Qt::KeyboardModifiers held =
        host::hasApplication() ? QGuiApplication::keyboardModifiers() : Qt::KeyboardModifiers();
    const bool down = (virtualKey == static_cast<int>(VK_SHIFT) && held.testFlag(Qt::ShiftModifier)) ||
                      (virtualKey == static_cast<int>(VK_CONTROL) && held.testFlag(Qt::ControlModifier)) ||
                      (virtualKey == static_cast<int>(VK_MENU) && held.testFlag(Qt::AltModifier));
    return down ? static_cast<SHORT>(0x8000) : 0;
}
BOOL ReleaseCapture() {
    if (QWidget* grabber = QWidget::mouseGrabber())
        grabber->releaseMouse();
    return TRUE;
}

HCURSOR LoadCursor(HINSTANCE, LPCWSTR name) {
    const auto id = reinterpret_cast<ULONG_PTR>(name);
    return IS_INTRESOURCE(name) ? reinterpret_cast<HCURSOR>(id) : nullptr;
}

HCURSOR SetCursor(HCURSOR cursor) {
    static constexpr std::pair<ULONG_PTR, Qt::CursorShape> shapes[] = {
        {32512, Qt::ArrowCursor},       {32513, Qt::IBeamCursor},   {32514, Qt::WaitCursor},
        {32515, Qt::CrossCursor},       {32516, Qt::UpArrowCursor}, {32646, Qt::SizeAllCursor},
        {32649, Qt::PointingHandCursor}};
    host::application();
    QWidget* under = QApplication::widgetAt(QCursor::pos());
    for (const auto& [id, shape] : shapes)
        if (under != nullptr && reinterpret_cast<ULONG_PTR>(cursor) == id)
            under->setCursor(shape);
    return nullptr;
}

CWaitCursor::CWaitCursor() {
    if (host::hasApplication())
        QGuiApplication::setOverrideCursor(Qt::WaitCursor);
}
CWaitCursor::~CWaitCursor() {
    if (host::hasApplication())
        QGuiApplication::restoreOverrideCursor();
}
