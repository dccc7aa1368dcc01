#include "host/mfc/widgets/spin.h"

#include "host/mfc/controls.h"

#include <QMouseEvent>
#include <QPainter>
#include <QStyle>
#include <QStyleOptionSpinBox>
#include <QTimer>

namespace host {
namespace {

// Draws the arrows and repeats the step while one is held.
class Arrows : public QWidget {
public:
    explicit Arrows(QWidget* parent) : QWidget(parent) {
        repeat_.callOnTimeout(this, [this] {
            repeat_.setInterval(80);
            window->step(down_);
        });
    }
    SpinWindow* window = nullptr;

protected:
    void paintEvent(QPaintEvent*) override {
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        for (const int direction : {1, -1}) {
            const QRect half(0, direction > 0 ? 0 : height() / 2, width(), height() / 2);
            painter.setPen(QColor(180, 180, 180));
            painter.setBrush(down_ == direction ? QColor(205, 225, 245) : QColor(245, 245, 245));
            painter.drawRect(QRectF(half).adjusted(0.5, 0.5, -0.5, -0.5));
            const QPointF middle = QRectF(half).center();
            const double tip = direction > 0 ? -1.8 : 1.8;
            painter.setPen(Qt::NoPen);
            painter.setBrush(isEnabled() ? QColor(60, 60, 60) : QColor(170, 170, 170));
            painter.drawPolygon(QPolygonF{middle + QPointF(-3.2, -tip), middle + QPointF(3.2, -tip),
                                          middle + QPointF(0, tip)});
        }
    }
    void mousePressEvent(QMouseEvent* event) override {
        if (event->button() == Qt::LeftButton) {
            down_ = event->pos().y() < height() / 2 ? 1 : -1;
            window->step(down_);
            repeat_.start(400);
            update();
        }
    }
    void mouseReleaseEvent(QMouseEvent*) override {
        down_ = 0;
        repeat_.stop();
        update();
    }

private:
    int down_ = 0;
    QTimer repeat_;
};

} // namespace

SpinWindow::SpinWindow(QWidget* made, const WindowSpec& spec)
    : HWND__(made, spec.parent, spec.id, spec.style, spec.exStyle) {
    static_cast<Arrows*>(made)->window = this;
}

int SpinWindow::position() const {
    if (buddy == nullptr || (style & UDS_SETBUDDYINT) == 0)
        return position_;
    bool good = false;
    const int number = toQt(buddy->text()).toInt(&good);
    return good ? std::clamp(number, std::min(least, most), std::max(least, most)) : position_;
}

void SpinWindow::setPosition(int position) {
    position_ = std::clamp(position, std::min(least, most), std::max(least, most));
    if (buddy != nullptr && (style & UDS_SETBUDDYINT) != 0) {
        const std::wstring text = std::to_wstring(position_);
        buddy->send(WM_SETTEXT, 0, reinterpret_cast<LPARAM>(text.c_str()));
    }
}

void SpinWindow::step(int by) {
    NMUPDOWN change{};
    change.iPos = position();
    change.iDelta = by * (least <= most ? 1 : -1);
    if (notify(change.hdr, UDN_DELTAPOS) != 0 || dying)
        return;
    int to = change.iPos + change.iDelta;
    const auto [low, high] = std::minmax(least, most);
    if ((style & UDS_WRAP) != 0 && (to < low || to > high))
        to = to < low ? high : low;
    setPosition(to);
}

std::wstring SpinWindow::scriptSet(const std::wstring& value) {
    bool good = false;
    const int number = toQt(value).toInt(&good);
    const auto [low, high] = std::minmax(least, most);
    if (!good || number < low || number > high)
        return L"应为 " + std::to_wstring(low) + L" 到 " + std::to_wstring(high) + L" 之间的整数";
    setPosition(number);
    return {};
}

HWND makeUpDown(const WindowSpec& spec) {
    return new SpinWindow(new Arrows(spec.parentWidget()), spec);
}

void attachBuddy(HWND spin, HWND edit) {
    auto* window = dynamic_cast<SpinWindow*>(spin);
    if (window == nullptr)
        return;
    window->buddy = edit;
    if (edit == nullptr || (window->style & (UDS_ALIGNLEFT | UDS_ALIGNRIGHT)) == 0)
        return;
    // The edit makes room for the arrows at its side.
    constexpr int width = 17;
    QRect whole = edit->widget->geometry();
    const bool right = (window->style & UDS_ALIGNRIGHT) != 0;
    window->widget->setGeometry(right ? whole.right() - width + 1 : whole.left(), whole.top(), width,
                                whole.height());
    edit->widget->setGeometry(right ? whole.adjusted(0, 0, -width, 0) : whole.adjusted(width, 0, 0, 0));
}

} // namespace host
