#include "host/mfc/widgets/combos.h"

#include "host/mfc/widgets/editmenu.h"

#include <QAbstractItemView>
#include <QCollator>
#include <QEvent>
#include <QLineEdit>

namespace host {
namespace {

// Tells when its list opens and closes.
class Combo : public QComboBox {
public:
    using QComboBox::QComboBox;
    HWND window = nullptr;
    void showPopup() override {
        window->command(CBN_DROPDOWN);
        QComboBox::showPopup();
    }
    void hidePopup() override {
        QComboBox::hidePopup();
        window->command(CBN_CLOSEUP);
    }
};

} // namespace

// As the other platform's Chinese order: Latin letters and digits before Chinese characters, these by their
// reading.
bool sortsBefore(const QString& left, const QString& right) {
    const auto isHan = [](QChar c) { return c.unicode() >= 0x2E80; };
    for (qsizetype i = 0; i < std::min(left.size(), right.size()); ++i) {
        if (left[i].toLower() == right[i].toLower())
            continue;
        if (isHan(left[i]) != isHan(right[i]))
            return isHan(right[i]);
        break;
    }
    static const QCollator collator = [] {
        QCollator made(QLocale(QLocale::Chinese, QLocale::China));
        made.setCaseSensitivity(Qt::CaseInsensitive);
        return made;
    }();
    const int order = collator.compare(left, right);
    return order != 0 ? order < 0 : left < right;
}

ComboWindow::ComboWindow(QComboBox* made, const WindowSpec& spec)
    : HWND__(made, spec.parent, spec.id, spec.style, spec.exStyle) {
    static_cast<Combo*>(made)->window = this;
    made->setInsertPolicy(QComboBox::NoInsert);
    made->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    made->setMaxVisibleItems(12);
    if ((style & 3) != CBS_DROPDOWNLIST) {
        made->setEditable(true);
        made->setCompleter(nullptr);
        made->setEditText(toQt(spec.text));
        made->lineEdit()->installEventFilter(this);
        QObject::connect(made, &QComboBox::editTextChanged, this, [this] {
            if (!quiet_) {
                command(CBN_EDITUPDATE);
                command(CBN_EDITCHANGE);
            }
        });
    }
    QObject::connect(made, &QComboBox::activated, this, [this] {
        command(CBN_SELENDOK);
        command(CBN_SELCHANGE);
    });
}

int ComboWindow::add(const std::wstring& text) {
    const QString shown = toQt(text);
    int at = combo().count();
    if ((style & CBS_SORT) != 0)
        for (at = 0; at < combo().count() && !sortsBefore(shown, combo().itemText(at));)
            ++at;
    const QSignalBlocker silent(&combo());
    const int selected = combo().currentIndex();
    combo().insertItem(at, shown);
    combo().setCurrentIndex(selected >= at && selected >= 0 ? selected + 1 : selected);
    return at;
}

int ComboWindow::find(int after, const std::wstring& text, bool whole) const {
    const QString wanted = toQt(text);
    const int count = combo().count();
    for (int step = 1; step <= count; ++step) {
        const int at = (std::max(after, -1) + step) % count;
        const QString item = combo().itemText(at);
        if (whole ? item.compare(wanted, Qt::CaseInsensitive) == 0
                  : item.startsWith(wanted, Qt::CaseInsensitive))
            return at;
    }
    return CB_ERR;
}

bool ComboWindow::select(int index) {
    const bool there = index >= 0 && index < combo().count();
    quiet_ = true;
    combo().setCurrentIndex(there ? index : -1);
    quiet_ = false;
    return there;
}

bool ComboWindow::isDropped() const {
    return combo().view()->isVisible();
}
void ComboWindow::setDroppedWidth(int width) {
    combo().view()->setMinimumWidth(width);
}

void ComboWindow::setText(const std::wstring& text) {
    if (isEditable()) {
        quiet_ = true;
        combo().setEditText(toQt(text));
        quiet_ = false;
    }
}

LRESULT ComboWindow::defaultProc(UINT message, WPARAM wParam, LPARAM lParam) {
    switch (message) {
    case CB_GETCURSEL:
        return combo().currentIndex();
    case CB_SETCURSEL:
        return select(static_cast<int>(wParam)) ? static_cast<LRESULT>(wParam) : CB_ERR;
    case CB_GETCOUNT:
        return combo().count();
    case WM_CONTEXTMENU:
        if (!isEditable())
            break;
        showEditMenu(*combo().lineEdit(), this, lParam);
        return 0;
    default:
        break;
    }
    const bool done = isEditable() && runEditMessage(*combo().lineEdit(), message);
    return done ? TRUE : HWND__::defaultProc(message, wParam, lParam);
}

void ComboWindow::chooseByHand(int index) {
    select(index);
    command(CBN_SELENDOK);
    command(CBN_SELCHANGE);
}

std::wstring ComboWindow::scriptSet(const std::wstring& value) {
    int found = -1;
    for (int i = 0; i < combo().count() && found < 0; ++i)
        found = fromQt(combo().itemText(i)) == value ? i : -1;
    found = found < 0 ? find(-1, value, true) : found;
    if (found >= 0) {
        chooseByHand(found);
        return {};
    }
    if (isEditable()) {
        combo().setCurrentIndex(-1);
        combo().setEditText(toQt(value));
        return {};
    }
    return L"下拉列表中没有“" + value + L"”";
}

std::wstring ComboWindow::scriptSelect(const std::vector<int>& items) {
    if (items.size() != 1 || items[0] < 0 || items[0] >= combo().count())
        return L"下拉列表的行号应为 0 到 " + std::to_wstring(combo().count() - 1) + L" 中的一个";
    chooseByHand(items[0]);
    return {};
}

bool ComboWindow::filter(QEvent* event) {
    const bool done = HWND__::filter(event);
    if (event->type() == QEvent::FocusIn || event->type() == QEvent::FocusOut)
        command(event->type() == QEvent::FocusIn ? CBN_SETFOCUS : CBN_KILLFOCUS);
    return done;
}

HWND makeComboBox(const WindowSpec& spec) {
    return new ComboWindow(new Combo(spec.parentWidget()), spec);
}

} // namespace host
