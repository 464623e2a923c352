// The main window from its creation to its end, run through the program's own entry.

#include "platform/testing/core/TestHome.h"
#include "resources/Ids.h"
#include "tests/support/Program.h"

#include <handheld.h>

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <sstream>

#include "platform/testing/core/TestPaths.h"

using namespace tavrix::testing;

namespace
{

std::u16string FileText(const std::string& path)
{
    std::ifstream file(path, std::ios::binary);
    std::ostringstream bytes;
    bytes << file.rdbuf();
    const std::string raw = bytes.str();
    return {reinterpret_cast<const char16_t*>(raw.data()), raw.size() / 2};
}

std::u16string SavedSettings()
{
    return FileText(TestHome() + "/config/tavrix/Configuration Files/Tavrix.ini");
}

bool Grayed(HMENU menu, UINT item, UINT by = MF_BYCOMMAND)
{
    return (GetMenuState(menu, item, by) & MF_GRAYED) != 0;
}

bool Checked(HMENU menu, UINT item)
{
    return (GetMenuState(menu, item, MF_BYCOMMAND) & MF_CHECKED) != 0;
}

void InstallQuick()
{
    InstallPlugin(tavrix::testing::InBuild("/tests/shell-fixtures/quick.dll"));
}

} // namespace

TEST(Frame, WithNoSettingsFileEverythingHasItsDefault)
{
    InstallQuick();
    const int result = RunProgram(u"", [](MainFrame& frame) {
        EXPECT_EQ(frame.showToolbox, 1U);
        EXPECT_EQ(frame.showColorbox, 1U);
        EXPECT_EQ(frame.faceColor, 0U);
        EXPECT_EQ(frame.backgroundColor, 0xFFFFFFFFU);
        EXPECT_EQ(frame.zoom, 1.0);
        EXPECT_EQ(frame.zoomCommand, 40018U);
        EXPECT_EQ(frame.dither, 0U);
        EXPECT_EQ(frame.monoScreen, 0U);
        EXPECT_EQ(frame.undoEnabled, 0U);
        EXPECT_EQ(frame.surface.Depth(), 24U);
    });
    EXPECT_EQ(result, 0);
}

TEST(Frame, SettingsAreReadAtCreationAndWrittenAtTheEnd)
{
    InstallQuick();
    WriteSettings(u"[Tavrix]\r\nShowToolbox=0\r\nShowColorbox=0\r\nFaceColor=16909060\r\n"
                  u"BackgroundColor=5\r\nWindowAdjusted=1\r\nEnableUndo=2\r\nBrushRadius=33\r\n");
    RunProgram(u"", [](MainFrame& frame) {
        EXPECT_EQ(frame.showToolbox, 0U);
        EXPECT_EQ(frame.showColorbox, 0U);
        EXPECT_EQ(frame.faceColor, 0x01020304U);
        EXPECT_EQ(frame.backgroundColor, 5U);
        EXPECT_EQ(frame.zoomCommand, 40020U);
        EXPECT_EQ(frame.undoEnabled, 1U);
        EXPECT_TRUE(Checked(frame.zoomMenu, 40020));
        EXPECT_FALSE(Checked(frame.windowMenu, 40118));
        frame.faceColor = 99;
    });
    const std::u16string saved = SavedSettings();
    EXPECT_NE(saved.find(u"FaceColor=99\r\n"), std::u16string::npos) << Utf8(saved.c_str());
    EXPECT_NE(saved.find(u"WindowAdjusted=1\r\n"), std::u16string::npos);
    EXPECT_NE(saved.find(u"EnableUndo=2\r\n"), std::u16string::npos);
    EXPECT_NE(saved.find(u"BrushRadius=33\r\n"), std::u16string::npos) << "foreign keys stay";
}

TEST(Frame, TheCommandLineTravelsThroughTheSettings)
{
    InstallQuick();
    const std::string file = TestHome() + "/a.quick";
    std::ofstream(file) << "x";
    RunProgramOn(file, [](MainFrame&) {});
    EXPECT_NE(SavedSettings().find(u"LastCommandLine=" + DevicePath(file) + u"\r\n"),
              std::u16string::npos);
}

TEST(Frame, TheLogTellsTheStepsOfTheStart)
{
    InstallQuick();
    RunProgram(u"", [](MainFrame&) {});
    const std::u16string log = FileText(TestHome() + "/data/tavrix/Tavrix.log");
    size_t at = 0;
    for (const char16_t* step :
         {u"Begin logging.", u"Create new application object.", u"Create new window object.",
          u"Initialize common control.", u"Open Tavrix.ini and load configuration.",
          u"Initialize application instance.", u"Now, run application.", u"Ended."}) {
        const size_t found = log.find(std::u16string(u" : ") + step + u"\r\n", at);
        ASSERT_NE(found, std::u16string::npos) << Utf8(step);
        at = found + 1;
    }
}

TEST(Frame, WithNoTaskBarTheViewStillLosesOneLine)
{
    InstallQuick();
    RunProgram(u"", [](MainFrame& frame) {
        EXPECT_EQ(frame.viewWidth, 640);
        EXPECT_EQ(frame.viewHeight, 480 - CommandBar_Height(frame.commandBar) - 1);
        EXPECT_EQ(frame.clientOriginX, 0);
        EXPECT_EQ(frame.clientOriginY, CommandBar_Height(frame.commandBar));
    });
}

TEST(Frame, TheMarkersAreTheResourcesBytes)
{
    std::ifstream file(tavrix::testing::InBuild("/resources/markers.bin"), std::ios::binary);
    const std::string bytes((std::istreambuf_iterator<char>(file)), {});
    ASSERT_EQ(bytes.size(), size_t{21 * 48 * 4});
    InstallQuick();
    RunProgram(u"", [&](MainFrame& frame) {
        RasterInfo info = {};
        info.size = sizeof info;
        ASSERT_EQ(frame.sprites->GetInfo(&info), 1);
        EXPECT_EQ(info.width, 21U);
        ASSERT_EQ(info.height, 48U);
        EXPECT_EQ(info.depth, 32U);
        for (int y = 0; y < 48; ++y) {
            u8* line = nullptr;
            ASSERT_EQ(frame.sprites->LockLines(y, &line, nullptr), 1);
            const std::string row(reinterpret_cast<const char*>(line), 84);
            EXPECT_EQ(row, bytes.substr(static_cast<size_t>(y) * 84, 84)) << y;
        }
    });
}

// A display that has no room for colours shows four greys from the start on, whatever is set.
TEST(Frame, WhereTheColourSurfaceCannotBeMadeTheMonochromeOneStands)
{
    Scope scope;
    InstallQuick();
    SetAllocationFault([](SIZE_T size) { return size > 500000; });
    RunProgram(u"", [](MainFrame& frame) {
        EXPECT_EQ(frame.monoScreen, 0U);
        EXPECT_EQ(frame.surface.Depth(), 2U);
        frame.RedrawView();
        SetAllocationFault(nullptr);
        frame.OnCommand(0, CommandScreenColor, nullptr);
        EXPECT_EQ(frame.surface.Depth(), 24U);
    });
}

TEST(Frame, ASizeMessageChangesNothing)
{
    InstallQuick();
    RunProgram(u"", [](MainFrame& frame) {
        const i32 width = frame.viewWidth;
        const i32 height = frame.viewHeight;
        EXPECT_EQ(SendMessageW(frame.window, WM_SIZE, 0, MAKELPARAM(10, 10)), 0);
        EXPECT_EQ(frame.viewWidth, width);
        EXPECT_EQ(frame.viewHeight, height);
    });
}

TEST(Frame, TheWindowAnswersTheInstanceOnItsPrivateMessage)
{
    InstallQuick();
    RunProgram(u"", [](MainFrame& frame) {
        EXPECT_EQ(SendMessageW(frame.window, 32768, 0, 0),
                  reinterpret_cast<LRESULT>(frame.instance));
        EXPECT_NE(frame.smallIcon, nullptr);
    });
}

TEST(Frame, BeforeAPictureTheImageEntriesAreGrayAndAfterOneEnabled)
{
    InstallQuick();
    const std::string file = TestHome() + "/a.quick";
    std::ofstream(file) << "x";
    RunProgram(u"", [&](MainFrame& frame) {
        const struct {
            HMENU menu;
            UINT item;
            UINT by;
            bool enabledByAPicture;
        } rows[] = {
            {frame.saveMenu, 40004, MF_BYCOMMAND, true},
            {frame.saveMenu, 40184, MF_BYCOMMAND, true},
            {frame.saveMenu, 3, MF_BYPOSITION, true},
            {frame.fileMenu, 6, MF_BYPOSITION, true},
            {frame.editMenu, 40056, MF_BYCOMMAND, true},
            {frame.copyMenu, 40036, MF_BYCOMMAND, true},
            {frame.copyMenu, 40194, MF_BYCOMMAND, true},
            {frame.toolsMenu, 40125, MF_BYCOMMAND, true},
            {frame.toolsMenu, 40161, MF_BYCOMMAND, true},
            {frame.toolsMenu, 40030, MF_BYCOMMAND, true},
            {frame.selectMenu, 40105, MF_BYCOMMAND, true},
            {frame.brushMenu, 40119, MF_BYCOMMAND, true},
            {frame.eraserMenu, 40126, MF_BYCOMMAND, true},
            {frame.imageMenu, 0, MF_BYPOSITION, true},
            {frame.imageMenu, 1, MF_BYPOSITION, true},
            {frame.imageMenu, 3, MF_BYPOSITION, true},
            {frame.imageMenu, 4, MF_BYPOSITION, true},
            {frame.imageMenu, 7, MF_BYPOSITION, true},
            {frame.imageMenu, 11, MF_BYPOSITION, true},
            {frame.imageMenu, 40006, MF_BYCOMMAND, true},
            {frame.reloadMenu, 40007, MF_BYCOMMAND, true},
            {frame.reloadMenu, 40185, MF_BYCOMMAND, true},
            {frame.infoMenu, 0, MF_BYPOSITION, true},
            {frame.infoMenu, 1, MF_BYPOSITION, true},
            {frame.displayMenu, 2, MF_BYPOSITION, true},
            // No plugin of their kinds is there.
            {frame.imageMenu, 40005, MF_BYCOMMAND, false},
            {frame.imageMenu, 40008, MF_BYCOMMAND, false},
            // Enabled by the picture, and grayed again by the selection rule that follows.
            {frame.editMenu, 40074, MF_BYCOMMAND, false},
            // What nothing enables.
            {frame.editMenu, 40205, MF_BYCOMMAND, false},
            {frame.imageMenu, 40047, MF_BYCOMMAND, false},
            {frame.toolsMenu, 3, MF_BYPOSITION, false},
            {frame.eraserMenu, 40129, MF_BYCOMMAND, false},
            {frame.pasteMenu, 40037, MF_BYCOMMAND, false},
        };
        for (const auto& row : rows)
            EXPECT_TRUE(Grayed(row.menu, row.item, row.by)) << row.item;
        frame.OpenFile(DevicePath(file).c_str());
        ASSERT_EQ(frame.imagePresent, 1U);
        for (const auto& row : rows)
            EXPECT_EQ(Grayed(row.menu, row.item, row.by), !row.enabledByAPicture) << row.item;
    });
}

TEST(Frame, MenusStayEnabledWhenALaterLoadFails)
{
    InstallQuick();
    InstallPlugin(tavrix::testing::InBuild("/tests/shell-fixtures/failing.dll"));
    const std::string good = TestHome() + "/a.quick";
    const std::string bad = TestHome() + "/b.failing";
    std::ofstream(good) << "x";
    std::ofstream(bad) << "x";
    RunProgramOn(good, [&](MainFrame& frame) {
        frame.OpenFile(DevicePath(bad).c_str());
        EXPECT_EQ(frame.imagePresent, 1U);
        EXPECT_FALSE(Grayed(frame.editMenu, 40056));
    });
}

TEST(Frame, EverySubmenuIsTakenByItsPosition)
{
    InstallQuick();
    RunProgram(u"", [](MainFrame& frame) {
        frame.FetchMenus();
        // The first entry of each, a popup's being -1 and Open As having the plugin.
        const struct {
            HMENU menu;
            UINT first;
        } rows[] = {
            {frame.fileMenu, 40017},        {frame.editMenu, 40205},
            {frame.toolsMenu, 40125},       {frame.imageMenu, 0xFFFFFFFF},
            {frame.infoMenu, 205},          {frame.displayMenu, 0xFFFFFFFF},
            {frame.openMenu, 40003},        {frame.openAsMenu, 41000},
            {frame.saveMenu, 40004},        {frame.saveAsMenu, 40014},
            {frame.streamMenu, 40014},      {frame.printMenu, 40014},
            {frame.copyMenu, 40036},        {frame.pasteMenu, 40037},
            {frame.clearMenu, 40159},       {frame.selectMenu, 40160},
            {frame.brushMenu, 40119},       {frame.eraserMenu, 40126},
            {frame.effectMenu, 40009},      {frame.adjustMenu, 40010},
            {frame.reloadMenu, 40007},      {frame.windowMenu, 40118},
            {frame.zoomMenu, 40025},        {frame.methodMenu, 40015},
            {frame.ditherMenu, 0xFFFFFFFF}, {frame.screenMenu, 40203},
        };
        for (const auto& row : rows) {
            ASSERT_NE(row.menu, nullptr);
            EXPECT_EQ(GetMenuItemID(row.menu, 0), row.first);
        }
    });
}

TEST(Frame, TheJapaneseMenuDiffersWhereItIsMeantTo)
{
    Scope scope;
    SetLanguage(1041);
    InstallQuick();
    RunProgram(u"", [](MainFrame& frame) {
        frame.FetchMenus();
        EXPECT_EQ(GetMenuItemID(frame.selectMenu, 0), 40163U);
        EXPECT_EQ(GetMenuItemID(frame.brushMenu, 0), 40152U);
        EXPECT_EQ(GetMenuItemID(frame.brushMenu, 1), 40151U);
        EXPECT_EQ(GetMenuItemID(frame.brushMenu, 3), 40119U);
        EXPECT_EQ(GetMenuItemID(frame.brushMenu, 5), 40121U);
        HMENU rotate = GetSubMenu(frame.imageMenu, 7);
        EXPECT_EQ(GetMenuItemID(rotate, 1), 40048U);
        EXPECT_EQ(GetMenuItemID(rotate, 2), 40048U);
        EXPECT_EQ(GetMenuItemID(frame.ditherMenu, 2), 40164U);
        // The mark follows the state in this menu only.
        EXPECT_FALSE(Checked(frame.ditherMenu, 40164));
        WCHAR text[64];
        ASSERT_GT(GetMenuStringW(frame.mainMenu, 0, text, 64, MF_BYPOSITION), 0);
        EXPECT_EQ(std::u16string(text), u"ﾌｧｲﾙ(&F)");
    });
}

TEST(Frame, TheEnglishDitherMarkStaysAsTheResourceHasIt)
{
    Scope scope;
    SetLanguage(1033);
    InstallQuick();
    RunProgram(u"", [](MainFrame& frame) {
        frame.UpdateDitherCheck();
        EXPECT_TRUE(Checked(frame.ditherMenu, 40138));
    });
}

TEST(Frame, TheChecksFollowTheirState)
{
    InstallQuick();
    RunProgram(u"", [](MainFrame& frame) {
        frame.OnCommand(0, CommandZoom300, nullptr);
        EXPECT_TRUE(Checked(frame.zoomMenu, 40115));
        EXPECT_FALSE(Checked(frame.zoomMenu, 40018));
        frame.monoScreen = 1;
        frame.UpdateScreenChecks();
        EXPECT_FALSE(Checked(frame.screenMenu, 40203));
        EXPECT_TRUE(Checked(frame.screenMenu, 40204));
        frame.showColorbox = 0;
        frame.UpdateWindowChecks();
        EXPECT_TRUE(Checked(frame.windowMenu, 40118));
        EXPECT_FALSE(Checked(frame.windowMenu, 40153));
    });
}

TEST(Frame, TheClipMenusFollowTheirState)
{
    InstallQuick();
    RunProgram(u"", [](MainFrame& frame) {
        Raster clip;
        frame.clipImage = &clip;
        frame.clipboardHasImage = 1;
        frame.selectionActive = 1;
        for (const UINT item : {40036U, 40194U})
            EnableMenuItem(frame.copyMenu, item, MF_BYCOMMAND | MF_ENABLED);
        EnableMenuItem(frame.editMenu, 40056, MF_BYCOMMAND | MF_ENABLED);
        frame.UpdateClipMenus();
        EXPECT_TRUE(Grayed(frame.copyMenu, 40036));
        EXPECT_TRUE(Grayed(frame.copyMenu, 40194));
        EXPECT_FALSE(Grayed(frame.pasteMenu, 40037));
        EXPECT_FALSE(Grayed(frame.clearMenu, 40159));
        EXPECT_FALSE(Grayed(frame.pasteMenu, 40195));
        EXPECT_FALSE(Grayed(frame.clearMenu, 40193));
        EXPECT_FALSE(Grayed(frame.editMenu, 40074));
        EXPECT_TRUE(Grayed(frame.editMenu, 40056)) << "no picture";
        frame.clipImage = nullptr;
        frame.clipboardHasImage = 0;
        frame.UpdateClipMenus();
        EXPECT_TRUE(Grayed(frame.pasteMenu, 40037));
        EXPECT_TRUE(Grayed(frame.clearMenu, 40193));
    });
}

TEST(Frame, KeysWithoutACommandAndUnknownIdsDoNothing)
{
    InstallQuick();
    RunProgram(u"", [](MainFrame& frame) {
        const Picture before = ScreenPixels();
        for (u32 id : {1U, 40192U, 40009U, 40138U, 39999U, 0U, 65535U})
            EXPECT_EQ(frame.OnCommand(1, id, nullptr), 0);
        EXPECT_EQ(frame.imagePresent, 0U);
        EXPECT_EQ(ScreenPixels().pixels, before.pixels);
    });
}

TEST(Frame, KeysReachTheirCommandsThroughTheTable)
{
    InstallQuick();
    RunProgram(u"", {[](MainFrame&) { TypeKey(VK_LEFT); },
                     [](MainFrame& frame) {
                         EXPECT_EQ(frame.scrollX, 10);
                         TypeKey(VK_DOWN);
                         // Neither has a command behind it.
                         TypeKey('P', MK_CONTROL);
                         TypeKey('Q', MK_CONTROL);
                     },
                     [](MainFrame& frame) {
                         EXPECT_EQ(frame.scrollX, 10);
                         EXPECT_EQ(frame.scrollY, -10);
                     }});
}

TEST(Frame, ASecondArrowKeyThatIsHeldAddsItsOwnMovement)
{
    InstallQuick();
    RunProgram(u"", {[](MainFrame&) { HoldKey(VK_UP, true); }, [](MainFrame&) { TypeKey(VK_LEFT); },
                     [](MainFrame& frame) {
                         EXPECT_EQ(frame.scrollX, 10);
                         EXPECT_EQ(frame.scrollY, 20) << "once for its own press, once beside Left";
                         HoldKey(VK_UP, false);
                     },
                     [](MainFrame&) { TypeKey(VK_LEFT); },
                     [](MainFrame& frame) {
                         EXPECT_EQ(frame.scrollX, 20);
                         EXPECT_EQ(frame.scrollY, 20);
                     }});
}

TEST(Frame, ExitGoesTheOneRoadOut)
{
    InstallQuick();
    const int result = RunProgram(u"", [](MainFrame& frame) {
        EXPECT_EQ(SendMessageW(frame.window, WM_COMMAND, CommandExit, 0), 0);
    });
    EXPECT_EQ(result, 0);
    EXPECT_NE(SavedSettings().find(u"[Tavrix]"), std::u16string::npos);
}

TEST(Frame, TheSelectionIsPutInOrderAndIntoThePicture)
{
    InstallQuick();
    RunProgram(u"", [](MainFrame& frame) {
        ASSERT_EQ(frame.image->Create(20, 10, 24, nullptr, nullptr), 1);
        frame.selectionLeft = 12.75;
        frame.selectionTop = -3.5;
        frame.selectionRight = 4.5;
        frame.selectionBottom = 10.25;
        frame.NormalizeSelection();
        EXPECT_EQ(frame.selectionLeft, 4.0);
        EXPECT_EQ(frame.selectionTop, 0.0);
        EXPECT_EQ(frame.selectionRight, 12.75);
        EXPECT_EQ(frame.selectionBottom, 9.0);
    });
}
