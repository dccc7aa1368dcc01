// The main window: drawing area, command line, menus and bars, documents and their files.
#pragma once

#include "app/canvas/canvas.h"
#include "app/chrome/autosave.h"
#include "app/chrome/layerpanel.h"
#include "app/chrome/layoutbar.h"
#include "app/chrome/modebar.h"
#include "app/chrome/plotdialog.h"
#include "app/chrome/propertybar.h"
#include "app/chrome/propertypanel.h"
#include "app/chrome/windowdesktop.h"
#include "app/console/commandline.h"
#include "app/console/windowinput.h"
#include "app/options.h"

#include "host/ed/acdocman.h"
#include "host/ed/acedreactor.h"

#include <QDockWidget>
#include <QMainWindow>
#include <QMenu>
#include <QTabBar>
#include <map>
#include <memory>

namespace app {

class MainWindow final : public QMainWindow, public AcApDocManagerReactor {
    Q_DECLARE_TR_FUNCTIONS(MainWindow)

public:
    MainWindow();
    ~MainWindow() override;

    /// Opens what the program was started for and loads the modules, once the window is on the screen.
    void begin(const Options& options);
    /// Writes what is kept from run to run.
    void end();

    host::UserInput& input() { return *mInput; }
    WindowInput& windowInput() { return *mInput; }
    Canvas& canvas() { return *mCanvas; }
    LayoutBar& layouts() { return *mLayouts; }
    CommandLine& commandLine() { return *mCommandLine; }
    /// What a menu or a tool button does; see ActionRow::command.
    void trigger(const char* command, bool transparent);

    void showProperties(bool visible);
    bool openFile(const QString& file);
    bool save(bool underNewName);
    /// Asks about what is not saved; false when the user stays.
    bool mayClose(AcApDocument& document);

    // AcApDocManagerReactor.
    void documentBecameCurrent(AcApDocument* document) override;
    void documentToBeDestroyed(AcApDocument* document) override;
    void documentDestroyed(const ACHAR*) override;
    void documentTitleUpdated(AcApDocument*) override;

protected:
    void closeEvent(QCloseEvent* event) override;

private:
    void buildMenus();
    QAction* buildAction(const struct ActionRow& row);
    void buildDocks();
    void followQuestion(const host::InputRequest& request);
    void followDocuments();
    void windowAction(std::string_view name);
    void openDialog();
    void closeCurrent();
    void closeTabOf(const QWidget* button);
    void exportPicture();
    void rememberFile(const QString& file);
    void fillRecentFiles();
    void showTextWindow();
    void showHelp();
    void selectAll();
    void clipboardCommand(const char* command);
    void offerRecovery();
    void showPanel(QDockWidget& panel);
    void showContextMenu(const QPoint& onScreen, bool snaps);
    void addSnaps(QMenu& menu);
    void addCommand(QMenu& menu, const QString& text, const char* command, const char* iconName);
    void addPromptRows(QMenu& menu);
    void addAnswerRows(QMenu& menu, bool wantsPoint);
    void readLayout();
    void keepLayout();

    Canvas* mCanvas;
    CommandLine* mCommandLine;
    PropertyBar* mProperties;
    ModeBar* mModes;
    LayerPanel* mLayerPanel = nullptr;
    PropertyPanel* mPropertyPanel = nullptr;
    QTabBar* mTabs;
    LayoutBar* mLayouts;
    QMenu* mRecent = nullptr;
    QMenu* mPanels = nullptr;
    std::map<std::string, QToolBar*> mBars;
    std::unique_ptr<WindowInput> mInput;
    std::unique_ptr<QDialog> mTextWindow;
    PlotWindows mPlotWindows{*this};
    WindowDesktop mDesktop{*this};
    Autosave mAutosave;
    bool mIsFollowing = false; ///< tabs are being filled
};

} // namespace app
