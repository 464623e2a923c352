// Colour code points (ITU-T H.273, the "nclx" of picture files) as an ICC profile, so that
// ColorConversion converts them like any other. The profile is made of a matrix and one curve
// (ICC.1:2010, 8.3.3): the primaries by the usual sum to white, brought to the profile's white D50
// by the Bradford matrix (ICC.1:2010, annex E).
//
// Curves. The camera curves of video (1, 6, 14, 15) are taken for that of sRGB (13), as screens
// show them. Those of high range (16: SMPTE ST 2084; 18: ITU-R BT.2100 with the gamma 1.2 of a
// screen of 1,000 cd/m2) are cut at 203 cd/m2, the white of ITU-R BT.2408: what is brighter than
// white becomes white.
#pragma once

#include <stddef.h>
#include <stdint.h>

struct ColorCodePoints {
    /// x and y of red, green, blue and white (CIE 1931).
    float chromaticities[8];
    /// TransferCharacteristics of H.273.
    uint32_t transfer;
};

constexpr size_t mostCodePointProfileBytes = 2560;

/// The profile's bytes at `profile`, which has room for the most. 0 where the transfer is none of
/// those named here or 4, 5, 8, or the chromaticities make no triangle around white.
size_t MakeCodePointProfile(const ColorCodePoints& points, uint8_t* profile);
