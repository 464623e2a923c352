// The main road inside one process: a real file, the bundled plugins, the device screen's pixels.

#include "resources/Ids.h"
#include "tests/support/Program.h"
#include "tests/support/TestPicture.h"

#include <gtest/gtest.h>

#include "platform/testing/core/TestPaths.h"

using namespace tavrix::testing;

namespace
{

/// Counts pixels of the view that are not what the formula says; the picture's top left stands at
/// (left, top) of the screen, black is around it.
int WrongPixels(MainFrame& frame, int width, int height, int left, int top)
{
    const Picture screen = ScreenPixels();
    int wrong = 0;
    for (int y = static_cast<int>(frame.clientOriginY); y < screen.height; ++y)
        for (int x = 0; x < screen.width; ++x) {
            const bool inside = x >= left && x < left + width && y >= top && y < top + height;
            const uint32_t expected = inside ? TestColor(x - left, y - top) : 0;
            if (screen.At(x, y) != expected) {
                if (wrong++ < 3)
                    ADD_FAILURE() << "at " << x << ", " << y << std::hex << " expected " << expected
                                  << " got " << screen.At(x, y);
            }
        }
    return wrong;
}

/// The view of a large picture whose pixel (right, down) is meant to stand at the view's top left;
/// a start before the picture shows black.
void ExpectScrolled(MainFrame& frame, int right, int down)
{
    const Picture screen = ScreenPixels();
    const int bar = static_cast<int>(frame.clientOriginY);
    for (int y = bar; y < screen.height; ++y)
        for (int x = 0; x < screen.width; ++x) {
            const int column = x + right;
            const int row = y - bar + down;
            const uint32_t expected = column < 0 || row < 0 ? 0 : TestColor(column, row);
            ASSERT_EQ(screen.At(x, y), expected) << x << ", " << y;
        }
}

} // namespace

TEST(PictureOnScreen, ASmallPictureLiesCentredAtFullSize)
{
    InstallBundledPlugins();
    HideToolWindows();
    RunProgramOn(WriteTestPng(100, 80), [](MainFrame& frame) {
        const int bar = static_cast<int>(frame.clientOriginY);
        const int viewHeight = 480 - bar - 1;
        EXPECT_EQ(frame.zoom, 1.0);
        EXPECT_EQ(WrongPixels(frame, 100, 80, (640 - 100) / 2, bar + (viewHeight - 80) / 2), 0);
    });
}

TEST(PictureOnScreen, APictureLargerThanTheViewStartsAtItsOwnEdge)
{
    InstallBundledPlugins();
    HideToolWindows();
    RunProgramOn(WriteTestPng(900, 700), [](MainFrame& frame) {
        EXPECT_EQ(WrongPixels(frame, 900, 700, 0, static_cast<int>(frame.clientOriginY)), 0);
    });
}

TEST(PictureOnScreen, EachDirectionIsPlacedForItself)
{
    InstallBundledPlugins();
    HideToolWindows();
    RunProgramOn(WriteTestPng(900, 81), [](MainFrame& frame) {
        const int bar = static_cast<int>(frame.clientOriginY);
        const int viewHeight = 480 - bar - 1;
        EXPECT_EQ(WrongPixels(frame, 900, 81, 0, bar + (viewHeight - 81) / 2), 0);
    });
}

TEST(PictureOnScreen, AtHalfSizeEverySecondPixelShows)
{
    InstallBundledPlugins();
    HideToolWindows();
    RunProgramOn(WriteTestPng(1600, 1200), [](MainFrame& frame) {
        SendMessageW(frame.window, WM_COMMAND, CommandZoom50, 0);
        const Picture screen = ScreenPixels();
        const int bar = static_cast<int>(frame.clientOriginY);
        for (int y = bar; y < 480; y += 5)
            for (int x = 0; x < 640; x += 7)
                ASSERT_EQ(screen.At(x, y), TestColor(x * 2, (y - bar) * 2)) << x << ", " << y;
    });
}

TEST(PictureOnScreen, AtDoubleSizeEveryPixelShowsAsASquare)
{
    InstallBundledPlugins();
    HideToolWindows();
    RunProgramOn(WriteTestPng(800, 600), [](MainFrame& frame) {
        SendMessageW(frame.window, WM_COMMAND, CommandZoom200, 0);
        const Picture screen = ScreenPixels();
        const int bar = static_cast<int>(frame.clientOriginY);
        for (int y = bar; y < 480; y += 5)
            for (int x = 0; x < 640; x += 7)
                ASSERT_EQ(screen.At(x, y), TestColor(x / 2, (y - bar) / 2)) << x << ", " << y;
    });
}

TEST(PictureOnScreen, TheArrowKeysMoveThePicture)
{
    InstallBundledPlugins();
    HideToolWindows();
    RunProgramOn(WriteTestPng(900, 700),
                 {[](MainFrame&) {
                      TypeKey(VK_RIGHT);
                      TypeKey(VK_UP);
                      TypeKey(VK_UP);
                  },
                  [](MainFrame& frame) { ExpectScrolled(frame, -10, 20); }});
}

TEST(PictureOnScreen, ATruncatedFileTellsItAndLeavesAWorkingWindow)
{
    Scope scope;
    SetLanguage(1033);
    InstallBundledPlugins();
    HideToolWindows();
    const std::string whole = WriteTestPng(300, 200);
    const std::string cut = TruncateFile(whole, 1, 2);
    RunProgramOn(cut, [&](MainFrame& frame) {
        ASSERT_EQ(StatusTexts().size(), 1U);
        EXPECT_EQ(StatusTexts()[0],
                  u"Failed to load an image file, might be broken or unknown-format.");
        EXPECT_GE(ProgressDialogTime(), 2000U);
        EXPECT_TRUE(IsWindowEnabled(frame.window));
        // The window goes on: the whole file opens and shows.
        frame.OpenFile(DevicePath(whole).c_str());
        const int bar = static_cast<int>(frame.clientOriginY);
        EXPECT_EQ(WrongPixels(frame, 300, 200, 170, bar + (480 - bar - 1 - 200) / 2), 0);
    });
}

TEST(PictureOnScreen, APictureThatTellsAnAbsurdSizeIsRefused)
{
    Scope scope;
    SetLanguage(1033);
    InstallBundledPlugins();
    HideToolWindows();
    RunProgramOn(tavrix::testing::InSource("/tests/inputs/png/header-65536-wide.png"),
                 [&](MainFrame& frame) {
                     EXPECT_EQ(StatusTexts().size(), 1U);
                     RasterInfo info = {};
                     info.size = sizeof info;
                     frame.image->GetInfo(&info);
                     EXPECT_EQ(info.height, 0U);
                     Pump(50);
                     EXPECT_TRUE(IsWindowVisible(frame.window));
                 });
}
