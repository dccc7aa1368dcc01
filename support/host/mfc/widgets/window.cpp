// Events to messages, and the life of windows.
#include "host/mfc/widgets/window.h"

#include "host/mfc/widgets/context.h"
#include "host/mfc/widgets/filters.h"
#include "host/win/clock.h"

#include <QAbstractScrollArea>
#include <QApplication>
#include <QContextMenuEvent>
#include <QCursor>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QScopeGuard>
#include <QTimerEvent>
#include <QWheelEvent>
#include <algorithm>
#include <array>
#include <unordered_map>

namespace {

std::unordered_map<const QObject*, HWND>& windowsByWidget() {
    static std::unordered_map<const QObject*, HWND> map;
    return map;
}

bool isViewport(const QObject* watched) {
    const auto* area = qobject_cast<const QAbstractScrollArea*>(watched->parent());
    return area != nullptr && area->viewport() == watched;
}

UINT buttonMessage(const QMouseEvent& event, UINT left, UINT right) {
    return event.button() == Qt::LeftButton ? left : event.button() == Qt::RightButton ? right : WM_NULL;
}

UINT mouseMessage(const QEvent& event) {
    const auto either = [&](UINT left, UINT right) {
        return buttonMessage(static_cast<const QMouseEvent&>(event), left, right);
    };
    switch (event.type()) {
    case QEvent::MouseButtonPress:
        return either(WM_LBUTTONDOWN, WM_RBUTTONDOWN);
    case QEvent::MouseButtonRelease:
        return either(WM_LBUTTONUP, WM_RBUTTONUP);
    case QEvent::MouseButtonDblClick:
        return either(WM_LBUTTONDBLCLK, WM_RBUTTONDBLCLK);
    case QEvent::MouseMove:
        return WM_MOUSEMOVE;
    default:
        return WM_NULL;
    }
}

} // namespace

HWND__::HWND__(QWidget* made, HWND owner, UINT controlId, DWORD windowStyle, DWORD extendedStyle)
    : widget(made), content(made), parent(owner), id(controlId), style(windowStyle), exStyle(extendedStyle) {
    if (owner != nullptr && (style & WS_CHILD) != 0)
        owner->children.push_back(this);
    made->installEventFilter(this);
    windowsByWidget()[made] = this;
}

HWND__::~HWND__() {
    std::erase_if(windowsByWidget(), [this](const auto& entry) { return entry.second == this; });
}

LRESULT HWND__::send(UINT message, WPARAM wParam, LPARAM lParam) {
    return object != nullptr ? object->callWindowProc(message, wParam, lParam)
                             : defaultProc(message, wParam, lParam);
}

LRESULT HWND__::runPending() {
    if (pending_ == nullptr || pendingRun_ || widget.isNull())
        return 0;
    pendingRun_ = true;
    if (pending_->type() != QEvent::Paint && pending_->type() != QEvent::None)
        static_cast<QObject*>(widget.data())->event(pending_);
    return 0;
}

LRESULT HWND__::defaultProc(UINT message, WPARAM wParam, LPARAM lParam) {
    switch (message) {
    case WM_SETTEXT:
        setText(reinterpret_cast<LPCWSTR>(lParam));
        return TRUE;
    case WM_GETTEXTLENGTH:
        return static_cast<LRESULT>(text().size());
    case WM_GETTEXT: {
        const std::wstring value = text();
        auto* to = reinterpret_cast<LPWSTR>(lParam);
        const std::size_t count = wParam == 0 ? 0 : std::min(value.size(), std::size_t{wParam} - 1);
        if (wParam != 0)
            *std::copy_n(value.begin(), count, to) = 0;
        return static_cast<LRESULT>(count);
    }
    case WM_NCHITTEST:
        return HTCLIENT;
    case WM_CONTEXTMENU: // the window stays the one that was meant
        return (style & WS_CHILD) != 0 && parent != nullptr && !parent->dying
                   ? parent->send(message, wParam, lParam)
                   : 0;
    case WM_GETFONT:
        return reinterpret_cast<LRESULT>(font);
    case WM_SETFONT:
        font = reinterpret_cast<HFONT>(wParam);
        setFontOf(host::fontOf(font));
        return 0;
    case WM_KEYDOWN:
    case WM_KEYUP:
    case WM_CHAR:
    case WM_MOUSEMOVE:
    case WM_LBUTTONDOWN:
    case WM_LBUTTONUP:
    case WM_LBUTTONDBLCLK:
    case WM_RBUTTONDOWN:
    case WM_RBUTTONUP:
    case WM_MOUSEWHEEL:
    case WM_PAINT:
        return runPending();
    default:
        return 0;
    }
}

std::wstring HWND__::text() const {
    return widget.isNull() ? std::wstring() : host::fromQt(widget->windowTitle());
}
void HWND__::setText(const std::wstring& value) {
    if (!widget.isNull())
        widget->setWindowTitle(host::toQt(value));
}
void HWND__::setFontOf(const QFont& value) {
    if (!widget.isNull())
        widget->setFont(value);
}
bool HWND__::isEnabled() const {
    return !widget.isNull() && widget->isEnabled();
}

std::wstring HWND__::scriptSet(const std::wstring&) {
    return kind() + L"没有可以设置的内容";
}
std::wstring HWND__::scriptCheck(bool) {
    return kind() + L"不能勾选";
}
std::wstring HWND__::scriptClick() {
    return kind() + L"不能按下";
}
std::wstring HWND__::scriptSelect(const std::vector<int>&) {
    return kind() + L"没有可以选择的行";
}
std::wstring HWND__::scriptCell(int, int, const std::wstring&) {
    return kind() + L"不是表格";
}

void HWND__::command(UINT code) {
    if (parent != nullptr && !parent->dying && !dying)
        host::guarded(
            [&] { parent->send(WM_COMMAND, MAKEWPARAM(id, code), reinterpret_cast<LPARAM>(this)); });
}

LRESULT HWND__::notify(NMHDR& header, UINT code) {
    header.hwndFrom = this;
    header.idFrom = id;
    header.code = code;
    LRESULT result = 0;
    if (parent != nullptr && !parent->dying && !dying)
        host::guarded([&] { result = parent->send(WM_NOTIFY, id, reinterpret_cast<LPARAM>(&header)); });
    return result;
}

bool HWND__::offer(UINT message, WPARAM wParam, LPARAM lParam, QEvent* event) {
    QEvent* const outer = std::exchange(pending_, event);
    const bool outerRun = std::exchange(pendingRun_, false);
    const QPointer<HWND__> self(this);
    host::guarded([&] { send(message, wParam, lParam); });
    if (self.isNull())
        return true;
    pending_ = outer;
    return std::exchange(pendingRun_, outerRun);
}

bool HWND__::keyEvent(QEvent* event, bool down) {
    auto& key = static_cast<QKeyEvent&>(*event);
    const UINT code = host::virtualKey(key.key());
    MSG message{this, down ? WM_KEYDOWN : WM_KEYUP, code, 1, GetTickCount(), {}};
    const QPointer<HWND__> self(this);
    // A key that nobody wants is not offered to the parents: here only this window has it.
    const auto accepted = qScopeGuard([&] { key.accept(); });
    bool taken = host::filterMessage(message);
    for (HWND at = this; at != nullptr && !taken; at = at->parent) {
        if (at->object != nullptr)
            host::guarded([&] { taken = at->object->PreTranslateMessage(&message) != FALSE; });
        if (self.isNull())
            return true;
        if (at->isDialog() && (at->style & WS_CHILD) == 0)
            break;
    }
    if (taken || self.isNull())
        return true;
    if (key.key() == Qt::Key_F10 && key.modifiers() == Qt::ShiftModifier) {
        if (down)
            askMenu(host::byKeyboard);
        return true;
    }
    const QString typed = down ? key.text() : QString();
    const bool isCharacter = !typed.isEmpty() && (typed[0].isPrint() || code == VK_BACK || code == VK_RETURN);
    if (object == nullptr) {
        static_cast<QObject*>(widget.data())->event(event);
        return true;
    }
    // A key that types something reaches the widget as its character.
    offer(message.message, code, 1, isCharacter ? nullptr : event);
    if (isCharacter && !self.isNull())
        offer(WM_CHAR, typed[0].unicode(), 1, event);
    return true;
}

bool HWND__::mouseEvent(QEvent* event) {
    const UINT message = mouseMessage(*event);
    if (message == WM_NULL)
        return false;
    const auto& mouse = static_cast<QMouseEvent&>(*event);
    const WPARAM keys = host::mouseKeys(mouse.buttons(), mouse.modifiers());
    const QPoint at =
        content.isNull() ? mouse.pos() : content->mapFromGlobal(mouse.globalPosition().toPoint());
    MSG whole{this, message, keys, host::packed(at), GetTickCount(), {}};
    for (HWND up = this; up != nullptr; up = up->parent) {
        BOOL taken = FALSE;
        if (up->object != nullptr)
            host::guarded([&] { taken = up->object->PreTranslateMessage(&whole); });
        if (taken != FALSE)
            return true;
        if (up->isDialog() && (up->style & WS_CHILD) == 0)
            break;
    }
    return object != nullptr && (offer(message, keys, host::packed(at), event), true);
}

QPoint HWND__::contextPlace() const {
    return widget.isNull() ? QPoint() : widget->mapToGlobal(widget->rect().center());
}

void HWND__::rightClick(QPoint onScreen) {
    const QPointer<HWND__> self(this);
    if (!tellRightClick(onScreen) && !self.isNull() && !dying)
        askMenu(host::packed(onScreen));
}

void HWND__::askMenu(LPARAM at) {
    host::guarded([&] { send(WM_CONTEXTMENU, reinterpret_cast<WPARAM>(this), at); });
}

// Also of the menu key, which means no place.
bool HWND__::contextEvent(QEvent* event) {
    const auto& asked = static_cast<const QContextMenuEvent&>(*event);
    event->accept();
    HWND meant = this; // a disabled window's clicks are its parent's
    while (meant != nullptr && !meant->isEnabled())
        meant = (meant->style & WS_CHILD) != 0 ? meant->parent : nullptr;
    if (meant == nullptr)
        return true;
    if (asked.reason() == QContextMenuEvent::Keyboard)
        meant->askMenu(host::byKeyboard);
    else
        meant->rightClick(asked.globalPos());
    return true;
}

bool HWND__::filter(QEvent* event) {
    switch (event->type()) {
    case QEvent::MouseButtonPress:
    case QEvent::MouseButtonRelease:
    case QEvent::MouseButtonDblClick:
    case QEvent::MouseMove:
        return mouseEvent(event);
    case QEvent::Wheel:
        if (object != nullptr) {
            const auto& turned = static_cast<QWheelEvent&>(*event);
            offer(WM_MOUSEWHEEL, MAKEWPARAM(0, static_cast<WORD>(turned.angleDelta().y())),
                  host::packed(turned.globalPosition().toPoint()), event);
            return true;
        }
        return false;
    case QEvent::FocusIn:
        host::guarded([&] { send(WM_SETFOCUS); });
        return false;
    case QEvent::FocusOut:
        host::guarded([&] { send(WM_KILLFOCUS); });
        return false;
    case QEvent::Paint:
        return object != nullptr && object->findEntry(WM_PAINT, 0, 0) != nullptr && paintByClass(widget);
    default:
        return false;
    }
}

bool HWND__::eventFilter(QObject* watched, QEvent* event) {
    if (dying || adopted || widget.isNull())
        return false;
    const QEvent::Type type = event->type();
    if (type == QEvent::KeyPress || type == QEvent::KeyRelease)
        return keyEvent(event, type == QEvent::KeyPress);
    if (type == QEvent::ContextMenu)
        return contextEvent(event);
    if (isViewport(watched)) {
        // Such events pass through the widget's own filter; they go on when the class has let them.
        if (mouseMessage(*event) == WM_NULL || object == nullptr)
            return false;
        const auto& mouse = static_cast<QMouseEvent&>(*event);
        QEvent nothing(QEvent::None);
        return !offer(mouseMessage(mouse), host::mouseKeys(mouse.buttons(), mouse.modifiers()),
                      host::packed(mouse.pos()), &nothing);
    }
    return filter(event);
}

void HWND__::timerEvent(QTimerEvent* event) {
    const auto found = timers_.find(event->timerId());
    if (found != timers_.end() && !dying)
        host::guarded([&] { send(WM_TIMER, found->second); });
}

void HWND__::askColor(UINT message, QPalette::ColorRole role) {
    if (parent == nullptr || parent->object == nullptr || parent->dying || parent->content.isNull())
        return;
    QImage nowhere(1, 1, QImage::Format_RGB32);
    QPainter painter(&nowhere);
    CDC context;
    context.Attach(host::newContext(&painter));
    context.SetTextColor(host::fromColor(parent->content->palette().color(role)));
    host::guarded([&] {
        parent->send(message, reinterpret_cast<WPARAM>(context.m_hDC), reinterpret_cast<LPARAM>(this));
    });
    const QColor wanted = host::toColor(context.GetTextColor());
    if (isEnabled() && widget->palette().color(role) != wanted) {
        QPalette palette = widget->palette();
        palette.setColor(QPalette::Active, role, wanted);
        palette.setColor(QPalette::Inactive, role, wanted);
        widget->setPalette(palette);
    }
}

bool HWND__::setTimer(UINT_PTR timer, UINT milliseconds) {
    killTimerOf(timer);
    const int started = startTimer(static_cast<int>(milliseconds));
    if (started != 0)
        timers_[started] = timer;
    return started != 0;
}

bool HWND__::killTimerOf(UINT_PTR timer) {
    const auto found = std::ranges::find(timers_, timer, &std::pair<const int, UINT_PTR>::second);
    if (found == timers_.end())
        return false;
    killTimer(found->first);
    timers_.erase(found);
    return true;
}

bool HWND__::paintByClass(QWidget* on) {
    QPainter painter(on);
    painter.setFont(on->font());
    CDC context;
    context.Attach(host::newContext(&painter));
    CDC* const outer = std::exchange(paintContext, &context);
    host::guarded([&] { send(WM_ERASEBKGND, reinterpret_cast<WPARAM>(context.m_hDC)); });
    QEvent paint(QEvent::Paint);
    const bool byDefault = offer(WM_PAINT, 0, 0, &paint);
    paintContext = outer;
    return !byDefault;
}

namespace host {

HWND windowOfWidget(const QWidget* widget) {
    for (const QObject* at = widget; at != nullptr; at = at->parent()) {
        const auto found = windowsByWidget().find(at);
        if (found != windowsByWidget().end())
            return found->second;
    }
    return nullptr;
}

void resizeWidget(QWidget& widget, QSize size) {
    if (widget.minimumSize() == widget.maximumSize())
        widget.setFixedSize(size);
    else
        widget.resize(size);
}

HWND adoptWidget(QWidget* widget) {
    if (widget == nullptr)
        return nullptr;
    if (const auto found = windowsByWidget().find(widget); found != windowsByWidget().end())
        return found->second;
    auto* window = new HWND__(widget, nullptr, 0, WS_VISIBLE, 0);
    window->adopted = true;
    // The widget is not ours; it may go at any time.
    QObject::connect(widget, &QObject::destroyed, window, [window] {
        if (CWnd* object = std::exchange(window->object, nullptr))
            object->m_hWnd = nullptr;
        window->deleteLater();
    });
    return window;
}

void destroyWindow(HWND window) {
    if (window == nullptr || window->dying)
        return;
    std::erase(openDialogs(), window);
    guarded([&] { window->send(WM_DESTROY); });
    if (!window->widget.isNull())
        window->widget->hide();
    for (const HWND child : std::vector(window->children))
        destroyWindow(child);
    window->dying = true;
    if (window->parent != nullptr)
        std::erase(window->parent->children, window);
    if (window->object != nullptr)
        guarded([&] { window->send(WM_NCDESTROY); });
    if (!window->widget.isNull())
        window->widget->deleteLater();
    window->deleteLater();
}

std::exception_ptr& keptException() {
    static std::exception_ptr kept;
    return kept;
}

void throwKept() {
    if (keptException())
        std::rethrow_exception(std::exchange(keptException(), nullptr));
}

std::vector<HWND>& openDialogs() {
    static std::vector<HWND> dialogs;
    return dialogs;
}

QString toQt(std::wstring_view text) {
    return QString::fromWCharArray(text.data(), static_cast<qsizetype>(text.size()));
}
std::wstring fromQt(const QString& text) {
    return text.toStdWString();
}

std::wstring withoutMnemonic(std::wstring text) {
    for (std::size_t at = text.find(L'&'); at != text.npos; at = text.find(L'&', at + 1))
        text.erase(at, 1);
    return text;
}

UINT virtualKey(int qtKey) {
    static constexpr std::array<std::pair<int, UINT>, 17> keys{{{Qt::Key_Backspace, VK_BACK},
                                                                {Qt::Key_Tab, VK_TAB},
                                                                {Qt::Key_Backtab, VK_TAB},
                                                                {Qt::Key_Return, VK_RETURN},
                                                                {Qt::Key_Enter, VK_RETURN},
                                                                {Qt::Key_Shift, VK_SHIFT},
                                                                {Qt::Key_Control, VK_CONTROL},
                                                                {Qt::Key_Alt, VK_MENU},
                                                                {Qt::Key_Escape, VK_ESCAPE},
                                                                {Qt::Key_PageUp, VK_PRIOR},
                                                                {Qt::Key_PageDown, VK_NEXT},
                                                                {Qt::Key_End, VK_END},
                                                                {Qt::Key_Home, VK_HOME},
                                                                {Qt::Key_Left, VK_LEFT},
                                                                {Qt::Key_Up, VK_UP},
                                                                {Qt::Key_Right, VK_RIGHT},
                                                                {Qt::Key_Down, VK_DOWN}}};
    if (const auto found = std::ranges::find(keys, qtKey, &std::pair<int, UINT>::first); found != keys.end())
        return found->second;
    if (qtKey == Qt::Key_Insert || qtKey == Qt::Key_Delete)
        return qtKey == Qt::Key_Insert ? VK_INSERT : VK_DELETE;
    if (qtKey >= Qt::Key_F1 && qtKey <= Qt::Key_F12)
        return VK_F1 + static_cast<UINT>(qtKey - Qt::Key_F1);
    return qtKey < 0x80 ? static_cast<UINT>(qtKey) : 0; // letters in capitals, digits, blank
}

WPARAM mouseKeys(Qt::MouseButtons buttons, Qt::KeyboardModifiers modifiers) {
    return (buttons.testFlag(Qt::LeftButton) ? MK_LBUTTON : 0) |
           (buttons.testFlag(Qt::RightButton) ? MK_RBUTTON : 0) |
           (buttons.testFlag(Qt::MiddleButton) ? MK_MBUTTON : 0) |
           (modifiers.testFlag(Qt::ShiftModifier) ? MK_SHIFT : 0) |
           (modifiers.testFlag(Qt::ControlModifier) ? MK_CONTROL : 0);
}

LPARAM packed(QPoint point) {
    return MAKELPARAM(static_cast<WORD>(point.x()), static_cast<WORD>(point.y()));
}
RECT toRect(const QRect& rect) {
    return {rect.left(), rect.top(), rect.left() + rect.width(), rect.top() + rect.height()};
}
QRect toQRect(const RECT& rect) {
    return {rect.left, rect.top, rect.right - rect.left, rect.bottom - rect.top};
}
QColor toColor(COLORREF color) {
    return {GetRValue(color), GetGValue(color), GetBValue(color)};
}
COLORREF fromColor(const QColor& color) {
    return RGB(static_cast<unsigned>(color.red()), static_cast<unsigned>(color.green()),
               static_cast<unsigned>(color.blue()));
}

QFont dialogFont(std::wstring_view, int points, int weight, bool italic) {
    QFont font;
    font.setFamilies({"Microsoft YaHei UI", "Microsoft YaHei", "Noto Sans CJK SC", "Source Han Sans SC",
                      "WenQuanYi Micro Hei", "sans-serif"});
    font.setPixelSize(std::max(1, (points * 96 + 36) / 72));
    font.setWeight(weight >= FW_BOLD ? QFont::Bold : QFont::Normal);
    font.setItalic(italic);
    return font;
}

// The average width of the Latin letters, and a line's height as Chinese interface faces have it, whatever
// the line gap of the face that stands for them.
DialogUnits dialogUnits(const QFont& font) {
    static const QString letters = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz";
    const double width = QFontMetricsF(font).horizontalAdvance(letters) / static_cast<double>(letters.size());
    return {std::max(1, qRound(width)), std::max(1, qRound(font.pixelSize() * 4.0 / 3.0))};
}

QRect DialogUnits::pixels(int left, int top, int width, int height) const {
    const auto across = [this](int units) { return (units * x + 2) / 4; };
    const auto down = [this](int units) { return (units * y + 4) / 8; };
    return {across(left), down(top), across(width), down(height)};
}

} // namespace host
