// Several lines that enter in one go, down to the physical layer: the same as the same lines one by
// one, also where memory runs out.

#include "PagingTest.h"

#include "image/Raster.h"

namespace
{

/// A raster whose physical lines a test may look at.
class OpenRaster : public Raster
{
public:
    using Raster::Raster;
    std::vector<u8*> Physical() const { return {lines, lines + lineCount}; }
};

using RasterRun = PagingTest;

} // namespace

TEST_F(RasterRun, ARunOfLinesEndsAsTheSameLinesInsertedSingly)
{
    for (u32 before = 0; before < 4; ++before)
        for (u32 count = 0; count < 6; ++count)
            for (u32 at = 0; at <= before; ++at)
                for (int failing = 0; failing <= static_cast<int>(count); ++failing) {
                    CountingAllocator memory;
                    OpenRaster raster(&memory);
                    ASSERT_EQ(raster.Create(2, before, 24, nullptr, nullptr), 1);
                    std::vector<u8*> expected;
                    for (u32 i = 0; i < before; ++i)
                        expected.push_back(AddressOf(raster, static_cast<i32>(i)));
                    raster.UnlockAll();
                    // The blocks of a run's single lines, told by their order: three arrays and the
                    // table come first.
                    memory.asked = 0;
                    memory.fails = [failing](int number, u32) {
                        return failing > 0 && number == 4 + failing;
                    };
                    u32 wanted = count;
                    const i32 status = raster.InsertLines(static_cast<i32>(at), &wanted);
                    memory.fails = nullptr;
                    ASSERT_EQ(status, failing > 0 ? -2 : 1);
                    ASSERT_EQ(InfoOf(raster).height, before + count);
                    const u32 entered = failing > 0 ? static_cast<u32>(failing) - 1 : count;
                    const std::vector<u8*> physical = raster.Physical();
                    ASSERT_EQ(physical.size(), before + entered);
                    for (u32 i = 0; i < before + count; ++i) {
                        u8* row = nullptr;
                        const i32 locked = raster.LockLines(static_cast<i32>(i), &row, nullptr);
                        if (i < at) {
                            ASSERT_EQ(row, expected[i]);
                        } else if (i >= at + count) {
                            ASSERT_EQ(row, expected[i - count]);
                        } else if (i - at < entered) {
                            ASSERT_EQ(row, physical[entered - 1 - (i - at)]);
                        } else if (before > 0) {
                            ASSERT_EQ(row, physical[entered]);
                        } else {
                            ASSERT_EQ(locked, 0);
                        }
                    }
                }
}

TEST_F(RasterRun, WithoutMemoryForTheTableOfARunTheLinesEnterSingly)
{
    CountingAllocator memory;
    {
        OpenRaster raster(&memory);
        ASSERT_EQ(raster.Create(2, 99, 24, nullptr, nullptr), 1);
        // The three arrays come first, then the table.
        memory.fails = [](int number, u32) { return number == 4; };
        memory.asked = 0;
        u32 count = 10;
        ASSERT_EQ(raster.InsertLines(50, &count), 1);
        memory.fails = nullptr;
        EXPECT_EQ(raster.Physical().size(), 109u);
        for (i32 y = 0; y < 109; ++y)
            *AddressOf(raster, y) = static_cast<u8>(y + 1);
        for (i32 y = 0; y < 109; ++y)
            EXPECT_EQ(*AddressOf(raster, y), y + 1);
    }
    EXPECT_EQ(memory.outstanding, 0);
}
