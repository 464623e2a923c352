// Text drawn into a rectangle of the picture. The platform draws letters with hard edges, into its
// own bitmaps and nowhere else: so they are drawn eight times as large and brought down here, which
// is all there is of smooth edges.

#include "image/Raster.h"
#include "pixel/TextCoverage.h"
#include "pixel/TextInk.h"

#include <algorithm>

namespace
{

template <typename Handle>
void Delete(Handle* object)
{
    if (*object != nullptr)
        ::DeleteObject(*object);
    *object = nullptr;
}

} // namespace

i32 Raster::BeginText(const WCHAR* fontName, u32 width, u32 height, u32 size)
{
    (void)EndText();
    if (textContext.CreateMemory(nullptr) < Done)
        return Failed;
    const auto giveUp = [this] {
        (void)textContext.DeleteMemory();
        Delete(&textBrush);
        Delete(&textFont);
        Delete(&textBitmap);
        textBits = nullptr;
        return Failed;
    };
    textFont = MakeTextFont(fontName, FW_NORMAL, size * TextScale);
    if (textFont == nullptr || textContext.SelectFont(textFont) < Done)
        return giveUp();
    textBitmap = MakeInkBitmap(i64{width} * TextScale, i64{height} * TextScale, &textBits);
    if (textBitmap == nullptr || textContext.SelectBitmap(textBitmap) < Done)
        return giveUp();
    (void)::SetTextColor(textContext.Handle(), InkColor);
    textBrush = ::CreateSolidBrush(GroundColor);
    if (textBrush == nullptr)
        return giveUp();
    const RECT whole = {0, 0, static_cast<i32>(width * TextScale),
                        static_cast<i32>(height * TextScale)};
    (void)::FillRect(textContext.Handle(), &whole, textBrush);
    return Done;
}

i32 Raster::RenderText(const WCHAR* text, u32 color, PixelRect rectangle, u32 format)
{
    const i32 width = rectangle.right - rectangle.left + 1;
    const i32 height = rectangle.bottom - rectangle.top + 1;
    RECT whole = {0, 0, width * i32{TextScale}, height * i32{TextScale}};
    if (text != nullptr)
        (void)::DrawTextW(textContext.Handle(), text, -1, &whole, format);

    const ColorBytes ink = BytesOf(color);
    const size_t rowBytes = (static_cast<size_t>(width) + 3) & ~size_t{3};
    // At other depths a line may hold fewer pixels of 3 bytes than it has of its own.
    const i64 pixels = std::min(i64{info.width}, i64{info.stride / 3});
    const i64 first = std::max(i64{rectangle.left}, i64{0});
    const i64 behind = std::min(i64{rectangle.left} + width, pixels);
    const i64 last = std::max(i64{rectangle.top}, i64{0});
    const u8* bits = textBits; // the bottom line's rows come first
    for (i64 y = rectangle.bottom; y >= last; --y, bits += TextScale * rowBytes) {
        // Meant: from the bottom up, so that nothing is drawn of what reaches below the raster.
        if (y >= info.height)
            return Done;
        const i32 line = static_cast<i32>(y);
        u8* row = nullptr;
        const i32 status = LockLine(line, &row);
        if (status < Done)
            return status;
        if (first < behind)
            BlendTextRow(row + 3 * first, bits + (first - rectangle.left), rowBytes,
                         static_cast<size_t>(behind - first), ink);
        (void)ReleaseLine(line);
    }
    return Done;
}

i32 Raster::EndText()
{
    (void)textContext.DeleteMemory();
    Delete(&textBitmap);
    Delete(&textFont);
    Delete(&textBrush);
    textBits = nullptr;
    return Done;
}

i32 Raster::DrawTextSmooth(const WCHAR* text, u32 color, const WCHAR* fontName, i32 left, i32 top,
                           i32 right, i32 bottom, u32 size, u32 format)
{
    if (right < left || bottom < top)
        return Failed;
    // All columns or rows that a number can name are one too many, come to 0, and are refused too.
    const u32 width = static_cast<u32>(right) - static_cast<u32>(left) + 1;
    const u32 height = static_cast<u32>(bottom) - static_cast<u32>(top) + 1;
    if (BeginText(fontName, width, height, size) < Done)
        return Failed;
    // Meant: what stops the drawing half-way is not told.
    (void)RenderText(text, color, {left, top, right, bottom}, format);
    return EndText();
}
