// The module's commands in the real window from start to end: clicks in the drawing, its panel and its
// dialog.
#include "tests/app/windowdriver.h"

#include <QAbstractButton>
#include <QLabel>
#include <QLineEdit>
#include <gtest/gtest.h>

namespace {

using Driver = WindowDriver;

QWidget* openWindow(const char* title) {
    for (QWidget* widget : QApplication::topLevelWidgets()) {
        if (widget->isVisible() && widget->windowTitle() == QString::fromUtf8(title)) {
            return widget;
        }
    }
    return nullptr;
}

void press(const QWidget& window, const char* caption) {
    for (QAbstractButton* button : window.findChildren<QAbstractButton*>()) {
        if (button->text().startsWith(QString::fromUtf8(caption))) {
            button->click();
            return;
        }
    }
    ADD_FAILURE() << "no button " << caption;
}

} // namespace

TEST(MapSymbols, TheWidthPanelCountsInTheSystemScale) {
    Driver driver(std::vector<std::string>{QDV_MODULE, QDV_SIBLING});
    driver.run({[](Driver& d) { d.type(QStringLiteral("(sib-scale 2.0)\n")); },
                [](Driver& d) { d.type(QStringLiteral("V7_SPline\n")); }, [](Driver& d) { d.click(0, 0); },
                [](Driver& d) {
                    QWidget* panel = openWindow("线宽与捕捉");
                    ASSERT_NE(panel, nullptr);
                    const QList<QLineEdit*> edits = panel->findChildren<QLineEdit*>();
                    ASSERT_GE(edits.size(), 2);
                    edits[0]->setText(QStringLiteral("1.5"));
                    edits[1]->setText(QStringLiteral("3"));
                    press(*panel, "应用");
                    d.click(40, 0);
                },
                [](Driver& d) { d.rightClick(); },
                [](Driver& d) {
                    ASSERT_TRUE(d.window().windowInput().isIdle());
                    EXPECT_EQ(openWindow("线宽与捕捉"), nullptr);
                    ASSERT_EQ(entities().size(), 1u);
                    const auto* polyline = AcDbPolyline::cast(entities()[0]);
                    ASSERT_NE(polyline, nullptr);
                    const host::ReadAccess access(*polyline);
                    double from = 0;
                    double to = 0;
                    polyline->getWidthsAt(0, from, to);
                    EXPECT_DOUBLE_EQ(from, 3);
                    EXPECT_DOUBLE_EQ(to, 6);
                    d.type(QStringLiteral("(sib-scale 1.0)\n"));
                }});
}

TEST(MapSymbols, ARiverIsDrawnFromItsDialog) {
    Driver driver(std::vector<std::string>{QDV_MODULE});
    QTimer answers;
    answers.setInterval(1);
    int shown = 0;
    QObject::connect(&answers, &QTimer::timeout, [&] {
        if (QWidget* dialog = openWindow("绘制河流"); dialog != nullptr && shown == 0) {
            ++shown;
            press(*dialog, "确定");
        }
    });
    answers.start();
    driver.run({[](Driver& d) { d.window().trigger("V7_DrawRiver", false); },
                [](Driver& d) { d.click(0, -40); }, [](Driver& d) { d.click(20, -40); },
                [](Driver& d) { d.click(-60, 0); }, [](Driver& d) { d.click(-20, 20); },
                [](Driver& d) { d.move(30, 0); },
                [](Driver& d) {
                    EXPECT_FALSE(d.window().windowInput().isIdle());
                    d.click(30, 0);
                },
                [](Driver& d) { d.rightClick(); },
                [&](Driver& d) {
                    EXPECT_EQ(shown, 1);
                    EXPECT_TRUE(d.window().windowInput().isIdle());
                    EXPECT_GE(entities().size(), 3u) << "two banks and the water";
                }});
}
