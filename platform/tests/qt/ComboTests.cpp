#include "platform/testing/WindowTesting.h"
#include "platform/tests/qt/ControlResources.h"
#include "platform/tests/qt/TestWindow.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

using namespace tavrix::testing;
using tavrix::test::TestWindow;

namespace
{

constexpr int ComboId = 1090;
constexpr int AltHeld = 0x20;
constexpr UINT Plain = CBS_DROPDOWNLIST | WS_VSCROLL;
constexpr UINT Edited = CBS_DROPDOWN | CBS_AUTOHSCROLL | WS_VSCROLL;

using Codes = std::vector<int>;

class ComboBox : public ::testing::Test
{
protected:
    ComboBox()
        : parent(
              [this](HWND, UINT message, WPARAM wParam, LPARAM lParam) -> std::optional<LRESULT> {
                  if (message != WM_COMMAND || reinterpret_cast<HWND>(lParam) == beside)
                      return std::nullopt;
                  EXPECT_EQ(reinterpret_cast<HWND>(lParam), combo);
                  EXPECT_EQ(LOWORD(wParam), ComboId);
                  codes.push_back(HIWORD(wParam));
                  if (handler)
                      handler(HIWORD(wParam));
                  return 0;
              })
    {
    }

    void Make(UINT style, int x = 10, int y = 20, int width = 120, int height = 120)
    {
        combo = CreateWindowExW(0, TEXT("COMBOBOX"), TEXT(""), WS_CHILD | WS_VISIBLE | style, x, y,
                                width, height, parent.handle, reinterpret_cast<HMENU>(ComboId),
                                nullptr, nullptr);
        ASSERT_NE(combo, nullptr);
        Pump(20);
        EXPECT_TRUE(codes.empty());
    }
    void MakeFilled(UINT style)
    {
        Make(style);
        for (const WCHAR* text : {TEXT("PNG"), TEXT("JPEG"), TEXT("BMP"), TEXT("画像")})
            Add(text);
        SetFocus(combo);
        Pump(20);
        codes.clear();
    }

    LRESULT Send(UINT message, WPARAM wParam = 0, LPARAM lParam = 0)
    {
        return SendMessageW(combo, message, wParam, lParam);
    }
    LRESULT SendText(UINT message, WPARAM wParam, const WCHAR* text)
    {
        return Send(message, wParam, reinterpret_cast<LPARAM>(text));
    }
    LRESULT Add(const WCHAR* text) { return SendText(CB_ADDSTRING, 0, text); }
    LRESULT Chosen() { return Send(CB_GETCURSEL); }
    bool IsDown() { return Send(CB_GETDROPPEDSTATE) != 0; }
    std::u16string Row(int row)
    {
        WCHAR text[100] = {};
        const LRESULT length = SendText(CB_GETLBTEXT, static_cast<WPARAM>(row), text);
        EXPECT_EQ(length, Send(CB_GETLBTEXTLEN, static_cast<WPARAM>(row)));
        return length >= 0 ? std::u16string(text, static_cast<size_t>(length)) : u"<none>";
    }
    std::u16string Text()
    {
        WCHAR text[100] = {};
        GetWindowTextW(combo, text, 100);
        return text;
    }
    RECT Place()
    {
        RECT place{};
        GetWindowRect(combo, &place);
        return place;
    }
    Codes Taken()
    {
        Codes taken;
        taken.swap(codes);
        return taken;
    }

    Scope scope;
    HWND combo = nullptr;
    HWND beside = nullptr; // another control
    Codes codes;
    std::function<void(int)> handler;
    TestWindow parent;
};

/// The rows of the device screen in which something is another than before, top and behind the
/// last; and the columns.
RECT Difference(const Picture& before, const Picture& now)
{
    RECT changed{now.width, now.height, 0, 0};
    for (int y = 0; y < now.height; ++y)
        for (int x = 0; x < now.width; ++x)
            if (before.At(x, y) != now.At(x, y)) {
                changed.left = std::min<LONG>(changed.left, x);
                changed.top = std::min<LONG>(changed.top, y);
                changed.right = std::max<LONG>(changed.right, x + 1);
                changed.bottom = std::max<LONG>(changed.bottom, y + 1);
            }
    return changed;
}

} // namespace

TEST_F(ComboBox, RowsGoInInOrderAndNothingIsChosenByItself)
{
    for (const UINT style : {Plain, Edited}) {
        Make(style);
        EXPECT_EQ(Chosen(), CB_ERR);
        EXPECT_EQ(Add(TEXT("b")), 0);
        EXPECT_EQ(Add(TEXT("a")), 1);
        EXPECT_EQ(Chosen(), CB_ERR);
        EXPECT_EQ(SendText(CB_INSERTSTRING, 1, TEXT("漢字")), 1);
        EXPECT_EQ(SendText(CB_INSERTSTRING, static_cast<WPARAM>(-1), TEXT("end")), 3);
        EXPECT_EQ(SendText(CB_INSERTSTRING, 9, TEXT("no")), CB_ERR);
        EXPECT_EQ(Send(CB_GETCOUNT), 4);
        EXPECT_EQ(Row(0) + Row(1) + Row(2) + Row(3), u"b漢字aend");
        EXPECT_EQ(Send(CB_GETLBTEXT, 4), CB_ERR);
        EXPECT_EQ(Text(), u"");
        EXPECT_TRUE(codes.empty());
        DestroyWindow(combo);
    }
}

TEST_F(ComboBox, ASortedOneOrdersWhatIsAddedWithoutRegardToCase)
{
    Make(Plain | CBS_SORT);
    EXPECT_EQ(Add(TEXT("m")), 0);
    EXPECT_EQ(Add(TEXT("B")), 0);
    EXPECT_EQ(Add(TEXT("z")), 2);
    EXPECT_EQ(Add(TEXT("a")), 0);
    EXPECT_EQ(SendText(CB_INSERTSTRING, 0, TEXT("x")), 0);
    EXPECT_EQ(Row(0) + Row(1) + Row(2) + Row(3) + Row(4), u"xaBmz");
}

TEST_F(ComboBox, EachRowHasAValueOfTheProgramsThatStaysWithIt)
{
    MakeFilled(Plain);
    EXPECT_EQ(Send(CB_GETITEMDATA, 1), 0);
    const auto value = static_cast<LPARAM>(0x123456789AULL);
    EXPECT_EQ(Send(CB_SETITEMDATA, 1, value), TRUE);
    EXPECT_EQ(SendText(CB_INSERTSTRING, 0, TEXT("first")), 0);
    EXPECT_EQ(Send(CB_GETITEMDATA, 2), value);
    EXPECT_EQ(Send(CB_GETITEMDATA, 5), CB_ERR);
    EXPECT_EQ(Send(CB_SETITEMDATA, 5, 1), CB_ERR);
}

TEST_F(ComboBox, ChoosingByTheProgramShowsTheTextAndTellsNobody)
{
    for (const UINT style : {Plain, Edited}) {
        MakeFilled(style);
        EXPECT_EQ(Send(CB_SETCURSEL, 3), 3);
        EXPECT_EQ(Text(), u"画像");
        EXPECT_EQ(SendText(CB_SELECTSTRING, static_cast<WPARAM>(-1), TEXT("jp")), 1);
        EXPECT_EQ(Text(), u"JPEG");
        EXPECT_EQ(SendText(CB_SELECTSTRING, static_cast<WPARAM>(-1), TEXT("tiff")), CB_ERR);
        EXPECT_EQ(Chosen(), 1);
        SendText(CB_INSERTSTRING, 1, TEXT("before it"));
        EXPECT_EQ(Chosen(), 2) << "the choice stays with its text";
        Send(CB_DELETESTRING, 1);
        EXPECT_EQ(Send(CB_DELETESTRING, 0), 3);
        EXPECT_EQ(Chosen(), 0);
        EXPECT_EQ(Send(CB_SETCURSEL, 99), CB_ERR);
        EXPECT_EQ(Chosen(), CB_ERR);
        EXPECT_EQ(Text(), u"");
        Send(CB_SETCURSEL, 1);
        EXPECT_EQ(Send(CB_DELETESTRING, 1), 2);
        EXPECT_EQ(Chosen(), CB_ERR);
        Send(CB_SETCURSEL, 0);
        Send(CB_RESETCONTENT);
        EXPECT_EQ(Send(CB_GETCOUNT), 0);
        EXPECT_EQ(Text(), u"");
        EXPECT_TRUE(codes.empty());
        DestroyWindow(combo);
        codes.clear();
    }
}

TEST_F(ComboBox, TextsAreFoundFromBehindARowAndRoundAgain)
{
    Make(Plain);
    for (const WCHAR* text : {TEXT("apple"), TEXT("Apricot"), TEXT("pear"), TEXT("ap")})
        Add(text);
    EXPECT_EQ(SendText(CB_FINDSTRING, static_cast<WPARAM>(-1), TEXT("AP")), 0);
    EXPECT_EQ(SendText(CB_FINDSTRING, 0, TEXT("ap")), 1);
    EXPECT_EQ(SendText(CB_FINDSTRING, 3, TEXT("ap")), 0);
    EXPECT_EQ(SendText(CB_FINDSTRING, 2, TEXT("apr")), 1);
    EXPECT_EQ(SendText(CB_FINDSTRING, 0, TEXT("x")), CB_ERR);
    EXPECT_EQ(SendText(CB_FINDSTRINGEXACT, static_cast<WPARAM>(-1), TEXT("AP")), 3);
    EXPECT_EQ(SendText(CB_FINDSTRINGEXACT, 0, TEXT("appl")), CB_ERR);
}

TEST_F(ComboBox, ArrowsChooseAndTellInOrder)
{
    for (const UINT style : {Plain, Edited}) {
        MakeFilled(style);
        TypeKey(VK_DOWN);
        EXPECT_EQ(Chosen(), 0);
        EXPECT_EQ(Taken(), (Codes{CBN_SELENDOK, CBN_SELCHANGE}));
        TypeKey(VK_DOWN);
        EXPECT_EQ(Text(), u"JPEG");
        TypeKey(VK_UP);
        EXPECT_EQ(Text(), u"PNG");
        codes.clear();
        TypeKey(VK_UP);
        EXPECT_EQ(Taken(), Codes{}) << "there is none before";
        EXPECT_FALSE(IsDown());
        DestroyWindow(combo);
        codes.clear();
    }
}

TEST_F(ComboBox, TheListDropsDownByKeysAndClosesByThemTakingItsRow)
{
    for (const UINT style : {Plain, Edited})
        for (const int key : {VK_F4, VK_DOWN}) {
            MakeFilled(style);
            Send(CB_SETCURSEL, 1);
            TypeKey(key, key == VK_DOWN ? AltHeld : 0);
            EXPECT_TRUE(IsDown());
            EXPECT_EQ(Taken(), Codes{CBN_DROPDOWN});
            TypeKey(VK_DOWN);
            EXPECT_EQ(Chosen(), 1) << "only lit yet";
            EXPECT_EQ(Taken(), Codes{});
            TypeKey(key, key == VK_DOWN ? AltHeld : 0);
            EXPECT_FALSE(IsDown());
            EXPECT_EQ(Text(), u"BMP");
            EXPECT_EQ(Taken(), (Codes{CBN_SELENDOK, CBN_SELCHANGE, CBN_CLOSEUP}));
            DestroyWindow(combo);
            codes.clear();
        }
}

TEST_F(ComboBox, EnterTakesTheLitRowAndEscLeavesWhatWasChosen)
{
    for (const UINT style : {Plain, Edited}) {
        MakeFilled(style);
        Send(CB_SETCURSEL, 0);
        TypeKey(VK_F4);
        TypeKey(VK_DOWN);
        codes.clear();
        TypeKey(VK_ESCAPE);
        EXPECT_FALSE(IsDown());
        EXPECT_EQ(Text(), u"PNG");
        EXPECT_EQ(Chosen(), 0);
        EXPECT_EQ(Taken(), (Codes{CBN_SELENDCANCEL, CBN_CLOSEUP}));
        TypeKey(VK_F4);
        TypeKey(VK_DOWN);
        TypeKey(VK_DOWN);
        codes.clear();
        TypeKey(VK_RETURN);
        EXPECT_FALSE(IsDown());
        EXPECT_EQ(Text(), u"BMP");
        EXPECT_EQ(Taken(), (Codes{CBN_SELENDOK, CBN_SELCHANGE, CBN_CLOSEUP}));
        TypeKey(VK_F4);
        codes.clear();
        TypeKey(VK_RETURN);
        EXPECT_EQ(Taken(), (Codes{CBN_SELENDOK, CBN_CLOSEUP})) << "the same row is no change";
        DestroyWindow(combo);
        codes.clear();
    }
}

TEST_F(ComboBox, LettersGoToTheRowThatBeginsSo)
{
    MakeFilled(Plain);
    Add(TEXT("Bitmap"));
    TypeKey('B');
    EXPECT_EQ(Text(), u"BMP");
    EXPECT_EQ(Taken(), (Codes{CBN_SELENDOK, CBN_SELCHANGE}));
    TypeKey('B');
    EXPECT_EQ(Text(), u"Bitmap");
    Pump(1100);
    TypeKey('B');
    TypeKey('M');
    EXPECT_EQ(Text(), u"BMP");
    Pump(1100);
    TypeKey(VK_F4);
    codes.clear();
    TypeKey('J');
    EXPECT_EQ(Text(), u"BMP");
    EXPECT_EQ(Taken(), Codes{});
    TypeKey(VK_RETURN);
    EXPECT_EQ(Text(), u"JPEG");
}

TEST_F(ComboBox, APressDropsDownAndAPressOnARowTakesIt)
{
    for (const UINT style : {Plain, Edited}) {
        MakeFilled(style);
        Send(CB_SETCURSEL, 0);
        const RECT place = Place();
        const Picture before = ScreenPixels();
        ClickScreen(place.right - 6, (place.top + place.bottom) / 2);
        EXPECT_TRUE(IsDown());
        EXPECT_EQ(Taken(), Codes{CBN_DROPDOWN});
        const RECT list = Difference(before, ScreenPixels());
        EXPECT_GE(list.bottom, place.bottom + 4 * 14) << "four rows";
        const int row = (list.bottom - place.bottom) / 4;
        ClickScreen(place.left + 20, place.bottom + 2 * row + row / 2);
        EXPECT_FALSE(IsDown());
        EXPECT_EQ(Text(), u"BMP");
        EXPECT_EQ(Taken(), (Codes{CBN_SELENDOK, CBN_SELCHANGE, CBN_CLOSEUP}));
        DestroyWindow(combo);
        codes.clear();
    }
}

TEST_F(ComboBox, APressThatIsDraggedIntoTheListTakesTheRowWhereItIsLetGo)
{
    MakeFilled(Plain);
    const RECT place = Place();
    DragScreen(place.right - 6, place.top + 8, place.left + 20, place.bottom + 8);
    EXPECT_FALSE(IsDown());
    EXPECT_EQ(Text(), u"PNG");
    EXPECT_EQ(Taken(), (Codes{CBN_DROPDOWN, CBN_SELENDOK, CBN_SELCHANGE, CBN_CLOSEUP}));
}

TEST_F(ComboBox, APressBesideTheListClosesItAndGoesOnToWhatItPointsAt)
{
    MakeFilled(Plain);
    beside = CreateWindowExW(0, TEXT("EDIT"), TEXT(""), WS_CHILD | WS_VISIBLE, 300, 20, 60, 24,
                             parent.handle, nullptr, nullptr, nullptr);
    TypeKey(VK_F4);
    TypeKey(VK_DOWN);
    codes.clear();
    ClickScreen(320, 30);
    EXPECT_FALSE(IsDown());
    EXPECT_EQ(Chosen(), CB_ERR);
    EXPECT_EQ(Taken(), (Codes{CBN_SELENDCANCEL, CBN_CLOSEUP, CBN_KILLFOCUS}));
    EXPECT_EQ(GetFocus(), beside);
    SetFocus(combo);
    const RECT place = Place();
    codes.clear();
    ClickScreen(place.left + 5, place.top + 5);
    EXPECT_TRUE(IsDown());
    ClickScreen(place.left + 5, place.top + 5);
    EXPECT_FALSE(IsDown()) << "a press on the field itself closes it too";
}

TEST_F(ComboBox, LosingTheFocusClosesTheListAndIsTold)
{
    for (const UINT style : {Plain, Edited}) {
        Make(style);
        Add(TEXT("one"));
        const HWND other = CreateWindowExW(0, TEXT("BUTTON"), TEXT("b"), WS_CHILD | WS_VISIBLE, 300,
                                           20, 50, 20, parent.handle, nullptr, nullptr, nullptr);
        SetFocus(combo);
        Pump(20);
        EXPECT_EQ(Taken(), Codes{CBN_SETFOCUS});
        TypeKey(VK_F4);
        codes.clear();
        SetFocus(other);
        EXPECT_FALSE(IsDown());
        EXPECT_EQ(Taken(), (Codes{CBN_SELENDCANCEL, CBN_CLOSEUP, CBN_KILLFOCUS}));
        DestroyWindow(other);
        DestroyWindow(combo);
        codes.clear();
    }
}

TEST_F(ComboBox, TheListLiesInsideTheScreenAndIsAsWideAsItsRows)
{
    const int width = GetSystemMetrics(SM_CXSCREEN);
    const int height = GetSystemMetrics(SM_CYSCREEN);
    const auto show = [&](int x, int y, int count, const WCHAR* text) {
        Make(Plain, x, y, 60, 400);
        for (int i = 0; i < count; ++i)
            Add(text);
        SetFocus(combo);
        Pump(20);
        const Picture before = ScreenPixels();
        TypeKey(VK_F4);
        Pump(20);
        const RECT list = Difference(before, ScreenPixels());
        DestroyWindow(combo);
        codes.clear();
        return list;
    };
    const RECT above = show(10, height - 40, 8, TEXT("row"));
    EXPECT_LT(above.top, height - 40 - 8 * 14);
    EXPECT_GE(above.top, 0);
    const RECT wide = show(width - 70, 20, 2, TEXT("a text that needs far more than sixty pixels"));
    EXPECT_LT(wide.left, width - 200);
    EXPECT_GE(wide.right, width - 1) << "but for the frame";
    const RECT widest = show(10, 20, 2, std::u16string(400, u'W').c_str());
    EXPECT_LE(widest.left, 1);
    EXPECT_GE(widest.right, width - 1);
    const RECT many = show(10, height / 2, 900, TEXT("row"));
    EXPECT_GE(many.top, 0);
    EXPECT_LE(many.bottom, height);
}

TEST_F(ComboBox, ItsOwnHeightIsItsFontsAndTheRestIsTheLists)
{
    for (const UINT style : {Plain, Edited}) {
        Make(style, 10, 20, 120, 300);
        EXPECT_LT(Place().bottom - Place().top, 32);
        EXPECT_GT(Place().bottom - Place().top, 16);
        for (int i = 0; i < 100; ++i)
            Add(TEXT("row"));
        SetFocus(combo);
        Pump(20);
        const Picture before = ScreenPixels();
        TypeKey(VK_F4);
        Pump(20);
        const RECT list = Difference(before, ScreenPixels());
        EXPECT_LE(list.bottom, Place().top + 300);
        EXPECT_GT(list.bottom, Place().top + 280) << "whole rows";
        DestroyWindow(combo);
        codes.clear();
    }
}

TEST_F(ComboBox, TypingInTheEditFieldIsToldAndChoosesNothing)
{
    MakeFilled(Edited);
    Send(CB_SETCURSEL, 1);
    EXPECT_EQ(Send(CB_GETEDITSEL), MAKELONG(0, 4)) << "a choice is ready to be typed over";
    TypeKey('A');
    EXPECT_EQ(Text(), u"a");
    EXPECT_EQ(Chosen(), CB_ERR);
    EXPECT_EQ(Taken(), (Codes{CBN_EDITUPDATE, CBN_EDITCHANGE}));
    CommitText(u"日本");
    EXPECT_EQ(Text(), u"a日本");
    EXPECT_EQ(Taken(), (Codes{CBN_EDITUPDATE, CBN_EDITCHANGE}));
    EXPECT_TRUE(SetWindowTextW(combo, TEXT("by the program")));
    EXPECT_EQ(Text(), u"by the program");
    EXPECT_EQ(Taken(), Codes{});
    Send(CB_SETEDITSEL, 0, MAKELPARAM(3, 6));
    EXPECT_EQ(Send(CB_GETEDITSEL), MAKELONG(3, 6));
    Send(CB_LIMITTEXT, 15);
    TypeKey(VK_END);
    TypeKey('1');
    TypeKey('2');
    EXPECT_EQ(Text(), u"by the program1");
}

TEST_F(ComboBox, WithoutAnEditFieldTheTextIsTheChoicesAlone)
{
    MakeFilled(Plain);
    Send(CB_SETCURSEL, 2);
    EXPECT_FALSE(SetWindowTextW(combo, TEXT("other")));
    EXPECT_EQ(Text(), u"BMP");
    EXPECT_EQ(Send(CB_SETEDITSEL, 0, MAKELPARAM(0, 1)), CB_ERR);
}

TEST_F(ComboBox, TheProgramMayFillTheListWhenItDropsDown)
{
    for (const UINT style : {Plain, Edited}) {
        Make(style);
        handler = [this](int code) {
            if (code == CBN_DROPDOWN)
                Add(TEXT("filled"));
        };
        SetFocus(combo);
        Pump(20);
        TypeKey(VK_F4);
        TypeKey(VK_DOWN);
        TypeKey(VK_RETURN);
        EXPECT_EQ(Text(), u"filled");
        handler = nullptr;
        DestroyWindow(combo);
        codes.clear();
    }
}

TEST_F(ComboBox, RowsMayGoWhileTheListIsDroppedDown)
{
    MakeFilled(Plain);
    TypeKey(VK_F4);
    TypeKey(VK_END);
    Send(CB_DELETESTRING, 3);
    Send(CB_DELETESTRING, 0);
    Pump(20);
    codes.clear();
    TypeKey(VK_RETURN);
    EXPECT_EQ(Chosen(), CB_ERR);
    EXPECT_EQ(Taken(), (Codes{CBN_SELENDCANCEL, CBN_CLOSEUP}));
    TypeKey(VK_F4);
    Send(CB_RESETCONTENT);
    Pump(20);
    TypeKey(VK_DOWN);
    TypeKey(VK_RETURN);
    EXPECT_EQ(Chosen(), CB_ERR);
}

TEST_F(ComboBox, TheParentMayEndTheControlInAnyHandler)
{
    for (const UINT style : {Plain, Edited})
        for (const int last : {CBN_DROPDOWN, CBN_SELENDOK, CBN_SELCHANGE, CBN_CLOSEUP}) {
            MakeFilled(style);
            handler = [this, last](int code) {
                if (code == last)
                    DestroyWindow(combo);
            };
            TypeKey(VK_F4);
            Pump(20);
            EXPECT_EQ(IsWindow(combo) == FALSE, last == CBN_DROPDOWN);
            TypeKey(VK_DOWN);
            TypeKey(VK_RETURN);
            Pump(20);
            EXPECT_FALSE(IsWindow(combo));
            handler = nullptr;
            codes.clear();
        }
}

TEST_F(ComboBox, TimersAndMessagesGoOnWhileTheListIsDroppedDown)
{
    MakeFilled(Plain);
    TypeKey(VK_F4);
    int ticks = 0;
    parent.handler = [&ticks](HWND, UINT message, WPARAM, LPARAM) -> std::optional<LRESULT> {
        ticks += message == WM_TIMER;
        return std::nullopt;
    };
    SetTimer(parent.handle, 1, 5, nullptr);
    EXPECT_TRUE(PumpUntil([&ticks] { return ticks >= 5; }));
    KillTimer(parent.handle, 1);
    EXPECT_TRUE(IsDown());
    parent.handler = {};
}

TEST_F(ComboBox, ADisabledOneTakesNoInputAndAHiddenOneShowsNoList)
{
    for (const UINT style : {Plain, Edited}) {
        MakeFilled(style);
        SetFocus(parent.handle);
        Send(CB_SHOWDROPDOWN, TRUE);
        EXPECT_TRUE(IsDown());
        EnableWindow(combo, FALSE);
        EXPECT_FALSE(IsDown());
        codes.clear();
        const RECT place = Place();
        ClickScreen(place.right - 6, place.top + 6);
        EXPECT_FALSE(IsDown());
        EXPECT_EQ(Taken(), Codes{});
        EnableWindow(combo, TRUE);
        Send(CB_SHOWDROPDOWN, TRUE);
        EXPECT_TRUE(IsDown());
        ShowWindow(combo, SW_HIDE);
        EXPECT_FALSE(IsDown());
        Send(CB_SHOWDROPDOWN, TRUE);
        EXPECT_FALSE(IsDown());
        DestroyWindow(combo);
        codes.clear();
    }
}

TEST_F(ComboBox, ALongTextIsCutInTheField)
{
    Make(Plain, 10, 20, 80, 120);
    constexpr int ArrowWidth = 16;
    const auto arrow = [this] {
        Pump(20);
        const Picture picture = WindowPixels(combo);
        std::vector<uint32_t> pixels;
        for (int y = 0; y < picture.height; ++y)
            for (int x = picture.width - ArrowWidth; x < picture.width; ++x)
                pixels.push_back(picture.At(x, y));
        return pixels;
    };
    const std::vector<uint32_t> empty = arrow();
    Add((std::u16string(60, u'W') + u"1").c_str());
    Add((std::u16string(60, u'W') + u"2").c_str());
    Send(CB_SETCURSEL, 0);
    EXPECT_EQ(arrow(), empty) << "nothing of it stands on the arrow";
    const std::vector<uint32_t> one = WindowPixels(combo).pixels;
    Send(CB_SETCURSEL, 1);
    Pump(20);
    EXPECT_EQ(WindowPixels(combo).pixels, one) << "its end is what is cut off";
    Send(CB_SETCURSEL, static_cast<WPARAM>(-1));
    Pump(20);
    EXPECT_NE(WindowPixels(combo).pixels, one);
}

namespace
{

int answered = 0;

INT_PTR CALLBACK ComboDialog(HWND dialog, UINT message, WPARAM wParam, LPARAM)
{
    if (message == WM_INITDIALOG) {
        for (const int id : {1301, 1302})
            for (const WCHAR* text : {TEXT("一"), TEXT("二"), TEXT("三")})
                SendDlgItemMessageW(dialog, id, CB_ADDSTRING, 0, reinterpret_cast<LPARAM>(text));
        return TRUE;
    }
    if (message == WM_COMMAND && (LOWORD(wParam) == IDOK || LOWORD(wParam) == IDCANCEL)) {
        answered = LOWORD(wParam);
        EndDialog(dialog, LOWORD(wParam));
        return TRUE;
    }
    return FALSE;
}

} // namespace

TEST(ComboBoxInADialog, EnterAndEscAreTheListsWhileItIsDroppedDown)
{
    const Scope scope;
    const TestWindow owner;
    for (const int id : {1301, 1302})
        for (const int key : {VK_RETURN, VK_ESCAPE}) {
            answered = 0;
            OnModal([&](HWND dialog, bool) {
                const HWND combo = GetDlgItem(dialog, id);
                const auto isDown = [combo] {
                    return SendMessageW(combo, CB_GETDROPPEDSTATE, 0, 0) != 0;
                };
                SetFocus(combo);
                Pump(20);
                TypeKey(VK_F4);
                EXPECT_TRUE(isDown());
                TypeKey(VK_DOWN);
                TypeKey(key);
                EXPECT_FALSE(isDown());
                EXPECT_EQ(SendMessageW(combo, CB_GETCURSEL, 0, 0), key == VK_RETURN ? 0 : CB_ERR);
                EXPECT_EQ(answered, 0) << "the dialog saw nothing of it";
                TypeKey(key);
                EXPECT_EQ(answered, key == VK_RETURN ? IDOK : IDCANCEL) << "and now it is its own";
            });
            DialogBoxIndirectParamW(ControlResources(), DialogResource(230), owner.handle,
                                    ComboDialog, 0);
        }
}

TEST(ComboBoxInADialog, TabWalksOverItOnceAndClosesItsList)
{
    const Scope scope;
    const TestWindow owner;
    OnModal([&](HWND dialog, bool) {
        Pump(20);
        EXPECT_EQ(GetFocus(), GetDlgItem(dialog, 1301));
        TypeKey(VK_F4);
        TypeKey(VK_TAB);
        EXPECT_EQ(SendDlgItemMessageW(dialog, 1301, CB_GETDROPPEDSTATE, 0, 0), 0);
        EXPECT_EQ(GetParent(GetFocus()), GetDlgItem(dialog, 1302)) << "on its edit field";
        TypeKey(VK_TAB);
        EXPECT_EQ(GetFocus(), GetDlgItem(dialog, 1303));
        TypeKey(VK_TAB, MK_SHIFT);
        TypeKey(VK_TAB, MK_SHIFT);
        EXPECT_EQ(GetFocus(), GetDlgItem(dialog, 1301));
        EndDialog(dialog, 1);
    });
    DialogBoxIndirectParamW(ControlResources(), DialogResource(230), owner.handle, ComboDialog, 0);
}

TEST(FieldInADialog, TheTextOfAFieldThatTabLeadsToIsReplacedByWhatIsTyped)
{
    const Scope scope;
    const TestWindow owner;
    OnModal([](HWND dialog, bool) {
        constexpr int Box = 1302;
        constexpr int Field = 1304;
        Pump(20);
        EXPECT_EQ(GetFocus(), GetDlgItem(dialog, 1301));
        for (const int id : {Box, Field})
            SetDlgItemTextW(dialog, id, TEXT("lake.png"));
        TypeKey(VK_TAB);
        CommitText(u"boat");
        EXPECT_EQ(ControlText(dialog, Box), u"boat");
        TypeKey(VK_TAB);
        TypeKey(VK_TAB);
        CommitText(u"boat");
        EXPECT_EQ(ControlText(dialog, Field), u"boat");
        // The program's own word is no key.
        SetFocus(GetDlgItem(dialog, Box));
        SendDlgItemMessageW(dialog, Field, EM_SETSEL, 4, 4);
        SetFocus(GetDlgItem(dialog, Field));
        CommitText(u"s");
        EXPECT_EQ(ControlText(dialog, Field), u"boats");
        EndDialog(dialog, 0);
    });
    DialogBoxIndirectParamW(ControlResources(), DialogResource(230), owner.handle, ComboDialog, 0);
}
