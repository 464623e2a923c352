#include "view/ListViewControl.h"

#include "foundation/TextCompare.h"

namespace
{

constexpr UINT ColorFlags = 255; // the icons' own depth and their masks
constexpr int NameLength = 1024; // of which names are compared
constexpr i32 SortingColumn = 1; // sorting counts the columns from 1

struct SortOrder {
    HWND window;
    i32 ascending;
};

template <typename Record>
LRESULT Send(HWND window, UINT message, WPARAM wParam, Record* record)
{
    return SendMessageW(window, message, wParam, reinterpret_cast<LPARAM>(record));
}

/// The first column of the item with a tag; an empty name and -1 when it is gone.
i32 ReadByTag(HWND window, LPARAM tag, WCHAR (&name)[NameLength])
{
    name[0] = 0;
    LVFINDINFOW wanted{};
    wanted.flags = LVFI_PARAM;
    wanted.lParam = tag;
    LVITEMW item{};
    item.mask = LVIF_TEXT | LVIF_IMAGE;
    item.iItem = static_cast<int>(Send(window, LVM_FINDITEMW, static_cast<WPARAM>(-1), &wanted));
    item.pszText = name;
    item.cchTextMax = NameLength;
    return Send(window, LVM_GETITEMW, 0, &item) != 0 ? item.iImage : -1;
}

int CALLBACK CompareItems(LPARAM first, LPARAM second, LPARAM parameter)
{
    const auto& wanted = *reinterpret_cast<const SortOrder*>(parameter);
    WCHAR firstName[NameLength];
    WCHAR secondName[NameLength];
    const i32 firstImage = ReadByTag(wanted.window, first, firstName);
    const i32 secondImage = ReadByTag(wanted.window, second, secondName);
    // Folders stay before files in both directions.
    if (firstImage != secondImage)
        return firstImage > secondImage ? 1 : -1;
    i32 order = 0;
    (void)CompareCollated(firstName, secondName, &order);
    return wanted.ascending != 0 ? order : -order;
}

} // namespace

ListViewControl::ListViewControl(HWND control) : window(control), imageList{}, itemCounter(0) {}

ListViewControl::~ListViewControl()
{
    for (const HIMAGELIST list : imageList)
        ImageList_Destroy(list);
}

i32 ListViewControl::SetIcons(const HICON* icons, u32 count, i32 size, u32 kind)
{
    if (icons == nullptr)
        return BadArgument;
    if (kind > LVSIL_SMALL)
        return NothingDone;
    const HIMAGELIST list = ImageList_Create(size, size, ColorFlags, static_cast<int>(count), 0);
    if (list == nullptr)
        return NothingDone;
    for (u32 i = 0; i < count; ++i) {
        if (ImageList_ReplaceIcon(list, -1, icons[i]) < 0) {
            ImageList_Destroy(list);
            return NothingDone;
        }
    }
    SendMessageW(window, LVM_SETIMAGELIST, kind, reinterpret_cast<LPARAM>(list));
    if (imageList[kind] != nullptr)
        ImageList_Destroy(imageList[kind]);
    imageList[kind] = list;
    return Done;
}

i32 ListViewControl::AddColumn(const WCHAR* text, i32 width, i32 index)
{
    LVCOLUMNW column{};
    column.mask = LVCF_FMT | LVCF_WIDTH | LVCF_TEXT | LVCF_SUBITEM;
    column.fmt = LVCFMT_LEFT;
    column.cx = width;
    column.pszText = const_cast<WCHAR*>(text);
    column.iSubItem = index;
    return static_cast<i32>(Send(window, LVM_INSERTCOLUMNW, static_cast<WPARAM>(index), &column));
}

i32 ListViewControl::AddItem(const WCHAR* text, i32 column, i32 row, i32 image)
{
    LVITEMW item{};
    item.mask = LVIF_TEXT | LVIF_IMAGE | LVIF_PARAM;
    item.iItem = row;
    item.iSubItem = column;
    item.pszText = const_cast<WCHAR*>(text);
    item.iImage = image;
    item.lParam = static_cast<LPARAM>(itemCounter++);
    return static_cast<i32>(Send(window, LVM_INSERTITEMW, 0, &item));
}

i32 ListViewControl::SetSubItem(const WCHAR* text, i32 column, i32 row)
{
    LVITEMW item{};
    item.mask = LVIF_TEXT;
    item.iItem = row;
    item.iSubItem = column;
    item.pszText = const_cast<WCHAR*>(text);
    return Send(window, LVM_SETITEMW, 0, &item) != 0 ? Done : NothingDone;
}

i32 ListViewControl::GetItemImage(i32 row, i32 column, i32* image)
{
    if (image == nullptr)
        return BadArgument;
    LVITEMW item{};
    item.mask = LVIF_IMAGE;
    item.iItem = row;
    item.iSubItem = column;
    if (Send(window, LVM_GETITEMW, 0, &item) == 0)
        return NothingDone;
    *image = item.iImage;
    return Done;
}

i32 ListViewControl::GetItemText(i32 row, i32 column, WCHAR* buffer, u32 capacity, i32* image)
{
    LVITEMW item{};
    item.mask = LVIF_TEXT | LVIF_IMAGE;
    item.iItem = row;
    item.iSubItem = column;
    item.pszText = buffer;
    item.cchTextMax = capacity < 0x7FFFFFFF ? static_cast<int>(capacity) : 0x7FFFFFFF;
    const bool found = Send(window, LVM_GETITEMW, 0, &item) != 0;
    if (image != nullptr)
        *image = found ? item.iImage : -1;
    return found ? Done : NothingDone;
}

i32 ListViewControl::FindNext(i32* row, i32 column, WCHAR* buffer, u32 capacity, i32* image)
{
    if (row == nullptr)
        return BadArgument;
    // A window that is gone answers 0, which would be a row.
    const i32 next = IsWindow(window)
                         ? static_cast<i32>(SendMessageW(window, LVM_GETNEXTITEM,
                                                         static_cast<WPARAM>(*row), LVNI_SELECTED))
                         : -1;
    if (next < 0)
        return NothingDone;
    *row = next;
    return buffer != nullptr ? GetItemText(next, column, buffer, capacity, image)
                             : GetItemImage(next, column, image);
}

i32 ListViewControl::Clear()
{
    itemCounter = 0;
    return SendMessageW(window, LVM_DELETEALLITEMS, 0, 0) != 0 ? Done : NothingDone;
}

void ListViewControl::SetView(u32 style)
{
    constexpr LONG_PTR ViewBits = LVS_TYPEMASK;
    const LONG_PTR others = GetWindowLongPtrW(window, GWL_STYLE) & ~ViewBits;
    SetWindowLongPtrW(window, GWL_STYLE, others | (static_cast<LONG_PTR>(style) & ViewBits));
}

i32 ListViewControl::Sort(i32 column, i32 ascending)
{
    if (column != SortingColumn)
        return NothingDone;
    const SortOrder order{window, ascending};
    const LRESULT sorted = SendMessageW(window, LVM_SORTITEMS, reinterpret_cast<WPARAM>(&order),
                                        reinterpret_cast<LPARAM>(CompareItems));
    return sorted != 0 ? Done : NothingDone;
}
