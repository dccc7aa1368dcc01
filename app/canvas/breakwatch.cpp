#include "app/canvas/breakwatch.h"

#include <QApplication>
#include <QKeyEvent>
#include <QThread>
#include <utility>

namespace app {

BreakWatch::BreakWatch() {
    mSince.start();
}

BreakWatch::~BreakWatch() {
    release();
}

bool BreakWatch::poll() {
    constexpr qint64 interval = 100; // milliseconds
    if (mSince.elapsed() < interval || QThread::currentThread() != thread()) {
        return false;
    }
    if (!std::exchange(mIsBusyShown, true)) {
        QApplication::setOverrideCursor(Qt::BusyCursor);
    }
    qApp->installEventFilter(this);
    QCoreApplication::processEvents();
    qApp->removeEventFilter(this);
    mSince.restart();
    return std::exchange(mIsAsked, false);
}

void BreakWatch::release() {
    if (std::exchange(mIsBusyShown, false)) {
        QApplication::restoreOverrideCursor();
    }
    mIsAsked = false;
    for (Kept& kept : std::exchange(mKept, {})) {
        if (kept.receiver != nullptr) {
            QCoreApplication::postEvent(kept.receiver, kept.event.release());
        }
    }
}

bool BreakWatch::eventFilter(QObject* receiver, QEvent* event) {
    switch (event->type()) {
    case QEvent::KeyPress:
        if (static_cast<QKeyEvent*>(event)->key() == Qt::Key_Escape) {
            mIsAsked = true;
            mKept.clear();
            return true;
        }
        [[fallthrough]];
    case QEvent::KeyRelease:
    case QEvent::MouseButtonPress:
    case QEvent::MouseButtonRelease:
    case QEvent::MouseButtonDblClick:
    case QEvent::Wheel:
    case QEvent::ContextMenu:
    case QEvent::Close:
        mKept.push_back({receiver, std::unique_ptr<QEvent>(event->clone())});
        event->accept();
        if (event->type() == QEvent::Close) {
            event->ignore(); // not yet
        }
        return true;
    case QEvent::MouseMove:
    case QEvent::HoverMove:
    case QEvent::Shortcut:
    case QEvent::Timer: // comes again
        return true;
    default:
        return false;
    }
}

} // namespace app
