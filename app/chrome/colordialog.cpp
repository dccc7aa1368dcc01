#include "app/chrome/colordialog.h"

#include "host/db/db.h"

#include <QCoreApplication>
#include <QDialog>
#include <QDialogButtonBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QMouseEvent>
#include <QPainter>
#include <QPushButton>
#include <QSpinBox>
#include <QVBoxLayout>
#include <algorithm>
#include <functional>

namespace app {
namespace {

constexpr int side = 19;           ///< logical pixels of a field
constexpr int firstOfPalette = 10; ///< 240 colours, ten shades of a hue one below the other
constexpr int hues = 24, shades = 10;
constexpr int firstGray = 250, lastColor = 255, standardColors = 9;

/// The palette above, the standard colours and the greys below.
class Swatches final : public QWidget {
public:
    Swatches() { setFixedSize(hues * side + 1, (shades + 1) * side + side / 2 + 1); }

    std::function<void(int)> chosen;
    void mark(int color) {
        mMarked = color;
        update();
    }

protected:
    void paintEvent(QPaintEvent*) override {
        QPainter painter(this);
        for (int color = 1; color <= lastColor; ++color) {
            painter.setPen(QColor(90, 90, 90));
            painter.setBrush(QColor::fromRgb(AcCmEntityColor::lookUpRGB(static_cast<Adesk::UInt8>(color))));
            painter.drawRect(place(color));
        }
        if (mMarked >= 1 && mMarked <= lastColor) {
            painter.setBrush(Qt::NoBrush);
            painter.setPen(QPen(Qt::black, 3));
            painter.drawRect(place(mMarked));
            painter.setPen(QPen(Qt::white, 1));
            painter.drawRect(place(mMarked));
        }
    }
    void mousePressEvent(QMouseEvent* event) override {
        for (int color = 1; color <= lastColor; ++color) {
            if (place(color).contains(event->pos()) && chosen) {
                chosen(color);
                return;
            }
        }
    }

private:
    static QRect place(int color) {
        const int bottom = shades * side + side / 2;
        if (color <= standardColors) {
            return {(color - 1) * side, bottom, side, side};
        }
        if (color >= firstGray) {
            return {(hues - (lastColor - color) - 1) * side, bottom, side, side};
        }
        const int index = color - firstOfPalette;
        return {index / shades * side, index % shades * side, side, side};
    }

    int mMarked = 0;
};

QString tr(const char* text) {
    return QCoreApplication::translate("ColorDialog", text);
}

} // namespace

std::optional<int> chooseColor(QWidget* parent, int before) {
    QDialog dialog(parent);
    dialog.setWindowTitle(tr("选择颜色"));
    auto* swatches = new Swatches;
    auto* number = new QSpinBox;
    number->setRange(1, lastColor);
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel);
    buttons->button(QDialogButtonBox::Ok)->setText(tr("确定"));
    buttons->button(QDialogButtonBox::Cancel)->setText(tr("取消"));
    auto* line = new QHBoxLayout;
    line->addWidget(new QLabel(tr("颜色号:")));
    line->addWidget(number);
    line->addStretch(1);
    line->addWidget(buttons);
    auto* layout = new QVBoxLayout(&dialog);
    layout->addWidget(swatches);
    layout->addLayout(line);
    swatches->chosen = [&](int color) { number->setValue(color); };
    QObject::connect(number, &QSpinBox::valueChanged, swatches,
                     [swatches](int color) { swatches->mark(color); });
    QObject::connect(buttons, &QDialogButtonBox::accepted, &dialog, &QDialog::accept);
    QObject::connect(buttons, &QDialogButtonBox::rejected, &dialog, &QDialog::reject);
    number->setValue(std::clamp(before, 1, lastColor));
    swatches->mark(number->value());
    return dialog.exec() == QDialog::Accepted ? std::optional(number->value()) : std::nullopt;
}

} // namespace app
