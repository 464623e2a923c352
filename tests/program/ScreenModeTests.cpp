// What the screen modes show: ordered dither and the four greys, over a real picture on the
// device's screen.

#include "resources/Ids.h"
#include "tests/support/Program.h"
#include "tests/support/TestPicture.h"

#include <gtest/gtest.h>

#include <algorithm>

using namespace tavrix::testing;

namespace
{

/// A byte after the ordered dither at a place of the screen.
uint32_t Dithered(uint32_t value, int x, int y)
{
    const uint32_t thresholds[4][4] = {{7, 3, 6, 2}, {1, 5, 0, 4}, {6, 2, 7, 3}, {0, 4, 1, 5}};
    return std::min(255u, (value + thresholds[y % 4][x % 4]) & ~7u);
}

uint32_t DitheredColor(uint32_t color, int x, int y)
{
    return Dithered(color >> 16 & 255, x, y) << 16 | Dithered(color >> 8 & 255, x, y) << 8 |
           Dithered(color & 255, x, y);
}

void ExpectDithered(MainFrame& frame)
{
    const Picture screen = ScreenPixels();
    const int bar = static_cast<int>(frame.clientOriginY);
    for (int y = bar; y < screen.height; ++y)
        for (int x = 0; x < screen.width; ++x)
            ASSERT_EQ(screen.At(x, y), DitheredColor(TestColor(x, y - bar), x, y))
                << x << ", " << y;
}

} // namespace

TEST(ScreenMode, DitheringLeavesFiveBitsAChannelByThePlaceOnTheScreen)
{
    InstallBundledPlugins();
    HideToolWindows();
    RunProgramOn(WriteTestPng(900, 700), [](MainFrame& frame) {
        SendMessageW(frame.window, WM_COMMAND, CommandDitherOn, 0);
        EXPECT_EQ(frame.dither, 1u);
        ExpectDithered(frame);
        SendMessageW(frame.window, WM_COMMAND, CommandDitherOn, 0);
        const int bar = static_cast<int>(frame.clientOriginY);
        EXPECT_EQ(ScreenPixels().At(5, bar + 7), TestColor(5, 7));
    });
}

TEST(ScreenMode, MonoShowsFourGreysOfTheSameBrightnessAndColorBringsTheColoursBack)
{
    InstallBundledPlugins();
    HideToolWindows();
    RunProgramOn(WriteTestPng(900, 700), [](MainFrame& frame) {
        SendMessageW(frame.window, WM_COMMAND, CommandScreenMono, 0);
        EXPECT_EQ(frame.surface.Depth(), 2u);
        const Picture screen = ScreenPixels();
        const int bar = static_cast<int>(frame.clientOriginY);
        uint64_t shown = 0;
        uint64_t meant = 0;
        uint32_t seen[4] = {};
        for (int y = bar; y < screen.height; ++y)
            for (int x = 0; x < screen.width; ++x) {
                const uint32_t greys[4] = {0x000000, 0x808080, 0xC0C0C0, 0xFFFFFF};
                const auto* grey = std::find(std::begin(greys), std::end(greys), screen.At(x, y));
                ASSERT_NE(grey, std::end(greys)) << std::hex << screen.At(x, y);
                ++seen[grey - greys];
                shown += *grey & 255;
                const uint32_t color = TestColor(x, y - bar);
                meant +=
                    (28 * (color & 255) + 77 * (color >> 16 & 255) + 151 * (color >> 8 & 255)) >> 8;
            }
        for (const uint32_t count : seen)
            EXPECT_GT(count, 1000u);
        const double pixels = screen.width * (screen.height - bar);
        EXPECT_NEAR(static_cast<double>(shown) / pixels, static_cast<double>(meant) / pixels, 1.0);

        SendMessageW(frame.window, WM_COMMAND, CommandScreenColor, 0);
        EXPECT_EQ(frame.surface.Depth(), 24u);
        EXPECT_EQ(ScreenPixels().At(5, bar + 7), TestColor(5, 7));
    });
}
