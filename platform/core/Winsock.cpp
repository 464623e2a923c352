// The device's sockets: its handles, addresses and numbers on one side, HostSocket on the other.
// Each call that may wait ends in ThreadEnding::EndIfAsked, with nothing left alive in its frame.

#include "platform/core/ErrorCodes.h"
#include "platform/core/HostSocket.h"
#include "platform/core/TestHooks.h"
#include "platform/core/ThreadEnding.h"

#include <winsock.h>

#include <unistd.h>

#include <cstring>
#include <optional>

using namespace tavrix::platform;

namespace
{

constexpr int InfraredFamily = 22;
constexpr int InfraredLevel = 255;
constexpr int EnumerateDevices = 16;
constexpr int Peek = 2;

/// The address of an infrared service.
struct InfraredAddress {
    USHORT family;
    BYTE deviceId[4];
    char service[25];
    BYTE padding;
};
static_assert(sizeof(InfraredAddress) == 32);

/// The answer to the question for devices in range, with room for the first one.
struct InfraredDevices {
    ULONG count;
    BYTE deviceId[4];
    char name[22];
    BYTE reserved[2];
};
static_assert(sizeof(InfraredDevices) == 32);

bool IsFaulty(SocketOperation operation, int* length = nullptr)
{
    TestHooks& hooks = Hooks();
    if (!hooks.active)
        return false;
    const std::lock_guard<std::mutex> guard(hooks.lock);
    return hooks.socketFault && hooks.socketFault(operation, length);
}

std::shared_ptr<HostSocket> Find(SOCKET socket)
{
    return FindObjectAs<HostSocket>(reinterpret_cast<HANDLE>(socket));
}

SOCKET Add(std::shared_ptr<HostSocket> made)
{
    const HANDLE handle = made != nullptr ? AddHandle(std::move(made)) : nullptr;
    return handle != nullptr ? reinterpret_cast<SOCKET>(handle) : INVALID_SOCKET;
}

/// What a call on a socket answers, 0 for success.
int AsResult(bool succeeded)
{
    return succeeded ? 0 : SOCKET_ERROR;
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
    const std::shared_ptr<HostSocket> socket = Find(handle);
    if (socket == nullptr || IsFaulty(SocketOperation::Connect))
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
    const std::shared_ptr<HostSocket> socket = Find(handle);
    if (socket == nullptr || IsFaulty(SocketOperation::Accept))
        return INVALID_SOCKET;
    InternetAddress peer;
    const SOCKET accepted = Add(socket->Accept(&peer));
    if (accepted != INVALID_SOCKET && !socket->IsInfrared())
        WriteInternet(peer, address, length);
    return accepted;
}

int SendOn(SOCKET handle, const char* buffer, int length)
{
    const std::shared_ptr<HostSocket> socket = Find(handle);
    if (socket == nullptr || length < 0 || (buffer == nullptr && length > 0) ||
        IsFaulty(SocketOperation::Send, &length))
        return SOCKET_ERROR;
    return socket->Send(buffer, length);
}

int ReceiveOn(SOCKET handle, char* buffer, int length, int flags)
{
    const std::shared_ptr<HostSocket> socket = Find(handle);
    if (socket == nullptr || length < 0 || (buffer == nullptr && length > 0) ||
        (flags & ~Peek) != 0 || IsFaulty(SocketOperation::Receive, &length))
        return SOCKET_ERROR;
    return socket->Receive(buffer, length, (flags & Peek) != 0);
}

std::optional<SocketOption> FindOption(int level, int name)
{
    if (level != SOL_SOCKET)
        return std::nullopt;
    switch (name) {
    case SO_REUSEADDR:
        return SocketOption::ReuseAddress;
    case SO_KEEPALIVE:
        return SocketOption::KeepAlive;
    case SO_LINGER:
        return SocketOption::Linger;
    case SO_SNDBUF:
        return SocketOption::SendBuffer;
    case SO_RCVBUF:
        return SocketOption::ReceiveBuffer;
    case SO_SNDTIMEO:
        return SocketOption::SendTimeout;
    case SO_RCVTIMEO:
        return SocketOption::ReceiveTimeout;
    case SO_TYPE:
        return SocketOption::IsStream;
    default:
        return std::nullopt;
    }
}

/// The devices in range are the one at the other end of the link, if there is one.
bool TellDevices(const HostSocket& socket, char* value, int* length)
{
    InfraredDevices devices = {};
    if (*length < static_cast<int>(sizeof(devices)))
        return false;
    std::string name;
    if (socket.GetPeerText(&name)) {
        devices.count = 1;
        // The transport knows no ids; none is never asked for, so any other does.
        devices.deviceId[3] = 1;
        std::memcpy(devices.name, name.c_str(), std::min(name.size(), sizeof(devices.name) - 1));
    }
    std::memcpy(value, &devices, sizeof(devices));
    *length = sizeof(devices);
    return true;
}

bool GetOptionOf(const HostSocket& socket, int level, int name, char* value, int* length)
{
    if (value == nullptr || length == nullptr)
        return false;
    if (level == InfraredLevel && name == EnumerateDevices && socket.IsInfrared())
        return TellDevices(socket, value, length);
    const auto option = FindOption(level, name);
    DWORD number = 0;
    if (!option || *length < static_cast<int>(sizeof(number)) ||
        !socket.GetOption(*option, &number))
        return false;
    if (*option == SocketOption::IsStream)
        number = number != 0 ? SOCK_STREAM : SOCK_DGRAM;
    std::memcpy(value, &number, sizeof(number));
    *length = sizeof(number);
    return true;
}

/// What gethostbyname answers, one for each thread.
struct HostRecord {
    hostent entry;
    char name[256];
    ULONG address;
    char* addresses[2];
    char* aliases[1];
};
thread_local HostRecord hostRecord;

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
    if ((!infrared && !internet) || IsFaulty(SocketOperation::Create))
        return INVALID_SOCKET;
    return WithoutThrowing(INVALID_SOCKET, [&] {
        return Add(HostSocket::Create(infrared ? HostSocket::Family::Infrared
                                               : HostSocket::Family::Internet,
                                      type == SOCK_STREAM));
    });
}

int WINAPI closesocket(SOCKET socket)
{
    const std::shared_ptr<HostSocket> closing = Find(socket);
    if (closing == nullptr || RemoveHandle(reinterpret_cast<HANDLE>(socket)) == nullptr)
        return SOCKET_ERROR;
    closing->Close();
    return 0;
}

int WINAPI bind(SOCKET socket, const sockaddr* address, int length)
{
    const std::shared_ptr<HostSocket> binding = Find(socket);
    if (binding == nullptr || IsFaulty(SocketOperation::Bind))
        return SOCKET_ERROR;
    return WithoutThrowing(SOCKET_ERROR,
                           [&] { return AsResult(BindTo(*binding, address, length)); });
}

int WINAPI listen(SOCKET socket, int backlog)
{
    const std::shared_ptr<HostSocket> listener = Find(socket);
    return AsResult(listener != nullptr && !IsFaulty(SocketOperation::Listen) &&
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
    const int result =
        WithoutThrowing(SOCKET_ERROR, [&] { return AsResult(ConnectTo(socket, address, length)); });
    ThreadEnding::EndIfAsked();
    return result;
}

int WINAPI shutdown(SOCKET socket, int how)
{
    const std::shared_ptr<HostSocket> ending = Find(socket);
    return AsResult(ending != nullptr && ending->Shutdown(how));
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

int WINAPI getsockopt(SOCKET socket, int level, int name, char* value, int* length)
{
    const std::shared_ptr<HostSocket> asked = Find(socket);
    return AsResult(asked != nullptr && !IsFaulty(SocketOperation::Option) &&
                    GetOptionOf(*asked, level, name, value, length));
}

int WINAPI setsockopt(SOCKET socket, int level, int name, const char* value, int length)
{
    const std::shared_ptr<HostSocket> changed = Find(socket);
    const auto option = FindOption(level, name);
    DWORD number = 0;
    if (changed == nullptr || !option || value == nullptr ||
        length < static_cast<int>(sizeof(number)) || IsFaulty(SocketOperation::Option))
        return SOCKET_ERROR;
    std::memcpy(&number, value, sizeof(number));
    return AsResult(changed->SetOption(*option, number));
}

int WINAPI getsockname(SOCKET socket, sockaddr* address, int* length)
{
    const std::shared_ptr<HostSocket> asked = Find(socket);
    InternetAddress own;
    if (asked == nullptr || address == nullptr || length == nullptr ||
        *length < static_cast<int>(sizeof(sockaddr_in)) || IsFaulty(SocketOperation::Name) ||
        !asked->GetLocalAddress(&own))
        return SOCKET_ERROR;
    WriteInternet(own, address, length);
    return 0;
}

int WINAPI gethostname(char* name, int length)
{
    if (name == nullptr || length <= 0)
        return SOCKET_ERROR;
    return gethostname(name, static_cast<size_t>(length));
}

hostent* WINAPI gethostbyname(const char* name)
{
    DWORD address = 0;
    if (name == nullptr || IsFaulty(SocketOperation::Resolve) || !ResolveHostName(name, &address))
        return nullptr;
    HostRecord& record = hostRecord;
    std::strncpy(record.name, name, sizeof(record.name) - 1);
    record.address = htonl(address);
    record.addresses[0] = reinterpret_cast<char*>(&record.address);
    record.entry = {record.name, record.aliases, AF_INET, sizeof(record.address), record.addresses};
    return &record.entry;
}

ULONG WINAPI htonl(ULONG value)
{
    const BYTE bytes[] = {static_cast<BYTE>(value >> 24), static_cast<BYTE>(value >> 16),
                          static_cast<BYTE>(value >> 8), static_cast<BYTE>(value)};
    ULONG network = 0;
    std::memcpy(&network, bytes, sizeof(network));
    return network;
}

USHORT WINAPI htons(USHORT value)
{
    const BYTE bytes[] = {static_cast<BYTE>(value >> 8), static_cast<BYTE>(value)};
    USHORT network = 0;
    std::memcpy(&network, bytes, sizeof(network));
    return network;
}

ULONG WINAPI ntohl(ULONG value)
{
    return htonl(value);
}

USHORT WINAPI ntohs(USHORT value)
{
    return htons(value);
}
