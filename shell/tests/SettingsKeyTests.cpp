// The program's own settings: what each key's value, its absence and nonsense in its place come to,
// and what stands in the file at the end of a run.

#include "platform/testing/core/TestHome.h"
#include "settings/tests/SettingsText.h"
#include "tests/support/Program.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>

#include "platform/testing/core/TestPaths.h"

using namespace tavrix::testing;

namespace
{

std::string NewFile()
{
    return TestHome() + "/config/tavrix/Configuration Files/Tavrix.ini";
}

std::string OldFile()
{
    return TestHome() + "/data/tavrix/Tavrix.ini";
}

void Write(const std::string& path, const std::u16string& text)
{
    std::filesystem::create_directories(std::filesystem::path(path).parent_path());
    std::ofstream(path, std::ios::binary) << FileOf(text);
}

std::string Read(const std::string& path)
{
    std::ifstream in(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

/// A run with no command line and one plugin, as the program asks for one.
void RunWithPlugin(const Step& step)
{
    InstallPlugin(tavrix::testing::InBuild("/tests/shell-fixtures/quick.dll"));
    RunProgram(u"", step);
}

BrushInfo BrushOf(MainFrame& frame)
{
    BrushInfo info = {};
    info.size = sizeof info;
    EXPECT_EQ(Done, frame.brush->GetInfo(&info));
    return info;
}

bool Saved(const std::u16string& text)
{
    return Read(NewFile()).find(Utf16Bytes(text)) != std::string::npos;
}

} // namespace

TEST(SettingsKeys, TextThatIsNoNumberLeavesEachDefault)
{
    Write(NewFile(), u"[Tavrix]\r\nFaceColor=red\r\nBackgroundColor=-5\r\nShowToolbox=0x0\r\n"
                     u"ShowColorbox=no\r\nWindowAdjusted=1 \r\nEnableUndo=yes\r\n");
    RunWithPlugin([](MainFrame& frame) {
        EXPECT_EQ(0u, frame.faceColor);
        EXPECT_EQ(0xFFFFFFFFu, frame.backgroundColor);
        EXPECT_EQ(1u, frame.showToolbox);
        EXPECT_EQ(1u, frame.showColorbox);
        EXPECT_EQ(40018u, frame.zoomCommand);
        EXPECT_EQ(0u, frame.undoEnabled);
    });
    EXPECT_TRUE(Saved(u"\r\nFaceColor=0\r\n"));
    EXPECT_TRUE(Saved(u"\r\nBackgroundColor=4294967295\r\n"));
    EXPECT_TRUE(Saved(u"\r\nEnableUndo=yes\r\n")) << "never written by the program";
}

TEST(SettingsKeys, KeysWithoutAValueLeaveEachDefault)
{
    Write(NewFile(), u"[Tavrix]\r\nFaceColor=\r\nBackgroundColor=\r\nShowToolbox=\r\n"
                     u"ShowColorbox=\r\nWindowAdjusted=\r\nEnableUndo=\r\n");
    RunWithPlugin([](MainFrame& frame) {
        EXPECT_EQ(0u, frame.faceColor);
        EXPECT_EQ(0xFFFFFFFFu, frame.backgroundColor);
        EXPECT_EQ(1u, frame.showToolbox);
        EXPECT_EQ(1u, frame.showColorbox);
        EXPECT_EQ(40018u, frame.zoomCommand);
        EXPECT_EQ(0u, frame.undoEnabled);
    });
}

TEST(SettingsKeys, NumbersAreUnsignedAndStopAt32Bits)
{
    Write(NewFile(), u"[Tavrix]\r\nFaceColor=4278190335\r\nBackgroundColor=99999999999\r\n"
                     u"ShowToolbox=7\r\nEnableUndo=4294967295\r\n");
    RunWithPlugin([](MainFrame& frame) {
        EXPECT_EQ(0xFF0000FFu, frame.faceColor);
        EXPECT_EQ(0xFFFFFFFFu, frame.backgroundColor);
        EXPECT_EQ(1u, frame.undoEnabled) << "as a truth value";
    });
    EXPECT_TRUE(Saved(u"\r\nFaceColor=4278190335\r\n"));
    EXPECT_TRUE(Saved(u"\r\nBackgroundColor=4294967295\r\n"));
}

TEST(SettingsKeys, UndoIsOffWithoutItsKeyWhichIsNotWritten)
{
    RunWithPlugin([](MainFrame& frame) { EXPECT_EQ(0u, frame.undoEnabled); });
    EXPECT_FALSE(Saved(u"EnableUndo"));
}

TEST(SettingsKeys, ZeroSwitchesUndoOff)
{
    Write(NewFile(), u"[Tavrix]\r\nEnableUndo=0\r\n");
    RunWithPlugin([](MainFrame& frame) { EXPECT_EQ(0u, frame.undoEnabled); });
    EXPECT_TRUE(Saved(u"\r\nEnableUndo=0\r\n"));
}

TEST(SettingsKeys, AnyOtherNumberAdjustsTheWindowAndIsWrittenAsOne)
{
    Write(NewFile(), u"[Tavrix]\r\nWindowAdjusted=2\r\n");
    RunWithPlugin([](MainFrame& frame) { EXPECT_EQ(40020u, frame.zoomCommand); });
    EXPECT_TRUE(Saved(u"\r\nWindowAdjusted=1\r\n"));
}

TEST(SettingsKeys, AFixedZoomIsWrittenAsNotAdjusted)
{
    Write(NewFile(), u"[Tavrix]\r\nWindowAdjusted=1\r\n");
    RunWithPlugin([](MainFrame& frame) { frame.SetZoom(40022); });
    EXPECT_TRUE(Saved(u"\r\nWindowAdjusted=0\r\n"));
}

TEST(SettingsKeys, DitheringAndTheMonochromeScreenComeBack)
{
    Write(NewFile(), u"[Tavrix]\r\nDitherMode=1\r\nScreenMode=1\r\n");
    RunWithPlugin([](MainFrame& frame) {
        EXPECT_EQ(1u, frame.dither);
        EXPECT_EQ(1u, frame.monoScreen);
        EXPECT_EQ(2u, frame.surface.Depth());
    });
    EXPECT_TRUE(Saved(u"\r\nDitherMode=1\r\nScreenMode=1\r\n"));
}

TEST(SettingsKeys, AScreenModeThatIsNoNumberShowsColoursWithoutDithering)
{
    Write(NewFile(), u"[Tavrix]\r\nDitherMode=on\r\nScreenMode=\r\n");
    RunWithPlugin([](MainFrame& frame) {
        EXPECT_EQ(0u, frame.dither);
        EXPECT_EQ(0u, frame.monoScreen);
        EXPECT_EQ(24u, frame.surface.Depth());
    });
}

TEST(SettingsKeys, AFirstRunWritesTheDefaultsInTheirOrder)
{
    RunWithPlugin([](MainFrame&) {});
    const std::string bytes = Read(NewFile());
    EXPECT_EQ(0u, bytes.find(FileOf(u"[Tavrix]\r\nLastCommandLine=\r\nShowToolbox=1\r\n"
                                    u"ShowColorbox=1\r\nFaceColor=0\r\n"
                                    u"BackgroundColor=4294967295\r\nBrushRadius=5\r\n"
                                    u"BrushStrength=256\r\nBrushDiffusion=1\r\n"
                                    u"WindowAdjusted=0\r\nDitherMode=0\r\nScreenMode=0\r\n")));
    EXPECT_FALSE(Saved(u"[Global]"));
}

TEST(SettingsKeys, WhatIsShownIsWrittenAtTheEnd)
{
    RunWithPlugin([](MainFrame& frame) {
        frame.showToolbox = 0;
        frame.showColorbox = 0;
        frame.faceColor = 1;
        frame.backgroundColor = 2;
    });
    EXPECT_TRUE(Saved(u"\r\nShowToolbox=0\r\nShowColorbox=0\r\nFaceColor=1\r\n"
                      u"BackgroundColor=2\r\n"));
}

TEST(SettingsKeys, TheBrushIsMadeByItsThreeKeysAndWrittenBackAsItThenIs)
{
    Write(NewFile(), u"[Tavrix]\r\nBrushRadius=33\r\nBrushStrength=77\r\nBrushDiffusion=9\r\n");
    RunWithPlugin([](MainFrame& frame) {
        const BrushInfo read = BrushOf(frame);
        EXPECT_EQ(33u, read.radius);
        EXPECT_EQ(77u, read.strength);
        EXPECT_EQ(9u, read.diffusion);
        // It paints at once.
        ASSERT_EQ(Done, frame.image->Create(10, 10, 24, nullptr, nullptr));
        EXPECT_EQ(Done, frame.brush->Stroke(frame.image, 0xFFFFFFFF, 5, 5, nullptr));
        u32 color = 0;
        EXPECT_EQ(Done, frame.image->GetPixel(5, 5, &color));
        EXPECT_EQ(0xFEFEFEu, color >> 8) << "255 * 256 parts of 65,536 over black";
        EXPECT_EQ(Done, frame.brush->Create(12, 34, 56));
    });
    EXPECT_TRUE(Saved(u"\r\nBrushRadius=12\r\nBrushStrength=34\r\nBrushDiffusion=56\r\n"));
}

TEST(SettingsKeys, ARadiusOfAHundredIsTheLargest)
{
    Write(NewFile(), u"[Tavrix]\r\nBrushRadius=100\r\n");
    RunWithPlugin([](MainFrame& frame) { EXPECT_EQ(100u, BrushOf(frame).radius); });
    EXPECT_TRUE(Saved(u"\r\nBrushRadius=100\r\n"));
}

TEST(SettingsKeys, ALargerRadiusBecomesTheDefault)
{
    Write(NewFile(), u"[Tavrix]\r\nBrushRadius=101\r\nBrushStrength=3\r\n");
    RunWithPlugin([](MainFrame& frame) {
        EXPECT_EQ(5u, BrushOf(frame).radius);
        EXPECT_EQ(3u, BrushOf(frame).strength);
    });
    EXPECT_TRUE(Saved(u"\r\nBrushRadius=5\r\n"));
}

TEST(SettingsKeys, ARadiusOfNothingIsTakenAndPaintsNothing)
{
    Write(NewFile(), u"[Tavrix]\r\nBrushRadius=0\r\n");
    RunWithPlugin([](MainFrame& frame) {
        EXPECT_EQ(0u, BrushOf(frame).radius);
        ASSERT_EQ(Done, frame.image->Create(10, 10, 24, nullptr, nullptr));
        EXPECT_EQ(Done, frame.brush->Stroke(frame.image, 0xFFFFFFFF, 5, 5, nullptr));
    });
    EXPECT_TRUE(Saved(u"\r\nBrushRadius=0\r\n"));
}

TEST(SettingsKeys, ABrushThatIsNoNumberHasItsDefaults)
{
    Write(NewFile(), u"[Tavrix]\r\nBrushRadius=big\r\nBrushStrength=\r\nBrushDiffusion=-1\r\n");
    RunWithPlugin([](MainFrame& frame) {
        EXPECT_EQ(5u, BrushOf(frame).radius);
        EXPECT_EQ(256u, BrushOf(frame).strength);
        EXPECT_EQ(1u, BrushOf(frame).diffusion);
    });
}

TEST(SettingsKeys, TheToolWindowsStandAsTheirKeysSay)
{
    Write(NewFile(), u"[Tavrix]\r\nShowToolbox=0\r\nShowColorbox=1\r\n");
    RunWithPlugin([](MainFrame& frame) {
        EXPECT_FALSE(IsWindowVisible(frame.toolbox));
        EXPECT_TRUE(IsWindowVisible(frame.colorbox));
        const auto checked = [&](UINT item) {
            return (GetMenuState(frame.windowMenu, item, MF_BYCOMMAND) & MF_CHECKED) != 0;
        };
        EXPECT_FALSE(checked(40118));
        EXPECT_TRUE(checked(40153));
        SendMessageW(frame.window, WM_COMMAND, 40118, 0);
        SendMessageW(frame.window, WM_COMMAND, 40153, 0);
    });
    EXPECT_TRUE(Saved(u"\r\nShowToolbox=1\r\nShowColorbox=0\r\n"));
}

TEST(SettingsKeys, WhatIsSwitchedAtTheScreenIsWritten)
{
    RunWithPlugin([](MainFrame& frame) {
        for (const u32 command : {40164u, 40204u, 40020u})
            SendMessageW(frame.window, WM_COMMAND, command, 0);
    });
    EXPECT_TRUE(Saved(u"\r\nWindowAdjusted=1\r\nDitherMode=1\r\nScreenMode=1\r\n"));
}

TEST(SettingsKeys, TheCommandLineIsRewrittenAtEveryStartBeforeItsEmptyTextCanEndASave)
{
    Write(NewFile(), u"[Tavrix]\r\nLastCommandLine=\r\nEnableUndo=1\r\n[Global]\r\nk=v\r\n");
    RunWithPlugin([](MainFrame& frame) { EXPECT_EQ(1u, frame.undoEnabled); });
    EXPECT_TRUE(Saved(u"[Tavrix]\r\nLastCommandLine=\r\nEnableUndo=1\r\n"));
    EXPECT_TRUE(Saved(u"[Global]\r\nk=v\r\n"));
}

TEST(SettingsKeys, ACommandLineOfTheRunBeforeIsNotOpened)
{
    const std::string file = TestHome() + "/a.quick";
    std::ofstream(file) << "x";
    Write(NewFile(), u"[Tavrix]\r\nLastCommandLine=" + DevicePath(file) + u"\r\n");
    RunWithPlugin([](MainFrame& frame) { EXPECT_EQ(0u, frame.imagePresent); });
    EXPECT_TRUE(Saved(u"\r\nLastCommandLine=\r\n"));
}

TEST(SettingsKeys, AFileBesideTheProgramIsMovedAtTheStart)
{
    Write(OldFile(), u"[Tavrix]\r\nFaceColor=5\r\n");
    RunWithPlugin([](MainFrame& frame) { EXPECT_EQ(5u, frame.faceColor); });
    EXPECT_TRUE(Saved(u"[Tavrix]\r\nFaceColor=5\r\nLastCommandLine=\r\n"));
    EXPECT_EQ(FileOf(u"[Tavrix]\r\nFaceColor=5\r\n\r\n"), Read(OldFile()));
}

TEST(SettingsKeys, ABrokenFileMeansDefaultsAndIsNotWrittenOver)
{
    Write(NewFile(), u"[Tavrix]\r\nFaceColor=5\r\n[Glob\r\n");
    RunWithPlugin([](MainFrame& frame) { EXPECT_EQ(0u, frame.faceColor); });
    EXPECT_EQ(FileOf(u"[Tavrix]\r\nFaceColor=5\r\n[Glob\r\n"), Read(NewFile()));
}
