// A menu that is open for the user's choice: seen and worked by hand, or by the lines of a script.
#pragma once

#include "host/mfc/widgets/menumodel.h"
#include "host/mfc/widgets/window.h"

#include <QMenu>

namespace host {

class PopupMenu {
public:
    // Tells the owner, who may change the items.
    PopupMenu(HMENU menu, HWND owner, UINT flags);
    ~PopupMenu();
    PopupMenu(const PopupMenu&) = delete;
    PopupMenu& operator=(const PopupMenu&) = delete;

    bool isEmpty() const { return widget_.isNull() || widget_->isEmpty(); }
    bool hasEnded() const { return ended_ || widget_.isNull(); }
    UINT chosen() const { return chosen_; } // 0: nothing
    QWidget* widget() const { return widget_.data(); }

    // Until an item is chosen, at a place of the screen that the flags say is a corner or the middle.
    void runByHand(QPoint at);
    // The item with this number or text, in the menus below, too; the text says what is wrong, empty when it
    // was done. Without an item the menu closes.
    std::wstring choose(const std::wstring& item);
    // "菜单项: 101 复制(C), 更多 > 201 红"
    std::wstring listItems() const;

private:
    void tell(UINT message, LPARAM lParam, HMENU menu);
    void tellOpening(HMENU menu, std::size_t index);
    void fill(QMenu& shown, HMENU menu);
    void addMenu(QMenu& shown, const MenuItem& item, std::size_t index);
    void addItem(QMenu& shown, const MenuItem& item);
    std::optional<MenuItem> find(HMENU menu, const std::wstring& wanted);
    QPoint placed(QPoint at) const;

    HMENU menu_;
    QPointer<HWND__> owner_;
    UINT flags_;
    QPointer<QMenu> widget_;
    UINT chosen_ = 0;
    bool ended_ = false;
};

// The one in front; null when none is open.
PopupMenu* openMenu();
// By hand or by the lines of the script; in script.cpp.
void runMenu(PopupMenu& menu, QPoint at);

} // namespace host
