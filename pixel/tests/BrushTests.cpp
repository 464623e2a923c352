#include "PlainBrush.h"

#include "pixel/Brush.h"
#include "platform/testing/Faults.h"

using tavrix::testing::FaultKind;
using tavrix::testing::ForEveryFault;

namespace
{

using Brushes = PagingTest;

constexpr u32 Black = 0x000000FF;

BrushInfo InfoOf(const Brush& brush)
{
    BrushInfo info = {};
    info.size = sizeof(info);
    EXPECT_EQ(brush.GetInfo(&info), 1);
    return info;
}

void ExpectInfo(const Brush& brush, const BrushInfo& expected)
{
    const BrushInfo info = InfoOf(brush);
    EXPECT_EQ(info.size, expected.size);
    EXPECT_EQ(info.radius, expected.radius);
    EXPECT_EQ(info.strength, expected.strength);
    EXPECT_EQ(info.diffusion, expected.diffusion);
    EXPECT_EQ(info.unused, expected.unused);
}

/// A white raster that is stamped in black holds 255 - m for every cell m of the mask.
std::vector<u8> MaskOf(Brush& brush, u32 radius)
{
    Raster white;
    EXPECT_EQ(white.Create(2 * radius, 2 * radius, 24, nullptr, nullptr), 1);
    EXPECT_EQ(white.FillAll(0xFFFFFFFF), 1);
    const i32 centre = static_cast<i32>(radius);
    EXPECT_EQ(brush.Stroke(&white, Black, centre, centre, nullptr), 1);
    std::vector<u8> cells;
    for (const std::vector<u8>& row : RowsOf(white))
        for (u32 x = 0; x < 2 * radius; ++x)
            cells.push_back(static_cast<u8>(255 - row[x * 3]));
    return cells;
}

void Check(Brush& brush, PlainRaster& mask, Twin& twin, u32 color, i32 x, i32 y)
{
    SCOPED_TRACE(::testing::Message() << twin.plain.width << " x " << twin.plain.height << " x "
                                      << twin.plain.depth << " at " << x << ", " << y);
    PixelRect painted = {1, 2, 3, 4};
    PixelRect expected = {5, 6, 7, 8};
    EXPECT_EQ(brush.Stroke(&twin.raster, color, x, y, &painted),
              PlainStroke(mask, twin.plain, color, x, y, &expected));
    EXPECT_EQ(painted.left, expected.left);
    EXPECT_EQ(painted.top, expected.top);
    EXPECT_EQ(painted.right, expected.right);
    EXPECT_EQ(painted.bottom, expected.bottom);
    ExpectSame({&twin});
}

void ExpectRect(const PixelRect& rect, i32 left, i32 top, i32 right, i32 bottom)
{
    EXPECT_EQ(rect.left, left);
    EXPECT_EQ(rect.top, top);
    EXPECT_EQ(rect.right, right);
    EXPECT_EQ(rect.bottom, bottom);
}

} // namespace

TEST_F(Brushes, EveryCellOfEveryRadiusIsItsFormula)
{
    Brush brush;
    for (u32 radius = 1; radius <= 100; ++radius) {
        ASSERT_EQ(brush.Create(radius, 256, 1), 1);
        std::vector<u8> expected;
        for (const std::vector<u8>& row : PlainBrushMask(radius).rows)
            expected.insert(expected.end(), row.begin(), row.begin() + 2 * radius);
        ASSERT_EQ(MaskOf(brush, radius), expected) << radius;
    }
}

TEST_F(Brushes, RadiusOneIsOneFullCellAndThreeEmptyOnes)
{
    Brush brush;
    ASSERT_EQ(brush.Create(1, 256, 1), 1);
    EXPECT_EQ(MaskOf(brush, 1), (std::vector<u8>{0, 0, 0, 255}));
}

TEST_F(Brushes, RadiusTwoFallsToTwentySixAtHalfAndTwoOnTheDiagonal)
{
    // 255 e^-2.25 = 26.87, 255 e^-4.5 = 2.83; at the rim 255 e^-9 = 0.03.
    Brush brush;
    ASSERT_EQ(brush.Create(2, 256, 1), 1);
    EXPECT_EQ(MaskOf(brush, 2),
              (std::vector<u8>{0, 0, 0, 0, 0, 2, 26, 2, 0, 26, 255, 26, 0, 2, 26, 2}));
}

TEST_F(Brushes, StrengthAndDiffusionChangeNoPixel)
{
    Brush weak;
    Brush strong;
    ASSERT_EQ(weak.Create(7, 1, 256), 1);
    ASSERT_EQ(strong.Create(7, 256, 1), 1);
    EXPECT_EQ(MaskOf(weak, 7), MaskOf(strong, 7));
}

TEST_F(Brushes, StrokesAreTheirFormulaOnAllSidesOfRastersOfAllDepths)
{
    Places places(31);
    for (const u32 radius : {0u, 1u, 2u, 5u, 9u}) {
        Brush brush;
        ASSERT_EQ(brush.Create(radius, 256, 1), 1);
        PlainRaster mask = PlainBrushMask(radius);
        for (const u32 depth : {8u, 16u, 24u, 32u})
            for (u32 width = 1; width <= 33; ++width) {
                Twin twin(width, 1 + width % 12, depth, width);
                for (u32 round = 0; round < 3; ++round)
                    Check(brush, mask, twin, places.Word(), places.Near(width),
                          places.Near(twin.plain.height));
                if (HasFailure())
                    return;
            }
    }
}

TEST_F(Brushes, EveryAlphaIsItsFormula)
{
    Brush brush;
    ASSERT_EQ(brush.Create(4, 256, 1), 1);
    PlainRaster mask = PlainBrushMask(4);
    Twin twin(9, 9, 24, 1);
    for (u32 alpha = 0; alpha < 256; ++alpha)
        Check(brush, mask, twin, 0x40A0F000 + alpha, 4 + static_cast<i32>(alpha % 3), 4);
}

TEST_F(Brushes, APositionAtTheEndsOfTheNumbersIsOutside)
{
    Brush brush;
    ASSERT_EQ(brush.Create(5, 256, 1), 1);
    PlainRaster mask = PlainBrushMask(5);
    Twin twin(8, 8, 24, 1);
    const i32 low = static_cast<i32>(0x80000000) + 5;
    const i32 high = 0x7FFFFFFF - 5;
    for (const i32 x : {low, 4, high})
        for (const i32 y : {low, 4, high})
            Check(brush, mask, twin, Black, x, y);
}

TEST_F(Brushes, AStampInTheMiddlePaintsTwiceTheRadiusAndTellsWhere)
{
    Brush brush;
    ASSERT_EQ(brush.Create(3, 256, 1), 1);
    Twin twin(20, 20, 24, 1);
    PixelRect painted = {};
    EXPECT_EQ(brush.Stroke(&twin.raster, Black, 10, 9, &painted), 1);
    ExpectRect(painted, 7, 6, 12, 11);
}

TEST_F(Brushes, AStampAtACornerPaintsTheQuarterThatOverlaps)
{
    Brush brush;
    ASSERT_EQ(brush.Create(3, 256, 1), 1);
    PixelRect painted = {};
    for (const i32 x : {0, 19})
        for (const i32 y : {0, 19}) {
            Twin twin(20, 20, 24, 1);
            EXPECT_EQ(brush.Stroke(&twin.raster, 0x123456FF, x, y, &painted), 1);
            ExpectRect(painted, x == 0 ? 0 : 16, y == 0 ? 0 : 16, x == 0 ? 2 : 19, y == 0 ? 2 : 19);
            // The full cell lies on the pixel itself: w is 65,280 of 65,536.
            const u8 old = twin.plain.rows[static_cast<u32>(y)][static_cast<u32>(x) * 3];
            u32 color = 0;
            EXPECT_EQ(twin.raster.GetPixel(x, y, &color), 1);
            EXPECT_EQ((color >> 8) & 255, (256u * old + 65280u * 0x56u) >> 16);
        }
}

TEST_F(Brushes, AStampOutsideIsDoneAndTellsTheRectangleAsAsked)
{
    Brush brush;
    ASSERT_EQ(brush.Create(3, 256, 1), 1);
    Twin twin(20, 20, 24, 1);
    PixelRect painted = {};
    EXPECT_EQ(brush.Stroke(&twin.raster, Black, -4, 9, &painted), 1);
    ExpectRect(painted, -7, 6, -1, 12);
    EXPECT_EQ(brush.Stroke(&twin.raster, Black, 9, 23, &painted), 1);
    ExpectRect(painted, 6, 20, 12, 26);
    // An edge at column 0 counts as outside.
    EXPECT_EQ(brush.Stroke(&twin.raster, Black, -3, 9, &painted), 1);
    ExpectRect(painted, -6, 6, 0, 12);
    ExpectSame({&twin});
}

TEST_F(Brushes, OnEightAndSixteenBitsNothingIsPainted)
{
    Brush brush;
    ASSERT_EQ(brush.Create(3, 256, 1), 1);
    for (const u32 depth : {8u, 16u}) {
        Twin twin(20, 20, depth, 1, Storage::Paging);
        for (u32 line = 0; line < 20; ++line)
            twin.PageOut(line);
        PixelRect painted = {};
        EXPECT_EQ(brush.Stroke(&twin.raster, Black, 10, 9, &painted), 1);
        ExpectRect(painted, 7, 6, 12, 11);
        EXPECT_EQ(FilesIn(FirstFolder).size(), 20u);
        ExpectSame({&twin});
    }
}

TEST_F(Brushes, AResultOfPaintingIsDropped)
{
    Brush brush;
    ASSERT_EQ(brush.Create(3, 256, 1), 1);
    PlainRaster mask = PlainBrushMask(3);
    for (u32 line = 0; line < 7; ++line) {
        Twin twin(9, 7, 32, 1, Storage::Paging);
        twin.Refuse(line);
        Check(brush, mask, twin, Black, 4, 3);
    }
    Raster empty;
    EXPECT_EQ(brush.Stroke(&empty, Black, 4, 3, nullptr), 1);
}

TEST_F(Brushes, StrokesOnPagingRastersAreTheirFormula)
{
    Brush brush;
    ASSERT_EQ(brush.Create(4, 256, 1), 1);
    PlainRaster mask = PlainBrushMask(4);
    for (const u32 depth : {24u, 32u})
        for (i32 y = -5; y < 14; y += 2) {
            Twin twin(9, 10, depth, 1, Storage::Paging);
            {
                const WithShortMemory memory;
                EXPECT_EQ(brush.Stroke(&twin.raster, 0x80402010, 4, y, nullptr),
                          PlainStroke(mask, twin.plain, 0x80402010, 4, y, nullptr));
            }
            ExpectSame({&twin});
        }
}

TEST_F(Brushes, PaintsOnlyBetweenCreateAndDestroy)
{
    Brush brush;
    Twin twin(8, 8, 24, 1);
    PixelRect painted = {1, 2, 3, 4};
    EXPECT_EQ(brush.Stroke(&twin.raster, Black, 4, 4, &painted), -3);
    EXPECT_EQ(brush.Stroke(nullptr, Black, 4, 4, &painted), -3);
    ASSERT_EQ(brush.Create(3, 256, 1), 1);
    EXPECT_EQ(brush.Stroke(nullptr, Black, 4, 4, &painted), -4);
    EXPECT_EQ(brush.Destroy(), 1);
    EXPECT_EQ(brush.Stroke(&twin.raster, Black, 4, 4, &painted), -3);
    EXPECT_EQ(brush.Stroke(nullptr, Black, 4, 4, &painted), -3);
    EXPECT_EQ(brush.Destroy(), 1);
    ExpectRect(painted, 1, 2, 3, 4);
    ExpectSame({&twin});
}

TEST_F(Brushes, ASecondCreateReplacesTheMask)
{
    Brush brush;
    for (const u32 radius : {9u, 2u, 5u}) {
        ASSERT_EQ(brush.Create(radius, radius + 1, radius + 2), 1);
        ExpectInfo(brush, {20, radius, radius + 1, radius + 2, 0});
        PlainRaster mask = PlainBrushMask(radius);
        Twin twin(24, 24, 24, radius);
        Check(brush, mask, twin, Black, 12, 12);
    }
}

TEST_F(Brushes, TellsItsParametersAndForgetsThemWhenDestroyed)
{
    Brush brush;
    ASSERT_EQ(brush.Create(5, 250, 40), 1);
    ExpectInfo(brush, {20, 5, 250, 40, 0});
    EXPECT_EQ(brush.Destroy(), 1);
    ExpectInfo(brush, {0, 0, 0, 0, 0});
    EXPECT_EQ(brush.GetInfo(nullptr), -1);
}

TEST_F(Brushes, CopiesAsManyBytesOfItsRecordAsAreAskedFor)
{
    Brush brush;
    ASSERT_EQ(brush.Create(5, 250, 40), 1);
    const u32 given[] = {0xAAAAAAAA, 0xAAAAAAAA, 0xAAAAAAAA, 0xAAAAAAAA, 0xAAAAAAAA, 0xAAAAAAAA};
    const u32 held[] = {20, 5, 250, 40, 0};
    for (u32 size = 0; size <= 24; ++size) {
        union {
            BrushInfo info;
            u8 bytes[24];
        } record;
        std::memcpy(record.bytes, given, sizeof(given));
        record.info.size = size;
        u8 expected[24];
        std::memcpy(expected, record.bytes, sizeof(expected));
        std::memcpy(expected, held, std::min(size, 20u));
        EXPECT_EQ(brush.GetInfo(&record.info), 1);
        EXPECT_EQ(std::memcmp(record.bytes, expected, sizeof(expected)), 0) << size;
    }
}

TEST_F(Brushes, AMaskThatDoesNotFitIsRefusedAndTheOldOneGone)
{
    Twin twin(8, 8, 24, 1);
    Brush brush;
    ASSERT_EQ(brush.Create(3, 256, 1), 1);
    {
        const WithShortMemory memory;
        EXPECT_EQ(brush.Create(4, 30, 31), -1);
    }
    EXPECT_EQ(brush.Stroke(&twin.raster, Black, 4, 4, nullptr), -3);
    ExpectInfo(brush, {20, 4, 30, 31, 0});
    ASSERT_EQ(brush.Create(3, 256, 1), 1);
    PlainRaster mask = PlainBrushMask(3);
    Check(brush, mask, twin, Black, 4, 4);
}

TEST_F(Brushes, ARadiusWithoutPlaceForItsDoubleIsRefusedAndTheOldMaskGone)
{
    Twin twin(8, 8, 24, 1);
    for (const u32 radius : {32768u, 65536u, 0x7FFFFFFFu, 0x80000000u, 0x80000001u, 0xFFFFFFFFu}) {
        Brush brush;
        ASSERT_EQ(brush.Create(3, 256, 1), 1);
        EXPECT_EQ(brush.Create(radius, 256, 1), -1) << radius;
        EXPECT_EQ(brush.Stroke(&twin.raster, Black, 4, 4, nullptr), -3);
    }
    ExpectSame({&twin});
}

TEST_F(Brushes, TheLargestRadiusStillAsksForItsMaskAndTheNextOneForNothing)
{
    CountingAllocator allocator;
    allocator.fails = [](int, u32) { return true; };
    Brush brush(&allocator);
    EXPECT_EQ(brush.Create(32768, 256, 1), -1);
    EXPECT_EQ(allocator.asked, 0);
    EXPECT_EQ(brush.Create(32767, 256, 1), -1);
    EXPECT_GT(allocator.asked, 0);
}

TEST_F(Brushes, BlocksComeFromTheGivenAllocatorAndAllGoBack)
{
    CountingAllocator allocator;
    {
        Brush brush(&allocator);
        ASSERT_EQ(brush.Create(6, 256, 1), 1);
        EXPECT_GE(allocator.outstanding, 12);
        EXPECT_GE(allocator.bytes, 12u * 12u);
        const int held = allocator.outstanding;
        ASSERT_EQ(brush.Create(6, 256, 1), 1);
        EXPECT_EQ(allocator.outstanding, held);
        EXPECT_EQ(brush.Destroy(), 1);
        EXPECT_LT(allocator.outstanding, held);
        ASSERT_EQ(brush.Create(2, 256, 1), 1);
    }
    EXPECT_EQ(allocator.outstanding, 0);
}

TEST_F(Brushes, AMaskThatLacksABlockIsRefusedAndTheNextOneIsWhole)
{
    Twin twin(8, 8, 24, 1);
    PlainRaster mask = PlainBrushMask(3);
    int refused = 0;
    bool fired = true;
    for (int wrong = 1; fired; ++wrong) {
        ASSERT_LT(wrong, 200);
        // Create of a raster on its own tells what a refused block means to it.
        i32 alone = 0;
        {
            Twin alike;
            alike.allocator.asked = 0;
            alike.allocator.fails = [wrong](int number, u32) { return number == wrong; };
            alone = alike.raster.Create(6, 6, 8, nullptr, nullptr);
            fired = alike.allocator.asked >= wrong;
        }
        CountingAllocator allocator;
        {
            Brush brush(&allocator);
            allocator.asked = 0;
            allocator.fails = [wrong](int number, u32) { return number == wrong; };
            EXPECT_EQ(brush.Create(3, 256, 1), alone < 0 ? -1 : 1) << wrong;
            allocator.fails = nullptr;
            EXPECT_EQ(brush.Stroke(&twin.raster, Black, 40, 40, nullptr), alone < 0 ? -3 : 1);
            refused += alone < 0;
            EXPECT_EQ(brush.Create(3, 256, 1), 1);
            Check(brush, mask, twin, Black, 4, 4);
        }
        EXPECT_EQ(allocator.outstanding, 0);
    }
    EXPECT_GT(refused, 6);
}

TEST_F(Brushes, NoShortageOfMemoryHarmsOrLeaks)
{
    Twin twin(8, 8, 24, 1);
    const unsigned fired = ForEveryFault(FaultKind::Allocation, [&twin] {
        Brush brush;
        const i32 result = brush.Create(3, 256, 1);
        EXPECT_TRUE(result == Done || result == Failed) << result;
        EXPECT_EQ(brush.Stroke(&twin.raster, Black, 40, 40, nullptr),
                  result == Done ? Done : WrongState);
        BrushInfo info = {};
        EXPECT_EQ(brush.GetInfo(&info), 1);
        EXPECT_EQ(brush.Destroy(), 1);
    });
    EXPECT_GT(fired, 6u);
    ExpectSame({&twin});
}
