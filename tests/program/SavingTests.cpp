// From the command to the file on the disk and back, with the bundled plugins: every file that the
// program wrote is read by programs that have nothing to do with it.

#include "foundation/MemoryGauge.h"
#include "foundation/Result.h"
#include "platform/testing/core/TestHome.h"
#include "resources/Ids.h"
#include "tests/support/Program.h"
#include "tests/support/TestPicture.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <filesystem>
#include <fstream>

#include "platform/testing/core/TestPaths.h"

using namespace tavrix::testing;
namespace fs = std::filesystem;

namespace
{

constexpr int Width = 60;
constexpr int Height = 45;

/// Runs a command of the host and answers what it printed, both streams.
std::string OutputOf(const std::string& command, int* status = nullptr)
{
    std::string text;
    FILE* pipe = popen((command + " 2>&1").c_str(), "r");
    char part[512];
    while (pipe != nullptr && fgets(part, sizeof part, pipe) != nullptr)
        text += part;
    const int ended = pipe != nullptr ? pclose(pipe) : -1;
    if (status != nullptr)
        *status = ended;
    return text;
}

std::string Home(const std::string& name)
{
    return HostPath(TEXT("\\")) + "/" + name;
}

std::string Quoted(const std::string& path)
{
    return "'" + path + "'";
}

/// How many pixels of two pictures differ, as another program counts them.
std::string DifferentPixels(const std::string& one, const std::string& other)
{
    return OutputOf("compare -metric AE " + Quoted(one) + " " + Quoted(other) + " null:");
}

/// The difference in decibels; infinite for equal pictures.
double Likeness(const std::string& one, const std::string& other)
{
    return std::stod(
        OutputOf("compare -metric PSNR " + Quoted(one) + " " + Quoted(other) + " null:"));
}

std::string BytesOf(const std::string& path)
{
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

/// What lies in a folder, hidden files too.
std::vector<std::string> NamesIn(const std::string& folder)
{
    std::vector<std::string> names;
    for (const auto& entry : fs::directory_iterator(folder))
        names.push_back(entry.path().filename());
    std::sort(names.begin(), names.end());
    return names;
}

void InstallAll()
{
    for (const char* kind : {"INPUT", "OUTPUT", "PRINT"})
        for (const auto& entry :
             fs::directory_iterator(tavrix::testing::InBuild("/bin/PLUGINS/") + std::string(kind)))
            InstallPlugin(entry.path(), kind);
}

/// A person's answers to the dialogs of a flow, in their order as they come up. Progress dialogs
/// need none.
struct Answers {
    using Answer = std::function<void(HWND)>;

    explicit Answers(std::vector<Answer> planned)
        : pending(std::move(planned)), before(tavrix::platform::Hooks().modalStarted)
    {
        OnModal([this](HWND dialog, bool box) {
            if (!box && GetDlgItem(dialog, ControlProgressBar) != nullptr) {
                before(dialog, box); // keeps what the status line tells
                return;
            }
            if (box)
                boxes.push_back(BoxCaption(dialog) + u": " + BoxText(dialog));
            if (next == pending.size()) {
                ADD_FAILURE() << "a dialog too many: " << Utf8(BoxText(dialog).c_str());
                EndDialog(dialog, box ? IDCANCEL : 0);
                return;
            }
            pending[next++](dialog);
        });
    }
    ~Answers()
    {
        EXPECT_EQ(next, pending.size()) << "dialogs did not come up";
        OnModal(before);
    }
    Answers(const Answers&) = delete;
    Answers& operator=(const Answers&) = delete;

    std::vector<Answer> pending;
    size_t next = 0;
    std::vector<std::u16string> boxes;
    std::function<void(HWND, bool)> before;
};

/// Chooses the filter that begins with `format`, as a person does: the name's extension follows.
void ChooseFilter(HWND dialog, const std::u16string& format)
{
    const HWND box = GetDlgItem(dialog, ControlFileFilter);
    const auto found = static_cast<int>(SendMessageW(box, CB_FINDSTRING, static_cast<WPARAM>(-1),
                                                     reinterpret_cast<LPARAM>(format.c_str())));
    ASSERT_GE(found, 0) << Utf8(format.c_str());
    SendMessageW(box, CB_SETCURSEL, static_cast<WPARAM>(found), 0);
    SendMessageW(dialog, WM_COMMAND, MAKELONG(ControlFileFilter, CBN_SELCHANGE),
                 reinterpret_cast<LPARAM>(box));
}

/// Types a name over what stands in the field and presses Enter.
Answers::Answer TypeName(const std::u16string& name, const std::u16string& format = u"")
{
    return [=](HWND dialog) {
        ASSERT_NE(GetDlgItem(dialog, ControlFileList), nullptr);
        if (!format.empty())
            ChooseFilter(dialog, format);
        const HWND field = GetDlgItem(dialog, ControlFileName);
        SetFocus(field);
        SendMessageW(field, EM_SETSEL, 0, -1);
        CommitText(name);
        TypeKey(VK_RETURN);
    };
}

/// The default button of whatever has come up.
Answers::Answer PressEnter()
{
    return [](HWND) { TypeKey(VK_RETURN); };
}

Answers::Answer PressEscape()
{
    return [](HWND) { TypeKey(VK_ESCAPE); };
}

Answers::Answer AnswerBox(int button)
{
    return [=](HWND box) { EndDialog(box, button); };
}

void Command(MainFrame& frame, u32 id)
{
    SendMessageW(frame.window, WM_COMMAND, id, 0);
}

/// The command of a plugin's entry, told by the name that the plugin gives itself.
u32 EntryOf(HMENU menu, const std::u16string& name)
{
    for (int i = 0; i < GetMenuItemCount(menu); ++i) {
        WCHAR text[200] = {};
        GetMenuStringW(menu, static_cast<UINT>(i), text, 200, MF_BYPOSITION);
        if (std::u16string(text) == name)
            return GetMenuItemID(menu, i);
    }
    ADD_FAILURE() << "no entry " << Utf8(name.c_str());
    return 0;
}

void SelectPart(MainFrame& frame, f64 left, f64 top, f64 right, f64 bottom)
{
    frame.selectionActive = 1;
    frame.selectionLeft = left;
    frame.selectionTop = top;
    frame.selectionRight = right;
    frame.selectionBottom = bottom;
}

/// A picture in the person's home, where the dialogs begin.
std::string PictureAtHome(const std::string& name = "harbour.png", int width = Width,
                          int height = Height)
{
    const std::string made = WriteTestPng(width, height, name);
    if (made != Home(name))
        fs::rename(made, Home(name));
    return Home(name);
}

} // namespace

TEST(Saving, APictureThatIsOpenedByTheDialogIsSavedPixelForPixelAndReadBackFromWhatWasSaved)
{
    HideToolWindows();
    InstallAll();
    const std::string picture = PictureAtHome();
    RunProgram(u"",
               {[&](MainFrame& frame) {
                    const Answers answers({TypeName(u"harbour.png")});
                    Command(frame, CommandOpenFile);
                    EXPECT_EQ(std::u16string(frame.openedPath), u"\\harbour.png");
                    EXPECT_EQ(frame.imagePresent, 1u);
                },
                [&](MainFrame& frame) {
                    // The name gets its extension from the filter; the plugin asks for its
                    // settings.
                    const Answers answers({TypeName(u"copy", u"PNG"), PressEnter()});
                    Command(frame, CommandSave);
                    EXPECT_EQ(std::u16string(frame.savedPath), u"\\copy.png");
                    EXPECT_EQ(DifferentPixels(picture, Home("copy.png")), "0");
                    EXPECT_EQ(OutputOf("identify -format '%m %w %h' " + Quoted(Home("copy.png"))),
                              "PNG 60 45");
                },
                [&](MainFrame& frame) {
                    // What is on the screen comes from the file that was saved from now on.
                    fs::remove(picture);
                    EXPECT_EQ(frame.image->FillAll(0), Done);
                    Command(frame, CommandReloadSaved);
                    EXPECT_EQ(std::u16string(frame.openedPath), u"\\copy.png");
                },
                [&](MainFrame& frame) {
                    const Picture screen = ScreenPixels();
                    const int left = static_cast<int>(-frame.scrollX);
                    const int top =
                        static_cast<int>(-frame.scrollY) + static_cast<int>(frame.clientOriginY);
                    for (int y = 0; y < Height; ++y)
                        for (int x = 0; x < Width; ++x)
                            ASSERT_EQ(screen.At(left + x, top + y), TestColor(x, y))
                                << x << ", " << y;
                }});
}

TEST(Saving, AJpegIsAsNearToThePictureAsThatOfAnotherEncoderAtItsQuality)
{
    HideToolWindows();
    InstallAll();
    const std::string picture = PictureAtHome("harbour.png", 200, 150);
    RunProgramOn(picture, [&](MainFrame& frame) {
        const Answers answers({TypeName(u"copy.jpg"), PressEnter()});
        Command(frame, EntryOf(frame.saveAsMenu, u"JPEG writer"));
        const std::string other = Home("other.jpg");
        OutputOf("convert " + Quoted(picture) + " -quality 90 " + Quoted(other));
        const double ours = Likeness(picture, Home("copy.jpg"));
        EXPECT_GT(ours, Likeness(picture, other) - 1);
        EXPECT_EQ(OutputOf("identify -format '%m %w %h' " + Quoted(Home("copy.jpg"))),
                  "JPEG 200 150");
        EXPECT_EQ(std::u16string(frame.savedPath), u"\\copy.jpg");
    });
}

TEST(Saving, OfASelectionTheSelectedPixelsAloneAreInTheFile)
{
    HideToolWindows();
    InstallAll();
    const std::string picture = PictureAtHome();
    RunProgramOn(picture, [&](MainFrame& frame) {
        SelectPart(frame, 7, 5, 26, 18);
        {
            const Answers answers({TypeName(u"part", u"PNG"), AnswerBox(IDYES), PressEnter()});
            Command(frame, CommandSave);
            EXPECT_EQ(answers.boxes, std::vector<std::u16string>{
                                         u"Question: Do you want to save a selected region?"});
        }
        OutputOf("convert " + Quoted(picture) + " -crop 20x14+7+5 +repage " +
                 Quoted(Home("expected.png")));
        EXPECT_EQ(DifferentPixels(Home("expected.png"), Home("part.png")), "0");
        {
            const Answers answers({TypeName(u"whole", u"PNG"), AnswerBox(IDNO), PressEnter()});
            Command(frame, CommandSave);
        }
        EXPECT_EQ(DifferentPixels(picture, Home("whole.png")), "0");
        EXPECT_EQ(frame.selectionActive, 1u);
    });
}

TEST(Saving, APictureThatWasTurnedAndHasNoFilesSinceIsSavedWhereMemoryIsShort)
{
    HideToolWindows();
    InstallAll();
    const std::string picture = PictureAtHome();
    RunProgramOn(picture, [&](MainFrame& frame) {
        Command(frame, CommandRotateClockwise);
        {
            const Answers answers({TypeName(u"plenty", u"PNG"), PressEnter()});
            Command(frame, CommandSave);
        }
        SwapDirs folders = {};
        ASSERT_EQ(frame.image->GetSwapDirs(&folders), Done);
        ASSERT_EQ(folders.primary, nullptr);
        SetFreeMemory(0xA0000); // no line of any picture has room
        MemoryGauge::Sample();
        const Answers answers({TypeName(u"copy", u"PNG"), PressEnter()});
        Command(frame, CommandSave);
        EXPECT_EQ(answers.boxes, std::vector<std::u16string>{});
        EXPECT_EQ(OutputOf("identify -format '%w %h' " + Quoted(Home("copy.png"))), "45 60");
        EXPECT_EQ(DifferentPixels(Home("plenty.png"), Home("copy.png")), "0");
    });
}

TEST(Saving, VirtuallyTellsTheSizeThatTheFileThenReallyHasAndWritesNothing)
{
    HideToolWindows();
    InstallAll();
    const std::string picture = PictureAtHome("harbour.png", 300, 200);
    RunProgramOn(picture, [&](MainFrame& frame) {
        std::u16string told;
        const auto before = NamesIn(Home(""));
        {
            const Answers answers({TypeName(u"harbour.png"), PressEnter(), AnswerBox(IDOK)});
            Command(frame, CommandVirtualSave);
            ASSERT_EQ(answers.boxes.size(), 1u);
            told = answers.boxes[0];
        }
        EXPECT_EQ(NamesIn(Home("")), before);
        EXPECT_EQ(frame.savedPath[0], 0);
        const auto original = static_cast<double>(fs::file_size(picture)) / 1024;
        {
            const Answers answers({TypeName(u"real.png"), PressEnter()});
            Command(frame, CommandSave);
        }
        const auto output = static_cast<double>(fs::file_size(Home("real.png"))) / 1024;
        char expected[200];
        snprintf(expected, sizeof expected, ": Original : %.1fKB\r\n  Output : %.1fKB", original,
                 output);
        EXPECT_EQ(Utf8(told.c_str()), expected);
    });
}

TEST(Saving, OverAFileAsksFirstAndNoKeepsItToTheByte)
{
    HideToolWindows();
    InstallAll();
    const std::string picture = PictureAtHome();
    std::ofstream(Home("mine.png")) << "irreplaceable";
    RunProgramOn(picture, [&](MainFrame& frame) {
        {
            const Answers answers(
                {TypeName(u"mine.png"), [](HWND box) {
                     EXPECT_EQ(BoxText(box),
                               u"This file already exists. Are you sure to overwrite it?");
                     // The dialog stands behind the box and is left once the box is gone.
                     PostMessageW(GetParent(box), WM_COMMAND, IDCANCEL, 0);
                     EndDialog(box, IDNO);
                 }});
            Command(frame, CommandSave);
        }
        EXPECT_EQ(BytesOf(Home("mine.png")), "irreplaceable");
        EXPECT_EQ(frame.savedPath[0], 0);
        const Answers answers({TypeName(u"mine.png"), AnswerBox(IDYES), PressEnter()});
        Command(frame, CommandSave);
        EXPECT_EQ(DifferentPixels(picture, Home("mine.png")), "0");
    });
}

TEST(Saving, OnAFullDiskLeavesTheOldFileAndNothingBesideItAndSaysSo)
{
    HideToolWindows();
    InstallAll();
    const std::string picture = PictureAtHome("harbour.png", 300, 200);
    for (const char* name : {"mine.png", "mine.jpg"})
        std::ofstream(Home(name)) << "irreplaceable";
    RunProgramOn(picture, [&](MainFrame& frame) {
        const auto before = NamesIn(Home(""));
        for (const WCHAR* name : {TEXT("mine.png"), TEXT("mine.jpg")}) {
            for (const unsigned long long room : {0ULL, 1000ULL}) {
                SetDiskSpace(room);
                {
                    const Answers answers({TypeName(name), AnswerBox(IDYES), PressEnter()});
                    Command(frame, CommandSave);
                }
                SetDiskSpace(1ULL << 40);
                ASSERT_FALSE(StatusTexts().empty());
                EXPECT_EQ(StatusTexts().back(),
                          u"Failed to write an image on file. System doesn't have enough work "
                          u"memory or storage.");
                EXPECT_EQ(BytesOf(Home(Utf8(name))), "irreplaceable") << Utf8(name);
                EXPECT_EQ(NamesIn(Home("")), before);
            }
        }
        // Meant: the name is taken though the work failed.
        EXPECT_EQ(std::u16string(frame.savedPath), u"\\mine.jpg");
    });
}

TEST(Saving, IntoAFolderThatTakesNoFilesSaysSo)
{
    HideToolWindows();
    InstallAll();
    RunProgramOn(PictureAtHome(), [&](MainFrame& frame) {
        for (const WCHAR* name : {TEXT("Computer\\sys\\new.png"), TEXT("Computer\\sys\\new.jpg"),
                                  TEXT("no such folder\\new.png")}) {
            const Answers answers({TypeName(name), PressEnter()});
            Command(frame, CommandSave);
            ASSERT_FALSE(StatusTexts().empty());
            EXPECT_EQ(StatusTexts().back(), u"Failed to write an image on file. System doesn't "
                                            u"have enough work memory or storage.")
                << Utf8(name);
        }
        EXPECT_FALSE(fs::exists(Home("no such folder")));
    });
}

TEST(Saving, LeavingThePluginsSettingsWritesNothingAndKeepsTheLastName)
{
    HideToolWindows();
    InstallAll();
    RunProgramOn(PictureAtHome(), [&](MainFrame& frame) {
        const auto before = NamesIn(Home(""));
        for (const WCHAR* name : {TEXT("new.png"), TEXT("new.jpg")}) {
            const Answers answers({TypeName(name), PressEscape()});
            Command(frame, CommandSave);
        }
        EXPECT_EQ(NamesIn(Home("")), before);
        EXPECT_EQ(frame.savedPath[0], 0);
    });
}

TEST(Opening, AFileThatVanishesUnderTheDialogLeavesTheDialogAndThePictureAsTheyWere)
{
    HideToolWindows();
    InstallAll();
    const std::string other = PictureAtHome("other.png", 30, 20);
    RunProgramOn(PictureAtHome(), [&](MainFrame& frame) {
        const Answers answers({[&](HWND dialog) {
            TypeName(u"other.png")(dialog);
            Pump(50);
        }});
        // The first Enter finds it gone, so that the dialog stays; then it is left.
        fs::remove(other);
        static HWND waiting = nullptr;
        SetTimer(nullptr, 0, 500, [](HWND, UINT, UINT_PTR id, DWORD) {
            KillTimer(nullptr, id);
            waiting = GetFocus();
            TypeKey(VK_ESCAPE);
        });
        Command(frame, CommandOpenFile);
        EXPECT_NE(waiting, nullptr);
        EXPECT_TRUE(std::u16string(frame.openedPath).ends_with(u"\\harbour.png"));
        RasterInfo info = {};
        info.size = sizeof info;
        EXPECT_EQ(frame.image->GetInfo(&info), Done);
        EXPECT_EQ(info.width, static_cast<u32>(Width));
    });
}

/// The command that prints with the plugin of this file.
UINT PrintCommandOf(const MainFrame& frame, const char16_t* file)
{
    UINT index = 0;
    while (frame.printPlugins->Path(index) != nullptr &&
           !std::u16string(frame.printPlugins->Path(index)).ends_with(file))
        ++index;
    EXPECT_NE(frame.printPlugins->Path(index), nullptr);
    return CommandFirstPrint + index;
}

TEST(Printing, ToAPdfGivesThePictureBackBitForBitOnASoundPage)
{
    HideToolWindows();
    InstallAll();
    const std::string picture = PictureAtHome("harbour.png", 200, 150);
    RunProgramOn(picture, [&](MainFrame& frame) {
        std::vector<std::u16string> lines;
        {
            const Answers answers({[&](HWND dialog) {
                                       lines.push_back(ControlText(dialog, ControlPrintStatus));
                                       ClickControl(dialog, ControlPrintConfigure);
                                       lines.push_back(ControlText(dialog, ControlPrintStatus));
                                       ClickControl(dialog, IDOK);
                                   },
                                   PressEnter()});
            Command(frame, PrintCommandOf(frame, u"\\PDF.dll"));
        }
        EXPECT_EQ(lines, (std::vector<std::u16string>{u"First, configure your printer.",
                                                      u"Configuration is set correctly."}));
        std::string file;
        for (const auto& entry : fs::recursive_directory_iterator(HostPath(TEXT("\\My Documents"))))
            if (entry.path().extension() == ".pdf")
                file = entry.path();
        ASSERT_FALSE(file.empty());
        int status = -1;
        const std::string checked = OutputOf("qpdf --check " + Quoted(file), &status);
        EXPECT_EQ(status, 0) << checked;
        OutputOf("pdfimages -png " + Quoted(file) + " " + Quoted(Home("page")));
        EXPECT_EQ(DifferentPixels(picture, Home("page-000.png")), "0");
        EXPECT_EQ(frame.abortRequested, 0u);
    });
}
