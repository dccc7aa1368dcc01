// From messages to handlers: message maps, commands, notifications and their reflection.
#include "host/mfc/menu.h"
#include "host/mfc/widgets/context.h"
#include "host/mfc/widgets/window.h"
#include "host/mfc/wnd.h"

#include <utility>

namespace {

// The message that a window is working on, for Default().
struct Current {
    UINT message = 0;
    WPARAM wParam = 0;
    LPARAM lParam = 0;
};
Current& current() {
    static Current message;
    return message;
}

class CurrentScope {
public:
    explicit CurrentScope(Current message) : outer_(std::exchange(current(), message)) {}
    ~CurrentScope() { current() = outer_; }
    CurrentScope(const CurrentScope&) = delete;
    CurrentScope& operator=(const CurrentScope&) = delete;

private:
    Current outer_;
};

bool isColorMessage(UINT message) {
    return message >= WM_CTLCOLOREDIT && message <= WM_CTLCOLORSTATIC;
}

} // namespace

namespace host {

CWnd* windowOf(HWND window) {
    return CWnd::FromHandle(window);
}
CWnd* windowOf(WPARAM window) {
    return CWnd::FromHandle(reinterpret_cast<HWND>(window));
}
CDC* contextOf(WPARAM context) {
    return CDC::FromHandle(reinterpret_cast<HDC>(context));
}
CMenu* menuOf(WPARAM menu) {
    return CMenu::FromHandle(reinterpret_cast<HMENU>(menu));
}
CScrollBar* scrollBarOf(LPARAM) {
    return nullptr; // scroll bars here are parts of windows
}

} // namespace host

const AFX_MSGMAP* CCmdTarget::GetThisMessageMap() {
    static const AFX_MSGMAP_ENTRY entries[] = {{0, 0, 0, 0, nullptr}};
    static const AFX_MSGMAP map{nullptr, entries};
    return &map;
}

const AFX_MSGMAP* CCmdTarget::GetMessageMap() const {
    return GetThisMessageMap();
}

const AFX_MSGMAP_ENTRY* CCmdTarget::findEntry(UINT message, UINT code, UINT id) const {
    for (const AFX_MSGMAP* map = GetMessageMap(); map != nullptr;
         map = map->pfnGetBaseMap != nullptr ? map->pfnGetBaseMap() : nullptr) {
        for (const AFX_MSGMAP_ENTRY* entry = map->lpEntries; entry->pfn != nullptr; ++entry) {
            if (entry->nMessage == message && entry->nCode == code && id >= entry->nID &&
                id <= entry->nLastID)
                return entry;
        }
    }
    return nullptr;
}

BOOL CCmdTarget::OnCmdMsg(UINT id, int code, void*, void* info) {
    const AFX_MSGMAP_ENTRY* entry = findEntry(WM_COMMAND, static_cast<UINT>(code), id);
    if (entry == nullptr)
        return FALSE;
    if (info == nullptr) {
        host::MessageCall call{WM_COMMAND, id, 0, id, 0, true};
        entry->pfn(*this, call);
    }
    return TRUE;
}

const AFX_MSGMAP* CWnd::GetThisMessageMap() {
    static const AFX_MSGMAP_ENTRY entries[] = {{0, 0, 0, 0, nullptr}};
    static const AFX_MSGMAP map{[]() -> const AFX_MSGMAP* { return CCmdTarget::GetThisMessageMap(); },
                                entries};
    return &map;
}

const AFX_MSGMAP* CWnd::GetMessageMap() const {
    return GetThisMessageMap();
}

LRESULT CWnd::callWindowProc(UINT message, WPARAM wParam, LPARAM lParam) {
    const CurrentScope scope({message, wParam, lParam});
    return WindowProc(message, wParam, lParam);
}

LRESULT CWnd::WindowProc(UINT message, WPARAM wParam, LPARAM lParam) {
    if (message == WM_NCDESTROY) { // the last message; the object may delete itself
        LRESULT result = 0;
        OnWndMsg(message, wParam, lParam, &result);
        if (m_hWnd != nullptr)
            Detach();
        PostNcDestroy();
        return 0;
    }
    LRESULT result = 0;
    return OnWndMsg(message, wParam, lParam, &result) != FALSE ? result
                                                               : DefWindowProc(message, wParam, lParam);
}

BOOL CWnd::OnWndMsg(UINT message, WPARAM wParam, LPARAM lParam, LRESULT* result) {
    if (message == WM_COMMAND) {
        if (OnCommand(wParam, lParam) == FALSE)
            return FALSE;
        *result = 1;
        return TRUE;
    }
    if (message == WM_NOTIFY)
        return OnNotify(wParam, lParam, result);
    if (message == WM_DRAWITEM && lParam != 0) {
        const HWND item = reinterpret_cast<LPDRAWITEMSTRUCT>(lParam)->hwndItem;
        if (item != nullptr && item->object != nullptr &&
            item->object->OnChildNotify(message, wParam, lParam, result) != FALSE)
            return TRUE;
    }
    if (isColorMessage(message)) {
        CWnd* asked = FromHandlePermanent(reinterpret_cast<HWND>(lParam));
        if (asked != nullptr && asked != this &&
            asked->OnChildNotify(message, wParam, lParam, result) != FALSE)
            return TRUE;
    }
    const AFX_MSGMAP_ENTRY* entry = findEntry(isColorMessage(message) ? WM_CTLCOLORSTATIC : message, 0, 0);
    if (entry == nullptr)
        return FALSE;
    host::MessageCall call{message, wParam, lParam, 0, 0, true};
    entry->pfn(*this, call);
    *result = call.result;
    return TRUE;
}

LRESULT CWnd::DefWindowProc(UINT message, WPARAM wParam, LPARAM lParam) {
    return m_hWnd != nullptr ? m_hWnd->defaultProc(message, wParam, lParam) : 0;
}

LRESULT CWnd::Default() {
    const Current& now = current();
    return DefWindowProc(now.message, now.wParam, now.lParam);
}

BOOL CWnd::OnCommand(WPARAM wParam, LPARAM lParam) {
    const auto control = reinterpret_cast<HWND>(lParam);
    LRESULT result = 0;
    if (control != nullptr && control->object != nullptr &&
        control->object->OnChildNotify(WM_COMMAND, wParam, lParam, &result) != FALSE)
        return TRUE;
    return OnCmdMsg(LOWORD(wParam), HIWORD(wParam), nullptr, nullptr);
}

BOOL CWnd::OnNotify(WPARAM, LPARAM lParam, LRESULT* result) {
    const auto& header = *reinterpret_cast<const NMHDR*>(lParam);
    if (header.hwndFrom != nullptr && header.hwndFrom->object != nullptr &&
        header.hwndFrom->object->OnChildNotify(WM_NOTIFY, header.idFrom, lParam, result) != FALSE)
        return TRUE;
    const auto id = static_cast<UINT>(header.idFrom);
    const AFX_MSGMAP_ENTRY* entry = findEntry(WM_NOTIFY, header.code, id);
    if (entry == nullptr)
        return FALSE;
    host::MessageCall call{WM_NOTIFY, header.idFrom, lParam, id, 0, true};
    entry->pfn(*this, call);
    *result = call.result;
    return TRUE;
}

BOOL CWnd::OnChildNotify(UINT message, WPARAM wParam, LPARAM lParam, LRESULT* result) {
    const UINT code = message == WM_NOTIFY    ? reinterpret_cast<const NMHDR*>(lParam)->code
                      : message == WM_COMMAND ? HIWORD(wParam)
                                              : 0;
    const AFX_MSGMAP_ENTRY* entry =
        findEntry(WM_REFLECT_BASE + (isColorMessage(message) ? WM_CTLCOLORSTATIC : message), code, 0);
    if (entry == nullptr)
        return FALSE;
    host::MessageCall call{message, wParam, lParam, LOWORD(wParam), 0, true};
    entry->pfn(*this, call);
    *result = call.result;
    return TRUE;
}

BOOL CWnd::PreTranslateMessage(MSG*) {
    return FALSE;
}

LRESULT SendMessage(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    return window != nullptr && !window->dying ? window->send(message, wParam, lParam) : 0;
}

BOOL PostMessage(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    if (window == nullptr || window->dying)
        return FALSE;
    QMetaObject::invokeMethod(
        window,
        [window, message, wParam, lParam] {
            if (!window->dying)
                host::guarded([&] { window->send(message, wParam, lParam); });
        },
        Qt::QueuedConnection);
    return TRUE;
}
