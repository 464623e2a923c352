#include "Rasters.h"

#include "pixel/DibBuffer.h"
#include "platform/testing/Faults.h"

#include <algorithm>
#include <vector>

using tavrix::platform::CountHoldings;
using tavrix::testing::FaultKind;
using tavrix::testing::ForEveryFault;

namespace
{

class DibBufferTest : public PagingTest
{
protected:
    // The system's own drawing objects come with the first use of any, and stay.
    DibBufferTest() { (void)::GetStockObject(SYSTEM_FONT); }
};

/// The buffer's bitmap from its first byte on, and its shape: another bitmap takes its place in the
/// context for as long as it is looked at.
struct Bits {
    explicit Bits(const DibBuffer& buffer)
    {
        HDC dc = nullptr;
        EXPECT_EQ(buffer.GetDC(&dc), 1);
        BITMAPINFO one = {};
        one.bmiHeader = {sizeof(BITMAPINFOHEADER), 1, 1, 1, 24, BI_RGB, 0, 0, 0, 0, 0};
        const HBITMAP other =
            ::CreateDIBSection(nullptr, &one, DIB_RGB_COLORS, nullptr, nullptr, 0);
        const HGDIOBJ own = ::SelectObject(dc, other);
        EXPECT_NE(::GetObjectW(own, sizeof shape, &shape), 0);
        const u8* const first = static_cast<const u8*>(shape.bmBits);
        if (first != nullptr)
            bytes.assign(first, first + shape.bmWidthBytes * shape.bmHeight);
        ::SelectObject(dc, own);
        ::DeleteObject(other);
    }
    BITMAP shape = {};
    std::vector<u8> bytes;
};

/// What CopyFrom is to leave in a fresh buffer, written out.
std::vector<u8> Expected(Raster& raster, u32 width, u32 height, u32 depth)
{
    const Rows rows = RowsOf(raster);
    const size_t rowBytes = (size_t{width} * depth + 31) / 32 * 4;
    std::vector<u8> bytes(rowBytes * height);
    for (u32 i = 0; i < height; ++i) {
        const std::vector<u8>& row = rows[height - 1 - i];
        const size_t copied = std::min({((width + 1) * size_t{3}) / 4 * 4, row.size(), rowBytes});
        std::copy_n(row.begin(), copied, bytes.begin() + static_cast<ptrdiff_t>(i * rowBytes));
    }
    return bytes;
}

} // namespace

TEST_F(DibBufferTest, CreateMakesABlackBitmapAndItsContext)
{
    DibBuffer buffer;
    ASSERT_EQ(buffer.Create(5, 3, 24), 1);
    const Bits bits(buffer);
    EXPECT_EQ(bits.shape.bmWidth, 5);
    EXPECT_EQ(bits.shape.bmHeight, 3);
    EXPECT_EQ(bits.shape.bmBitsPixel, 24);
    EXPECT_EQ(bits.bytes, std::vector<u8>(48));
}

TEST_F(DibBufferTest, CopyFromBeforeCreateIsTheWrongState)
{
    DibBuffer buffer;
    Raster raster;
    EXPECT_EQ(buffer.CopyFrom(&raster), -3);
    EXPECT_EQ(buffer.CopyFrom(nullptr), -3) << "the state is looked at first";
    ASSERT_EQ(buffer.Create(1, 1, 24), 1);
    EXPECT_EQ(buffer.CopyFrom(nullptr), -4);
}

TEST_F(DibBufferTest, GetDCLooksAtItsArgumentFirst)
{
    DibBuffer buffer;
    HDC dc = nullptr;
    EXPECT_EQ(buffer.GetDC(nullptr), -4);
    EXPECT_EQ(buffer.GetDC(&dc), -3);
    EXPECT_EQ(dc, nullptr);
    ASSERT_EQ(buffer.Create(1, 1, 24), 1);
    EXPECT_EQ(buffer.GetDC(nullptr), -4);
    EXPECT_EQ(buffer.GetDC(&dc), 1);
    EXPECT_NE(dc, nullptr);
}

TEST_F(DibBufferTest, APictureOf24BitsLandsBottomUp)
{
    for (u32 width = 1; width <= 33; ++width) {
        Raster raster;
        ASSERT_NO_FATAL_FAILURE(MakeRaster(raster, width, 3, 24, width, Paging::None));
        DibBuffer buffer;
        ASSERT_EQ(buffer.Create(width, 3, 24), 1);
        EXPECT_EQ(buffer.CopyFrom(&raster), 1);
        EXPECT_EQ(Bits(buffer).bytes, Expected(raster, width, 3, 24)) << width;
    }
}

TEST_F(DibBufferTest, TheContextShowsThePictureUpright)
{
    Raster raster;
    ASSERT_EQ(raster.Create(2, 2, 24, nullptr, nullptr), 1);
    ASSERT_EQ(raster.SetPixel(0, 0, 0x010203FF), 1);
    ASSERT_EQ(raster.SetPixel(1, 0, 0x040506FF), 1);
    ASSERT_EQ(raster.SetPixel(0, 1, 0x070809FF), 1);
    DibBuffer buffer;
    ASSERT_EQ(buffer.CreateFrom(&raster, 1), 1);
    HDC dc = nullptr;
    ASSERT_EQ(buffer.GetDC(&dc), 1);
    // The platform's colours have red in the lowest byte.
    EXPECT_EQ(::GetPixel(dc, 0, 0), 0x030201u);
    EXPECT_EQ(::GetPixel(dc, 1, 0), 0x060504u);
    EXPECT_EQ(::GetPixel(dc, 0, 1), 0x090807u);
    EXPECT_EQ(::GetPixel(dc, 1, 1), 0u);
}

TEST_F(DibBufferTest, OtherDepthsStayInsideBothRows)
{
    for (u32 rasterDepth : {8u, 16u, 24u, 32u}) {
        for (u32 depth : {1u, 2u, 4u, 8u, 24u, 32u}) {
            for (u32 width : {1u, 2u, 3u, 7u, 33u}) {
                Raster raster;
                ASSERT_NO_FATAL_FAILURE(MakeRaster(raster, width, 2, rasterDepth, 5, Paging::None));
                DibBuffer buffer;
                ASSERT_EQ(buffer.Create(width, 2, depth), 1);
                EXPECT_EQ(buffer.CopyFrom(&raster), 1);
                EXPECT_EQ(Bits(buffer).bytes, Expected(raster, width, 2, depth))
                    << rasterDepth << " to " << depth << ", width " << width;
            }
        }
    }
}

TEST_F(DibBufferTest, At32BitsOnlyAsManyBytesAsAt24AreCopied)
{
    Raster raster;
    ASSERT_NO_FATAL_FAILURE(MakeRaster(raster, 8, 1, 32, 3, Paging::None));
    DibBuffer buffer;
    ASSERT_EQ(buffer.CreateFrom(&raster, 1), 1);
    std::vector<u8> expected = PatternRows(3, 1, 32)[0];
    std::fill(expected.begin() + 24, expected.end(), u8{0}); // (3 * 9) & ~3
    EXPECT_EQ(Bits(buffer).bytes, expected);
}

TEST_F(DibBufferTest, ALargerPictureIsCutAtTheBuffersSize)
{
    Raster raster;
    ASSERT_NO_FATAL_FAILURE(MakeRaster(raster, 9, 6, 24, 2, Paging::None));
    DibBuffer buffer;
    ASSERT_EQ(buffer.Create(4, 3, 24), 1);
    EXPECT_EQ(buffer.CopyFrom(&raster), 1);
    EXPECT_EQ(Bits(buffer).bytes, Expected(raster, 4, 3, 24));
}

TEST_F(DibBufferTest, ANarrowerPictureLeavesTheRestOfTheRow)
{
    Raster raster;
    ASSERT_NO_FATAL_FAILURE(MakeRaster(raster, 4, 3, 24, 2, Paging::None));
    DibBuffer buffer;
    ASSERT_EQ(buffer.Create(9, 3, 24), 1);
    EXPECT_EQ(buffer.CopyFrom(&raster), 1);
    EXPECT_EQ(Bits(buffer).bytes, Expected(raster, 9, 3, 24));
}

TEST_F(DibBufferTest, ALowerPictureHasNoLineToLock)
{
    Raster raster;
    ASSERT_NO_FATAL_FAILURE(MakeRaster(raster, 4, 2, 24, 2, Paging::None));
    DibBuffer buffer;
    ASSERT_EQ(buffer.Create(4, 3, 24), 1);
    EXPECT_EQ(buffer.CopyFrom(&raster), 0);
    EXPECT_EQ(Bits(buffer).bytes, std::vector<u8>(36));
    Raster never;
    EXPECT_EQ(buffer.CopyFrom(&never), 0);
}

TEST_F(DibBufferTest, ALineThatCannotBeLockedEndsTheCopyWithTheRowsBelowDone)
{
    CountingAllocator memory;
    Raster raster(&memory);
    ASSERT_NO_FATAL_FAILURE(MakeRaster(raster, 5, 4, 24, 1, Paging::Under));
    std::vector<u8> expected = Expected(raster, 5, 4, 24);
    std::fill(expected.begin() + 2 * 16, expected.end(), u8{0});
    ASSERT_EQ(raster.ReleaseLines(1, 1, 1), 1); // into a file
    DibBuffer buffer;
    ASSERT_EQ(buffer.Create(5, 4, 24), 1);
    memory.fails = [](int, u32) { return true; };
    EXPECT_EQ(buffer.CopyFrom(&raster), 0);
    memory.fails = nullptr;
    EXPECT_EQ(Bits(buffer).bytes, expected) << "rows 3 and 2 are copied, row 1 is not to be had";
    EXPECT_EQ(buffer.CopyFrom(&raster), 1);
    EXPECT_EQ(Bits(buffer).bytes, Expected(raster, 5, 4, 24));
    EXPECT_EQ(raster.UnlockAll(), 1);
}

TEST_F(DibBufferTest, ARasterThatPagesIsCopiedWhole)
{
    Raster raster;
    ASSERT_NO_FATAL_FAILURE(MakeRaster(raster, 7, 9, 24, 4, Paging::Under));
    const std::vector<u8> expected = Expected(raster, 7, 9, 24);
    ShortMemory();
    for (i32 line = 0; line < 8; ++line)
        ASSERT_EQ(raster.ReleaseLines(line, 1, 1), 1);
    DibBuffer buffer;
    ASSERT_EQ(buffer.Create(7, 9, 24), 1);
    EXPECT_EQ(buffer.CopyFrom(&raster), 1);
    EXPECT_EQ(Bits(buffer).bytes, expected);
    // Each line went out again at its release, but for the last, which no release of its own frees.
    EXPECT_EQ(FilesIn(FirstFolder).size(), 8u);
    PlentyOfMemory();
    EXPECT_EQ(raster.UnlockAll(), 1);
}

TEST_F(DibBufferTest, CreateFromTakesSizeAndDepthAndCopiesOnRequestOnly)
{
    Raster raster;
    ASSERT_NO_FATAL_FAILURE(MakeRaster(raster, 6, 2, 32, 1, Paging::None));
    DibBuffer buffer;
    EXPECT_EQ(buffer.CreateFrom(&raster, 0), 1);
    const Bits empty(buffer);
    EXPECT_EQ(empty.shape.bmWidth, 6);
    EXPECT_EQ(empty.shape.bmHeight, 2);
    EXPECT_EQ(empty.shape.bmBitsPixel, 32);
    EXPECT_EQ(empty.bytes, std::vector<u8>(48));
    EXPECT_EQ(buffer.CreateFrom(&raster, 2), 1);
    EXPECT_EQ(Bits(buffer).bytes, Expected(raster, 6, 2, 32));
}

TEST_F(DibBufferTest, CreateFromGivesTheFailureOfWhatItDid)
{
    DibBuffer buffer;
    EXPECT_EQ(buffer.CreateFrom(nullptr, 1), -4);
    Raster never;
    EXPECT_EQ(buffer.CreateFrom(&never, 1), -1) << "no bitmap of no pixels";
    CountingAllocator memory;
    Raster raster(&memory);
    ASSERT_NO_FATAL_FAILURE(MakeRaster(raster, 5, 4, 24, 1, Paging::Under));
    ASSERT_EQ(raster.ReleaseLines(1, 1, 1), 1);
    memory.fails = [](int, u32) { return true; };
    EXPECT_EQ(buffer.CreateFrom(&raster, 1), 0);
    memory.fails = nullptr;
    EXPECT_EQ(raster.UnlockAll(), 1);
}

TEST_F(DibBufferTest, ANullRasterLeavesWhatIsThere)
{
    DibBuffer buffer;
    ASSERT_EQ(buffer.Create(5, 3, 24), 1);
    EXPECT_EQ(buffer.CreateFrom(nullptr, 1), -4);
    EXPECT_EQ(Bits(buffer).shape.bmWidth, 5);
}

TEST_F(DibBufferTest, CreateDropsWhatIsThere)
{
    DibBuffer buffer;
    ASSERT_EQ(buffer.Create(5, 3, 24), 1);
    const auto held = CountHoldings();
    ASSERT_EQ(buffer.Create(2, 7, 8), 1);
    EXPECT_EQ(CountHoldings().drawingObjects, held.drawingObjects);
    EXPECT_EQ(Bits(buffer).shape.bmHeight, 7);
}

TEST_F(DibBufferTest, ARefusedShapeIsAFailureThatLeavesNothing)
{
    const auto before = CountHoldings();
    const struct {
        u32 width, height, depth;
    } shapes[] = {{0, 1, 24},          {1, 0, 24},          {1, 1, 0},
                  {1, 1, 3},           {1, 1, 0x10018},     {0xFFFFFFFF, 1, 24},
                  {1, 0xFFFFFFFF, 24}, {0x80000000, 1, 24}, {0x7FFFFFFF, 0x7FFFFFFF, 24}};
    for (const auto& shape : shapes) {
        DibBuffer buffer;
        ASSERT_EQ(buffer.Create(5, 3, 24), 1);
        EXPECT_EQ(buffer.Create(shape.width, shape.height, shape.depth), -1);
        HDC dc = nullptr;
        EXPECT_EQ(buffer.GetDC(&dc), -3);
        EXPECT_EQ(CountHoldings().drawingObjects, before.drawingObjects);
        EXPECT_EQ(buffer.Create(1, 1, 24), 1);
    }
}

TEST_F(DibBufferTest, DestroyGivesContextAndBitmapBackAndMayComeTwice)
{
    const auto before = CountHoldings();
    DibBuffer buffer;
    buffer.Destroy();
    ASSERT_EQ(buffer.Create(5, 3, 24), 1);
    EXPECT_EQ(CountHoldings().drawingObjects, before.drawingObjects + 2);
    buffer.Destroy();
    EXPECT_EQ(CountHoldings().drawingObjects, before.drawingObjects);
    HDC dc = nullptr;
    EXPECT_EQ(buffer.GetDC(&dc), -3);
    Raster raster;
    EXPECT_EQ(buffer.CopyFrom(&raster), -3);
    buffer.Destroy();
    EXPECT_EQ(buffer.Create(5, 3, 24), 1);
}

TEST_F(DibBufferTest, SurvivesEveryShortageOfMemory)
{
    ForEveryFault(FaultKind::Allocation, [] {
        DibBuffer buffer;
        HDC dc = nullptr;
        for (u32 width : {5u, 6u}) {
            const i32 result = buffer.Create(width, 3, 24);
            EXPECT_TRUE(result == 1 || result == -1) << result;
            EXPECT_EQ(buffer.GetDC(&dc), result == 1 ? 1 : -3);
        }
        Raster raster;
        if (raster.Create(4, 2, 24, nullptr, nullptr) < 1)
            return;
        const i32 result = buffer.CreateFrom(&raster, 1);
        EXPECT_TRUE(result == 1 || result == -1) << result;
        EXPECT_EQ(buffer.GetDC(&dc), result == 1 ? 1 : -3);
    });
}
