// What a JPEG XL of a picture takes to write, before it is begun.
#pragma once

#include "standard-plugins/jxl-output/JxlEncoder.h"

/// Bytes, reckoned from what libjxl 0.7 was seen to take at most and rounded up: for a pixel 63
/// with loss and 88 without, from effort 8 on 286 and 136.
uint64_t JxlMemoryNeeded(uint32_t width, uint32_t height, const JxlChoice& choice);
