#include "host/mfc/widgets/dialogwindow.h"

#include "host/mfc/adui.h"
#include "host/mfc/widgets/application.h"
#include "host/mfc/widgets/context.h"
#include "host/mfc/widgets/frame.h"
#include "host/rx/text.h"
#include "host/win/moduleinstance.h"

#include <QApplication>
#include <QButtonGroup>
#include <QCloseEvent>
#include <QIcon>
#include <QMouseEvent>
#include <QPainter>
#include <QResizeEvent>

namespace host {
namespace {

bool hasHandler(HWND window, UINT message) {
    return window->object != nullptr && window->object->findEntry(message, 0, 0) != nullptr;
}

} // namespace

void ContentWidget::paintEvent(QPaintEvent*) {
    if (window != nullptr && !window->dying &&
        (hasHandler(window, WM_PAINT) || hasHandler(window, WM_ERASEBKGND)))
        window->paintByClass(this);
}

void ContentWidget::resizeEvent(QResizeEvent* event) {
    if (window != nullptr && !window->dying)
        guarded([&] {
            window->send(WM_SIZE, SIZE_RESTORED,
                         MAKELPARAM(static_cast<unsigned>(event->size().width()),
                                    static_cast<unsigned>(event->size().height())));
        });
}

DialogWindow::DialogWindow(QWidget* frame, ContentWidget* area, HWND owner, DWORD windowStyle,
                           DWORD extendedStyle, FrameMeasures around)
    : HWND__(frame, owner, 0, windowStyle, extendedStyle), measures(around) {
    content = area;
    area->window = this;
    area->setMouseTracking(true);
    if (area != frame)
        area->installEventFilter(this);
}

DialogWindow* dialogOf(HWND window) {
    return dynamic_cast<DialogWindow*>(window);
}

HWND DialogWindow::child(UINT childId) const {
    const auto found = std::ranges::find(children, childId, &HWND__::id);
    if (found != children.end())
        return *found;
    for (const HWND each : children) // controls of dialogs inside this one
        if (const DialogWindow* inner = dialogOf(each))
            if (HWND deeper = inner->child(childId))
                return deeper;
    return nullptr;
}

UINT DialogWindow::defaultId() const {
    return defaultId_;
}

void DialogWindow::setDefaultId(UINT buttonId) {
    if (HWND before = child(defaultId_))
        setDefault(before, false);
    defaultId_ = buttonId;
    if (HWND now = child(buttonId))
        setDefault(now, true);
}

void DialogWindow::end(int value) {
    ended = true;
    result = value;
    if (modal && !widget.isNull())
        widget->hide();
    if (loop != nullptr)
        loop->quit();
}

void DialogWindow::resizeContent(QSize size) {
    resizeWidget(*widget, QSize(size.width() + 2 * measures.border,
                                size.height() + measures.title + 2 * measures.border));
    if (auto* frame = dynamic_cast<FrameWidget*>(widget.data()))
        frame->layOut();
}

void DialogWindow::resized() {
    if (auto* frame = dynamic_cast<FrameWidget*>(widget.data()))
        frame->layOut();
    if (!widget->isVisible())
        guarded([&] {
            send(WM_SIZE, SIZE_RESTORED,
                 MAKELPARAM(static_cast<unsigned>(content->width()),
                            static_cast<unsigned>(content->height())));
        });
}

void DialogWindow::updateLimits() {
    if ((style & (WS_THICKFRAME | WS_CHILD)) != WS_THICKFRAME) {
        return;
    }
    MINMAXINFO limits{};
    limits.ptMaxTrackSize = {QWIDGETSIZE_MAX, QWIDGETSIZE_MAX};
    guarded([&] { send(WM_GETMINMAXINFO, 0, reinterpret_cast<LPARAM>(&limits)); });
    widget->setMinimumSize(std::max<int>(0, limits.ptMinTrackSize.x),
                           std::max<int>(0, limits.ptMinTrackSize.y));
}

void DialogWindow::setText(const std::wstring& text) {
    HWND__::setText(text);
    widget->update();
}

void DialogWindow::applyStyle() {
    widget->update();
}

LRESULT DialogWindow::defaultProc(UINT message, WPARAM wParam, LPARAM lParam) {
    switch (message) {
    case WM_CLOSE:
        send(WM_COMMAND, IDCANCEL);
        return 0;
    case WM_SYSCOMMAND:
        if (wParam == SC_CLOSE)
            send(WM_CLOSE);
        return 0;
    case WM_SETICON: {
        auto* const before = std::exchange(icon, reinterpret_cast<HICON>(lParam));
        widget->setWindowIcon(QIcon(iconPicture(icon)));
        widget->update();
        return reinterpret_cast<LRESULT>(before);
    }
    case WM_NCHITTEST:
    case WM_NCLBUTTONDOWN:
    case WM_NCLBUTTONUP:
    case WM_NCLBUTTONDBLCLK: {
        const LRESULT place = frameDefault(this, message, wParam, lParam);
        return place >= 0 ? place : message == WM_NCHITTEST ? HTCLIENT : 0;
    }
    default:
        return HWND__::defaultProc(message, wParam, lParam);
    }
}

bool DialogWindow::isOverContent(const QMouseEvent& event) const {
    return content->rect().contains(content->mapFromGlobal(event.globalPosition().toPoint()));
}

bool DialogWindow::filter(QEvent* event) {
    switch (event->type()) {
    case QEvent::Close:
        event->ignore();
        guarded([&] { send(WM_CLOSE); });
        return true;
    case QEvent::WindowActivate:
    case QEvent::WindowDeactivate:
        if ((style & WS_CHILD) == 0)
            guarded([&] {
                send(WM_ACTIVATE, event->type() == QEvent::WindowActivate ? WA_ACTIVE : WA_INACTIVE);
            });
        return false;
    case QEvent::MouseButtonPress:
    case QEvent::MouseButtonRelease:
    case QEvent::MouseButtonDblClick:
    case QEvent::MouseMove:
        // The frame has its own messages.
        return isOverContent(*static_cast<QMouseEvent*>(event)) && HWND__::filter(event);
    case QEvent::Paint:
        return false; // the content paints itself
    default:
        return HWND__::filter(event);
    }
}

namespace {

struct MadeFrame {
    QWidget* frame;
    ContentWidget* content;
    FrameMeasures measures;
};

// Whether the class hears of the mouse over the frame: a window manager that draws the frame keeps that for
// itself.
bool minds(const CWnd* object, std::initializer_list<UINT> messages) {
    return object != nullptr && std::ranges::any_of(messages, [&](UINT message) {
               return object->findEntry(message, 0, 0) != nullptr;
           });
}

MadeFrame makeFrame(const DialogTemplate& from, HWND owner, const CWnd* object) {
    QWidget* const parent = owner != nullptr ? owner->content.data() : nullptr;
    if ((from.style & WS_CHILD) != 0) {
        auto* content = new ContentWidget(parent);
        return {content, content, {}};
    }
    if (isOffscreen() || (from.exStyle & WS_EX_TOOLWINDOW) != 0 ||
        minds(object, {WM_NCLBUTTONDOWN, WM_NCLBUTTONDBLCLK, WM_NCMOUSEMOVE})) {
        auto* frame =
            new FrameWidget(parent != nullptr ? parent->window() : nullptr, from.style, from.exStyle);
        return {frame, frame->content, frame->measures};
    }
    auto* content = new ContentWidget(nullptr);
    content->setParent(parent != nullptr ? parent->window() : nullptr, Qt::Dialog | Qt::CustomizeWindowHint |
                                                                           Qt::WindowTitleHint |
                                                                           Qt::WindowCloseButtonHint);
    return {content, content, {}};
}

// What is asked in the middle of its owner; what stays open beside the work in a corner of the drawing view.
void placeOverOwner(QWidget& widget, HWND owner, bool modal) {
    constexpr int margin = 16;
    const HWND view = modal ? nullptr : acedGetAcadDwgView()->m_hWnd;
    if (view != nullptr && !view->widget.isNull() && view->widget->isVisible()) {
        const QWidget& beside = *view->widget;
        widget.move(beside.mapToGlobal(QPoint(beside.width() - widget.width() - margin, margin)));
        return;
    }
    const QWidget* over = owner != nullptr && !owner->widget.isNull() ? owner->widget->window() : nullptr;
    if (over != nullptr && over->isVisible())
        widget.move(over->geometry().center() - widget.rect().center());
}

} // namespace

DialogWindow* buildDialog(const DialogTemplate& from, HWND owner, CWnd* object, bool modal) {
    application();
    const MadeFrame made = makeFrame(from, owner, object);
    auto* window = new DialogWindow(made.frame, made.content, owner, from.style, from.exStyle, made.measures);
    if (auto* frame = dynamic_cast<FrameWidget*>(made.frame))
        frame->window = window;
    const QFont font = dialogFont(from.face, from.points, from.weight, from.italic);
    window->units = dialogUnits(font);
    window->modal = modal;
    made.frame->setFont(font);
    made.frame->setWindowTitle(toQt(from.caption));
    if (modal && !isOffscreen())
        made.frame->setWindowModality(Qt::ApplicationModal);
    const QRect rect = window->units.pixels(from.rect.left, from.rect.top, from.rect.width, from.rect.height);
    if ((from.style & WS_CHILD) != 0)
        made.frame->setGeometry(rect);
    else
        window->resizeContent(rect.size());
    if ((from.style & (WS_THICKFRAME | WS_CHILD)) == 0)
        made.frame->setMinimumSize(0, 0);
    // Without a sizing border the window manager leaves the size to the program.
    if ((from.style & (WS_THICKFRAME | WS_CHILD)) == 0 && made.frame == made.content)
        made.frame->setFixedSize(made.frame->size());
    if ((from.style & WS_CHILD) == 0)
        placeOverOwner(*made.frame, owner, modal);
    if (object != nullptr)
        object->Attach(window);
    for (const TemplateItem& item : from.items) {
        WindowSpec spec{item.className, item.text, item.image, item.style | WS_CHILD, item.exStyle, {},
                        window,         item.id,   font};
        spec.rect = window->units.pixels(item.rect.left, item.rect.top, item.rect.width, item.rect.height);
        if (equalNoCase(spec.className, L"ComboBox")) // the template's height is that of the open list
            spec.rect.setHeight(window->units.pixels(0, 0, 0, 12).height() + 1);
        createWindow(spec);
        if (equalNoCase(item.className, L"Button") && (item.style & BS_TYPEMASK) == BS_DEFPUSHBUTTON)
            window->setDefaultId(item.id);
    }
    joinControls(window);
    if ((from.style & WS_CHILD) == 0)
        openDialogs().push_back(window);
    return window;
}

void closeDialogsOf(HINSTANCE module) {
    for (const HWND dialog : std::vector(openDialogs())) {
        // Where the functions of the object's class are.
        const void* functions =
            dialog->object != nullptr ? *reinterpret_cast<const void* const*>(dialog->object) : nullptr;
        if (functions != nullptr && moduleOfAddress(functions) == module)
            destroyWindow(dialog);
    }
    processEvents();
}

} // namespace host
