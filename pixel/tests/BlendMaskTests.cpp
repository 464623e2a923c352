// Painting through a mask: the formula written out, what the rectangle comes back as, masks of all
// depths and positions, lines that do not come.

#include "AreaSweep.h"
#include "PlainBlend.h"

namespace
{

using BlendMaskTest = PagingTest;

constexpr i32 Smallest = static_cast<i32>(0x80000000);
constexpr i32 Largest = 0x7FFFFFFF;

struct Stamp {
    PixelRect area;
    i32 maskX;
    i32 maskY;
};

bool operator==(const PixelRect& a, const PixelRect& b)
{
    return a.left == b.left && a.top == b.top && a.right == b.right && a.bottom == b.bottom;
}

std::string Tell(const Stamp& stamp)
{
    return Tell(stamp.area) + " from (" + std::to_string(stamp.maskX) + ", " +
           std::to_string(stamp.maskY) + ")";
}

/// Both sides once; the rectangles that come back are the same too.
void Paint(Twin& twin, Twin& mask, u32 color, const Stamp& stamp)
{
    PixelRect area = stamp.area;
    PixelRect meant = stamp.area;
    EXPECT_EQ(twin.raster.BlendMask(color, &area, &mask.raster, stamp.maskX, stamp.maskY),
              PlainBlendMask(twin.plain, color, &meant, &mask.plain, stamp.maskX, stamp.maskY))
        << Tell(twin.plain) << " through " << Tell(mask.plain) << ": " << Tell(stamp);
    EXPECT_TRUE(area == meant) << Tell(area) << " but should be " << Tell(meant) << " of "
                               << Tell(twin.plain) << " through " << Tell(mask.plain) << ": "
                               << Tell(stamp);
}

Stamp SomeStamp(Places& places, const PlainRaster& plain, const PlainRaster& mask)
{
    const auto offset = [&places](u32 size) {
        const u32 draw = places.Below(8);
        return draw < 3    ? 0
               : draw == 3 ? places.Anywhere(size)
                           : static_cast<i32>(places.Below(size + 4)) - 4;
    };
    return {SomeArea(places, plain.width, plain.height), offset(mask.width), offset(mask.height)};
}

/// A 24-bit sheet of one byte painted through one value of mask; the byte that comes out.
u32 Painted(u8 old, u8 m, u32 color)
{
    Twin twin(2, 2, 24, 0);
    Twin mask(2, 2, 8, 0);
    Flatten(twin, old);
    Flatten(mask, m);
    PixelRect area = {0, 0, 1, 1};
    EXPECT_EQ(twin.raster.BlendMask(color, &area, &mask.raster, 0, 0), Done);
    return PixelOf(twin.raster, 1, 1)[0];
}

} // namespace

TEST_F(BlendMaskTest, EqualsItsFormulaEverywhere)
{
    Places places(31);
    for (const u32 width : SweptWidths())
        for (const u32 depth : AllDepths)
            for (const u32 maskDepth : {8u, 8u, 8u, 16u, 24u, 32u}) {
                Twin twin(width, 1 + places.Below(7), depth, places.Word());
                Twin mask(1 + places.Below(places.Below(2) == 0 ? 4 : width + 4),
                          1 + places.Below(8), maskDepth, places.Word());
                for (int call = 0; call < 3; ++call)
                    Paint(twin, mask, SomeColor(places), SomeStamp(places, twin.plain, mask.plain));
                ExpectSame({&twin, &mask});
                ASSERT_FALSE(HasFailure());
            }
}

TEST_F(BlendMaskTest, EqualsItsFormulaForEveryMaskValueAndEveryAlpha)
{
    // A column is a value of the mask, a row an alpha.
    Rows values(256, std::vector<u8>(256));
    for (std::vector<u8>& row : values)
        for (u32 x = 0; x < 256; ++x)
            row[x] = static_cast<u8>(x);
    Places places(32);
    for (const u32 depth : {24u, 32u})
        for (int turn = 0; turn < 3; ++turn) {
            Twin twin(256, 256, depth, places.Word());
            Twin mask(256, 256, 8, 0);
            mask.SetRows(values);
            if (turn == 1)
                Flatten(twin, 255);
            for (i32 alpha = 0; alpha < 256; ++alpha) {
                const u32 color = turn == 0   ? 0xFFFE0000u
                                  : turn == 1 ? 0x0001FF00u
                                              : places.Word() & ~255u;
                Paint(twin, mask, color | static_cast<u32>(alpha),
                      {{0, alpha, 255, alpha}, 0, alpha});
            }
            ExpectSame({&twin, &mask});
        }
}

TEST_F(BlendMaskTest, EqualsItsFormulaAtTheEndsOfTheNumbers)
{
    constexpr i32 Numbers[] = {Smallest, -1, 1, Largest};
    for (const u32 depth : {8u, 24u, 32u})
        for (const i32 left : Numbers)
            for (const i32 top : Numbers) {
                Twin twin(4, 3, depth, 5);
                Twin mask(3, 3, 8, 6);
                for (const i32 right : Numbers)
                    for (const i32 bottom : Numbers)
                        for (const i32 maskX : Numbers)
                            for (const i32 maskY : Numbers)
                                Paint(twin, mask, 0x12345670,
                                      {{left, top, right, bottom}, maskX, maskY});
                ExpectSame({&twin, &mask});
                ASSERT_FALSE(HasFailure()) << left << ' ' << top;
            }
}

TEST_F(BlendMaskTest, EqualsItsFormulaWhileLinesGoToFiles)
{
    Places places(33);
    for (const u32 width : {1u, 5u, 12u})
        for (const u32 depth : AllDepths)
            for (const u32 maskDepth : AllDepths)
                for (const int pages : {1, 2, 3}) {
                    Twin twin(width, 1 + places.Below(6), depth, places.Word(),
                              (pages & 1) != 0 ? Storage::Paging : Storage::Resident);
                    Twin mask(width, 1 + places.Below(6), maskDepth, places.Word(),
                              (pages & 2) != 0 ? Storage::Paging : Storage::Resident);
                    {
                        const WithShortMemory memory;
                        Paint(twin, mask, SomeColor(places),
                              SomeStamp(places, twin.plain, mask.plain));
                        Paint(twin, mask, SomeColor(places), {{0, 0, 99, 99}, 0, 0});
                        Paint(twin, mask, SomeColor(places),
                              SomeStamp(places, twin.plain, mask.plain));
                    }
                    ExpectSame({&twin, &mask});
                    ASSERT_FALSE(HasFailure())
                        << Tell(twin.plain) << " through " << Tell(mask.plain);
                }
}

TEST_F(BlendMaskTest, ALineThatDoesNotComeEndsTheWorkAndTheRectangleStillComesBackCut)
{
    // Line 0 of each takes no part: it sits in its file and shows what was left locked.
    const Stamp stamps[] = {{{-1, 1, 14, 9}, 0, 1}, {{2, 2, 5, 4}, 1, 1}, {{0, 1, 9, 3}, 0, 3}};
    for (const u32 depth : AllDepths)
        for (const int which : {1, 2, 3})
            for (u32 line = 1; line < (depth < 24 ? 2 : 6); ++line)
                for (const Stamp& stamp : stamps) {
                    Twin twin(14, 6, depth, line, Storage::Paging);
                    Twin mask(14, 6, 8, line + 3, Storage::Paging);
                    twin.PageOut(0);
                    mask.PageOut(0);
                    if ((which & 1) != 0)
                        RefuseBesideLine0(twin, line);
                    if ((which & 2) != 0)
                        RefuseBesideLine0(mask, line);
                    Paint(twin, mask, 0x12345670, stamp);
                    ExpectSame({&twin, &mask});
                    ASSERT_FALSE(HasFailure()) << Tell(stamp) << " line " << line;
                }
}

TEST_F(BlendMaskTest, ALostLineOfEitherEndsTheWorkWith0)
{
    for (const bool ofMask : {false, true}) {
        Twin twin(4, 3, 24, 0);
        Twin mask(4, 3, 8, 0);
        Flatten(twin, 0);
        Flatten(mask, 255);
        AddLostLines(ofMask ? mask : twin, 1);
        // The lost line meets row 2 of what is painted.
        PixelRect area = {0, ofMask ? 0 : 1, 9, 9};
        EXPECT_EQ(twin.raster.BlendMask(0xFFFFFFFF, &area, &mask.raster, 0, ofMask ? 1 : 0),
                  NothingDone);
        EXPECT_EQ(area.right, 3);
        EXPECT_EQ(area.bottom, ofMask ? 2 : 3);
        for (i32 y = 0; y < 3; ++y)
            EXPECT_EQ(RowOf(twin.raster, y)[0], (ofMask ? y == 2 : y == 0) ? 0 : 254) << y;
    }
}

TEST_F(BlendMaskTest, ANullRectangleOrMaskIsABadArgumentAtEveryDepth)
{
    for (const u32 depth : AllDepths) {
        Twin twin(4, 4, depth, 1);
        Twin mask(4, 4, 8, 2);
        PixelRect area = {3, 3, 0, 0};
        EXPECT_EQ(twin.raster.BlendMask(0xFF, nullptr, &mask.raster, 0, 0), BadArgument);
        EXPECT_EQ(twin.raster.BlendMask(0xFF, &area, nullptr, 0, 0), BadArgument);
        EXPECT_EQ(twin.raster.BlendMaskRect(0xFF, area, nullptr, 0, 0), BadArgument);
        EXPECT_TRUE((area == PixelRect{3, 3, 0, 0}));
        ExpectSame({&twin, &mask});
    }
}

TEST_F(BlendMaskTest, AFullStampWeighs65280Of65536AndNeverReachesTheColourFromBelow)
{
    // (256 * old + 65280 * c) >> 16
    EXPECT_EQ(Painted(0, 255, 0xFFFFFFFF), 254u);
    EXPECT_EQ(Painted(254, 255, 0xFFFFFFFF), 254u);
    EXPECT_EQ(Painted(255, 255, 0xFFFFFFFF), 255u);
    EXPECT_EQ(Painted(255, 255, 0x000000FF), 0u);
    EXPECT_EQ(Painted(0, 255, 0x646464FF), 99u);
    EXPECT_EQ(Painted(99, 255, 0x646464FF), 99u);
    EXPECT_EQ(Painted(200, 255, 0x646464FF), 100u);
}

TEST_F(BlendMaskTest, TheWeightKeepsTheLowBitsOfASoftStamp)
{
    // m 10, alpha 20: w = 210. (65326 * 100 + 210 * 255) >> 16 and (65326 * 255) >> 16.
    EXPECT_EQ(Painted(100, 10, 0xFFFFFF14), 100u);
    EXPECT_EQ(Painted(255, 10, 0x00000014), 254u);
    // m 127, alpha 127: w = 16256. (49280 * 100 + 16256 * 200) >> 16 = 124.8
    EXPECT_EQ(Painted(100, 127, 0xC8C8C87F), 124u);
    // Alpha 0 still paints by 1 of 256: m 255, w = 255. (65281 * 255) >> 16
    EXPECT_EQ(Painted(255, 255, 0x00000000), 254u);
}

TEST_F(BlendMaskTest, MaskValue0LeavesEveryByteExactly)
{
    for (const u32 depth : {24u, 32u}) {
        Twin twin(90, 3, depth, 4);
        Twin mask(90, 3, 8, 0);
        Flatten(mask, 0);
        PixelRect area = {0, 0, 89, 2};
        EXPECT_EQ(twin.raster.BlendMask(0xFF00FFFF, &area, &mask.raster, 0, 0), Done);
        ExpectSame({&twin, &mask});
    }
}

TEST_F(BlendMaskTest, Byte3OfA32BitPixelAndThePaddingStay)
{
    Twin deep(3, 2, 32, 0);
    Twin padded(5, 2, 24, 0); // 15 bytes of pixels and one of padding
    Twin mask(5, 2, 8, 0);
    Flatten(deep, 0);
    Flatten(padded, 0);
    Flatten(mask, 255);
    EXPECT_EQ(deep.raster.BlendMaskRect(0x64FF00FF, {0, 0, 9, 9}, &mask.raster, 0, 0), Done);
    EXPECT_EQ(PixelOf(deep.raster, 2, 1), (Bytes{0, 254, 99, 0}));
    EXPECT_EQ(padded.raster.BlendMaskRect(0x64FF00FF, {0, 0, 9, 9}, &mask.raster, 0, 0), Done);
    EXPECT_EQ(RowOf(padded.raster, 0)[15], 0);
}

TEST_F(BlendMaskTest, TheRectangleComesBackOrderedAndCutToRasterAndMask)
{
    struct Case {
        Stamp stamp;
        PixelRect back;
    };
    const Case cases[] = {
        {{{1, 1, 4, 3}, 0, 0}, {1, 1, 4, 3}},     {{{4, 3, 1, 1}, 0, 0}, {1, 1, 4, 3}}, // ordered
        {{{-1, -1, 3, 2}, 0, 0}, {0, 0, 3, 2}},   // cut to the raster
        {{{6, 5, 30, 40}, 0, 0}, {6, 5, 9, 7}},   // 10 x 8 pixels
        {{{0, 0, 9, 7}, 0, 0}, {0, 0, 4, 3}},     // cut to the mask of 5 x 4
        {{{0, 0, 9, 7}, 3, 1}, {0, 0, 1, 2}},     // to what lies behind its position
        {{{-2, -1, 9, 7}, 0, 0}, {0, 0, 2, 2}},   // which the cut on the left has moved
        {{{2, 2, 9, 7}, 5, 0}, {2, 2, 1, 5}},     // nothing left of the mask: no column
        {{{2, 2, 9, 7}, 9, 9}, {2, 2, -3, -4}},   // or less than none
        {{{2, 2, 4, 3}, -2, 0}, {2, 2, 4, 3}},    // left of the mask
        {{{2, 2, 9, 7}, -2, 0}, {2, 2, 8, 5}},    // which is so much wider
        {{{12, 3, 10, 1}, 0, 0}, {10, 1, 12, 3}}, // outside: ordered alone
        {{{0, 5, -4, 1}, 0, 0}, {-4, 1, 0, 5}},   // to end at column 0 is outside
        {{{-4, 0, 5, -6}, 0, 0}, {-4, -6, 5, 0}},
    };
    for (const u32 depth : AllDepths)
        for (const Case& expected : cases) {
            Twin twin(10, 8, depth, 1);
            Twin mask(5, 4, 8, 2);
            PixelRect area = expected.stamp.area;
            EXPECT_EQ(twin.raster.BlendMask(0x12345678, &area, &mask.raster, expected.stamp.maskX,
                                            expected.stamp.maskY),
                      Done);
            EXPECT_TRUE(area == expected.back)
                << Tell(area) << " but should be " << Tell(expected.back) << " at " << depth;
        }
}

TEST_F(BlendMaskTest, ByValueItPaintsTheSame)
{
    Places places(34);
    for (int turn = 0; turn < 100; ++turn) {
        Twin twin(9, 6, 24, places.Word());
        Twin mask(7, 7, 8, places.Word());
        const u32 color = SomeColor(places);
        const Stamp stamp = SomeStamp(places, twin.plain, mask.plain);
        PixelRect area = stamp.area;
        EXPECT_EQ(
            twin.raster.BlendMaskRect(color, stamp.area, &mask.raster, stamp.maskX, stamp.maskY),
            PlainBlendMask(twin.plain, color, &area, &mask.plain, stamp.maskX, stamp.maskY));
        ExpectSame({&twin, &mask});
    }
    Twin refused(4, 4, 8, 1);
    EXPECT_EQ(refused.raster.BlendMaskRect(0xFF, {0, 0, 3, 3}, &refused.raster, 0, 0), Done);
    Twin twin(4, 4, 24, 1);
    EXPECT_EQ(refused.raster.BlendMaskRect(0xFF, {0, 0, 3, 3}, &twin.raster, 0, 0), Failed);
    ExpectSame({&refused, &twin});
}

TEST_F(BlendMaskTest, ARasterOf8Or16BitsIsLeftAloneAndFailsOnlyWhereTheMaskHasNot8Bits)
{
    for (const u32 depth : {8u, 16u})
        for (const u32 maskDepth : AllDepths) {
            Twin twin(4, 4, depth, 1);
            Twin mask(4, 4, maskDepth, 2);
            PixelRect area = {9, 3, -1, 2};
            EXPECT_EQ(twin.raster.BlendMask(0x123456FF, &area, &mask.raster, 0, 0),
                      maskDepth == 8 ? Done : Failed);
            EXPECT_TRUE((area == (maskDepth == 8 ? PixelRect{0, 2, 2, 3} : PixelRect{9, 3, -1, 2})))
                << Tell(area);
            ExpectSame({&twin, &mask});
        }
    Raster never;
    Twin mask(4, 4, 8, 2);
    EXPECT_EQ(never.BlendMaskRect(0xFF, {0, 0, 3, 3}, &mask.raster, 0, 0), Done);
    EXPECT_EQ(mask.raster.BlendMaskRect(0xFF, {0, 0, 3, 3}, &never, 0, 0), Failed);
}

TEST_F(BlendMaskTest, AMaskOfOtherDepthIsReadAsOneByteAPixel)
{
    Twin twin(3, 1, 24, 0);
    Twin mask(3, 1, 32, 0);
    Flatten(twin, 0);
    mask.SetRows({{0, 0, 255, 0, 255, 255, 0, 0, 0, 0, 0, 0}});
    // A column wide at the bottom and right edge must be above 0; the raster has one row.
    PixelRect area = {0, 0, 2, 1};
    EXPECT_EQ(twin.raster.BlendMask(0xFFFFFFFF, &area, &mask.raster, 0, 0), Done);
    EXPECT_EQ(Changed(twin.raster, 0), Picture{"..#"});
    area = {0, 0, 2, 1};
    EXPECT_EQ(twin.raster.BlendMask(0xFFFFFFFF, &area, &mask.raster, 2, 0), Done);
    EXPECT_EQ(area.right, 0); // the mask is 3 pixels wide, whatever its line holds
    EXPECT_EQ(Changed(twin.raster, 0), Picture{"#.#"});
}

TEST_F(BlendMaskTest, LeftOfTheMaskNothingIsPainted)
{
    Twin twin(6, 2, 24, 0);
    Twin mask(3, 2, 8, 0);
    Flatten(twin, 0);
    Flatten(mask, 255);
    PixelRect area = {1, 0, 5, 1};
    EXPECT_EQ(twin.raster.BlendMask(0xFFFFFFFF, &area, &mask.raster, -2, 0), Done);
    EXPECT_EQ(Changed(twin.raster, 0), (Picture{"...###", "...###"}));
}

TEST_F(BlendMaskTest, ANegativeMaskRowCountsFromTheEndAndFailsBeyondTheFirst)
{
    Twin twin(2, 3, 24, 0);
    Twin mask(2, 4, 8, 0);
    Flatten(twin, 0);
    mask.SetRows({{0, 0, 0, 0}, {0, 0, 0, 0}, {255, 0, 0, 0}, {0, 255, 0, 0}});
    // Rows -2, -1 and 0 of the mask.
    PixelRect area = {0, 0, 1, 2};
    EXPECT_EQ(twin.raster.BlendMask(0xFFFFFFFF, &area, &mask.raster, 0, -2), Done);
    EXPECT_EQ(Changed(twin.raster, 0), (Picture{"#.", ".#", ".."}));
    // Row -5 is none; the rectangle comes back all the same.
    area = {0, 0, 9, 2};
    EXPECT_EQ(twin.raster.BlendMask(0xFFFFFFFF, &area, &mask.raster, 0, -5), Failed);
    EXPECT_TRUE((area == PixelRect{0, 0, 1, 2}));
}

TEST_F(BlendMaskTest, ARasterMayBeItsOwnMask)
{
    Places places(35);
    for (const u32 depth : AllDepths)
        for (int turn = 0; turn < 60; ++turn) {
            Twin twin(1 + places.Below(20), 1 + places.Below(5), depth, places.Word());
            Paint(twin, twin, SomeColor(places), SomeStamp(places, twin.plain, twin.plain));
            ExpectSame({&twin});
            ASSERT_FALSE(HasFailure());
        }
}
