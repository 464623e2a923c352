// The one level of undo: what is taken, where it goes back, and the states in which nothing does.

#include "shell/tests/FlowTesting.h"

using namespace flowtest;

namespace
{

constexpr u32 UndoCommand = 40205;

/// Paints the picture's first and its last pixel, as a tool would.
void Paint(MainFrame& frame)
{
    ASSERT_EQ(frame.image->SetPixel(0, 0, 0x123456FF), Done);
    ASSERT_EQ(frame.image->SetPixel(PictureWidth - 1, PictureHeight - 1, 0x123456FF), Done);
    frame.image->UnlockAll();
}

} // namespace

TEST(Undo, SwitchedOffNoCommandTakesASnapshotAndTheKeyDoesNothing)
{
    RunOnPicture([](MainFrame& frame) {
        const Answering answering;
        EXPECT_FALSE(CanUndo(frame));
        Send(frame, FirstEffect);
        EXPECT_FALSE(CanUndo(frame));
        EXPECT_FALSE(HasSnapshot(frame));
        EXPECT_EQ(frame.undoX, -1);
        EXPECT_EQ(frame.undoY, -1);
        Send(frame, UndoCommand);
        ExpectPicture(*frame.image, Inverted);
    });
}

TEST(Undo, AWholePictureComesBackAndTheEntryGraysAgain)
{
    SwitchUndoOn();
    RunOnPicture([](MainFrame& frame) {
        const Answering answering;
        Send(frame, FirstEffect);
        EXPECT_TRUE(CanUndo(frame));
        EXPECT_EQ(frame.undoX, 0);
        EXPECT_EQ(frame.undoY, 0);
        ExpectPicture(frame.undoImage);
        ExpectPicture(*frame.image, Inverted);
        Paint(frame);
        Send(frame, UndoCommand);
        ExpectPicture(*frame.image);
        EXPECT_FALSE(CanUndo(frame));
        EXPECT_FALSE(HasSnapshot(frame));
        // What is on the screen is what the picture is.
        int top = static_cast<int>(frame.clientOriginY);
        top += (480 - top - 1 - PictureHeight) / 2;
        EXPECT_EQ(ScreenPixels().At((640 - PictureWidth) / 2 + 5, top + 5), TestColor(5, 5));
    });
}

TEST(Undo, TheKeyReachesIt)
{
    SwitchUndoOn();
    RunOnPicture({[](MainFrame& frame) {
                      const Answering answering;
                      Send(frame, FirstAdjust);
                      TypeKey('Z', MK_CONTROL);
                  },
                  [](MainFrame& frame) {
                      ExpectPicture(*frame.image);
                      EXPECT_FALSE(CanUndo(frame));
                  }});
}

TEST(Undo, ASelectionsChangeGoesBackToItsPlaceAndNoFurther)
{
    SwitchUndoOn();
    RunOnPicture([](MainFrame& frame) {
        const Answering answering;
        Select(frame, 10.7, 20.3, 29.5, 34.5);
        Send(frame, FirstAdjust);
        EXPECT_EQ(frame.undoX, 10);
        EXPECT_EQ(frame.undoY, 20);
        EXPECT_EQ(InfoOf(frame.undoImage).width, 20u);
        EXPECT_EQ(InfoOf(frame.undoImage).height, 15u);
        Paint(frame);
        // The place is the snapshot's, not the selection's at the time of the undo.
        Select(frame, 0, 0, 5, 5);
        Send(frame, UndoCommand);
        EXPECT_FALSE(HasSnapshot(frame));
        EXPECT_EQ(PixelOf(*frame.image, 0, 0), 0x123456u) << "painted since, outside of it";
        EXPECT_EQ(PixelOf(*frame.image, PictureWidth - 1, PictureHeight - 1), 0x123456u);
        for (int y = 20; y <= 34; ++y)
            for (int x = 10; x <= 29; ++x)
                ASSERT_EQ(PixelOf(*frame.image, x, y), TestColor(x, y)) << x << ", " << y;
    });
}

// Either number of at least 0 makes it a place.
TEST(Undo, APlaceBeyondOneEdgePutsBackWhatLiesInThePicture)
{
    SwitchUndoOn();
    RunOnPicture([](MainFrame& frame) {
        const struct {
            i32 x;
            i32 y;
        } places[] = {{-1, 2}, {3, -1}};
        for (const auto& place : places) {
            frame.TakeUndo(frame.image, place.x, place.y);
            frame.image->UnlockAll();
            ASSERT_EQ(frame.image->FillAll(0x123456FF), Done);
            Send(frame, UndoCommand);
            EXPECT_FALSE(HasSnapshot(frame));
            for (int y = 0; y < PictureHeight; ++y)
                for (int x = 0; x < PictureWidth; ++x) {
                    const bool inside = x >= place.x && y >= place.y &&
                                        x < PictureWidth + place.x && y < PictureHeight + place.y;
                    ASSERT_EQ(PixelOf(*frame.image, x, y),
                              inside ? TestColor(x - place.x, y - place.y) : 0x123456u)
                        << x << ", " << y;
                }
            for (int y = 0; y < PictureHeight; ++y)
                for (int x = 0; x < PictureWidth; ++x)
                    ASSERT_EQ(frame.image->SetPixel(x, y, TestColor(x, y) << 8 | 0xFF), Done);
        }
    });
}

// The corners of a selection that was dropped stay, and are no place for a whole picture.
TEST(Undo, AWholePictureGoesBackToItsCornerWhateverCornersASelectionLeft)
{
    SwitchUndoOn();
    RunOnPicture([](MainFrame& frame) {
        const Answering answering;
        Select(frame, 10, 20, 29, 34);
        frame.Deselect();
        Send(frame, FirstEffect);
        EXPECT_EQ(frame.undoX, 0);
        EXPECT_EQ(frame.undoY, 0);
        Send(frame, UndoCommand);
        ExpectPicture(*frame.image);
    });
}

TEST(Undo, ASnapshotOfAnotherSizeReplacesThePictureAndTheViewStartsAnew)
{
    InstallFixture("scaling", "SCALE");
    SwitchUndoOn();
    RunOnPicture([](MainFrame& frame) {
        const Answering answering;
        frame.TakeUndo(frame.image, -1, -1);
        Blocks blocks;
        blocks.image = frame.image;
        blocks.width = 200;
        blocks.height = 90;
        EXPECT_EQ(RunKind(frame, JobScale, blocks), Done);
        frame.image->UnlockAll();
        ASSERT_EQ(InfoOf(*frame.image).width, 200u);
        EXPECT_TRUE(CanUndo(frame));
        frame.scrollX = 1234;
        frame.scrollY = 4321;
        Send(frame, UndoCommand);
        ExpectPicture(*frame.image);
        EXPECT_EQ(frame.scrollX, -(640 - PictureWidth) * 0.5);
        EXPECT_EQ(frame.scrollY, -(frame.viewHeight - PictureHeight) * 0.5);
        EXPECT_EQ(frame.zoom, 1.0);
        EXPECT_FALSE(CanUndo(frame));
    });
}

TEST(Undo, APictureFittedToTheWindowIsFittedAnewWhenItsSizeComesBack)
{
    SwitchUndoOn();
    RunOnPicture([](MainFrame& frame) {
        const Answering answering;
        Send(frame, 40020);
        const f64 fitted = frame.zoom;
        EXPECT_EQ(fitted, static_cast<f64>(PictureHeight) / frame.viewHeight);
        frame.TakeUndo(frame.image, -1, -1);
        ASSERT_EQ(frame.image->Create(640, 10, 24, nullptr, nullptr), Done);
        frame.FitToWindow(1);
        ASSERT_EQ(frame.zoom, 1.0);
        Send(frame, UndoCommand);
        EXPECT_EQ(frame.zoom, fitted);
        EXPECT_EQ(frame.zoomCommand, 40020u);
        ExpectPicture(*frame.image);
    });
}

TEST(Undo, ASecondOneFindsTheEntryGrayAndDoesNothing)
{
    SwitchUndoOn();
    RunOnPicture([](MainFrame& frame) {
        const Answering answering;
        frame.TakeUndo(frame.image, -1, -1);
        Send(frame, UndoCommand);
        ExpectPicture(*frame.image);
        // What is left of the snapshot must not be taken over.
        Send(frame, UndoCommand);
        ExpectPicture(*frame.image);
        Send(frame, FirstEffect);
        Send(frame, UndoCommand);
        Send(frame, UndoCommand);
        ExpectPicture(*frame.image);
    });
}

TEST(Undo, BeforeAnySnapshotTheKeyDoesNothing)
{
    SwitchUndoOn();
    RunOnPicture([](MainFrame& frame) {
        Send(frame, UndoCommand);
        ExpectPicture(*frame.image);
        // Not even with the entry enabled by some other way.
        frame.FetchMenus();
        EnableMenuItem(frame.editMenu, UndoCommand, MF_BYCOMMAND | MF_ENABLED);
        Send(frame, UndoCommand);
        ExpectPicture(*frame.image);
        EXPECT_FALSE(CanUndo(frame));
    });
}

TEST(Undo, AGrayEntryGuardsASnapshotThatIsThere)
{
    SwitchUndoOn();
    RunOnPicture([](MainFrame& frame) {
        const Answering answering;
        Send(frame, FirstEffect);
        EnableMenuItem(frame.editMenu, UndoCommand, MF_BYCOMMAND | MF_GRAYED);
        Send(frame, UndoCommand);
        ExpectPicture(*frame.image, Inverted);
        EXPECT_TRUE(HasSnapshot(frame));
    });
}

TEST(Undo, OnlyTheNumberOneSwitchesTheWayBackOn)
{
    RunOnPicture([](MainFrame& frame) {
        const Answering answering;
        frame.undoEnabled = 2;
        Send(frame, FirstEffect);
        EXPECT_TRUE(CanUndo(frame)) << "any number takes a snapshot";
        Send(frame, UndoCommand);
        ExpectPicture(*frame.image, Inverted);
        EXPECT_TRUE(CanUndo(frame));
        frame.undoEnabled = 1;
        Send(frame, UndoCommand);
        ExpectPicture(*frame.image);
    });
}

TEST(Undo, ANewSnapshotTakesTheOldOnesPlace)
{
    SwitchUndoOn();
    RunOnPicture([](MainFrame& frame) {
        const Answering answering;
        Send(frame, FirstEffect);
        Send(frame, FirstAdjust);
        Send(frame, UndoCommand);
        ExpectPicture(*frame.image, Inverted);
        EXPECT_FALSE(CanUndo(frame));
    });
}

TEST(Undo, AFailedEffectIsTakenBackToo)
{
    SwitchUndoOn();
    RunOnPicture([](MainFrame& frame) {
        const Answering answering;
        Ask(frame, TEXT("FixtureFails"), 1);
        Send(frame, FirstEffect);
        ExpectPicture(*frame.image, Inverted);
        EXPECT_TRUE(CanUndo(frame));
        Send(frame, UndoCommand);
        ExpectPicture(*frame.image);
    });
}

TEST(Undo, AnotherPictureLeavesTheSnapshotWhichThenComesBackOverIt)
{
    InstallFixture("quick", "INPUT");
    const std::string file = MakeFile("a.quick");
    SwitchUndoOn();
    RunOnPicture([&](MainFrame& frame) {
        const Answering answering;
        Send(frame, FirstEffect);
        frame.OpenFile(DevicePath(file).c_str());
        ASSERT_EQ(InfoOf(*frame.image).width, 30u);
        EXPECT_TRUE(CanUndo(frame));
        const int height = static_cast<int>(InfoOf(*frame.image).height);
        Send(frame, UndoCommand);
        ExpectPicture(*frame.image, Unchanged, Everywhere, 30, height);
    });
}

TEST(Undo, WithoutMemoryForASnapshotTheCommandGoesOnAndUndoLeavesThePictureAlone)
{
    SwitchUndoOn();
    RunOnPicture([](MainFrame& frame) {
        const Answering answering;
        for (const i32 place : {-1, 0}) {
            SetFreeMemory(0xA0000);
            MemoryGauge::Sample();
            frame.TakeUndo(frame.image, place, place);
            SetFreeMemory(64u << 20);
            MemoryGauge::Sample();
            EXPECT_TRUE(CanUndo(frame)) << "the command does not look at it";
            Send(frame, UndoCommand);
            ExpectPicture(*frame.image);
            EXPECT_FALSE(CanUndo(frame));
        }
    });
}

TEST(Undo, ASnapshotThatRunsOutOfMemoryPartWayIsNoSnapshot)
{
    SwitchUndoOn();
    RunOnPicture([](MainFrame& frame) {
        const Answering answering;
        for (int allowed : {0, 1, 5, 20, 40}) {
            SetAllocationFault([&](SIZE_T) { return allowed-- <= 0; });
            (void)frame.image->UnlockAll();
            frame.TakeUndo(frame.image, -1, -1);
            SetAllocationFault(nullptr);
            Send(frame, UndoCommand);
            ExpectPicture(*frame.image);
        }
    });
}

TEST(Undo, AnIncompleteSnapshotIsNotPutBack)
{
    SwitchUndoOn();
    RunOnPicture([](MainFrame& frame) {
        for (const i32 place : {-1, 0}) {
            // A raster that failed part way names more lines than it has.
            int allowed = 30;
            SetAllocationFault([&](SIZE_T) { return allowed-- <= 0; });
            EXPECT_LT(frame.undoImage.Create(PictureWidth, PictureHeight, 24, nullptr, nullptr), 1);
            SetAllocationFault(nullptr);
            ASSERT_EQ(InfoOf(frame.undoImage).height, u32{PictureHeight});
            frame.undoX = place;
            frame.undoY = place;
            frame.FetchMenus();
            EnableMenuItem(frame.editMenu, UndoCommand, MF_BYCOMMAND | MF_ENABLED);
            Send(frame, UndoCommand);
            ExpectPicture(*frame.image);
            EXPECT_FALSE(CanUndo(frame));
        }
    });
}
