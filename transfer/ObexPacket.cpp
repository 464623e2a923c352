#include "transfer/ObexPacket.h"

namespace
{

enum : u8 {
    HeaderName = 0x01,
    HeaderBody = 0x48,
    HeaderEndOfBody = 0x49,
    HeaderLength = 0xC3,

    // The form of a header's value, in the top two bits of its identifier.
    FormMask = 0xC0,
    FormText = 0x00,
    FormBytes = 0x40,
    FormByte = 0x80
};

// Before the value of a text or of bytes stand its identifier and its length, and both count.
constexpr u32 HeaderHeadSize = 3;

// The largest Body that the largest packet has room for.
constexpr u32 LongestBody = 509;

i32 ReadBytes(Stream& source, u8* bytes, u32 count)
{
    u32 got = count;
    const i32 result = source.Read(bytes, &got);
    if (result < 0)
        return result;
    return got == count ? Done : Failed;
}

// Meant, as the other devices' clients are used to it: a text's length is not followed. It is read
// as the first of the words up to the first 0, so a text without that zero takes what stands behind
// it along.
i32 SkipText(Stream& source)
{
    u16 word = 0;
    do {
        const i32 result = ReadObexU16(source, &word);
        if (result < Done)
            return result;
    } while (word != 0);
    return Done;
}

/// Done when the next header can be read.
i32 SkipHeader(Stream& source, u8 identifier)
{
    u8 byte = 0;
    u32 word = 0;
    switch (identifier & FormMask) {
    case FormText:
        return SkipText(source);
    case FormBytes:
        // Meant likewise: the length is not followed, so whatever stands behind it in this packet
        // is lost, a Body too.
        return NothingDone;
    case FormByte:
        return ReadObexByte(source, &byte);
    default:
        return ReadObexU32(source, &word);
    }
}

// What follows gives Done when the next header can be read, NothingDone when the packet's parsing
// ends.

/// Negative: the exchange ends.
i32 TakeName(Stream& source, ObexObject& object)
{
    u16 length = 0;
    if (ReadObexU16(source, &length) < Done)
        return NothingDone;
    const u32 count = length < HeaderHeadSize ? 0 : (length - HeaderHeadSize) / 2;
    // One more than the header tells of, since a name need not come with a zero at its end.
    auto* name = static_cast<WCHAR*>(GlobalAlloc(GPTR, (count + 1) * sizeof(WCHAR)));
    if (name == nullptr)
        return NoMemory;
    FreeObexName(object);
    object.name = name;

    i32 result = Done;
    for (u32 i = 0; i < count && result == Done; ++i) {
        u16 unit = 0;
        if (ReadObexU16(source, &unit) < Done)
            result = NothingDone;
        else
            name[i] = static_cast<WCHAR>(unit);
    }
    object.Tell(ObexObjectName, name);
    return result;
}

/// Negative: the exchange ends. `*impossible` is set when it ends as a success.
i32 TakeBody(MemoryStream& parser, const u8* payload, ObexObject& object, bool* impossible)
{
    u16 length = 0;
    const i32 result = ReadObexU16(parser, &length);
    if (result < Done)
        return result;
    if (length < HeaderHeadSize || length > LongestBody) {
        *impossible = true;
        return NothingDone;
    }

    const i64 nowhere = 0;
    u64 offset = 0;
    u64 size = 0;
    (void)parser.Seek(&nowhere, &offset, FILE_CURRENT);
    (void)parser.GetSize(&size);
    const u32 wanted = length - HeaderHeadSize;
    const u32 left = static_cast<u32>(size - offset);
    const u32 count = wanted < left ? wanted : left;
    // What the destination makes of it is not looked at: what has come counts as received.
    u32 written = count;
    (void)object.destination->Write(payload + offset, &written);
    const i64 forward = count;
    (void)parser.Seek(&forward, nullptr, FILE_CURRENT);

    object.received += count;
    u32 progress[2] = {object.received, object.length};
    object.Tell(ObexProgress, progress);
    return Done; // behind a Body that was cut nothing is left to read
}

} // namespace

void FreeObexName(ObexObject& object)
{
    if (object.name != nullptr)
        GlobalFree(object.name);
    object.name = nullptr;
}

i32 ReadObexByte(Stream& source, u8* out)
{
    return ReadBytes(source, out, 1);
}

i32 ReadObexU16(Stream& source, u16* out)
{
    u8 bytes[2];
    const i32 result = ReadBytes(source, bytes, sizeof bytes);
    if (result == Done)
        *out = static_cast<u16>(bytes[0] << 8 | bytes[1]);
    return result;
}

i32 ReadObexU32(Stream& source, u32* out)
{
    u8 bytes[4];
    const i32 result = ReadBytes(source, bytes, sizeof bytes);
    if (result == Done)
        *out = u32{bytes[0]} << 24 | u32{bytes[1]} << 16 | u32{bytes[2]} << 8 | bytes[3];
    return result;
}

void ParseObexConnect(MemoryStream& parser)
{
    u8 version = 0;
    u8 flags = 0;
    u16 largestPacket = 0; // of the client; no reply comes near the least that it can be
    (void)ReadObexByte(parser, &version);
    (void)ReadObexByte(parser, &flags);
    (void)ReadObexU16(parser, &largestPacket);
    u8 identifier = 0;
    while (ReadObexByte(parser, &identifier) == Done && SkipHeader(parser, identifier) == Done)
        ;
}

i32 ParseObexPut(MemoryStream& parser, const u8* payload, ObexObject& object)
{
    i32 result = Done;
    bool impossible = false;
    u8 identifier = 0;
    while (result == Done && ReadObexByte(parser, &identifier) == Done) {
        switch (identifier) {
        case HeaderName:
            result = TakeName(parser, object);
            break;
        case HeaderBody:
        case HeaderEndOfBody:
            result = TakeBody(parser, payload, object, &impossible);
            break;
        case HeaderLength:
            if (ReadObexU32(parser, &object.length) < Done)
                result = NothingDone;
            break;
        default:
            if (SkipHeader(parser, identifier) < Done)
                result = NothingDone;
            break;
        }
    }
    if (result < 0)
        return result;
    return impossible ? NothingDone : Done;
}
