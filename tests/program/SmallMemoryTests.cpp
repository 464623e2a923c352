// A person's tour where the device has less memory than the picture needs, beside the same tour
// with plenty of it: what is saved is the same file to the byte. What the device has is settled
// before a program's first line runs, so that each tour is a process of its own: this test program
// again.

#include "foundation/MemoryGauge.h"
#include "image/Raster.h"
#include "platform/testing/core/TestHome.h"
#include "resources/Ids.h"
#include "tests/support/Process.h"
#include "tests/support/Program.h"
#include "tests/support/TestPicture.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>

#include "platform/testing/core/TestPaths.h"

using namespace tavrix::testing;
namespace fs = std::filesystem;

namespace
{

constexpr unsigned long long NothingToSpare = 0xA0000; // the reserve that no line may take

std::string BytesOf(const std::string& path)
{
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

std::string Variable(const char* name)
{
    const char* value = std::getenv(name);
    return value != nullptr ? value : "";
}

/// Answers what comes up: Yes to questions, the next name to the file dialog, the settings of a
/// plugin as they are. Keeps what boxes said.
class Person
{
public:
    Person() : before(tavrix::platform::Hooks().modalStarted)
    {
        OnModal([this](HWND dialog, bool box) { Answer(dialog, box); });
    }
    ~Person() { OnModal(before); }
    Person(const Person&) = delete;
    Person& operator=(const Person&) = delete;

    std::u16string name;
    std::vector<std::u16string> boxes;

private:
    void Answer(HWND dialog, bool box)
    {
        if (box) {
            boxes.push_back(BoxText(dialog));
            EndDialog(dialog, GetDlgItem(dialog, IDYES) != nullptr ? IDYES : IDOK);
        } else if (GetDlgItem(dialog, ControlProgressBar) != nullptr) {
            before(dialog, box);
        } else {
            if (GetDlgItem(dialog, ControlFileList) != nullptr)
                SetDlgItemTextW(dialog, ControlFileName, name.c_str());
            SendMessageW(dialog, WM_COMMAND, IDOK, 0);
        }
    }

    std::function<void(HWND, bool)> before;
};

void Command(MainFrame& frame, u32 id)
{
    SendMessageW(frame.window, WM_COMMAND, id, 0);
}

size_t linesOnFiles = 0; // the most at a time, as looked at between steps

void CountFiles()
{
    size_t count = 0;
    for (const auto& entry : fs::directory_iterator(HostPath(TEXT("\\Temp"))))
        count += entry.path().extension() == ".tmp";
    linesOnFiles = std::max(linesOnFiles, count);
}

void Look(MainFrame& frame)
{
    for (const u32 zoom : {CommandZoom25, CommandZoom400, CommandZoomWindow, CommandZoom100})
        Command(frame, zoom);
    CountFiles();
}

void Paint(MainFrame& frame)
{
    Command(frame, CommandBrush);
    frame.faceColor = 0x20C04000;
    SendMessageW(frame.window, WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(60, 80));
    for (int i = 1; i < 60; ++i)
        SendMessageW(frame.window, WM_MOUSEMOVE, MK_LBUTTON,
                     MAKELPARAM(60 + 3 * i, 80 + i * 23 % 100));
    SendMessageW(frame.window, WM_LBUTTONUP, 0, MAKELPARAM(237, 80));
}

void Turn(MainFrame& frame)
{
    Command(frame, CommandReverseHorizontal);
    CountFiles();
    Command(frame, CommandRotate180);
    CountFiles();
}

void Invert(MainFrame& frame)
{
    const Person person;
    Command(frame, GetMenuItemID(frame.adjustMenu, 0));
    EXPECT_EQ(person.boxes, std::vector<std::u16string>{});
    CountFiles();
}

void Save(MainFrame& frame, const std::string& name)
{
    Person person;
    person.name = Wide(name);
    Command(frame, CommandSave);
    EXPECT_EQ(person.boxes, std::vector<std::u16string>{}) << name;
    fs::copy_file(HostPath(TEXT("\\")) + "/" + name, Variable("TOUR_FOLDER") + "/" + name);
}

/// What makes a copy beside the picture, which may not take the reserve.
void AskForCopies(MainFrame& frame)
{
    SetFreeMemory(NothingToSpare);
    MemoryGauge::Sample(); // as between two of a person's actions
    const Person person;
    Command(frame, CommandRotateCounterClockwise);
    EXPECT_EQ(person.boxes,
              (std::vector<std::u16string>{
                  u"Physical memory available might be not enough. Enforce the process?",
                  u"Failed to create a temporary DIB."}));
    frame.selectionActive = 1;
    frame.selectionLeft = 40;
    frame.selectionTop = 30;
    frame.selectionRight = 340;
    frame.selectionBottom = 330;
    Command(frame, GetMenuItemID(frame.adjustMenu, 0));
    frame.selectionActive = 0;
    ASSERT_FALSE(StatusTexts().empty());
    EXPECT_EQ(StatusTexts().back(), u"Error occurred during adjusting an image.");
}

/// Runs the tour in a process of its own and answers what it printed. With `ends` it ends with what
/// it saved.
std::string Tour(const std::string& picture, const std::string& folder, const std::string& memory,
                 const std::string& ends)
{
    fs::create_directories(folder);
    const ProcessResult result =
        RunTavrix({"--gtest_also_run_disabled_tests", "--gtest_filter=SmallMemory.DISABLED_Tour"},
                  {{"TOUR_PICTURE", picture},
                   {"TOUR_FOLDER", folder},
                   {"TOUR_ENDS", ends},
                   {"TAVRIX_MEMORY", memory},
                   {"TMPDIR", "/dev/shm"}, // a disk may take long over thousands of small files
                   {"TAVRIX_LANG", "en"},
                   {"TAVRIX_SCREEN", "320x240"}},
                  {}, fs::read_symlink("/proc/self/exe"), 250);
    EXPECT_EQ(result.exitCode, 0) << result.output;
    return result.output;
}

} // namespace

TEST(SmallMemory, DISABLED_Tour)
{
    WriteSettings(u"[Tavrix]\r\nShowToolbox=0\r\nShowColorbox=0\r\n");
    for (const char* plugin : {"INPUT/PNG", "OUTPUT/PNG", "ADJUST/Invert"})
        InstallPlugin(tavrix::testing::InBuild("/bin/PLUGINS/") + std::string(plugin) + ".dll",
                      std::string(plugin).substr(0, std::string(plugin).find('/')));
    std::vector<Step> steps = {Look, Paint, Turn, Invert,
                               [](MainFrame& frame) { Save(frame, "saved.png"); }};
    if (Variable("TOUR_ENDS").empty()) {
        steps.push_back(AskForCopies);
        steps.push_back([](MainFrame& frame) { Save(frame, "unchanged.png"); });
    }
    EXPECT_EQ(RunProgramOn(Variable("TOUR_PICTURE"), steps), 0);
    std::cout << "lines on files: " << linesOnFiles << std::endl;
}

TEST(SmallMemory, ATourOnFilesSavesTheSameBytesAndWhatNeedsACopyIsRefusedAndChangesNothing)
{
    const char* const given = std::getenv("TAVRIX_TOUR_PICTURE"); // a larger one, by hand
    const std::string picture = given != nullptr ? given : WriteTestPng(600, 480);
    const char* const memory = given != nullptr ? "16M" : "1600K";
    const std::string small = TestHome() + "/small";
    const std::string ample = TestHome() + "/ample";
    const std::string withFiles = Tour(picture, small, memory, "");
    const std::string without = Tour(picture, ample, "1G", "there");
    EXPECT_NE(without.find("lines on files: 0\n"), std::string::npos) << without;
    const size_t told = withFiles.find("lines on files: ");
    ASSERT_NE(told, std::string::npos) << withFiles;
    EXPECT_GT(std::atoi(withFiles.c_str() + told + 16), 100) << withFiles;

    const std::string saved = BytesOf(small + "/saved.png");
    EXPECT_GT(saved.size(), 1000u);
    EXPECT_TRUE(saved == BytesOf(ample + "/saved.png")) << "the files differ";
    EXPECT_TRUE(saved == BytesOf(small + "/unchanged.png")) << "what was refused left its marks";
    EXPECT_FALSE(saved == BytesOf(picture));
}
