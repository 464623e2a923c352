// What the tests of the streams share: seeking and asking in one line, and bytes told apart.
#pragma once

#include "foundation/Stream.h"

#include <memory>
#include <string>

/// An array of exactly `size` bytes, so that a sanitizer sees the first byte beyond.
struct ExactBytes {
    explicit ExactBytes(size_t bytes, u8 fill = 0) : size(bytes), data(new u8[bytes])
    {
        for (size_t i = 0; i < bytes; ++i)
            data[i] = fill;
    }
    explicit ExactBytes(const std::string& text) : size(text.size()), data(new u8[text.size()])
    {
        for (size_t i = 0; i < size; ++i)
            data[i] = static_cast<u8>(text[i]);
    }
    std::string Text() const { return {reinterpret_cast<const char*>(data.get()), size}; }

    const size_t size;
    std::unique_ptr<u8[]> data;
};

constexpr u64 NoPosition = 0x5A5A5A5A5A5A5A5A;

inline i32 SeekTo(Stream& stream, i64 offset, u32 origin, u64* position = nullptr)
{
    return stream.Seek(&offset, position, origin);
}

/// Where the stream stands, NoPosition when it does not tell.
inline u64 PositionOf(Stream& stream)
{
    u64 position = NoPosition;
    (void)SeekTo(stream, 0, 1, &position);
    return position;
}

/// The length, NoPosition when it is not told.
inline u64 SizeOf(Stream& stream)
{
    u64 size = NoPosition;
    (void)stream.GetSize(&size);
    return size;
}

inline std::u16string NameOf(Stream& stream)
{
    WCHAR name[64] = {u'?', 0};
    (void)stream.GetName(name, 64);
    return name;
}

/// Writes a text and answers the result; `*length` is what was written.
inline i32 WriteText(Stream& stream, const std::string& text, u32* length = nullptr)
{
    const ExactBytes bytes(text);
    u32 count = static_cast<u32>(text.size());
    const i32 result = stream.Write(bytes.data.get(), &count);
    if (length != nullptr)
        *length = count;
    return result;
}

/// Reads at most `wanted` bytes from where the stream stands; "failed" when it fails.
inline std::string ReadText(Stream& stream, u32 wanted)
{
    const ExactBytes bytes(wanted, 0x5A);
    u32 length = wanted;
    if (stream.Read(bytes.data.get(), &length) < 0)
        return "failed";
    return bytes.Text().substr(0, length);
}
