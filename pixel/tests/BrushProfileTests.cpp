// The profile of a stamp in numbers, and the order of the brush's overridable operations.

#include "Rasters.h"

#include "pixel/Brush.h"

namespace
{

using BrushProfile = PagingTest;

/// 255 less what a stamp in black leaves of white along the row and column of the centre.
std::vector<u32> Along(Brush& brush, i32 radius, bool down)
{
    Raster white;
    const u32 size = 2 * static_cast<u32>(radius);
    EXPECT_EQ(white.Create(size, size, 24, nullptr, nullptr), 1);
    EXPECT_EQ(white.FillAll(0xFFFFFFFF), 1);
    EXPECT_EQ(brush.Stroke(&white, 0x000000FF, radius, radius, nullptr), 1);
    std::vector<u32> cells;
    for (i32 at = 0; at < 2 * radius; ++at) {
        u32 color = 0;
        EXPECT_EQ(white.GetPixel(down ? radius : at, down ? at : radius, &color), 1);
        cells.push_back(255 - (color >> 24));
    }
    return cells;
}

class WatchedBrush : public Brush
{
public:
    i32 Destroy() override
    {
        ++destroyed;
        return Brush::Destroy();
    }
    int destroyed = 0;
};

} // namespace

TEST_F(BrushProfile, FallsTo145AtAQuarterTo26AtHalfAndTo1AtThreeQuarters)
{
    Brush brush;
    ASSERT_EQ(brush.Create(4, 256, 1), 1);
    // From the offset -4 to 3: one cell more on the negative side, and the rim is empty.
    const std::vector<u32> expected = {0, 1, 26, 145, 255, 145, 26, 1};
    EXPECT_EQ(Along(brush, 4, false), expected);
    EXPECT_EQ(Along(brush, 4, true), expected);
    ASSERT_EQ(brush.Create(100, 256, 1), 1);
    const std::vector<u32> large = Along(brush, 100, false);
    EXPECT_EQ(large[0], 0u);
    EXPECT_EQ(large[25], 1u);
    EXPECT_EQ(large[50], 26u);
    EXPECT_EQ(large[75], 145u);
    EXPECT_EQ(large[100], 255u);
    EXPECT_EQ(large[150], 26u);
}

TEST_F(BrushProfile, CreateDestroysThroughWhatADerivedBrushHasMadeOfIt)
{
    WatchedBrush brush;
    ASSERT_EQ(brush.Create(2, 256, 1), 1);
    EXPECT_EQ(brush.destroyed, 1);
    // Also where the new mask is refused.
    EXPECT_EQ(brush.Create(32768, 256, 1), -1);
    EXPECT_EQ(brush.destroyed, 2);
}
