#include "foundation/NumberText.h"

namespace
{

template <class Unsigned>
Unsigned FirstPower(Unsigned number)
{
    Unsigned power = 1;
    for (;;) {
        // Meant as it stands, and never to be widened: only a product that fell is known to have
        // wrapped. In 32 bits 10 * 1000000000 gives 1410065408, which passes for the next power.
        const Unsigned product = power * 10;
        if (product <= power)
            return power;
        if (number / product == 0)
            return product / 10;
        power = product;
    }
}

template <class Char>
i32 Cut(Char* text, u32 capacity)
{
    text[capacity - 1] = 0;
    return Failed;
}

template <class Char, class Unsigned>
i32 Write(bool isNegative, Unsigned number, Char* text, u32 capacity)
{
    if (text == nullptr || capacity == 0)
        return Failed;
    if (capacity == 1)
        return NothingDone;
    // One cell is left unused even where the number would fit with it.
    const u32 room = capacity - 2;
    u32 length = 0;
    if (isNegative) {
        if (room == 0)
            return Cut(text, capacity);
        text[length++] = '-';
    }
    for (Unsigned power = FirstPower(number); power != 0; power /= 10) {
        if (length == room)
            return Cut(text, capacity);
        // More than 9 where the power went astray: the character is then one behind "9".
        const Unsigned digit = number / power;
        number -= digit * power;
        text[length++] = static_cast<Char>('0' + digit);
    }
    text[length] = 0;
    return Done;
}

/// The size of a negative number without its sign, the most negative one included.
template <class Unsigned, class Signed>
Unsigned Magnitude(Signed value)
{
    const Unsigned bits = static_cast<Unsigned>(value);
    return value < 0 ? Unsigned{0} - bits : bits;
}

} // namespace

i32 FormatUnsigned(u32 value, WCHAR* text, u32 capacity)
{
    return Write(false, value, text, capacity);
}

i32 FormatUnsigned(u32 value, char* text, u32 capacity)
{
    return Write(false, value, text, capacity);
}

i32 FormatUnsigned64(u64 value, WCHAR* text, u32 capacity)
{
    return Write(false, value, text, capacity);
}

i32 FormatUnsigned64(u64 value, char* text, u32 capacity)
{
    return Write(false, value, text, capacity);
}

i32 FormatSigned(i32 value, WCHAR* text, u32 capacity)
{
    return Write(value < 0, Magnitude<u32>(value), text, capacity);
}

i32 FormatSigned(i32 value, char* text, u32 capacity)
{
    return Write(value < 0, Magnitude<u32>(value), text, capacity);
}

i32 FormatSigned64(i64 value, WCHAR* text, u32 capacity)
{
    return Write(value < 0, Magnitude<u64>(value), text, capacity);
}

i32 FormatSigned64(i64 value, char* text, u32 capacity)
{
    return Write(value < 0, Magnitude<u64>(value), text, capacity);
}
