// The options of a socket: time-outs are our own affair, since the host's sockets never wait; the
// rest is the host's.

#include "platform/core/HostSocket.h"

#include <sys/socket.h>

#include <algorithm>

namespace tavrix::platform
{

namespace
{

bool SetHost(int socket, int name, const void* value, socklen_t length)
{
    return setsockopt(socket, SOL_SOCKET, name, value, length) == 0;
}

bool SetNumber(int socket, int name, DWORD value)
{
    const int number = static_cast<int>(std::min<DWORD>(value, 0x7FFFFFFF));
    return SetHost(socket, name, &number, sizeof(number));
}

bool GetNumber(int socket, int name, DWORD* value)
{
    int number = 0;
    socklen_t length = sizeof(number);
    if (getsockopt(socket, SOL_SOCKET, name, &number, &length) != 0)
        return false;
    *value = static_cast<DWORD>(number);
    return true;
}

bool GetLinger(int socket, DWORD* value)
{
    linger both = {};
    socklen_t length = sizeof(both);
    if (getsockopt(socket, SOL_SOCKET, SO_LINGER, &both, &length) != 0)
        return false;
    *value = (both.l_onoff != 0 ? 1u : 0u) | static_cast<DWORD>(both.l_linger) << 16;
    return true;
}

/// The host keeps book of a buffer at twice what was asked for, and tells that.
bool GetBuffer(int socket, int name, DWORD* value)
{
    if (!GetNumber(socket, name, value))
        return false;
    *value /= 2;
    return true;
}

} // namespace

bool HostSocket::SetOption(SocketOption option, DWORD value)
{
    const linger both = {static_cast<int>(value & 0xFFFF), static_cast<int>(value >> 16)};
    switch (option) {
    case SocketOption::ReuseAddress:
        return SetNumber(First(), SO_REUSEADDR, value != 0 ? 1 : 0);
    case SocketOption::KeepAlive:
        return SetNumber(First(), SO_KEEPALIVE, value != 0 ? 1 : 0);
    case SocketOption::Linger:
        return SetHost(First(), SO_LINGER, &both, sizeof(both));
    case SocketOption::SendBuffer:
        return SetNumber(First(), SO_SNDBUF, value);
    case SocketOption::ReceiveBuffer:
        return SetNumber(First(), SO_RCVBUF, value);
    case SocketOption::SendTimeout:
        sendTimeout = value;
        return true;
    case SocketOption::ReceiveTimeout:
        receiveTimeout = value;
        return true;
    case SocketOption::IsStream:
        break;
    }
    return false;
}

bool HostSocket::GetOption(SocketOption option, DWORD* value) const
{
    switch (option) {
    case SocketOption::ReuseAddress:
        return GetNumber(First(), SO_REUSEADDR, value);
    case SocketOption::KeepAlive:
        return GetNumber(First(), SO_KEEPALIVE, value);
    case SocketOption::Linger:
        return GetLinger(First(), value);
    case SocketOption::SendBuffer:
        return GetBuffer(First(), SO_SNDBUF, value);
    case SocketOption::ReceiveBuffer:
        return GetBuffer(First(), SO_RCVBUF, value);
    case SocketOption::SendTimeout:
        *value = sendTimeout;
        return true;
    case SocketOption::ReceiveTimeout:
        *value = receiveTimeout;
        return true;
    case SocketOption::IsStream:
        *value = stream ? 1 : 0;
        return true;
    }
    return false;
}

} // namespace tavrix::platform
