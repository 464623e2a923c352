// The memory clip: copying to it and pasting from it, from the command to the pixels.

#include "shell/tests/FlowTesting.h"

#include <limits>

using namespace flowtest;

namespace
{

constexpr u32 Copy = 40036;
constexpr u32 Paste = 40037;
constexpr u32 Clear = 40159;
constexpr u32 Blank = 0;

/// The clip's pixels are those of the test picture from (left, top) on, and blank beyond it.
void ExpectClip(MainFrame& frame, int left, int top, int width, int height)
{
    ASSERT_NE(frame.clipImage, nullptr);
    const RasterInfo info = InfoOf(*frame.clipImage);
    ASSERT_EQ(info.width, static_cast<u32>(width));
    ASSERT_EQ(info.height, static_cast<u32>(height));
    ASSERT_EQ(info.depth, 24u);
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x) {
            const bool inside = left + x < PictureWidth && top + y < PictureHeight;
            ASSERT_EQ(PixelOf(*frame.clipImage, x, y),
                      inside ? TestColor(left + x, top + y) : Blank)
                << x << ", " << y;
        }
    SwapDirs folders = {};
    frame.clipImage->GetSwapDirs(&folders);
    EXPECT_EQ(folders.primary, nullptr);
}

/// A clip of one colour.
void MakeClip(MainFrame& frame, u32 width, u32 height, u32 color)
{
    Send(frame, Clear);
    frame.clipAllocator = new (std::nothrow) HeapAllocator;
    frame.clipImage = new (std::nothrow) Raster(frame.clipAllocator);
    ASSERT_EQ(frame.clipImage->Create(width, height, 24, nullptr, nullptr), Done);
    frame.clipImage->FillAll(color << 8 | 0xFF);
    frame.UpdateClipMenus();
}

void ExpectPasted(MainFrame& frame, Area area, u32 color)
{
    for (int y = 0; y < PictureHeight; ++y)
        for (int x = 0; x < PictureWidth; ++x)
            ASSERT_EQ(PixelOf(*frame.image, x, y), area.Holds(x, y) ? color : TestColor(x, y))
                << x << ", " << y;
}

void Repaint(MainFrame& frame)
{
    for (int y = 0; y < PictureHeight; ++y)
        for (int x = 0; x < PictureWidth; ++x)
            ASSERT_EQ(frame.image->SetPixel(x, y, TestColor(x, y) << 8 | 0xFF), Done);
}

bool HasClipEntries(MainFrame& frame)
{
    frame.FetchMenus();
    const bool gray = IsGray(frame.pasteMenu, Paste);
    EXPECT_EQ(gray, IsGray(frame.clearMenu, Clear));
    return !gray;
}

/// A run on the picture. The clip is the process's to give back, here the test's.
void RunAndClear(std::vector<Step> steps)
{
    steps.push_back([](MainFrame& frame) { frame.ClearMemory(); });
    RunOnPicture(steps);
}

} // namespace

TEST(MemoryClip, TheSelectionIsCopiedItsCornersIncluded)
{
    RunAndClear({[](MainFrame& frame) {
        const Answering answering;
        EXPECT_FALSE(HasClipEntries(frame));
        Select(frame, 3.99, 7.5, 12.01, 9.99);
        Send(frame, Copy);
        ExpectClip(frame, 3, 7, 10, 3);
        EXPECT_TRUE(HasClipEntries(frame));
        Select(frame, 59, 49, 59, 49);
        Send(frame, Copy);
        ExpectClip(frame, 59, 49, 1, 1);
        Select(frame, 0, 0, 59, 0); // a line
        Send(frame, Copy);
        ExpectClip(frame, 0, 0, 60, 1);
        Select(frame, 7, 0, 7, 49); // a column
        Send(frame, Copy);
        ExpectClip(frame, 7, 0, 1, 50);
        EXPECT_TRUE(answering.Boxes().empty());
        ExpectPicture(*frame.image);
        EXPECT_EQ(frame.selectionActive, 1u);
    }});
}

TEST(MemoryClip, WithoutASelectionItTakesThePictureFromTheCornerOfTheLastOneOn)
{
    RunAndClear({[](MainFrame& frame) {
        Send(frame, Copy);
        ExpectClip(frame, 0, 0, PictureWidth, PictureHeight);
        Select(frame, 20.7, 11, 30, 30);
        frame.Deselect();
        Send(frame, Copy);
        ExpectClip(frame, 20, 11, PictureWidth, PictureHeight);
    }});
}

TEST(MemoryClip, HasAHeapOfItsOwnAndDroppingItGivesAllBack)
{
    RunAndClear({[](MainFrame& frame) {
        const auto before = tavrix::platform::CountHoldings();
        for (int i = 0; i < 3; ++i) {
            Send(frame, Copy);
            EXPECT_EQ(tavrix::platform::CountHoldings().heaps, before.heaps + 1);
        }
        Send(frame, Clear);
        EXPECT_EQ(frame.clipImage, nullptr);
        EXPECT_EQ(frame.clipAllocator, nullptr);
        EXPECT_EQ(tavrix::platform::CountHoldings().heaps, before.heaps);
        EXPECT_EQ(tavrix::platform::CountHoldings().heapBytes, before.heapBytes);
        EXPECT_FALSE(HasClipEntries(frame));
    }});
}

TEST(MemoryClip, TheQuestionComesAtFourBytesAPixelWhenTheOldClipIsGone)
{
    Scope scope;
    RunAndClear({[](MainFrame& frame) {
        for (const LANGID language : {LANGID{1033}, LANGID{1041}})
            for (const int answer : {IDNO, IDCANCEL}) {
                SetLanguage(language);
                Select(frame, 10, 20, 29, 34); // 20 by 15
                SetFreeMemory(20 * 15 * 4 + 1);
                {
                    const Answering none(IDNO);
                    Send(frame, Copy);
                    EXPECT_TRUE(none.Boxes().empty());
                    ExpectClip(frame, 10, 20, 20, 15);
                }
                SetFreeMemory(20 * 15 * 4);
                Answering answering(answer);
                answering.onBox = [&frame] { EXPECT_EQ(frame.clipImage, nullptr) << "gone"; };
                Send(frame, Copy);
                ExpectOneBox(
                    frame, answering,
                    language == 1033
                        ? u"Physical memory available might be not enough. Enforce the process?"
                        : u"作業用メモリが足りない可能性があります。強行しますか？",
                    language == 1033 ? u"confirm" : u"確認", 52);
                EXPECT_EQ(frame.clipImage, nullptr);
                EXPECT_EQ(frame.clipAllocator, nullptr);
                EXPECT_TRUE(HasClipEntries(frame)) << "until the menus are looked at again";
                frame.UpdateClipMenus();
                EXPECT_FALSE(HasClipEntries(frame));
            }
        const Answering yes(IDYES);
        Send(frame, Copy);
        EXPECT_EQ(yes.Boxes().size(), 1u);
        ExpectClip(frame, 10, 20, 20, 15);
        // Without a selection the need is the picture's.
        frame.Deselect();
        SetFreeMemory(PictureWidth * PictureHeight * 4);
        Send(frame, Copy);
        EXPECT_EQ(yes.Boxes().size(), 2u);
        SetFreeMemory(PictureWidth * PictureHeight * 4 + 1);
        Send(frame, Copy);
        EXPECT_EQ(yes.Boxes().size(), 2u);
    }});
}

TEST(MemoryClip, WhatCannotBeAllocatedIsToldByItsOwnTextInBothLanguages)
{
    Scope scope;
    RunAndClear({[](MainFrame& frame) {
        const struct {
            SIZE_T size;
            const char16_t* english;
            const char16_t* japanese;
        } rows[] = {
            {sizeof(HeapAllocator), u"Failed to allocate temorary memory space.",
             u"作業用メモリの確保に失敗しました。"},
            {sizeof(Raster), u"Failed to allocate temorary memory space for DIB clip.",
             u"クリップ用DIBの確保に失敗しました。"},
        };
        for (const auto& row : rows)
            for (const LANGID language : {LANGID{1033}, LANGID{1041}}) {
                SetLanguage(language);
                Send(frame, Copy);
                ASSERT_NE(frame.clipImage, nullptr);
                const auto before = tavrix::platform::CountHoldings();
                const Answering answering;
                bool fired = false;
                SetAllocationFault([&](SIZE_T size) {
                    const bool fires = !fired && size == row.size;
                    fired = fired || fires;
                    return fires;
                });
                Send(frame, Copy);
                SetAllocationFault(nullptr);
                ExpectOneBox(frame, answering, language == 1041 ? row.japanese : row.english,
                             language == 1041 ? u"エラー" : u"ERROR", 16);
                EXPECT_EQ(frame.clipImage, nullptr);
                EXPECT_EQ(frame.clipAllocator, nullptr);
                EXPECT_EQ(tavrix::platform::CountHoldings().heaps, before.heaps - 1);
                EXPECT_TRUE(HasClipEntries(frame));
            }
    }});
}

TEST(MemoryClip, WithoutMemoryForItsLinesThereIsAClipThatPastesNothing)
{
    Scope scope;
    RunAndClear({[](MainFrame& frame) {
        const Answering answering(IDYES);
        SetFreeMemory(0);
        MemoryGauge::Sample();
        Send(frame, Copy);
        SetFreeMemory(64u << 20);
        MemoryGauge::Sample();
        EXPECT_NE(frame.clipImage, nullptr);
        EXPECT_EQ(answering.Boxes().size(), 1u) << "the question alone";
        Select(frame, 5, 5, 9, 9);
        Send(frame, Paste);
        ExpectPicture(*frame.image);
    }});
}

TEST(MemoryClip, PastingNeedsASelectionAndSaysSoInBothLanguages)
{
    Scope scope;
    RunAndClear({[](MainFrame& frame) {
        for (const bool clip : {false, true})
            for (const LANGID language : {LANGID{1033}, LANGID{1041}}) {
                if (clip)
                    Send(frame, Copy);
                SetLanguage(language);
                Select(frame, 1, 1, 5, 5);
                frame.Deselect();
                const Answering answering;
                Send(frame, Paste);
                ExpectOneBox(frame, answering,
                             language == 1033 ? u"Coordinates to paste must be pointed."
                                              : u"貼り付ける座標が指定されていません",
                             language == 1033 ? u"ERROR" : u"エラー", 16);
                ExpectPicture(*frame.image);
            }
        Send(frame, Clear);
        Select(frame, 1, 1, 5, 5);
        const Answering answering;
        Send(frame, Paste); // nothing to paste
        EXPECT_TRUE(answering.Boxes().empty());
        ExpectPicture(*frame.image);
    }});
}

TEST(MemoryClip, AllOfTheClipLandsAtTheSelectionsCornerAndOnlyThePictureCutsIt)
{
    SwitchUndoOn();
    RunAndClear({[](MainFrame& frame) {
        const Answering answering;
        ASSERT_NO_FATAL_FAILURE(MakeClip(frame, 20, 10, 0x336699));
        const struct {
            f64 left;
            f64 top;
            Area area;
        } rows[] = {{3.9, 4.2, {3, 4, 22, 13}},
                    {50, 45, {50, 45, 59, 49}},
                    {59, 49, {59, 49, 59, 49}},
                    {0, 0, {0, 0, 19, 9}}};
        for (const auto& row : rows) {
            Select(frame, row.left, row.top, row.left, row.top); // of one pixel
            Send(frame, Paste);
            ExpectPasted(frame, row.area, 0x336699);
            EXPECT_EQ(frame.selectionActive, 1u);
            EXPECT_EQ(frame.selectionLeft, row.left);
            ASSERT_NO_FATAL_FAILURE(Repaint(frame));
        }
        EXPECT_FALSE(HasSnapshot(frame));
        EXPECT_FALSE(CanUndo(frame));
        EXPECT_TRUE(answering.Boxes().empty());
        ASSERT_NO_FATAL_FAILURE(MakeClip(frame, 1, 1, 0x336699));
        Select(frame, 7, 8, 30, 30);
        Send(frame, Paste);
        ExpectPasted(frame, {7, 8, 7, 8}, 0x336699);
    }});
}

TEST(MemoryClip, TheKeysCopyAndPasteAndTheScreenShowsIt)
{
    WriteSettings(u"[Tavrix]\r\nShowToolbox=0\r\nShowColorbox=0\r\n");
    int left = 0;
    int top = 0;
    RunAndClear({[](MainFrame& frame) {
                     Select(frame, 0, 0, 9, 9);
                     TypeKey('C', MK_CONTROL);
                 },
                 [&](MainFrame& frame) {
                     ExpectClip(frame, 0, 0, 10, 10);
                     left = (640 - PictureWidth) / 2;
                     top = static_cast<int>(frame.clientOriginY) + static_cast<int>(-frame.scrollY);
                     Select(frame, 30, 20, 30, 20);
                     TypeKey('V', MK_CONTROL);
                 },
                 [&](MainFrame& frame) {
                     EXPECT_EQ(PixelOf(*frame.image, 34, 23), TestColor(4, 3));
                     EXPECT_EQ(ScreenPixels().At(left + 34, top + 23), TestColor(4, 3));
                     EXPECT_EQ(ScreenPixels().At(left + 40, top + 23), TestColor(40, 23));
                 }});
}

TEST(MemoryClip, OutlivesAnotherPicture)
{
    const std::string other = WriteTestPng(33, 22, "other.png");
    RunAndClear({[&](MainFrame& frame) {
        const Answering answering;
        Select(frame, 40, 40, 49, 49);
        Send(frame, Copy);
        frame.OpenFile(DevicePath(other).c_str());
        ASSERT_EQ(InfoOf(*frame.image).width, 33u);
        ExpectClip(frame, 40, 40, 10, 10);
        EXPECT_TRUE(HasClipEntries(frame));
        Select(frame, 1, 2, 1, 2);
        Send(frame, Paste);
        EXPECT_EQ(PixelOf(*frame.image, 4, 6), TestColor(43, 44));
    }});
}

TEST(MemoryClip, APictureOfOtherDepthsIsSurvived)
{
    RunAndClear({[](MainFrame& frame) {
        const Answering answering;
        for (const u32 depth : {8u, 16u, 32u}) {
            ASSERT_EQ(frame.image->Create(33, 21, depth, nullptr, nullptr), Done);
            Select(frame, 2, 2, 20, 20);
            Send(frame, Copy);
            Send(frame, Paste);
            EXPECT_EQ(InfoOf(*frame.clipImage).depth, 24u);
            EXPECT_EQ(InfoOf(*frame.image).depth, depth);
        }
        EXPECT_TRUE(answering.Boxes().empty());
    }});
}

TEST(MemoryClip, CornersThatNoDragLeavesAreSurvived)
{
    RunAndClear({[](MainFrame& frame) {
        const Answering answering(IDNO);
        const f64 far = std::numeric_limits<f64>::infinity();
        const f64 rows[][4] = {{29, 34, 10, 20},   {-5, -5, 4, 4},         {70, 70, 80, 80},
                               {-far, 0, far, 10}, {far, far, -far, -far}, {50, 40, 90, 80}};
        for (const auto& row : rows) {
            Select(frame, row[0], row[1], row[2], row[3]);
            Send(frame, Copy);
            Send(frame, Paste);
        }
        EXPECT_EQ(InfoOf(*frame.image).width, u32{PictureWidth});
    }});
}

TEST(MemoryClip, WithoutAPictureNothingIsPasted)
{
    Scope scope;
    SetLanguage(1033);
    InstallPlugin(tavrix::testing::InBuild("/bin/PLUGINS/INPUT/PNG.dll"));
    RunProgram(u"", [](MainFrame& frame) {
        const Answering answering;
        Send(frame, Copy);
        Send(frame, Paste);
        ExpectOneBox(frame, answering, u"Coordinates to paste must be pointed.", u"ERROR", 16);
        Send(frame, 40056); // the key selects from 0 to -1
        Send(frame, Paste);
        Send(frame, Copy);
        Send(frame, Paste);
        Send(frame, Clear);
        EXPECT_EQ(answering.Boxes().size(), 1u);
        EXPECT_EQ(frame.clipImage, nullptr);
        EXPECT_EQ(InfoOf(*frame.image).depth, 0u);
    });
}
