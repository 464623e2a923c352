#include "standard-plugins/common/filtering/device/FilterPreview.h"

#include "standard-plugins/common/filtering/FilterRun.h"
#include "standard-plugins/common/PictureLines.h"

#include <stdlib.h>
#include <string.h>

namespace
{

constexpr size_t pixelBytes = 3;

// What of the picture is taken: every pixel from a corner on, or some of all.
struct Taking {
    uint32_t left;
    uint32_t top;
    uint32_t width;
    uint32_t height;
    bool whole;
};

uint32_t Lesser(uint32_t a, uint32_t b)
{
    return a < b ? a : b;
}

Taking TakeMiddle(const PictureLines& lines, uint32_t mostWidth, uint32_t mostHeight)
{
    const uint32_t width = Lesser(lines.width, mostWidth);
    const uint32_t height = Lesser(lines.height, mostHeight);
    return {(lines.width - width) / 2, (lines.height - height) / 2, width, height, false};
}

Taking TakeWhole(const PictureLines& lines, uint32_t mostWidth, uint32_t mostHeight)
{
    if (lines.width <= mostWidth && lines.height <= mostHeight)
        return {0, 0, lines.width, lines.height, false};
    uint32_t width = mostWidth;
    auto height = static_cast<uint32_t>(uint64_t{lines.height} * width / lines.width);
    if (height > mostHeight) {
        height = mostHeight;
        width = static_cast<uint32_t>(uint64_t{lines.width} * height / lines.height);
    }
    return {0, 0, width > 0 ? width : 1, height > 0 ? height : 1, true};
}

// The pixel in the middle of each of `count` equal parts of `length`.
uint32_t PlaceOf(uint32_t index, uint32_t count, uint32_t length)
{
    return static_cast<uint32_t>((2 * uint64_t{index} + 1) * length / (2 * uint64_t{count}));
}

bool TakeRow(PictureLines* lines, const Taking& taking, uint32_t index, uint8_t* target)
{
    const uint32_t y =
        taking.whole ? PlaceOf(index, taking.height, lines->height) : taking.top + index;
    const uint8_t* line = LockPictureLine(lines, y);
    if (!line)
        return false;
    if (taking.whole)
        for (uint32_t x = 0; x < taking.width; ++x)
            memcpy(target + pixelBytes * x,
                   line + pixelBytes * PlaceOf(x, taking.width, lines->width), pixelBytes);
    else
        memcpy(target, line + pixelBytes * taking.left, pixelBytes * taking.width);
    return UnlockPictureLine(lines, y);
}

bool TakeRows(FilterPreview* preview, PictureLines* lines, const Taking& taking)
{
    const size_t rowBytes = pixelBytes * taking.width;
    preview->before = static_cast<uint8_t*>(malloc(rowBytes * taking.height));
    preview->after = static_cast<uint8_t*>(malloc(rowBytes * taking.height));
    if (!preview->before || !preview->after)
        return false;
    for (uint32_t i = 0; i < taking.height; ++i)
        if (!TakeRow(lines, taking, i, preview->before + rowBytes * i))
            return false;
    memcpy(preview->after, preview->before, rowBytes * taking.height);
    preview->width = taking.width;
    preview->height = taking.height;
    return true;
}

POINT CornerOf(const FilterPreview& preview, const RECT& place)
{
    return {(place.left + place.right - static_cast<LONG>(preview.width)) / 2,
            (place.top + place.bottom - static_cast<LONG>(preview.height)) / 2};
}

// The device's bitmaps have lines of whole 4 bytes, the lowest first.
HBITMAP MakeBitmap(const FilterPreview& preview, HDC dc)
{
    BITMAPINFO info = {};
    info.bmiHeader.biSize = sizeof info.bmiHeader;
    info.bmiHeader.biWidth = static_cast<LONG>(preview.width);
    info.bmiHeader.biHeight = static_cast<LONG>(preview.height);
    info.bmiHeader.biPlanes = 1;
    info.bmiHeader.biBitCount = 24;
    void* bits = nullptr;
    const HBITMAP bitmap = CreateDIBSection(dc, &info, DIB_RGB_COLORS, &bits, nullptr, 0);
    if (!bitmap || !bits)
        return bitmap;
    const size_t rowBytes = pixelBytes * preview.width;
    const size_t stride = (rowBytes + 3) & ~size_t{3};
    for (uint32_t y = 0; y < preview.height; ++y)
        memcpy(static_cast<uint8_t*>(bits) + stride * (preview.height - 1 - y),
               preview.after + rowBytes * y, rowBytes);
    return bitmap;
}

void DrawPixels(const FilterPreview& preview, HDC dc, const RECT& place)
{
    const HBITMAP bitmap = MakeBitmap(preview, dc);
    const HDC memory = CreateCompatibleDC(dc);
    if (bitmap && memory) {
        const HGDIOBJ before = SelectObject(memory, bitmap);
        const POINT corner = CornerOf(preview, place);
        BitBlt(dc, corner.x, corner.y, static_cast<int>(preview.width),
               static_cast<int>(preview.height), memory, 0, 0, SRCCOPY);
        SelectObject(memory, before);
    }
    if (memory)
        DeleteDC(memory);
    if (bitmap)
        DeleteObject(bitmap);
}

} // namespace

void TakePreview(FilterPreview* preview, SIZE place, PreviewSample sample, TavrixImageHandle image,
                 RasterFunctionTable* rasters)
{
    *preview = {};
    PictureLines lines;
    if (place.cx < 1 || place.cy < 1 || !OpenPictureLines(&lines, rasters, image))
        return;
    const auto mostWidth = static_cast<uint32_t>(place.cx);
    const auto mostHeight = static_cast<uint32_t>(place.cy);
    const Taking taking = sample == PreviewSample::Middle ? TakeMiddle(lines, mostWidth, mostHeight)
                                                          : TakeWhole(lines, mostWidth, mostHeight);
    if (!TakeRows(preview, &lines, taking))
        FreePreview(preview);
}

void ChangePreview(FilterPreview* preview, const FilterWork& work, const uint32_t* values)
{
    if (preview->width > 0)
        (void)RunFilterInMemory(work, values, preview->before, preview->width, preview->height,
                                preview->after);
}

void DrawPreview(const FilterPreview& preview, HDC dc, const RECT& place)
{
    const HBRUSH ground = CreateSolidBrush(RGB(128, 128, 128));
    FillRect(dc, &place, ground);
    DeleteObject(ground);
    if (preview.width > 0)
        DrawPixels(preview, dc, place);
}

const uint8_t* PreviewPixelAt(const FilterPreview& preview, const RECT& place, POINT point)
{
    const POINT corner = CornerOf(preview, place);
    const LONG x = point.x - corner.x;
    const LONG y = point.y - corner.y;
    if (x < 0 || y < 0 || x >= static_cast<LONG>(preview.width) ||
        y >= static_cast<LONG>(preview.height))
        return nullptr;
    return preview.before +
           pixelBytes * (size_t{preview.width} * static_cast<size_t>(y) + static_cast<size_t>(x));
}

void FreePreview(FilterPreview* preview)
{
    free(preview->before);
    free(preview->after);
    *preview = {};
}
