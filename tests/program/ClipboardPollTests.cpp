// What the program takes note of when the desktop's clipboard changes, and emptying it.

#include "resources/Ids.h"
#include "tests/support/Program.h"
#include "tests/support/TestPicture.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QImage>

#include <gtest/gtest.h>

using namespace tavrix::testing;

namespace
{

void OfferPicture()
{
    QImage image(8, 6, QImage::Format_RGB32);
    image.fill(0xFF336699);
    QGuiApplication::clipboard()->setImage(image);
}

void OfferText()
{
    QGuiApplication::clipboard()->setText(QStringLiteral("words"));
}

bool IsGray(HMENU menu, UINT item)
{
    const UINT state = GetMenuState(menu, item, MF_BYCOMMAND);
    EXPECT_NE(state, static_cast<UINT>(-1)) << item;
    return (state & MF_GRAYED) != 0;
}

/// Both entries that depend on what is offered.
bool AreGray(MainFrame& frame)
{
    frame.FetchMenus();
    const bool paste = IsGray(frame.pasteMenu, 40195);
    EXPECT_EQ(paste, IsGray(frame.clearMenu, 40193));
    return paste;
}

void Tick(MainFrame& frame, WPARAM timer)
{
    EXPECT_EQ(SendMessageW(frame.window, WM_TIMER, timer, 0), 0);
}

} // namespace

TEST(ClipboardPoll, WithAPictureTheEntriesFollowWhatIsOffered)
{
    InstallBundledPlugins();
    RunProgramOn(WriteTestPng(20, 10), [](MainFrame& frame) {
        QGuiApplication::clipboard()->clear();
        Tick(frame, 2);
        EXPECT_EQ(frame.clipboardHasImage, 0u);
        EXPECT_TRUE(AreGray(frame));
        OfferPicture();
        EXPECT_EQ(frame.clipboardHasImage, 0u) << "asked at the timer only";
        Tick(frame, 1);
        Tick(frame, 3);
        EXPECT_EQ(frame.clipboardHasImage, 0u) << "no timer of ours";
        Tick(frame, 2);
        EXPECT_EQ(frame.clipboardHasImage, 1u);
        EXPECT_FALSE(AreGray(frame));
        OfferText();
        Tick(frame, 2);
        EXPECT_EQ(frame.clipboardHasImage, 0u);
        EXPECT_TRUE(AreGray(frame));
    });
}

TEST(ClipboardPoll, WithoutAChangeTheEntriesStayAsTheyAre)
{
    InstallBundledPlugins();
    RunProgramOn(WriteTestPng(20, 10), [](MainFrame& frame) {
        OfferPicture();
        Tick(frame, 2);
        frame.FetchMenus();
        EnableMenuItem(frame.pasteMenu, 40195, MF_BYCOMMAND | MF_GRAYED);
        Tick(frame, 2);
        EXPECT_TRUE(IsGray(frame.pasteMenu, 40195));
        EXPECT_FALSE(IsGray(frame.clearMenu, 40193));
    });
}

TEST(ClipboardPoll, WithoutAPictureTheEntriesStayGrayUntilTheFirstLoad)
{
    InstallBundledPlugins();
    const std::string file = WriteTestPng(20, 10);
    RunProgram(u"", [&](MainFrame& frame) {
        OfferPicture();
        frame.FetchMenus();
        EnableMenuItem(frame.pasteMenu, 40195, MF_BYCOMMAND | MF_ENABLED);
        EnableMenuItem(frame.clearMenu, 40193, MF_BYCOMMAND | MF_ENABLED);
        Tick(frame, 2);
        EXPECT_EQ(frame.clipboardHasImage, 1u);
        EXPECT_TRUE(AreGray(frame)) << "whatever is offered";
        frame.OpenFile(DevicePath(file).c_str());
        ASSERT_EQ(frame.imagePresent, 1u);
        EXPECT_FALSE(AreGray(frame));
    });
}

TEST(ClipboardPoll, TheTimerAsksOnceASecondFromTheStartToTheClose)
{
    InstallBundledPlugins();
    RunProgramOn(WriteTestPng(20, 10), [](MainFrame& frame) {
        OfferPicture();
        const DWORD begun = GetTickCount();
        EXPECT_TRUE(PumpUntil([&] { return frame.clipboardHasImage == 1; }, 3000));
        const DWORD first = GetTickCount();
        EXPECT_LE(first - begun, 1500u);
        QGuiApplication::clipboard()->clear();
        EXPECT_TRUE(PumpUntil([&] { return frame.clipboardHasImage == 0; }, 3000));
        EXPECT_GE(GetTickCount() - first, 800u);
        EXPECT_LE(GetTickCount() - first, 1500u);
        frame.OnClose();
        EXPECT_FALSE(KillTimer(frame.window, 2)) << "it is gone";
    });
}

TEST(ClearClipboard, EmptiesWhatIsOfferedAndTheNextPollGraysTheEntries)
{
    InstallBundledPlugins();
    RunProgramOn(WriteTestPng(20, 10), [](MainFrame& frame) {
        OfferPicture();
        Tick(frame, 2);
        SendMessageW(frame.window, WM_COMMAND, 40193, 0);
        EXPECT_TRUE(QGuiApplication::clipboard()->image().isNull());
        EXPECT_FALSE(CloseClipboard()) << "it was closed again";
        EXPECT_EQ(frame.clipboardHasImage, 1u) << "until the poll";
        Tick(frame, 2);
        EXPECT_EQ(frame.clipboardHasImage, 0u);
        EXPECT_TRUE(AreGray(frame));
    });
}

TEST(ClearClipboard, DoesNothingWithoutAPictureThatWasSeenAndNothingToAClipboardThatIsOpen)
{
    InstallBundledPlugins();
    RunProgramOn(WriteTestPng(20, 10), [](MainFrame& frame) {
        OfferText();
        Tick(frame, 2);
        SendMessageW(frame.window, WM_COMMAND, 40193, 0);
        EXPECT_EQ(QGuiApplication::clipboard()->text(), QStringLiteral("words"));
        OfferPicture();
        SendMessageW(frame.window, WM_COMMAND, 40193, 0);
        EXPECT_FALSE(QGuiApplication::clipboard()->image().isNull()) << "not polled yet";
        Tick(frame, 2);
        ASSERT_TRUE(OpenClipboard(nullptr));
        SendMessageW(frame.window, WM_COMMAND, 40193, 0);
        EXPECT_FALSE(QGuiApplication::clipboard()->image().isNull());
        EXPECT_TRUE(CloseClipboard()) << "left to whoever has it";
    });
}
