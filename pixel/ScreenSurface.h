// The last stage of the display path: a bottom-up bitmap of the screen's size that the window is
// painted from. Depth 24 (blue, green, red) or 2 (four greys: 0, 128, 192, 255; four pixels a byte,
// the first in the top two bits). User-interface thread only.
#pragma once

#include "image/DrawingContext.h"
#include "image/PagedLineList.h"
#include "image/Raster.h"

class ScreenSurface
{
public:
    ScreenSurface();
    /// Destroys, then releases the context.
    ~ScreenSurface();
    ScreenSurface(const ScreenSurface&) = delete;
    ScreenSurface& operator=(const ScreenSurface&) = delete;

    /// BadArgument for a depth other than 2 and 24, Failed when the platform refuses. Over a live
    /// surface the old bitmap goes once the new one stands; a refused bitmap leaves the old one.
    /// Sides of more than 31 bits are refused.
    [[nodiscard]] i32 Create(u32 width, u32 height, u32 depth);
    void Destroy();
    /// A 24-bit surface of the bitmap's size that holds a copy of it; black where the bitmap cannot
    /// be selected. BadArgument for null, Failed when it is no bitmap; Create's result when that is
    /// negative, else Done.
    [[nodiscard]] i32 CreateFromBitmap(HBITMAP source);
    /// Turns a 24-bit raster into what the display shows; one smaller than the surface fills its
    /// top left part. Depth 24: method 0 is a straight copy; 1 an ordered dither to 5 bits a
    /// channel by a 4x4 threshold matrix (Bayer, 1973); any other is Failed. Depth 2: error
    /// diffusion into the four greys (Floyd and Steinberg, 1976) with noise from Random, so that no
    /// two runs are alike, and beside a narrower raster its rows turn black; `method` is not looked
    /// at. BadArgument for null, WrongState when not created, Failed for a raster of another depth,
    /// NoMemory; the status of a line that cannot be locked, with the rows before it shown.
    i32 Present(Raster* raster, u32 method);
    /// Present for a list of 24 bits on a surface of depth 24, methods as there; Failed at depth 2.
    i32 PresentLines(PagedLineList* list, u32 method);
    /// The memory context to BitBlt from.
    HDC GetDC() const { return context.Handle(); }
    u32 Depth() const { return depth; }

private:
    i32 PresentColor(Raster* raster, u32 method, u32 rows, u32 columns);
    i32 PresentGrey(Raster* raster, u32 rows, u32 columns);

    /// What a frame by that method needs. Failed for a method that is neither 0 nor 1, NoMemory.
    [[nodiscard]] i32 BeginColor(u32 method);
    /// Puts `columns` pixels of the picture's row `y` into the bitmap.
    void ShowColorRow(const u8* row, u32 y, u32 columns, u32 method);
    /// Gives back what the frame needed.
    void EndColor();
    /// Frees the table of a frame that broke off, and makes it anew.
    [[nodiscard]] i32 BuildDitherTable(u32 method);
    /// The bitmap's row for the picture's row `y`; the bitmap is bottom-up.
    u8* BitmapRow(u32 y) const;
    /// Bytes of a bitmap's row.
    size_t Stride() const;

    HBITMAP bitmap;
    DrawingContext context;
    u8* bits;
    u32 width;
    u32 height;
    u32 depth;
    u8* ditherTable; // owned; there during a dithered frame, and after one that broke off
};
