// Left and right exchanged in place, held against the exchange written out pixel by pixel.

#include "Pictures.h"

#include <utility>

namespace
{

using FlipHorizontal = PagingTest;

/// Pixel i and pixel width - 1 - i, 3 bytes each, where both lie inside the line.
i32 PlainFlip(PlainRaster& raster)
{
    for (u32 y = 0; y < raster.height; ++y) {
        const i32 status = raster.Lock(y);
        if (status < 1)
            return status;
        for (u32 i = 0; i < raster.width / 2; ++i) {
            const u32 other = raster.width - 1 - i;
            if (3 * other + 3 <= raster.stride)
                for (u32 byte = 0; byte < 3; ++byte)
                    std::swap(raster.Row(y)[3 * i + byte], raster.Row(y)[3 * other + byte]);
        }
        raster.Release(y);
    }
    return Done;
}

void Check(Twin& twin)
{
    SCOPED_TRACE(::testing::Message()
                 << twin.plain.width << " x " << twin.plain.height << " x " << twin.plain.depth);
    EXPECT_EQ(twin.raster.FlipHorizontal(), PlainFlip(twin.plain));
    ExpectSame({&twin});
}

} // namespace

TEST_F(FlipHorizontal, IsItsFormulaForEveryWidthAtAllDepths)
{
    for (const u32 depth : {8u, 16u, 24u, 32u})
        for (u32 width = 0; width <= 33; ++width) {
            Twin twin(width, 1 + (width * 5) % 9, depth, width);
            Check(twin);
        }
    Twin large(1031, 3, 24, 1);
    Check(large);
}

TEST_F(FlipHorizontal, ExchangesTheFirstPixelWithTheLastAndLeavesTheMiddleAndThePadding)
{
    for (const bool middle : {false, true}) {
        Twin twin(middle ? 3 : 2, 1, 24, 1);
        if (middle)
            twin.SetRows({{1, 2, 3, 4, 5, 6, 7, 8, 9, 91, 92, 93}});
        else
            twin.SetRows({{1, 2, 3, 4, 5, 6, 91, 92}});
        EXPECT_EQ(twin.raster.FlipHorizontal(), Done);
        EXPECT_EQ(RowOf(twin.raster, 0),
                  middle ? (std::vector<u8>{7, 8, 9, 4, 5, 6, 1, 2, 3, 91, 92, 93})
                         : (std::vector<u8>{4, 5, 6, 1, 2, 3, 91, 92}));
    }
}

TEST_F(FlipHorizontal, ThePixelsOfShorterLinesThatHaveNoPartnerStay)
{
    // 9 pixels of one byte: 12 bytes, four pixels of three bytes. No one's partner is among them.
    Twin eight(9, 1, 8, 1);
    EXPECT_EQ(eight.raster.FlipHorizontal(), Done);
    ExpectSame({&eight});
    // 8 pixels of two bytes: five of three bytes, of which 3 and 4 are partners.
    Twin sixteen(8, 1, 16, 1);
    sixteen.SetRows({{0, 0, 0, 1, 1, 1, 2, 2, 2, 3, 3, 3, 4, 4, 4, 5}});
    EXPECT_EQ(sixteen.raster.FlipHorizontal(), Done);
    EXPECT_EQ(RowOf(sixteen.raster, 0),
              (std::vector<u8>{0, 0, 0, 1, 1, 1, 2, 2, 2, 4, 4, 4, 3, 3, 3, 5}));
}

TEST_F(FlipHorizontal, ReleasesEachLineSoThatItMayLeaveMemory)
{
    Twin twin(9, 5, 24, 1, Storage::Paging);
    {
        const WithShortMemory memory;
        EXPECT_EQ(twin.raster.FlipHorizontal(), PlainFlip(twin.plain));
        EXPECT_EQ(FilesIn(FirstFolder).size(), 4u);
    }
    ExpectSame({&twin});
}

TEST_F(FlipHorizontal, ALineThatDoesNotLockEndsItWhereItStands)
{
    for (const u32 depth : {24u, 32u})
        for (u32 line = 0; line < 5; ++line) {
            Twin twin(7, 5, depth, 1, Storage::Paging);
            twin.Refuse(line);
            EXPECT_EQ(twin.raster.FlipHorizontal(), NoMemory);
            EXPECT_EQ(PlainFlip(twin.plain), NoMemory);
            ExpectSame({&twin});
        }
}

TEST_F(FlipHorizontal, ALostLineEndsItWithNothingDone)
{
    Twin twin(4, 3, 24, 1);
    ASSERT_NO_FATAL_FAILURE(AddLostLines(twin, 2));
    EXPECT_EQ(twin.raster.FlipHorizontal(), NothingDone);
    EXPECT_EQ(PlainFlip(twin.plain), Done);
    for (i32 line = 0; line < 3; ++line)
        EXPECT_EQ(RowOf(twin.raster, line), twin.plain.Row(line));
}

TEST_F(FlipHorizontal, ARasterThatWasNotCreatedIsRefused)
{
    Raster raster;
    EXPECT_EQ(raster.FlipHorizontal(), WrongState);
}
