// Menus as data: a tree of popups and entries with their ids, texts and states, and the compiled
// form it is read from. No handles and no widgets: Menus.h gives the handles, MenuBar.h the
// widgets.
//
// A menu owns its popups. Positions count from 0 and take in the separators. On the user-interface
// thread.
#pragma once

#include <windows.h>

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace tavrix::platform
{

struct Menu;

struct MenuItem {
    UINT id = 0; // of a popup: 0, or the number that an extended menu gives it
    bool separator = false;
    UINT state = 0; // of MF_GRAYED, MF_DISABLED, MF_CHECKED
    std::u16string text;
    std::shared_ptr<Menu> popup;
};

struct Menu {
    std::vector<MenuItem> items;
    HMENU handle = nullptr;         // given by Menus.cpp
    unsigned revision = 0;          // counts the changes of this menu's own entries
    std::function<void()> onChange; // whoever shows the menu; called behind each change
};

/// Where an entry stands.
struct MenuPlace {
    Menu* menu = nullptr;
    size_t position = 0;
    explicit operator bool() const { return menu != nullptr; }
    MenuItem& Item() const { return menu->items[position]; }
};

/// What a call answers when there is no such entry.
inline constexpr UINT NoMenuItem = 0xFFFFFFFFu;

/// Reads a compiled menu, classic or extended. Null when it is cut short or of an unknown version.
/// An entry of the classic form with neither text, id nor flags is a separator.
CE_API std::shared_ptr<Menu> ParseMenu(const void* bytes, size_t size);

/// The entry at position `item` (MF_BYPOSITION in `flags`) of this menu alone, or the first one
/// with the id `item` in this menu and its popups, from the top down.
CE_API MenuPlace FindMenuItem(Menu& menu, UINT item, UINT flags);

/// Sets the entry enabled, disabled or gray; answers what it was, or NoMenuItem.
CE_API UINT EnableItem(Menu& menu, UINT item, UINT flags);
/// Sets or clears the check mark; answers MF_CHECKED or MF_UNCHECKED as it was, or NoMenuItem.
CE_API UINT CheckItem(Menu& menu, UINT item, UINT flags);
/// The entry's state; of a popup, the state in the low byte and its count in the next.
CE_API UINT ItemState(Menu& menu, UINT item, UINT flags);
CE_API void AppendItem(Menu& menu, MenuItem item);
/// Takes all entries out.
CE_API void ClearItems(Menu& menu);
/// Takes the entry out, its popup with it. False when there is none.
CE_API bool DeleteItem(Menu& menu, UINT item, UINT flags);

} // namespace tavrix::platform
