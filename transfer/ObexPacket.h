// What stands in the packets of the object exchange protocol (IrOBEX 1.2) that a receiver of one
// object has to understand. The bytes come from memory and the object's go to a stream; the link
// stays outside. Numbers are big-endian.
#pragma once

#include "foundation/MemoryStream.h"
#include "foundation/Stream.h"

/// Told to a receiver's caller as an object comes in. The result is not looked at.
using ObexCallback = i32 (*)(u32 event, void* argument, void* context);

enum : u32 {
    ObexWaiting = 1,     // null
    ObexClientFound = 2, // WCHAR*: the peer's name, at most 63 characters; empty when not known
    ObexObjectName = 16, // WCHAR*: valid until the next name or the end of the exchange
    ObexProgress = 32,   // u32[2]: bytes received, and the size that was announced, 0 if none
    ObexFinished = 240   // null
};

/// An object on its way in.
struct ObexObject {
    Stream* destination;
    ObexCallback callback; // may be null
    void* context;
    WCHAR* name; // from the global heap, null before there is one; freed by FreeObexName
    u32 received;
    u32 length; // as announced

    void Tell(u32 event, void* argument) const
    {
        if (callback != nullptr)
            (void)callback(event, argument, context);
    }
};

void FreeObexName(ObexObject& object);

/// Done; Failed when fewer bytes are left, else the stream's negative code.
[[nodiscard]] i32 ReadObexByte(Stream& source, u8* out);
[[nodiscard]] i32 ReadObexU16(Stream& source, u16* out);
[[nodiscard]] i32 ReadObexU32(Stream& source, u32* out);

/// Reads through a CONNECT: nothing in it changes what follows. Never fails.
void ParseObexConnect(MemoryStream& parser);

/// Takes over what a PUT carries. `payload` is the memory that `parser` stands on, at its start.
/// Done: the packet is to be answered, whatever it held. NothingDone: a Body of an impossible
/// length; the exchange ends there, as a success that nobody is told of. Negative: it ends with
/// that code.
[[nodiscard]] i32 ParseObexPut(MemoryStream& parser, const u8* payload, ObexObject& object);
