// What the tests of the line reader share: a source that ends in each of the ways, and a line with
// everything that can be told of it.
#pragma once

#include "foundation/LineReader.h"
#include "foundation/tests/StreamTesting.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <string>

/// What a stream answers when it has no bytes left.
enum class End {
    Empty,   // success with no bytes, as a file or a socket whose peer has closed
    Nothing, // 0
    Failure  // a negative result
};

/// A stream that gives a text in portions and then ends in one of three ways.
class TextStream final : public Stream
{
public:
    TextStream(std::string bytes, End ending, u32 largestPortion = 0xFFFFFFFF)
        : text(std::move(bytes)), end(ending), portion(largestPortion)
    {
    }

    i32 Read(void* buffer, u32* length) override
    {
        ++reads;
        asked = *length;
        const u32 left = static_cast<u32>(text.size() - position);
        const u32 count = std::min({*length, left, portion});
        std::memcpy(buffer, text.data() + position, count);
        position += count;
        *length = count;
        if (left > 0)
            return 1;
        if (end == End::Failure)
            *length = 3; // a failure's count means nothing
        return end == End::Empty ? 1 : end == End::Nothing ? 0 : -98;
    }

    i32 GetName(WCHAR*, i32) override { return Failed; }
    i32 GetSize(u64*) override { return Failed; }
    i32 Seek(const i64*, u64*, u32) override { return Failed; }
    i32 Write(const void*, u32*) override { return Failed; }
    i32 Close() override { return Done; }

    const std::string text;
    const End end;
    const u32 portion;
    size_t position = 0;
    int reads = 0;
    u32 asked = 0;
};

struct Line {
    i32 result;
    u32 length;
    std::string bytes; // the whole buffer; what was not written is '#'
    bool operator==(const Line&) const = default;
};

inline std::ostream& operator<<(std::ostream& out, const Line& line)
{
    return out << line.result << ", " << line.length << ", "
               << ::testing::PrintToString(line.bytes);
}

inline Line NextLine(LineReader& reader, u32 capacity)
{
    ExactBytes buffer(capacity, '#');
    u32 length = capacity;
    const i32 result = reader.ReadLine(reinterpret_cast<char*>(buffer.data.get()), &length);
    return {result, length, buffer.Text()};
}

/// A terminated line in a buffer of `capacity`.
inline Line Ended(i32 result, const std::string& text, u32 capacity)
{
    std::string bytes = text + '\0';
    bytes.resize(capacity, '#');
    return {result, static_cast<u32>(text.size()), bytes};
}

/// A line that filled its buffer.
inline Line Full(const std::string& text)
{
    return {1, static_cast<u32>(text.size()), text};
}
