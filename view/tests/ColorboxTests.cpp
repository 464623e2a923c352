// The colorbox over the real platform: its place, the swatches' colours, picking and the drag.

#include "view/Colorbox.h"

#include "platform/testing/Faults.h"
#include "view/tests/ToolWindowTesting.h"
#include "view/Toolbox.h"

using namespace toolwindowtest;

namespace
{

/// What the next pick does and what the last one was asked.
struct Pick {
    u32 answer = 0;
    u32 chosen = 0;
    int calls = 0;
    HWND owner = nullptr;
    u32* word = nullptr;
} pick;

u32 OnPick(HWND owner, u32* colorWord)
{
    ++pick.calls;
    pick.owner = owner;
    pick.word = colorWord;
    *colorWord = pick.chosen;
    return pick.answer;
}

u32 DestroyAndPick(HWND owner, u32*)
{
    DestroyWindow(owner);
    return 1;
}

class ColorboxTest : public Windows
{
protected:
    ColorboxTest() { pick = {}; }

    void Create(f64 originY = 24)
    {
        colorbox = CreateColorbox(owner, instance, {0, originY, &face, &background, OnPick});
        Pump(60);
    }
    HWND Face() const { return GetDlgItem(colorbox, 1053); }
    HWND Background() const { return GetDlgItem(colorbox, 1052); }

    /// The colour that a brush fills with, as 0xRRGGBB.
    static uint32_t ColorOf(HBRUSH brush)
    {
        BITMAPINFO info = {};
        info.bmiHeader = {sizeof(BITMAPINFOHEADER), 1, 1, 1, 24, 0, 0, 0, 0, 0, 0};
        void* bits = nullptr;
        const HBITMAP bitmap = CreateDIBSection(nullptr, &info, 0, &bits, nullptr, 0);
        const HDC dc = CreateCompatibleDC(nullptr);
        const HGDIOBJ before = SelectObject(dc, bitmap);
        const RECT pixel = {0, 0, 1, 1};
        FillRect(dc, &pixel, brush);
        const auto* bytes = static_cast<const BYTE*>(bits);
        const uint32_t color = uint32_t{bytes[2]} << 16 | uint32_t{bytes[1]} << 8 | bytes[0];
        SelectObject(dc, before);
        DeleteDC(dc);
        DeleteObject(bitmap);
        return color;
    }
    uint32_t Answer(UINT message, HWND control)
    {
        return ColorOf(reinterpret_cast<HBRUSH>(
            SendMessageW(colorbox, message, 0, reinterpret_cast<LPARAM>(control))));
    }

    HWND colorbox = nullptr;
    u32 face = 0x11223344;
    u32 background = 0xA0B0C0FF;
};

} // namespace

TEST_F(ColorboxTest, ItStandsBelowTheToolboxWithTheSameLeftEdgeAndShowsItself)
{
    const HWND toolbox = CreateToolbox(owner, instance, {0, 24, nullptr});
    SetWindowPos(toolbox, nullptr, 200, 150, 0, 0, SWP_NOSIZE | SWP_NOZORDER);
    Create();
    ExpectCorner(colorbox, 200, 181);
    EXPECT_TRUE(IsWindowVisible(colorbox));
    EXPECT_EQ(FindWindowW(nullptr, TEXT("Tavrix Colorbox")), colorbox);
    EXPECT_EQ(PlaceOf(colorbox).right - PlaceOf(colorbox).left, 44);
    EXPECT_EQ(PlaceOf(colorbox).bottom - PlaceOf(colorbox).top, 36);
}

TEST_F(ColorboxTest, WithoutAToolboxItStandsAtTheRightEdgeBelowTheCommandBar)
{
    Create(31.5);
    ExpectCorner(colorbox, GetSystemMetrics(SM_CXSCREEN) - 44, 31);
}

TEST_F(ColorboxTest, TheSwatchesLieSideBySideBelowTheTitleLargeEnoughForAFinger)
{
    Create();
    const RECT window = PlaceOf(colorbox);
    const RECT left = PlaceOf(Face());
    const RECT right = PlaceOf(Background());
    for (const RECT& swatch : {left, right}) {
        EXPECT_GE(swatch.right - swatch.left, 18);
        EXPECT_GE(swatch.bottom - swatch.top, 18);
        EXPECT_GE(swatch.top, window.top + 12);
        EXPECT_LT(swatch.bottom, window.bottom);
    }
    EXPECT_LT(left.right, right.left);
    EXPECT_LT(right.right, window.right);
}

TEST_F(ColorboxTest, EachPixelHasTheColourOfItsWordOrTheDialogs)
{
    Create();
    const Picture picture = WindowPixels(colorbox);
    for (int y = 11; y < 36; ++y)
        for (int x = 0; x < 44; ++x) {
            const bool row = y >= 13 && y < 34;
            uint32_t expected = FaceColor;
            if (row && x >= 2 && x < 21)
                expected = 0x112233;
            else if (row && x >= 23 && x < 42)
                expected = 0xA0B0C0;
            ASSERT_EQ(picture.At(x, y), expected) << x << ", " << y;
        }
}

TEST_F(ColorboxTest, TheMessageHasItReadBothColours)
{
    Create();
    face = 0xFEDCBA00;
    background = 0x00804020;
    Pump(60);
    EXPECT_EQ(MiddleOf(Face()), 0x112233u) << "not before it is told";
    SendMessageW(colorbox, WM_APP, 77, 88); // whatever comes with it
    Pump(40);
    EXPECT_EQ(MiddleOf(Face()), 0xFEDCBAu);
    EXPECT_EQ(MiddleOf(Background()), 0x008040u);
}

TEST_F(ColorboxTest, TheMessageShowsAlsoAfterTheWindowWasHidden)
{
    Create();
    ShowWindow(colorbox, SW_HIDE);
    face = 0x01020300;
    SendMessageW(colorbox, WM_APP, 0, 0);
    Pump(40);
    ShowWindow(colorbox, SW_SHOW);
    Pump(60);
    EXPECT_EQ(MiddleOf(Face()), 0x010203u);
    EXPECT_EQ(MiddleOf(Background()), 0xA0B0C0u);
}

TEST_F(ColorboxTest, AClickOnASwatchPicksItsColour)
{
    Create();
    pick.answer = 1;
    pick.chosen = 0x99887700;
    ClickControl(colorbox, 1053);
    Pump(40);
    EXPECT_EQ(pick.calls, 1);
    EXPECT_EQ(pick.word, &face);
    EXPECT_EQ(pick.owner, colorbox);
    EXPECT_EQ(MiddleOf(Face()), 0x998877u);
    EXPECT_EQ(MiddleOf(Background()), 0xA0B0C0u);

    pick.chosen = 0x01020300;
    ClickControl(colorbox, 1052);
    Pump(40);
    EXPECT_EQ(pick.calls, 2);
    EXPECT_EQ(pick.word, &background);
    EXPECT_EQ(MiddleOf(Face()), 0x998877u);
    EXPECT_EQ(MiddleOf(Background()), 0x010203u);
}

TEST_F(ColorboxTest, APickOfNothingLeavesTheSwatchAsItWas)
{
    Create();
    pick.answer = 0;
    pick.chosen = 0x99887700;
    ClickControl(colorbox, 1053);
    Pump(40);
    EXPECT_EQ(pick.calls, 1);
    EXPECT_EQ(MiddleOf(Face()), 0x112233u);
}

TEST_F(ColorboxTest, OtherCommandsPickNothing)
{
    Create();
    for (const WPARAM id : {WPARAM{0}, WPARAM{1}, WPARAM{2}, WPARAM{1048}, WPARAM{1054}})
        SendMessageW(colorbox, WM_COMMAND, id, 0);
    EXPECT_EQ(pick.calls, 0);
    EXPECT_TRUE(IsWindow(colorbox));
}

TEST_F(ColorboxTest, AWindowThatGoesWhileAColourIsPickedIsSurvived)
{
    colorbox = CreateColorbox(owner, instance, {0, 24, &face, &background, DestroyAndPick});
    SendMessageW(colorbox, WM_COMMAND, 1053, 0);
    EXPECT_FALSE(IsWindow(colorbox));
}

TEST_F(ColorboxTest, TheBackgroundsBrushIsOneOfItsOwn)
{
    Create();
    EXPECT_EQ(Answer(WM_CTLCOLORDLG, colorbox), FaceColor);
}

TEST_F(ColorboxTest, AStaticsQuestionIsAPaintAndTheSwatchsBrush)
{
    Create();
    static int paints;
    static WNDPROC before;
    paints = 0;
    before = reinterpret_cast<WNDPROC>(SetWindowLongPtrW(
        colorbox, GWLP_WNDPROC,
        reinterpret_cast<LONG_PTR>(+[](HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
            paints += message == WM_PAINT;
            return CallWindowProcW(before, window, message, wParam, lParam);
        })));
    EXPECT_EQ(Answer(WM_CTLCOLORSTATIC, Face()), 0x112233u);
    EXPECT_EQ(paints, 1) << "sent, not posted";
    EXPECT_EQ(Answer(WM_CTLCOLORSTATIC, Background()), 0xA0B0C0u);
    const auto title = reinterpret_cast<LPARAM>(GetDlgItem(colorbox, 1048));
    EXPECT_EQ(SendMessageW(colorbox, WM_CTLCOLORSTATIC, 0, title), 0);
    EXPECT_EQ(SendMessageW(colorbox, WM_CTLCOLORSTATIC, 0, 0), 0);
    EXPECT_EQ(paints, 4);
    Pump(100);
    paints = 0;
    Pump(200);
    EXPECT_EQ(paints, 0) << "at rest it paints nothing";
}

TEST_F(ColorboxTest, RowElevenDragsAndRowTwelveDoesNot)
{
    Create();
    SetWindowPos(colorbox, nullptr, 300, 200, 0, 0, SWP_NOSIZE | SWP_NOZORDER);
    Pump(30);
    PressScreen(301, 212);
    MoveScreen(341, 252);
    Pump(20);
    EXPECT_EQ(GetCapture(), nullptr);
    ReleaseScreen(341, 252);
    Pump(20);
    ExpectCorner(colorbox, 300, 200);

    PressScreen(301, 211);
    MoveScreen(341, 252);
    Pump(20);
    EXPECT_EQ(GetCapture(), colorbox);
    ExpectCorner(colorbox, 340, 241);
    ReleaseScreen(-50, 700);
    Pump(20);
    ExpectCorner(colorbox, -51, 689);
    EXPECT_EQ(GetCapture(), nullptr);
    EXPECT_EQ(pick.calls, 0);
}

TEST_F(ColorboxTest, WithoutColoursAndCallbackItShowsItsGroundAndSurvivesClicks)
{
    colorbox = CreateColorbox(owner, instance, {0, 24, nullptr, nullptr, nullptr});
    Pump(40);
    SendMessageW(colorbox, WM_APP, 0, 0);
    ClickControl(colorbox, 1052);
    ClickControl(colorbox, 1053);
    Pump(40);
    EXPECT_EQ(WindowPixels(colorbox).At(0, 35), FaceColor);
    DestroyWindow(colorbox);
    colorbox = CreateColorbox(owner, instance, {0, 24, &face, &background, nullptr});
    ClickControl(colorbox, 1052);
    EXPECT_TRUE(IsWindow(colorbox));
}

TEST_F(ColorboxTest, WithoutItsTemplateThereIsNoWindow)
{
    const HMODULE other = LoadLibraryW(TEXT("ceshell.dll"));
    ASSERT_NE(other, nullptr);
    EXPECT_EQ(CreateColorbox(owner, other, {0, 0, &face, &background, OnPick}), nullptr);
    FreeLibrary(other);
}

TEST_F(ColorboxTest, AnyShortageOfMemoryIsSurvivedAndLeavesNothing)
{
    unsigned made = 0;
    pick.answer = 1;
    ForEveryFault(FaultKind::Allocation, [&] {
        const HWND window = CreateColorbox(owner, instance, {0, 200, &face, &background, OnPick});
        made += window != nullptr;
        SendMessageW(window, WM_APP, 0, 0);
        SendMessageW(window, WM_COMMAND, 1052, 0);
        SendMessageW(window, WM_PAINT, 0, 0);
        DestroyWindow(window);
        Pump(5);
    });
    EXPECT_GT(made, 1u) << "most of what can fail leaves the window working";
}
