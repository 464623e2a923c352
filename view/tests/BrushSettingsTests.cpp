// The brush settings over the real controls: what they show, what they give the brush, the preview
// and what is told when there is no memory for it.

#include "view/BrushSettings.h"

#include "foundation/MemoryGauge.h"
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
    void Set(int bar, LPARAM position) const
    {
        SendMessageW(Control(bar), TBM_SETPOS, TRUE, position);
    }
    LRESULT Ask(int bar, UINT message) const { return SendMessageW(Control(bar), message, 0, 0); }
    LRESULT Position(int bar) const { return Ask(bar, TBM_GETPOS); }
    void CloseWith(WPARAM id) const { PostMessageW(window, WM_COMMAND, id, 0); }
    bool PreviewIsWhite() const
    {
        for (const uint32_t pixel : WindowPixels(Control(1079)).pixels)
            if (pixel != 0xFFFFFF)
                return false;
        return true;
    }
};

class BrushSettingsTest : public Windows
{
protected:
    BrushSettingsTest() { EXPECT_EQ(brush.Create(12, 200, 3), Done); }
    ~BrushSettingsTest() override
    {
        Reset();
        MemoryGauge::Sample();
    }

    i32 Ask(const std::function<void(const Dialog&)>& script)
    {
        OnModal([this, script](HWND window, bool box) {
            if (box) {
                boxes.push_back(BoxText(window));
                captions.push_back(BoxCaption(window));
                PostMessageW(window, WM_COMMAND, IDOK, 0);
                return;
            }
            script(Dialog{window});
        });
        const i32 result = ShowBrushSettings(owner, instance, &brush);
        OnModal({});
        return result;
    }
    BrushInfo Info() const
    {
        BrushInfo info = {};
        info.size = sizeof info;
        (void)brush.GetInfo(&info);
        return info;
    }
    void ExpectInfo(u32 radius, u32 strength, u32 diffusion) const
    {
        EXPECT_EQ(Info().radius, radius);
        EXPECT_EQ(Info().strength, strength);
        EXPECT_EQ(Info().diffusion, diffusion);
    }
    void ExpectWarning(LANGID language, const Text& text, const Text& caption);

    Brush brush;
    std::vector<Text> boxes;
    std::vector<Text> captions;
};

} // namespace

TEST_F(BrushSettingsTest, TheTrackbarsStandWhereTheBrushIs)
{
    Ask([](const Dialog& dialog) {
        EXPECT_EQ(dialog.Position(1054), 12);
        EXPECT_EQ(dialog.Position(1053), 200);
        EXPECT_EQ(dialog.Position(1055), 3);
        const int highest[] = {256, 100, 256};
        for (const int bar : {1053, 1054, 1055}) {
            EXPECT_EQ(dialog.Ask(bar, TBM_GETRANGEMIN), 1);
            EXPECT_EQ(dialog.Ask(bar, TBM_GETRANGEMAX), highest[bar - 1053]);
            const RECT place = PlaceOf(dialog.Control(bar));
            EXPECT_GE(place.right - place.left, 256 + 14) << "a pixel for each value";
            EXPECT_GE(place.bottom - place.top, 20);
        }
        dialog.CloseWith(2);
    });
}

TEST_F(BrushSettingsTest, EachLanguageHasItsDialog)
{
    const auto caption = [this](LANGID language) {
        SetLanguage(language);
        Text text;
        Ask([&text](const Dialog& dialog) {
            WCHAR title[40] = {};
            GetWindowTextW(dialog.window, title, 40);
            text = title;
            dialog.CloseWith(2);
        });
        return text;
    };
    EXPECT_EQ(caption(1033), u"Brush");
    EXPECT_EQ(caption(1041), u"ブラシ");
}

TEST_F(BrushSettingsTest, OkGivesTheBrushTheTrackbarsValues)
{
    EXPECT_EQ(Ask([](const Dialog& dialog) {
                  dialog.Set(1054, 100);
                  dialog.Set(1053, 1);
                  dialog.Set(1055, 256);
                  ClickControl(dialog.window, 1);
              }),
              Done);
    ExpectInfo(100, 1, 256);
}

TEST_F(BrushSettingsTest, GivingUpLeavesTheBrush)
{
    EXPECT_EQ(Ask([](const Dialog& dialog) {
                  dialog.Set(1054, 100);
                  ClickControl(dialog.window, 2);
              }),
              NothingDone);
    ExpectInfo(12, 200, 3);
}

TEST_F(BrushSettingsTest, TheKeysMoveTakeAndGiveUp)
{
    EXPECT_EQ(Ask([](const Dialog& dialog) {
                  Pump(30);
                  EXPECT_EQ(GetFocus(), dialog.Control(1054));
                  TypeKey(VK_RIGHT);
                  TypeKey(VK_TAB);
                  EXPECT_EQ(GetFocus(), dialog.Control(1053));
                  TypeKey(VK_LEFT);
                  TypeKey(VK_TAB);
                  TypeKey(VK_END);
                  TypeKey(VK_TAB);
                  EXPECT_EQ(GetFocus(), dialog.Control(1)) << "the hidden button is passed over";
                  TypeKey(VK_RETURN);
              }),
              Done);
    ExpectInfo(13, 199, 256);
    EXPECT_EQ(Ask([](const Dialog&) {
                  Pump(30);
                  TypeKey(VK_HOME);
                  TypeKey(VK_ESCAPE);
              }),
              NothingDone);
    ExpectInfo(13, 199, 256);
}

TEST_F(BrushSettingsTest, RedoIsHiddenAndPutsTheKeptValuesBackWhereItsCommandArrives)
{
    EXPECT_EQ(Ask([](const Dialog& dialog) {
                  EXPECT_NE(dialog.Control(3), nullptr);
                  EXPECT_FALSE(IsWindowVisible(dialog.Control(3)));
                  EXPECT_EQ(ControlText(dialog.window, 3), u"REDO");
                  dialog.Set(1054, 50);
                  dialog.Set(1053, 50);
                  dialog.Set(1055, 50);
                  SendMessageW(dialog.window, WM_COMMAND, 3, 0);
                  EXPECT_EQ(dialog.Position(1054), 12);
                  EXPECT_EQ(dialog.Position(1053), 200);
                  EXPECT_EQ(dialog.Position(1055), 3);
                  EXPECT_TRUE(IsWindowVisible(dialog.window));
                  dialog.CloseWith(2);
              }),
              NothingDone);
}

TEST_F(BrushSettingsTest, ThePreviewIsWhiteAtOnceAndAgainEachSecond)
{
    Ask([](const Dialog& dialog) {
        EXPECT_TRUE(PumpUntil([&] { return dialog.PreviewIsWhite(); }, 400)) << "the posted one";
        InvalidateRect(dialog.Control(1079), nullptr, TRUE);
        Pump(20);
        EXPECT_FALSE(dialog.PreviewIsWhite());
        EXPECT_TRUE(PumpUntil([&] { return dialog.PreviewIsWhite(); }, 1500)) << "the timer's";
        dialog.Set(1054, 90);
        Pump(1100);
        EXPECT_TRUE(dialog.PreviewIsWhite()) << "the brush itself is never drawn";
        dialog.CloseWith(2);
    });
}

TEST_F(BrushSettingsTest, AfterTheEndNothingIsDoneAgain)
{
    EXPECT_EQ(Ask([](const Dialog& dialog) {
                  SendMessageW(dialog.window, WM_COMMAND, 2, 0);
                  SendMessageW(dialog.window, WM_TIMER, 10, 0);
                  EXPECT_FALSE(KillTimer(dialog.window, 10)) << "it is gone already";
              }),
              NothingDone);
    ExpectInfo(12, 200, 3);
}

void BrushSettingsTest::ExpectWarning(LANGID language, const Text& text, const Text& caption)
{
    SetLanguage(language);
    SetFreeMemory(1000);
    MemoryGauge::Sample();
    EXPECT_EQ(Ask([](const Dialog& dialog) {
                  Pump(50);
                  EXPECT_FALSE(dialog.PreviewIsWhite());
                  EXPECT_EQ(dialog.Position(1054), 12) << "it goes on without a preview";
                  SetFreeMemory(100u << 20);
                  MemoryGauge::Sample();
                  dialog.Set(1054, 20);
                  dialog.CloseWith(1);
              }),
              Done);
    EXPECT_EQ(boxes, std::vector<Text>{text});
    EXPECT_EQ(captions, std::vector<Text>{caption});
    ExpectInfo(20, 200, 3);
}

TEST_F(BrushSettingsTest, WithoutMemoryForThePreviewThePersonIsToldAndItGoesOn)
{
    ExpectWarning(1033, u"Not enough memory to allocate for tbe brush-view", u"WARNING");
}

TEST_F(BrushSettingsTest, WithoutMemoryForThePreviewThePersonIsToldInJapanese)
{
    ExpectWarning(1041, u"ブラシビューのためのメモリが確保できませんでした。", u"警告");
}

TEST_F(BrushSettingsTest, AnyShortageOfMemoryIsSurvivedAndLeavesNothing)
{
    unsigned warnings = 0;
    unsigned taken = 0;
    ForEveryFault(FaultKind::Allocation, [&] {
        boxes.clear();
        taken += Ask([](const Dialog& dialog) {
                     SendMessageW(dialog.window, WM_TIMER, 10, 0);
                     dialog.CloseWith(1);
                 }) == Done;
        warnings += !boxes.empty();
        for (const Text& text : boxes)
            EXPECT_EQ(text, u"Not enough memory to allocate for tbe brush-view");
        brush.Destroy(); // a mask may be there or not
    });
    EXPECT_GT(warnings, 3u);
    EXPECT_GT(taken, warnings);
}

TEST_F(BrushSettingsTest, NothingOpensWithoutABrushOrItsTemplate)
{
    EXPECT_EQ(ShowBrushSettings(owner, instance, nullptr), BadArgument);
    const HMODULE other = LoadLibraryW(TEXT("ceshell.dll"));
    EXPECT_EQ(ShowBrushSettings(owner, other, &brush), Failed);
    FreeLibrary(other);
    ExpectInfo(12, 200, 3);
}

TEST_F(BrushSettingsTest, AnOwnerThatGoesEndsIt)
{
    EXPECT_LT(Ask([this](const Dialog&) { DestroyWindow(owner); }), Done);
    ExpectInfo(12, 200, 3);
}
