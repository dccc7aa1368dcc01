// Escape while a program or command runs and asks nothing: now and then the window is let live for a moment.
#pragma once

#include <QElapsedTimer>
#include <QEvent>
#include <QObject>
#include <QPointer>
#include <memory>
#include <vector>

namespace app {

class BreakWatch final : public QObject {
public:
    BreakWatch();
    ~BreakWatch() override;

    /// Whether Escape was pressed since this was last told. Costs nothing when asked often. What else the
    /// user does is kept for the next question; Escape drops it.
    bool poll();
    /// A question stands: whoever was meant gets what was kept.
    void release();
    /// A question was answered.
    void restart() { mSince.restart(); }

protected:
    bool eventFilter(QObject* receiver, QEvent* event) override;

private:
    struct Kept {
        QPointer<QObject> receiver;
        std::unique_ptr<QEvent> event;
    };
    std::vector<Kept> mKept;
    QElapsedTimer mSince;
    bool mIsAsked = false;
    bool mIsBusyShown = false;
};

} // namespace app
