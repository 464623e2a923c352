// Text letter by letter, each in a cell of its own: an older way than Text.cpp's, which nothing in
// the program uses.

#include "image/Raster.h"
#include "pixel/Rows.h"
#include "pixel/RowWalk.h"
#include "pixel/TextInk.h"

#include <algorithm>

namespace
{

constexpr u32 LargestScale = 8;

/// The square that a letter is drawn into before it goes to the raster.
struct Cell {
    ~Cell()
    {
        (void)context.DeleteMemory();
        for (const HGDIOBJ object : {HGDIOBJ{bitmap}, HGDIOBJ{font}, HGDIOBJ{ground}})
            if (object != nullptr)
                ::DeleteObject(object);
    }

    [[nodiscard]] i32 Create(const WCHAR* fontName, i64 newSide, u32 newScale)
    {
        u8* bits = nullptr;
        font = MakeTextFont(fontName, FW_BOLD, static_cast<u32>(newSide));
        bitmap = MakeInkBitmap(newSide, newSide, &bits);
        ground = ::CreateSolidBrush(GroundColor);
        if (font == nullptr || bitmap == nullptr || ground == nullptr ||
            context.CreateMemory(nullptr) < Done || context.SelectFont(font) < Done ||
            context.SelectBitmap(bitmap) < Done)
            return Failed;
        (void)::SetTextColor(context.Handle(), InkColor);
        side = static_cast<i32>(newSide);
        scale = static_cast<i32>(newScale);
        return Done;
    }

    DrawingContext context;
    HFONT font = nullptr;
    HBITMAP bitmap = nullptr;
    HBRUSH ground = nullptr;
    i32 side = 0;
    i32 scale = 1;
};

/// In pixels of the raster, broken ones counted as whole.
struct Extent {
    i32 width;
    i32 height;
};

Extent DrawLetter(const Cell& cell, const WCHAR* letter)
{
    const HDC dc = cell.context.Handle();
    RECT whole = {0, 0, cell.side, cell.side};
    (void)::FillRect(dc, &whole, cell.ground);
    RECT place = whole;
    if (::DrawTextW(dc, letter, 1, &place, DT_CALCRECT) == 0)
        return {0, 0};
    (void)::DrawTextW(dc, letter, 1, &whole, DT_LEFT);
    const auto inPixels = [&cell](i64 extent) {
        const i64 kept = std::clamp(extent, i64{0}, i64{cell.side});
        return static_cast<i32>((kept + cell.scale - 1) / cell.scale);
    };
    return {inPixels(place.right), inPixels(place.bottom)};
}

u32 CountBlack(const Cell& cell, i32 x, i32 y)
{
    const HDC dc = cell.context.Handle();
    u32 count = 0;
    for (i32 row = 0; row < cell.scale; ++row)
        for (i32 column = 0; column < cell.scale; ++column)
            count += ::GetPixel(dc, x * cell.scale + column, y * cell.scale + row) == InkColor;
    return count;
}

void BlendPixel(u8* pixel, u32 weight, const ColorBytes& color)
{
    // Meant: of 256 parts one is missing, so that white without ink becomes 254.
    pixel[0] = static_cast<u8>(((255 - weight) * pixel[0] + weight * color.blue) >> 8);
    pixel[1] = static_cast<u8>(((255 - weight) * pixel[1] + weight * color.green) >> 8);
    pixel[2] = static_cast<u8>(((255 - weight) * pixel[2] + weight * color.red) >> 8);
}

/// Where a letter goes: its first pixel, and the columns and rows that are drawn, behind the last
/// one the next.
struct Place {
    i64 x;
    i64 y;
    i64 firstColumn;
    i64 behindColumns;
    i64 firstRow;
    i64 behindRows;
};

i32 LayLetter(Raster* raster, const Cell& cell, const Place& place, const ColorBytes& color)
{
    if (place.firstColumn >= place.behindColumns)
        return Done;
    const u32 scale = static_cast<u32>(cell.scale);
    i64 y = place.firstRow;
    return DrawRows(raster, y, place.behindRows - 1, [&](u8* row) {
        for (i64 x = place.firstColumn; x < place.behindColumns; ++x) {
            const u32 count =
                CountBlack(cell, static_cast<i32>(x - place.x), static_cast<i32>(y - place.y));
            const u32 weight = (count * color.alpha * 255 / (scale * scale)) >> 8;
            BlendPixel(row + 3 * x, weight, color);
        }
        ++y;
    });
}

} // namespace

i32 Raster::DrawTextCells(const WCHAR* text, u32 color, const WCHAR* fontName, i32 left, i32 top,
                          i32 right, i32 bottom, u32 cell, u32 scale)
{
    if (scale < 1 || scale > LargestScale)
        return Failed;
    Cell drawn;
    if (drawn.Create(fontName, i64{cell} * scale, scale) < Done)
        return Failed;
    const ColorBytes ink = BytesOf(color);
    // At other depths a line may hold fewer pixels of 3 bytes than it has of its own.
    const i64 columns = std::min({i64{info.width}, i64{info.stride / 3}, i64{right} + 1});
    i64 x = left;
    i64 y = top;
    i32 status = Done;
    for (; text != nullptr && *text != 0 && status >= Done; ++text) {
        if (*text == TEXT('\r'))
            continue;
        const bool ends = *text == TEXT('\n');
        const Extent extent = ends ? Extent{0, 0} : DrawLetter(drawn, text);
        if (ends || x + extent.width > right) {
            x = left;
            y += cell;
        }
        if (y + cell > bottom)
            break;
        if (ends)
            continue;
        status = LayLetter(this, drawn,
                           {x, y, std::max(x, i64{0}), std::min(x + extent.width, columns),
                            std::max(y, i64{0}), std::min(y + extent.height, i64{info.height})},
                           ink);
        x += cell;
    }
    return status;
}
