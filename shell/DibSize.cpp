#include "shell/DibSize.h"

i32 ReadDibSize(const void* block, size_t bytes, u32* width, u32* height)
{
    if (bytes < sizeof(BITMAPINFOHEADER))
        return Failed;
    const auto& header = *static_cast<const BITMAPINFOHEADER*>(block);
    if (header.biWidth < 0)
        return Failed;
    const u32 signedHeight = static_cast<u32>(header.biHeight);
    *width = static_cast<u32>(header.biWidth);
    *height = header.biHeight < 0 ? 0 - signedHeight : signedHeight;
    return Done;
}
