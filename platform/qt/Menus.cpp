#include "platform/qt/Menus.h"

#include <algorithm>
#include <unordered_map>

namespace tavrix::platform
{
namespace
{

struct Entry {
    std::weak_ptr<Menu> menu;  // popups are kept by the menu they hang in
    std::shared_ptr<Menu> own; // menus that are in no other
};

std::unordered_map<UINT_PTR, Entry>& Table()
{
    static std::unordered_map<UINT_PTR, Entry> table;
    return table;
}

/// Numbers are never used twice, so that a handle kept too long is told from a live one.
HMENU NextHandle()
{
    static UINT_PTR last = 0x1000;
    last += 4;
    return reinterpret_cast<HMENU>(last);
}

UINT_PTR Key(HMENU handle)
{
    return reinterpret_cast<UINT_PTR>(handle);
}

void GiveHandles(const std::shared_ptr<Menu>& menu, bool root)
{
    menu->handle = NextHandle();
    Table()[Key(menu->handle)] = {menu, root ? menu : nullptr};
    for (const MenuItem& item : menu->items) {
        if (item.popup)
            GiveHandles(item.popup, false);
    }
}

void TakeHandles(const Menu& menu)
{
    for (const MenuItem& item : menu.items) {
        if (item.popup)
            TakeHandles(*item.popup);
    }
    Table().erase(Key(menu.handle));
}

bool HangsBelow(const Menu& menu, const Menu& wanted)
{
    if (&menu == &wanted)
        return true;
    return std::any_of(menu.items.begin(), menu.items.end(), [&](const MenuItem& item) {
        return item.popup && HangsBelow(*item.popup, wanted);
    });
}

} // namespace

std::shared_ptr<Menu> MenuOf(HMENU handle)
{
    const auto found = Table().find(Key(handle));
    return found == Table().end() ? nullptr : found->second.menu.lock();
}

std::shared_ptr<Menu> MakeMenu(const void* bytes, size_t size)
{
    std::shared_ptr<Menu> menu = ParseMenu(bytes, size);
    if (menu)
        GiveHandles(menu, true);
    return menu;
}

} // namespace tavrix::platform

using namespace tavrix::platform;

HMENU WINAPI LoadMenuW(HINSTANCE instance, LPCWSTR name)
{
    const HRSRC resource = FindResourceW(instance, name, RT_MENU);
    if (resource == nullptr)
        return nullptr;
    const void* bytes = LockResource(LoadResource(instance, resource));
    const std::shared_ptr<Menu> menu = MakeMenu(bytes, SizeofResource(instance, resource));
    if (!menu) {
        SetLastError(ERROR_RESOURCE_DATA_NOT_FOUND);
        return nullptr;
    }
    return menu->handle;
}

BOOL WINAPI DestroyMenu(HMENU menu)
{
    const std::shared_ptr<Menu> found = MenuOf(menu);
    if (!found) {
        SetLastError(ERROR_INVALID_HANDLE);
        return FALSE;
    }
    // A popup that still hangs in its menu stays there as an empty one: the menu is not spoiled.
    TakeHandles(*found);
    ClearItems(*found);
    return TRUE;
}

HMENU WINAPI GetSubMenu(HMENU menu, int position)
{
    const std::shared_ptr<Menu> found = MenuOf(menu);
    if (!found || position < 0 || static_cast<size_t>(position) >= found->items.size())
        return nullptr;
    const std::shared_ptr<Menu>& popup = found->items[static_cast<size_t>(position)].popup;
    return popup ? popup->handle : nullptr;
}

BOOL WINAPI EnableMenuItem(HMENU menu, UINT item, UINT flags)
{
    const std::shared_ptr<Menu> found = MenuOf(menu);
    return static_cast<BOOL>(found ? EnableItem(*found, item, flags) : NoMenuItem);
}

DWORD WINAPI CheckMenuItem(HMENU menu, UINT item, UINT flags)
{
    const std::shared_ptr<Menu> found = MenuOf(menu);
    return found ? CheckItem(*found, item, flags) : NoMenuItem;
}

BOOL WINAPI AppendMenuW(HMENU menu, UINT flags, UINT_PTR id, LPCWSTR text)
{
    const std::shared_ptr<Menu> found = MenuOf(menu);
    if (!found)
        return FALSE;
    MenuItem item;
    item.separator = (flags & MF_SEPARATOR) != 0;
    item.state = flags & (MF_GRAYED | MF_DISABLED | MF_CHECKED);
    if (text != nullptr && !item.separator)
        item.text = text;
    if ((flags & MF_POPUP) != 0) {
        item.popup = MenuOf(reinterpret_cast<HMENU>(id));
        if (!item.popup || HangsBelow(*item.popup, *found)) // a menu cannot hang in itself
            return FALSE;
        Table()[id].own = nullptr;
    } else {
        item.id = static_cast<UINT>(id);
    }
    AppendItem(*found, std::move(item));
    return TRUE;
}

BOOL WINAPI DeleteMenu(HMENU menu, UINT item, UINT flags)
{
    const std::shared_ptr<Menu> found = MenuOf(menu);
    if (!found)
        return FALSE;
    const MenuPlace place = FindMenuItem(*found, item, flags);
    if (!place)
        return FALSE;
    if (place.Item().popup)
        TakeHandles(*place.Item().popup);
    return DeleteItem(*found, item, flags) ? TRUE : FALSE;
}

int WINAPI GetMenuItemCount(HMENU menu)
{
    const std::shared_ptr<Menu> found = MenuOf(menu);
    return found ? static_cast<int>(found->items.size()) : -1;
}

UINT WINAPI GetMenuItemID(HMENU menu, int position)
{
    const std::shared_ptr<Menu> found = MenuOf(menu);
    if (!found || position < 0 || static_cast<size_t>(position) >= found->items.size())
        return NoMenuItem;
    const MenuItem& item = found->items[static_cast<size_t>(position)];
    return item.popup ? NoMenuItem : item.id;
}

UINT WINAPI GetMenuState(HMENU menu, UINT item, UINT flags)
{
    const std::shared_ptr<Menu> found = MenuOf(menu);
    return found ? ItemState(*found, item, flags) : NoMenuItem;
}

int WINAPI GetMenuStringW(HMENU menu, UINT item, LPWSTR buffer, int capacity, UINT flags)
{
    const std::shared_ptr<Menu> found = MenuOf(menu);
    if (buffer != nullptr && capacity > 0)
        buffer[0] = 0;
    if (!found)
        return 0;
    const MenuPlace place = FindMenuItem(*found, item, flags);
    if (!place)
        return 0;
    const std::u16string& text = place.Item().text;
    if (buffer == nullptr || capacity <= 0)
        return static_cast<int>(text.size());
    const size_t count = std::min(text.size(), static_cast<size_t>(capacity) - 1);
    std::copy_n(text.data(), count, buffer);
    buffer[count] = 0;
    return static_cast<int>(count);
}
