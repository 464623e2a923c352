// Icons of one colour each for tests that look for them in pixels.
#pragma once

#include <windows.h>

#include <cstdint>

namespace tavrix::test
{

/// An icon of 16 by 16 pixels of the colour 0xRRGGBB, nothing clear; the caller destroys it.
HICON SolidIcon(uint32_t color);
/// The same of 32 by 32.
HICON LargeSolidIcon(uint32_t color);

} // namespace tavrix::test
