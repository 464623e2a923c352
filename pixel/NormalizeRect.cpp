#include "pixel/NormalizeRect.h"

#include "foundation/Numbers.h"

#include <utility>

namespace
{

template <typename Rect>
i32 Order(Rect* rectangle)
{
    if (rectangle == nullptr)
        return BadArgument;
    if (rectangle->left > rectangle->right)
        std::swap(rectangle->left, rectangle->right);
    if (rectangle->top > rectangle->bottom)
        std::swap(rectangle->top, rectangle->bottom);
    return Done;
}

// Meant: only the value that becomes the low end is truncated; the other keeps its fraction.
void OrderCorners(f64* low, f64* high)
{
    if (*low > *high) {
        const f64 formerHigh = *high;
        *high = *low;
        *low = TruncateToSigned(formerHigh);
    }
}

// With a size of 0 there is no pixel to be in, and what is not below 0 comes out at -1.
f64 MoveInside(f64 corner, u32 size)
{
    if (corner < 0.0)
        corner = 0.0;
    return corner >= size ? size - 1.0 : corner;
}

} // namespace

i32 NormalizeRect(PixelRect* rectangle)
{
    return Order(rectangle);
}

i32 NormalizeDoubleRect(DoubleRect* rectangle)
{
    return Order(rectangle);
}

i32 NormalizeSelectionRect(DoubleRect* selection, u32 width, u32 height)
{
    if (selection == nullptr)
        return BadArgument;
    if (selection->left == -1.0 && selection->top == -1.0 && selection->right == -1.0 &&
        selection->bottom == -1.0)
        return Done;
    OrderCorners(&selection->left, &selection->right);
    OrderCorners(&selection->top, &selection->bottom);
    selection->left = MoveInside(selection->left, width);
    selection->right = MoveInside(selection->right, width);
    selection->top = MoveInside(selection->top, height);
    selection->bottom = MoveInside(selection->bottom, height);
    return Done;
}
