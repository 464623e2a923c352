#include "platform/qt/MenuModel.h"

#include "platform/qt/ByteReader.h"

namespace tavrix::platform
{
namespace
{

constexpr UINT StateMask = MF_GRAYED | MF_DISABLED | MF_CHECKED;
constexpr int DeepestPopup = 32; // a spoiled resource must not exhaust the stack

constexpr WORD ClassicEnd = 0x80;

// Of the extended form.
constexpr DWORD TypeSeparator = 0x800;
constexpr WORD InfoPopup = 0x01;
constexpr WORD InfoEnd = 0x80;

bool ReadClassic(ByteReader& reader, Menu& menu, int depth)
{
    if (depth > DeepestPopup)
        return false;
    for (;;) {
        MenuItem item;
        const WORD flags = reader.Word();
        item.state = flags & StateMask;
        if ((flags & MF_POPUP) == 0)
            item.id = reader.Word();
        item.text = reader.Text();
        if (reader.Failed())
            return false;
        if ((flags & MF_POPUP) != 0) {
            item.popup = std::make_shared<Menu>();
            if (!ReadClassic(reader, *item.popup, depth + 1))
                return false;
        } else {
            // The compiler writes a separator as an entry without anything; the flag is what a
            // menu built by hand would have.
            item.separator = (flags & MF_SEPARATOR) != 0 || (item.id == 0 && item.text.empty());
        }
        menu.items.push_back(std::move(item));
        if ((flags & ClassicEnd) != 0)
            return true;
    }
}

bool ReadExtended(ByteReader& reader, Menu& menu, int depth)
{
    if (depth > DeepestPopup)
        return false;
    for (;;) {
        MenuItem item;
        reader.Align(4);
        const DWORD type = reader.DoubleWord();
        item.state = reader.DoubleWord() & StateMask;
        item.id = reader.DoubleWord();
        const WORD info = reader.Word();
        item.text = reader.Text();
        if (reader.Failed())
            return false;
        item.separator = (type & TypeSeparator) != 0;
        if ((info & InfoPopup) != 0) {
            reader.Align(4);
            reader.DoubleWord(); // help id
            item.popup = std::make_shared<Menu>();
            if (!ReadExtended(reader, *item.popup, depth + 1))
                return false;
        }
        menu.items.push_back(std::move(item));
        if ((info & InfoEnd) != 0)
            return true;
    }
}

void Changed(Menu& menu)
{
    ++menu.revision;
    if (menu.onChange)
        menu.onChange();
}

} // namespace

std::shared_ptr<Menu> ParseMenu(const void* bytes, size_t size)
{
    if (bytes == nullptr)
        return nullptr;
    ByteReader reader(bytes, size);
    const WORD version = reader.Word();
    const WORD offset = reader.Word(); // from behind itself to the first entry
    reader.Skip(offset);
    auto menu = std::make_shared<Menu>();
    bool whole = false;
    if (version == 0)
        whole = ReadClassic(reader, *menu, 0);
    else if (version == 1)
        whole = ReadExtended(reader, *menu, 0);
    return whole ? menu : nullptr;
}

MenuPlace FindMenuItem(Menu& menu, UINT item, UINT flags)
{
    if ((flags & MF_BYPOSITION) != 0) {
        if (item >= menu.items.size())
            return {};
        return {&menu, item};
    }
    for (size_t i = 0; i < menu.items.size(); ++i) {
        MenuItem& candidate = menu.items[i];
        if (candidate.popup) {
            if (candidate.id != 0 && candidate.id == item)
                return {&menu, i};
            if (MenuPlace inside = FindMenuItem(*candidate.popup, item, flags))
                return inside;
        } else if (candidate.id == item && !candidate.separator) {
            return {&menu, i};
        }
    }
    return {};
}

UINT EnableItem(Menu& menu, UINT item, UINT flags)
{
    const MenuPlace place = FindMenuItem(menu, item, flags);
    if (!place)
        return NoMenuItem;
    constexpr UINT mask = MF_GRAYED | MF_DISABLED;
    UINT& state = place.Item().state;
    const UINT before = state & mask;
    state = (state & ~mask) | (flags & mask);
    Changed(*place.menu);
    return before;
}

UINT CheckItem(Menu& menu, UINT item, UINT flags)
{
    const MenuPlace place = FindMenuItem(menu, item, flags);
    if (!place)
        return NoMenuItem;
    UINT& state = place.Item().state;
    const UINT before = state & MF_CHECKED;
    state = (state & ~MF_CHECKED) | (flags & MF_CHECKED);
    Changed(*place.menu);
    return before;
}

UINT ItemState(Menu& menu, UINT item, UINT flags)
{
    const MenuPlace place = FindMenuItem(menu, item, flags);
    if (!place)
        return NoMenuItem;
    const MenuItem& found = place.Item();
    if (found.popup)
        return (found.state & 0xEF) | MF_POPUP |
               static_cast<UINT>(found.popup->items.size() & 0xFF) << 8;
    return found.state | (found.separator ? MF_SEPARATOR : 0);
}

void AppendItem(Menu& menu, MenuItem item)
{
    menu.items.push_back(std::move(item));
    Changed(menu);
}

void ClearItems(Menu& menu)
{
    menu.items.clear();
    Changed(menu);
}

bool DeleteItem(Menu& menu, UINT item, UINT flags)
{
    const MenuPlace place = FindMenuItem(menu, item, flags);
    if (!place)
        return false;
    place.menu->items.erase(place.menu->items.begin() +
                            static_cast<std::ptrdiff_t>(place.position));
    Changed(*place.menu);
    return true;
}

} // namespace tavrix::platform
