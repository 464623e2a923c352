// Asking and setting a socket's options, the list of the infrared devices in range among them.

#include "platform/core/SocketCalls.h"

#include <algorithm>
#include <cstring>
#include <optional>

using namespace tavrix::platform;

namespace
{

constexpr int InfraredLevel = 255;
constexpr int EnumerateDevices = 16;

/// The answer to the question for devices in range, with room for the first one.
struct InfraredDevices {
    ULONG count;
    BYTE deviceId[4];
    char name[22];
    BYTE reserved[2];
};
static_assert(sizeof(InfraredDevices) == 32);

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

} // namespace

int WINAPI getsockopt(SOCKET socket, int level, int name, char* value, int* length)
{
    const std::shared_ptr<HostSocket> asked = FindSocket(socket);
    return AsSocketResult(asked != nullptr && !IsSocketFaulty(SocketOperation::Option) &&
                          GetOptionOf(*asked, level, name, value, length));
}

int WINAPI setsockopt(SOCKET socket, int level, int name, const char* value, int length)
{
    const std::shared_ptr<HostSocket> changed = FindSocket(socket);
    const auto option = FindOption(level, name);
    DWORD number = 0;
    if (changed == nullptr || !option || value == nullptr ||
        length < static_cast<int>(sizeof(number)) || IsSocketFaulty(SocketOperation::Option))
        return SOCKET_ERROR;
    std::memcpy(&number, value, sizeof(number));
    return AsSocketResult(changed->SetOption(*option, number));
}
