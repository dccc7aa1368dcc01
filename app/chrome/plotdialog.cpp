#include "app/chrome/plotdialog.h"

#include "host/db/dbents.h"
#include "host/ed/ed.h"

#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QDialog>
#include <QDialogButtonBox>
#include <QFileDialog>
#include <QFormLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QLocale>
#include <QMessageBox>
#include <QPushButton>
#include <QScrollArea>
#include <QTemporaryDir>
#include <algorithm>
#include <array>
#include <functional>

namespace app {
namespace {

using Area = host::PageSetup::Area;

constexpr std::array scales{"1:1",   "1:2",   "1:5",   "1:10",   "1:50",
                            "1:100", "1:200", "1:500", "1:1000", "1:2000"};

QString tr(const char* text) {
    return QCoreApplication::translate("PlotDialog", text);
}

QString text(const std::wstring& from) {
    return QString::fromStdWString(from);
}

std::optional<double> number(const QLineEdit& edit) {
    bool isNumber = false;
    const double value = QLocale::c().toDouble(edit.text().trimmed(), &isNumber);
    return isNumber ? std::optional(value) : std::nullopt;
}

class PlotDialog final : public QDialog {
public:
    static constexpr int picksWindow = 2; ///< result: the user wants to show the window in the drawing

    PlotDialog(AcApDocument& document, const host::PlotJob& job, QWidget* parent)
        : QDialog(parent), mDocument(document), mJob(job) {
        setObjectName(QStringLiteral("plotDialog"));
        AcString tab;
        job.tab().getLayoutName(tab);
        setWindowTitle(tr("打印 - %1").arg(text(tab.kwszPtr())));
        auto* layout = new QVBoxLayout(this);
        layout->addWidget(deviceBox());
        layout->addWidget(areaBox());
        layout->addWidget(scaleBox());
        layout->addWidget(lookBox());
        mFault = new QLabel;
        mFault->setStyleSheet(QStringLiteral("color: #b00020"));
        layout->addWidget(mFault);
        layout->addWidget(buttonRow());
        connect(mDevice, &QComboBox::currentIndexChanged, this, [this] { followDevice(); });
        connect(mFits, &QCheckBox::toggled, mScale, &QWidget::setDisabled);
        connect(mCentred, &QCheckBox::toggled, this, [this](bool on) {
            mOffsetX->setDisabled(on);
            mOffsetY->setDisabled(on);
        });
        connect(mArea, &QComboBox::currentIndexChanged, this, [this] { followArea(); });
        fill();
    }

    const host::PlotJob& job() const { return mJob; }

    /// Takes the answers over; false, with a line that says why, when they are none.
    bool take() {
        host::PageSetup& setup = mJob.setup;
        const std::optional<host::Paper> paper = host::paperNamed(mPaper->currentText().toStdWString());
        const double unit = setup.isInches ? host::millimetresAnInch : 1;
        const double scale = host::plotScale(mScale->currentText().toStdWString());
        const std::optional<double> x = number(*mOffsetX);
        const std::optional<double> y = number(*mOffsetY);
        const bool isFitted = mFits->isChecked();
        const QString fault = !paper ? tr("图纸尺寸应为 A3 或 420x297（毫米）。")
                              : !isFitted && !(scale > 0) ? tr("打印比例应为 1:500 这样的两个正数。")
                              : !mCentred->isChecked() && (!x || !y)   ? tr("打印偏移应为数字。")
                              : area() == Area::window && !hasWindow() ? tr("请先指定打印窗口。")
                                                                       : QString();
        mFault->setText(fault);
        if (!fault.isEmpty()) {
            return false;
        }
        takePaper(*paper);
        setup.area = area();
        setup.view = setup.area == Area::view ? mView->currentText().toStdWString() : setup.view;
        setup.scale = isFitted ? 0 : scale * unit;
        setup.isCentred = mCentred->isChecked();
        setup.offsetX = x.value_or(0) * unit;
        setup.offsetY = y.value_or(0) * unit;
        setup.usesStyles = mStyle->currentIndex() > 0;
        setup.styleSheet = setup.usesStyles ? mStyle->currentText().toStdWString() : std::wstring();
        setup.hasLineWeights = mWeights->isChecked();
        mJob.file = mFile->text().trimmed().toStdWString();
        mJob.keepsSetup = mKeeps->isChecked();
        return true;
    }

private:
    QWidget* deviceBox() {
        auto* box = new QGroupBox(tr("设备和图纸"));
        auto* form = new QFormLayout(box);
        mDevice = new QComboBox;
        for (const host::PlotDevice& device : host::plotDevices()) {
            mDevice->addItem(QString::fromWCharArray(device.name));
        }
        form->addRow(tr("设备(&D):"), mDevice);
        auto* line = new QHBoxLayout;
        mFile = new QLineEdit;
        auto* browse = new QPushButton(tr("浏览..."));
        connect(browse, &QPushButton::clicked, this, [this] { chooseFile(); });
        line->addWidget(mFile, 1);
        line->addWidget(browse);
        auto* name = new QLabel(tr("文件(&F):"));
        name->setBuddy(mFile);
        form->addRow(name, line);
        mPaper = new QComboBox;
        mPaper->setEditable(true);
        for (const host::PaperSize& size : host::paperSizes()) {
            mPaper->addItem(text(host::paperText(size.paper)));
        }
        form->addRow(tr("图纸尺寸(&Z):"), mPaper);
        mOrientation = new QComboBox;
        mOrientation->addItems({tr("纵向"), tr("横向")});
        form->addRow(tr("图形方向(&A):"), mOrientation);
        mUpsideDown = new QCheckBox(tr("上下颠倒打印(&-)"));
        form->addRow(QString(), mUpsideDown);
        return box;
    }

    QWidget* areaBox() {
        auto* box = new QGroupBox(tr("打印区域"));
        auto* line = new QHBoxLayout(box);
        mArea = new QComboBox;
        const bool isModel = mJob.tab().modelType();
        for (const auto& [area, name] :
             {std::pair(Area::display, "显示"), std::pair(Area::extents, "范围"),
              isModel ? std::pair(Area::limits, "图形界限") : std::pair(Area::layout, "布局"),
              std::pair(Area::view, "视图"), std::pair(Area::window, "窗口")}) {
            mArea->addItem(tr(name), static_cast<int>(area));
        }
        mView = new QComboBox;
        const auto* views = host::peek<AcDbViewTable>(mDocument.database()->viewTableId());
        for (AcDbStub* stub : views->records()) {
            if (const auto* view = host::peek<AcDbViewTableRecord>(AcDbObjectId(stub))) {
                mView->addItem(text(view->name().kwszPtr()));
            }
        }
        mPick = new QPushButton(tr("窗口(&O) <"));
        connect(mPick, &QPushButton::clicked, this, [this] { done(picksWindow); });
        line->addWidget(mArea);
        line->addWidget(mView);
        line->addWidget(mPick);
        line->addStretch(1);
        return box;
    }

    QWidget* scaleBox() {
        auto* box = new QGroupBox(tr("比例和偏移"));
        auto* form = new QFormLayout(box);
        mFits = new QCheckBox(tr("布满图纸(&I)"));
        mScale = new QComboBox;
        mScale->setEditable(true);
        for (const char* scale : scales) {
            mScale->addItem(QString::fromLatin1(scale));
        }
        form->addRow(mFits);
        form->addRow(tr("比例(&S):"), mScale);
        mCentred = new QCheckBox(tr("居中打印(&C)"));
        form->addRow(mCentred);
        auto* line = new QHBoxLayout;
        mOffsetX = new QLineEdit;
        mOffsetY = new QLineEdit;
        for (auto& [name, edit] : {std::pair("X:", mOffsetX), std::pair("Y:", mOffsetY)}) {
            line->addWidget(new QLabel(QString::fromLatin1(name)));
            line->addWidget(edit);
        }
        form->addRow(tr("偏移:"), line);
        return box;
    }

    QWidget* lookBox() {
        auto* box = new QGroupBox(tr("打印选项"));
        auto* form = new QFormLayout(box);
        mStyle = new QComboBox;
        mStyle->addItems({tr("无"), QStringLiteral("acad.ctb"), QStringLiteral("monochrome.ctb")});
        form->addRow(tr("打印样式表(&G):"), mStyle);
        mWeights = new QCheckBox(tr("打印对象线宽(&W)"));
        mKeeps = new QCheckBox(tr("将修改保存到布局(&V)"));
        form->addRow(mWeights);
        form->addRow(mKeeps);
        return box;
    }

    QWidget* buttonRow() {
        auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel);
        buttons->button(QDialogButtonBox::Ok)->setText(tr("打印"));
        buttons->button(QDialogButtonBox::Cancel)->setText(tr("取消"));
        QPushButton* show = buttons->addButton(tr("预览(&P)..."), QDialogButtonBox::ActionRole);
        connect(show, &QPushButton::clicked, this, [this] {
            if (take()) {
                previewed();
            }
        });
        connect(buttons, &QDialogButtonBox::accepted, this, [this] {
            if (take()) {
                accept();
            }
        });
        connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
        return buttons;
    }

    void fill() {
        const host::PageSetup& setup = mJob.setup;
        const double unit = setup.isInches ? host::millimetresAnInch : 1;
        mDevice->setCurrentIndex(static_cast<int>(mJob.device - host::plotDevices().data()));
        mFile->setText(text(mJob.file.empty() ? host::plotFileName(mDocument, mJob) : mJob.file));
        mPaper->setEditText(text(host::paperText(setup.paper)));
        mOrientation->setCurrentIndex(setup.isAcross() != ((setup.quarterTurns & 1) != 0) ? 1 : 0);
        mUpsideDown->setChecked((setup.quarterTurns & 2) != 0);
        mArea->setCurrentIndex(std::max(0, mArea->findData(static_cast<int>(setup.area))));
        mView->setCurrentText(text(setup.view));
        mFits->setChecked(!(setup.scale > 0));
        mScale->setDisabled(mFits->isChecked());
        mScale->setEditText(setup.scale > 0 ? text(host::plotScaleText(setup)) : QStringLiteral("1:1"));
        mCentred->setChecked(setup.isCentred);
        mOffsetX->setText(QString::number(setup.offsetX / unit));
        mOffsetY->setText(QString::number(setup.offsetY / unit));
        mOffsetX->setDisabled(setup.isCentred);
        mOffsetY->setDisabled(setup.isCentred);
        const int style = mStyle->findText(text(setup.styleSheet), Qt::MatchFixedString);
        mStyle->setCurrentIndex(setup.usesStyles ? std::max(style, 1) : 0);
        mWeights->setChecked(setup.hasLineWeights);
        mKeeps->setChecked(mJob.keepsSetup);
        followArea();
    }

    Area area() const { return static_cast<Area>(mArea->currentData().toInt()); }

    bool hasWindow() const {
        const host::PlotWindow& window = mJob.setup.window;
        return window.right > window.left && window.top > window.bottom;
    }

    /// What belongs to one area only is shown with it; the sheet of a layout lies as it is.
    void followArea() {
        mView->setVisible(area() == Area::view);
        mPick->setVisible(area() == Area::window);
        const bool isSheet = area() == Area::layout;
        if (isSheet) {
            mCentred->setChecked(false);
            mFits->setChecked(false);
        }
        mCentred->setDisabled(isSheet);
        mFits->setDisabled(isSheet);
    }

    void followDevice() {
        const host::PlotDevice& device =
            host::plotDevices()[static_cast<std::size_t>(std::max(mDevice->currentIndex(), 0))];
        QString name = mFile->text();
        const QString before = QString::fromWCharArray(mJob.device->extension);
        if (name.endsWith(before, Qt::CaseInsensitive)) {
            name.chop(before.size());
            mFile->setText(name + QString::fromWCharArray(device.extension));
        }
        mJob.device = &device;
    }

    void chooseFile() {
        mJob.file = mFile->text().toStdWString();
        const QString start = QString::fromStdString(host::plotFile(mDocument, mJob).string());
        const QString extension = QString::fromWCharArray(mJob.device->extension);
        const QString file = QFileDialog::getSaveFileName(
            this, tr("打印到文件"), start,
            QStringLiteral("%1 (*%2)").arg(QString::fromWCharArray(mJob.device->name), extension));
        if (!file.isEmpty()) {
            mFile->setText(file);
        }
    }

    void takePaper(const host::Paper& paper) {
        host::PageSetup& setup = mJob.setup;
        if (host::paperText(paper) != host::paperText(setup.paper)) {
            setup.paper = paper;
        }
        const bool isLandscape = mOrientation->currentIndex() == 1;
        setup.quarterTurns = (isLandscape != setup.isAcross() ? 1 : 0) | (mUpsideDown->isChecked() ? 2 : 0);
    }

    void previewed();

    AcApDocument& mDocument;
    host::PlotJob mJob;
    QComboBox *mDevice = nullptr, *mPaper = nullptr, *mOrientation = nullptr, *mArea = nullptr,
              *mView = nullptr, *mScale = nullptr, *mStyle = nullptr;
    QLineEdit *mFile = nullptr, *mOffsetX = nullptr, *mOffsetY = nullptr;
    QCheckBox *mUpsideDown = nullptr, *mFits = nullptr, *mCentred = nullptr, *mWeights = nullptr,
              *mKeeps = nullptr;
    QPushButton* mPick = nullptr;
    QLabel* mFault = nullptr;
};

void showPreview(const host::PlotJob& job, QWidget& parent) {
    constexpr int longSide = 1800; // pixels
    const QTemporaryDir folder;
    const QString file = folder.filePath(QStringLiteral("preview.png"));
    QApplication::setOverrideCursor(Qt::WaitCursor);
    const std::wstring message = host::plotTab(job.tab(), job.setup, file.toStdString(), longSide);
    QApplication::restoreOverrideCursor();
    if (!message.empty()) {
        QMessageBox::warning(&parent, tr("打印预览"), text(message));
        return;
    }
    QDialog dialog(&parent);
    dialog.setWindowTitle(tr("打印预览"));
    auto* sheet = new QLabel;
    sheet->setPixmap(QPixmap(file));
    auto* area = new QScrollArea;
    area->setAlignment(Qt::AlignCenter);
    area->setWidget(sheet);
    auto* layout = new QVBoxLayout(&dialog);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(area);
    dialog.resize(parent.window()->size() * 0.85);
    dialog.exec();
}

void PlotDialog::previewed() {
    showPreview(mJob, *this);
}

/// The window as it is shown in the drawing; false when the user gave up.
bool askWindow(host::PlotWindow& window) {
    ads_point first{};
    ads_point second{};
    acedInitGet(1, nullptr);
    if (acedGetPoint(nullptr, L"\n指定第一个角点: ", first) != RTNORM) {
        return false;
    }
    acedInitGet(1, nullptr);
    if (acedGetCorner(first, L"\n指定对角点: ", second) != RTNORM) {
        return false;
    }
    const AcGePoint3d a = host::ucsToWorld(host::asPoint3d(first));
    const AcGePoint3d b = host::ucsToWorld(host::asPoint3d(second));
    window = {std::min(a.x, b.x), std::min(a.y, b.y), std::max(a.x, b.x), std::max(a.y, b.y)};
    return true;
}

} // namespace

bool PlotWindows::ask(AcApDocument& document, host::PlotJob& job) {
    for (;;) {
        PlotDialog dialog(document, job, &mParent);
        const int result = dialog.exec();
        if (result == PlotDialog::picksWindow) {
            dialog.take(); // what is good so far stays
            job = dialog.job();
            job.setup.area = Area::window;
            askWindow(job.setup.window);
        } else {
            job = dialog.job();
            return result == QDialog::Accepted;
        }
    }
}

void PlotWindows::preview(AcApDocument&, const host::PlotJob& job) {
    showPreview(job, mParent);
}

} // namespace app
