// A list control with icons and columns: what the file dialog and the plugin information show. Each
// operation is one message to the control, whose window stays its owner's; the lists of icons are
// this object's, which must outlive the control or be given no icons. User-interface thread.
//
// Rows and columns count from 0, but for Sort. Each item is given a tag, a number of its own, under
// which the sort finds it again. On a window that is gone every operation gives NothingDone, 0 or
// -1.
#pragma once

#include "foundation/Result.h"

#include <windows.h>

#include <commctrl.h>

class ListViewControl
{
public:
    explicit ListViewControl(HWND control);
    /// Destroys the lists of icons.
    ~ListViewControl();
    ListViewControl(const ListViewControl&) = delete;
    ListViewControl& operator=(const ListViewControl&) = delete;

    /// Gives the control a list of `count` icons of `size` by `size` pixels, in place of the one of
    /// that kind before; `kind` is LVSIL_NORMAL or LVSIL_SMALL. The icons stay the caller's. Done;
    /// NothingDone, with the icons before still there, when the list could not be made or an icon
    /// not be taken; BadArgument for null icons.
    i32 SetIcons(const HICON* icons, u32 count, i32 size, u32 kind);
    /// `width` in pixels. The column's index, or -1.
    i32 AddColumn(const WCHAR* text, i32 width, i32 index);
    /// Inserts a row, behind the last one if `row` is past it; `image` is an index into the icons
    /// and `column` 0, since a row begins with its item. The next tag is used up either way. The
    /// row's index, or -1.
    i32 AddItem(const WCHAR* text, i32 column, i32 row, i32 image);
    /// The text of a row in another column. Done or NothingDone.
    i32 SetSubItem(const WCHAR* text, i32 column, i32 row);
    /// Done; NothingDone for a row that is not there; BadArgument for null.
    i32 GetItemImage(i32 row, i32 column, i32* image);
    /// Done; NothingDone for a row that is not there, and then `*image` is -1 and the buffer as it
    /// was. `capacity` is in characters, the final zero among them. `image` may be null.
    i32 GetItemText(i32 row, i32 column, WCHAR* buffer, u32 capacity, i32* image);
    /// The next selected row after `*row`, -1 for the first; its text and image as GetItemText
    /// gives them, the image alone for a null buffer. NothingDone when there is none, with `*row`
    /// as it was; BadArgument for a null row.
    i32 FindNext(i32* row, i32 column, WCHAR* buffer, u32 capacity, i32* image);
    /// Takes all rows out; tags begin at 0 again. Done or NothingDone.
    i32 Clear();
    /// LVS_ICON, LVS_REPORT, LVS_SMALLICON or LVS_LIST: the low two bits of the window style. The
    /// others stay.
    void SetView(u32 style);
    /// Sorts by image and then by name (CompareCollated); `ascending` 0 turns the names round and
    /// not the images. Only column 1, the first, sorts; any other gives NothingDone.
    i32 Sort(i32 column, i32 ascending);

    HWND Window() const { return window; }

private:
    HWND window;
    HIMAGELIST imageList[2]; // LVSIL_NORMAL and LVSIL_SMALL
    u32 itemCounter;         // the next item's tag
};
