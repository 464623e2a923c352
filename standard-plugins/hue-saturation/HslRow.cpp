#include "standard-plugins/hue-saturation/HslRow.h"

#include "standard-plugins/common/adjusting/ToneTables.h"

namespace
{

// The lightness 1: twice 255, and hundredths of that.
constexpr int64_t fullLightness = int64_t{510} * 100;

struct Extremes {
    int32_t most;
    int32_t least;
};

Extremes ExtremesOf(const uint8_t* pixel)
{
    Extremes found = {pixel[0], pixel[0]};
    for (uint32_t byte = 1; byte < PixelBytes; ++byte) {
        if (pixel[byte] > found.most)
            found.most = pixel[byte];
        if (pixel[byte] < found.least)
            found.least = pixel[byte];
    }
    return found;
}

// Degrees times the chroma c, from -60 c to 300 c.
int32_t HueOf(const uint8_t* pixel, const Extremes& found)
{
    const int32_t red = pixel[RedByte];
    const int32_t green = pixel[GreenByte];
    const int32_t blue = pixel[BlueByte];
    const int32_t chroma = found.most - found.least;
    if (red == found.most)
        return 60 * (green - blue);
    return green == found.most ? 120 * chroma + 60 * (blue - red)
                               : 240 * chroma + 60 * (red - green);
}

// 60 c f for a colour whose own hue is `own` degrees; `hue` is degrees times c.
int32_t PartOf(int32_t hue, int32_t own, int32_t chroma)
{
    const int32_t circle = 360 * chroma;
    const int32_t turned = ((hue - own * chroma) % circle + circle) % circle;
    const int32_t distance = turned > circle / 2 ? circle - turned : turned;
    if (distance <= 60 * chroma)
        return 60 * chroma;
    return distance >= 120 * chroma ? 0 : 120 * chroma - distance;
}

// In parts of fullLightness.
int64_t ChangedLightness(const Extremes& found, int32_t lightness)
{
    const int64_t before = found.most + found.least;
    return lightness > 0 ? before * (100 - lightness) + fullLightness / 100 * lightness
                         : before * (100 + lightness);
}

// S' is `part` of `whole`.
struct Saturation {
    int64_t part;
    int64_t whole;
};

Saturation ChangedSaturation(const Extremes& found, int32_t saturation)
{
    const int32_t fromMiddle = found.most + found.least - 255;
    const int64_t whole = int64_t{100} * (255 - (fromMiddle < 0 ? -fromMiddle : fromMiddle));
    const int64_t part = int64_t{found.most - found.least} * (100 + saturation);
    return {part < whole ? part : whole, whole};
}

void ChangePixel(const uint8_t* pixel, const HslChange& change, uint8_t* out)
{
    constexpr int32_t ownHues[PixelBytes] = {240, 120, 0};
    const Extremes found = ExtremesOf(pixel);
    const int32_t chroma = found.most - found.least;
    const int64_t lightness = ChangedLightness(found, change.lightness);
    if (chroma == 0) {
        out[0] = out[1] = out[2] = RoundedShare(lightness * 255, fullLightness);
        return;
    }
    const Saturation saturation = ChangedSaturation(found, change.saturation);
    const int32_t hue = HueOf(pixel, found) + change.hue * chroma;
    const int64_t aside = 2 * lightness - fullLightness;
    const int64_t reach = (fullLightness - (aside < 0 ? -aside : aside)) * saturation.part;
    const int64_t unit = saturation.whole * 120 * chroma;
    for (uint32_t byte = 0; byte < PixelBytes; ++byte) {
        const int64_t part = 2 * PartOf(hue, ownHues[byte], chroma) - 60 * chroma;
        // fullLightness / 255 is 200.
        out[byte] = RoundedShare(lightness * unit + reach * part, 200 * unit);
    }
}

} // namespace

void ChangeHslRow(const uint8_t* row, uint32_t width, const HslChange& change, uint8_t* out)
{
    for (uint32_t x = 0; x < width; ++x, row += PixelBytes, out += PixelBytes) {
        uint8_t changed[PixelBytes];
        ChangePixel(row, change, changed);
        for (uint32_t byte = 0; byte < PixelBytes; ++byte)
            out[byte] = changed[byte];
    }
}
