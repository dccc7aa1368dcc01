#include "host/mfc/widgets/frame.h"

#include "host/mfc/widgets/context.h"

#include <QApplication>
#include <QMouseEvent>
#include <QPainter>
#include <QSizeGrip>

namespace host {
namespace {

constexpr int titleHeight = 30, toolTitleHeight = 23, border = 1;

} // namespace

FrameWidget::FrameWidget(QWidget* parent, DWORD style, DWORD exStyle)
    : QWidget(parent, Qt::FramelessWindowHint | ((exStyle & WS_EX_TOOLWINDOW) != 0 ? Qt::Tool : Qt::Dialog)),
      content(new ContentWidget(this)), hasClose_((style & WS_SYSMENU) != 0) {
    const bool titled = (style & WS_CAPTION) == WS_CAPTION;
    measures.title = !titled ? 0 : (exStyle & WS_EX_TOOLWINDOW) != 0 ? toolTitleHeight : titleHeight;
    measures.border = titled || (style & (WS_BORDER | WS_DLGFRAME | WS_THICKFRAME)) != 0 ? border : 0;
    setMouseTracking(true);
    if ((style & WS_THICKFRAME) != 0) {
        auto* grip = new QSizeGrip(this);
        grip->resize(14, 14);
        grip->raise();
    }
}

QRect FrameWidget::closeButton() const {
    const int size = measures.title;
    return hasClose_ && size > 0 ? QRect(width() - measures.border - size - size / 3, measures.border,
                                         size + size / 3, size - 1)
                                 : QRect();
}

QRect FrameWidget::iconPlace() const {
    if (window == nullptr || window->icon == nullptr || measures.title == 0)
        return {};
    return {measures.border + 6, measures.border + (measures.title - 16) / 2, 16, 16};
}

int FrameWidget::hitTest(QPoint at) const {
    if (!rect().contains(at))
        return HTNOWHERE;
    if (content->geometry().contains(at))
        return HTCLIENT;
    if (closeButton().contains(at))
        return HTCLOSE;
    if (iconPlace().adjusted(-4, -4, 4, 4).contains(at))
        return HTSYSMENU;
    return at.y() < measures.title + measures.border ? HTCAPTION : HTBORDER;
}

void FrameWidget::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    const bool tool = measures.title == toolTitleHeight;
    const QRect bar(0, 0, width(), measures.title + measures.border);
    painter.fillRect(rect(), palette().color(QPalette::Window));
    painter.fillRect(bar, tool ? QColor(214, 224, 236) : QColor(Qt::white));
    if (measures.border > 0) {
        painter.setPen(QColor(150, 150, 150));
        painter.drawRect(rect().adjusted(0, 0, -1, -1));
    }
    if (measures.title == 0)
        return;
    QRect caption = bar.adjusted(tool ? 7 : 10, 0, -6, 0);
    if (const QRect place = iconPlace(); !place.isEmpty()) {
        painter.setRenderHint(QPainter::SmoothPixmapTransform);
        painter.drawPixmap(place, iconPicture(window->icon));
        caption.setLeft(place.right() + 6);
    }
    if (const QRect cross = closeButton(); !cross.isEmpty()) {
        caption.setRight(cross.left() - 2);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setPen(QPen(QColor(70, 70, 70), 1.2));
        const QPointF middle = QRectF(cross).center();
        const double reach = tool ? 3.5 : 4.5;
        painter.drawLine(middle - QPointF(reach, reach), middle + QPointF(reach, reach));
        painter.drawLine(middle - QPointF(reach, -reach), middle + QPointF(reach, -reach));
    }
    painter.setPen(QColor(30, 30, 30));
    painter.drawText(caption, Qt::AlignVCenter | Qt::AlignLeft | Qt::TextSingleLine,
                     painter.fontMetrics().elidedText(windowTitle(), Qt::ElideRight, caption.width()));
}

void FrameWidget::layOut() {
    const int around = measures.border, top = measures.title + measures.border;
    content->setGeometry(around, top, std::max(0, width() - 2 * around),
                         std::max(0, height() - top - around));
    if (auto* grip = findChild<QSizeGrip*>(QString(), Qt::FindDirectChildrenOnly))
        grip->move(width() - grip->width() - around, height() - grip->height() - around);
}

void FrameWidget::sendNonClient(UINT message, QMouseEvent* event) {
    if (window == nullptr || window->dying)
        return;
    const LPARAM screen = packed(event->globalPosition().toPoint());
    guarded([&] {
        const LRESULT place = window->send(WM_NCHITTEST, 0, screen);
        if (window->dying)
            return;
        if (message == WM_NCMOUSEMOVE &&
            window->send(WM_SETCURSOR, reinterpret_cast<WPARAM>(window),
                         MAKELPARAM(static_cast<unsigned>(place), WM_MOUSEMOVE)) == 0)
            setCursor(Qt::ArrowCursor);
        if (place != HTCLIENT && !window->dying)
            window->send(message, static_cast<WPARAM>(place), screen);
    });
}

void FrameWidget::mousePressEvent(QMouseEvent* event) {
    dragFrom_ = event->globalPosition().toPoint() - pos();
    sendNonClient(event->button() == Qt::LeftButton ? WM_NCLBUTTONDOWN : WM_NCRBUTTONDOWN, event);
}

void FrameWidget::mouseReleaseEvent(QMouseEvent* event) {
    dragging_ = false;
    sendNonClient(event->button() == Qt::LeftButton ? WM_NCLBUTTONUP : WM_NCRBUTTONUP, event);
}

void FrameWidget::mouseDoubleClickEvent(QMouseEvent* event) {
    if (event->button() == Qt::LeftButton)
        sendNonClient(WM_NCLBUTTONDBLCLK, event);
}

void FrameWidget::mouseMoveEvent(QMouseEvent* event) {
    if (dragging_ && event->buttons().testFlag(Qt::LeftButton))
        move(event->globalPosition().toPoint() - dragFrom_);
    else
        sendNonClient(WM_NCMOUSEMOVE, event);
}

void FrameWidget::defaultAction(UINT message, int place) {
    if (message == WM_NCLBUTTONDOWN && place == HTCAPTION)
        dragging_ = true;
    else if (message == WM_NCLBUTTONDOWN && place == HTSYSMENU)
        window->send(WM_SYSCOMMAND, SC_MOUSEMENU);
    else if (message == WM_NCLBUTTONDBLCLK && place == HTSYSMENU)
        window->send(WM_SYSCOMMAND, SC_DEFAULT);
    else if (message == WM_NCLBUTTONDOWN)
        pressedClose_ = place == HTCLOSE;
    else if (message == WM_NCLBUTTONUP && place == HTCLOSE && std::exchange(pressedClose_, false))
        window->send(WM_SYSCOMMAND, SC_CLOSE);
}

LRESULT frameDefault(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    auto* frame = dynamic_cast<FrameWidget*>(window->widget.data());
    if (frame == nullptr)
        return -1;
    switch (message) {
    case WM_NCHITTEST:
        return frame->hitTest(frame->mapFromGlobal(QPoint(GET_X_LPARAM(lParam), GET_Y_LPARAM(lParam))));
    case WM_NCLBUTTONDOWN:
    case WM_NCLBUTTONUP:
    case WM_NCLBUTTONDBLCLK:
        frame->defaultAction(message, static_cast<int>(wParam));
        return 0;
    default:
        return -1;
    }
}

} // namespace host
