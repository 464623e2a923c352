#include "pixel/DibBuffer.h"

#include <algorithm>
#include <string.h>

namespace
{

// The largest table of colours that the platform reads behind a header, for depths up to 8.
struct BufferFormat {
    BITMAPINFOHEADER header;
    RGBQUAD colors[256];
};

constexpr u32 LargestSide = 0x7FFFFFFF;

} // namespace

DibBuffer::DibBuffer() : created(0), bits(nullptr), bitmap(nullptr), width(0), height(0), depth(0)
{
}

DibBuffer::~DibBuffer()
{
    Destroy();
}

i32 DibBuffer::Create(u32 newWidth, u32 newHeight, u32 newDepth)
{
    Destroy();
    // Sides beyond the header's signed numbers would turn the bitmap upside down, and a depth cut
    // to the header's 16 bits would name another one.
    if (newWidth > LargestSide || newHeight > LargestSide || newDepth > UINT16_MAX)
        return Failed;
    BufferFormat format = {};
    format.header.biSize = sizeof(BITMAPINFOHEADER);
    format.header.biWidth = static_cast<i32>(newWidth);
    format.header.biHeight = static_cast<i32>(newHeight);
    format.header.biPlanes = 1;
    format.header.biBitCount = static_cast<WORD>(newDepth);
    format.header.biCompression = BI_RGB;
    void* pixels = nullptr;
    bitmap = ::CreateDIBSection(nullptr, reinterpret_cast<const BITMAPINFO*>(&format),
                                DIB_RGB_COLORS, &pixels, nullptr, 0);
    if (bitmap == nullptr)
        return Failed;
    if (dc.CreateMemory(nullptr) < 1 || dc.SelectBitmap(bitmap) < 1) {
        Destroy();
        return Failed;
    }
    created = 1;
    bits = static_cast<u8*>(pixels);
    width = newWidth;
    height = newHeight;
    depth = newDepth;
    return Done;
}

i32 DibBuffer::CreateFrom(Raster* raster, i32 copy)
{
    if (raster == nullptr)
        return BadArgument;
    RasterInfo info = {};
    info.size = sizeof(info);
    (void)raster->GetInfo(&info);
    const i32 result = Create(info.width, info.height, info.depth);
    if (result < 0 || copy == 0)
        return result;
    return CopyFrom(raster);
}

i32 DibBuffer::CopyFrom(Raster* raster)
{
    // In this order on purpose, unlike GetDC's.
    if (created == 0)
        return WrongState;
    if (raster == nullptr)
        return BadArgument;
    RasterInfo info = {};
    info.size = sizeof(info);
    (void)raster->GetInfo(&info);
    const u64 rowBytes = (u64{width} * depth + 31) / 32 * 4;
    const u64 wanted = (3 * (u64{width} + 1)) & ~u64{3};
    const size_t copied = static_cast<size_t>(std::min({wanted, rowBytes, u64{info.stride}}));
    u8* row = bits;
    for (u32 line = height; line-- > 0; row += rowBytes) {
        u8* source = nullptr;
        if (raster->LockLine(static_cast<i32>(line), &source) < 1 || source == nullptr)
            return NothingDone;
        memcpy(row, source, copied);
        (void)raster->ReleaseLine(static_cast<i32>(line));
    }
    return Done;
}

i32 DibBuffer::GetDC(HDC* out) const
{
    if (out == nullptr)
        return BadArgument;
    if (created == 0)
        return WrongState;
    *out = dc.Handle();
    return Done;
}

void DibBuffer::Destroy()
{
    (void)dc.DeleteMemory();
    if (bitmap != nullptr)
        ::DeleteObject(bitmap);
    bitmap = nullptr;
    bits = nullptr;
    created = 0;
}
