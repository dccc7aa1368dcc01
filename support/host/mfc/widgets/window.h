// The widget side of a window: what an HWND points to. It turns events into messages, gives controls their
// behaviour where no class has its own, and is what scripts drive.
#pragma once

#include "host/mfc/wnd.h"

#include <QFont>
#include <QObject>
#include <QPalette>
#include <QPointer>
#include <QWidget>
#include <exception>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

class QPainter;

struct HWND__ : public QObject {
public:
    HWND__(QWidget* made, HWND owner, UINT controlId, DWORD windowStyle, DWORD extendedStyle);
    ~HWND__() override;

    QPointer<QWidget> widget;  // all of it, frame included
    QPointer<QWidget> content; // the client area
    CWnd* object = nullptr;    // attached
    HWND parent;               // or owner
    std::vector<HWND> children;
    UINT id;
    DWORD style, exStyle;
    int wheel = 0;
    bool dying = false;
    bool adopted = false; // made elsewhere: its events are its owner's
    bool redraws = true;
    HICON icon = nullptr;
    HFONT font = nullptr;

    // Sends a message through the attached object, or to defaultProc.
    LRESULT send(UINT message, WPARAM wParam = 0, LPARAM lParam = 0);
    // What the window does of itself.
    virtual LRESULT defaultProc(UINT message, WPARAM wParam, LPARAM lParam);
    virtual std::wstring kind() const { return L"窗口"; } // for the user of scripts
    virtual std::wstring text() const;
    virtual void setText(const std::wstring& text);
    virtual void applyStyle() {}
    virtual void setFontOf(const QFont& value);
    virtual bool isDialog() const { return false; }
    virtual void resized() {} // by a program; the toolkit tells hidden widgets of it only when they are shown
    bool isEnabled() const;

    // As by hand; the text says what is wrong, empty when it was done.
    virtual std::wstring scriptSet(const std::wstring& value);
    virtual std::wstring scriptCheck(bool on);
    virtual std::wstring scriptClick();
    virtual std::wstring scriptSelect(const std::vector<int>& items);
    virtual std::wstring scriptCell(int row, int column, const std::wstring& value);
    virtual std::wstring scriptGet() const { return text(); }

    // As by a right click at a place of the screen.
    void rightClick(QPoint onScreen);
    virtual QPoint contextPlace() const; // where a script's right click goes, on the screen

    void command(UINT code); // WM_COMMAND to the parent
    LRESULT notify(UINT code) {
        NMHDR header{};
        return notify(header, code);
    }
    LRESULT notify(NMHDR& header, UINT code); // WM_NOTIFY
    // Painting by a class: WM_ERASEBKGND and WM_PAINT. True when the class paints.
    bool paintByClass(QWidget* on);
    CDC* paintContext = nullptr;                      // while painting
    bool setTimer(UINT_PTR timer, UINT milliseconds); // again: from now on
    bool killTimerOf(UINT_PTR timer);
    std::unique_ptr<CFont> ownFont;  // of GetFont
    std::unique_ptr<CWnd> temporary; // of FromHandle

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void timerEvent(QTimerEvent* event) override;
    // An event that the class may see: its message is sent; true when the event is done with.
    virtual bool filter(QEvent* event);
    // What a control tells its parent of a right click before it becomes WM_CONTEXTMENU; true when that was
    // the end of it.
    virtual bool tellRightClick(QPoint) { return false; }
    // Before it is painted: the class or the parent's may give the text another colour.
    void askColor(UINT message, QPalette::ColorRole role);
    // Gives the widget the event that is being filtered, now.
    LRESULT runPending();

private:
    friend class CWnd;
    bool keyEvent(QEvent* event, bool down);
    bool mouseEvent(QEvent* event);
    bool contextEvent(QEvent* event);
    void askMenu(LPARAM at);
    bool offer(UINT message, WPARAM wParam, LPARAM lParam, QEvent* event);

    std::map<int, UINT_PTR> timers_;
    QEvent* pending_ = nullptr; // being filtered, not yet given to the widget
    bool pendingRun_ = false;
};

namespace host {

// An object for a window that has none.
CWnd* temporaryWindow(HWND window);

// Makes the control or window of a class name; null for an unknown one. The rectangle is in pixels of the
// parent's client area.
HWND createWindow(const std::wstring& className, const std::wstring& text, DWORD style, DWORD exStyle,
                  const QRect& rect, HWND parent, UINT id);
void destroyWindow(HWND window);
// A widget made elsewhere as a window; it stays its owner's.
HWND adoptWidget(QWidget* widget);
HWND windowOfWidget(const QWidget* widget);
// By the program; one that the user can't resize stays so.
void resizeWidget(QWidget& widget, QSize size);

// Dialog fonts by face, points and weight; all faces of dialogs are one here.
QFont dialogFont(std::wstring_view face, int points, int weight, bool italic);
// Pixels per quarter dialog unit across, eighth down.
struct DialogUnits {
    int x = 7, y = 16;
    QRect pixels(int left, int top, int width, int height) const;
};
DialogUnits dialogUnits(const QFont& font);

QString toQt(std::wstring_view text);
std::wstring fromQt(const QString& text);
// A caption with its mnemonic, as the user reads it: "确定(O)".
std::wstring withoutMnemonic(std::wstring text);
UINT virtualKey(int qtKey);
WPARAM mouseKeys(Qt::MouseButtons buttons, Qt::KeyboardModifiers modifiers);
LPARAM packed(QPoint point);
// The place in WM_CONTEXTMENU when the menu was asked for by its key.
inline constexpr LPARAM byKeyboard = -1;
RECT toRect(const QRect& rect);
QRect toQRect(const RECT& rect);
QColor toColor(COLORREF color);
COLORREF fromColor(const QColor& color);

// An exception in a handler does not travel through the toolkit: it is kept here, and thrown again by whoever
// runs the events.
std::exception_ptr& keptException();
void throwKept();
template <class Call>
void guarded(Call call) noexcept {
    try {
        call();
    } catch (...) {
        if (!keptException())
            keptException() = std::current_exception();
    }
}

class DialogWindow;
// Shows a dialog and gives what it ended with: worked by hand, or by the lines of the script.
int runModal(DialogWindow& dialog);
int showMessageBox(CWnd* owner, const std::wstring& text, const std::wstring& caption, UINT type);
// A dialog was made: the user's lines may be for it.
void dialogOpened();

// Open dialogs, the one in front last.
std::vector<HWND>& openDialogs();

} // namespace host
