// What becomes of each of the 256 values of a colour, given what is to be black and white.
//
// With the input points b and w, the gamma g and the output points p and q:
//     t = (v - b) / (w - b), cut to 0 .. 1
//     out = p + (q - p) t^(1 / g)
// in doubles, rounded to the nearest, a half up. A gamma above 1 makes the middle lighter. A white
// point that does not lie above the black one counts as the value next to it, so that values up to
// black become p and the others q. Output points may change places, which turns the picture over.
// (C. Poynton, The Rehabilitation of Gamma, 1998, names the power function and its exponent.)
#pragma once

#include <stdint.h>

constexpr uint32_t leastGamma = 10;  // hundredths
constexpr uint32_t plainGamma = 100; // changes nothing
constexpr uint32_t mostGamma = 1000;

struct Levels {
    uint32_t inputBlack; // points are 0 to 255
    uint32_t inputWhite;
    uint32_t gamma; // hundredths, leastGamma to mostGamma
    uint32_t outputBlack;
    uint32_t outputWhite;
};

void FillLevels(uint8_t table[256], const Levels& levels);
