// What menus do that is no command: files, views, panels, help.
#include "app/chrome/mainwindow.h"

#include "host/ed/ed.h"

#include <QApplication>
#include <QDialog>
#include <QMessageBox>
#include <QPlainTextEdit>
#include <QScrollBar>
#include <QVBoxLayout>

namespace app {

void MainWindow::windowAction(std::string_view name) {
    struct Row {
        std::string_view name;
        void (*run)(MainWindow&);
    };
    constexpr double step = 2;
    static constexpr Row rows[] = {
        {"new",
         [](MainWindow& window) {
             acDocManagerPtr()->appContextNewDocument(nullptr);
             window.mInput->restart();
         }},
        {"open", [](MainWindow& window) { window.openDialog(); }},
        {"close", [](MainWindow& window) { window.closeCurrent(); }},
        {"save", [](MainWindow& window) { window.save(false); }},
        {"saveas", [](MainWindow& window) { window.save(true); }},
        {"export", [](MainWindow& window) { window.exportPicture(); }},
        {"quit", [](MainWindow& window) { window.close(); }},
        {"selectall", [](MainWindow& window) { window.selectAll(); }},
        {"cut", [](MainWindow& window) { window.clipboardCommand("_.CUTCLIP"); }},
        {"copy", [](MainWindow& window) { window.clipboardCommand("_.COPYCLIP"); }},
        {"copybase", [](MainWindow& window) { window.clipboardCommand("_.COPYBASE"); }},
        {"paste", [](MainWindow& window) { window.clipboardCommand("_.PASTECLIP"); }},
        {"pasteblock", [](MainWindow& window) { window.clipboardCommand("_.PASTEBLOCK"); }},
        {"pasteorig", [](MainWindow& window) { window.clipboardCommand("_.PASTEORIG"); }},
        {"zoomin",
         [](MainWindow& window) {
             window.mCanvas->browse();
             window.mCanvas->zoomAt(window.mCanvas->map().width * 0.5, window.mCanvas->map().height * 0.5,
                                    step);
         }},
        {"zoomout",
         [](MainWindow& window) {
             window.mCanvas->browse();
             window.mCanvas->zoomAt(window.mCanvas->map().width * 0.5, window.mCanvas->map().height * 0.5,
                                    1 / step);
         }},
        {"zoomextents",
         [](MainWindow& window) {
             window.mCanvas->browse();
             window.mCanvas->zoomExtents();
         }},
        {"textwindow", [](MainWindow& window) { window.showTextWindow(); }},
        {"layers", [](MainWindow& window) { window.showPanel(*window.mLayerPanel); }},
        {"properties", [](MainWindow& window) { window.showPanel(*window.mPropertyPanel); }},
        {"help", [](MainWindow& window) { window.showHelp(); }},
        {"about",
         [](MainWindow& window) {
             QMessageBox::about(&window, tr("关于"),
                                tr("QDVHost：绘图程序，配通用工具模块 QDVCommonTools。"));
         }},
    };
    for (const Row& row : rows) {
        if (row.name == name) {
            row.run(*this);
            return;
        }
    }
}

void MainWindow::showTextWindow() {
    if (mTextWindow == nullptr) {
        mTextWindow = std::make_unique<QDialog>(this);
        mTextWindow->setWindowTitle(tr("文本窗口"));
        auto* text = new QPlainTextEdit(mTextWindow.get());
        text->setReadOnly(true);
        auto* layout = new QVBoxLayout(mTextWindow.get());
        layout->setContentsMargins(0, 0, 0, 0);
        layout->addWidget(text);
        mTextWindow->resize(760, 520);
    }
    auto* text = mTextWindow->findChild<QPlainTextEdit*>();
    text->setPlainText(mCommandLine->history());
    text->verticalScrollBar()->setValue(text->verticalScrollBar()->maximum());
    mTextWindow->show();
}

void MainWindow::showHelp() {
    QMessageBox::information(
        this, tr("命令和键"),
        tr("<table cellspacing=6>"
           "<tr><td><b>左键</b></td><td>指定点、选择对象、拖出选择窗口；单击夹点移动它</td></tr>"
           "<tr><td><b>右键 / 回车 / 空格</b></td><td>结束输入；没有命令时重复上一个命令</td></tr>"
           "<tr><td><b>按住右键 / Shift+右键</b></td><td>快捷菜单 / 对象捕捉菜单</td></tr>"
           "<tr><td><b>中键拖动 / 滚轮 / 双击中键</b></td><td>平移 / 缩放 / 显示全部</td></tr>"
           "<tr><td><b>Esc</b></td><td>取消</td></tr>"
           "<tr><td><b>F2</b></td><td>文本窗口</td></tr>"
           "<tr><td><b>F3 F7 F8 F9</b></td><td>对象捕捉、栅格、正交、捕捉</td></tr>"
           "<tr><td><b>Delete</b></td><td>删除所选对象</td></tr>"
           "<tr><td><b>Ctrl+X / Ctrl+C / Ctrl+V</b></td><td>剪切、复制、粘贴所选对象</td></tr>"
           "<tr><td><b>Ctrl+Shift+C / Ctrl+Shift+V</b></td><td>带基点复制 / 粘贴为块</td></tr>"
           "<tr><td><b>Ctrl+Z / Ctrl+Y</b></td><td>放弃 / 重做</td></tr>"
           "<tr><td><b>'命令</b></td><td>在命令中透明使用，如 'ZOOM</td></tr>"
           "</table>"));
}

} // namespace app
