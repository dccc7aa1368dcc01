#include "app/chrome/mainwindow.h"

#include "app/chrome/actiontable.h"
#include "app/chrome/files.h"
#include "app/chrome/icons.h"
#include "app/chrome/style.h"
#include "app/window.h"

#include "host/db/dbents.h"
#include "host/ed/ed.h"
#include "host/ed/fiber.h"
#include "host/mfc/appwindow.h"
#include "host/rx/text.h"
#include "host/win/win.h"

#include <QAction>
#include <QApplication>
#include <QCloseEvent>
#include <QFileInfo>
#include <QKeyEvent>
#include <QMenuBar>
#include <QMessageBox>
#include <QScreen>
#include <QToolButton>
#include <QVBoxLayout>

namespace app {
namespace {

QString translated(const char* text) {
    return QCoreApplication::translate("Actions", text);
}

/// The bars of a group of rows are filled in their order.
QString plain(const QString& text) {
    QString name = text;
    const qsizetype mnemonic = name.indexOf(QLatin1String("(&"));
    if (mnemonic >= 0) {
        name.remove(mnemonic, 4);
    }
    return name.remove(QLatin1String("..."));
}

} // namespace

MainWindow::MainWindow()
    : mCanvas(new Canvas), mCommandLine(new CommandLine), mProperties(nullptr), mModes(nullptr),
      mTabs(new QTabBar), mLayouts(new LayoutBar), mAutosave(host::settingsFolder() / "recovery") {
    applyStyle(*this);
    setWindowIcon(icon("app"));
    setObjectName(QStringLiteral("mainWindow"));
    auto* middle = new QWidget;
    auto* layout = new QVBoxLayout(middle);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    mTabs->setObjectName(QStringLiteral("documentTabs"));
    mTabs->setDrawBase(false);
    mTabs->setExpanding(false);
    mTabs->setFocusPolicy(Qt::NoFocus);
    layout->addWidget(mTabs);
    layout->addWidget(mCanvas, 1);
    layout->addWidget(mLayouts);
    setCentralWidget(middle);
    mModes = new ModeBar(this);
    setStatusBar(mModes);
    mInput = std::make_unique<WindowInput>(*mCanvas, *mCommandLine);
    mLayouts->run = [this](const QString& text) {
        mInput->run(text);
        mCanvas->setFocus();
    };
    mInput->asking = [this](const host::InputRequest& request) { followQuestion(request); };
    mInput->cursorMoved = [this](const Aimed& aimed) { mModes->showPoint(aimed.point); };
    mInput->menu = [this](const QPoint& onScreen, bool snaps) { showContextMenu(onScreen, snaps); };
    host::setEventFaultHandler(
        [this](const std::wstring& fault) { mInput->failed(tr("窗口出错: ").toStdWString() + fault); });
    buildMenus();
    buildDocks();
    connect(mTabs, &QTabBar::currentChanged, this, [this](int index) {
        auto* document = mIsFollowing ? nullptr : mTabs->tabData(index).value<void*>();
        if (document != nullptr && mInput->isAsking() && host::Fiber::current() == nullptr) {
            acDocManagerPtr()->activateDocument(static_cast<AcApDocument*>(document));
            mInput->restart();
        }
    });
    acDocManagerPtr()->addReactor(this);
    host::console().setSink(mCommandLine);
    host::setEditorView(mCanvas);
    host::hangApplicationWindows(this, mCanvas);
    acedSetAlertFunction([](const ACHAR* text) {
        QMessageBox::information(QApplication::activeWindow(), QStringLiteral("QDVHost"),
                                 QString::fromWCharArray(text != nullptr ? text : L""));
    });
    resize(QSize(1440, 900).boundedTo(screen()->availableSize() * 0.95));
    readLayout();
    mCanvas->setFocus();
}

MainWindow::~MainWindow() {
    acDocManagerPtr()->removeReactor(this);
    host::setEventFaultHandler(nullptr);
    acedSetAlertFunction(nullptr);
    host::hangApplicationWindows(nullptr, nullptr);
}

void MainWindow::begin(const Options& options) {
    QCoreApplication::processEvents();
    if (!options.drawing || !openFile(QString::fromStdString(options.drawing->string()))) {
        acDocManagerPtr()->appContextNewDocument(nullptr);
    }
    loadModules(options);
    mAutosave.setInterval(host::systemVariableInteger(L"SAVETIME"));
    offerRecovery();
}

void MainWindow::end() {
    keepLayout();
    mDesktop.keepOffer();
    mCanvas->setRequest(nullptr, {});
}

void MainWindow::buildMenus() {
    std::map<std::string, QMenu*> menus;
    for (const char* title : menuTitles()) {
        menus[title] = menuBar()->addMenu(translated(title));
    }
    addToolBarBreak();
    for (const ActionRow& row : actionRows()) {
        QMenu* menu = row.menu != nullptr ? menus[row.menu] : nullptr;
        if (row.bar != nullptr && mBars.count(row.bar) == 0) {
            auto* bar = new QToolBar(translated(row.bar), this);
            bar->setObjectName(QString::fromUtf8(row.bar));
            bar->setIconSize(QSize(22, 22));
            const std::string_view name = row.bar;
            addToolBar(name == "绘图"   ? Qt::LeftToolBarArea
                       : name == "修改" ? Qt::RightToolBarArea
                                        : Qt::TopToolBarArea,
                       bar);
            mBars[row.bar] = bar;
        }
        QToolBar* bar = row.bar != nullptr ? mBars[row.bar] : nullptr;
        if (row.text == nullptr) {
            menu != nullptr ? menu->addSeparator() : bar->addSeparator();
            continue;
        }
        if (std::string_view(row.command) == "@recent" || std::string_view(row.command) == "@panels") {
            QMenu*& sub = std::string_view(row.command) == "@recent" ? mRecent : mPanels;
            sub = menu->addMenu(translated(row.text));
            continue;
        }
        QAction* action = buildAction(row);
        if (menu != nullptr) {
            menu->addAction(action);
        }
        if (bar != nullptr) {
            bar->addAction(action);
        }
    }
    mProperties = new PropertyBar(this);
    mProperties->run = [this](const QString& text) { mInput->run(text); };
    insertToolBar(mBars["通用工具"], mProperties);
    insertToolBarBreak(mProperties);
    connect(mRecent, &QMenu::aboutToShow, this, [this] { fillRecentFiles(); });
    for (const int key : {Qt::Key_F3, Qt::Key_F7, Qt::Key_F8, Qt::Key_F9}) {
        auto* action = new QAction(this);
        action->setShortcut(QKeySequence(key));
        connect(action, &QAction::triggered, this, [this, key] { mModes->toggle(key); });
        addAction(action);
    }
}

QAction* MainWindow::buildAction(const ActionRow& row) {
    auto* action = new QAction(translated(row.text), this);
    if (row.icon != nullptr) {
        action->setIcon(icon(row.icon));
    }
    if (row.shortcut != nullptr) {
        action->setShortcut(QKeySequence(QString::fromLatin1(row.shortcut)));
    }
    action->setObjectName(QString::fromUtf8(row.command));
    const QString name = plain(translated(row.text));
    action->setToolTip(row.command[0] == '@'
                           ? name
                           : name + QStringLiteral("\n") +
                                 QString::fromUtf8(row.command).remove(QLatin1String("_.")));
    connect(action, &QAction::triggered, this, [this, &row] { trigger(row.command, row.transparent); });
    return action;
}

void MainWindow::buildDocks() {
    auto* dock = new QDockWidget(tr("命令行"), this);
    dock->setObjectName(QStringLiteral("commandDock"));
    dock->setWidget(mCommandLine);
    dock->setAllowedAreas(Qt::TopDockWidgetArea | Qt::BottomDockWidgetArea);
    dock->setTitleBarWidget(new QWidget(dock));
    addDockWidget(Qt::BottomDockWidgetArea, dock);
    resizeDocks({dock}, {120}, Qt::Vertical);
    for (const auto& [name, bar] : mBars) {
        mPanels->addAction(bar->toggleViewAction());
    }
    mLayerPanel = new LayerPanel(this);
    mPropertyPanel = new PropertyPanel(this);
    mLayerPanel->run = mPropertyPanel->run = [this](const QString& text) { mInput->run(text); };
    for (QDockWidget* panel :
         {static_cast<QDockWidget*>(mPropertyPanel), static_cast<QDockWidget*>(mLayerPanel)}) {
        addDockWidget(Qt::RightDockWidgetArea, panel);
        panel->hide();
        mPanels->addAction(panel->toggleViewAction());
    }
    mPanels->addAction(mProperties->toggleViewAction());
    mPanels->addAction(dock->toggleViewAction());
}

void MainWindow::followQuestion(const host::InputRequest&) {
    mModes->follow();
    mProperties->follow();
    mLayerPanel->follow();
    mPropertyPanel->follow();
    mAutosave.setInterval(host::systemVariableInteger(L"SAVETIME"));
    followDocuments();
    mLayouts->follow();
    if (mTextWindow != nullptr && mTextWindow->isVisible()) {
        showTextWindow();
    }
}

void MainWindow::followDocuments() {
    mIsFollowing = true;
    const auto& documents = acDocManagerPtr()->documents();
    while (mTabs->count() > static_cast<int>(documents.size())) {
        mTabs->removeTab(mTabs->count() - 1);
    }
    for (int i = 0; i < static_cast<int>(documents.size()); ++i) {
        AcApDocument& document = *documents[static_cast<std::size_t>(i)];
        const bool changed = isChanged(document);
        const QString title =
            QString::fromWCharArray(document.docTitle()) + (changed ? QStringLiteral(" *") : QString());
        if (i >= mTabs->count()) {
            auto* button = new QToolButton(mTabs);
            button->setIcon(icon("close"));
            button->setIconSize(QSize(12, 12));
            button->setAutoRaise(true);
            connect(button, &QToolButton::clicked, this, [this, button] { closeTabOf(button); });
            mTabs->setTabButton(mTabs->addTab(title), QTabBar::RightSide, button);
        }
        mTabs->setTabText(i, title);
        mTabs->setTabToolTip(i, QString::fromWCharArray(document.fileName()));
        mTabs->setTabData(i, QVariant::fromValue(static_cast<void*>(&document)));
        if (&document == curDoc()) {
            mTabs->setCurrentIndex(i);
            setWindowTitle(title + QStringLiteral(" - QDVHost"));
        }
    }
    mIsFollowing = false;
}

void MainWindow::closeTabOf(const QWidget* button) {
    for (int i = 0; i < mTabs->count(); ++i) {
        if (mTabs->tabButton(i, QTabBar::RightSide) == button) {
            mTabs->setCurrentIndex(i);
            closeCurrent();
            return;
        }
    }
}

void MainWindow::documentBecameCurrent(AcApDocument* document) {
    mCanvas->setDocument(document);
    followDocuments();
}

void MainWindow::documentToBeDestroyed(AcApDocument* document) {
    mCanvas->forget(document);
    mAutosave.forget(*document);
}

void MainWindow::documentDestroyed(const ACHAR*) {
    followDocuments();
}

void MainWindow::documentTitleUpdated(AcApDocument*) {
    followDocuments();
}

void MainWindow::trigger(const char* command, bool transparent) {
    if (command[0] == '@') {
        windowAction(command + 1);
        return;
    }
    QString text = QString::fromUtf8(command) + QLatin1Char('\n');
    text.replace(QLatin1Char(' '), QLatin1Char('\n'));
    mInput->run(text, transparent);
    mCanvas->setFocus();
}

void MainWindow::showPanel(QDockWidget& panel) {
    panel.setVisible(!panel.isVisible());
    if (panel.isVisible()) {
        panel.raise();
        if (!panel.isFloating() && panel.width() < panel.sizeHint().width()) {
            resizeDocks({&panel}, {panel.sizeHint().width()}, Qt::Horizontal);
        }
    }
}

void MainWindow::showProperties(bool visible) {
    if (mPropertyPanel->isVisible() != visible) {
        showPanel(*mPropertyPanel);
    }
}

/// The keys of the clipboard mean nothing while a command asks: its work is not to be lost by them.
void MainWindow::clipboardCommand(const char* command) {
    if (mInput->isIdle()) {
        trigger(command, false);
    }
}

void MainWindow::selectAll() {
    if (!mInput->isIdle()) {
        return;
    }
    mInput->run(QStringLiteral("(progn (sssetfirst nil (ssget \"_A\")) (princ))\n"));
}

void MainWindow::closeEvent(QCloseEvent* event) {
    for (const auto& document : acDocManagerPtr()->documents()) {
        if (!mayClose(*document)) {
            event->ignore();
            return;
        }
    }
    event->accept();
    mInput->close();
}

} // namespace app
