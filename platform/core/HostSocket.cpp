#include "platform/core/HostSocket.h"

#include "platform/core/ThreadEnding.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <sys/eventfd.h>
#include <sys/socket.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <chrono>

namespace tavrix::platform
{

namespace
{

constexpr int Kind = SOCK_CLOEXEC | SOCK_NONBLOCK;
constexpr int Beat = 20; // milliseconds

sockaddr_in HostAddress(const InternetAddress& address)
{
    sockaddr_in host = {};
    host.sin_family = AF_INET;
    host.sin_port = htons(address.port);
    host.sin_addr.s_addr = htonl(address.address);
    return host;
}

InternetAddress DeviceAddress(const sockaddr_in& host)
{
    return {ntohl(host.sin_addr.s_addr), ntohs(host.sin_port)};
}

bool EndIsAsked()
{
    const ThreadEnding* const ending = ThreadEnding::Current();
    return ending != nullptr && ending->IsAsked();
}

/// What is to be waited for, or tried again at once, and no failure.
bool IsToWait(int error)
{
    return error == EAGAIN || error == EWOULDBLOCK || error == EINTR;
}

} // namespace

std::shared_ptr<HostSocket> HostSocket::Create(Family family, bool stream)
{
    const std::shared_ptr<HostSocket> made(new HostSocket(family, stream));
    made->closing = Descriptor(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK));
    if (!made->closing.IsOpen())
        return {};
    // An infrared one gets the host's socket when its transport is known.
    if (family == Family::Infrared)
        return made;
    Descriptor host(::socket(AF_INET, (stream ? SOCK_STREAM : SOCK_DGRAM) | Kind, 0));
    if (!host.IsOpen())
        return {};
    made->sockets.push_back(std::move(host));
    return made;
}

HostSocket::~HostSocket()
{
    if (!boundPath.empty())
        unlink(boundPath.c_str());
}

void HostSocket::Close()
{
    closed = true;
    const uint64_t once = 1;
    [[maybe_unused]] const ssize_t written = write(closing.Get(), &once, sizeof(once));
    // The peer learns it now, though a call on another thread holds the socket a moment longer.
    if (connected)
        ::shutdown(First(), SHUT_RDWR);
}

HostSocket::Wait HostSocket::Await(short events, DWORD milliseconds) const
{
    using Clock = std::chrono::steady_clock;
    const auto end = Clock::now() + std::chrono::milliseconds(milliseconds);
    // The host passes over a negative descriptor.
    ThreadEnding* const ending = ThreadEnding::Current();
    std::array<pollfd, 2 + MostSockets> entries = {
        {{closing.Get(), POLLIN, 0},
         {ending != nullptr ? ending->WakeDescriptor() : -1, POLLIN, 0}}};
    size_t count = 2;
    for (const Descriptor& host : sockets)
        entries[count++] = {host.Get(), events, 0};
    for (;;) {
        if (closed || EndIsAsked())
            return Wait::Over;
        int left = -1;
        if (milliseconds != 0) {
            const auto rest =
                std::chrono::ceil<std::chrono::milliseconds>(end - Clock::now()).count();
            if (rest <= 0)
                return Wait::TimedOut;
            left = static_cast<int>(std::min<long long>(rest, 0x7FFFFFFF));
        }
        // Without a descriptor to be woken by it has to look.
        if (ending != nullptr && entries[1].fd < 0 && (left < 0 || left > Beat))
            left = Beat;
        if (poll(entries.data(), count, left) < 0 && errno != EINTR)
            return Wait::Over;
        for (size_t at = 2; at < count; ++at)
            if (entries[at].revents != 0 && !closed && !EndIsAsked())
                return Wait::Ready;
    }
}

bool HostSocket::Bind(const InternetAddress& address)
{
    if (IsInfrared())
        return false;
    // As on the device, an address whose last connections are still fading can be bound anew.
    if (stream)
        (void)SetOption(SocketOption::ReuseAddress, 1);
    const sockaddr_in host = HostAddress(address);
    return ::bind(First(), reinterpret_cast<const sockaddr*>(&host), sizeof(host)) == 0;
}

bool HostSocket::ConnectHost(int socket, const void* address, unsigned length) const
{
    if (::connect(socket, static_cast<const sockaddr*>(address), length) == 0)
        return true;
    if (errno != EINPROGRESS || Await(POLLOUT, 0) != Wait::Ready)
        return false;
    int error = 0;
    socklen_t size = sizeof(error);
    return getsockopt(socket, SOL_SOCKET, SO_ERROR, &error, &size) == 0 && error == 0;
}

bool HostSocket::Connect(const InternetAddress& address)
{
    if (IsInfrared() || (stream && connected))
        return false;
    const sockaddr_in host = HostAddress(address);
    connected = ConnectHost(First(), &host, sizeof(host));
    return connected;
}

bool HostSocket::Listen(int backlog)
{
    if (sockets.empty())
        return false;
    for (const Descriptor& host : sockets)
        if (::listen(host.Get(), backlog) != 0)
            return false;
    listening = true;
    return true;
}

std::shared_ptr<HostSocket> HostSocket::Accept(InternetAddress* peer)
{
    if (!listening)
        return {};
    std::shared_ptr<HostSocket> accepted(new HostSocket(family, true));
    accepted->closing = Descriptor(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK));
    if (!accepted->closing.IsOpen())
        return {};
    do {
        for (const Descriptor& host : sockets) {
            sockaddr_in from = {};
            socklen_t length = sizeof(from);
            Descriptor taken(
                accept4(host.Get(), reinterpret_cast<sockaddr*>(&from), &length, Kind));
            // One who has gone again meanwhile is no failure of the listener.
            if (!taken.IsOpen() && !IsToWait(errno) && errno != ECONNABORTED)
                return {};
            if (!taken.IsOpen())
                continue;
            // Nobody would ever learn of it: the connection goes with the thread or the listener.
            if (closed || EndIsAsked())
                return {};
            if (peer != nullptr && !IsInfrared())
                *peer = DeviceAddress(from);
            accepted->sockets.push_back(std::move(taken));
            accepted->connected = true;
            accepted->SendAtOnce();
            return accepted;
        }
    } while (Await(POLLIN, receiveTimeout) == Wait::Ready);
    return {};
}

int HostSocket::Send(const char* bytes, int length)
{
    int sent = 0;
    while (sent < length) {
        const ssize_t now = ::send(First(), bytes + sent, static_cast<size_t>(length - sent),
                                   MSG_NOSIGNAL | MSG_DONTWAIT);
        if (now >= 0) {
            sent += static_cast<int>(now);
            continue;
        }
        if (!IsToWait(errno))
            return -1;
        const Wait result = Await(POLLOUT, sendTimeout);
        if (result == Wait::TimedOut && sent > 0)
            return sent;
        if (result != Wait::Ready)
            return -1;
    }
    return sent;
}

int HostSocket::Receive(char* bytes, int length, bool peek)
{
    // The host tells an end where a connection was refused, and behind an error that it has told.
    if (stream && (!connected || broken))
        return -1;
    for (;;) {
        const ssize_t got = ::recv(First(), bytes, static_cast<size_t>(length),
                                   MSG_DONTWAIT | (peek ? MSG_PEEK : 0));
        // What a socket that is closed meanwhile shows is no end of the peer's.
        if (closed)
            return -1;
        if (got >= 0)
            return static_cast<int>(got);
        if (!IsToWait(errno)) {
            broken = true;
            return -1;
        }
        if (Await(POLLIN, receiveTimeout) != Wait::Ready)
            return -1;
    }
}

void HostSocket::SendAtOnce() const
{
    // The protocols of the infrared link answer each other in small pieces, which the host would
    // keep back. A path has no such delay, and no such option.
    const int on = 1;
    if (IsInfrared())
        setsockopt(First(), IPPROTO_TCP, TCP_NODELAY, &on, sizeof(on));
}

bool HostSocket::Shutdown(int how)
{
    // The host would end the listening for good.
    if (listening || how < 0 || how > 2)
        return false;
    return ::shutdown(First(), how) == 0;
}

bool HostSocket::GetLocalAddress(InternetAddress* address) const
{
    sockaddr_in host = {};
    socklen_t length = sizeof(host);
    if (IsInfrared() || getsockname(First(), reinterpret_cast<sockaddr*>(&host), &length) != 0)
        return false;
    *address = DeviceAddress(host);
    return true;
}

} // namespace tavrix::platform
