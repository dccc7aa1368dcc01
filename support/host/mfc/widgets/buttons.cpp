#include "host/mfc/widgets/buttons.h"

#include "host/mfc/widgets/context.h"

#include <QButtonGroup>
#include <QCheckBox>
#include <QEvent>
#include <QPainter>
#include <QPushButton>
#include <QRadioButton>

namespace host {
namespace {

// Asks the class to draw it.
class OwnerDrawnButton : public QAbstractButton {
public:
    using QAbstractButton::QAbstractButton;
    HWND window = nullptr;

protected:
    void paintEvent(QPaintEvent*) override {
        QPainter painter(this);
        painter.setFont(font());
        CDC context;
        context.Attach(newContext(&painter));
        DRAWITEMSTRUCT item{};
        item.CtlType = ODT_BUTTON;
        item.CtlID = window->id;
        item.itemState =
            (isDown() ? ODS_SELECTED : 0) | (isEnabled() ? 0 : ODS_DISABLED) | (hasFocus() ? ODS_FOCUS : 0);
        item.hwndItem = window;
        item.hDC = context.m_hDC;
        item.rcItem = toRect(rect());
        if (window->parent != nullptr && !window->dying)
            guarded([&] { window->parent->send(WM_DRAWITEM, window->id, reinterpret_cast<LPARAM>(&item)); });
    }
};

// A frame with the title in its upper line.
class GroupFrame : public QGroupBox {
public:
    using QGroupBox::QGroupBox;

protected:
    void paintEvent(QPaintEvent*) override {
        QPainter painter(this);
        const QFontMetrics metrics(font());
        const int line = font().pixelSize() * 3 / 4; // where the upper line is
        const QString shown = title();
        const int width = metrics.size(Qt::TextShowMnemonic, shown).width();
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setPen(QColor(190, 190, 190));
        painter.drawRoundedRect(QRectF(rect()).adjusted(0.5, line + 0.5, -0.5, -0.5), 2, 2);
        if (shown.isEmpty())
            return;
        const QRect place(9, line - metrics.height() / 2, width + 6, metrics.height());
        painter.fillRect(place, palette().color(QPalette::Window));
        painter.setPen(
            palette().color(isEnabled() ? QPalette::Active : QPalette::Disabled, QPalette::WindowText));
        painter.drawText(place, Qt::AlignCenter | Qt::TextShowMnemonic, shown);
    }
};

QAbstractButton* newButton(const WindowSpec& spec) {
    QWidget* const parent = spec.parentWidget();
    switch (spec.style & BS_TYPEMASK) {
    case BS_CHECKBOX:
    case BS_AUTOCHECKBOX:
    case BS_3STATE:
    case BS_AUTO3STATE:
        return new QCheckBox(parent);
    case BS_RADIOBUTTON:
    case BS_AUTORADIOBUTTON: {
        auto* radio = new QRadioButton(parent);
        radio->setAutoExclusive(false); // by groups of the template
        return radio;
    }
    case BS_OWNERDRAW:
        return new OwnerDrawnButton(parent);
    default: {
        auto* push = new QPushButton(parent);
        push->setAutoDefault(false);
        push->setDefault((spec.style & BS_TYPEMASK) == BS_DEFPUSHBUTTON);
        return push;
    }
    }
}

ButtonWindow* buttonOf(HWND window) {
    return dynamic_cast<ButtonWindow*>(window);
}

} // namespace

ButtonWindow::ButtonWindow(QAbstractButton* made, const WindowSpec& spec)
    : HWND__(made, spec.parent, spec.id, spec.style, spec.exStyle) {
    made->setText(toQt(spec.text));
    if (auto* drawn = dynamic_cast<OwnerDrawnButton*>(made))
        drawn->window = this;
    if (auto* box = qobject_cast<QCheckBox*>(made); box != nullptr && type() >= BS_3STATE)
        box->setTristate(true);
    QObject::connect(made, &QAbstractButton::clicked, this, [this] { command(BN_CLICKED); });
}

bool ButtonWindow::isCheckBox() const {
    return type() == BS_CHECKBOX || type() == BS_AUTOCHECKBOX || type() == BS_3STATE ||
           type() == BS_AUTO3STATE;
}

int ButtonWindow::check() const {
    if (const auto* box = qobject_cast<const QCheckBox*>(&button()))
        return static_cast<int>(box->checkState()) == 0    ? BST_UNCHECKED
               : box->checkState() == Qt::PartiallyChecked ? BST_INDETERMINATE
                                                           : BST_CHECKED;
    return button().isChecked() ? BST_CHECKED : BST_UNCHECKED;
}

void ButtonWindow::setCheckState(int check) {
    if (auto* box = qobject_cast<QCheckBox*>(&button())) {
        box->setCheckState(check == BST_INDETERMINATE ? Qt::PartiallyChecked
                           : check == BST_CHECKED     ? Qt::Checked
                                                      : Qt::Unchecked);
        return;
    }
    // A group keeps one checked; taking the check away is for programs only.
    QButtonGroup* group = button().group();
    if (group != nullptr && check == BST_UNCHECKED)
        group->setExclusive(false);
    button().setChecked(check == BST_CHECKED);
    if (group != nullptr)
        group->setExclusive(true);
}

LRESULT ButtonWindow::defaultProc(UINT message, WPARAM wParam, LPARAM lParam) {
    switch (message) {
    case BM_GETCHECK:
        return check();
    case BM_SETCHECK:
        setCheckState(static_cast<int>(wParam));
        return 0;
    case BM_CLICK:
        button().click();
        return 0;
    default:
        return HWND__::defaultProc(message, wParam, lParam);
    }
}

std::wstring ButtonWindow::kind() const {
    return isRadioButton() ? L"单选按钮" : isCheckBox() ? L"复选框" : L"按钮";
}

std::wstring ButtonWindow::scriptCheck(bool on) {
    if (isPush())
        return L"按钮不能勾选";
    if (isRadioButton() && !on)
        return L"单选按钮只能选中（1）";
    if ((check() == BST_CHECKED) != on)
        button().click();
    return {};
}

std::wstring ButtonWindow::scriptClick() {
    button().click();
    return {};
}

std::wstring ButtonWindow::scriptGet() const {
    return isPush() ? withoutMnemonic(text()) : std::to_wstring(check());
}

bool ButtonWindow::filter(QEvent* event) {
    const bool done = HWND__::filter(event);
    if (event->type() == QEvent::FocusIn || event->type() == QEvent::FocusOut)
        command(event->type() == QEvent::FocusIn ? BN_SETFOCUS : BN_KILLFOCUS);
    return done;
}

GroupBoxWindow::GroupBoxWindow(const WindowSpec& spec)
    : HWND__(new GroupFrame(toQt(spec.text), spec.parentWidget()), spec.parent, spec.id, spec.style,
             spec.exStyle) {
    widget->setAttribute(Qt::WA_TransparentForMouseEvents); // controls inside are its neighbours
}
std::wstring GroupBoxWindow::text() const {
    return fromQt(static_cast<QGroupBox&>(*widget).title());
}
void GroupBoxWindow::setText(const std::wstring& text) {
    static_cast<QGroupBox&>(*widget).setTitle(toQt(text));
}

HWND makeButton(const WindowSpec& spec) {
    if ((spec.style & BS_TYPEMASK) == BS_GROUPBOX)
        return new GroupBoxWindow(spec);
    QAbstractButton* made = newButton(spec);
    if ((spec.style & BS_TYPEMASK) != BS_PUSHBUTTON && (spec.style & BS_TYPEMASK) != BS_DEFPUSHBUTTON)
        made->setCheckable((spec.style & BS_TYPEMASK) != BS_OWNERDRAW);
    return new ButtonWindow(made, spec);
}

int checkOf(HWND button) {
    const ButtonWindow* window = buttonOf(button);
    return window != nullptr ? window->check() : BST_UNCHECKED;
}
void setCheck(HWND button, int check) {
    if (ButtonWindow* window = buttonOf(button))
        window->setCheckState(check);
}
bool isRadio(HWND button) {
    const ButtonWindow* window = buttonOf(button);
    return window != nullptr && window->isRadioButton();
}
bool isPushButton(HWND button) {
    const ButtonWindow* window = buttonOf(button);
    return window != nullptr && window->isPush();
}
void setDefault(HWND button, bool isDefault) {
    ButtonWindow* window = buttonOf(button);
    auto* push = window != nullptr ? qobject_cast<QPushButton*>(&window->button()) : nullptr;
    if (push != nullptr)
        push->setDefault(isDefault);
}
void setButtonGroup(HWND button, QButtonGroup* group) {
    if (ButtonWindow* window = buttonOf(button))
        group->addButton(&window->button());
}

} // namespace host
