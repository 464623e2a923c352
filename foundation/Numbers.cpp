#include "foundation/Numbers.h"

#include "foundation/TextUnits.h"

#include <cmath>

namespace
{

template <class Char>
i32 ParseDigits(const Char* text, u64* value)
{
    u64 number = 0;
    for (; *text != 0; ++text) {
        if (*text < '0' || *text > '9')
            return Failed;
        number = number * 10 + static_cast<u64>(*text - '0');
    }
    *value = number;
    return Done;
}

template <class Char>
i32 ParseWithoutSign(const Char* text, u64* value)
{
    if (value == nullptr)
        return Failed;
    *value = 0;
    if (text == nullptr)
        return Failed;
    return ParseDigits(text, value);
}

template <class Char>
i32 ParseWithSign(const Char* text, u64* value)
{
    // The sign is read over and dropped: no negative number comes out of here, and the settings
    // rely on that.
    return ParseWithoutSign(text != nullptr && *text == '-' ? text + 1 : text, value);
}

/// What a digit is worth at the given place behind the point: by repeated multiplication, whose
/// rounding a power of ten does not have. It stops at 0, which nothing changes any more, so that a
/// text of many digits costs no more than its length.
f64 BehindPoint(f64 digit, u32 place)
{
    for (u32 i = 0; i < place && digit != 0; ++i)
        digit *= 0.1;
    return digit;
}

template <class Char>
i32 ParseDecimal(const Char* text, f64* value)
{
    if (value == nullptr)
        return Failed;
    *value = 0;
    if (text == nullptr)
        return Failed;
    f64 number = 0;
    bool isBehindPoint = false;
    u32 place = 0;
    for (; *text != 0; ++text) {
        if (*text == '.') {
            isBehindPoint = true;
            continue;
        }
        const f64 digit = static_cast<f64>(UnitValue(*text)) - '0';
        if (isBehindPoint)
            number += BehindPoint(digit, ++place);
        else
            number = number * 10 + digit;
    }
    *value = number;
    return Done;
}

f64 Rounded(f64 value)
{
    const f64 whole = std::trunc(value);
    const f64 rest = value - whole;
    if (rest >= 0)
        return rest >= 0.5 ? whole + 1 : whole;
    // Meant as it stands, and the reverse of the rule above zero: -1.2 gives -2, -1.7 gives -1.
    return rest >= -0.5 ? whole - 1 : whole;
}

} // namespace

i32 ParseUnsigned(const WCHAR* text, u64* value)
{
    return ParseWithoutSign(text, value);
}

i32 ParseUnsigned(const char* text, u64* value)
{
    return ParseWithoutSign(text, value);
}

i32 ParseSigned(const WCHAR* text, u64* value)
{
    return ParseWithSign(text, value);
}

i32 ParseSigned(const char* text, u64* value)
{
    return ParseWithSign(text, value);
}

i32 ParseReal(const WCHAR* text, f64* value)
{
    return ParseDecimal(text, value);
}

i32 ParseReal(const char* text, f64* value)
{
    return ParseDecimal(text, value);
}

i32 TruncateToSigned(f64 value)
{
    if (std::isnan(value))
        return 0;
    if (value <= static_cast<f64>(INT32_MIN))
        return INT32_MIN;
    if (value >= static_cast<f64>(INT32_MAX))
        return INT32_MAX;
    return static_cast<i32>(value);
}

u32 TruncateToUnsigned(f64 value)
{
    if (std::isnan(value) || value <= 0)
        return 0;
    if (value >= static_cast<f64>(UINT32_MAX))
        return UINT32_MAX;
    return static_cast<u32>(value);
}

i32 RoundToSigned(f64 value)
{
    return TruncateToSigned(Rounded(value));
}

u32 RoundToUnsigned(f64 value)
{
    return TruncateToUnsigned(Rounded(value));
}
