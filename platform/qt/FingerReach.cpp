#include "platform/qt/FingerReach.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace tavrix::platform
{
namespace
{

constexpr double Millimetres = 7.0;
constexpr double MillimetresPerInch = 25.4;
constexpr int LeastReach = 16;
constexpr int MostReach = 40;
constexpr int FrameWidth = 2; // on which a press on a list, for one, does nothing

using Square = long long; // of a distance, so that comparing needs no root

QPoint ClampTo(const QRect& area, QPoint point)
{
    return {std::clamp(point.x(), area.left(), area.right()),
            std::clamp(point.y(), area.top(), area.bottom())};
}

Square SquareDistance(const QRect& rectangle, QPoint point)
{
    const QPoint way = ClampTo(rectangle, point) - point;
    return Square{way.x()} * way.x() + Square{way.y()} * way.y();
}

Square SquareOf(int reach)
{
    return Square{reach} * reach;
}

} // namespace

int FingerReach(double dotsPerInch)
{
    const double pixels = dotsPerInch * Millimetres / MillimetresPerInch;
    if (!std::isfinite(pixels))
        return LeastReach;
    return static_cast<int>(std::lround(std::clamp<double>(pixels, LeastReach, MostReach)));
}

std::optional<size_t> NearestRectangle(const std::vector<QRect>& rectangles, QPoint point,
                                       int reach)
{
    std::optional<size_t> nearest;
    Square least = std::numeric_limits<Square>::max();
    for (size_t i = 0; i < rectangles.size(); ++i) {
        if (rectangles[i].isEmpty())
            continue;
        const Square distance = SquareDistance(rectangles[i], point);
        if (distance > SquareOf(reach) || distance >= least)
            continue;
        least = distance;
        nearest = i;
    }
    return nearest;
}

QPoint NearestPoint(const QRect& rectangle, QPoint point)
{
    const int across = std::min(FrameWidth, (rectangle.width() - 1) / 2);
    const int down = std::min(FrameWidth, (rectangle.height() - 1) / 2);
    return ClampTo(rectangle.adjusted(across, down, -across, -down), point);
}

bool IsWithinReach(const QRect& rectangle, QPoint point, int reach)
{
    return SquareDistance(rectangle, point) <= SquareOf(reach);
}

} // namespace tavrix::platform
