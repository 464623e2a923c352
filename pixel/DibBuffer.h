// A bottom-up bitmap of the platform with a memory context that it is selected into: what a tool
// window or a dialog paints a picture from. User-interface thread only.
#pragma once

#include "image/DrawingContext.h"
#include "image/Raster.h"

class DibBuffer
{
public:
    DibBuffer();
    /// Destroys.
    ~DibBuffer();
    DibBuffer(const DibBuffer&) = delete;
    DibBuffer& operator=(const DibBuffer&) = delete;

    /// Drops what is there, then makes a black bitmap of `width` x `height` pixels of `depth` bits
    /// and a context for it. Failed, and nothing is there, when the platform refuses either.
    [[nodiscard]] i32 Create(u32 width, u32 height, u32 depth);
    /// Create with the raster's size and depth; with `copy` not 0 also CopyFrom. BadArgument for
    /// null, else the result of what was done last.
    [[nodiscard]] i32 CreateFrom(Raster* raster, i32 copy);
    /// Copies the raster's rows, the last one first, to the bitmap from its first byte on, so that
    /// a picture of 24 bits and of the buffer's size lands as the bitmap shows it. Each takes
    /// (3 * (width + 1)) & ~3 bytes with the buffer's width, and no more than the raster's line and
    /// the bitmap's row hold; depths are not converted. WrongState unless created, then BadArgument
    /// for null; NothingDone when a line cannot be locked, with the rows below it copied; else
    /// Done.
    i32 CopyFrom(Raster* raster);
    /// The context to BitBlt from, which stays the buffer's. BadArgument for null, WrongState
    /// unless created, else Done.
    i32 GetDC(HDC* out) const;
    /// Deletes the context and the bitmap.
    void Destroy();

private:
    i32 created;
    u8* bits;
    HBITMAP bitmap;
    DrawingContext dc;
    u32 width;
    u32 height;
    u32 depth;
};
