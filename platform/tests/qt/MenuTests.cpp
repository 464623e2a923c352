#include "platform/testing/WindowTesting.h"
#include "platform/tests/qt/ControlResources.h"

#include <gtest/gtest.h>
#include <handheld.h>

#include <vector>

using namespace tavrix::testing;

namespace
{

struct Seen {
    std::vector<WPARAM> commands;
    std::vector<HMENU> popups;
    unsigned closes = 0;
} seen;

LRESULT CALLBACK Procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam)
{
    switch (message) {
    case WM_COMMAND:
        seen.commands.push_back(wParam);
        return 0;
    case WM_INITMENUPOPUP:
        seen.popups.push_back(reinterpret_cast<HMENU>(wParam));
        return 0;
    case WM_CLOSE:
        ++seen.closes;
        return 0;
    default:
        return DefWindowProcW(window, message, wParam, lParam);
    }
}

/// A main window with the English menu in a command bar.
class CommandBars : public ::testing::Test
{
protected:
    CommandBars()
    {
        seen = {};
        WNDCLASSW record{};
        record.lpfnWndProc = Procedure;
        record.lpszClassName = TEXT("MenuTestMain");
        RegisterClassW(&record);
        main = CreateWindowExW(0, TEXT("MenuTestMain"), TEXT("main"), 0, 0, 0, 640, 480, nullptr,
                               nullptr, nullptr, nullptr);
        bar = CommandBar_Create(ControlResources(), main, 1);
        EXPECT_TRUE(CommandBar_InsertMenubar(bar, ControlResources(), 110, 0));
        EXPECT_TRUE(CommandBar_AddAdornments(bar, 0, 0));
        menu = CommandBar_GetMenu(bar, 0);
        ShowWindow(main, SW_SHOW);
        Pump(30);
    }
    ~CommandBars() override { DestroyWindow(main); }

    Scope scope;
    HWND main = nullptr;
    HWND bar = nullptr;
    HMENU menu = nullptr;
};

} // namespace

TEST(Menus, PopupsAreFoundByPositionAndOnlyPopups)
{
    const HMENU menu = LoadMenuW(ControlResources(), MAKEINTRESOURCEW(110));
    ASSERT_NE(menu, nullptr);
    EXPECT_EQ(GetMenuItemCount(menu), 3);
    const HMENU file = GetSubMenu(menu, 0);
    ASSERT_NE(file, nullptr);
    EXPECT_EQ(GetSubMenu(menu, 0), file);
    EXPECT_EQ(GetMenuItemCount(file), 5);
    EXPECT_NE(GetSubMenu(GetSubMenu(file, 2), 1), nullptr);
    EXPECT_EQ(GetSubMenu(file, 0), nullptr);
    EXPECT_EQ(GetSubMenu(file, 5), nullptr);
    EXPECT_EQ(GetSubMenu(file, -1), nullptr);
    EXPECT_EQ(GetMenuItemID(file, 0), 40017u);
    EXPECT_EQ(GetMenuItemID(file, 1), 0u) << "a separator";
    EXPECT_EQ(GetMenuItemID(file, 2), 0xFFFFFFFFu) << "a popup";
    EXPECT_TRUE(DestroyMenu(menu));
    EXPECT_EQ(GetMenuItemCount(file), -1);
    EXPECT_FALSE(DestroyMenu(menu));
}

TEST(Menus, AMissingMenuIsNull)
{
    EXPECT_EQ(LoadMenuW(ControlResources(), MAKEINTRESOURCEW(999)), nullptr);
}

TEST(Menus, ExtendedMenusLoadAndTheirPopupsHaveIdsOfTheirOwn)
{
    const HMENU menu = LoadMenuW(ControlResources(), MAKEINTRESOURCEW(112));
    ASSERT_NE(menu, nullptr);
    ASSERT_EQ(GetMenuItemCount(menu), 4);
    ASSERT_NE(GetSubMenu(menu, 0), nullptr);
    EXPECT_EQ(GetMenuState(menu, 500, MF_BYCOMMAND), 0x110u) << "a popup with one entry";
    EXPECT_EQ(GetMenuItemID(menu, 0), 0xFFFFFFFFu);
    EXPECT_EQ(GetMenuState(menu, 501, MF_BYCOMMAND), MF_GRAYED);
    EXPECT_EQ(GetMenuState(menu, 2, MF_BYPOSITION), MF_SEPARATOR);
    EXPECT_EQ(GetMenuState(menu, 502, MF_BYCOMMAND), MF_CHECKED);
    DestroyMenu(menu);
}

TEST(Menus, APlaceholderGivesWayToEntriesThatAreAppended)
{
    const HMENU menu = LoadMenuW(ControlResources(), MAKEINTRESOURCEW(110));
    const HMENU openAs = GetSubMenu(GetSubMenu(GetSubMenu(menu, 0), 2), 1);
    EXPECT_TRUE(AppendMenuW(openAs, MF_STRING, 41000, TEXT("BMP")));
    EXPECT_TRUE(AppendMenuW(openAs, MF_STRING | MF_GRAYED, 41001, TEXT("画像")));
    EXPECT_TRUE(DeleteMenu(openAs, 40014, MF_BYCOMMAND));
    EXPECT_EQ(GetMenuItemCount(openAs), 2);
    EXPECT_EQ(GetMenuItemID(openAs, 0), 41000u);
    EXPECT_EQ(GetMenuState(openAs, 1, MF_BYPOSITION), MF_GRAYED);
    EXPECT_EQ(GetMenuState(menu, 40014, MF_BYCOMMAND), MF_GRAYED) << "the one of Save As stays";
    EXPECT_FALSE(DeleteMenu(openAs, 40014, MF_BYCOMMAND));
    WCHAR text[8] = {};
    EXPECT_EQ(GetMenuStringW(menu, 41001, text, 8, MF_BYCOMMAND), 2);
    EXPECT_EQ(std::u16string(text), u"画像");
    EXPECT_EQ(GetMenuStringW(menu, 41000, text, 3, MF_BYCOMMAND), 2);
    EXPECT_EQ(std::u16string(text), u"BM");
    EXPECT_EQ(GetMenuStringW(menu, 4711, text, 8, MF_BYCOMMAND), 0);
    EXPECT_EQ(text[0], 0);
    DestroyMenu(menu);
}

TEST(Menus, CallsWithoutAMenuFailAsTold)
{
    EXPECT_EQ(EnableMenuItem(nullptr, 1, MF_BYCOMMAND), -1);
    EXPECT_EQ(CheckMenuItem(nullptr, 1, MF_BYCOMMAND), 0xFFFFFFFFu);
    EXPECT_EQ(GetMenuState(nullptr, 1, MF_BYCOMMAND), 0xFFFFFFFFu);
    EXPECT_FALSE(AppendMenuW(nullptr, MF_STRING, 1, TEXT("x")));
    EXPECT_FALSE(DeleteMenu(nullptr, 1, MF_BYCOMMAND));
    EXPECT_EQ(GetSubMenu(nullptr, 0), nullptr);
}

TEST(Menus, AMenuCannotHangInItself)
{
    const HMENU menu = LoadMenuW(ControlResources(), MAKEINTRESOURCEW(110));
    const HMENU file = GetSubMenu(menu, 0);
    EXPECT_FALSE(AppendMenuW(file, MF_POPUP, reinterpret_cast<UINT_PTR>(menu), TEXT("loop")));
    EXPECT_FALSE(AppendMenuW(file, MF_POPUP, reinterpret_cast<UINT_PTR>(file), TEXT("loop")));
    DestroyMenu(menu);
}

TEST_F(CommandBars, SpansTheParentsTopAndKnowsItsMenu)
{
    RECT place{};
    GetWindowRect(bar, &place);
    EXPECT_EQ(place.left, 0);
    EXPECT_EQ(place.top, 0);
    EXPECT_EQ(place.right, 640);
    EXPECT_EQ(place.bottom, CommandBar_Height(bar));
    EXPECT_GE(CommandBar_Height(bar), 18);
    EXPECT_LE(CommandBar_Height(bar), 30);
    EXPECT_EQ(GetMenuItemCount(menu), 3);
    EXPECT_EQ(CommandBar_GetMenu(bar, 1), nullptr);
    EXPECT_EQ(GetDlgItem(main, 1), bar);
    EXPECT_EQ(CommandBar_Height(main), 0) << "no command bar";
}

TEST_F(CommandBars, TheCloseButtonPostsCloseToTheParent)
{
    ClickScreen(640 - CommandBar_Height(bar) / 2, CommandBar_Height(bar) / 2);
    EXPECT_TRUE(PumpUntil([] { return seen.closes != 0; }, 2000));
    EXPECT_EQ(seen.closes, 1u);
}

TEST_F(CommandBars, ADisabledOwnerTakesNoCloseAndOpensNoMenu)
{
    EnableWindow(main, FALSE);
    ClickScreen(640 - CommandBar_Height(bar) / 2, CommandBar_Height(bar) / 2);
    ClickScreen(15, CommandBar_Height(bar) / 2);
    Pump(50);
    EXPECT_EQ(seen.closes, 0u);
    EXPECT_TRUE(seen.popups.empty());
}

TEST_F(CommandBars, AnOpenedPopupAsksItsOwnerFirstAndKeysPickAnEntry)
{
    ClickScreen(15, CommandBar_Height(bar) / 2); // "File"
    EXPECT_TRUE(PumpUntil([] { return !seen.popups.empty(); }, 2000));
    EXPECT_EQ(seen.popups, (std::vector<HMENU>{GetSubMenu(menu, 0)}));
    TypeKey(VK_DOWN);
    TypeKey(VK_RETURN);
    EXPECT_TRUE(PumpUntil([] { return !seen.commands.empty(); }, 2000));
    EXPECT_EQ(seen.commands, (std::vector<WPARAM>{40017}));
}

TEST_F(CommandBars, ALetterOfTwoTitlesOpensTheFirstEachTimeOnItsFirstEntry)
{
    const HMENU second = LoadMenuW(ControlResources(), MAKEINTRESOURCEW(112));
    ASSERT_TRUE(AppendMenuW(menu, MF_POPUP, reinterpret_cast<UINT_PTR>(second), TEXT("In&fo")));
    Pump(30);
    for (size_t time = 1; time <= 3; ++time) {
        seen.popups.clear();
        TypeKey('F', 0x20);
        EXPECT_TRUE(PumpUntil([] { return !seen.popups.empty(); }, 2000));
        EXPECT_EQ(seen.popups, (std::vector<HMENU>{GetSubMenu(menu, 0)}));
        TypeKey(VK_RETURN);
        EXPECT_TRUE(PumpUntil([time] { return seen.commands.size() == time; }, 2000));
        EXPECT_EQ(seen.commands.back(), 40017u);
    }
}

TEST_F(CommandBars, AGrayEntryCannotBePickedUntilItIsEnabled)
{
    const auto pickUndo = [this] {
        ClickScreen(15, CommandBar_Height(bar) / 2);
        Pump(30);
        TypeKey(VK_RIGHT); // to "Edit"
        Pump(30);
        TypeKey('U');
        Pump(30);
        TypeKey(VK_ESCAPE);
        TypeKey(VK_ESCAPE);
        Pump(30);
    };
    pickUndo();
    EXPECT_TRUE(seen.commands.empty());
    EXPECT_EQ(EnableMenuItem(menu, 40205, MF_BYCOMMAND | MF_ENABLED), static_cast<BOOL>(MF_GRAYED));
    pickUndo();
    EXPECT_EQ(seen.commands, (std::vector<WPARAM>{40205}));
}

TEST_F(CommandBars, PickingACheckedEntryLeavesItsMark)
{
    ClickScreen(15, CommandBar_Height(bar) / 2);
    Pump(30);
    TypeKey(VK_RIGHT);
    Pump(30);
    TypeKey('C'); // "Color"
    EXPECT_TRUE(PumpUntil([] { return !seen.commands.empty(); }, 2000));
    EXPECT_EQ(seen.commands, (std::vector<WPARAM>{40203}));
    EXPECT_EQ(GetMenuState(menu, 40203, MF_BYCOMMAND), MF_CHECKED);
}

TEST_F(CommandBars, APopupGrayedByPositionDoesNotOpen)
{
    EnableMenuItem(menu, 0, MF_BYPOSITION | MF_GRAYED);
    Pump(30);
    ClickScreen(15, CommandBar_Height(bar) / 2);
    Pump(50);
    EXPECT_TRUE(seen.popups.empty());
    EXPECT_EQ(EnableMenuItem(menu, 0, MF_BYPOSITION | MF_ENABLED), static_cast<BOOL>(MF_GRAYED));
    ClickScreen(15, CommandBar_Height(bar) / 2);
    EXPECT_TRUE(PumpUntil([] { return !seen.popups.empty(); }, 2000));
    TypeKey(VK_ESCAPE);
}

TEST_F(CommandBars, TheMenuGoesWithItsBar)
{
    DestroyWindow(bar);
    EXPECT_EQ(GetMenuItemCount(menu), -1);
    EXPECT_EQ(CommandBar_GetMenu(bar, 0), nullptr);
    EXPECT_FALSE(CommandBar_InsertMenubar(bar, ControlResources(), 110, 0));
    EXPECT_EQ(CommandBar_Create(ControlResources(), nullptr, 1), nullptr);
}
