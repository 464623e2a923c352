// What the first start does with the command line that a second one hands over. Here it comes as
// the message alone; the two processes are met in the tests of the whole program.

#include "platform/testing/core/TestHome.h"
#include "platform/testing/Faults.h"
#include "shell/Job.h"
#include "tests/support/Program.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <fstream>
#include <memory>

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

/// Hands bytes over that stand in a block of exactly their size.
LRESULT HandOverBytes(const MainFrame& frame, const void* bytes, size_t size)
{
    const auto block = std::make_unique<unsigned char[]>(size);
    std::memcpy(block.get(), bytes, size);
    COPYDATASTRUCT record = {1, static_cast<DWORD>(size), block.get()};
    return SendMessageW(frame.window, WM_COPYDATA, 0, reinterpret_cast<LPARAM>(&record));
}

LRESULT HandOver(const MainFrame& frame, const std::u16string& text)
{
    return HandOverBytes(frame, text.c_str(), (text.size() + 1) * sizeof(WCHAR));
}

LRESULT HandOverFile(const MainFrame& frame, const std::string& hostPath)
{
    return HandOver(frame, DevicePath(hostPath));
}

u32 Width(MainFrame& frame)
{
    RasterInfo info = {};
    info.size = sizeof info;
    frame.image->GetInfo(&info);
    return info.width;
}

std::u16string LastCommandLine(MainFrame& frame)
{
    const WCHAR* text = nullptr;
    EXPECT_GE(frame.settings->GetText(TEXT("Tavrix"), TEXT("LastCommandLine"), &text), 1);
    return text != nullptr ? text : u"(none)";
}

/// The characters that a pointer's bytes make, up to the first zero.
std::u16string PointerText(const void* pointer)
{
    auto value = reinterpret_cast<uintptr_t>(pointer);
    std::u16string text;
    for (; (value & 0xFFFF) != 0; value >>= 16)
        text.push_back(static_cast<char16_t>(value & 0xFFFF));
    return text;
}

/// Watches the frame: the names that were opened, in order, and how deep dialogs lay in each other.
struct Watched {
    std::vector<std::u16string> opened;
    std::vector<std::u16string> boxes;
    std::function<void(HWND dialog, bool box)> script;
    int deepest = 0;
    Watched()
    {
        OnModal([this](HWND dialog, bool box) {
            std::erase_if(open, [](HWND other) { return !IsWindow(other); });
            open.push_back(dialog);
            deepest = std::max(deepest, static_cast<int>(open.size()));
            if (box)
                boxes.push_back(BoxText(dialog));
            else if (opened.empty() || opened.back() != mainFrame->openedPath)
                opened.emplace_back(mainFrame->openedPath);
            if (script)
                script(dialog, box);
            if (box)
                EndDialog(dialog, IDOK);
        });
    }

private:
    std::vector<HWND> open;
};

} // namespace

TEST(HandOvers, TheTextIsOpenedBeforeTheAnswerWhichIsOne)
{
    InstallFixture("quick");
    const std::string file = MakeFile("a.quick");
    RunProgram(u"", [&](MainFrame& frame) {
        EXPECT_EQ(frame.imagePresent, 0U);
        EXPECT_EQ(HandOverFile(frame, file), 1);
        EXPECT_EQ(frame.imagePresent, 1U);
        EXPECT_EQ(Width(frame), 30U);
        EXPECT_EQ(std::u16string(frame.openedPath), DevicePath(file));
    });
}

TEST(HandOvers, SpacesAndJapaneseSignsAreOfTheName)
{
    InstallFixture("quick");
    const std::string file = MakeFile("画像 その 1.quick");
    RunProgram(u"", [&](MainFrame& frame) {
        EXPECT_EQ(HandOverFile(frame, file), 1);
        EXPECT_EQ(frame.imagePresent, 1U);
    });
}

TEST(HandOvers, TheSettingsGetTheBytesOfThePointerItself)
{
    InstallFixture("quick");
    RunProgram(u"first line", [](MainFrame& frame) {
        EXPECT_EQ(LastCommandLine(frame), u"first line");
        WCHAR text[] = u"\\none.xyz";
        COPYDATASTRUCT record = {1, sizeof text, text};
        (void)frame.OnCopyData(nullptr, &record);
        EXPECT_EQ(LastCommandLine(frame), PointerText(text));
    });
}

TEST(HandOvers, APointerWithoutAZeroInItIsWrittenWhole)
{
    InstallFixture("quick");
    RunProgram(u"", [](MainFrame& frame) {
        // No byte is read: the count is 0.
        COPYDATASTRUCT record = {1, 0, reinterpret_cast<void*>(uintptr_t{0x0044004300420041})};
        if (sizeof(void*) == 4)
            record.lpData = reinterpret_cast<void*>(uintptr_t{0x00420041});
        EXPECT_EQ(frame.OnCopyData(nullptr, &record), 1);
        EXPECT_EQ(LastCommandLine(frame), sizeof(void*) == 4 ? u"AB" : u"ABCD");
    });
}

TEST(HandOvers, WithoutDataNothingIsOpenedAndTheSettingIsEmptied)
{
    Watched watched; // without a plugin every open would show a box
    RunProgram(u"first line", [&](MainFrame& frame) {
        watched.boxes.clear();
        COPYDATASTRUCT record = {1, 20, nullptr};
        EXPECT_EQ(frame.OnCopyData(nullptr, &record), 1);
        EXPECT_EQ(LastCommandLine(frame), u"");
        EXPECT_EQ(frame.OnCopyData(nullptr, nullptr), 1);
        EXPECT_TRUE(watched.boxes.empty());
    });
}

TEST(HandOvers, AnEmptyTextWritesTheSettingAndOpensNothing)
{
    InstallFixture("quick");
    Watched watched;
    RunProgram(u"first line", [&](MainFrame& frame) {
        EXPECT_EQ(HandOver(frame, u""), 1);
        EXPECT_NE(LastCommandLine(frame), u"first line");
        EXPECT_EQ(frame.imagePresent, 0U);
        EXPECT_EQ(frame.openedPath[0], 0);
        EXPECT_TRUE(watched.boxes.empty());
    });
}

TEST(HandOvers, ATextWithoutAZeroEndsAtTheCount)
{
    InstallFixture("quick");
    const std::u16string path = DevicePath(MakeFile("a.quick"));
    RunProgram(u"", [&](MainFrame& frame) {
        EXPECT_EQ(HandOverBytes(frame, path.data(), path.size() * sizeof(WCHAR)), 1);
        EXPECT_EQ(std::u16string(frame.openedPath), path);
    });
}

TEST(HandOvers, HalfACharacterAtTheEndIsLeftOut)
{
    InstallFixture("quick");
    const std::u16string path = DevicePath(MakeFile("a.quick"));
    RunProgram(u"", [&](MainFrame& frame) {
        const std::u16string longer = path + u"x";
        EXPECT_EQ(HandOverBytes(frame, longer.data(), path.size() * sizeof(WCHAR) + 1), 1);
        EXPECT_EQ(std::u16string(frame.openedPath), path);
        EXPECT_EQ(HandOverBytes(frame, "x", 1), 1); // an empty text
        EXPECT_EQ(std::u16string(frame.openedPath), path);
    });
}

TEST(HandOvers, WhatStandsBehindAZeroIsNoPartOfTheName)
{
    InstallFixture("quick");
    const std::u16string path = DevicePath(MakeFile("a.quick"));
    RunProgram(u"", [&](MainFrame& frame) {
        EXPECT_EQ(HandOver(frame, path + std::u16string(1, u'\0') + u"more"), 1);
        EXPECT_EQ(std::u16string(frame.openedPath), path);
    });
}

TEST(HandOvers, APathTooLongForAnyFileOpensNothingNotItsBeginning)
{
    InstallFixture("quick");
    // The first 259 characters name a file that is there.
    std::u16string path = DevicePath(TestHome()) + u"\\";
    std::string name(253 - path.size(), 'n');
    path += std::u16string(name.begin(), name.end()) + u".quick";
    ASSERT_EQ(path.size(), 259U);
    (void)MakeFile(name + ".quick");
    RunProgram(u"", [&](MainFrame& frame) {
        EXPECT_EQ(HandOver(frame, path + u".quick"), 1);
        EXPECT_EQ(frame.imagePresent, 0U);
        EXPECT_EQ(HandOver(frame, std::u16string(32767, u'x')), 1);
        EXPECT_EQ(frame.imagePresent, 0U);
        EXPECT_EQ(HandOver(frame, path), 1);
        EXPECT_EQ(frame.imagePresent, 1U);
        EXPECT_EQ(std::u16string(frame.openedPath), path);
    });
}

TEST(HandOvers, AFileThatIsNotThereLeavesThePictureAndItsPath)
{
    InstallFixture("quick");
    Watched watched;
    const std::string file = MakeFile("a.quick");
    RunProgramOn(file, [&](MainFrame& frame) {
        EXPECT_EQ(HandOver(frame, u"\\not there.quick"), 1);
        EXPECT_EQ(Width(frame), 30U);
        EXPECT_EQ(std::u16string(frame.openedPath), DevicePath(file));
    });
    EXPECT_TRUE(watched.boxes.empty());
}

namespace
{

void ExpectNoPluginBox(LANGID language, const std::u16string& words)
{
    Scope scope;
    SetLanguage(language);
    Watched watched;
    RunProgram(u"", [&](MainFrame& frame) {
        watched.boxes.clear();
        EXPECT_EQ(HandOverFile(frame, MakeFile("a.quick")), 1);
    });
    EXPECT_EQ(watched.boxes, std::vector<std::u16string>{words});
}

} // namespace

TEST(HandOvers, WithoutAnyPluginTheFirstStartTellsIt)
{
    ExpectNoPluginBox(1033, u"No INPUT plugin is installed");
}

TEST(HandOvers, WithoutAnyPluginTheFirstStartTellsItInJapanese)
{
    ExpectNoPluginBox(1041, u"読み込みプラグインがインストールされていません。");
}

TEST(HandOvers, WhileAJobRunsTheyAreAnsweredAtOnceAndOpenedInOrderAfterIt)
{
    InstallFixture("quick");
    InstallFixture("progress");
    const std::string slow = MakeFile("a.progress");
    const std::string one = MakeFile("b.quick");
    const std::string two = MakeFile("c.quick");
    Watched watched;
    bool sent = false;
    watched.script = [&](HWND dialog, bool) {
        if (sent)
            return;
        sent = true;
        const DWORD begin = GetTickCount();
        EXPECT_EQ(HandOverFile(*mainFrame, one), 1);
        EXPECT_EQ(HandOverFile(*mainFrame, two), 1);
        EXPECT_LT(GetTickCount() - begin, 300U); // the job takes 700 ms
        EXPECT_TRUE(IsWindow(dialog));
        EXPECT_EQ(std::u16string(mainFrame->openedPath), DevicePath(slow));
    };
    RunProgram(u"", [&](MainFrame& frame) {
        frame.OpenFile(DevicePath(slow).c_str());
        EXPECT_TRUE(sent);
        EXPECT_EQ(watched.opened,
                  (std::vector{DevicePath(slow), DevicePath(one), DevicePath(two)}));
        EXPECT_EQ(watched.deepest, 1); // never a job inside a job
        EXPECT_EQ(std::u16string(frame.openedPath), DevicePath(two));
    });
}

TEST(HandOvers, WhileTheCommandLinesOwnFileOpensTheyWaitForIt)
{
    InstallFixture("quick");
    const std::string first = MakeFile("a.quick");
    const std::string second = MakeFile("b.quick");
    Watched watched;
    watched.script = [&](HWND, bool) {
        if (watched.opened.size() == 1) {
            EXPECT_EQ(HandOverFile(*mainFrame, second), 1);
        }
    };
    RunProgramOn(first, [&](MainFrame& frame) {
        EXPECT_EQ(watched.opened, (std::vector{DevicePath(first), DevicePath(second)}));
        EXPECT_EQ(watched.deepest, 1);
        EXPECT_EQ(std::u16string(frame.openedPath), DevicePath(second));
    });
}

TEST(HandOvers, WhileAPluginAsksForItsSettingsTheyWait)
{
    InstallFixture("quick");
    InstallFixture("asking");
    const std::string asking = MakeFile("a.asking");
    const std::string other = MakeFile("b.quick");
    Watched watched;
    watched.script = [&](HWND, bool box) {
        if (!box)
            return;
        EXPECT_EQ(HandOverFile(*mainFrame, other), 1);
        EXPECT_EQ(std::u16string(mainFrame->openedPath), DevicePath(asking));
        EXPECT_EQ(mainFrame->imagePresent, 0U);
    };
    RunProgram(u"", [&](MainFrame& frame) {
        frame.OpenFile(DevicePath(asking).c_str());
        EXPECT_EQ(watched.boxes, std::vector<std::u16string>{u"Settings?"});
        EXPECT_EQ(watched.opened, (std::vector{DevicePath(asking), DevicePath(other)}));
        EXPECT_EQ(watched.deepest, 1);
        EXPECT_EQ(Width(frame), 30U);
    });
}

TEST(HandOvers, OneThatComesWhileAQueuedOneOpensGoesBehindTheOthers)
{
    InstallFixture("quick");
    const std::string files[] = {MakeFile("0.quick"), MakeFile("1.quick"), MakeFile("2.quick"),
                                 MakeFile("3.quick")};
    Watched watched;
    watched.script = [&](HWND, bool) {
        if (watched.opened.size() == 1) {
            HandOverFile(*mainFrame, files[1]);
            HandOverFile(*mainFrame, files[2]);
        } else if (watched.opened.size() == 2) {
            HandOverFile(*mainFrame, files[3]);
        }
    };
    RunProgram(u"", [&](MainFrame& frame) {
        EXPECT_EQ(HandOverFile(frame, files[0]), 1);
        EXPECT_EQ(watched.opened, (std::vector{DevicePath(files[0]), DevicePath(files[1]),
                                               DevicePath(files[2]), DevicePath(files[3])}));
        EXPECT_EQ(watched.deepest, 1);
    });
}

TEST(HandOvers, ABoxThatAQueuedOneShowsLetsNoneOvertake)
{
    // Without plugins each open shows a box, outside of any job.
    Watched watched;
    int sent = 0;
    RunProgram(u"", [&](MainFrame& frame) {
        watched.boxes.clear();
        watched.script = [&](HWND, bool) {
            if (sent < 3) {
                ++sent;
                EXPECT_EQ(HandOver(frame, u"\\x"), 1);
            }
        };
        EXPECT_EQ(HandOver(frame, u"\\x"), 1);
        EXPECT_EQ(watched.boxes.size(), 4U);
        EXPECT_EQ(watched.deepest, 1);
    });
}

TEST(HandOvers, ADialogThatIsNoJobDoesNotHoldThemUp)
{
    InstallFixture("quick");
    const std::string file = MakeFile("a.quick");
    Watched watched;
    watched.script = [&](HWND, bool box) {
        if (!box)
            return;
        EXPECT_EQ(HandOverFile(*mainFrame, file), 1);
        EXPECT_EQ(mainFrame->imagePresent, 1U);
    };
    RunProgram(u"", [&](MainFrame& frame) {
        MessageBoxW(frame.window, TEXT("?"), TEXT("?"), MB_OK);
        EXPECT_EQ(watched.deepest, 2);
    });
}

TEST(HandOvers, AJobOfNoFlowOpensThemAtItsEnd)
{
    InstallFixture("quick");
    const std::string file = MakeFile("a.quick");
    RunProgram(u"", [&](MainFrame& frame) {
        {
            const ScopedHold outer(&frame);
            {
                const ScopedHold inner(&frame);
                EXPECT_EQ(HandOverFile(frame, file), 1);
            }
            EXPECT_EQ(frame.imagePresent, 0U);
        }
        EXPECT_EQ(frame.imagePresent, 1U);
    });
}

TEST(HandOvers, AJobHoldsThemUpWhateverFlowItIsOf)
{
    InstallFixture("quick");
    const std::string file = MakeFile("a.quick");
    Watched watched;
    watched.script = [&](HWND, bool) {
        if (watched.opened.size() != 1)
            return;
        EXPECT_EQ(HandOverFile(*mainFrame, file), 1);
        EXPECT_EQ(mainFrame->imagePresent, 0U);
    };
    RunProgram(u"", [&](MainFrame& frame) {
        EXPECT_EQ(frame.inputPlugins->LoadByIndex(0, 0), Done);
        Raster target(&frame.allocator);
        LoadArguments arguments = {frame.inputPlugins, nullptr, nullptr, &target};
        JobRecord record = {JobLoad, &arguments};
        EXPECT_EQ(RunJob(frame.window, frame.instance, &record), 1);
        EXPECT_EQ(frame.imagePresent, 1U);
        EXPECT_EQ(watched.deepest, 1);
    });
}

TEST(HandOvers, AFlowThatGoesOnBehindItsJobOpensThemAtItsOwnEnd)
{
    InstallFixture("quick");
    const std::string file = MakeFile("a.quick");
    RunProgram(u"", [&](MainFrame& frame) {
        {
            const ScopedFlow flow(&frame);
            {
                const ScopedHold job(&frame);
                EXPECT_EQ(HandOverFile(frame, file), 1);
            }
            EXPECT_EQ(frame.imagePresent, 0U);
        }
        EXPECT_EQ(frame.imagePresent, 1U);
    });
}

TEST(HandOvers, TheCloseOfTheWindowDropsWhatWaitsAndWhatStillComes)
{
    InstallFixture("quick");
    const std::string file = MakeFile("a.quick");
    Watched watched;
    RunProgram(u"", [&](MainFrame& frame) {
        {
            const ScopedHold hold(&frame);
            EXPECT_EQ(HandOverFile(frame, file), 1);
            frame.OnClose();
        }
        EXPECT_EQ(HandOverFile(frame, file), 1);
        EXPECT_EQ(frame.imagePresent, 0U);
    });
    EXPECT_TRUE(watched.opened.empty());
}

TEST(HandOvers, WithoutMemoryTheyAreAnsweredAndLost)
{
    MainFrame frame; // without a window, and its settings not open
    const ScopedHold hold(&frame);
    ForEveryFault(FaultKind::Allocation, [&] {
        for (const std::u16string text : {u"one", u"two"}) {
            COPYDATASTRUCT record = {1, static_cast<DWORD>(text.size() * sizeof(WCHAR)),
                                     const_cast<WCHAR*>(text.data())};
            EXPECT_EQ(frame.OnCopyData(nullptr, &record), 1);
        }
        // What is kept is whole, and in order.
        std::vector<std::u16string> kept;
        for (const HandOvers::Name* name = frame.handOvers.first; name; name = name->next)
            kept.emplace_back(name->text);
        EXPECT_TRUE(std::is_sorted(kept.begin(), kept.end()));
        for (const std::u16string& text : kept)
            EXPECT_TRUE(text == u"one" || text == u"two");
        frame.handOvers.Drop();
        EXPECT_EQ(frame.handOvers.first, nullptr);
        EXPECT_EQ(frame.handOvers.last, nullptr);
    });
}
