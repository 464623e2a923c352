#include "transfer/SocketStream.h"

namespace
{

// Room for a name in the device's code page. No host's name is that long.
constexpr i32 MostHostName = 1024;

} // namespace

SocketStream::SocketStream(i32 type) : socket(AF_INET, type, 0)
{
    Prepare();
}

SocketStream::SocketStream(SOCKET accepted) : socket(accepted)
{
    Prepare();
}

SocketStream::~SocketStream()
{
    (void)Close();
}

void SocketStream::Prepare()
{
    ClearAddress();
    workerThread = nullptr;
    workerResult = 0;
    (void)completed.Create(0);
    sendTimeout = -1;
    receiveTimeout = -1;
    asynchronous = 0;
    call = {&socket, &completed, nullptr, 0, nullptr, nullptr, nullptr, &workerResult};
}

void SocketStream::ClearAddress()
{
    address = {};
    address.sin_family = AF_INET;
}

void SocketStream::FillAddress(u32 hostAddress, u16 port)
{
    ClearAddress();
    address.sin_port = htons(port);
    address.sin_addr.S_un.S_addr = htonl(hostAddress);
}

i32 SocketStream::SetSendTimeout(u32 seconds)
{
    if (!socket.IsOpen())
        return Failed;
    const DWORD milliseconds = seconds * 1000;
    if (socket.SetOption(SOL_SOCKET, SO_SNDTIMEO, &milliseconds, sizeof(milliseconds)) >= 0)
        sendTimeout = static_cast<i32>(seconds);
    return Done;
}

i32 SocketStream::SetReceiveTimeout(u32 seconds)
{
    const DWORD milliseconds = seconds * 1000;
    if (socket.SetOption(SOL_SOCKET, SO_RCVTIMEO, &milliseconds, sizeof(milliseconds)) < 0)
        return Failed;
    receiveTimeout = static_cast<i32>(seconds);
    return Done;
}

i32 SocketStream::GetLocalAddress(u32* localAddress)
{
    if (localAddress == nullptr)
        return BadArgument;
    sockaddr_in own = {};
    i32 length = sizeof(own);
    if (!socket.IsOpen() ||
        getsockname(socket.Handle(), reinterpret_cast<sockaddr*>(&own), &length) == SOCKET_ERROR)
        return Failed;
    *localAddress = ntohl(own.sin_addr.S_un.S_addr);
    return Done;
}

i32 SocketStream::GetLocalAddressBytes(u8* b1, u8* b2, u8* b3, u8* b4)
{
    if (b1 == nullptr || b2 == nullptr || b3 == nullptr || b4 == nullptr)
        return BadArgument;
    u32 own = 0;
    if (GetLocalAddress(&own) < 0)
        return Failed;
    *b1 = static_cast<u8>(own >> 24);
    *b2 = static_cast<u8>(own >> 16);
    *b3 = static_cast<u8>(own >> 8);
    *b4 = static_cast<u8>(own);
    return Done;
}

i32 SocketStream::ResolveHost(const WCHAR* name, hostent** out)
{
    if (name == nullptr || out == nullptr)
        return BadArgument;
    *out = nullptr;
    if (!socket.IsOpen())
        return Failed;
    char narrow[MostHostName];
    if (WideCharToMultiByte(CP_ACP, 0, name, -1, narrow, MostHostName, nullptr, nullptr) == 0)
        return Failed;
    *out = gethostbyname(narrow);
    return *out != nullptr ? Done : Failed;
}

i32 SocketStream::Bind(u32 localAddress, u16 port)
{
    FillAddress(localAddress, port);
    return socket.Bind(reinterpret_cast<const sockaddr*>(&address), sizeof(address));
}

i32 SocketStream::Listen(i32 backlog)
{
    return socket.Listen(backlog);
}

i32 SocketStream::Connect(u32 peerAddress, u16 port)
{
    FillAddress(peerAddress, port);
    return socket.Connect(reinterpret_cast<const sockaddr*>(&address), sizeof(address));
}

i32 SocketStream::Connect(u8 b1, u8 b2, u8 b3, u8 b4, u16 port)
{
    return Connect(static_cast<u32>(b1) << 24 | static_cast<u32>(b2) << 16 |
                       static_cast<u32>(b3) << 8 | b4,
                   port);
}

i32 SocketStream::GetName(WCHAR*, i32)
{
    return Failed;
}

i32 SocketStream::GetSize(u64*)
{
    return Failed;
}

i32 SocketStream::Seek(const i64*, u64*, u32)
{
    return Failed;
}

i32 SocketStream::Close()
{
    // The socket first, so that the call that a worker waits in fails.
    if (socket.IsOpen()) {
        (void)socket.Shutdown(2);
        (void)socket.Close();
    }
    ClearAddress();
    EndWorker();
    return Done;
}
