// Menus as trees of items: making, changing and asking them. Showing is in widgets/popupmenu.cpp.
#include "host/mfc/menu.h"

#include "host/mfc/modulestate.h"
#include "host/mfc/widgets/menumodel.h"
#include "host/mfc/widgets/popupmenu.h"
#include "host/mfc/wnd.h"
#include "host/win/resources.h"

#include <algorithm>
#include <unordered_map>

namespace {

using host::MenuItem;

// Never taken down: objects of modules may outlast every scope here.
std::unordered_map<HMENU, std::unique_ptr<HMENU__>>& menus() {
    static auto& all = *new std::unordered_map<HMENU, std::unique_ptr<HMENU__>>;
    return all;
}

HMENU newMenu() {
    auto made = std::make_unique<HMENU__>();
    HMENU const menu = made.get();
    menus()[menu] = std::move(made);
    return menu;
}

// An item in its menu.
struct Place {
    HMENU menu;
    std::size_t index;

    MenuItem& item() const { return menu->items[index]; }
};

std::optional<Place> find(HMENU menu, UINT wanted, UINT flags) {
    if (IsMenu(menu) == FALSE)
        return std::nullopt;
    if ((flags & MF_BYPOSITION) != 0)
        return wanted < menu->items.size() ? std::optional(Place{menu, wanted}) : std::nullopt;
    for (std::size_t i = 0; i < menu->items.size(); ++i) {
        const MenuItem& item = menu->items[i];
        // Items that open menus have numbers in the extended templates only.
        if (item.id == wanted && !item.isSeparator() && (item.popup == nullptr || item.id != 0))
            return Place{menu, i};
        if (const std::optional<Place> below = find(item.popup, wanted, flags))
            return below;
    }
    return std::nullopt;
}

bool holds(HMENU menu, HMENU wanted) {
    return menu == wanted ||
           (IsMenu(menu) != FALSE && std::ranges::any_of(menu->items, [&](const auto& item) {
                return item.popup != nullptr && holds(item.popup, wanted);
            }));
}

// Nothing for what can't stand in the menu: a picture, or a menu in itself.
std::optional<MenuItem> makeItem(HMENU menu, UINT flags, UINT_PTR id, LPCWSTR text) {
    MenuItem item;
    item.type = flags & MF_SEPARATOR;
    item.state = flags & (MF_GRAYED | MF_DISABLED | MF_CHECKED);
    if (item.isSeparator())
        return item;
    if ((flags & (MF_BITMAP | MF_OWNERDRAW)) != 0)
        return std::nullopt;
    if ((flags & MF_POPUP) != 0) {
        item.popup = reinterpret_cast<HMENU>(id);
        if (IsMenu(item.popup) == FALSE || holds(item.popup, menu))
            return std::nullopt;
    } else {
        item.id = static_cast<UINT>(id);
    }
    item.text = text != nullptr ? text : L"";
    return item;
}

HMENU buildMenu(const std::vector<host::MenuTemplateItem>& items) {
    HMENU menu = newMenu();
    for (const host::MenuTemplateItem& from : items)
        menu->items.push_back(
            {from.type, from.state, from.id, from.isPopup ? buildMenu(from.items) : nullptr, from.text});
    return menu;
}

// Sets some bits of an item's state; gives those before, -1 when there is no such item.
int changeState(HMENU menu, UINT wanted, UINT flags, UINT bits) {
    const std::optional<Place> place = find(menu, wanted, flags);
    if (!place)
        return -1;
    UINT& state = place->item().state;
    const UINT before = state & bits;
    state = (state & ~bits) | (flags & bits);
    return static_cast<int>(before);
}

} // namespace

HMENU CreateMenu() {
    return newMenu();
}
HMENU CreatePopupMenu() {
    return newMenu();
}

HMENU LoadMenu(HINSTANCE module, LPCWSTR name) {
    const auto items = host::readMenuTemplate(host::resource(module, RT_MENU, name));
    return items ? buildMenu(*items) : nullptr;
}

BOOL IsMenu(HMENU menu) {
    return menu != nullptr && menus().contains(menu) ? TRUE : FALSE;
}

BOOL DestroyMenu(HMENU menu) {
    if (IsMenu(menu) == FALSE)
        return FALSE;
    const std::unique_ptr<HMENU__> gone = std::move(menus().extract(menu).mapped());
    for (CMenu* const object : {gone->object, gone->temporary.get()})
        if (object != nullptr)
            object->m_hMenu = nullptr;
    for (const MenuItem& item : gone->items)
        DestroyMenu(item.popup);
    return TRUE;
}

BOOL AppendMenu(HMENU menu, UINT flags, UINT_PTR id, LPCWSTR text) {
    return InsertMenu(menu, static_cast<UINT>(-1), flags | MF_BYPOSITION, id, text);
}

BOOL InsertMenu(HMENU menu, UINT item, UINT flags, UINT_PTR id, LPCWSTR text) {
    if (IsMenu(menu) == FALSE)
        return FALSE;
    const Place place = find(menu, item, flags).value_or(Place{menu, menu->items.size()});
    std::optional<MenuItem> made = makeItem(place.menu, flags, id, text);
    if (!made)
        return FALSE;
    auto& items = place.menu->items;
    items.insert(items.begin() + static_cast<std::ptrdiff_t>(place.index), std::move(*made));
    return TRUE;
}

BOOL ModifyMenu(HMENU menu, UINT item, UINT flags, UINT_PTR id, LPCWSTR text) {
    const std::optional<Place> place = find(menu, item, flags);
    std::optional<MenuItem> made = place ? makeItem(place->menu, flags, id, text) : std::nullopt;
    if (!made)
        return FALSE;
    HMENU const before = std::exchange(place->item(), std::move(*made)).popup;
    if (before != place->item().popup)
        DestroyMenu(before);
    return TRUE;
}

BOOL RemoveMenu(HMENU menu, UINT item, UINT flags) {
    const std::optional<Place> place = find(menu, item, flags);
    if (!place)
        return FALSE;
    auto& items = place->menu->items;
    items.erase(items.begin() + static_cast<std::ptrdiff_t>(place->index));
    return TRUE;
}

BOOL DeleteMenu(HMENU menu, UINT item, UINT flags) {
    const std::optional<Place> place = find(menu, item, flags);
    HMENU const popup = place ? place->item().popup : nullptr;
    const BOOL removed = RemoveMenu(menu, item, flags);
    DestroyMenu(popup);
    return removed;
}

HMENU GetSubMenu(HMENU menu, int position) {
    const std::optional<Place> place = find(menu, static_cast<UINT>(position), MF_BYPOSITION);
    return place && IsMenu(place->item().popup) != FALSE ? place->item().popup : nullptr;
}

int GetMenuItemCount(HMENU menu) {
    return IsMenu(menu) != FALSE ? static_cast<int>(menu->items.size()) : -1;
}

UINT GetMenuItemID(HMENU menu, int position) {
    const std::optional<Place> place = find(menu, static_cast<UINT>(position), MF_BYPOSITION);
    return place && place->item().popup == nullptr ? place->item().id : static_cast<UINT>(-1);
}

int GetMenuString(HMENU menu, UINT item, LPWSTR text, int size, UINT flags) {
    const std::optional<Place> place = find(menu, item, flags);
    const std::wstring found = place ? place->item().text : std::wstring();
    if (text == nullptr || size <= 0)
        return static_cast<int>(found.size());
    const std::size_t count = std::min(found.size(), static_cast<std::size_t>(size) - 1);
    *std::copy_n(found.begin(), count, text) = 0;
    return static_cast<int>(count);
}

UINT GetMenuState(HMENU menu, UINT item, UINT flags) {
    const std::optional<Place> place = find(menu, item, flags);
    if (!place)
        return static_cast<UINT>(-1);
    const MenuItem& found = place->item();
    if (found.popup == nullptr)
        return found.type | found.state;
    const int count = std::max(0, GetMenuItemCount(found.popup));
    return MAKEWORD(found.state | MF_POPUP, static_cast<unsigned>(count));
}

int EnableMenuItem(HMENU menu, UINT item, UINT flags) {
    return changeState(menu, item, flags, MF_GRAYED | MF_DISABLED);
}

DWORD CheckMenuItem(HMENU menu, UINT item, UINT flags) {
    return static_cast<DWORD>(changeState(menu, item, flags, MF_CHECKED));
}

BOOL CheckMenuRadioItem(HMENU menu, UINT first, UINT last, UINT item, UINT flags) {
    const std::optional<Place> place = find(menu, item, flags);
    if (!place || item < first || item > last)
        return FALSE;
    auto& items = place->menu->items;
    for (std::size_t i = 0; i < items.size(); ++i) {
        const UINT key = (flags & MF_BYPOSITION) != 0 ? static_cast<UINT>(i) : items[i].id;
        if (key < first || key > last || items[i].isSeparator() || items[i].popup != nullptr)
            continue;
        const bool chosen = i == place->index;
        items[i].type = chosen ? items[i].type | MFT_RADIOCHECK : items[i].type & ~MFT_RADIOCHECK;
        items[i].state = chosen ? items[i].state | MF_CHECKED : items[i].state & ~MF_CHECKED;
    }
    return TRUE;
}

BOOL SetMenuDefaultItem(HMENU menu, UINT item, UINT byPosition) {
    if (IsMenu(menu) == FALSE)
        return FALSE;
    const std::optional<Place> place = find(menu, item, byPosition != 0 ? MF_BYPOSITION : MF_BYCOMMAND);
    const bool none = item == static_cast<UINT>(-1);
    if (!none && !place)
        return FALSE;
    for (MenuItem& each : (none ? menu : place->menu)->items)
        each.state &= ~MF_DEFAULT;
    if (!none)
        place->item().state |= MF_DEFAULT;
    return TRUE;
}

UINT GetMenuDefaultItem(HMENU menu, UINT byPosition, UINT) {
    if (IsMenu(menu) == FALSE)
        return static_cast<UINT>(-1);
    const auto found = std::ranges::find_if(
        menu->items, [](const MenuItem& each) { return (each.state & MF_DEFAULT) != 0; });
    return found == menu->items.end() ? static_cast<UINT>(-1)
           : byPosition != 0          ? static_cast<UINT>(found - menu->items.begin())
                                      : found->id;
}

CMenu::~CMenu() {
    DestroyMenu();
}

CMenu* CMenu::FromHandle(HMENU menu) {
    if (IsMenu(menu) == FALSE)
        return nullptr;
    if (menu->object != nullptr)
        return menu->object;
    if (menu->temporary == nullptr)
        menu->temporary = std::make_unique<CMenu>();
    menu->temporary->m_hMenu = menu;
    return menu->temporary.get();
}

BOOL CMenu::Attach(HMENU menu) {
    if (m_hMenu != nullptr || IsMenu(menu) == FALSE)
        return FALSE;
    m_hMenu = menu;
    menu->object = this;
    return TRUE;
}

HMENU CMenu::Detach() {
    if (IsMenu(m_hMenu) != FALSE && m_hMenu->object == this)
        m_hMenu->object = nullptr;
    return std::exchange(m_hMenu, nullptr);
}

BOOL CMenu::CreateMenu() {
    return m_hMenu == nullptr ? Attach(::CreateMenu()) : FALSE;
}
BOOL CMenu::CreatePopupMenu() {
    return m_hMenu == nullptr ? Attach(::CreatePopupMenu()) : FALSE;
}

BOOL CMenu::LoadMenu(LPCTSTR name) {
    if (m_hMenu != nullptr)
        return FALSE;
    for (const HINSTANCE module : host::resourceModules())
        if (!host::resource(module, RT_MENU, name).empty())
            return Attach(::LoadMenu(module, name));
    return FALSE;
}

BOOL CMenu::DestroyMenu() {
    return m_hMenu != nullptr ? ::DestroyMenu(Detach()) : FALSE;
}

BOOL CMenu::AppendMenu(UINT flags, UINT_PTR id, LPCTSTR text) {
    return ::AppendMenu(m_hMenu, flags, id, text);
}
BOOL CMenu::InsertMenu(UINT item, UINT flags, UINT_PTR id, LPCTSTR text) {
    return ::InsertMenu(m_hMenu, item, flags, id, text);
}
BOOL CMenu::ModifyMenu(UINT item, UINT flags, UINT_PTR id, LPCTSTR text) {
    return ::ModifyMenu(m_hMenu, item, flags, id, text);
}

int CMenu::GetMenuString(UINT item, LPTSTR text, int size, UINT flags) const {
    return ::GetMenuString(m_hMenu, item, text, size, flags);
}
int CMenu::GetMenuString(UINT item, CString& text, UINT flags) const {
    const int length = ::GetMenuString(m_hMenu, item, nullptr, 0, flags);
    ::GetMenuString(m_hMenu, item, text.GetBuffer(length), length + 1, flags);
    text.ReleaseBuffer();
    return length;
}

UINT CMenu::EnableMenuItem(UINT item, UINT flags) {
    return static_cast<UINT>(::EnableMenuItem(m_hMenu, item, flags));
}
BOOL CMenu::CheckMenuRadioItem(UINT first, UINT last, UINT item, UINT flags) {
    return ::CheckMenuRadioItem(m_hMenu, first, last, item, flags);
}
BOOL CMenu::SetDefaultItem(UINT item, BOOL byPosition) {
    return ::SetMenuDefaultItem(m_hMenu, item, static_cast<UINT>(byPosition));
}
UINT CMenu::GetDefaultItem(UINT flags, BOOL byPosition) const {
    return ::GetMenuDefaultItem(m_hMenu, static_cast<UINT>(byPosition), flags);
}

BOOL CMenu::TrackPopupMenu(UINT flags, int x, int y, CWnd* owner, LPCRECT rect) const {
    return ::TrackPopupMenu(m_hMenu, flags, x, y, 0, owner != nullptr ? owner->m_hWnd : nullptr, rect);
}
