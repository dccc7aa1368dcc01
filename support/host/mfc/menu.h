// Menus: the functions by handle, and CMenu over them. A menu owns the menus that its items open. A handle
// that is none (any more) makes every call fail: FALSE, -1 or null.
#pragma once

#include "host/mfc/cstring.h"
#include "host/mfc/object.h"
#include "host/win/winuser.h"

class CWnd;

HMENU CreateMenu();
HMENU CreatePopupMenu();
// A menu of the module's resources; null when there is none or it is damaged.
HMENU LoadMenu(HINSTANCE module, LPCWSTR name);
BOOL DestroyMenu(HMENU menu);
BOOL IsMenu(HMENU menu);

// Items are meant by position (MF_BYPOSITION) or by number, which is looked for in the menus below, too. With
// MF_POPUP the number is the handle of the menu that the item opens, which then is the menu's. A text may
// carry a mnemonic (&) and, behind a tab, the keys that do the same. Pictures and items drawn by their owner
// are refused.
BOOL AppendMenu(HMENU menu, UINT flags, UINT_PTR id = 0, LPCWSTR text = nullptr);
// Before the item; at the end when there is no such item.
BOOL InsertMenu(HMENU menu, UINT item, UINT flags, UINT_PTR id = 0, LPCWSTR text = nullptr);
BOOL ModifyMenu(HMENU menu, UINT item, UINT flags, UINT_PTR id = 0, LPCWSTR text = nullptr);
BOOL RemoveMenu(HMENU menu, UINT item, UINT flags); // the menu it opens stays, and is the caller's
BOOL DeleteMenu(HMENU menu, UINT item, UINT flags);

HMENU GetSubMenu(HMENU menu, int position);
int GetMenuItemCount(HMENU menu);
UINT GetMenuItemID(HMENU menu, int position); // 0 of a separator, -1 of an item that opens a menu
// Gives the length, cut to size - 1; with no place for it, the whole length.
int GetMenuString(HMENU menu, UINT item, LPWSTR text, int size, UINT flags);
// MF_ flags; of an item that opens a menu its number of items in the high byte. -1 when there is no such
// item.
UINT GetMenuState(HMENU menu, UINT item, UINT flags);
// These give the state before, or -1.
int EnableMenuItem(HMENU menu, UINT item, UINT flags);
DWORD CheckMenuItem(HMENU menu, UINT item, UINT flags);
// Marks the item with a dot and takes the marks of the others from first to last.
BOOL CheckMenuRadioItem(HMENU menu, UINT first, UINT last, UINT item, UINT flags);
// Shown bold; -1 for none.
BOOL SetMenuDefaultItem(HMENU menu, UINT item, UINT byPosition);
UINT GetMenuDefaultItem(HMENU menu, UINT byPosition, UINT flags);

// Shows the menu at a place on the screen until the user has chosen. The owner gets WM_INITMENU, and
// WM_INITMENUPOPUP before each menu is seen (its items may change then), and the choice as a WM_COMMAND that
// is posted; none of them with TPM_NONOTIFY. With TPM_RETURNCMD the choice is the result, 0 for none, and is
// not posted. Without an owner nobody is told. Fails while another menu is open, unless TPM_RECURSE says so.
BOOL TrackPopupMenu(HMENU menu, UINT flags, int x, int y, int reserved, HWND owner, const RECT* rect);

class CMenu : public CObject {
public:
    CMenu() = default;
    // Destroys the menu.
    ~CMenu() override;

    HMENU m_hMenu = nullptr;

    HMENU GetSafeHmenu() const { return m_hMenu; }
    operator HMENU() const { return m_hMenu; }
    bool operator==(const CMenu& other) const { return m_hMenu == other.m_hMenu; }
    // The object of a menu; a temporary one when it has none, which lives as long as the menu.
    static CMenu* FromHandle(HMENU menu);
    BOOL Attach(HMENU menu);
    HMENU Detach();
    BOOL CreateMenu();
    BOOL CreatePopupMenu();
    // From the first module that has it.
    BOOL LoadMenu(LPCTSTR name);
    BOOL LoadMenu(UINT id) { return LoadMenu(MAKEINTRESOURCE(id)); }
    BOOL DestroyMenu();

    BOOL AppendMenu(UINT flags, UINT_PTR id = 0, LPCTSTR text = nullptr);
    BOOL InsertMenu(UINT item, UINT flags, UINT_PTR id = 0, LPCTSTR text = nullptr);
    BOOL ModifyMenu(UINT item, UINT flags, UINT_PTR id = 0, LPCTSTR text = nullptr);
    BOOL RemoveMenu(UINT item, UINT flags) { return ::RemoveMenu(m_hMenu, item, flags); }
    BOOL DeleteMenu(UINT item, UINT flags) { return ::DeleteMenu(m_hMenu, item, flags); }
    CMenu* GetSubMenu(int position) const { return FromHandle(::GetSubMenu(m_hMenu, position)); }
    int GetMenuItemCount() const { return ::GetMenuItemCount(m_hMenu); }
    UINT GetMenuItemID(int position) const { return ::GetMenuItemID(m_hMenu, position); }
    int GetMenuString(UINT item, LPTSTR text, int size, UINT flags) const;
    int GetMenuString(UINT item, CString& text, UINT flags) const;
    UINT GetMenuState(UINT item, UINT flags) const { return ::GetMenuState(m_hMenu, item, flags); }
    UINT EnableMenuItem(UINT item, UINT flags);
    UINT CheckMenuItem(UINT item, UINT flags) { return ::CheckMenuItem(m_hMenu, item, flags); }
    BOOL CheckMenuRadioItem(UINT first, UINT last, UINT item, UINT flags);
    BOOL SetDefaultItem(UINT item, BOOL byPosition = FALSE);
    UINT GetDefaultItem(UINT flags, BOOL byPosition = FALSE) const;
    BOOL TrackPopupMenu(UINT flags, int x, int y, CWnd* owner, LPCRECT rect = nullptr) const;
};
