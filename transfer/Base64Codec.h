// Base64 between two streams: the alphabet of RFC 4648 section 4, with "+", "/" and the pad "=".
#pragma once

#include "foundation/Stream.h"

class Base64Codec
{
public:
    Base64Codec();

    /// Encodes all of `source`, with CR LF behind every `lineLength` characters, also where nothing
    /// follows. A line length that is no multiple of 4 breaks no line. Done; Failed for null and
    /// when `sink` takes less than it is given.
    [[nodiscard]] i32 Encode(Stream* source, Stream* sink, u32 lineLength) const;
    /// Decodes up to the first group that is padded, or to the end. Bytes below 33 and bytes
    /// outside the alphabet are passed over. Failed for null, for an end inside a group of four,
    /// and when `sink` takes less than it is given.
    [[nodiscard]] i32 Decode(Stream* source, Stream* sink) const;

private:
    enum : u8 { Outside = 0x80 };

    char encoding[64];
    u8 decoding[256]; // Outside for a byte outside the alphabet; "=" is 0
};
