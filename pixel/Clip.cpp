#include "pixel/Clip.h"

#include "pixel/NormalizeRect.h"

#include <algorithm>

namespace
{

// Low and high bound along one axis of `size` pixels, with low <= high.
bool IsOutside(i32 low, i32 high, u32 size)
{
    return std::max<i64>(low, 0) >= i64{size} || high < 1;
}

void CutToSize(i32* low, i32* high, u32 size)
{
    *low = std::max(*low, 0);
    if (i64{*high} >= i64{size})
        *high = static_cast<i32>(size - 1);
}

// One axis of a run. The source goes first: what it gives away may bring the target inside.
void MoveInto(i64* from, i64* count, i64* to)
{
    if (*from < 0) {
        *to -= *from;
        *from = 0;
    }
    if (*to < 0) {
        *count += *to;
        *from -= *to;
        *to = 0;
    }
}

} // namespace

bool ClipRect(PixelRect* rectangle, const RasterInfo& raster)
{
    (void)NormalizeRect(rectangle);
    if (IsOutside(rectangle->left, rectangle->right, raster.width) ||
        IsOutside(rectangle->top, rectangle->bottom, raster.height))
        return false;
    CutToSize(&rectangle->left, &rectangle->right, raster.width);
    CutToSize(&rectangle->top, &rectangle->bottom, raster.height);
    return true;
}

bool ClipOutline(PixelRect rectangle, const RasterInfo& raster, Outline* out)
{
    (void)NormalizeRect(&rectangle);
    PixelRect cut = rectangle;
    if (!ClipRect(&cut, raster))
        return false;
    *out = {cut, cut.left == rectangle.left, cut.top == rectangle.top, cut.right == rectangle.right,
            cut.bottom == rectangle.bottom};
    return true;
}

void MoveIntoRasters(CopyRun* run)
{
    MoveInto(&run->x, &run->width, &run->targetX);
    MoveInto(&run->y, &run->height, &run->targetY);
}

bool StartsBehind(const CopyRun& run, const RasterInfo& source, const RasterInfo& target)
{
    return run.x >= source.width || run.y >= source.height || run.targetX >= target.width ||
           run.targetY >= target.height;
}

bool ClipRun(CopyRun* run, const RasterInfo& source, const RasterInfo& target)
{
    MoveIntoRasters(run);
    if (StartsBehind(*run, source, target))
        return false;
    run->width = std::min({run->width, source.width - run->x, target.width - run->targetX});
    run->height = std::min({run->height, source.height - run->y, target.height - run->targetY});
    return true;
}
