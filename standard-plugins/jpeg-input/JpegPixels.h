// Ink amounts to light. The codec turns every other colour space into blue, green and red itself.
#pragma once

#include <stdint.h>

/// How the four values of a pixel count. Files with the marker of one widespread writer hold them
/// the other way round: 255 is no ink.
enum class InkSense { MoreIsInk, LessIsInk };

/// `count` pixels of cyan, magenta, yellow, black to blue, green, red. With light = 255 - ink:
/// out = (light of the colour * light of black + 127) div 255.
void ConvertInk(const uint8_t* source, uint32_t count, InkSense sense, uint8_t* target);
