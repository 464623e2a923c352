#include "platform/testing/WindowTesting.h"
#include "platform/tests/qt/TestWindow.h"

#include <commctrl.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <string>
#include <vector>

using namespace tavrix::testing;
using tavrix::test::TestWindow;

namespace
{

LOGFONTW Record(LONG height, LONG weight = FW_NORMAL, const WCHAR* face = TEXT("DejaVu Sans"))
{
    LOGFONTW record{};
    record.lfHeight = height;
    record.lfWeight = weight;
    record.lfCharSet = SHIFTJIS_CHARSET;
    std::copy_n(face, std::char_traits<char16_t>::length(face) + 1, record.lfFaceName);
    return record;
}

HFONT Make(LONG height, LONG weight = FW_NORMAL, const WCHAR* face = TEXT("DejaVu Sans"))
{
    const LOGFONTW record = Record(height, weight, face);
    return CreateFontIndirectW(&record);
}

class Fonts : public ::testing::Test
{
protected:
    HWND MakeControl(const WCHAR* className, DWORD style, const WCHAR* text)
    {
        return CreateWindowExW(0, className, text, WS_CHILD | WS_VISIBLE | style, 10, 10, 300, 100,
                               parent.handle, nullptr, nullptr, nullptr);
    }
    std::vector<uint32_t> Look(HWND control)
    {
        Pump(20);
        return WindowPixels(control).pixels;
    }
    void Set(HWND control, HFONT font)
    {
        SendMessageW(control, WM_SETFONT, reinterpret_cast<WPARAM>(font), TRUE);
    }
    HFONT Of(HWND control)
    {
        return reinterpret_cast<HFONT>(SendMessageW(control, WM_GETFONT, 0, 0));
    }
    /// The rows of a static's text that hold ink, and how many pixels do.
    struct Ink {
        int height = 0;
        int count = 0;
        bool operator==(const Ink&) const = default;
    };
    Ink InkOf(HFONT font, const WCHAR* text = TEXT("Hh"))
    {
        const HWND control = MakeControl(TEXT("STATIC"), SS_LEFT, text);
        Set(control, font);
        Pump(20);
        const Picture picture = WindowPixels(control);
        DestroyWindow(control);
        Ink ink;
        int first = picture.height;
        for (int y = 0; y < picture.height; ++y)
            for (int x = 0; x < picture.width; ++x)
                if (picture.At(x, y) != picture.At(picture.width - 1, picture.height - 1)) {
                    first = std::min(first, y);
                    ink.height = y + 1 - first;
                    ++ink.count;
                }
        return ink;
    }

    Scope scope;
    TestWindow parent;
};

} // namespace

TEST_F(Fonts, EveryControlTakesOneGivesItBackAndLooksSo)
{
    const HFONT large = Make(-30, FW_BOLD);
    struct Kind {
        const WCHAR* name;
        DWORD style;
    };
    for (const Kind& kind :
         {Kind{TEXT("STATIC"), SS_LEFT}, Kind{TEXT("BUTTON"), BS_PUSHBUTTON},
          Kind{TEXT("BUTTON"), BS_AUTOCHECKBOX}, Kind{TEXT("EDIT"), ES_AUTOHSCROLL},
          Kind{TEXT("EDIT"), ES_MULTILINE}, Kind{WC_LISTVIEWW, LVS_REPORT},
          Kind{TEXT("LISTBOX"), 0}, Kind{TEXT("COMBOBOX"), CBS_DROPDOWNLIST},
          Kind{TEXT("COMBOBOX"), CBS_DROPDOWN}}) {
        const std::string what = Utf8(kind.name) + " " + std::to_string(kind.style);
        const HWND control = MakeControl(kind.name, kind.style, TEXT("text"));
        for (const UINT message : {LB_ADDSTRING, CB_ADDSTRING})
            SendMessageW(control, message, 0, reinterpret_cast<LPARAM>(TEXT("text")));
        SendMessageW(control, CB_SETCURSEL, 0, 0);
        LVCOLUMNW column{};
        column.mask = LVCF_WIDTH;
        column.cx = 200;
        SendMessageW(control, LVM_INSERTCOLUMNW, 0, reinterpret_cast<LPARAM>(&column));
        WCHAR text[] = TEXT("text");
        LVITEMW item{};
        item.mask = LVIF_TEXT;
        item.pszText = text;
        SendMessageW(control, LVM_INSERTITEMW, 0, reinterpret_cast<LPARAM>(&item));

        EXPECT_EQ(Of(control), nullptr) << what;
        const std::vector<uint32_t> before = Look(control);
        Set(control, large);
        EXPECT_EQ(Of(control), large) << what;
        EXPECT_NE(Look(control), before) << what;
        Set(control, nullptr);
        EXPECT_EQ(Of(control), nullptr) << what;
        EXPECT_EQ(Look(control), before) << what;
        DestroyWindow(control);
    }
    DeleteObject(large);
}

TEST_F(Fonts, AFontThatIsGoneStaysTheControlsLook)
{
    for (const WCHAR* name : {TEXT("STATIC"), TEXT("EDIT"), TEXT("COMBOBOX")}) {
        const HFONT font = Make(-30);
        const HWND control = MakeControl(name, 0, TEXT("text"));
        Set(control, font);
        const std::vector<uint32_t> before = Look(control);
        EXPECT_TRUE(DeleteObject(font));
        InvalidateRect(control, nullptr, TRUE);
        EXPECT_EQ(Look(control), before);
        SetWindowTextW(control, TEXT("other"));
        SendMessageW(control, CB_SHOWDROPDOWN, TRUE, 0);
        Pump(20);
        Set(control, font);
        EXPECT_NE(Look(control), before) << "a handle that is stale means the dialog font";
        DestroyWindow(control);
    }
}

TEST_F(Fonts, AHeightAboveZeroIsTheCellsAndOneBelowTheSigns)
{
    // A cell holds the signs and room above and below them.
    const HFONT cell = Make(40);
    const HFONT sign = Make(-40);
    EXPECT_LT(InkOf(cell).height, InkOf(sign).height);
    // Capital letters of this face are 0.73 of its size high.
    EXPECT_NEAR(InkOf(sign).height, 40 * 0.73 + 1, 2);
    // Its line is 1.164 times its size: 40 pixels hold a size of 34.
    EXPECT_NEAR(InkOf(cell).height, 34 * 0.73 + 1, 2);
    DeleteObject(cell);
    DeleteObject(sign);
    const HFONT none = Make(0);
    EXPECT_EQ(InkOf(none), InkOf(nullptr)) << "0 is the usual height";
    DeleteObject(none);
}

TEST_F(Fonts, WeightSlantAndLinesShow)
{
    const Ink plain = [this] {
        const HFONT font = Make(-24);
        const Ink ink = InkOf(font);
        DeleteObject(font);
        return ink;
    }();
    LOGFONTW record = Record(-24, FW_BOLD);
    const HFONT bold = CreateFontIndirectW(&record);
    EXPECT_GT(InkOf(bold).count, plain.count * 5 / 4);
    EXPECT_NEAR(InkOf(bold).height, plain.height, 1);
    record = Record(-24);
    record.lfItalic = 1;
    const HFONT italic = CreateFontIndirectW(&record);
    EXPECT_NE(InkOf(italic).count, plain.count);
    record = Record(-24);
    record.lfUnderline = 1;
    const HFONT underlined = CreateFontIndirectW(&record);
    EXPECT_GT(InkOf(underlined).height, plain.height);
    for (const HFONT font : {bold, italic, underlined})
        DeleteObject(font);
}

TEST_F(Fonts, AnUnknownFaceLooksLikeTheDialogFontAndJapaneseSignsAreThereInAny)
{
    const HFONT unknown = Make(-20, FW_NORMAL, TEXT("No Such Face At All"));
    const HFONT dialogs = Make(-20, FW_NORMAL, TEXT(""));
    EXPECT_EQ(InkOf(unknown), InkOf(dialogs));
    EXPECT_EQ(InkOf(unknown, TEXT("漢字")), InkOf(dialogs, TEXT("漢字")));
    EXPECT_GT(InkOf(dialogs, TEXT("漢字")).count, 100);
    const HFONT fixed = Make(-20, FW_NORMAL, TEXT("DejaVu Sans Mono"));
    EXPECT_NE(InkOf(fixed, TEXT("illi")), InkOf(dialogs, TEXT("illi")));
    for (const HFONT font : {unknown, dialogs, fixed})
        DeleteObject(font);
}

TEST_F(Fonts, AComboBoxIsAsHighAsItsFontNeeds)
{
    const HFONT large = Make(-40);
    for (const DWORD style : {CBS_DROPDOWNLIST, CBS_DROPDOWN}) {
        const HWND combo = MakeControl(TEXT("COMBOBOX"), style, TEXT(""));
        RECT before{};
        GetWindowRect(combo, &before);
        Set(combo, large);
        RECT after{};
        GetWindowRect(combo, &after);
        EXPECT_GT(after.bottom - after.top, before.bottom - before.top + 20);
        DestroyWindow(combo);
    }
    DeleteObject(large);
}
