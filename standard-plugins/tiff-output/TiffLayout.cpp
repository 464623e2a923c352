#include "standard-plugins/tiff-output/TiffLayout.h"

namespace
{

constexpr uint32_t stripBytes = 64 * 1024;
// An offset and a count of each strip, and all else that is no pixel.
constexpr uint64_t bytesAboutStrip = 16;
constexpr uint64_t bytesAboutFile = 64 * 1024;

} // namespace

uint32_t RowsPerStrip(uint32_t width)
{
    const uint32_t rows = stripBytes / (3 * width);
    return rows > 0 ? rows : 1;
}

bool NeedsBigTiff(uint32_t width, uint32_t height, bool compresses)
{
    const uint64_t pixels = uint64_t{3} * width * height;
    const uint64_t strips = height / RowsPerStrip(width) + 1;
    const uint64_t worst =
        (compresses ? pixels + pixels / 2 : pixels) + strips * bytesAboutStrip + bytesAboutFile;
    return worst > 0xffffffffu;
}
