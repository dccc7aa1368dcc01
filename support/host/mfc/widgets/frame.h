// The frame that is drawn here and not by the window manager: of tool windows, of windows whose class follows
// the mouse over it, and of all dialogs where there is no window manager.
#pragma once

#include "host/mfc/widgets/dialogwindow.h"

namespace host {

// A title bar with icon, caption and close button above the content. Its mouse events are the window's
// non-client messages.
class FrameWidget : public QWidget {
public:
    FrameWidget(QWidget* parent, DWORD style, DWORD exStyle);

    HWND window = nullptr;
    ContentWidget* content = nullptr;
    FrameMeasures measures;

    int hitTest(QPoint at) const;
    void layOut(); // the content within the frame

protected:
    void paintEvent(QPaintEvent*) override;
    void resizeEvent(QResizeEvent*) override { layOut(); }
    void mousePressEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;

private:
    QRect closeButton() const;
    QRect iconPlace() const;
    // The class's answer, then its handler; true when the default action shall follow.
    void sendNonClient(UINT message, QMouseEvent* event);
    void defaultAction(UINT message, int place);

    bool hasClose_;
    bool pressedClose_ = false;
    QPoint dragFrom_;
    bool dragging_ = false;
    friend LRESULT frameDefault(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
};

// What a window with such a frame does of itself with non-client messages; -1 when it has none.
LRESULT frameDefault(HWND window, UINT message, WPARAM wParam, LPARAM lParam);

} // namespace host
