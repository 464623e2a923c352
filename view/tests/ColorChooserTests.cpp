// The colour chooser over the real controls: what it shows, how it follows the trackbars, and what
// it gives back.

#include "view/ColorChooser.h"

#include "platform/testing/Faults.h"
#include "view/tests/ToolWindowTesting.h"

#include <commctrl.h>

#include <functional>

using namespace toolwindowtest;

namespace
{

using Text = std::u16string;

/// The dialog while it is open.
struct Dialog {
    HWND window;

    HWND Control(int id) const { return GetDlgItem(window, id); }
    Text Of(int id) const { return ControlText(window, id); }
    void Set(int bar, LPARAM position) const
    {
        SendMessageW(Control(bar), TBM_SETPOS, TRUE, position);
    }
    LRESULT Position(int bar) const { return SendMessageW(Control(bar), TBM_GETPOS, 0, 0); }
    /// What the swatch shows, when it shows one colour.
    uint32_t Swatch() const
    {
        const Picture picture = WindowPixels(Control(1037));
        for (const uint32_t pixel : picture.pixels)
            EXPECT_EQ(pixel, picture.pixels.front());
        return picture.pixels.empty() ? 0xFFFFFFFF : picture.pixels.front();
    }
    Text Numbers() const { return Of(1073) + u" " + Of(1074) + u" " + Of(1075); }
    void Command(WPARAM id) const { SendMessageW(window, WM_COMMAND, id, 0); }
    /// Posted, since the script runs inside the dialog's loop.
    void CloseWith(WPARAM id) const { PostMessageW(window, WM_COMMAND, id, 0); }
};

class ColorChooserTest : public Windows
{
protected:
    /// Opens the chooser with red 16, green 32 and blue 48 and runs the script in it.
    i32 Choose(const std::function<void(const Dialog&)>& script)
    {
        OnModal([script](HWND window, bool box) {
            EXPECT_FALSE(box);
            Pump(40);
            script(Dialog{window});
        });
        choice = {};
        choice.owner = owner;
        choice.instance = instance;
        choice.color = 0x302010;
        const i32 result = chooser.Show(&choice);
        OnModal({});
        return result;
    }

    ColorChooser chooser;
    ColorChoice choice = {};
};

} // namespace

TEST(ColorWords, AWordLosesItsAlphaOnTheWayToThePlatformsForm)
{
    EXPECT_EQ(ColorRefOfWord(0x11223344), 0x332211u);
    EXPECT_EQ(ColorRefOfWord(0xFF0000FF), 0x0000FFu);
    EXPECT_EQ(ColorRefOfWord(0x00FF00FF), 0x00FF00u);
    EXPECT_EQ(ColorRefOfWord(0x0000FFFF), 0xFF0000u);
    EXPECT_EQ(ColorRefOfWord(0x000000FF), 0u);
    EXPECT_EQ(ColorRefOfWord(0xFFFFFFFF), 0xFFFFFFu);
}

TEST(ColorWords, AWordComesBackWithAnAlphaOfNone)
{
    EXPECT_EQ(WordOfColorRef(0x332211), 0x11223300u);
    EXPECT_EQ(WordOfColorRef(0xFFFFFF), 0xFFFFFF00u);
    EXPECT_EQ(WordOfColorRef(0xAB000000), 0u) << "the top byte is no colour";
    EXPECT_EQ(WordOfColorRef(0x0000FF), 0xFF000000u);
}

TEST_F(ColorChooserTest, ItOpensWithTheColourOfTheRecord)
{
    Choose([](const Dialog& dialog) {
        EXPECT_EQ(dialog.Position(1200), 16);
        EXPECT_EQ(dialog.Position(1201), 32);
        EXPECT_EQ(dialog.Position(1202), 48);
        for (const int bar : {1200, 1201, 1202}) {
            EXPECT_EQ(SendMessageW(dialog.Control(bar), TBM_GETRANGEMIN, 0, 0), 0);
            EXPECT_EQ(SendMessageW(dialog.Control(bar), TBM_GETRANGEMAX, 0, 0), 255);
        }
        EXPECT_EQ(dialog.Numbers(), u"16 32 48");
        EXPECT_EQ(dialog.Swatch(), 0x102030u);
        dialog.CloseWith(2);
    });
}

TEST_F(ColorChooserTest, WhatHasNoCodeBehindItIsDisabled)
{
    Choose([](const Dialog& dialog) {
        for (const int id : {1071, 1072, 1073, 1074, 1075})
            EXPECT_FALSE(IsWindowEnabled(dialog.Control(id))) << id;
        for (const int id : {1070, 1, 2, 3, 1200, 1201, 1202})
            EXPECT_TRUE(IsWindowEnabled(dialog.Control(id))) << id;
        for (const int id : {1070, 1071, 1072})
            dialog.Command(static_cast<WPARAM>(id));
        EXPECT_EQ(dialog.Numbers(), u"16 32 48");
        EXPECT_TRUE(IsWindowVisible(dialog.window));
        EXPECT_EQ(dialog.Of(1070), u"RGB");
        EXPECT_EQ(dialog.Of(1071), u"HSB");
        EXPECT_EQ(dialog.Of(1072), u"CMYK");
        EXPECT_EQ(dialog.Of(1), u"OK");
        EXPECT_EQ(dialog.Of(2), u"x");
        EXPECT_EQ(dialog.Of(3), u"Redo");
        dialog.CloseWith(2);
    });
}

TEST_F(ColorChooserTest, EachLanguageHasItsDialog)
{
    const auto caption = [this](LANGID language) {
        SetLanguage(language);
        Text text;
        Choose([&text](const Dialog& dialog) {
            WCHAR title[40] = {};
            GetWindowTextW(dialog.window, title, 40);
            text = title;
            dialog.CloseWith(2);
        });
        return text;
    };
    EXPECT_EQ(caption(1033), u"Color");
    EXPECT_EQ(caption(1041), u"カラー");
}

TEST_F(ColorChooserTest, TheTrackbarsAreLargeEnoughForAFinger)
{
    Choose([](const Dialog& dialog) {
        for (const int bar : {1200, 1201, 1202}) {
            const RECT place = PlaceOf(dialog.Control(bar));
            EXPECT_GE(place.right - place.left, 256 + 14) << "a pixel for each value";
            EXPECT_GE(place.bottom - place.top, 20);
        }
        dialog.CloseWith(2);
    });
}

TEST_F(ColorChooserTest, AKeyShowsThePositionBeforeItUntilItsLift)
{
    Choose([](const Dialog& dialog) {
        SetFocus(dialog.Control(1200));
        HoldKey(VK_RIGHT, true);
        Pump(20);
        EXPECT_EQ(dialog.Position(1200), 17);
        EXPECT_EQ(dialog.Numbers(), u"16 32 48");
        EXPECT_EQ(dialog.Swatch(), 0x102030u);
        HoldKey(VK_RIGHT, false);
        Pump(20);
        EXPECT_EQ(dialog.Numbers(), u"17 32 48");
        EXPECT_EQ(dialog.Swatch(), 0x112030u);
        dialog.CloseWith(2);
    });
}

TEST_F(ColorChooserTest, APressBesideTheThumbShowsThePositionBeforeItUntilItsLift)
{
    Choose([](const Dialog& dialog) {
        const RECT bar = PlaceOf(dialog.Control(1202));
        PressScreen(bar.right - 5, (bar.top + bar.bottom) / 2);
        const LRESULT paged = dialog.Position(1202);
        EXPECT_GT(paged, 48);
        EXPECT_EQ(dialog.Numbers(), u"16 32 48");
        ReleaseScreen(bar.right - 5, (bar.top + bar.bottom) / 2);
        EXPECT_EQ(dialog.Numbers(), u"16 32 " + Wide(std::to_string(paged)));
        EXPECT_EQ(dialog.Swatch(), 0x102000u | static_cast<uint32_t>(paged));
        dialog.CloseWith(2);
    });
}

TEST_F(ColorChooserTest, ADragShowsThePositionBeforeEachMove)
{
    Choose([](const Dialog& dialog) {
        dialog.Set(1201, 0);
        const RECT bar = PlaceOf(dialog.Control(1201));
        const int y = (bar.top + bar.bottom) / 2;
        PressScreen(bar.left + 6, y);
        EXPECT_EQ(dialog.Numbers(), u"16 0 48");
        LRESULT before = 0;
        for (const int x : {60, 130, 200}) {
            MoveScreen(bar.left + x, y);
            EXPECT_GT(dialog.Position(1201), before);
            EXPECT_EQ(dialog.Numbers(), u"16 " + Wide(std::to_string(before)) + u" 48");
            before = dialog.Position(1201);
        }
        MoveScreen(bar.right + 60, y);
        ReleaseScreen(bar.right + 60, y);
        EXPECT_EQ(dialog.Numbers(), u"16 255 48");
        dialog.CloseWith(2);
    });
}

TEST_F(ColorChooserTest, OnlyFiveMessagesToATrackbarAreFollowed)
{
    Choose([](const Dialog& dialog) {
        const struct {
            UINT message;
            WPARAM wParam;
            bool followed;
        } messages[] = {
            {WM_MOUSEMOVE, 0, false},   {WM_MOUSEMOVE, 1, true},
            {WM_MOUSEMOVE, 5, false},   {WM_MOUSEMOVE, 9, false},
            {WM_KEYDOWN, 'Q', true},    {WM_KEYUP, 'Q', true},
            {WM_LBUTTONDOWN, 1, true},  {WM_LBUTTONUP, 0, true},
            {WM_CHAR, 'q', false},      {WM_LBUTTONDBLCLK, 1, false},
            {WM_RBUTTONDOWN, 2, false}, {WM_SYSKEYDOWN, VK_LEFT, false},
        };
        for (const int bar : {1200, 1201, 1202}) {
            for (const auto& entry : messages) {
                dialog.Command(3); // back to the initial colour
                dialog.Set(bar, 200);
                SendMessageW(dialog.Control(bar), entry.message, entry.wParam, MAKELPARAM(3, 3));
                const Text number = dialog.Of(1073 + bar - 1200);
                EXPECT_EQ(number == u"200", entry.followed)
                    << bar << ": " << entry.message << ", " << entry.wParam;
                SendMessageW(dialog.Control(bar), WM_LBUTTONUP, 0, MAKELPARAM(3, 3));
            }
        }
        dialog.CloseWith(2);
    });
}

TEST_F(ColorChooserTest, TheCommandReadsAllThreeTrackbars)
{
    Choose([](const Dialog& dialog) {
        dialog.Set(1200, 255);
        dialog.Set(1201, 0);
        dialog.Set(1202, 7);
        EXPECT_EQ(dialog.Numbers(), u"16 32 48");
        dialog.Command(1200);
        EXPECT_EQ(dialog.Numbers(), u"255 0 7");
        EXPECT_EQ(dialog.Swatch(), 0xFF0007u);
        dialog.CloseWith(2);
    });
}

TEST_F(ColorChooserTest, RedoPutsTheInitialColourBack)
{
    Choose([](const Dialog& dialog) {
        dialog.Set(1200, 200);
        dialog.Command(1200);
        ClickControl(dialog.window, 3);
        Pump(20);
        EXPECT_EQ(dialog.Position(1200), 16);
        EXPECT_EQ(dialog.Numbers(), u"16 32 48");
        EXPECT_EQ(dialog.Swatch(), 0x102030u);
        dialog.CloseWith(2);
    });
}

TEST_F(ColorChooserTest, OkGivesTheTrackbarsColour)
{
    const i32 result = Choose([](const Dialog& dialog) {
        dialog.Set(1200, 0x12);
        dialog.Set(1201, 0x34);
        dialog.Set(1202, 0x56);
        ClickControl(dialog.window, 1);
    });
    EXPECT_EQ(result, Done);
    EXPECT_EQ(choice.color, 0x563412u);
}

TEST_F(ColorChooserTest, GivingUpChangesNothing)
{
    const i32 result = Choose([](const Dialog& dialog) {
        dialog.Set(1200, 0x12);
        ClickControl(dialog.window, 2);
    });
    EXPECT_EQ(result, NothingDone);
    EXPECT_EQ(choice.color, 0x302010u);
}

TEST_F(ColorChooserTest, EnterTakesAndEscapeGivesUpFromATrackbar)
{
    EXPECT_EQ(Choose([](const Dialog& dialog) {
                  EXPECT_EQ(GetFocus(), dialog.Control(1200));
                  dialog.Set(1202, 0);
                  TypeKey(VK_RETURN);
              }),
              Done);
    EXPECT_EQ(choice.color, 0x002010u);
    EXPECT_EQ(Choose([](const Dialog& dialog) {
                  dialog.Set(1202, 0);
                  TypeKey(VK_ESCAPE);
              }),
              NothingDone);
    EXPECT_EQ(choice.color, 0x302010u);
}

TEST_F(ColorChooserTest, TabLeadsThroughTheTrackbarsAndTheButtons)
{
    Choose([](const Dialog& dialog) {
        for (const int id : {1200, 1201, 1202, 1070, 3, 1, 2, 1200}) {
            EXPECT_EQ(GetFocus(), dialog.Control(id)) << id;
            TypeKey(VK_TAB);
        }
        dialog.CloseWith(2);
    });
}

TEST_F(ColorChooserTest, TheTimerBringsTheSwatchBack)
{
    Choose([](const Dialog& dialog) {
        InvalidateRect(dialog.Control(1037), nullptr, TRUE);
        Pump(20);
        EXPECT_NE(dialog.Swatch(), 0x102030u);
        EXPECT_TRUE(PumpUntil([&] { return dialog.Swatch() == 0x102030; }, 700));
        dialog.CloseWith(2);
    });
}

TEST_F(ColorChooserTest, APaintBringsTheSwatchBackAndNothingElse)
{
    Choose([](const Dialog& dialog) {
        dialog.Set(1200, 200);
        InvalidateRect(dialog.Control(1037), nullptr, TRUE);
        SendMessageW(dialog.window, WM_PAINT, 0, 0);
        EXPECT_EQ(dialog.Swatch(), 0x102030u);
        EXPECT_EQ(dialog.Numbers(), u"16 32 48");
        dialog.CloseWith(2);
    });
}

TEST_F(ColorChooserTest, AfterTheEndNothingIsFollowed)
{
    EXPECT_EQ(Choose([this](const Dialog& dialog) {
                  dialog.Command(1);
                  dialog.Set(1200, 99);
                  dialog.Command(1200);
                  dialog.Command(3);
                  dialog.Command(2);
                  SendMessageW(dialog.window, WM_TIMER, 1, 0);
                  SendMessageW(dialog.window, WM_PAINT, 0, 0);
                  EXPECT_FALSE(KillTimer(dialog.window, 1)) << "it is gone already";
                  EXPECT_EQ(choice.color, 0x302010u);
              }),
              Done);
}

TEST_F(ColorChooserTest, ASecondOneNeverOpens)
{
    int dialogs = 0;
    Choose([&](const Dialog& dialog) {
        ++dialogs;
        ColorChoice another = choice;
        EXPECT_EQ(chooser.Show(&another), NothingDone);
        EXPECT_EQ(another.color, 0x302010u);
        dialog.CloseWith(2);
    });
    EXPECT_EQ(dialogs, 1);
    EXPECT_EQ(Choose([&](const Dialog& dialog) {
                  ++dialogs;
                  dialog.CloseWith(1);
              }),
              Done)
        << "after the first one it opens again";
    EXPECT_EQ(dialogs, 2);
}

TEST_F(ColorChooserTest, NothingOpensForNullOrWithoutItsTemplate)
{
    EXPECT_EQ(chooser.Show(nullptr), BadArgument);
    ColorChoice elsewhere = {};
    elsewhere.instance = LoadLibraryW(TEXT("ceshell.dll"));
    elsewhere.color = 5;
    EXPECT_EQ(chooser.Show(&elsewhere), Failed);
    EXPECT_EQ(elsewhere.color, 5u);
    FreeLibrary(elsewhere.instance);
    EXPECT_EQ(Choose([](const Dialog& dialog) { dialog.CloseWith(1); }), Done);
}

TEST_F(ColorChooserTest, AnOwnerThatGoesEndsIt)
{
    EXPECT_LT(Choose([this](const Dialog&) { DestroyWindow(owner); }), Done);
    EXPECT_EQ(choice.color, 0x302010u);
}

TEST_F(ColorChooserTest, AnyShortageOfMemoryIsSurvivedAndLeavesNothing)
{
    unsigned taken = 0;
    ForEveryFault(FaultKind::Allocation, [&] {
        taken += Choose([](const Dialog& dialog) {
                     dialog.Set(1200, 77);
                     dialog.Command(1200);
                     dialog.Command(3);
                     dialog.CloseWith(1);
                 }) == Done;
    });
    EXPECT_GT(taken, 1u);
}
