#include "host/mfc/widgets/popupmenu.h"

#include "host/mfc/widgets/application.h"

#include <QActionGroup>
#include <algorithm>

namespace host {
namespace {

std::vector<PopupMenu*>& openMenus() {
    static std::vector<PopupMenu*> menus;
    return menus;
}

// What stands before the tab, as the user reads it; `bare` also without a mnemonic in parentheses.
std::wstring labelOf(std::wstring text, bool bare) {
    text.resize(std::min(text.size(), text.find(L'\t')));
    const std::size_t mnemonic = text.find(L"(&");
    if (bare && mnemonic != text.npos && mnemonic + 3 < text.size() && text[mnemonic + 3] == L')')
        text.erase(mnemonic, 4);
    return withoutMnemonic(std::move(text));
}

bool isMeant(const MenuItem& item, const std::wstring& wanted) {
    if (item.isSeparator())
        return false;
    return (item.popup == nullptr && std::to_wstring(item.id) == wanted) ||
           labelOf(item.text, false) == wanted || labelOf(item.text, true) == wanted;
}

void list(HMENU menu, const std::wstring& way, std::wstring& text) {
    if (IsMenu(menu) == FALSE)
        return;
    for (const MenuItem& item : menu->items) {
        const std::wstring label = labelOf(item.text, false);
        if (item.popup != nullptr)
            list(item.popup, way + label + L" > ", text);
        else if (!item.isSeparator())
            text += (text.empty() ? L"" : L", ") + way + std::to_wstring(item.id) + L" " + label;
    }
}

} // namespace

PopupMenu::PopupMenu(HMENU menu, HWND owner, UINT flags) : menu_(menu), owner_(owner), flags_(flags) {
    application();
    // Over the program's window it has that window's look, over dialogs the look of dialogs.
    QWidget* const over = owner != nullptr && owner->adopted ? owner->widget.data() : nullptr;
    widget_ = new QMenu(over);
    openMenus().push_back(this);
    tell(WM_INITMENU, 0, menu);
    tellOpening(menu, 0);
    fill(*widget_, menu);
}

PopupMenu::~PopupMenu() {
    std::erase(openMenus(), this);
    delete widget_.data();
}

void PopupMenu::tell(UINT message, LPARAM lParam, HMENU menu) {
    if ((flags_ & TPM_NONOTIFY) == 0 && !owner_.isNull() && !owner_->dying)
        guarded([&] { owner_->send(message, reinterpret_cast<WPARAM>(menu), lParam); });
}

void PopupMenu::tellOpening(HMENU menu, std::size_t index) {
    tell(WM_INITMENUPOPUP, MAKELPARAM(static_cast<unsigned>(index), FALSE), menu);
}

void PopupMenu::fill(QMenu& shown, HMENU menu) {
    shown.clear();
    qDeleteAll(shown.findChildren<QMenu*>(QString(), Qt::FindDirectChildrenOnly));
    if (IsMenu(menu) == FALSE)
        return;
    for (std::size_t i = 0; i < menu->items.size(); ++i) {
        const MenuItem& item = menu->items[i];
        if (item.isSeparator())
            shown.addSeparator();
        else if (item.popup != nullptr)
            addMenu(shown, item, i);
        else
            addItem(shown, item);
    }
}

void PopupMenu::addMenu(QMenu& shown, const MenuItem& item, std::size_t index) {
    QMenu* const below = shown.addMenu(toQt(item.text));
    below->menuAction()->setEnabled(item.isEnabled());
    fill(*below, item.popup); // an empty one would not open
    QObject::connect(below, &QMenu::aboutToShow, below, [this, below, index, popup = item.popup] {
        tellOpening(popup, index);
        fill(*below, popup);
        if (keptException() && !widget_.isNull())
            widget_->close();
    });
}

void PopupMenu::addItem(QMenu& shown, const MenuItem& item) {
    QAction* const action = shown.addAction(toQt(item.text));
    action->setData(item.id);
    action->setEnabled(item.isEnabled());
    if ((item.state & MF_CHECKED) != 0) {
        if ((item.type & MFT_RADIOCHECK) != 0) // in a group it is shown as a dot
            (new QActionGroup(action))->addAction(action);
        action->setCheckable(true);
        action->setChecked(true);
    }
    if ((item.state & MF_DEFAULT) != 0)
        shown.setDefaultAction(action);
}

QPoint PopupMenu::placed(QPoint at) const {
    const QSize size = widget_->sizeHint();
    const int left = (flags_ & TPM_RIGHTALIGN) != 0    ? size.width()
                     : (flags_ & TPM_CENTERALIGN) != 0 ? size.width() / 2
                                                       : 0;
    const int up = (flags_ & TPM_BOTTOMALIGN) != 0    ? size.height()
                   : (flags_ & TPM_VCENTERALIGN) != 0 ? size.height() / 2
                                                      : 0;
    return at - QPoint(left, up);
}

void PopupMenu::runByHand(QPoint at) {
    if (const QAction* action = widget_->exec(placed(at)))
        chosen_ = action->data().toUInt();
    ended_ = true;
}

std::optional<MenuItem> PopupMenu::find(HMENU menu, const std::wstring& wanted) {
    if (IsMenu(menu) == FALSE)
        return std::nullopt;
    const auto found =
        std::ranges::find_if(menu->items, [&](const MenuItem& item) { return isMeant(item, wanted); });
    if (found != menu->items.end())
        return *found;
    // The owner may change items when a menu opens.
    for (std::size_t i = 0; IsMenu(menu) != FALSE && i < menu->items.size(); ++i) {
        HMENU const below = menu->items[i].popup;
        if (below == nullptr || !menu->items[i].isEnabled())
            continue;
        tellOpening(below, i);
        if (std::optional<MenuItem> deeper = find(below, wanted))
            return deeper;
    }
    return std::nullopt;
}

std::wstring PopupMenu::choose(const std::wstring& wanted) {
    if (!wanted.empty()) {
        const std::optional<MenuItem> item = find(menu_, wanted);
        if (!item)
            return L"菜单中没有“" + wanted + L"”；" + listItems();
        const std::wstring name = L"菜单项“" + labelOf(item->text, false) + L"”";
        if (!item->isEnabled())
            return name + L"现在不可用";
        if (item->popup != nullptr)
            return name + L"打开子菜单，请选其中一项；" + listItems();
        chosen_ = item->id;
    }
    ended_ = true;
    return {};
}

std::wstring PopupMenu::listItems() const {
    std::wstring items;
    list(menu_, {}, items);
    return items.empty() ? L"没有菜单项" : L"菜单项: " + items;
}

PopupMenu* openMenu() {
    return openMenus().empty() ? nullptr : openMenus().back();
}

} // namespace host

BOOL TrackPopupMenu(HMENU menu, UINT flags, int x, int y, int, HWND owner, const RECT*) {
    if (IsMenu(menu) == FALSE || (host::openMenu() != nullptr && (flags & TPM_RECURSE) == 0))
        return FALSE;
    const QPointer<HWND__> told(owner);
    UINT chosen = 0;
    {
        host::PopupMenu open(menu, owner, flags);
        if (!open.isEmpty() && !host::keptException())
            host::runMenu(open, QPoint(x, y));
        chosen = open.chosen();
    }
    host::throwKept();
    if ((flags & TPM_RETURNCMD) != 0)
        return static_cast<BOOL>(chosen);
    if (chosen != 0 && (flags & TPM_NONOTIFY) == 0)
        PostMessage(told.data(), WM_COMMAND, MAKEWPARAM(chosen, 0), 0);
    return TRUE;
}
