// What the operations on several rasters do with the rows beside drawing on them: in which order
// rows come in and go out, and that nothing but rows is held.

#include "Rasters.h"

#include "pixel/Brush.h"
#include "platform/testing/Faults.h"

using tavrix::platform::FileOperation;

namespace
{

constexpr const WCHAR* ThirdFolder = TEXT("\\Second Card\\Third\\");
constexpr u32 Copy = 0xCC0020;

using Events = std::string;

class RowHandling : public PagingTest
{
protected:
    void SetUp() override
    {
        PagingTest::SetUp();
        ::CreateDirectoryW(TEXT("\\Second Card\\Third"), nullptr);
    }

    void TearDown() override
    {
        for (Raster* raster : {&source, &target, &mask})
            raster->Reset();
        PagingTest::TearDown();
    }

    /// Three lines, the first two of which sit in files of `folder`; the last one is pinned, so
    /// that nothing has to go when a line comes in.
    static void Make(Raster& raster, u32 depth, const WCHAR* folder)
    {
        PlentyOfMemory();
        ASSERT_EQ(raster.Create(4, 3, depth, folder, nullptr), 1);
        FillPattern(raster, 3);
        ASSERT_EQ(raster.ReleaseLines(0, 2, 1), 1);
        ASSERT_NE(AddressOf(raster, 2), nullptr);
    }

    /// The files read and written while `work` runs without room for a line: 's', 't' and 'm' for
    /// a row of source, target and mask that comes in, the capital where it goes out.
    template <typename Work>
    static Events During(const Work& work)
    {
        Events events;
        ShortMemory();
        tavrix::testing::SetFileFault(
            [&events](FileOperation operation, const WCHAR* path, DWORD*) {
                const std::string file = tavrix::testing::Utf8(path);
                const size_t of = file.find("Third") != std::string::npos    ? 2
                                  : file.find("Second") != std::string::npos ? 1
                                                                             : 0;
                if (operation == FileOperation::Read)
                    events += "stm"[of];
                if (operation == FileOperation::Write)
                    events += "STM"[of];
                return false;
            });
        EXPECT_EQ(work(), 1);
        tavrix::testing::SetFileFault(nullptr);
        PlentyOfMemory();
        return events;
    }

    void MakeAll(u32 sourceDepth, u32 targetDepth)
    {
        Make(source, sourceDepth, FirstFolder);
        Make(target, targetDepth, SecondFolder);
        Make(mask, 8, ThirdFolder);
    }

    Raster source;
    Raster target;
    Raster mask;
};

} // namespace

TEST_F(RowHandling, ACopyReleasesTheSourcesRowBeforeTheTargets)
{
    for (const u32 depth : {24u, 32u})
        for (const u32 targetDepth : {24u, 32u}) {
            MakeAll(depth, targetDepth);
            EXPECT_EQ(During([&] { return source.CopyTo(0, 0, 4, 2, &target, 0, 0, Copy); }),
                      "tsSTtsST")
                << depth << " to " << targetDepth;
        }
}

TEST_F(RowHandling, APictureLaidOverAnotherReleasesTheTargetsRowFirst)
{
    for (const u32 targetDepth : {24u, 32u}) {
        MakeAll(32, targetDepth);
        EXPECT_EQ(During([&] { return source.CompositeTo(0, 0, 2, 2, &target, 0, 0); }), "tsTStsTS")
            << targetDepth;
    }
}

TEST_F(RowHandling, AMaskedCopyReleasesTargetSourceAndMask)
{
    MakeAll(24, 24);
    EXPECT_EQ(During([&] { return source.CopyMasked(0, 0, 4, 2, &target, 0, 0, &mask, 0, 0); }),
              "tsmTSMtsmTSM");
}

TEST_F(RowHandling, PaintingThroughAMaskReleasesThePaintedRowFirst)
{
    for (const u32 depth : {24u, 32u}) {
        MakeAll(24, depth);
        EXPECT_EQ(During([&] {
                      return target.BlendMaskRect(0xC8643280, {0, 0, 3, 1}, &mask, 0, 0);
                  }),
                  "tmTMtmTM")
            << depth;
    }
}

TEST_F(RowHandling, AStretchReleasesTheSourcesRowAndFetchesItAnewForEachRowItFills)
{
    MakeAll(24, 24);
    EXPECT_EQ(During([&] { return source.StretchRect(&target, 0, 0, 1, 0, 0, 0, 3, 1); }),
              "tsSTtsST");
    MakeAll(24, 24);
    EXPECT_EQ(
        During([&] { return source.StretchRegion(&target, 0, 0, 1, 0, 0, 0, 3, 1, 0, 0, 3, 1); }),
        "tsSTtsST");
}

TEST_F(RowHandling, ASnapshotReleasesNoRow)
{
    Make(source, 32, FirstFolder); // lines of 16 bytes, and of 12 in the copy
    Raster copy;
    tavrix::testing::SetFreeMemory(0xA0000 + 13); // room for one of the copy's alone
    MemoryGauge::Sample();
    Events events;
    tavrix::testing::SetFileFault([&events](FileOperation operation, const WCHAR*, DWORD*) {
        events += operation == FileOperation::Read ? "s" : "";
        events += operation == FileOperation::Write ? "S" : "";
        return false;
    });
    EXPECT_EQ(source.SnapshotTo(&copy), 1);
    EXPECT_EQ(events, "ss");
}

TEST_F(RowHandling, OnlyAnOpaqueFillTakesMemory)
{
    for (const u32 depth : {24u, 32u}) {
        Raster alpha;
        Brush brush;
        ASSERT_NO_FATAL_FAILURE(MakeRaster(source, 6, 4, 24, 1, Paging::None));
        ASSERT_NO_FATAL_FAILURE(MakeRaster(target, 6, 4, depth, 2, Paging::None));
        ASSERT_NO_FATAL_FAILURE(MakeRaster(mask, 6, 4, 8, 3, Paging::None));
        ASSERT_NO_FATAL_FAILURE(MakeRaster(alpha, 6, 4, 32, 4, Paging::None));
        ASSERT_EQ(brush.Create(2, 256, 1), 1);
        i32 results[16] = {};
        bool fired = true;
        {
            const tavrix::testing::ArmedFault fault(tavrix::testing::FaultKind::Allocation, 1,
                                                    tavrix::testing::FaultReach::Onward);
            u32 color = 0;
            i32* next = results;
            *next++ = target.GetPixel(1, 1, &color);
            *next++ = target.SetPixel(1, 1, color);
            *next++ = target.FillAll(0x11223344);
            *next++ = target.FillRect(0x112233FF, {0, 0, 3, 2});
            *next++ = target.FillRect(0x11223344, {0, 0, 3, 2});
            *next++ = target.FrameRect(0x11223344, {0, 0, 3, 2});
            *next++ = target.InvertRect({0, 0, 3, 2});
            *next++ = target.InvertFrame({0, 0, 3, 2});
            *next++ = target.BlendMaskRect(0x11223344, {0, 0, 3, 2}, &mask, 0, 0);
            *next++ = source.CopyTo(0, 0, 5, 3, &target, 1, 1, Copy);
            *next++ = alpha.CompositeTo(0, 0, 5, 3, &target, 0, 0);
            *next++ = brush.Stroke(&target, 0x112233FF, 3, 2, nullptr);
            *next++ =
                source.CopyMasked(0, 0, 4, 2, depth == 24 ? &target : &source, 1, 1, &mask, 0, 0);
            *next++ = source.StretchRect(depth == 24 ? &target : &source, 0, 0, 2, 1, 0, 0, 5, 3);
            *next++ = source.StretchRegion(depth == 24 ? &target : &source, 0, 0, 2, 1, 0, 0, 5, 3,
                                           1, 1, 4, 2);
            *next++ = target.UnlockAll();
            fired = fault.Fired();
        }
        EXPECT_FALSE(fired);
        for (const i32 result : results)
            EXPECT_EQ(result, 1) << "operation " << &result - results;
    }
}
