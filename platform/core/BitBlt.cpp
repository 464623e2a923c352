#include "platform/core/Gdi.h"

#include <algorithm>
#include <cstdint>

namespace tavrix::platform
{
namespace
{

// One axis of a transfer, cut to both pictures. Sums are in 64 bits, so that no argument overflows.
struct Span {
    int64_t at;
    int64_t from;
    int64_t length;

    void Cut(int64_t targetLength, int64_t sourceLength)
    {
        const int64_t before = std::max({int64_t{0}, -at, -from});
        at += before;
        from += before;
        length -= before;
        length = std::min({length, targetLength - at, sourceLength - from});
    }
};

RECT AreaOf(const Span& horizontal, const Span& vertical)
{
    return {static_cast<LONG>(horizontal.at), static_cast<LONG>(vertical.at),
            static_cast<LONG>(horizontal.at + horizontal.length),
            static_cast<LONG>(vertical.at + vertical.length)};
}

constexpr COLORREF InvalidColor = 0xFFFFFFFFu;

BOOL Fill(const DeviceContext& context, const RECT& wanted, COLORREF color)
{
    Surface surface;
    std::shared_ptr<GdiObject> keep;
    if (!ContextSurface(context, true, &surface, &keep))
        return FALSE;
    const RECT area{std::max<LONG>(wanted.left, 0), std::max<LONG>(wanted.top, 0),
                    std::min<LONG>(wanted.right, surface.width),
                    std::min<LONG>(wanted.bottom, surface.height)};
    if (area.left >= area.right || area.top >= area.bottom)
        return TRUE;
    FillArea(surface, area, color);
    ContextDrawn(context, area);
    return TRUE;
}

LONG Saturated(int64_t value)
{
    return static_cast<LONG>(std::clamp<int64_t>(value, INT32_MIN, INT32_MAX));
}

} // namespace
} // namespace tavrix::platform

using namespace tavrix::platform;

extern "C" {

BOOL WINAPI BitBlt(HDC target, int x, int y, int width, int height, HDC source, int sourceX,
                   int sourceY, DWORD operation)
{
    const auto to = FindDeviceContext(target);
    if (to == nullptr)
        return FALSE;
    if (operation == BLACKNESS || operation == WHITENESS) {
        const RECT area{x, y, Saturated(int64_t{x} + width), Saturated(int64_t{y} + height)};
        return Fill(*to, area, operation == BLACKNESS ? RGB(0, 0, 0) : RGB(255, 255, 255));
    }
    const auto from = FindDeviceContext(source);
    if (from == nullptr || operation != SRCCOPY)
        return FALSE;
    Surface sourceSurface;
    Surface targetSurface;
    std::shared_ptr<GdiObject> keepSource;
    std::shared_ptr<GdiObject> keepTarget;
    if (!ContextSurface(*from, false, &sourceSurface, &keepSource) ||
        !ContextSurface(*to, true, &targetSurface, &keepTarget))
        return FALSE;
    Span horizontal{x, sourceX, width};
    Span vertical{y, sourceY, height};
    horizontal.Cut(targetSurface.width, sourceSurface.width);
    vertical.Cut(targetSurface.height, sourceSurface.height);
    if (horizontal.length <= 0 || vertical.length <= 0)
        return TRUE;
    CopyPixels(targetSurface, static_cast<int>(horizontal.at), static_cast<int>(vertical.at),
               static_cast<int>(horizontal.length), static_cast<int>(vertical.length),
               sourceSurface, static_cast<int>(horizontal.from), static_cast<int>(vertical.from));
    ContextDrawn(*to, AreaOf(horizontal, vertical));
    return TRUE;
}

int WINAPI FillRect(HDC dc, const RECT* rectangle, HBRUSH brush)
{
    const auto context = FindDeviceContext(dc);
    const auto object = FindGdiObject(brush);
    if (context == nullptr || rectangle == nullptr || object == nullptr ||
        object->kind != GdiObject::Kind::Brush)
        return 0;
    COLORREF color = 0;
    return BrushColor(brush, &color) ? Fill(*context, *rectangle, color) : 1;
}

COLORREF WINAPI GetPixel(HDC dc, int x, int y)
{
    const auto context = FindDeviceContext(dc);
    Surface surface;
    std::shared_ptr<GdiObject> keep;
    if (context == nullptr || !ContextSurface(*context, false, &surface, &keep) || x < 0 || y < 0 ||
        x >= surface.width || y >= surface.height)
        return InvalidColor;
    return ReadPixel(surface, x, y);
}

} // extern "C"
