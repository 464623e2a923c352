#include "transfer/ScanNumbers.h"

namespace
{

template <class Char>
bool IsSpace(Char character)
{
    return character == ' ' || (character >= '\t' && character <= '\r');
}

template <class Char>
bool IsDigit(Char character)
{
    return character >= '0' && character <= '9';
}

/// Moves `text` behind the number. False without a digit; a sign is gone then, too.
template <class Char>
bool ScanUnsigned(const Char*& text, u32& value)
{
    const bool isNegative = *text == '-';
    if (isNegative || *text == '+')
        ++text;
    if (!IsDigit(*text))
        return false;
    u32 number = 0;
    for (; IsDigit(*text); ++text)
        number = number * 10 + static_cast<u32>(*text - '0');
    value = isNegative ? 0 - number : number;
    return true;
}

/// By a pattern of "%u", spaces and characters that must be there.
template <class Char>
i32 Scan(const Char* text, const char* pattern, u32* fields)
{
    i32 count = 0;
    for (; *pattern != 0; ++pattern) {
        if (*pattern == ' ' || *pattern == '%')
            while (IsSpace(*text))
                ++text;
        if (*pattern == ' ')
            continue;
        if (*text == 0)
            return count > 0 ? count : -1;
        if (*pattern == '%') {
            if (!ScanUnsigned(text, fields[count]))
                return count;
            ++count;
            ++pattern;
        } else if (*text++ != static_cast<Char>(*pattern)) {
            return count;
        }
    }
    return count;
}

} // namespace

i32 ScanAddress(const WCHAR* text, u32 (&fields)[4])
{
    return Scan(text, "%u.%u.%u.%u", fields);
}

i32 ScanStatusLine(const char* line, u32 (&fields)[3])
{
    return Scan(line, "HTTP/%u.%u %u", fields);
}
