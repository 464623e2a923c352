#include "standard-plugins/white-balance/WhiteGains.h"

#include <math.h>

namespace
{

constexpr double luminanceWeights[PixelBytes] = {0.0722, 0.7152, 0.2126};

double StoredOf(double light)
{
    return light <= 0.04045 / 12.92 ? light * 12.92 : 1.055 * pow(light, 1 / 2.4) - 0.055;
}

double LuminanceOf(const Light& light)
{
    double sum = 0;
    for (uint32_t byte = 0; byte < PixelBytes; ++byte)
        sum += luminanceWeights[byte] * light.of[byte];
    return sum;
}

double GainOf(double luminance, double light)
{
    if (luminance <= 0)
        return 1;
    return luminance >= mostGain * light ? mostGain : luminance / light;
}

} // namespace

double LightOf(uint32_t value)
{
    const double v = value / 255.0;
    return v <= 0.04045 ? v / 12.92 : pow((v + 0.055) / 1.055, 2.4);
}

Light MeanLight(const Histogram histograms[PixelBytes])
{
    Light mean = {};
    for (uint32_t byte = 0; byte < PixelBytes; ++byte) {
        double sum = 0;
        for (uint32_t value = 0; value < 256; ++value)
            sum += static_cast<double>(histograms[byte].counts[value]) * LightOf(value);
        mean.of[byte] = sum / static_cast<double>(CountOf(histograms[byte]));
    }
    return mean;
}

void FillWhiteBalance(ToneTables* tables, const Light& grey)
{
    const double luminance = LuminanceOf(grey);
    for (uint32_t byte = 0; byte < PixelBytes; ++byte) {
        const double gain = GainOf(luminance, grey.of[byte]);
        for (uint32_t value = 0; value < 256; ++value)
            tables->of[byte][value] = RoundedTone(255 * StoredOf(gain * LightOf(value)));
    }
}
