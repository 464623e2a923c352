// Settings files as tests write and read them: bytes of UTF-16 with its mark.
#pragma once

#include <string>

inline std::string Utf16Bytes(const std::u16string& text)
{
    std::string bytes;
    for (char16_t unit : text) {
        bytes.push_back(static_cast<char>(unit & 0xFF));
        bytes.push_back(static_cast<char>(unit >> 8));
    }
    return bytes;
}

/// The mark and the text.
inline std::string FileOf(const std::u16string& text)
{
    return "\xFF\xFE" + Utf16Bytes(text);
}
