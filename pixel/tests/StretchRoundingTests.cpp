// What the rounding of the step to 1/65536 of a pixel does to long rows.

#include "Rasters.h"

#include <cmath>

namespace
{

using StretchRounding = PagingTest;

/// The byte 0 of each pixel of row 0, after a source of `columns` pixels that hold 1, 2, 3, ... has
/// been stretched from its columns 0 to `last` over the whole row.
std::vector<u8> Stretched(u32 columns, u32 last, u32 targetColumns)
{
    Raster source;
    Raster target;
    EXPECT_EQ(source.Create(columns, 1, 24, nullptr, nullptr), 1);
    EXPECT_EQ(target.Create(targetColumns, 1, 24, nullptr, nullptr), 1);
    for (u32 x = 0; x < columns; ++x)
        EXPECT_EQ(source.SetPixel(static_cast<i32>(x), 0, (x + 1) << 8), 1);
    EXPECT_EQ(source.StretchRect(&target, 0, 0, last, 0, 0, 0, targetColumns - 1.0, 0), 1);
    const std::vector<u8> row = RowOf(target, 0);
    std::vector<u8> shown(targetColumns);
    for (u32 x = 0; x < targetColumns; ++x)
        shown[x] = row[size_t{3} * x];
    return shown;
}

} // namespace

TEST_F(StretchRounding, ARowCanRunOverTheEndOfItsRectangleIntoTheSourcesNextColumn)
{
    // 65536 / 1000 becomes 66, and 993 * 66 is 65538: the rectangle holds column 0 alone, but it is
    // the source's width that ends the row.
    std::vector<u8> expected(1000, 2);
    std::fill_n(expected.begin(), 993, u8{1});
    EXPECT_EQ(Stretched(2, 0, 1000), expected);
}

TEST_F(StretchRounding, ARowCanEndBeforeItReachesTheLastColumnOfItsRectangle)
{
    // 4 * 65536 / 175937 is 1.49 and becomes 1: the last position is 175936, which is column 2.
    const std::vector<u8> shown = Stretched(4, 3, 175937);
    EXPECT_EQ(shown[65535], 1);
    EXPECT_EQ(shown[65536], 2);
    EXPECT_EQ(shown[131072], 3);
    EXPECT_EQ(shown[175936], 3);
}

TEST_F(StretchRounding, ARectangleThatEndsABreathBeforeAPixelCountsItWhereTheSumRoundsUp)
{
    Raster source;
    Raster target;
    ASSERT_EQ(source.Create(4, 1, 24, nullptr, nullptr), 1);
    ASSERT_EQ(target.Create(4, 1, 24, nullptr, nullptr), 1);
    for (i32 x = 0; x < 4; ++x)
        ASSERT_EQ(source.SetPixel(x, 0, static_cast<u32>(x + 1) << 8), 1);
    // The double just below 1, plus 1, lies halfway between two doubles and rounds
    // to 2: two columns, the second of which shows the source's third.
    const f64 right = std::nextafter(1.0, 0.0);
    ASSERT_EQ(right + 1.0, 2.0);
    ASSERT_EQ(source.StretchRect(&target, 0, 0, 3, 0, 0, 0, right, 0), 1);
    const std::vector<u8> row = RowOf(target, 0);
    EXPECT_EQ(row[0], 1);
    EXPECT_EQ(row[3], 3);
    EXPECT_EQ(row[6], 0);
}
