// Layouts in the real window: the dialog of PLOT, and working in a viewport.
#include "tests/app/windowdriver.h"
#include "tests/temporaryfolder.h"

#include "host/db/dbents.h"

#include <QAbstractButton>
#include <QCheckBox>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QLineEdit>
#include <QPushButton>
#include <algorithm>
#include <fstream>
#include <gtest/gtest.h>

namespace {

using Driver = WindowDriver;

/// Does something to the dialog that is open by then.
void inDialog(const std::function<void(QWidget&)>& act) {
    QTimer::singleShot(30, [act] {
        QWidget* dialog = QApplication::activeModalWidget();
        ASSERT_NE(dialog, nullptr);
        act(*dialog);
    });
}

void press(QWidget& dialog, QDialogButtonBox::StandardButton which) {
    dialog.findChild<QDialogButtonBox*>()->button(which)->click();
}

std::string contentOf(const std::filesystem::path& file) {
    std::ifstream stream(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
}

TEST(Plotting, TheDialogRefusesWhatIsNoneAndPlotsWhatItSays) {
    const TemporaryFolder folder;
    const std::filesystem::path file = folder.path() / "a.pdf";
    int refused = 0;
    Driver driver;
    driver.run({
        [](Driver& d) { d.type(QStringLiteral("LINE 0,0 100,50\n\n")); },
        [&](Driver& d) {
            inDialog([&](QWidget& dialog) {
                const auto combos = dialog.findChildren<QComboBox*>();
                QComboBox* paper = *std::find_if(combos.begin(), combos.end(), [](const QComboBox* combo) {
                    return combo->currentText().startsWith(QStringLiteral("A3"));
                });
                dialog.findChildren<QLineEdit*>().first()->setText(QString::fromStdString(file.string()));
                paper->setEditText(QStringLiteral("nothing"));
                press(dialog, QDialogButtonBox::Ok);
                refused += dialog.isVisible() ? 1 : 0;
                paper->setEditText(QStringLiteral("A2"));
                press(dialog, QDialogButtonBox::Ok);
            });
            d.type(QStringLiteral("PLOT\n"));
        },
        [](Driver& d) {
            inDialog([](QWidget& dialog) { press(dialog, QDialogButtonBox::Cancel); });
            d.type(QStringLiteral("PLOT\n"));
        },
    });
    EXPECT_EQ(refused, 1);
    const std::string pdf = contentOf(file);
    EXPECT_TRUE(pdf.starts_with("%PDF-"));
    EXPECT_NE(pdf.find("/MediaBox[0 0 1683.779528 1190.551181]"), std::string::npos) << "A2 across";
}

TEST(Viewports, ViewsChangedByHandAreKeptByTheViewport) {
    const AcDbViewport* viewport = nullptr;
    double before = 0;
    Driver driver;
    driver.run({
        [](Driver& d) { d.type(QStringLiteral("CIRCLE 100,100 50\nLAYOUT S 布局1\nMVIEW 10,10 110,90\n")); },
        [&](Driver& d) {
            const AcDbDatabase& database = *curDoc()->database();
            EXPECT_EQ(d.canvas().scene()->space(), database.paperSpaceId());
            d.type(QStringLiteral("MSPACE\n"));
        },
        [&](Driver& d) {
            const AcDbDatabase& database = *curDoc()->database();
            EXPECT_EQ(d.canvas().scene()->space(), database.modelSpaceId());
            viewport = host::peek<AcDbViewport>(database.activeViewportId());
            ASSERT_NE(viewport, nullptr);
            const host::ReadAccess access(*viewport);
            before = viewport->viewHeight();
            EXPECT_NEAR(before, 105, 1e-6);
            EXPECT_NEAR(host::systemVariableReal(L"VIEWSIZE"), before, 1e-6) << "seen as in the viewport";
            d.look(100, 100, 30);
        },
        [](Driver& d) { d.type(QStringLiteral("LINE 90,100 110,100\n\nPSPACE\n")); },
        [&](Driver& d) {
            EXPECT_EQ(d.canvas().scene()->space(), curDoc()->database()->paperSpaceId());
            const host::ReadAccess access(*viewport);
            EXPECT_LT(viewport->viewHeight(), before / 2);
            const AcGePoint3d middle = viewport->modelToPaper() * AcGePoint3d(100, 100, 0);
            EXPECT_NEAR(middle.x, 60, 1e-6);
            EXPECT_NEAR(middle.y, 50, 1e-6);
        },
    });
}

} // namespace
