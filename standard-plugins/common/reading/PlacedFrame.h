// The first frame of an animation on its canvas: formats whose frames are smaller than the picture
// lay each at a place of its own. What the frame leaves free is the background of transparent
// parts; what lies outside the canvas is cut off.
#pragma once

#include "standard-plugins/common/reading/Background.h"

/// All in pixels. The canvas passed IsPictureSize, and the frame is not empty.
struct PlacedFrame {
    uint32_t canvasWidth;
    uint32_t canvasHeight;
    uint32_t left;
    uint32_t top;
    uint32_t width;
    uint32_t height;
};

/// Whether the canvas is worth its memory: above 64 million pixels the frame brings at least a
/// sixteenth of them. Otherwise thirty bytes could ask for twelve gigabytes.
bool IsCanvasFilled(const PlacedFrame& place);
/// Whether line `y` of the canvas lies between the top and the foot of the frame.
bool CrossesLine(const PlacedFrame& place, uint32_t y);
/// Makes a line of the canvas, blue, green and red: `row` holds the frame's pixels of that line,
/// and is null for a line without any.
void ComposeLine(const PlacedFrame& place, const Background& ground, const uint8_t* row,
                 uint8_t* line);
