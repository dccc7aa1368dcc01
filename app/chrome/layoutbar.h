// The tabs below the drawing: its model and its layouts.
#pragma once

#include <QString>
#include <QTabBar>
#include <functional>

namespace app {

class LayoutBar final : public QTabBar {
    Q_DECLARE_TR_FUNCTIONS(LayoutBar)

public:
    explicit LayoutBar(QWidget* parent = nullptr);
    /// Shows the layouts of the current drawing as they are.
    void follow();

    /// Runs what is typed for a tab that was chosen.
    std::function<void(const QString&)> run;

private:
    void showMenu(const QPoint& at);
    bool mIsFollowing = false;
};

} // namespace app
