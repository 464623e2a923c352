#include "platform/testing/WindowTesting.h"
#include "platform/tests/qt/ControlResources.h"
#include "platform/tests/qt/TestWindow.h"

#include <gtest/gtest.h>

#include <set>
#include <string>
#include <utility>
#include <vector>

using namespace tavrix::testing;
using tavrix::test::TestWindow;

namespace
{

constexpr int EditId = 55;
constexpr UINT Line = WS_BORDER | ES_AUTOHSCROLL;
constexpr UINT Box = WS_BORDER | ES_MULTILINE | ES_AUTOVSCROLL | WS_VSCROLL;

class EditControl : public ::testing::Test
{
protected:
    EditControl()
        : parent(
              [this](HWND, UINT message, WPARAM wParam, LPARAM lParam) -> std::optional<LRESULT> {
                  if (message != WM_COMMAND)
                      return std::nullopt;
                  EXPECT_EQ(reinterpret_cast<HWND>(lParam), edit);
                  EXPECT_EQ(LOWORD(wParam), EditId);
                  codes.push_back(HIWORD(wParam));
                  if (handler)
                      handler(HIWORD(wParam));
                  return 0;
              })
    {
    }

    void Make(UINT style, const WCHAR* text = TEXT(""), int width = 160, int height = 80)
    {
        edit = CreateWindowExW(0, TEXT("EDIT"), text, WS_CHILD | WS_VISIBLE | style, 10, 20, width,
                               height, parent.handle, reinterpret_cast<HMENU>(EditId), nullptr,
                               nullptr);
        ASSERT_NE(edit, nullptr);
        Pump(20);
        EXPECT_TRUE(codes.empty());
    }

    LRESULT Send(UINT message, WPARAM wParam = 0, LPARAM lParam = 0)
    {
        return SendMessageW(edit, message, wParam, lParam);
    }
    std::u16string Text()
    {
        std::u16string text(static_cast<size_t>(GetWindowTextLengthW(edit)) + 1, u'#');
        text.resize(
            static_cast<size_t>(GetWindowTextW(edit, text.data(), static_cast<int>(text.size()))));
        return text;
    }
    std::pair<DWORD, DWORD> Selection()
    {
        DWORD first = 99;
        DWORD behind = 99;
        const LRESULT both =
            Send(EM_GETSEL, reinterpret_cast<WPARAM>(&first), reinterpret_cast<LPARAM>(&behind));
        EXPECT_EQ(both, static_cast<LRESULT>(MAKELONG(first, behind)));
        return {first, behind};
    }
    void Replace(const WCHAR* text) { Send(EM_REPLACESEL, 0, reinterpret_cast<LPARAM>(text)); }

    size_t Colors()
    {
        Pump(20);
        const Picture picture = WindowPixels(edit);
        std::set<uint32_t> inside;
        for (int y = 4; y < picture.height - 4; ++y)
            for (int x = 4; x < picture.width - 24; ++x) // the scroll bar stands to the right
                inside.insert(picture.At(x, y));
        return inside.size();
    }

    Scope scope;
    HWND edit = nullptr;
    std::vector<int> codes;
    std::function<void(int)> handler;
    TestWindow parent;
};

using Range = std::pair<DWORD, DWORD>;

} // namespace

TEST_F(EditControl, TheTextGoesInAndOutLetterForLetter)
{
    for (const UINT style : {Line, Box}) {
        codes.clear();
        Make(style, TEXT("初め"));
        EXPECT_EQ(Text(), u"初め");
        EXPECT_TRUE(SetWindowTextW(edit, TEXT("一行目\r\nsecond\r\n\r\nend")));
        EXPECT_EQ(Text(), u"一行目\r\nsecond\r\n\r\nend");
        EXPECT_EQ(Send(WM_GETTEXTLENGTH), 18);
        SetWindowTextW(edit, TEXT("a\nb\rc"));
        EXPECT_EQ(Text(), u"a\nb\rc");
        WCHAR cut[4] = {'#', '#', '#', '#'};
        EXPECT_EQ(GetWindowTextW(edit, cut, 3), 2);
        EXPECT_EQ(std::u16string(cut, 4), (std::u16string{'a', '\n', 0, '#'}));
        DestroyWindow(edit);
    }
}

TEST_F(EditControl, AnotherTextIsAChangeAndTheSameTextIsNone)
{
    for (const UINT style : {Line, Box, Box | ES_READONLY}) {
        codes.clear();
        Make(style, TEXT("one"));
        SetWindowTextW(edit, TEXT("first\r\nother"));
        EXPECT_EQ(codes, std::vector<int>{EN_CHANGE});
        EXPECT_EQ(Selection(), (Range{12, 12})) << "the caret stands at the end";
        Send(EM_SETSEL, 1, 4);
        SetWindowTextW(edit, TEXT("first\r\nother"));
        EXPECT_EQ(codes.size(), 1u);
        EXPECT_EQ(Selection(), (Range{1, 4}));
        DestroyWindow(edit);
    }
}

TEST_F(EditControl, TypedTextIsAChangeForEachKey)
{
    Make(Line);
    SetFocus(edit);
    codes.clear();
    TypeKey('A', MK_SHIFT);
    TypeKey('B');
    TypeKey('1');
    EXPECT_EQ(Text(), u"Ab1");
    EXPECT_EQ(codes, (std::vector<int>{EN_CHANGE, EN_CHANGE, EN_CHANGE}));
    TypeKey(VK_LEFT);
    TypeKey(VK_BACK);
    EXPECT_EQ(Text(), u"A1");
    TypeKey(VK_HOME);
    TypeKey(VK_DELETE);
    EXPECT_EQ(Text(), u"1");
    EXPECT_EQ(codes.size(), 5u);
}

TEST_F(EditControl, SeveralLinesEndInTwoUnits)
{
    Make(Box);
    SetFocus(edit);
    TypeKey('A');
    TypeKey(VK_RETURN);
    TypeKey('B');
    EXPECT_EQ(Text(), u"a\r\nb");
    EXPECT_EQ(Selection(), (Range{4, 4}));
    Send(EM_SETSEL, 3, 4);
    EXPECT_EQ(Selection(), (Range{3, 4}));
    Replace(TEXT("x\r\ny"));
    EXPECT_EQ(Text(), u"a\r\nx\r\ny");
    EXPECT_EQ(Selection(), (Range{7, 7}));
}

TEST_F(EditControl, AJapaneseCommitArrivesOnceAndWhatIsComposedIsNoTextYet)
{
    for (const UINT style : {Line, Box}) {
        codes.clear();
        Make(style, TEXT("x"));
        SetFocus(edit);
        Send(EM_SETSEL, 1, 1);
        codes.clear();
        CommitText(u"日本語");
        EXPECT_EQ(Text(), u"x日本語");
        EXPECT_EQ(codes, std::vector<int>{EN_CHANGE});
        EXPECT_EQ(Selection(), (Range{4, 4}));
        DestroyWindow(edit);
    }
}

TEST_F(EditControl, TheSelectionIsSetAndReadInUnitsOfTheText)
{
    for (const UINT style : {Line, Box}) {
        codes.clear();
        Make(style, TEXT("0123456789"));
        Send(EM_SETSEL, 0, -1);
        EXPECT_EQ(Selection(), (Range{0, 10}));
        Send(EM_SETSEL, static_cast<WPARAM>(-1), 0);
        EXPECT_EQ(Selection(), (Range{10, 10})) << "taken away";
        Send(EM_SETSEL, 7, 3);
        EXPECT_EQ(Selection(), (Range{3, 7}));
        Send(EM_SETSEL, 8, 1000);
        EXPECT_EQ(Selection(), (Range{8, 10}));
        EXPECT_EQ(Send(EM_GETSEL), MAKELONG(8, 10));
        DestroyWindow(edit);
    }
}

TEST_F(EditControl, ReplacingTakesTheSelectionsPlaceAndIsAChange)
{
    for (const UINT style : {Line, Box, Box | ES_READONLY, Line | ES_READONLY}) {
        codes.clear();
        Make(style, TEXT("0123456789"));
        Send(EM_SETSEL, 2, 5);
        Replace(TEXT("新"));
        EXPECT_EQ(Text(), u"01新56789");
        EXPECT_EQ(Selection(), (Range{3, 3}));
        EXPECT_EQ(codes, std::vector<int>{EN_CHANGE});
        Replace(nullptr);
        EXPECT_EQ(Text(), u"01新56789");
        DestroyWindow(edit);
    }
}

TEST_F(EditControl, AReadOnlyTextTakesNoTyping)
{
    for (const UINT style : {Line, Box}) {
        codes.clear();
        Make(style | ES_READONLY, TEXT("fixed"));
        SetFocus(edit);
        codes.clear();
        TypeKey('A');
        TypeKey(VK_BACK);
        CommitText(u"字");
        EXPECT_EQ(Text(), u"fixed");
        EXPECT_TRUE(codes.empty());
        EXPECT_TRUE(Send(EM_SETREADONLY, FALSE));
        EXPECT_EQ(GetWindowLongPtrW(edit, GWL_STYLE) & LONG_PTR{ES_READONLY}, 0);
        TypeKey('A');
        EXPECT_EQ(Text().size(), 6u);
        EXPECT_TRUE(Send(EM_SETREADONLY, TRUE));
        TypeKey('A');
        EXPECT_EQ(Text().size(), 6u);
        DestroyWindow(edit);
    }
}

TEST_F(EditControl, TheLimitHoldsForTypingAndNotForTheProgram)
{
    for (const UINT style : {Line, Box}) {
        codes.clear();
        Make(style, TEXT("abc"));
        SetFocus(edit);
        Send(EM_SETLIMITTEXT, 5);
        EXPECT_EQ(Selection(), (Range{3, 3}));
        TypeKey('D');
        TypeKey('E');
        TypeKey('F');
        CommitText(u"日本");
        EXPECT_EQ(Text(), u"abcde");
        SetWindowTextW(edit, TEXT("12345678"));
        EXPECT_EQ(Text(), u"12345678");
        TypeKey('X');
        EXPECT_EQ(Text(), u"12345678");
        SetWindowTextW(edit, TEXT("123"));
        CommitText(u"日本語");
        EXPECT_EQ(Text(), u"123日本");
        Send(EM_SETLIMITTEXT, 0);
        TypeKey('X');
        EXPECT_EQ(Text(), u"123日本x");
        DestroyWindow(edit);
    }
}

TEST_F(EditControl, ANumberFieldTakesDigitsAlone)
{
    Make(Line | ES_NUMBER);
    SetFocus(edit);
    for (const int key : std::initializer_list<int>{'1', 'A', 0xBD, '2', 0xBE, '3'})
        TypeKey(key);
    CommitText(u"4日5");
    EXPECT_EQ(Text(), u"12345");
    TypeKey(VK_BACK);
    EXPECT_EQ(Text(), u"1234");
    SetWindowTextW(edit, TEXT("1.5"));
    EXPECT_EQ(Text(), u"1.5") << "the program may";
}

TEST_F(EditControl, APasswordDoesNotShowItsLetters)
{
    const auto pixels = [this](UINT style, const WCHAR* text) {
        codes.clear();
        Make(style, text, 160, 24);
        Pump(20);
        const std::vector<uint32_t> shown = WindowPixels(edit).pixels;
        DestroyWindow(edit);
        return shown;
    };
    EXPECT_EQ(pixels(Line | ES_PASSWORD, TEXT("abc")), pixels(Line | ES_PASSWORD, TEXT("xyz")));
    EXPECT_NE(pixels(Line, TEXT("abc")), pixels(Line, TEXT("xyz")));
}

TEST_F(EditControl, TextStandsLeftCenteredOrRight)
{
    const auto middle = [this](UINT style) {
        codes.clear();
        Make(style, TEXT("text"), 200, 24);
        Pump(20);
        const Picture picture = WindowPixels(edit);
        DestroyWindow(edit);
        int left = picture.width;
        int right = 0;
        for (int x = 6; x < picture.width - 6; ++x)
            for (int y = 6; y < picture.height - 6; ++y)
                if (picture.At(x, y) != picture.At(100, 4)) {
                    left = std::min(left, x);
                    right = std::max(right, x);
                }
        return (left + right) / 2;
    };
    EXPECT_LT(middle(Line | ES_LEFT), 40);
    EXPECT_NEAR(middle(Line | ES_CENTER), 100, 4);
    EXPECT_GT(middle(Line | ES_RIGHT), 160);
}

TEST_F(EditControl, LinesAreCountedAsTheyAreWrapped)
{
    Make(Box, TEXT("a\r\nb\r\nc"), 160, 80);
    EXPECT_EQ(Send(EM_GETLINECOUNT), 3);
    // 60 wide signs of 12 pixels each in less than 160 pixels: at least five lines.
    SetWindowTextW(edit, std::u16string(60, u'漢').c_str());
    EXPECT_GE(Send(EM_GETLINECOUNT), 5);
    EXPECT_LE(Send(EM_GETLINECOUNT), 8);
    SetWindowTextW(edit, TEXT(""));
    EXPECT_EQ(Send(EM_GETLINECOUNT), 1);
    DestroyWindow(edit);
    codes.clear();
    Make(Line, TEXT("a\r\nb"));
    EXPECT_EQ(Send(EM_GETLINECOUNT), 1);
}

TEST_F(EditControl, LinesOfAHiddenControlAreWrappedToo)
{
    const HWND hidden =
        CreateWindowExW(0, TEXT("EDIT"), std::u16string(60, u'漢').c_str(), WS_CHILD | Box, 10, 20,
                        160, 80, parent.handle, nullptr, nullptr, nullptr);
    const LRESULT lines = SendMessageW(hidden, EM_GETLINECOUNT, 0, 0);
    ShowWindow(hidden, SW_SHOW);
    Pump(20);
    EXPECT_GE(lines, 5);
    EXPECT_EQ(SendMessageW(hidden, EM_GETLINECOUNT, 0, 0), lines);
    DestroyWindow(hidden);
}

TEST_F(EditControl, TheTextShowsInBothForms)
{
    for (const UINT style : {Line, Box, Box | ES_READONLY}) {
        codes.clear();
        Make(style);
        EXPECT_EQ(Colors(), 1u);
        SetWindowTextW(edit, TEXT("説明 description"));
        EXPECT_GT(Colors(), 2u);
        SetWindowTextW(edit, TEXT(""));
        EXPECT_EQ(Colors(), 1u);
        DestroyWindow(edit);
    }
}

TEST_F(EditControl, ALongTextShowsFromItsFirstLine)
{
    // Where the first line has signs and all others are empty, only the beginning shows any.
    std::u16string text = u"first";
    for (int i = 0; i < 40; ++i)
        text += u"\r\n";
    Make(Box | ES_READONLY);
    SetWindowTextW(edit, text.c_str());
    EXPECT_GT(Colors(), 2u);
}

TEST_F(EditControl, TheFocusIsToldBothWays)
{
    Make(Line);
    const HWND other = CreateWindowExW(0, TEXT("BUTTON"), TEXT("b"), WS_CHILD | WS_VISIBLE, 300, 20,
                                       50, 20, parent.handle, nullptr, nullptr, nullptr);
    SetFocus(edit);
    Pump(20);
    EXPECT_EQ(codes, std::vector<int>{EN_SETFOCUS});
    SetFocus(other);
    EXPECT_EQ(codes, (std::vector<int>{EN_SETFOCUS, EN_KILLFOCUS}));
}

TEST_F(EditControl, APressPutsTheCaretUnderThePointer)
{
    for (const UINT style : {Line, Box}) {
        codes.clear();
        Make(style, TEXT("0123456789"), 200, 24);
        RECT place{};
        GetWindowRect(edit, &place);
        ClickScreen(place.left + 120, place.top + 10);
        EXPECT_EQ(Selection(), (Range{10, 10}));
        EXPECT_EQ(GetFocus(), edit);
        ClickScreen(place.left + 6, place.top + 10);
        EXPECT_LE(Selection().second, 1u);
        DragScreen(place.left + 6, place.top + 10, place.left + 120, place.top + 10);
        EXPECT_EQ(Selection().second, 10u);
        EXPECT_LE(Selection().first, 1u);
        DragScreen(place.left + 20, place.top + 10, place.left + 120, place.top + 10);
        EXPECT_EQ(Text(), u"0123456789") << "a selection is not dragged about";
        DestroyWindow(edit);
    }
}

TEST_F(EditControl, TheRightButtonOpensNothing)
{
    for (const UINT style : {Line, Box}) {
        codes.clear();
        Make(style, TEXT("text"));
        SetFocus(edit);
        RECT place{};
        GetWindowRect(edit, &place);
        RightClickScreen(place.left + 20, place.top + 10);
        RightClickScreen(place.right - 8, place.top + 40); // where the one has its scroll bar
        Pump(20);
        TypeKey('A');
        EXPECT_EQ(Text().size(), 5u) << "the keyboard is still the field's";
        DestroyWindow(edit);
    }
}

TEST_F(EditControl, WhatTheProgramSendsIsTyped)
{
    for (const UINT style : {Line, Box}) {
        codes.clear();
        Make(style);
        for (const WPARAM unit : {0xD83D, 0xDE00, int{'a'}, int{'b'}, VK_BACK})
            Send(WM_CHAR, unit);
        EXPECT_EQ(Text(), u"\xD83D\xDE00"
                          u"a");
        Send(WM_KEYDOWN, VK_HOME);
        EXPECT_EQ(Selection(), (Range{0, 0}));
        Send(WM_KEYDOWN, VK_DELETE);
        EXPECT_EQ(Text(), u"a");
        Send(WM_KEYDOWN, 'B');
        EXPECT_EQ(Text(), u"a") << "a key types by its character";
        DestroyWindow(edit);
    }
}

namespace
{

WNDPROC before = nullptr;

LRESULT CALLBACK InFront(HWND window, UINT message, WPARAM wParam, LPARAM lParam)
{
    if (message == WM_CHAR && wParam == 'x')
        return 0;
    if (message == WM_CHAR && wParam == 'y')
        wParam = 'z';
    if (message == WM_KEYDOWN && wParam == VK_LEFT)
        wParam = VK_HOME;
    return CallWindowProcW(before, window, message, wParam, lParam);
}

} // namespace

TEST_F(EditControl, AProcedureInFrontMaySwallowAndChangeWhatIsTyped)
{
    for (const UINT style : {Line, Box}) {
        codes.clear();
        Make(style);
        SetFocus(edit);
        before = reinterpret_cast<WNDPROC>(
            SetWindowLongPtrW(edit, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(InFront)));
        for (const int key : {'A', 'X', 'Y', 'B'})
            TypeKey(key);
        EXPECT_EQ(Text(), u"azb");
        TypeKey(VK_LEFT);
        EXPECT_EQ(Selection(), (Range{0, 0}));
        DestroyWindow(edit);
    }
}

TEST_F(EditControl, TheHandlerMaySetTheTextAgain)
{
    Make(Line);
    SetFocus(edit);
    codes.clear();
    handler = [this](int code) {
        if (code == EN_CHANGE)
            SetWindowTextW(edit, TEXT("fixed"));
    };
    TypeKey('A');
    EXPECT_EQ(Text(), u"fixed");
    EXPECT_EQ(codes, (std::vector<int>{EN_CHANGE, EN_CHANGE}));
}

TEST_F(EditControl, TheParentMayEndTheControlInAnyHandler)
{
    for (const UINT style : {Line, Box}) {
        for (const int way : {0, 1, 2, 3}) {
            SCOPED_TRACE(way);
            handler = nullptr;
            codes.clear();
            Make(style, TEXT("text"));
            SetFocus(edit);
            handler = [this](int) { DestroyWindow(edit); };
            if (way == 0)
                TypeKey('A');
            else if (way == 1)
                SetWindowTextW(edit, TEXT("other"));
            else if (way == 2)
                CommitText(u"字");
            else
                Replace(TEXT("r"));
            EXPECT_FALSE(IsWindow(edit));
            Pump(20);
        }
    }
    EXPECT_EQ(Send(EM_GETSEL), 0) << "a stale handle";
}

namespace
{

INT_PTR CALLBACK DialogProcedure(HWND, UINT message, WPARAM, LPARAM)
{
    return message == WM_INITDIALOG;
}

} // namespace

TEST_F(EditControl, TemplatesMakeEditFieldsAndListsByNumberAndByName)
{
    const HWND dialog = CreateDialogIndirectParamW(ControlResources(), DialogResource(202), nullptr,
                                                   DialogProcedure, 0);
    ASSERT_NE(dialog, nullptr);
    ShowWindow(dialog, SW_SHOW);
    Pump(20);
    WCHAR name[32];
    for (const int id : {1083, 1002, 1003}) {
        GetClassNameW(GetDlgItem(dialog, id), name, 32);
        EXPECT_EQ(std::u16string(name), u"EDIT") << id;
    }
    GetClassNameW(GetDlgItem(dialog, 1081), name, 32);
    EXPECT_EQ(std::u16string(name), u"SysListView32");
    EXPECT_EQ(ControlText(dialog, 1002), u"name");
    SetFocus(GetDlgItem(dialog, 1003));
    for (const int key : {'1', 'A', '2'})
        TypeKey(key);
    EXPECT_EQ(ControlText(dialog, 1003), u"12");
    TypeKey(VK_TAB);
    EXPECT_EQ(GetDlgCtrlID(GetFocus()), 1081) << "Tab goes on to the first control";
    SetDlgItemTextW(dialog, 1083, TEXT("説明\r\nline"));
    EXPECT_EQ(SendDlgItemMessageW(dialog, 1083, EM_GETLINECOUNT, 0, 0), 2);
    SetFocus(GetDlgItem(dialog, 1083));
    TypeKey('A');
    EXPECT_EQ(ControlText(dialog, 1083), u"説明\r\nline");
    DestroyWindow(dialog);
}

TEST_F(EditControl, EnterEndsALineInADialogOnlyWhereSeveralLinesAskedForIt)
{
    const struct {
        int id;
        bool takes;
    } rows[] = {{1310, true}, {1311, false}, {1312, false}};
    for (const auto& row : rows) {
        OnModal([&](HWND dialog, bool) {
            Pump(20);
            SetFocus(GetDlgItem(dialog, row.id));
            TypeKey('A');
            TypeKey(VK_RETURN);
            EXPECT_EQ(ControlText(dialog, row.id), row.takes ? u"a\r\n" : u"a") << row.id;
            PostMessageW(dialog, WM_COMMAND, 7, 0);
        });
        const INT_PTR result = DialogBoxIndirectParamW(
            ControlResources(), DialogResource(231), parent.handle,
            [](HWND dialog, UINT message, WPARAM wParam, LPARAM) -> INT_PTR {
                if (message == WM_COMMAND && (wParam == IDOK || wParam == 7))
                    EndDialog(dialog, static_cast<INT_PTR>(wParam));
                return message == WM_INITDIALOG;
            },
            0);
        EXPECT_EQ(result, row.takes ? 7 : IDOK) << row.id;
    }
    OnModal({});
}

TEST_F(EditControl, EscAndTabStayTheDialogsWhereEnterIsTheTexts)
{
    OnModal([&](HWND dialog, bool) {
        Pump(20);
        EXPECT_EQ(GetFocus(), GetDlgItem(dialog, 1310));
        TypeKey(VK_TAB);
        EXPECT_EQ(GetFocus(), GetDlgItem(dialog, 1311));
        TypeKey(VK_TAB, MK_SHIFT);
        TypeKey(VK_ESCAPE);
        PostMessageW(dialog, WM_COMMAND, 7, 0);
    });
    EXPECT_EQ(DialogBoxIndirectParamW(
                  ControlResources(), DialogResource(231), parent.handle,
                  [](HWND dialog, UINT message, WPARAM wParam, LPARAM) -> INT_PTR {
                      if (message == WM_COMMAND && (wParam == IDCANCEL || wParam == 7))
                          EndDialog(dialog, static_cast<INT_PTR>(wParam));
                      return message == WM_INITDIALOG;
                  },
                  0),
              IDCANCEL);
    OnModal({});
}
