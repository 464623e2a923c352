// Conversions between code pages and 16-bit characters over blocks of their exact size, for tests.
#pragma once

#include <windows.h>

#include <gtest/gtest.h>

#include <memory>
#include <string>

namespace tavrix::tests
{

constexpr UINT Japanese = 932;
constexpr UINT Western = 1252;

/// Decodes into a buffer of just the size that the call itself asks for; input and output stand in
/// blocks of their own, whose ends the sanitizer guards.
inline std::u16string Decoded(UINT codePage, const std::string& bytes)
{
    const auto exact = std::make_unique<char[]>(bytes.size());
    bytes.copy(exact.get(), bytes.size());
    const int length = static_cast<int>(bytes.size());
    const int needed = MultiByteToWideChar(codePage, 0, exact.get(), length, nullptr, 0);
    EXPECT_GT(needed, 0);
    const auto text = std::make_unique<WCHAR[]>(static_cast<size_t>(needed));
    EXPECT_EQ(MultiByteToWideChar(codePage, 0, exact.get(), length, text.get(), needed), needed);
    return std::u16string(text.get(), static_cast<size_t>(needed));
}

inline std::string Encoded(UINT codePage, const std::u16string& text)
{
    const auto exact = std::make_unique<WCHAR[]>(text.size());
    text.copy(exact.get(), text.size());
    const int length = static_cast<int>(text.size());
    const int needed =
        WideCharToMultiByte(codePage, 0, exact.get(), length, nullptr, 0, nullptr, nullptr);
    EXPECT_GT(needed, 0);
    const auto bytes = std::make_unique<char[]>(static_cast<size_t>(needed));
    EXPECT_EQ(WideCharToMultiByte(codePage, 0, exact.get(), length, bytes.get(), needed, nullptr,
                                  nullptr),
              needed);
    return std::string(bytes.get(), static_cast<size_t>(needed));
}

} // namespace tavrix::tests
