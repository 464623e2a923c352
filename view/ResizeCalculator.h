// The arithmetic of the Resolution dialog: the wanted size as two fractions of the picture's own,
// from numbers that are typed in pixels or in percent. It knows no window; the dialog's handle and
// its guards are kept here for the dialog alone.
//
// round(x) is floor(x), plus 1 if x - floor(x) is at least 0.5.
#pragma once

#include "foundation/Types.h"

#include <windows.h>

struct ResizeCalculator {
    enum Unit : u32 { Pixels = 0, Percent = 1 };

    HWND dialog = nullptr;
    u32 baseWidth = 0; // the picture's size at the start, in pixels
    u32 baseHeight = 0;
    f64 scaleX = 1.0; // the wanted size as a fraction of it
    f64 scaleY = 1.0;
    u32 keepAspect = 1;
    f64 widthValue = 0; // what was shown last
    f64 heightValue = 0;
    u32 widthUnit = Pixels;
    u32 heightUnit = Pixels;
    u32 widthLive = 1; // 0 while the dialog itself sets a text: what changes then is no one's wish
    u32 heightLive = 1;
};

/// One of the two directions.
struct ResizeSide {
    u32 ResizeCalculator::*base;
    f64 ResizeCalculator::*scale;
    f64 ResizeCalculator::*value;
    u32 ResizeCalculator::*unit;
    u32 ResizeCalculator::*live;
};

inline constexpr ResizeSide ResizeWidth = {
    &ResizeCalculator::baseWidth, &ResizeCalculator::scaleX, &ResizeCalculator::widthValue,
    &ResizeCalculator::widthUnit, &ResizeCalculator::widthLive};
inline constexpr ResizeSide ResizeHeight = {
    &ResizeCalculator::baseHeight, &ResizeCalculator::scaleY, &ResizeCalculator::heightValue,
    &ResizeCalculator::heightUnit, &ResizeCalculator::heightLive};

/// Takes a number that was typed in the side's unit: round(value) / base, or value * 0.01. A side
/// of no pixels has no fraction by pixels and keeps the one that it has.
void TypeSize(ResizeCalculator& calculator, const ResizeSide& side, f64 value);
/// Gives the other side the fraction of this one.
void KeepAspect(ResizeCalculator& calculator, const ResizeSide& side);
/// What the side's field shows, in its unit: round(base * fraction), or round(fraction * 100). It
/// is kept as the side's value. 0 for what is no number; what has no place in 32 bits is the
/// nearest that has.
u32 SizeToShow(ResizeCalculator& calculator, const ResizeSide& side);
/// The side's wanted length in pixels, with the same limits.
u32 WantedSize(const ResizeCalculator& calculator, const ResizeSide& side);
