// Message boxes: a dialog with an icon, a text and the buttons of its kind.
#include "host/ed/console.h"
#include "host/ed/input.h"
#include "host/mfc/dialog.h"
#include "host/mfc/modulestate.h"
#include "host/mfc/widgets/application.h"
#include "host/mfc/widgets/context.h"
#include "host/mfc/widgets/dialogwindow.h"
#include "host/win/resources.h"

#include <QApplication>
#include <QFontMetrics>
#include <QLabel>
#include <QStyle>

namespace host {

void setStaticPicture(HWND label, const QPixmap& picture);

namespace {

constexpr UINT iconId = 20, textId = 0xFFFF;

struct Answer {
    int id;
    const wchar_t* caption;
};

std::vector<Answer> answersOf(UINT type) {
    const Answer ok{IDOK, L"确定"}, cancel{IDCANCEL, L"取消"}, yes{IDYES, L"是(&Y)"}, no{IDNO, L"否(&N)"},
        retry{IDRETRY, L"重试(&R)"};
    switch (type & MB_TYPEMASK) {
    case MB_OKCANCEL:
        return {ok, cancel};
    case MB_ABORTRETRYIGNORE:
        return {{IDABORT, L"中止(&A)"}, retry, {IDIGNORE, L"忽略(&I)"}};
    case MB_YESNOCANCEL:
        return {yes, no, cancel};
    case MB_YESNO:
        return {yes, no};
    case MB_RETRYCANCEL:
        return {retry, cancel};
    default:
        return {ok};
    }
}

QStyle::StandardPixmap iconOf(UINT type) {
    switch (type & MB_ICONMASK) {
    case MB_ICONERROR:
        return QStyle::SP_MessageBoxCritical;
    case MB_ICONQUESTION:
        return QStyle::SP_MessageBoxQuestion;
    case MB_ICONWARNING:
        return QStyle::SP_MessageBoxWarning;
    default:
        return QStyle::SP_MessageBoxInformation;
    }
}

// The places of text and buttons, in pixels.
struct Layout {
    QSize whole, text;
    int textLeft = 0, buttonTop = 0, firstButton = 0;
    static constexpr int margin = 20, icon = 32, buttonWidth = 88, buttonHeight = 28, gap = 10;

    Layout(const QString& shown, const QFont& font, bool hasIcon, int buttons) {
        constexpr int widest = 420;
        const QRect bounds = QFontMetrics(font).boundingRect(QRect(0, 0, widest, 4000),
                                                             Qt::TextWordWrap | Qt::AlignLeft, shown);
        text = bounds.size() + QSize(2, 2);
        textLeft = margin + (hasIcon ? icon + 14 : 0);
        const int row = buttons * buttonWidth + (buttons - 1) * gap;
        const int width = std::max({textLeft + text.width() + margin, row + 2 * margin, 220});
        const int body = std::max(text.height(), hasIcon ? int{icon} : 0);
        buttonTop = margin + body + margin;
        firstButton = width - margin - row;
        whole = QSize(width, buttonTop + buttonHeight + 14);
    }
};

class MessageBoxDialog : public CDialog {
public:
    MessageBoxDialog(const std::wstring& text, UINT type) : text_(text), type_(type) {}

    int run(const std::wstring& caption, CWnd* owner) {
        application();
        DialogTemplate empty;
        empty.style = WS_POPUP | WS_CAPTION | WS_SYSMENU;
        empty.caption = caption;
        buildFrom(empty, owner, true);
        auto* window = dialogOf(m_hWnd);
        window->isMessageBox = true;
        fill(*window);
        CenterWindow(owner);
        const int result = runModal(*window);
        DestroyWindow();
        processEvents();
        throwKept();
        return result;
    }

protected:
    // Escape and the close button mean Cancel, or the only answer; without either they are no answer.
    void OnCancel() override {
        const std::vector<Answer> answers = answersOf(type_);
        const bool has = std::ranges::any_of(answers, [](const Answer& a) { return a.id == IDCANCEL; });
        if (has)
            EndDialog(IDCANCEL);
        else if (answers.size() == 1)
            EndDialog(answers.front().id);
    }
    void OnOK() override { EndDialog(IDOK); }
    BOOL OnCommand(WPARAM wParam, LPARAM lParam) override {
        for (const Answer& answer : answersOf(type_))
            if (answer.id == LOWORD(wParam) && lParam != 0 && HIWORD(wParam) == BN_CLICKED)
                return EndDialog(answer.id), TRUE;
        return CDialog::OnCommand(wParam, lParam);
    }

private:
    void fill(DialogWindow& window) {
        const std::vector<Answer> answers = answersOf(type_);
        const bool hasIcon = (type_ & MB_ICONMASK) != 0;
        const QFont font = window.widget->font();
        const Layout layout(toQt(text_), font, hasIcon, static_cast<int>(answers.size()));
        window.resizeContent(layout.whole);
        const auto add = [&](const wchar_t* kind, const std::wstring& text, DWORD style, QRect place,
                             UINT id) {
            return createWindow({kind, text, 0, style | WS_CHILD | WS_VISIBLE, 0, place, &window, id, font});
        };
        if (hasIcon) {
            HWND icon =
                add(L"Static", L"", SS_NOPREFIX, QRect(Layout::margin, Layout::margin, 32, 32), iconId);
            setStaticPicture(icon, QApplication::style()
                                       ->standardPixmap(iconOf(type_))
                                       .scaled(32, 32, Qt::KeepAspectRatio, Qt::SmoothTransformation));
        }
        const int lift = hasIcon ? std::max(0, (Layout::icon - layout.text.height()) / 2) : 0;
        add(L"Static", text_, SS_NOPREFIX, QRect(QPoint(layout.textLeft, Layout::margin + lift), layout.text),
            textId);
        const std::size_t chosen = std::min<std::size_t>((type_ & MB_DEFMASK) >> 8, answers.size() - 1);
        int left = layout.firstButton;
        for (std::size_t i = 0; i < answers.size(); ++i) {
            const QRect place(left, layout.buttonTop, Layout::buttonWidth, Layout::buttonHeight);
            HWND button =
                add(L"Button", answers[i].caption, (i == chosen ? BS_DEFPUSHBUTTON : 0) | WS_TABSTOP, place,
                    static_cast<UINT>(answers[i].id));
            if (i == chosen) {
                window.setDefaultId(static_cast<UINT>(answers[i].id));
                button->widget->setFocus();
            }
            left += Layout::buttonWidth + Layout::gap;
        }
    }

    std::wstring text_;
    UINT type_;
};

} // namespace

int showMessageBox(CWnd* owner, const std::wstring& text, const std::wstring& caption, UINT type) {
    const UserInput* user = inputStream().user();
    const std::wstring title = caption.empty() ? L"提示" : caption;
    if (user == nullptr || !user->worksDialogs())
        console().line(title + L": " + text);
    if (user == nullptr) // nobody to ask
        return answersOf(type).back().id;
    MessageBoxDialog box(text, type);
    return box.run(title, owner);
}

} // namespace host

int AfxMessageBox(LPCTSTR text, UINT type, UINT) {
    return host::showMessageBox(nullptr, text != nullptr ? text : L"", L"", type);
}

int AfxMessageBox(UINT id, UINT type, UINT help) {
    for (const HINSTANCE module : host::resourceModules()) {
        if (const std::wstring text = host::resourceString(module, id); !text.empty())
            return AfxMessageBox(text.c_str(), type, help);
    }
    return -1;
}
