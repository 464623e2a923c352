// The last stage of the display path: a bottom-up bitmap of the screen's size that the window is
// painted from. Depth 24 (blue, green, red) or 2 (four greys: 0, 128, 192, 255; four pixels a byte,
// the first in the top two bits). User-interface thread only.
//
// At present a surface of depth 24 shows a raster as it is (method 0). The ordered dither (method
// 1) and the greys of depth 2 are not drawn yet: Present answers Failed for both and leaves the
// surface as it was.
#pragma once

#include "image/DrawingContext.h"
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
    [[nodiscard]] i32 Create(u32 width, u32 height, u32 depth);
    void Destroy();
    /// Turns a 24-bit raster into what the display shows: method 0 is a straight copy. A raster
    /// smaller than the surface fills its top left part. BadArgument for null, WrongState when not
    /// created, Failed for another depth or method; the status of a line that cannot be locked,
    /// with the rows before it shown.
    i32 Present(Raster* raster, u32 method);
    /// The memory context to BitBlt from.
    HDC GetDC() const { return context.Handle(); }
    u32 Depth() const { return depth; }

private:
    i32 PresentColor(Raster* raster, u32 method, u32 rows, u32 columns);

    HBITMAP bitmap;
    DrawingContext context;
    u8* bits;
    u32 width;
    u32 height;
    u32 depth;
};
