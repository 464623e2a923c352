// Bitmap resources as data: a picture file without its file header. Whoever wrote the bytes,
// nothing is read behind their end, and a picture is as large as the bytes that are there for it.
// No toolkit, any thread.
#pragma once

#include <windows.h>

#include <cstdint>
#include <optional>
#include <vector>

namespace tavrix::platform
{

struct BitmapPicture {
    int width = 0;
    int height = 0;
    std::vector<uint32_t> pixels; // 0xFFRRGGBB, row by row from the top
};

/// The picture of a resource of 1, 4, 8, 24 or 32 bits, bottom-up or top-down; the fourth byte of
/// the last depth means nothing. Empty when it is packed, cut short or no such picture.
CE_API std::optional<BitmapPicture> ParseBitmapResource(const void* bytes, size_t size);

} // namespace tavrix::platform
