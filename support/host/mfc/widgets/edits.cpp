#include "host/mfc/widgets/edits.h"

#include "host/mfc/widgets/editmenu.h"

#include <QEvent>
#include <QRegularExpressionValidator>

namespace host {

EditWindow::EditWindow(QWidget* made, const WindowSpec& spec)
    : HWND__(made, spec.parent, spec.id, spec.style, spec.exStyle) {
    if (QLineEdit* edit = line()) {
        edit->setText(toQt(spec.text));
        edit->setCursorPosition(0);
        edit->setAlignment((style & ES_CENTER) != 0  ? Qt::AlignHCenter
                           : (style & ES_RIGHT) != 0 ? Qt::AlignRight
                                                     : Qt::AlignLeft);
        edit->setEchoMode((style & ES_PASSWORD) != 0 ? QLineEdit::Password : QLineEdit::Normal);
        if ((style & ES_NUMBER) != 0)
            edit->setValidator(new QRegularExpressionValidator(QRegularExpression("[0-9]*"), edit));
        QObject::connect(edit, &QLineEdit::textChanged, this, [this] { changed(); });
    } else if (QPlainTextEdit* text = lines()) {
        text->setPlainText(toQt(spec.text).remove('\r'));
        text->setTabChangesFocus(true);
        text->viewport()->installEventFilter(this);
        QObject::connect(text, &QPlainTextEdit::textChanged, this, [this] { changed(); });
    }
    setReadOnly((style & ES_READONLY) != 0);
}

void EditWindow::changed() {
    modified = true;
    command(EN_UPDATE);
    command(EN_CHANGE);
}

std::wstring EditWindow::text() const {
    if (const QLineEdit* edit = line())
        return fromQt(edit->text());
    const QPlainTextEdit* text = lines();
    return text != nullptr ? fromQt(text->toPlainText().replace("\n", "\r\n")) : std::wstring();
}

void EditWindow::setText(const std::wstring& value) {
    if (QLineEdit* edit = line()) {
        const bool same = edit->text() == toQt(value);
        edit->setText(toQt(value));
        edit->setCursorPosition(0); // the beginning of a long text shows
        if (same)
            changed(); // setting a text tells so even when it is the same
    } else if (QPlainTextEdit* text = lines()) {
        const QSignalBlocker silent(text); // programs' texts are not told of here
        text->setPlainText(toQt(value).remove('\r'));
    }
    modified = false;
}

void EditWindow::setSelection(int start, int end) {
    const int length = static_cast<int>(line() != nullptr ? line()->text().size() : text().size());
    const int to = end < 0 ? length : std::min(end, length);
    const int from = start < 0 ? to : std::min(start, length);
    if (QLineEdit* edit = line()) {
        edit->setSelection(from, to - from);
        if (from == to)
            edit->setCursorPosition(from);
    } else if (QPlainTextEdit* text = lines()) {
        QTextCursor cursor = text->textCursor();
        cursor.setPosition(std::min(from, static_cast<int>(text->toPlainText().size())));
        cursor.setPosition(std::min(to, static_cast<int>(text->toPlainText().size())),
                           QTextCursor::KeepAnchor);
        text->setTextCursor(cursor);
    }
}

std::pair<int, int> EditWindow::selection() const {
    if (const QLineEdit* edit = line()) {
        const int start = edit->selectionStart();
        return start >= 0 ? std::pair(start, static_cast<int>(start + edit->selectedText().size()))
                          : std::pair(edit->cursorPosition(), edit->cursorPosition());
    }
    const QTextCursor cursor = lines() != nullptr ? lines()->textCursor() : QTextCursor();
    return {cursor.selectionStart(), cursor.selectionEnd()};
}

void EditWindow::replaceSelection(const std::wstring& text) {
    if (QLineEdit* edit = line())
        edit->insert(toQt(text));
    else if (QPlainTextEdit* edit2 = lines())
        edit2->insertPlainText(toQt(text));
}

void EditWindow::setLimit(int most) {
    limit_ = most;
    if (QLineEdit* edit = line())
        edit->setMaxLength(most > 0 ? most : 32767);
}

void EditWindow::setReadOnly(bool readOnly) {
    if (QLineEdit* edit = line())
        edit->setReadOnly(readOnly);
    else if (QPlainTextEdit* text = lines())
        text->setReadOnly(readOnly);
}

bool EditWindow::isReadOnly() const {
    return line() != nullptr ? line()->isReadOnly() : lines() != nullptr && lines()->isReadOnly();
}

LRESULT EditWindow::defaultProc(UINT message, WPARAM wParam, LPARAM lParam) {
    switch (message) {
    case EM_SETSEL:
        setSelection(static_cast<int>(wParam), static_cast<int>(lParam));
        return 0;
    case EM_GETSEL:
        return MAKELONG(static_cast<unsigned>(selection().first), static_cast<unsigned>(selection().second));
    case EM_LIMITTEXT:
        setLimit(static_cast<int>(wParam));
        return 0;
    case EM_SETREADONLY:
        setReadOnly(wParam != 0);
        return TRUE;
    case WM_CONTEXTMENU:
        if (QLineEdit* edit = line())
            showEditMenu(*edit, this, lParam);
        else if (QPlainTextEdit* text = lines())
            showEditMenu(*text, this, lParam);
        return 0;
    default:
        break;
    }
    const bool done = line() != nullptr    ? runEditMessage(*line(), message)
                      : lines() != nullptr ? runEditMessage(*lines(), message)
                                           : false;
    return done ? TRUE : HWND__::defaultProc(message, wParam, lParam);
}

std::wstring EditWindow::scriptSet(const std::wstring& value) {
    if (isReadOnly())
        return L"编辑框是只读的";
    if (limit_ > 0 && value.size() > static_cast<std::size_t>(limit_))
        return L"编辑框最多 " + std::to_wstring(limit_) + L" 个字符";
    if ((style & ES_NUMBER) != 0 && value.find_first_not_of(L"0123456789") != value.npos)
        return L"编辑框只接受数字";
    setText(value);
    modified = true;
    return {};
}

bool EditWindow::filter(QEvent* event) {
    if (event->type() == QEvent::Paint && line() != nullptr)
        askColor(isReadOnly() || !isEnabled() ? WM_CTLCOLORSTATIC : WM_CTLCOLOREDIT, QPalette::Text);
    const bool done = HWND__::filter(event);
    if (event->type() == QEvent::FocusIn || event->type() == QEvent::FocusOut)
        command(event->type() == QEvent::FocusIn ? EN_SETFOCUS : EN_KILLFOCUS);
    return done;
}

HWND makeEdit(const WindowSpec& spec) {
    QWidget* const parent = spec.parentWidget();
    QWidget* made = (spec.style & ES_MULTILINE) != 0 ? static_cast<QWidget*>(new QPlainTextEdit(parent))
                                                     : new QLineEdit(parent);
    return new EditWindow(made, spec);
}

} // namespace host
