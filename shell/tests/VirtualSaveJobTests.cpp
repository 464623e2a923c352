// Saving to nowhere, and the report of the two sizes.

#include "shell/tests/JobTesting.h"

#include "tests/support/DeviceCalls.h"

using namespace jobtest;

namespace
{

/// Runs a virtual save that writes that many bytes and answers the report.
std::u16string ReportOf(MainFrame& frame, u32 bytes, const std::u16string& path)
{
    Ask(frame, TEXT("FixtureBytes"), bytes);
    Blocks blocks;
    blocks.path = path.c_str();
    const size_t before = BoxCalls().size();
    EXPECT_EQ(RunKind(frame, JobVirtualSave, blocks), 1);
    EXPECT_EQ(BoxCalls().size(), before + 1);
    return BoxCalls().size() > before ? BoxCalls().back().text : u"(no box)";
}

} // namespace

TEST(VirtualSave, TheReportTellsTheOriginalsSizeFirstInABoxOfTheDialogWithoutACaption)
{
    InstallKinds();
    Watched watched;
    const std::u16string path = DevicePath(MakeFile("original.fixture", 1024 * 12 + 308)); // 12.30
    watched.script = [](HWND box, bool isBox) {
        if (!isBox)
            return;
        // The dialog stays open under the box, and cannot be reached.
        EXPECT_TRUE(IsWindowVisible(progressState.dialog));
        EXPECT_FALSE(IsWindowEnabled(progressState.dialog));
        EXPECT_EQ(GetParent(box), progressState.dialog);
    };
    RunProgram(u"", [&](MainFrame& frame) {
        EXPECT_EQ(ReportOf(frame, 5 * 1024 + 922, path), // 5.900...
                  u"Original : 12.3KB\r\n  Output : 5.9KB");
        EXPECT_EQ(BoxCalls().back().caption, u"");
        EXPECT_EQ(BoxCalls().back().flags, 0U);
        EXPECT_EQ(BoxCalls().back().owner, progressState.dialog);
        EXPECT_EQ(watched.deepest, 2U);
        EXPECT_TRUE(StatusTexts().empty());
        EXPECT_EQ(tavrix::platform::Hooks().beeps, 0U);
    });
}

TEST(VirtualSave, TheReportIsJapaneseOnAJapaneseSystem)
{
    Scope scope;
    SetLanguage(1041);
    InstallKinds();
    Watched watched;
    const std::u16string path = DevicePath(MakeFile("original.fixture", 2048));
    RunProgram(u"", [&](MainFrame& frame) {
        EXPECT_EQ(ReportOf(frame, 1536, path), u"オリジナル : 2.0KB\r\n出力サイズ : 1.5KB");
        EXPECT_EQ(ReportOf(frame, 1536, u"\\not there"),
                  u"オリジナル : 0.0KB\r\n出力サイズ : 1.5KB");
    });
}

TEST(VirtualSave, WithoutAnOriginalItsSizeIsNought)
{
    InstallKinds();
    Watched watched;
    RunProgram(u"", [&](MainFrame& frame) {
        EXPECT_EQ(ReportOf(frame, 100 * 1024, u"\\not there.fixture"),
                  u"Original : 0.0KB\r\n  Output : 100.0KB");
        EXPECT_EQ(ReportOf(frame, 0, u""), u"Original : 0.0KB\r\n  Output : 0.0KB");
    });
}

TEST(VirtualSave, SizesAreRoundedAsTheCLibraryDoesMiddlesToTheEvenDigit)
{
    InstallKinds();
    Watched watched;
    RunProgram(u"", [&](MainFrame& frame) {
        for (const u32 bytes : {1U, 51U, 52U, 256U, 768U, 1280U, 1792U, 1023U, 973U, 972U, 10189U,
                                1048575U, 3000000U}) {
            char digits[32];
            std::snprintf(digits, sizeof digits, "%.1f", bytes * 0.0009765625);
            EXPECT_EQ(ReportOf(frame, bytes, u"\\not there"),
                      u"Original : 0.0KB\r\n  Output : " + Wide(digits) + u"KB")
                << bytes;
        }
    });
}

TEST(VirtualSave, ThePluginGetsAStreamAndNoPathAndNothingIsStored)
{
    InstallKinds();
    Watched watched;
    const std::string file = TestHome() + "/new.fixture";
    RunProgram(u"", [&](MainFrame& frame) {
        (void)ReportOf(frame, 4096, DevicePath(file));
        EXPECT_EQ(Stored(frame, TEXT("FixtureStreamGiven")), 1U);
        EXPECT_FALSE(IsStored(frame, TEXT("FixturePath")));
        EXPECT_FALSE(std::ifstream(file).good());
    });
}

TEST(VirtualSave, AFailureShowsNoReport)
{
    Scope scope;
    SetLanguage(1033);
    InstallKinds();
    Watched watched;
    RunProgram(u"", [&](MainFrame& frame) {
        watched.boxes.clear();
        Ask(frame, TEXT("FixtureBytes"), 4096);
        Ask(frame, TEXT("FixtureFails"), 1);
        EXPECT_EQ(RunKind(frame, JobVirtualSave), 1);
        EXPECT_TRUE(watched.boxes.empty());
        EXPECT_EQ(StatusTexts().size(), 1U);
    });
}
