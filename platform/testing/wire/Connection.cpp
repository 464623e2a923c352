#include "platform/testing/Wire.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <cstring>
#include <utility>

namespace tavrix::testing
{

namespace
{

constexpr int Beat = 20; // milliseconds between two looks at `stop`

Connection ConnectWith(int family, const void* peer, socklen_t length)
{
    const int descriptor = socket(family, SOCK_STREAM | SOCK_CLOEXEC, 0);
    Connection connection(descriptor);
    if (connect(descriptor, static_cast<const sockaddr*>(peer), length) != 0)
        connection.Close();
    return connection;
}

} // namespace

Connection::Connection(int theDescriptor, const std::atomic<bool>* theStop)
    : descriptor(theDescriptor), stop(theStop)
{
}

Connection::Connection(Connection&& other) noexcept
    : descriptor(std::exchange(other.descriptor, -1)), stop(other.stop)
{
}

Connection& Connection::operator=(Connection&& other) noexcept
{
    Close();
    descriptor = std::exchange(other.descriptor, -1);
    stop = other.stop;
    return *this;
}

bool Connection::Await(short events)
{
    while (stop == nullptr || !*stop) {
        pollfd entry = {descriptor, events, 0};
        if (poll(&entry, 1, Beat) != 0)
            return true;
    }
    return false;
}

std::string Connection::Read(size_t most)
{
    std::string bytes(most, '\0');
    if (!Await(POLLIN))
        return {};
    const ssize_t got = recv(descriptor, bytes.data(), most, 0);
    bytes.resize(got > 0 ? static_cast<size_t>(got) : 0);
    return bytes;
}

std::string Connection::ReadExactly(size_t count)
{
    std::string bytes;
    while (bytes.size() < count) {
        const std::string more = Read(count - bytes.size());
        if (more.empty())
            break;
        bytes += more;
    }
    return bytes;
}

std::string Connection::ReadUntil(std::string_view ending)
{
    std::string bytes;
    while (!bytes.ends_with(ending)) {
        const std::string more = Read(1);
        if (more.empty())
            break;
        bytes += more;
    }
    return bytes;
}

std::string Connection::ReadAll()
{
    std::string bytes;
    for (;;) {
        const std::string more = Read(65536);
        if (more.empty())
            return bytes;
        bytes += more;
    }
}

bool Connection::Write(std::string_view bytes)
{
    while (!bytes.empty()) {
        if (!Await(POLLOUT))
            return false;
        const ssize_t sent =
            send(descriptor, bytes.data(), bytes.size(), MSG_NOSIGNAL | MSG_DONTWAIT);
        if (sent <= 0)
            return false;
        bytes.remove_prefix(static_cast<size_t>(sent));
    }
    return true;
}

bool Connection::Pause(unsigned milliseconds)
{
    for (unsigned passed = 0; passed < milliseconds; passed += Beat) {
        if (stop != nullptr && *stop)
            return false;
        std::this_thread::sleep_for(std::chrono::milliseconds(Beat));
    }
    return true;
}

void Connection::EndWriting()
{
    shutdown(descriptor, SHUT_WR);
}

void Connection::Close()
{
    if (descriptor >= 0)
        close(std::exchange(descriptor, -1));
}

void Connection::Reset()
{
    const linger atOnce = {1, 0};
    setsockopt(descriptor, SOL_SOCKET, SO_LINGER, &atOnce, sizeof(atOnce));
    Close();
}

Connection ConnectTo(const std::string& address, unsigned short port)
{
    sockaddr_in peer = {};
    peer.sin_family = AF_INET;
    peer.sin_port = htons(port);
    inet_pton(AF_INET, address.c_str(), &peer.sin_addr);
    return ConnectWith(AF_INET, &peer, sizeof(peer));
}

Connection ConnectToPath(const std::string& path)
{
    sockaddr_un peer = {};
    peer.sun_family = AF_UNIX;
    std::strncpy(peer.sun_path, path.c_str(), sizeof(peer.sun_path) - 1);
    return ConnectWith(AF_UNIX, &peer, sizeof(peer));
}

} // namespace tavrix::testing
