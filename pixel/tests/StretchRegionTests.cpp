// The clipped stretch against its steps, pixel by pixel, and against the whole stretch.

#include "RandomStretches.h"

namespace
{

using StretchRegion = PagingTest;

void Order(Sides& sides)
{
    if (sides.left > sides.right)
        std::swap(sides.left, sides.right);
    if (sides.top > sides.bottom)
        std::swap(sides.top, sides.bottom);
}

u64 Round(f64 value)
{
    const f64 whole = std::trunc(value);
    return static_cast<u64>(whole) + (value - whole >= 0.5 ? 1 : 0);
}

void Narrow(Sides& clip, const Sides& bounds)
{
    clip.left = std::max(clip.left, bounds.left);
    clip.top = std::max(clip.top, bounds.top);
    clip.right = std::min(clip.right, bounds.right);
    clip.bottom = std::min(clip.bottom, bounds.bottom);
}

/// The steps of the clipped stretch as they are told.
void Stretched(const Plain& source, Plain& target, Sides s, Sides d, Sides clip)
{
    Order(s);
    Order(d);
    Order(clip);
    if (!(s.left < source.width && s.top < source.height && d.left < target.width &&
          d.top < target.height))
        return;
    const f64 sw = s.right - s.left + 1.0;
    const f64 sh = s.bottom - s.top + 1.0;
    const f64 dw = d.right - d.left + 1.0;
    const f64 dh = d.bottom - d.top + 1.0;
    Narrow(clip, d);
    if (!(clip.left < target.width && clip.top < target.height))
        return;
    const u64 xStep = Round(sw * 65536.0 / dw);
    const u64 yStep = Round(sh * 65536.0 / dh);
    if (s.top < 0) {
        d.top -= dh * s.top / sh;
        s.top = 0;
    }
    if (s.left < 0) {
        d.left -= dw * s.left / sw;
        s.left = 0;
    }
    d.left = std::max(d.left, 0.0);
    d.top = std::max(d.top, 0.0);
    if (d.right >= target.width)
        d.right = target.width - 1.0;
    if (d.bottom >= target.height)
        d.bottom = target.height - 1.0;
    Narrow(clip, d);
    const i64 x0 = static_cast<i64>(std::floor(clip.left - d.left));
    const i64 x1 = static_cast<i64>(std::floor(clip.right - d.left));
    const i64 y0 = static_cast<i64>(std::floor(clip.top - d.top));
    const i64 y1 = static_cast<i64>(std::floor(clip.bottom - d.top));
    const i64 dx = static_cast<i64>(std::floor(d.left));
    const i64 dy = static_cast<i64>(std::floor(d.top));
    const u64 fx = static_cast<u64>(std::floor(s.left * 65536.0));
    const u64 fy = static_cast<u64>(std::floor(s.top * 65536.0));
    for (i64 y = y0; y <= y1; ++y) {
        const u64 fromY = (static_cast<u64>(y) * yStep + fy) >> 16;
        if (fromY >= source.height || dy + y >= target.height)
            break;
        for (i64 x = x0; x <= x1; ++x) {
            const u64 fromX = (static_cast<u64>(x) * xStep + fx) >> 16;
            if (fromX >= source.width || dx + x >= target.width)
                break;
            for (u64 k = 0; k < 3; ++k)
                target.rows[static_cast<size_t>(dy + y)][3 * static_cast<size_t>(dx + x) + k] =
                    source.rows[fromY][3 * fromX + k];
        }
    }
}

i32 Draw(Raster& source, Raster& target, const Sides& s, const Sides& d, const Sides& clip)
{
    return source.StretchRegion(&target, s.left, s.top, s.right, s.bottom, d.left, d.top, d.right,
                                d.bottom, clip.left, clip.top, clip.right, clip.bottom);
}

} // namespace

TEST_F(StretchRegion, FollowsItsStepsForRandomRectanglesOnEverySide)
{
    ExpectSameForRandomStretches(
        11,
        [](Raster& source, Raster& target, const StretchCase& drawn) {
            return Draw(source, target, drawn.source, drawn.target, drawn.clip);
        },
        [](const Plain& source, Plain& target, const StretchCase& drawn) {
            Stretched(source, target, drawn.source, drawn.target, drawn.clip);
        });
}

TEST_F(StretchRegion, APartLinesUpWithTheWholeToThePixel)
{
    Raster source;
    ASSERT_NO_FATAL_FAILURE(MakeRaster(source, 31, 23, 24, 3, Paging::None));
    for (const f64 zoom : {0.25, 1.0 / 3.0, 0.7, 1.5, 2.0, 4.0 / 3.0}) {
        Raster whole;
        Raster part;
        ASSERT_NO_FATAL_FAILURE(MakeRaster(whole, 40, 30, 24, 5, Paging::None));
        ASSERT_NO_FATAL_FAILURE(MakeRaster(part, 40, 30, 24, 5, Paging::None));
        const Plain before = PlainOf(part);
        const Sides s = {1.25, 0.5, 1.25 + 40 * zoom - 1, 0.5 + 30 * zoom - 1};
        ASSERT_EQ(source.StretchRect(&whole, s.left, s.top, s.right, s.bottom, 0, 4, 39, 33), 1);
        ASSERT_EQ(Draw(source, part, s, {0, 4, 39, 33}, {7, 9, 15, 20}), 1);
        const Plain wholeRows = PlainOf(whole);
        const Plain partRows = PlainOf(part);
        for (size_t y = 0; y < 30; ++y)
            for (size_t x = 0; x < 40; ++x) {
                const bool inside = x >= 7 && x <= 15 && y >= 9 && y <= 20;
                const auto& expected = inside ? wholeRows : before;
                for (size_t k = 0; k < 3; ++k)
                    ASSERT_EQ(partRows.rows[y][3 * x + k], expected.rows[y][3 * x + k])
                        << zoom << " at " << x << ", " << y;
            }
    }
}

TEST_F(StretchRegion, RefusesOtherDepthsAndNoTarget)
{
    Raster color;
    Raster grey;
    ASSERT_EQ(color.Create(4, 4, 24, nullptr, nullptr), 1);
    ASSERT_EQ(grey.Create(4, 4, 8, nullptr, nullptr), 1);
    EXPECT_EQ(Draw(color, grey, {0, 0, 3, 3}, {0, 0, 3, 3}, {0, 0, 3, 3}), -1);
    EXPECT_EQ(Draw(grey, color, {0, 0, 3, 3}, {0, 0, 3, 3}, {0, 0, 3, 3}), -1);
    EXPECT_EQ(color.StretchRegion(nullptr, 0, 0, 3, 3, 0, 0, 3, 3, 0, 0, 3, 3), -4);
}
