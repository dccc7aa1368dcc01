// Drives the real main window: a session runs in it while steps send it the events that a hand would.
#pragma once

#include "app/chrome/mainwindow.h"

#include "host/db/dbents.h"
#include "host/ed/ed.h"

#include <QApplication>
#include <QMouseEvent>
#include <QTimer>
#include <functional>
#include <string>
#include <vector>

class WindowDriver {
public:
    using Step = std::function<void(WindowDriver&)>;

    explicit WindowDriver(const std::vector<std::string>& modules = {});
    ~WindowDriver();

    /// Runs the steps one after the other, each when the window waits for an answer; then closes the window.
    void run(std::vector<Step> steps);

    // For steps.

    /// A click at a point of the drawing.
    void click(double x, double y, Qt::KeyboardModifiers modifiers = {});
    void move(double x, double y);
    void drag(double fromX, double fromY, double toX, double toY);
    void rightClick();
    void type(const QString& text);
    void key(int key);
    /// Shows this part of the drawing, `width` drawing units wide.
    void look(double x, double y, double width);

    app::MainWindow& window() { return *mWindow; }
    app::Canvas& canvas() { return mWindow->canvas(); }

private:
    void send(QEvent::Type type, const QPointF& at, Qt::MouseButton button, Qt::MouseButtons buttons,
              Qt::KeyboardModifiers modifiers = {});
    void next();

    host::Session mSession;
    std::unique_ptr<app::MainWindow> mWindow;
    std::vector<Step> mSteps;
    std::size_t mAt = 0;
    QTimer mTimer;
};

/// Entities of the current space that are not erased, in order.
std::vector<AcDbEntity*> entities();
