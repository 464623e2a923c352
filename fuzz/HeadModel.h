// The head of an HTTP response read plainly, for the entries that feed it.
#pragma once

#include "fuzz/Entry.h"
#include "settings/PropertyList.h"

#include <algorithm>
#include <utility>
#include <vector>

/// In list order.
using Headers = std::vector<std::pair<std::u16string, std::u16string>>;

/// The line at `*place`, which moves behind it. A line of `capacity` bytes or more is cut, and its
/// rest is the next one.
inline std::string NextLine(const std::string& text, size_t* place, size_t capacity)
{
    const size_t feed = std::min(text.find('\n', *place), text.size());
    std::string line = text.substr(*place, feed - *place);
    if (line.size() >= capacity) {
        line.resize(capacity);
        *place += capacity;
        return line;
    }
    *place = std::min(feed + 1, text.size());
    if (feed < text.size() && line.ends_with('\r'))
        line.pop_back();
    return line;
}

/// From the western code page.
inline std::u16string WideText(const std::string& bytes)
{
    static constexpr char16_t from80[] = {
        0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
        0x2039, 0x0152, 0x008D, 0x017D, 0x008F, 0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
        0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178};
    std::u16string wide;
    for (const char byte : bytes) {
        const auto code = static_cast<unsigned char>(byte);
        wide.push_back(code >= 0x80 && code < 0xA0 ? from80[code - 0x80] : char16_t{code});
    }
    return wide;
}

/// Header lines from `*place` on, into `headers`. False for a line without a colon.
inline bool ReadHeadersPlainly(const std::string& text, size_t* place, Headers* headers)
{
    for (;;) {
        const std::string line = NextLine(text, place, 1024);
        if (line.empty())
            return true;
        const std::string seen = UpToZero(line);
        const size_t colon = seen.find(':');
        if (colon == seen.npos)
            return false;
        const size_t start = std::min(seen.find_first_not_of(' ', colon + 1), seen.size());
        const std::u16string name = WideText(seen.substr(0, colon));
        const std::u16string value = WideText(seen.substr(start));
        const auto known = std::find_if(headers->begin(), headers->end(),
                                        [&](const auto& header) { return header.first == name; });
        if (known != headers->end())
            known->second = value;
        else if (headers->size() < 512)
            headers->emplace_back(name, value);
    }
}

inline void RequireHeaders(const PropertyList& list, const Headers& expected)
{
    Require(static_cast<size_t>(list.Count()) == expected.size(), "the number of headers");
    for (size_t i = 0; i < expected.size(); ++i) {
        Variant entry{nullptr, VariantWide, 0};
        Require(list.GetAt(static_cast<u32>(i), &entry) == 1, "a header has a text");
        Require(entry.name == expected[i].first, "the name of a header");
        Require(reinterpret_cast<const WCHAR*>(entry.value) == expected[i].second,
                "the value of a header");
    }
}
