// The line below the drawing: coordinates and the switches for grid, snap, ortho, object snap and
// lineweights.
#pragma once

#include "host/ge/ge.h"

#include <QCoreApplication>
#include <QLabel>
#include <QStatusBar>
#include <QToolButton>
#include <vector>

namespace app {

class ModeBar final : public QStatusBar {
    Q_DECLARE_TR_FUNCTIONS(ModeBar)

public:
    explicit ModeBar(QWidget* parent);
    /// In the units and the coordinate system of the drawing.
    void showPoint(const AcGePoint3d& world);
    /// Text of a running program; empty: none.
    void showText(const QString& text);
    /// Shows the variables as they are.
    void follow();
    /// Turns a switch by its key (Qt::Key_F3 ...); false when the key has none.
    bool toggle(int key);

private:
    struct Switch {
        QToolButton* button;
        const wchar_t* variable;
        int key;
    };
    void add(const QString& text, const char* icon, const QString& tip, const wchar_t* variable, int key);
    void turn(const Switch& one);
    static bool isOn(const Switch& one);
    void chooseSnaps(const QPoint& at);

    QLabel* mCoordinates;
    QLabel* mText;
    std::vector<Switch> mSwitches;
};

} // namespace app
