#include "kit/check/Text.h"

#include <cstdio>

namespace plugincheck
{

namespace
{

void Append(std::string* out, char32_t code)
{
    const auto put = [out](char32_t byte) { out->push_back(static_cast<char>(byte)); };
    if (code < 0x80) {
        put(code);
    } else if (code < 0x800) {
        put(0xC0 | code >> 6);
        put(0x80 | (code & 0x3F));
    } else if (code < 0x10000) {
        put(0xE0 | code >> 12);
        put(0x80 | (code >> 6 & 0x3F));
        put(0x80 | (code & 0x3F));
    } else {
        put(0xF0 | code >> 18);
        put(0x80 | (code >> 12 & 0x3F));
        put(0x80 | (code >> 6 & 0x3F));
        put(0x80 | (code & 0x3F));
    }
}

} // namespace

std::string Utf8(std::u16string_view text)
{
    std::string out;
    for (size_t i = 0; i < text.size(); ++i) {
        const char32_t unit = text[i];
        const bool pair = unit >= 0xD800 && unit < 0xDC00 && i + 1 < text.size() &&
                          text[i + 1] >= 0xDC00 && text[i + 1] < 0xE000;
        if (pair)
            Append(&out, 0x10000 + ((unit - 0xD800) << 10) + (text[++i] - 0xDC00U));
        else
            Append(&out, unit >= 0xD800 && unit < 0xE000 ? U'?' : unit);
    }
    return out;
}

std::string Counted(size_t count, const std::string& one, std::string many)
{
    if (many.empty())
        many = one + "s";
    return std::to_string(count) + " " + (count == 1 ? one : many);
}

std::string Quoted(const std::string& text)
{
    constexpr size_t Most = 80;
    return "\"" + (text.size() > Most ? text.substr(0, Most) + "..." : text) + "\"";
}

std::string Hex(u32 number)
{
    char text[16];
    std::snprintf(text, sizeof text, "0x%X", number);
    return text;
}

} // namespace plugincheck
