// Keys and mouse in dialogs, message filters, timers, and the frame that is drawn here; pictures of dialogs.
#include "dialogsession.h"

#include "host/mfc/widgets/application.h"
#include "host/mfc/widgets/dialogwindow.h"
#include "host/mfc/widgets/script.h"

#include <QAbstractButton>
#include <QApplication>
#include <QFileDialog>
#include <QKeyEvent>
#include <QLabel>
#include <QLocale>
#include <QMessageBox>
#include <QMouseEvent>
#include <algorithm>

namespace {

/// Takes down what reaches it and stays open.
class WatchingDialog : public CDialog {
public:
    std::vector<CString> events;
    UINT swallowed = 0; ///< this key goes no further
    CEdit edit;

    void note(LPCTSTR format, int value = 0) {
        CString text;
        text.Format(format, value);
        events.push_back(text);
    }

protected:
    DECLARE_MESSAGE_MAP()
    void DoDataExchange(CDataExchange* exchange) override {
        CDialog::DoDataExchange(exchange);
        DDX_Control(exchange, 1001, edit);
    }
    void OnOK() override { note(L"ok"); }
    void OnCancel() override { note(L"cancel"); }
    void OnAsk() { note(L"ask"); }
    void OnTimer(UINT_PTR id) {
        note(L"timer %d", static_cast<int>(id));
        KillTimer(id);
    }
    void OnNcLButtonDown(UINT place, CPoint point) {
        note(L"frame %d", static_cast<int>(place));
        CDialog::OnNcLButtonDown(place, point);
    }
    void OnSysCommand(UINT command, LPARAM parameter) {
        note(L"system %x", static_cast<int>(command));
        CDialog::OnSysCommand(command, parameter);
    }
    BOOL PreTranslateMessage(MSG* message) override {
        if (message->message == WM_KEYDOWN && message->wParam == swallowed) {
            note(L"key %d", static_cast<int>(message->wParam));
            return TRUE;
        }
        return CDialog::PreTranslateMessage(message);
    }
    LRESULT OnKeepFocus(WPARAM, LPARAM) { return TRUE; }
};

BEGIN_MESSAGE_MAP(WatchingDialog, CDialog)
ON_BN_CLICKED(1013, &WatchingDialog::OnAsk)
ON_WM_TIMER()
ON_WM_NCLBUTTONDOWN()
ON_WM_SYSCOMMAND()
ON_MESSAGE(WM_ACAD_KEEPFOCUS, &WatchingDialog::OnKeepFocus)
END_MESSAGE_MAP()

class Keys : public OpenDialogSession<WatchingDialog> {
protected:
    void press(int id, int key, const QString& text = {}) {
        QKeyEvent event(QEvent::KeyPress, key, Qt::NoModifier, text);
        QApplication::sendEvent(dialog.GetDlgItem(id)->m_hWnd->widget, &event);
    }
    std::vector<CString> events() { return std::exchange(dialog.events, {}); }
};

int filtered = 0;
BOOL countKeys(MSG* message) {
    filtered += message->message == WM_KEYDOWN && message->wParam == VK_F9;
    return FALSE;
}
BOOL swallowKeys(MSG* message) {
    return message->message == WM_KEYDOWN ? TRUE : FALSE;
}

TEST_F(Keys, EnterAndEscapeWorkFromEveryControl) {
    press(1001, Qt::Key_Return, "\r");
    press(1008, Qt::Key_Escape, "\x1b");
    EXPECT_EQ(events(), (std::vector<CString>{L"ok", L"cancel"}));
    press(1013, Qt::Key_Return, "\r"); // a disabled button does nothing, and the default one is not meant
    EXPECT_TRUE(events().empty());
    dialog.GetDlgItem(1013)->EnableWindow();
    press(1013, Qt::Key_Return, "\r"); // the button that has the focus
    EXPECT_EQ(events(), (std::vector<CString>{L"ask"}));
    dialog.SetDefID(1013);
    press(1001, Qt::Key_Return, "\r");
    EXPECT_EQ(events(), (std::vector<CString>{L"ask"}));
}

TEST_F(Keys, ClassesSeeKeysFirst) {
    press(1001, Qt::Key_A, "a");
    CString text;
    dialog.edit.GetWindowText(text);
    EXPECT_EQ(text, L"a");
    dialog.swallowed = VK_F2;
    press(1001, Qt::Key_F2);
    dialog.swallowed = 'B';
    press(1001, Qt::Key_B, "b");
    dialog.edit.GetWindowText(text);
    EXPECT_EQ(text, L"a");
    EXPECT_EQ(events(), (std::vector<CString>{L"key 113", L"key 66"}));
}

TEST_F(Keys, FiltersSeeThemBeforeAll) {
    filtered = 0;
    EXPECT_TRUE(acedRegisterFilterWinMsg(countKeys));
    EXPECT_FALSE(acedRegisterFilterWinMsg(countKeys));
    press(1001, Qt::Key_F9);
    EXPECT_EQ(filtered, 1);
    EXPECT_TRUE(acedRegisterFilterWinMsg(swallowKeys));
    press(1001, Qt::Key_Return, "\r");
    EXPECT_TRUE(events().empty());
    EXPECT_TRUE(acedRemoveFilterWinMsg(swallowKeys));
    EXPECT_TRUE(acedRemoveFilterWinMsg(countKeys));
    EXPECT_FALSE(acedRemoveFilterWinMsg(countKeys));
    press(1001, Qt::Key_F9);
    EXPECT_EQ(filtered, 1);
}

TEST_F(Keys, TimersAndTheFrameSendMessages) {
    dialog.SetTimer(7, 0, nullptr);
    for (int turn = 0; turn < 1000 && dialog.events.empty(); ++turn) {
        Sleep(1);
        host::processEvents();
    }
    EXPECT_EQ(events(), (std::vector<CString>{L"timer 7"}));
    // A click on the close button of the frame.
    QWidget& frame = *dialog.m_hWnd->widget;
    const QPointF close(frame.width() - 12, 12);
    ASSERT_EQ(dialog.SendMessage(WM_NCHITTEST, 0, host::packed(frame.mapToGlobal(close.toPoint()))), HTCLOSE);
    for (const QEvent::Type type : {QEvent::MouseButtonPress, QEvent::MouseButtonRelease}) {
        QMouseEvent event(type, close, frame.mapToGlobal(close), Qt::LeftButton,
                          type == QEvent::MouseButtonPress ? Qt::LeftButton : Qt::NoButton, Qt::NoModifier);
        QApplication::sendEvent(&frame, &event);
    }
    EXPECT_EQ(events(), (std::vector<CString>{L"frame 20", L"system f060", L"cancel"}));
    CRect window, client;
    dialog.GetWindowRect(window);
    dialog.GetClientRect(client);
    EXPECT_GT(window.Height(), client.Height() + 20);
    dialog.SetWindowPos(nullptr, 0, 0, window.Width(), window.Height() - client.Height(),
                        SWP_NOMOVE | SWP_NOZORDER);
    dialog.GetClientRect(client);
    EXPECT_EQ(client.Height(), 0); // only the title bar is left
}

TEST_F(Keys, UnitsAndPicturesFollowTheScale) {
    // 9 points are 12 pixels; a unit is a quarter of a letter's width and an eighth of a line's height.
    CRect rect(0, 0, 4, 8);
    dialog.MapDialogRect(rect);
    EXPECT_EQ(rect.bottom, 16);
    EXPECT_GE(rect.right, 6);
    EXPECT_LE(rect.right, 8);
    const QImage plain = host::windowPicture(dialog.m_hWnd, 1.0);
    const QImage fine = host::windowPicture(dialog.m_hWnd, 2.0);
    EXPECT_EQ(plain.size() * 2, fine.size());
    CRect window;
    dialog.GetWindowRect(window);
    EXPECT_EQ(plain.width(), window.Width());
    // Drawn finer, and not only enlarged.
    EXPECT_NE(plain.scaled(fine.size()), fine.copy());
}

TEST_F(Keys, TheToolkitsOwnTextsAreChinese) {
    const auto isLatin = [](const QString& text) {
        return std::ranges::any_of(text, [](QChar c) { return c.isLetter(); }) &&
               std::ranges::none_of(text, [](QChar c) { return c.unicode() >= 0x2E80; });
    };
    QMessageBox box(QMessageBox::NoIcon, {}, {}, QMessageBox::StandardButtons(0x0FFFFC00));
    EXPECT_GE(box.buttons().size(), 18);
    for (const QAbstractButton* button : box.buttons())
        EXPECT_FALSE(isLatin(button->text())) << button->text().toStdString();
    QFileDialog files;
    files.setOption(QFileDialog::DontUseNativeDialog);
    for (const QLabel* label : files.findChildren<QLabel*>())
        EXPECT_FALSE(isLatin(label->text())) << label->text().toStdString();
    for (const QAbstractButton* button : files.findChildren<QAbstractButton*>())
        EXPECT_FALSE(isLatin(button->text()) || isLatin(button->toolTip())) << button->text().toStdString();
    // Dates as well, in file dialogs by the system's locale; numbers of the program itself are as ever.
    const QDate date(2026, 11, 5);
    EXPECT_EQ(QLocale::system().toString(date, QLocale::ShortFormat).toStdString(), "2026/11/5");
    EXPECT_EQ(QLocale().standaloneMonthName(11).toStdString(), "十一月");
    EXPECT_EQ(std::wcstod(L"1.5", nullptr), 1.5);
    EXPECT_EQ(QString::number(1234.5), "1234.5");
}

TEST_F(Keys, WindowsOfTheHostAreThereWithoutAWindow) {
    EXPECT_NE(acedGetAcadFrame(), nullptr);
    EXPECT_EQ(acedGetAcadFrame()->GetSafeHwnd(), nullptr);
    acedGetAcadDwgView()->SetFocus();
    EXPECT_EQ(acedGetAcadDwgView()->SendMessage(WM_MOUSEMOVE), 0);
    CRect rect;
    acedGetAcadFrame()->GetWindowRect(rect);
    EXPECT_TRUE(rect.IsRectNull());
    EXPECT_EQ(dialog.SendMessage(WM_ACAD_KEEPFOCUS), TRUE);
}

} // namespace
