// Receives one object that another device pushes: the PUT of the object exchange protocol (IrOBEX
// 1.2) over the infrared service "OBEX". One client, one object, no error responses: what it does
// not understand ends the link. Once a client is there nothing has a time-out.
//
// Between two calls of Receive the server is idle and keeps nothing. Receive runs on one thread and
// blocks it; the callback runs there too.
#pragma once

#include "foundation/MemoryStream.h"
#include "transfer/IrdaSocket.h"
#include "transfer/ObexPacket.h"

class ObexServer
{
public:
    enum : u32 { PacketSize = 512, PacketHeadSize = 3 };

    ObexServer();
    ~ObexServer();
    ObexServer(const ObexServer&) = delete;
    ObexServer& operator=(const ObexServer&) = delete;

    /// The whole exchange. The object's bytes go to `destination`, whose failures are not looked
    /// at. Done when an object came, and also when a Body of an impossible length ended it;
    /// BadArgument for a null destination; Failed when nobody connected in time or the link or a
    /// packet broke; NoMemory, also for a packet larger than PacketSize.
    [[nodiscard]] i32 Receive(Stream* destination, u32 timeoutSeconds, ObexCallback callback,
                              void* context);

    // The steps of the above.
    /// Waits for a client. The waiting yields the processor but does not sleep.
    [[nodiscard]] i32 Accept(u32 timeoutSeconds);
    /// One packet; the parser then stands at its payload.
    [[nodiscard]] i32 ReadPacket(u8* opcode);
    [[nodiscard]] i32 ReadByte(u8* out) { return ReadObexByte(parser, out); }
    [[nodiscard]] i32 ReadU16(u16* out) { return ReadObexU16(parser, out); }
    [[nodiscard]] i32 ReadU32(u32* out) { return ReadObexU32(parser, out); }
    /// `code` is 0x10 (go on) or 0x20 (success), and goes out as final. At most 252 bytes of data.
    [[nodiscard]] i32 SendResponse(u8 code, const void* data, i32 length);
    /// NothingDone when no client is held.
    i32 Close();

private:
    [[nodiscard]] i32 Exchange(ObexObject& object);

    i32 connected;
    u8 packet[PacketSize];
    u32 packetLength; // 0 between packets
    IrdaSocket* client;
    MemoryStream parser; // the payload of `packet`, read in place
};
