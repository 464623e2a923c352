// Vectors of one number that the loops by vectors need all the time. They are read from memory: a
// number that the compiler knows it makes anew in every round, by way of the other registers.
#pragma once

#include "foundation/Types.h"

struct VectorConstants {
    alignas(32) u16 evenBytes[16]; // 0x00FF
    alignas(32) u16 oddBytes[16];  // 0xFF00
    alignas(32) u16 weights[16];   // 256, the sum of two weights
};

extern const VectorConstants vectorConstants;
