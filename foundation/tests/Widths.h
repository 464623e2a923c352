// Runs a test of text in both character widths: TYPED_TEST_SUITE(Name, Widths), and the texts in
// the test typed once. Texts are given as bytes 0 to 255, which stand for the units of the same
// number.
#pragma once

#include "foundation/Types.h"

#include <windows.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <string>
#include <string_view>

using Widths = ::testing::Types<char, WCHAR>;

template <class Char>
Char Unit(char unit)
{
    return static_cast<Char>(static_cast<unsigned char>(unit));
}

template <class Char>
std::basic_string<Char> Text(std::string_view units)
{
    std::basic_string<Char> text;
    for (const char unit : units)
        text += Unit<Char>(unit);
    return text;
}

/// Cells in a heap block of exactly their size, so that the sanitizer sees each access beyond them.
template <class Char>
class Cells
{
public:
    Cells(size_t size, char filler) : count(size), block(new Char[size])
    {
        std::fill_n(block.get(), count, Unit<Char>(filler));
    }
    /// The text and its final zero.
    explicit Cells(std::string_view units) : Cells(units.size() + 1, 0)
    {
        const std::basic_string<Char> text = Text<Char>(units);
        std::copy(text.begin(), text.end(), block.get());
    }

    Char* Get() { return block.get(); }
    operator Char*() { return block.get(); }
    u32 Count() const { return static_cast<u32>(count); }
    /// Every cell, zeros included.
    std::basic_string<Char> All() const { return std::basic_string<Char>(block.get(), count); }
    /// The text up to the first zero.
    std::basic_string<Char> UpToZero() const { return All().substr(0, All().find(Char{0})); }

private:
    size_t count;
    std::unique_ptr<Char[]> block;
};
