#include "pixel/NormalizeRect.h"

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

} // namespace

i32 NormalizeRect(PixelRect* rectangle)
{
    return Order(rectangle);
}

i32 NormalizeDoubleRect(DoubleRect* rectangle)
{
    return Order(rectangle);
}
