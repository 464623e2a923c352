// What the text operations know of single units of either width. For the sources of the text
// operations only; callers use the overloads of their headers.
#pragma once

#include "foundation/Types.h"

#include <type_traits>

/// The number of a unit. Bytes count as 0 to 255 on every processor, whatever the sign of `char`.
template <class Char>
constexpr u32 UnitValue(Char unit)
{
    return static_cast<std::make_unsigned_t<Char>>(unit);
}

/// The same with the capitals A to Z, and no other letter, turned into small ones.
template <class Char>
constexpr u32 FoldedUnit(Char unit)
{
    const u32 value = UnitValue(unit);
    return value >= 'A' && value <= 'Z' ? value - 'A' + 'a' : value;
}

/// The plain sum of `count` units; wraps in 32 bits.
template <class Char>
constexpr u32 SumOfUnits(const Char* units, u32 count)
{
    u32 sum = 0;
    for (u32 i = 0; i < count; ++i)
        sum += UnitValue(units[i]);
    return sum;
}

template <class Char>
constexpr bool AreEqualUnits(const Char* a, const Char* b, u32 count)
{
    for (u32 i = 0; i < count; ++i) {
        if (a[i] != b[i])
            return false;
    }
    return true;
}
