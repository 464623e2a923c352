// What a WebP of a picture takes to write, before it is begun.
#pragma once

#include "standard-plugins/webp-output/WebPEncoder.h"

/// The longest side that the format holds.
constexpr uint32_t mostWebPSide = 16383;

/// Bytes, reckoned from what libwebp 1.2 was seen to take for noise, the worst of pictures, and
/// rounded up: 8 for a pixel with loss (in its mode of low memory), without loss 38, and 53 at the
/// highest effort; the picture's own four are among them.
uint64_t WebPMemoryNeeded(uint32_t width, uint32_t height, const WebPChoice& choice);

/// The same with loss where the library keeps what it will write until the end, which takes less
/// than half the time: 31 for a pixel, seen for noise at the highest quality; photographs take
/// some 7.
uint64_t WebPMemoryOfQuickWay(uint32_t width, uint32_t height);
