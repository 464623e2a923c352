// What the entries share: the rule that ends a run, and an input taken apart from its front.
#pragma once

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>

/// Ends the run where `holds` is false; the input is then kept as a find.
inline void Require(bool holds, const char* rule, int line = __builtin_LINE())
{
    if (holds)
        return;
    std::fprintf(stderr, "Broken at line %d: %s\n", line, rule);
    std::abort();
}

/// Behind its end an input gives zeros and empty texts.
struct Input {
    const uint8_t* next;
    size_t left;

    uint8_t Byte()
    {
        if (left == 0)
            return 0;
        --left;
        return *next++;
    }
    std::string Bytes(size_t count)
    {
        const size_t got = count < left ? count : left;
        const std::string bytes(reinterpret_cast<const char*>(next), got);
        next += got;
        left -= got;
        return bytes;
    }
    /// All that is left, two bytes a unit; an odd last byte stays.
    std::u16string Units()
    {
        std::u16string units;
        while (left >= 2) {
            const unsigned low = Byte();
            units.push_back(static_cast<char16_t>(low | static_cast<unsigned>(Byte()) << 8));
        }
        return units;
    }
};

/// What a reader of texts that end in a zero sees.
template <class Text>
Text UpToZero(const Text& text)
{
    return Text(text.c_str());
}
