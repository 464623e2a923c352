#include "standard-plugins/cups-print/Utf8.h"

#include <windows.h>

namespace
{

bool IsHigh(TavrixChar unit)
{
    return unit >= 0xD800 && unit < 0xDC00;
}

bool IsLow(TavrixChar unit)
{
    return unit >= 0xDC00 && unit < 0xE000;
}

// Bytes of the character at `text`, which ends in a zero.
int BytesOf(const char* text)
{
    int count = 1;
    while ((static_cast<unsigned char>(text[count]) & 0xC0) == 0x80)
        ++count;
    return count;
}

} // namespace

bool ToUtf8(const TavrixChar* text, char* out, size_t capacity)
{
    size_t length = 0;
    while (*text) {
        const int units = IsHigh(text[0]) && IsLow(text[1]) ? 2 : 1;
        char bytes[8];
        const int count =
            WideCharToMultiByte(CP_UTF8, 0, text, units, bytes, sizeof bytes, nullptr, nullptr);
        if (count <= 0 || length + static_cast<size_t>(count) >= capacity)
            break;
        for (int i = 0; i < count; ++i)
            out[length++] = bytes[i];
        text += units;
    }
    out[length] = 0;
    return !*text;
}

bool ToWide(const char* text, TavrixChar* out, size_t capacity)
{
    size_t length = 0;
    while (*text) {
        const int bytes = BytesOf(text);
        TavrixChar units[16];
        const int count = MultiByteToWideChar(CP_UTF8, 0, text, bytes, units, 16);
        if (count <= 0 || length + static_cast<size_t>(count) >= capacity)
            break;
        for (int i = 0; i < count; ++i)
            out[length++] = units[i];
        text += bytes;
    }
    out[length] = 0;
    return !*text;
}
