// What lies behind the transparent parts of a picture that is read: a colour that the user chose,
// white at first. A pixel with alpha is laid over it with one rounding, to the nearest, from exact
// integers (T. Porter, T. Duff, Compositing Digital Images, 1984: "over" with an opaque ground):
//
//     8 bits:   out = (a * c + (255 - a) * b + 127) div 255
//     16 bits:  out = (a * c + (65535 - a) * 257 * b + 8421247) div 16842495
//
// where 16842495 = 65535 * 257 brings the 16-bit result down to 8 bits in the same division, and
// the term added is half of the odd divisor, rounded down, so that no tie exists.
#pragma once

#include "standard-plugins/common/PluginSettings.h"

struct Background {
    uint8_t red;
    uint8_t green;
    uint8_t blue;
};

/// The settings of one plugin: its three colour values, white by default, and whether Configure
/// shows the dialog (AskBackground in common/device), which it does not by default.
struct BackgroundSettings {
    PluginSetting red;
    PluginSetting green;
    PluginSetting blue;
    PluginSetting ask;
};

/// The settings of the plugin whose keys begin with `prefix`, a literal.
#define BACKGROUND_SETTINGS(prefix)                                                                \
    {                                                                                              \
        {PLUGIN_TEXT(prefix "BackgroundRed"), 0, 255, 255},                                        \
            {PLUGIN_TEXT(prefix "BackgroundGreen"), 0, 255, 255},                                  \
            {PLUGIN_TEXT(prefix "BackgroundBlue"), 0, 255, 255},                                   \
            {PLUGIN_TEXT(prefix "AskBackground"), 0, 1, 0},                                        \
    }

Background ReadBackground(const BackgroundSettings& settings, TavrixGetPropertyCallback get);

/// One channel over the background's, by the first formula; all from 0 to 255.
inline uint8_t OverGround8(uint32_t channel, uint32_t alpha, uint32_t ground)
{
    return static_cast<uint8_t>((alpha * channel + (255 - alpha) * ground + 127) / 255);
}

/// The second formula: `channel` and `alpha` from 0 to 65535, `ground` from 0 to 255.
inline uint8_t OverGround16(uint32_t channel, uint32_t alpha, uint32_t ground)
{
    const uint64_t sum = uint64_t{alpha} * channel + uint64_t{65535 - alpha} * 257 * ground;
    return static_cast<uint8_t>((sum + 8421247) / 16842495);
}

/// A 16-bit sample without alpha: to the nearest, (c + 128) div 257.
inline uint8_t Narrow16(uint32_t channel)
{
    return static_cast<uint8_t>((channel + 128) / 257);
}
