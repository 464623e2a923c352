// The device's sockets: its handles, addresses and numbers on one side, HostSocket on the other.
// Each call that may wait ends in ThreadEnding::EndIfAsked, with nothing left alive in its frame.
// Options: SocketOptions.cpp; names and byte order: SocketNames.cpp.

#include "platform/core/ErrorCodes.h"
#include "platform/core/SocketCalls.h"
#include "platform/core/ThreadEnding.h"

#include <cstring>
#include <optional>

using namespace tavrix::platform;

namespace tavrix::platform
{

std::shared_ptr<HostSocket> FindSocket(SOCKET socket)
{
    return FindObjectAs<HostSocket>(reinterpret_cast<HANDLE>(socket));
}

bool IsSocketFaulty(SocketOperation operation, int* length)
{
    TestHooks& hooks = Hooks();
    if (!hooks.active)
        return false;
    const std::lock_guard<std::mutex> guard(hooks.lock);
    return hooks.socketFault && hooks.socketFault(operation, length);
}

} // namespace tavrix::platform

namespace
{

constexpr int InfraredFamily = 22;
constexpr int Peek = 2;

/// The address of an infrared service.
struct InfraredAddress {
    USHORT family;
    BYTE deviceId[4];
    char service[25];
    BYTE padding;
};
static_assert(sizeof(InfraredAddress) == 32);

SOCKET Add(std::shared_ptr<HostSocket> made)
{
    const HANDLE handle = made != nullptr ? AddHandle(std::move(made)) : nullptr;
    return handle != nullptr ? reinterpret_cast<SOCKET>(handle) : INVALID_SOCKET;
}

std::optional<InternetAddress> ReadInternet(const sockaddr* address, int length)
{
    sockaddr_in internet;
    if (address == nullptr || length < static_cast<int>(sizeof(internet)))
        return std::nullopt;
    std::memcpy(&internet, address, sizeof(internet));
    if (internet.sin_family != AF_INET)
        return std::nullopt;
    return InternetAddress{ntohl(internet.sin_addr.S_un.S_addr), ntohs(internet.sin_port)};
}

void WriteInternet(const InternetAddress& from, sockaddr* address, int* length)
{
    sockaddr_in internet = {};
    internet.sin_family = AF_INET;
    internet.sin_port = htons(from.port);
    internet.sin_addr.S_un.S_addr = htonl(from.address);
    if (address == nullptr || length == nullptr || *length < static_cast<int>(sizeof(internet)))
        return;
    std::memcpy(address, &internet, sizeof(internet));
    *length = sizeof(internet);
}

std::optional<std::string> ReadService(const sockaddr* address, int length)
{
    InfraredAddress infrared;
    if (address == nullptr || length < static_cast<int>(sizeof(infrared)))
        return std::nullopt;
    std::memcpy(&infrared, address, sizeof(infrared));
    if (infrared.family != InfraredFamily)
        return std::nullopt;
    return std::string(infrared.service, strnlen(infrared.service, sizeof(infrared.service)));
}

bool BindTo(HostSocket& socket, const sockaddr* address, int length)
{
    if (socket.IsInfrared()) {
        const auto service = ReadService(address, length);
        return service && socket.BindService(*service);
    }
    const auto internet = ReadInternet(address, length);
    return internet && socket.Bind(*internet);
}

bool ConnectTo(SOCKET handle, const sockaddr* address, int length)
{
    const std::shared_ptr<HostSocket> socket = FindSocket(handle);
    if (socket == nullptr || IsSocketFaulty(SocketOperation::Connect))
        return false;
    if (socket->IsInfrared()) {
        const auto service = ReadService(address, length);
        return service && socket->ConnectService(*service);
    }
    const auto internet = ReadInternet(address, length);
    return internet && socket->Connect(*internet);
}

SOCKET AcceptOn(SOCKET handle, sockaddr* address, int* length)
{
    const std::shared_ptr<HostSocket> socket = FindSocket(handle);
    if (socket == nullptr || IsSocketFaulty(SocketOperation::Accept))
        return INVALID_SOCKET;
    InternetAddress peer;
    const SOCKET accepted = Add(socket->Accept(&peer));
    if (accepted != INVALID_SOCKET && !socket->IsInfrared())
        WriteInternet(peer, address, length);
    return accepted;
}

int SendOn(SOCKET handle, const char* buffer, int length)
{
    const std::shared_ptr<HostSocket> socket = FindSocket(handle);
    if (socket == nullptr || length < 0 || (buffer == nullptr && length > 0) ||
        IsSocketFaulty(SocketOperation::Send, &length))
        return SOCKET_ERROR;
    return socket->Send(buffer, length);
}

int ReceiveOn(SOCKET handle, char* buffer, int length, int flags)
{
    const std::shared_ptr<HostSocket> socket = FindSocket(handle);
    if (socket == nullptr || length < 0 || (buffer == nullptr && length > 0) ||
        (flags & ~Peek) != 0 || IsSocketFaulty(SocketOperation::Receive, &length))
        return SOCKET_ERROR;
    return socket->Receive(buffer, length, (flags & Peek) != 0);
}

} // namespace

int WINAPI WSAStartup(WORD version, LPWSADATA data)
{
    if (data == nullptr)
        return SOCKET_ERROR;
    *data = {};
    data->wVersion = version;
    data->wHighVersion = 0x0101;
    return 0;
}

int WINAPI WSACleanup(void)
{
    return 0;
}

SOCKET WINAPI socket(int family, int type, int)
{
    const bool infrared = family == InfraredFamily && type == SOCK_STREAM;
    const bool internet = family == AF_INET && (type == SOCK_STREAM || type == SOCK_DGRAM);
    if ((!infrared && !internet) || IsSocketFaulty(SocketOperation::Create))
        return INVALID_SOCKET;
    return WithoutThrowing(INVALID_SOCKET, [&] {
        return Add(HostSocket::Create(infrared ? HostSocket::Family::Infrared
                                               : HostSocket::Family::Internet,
                                      type == SOCK_STREAM));
    });
}

int WINAPI closesocket(SOCKET socket)
{
    const std::shared_ptr<HostSocket> closing = FindSocket(socket);
    if (closing == nullptr || RemoveHandle(reinterpret_cast<HANDLE>(socket)) == nullptr)
        return SOCKET_ERROR;
    closing->Close();
    return 0;
}

int WINAPI bind(SOCKET socket, const sockaddr* address, int length)
{
    const std::shared_ptr<HostSocket> binding = FindSocket(socket);
    if (binding == nullptr || IsSocketFaulty(SocketOperation::Bind))
        return SOCKET_ERROR;
    return WithoutThrowing(SOCKET_ERROR,
                           [&] { return AsSocketResult(BindTo(*binding, address, length)); });
}

int WINAPI listen(SOCKET socket, int backlog)
{
    const std::shared_ptr<HostSocket> listener = FindSocket(socket);
    return AsSocketResult(listener != nullptr && !IsSocketFaulty(SocketOperation::Listen) &&
                          listener->Listen(backlog));
}

SOCKET WINAPI accept(SOCKET socket, sockaddr* address, int* length)
{
    const SOCKET accepted =
        WithoutThrowing(INVALID_SOCKET, [&] { return AcceptOn(socket, address, length); });
    // Nobody would learn of a connection that comes together with the thread's end. One look for
    // both: a thread that is asked behind it goes on to its next call, with the connection.
    const ThreadEnding* const ending = ThreadEnding::Current();
    if (ending != nullptr && ending->IsAsked()) {
        if (accepted != INVALID_SOCKET)
            closesocket(accepted);
        ThreadEnding::EndIfAsked();
    }
    return accepted;
}

int WINAPI connect(SOCKET socket, const sockaddr* address, int length)
{
    const int result = WithoutThrowing(
        SOCKET_ERROR, [&] { return AsSocketResult(ConnectTo(socket, address, length)); });
    ThreadEnding::EndIfAsked();
    return result;
}

int WINAPI shutdown(SOCKET socket, int how)
{
    const std::shared_ptr<HostSocket> ending = FindSocket(socket);
    return AsSocketResult(ending != nullptr && ending->Shutdown(how));
}

int WINAPI send(SOCKET socket, const char* buffer, int length, int flags)
{
    const int sent = flags != 0 ? SOCKET_ERROR : SendOn(socket, buffer, length);
    ThreadEnding::EndIfAsked();
    return sent;
}

int WINAPI recv(SOCKET socket, char* buffer, int length, int flags)
{
    const int received = ReceiveOn(socket, buffer, length, flags);
    ThreadEnding::EndIfAsked();
    return received;
}

int WINAPI getsockname(SOCKET socket, sockaddr* address, int* length)
{
    const std::shared_ptr<HostSocket> asked = FindSocket(socket);
    InternetAddress own;
    if (asked == nullptr || address == nullptr || length == nullptr ||
        *length < static_cast<int>(sizeof(sockaddr_in)) || IsSocketFaulty(SocketOperation::Name) ||
        !asked->GetLocalAddress(&own))
        return SOCKET_ERROR;
    WriteInternet(own, address, length);
    return 0;
}
