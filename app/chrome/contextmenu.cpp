// What the right button offers in the drawing area: at the prompt, with a choice, within a command; and the
// object snaps for one point.
#include "app/canvas/aiming.h"
#include "app/chrome/icons.h"
#include "app/chrome/mainwindow.h"

#include "host/ed/documentstate.h"
#include "host/ed/ed.h"

namespace app {
namespace {

struct SnapWord {
    int kind;
    const char* typed;
};
constexpr SnapWord snapWords[] = {
    {AcDb::kOsMaskEnd, "_end"},   {AcDb::kOsMaskMid, "_mid"},  {AcDb::kOsMaskInt, "_int"},
    {AcDb::kOsMaskApint, "_app"}, {AcDb::kOsMaskCen, "_cen"},  {AcDb::kOsMaskQuad, "_qua"},
    {AcDb::kOsMaskTan, "_tan"},   {AcDb::kOsMaskPerp, "_per"}, {AcDb::kOsMaskNode, "_nod"},
    {AcDb::kOsMaskIns, "_ins"},   {AcDb::kOsMaskNear, "_nea"}};

} // namespace

void MainWindow::addSnaps(QMenu& menu) {
    for (const SnapWord& word : snapWords) {
        menu.addAction(snapName(word.kind), this,
                       [this, &word] { mInput->enter(QString::fromLatin1(word.typed)); });
    }
    menu.addSeparator();
    menu.addAction(tr("无"), this, [this] { mInput->enter(QStringLiteral("_non")); });
}

void MainWindow::addCommand(QMenu& menu, const QString& text, const char* command, const char* iconName) {
    QAction* action = menu.addAction(text, this, [this, command] { trigger(command, !mInput->isIdle()); });
    if (iconName != nullptr) {
        action->setIcon(icon(iconName));
    }
}

void MainWindow::addPromptRows(QMenu& menu) {
    const std::wstring& last = curDoc()->state().lastCommand;
    if (!last.empty()) {
        menu.addAction(tr("重复 %1(&R)").arg(QString::fromStdWString(last)), this,
                       [this] { mInput->enter(QString()); });
        menu.addSeparator();
    }
    if (mInput->picking().hasSelection()) {
        addCommand(menu, tr("删除(&E)"), "_.ERASE", "erase");
        addCommand(menu, tr("移动(&M)"), "_.MOVE", "move");
        addCommand(menu, tr("复制(&Y)"), "_.COPY", "copy");
        addCommand(menu, tr("旋转(&O)"), "_.ROTATE", "rotate");
        addCommand(menu, tr("缩放(&L)"), "_.SCALE", "scale");
        addCommand(menu, tr("特性匹配(&T)"), "_.MATCHPROP", "matchprop");
        menu.addSeparator();
        addCommand(menu, tr("选择类似对象(&N)"), "_.SELECTSIMILAR", nullptr);
        addCommand(menu, tr("剪切(&X)"), "@cut", nullptr);
        addCommand(menu, tr("复制到剪贴板(&C)"), "@copy", nullptr);
        menu.addAction(tr("全部不选(&A)"), this, [this] { mInput->cancel(); });
    }
    addCommand(menu, tr("粘贴(&V)"), "@paste", nullptr);
    addCommand(menu, tr("特性(&S)"), "@properties", "properties");
    menu.addSeparator();
}

void MainWindow::addAnswerRows(QMenu& menu, bool wantsPoint) {
    menu.addAction(tr("确认(&E)"), this, [this] { mInput->confirmed(); });
    menu.addAction(tr("取消(&C)"), this, [this] { mInput->cancel(); });
    menu.addSeparator();
    const std::vector<PromptKeyword> keywords = keywordsOf(mCommandLine->prompt());
    for (const PromptKeyword& keyword : keywords) {
        menu.addAction(keyword.shown, this, [this, keyword] { mInput->enter(keyword.typed); });
    }
    if (!keywords.empty()) {
        menu.addSeparator();
    }
    if (wantsPoint) {
        addSnaps(*menu.addMenu(tr("捕捉替代(&V)")));
        menu.addSeparator();
    }
}

void MainWindow::showContextMenu(const QPoint& onScreen, bool snaps) {
    const host::InputRequest* request = mInput->request();
    if (request == nullptr || curDoc() == nullptr) {
        return;
    }
    QMenu menu(this);
    if (snaps) {
        addSnaps(menu);
    } else {
        request->atCommandPrompt ? addPromptRows(menu) : addAnswerRows(menu, request->wantsPoint);
        addCommand(menu, tr("平移(&P)"), "_.PAN", "pan");
        addCommand(menu, tr("窗口缩放(&W)"), "_.ZOOM _W", "zoomwindow");
        addCommand(menu, tr("上一个视图(&B)"), "_.ZOOM _P", "zoomprevious");
        addCommand(menu, tr("范围缩放(&X)"), "@zoomextents", "zoomextents");
    }
    menu.exec(onScreen);
    mCanvas->setFocus();
}

} // namespace app
