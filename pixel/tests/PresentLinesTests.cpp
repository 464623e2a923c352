// Showing a list of paged lines on a surface of depth 24.

#include "pixel/tests/PlainDither.h"
#include "platform/testing/Faults.h"

using namespace tavrix::testing;

namespace
{

constexpr u32 Reserve = 1000;
constexpr u64 Plenty = 1u << 24;

class PresentLines : public PagingTest
{
protected:
    void TearDown() override
    {
        SetFreeMemory(Plenty);
        EXPECT_EQ(SwapFiles(), 0u);
        PagingTest::TearDown();
    }

    static size_t SwapFiles()
    {
        size_t count = 0;
        for (const auto& entry : std::filesystem::directory_iterator(HostPath(FirstFolder)))
            count += entry.path().extension() == ".swp" ? 1 : 0;
        return count;
    }

    /// A list of lines of 24 bits over the store, and what stands in them.
    void Make(PagedLineList& list, u32 width, u32 height, u32 seed)
    {
        SetFreeMemory(Plenty);
        rows = RandomRows(seed, height, width * 3);
        ASSERT_EQ(list.Create(width, 0, 24), 1);
        for (u32 y = 0; y < height; ++y)
            ASSERT_EQ(list.InsertLine(static_cast<i32>(y), rows[y].data()), 1);
    }

    /// What should show after all rows before `end`.
    void ShowPlain(PlainSurface& plain, u32 columns, u32 end, u32 method)
    {
        for (u32 y = 0; y < end; ++y)
            PlainColorRow(plain, rows[y].data(), y, columns, method);
    }

    static void ExpectNothingLocked(PagedLineList& list, u32 height)
    {
        for (u32 y = 0; y < height; ++y)
            EXPECT_EQ(list.UnlockLine(static_cast<i32>(y)), 0) << "line " << y << " was locked";
    }

    SwapStore store{FirstFolder, Reserve};
    Rows rows;
};

} // namespace

TEST_F(PresentLines, ShowsAListAsPresentShowsARaster)
{
    Places places(73);
    for (u32 width = 1; width <= 33; ++width)
        for (const u32 method : {0u, 1u}) {
            const u32 height = 1 + places.Below(9);
            PagedLineList list(&store);
            Make(list, width, height, width);
            SurfaceTwin shown(1 + places.Below(40), 1 + places.Below(9), 24, width);
            EXPECT_EQ(shown.surface.PresentLines(&list, method), 1);
            ShowPlain(shown.plain, std::min(width, shown.plain.width),
                      std::min(height, shown.plain.height), method);
            shown.ExpectSame();
            ExpectNothingLocked(list, height);
        }
}

TEST_F(PresentLines, ShowsLinesThatAreInTheirFiles)
{
    for (const u32 method : {0u, 1u}) {
        PagedLineList list(&store);
        Make(list, 20, 6, method + 8);
        SetFreeMemory(Reserve);
        EXPECT_EQ(store.MakeRoom(0), -1) << "everything went out and it is still not enough";
        EXPECT_EQ(SwapFiles(), 6u);
        SetFreeMemory(Plenty);
        SurfaceTwin shown(18, 5, 24, 1);
        EXPECT_EQ(shown.surface.PresentLines(&list, method), 1);
        ShowPlain(shown.plain, 18, 5, method);
        shown.ExpectSame();
        EXPECT_EQ(SwapFiles(), 1u) << "the line below the surface was not fetched";
        ExpectNothingLocked(list, 6);
    }
}

TEST_F(PresentLines, ShowsAListOfWhichOneLineFitsIntoMemory)
{
    for (const u32 method : {0u, 1u}) {
        PagedLineList list(&store);
        Make(list, 20, 6, method + 8);
        SetFreeMemory(Reserve);
        EXPECT_EQ(store.MakeRoom(0), -1);
        SetFreeMemory(Reserve + 61);
        SetFileFault([](tavrix::platform::FileOperation operation, const WCHAR*, DWORD*) {
            if (operation == tavrix::platform::FileOperation::Read)
                SetFreeMemory(Reserve + 1);
            if (operation == tavrix::platform::FileOperation::Write)
                SetFreeMemory(Reserve + 61);
            return false;
        });
        SurfaceTwin shown(20, 6, 24, 1);
        EXPECT_EQ(shown.surface.PresentLines(&list, method), 1);
        SetFileFault(nullptr);
        ShowPlain(shown.plain, 20, 6, method);
        shown.ExpectSame();
        EXPECT_EQ(SwapFiles(), 5u) << "all but the last";
        ExpectNothingLocked(list, 6);
    }
}

TEST_F(PresentLines, ALineThatCannotBeLockedEndsTheFrameAndTheRowsBeforeItShow)
{
    for (const u32 method : {0u, 1u})
        for (u32 line = 0; line < 5; ++line) {
            PagedLineList list(&store);
            Make(list, 11, 5, line);
            SetFreeMemory(Reserve);
            EXPECT_EQ(store.MakeRoom(0), -1);
            SetFreeMemory(Plenty);
            u32 opened = 0;
            SetFileFault([&](tavrix::platform::FileOperation operation, const WCHAR*, DWORD*) {
                return operation == tavrix::platform::FileOperation::Open && opened++ == line;
            });
            SurfaceTwin shown(11, 4, 24, line);
            EXPECT_EQ(shown.surface.PresentLines(&list, method), line < 4 ? -1 : 1);
            SetFileFault(nullptr);
            ShowPlain(shown.plain, 11, std::min(line, 4u), method);
            shown.ExpectSame();
            ExpectNothingLocked(list, 5);
            // Nothing came to harm: the next frame is whole.
            EXPECT_EQ(shown.surface.PresentLines(&list, method), 1);
            ShowPlain(shown.plain, 11, 4, method);
            shown.ExpectSame();
        }
}

TEST_F(PresentLines, LinesThatWereLockedBeforeStaySo)
{
    PagedLineList list(&store);
    Make(list, 4, 3, 1);
    u8* line = nullptr;
    ASSERT_EQ(list.LockLine(1, &line), 1);
    SurfaceTwin shown(4, 3, 24, 1);
    EXPECT_EQ(shown.surface.PresentLines(&list, 0), 1);
    EXPECT_EQ(list.UnlockLine(1), 1);
    ExpectNothingLocked(list, 3);
}

TEST_F(PresentLines, RefusesNullThenNoSurfaceThenAnotherDepthAndHasNoGreyPath)
{
    ScreenSurface none;
    PagedLineList list(&store);
    EXPECT_EQ(none.PresentLines(nullptr, 0), -4);
    EXPECT_EQ(none.PresentLines(&list, 0), -3);
    SurfaceTwin grey(4, 3, 2, 1);
    SurfaceTwin color(4, 3, 24, 2);
    EXPECT_EQ(color.surface.PresentLines(nullptr, 0), -4);
    EXPECT_EQ(color.surface.PresentLines(&list, 0), -1) << "a list never created";
    EXPECT_EQ(grey.surface.PresentLines(&list, 0), -1);
    for (const u32 depth : {1u, 8u, 16u, 32u}) {
        ASSERT_EQ(list.Create(4, 3, depth), 1);
        for (const u32 method : {0u, 1u}) {
            EXPECT_EQ(color.surface.PresentLines(&list, method), -1) << depth;
            EXPECT_EQ(grey.surface.PresentLines(&list, method), -1) << depth;
        }
        ExpectNothingLocked(list, 3);
    }
    Make(list, 4, 3, 5);
    for (const u32 method : {0u, 1u})
        EXPECT_EQ(grey.surface.PresentLines(&list, method), -1);
    for (const u32 method : {2u, 0xFFFFFFFFu})
        EXPECT_EQ(color.surface.PresentLines(&list, method), -1);
    ExpectNothingLocked(list, 3);
    grey.ExpectSame();
    color.ExpectSame();
}

TEST_F(PresentLines, AnEmptyListShowsNothing)
{
    PagedLineList list(&store);
    ASSERT_EQ(list.Create(4, 0, 24), 1);
    SurfaceTwin shown(4, 3, 24, 1);
    for (const u32 method : {0u, 1u})
        EXPECT_EQ(shown.surface.PresentLines(&list, method), 1);
    shown.ExpectSame();
}

TEST_F(PresentLines, WithoutMemoryForTheTableNothingIsDrawn)
{
    PagedLineList list(&store);
    Make(list, 7, 3, 1);
    SurfaceTwin shown(7, 3, 24, 2);
    const std::vector<u8> before = shown.plain.bits;
    void* const bits = SectionOf(shown.surface).bmBits;
    i32 result = 0;
    ForEveryFault(
        FaultKind::Allocation,
        [&] {
            shown.plain.bits = before;
            std::memcpy(bits, before.data(), before.size());
            result = shown.surface.PresentLines(&list, 1);
        },
        [&](bool fired) {
            EXPECT_EQ(result, fired ? -2 : 1);
            if (result == 1)
                ShowPlain(shown.plain, 7, 3, 1);
            shown.ExpectSame();
            ExpectNothingLocked(list, 3);
        });
}

TEST_F(PresentLines, AfterALineThatCannotBeLockedTheTableGoesWithTheNextFrameOrTheEnd)
{
    const auto held = tavrix::platform::CountHoldings();
    for (const bool again : {false, true}) {
        PagedLineList list(&store);
        Make(list, 7, 3, 1);
        SurfaceTwin shown(7, 3, 24, 2);
        SetFreeMemory(Reserve);
        for (int frame = 0; frame < 3; ++frame)
            EXPECT_EQ(shown.surface.PresentLines(&list, 1), -1);
        SetFreeMemory(Plenty);
        if (again) {
            EXPECT_EQ(shown.surface.PresentLines(&list, 1), 1);
        }
    }
    EXPECT_TRUE(tavrix::platform::CountHoldings() == held);
}
