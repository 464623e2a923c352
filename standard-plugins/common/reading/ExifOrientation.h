// The orientation that cameras note in EXIF data: tag 0x0112 of the first directory (CIPA DC-008,
// Exif 2.32, 4.6.4). Only that one number is looked for; everything else in the data, which may be
// hostile, is passed over. Offsets are checked against the bytes given, each entry is looked at
// once, and the directory's link to the next is not followed, so that no loop exists.
#pragma once

#include <stddef.h>
#include <stdint.h>

/// 1 to 8, what is drawn where by the standard: 1 as it is, 2 mirrored, 3 turned half, 4 flipped, 5
/// transposed, 6 turned right, 7 transposed the other way, 8 turned left.
constexpr uint32_t plainOrientation = 1;

/// `bytes` begin with the byte order ("II" or "MM") as in a TIFF header. plainOrientation where
/// there is no sound orientation in them.
uint32_t FindOrientation(const uint8_t* bytes, size_t count);
/// Whether width and height change places.
inline bool SwapsSides(uint32_t orientation)
{
    return orientation >= 5 && orientation <= 8;
}
