// The host's windows as module code sees them, and the filters of messages.
#include "host/mfc/adui.h"

#include "host/mfc/appwindow.h"
#include "host/mfc/modulestate.h"
#include "host/mfc/widgets/application.h"
#include "host/mfc/widgets/filters.h"
#include "host/mfc/widgets/window.h"
#include "host/win/clock.h"

#include <QApplication>
#include <QKeyEvent>
#include <QPointer>
#include <algorithm>
#include <vector>

namespace {

std::vector<AcedFilterWinMsgFn>& filters() {
    static std::vector<AcedFilterWinMsgFn> list;
    return list;
}

// Shows the keys of the program's window to the filters before its shortcuts and widgets see them. Dialogs do
// so themselves.
class WindowKeys : public QObject {
public:
    QPointer<QWidget> frame;

protected:
    bool eventFilter(QObject* watched, QEvent* event) override {
        if (event->type() == QEvent::KeyPress && swallows_)
            return std::exchange(swallows_, false);
        // The first that is heard of a key.
        const auto* widget = qobject_cast<const QWidget*>(watched);
        const bool isFirst = event->type() == QEvent::ShortcutOverride && widget != nullptr &&
                             widget == QApplication::focusWidget() && !frame.isNull() &&
                             widget->window() == frame->window();
        if (!isFirst)
            return false;
        MSG message{acedGetAcadDwgView()->GetSafeHwnd(),
                    WM_KEYDOWN,
                    host::virtualKey(static_cast<const QKeyEvent*>(event)->key()),
                    1,
                    GetTickCount(),
                    {}};
        swallows_ = host::filterMessage(message);
        if (swallows_)
            event->accept();
        return swallows_;
    }

private:
    bool swallows_ = false;
};

} // namespace

CAcUiDialog::CAcUiDialog(UINT id, CWnd* parent, HINSTANCE resources)
    : CAdUiDialog(id, parent != nullptr ? parent : acedGetAcadFrame(), resources) {}

INT_PTR CAcUiDialog::DoModal() {
    if (m_hDialogResourceSaved == nullptr)
        return CAdUiDialog::DoModal();
    const CAcModuleResourceOverride resources(m_hDialogResourceSaved);
    return CAdUiDialog::DoModal();
}

CWnd* acedGetAcadFrame() {
    static CWnd frame;
    return &frame;
}
CWnd* acedGetAcadDwgView() {
    static CWnd view;
    return &view;
}
HWND adsw_acadMainWnd() {
    return acedGetAcadFrame()->m_hWnd;
}
HWND adsw_acadDocWnd() {
    return acedGetAcadDwgView()->m_hWnd;
}

BOOL acedRegisterFilterWinMsg(AcedFilterWinMsgFn function) {
    if (function == nullptr || std::ranges::find(filters(), function) != filters().end())
        return FALSE;
    filters().push_back(function);
    return TRUE;
}

BOOL acedRemoveFilterWinMsg(AcedFilterWinMsgFn function) {
    return std::erase(filters(), function) != 0 ? TRUE : FALSE;
}

namespace host {

bool filterMessage(MSG& message) {
    bool swallowed = false;
    // A filter may remove itself; one that did is not called any more.
    for (const AcedFilterWinMsgFn filter : std::vector(filters())) {
        if (!swallowed && std::ranges::find(filters(), filter) != filters().end())
            guarded([&] { swallowed = filter(&message) != FALSE; });
    }
    return swallowed;
}

void hangApplicationWindows(QWidget* frame, QWidget* drawingView) {
    const auto attach = [](CWnd& window, QWidget* widget) {
        window.Detach();
        if (widget != nullptr)
            window.Attach(adoptWidget(widget));
    };
    attach(*acedGetAcadFrame(), frame);
    attach(*acedGetAcadDwgView(), drawingView);
    static WindowKeys* const keys = [] {
        auto* made = new WindowKeys;
        made->setParent(&application());
        application().installEventFilter(made);
        return made;
    }();
    keys->frame = frame;
}

bool dialogKeepsFocus() {
    const HWND focused = hasApplication() ? windowOfWidget(QApplication::focusWidget()) : nullptr;
    for (HWND at = focused; at != nullptr; at = at->parent) {
        const bool isDialog = at->isDialog() && (at->style & WS_CHILD) == 0;
        if (isDialog) {
            LRESULT keeps = 0;
            guarded([&] { keeps = at->send(WM_ACAD_KEEPFOCUS); });
            return keeps != 0;
        }
    }
    return false;
}

} // namespace host
