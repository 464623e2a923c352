#include "transfer/Socket.h"

#include <new>

namespace
{

constexpr WORD WinsockVersion = 0x0101;

// The living objects. Without a lock: they are made and destroyed on one thread at a time.
i32 livingSockets = 0;

i32 ResultOf(int platformResult)
{
    return platformResult == SOCKET_ERROR ? Failed : Done;
}

} // namespace

Socket::Socket(i32 family, i32 type, i32 protocol)
{
    Prepare();
    handle = ::socket(family, type, protocol);
}

Socket::Socket(SOCKET accepted)
{
    Prepare();
    handle = accepted;
}

Socket::~Socket()
{
    (void)Close();
    if (--livingSockets == 0)
        (void)WSACleanup();
    handle = INVALID_SOCKET;
    (void)completed.Close();
}

void Socket::Prepare()
{
    // The device wants to be started before its first socket is made.
    if (livingSockets++ == 0) {
        WSADATA data;
        (void)WSAStartup(WinsockVersion, &data);
    }
    workerThread = nullptr;
    workerResult = 0;
    (void)completed.Create(0);
    acceptCall = {&handle, &completed, nullptr, nullptr, nullptr, &workerResult};
}

i32 Socket::GetHostName(char* name, i32 size)
{
    if (name == nullptr || size == 0)
        return BadArgument;
    name[0] = 0;
    if (!IsOpen())
        return Failed;
    return ResultOf(gethostname(name, size));
}

i32 Socket::GetOption(i32 level, i32 name, void* value, i32* length)
{
    if (!IsOpen())
        return Failed;
    return ResultOf(getsockopt(handle, level, name, static_cast<char*>(value), length));
}

i32 Socket::SetOption(i32 level, i32 name, const void* value, i32 length)
{
    if (!IsOpen())
        return Failed;
    return ResultOf(setsockopt(handle, level, name, static_cast<const char*>(value), length));
}

i32 Socket::Bind(const sockaddr* address, i32 length)
{
    return IsOpen() ? ResultOf(::bind(handle, address, length)) : Failed;
}

i32 Socket::Listen(i32 backlog)
{
    return IsOpen() ? ResultOf(::listen(handle, backlog)) : Failed;
}

i32 Socket::Connect(const sockaddr* address, i32 length)
{
    return IsOpen() ? ResultOf(::connect(handle, address, length)) : Failed;
}

i32 Socket::Shutdown(i32 how)
{
    return IsOpen() ? ResultOf(::shutdown(handle, how)) : Failed;
}

i32 Socket::Send(const void* buffer, i32 length, i32* sent, i32 flags)
{
    if (sent != nullptr)
        *sent = 0;
    if (!IsOpen())
        return Failed;
    const int count = ::send(handle, static_cast<const char*>(buffer), length, flags);
    if (count == SOCKET_ERROR)
        return Failed;
    if (sent != nullptr)
        *sent = count;
    return Done;
}

i32 Socket::Recv(void* buffer, i32 length, i32* got, i32 flags)
{
    if (got != nullptr)
        *got = 0;
    if (!IsOpen())
        return Failed;
    const int count = ::recv(handle, static_cast<char*>(buffer), length, flags);
    if (count == SOCKET_ERROR)
        return Failed;
    if (got != nullptr)
        *got = count;
    return Done;
}

i32 Socket::RecvAll(void* buffer, i32 length, i32* got, i32 flags)
{
    if (got != nullptr)
        *got = 0;
    if (!IsOpen())
        return Failed;
    i32 total = 0;
    while (total < length) {
        const int count = ::recv(handle, static_cast<char*>(buffer) + total, length - total, flags);
        if (count == SOCKET_ERROR)
            return Failed;
        if (count == 0)
            break;
        total += count;
    }
    if (got != nullptr)
        *got = total;
    return Done;
}

i32 Socket::Close()
{
    // Taken away before it is closed: a worker that only begins finds none, rather than the number
    // of another socket that was made since.
    const SOCKET closing = handle.exchange(INVALID_SOCKET);
    if (closing == INVALID_SOCKET)
        return Failed;
    (void)::shutdown(closing, 2);
    (void)closesocket(closing);
    EndWorker();
    (void)completed.Close();
    return Failed; // meant: callers do not look
}
