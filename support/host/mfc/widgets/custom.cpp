// Windows whose class paints them: with scroll bars when they ask for them, as controls or as windows of
// their own over others.
#include "host/mfc/widgets/custom.h"

#include <QApplication>
#include <QResizeEvent>

namespace host {
namespace {

// The content with a bar at its right and its bottom.
class CustomWidget : public QWidget {
public:
    CustomWidget(QWidget* parent, Qt::WindowFlags flags)
        : QWidget(parent, flags), area(new ContentWidget(this)), across(Qt::Horizontal, this),
          down(Qt::Vertical, this) {
        across.hide();
        down.hide();
        setFocusPolicy(Qt::StrongFocus);
        setAttribute(Qt::WA_InputMethodEnabled);
    }
    void layOut() {
        constexpr int bar = 17;
        const QRect inside = rect().adjusted(edge, edge, -edge, -edge);
        const int right = down.isHidden() ? 0 : bar, bottom = across.isHidden() ? 0 : bar;
        area->setGeometry(inside.adjusted(0, 0, -right, -bottom));
        down.setGeometry(inside.right() - right + 1, inside.top(), right, inside.height() - bottom);
        across.setGeometry(inside.left(), inside.bottom() - bottom + 1, inside.width() - right, bottom);
    }

    ContentWidget* area;
    QScrollBar across, down;
    int edge = 0;

protected:
    void resizeEvent(QResizeEvent*) override { layOut(); }
    void paintEvent(QPaintEvent*) override {
        if (edge > 0) {
            QPainter painter(this);
            painter.setPen(QColor(160, 160, 160));
            painter.drawRect(rect().adjusted(0, 0, -1, -1));
        }
    }
};

CustomWidget& widgetOf(const CustomWindow& window) {
    return static_cast<CustomWidget&>(*window.widget);
}

} // namespace

CustomWindow::CustomWindow(QWidget* made, const WindowSpec& spec)
    : HWND__(made, spec.parent, spec.id, spec.style, spec.exStyle) {
    auto& whole = static_cast<CustomWidget&>(*made);
    content = whole.area;
    whole.area->window = this;
    whole.area->setMouseTracking(true);
    whole.area->setFocusProxy(nullptr);
    whole.area->installEventFilter(this);
    whole.edge = (style & WS_BORDER) != 0 || (exStyle & WS_EX_CLIENTEDGE) != 0 ? 1 : 0;
    text_ = spec.text;
    const auto connect = [this](QScrollBar& bar, UINT message) {
        QObject::connect(&bar, &QScrollBar::valueChanged, this, [this, &bar, message](int value) {
            if (!quiet_)
                guarded([&] {
                    const unsigned code = bar.isSliderDown() ? SB_THUMBTRACK : SB_THUMBPOSITION;
                    send(message, MAKEWPARAM(code, static_cast<unsigned>(value)));
                });
        });
    };
    connect(whole.across, WM_HSCROLL);
    connect(whole.down, WM_VSCROLL);
}

QScrollBar& CustomWindow::bar(int which) const {
    CustomWidget& whole = widgetOf(*this);
    return which == SB_HORZ ? whole.across : whole.down;
}

void CustomWindow::setScroll(int which, const SCROLLINFO& info) {
    QScrollBar& changed = bar(which);
    quiet_ = true;
    if ((info.fMask & SIF_PAGE) != 0)
        changed.setPageStep(static_cast<int>(info.nPage));
    if ((info.fMask & SIF_RANGE) != 0)
        changed.setRange(info.nMin, std::max(info.nMin, info.nMax - std::max(0, changed.pageStep() - 1)));
    if ((info.fMask & SIF_POS) != 0)
        changed.setValue(info.nPos);
    const bool shown = changed.maximum() > changed.minimum();
    if (changed.isHidden() == shown) {
        changed.setVisible(shown);
        widgetOf(*this).layOut();
    }
    quiet_ = false;
}

SCROLLINFO CustomWindow::scroll(int which) const {
    const QScrollBar& asked = bar(which);
    SCROLLINFO info{};
    info.nMin = asked.minimum();
    info.nMax = asked.maximum() + std::max(0, asked.pageStep() - 1);
    info.nPage = static_cast<UINT>(asked.pageStep());
    info.nPos = asked.value();
    info.nTrackPos = asked.sliderPosition();
    return info;
}

std::wstring CustomWindow::text() const {
    return text_;
}
void CustomWindow::setText(const std::wstring& text) {
    text_ = text;
    content->update();
}

std::wstring CustomWindow::scriptCell(int row, int column, const std::wstring& value) {
    std::wstring text = std::to_wstring(row) + L"\t" + std::to_wstring(column) + L"\t" + value;
    COPYDATASTRUCT data{1, static_cast<DWORD>(text.size() * sizeof(wchar_t)), text.data()};
    LRESULT taken = 0;
    guarded([&] { taken = send(WM_COPYDATA, 0, reinterpret_cast<LPARAM>(&data)); });
    return taken != 0 ? std::wstring()
                      : L"单元格 " + std::to_wstring(row) + L"," + std::to_wstring(column) +
                            L" 不存在或者不能填入“" + value + L"”";
}

std::wstring CustomWindow::scriptGet() const {
    CString text;
    if (object != nullptr)
        object->GetWindowText(text);
    return text.GetString();
}

bool CustomWindow::filter(QEvent* event) {
    if (event->type() == QEvent::Paint)
        return false; // the content paints itself
    return HWND__::filter(event);
}

LRESULT CustomWindow::defaultProc(UINT message, WPARAM wParam, LPARAM lParam) {
    if (message == WM_LBUTTONDOWN && (style & WS_CHILD) != 0)
        widget->setFocus(Qt::MouseFocusReason);
    return HWND__::defaultProc(message, wParam, lParam);
}

HWND makeCustom(const WindowSpec& spec) {
    const bool child = (spec.style & WS_CHILD) != 0;
    const bool tip = (spec.exStyle & WS_EX_NOACTIVATE) != 0 || (spec.exStyle & WS_EX_TOOLWINDOW) != 0;
    const Qt::WindowFlags flags =
        child ? Qt::Widget : (tip ? Qt::ToolTip : Qt::Tool) | Qt::FramelessWindowHint;
    auto* made = new CustomWidget(spec.parentWidget(), flags);
    if (!child)
        made->setAttribute(Qt::WA_ShowWithoutActivating);
    return new CustomWindow(made, spec);
}

} // namespace host
