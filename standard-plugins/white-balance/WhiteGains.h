// A colour cast taken out: each colour is multiplied so that a given one becomes grey (J. von
// Kries, Chromatic Adaptation, 1902), in light and not in stored values.
//
// Stored values become light by the curve of IEC 61966-2-1 (sRGB), with v in 0 .. 1:
//     light(v) = v / 12.92 for v up to 0.04045,    ((v + 0.055) / 1.055)^2.4 above.
// Where R, G and B are the light of the colour that is to be grey, and
//     Y = 0.2126 R + 0.7152 G + 0.0722 B,
// the gain of each colour is Y / R, Y / G and Y / B, at most 16 (also for a light of 0). Black
// gives no gains: nothing is changed. A value becomes
//     255 light^-1(gain light(v / 255)),
// in doubles, cut and rounded to the nearest, a half up. So the given colour keeps its luminance.
//
// The grey world (G. Buchsbaum, A Spatial Processor Model for Object Colour Perception, 1980) takes
// the mean light of all pixels of the picture for the colour that is to be grey.
#pragma once

#include "standard-plugins/common/adjusting/Histogram.h"

constexpr double mostGain = 16;

struct Light {
    double of[PixelBytes]; // 0 to 1
};

/// Of a stored value.
double LightOf(uint32_t value);
Light MeanLight(const Histogram histograms[PixelBytes]);
/// The tables that make `grey` a grey.
void FillWhiteBalance(ToneTables* tables, const Light& grey);
