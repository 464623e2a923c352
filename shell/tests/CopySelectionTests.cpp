// The work copy of the selection and the question about memory in front of it.

#include "shell/MemoryQuestion.h"
#include "shell/tests/FlowTesting.h"

#include <cmath>
#include <limits>

using namespace flowtest;

TEST(CopySelection, WithoutASelectionNothingIsDoneAndAnEarlierCopyStays)
{
    RunOnPicture([](MainFrame& frame) {
        EXPECT_EQ(frame.CopySelection(), NothingDone);
        EXPECT_EQ(frame.workImage, nullptr);
        Select(frame, 1, 1, 2, 2);
        ASSERT_EQ(frame.CopySelection(), Done);
        const Raster* const copy = frame.workImage;
        frame.selectionActive = 0;
        EXPECT_EQ(frame.CopySelection(), NothingDone);
        EXPECT_EQ(frame.workImage, copy);
        frame.DropWorkImage();
        EXPECT_EQ(frame.workImage, nullptr);
        EXPECT_EQ(frame.workAllocator, nullptr);
        frame.DropWorkImage(); // once more does no harm
    });
}

TEST(CopySelection, TheCopyHas24BitsAndTheSelectedPixelsCornersIncluded)
{
    RunOnPicture([](MainFrame& frame) {
        Select(frame, 3.99, 7.5, 12.01, 9.99);
        ASSERT_EQ(frame.CopySelection(), Done);
        const RasterInfo info = InfoOf(*frame.workImage);
        EXPECT_EQ(info.width, 10u);
        EXPECT_EQ(info.height, 3u);
        EXPECT_EQ(info.depth, 24u);
        for (int y = 0; y < 3; ++y)
            for (int x = 0; x < 10; ++x)
                ASSERT_EQ(PixelOf(*frame.workImage, x, y), TestColor(3 + x, 7 + y));
        // The next one takes its place.
        Select(frame, 0, 0, 0, 0);
        ASSERT_EQ(frame.CopySelection(), Done);
        EXPECT_EQ(InfoOf(*frame.workImage).width, 1u);
        EXPECT_EQ(PixelOf(*frame.workImage, 0, 0), TestColor(0, 0));
        ExpectPicture(*frame.image);
        frame.DropWorkImage();
    });
}

TEST(CopySelection, DroppingTheCopyGivesAllItsMemoryBack)
{
    RunOnPicture([](MainFrame& frame) {
        const auto before = tavrix::platform::CountHoldings();
        Select(frame, 0, 0, 59, 49);
        ASSERT_EQ(frame.CopySelection(), Done);
        EXPECT_GT(tavrix::platform::CountHoldings().heapBytes, before.heapBytes);
        EXPECT_EQ(tavrix::platform::CountHoldings().heaps, before.heaps + 1) << "a heap of its own";
        frame.DropWorkImage();
        EXPECT_EQ(tavrix::platform::CountHoldings().heapBytes, before.heapBytes);
        EXPECT_EQ(tavrix::platform::CountHoldings().heaps, before.heaps);
    });
}

TEST(CopySelection, TheQuestionComesWhenNoMoreThanFourBytesAPixelAreFree)
{
    Scope scope;
    SetLanguage(1033);
    RunOnPicture([](MainFrame& frame) {
        Select(frame, 10, 20, 29, 34); // 20 by 15
        {
            const Answering answering(IDNO);
            SetFreeMemory(20 * 15 * 4 + 1);
            EXPECT_EQ(frame.CopySelection(), Done);
            EXPECT_TRUE(answering.Boxes().empty());
        }
        {
            const Answering answering(IDNO);
            SetFreeMemory(20 * 15 * 4);
            EXPECT_EQ(frame.CopySelection(), NothingDone);
            ExpectOneBox(frame, answering,
                         u"Physical memory available might be not enough. Enforce the process?",
                         u"confirm", 52);
            EXPECT_EQ(frame.workImage, nullptr) << "the copy before it is gone";
        }
        {
            // Only Yes goes on.
            const Answering answering(IDCANCEL);
            EXPECT_EQ(frame.CopySelection(), NothingDone);
            EXPECT_EQ(answering.Boxes().size(), 1u);
        }
        SetLanguage(1041);
        const Answering answering(IDYES);
        EXPECT_EQ(frame.CopySelection(), Done);
        ExpectOneBox(frame, answering, u"作業用メモリが足りない可能性があります。強行しますか？",
                     u"確認", 52);
        frame.DropWorkImage();
    });
}

TEST(CopySelection, WhatCannotBeAllocatedIsToldByItsOwnTextInBothLanguages)
{
    Scope scope;
    RunOnPicture([](MainFrame& frame) {
        const struct {
            SIZE_T size;
            const char16_t* english;
            const char16_t* japanese;
        } rows[] = {
            {sizeof(HeapAllocator), u"Failed to allocate temorary memory space.",
             u"作業用メモリの確保に失敗しました。"},
            {sizeof(Raster), u"Failed to allocate temorary memory space for processing.",
             u"処理用DIBの確保に失敗しました。"},
        };
        Select(frame, 10, 20, 29, 34);
        for (const auto& row : rows)
            for (const LANGID language : {1033, 1041}) {
                SetLanguage(language);
                const Answering answering;
                bool fired = false;
                SetAllocationFault([&](SIZE_T size) {
                    const bool fires = !fired && size == row.size;
                    fired = fired || fires;
                    return fires;
                });
                EXPECT_EQ(frame.CopySelection(), NothingDone);
                SetAllocationFault(nullptr);
                ExpectOneBox(frame, answering, language == 1041 ? row.japanese : row.english,
                             language == 1041 ? u"エラー" : u"ERROR", 16);
                EXPECT_EQ(frame.workImage, nullptr);
                EXPECT_EQ(frame.workAllocator, nullptr);
            }
    });
}

TEST(CopySelection, WithoutMemoryForItsLinesThereIsACopyAndNobodyIsHarmed)
{
    Scope scope;
    SwitchUndoOn();
    RunOnPicture([](MainFrame& frame) {
        const Answering answering(IDYES);
        Select(frame, 10, 20, 29, 34);
        SetFreeMemory(0);
        MemoryGauge::Sample();
        EXPECT_EQ(frame.CopySelection(), Done) << "the making of its lines is not looked at";
        ASSERT_NE(frame.workImage, nullptr);
        Send(frame, FirstEffect);
        EXPECT_EQ(frame.workImage, nullptr);
        SetFreeMemory(64u << 20);
        MemoryGauge::Sample();
        Send(frame, 40205);
        ExpectPicture(*frame.image);
    });
}

TEST(CopySelection, CornersThatNoDragLeavesAreSurvived)
{
    Scope scope;
    SwitchUndoOn();
    RunOnPicture([](MainFrame& frame) {
        const Answering answering(IDNO);
        const f64 nan = std::nan("");
        const f64 far = std::numeric_limits<f64>::infinity();
        const f64 rows[][4] = {
            {29, 34, 10, 20},         {10, 34, 29, 20},        {-5, -5, -3, -3},
            {-10, -10, 4, 4},         {50, 40, 90, 80},        {1000, 1000, 1010, 1010},
            {nan, nan, nan, nan},     {nan, 0, 5, nan},        {-far, -far, far, far},
            {far, far, -far, -far},   {-1e300, 0, 1e300, 4},   {0, 0, 4e9, 4e9},
            {0, 0, 2147483646.0, 0},  {0, 0, 0, 2147483646.0}, {-1, -1, -1, -1},
            {-2147483648.0, 0, 0, 0},
        };
        for (const auto& row : rows) {
            SCOPED_TRACE(::testing::Message()
                         << row[0] << ' ' << row[1] << ' ' << row[2] << ' ' << row[3]);
            Select(frame, row[0], row[1], row[2], row[3]);
            const i32 result = frame.CopySelection();
            EXPECT_EQ(result == Done, frame.workImage != nullptr);
            const Area outside = {30, 0, 9999, 9999};
            ExpectPicture(*frame.image, Unchanged, outside);
            frame.DropWorkImage();
        }
        // Out of order: nothing is selected, and an effect on it changes nothing.
        Select(frame, 29, 34, 10, 20);
        Send(frame, FirstEffect);
        ExpectPicture(*frame.image);
        Send(frame, 40205);
        ExpectPicture(*frame.image);
        // Over the edge: what lies in the picture is changed.
        Select(frame, 50, 40, 90, 80);
        Send(frame, FirstEffect);
        ExpectPicture(*frame.image, Inverted, {50, 40, 90, 80});
        Send(frame, 40205);
        ExpectPicture(*frame.image);
    });
}

TEST(MemoryNeed, IsFourBytesAPixelAndEndsAtTheLargestNumber)
{
    EXPECT_EQ(MemoryNeed(20, 15), 1200u);
    EXPECT_EQ(MemoryNeed(0, 15), 0u);
    EXPECT_EQ(MemoryNeed(15, 0), 0u);
    EXPECT_EQ(MemoryNeed(0x80000000, 2), 0x400000000u);
    EXPECT_EQ(MemoryNeed(0xFFFFFFFF, 0x40000000), 0xFFFFFFFF00000000u);
    EXPECT_EQ(MemoryNeed(0xFFFFFFFF, 0x40000001), ~u64{0});
    EXPECT_EQ(MemoryNeed(0xFFFFFFFF, 0xFFFFFFFF), ~u64{0});
}
