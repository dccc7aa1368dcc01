// What the main window does with files: opening, saving, pictures, and what is asked before something is
// lost.
#include "app/chrome/files.h"

#include "app/chrome/mainwindow.h"

#include "host/db/dbents.h"
#include "host/ed/documentstate.h"
#include "host/ed/ed.h"
#include "host/ed/fiber.h"
#include "host/formats/formats.h"
#include "host/plot/plot.h"
#include "host/rx/text.h"
#include "host/win/win.h"

#include <QApplication>
#include <QDir>
#include <QFileDialog>
#include <QFileInfo>
#include <QMessageBox>
#include <QPushButton>
#include <QSettings>

namespace app {
namespace {

constexpr int mostRecentFiles = 10;

QString filters() {
    return QCoreApplication::translate(
        "MainWindow", "图形 (*.dwg *.dxf *.DWG *.DXF);;DWG (*.dwg *.DWG);;DXF (*.dxf *.DXF)");
}

std::wstring windowsPath(const QString& file) {
    return host::toWindowsPath(std::filesystem::path(QFileInfo(file).absoluteFilePath().toStdString()));
}

QString nativePath(const std::wstring& path) {
    return QString::fromStdString(host::toNativePath(path).string());
}

/// Kept beside the settings.
std::unique_ptr<QSettings> windowSettings() {
    return std::make_unique<QSettings>(
        QString::fromStdString((host::settingsFolder() / "window.ini").string()), QSettings::IniFormat);
}

} // namespace

bool isChanged(const AcApDocument& document) {
    return document.database()->undoLog().changeCount() != document.state().savedChangeCount;
}

bool MainWindow::openFile(const QString& file) {
    QApplication::setOverrideCursor(Qt::WaitCursor);
    const Acad::ErrorStatus status = acDocManagerPtr()->appContextOpenDocument(windowsPath(file).c_str());
    QApplication::restoreOverrideCursor();
    if (status == Acad::eOk) {
        rememberFile(file);
        return true;
    }
    return false;
}

void MainWindow::openDialog() {
    const QString folder = curDoc() != nullptr && curDoc()->isNamedDrawing()
                               ? QFileInfo(nativePath(curDoc()->fileName())).absolutePath()
                               : QString();
    const QString file = QFileDialog::getOpenFileName(this, tr("打开图形"), folder, filters());
    if (!file.isEmpty()) {
        openFile(file);
        mInput->restart();
    }
}

bool MainWindow::save(bool underNewName) {
    AcApDocument* document = curDoc();
    if (document == nullptr) {
        return true;
    }
    std::wstring name = document->fileName();
    if (underNewName || !document->isNamedDrawing()) {
        const QString start =
            document->isNamedDrawing()
                ? nativePath(name)
                : QFileInfo(QString::fromWCharArray(document->docTitle())).completeBaseName() +
                      QStringLiteral(".dxf");
        QString file = QFileDialog::getSaveFileName(this, tr("图形另存为"), start, filters());
        if (file.isEmpty()) {
            return false;
        }
        if (QFileInfo(file).suffix().isEmpty()) {
            file += QStringLiteral(".dxf");
        }
        name = windowsPath(file);
    }
    std::wstring message;
    AcDbDatabase& database = *document->database();
    database.keepExtents();
    if (host::fileFormats().write(database, name, document->state().saveFormat, message) != Acad::eOk) {
        QMessageBox::warning(this, tr("保存"), QString::fromStdWString(message));
        return false;
    }
    document->setFile(name);
    document->state().savedChangeCount = database.undoLog().changeCount();
    mAutosave.forget(*document);
    rememberFile(nativePath(name));
    followDocuments();
    return true;
}

bool MainWindow::mayClose(AcApDocument& document) {
    if (!isChanged(document)) {
        return true;
    }
    acDocManagerPtr()->activateDocument(&document);
    QMessageBox box(QMessageBox::Warning, tr("关闭"),
                    tr("图形 %1 有未保存的修改。").arg(QString::fromWCharArray(document.docTitle())),
                    QMessageBox::NoButton, this);
    const QPushButton* keep = box.addButton(tr("保存(&S)"), QMessageBox::AcceptRole);
    const QPushButton* drop = box.addButton(tr("不保存(&N)"), QMessageBox::DestructiveRole);
    QPushButton* stay = box.addButton(tr("取消"), QMessageBox::RejectRole);
    box.setDefaultButton(const_cast<QPushButton*>(keep));
    box.setEscapeButton(stay);
    box.exec();
    if (box.clickedButton() == keep) {
        return save(false);
    }
    return box.clickedButton() == drop;
}

/// Copies that a program which ended badly has left are opened, or thrown away, as the user says.
void MainWindow::offerRecovery() {
    const std::vector<Recoverable> found = mAutosave.found();
    if (found.empty()) {
        return;
    }
    QString list;
    for (const Recoverable& one : found) {
        list += QStringLiteral("\n    %1   %2").arg(one.title, one.when);
    }
    QMessageBox box(QMessageBox::Question, tr("恢复图形"),
                    tr("上次程序没有正常结束。以下图形有自动保存的副本:") + list, QMessageBox::NoButton,
                    this);
    const QPushButton* open = box.addButton(tr("恢复(&R)"), QMessageBox::AcceptRole);
    const QPushButton* drop = box.addButton(tr("丢弃(&D)"), QMessageBox::DestructiveRole);
    box.addButton(tr("以后再问"), QMessageBox::RejectRole);
    box.exec();
    for (const Recoverable& one : found) {
        const bool opened = box.clickedButton() == open && Autosave::recover(one);
        if (opened) {
            mAutosave.save(); // under this program's name, before the old copy goes
            mAutosave.finish();
        }
        if (opened || box.clickedButton() == drop) {
            Autosave::drop(one);
        }
    }
}

void MainWindow::closeCurrent() {
    AcApDocument* document = curDoc();
    if (document == nullptr || !mInput->isAsking() || host::Fiber::current() != nullptr ||
        !mayClose(*document)) {
        return;
    }
    acDocManagerPtr()->closeDocument(document);
    if (curDoc() == nullptr) {
        acDocManagerPtr()->appContextNewDocument(nullptr);
    }
    mInput->restart();
}

void MainWindow::exportPicture() {
    if (curDoc() == nullptr) {
        return;
    }
    const QString file = QFileDialog::getSaveFileName(
        this, tr("输出图形"), QString(), QStringLiteral("PDF (*.pdf);;PNG (*.png);;SVG (*.svg)"));
    if (file.isEmpty()) {
        return;
    }
    const std::wstring message =
        host::plotExtents(curDoc()->database(), std::filesystem::path(file.toStdString()));
    if (!message.empty()) {
        QMessageBox::warning(this, tr("输出"), QString::fromStdWString(message));
    }
}

void MainWindow::readLayout() {
    const std::unique_ptr<QSettings> settings = windowSettings();
    restoreGeometry(settings->value(QStringLiteral("geometry")).toByteArray());
    restoreState(settings->value(QStringLiteral("state")).toByteArray());
}

void MainWindow::keepLayout() {
    const std::unique_ptr<QSettings> settings = windowSettings();
    settings->setValue(QStringLiteral("geometry"), saveGeometry());
    settings->setValue(QStringLiteral("state"), saveState());
}

void MainWindow::rememberFile(const QString& file) {
    const std::unique_ptr<QSettings> settings = windowSettings();
    QStringList files = settings->value(QStringLiteral("recentFiles")).toStringList();
    const QString path = QFileInfo(file).absoluteFilePath();
    files.removeAll(path);
    files.prepend(path);
    settings->setValue(QStringLiteral("recentFiles"), files.mid(0, mostRecentFiles));
}

void MainWindow::fillRecentFiles() {
    mRecent->clear();
    int number = 0;
    for (const QString& file : windowSettings()->value(QStringLiteral("recentFiles")).toStringList()) {
        QAction* action =
            mRecent->addAction(QStringLiteral("&%1 %2").arg(++number).arg(QDir::toNativeSeparators(file)));
        connect(action, &QAction::triggered, this, [this, file] {
            openFile(file);
            mInput->restart();
        });
    }
    if (number == 0) {
        mRecent->addAction(tr("(无)"))->setEnabled(false);
    }
}

} // namespace app
