// A list's column heads under a test's hand. The control does not tell its heads' texts, so that
// they are compared as a person sees them.
#pragma once

#include "platform/testing/WindowTesting.h"

#include <commctrl.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace tavrix::testing
{

struct ColumnHead {
    std::u16string text;
    int width;
};

/// The pixels of a list's heads, row by row.
inline std::vector<uint32_t> HeadPixels(HWND list, int width, int height)
{
    const Picture picture = WindowPixels(list);
    std::vector<uint32_t> pixels;
    for (int y = 0; y < height && y < picture.height; ++y)
        for (int x = 0; x < width && x < picture.width; ++x)
            pixels.push_back(picture.At(x, y));
    return pixels;
}

/// The heads of `list`, which has a row, look as those of a list of the same kind and font that is
/// given `columns`, and not as those of one whose columns have no texts.
inline void ExpectColumns(HWND list, const std::vector<ColumnHead>& columns)
{
    RECT place = {};
    GetWindowRect(list, &place);
    RECT row = {LVIR_BOUNDS, 0, 0, 0};
    ASSERT_TRUE(SendMessageW(list, LVM_GETITEMRECT, 0, reinterpret_cast<LPARAM>(&row)));
    ASSERT_GT(row.top, 8) << "heads";
    int width = 0;
    for (const ColumnHead& column : columns)
        width += column.width;
    const auto expected = [&](bool withTexts) {
        const HWND twin = CreateWindowExW(
            0, WC_LISTVIEWW, TEXT(""), static_cast<DWORD>(GetWindowLongPtrW(list, GWL_STYLE)), 0, 0,
            place.right - place.left, place.bottom - place.top, GetParent(list),
            reinterpret_cast<HMENU>(9999), nullptr, nullptr);
        SendMessageW(twin, WM_SETFONT, static_cast<WPARAM>(SendMessageW(list, WM_GETFONT, 0, 0)),
                     FALSE);
        for (size_t i = 0; i < columns.size(); ++i) {
            std::u16string text = withTexts ? columns[i].text : u"";
            LVCOLUMNW record = {};
            record.mask = LVCF_FMT | LVCF_WIDTH | LVCF_TEXT | LVCF_SUBITEM;
            record.cx = columns[i].width;
            record.pszText = text.data();
            record.iSubItem = static_cast<int>(i);
            SendMessageW(twin, LVM_INSERTCOLUMNW, i, reinterpret_cast<LPARAM>(&record));
        }
        Pump(20);
        const std::vector<uint32_t> pixels = HeadPixels(twin, width, row.top);
        DestroyWindow(twin);
        return pixels;
    };
    Pump(20);
    const std::vector<uint32_t> seen = HeadPixels(list, width, row.top);
    EXPECT_TRUE(seen == expected(true)) << "the heads' texts";
    EXPECT_TRUE(seen != expected(false)) << "no texts at all";
}

} // namespace tavrix::testing
