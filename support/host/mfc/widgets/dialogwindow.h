// Windows whose class paints them, and the windows of dialogs with their frames.
#pragma once

#include "host/mfc/widgets/factory.h"
#include "host/mfc/widgets/template.h"

#include <QEventLoop>
#include <QScrollBar>
#include <optional>

namespace host {

// The client area of a dialog or of a window that its class paints.
class ContentWidget : public QWidget {
public:
    explicit ContentWidget(QWidget* parent) : QWidget(parent) {}
    HWND window = nullptr;

protected:
    void paintEvent(QPaintEvent*) override;
    void resizeEvent(QResizeEvent*) override;
};

// Where a class wants its window to be asked.
struct FrameMeasures {
    int title = 0, border = 0;
};

class DialogWindow : public HWND__ {
public:
    DialogWindow(QWidget* frame, ContentWidget* area, HWND owner, DWORD windowStyle, DWORD extendedStyle,
                 FrameMeasures measures);

    bool isDialog() const override { return true; }
    std::wstring kind() const override { return isMessageBox ? L"消息框" : L"对话框"; }
    LRESULT defaultProc(UINT message, WPARAM wParam, LPARAM lParam) override;
    void setText(const std::wstring& text) override;
    void applyStyle() override;

    HWND child(UINT childId) const; // null when there is none
    UINT defaultId() const;
    void setDefaultId(UINT buttonId);
    void end(int value);
    void resized() override;
    // Width and height without the frame.
    void resizeContent(QSize size);
    void updateLimits(); // as the class says to WM_GETMINMAXINFO
    bool isModal() const { return modal; }

    FrameMeasures measures;
    DialogUnits units;
    bool modal = false;
    bool ended = false;
    bool isMessageBox = false;
    int result = IDCANCEL;
    QEventLoop* loop = nullptr;

protected:
    bool filter(QEvent* event) override;

private:
    bool isOverContent(const QMouseEvent& event) const;
    UINT defaultId_ = 0;
};
DialogWindow* dialogOf(HWND window);

// The window of a template, hidden, with its controls; `object` gets its messages from the beginning.
DialogWindow* buildDialog(const DialogTemplate& from, HWND owner, CWnd* object, bool modal);

// Dialogs whose class is in a library that goes are closed before.
void closeDialogsOf(HINSTANCE module);

} // namespace host
