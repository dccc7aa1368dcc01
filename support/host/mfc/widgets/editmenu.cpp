#include "host/mfc/widgets/editmenu.h"

#include "host/mfc/menu.h"

#include <QApplication>
#include <QClipboard>
#include <QMimeData>

namespace host {
namespace {

struct Abilities {
    bool undoes, changes, hasSelection, shows, hasText;
};

Abilities abilitiesOf(const QLineEdit& edit) {
    return {edit.isUndoAvailable(), !edit.isReadOnly(), edit.hasSelectedText(),
            edit.echoMode() == QLineEdit::Normal, !edit.text().isEmpty()};
}
Abilities abilitiesOf(const QPlainTextEdit& edit) {
    return {edit.document()->isUndoAvailable(), !edit.isReadOnly(), edit.textCursor().hasSelection(), true,
            !edit.document()->isEmpty()};
}

bool isTextOnClipboard() {
    const QMimeData* held = QApplication::clipboard()->mimeData();
    return held != nullptr && held->hasText();
}

template <class Edit>
void show(Edit& edit, HWND window, LPARAM at) {
    const Abilities can = abilitiesOf(edit);
    CMenu menu;
    menu.CreatePopupMenu();
    const auto add = [&](UINT message, LPCWSTR text, bool enabled) {
        menu.AppendMenu(enabled ? MF_STRING : MF_GRAYED, message, text);
    };
    add(WM_UNDO, L"撤消(&U)", can.changes && can.undoes);
    menu.AppendMenu(MF_SEPARATOR);
    add(WM_CUT, L"剪切(&T)", can.changes && can.hasSelection && can.shows);
    add(WM_COPY, L"复制(&C)", can.hasSelection && can.shows);
    add(WM_PASTE, L"粘贴(&P)", can.changes && isTextOnClipboard());
    add(WM_CLEAR, L"删除(&D)", can.changes && can.hasSelection);
    menu.AppendMenu(MF_SEPARATOR);
    add(EM_SETSEL, L"全选(&A)", can.hasText);
    QPoint place(GET_X_LPARAM(at), GET_Y_LPARAM(at));
    if (at == byKeyboard) // below the text cursor
        place = edit.mapToGlobal(edit.inputMethodQuery(Qt::ImCursorRectangle).toRect().bottomLeft());
    const QPointer<HWND__> alive(window);
    const auto message = static_cast<UINT>(TrackPopupMenu(
        menu, TPM_RETURNCMD | TPM_NONOTIFY | TPM_RIGHTBUTTON, place.x(), place.y(), 0, window, nullptr));
    if (alive.isNull() || window->dying)
        return;
    if (message == EM_SETSEL)
        edit.selectAll();
    else if (message != 0)
        window->send(message);
}

void insertText(QLineEdit& edit, const QString& text) {
    edit.insert(text);
}
void insertText(QPlainTextEdit& edit, const QString& text) {
    edit.insertPlainText(text);
}

template <class Edit>
bool run(Edit& edit, UINT message) {
    const Abilities can = abilitiesOf(edit);
    switch (message) {
    case WM_UNDO:
        edit.undo();
        return true;
    case WM_CUT:
        edit.cut();
        return true;
    case WM_COPY:
        edit.copy();
        return true;
    case WM_PASTE:
        edit.paste();
        return true;
    case WM_CLEAR:
        if (can.changes && can.hasSelection)
            insertText(edit, {});
        return true;
    default:
        return false;
    }
}

} // namespace

void showEditMenu(QLineEdit& edit, HWND window, LPARAM at) {
    show(edit, window, at);
}
void showEditMenu(QPlainTextEdit& edit, HWND window, LPARAM at) {
    show(edit, window, at);
}
bool runEditMessage(QLineEdit& edit, UINT message) {
    return run(edit, message);
}
bool runEditMessage(QPlainTextEdit& edit, UINT message) {
    return run(edit, message);
}

} // namespace host
