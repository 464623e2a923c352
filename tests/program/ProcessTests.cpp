// The program as users start it: a process of its own, looked at from outside.

#include "platform/testing/core/TestHome.h"
#include "tests/support/Process.h"
#include "tests/support/TestPicture.h"

#include <QImage>

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <regex>
#include <sys/stat.h>

#include "platform/testing/core/TestPaths.h"

using namespace tavrix::testing;
namespace fs = std::filesystem;

namespace
{

std::string ShotPath()
{
    return TestHome() + "/shot.png";
}

/// The page folder of the running program: every line that is paged out is one file in it.
std::vector<fs::path> PagedLines()
{
    static const std::regex lineFile("[0-9]{6}\\.tmp");
    std::vector<fs::path> found;
    std::error_code error;
    fs::recursive_directory_iterator end;
    for (fs::recursive_directory_iterator at(TestHome() + "/tmp", error); !error && at != end;
         at.increment(error))
        if (std::regex_match(at->path().filename().string(), lineFile))
            found.push_back(at->path());
    return found;
}

/// How many of the shot's pixels equal the picture laid at (left, top), of those inside it.
int RightPixels(const QImage& shot, int width, int height, int left, int top)
{
    int right = 0;
    for (int y = 0; y < height && top + y < shot.height(); ++y)
        for (int x = 0; x < width && left + x < shot.width(); ++x)
            if ((shot.pixel(left + x, top + y) & 0xFFFFFFU) == TestColor(x, y))
                ++right;
    return right;
}

/// The row at which a picture of that width that fills the view begins in the shot: the first whose
/// pixels are the picture's first row. -1 for none.
int FirstPictureRow(const QImage& shot, int left, int width)
{
    for (int top = 0; top < shot.height(); ++top) {
        bool same = true;
        for (int x = 0; same && x < width; ++x)
            same = (shot.pixel(left + x, top) & 0xFFFFFFU) == TestColor(x, 0);
        if (same)
            return top;
    }
    return -1;
}

} // namespace

TEST(Process, ShowsThePictureAndEndsWithZero)
{
    const std::string file = WriteTestPng(200, 120);
    const ProcessResult result =
        RunTavrix({file}, {{"TAVRIX_SHOT", ShotPath()}, {"TAVRIX_SCREEN", "640x480"}});
    EXPECT_EQ(result.exitCode, 0) << result.output;
    const QImage shot(QString::fromStdString(ShotPath()));
    ASSERT_EQ(shot.width(), 640);
    ASSERT_EQ(shot.height(), 480);
    const int top = FirstPictureRow(shot, 220, 200);
    ASSERT_GT(top, 0);
    EXPECT_EQ(RightPixels(shot, 200, 120, 220, top), 200 * 120);
}

TEST(Process, AMissingFileStartsEmptyAndSilent)
{
    const ProcessResult result =
        RunTavrix({TestHome() + "/none.png"}, {{"TAVRIX_SHOT", ShotPath()}});
    EXPECT_EQ(result.exitCode, 0);
    EXPECT_EQ(result.output, "");
    EXPECT_FALSE(QImage(QString::fromStdString(ShotPath())).isNull());
}

TEST(Process, WhatIsNoFileOfPixelsStartsEmptyAndHoldsNothingUp)
{
    const std::string home = TestHome();
    fs::create_directory(home + "/folder.png");
    ASSERT_EQ(mkfifo((home + "/pipe.png").c_str(), 0600), 0);
    fs::create_symlink("nowhere", home + "/link.png");
    fs::create_symlink("/dev/zero", home + "/endless.png");
    std::ofstream(home + "/empty.png").flush();
    for (const std::string name : {"folder", "pipe", "link", "endless", "empty"}) {
        fs::remove(ShotPath());
        const ProcessResult result =
            RunTavrix({home + "/" + name + ".png"}, {{"TAVRIX_SHOT", ShotPath()}});
        EXPECT_EQ(result.exitCode, 0) << name;
        EXPECT_EQ(result.output, "") << name;
        EXPECT_FALSE(QImage(QString::fromStdString(ShotPath())).isNull()) << name;
    }
}

TEST(Process, HelpAndVersionNeedNoDisplay)
{
    const ProcessResult help = RunTavrix({"--help"}, {{"QT_QPA_PLATFORM", "none-such"}});
    EXPECT_EQ(help.exitCode, 0);
    EXPECT_NE(help.output.find("Usage: tavrix"), std::string::npos);
    const ProcessResult version = RunTavrix({"--version"}, {{"QT_QPA_PLATFORM", "none-such"}});
    EXPECT_EQ(version.exitCode, 0);
    EXPECT_EQ(version.output.rfind("tavrix ", 0), 0U);
}

TEST(Process, AWrongCommandLineIsRefused)
{
    EXPECT_EQ(RunTavrix({"--nonsense"}, {}).exitCode, 2);
    EXPECT_EQ(RunTavrix({"a.png", "b.png"}, {}).exitCode, 2);
    EXPECT_EQ(RunTavrix({"/" + std::string(300, 'x') + ".png"}, {}).exitCode, 2);
}

TEST(Process, APictureThatDoesNotFitIsPagedOutLineByLine)
{
    const int width = 2000;
    const int height = 2000; // 12 MB of lines; 4 MB to hold them and all else
    const std::string file = WriteTestPng(width, height);
    size_t most = 0;
    bool wholeLinesOnly = true;
    const ProcessResult result = RunTavrix(
        {file},
        {{"TAVRIX_SHOT", ShotPath()}, {"TAVRIX_SCREEN", "640x480"}, {"TAVRIX_MEMORY", "4M"}},
        [&](int) {
            const auto lines = PagedLines();
            most = std::max(most, lines.size());
            for (const fs::path& line : lines) {
                std::error_code error;
                const auto size = fs::file_size(line, error);
                // Gone again, not yet filled, in the middle of its one write, or whole.
                if (!error && size > 6000)
                    wholeLinesOnly = false;
            }
        });
    EXPECT_EQ(result.exitCode, 0) << result.output;
    EXPECT_GT(most, 1000U);
    EXPECT_TRUE(wholeLinesOnly);
    EXPECT_TRUE(PagedLines().empty()) << "left behind";

    const QImage shot(QString::fromStdString(ShotPath()));
    const int top = FirstPictureRow(shot, 0, 640);
    ASSERT_GT(top, 0);
    EXPECT_EQ(RightPixels(shot, width, height, 0, top), 640 * (480 - top));
}

TEST(Process, AStorageCardTakesTheLinesThatTheFirstFolderRefuses)
{
    // A first folder that cannot be: its place is taken by a file.
    const std::string card = TestHome() + "/card";
    fs::create_directories(card);
    const std::string blocked = TestHome() + "/blocked";
    std::ofstream(blocked) << "a file, no folder";
    size_t most = 0;
    const ProcessResult result =
        RunTavrix({WriteTestPng(1000, 1500)},
                  {{"TAVRIX_SHOT", ShotPath()},
                   {"TAVRIX_MEMORY", "3M"},
                   {"TAVRIX_SCREEN", "640x480"},
                   {"TMPDIR", blocked},
                   {"TAVRIX_STORAGE_CARD", card}},
                  [&](int) {
                      std::error_code error;
                      size_t count = 0;
                      for (const auto& entry : fs::directory_iterator(card + "/Temp", error)) {
                          (void)entry;
                          ++count;
                      }
                      most = std::max(most, count);
                  });
    EXPECT_EQ(result.exitCode, 0) << result.output;
    RecordProperty("lines", static_cast<int>(most));
    EXPECT_FALSE(QImage(QString::fromStdString(ShotPath())).isNull());
    EXPECT_TRUE(fs::is_empty(card + "/Temp"));
}

TEST(Process, AHomeThatCannotBeWrittenStillShowsThePicture)
{
    const std::string file = WriteTestPng(200, 120);
    const std::string blocked = TestHome() + "/blocked";
    std::ofstream(blocked) << "a file, no folder";
    const ProcessResult result = RunTavrix({file}, {{"TAVRIX_SHOT", ShotPath()},
                                                    {"TAVRIX_SCREEN", "640x480"},
                                                    {"XDG_DATA_HOME", blocked + "/data"},
                                                    {"XDG_CONFIG_HOME", blocked + "/config"}});
    EXPECT_EQ(result.exitCode, 0) << result.output;
    const QImage shot(QString::fromStdString(ShotPath()));
    EXPECT_GT(FirstPictureRow(shot, 220, 200), 0);
}

TEST(Process, ALibraryThatIsNoPluginIsLeftOutWithoutAWord)
{
    const std::string folder = TestHome() + "/data/tavrix/PLUGINS/INPUT";
    fs::create_directories(folder);
    std::ofstream(folder + "/A.DLL") << "no library at all";
    const ProcessResult result = RunTavrix(
        {WriteTestPng(200, 120)}, {{"TAVRIX_SHOT", ShotPath()}, {"TAVRIX_SCREEN", "640x480"}});
    EXPECT_EQ(result.exitCode, 0);
    EXPECT_EQ(result.output, "");
    const QImage shot(QString::fromStdString(ShotPath()));
    EXPECT_GT(FirstPictureRow(shot, 220, 200), 0);
}

TEST(Process, WithNobodyToAnswerABoxTellsItsTextAndTakesItsDefault)
{
    // The program alone, without its plugins.
    const std::string alone = TestHome() + "/alone";
    fs::create_directories(alone);
    for (const char* file : {"/tavrix", "/libtavrix-platform.so"})
        fs::copy_file(tavrix::testing::InBuild("/bin") + std::string(file), alone + file);
    const ProcessResult result =
        RunTavrix({WriteTestPng(20, 20)}, {{"TAVRIX_SHOT", ShotPath()}, {"TAVRIX_LANG", "en"}}, {},
                  alone + "/tavrix");
    EXPECT_EQ(result.exitCode, 0);
    EXPECT_EQ(result.output, "tavrix: WARNING: No INPUT plugin is installed\n");
    EXPECT_FALSE(QImage(QString::fromStdString(ShotPath())).isNull());
}

TEST(Process, NoLibraryIsTakenFromTheCurrentFolder)
{
    const std::string folder = TestHome() + "/here";
    fs::create_directories(folder);
    for (const char* name : {"libtavrix-platform.so", "libQt6Widgets.so.6", "libstdc++.so.6"})
        std::ofstream(folder + "/" + name) << "no library at all";
    fs::current_path(folder);
    const ProcessResult result = RunTavrix({}, {{"TAVRIX_SHOT", ShotPath()}});
    EXPECT_EQ(result.exitCode, 0);
    EXPECT_EQ(result.output, "");
}

TEST(Process, SpeaksJapaneseWhenAsked)
{
    const ProcessResult result = RunTavrix(
        {}, {{"TAVRIX_SHOT", ShotPath()}, {"TAVRIX_LANG", "ja"}, {"TAVRIX_SCREEN", "640x480"}});
    EXPECT_EQ(result.exitCode, 0) << result.output;
    EXPECT_TRUE(fs::exists(TestHome() + "/config/tavrix/設定ファイル/Tavrix.ini"));
}
