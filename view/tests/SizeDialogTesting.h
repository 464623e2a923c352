// What the tests of the dialogs New, Size and Resolution share: a person's hands on a field or a
// list, and where the controls lie.
#pragma once

#include "view/tests/DialogTesting.h"
#include "view/tests/ToolWindowTesting.h"

namespace sizedialogtest
{

using namespace dialogtest;
using toolwindowtest::Windows;

inline constexpr int WidthField = 1005;
inline constexpr int HeightField = 1006;
inline constexpr int WidthUnit = 1014;
inline constexpr int HeightUnit = 1012;

/// The entries of a list, from the top.
inline Texts Entries(const Dialog& dialog, int list)
{
    Texts entries;
    const LRESULT count = SendMessageW(dialog.Control(list), CB_GETCOUNT, 0, 0);
    for (LRESULT row = 0; row < count; ++row) {
        WCHAR text[200] = {};
        SendMessageW(dialog.Control(list), CB_GETLBTEXT, static_cast<WPARAM>(row),
                     reinterpret_cast<LPARAM>(text));
        entries.emplace_back(text);
    }
    return entries;
}

inline LRESULT Row(const Dialog& dialog, int list)
{
    return SendMessageW(dialog.Control(list), CB_GETCURSEL, 0, 0);
}

/// Chooses a row as the person does: the dialog hears of it.
inline void ChooseRow(const Dialog& dialog, int list, int row)
{
    SendMessageW(dialog.Control(list), CB_SETCURSEL, static_cast<WPARAM>(row), 0);
    SendMessageW(dialog.window, WM_COMMAND, static_cast<WPARAM>(MAKELONG(list, CBN_SELCHANGE)),
                 reinterpret_cast<LPARAM>(dialog.Control(list)));
}

/// Types keys over what stands in a field.
inline void TypeOver(const Dialog& dialog, int field, const std::string& keys)
{
    SetFocus(dialog.Control(field));
    SendMessageW(dialog.Control(field), EM_SETSEL, 0, -1);
    for (const char key : keys)
        TypeKey(key);
}

/// Every control lies inside the dialog, the dialog on the screen of 640 by 480, and no two
/// controls but a frame and what it holds share a pixel.
inline void ExpectTidy(const Dialog& dialog, const std::vector<int>& ids)
{
    const RECT whole = PlaceOf(dialog.window);
    EXPECT_GE(whole.left, 0);
    EXPECT_GE(whole.top, 0);
    EXPECT_LE(whole.right, 640);
    EXPECT_LE(whole.bottom, 480);
    std::vector<RECT> places;
    for (const int id : ids) {
        const RECT place = PlaceOf(dialog.Control(id));
        EXPECT_GT(place.left, whole.left) << id;
        EXPECT_GT(place.top, whole.top) << id;
        EXPECT_LT(place.right, whole.right) << id;
        EXPECT_LT(place.bottom, whole.bottom) << id;
        for (const RECT& other : places)
            EXPECT_TRUE(place.right <= other.left || other.right <= place.left ||
                        place.bottom <= other.top || other.bottom <= place.top)
                << id;
        places.push_back(place);
    }
}

} // namespace sizedialogtest
