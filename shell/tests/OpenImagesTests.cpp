// The road from a path to the picture, with plugins that stand for formats of their own.

#include "platform/testing/core/TestHome.h"
#include "resources/Ids.h"
#include "tests/support/Program.h"
#include "tests/support/TestPicture.h"

#include <gtest/gtest.h>

#include <fstream>

#include "platform/testing/core/TestPaths.h"

using namespace tavrix::testing;

namespace
{

std::string MakeFile(const std::string& name)
{
    const std::string path = TestHome() + "/" + name;
    std::ofstream(path) << "anything";
    return path;
}

void InstallFixture(const std::string& name)
{
    InstallPlugin(tavrix::testing::InBuild("/tests/shell-fixtures/") + name + ".dll");
}

u32 Setting(MainFrame& frame, const WCHAR* key)
{
    u32 value = 12345;
    (void)frame.settings->GetUInt(TEXT("Tavrix"), key, &value);
    return value;
}

RasterInfo InfoOf(MainFrame& frame)
{
    RasterInfo info = {};
    info.size = sizeof info;
    frame.image->GetInfo(&info);
    return info;
}

struct Boxes {
    std::vector<std::u16string> texts;
    std::vector<std::u16string> captions;
    Boxes()
    {
        OnModal([this](HWND dialog, bool box) {
            if (!box)
                return;
            texts.push_back(BoxText(dialog));
            captions.push_back(BoxCaption(dialog));
            EndDialog(dialog, IDOK);
        });
    }
};

} // namespace

TEST(Opening, AFileNamedOnTheCommandLineIsDecodedAndItsPluginRemembered)
{
    InstallFixture("quick");
    const std::string file = MakeFile("a.quick");
    RunProgramOn(file, [&](MainFrame& frame) {
        EXPECT_EQ(frame.imagePresent, 1U);
        EXPECT_EQ(InfoOf(frame).width, 30U);
        EXPECT_EQ(std::u16string(frame.openedPath), DevicePath(file));
        EXPECT_EQ(frame.inputPlugin, 0);
        EXPECT_EQ(Setting(frame, TEXT("DefOpenPlugin")), 4294967295U);
        EXPECT_EQ(frame.scrollX, -(640 - 30) * 0.5);
    });
}

TEST(Opening, AnExtensionInCapitalsFindsTheEntryInSmallLetters)
{
    InstallFixture("quick");
    RunProgramOn(MakeFile("A.QUICK"), [](MainFrame& frame) { EXPECT_EQ(frame.imagePresent, 1U); });
}

TEST(Opening, AShortenedExtensionMatchesTheLongerOnesPattern)
{
    InstallFixture("quick");
    RunProgramOn(MakeFile("a.qui"), [](MainFrame& frame) { EXPECT_EQ(frame.imagePresent, 1U); });
}

TEST(Opening, ANameWithoutAnExtensionEndsSilentlyWithThePathKept)
{
    Boxes boxes;
    InstallFixture("quick");
    const std::string file = MakeFile("plain");
    RunProgramOn(file, [&](MainFrame& frame) {
        EXPECT_EQ(frame.imagePresent, 0U);
        EXPECT_EQ(std::u16string(frame.openedPath), DevicePath(file));
        EXPECT_EQ(frame.inputPlugin, -1);
    });
    EXPECT_TRUE(boxes.texts.empty());
}

TEST(Opening, AnExtensionOfNoPluginEndsSilentlyWithThePathKept)
{
    Boxes boxes;
    InstallFixture("quick");
    const std::string file = MakeFile("a.xyz");
    RunProgramOn(file, [&](MainFrame& frame) {
        EXPECT_EQ(frame.imagePresent, 0U);
        EXPECT_EQ(std::u16string(frame.openedPath), DevicePath(file));
    });
    EXPECT_TRUE(boxes.texts.empty());
}

TEST(Opening, AMissingFileStartsTheProgramEmptyAndSilent)
{
    Boxes boxes;
    InstallFixture("quick");
    RunProgramOn(TestHome() + "/not there.quick", [](MainFrame& frame) {
        EXPECT_EQ(frame.imagePresent, 0U);
        EXPECT_EQ(frame.openedPath[0], 0);
        EXPECT_EQ(Setting(frame, TEXT("DefOpenPlugin")), 12345U);
    });
    EXPECT_TRUE(boxes.texts.empty());
    EXPECT_TRUE(StatusTexts().empty());
}

TEST(Opening, AnEmptyCommandLineOpensNothing)
{
    Boxes boxes;
    InstallFixture("quick");
    RunProgram(u"", [](MainFrame& frame) { EXPECT_EQ(frame.imagePresent, 0U); });
    EXPECT_TRUE(boxes.texts.empty());
}

TEST(Opening, ANameWithSpacesAndJapaneseSignsOpens)
{
    InstallFixture("quick");
    RunProgramOn(MakeFile("画像 その 1.quick"),
                 [](MainFrame& frame) { EXPECT_EQ(frame.imagePresent, 1U); });
}

TEST(Opening, WithoutAnyPluginTheUserIsTold)
{
    Scope scope;
    SetLanguage(1033);
    Boxes boxes;
    RunProgramOn(MakeFile("a.quick"), [](MainFrame&) {});
    ASSERT_EQ(boxes.texts.size(), 1U);
    EXPECT_EQ(boxes.texts[0], u"No INPUT plugin is installed");
    EXPECT_EQ(boxes.captions[0], u"WARNING");
}

TEST(Opening, WithoutAnyPluginTheUserIsToldInJapanese)
{
    Scope scope;
    SetLanguage(1041);
    Boxes boxes;
    RunProgramOn(MakeFile("a.quick"), [](MainFrame&) {});
    ASSERT_EQ(boxes.texts.size(), 1U);
    EXPECT_EQ(boxes.texts[0], u"読み込みプラグインがインストールされていません。");
    EXPECT_EQ(boxes.captions[0], u"警告");
}

TEST(Opening, CancelledSettingsKeepTheOldPictureThoughThePathIsTheNewFiles)
{
    InstallFixture("quick");
    InstallFixture("cancelled");
    const std::string cancelled = MakeFile("b.cancelled");
    RunProgramOn(MakeFile("a.quick"), [&](MainFrame& frame) {
        ASSERT_EQ(frame.imagePresent, 1U);
        ASSERT_EQ(frame.image->SetPixel(3, 3, 0x12345600), Done);
        frame.OpenFile(DevicePath(cancelled).c_str());
        u32 color = 0;
        EXPECT_EQ(frame.image->GetPixel(3, 3, &color), Done);
        EXPECT_EQ(color, 0x123456FFU);
        EXPECT_EQ(std::u16string(frame.openedPath), DevicePath(cancelled));
    });
}

TEST(Opening, FailingSettingsWarnAndGoOn)
{
    Scope scope;
    SetLanguage(1033);
    Boxes boxes;
    InstallFixture("unconfigured");
    RunProgramOn(MakeFile("a.unconfigured"),
                 [](MainFrame& frame) { EXPECT_EQ(InfoOf(frame).width, 30U); });
    ASSERT_EQ(boxes.texts.size(), 1U);
    EXPECT_EQ(boxes.texts[0], u"Failed to initialize plugin settings, but enforce next process...");
    EXPECT_EQ(boxes.captions[0], u"WARNING");
}

TEST(Opening, FailingSettingsWarnInJapaneseAndGoOn)
{
    Scope scope;
    SetLanguage(1041);
    Boxes boxes;
    InstallFixture("unconfigured");
    RunProgramOn(MakeFile("a.unconfigured"),
                 [](MainFrame& frame) { EXPECT_EQ(InfoOf(frame).width, 30U); });
    ASSERT_EQ(boxes.texts.size(), 1U);
    EXPECT_EQ(boxes.texts[0], u"プラグイン設定の初期化に失敗しました。強行します。");
    EXPECT_EQ(boxes.captions[0], u"警告");
}

TEST(Opening, APluginThatIsGoneAtItsUseIsTold)
{
    Scope scope;
    SetLanguage(1033);
    Boxes boxes;
    InstallFixture("quick");
    const std::string file = MakeFile("a.quick");
    RunProgramOn(file, [&](MainFrame& frame) {
        EXPECT_EQ(frame.LoadFromFile(DevicePath(file).c_str(), 7, 1), 0);
    });
    ASSERT_EQ(boxes.texts.size(), 1U);
    EXPECT_EQ(boxes.texts[0], u"Failed to load selected INPUT plugin.");
    EXPECT_EQ(boxes.captions[0], u"ERROR");
}

TEST(Opening, AFileThatDoesNotOpenGivesTheOpensCodeAndNoMessage)
{
    Boxes boxes;
    InstallFixture("quick");
    RunProgram(u"", [](MainFrame& frame) {
        EXPECT_EQ(frame.LoadFromFile(TEXT("\\nowhere\\x.quick"), 0, 1), -1);
    });
    EXPECT_TRUE(boxes.texts.empty());
}

TEST(Opening, ALoadDropsTheSelectionAndRefitsAnAdjustedZoom)
{
    InstallFixture("quick");
    const std::string file = MakeFile("a.quick");
    RunProgramOn(file, [&](MainFrame& frame) {
        frame.selectionActive = 1;
        frame.zoomCommand = CommandZoomWindow;
        EXPECT_NE(frame.LoadFromFile(DevicePath(file).c_str(), 0, 1), 0);
        EXPECT_EQ(frame.selectionActive, 0U);
        EXPECT_EQ(frame.zoom, 30.0 / frame.viewWidth < 20.0 / frame.viewHeight
                                  ? 20.0 / frame.viewHeight
                                  : 30.0 / frame.viewWidth);
    });
}
