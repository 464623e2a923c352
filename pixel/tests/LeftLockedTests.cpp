// What is returned, and what stays locked, where a line cannot be had in the middle of the work.

#include "Rasters.h"

#include <iterator>

namespace
{

constexpr i32 Lines = 6;
constexpr i32 Missing = 1; // the line that cannot be had
constexpr i32 Probe = 4;   // a line that no work of these tests comes to
constexpr u32 Translucent = 0xC8643280;

using LineNumbers = std::vector<i32>;

class LeftLocked : public PagingTest
{
protected:
    /// A raster whose lines 1 and 4 may be in files, with memory that can be made to run out.
    struct Picture {
        CountingAllocator memory;
        Raster raster{&memory};

        void Refuse()
        {
            memory.fails = [](int, u32) { return true; };
        }
        bool IsInMemory(i32 line)
        {
            u8* row = nullptr;
            return raster.LockLines(line, &row, nullptr) == 1;
        }
    };

    void Make(Picture& picture, u32 depth, bool lineMissing)
    {
        ASSERT_NO_FATAL_FAILURE(MakeRaster(picture.raster, 5, Lines, depth, 7, Paging::Under));
        ASSERT_EQ(picture.raster.ReleaseLines(Probe, 1, 1), 1);
        if (lineMissing) {
            ASSERT_EQ(picture.raster.ReleaseLines(Missing, 1, 1), 1);
            picture.Refuse();
        }
    }
    /// The probe's way in sends every line out that is not pinned.
    static LineNumbers Pinned(Picture& picture)
    {
        LineNumbers pinned;
        u8* row = nullptr;
        picture.memory.fails = nullptr;
        ShortMemory();
        EXPECT_EQ(picture.raster.LockLines(Probe, &row, nullptr), 1);
        picture.Refuse();
        for (i32 line = 0; line < Lines; ++line)
            if (line != Probe && picture.IsInMemory(line))
                pinned.push_back(line);
        picture.memory.fails = nullptr;
        PlentyOfMemory();
        return pinned;
    }
    /// What a copying operation left pinned, with line 1 missing in one of its three rasters.
    struct Left {
        LineNumbers target;
        LineNumbers source;
        LineNumbers mask;
        bool operator==(const Left&) const = default;
    };
    template <typename Work>
    void Run(u32 sourceDepth, u32 targetDepth, int missingIn, const Left& expected,
             const Work& work)
    {
        SCOPED_TRACE(missingIn);
        Picture source;
        Picture target;
        Picture mask;
        ASSERT_NO_FATAL_FAILURE(Make(target, targetDepth, missingIn == 0));
        ASSERT_NO_FATAL_FAILURE(Make(source, sourceDepth, missingIn == 1));
        ASSERT_NO_FATAL_FAILURE(Make(mask, 8, missingIn == 2));
        EXPECT_EQ(work(source.raster, target.raster, mask.raster), NoMemory);
        EXPECT_EQ(Pinned(target), expected.target);
        EXPECT_EQ(Pinned(source), expected.source);
        EXPECT_EQ(Pinned(mask), expected.mask);
        for (Picture* picture : {&target, &source, &mask})
            EXPECT_EQ(picture->raster.UnlockAll(), 1);
        // The row before was done.
        Picture fresh;
        ASSERT_NO_FATAL_FAILURE(Make(fresh, targetDepth, false));
        EXPECT_NE(RowOf(target.raster, 0), RowOf(fresh.raster, 0));
        EXPECT_EQ(RowOf(target.raster, 1), RowOf(fresh.raster, 1));
    }
};

} // namespace

TEST_F(LeftLocked, AMaskThatFailsLeavesThePaintedRowLocked)
{
    const auto paint = [](Raster&, Raster& target, Raster& mask) {
        PixelRect rectangle = {-2, 0, 9, 2};
        const i32 status = target.BlendMask(Translucent, &rectangle, &mask, -2, 0);
        EXPECT_EQ(rectangle.left, 0); // also told when the work ends half way
        EXPECT_EQ(rectangle.right, 4);
        EXPECT_EQ(rectangle.bottom, 2);
        return status;
    };
    for (u32 depth : {24u, 32u}) {
        Run(24, depth, 0, {{}, {}, {}}, paint);
        Run(24, depth, 2, {{1}, {}, {}}, paint);
    }
}

TEST_F(LeftLocked, ASourceThatFailsLeavesTheTargetsRowLocked)
{
    const auto copy = [](Raster& source, Raster& target, Raster&) {
        return source.CopyTo(1, 0, 4, 3, &target, 0, 0, 0xCC0020);
    };
    const auto compose = [](Raster& source, Raster& target, Raster&) {
        return source.CompositeTo(1, 0, 4, 3, &target, 0, 0);
    };
    Run(24, 24, 0, {{}, {}, {}}, copy);
    Run(24, 24, 1, {{1}, {}, {}}, copy);
    for (u32 depth : {24u, 32u}) {
        Run(32, depth, 0, {{}, {}, {}}, compose);
        Run(32, depth, 1, {{1}, {}, {}}, compose);
    }
}

TEST_F(LeftLocked, AMaskedCopyLeavesTheRowsLockedThatItGotBefore)
{
    const auto copy = [](Raster& source, Raster& target, Raster& mask) {
        return source.CopyMasked(1, 0, 4, 3, &target, 0, 0, &mask, 0, 0);
    };
    Run(24, 24, 0, {{}, {}, {}}, copy);
    Run(24, 24, 1, {{1}, {}, {}}, copy);
    Run(24, 24, 2, {{1}, {1}, {}}, copy);
}

TEST_F(LeftLocked, RowsOfAnOutlineAreAskedForThoughNothingIsDrawnOnThem)
{
    for (u32 depth : {24u, 32u}) {
        Picture picture;
        ASSERT_NO_FATAL_FAILURE(Make(picture, depth, true));
        const PixelRect tall = {-1, 0, 5, 3}; // both sides cut away
        if (depth == 24) {
            EXPECT_EQ(picture.raster.FrameRect(Translucent, tall), NoMemory);
        }
        EXPECT_EQ(picture.raster.InvertFrame(tall), NoMemory);
        EXPECT_TRUE(Pinned(picture).empty());
    }
}

TEST_F(LeftLocked, ALostLineEndsTheWorkWithNothingDoneAndTheRowsBehindItStay)
{
    Raster source;
    Raster over;
    Raster mask;
    ASSERT_NO_FATAL_FAILURE(MakeRaster(source, 5, Lines, 24, 1, Paging::None));
    ASSERT_NO_FATAL_FAILURE(MakeRaster(over, 5, Lines, 32, 1, Paging::None));
    ASSERT_NO_FATAL_FAILURE(MakeRaster(mask, 5, Lines, 8, 1, Paging::None));
    const PixelRect part = {0, 0, 4, 3};
    const std::function<i32(Raster&)> works[] = {
        [&](Raster& raster) { return raster.FillAll(0x102030FF); },
        [&](Raster& raster) { return raster.FillRect(Translucent, part); },
        [&](Raster& raster) { return raster.FrameRect(Translucent, part); },
        [&](Raster& raster) { return raster.InvertRect(part); },
        [&](Raster& raster) { return raster.InvertFrame(part); },
        [&](Raster& raster) { return raster.BlendMaskRect(Translucent, part, &mask, 0, 0); },
        [&](Raster& raster) { return source.CopyTo(0, 0, 5, 4, &raster, 0, 0, 0xCC0020); },
        [&](Raster& raster) { return source.CopyMasked(0, 0, 5, 4, &raster, 0, 0, &mask, 0, 0); },
        [&](Raster& raster) { return over.CompositeTo(0, 0, 5, 4, &raster, 0, 0); },
    };
    for (i32 lost : {0, 1, 3})
        for (size_t i = 0; i < std::size(works); ++i) {
            SCOPED_TRACE(testing::Message() << "line " << lost << ", work " << i);
            Raster raster;
            ASSERT_NO_FATAL_FAILURE(MakeRaster(raster, 5, Lines, 24, 7, Paging::Under));
            // No name is left for its file.
            tavrix::testing::SetRandom({7});
            ASSERT_EQ(raster.ReleaseLines(Probe, 1, 1), 1);
            tavrix::testing::SetRandom(std::vector<LONG>(101, 7));
            ASSERT_EQ(raster.ReleaseLines(lost, 1, 1), 0);
            EXPECT_EQ(works[i](raster), 0);
            for (i32 line = 0; line < Lines; ++line) {
                const std::vector<u8> before = PatternRows(7, Lines, PagedStride)[line];
                if (line < lost) {
                    EXPECT_NE(RowOf(raster, line), before) << "row " << line;
                } else if (line > lost) {
                    EXPECT_EQ(RowOf(raster, line), before) << "row " << line;
                }
            }
        }
}
