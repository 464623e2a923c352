#include "standard-plugins/jpeg-input/JpegPixels.h"

void ConvertInk(const uint8_t* source, uint32_t count, InkSense sense, uint8_t* target)
{
    const uint32_t flip = sense == InkSense::MoreIsInk ? 255 : 0;
    for (; count > 0; --count, source += 4, target += 3) {
        const uint32_t black = source[3] ^ flip;
        target[2] = static_cast<uint8_t>(((source[0] ^ flip) * black + 127) / 255);
        target[1] = static_cast<uint8_t>(((source[1] ^ flip) * black + 127) / 255);
        target[0] = static_cast<uint8_t>(((source[2] ^ flip) * black + 127) / 255);
    }
}
