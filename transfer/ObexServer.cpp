#include "transfer/ObexServer.h"

#include <string.h>

#include <new>

namespace
{

enum : u8 {
    FinalFlag = 0x80,
    OpcodeConnect = 0x80,
    OpcodeDisconnect = 0x01,
    OpcodePut = 0x02,

    ResponseContinue = 0x10,
    ResponseSuccess = 0x20
};

constexpr i32 LongestResponseData = 252;
constexpr u32 PeerNameCapacity = 64;

// Behind the head of the answer to a CONNECT: version 1.0, no flags, packets of at most 512 bytes.
constexpr u8 connectAnswer[] = {0x10, 0x00, 0x02, 0x00};

u8 WithoutFinalFlag(u8 opcode)
{
    return static_cast<u8>(opcode & ~FinalFlag);
}

} // namespace

ObexServer::ObexServer() : connected(0), packet(), packetLength(0), client(nullptr) {}

ObexServer::~ObexServer()
{
    (void)Close();
    (void)parser.Close();
}

i32 ObexServer::Receive(Stream* destination, u32 timeoutSeconds, ObexCallback callback,
                        void* context)
{
    if (destination == nullptr)
        return BadArgument;
    ObexObject object = {destination, callback, context, nullptr, 0, 0};
    object.Tell(ObexWaiting, nullptr);
    i32 result = Accept(timeoutSeconds);
    if (result >= 0)
        result = Exchange(object);
    FreeObexName(object);
    (void)Close();
    return result;
}

i32 ObexServer::Accept(u32 timeoutSeconds)
{
    char serviceName[ServiceNameSize] = "OBEX";
    SOCKET accepted = INVALID_SOCKET;
    // Lives for this wait alone: nobody else can connect once a client is there.
    IrdaSocket listener;
    (void)Close();
    i32 result = listener.Bind(serviceName);
    if (result >= Done)
        result = listener.Listen();
    if (result >= Done)
        result = listener.AcceptAsync(&accepted);
    if (result < Done)
        return result;

    const u32 start = GetTickCount();
    while (listener.IsCompleted(1) < Done) {
        // The difference is right also where the ticks begin anew in between.
        if (GetTickCount() - start > u64{timeoutSeconds} * 1000) {
            (void)listener.Close(); // with the thread, and a client that came at the last moment
            return Failed;
        }
        Sleep(0); // meant: it yields and goes on asking
    }
    result = listener.GetAcceptResult();
    if (result < Done)
        return result;
    client = new (std::nothrow) IrdaSocket(accepted);
    if (client == nullptr) {
        closesocket(accepted);
        return NoMemory;
    }
    connected = 1;
    return result;
}

// The answers' results are dropped: where the link is gone, the next packet tells.
i32 ObexServer::Exchange(ObexObject& object)
{
    WCHAR peerName[PeerNameCapacity] = {};
    if (client != nullptr)
        (void)client->GetPeerName(peerName, PeerNameCapacity);
    object.Tell(ObexClientFound, peerName);

    u8 opcode = 0;
    i32 result = ReadPacket(&opcode);
    if (result < 0)
        return result;
    if (opcode == OpcodeConnect) {
        ParseObexConnect(parser);
        (void)SendResponse(ResponseSuccess, connectAnswer, sizeof connectAnswer);
        result = ReadPacket(&opcode);
        if (result < 0)
            return result;
    }
    for (;;) {
        if (WithoutFinalFlag(opcode) != OpcodePut)
            return Failed;
        result = ParseObexPut(parser, packet + PacketHeadSize, object);
        if (result < 0)
            return result;
        // Meant: the client sees the link go, and the caller a success.
        if (result == NothingDone)
            return Done;
        if ((opcode & FinalFlag) != 0)
            break;
        (void)SendResponse(ResponseContinue, nullptr, 0);
        result = ReadPacket(&opcode);
        if (result < 0)
            return result;
    }
    (void)SendResponse(ResponseSuccess, nullptr, 0);
    // The object is there, whatever comes now.
    if (ReadPacket(&opcode) >= Done && WithoutFinalFlag(opcode) == OpcodeDisconnect)
        (void)SendResponse(ResponseSuccess, nullptr, 0);
    object.Tell(ObexFinished, nullptr);
    return Done;
}

i32 ObexServer::ReadPacket(u8* opcode)
{
    if (client == nullptr)
        return Failed;
    packetLength = 0;
    // Meant: a head that comes in two pieces is taken for a broken one. Clients send a packet at
    // once, and wait for its answer.
    i32 got = 0;
    if (client->Recv(packet, PacketHeadSize, &got, 0) < Done || got < i32{PacketHeadSize})
        return Failed;
    const u32 length = static_cast<u32>(packet[1] << 8 | packet[2]);
    if (length < PacketHeadSize)
        return Failed;
    if (length > PacketSize)
        return NoMemory;
    const i32 rest = static_cast<i32>(length - PacketHeadSize);
    if (client->RecvAll(packet + PacketHeadSize, rest, &got, 0) < Done || got < rest)
        return Failed;
    packetLength = length;
    *opcode = packet[0];
    return parser.Open(packet + PacketHeadSize, packetLength - PacketHeadSize, 1, nullptr);
}

i32 ObexServer::SendResponse(u8 code, const void* data, i32 length)
{
    if (client == nullptr || length < 0 || length > LongestResponseData)
        return Failed;
    if (code != ResponseContinue && code != ResponseSuccess)
        return Failed;
    if (length > 0 && data == nullptr)
        return BadArgument;
    u8 response[PacketHeadSize + LongestResponseData];
    const i32 size = i32{PacketHeadSize} + length;
    response[0] = static_cast<u8>(code | FinalFlag);
    response[1] = static_cast<u8>(size >> 8);
    response[2] = static_cast<u8>(size);
    if (length > 0)
        memcpy(response + PacketHeadSize, data, static_cast<size_t>(length));
    return client->Send(response, size, nullptr, 0) < Done ? Failed : Done;
}

i32 ObexServer::Close()
{
    if (client == nullptr)
        return NothingDone;
    delete client;
    client = nullptr;
    connected = 0;
    packetLength = 0;
    (void)parser.Close();
    return Done;
}
