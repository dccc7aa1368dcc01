// The table of window classes, and what joins the controls of a dialog.
#include "host/mfc/widgets/factory.h"

#include "host/mfc/widgets/application.h"
#include "host/rx/text.h"

#include <QButtonGroup>
#include <array>

namespace host {
namespace {

using Maker = HWND (*)(const WindowSpec&);
struct ClassRow {
    std::wstring_view name;
    Maker make;
};
constexpr std::array<ClassRow, 7> classes{{{L"Button", makeButton},
                                           {L"Static", makeStatic},
                                           {L"Edit", makeEdit},
                                           {L"ComboBox", makeComboBox},
                                           {L"ListBox", makeListBox},
                                           {L"SysListView32", makeListView},
                                           {L"msctls_updown32", makeUpDown}}};

Maker makerOf(std::wstring_view className) {
    for (const ClassRow& row : classes)
        if (equalNoCase(row.name, className))
            return row.make;
    return makeCustom;
}

} // namespace

HWND createWindow(const WindowSpec& spec) {
    application();
    HWND window = makerOf(spec.className)(spec);
    QWidget& widget = *window->widget;
    const bool child = (spec.style & WS_CHILD) != 0;
    widget.setFont(spec.font);
    widget.setMouseTracking(true);
    widget.setGeometry(spec.rect);
    widget.setEnabled((spec.style & WS_DISABLED) == 0);
    if (widget.focusPolicy() != Qt::NoFocus && (spec.style & WS_TABSTOP) == 0)
        widget.setFocusPolicy(Qt::ClickFocus);
    if (child) // widgets of a hidden parent show with it
        widget.setVisible((spec.style & WS_VISIBLE) != 0);
    else if ((spec.style & WS_VISIBLE) != 0)
        widget.show();
    return window;
}

HWND createWindow(const std::wstring& className, const std::wstring& text, DWORD style, DWORD exStyle,
                  const QRect& rect, HWND parent, UINT id) {
    const QFont font = parent != nullptr && !parent->widget.isNull() ? parent->widget->font()
                                                                     : dialogFont(L"", 9, FW_NORMAL, false);
    return createWindow(WindowSpec{className, text, 0, style, exStyle, rect, parent, id, font});
}

void joinControls(HWND dialog) {
    QButtonGroup* group = nullptr;
    HWND label = nullptr, before = nullptr;
    for (const HWND child : dialog->children) {
        if ((child->style & WS_GROUP) != 0 || group == nullptr)
            group = new QButtonGroup(dialog->widget);
        if (isRadio(child))
            setButtonGroup(child, group);
        if (label != nullptr && child->widget->focusPolicy() != Qt::NoFocus)
            attachLabel(label, child);
        label = child->kind() == L"标签" ? child : nullptr;
        if (child->kind() == L"微调按钮" && (child->style & UDS_AUTOBUDDY) != 0 && before != nullptr)
            attachBuddy(child, before);
        before = child;
    }
    for (std::size_t i = 1; i < dialog->children.size(); ++i)
        QWidget::setTabOrder(dialog->children[i - 1]->widget, dialog->children[i]->widget);
}

} // namespace host
