#include "transfer/Base64Codec.h"

#include <string.h>

namespace
{

/// Failed when the sink takes less.
i32 WriteAll(Stream& sink, const void* bytes, u32 length)
{
    u32 written = length;
    return sink.Write(bytes, &written) < Done || written < length ? Failed : Done;
}

/// Fewer than `wanted` bytes only at the end: who pads in the middle of a stream spoils it. -1
/// after a failure.
i32 ReadUpTo(Stream& source, u8* bytes, u32 wanted)
{
    u32 got = 0;
    while (got < wanted) {
        u32 length = wanted - got;
        const i32 result = source.Read(bytes + got, &length);
        if (result < 0)
            return -1;
        if (length == 0)
            break;
        got += length;
    }
    return static_cast<i32>(got);
}

} // namespace

Base64Codec::Base64Codec()
{
    memcpy(encoding, "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/",
           sizeof(encoding));
    memset(decoding, Outside, sizeof(decoding));
    for (u8 value = 0; value < sizeof(encoding); ++value)
        decoding[static_cast<u8>(encoding[value])] = value;
    decoding[static_cast<u8>('=')] = 0;
}

i32 Base64Codec::Encode(Stream* source, Stream* sink, u32 lineLength) const
{
    if (source == nullptr || sink == nullptr)
        return Failed;
    u32 column = 0;
    for (;;) {
        u8 bytes[3] = {};
        const i32 got = ReadUpTo(*source, bytes, sizeof(bytes));
        if (got <= 0)
            return got == 0 ? Done : Failed;
        const u32 group = static_cast<u32>(bytes[0]) << 16 | static_cast<u32>(bytes[1]) << 8 |
                          static_cast<u32>(bytes[2]);
        char text[4] = {encoding[group >> 18], encoding[group >> 12 & 63],
                        encoding[group >> 6 & 63], encoding[group & 63]};
        if (got < 3)
            text[3] = '=';
        if (got < 2)
            text[2] = '=';
        if (WriteAll(*sink, text, sizeof(text)) < Done)
            return Failed;
        column += sizeof(text);
        if (column != lineLength)
            continue;
        column = 0;
        if (WriteAll(*sink, "\r\n", 2) < Done)
            return Failed;
    }
}

i32 Base64Codec::Decode(Stream* source, Stream* sink) const
{
    if (source == nullptr || sink == nullptr)
        return Failed;
    char text[4] = {};
    u32 filled = 0;
    for (;;) {
        u8 byte = 0;
        const i32 got = ReadUpTo(*source, &byte, 1);
        if (got <= 0)
            return got == 0 && filled == 0 ? Done : Failed;
        if (byte <= ' ' || decoding[byte] == Outside)
            continue;
        text[filled++] = static_cast<char>(byte);
        if (filled < sizeof(text))
            continue;
        filled = 0;
        u32 group = 0;
        for (const char character : text)
            group = group << 6 | decoding[static_cast<u8>(character)];
        const u8 bytes[3] = {static_cast<u8>(group >> 16), static_cast<u8>(group >> 8),
                             static_cast<u8>(group)};
        const u32 count = text[2] == '=' ? 1 : text[3] == '=' ? 2 : 3;
        if (WriteAll(*sink, bytes, count) < Done)
            return Failed;
        if (count < sizeof(bytes))
            return Done;
    }
}
