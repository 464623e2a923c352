#include "standard-plugins/jxl-input/JxlRows.h"

#include "standard-plugins/common/PluginResult.h"

#include <stdlib.h>

namespace
{

// To the nearest; what is no number becomes 0.
uint8_t ByteOf(float sample)
{
    const float scaled = sample * 255 + 0.5f;
    if (!(scaled > 0))
        return 0;
    return scaled < 255 ? static_cast<uint8_t>(scaled) : 255;
}

bool Lies(const JxlRows& rows, size_t x, size_t y, size_t count)
{
    return y < rows.height && x < rows.width && count <= rows.width - x;
}

} // namespace

bool OpenJxlRows(JxlRows* rows, const JxlBasicInfo& info, const void* profile, size_t profileBytes,
                 const Background& ground)
{
    const bool alpha = info.alpha_bits > 0;
    const bool grey = info.num_color_channels == 1;
    FrameForm form = {};
    form.layout = grey ? (alpha ? ColorLayout::GreyAlpha8 : ColorLayout::Grey8)
                       : (alpha ? ColorLayout::Rgba8 : ColorLayout::Rgb8);
    form.profile = profile;
    form.profileBytes = profileBytes;
    form.mostPixels = info.xsize;
    rows->width = info.xsize;
    rows->height = info.ysize;
    rows->channels = (grey ? 1 : 3) + (alpha ? 1 : 0);
    rows->result = PluginDone;
    rows->bytes = static_cast<uint8_t*>(malloc(size_t{rows->channels} * info.xsize));
    return OpenFramePixels(&rows->pixels, form, ground) && rows->bytes;
}

void PutJxlPart(void* self, size_t x, size_t y, size_t count, const void* pixels)
{
    auto* rows = static_cast<JxlRows*>(self);
    if (rows->result < 0 || !Lies(*rows, x, y, count))
        return;
    const auto* samples = static_cast<const float*>(pixels);
    for (size_t i = 0; i < count * rows->channels; ++i)
        rows->bytes[i] = ByteOf(samples[i]);
    const auto lineNumber = static_cast<uint32_t>(y);
    uint8_t* line = LockLine(rows->lines, lineNumber);
    if (line)
        StoreFramePixels(&rows->pixels, rows->bytes, static_cast<uint32_t>(count), line + 3 * x);
    if (!line || !UnlockLine(rows->lines, lineNumber)) {
        rows->result = rows->lines->result;
        return;
    }
    // A frame that breaks off may bring pixels a second time.
    const uint64_t all = uint64_t{rows->width} * rows->height;
    rows->pixelsDone += count < all - rows->pixelsDone ? count : all - rows->pixelsDone;
    if (!ReportFramePart(rows->progress, rows->pixelsDone, all))
        rows->result = PluginStopped;
}

void CloseJxlRows(JxlRows* rows)
{
    CloseFramePixels(&rows->pixels);
    free(rows->bytes);
    *rows = {};
}
