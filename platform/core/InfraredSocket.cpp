// The infrared calls of a socket, over the transport that stands for the infrared link.

#include "platform/core/HostSocket.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>

namespace tavrix::platform
{

namespace
{

/// An endpoint as the host wants it. `length` is 0 for one that it cannot have.
struct HostEndpoint {
    sockaddr_storage address = {};
    socklen_t length = 0;

    int Family() const { return address.ss_family; }
    const sockaddr* Get() const { return reinterpret_cast<const sockaddr*>(&address); }
};

HostEndpoint ReadPath(const std::string& path)
{
    HostEndpoint host;
    auto* const local = reinterpret_cast<sockaddr_un*>(&host.address);
    if (path.size() >= sizeof(local->sun_path))
        return host;
    local->sun_family = AF_UNIX;
    std::memcpy(local->sun_path, path.c_str(), path.size() + 1);
    host.length = sizeof(*local);
    return host;
}

HostEndpoint ReadEndpoint(const InfraredEndpoint& endpoint)
{
    if (!endpoint.path.empty())
        return ReadPath(endpoint.path);
    HostEndpoint host;
    auto* const internet = reinterpret_cast<sockaddr_in*>(&host.address);
    if (inet_pton(AF_INET, endpoint.address.c_str(), &internet->sin_addr) == 1) {
        internet->sin_family = AF_INET;
        internet->sin_port = htons(endpoint.port);
        host.length = sizeof(*internet);
        return host;
    }
    auto* const newer = reinterpret_cast<sockaddr_in6*>(&host.address);
    if (inet_pton(AF_INET6, endpoint.address.c_str(), &newer->sin6_addr) == 1) {
        newer->sin6_family = AF_INET6;
        newer->sin6_port = htons(endpoint.port);
        host.length = sizeof(*newer);
    }
    return host;
}

Descriptor OpenFor(const HostEndpoint& endpoint, int kind = SOCK_STREAM)
{
    if (endpoint.length == 0)
        return Descriptor();
    return Descriptor(::socket(endpoint.Family(), kind | SOCK_CLOEXEC | SOCK_NONBLOCK, 0));
}

/// A listener that has died leaves its file behind, which would be in the way for ever.
void RemoveStaleFile(const HostEndpoint& endpoint, const std::string& path)
{
    struct stat found = {};
    if (lstat(path.c_str(), &found) != 0 || !S_ISSOCK(found.st_mode))
        return;
    // Asked as no stream, so that one who does listen takes it for no client.
    const Descriptor probe = OpenFor(endpoint, SOCK_DGRAM);
    if (::connect(probe.Get(), endpoint.Get(), endpoint.length) != 0 && errno == ECONNREFUSED)
        unlink(path.c_str());
}

InfraredPlaces Places(std::string_view service)
{
    if (service != InfraredService)
        return {};
    return ReadInfraredPlaces(std::getenv("TAVRIX_IR"));
}

} // namespace

bool HostSocket::BindPlace(const InfraredEndpoint& endpoint)
{
    const HostEndpoint host = ReadEndpoint(endpoint);
    if (!endpoint.path.empty() && host.length != 0)
        RemoveStaleFile(host, endpoint.path);
    Descriptor opened = OpenFor(host);
    if (!opened.IsOpen())
        return false;
    // The last exchange's connection is still fading when the next one is waited for.
    const int on = 1;
    setsockopt(opened.Get(), SOL_SOCKET, SO_REUSEADDR, &on, sizeof(on));
    if (::bind(opened.Get(), host.Get(), host.length) != 0)
        return false;
    if (!endpoint.path.empty()) {
        // For this user alone, like the port's loopback address for this machine alone.
        chmod(endpoint.path.c_str(), S_IRUSR | S_IWUSR);
        boundPath = endpoint.path;
    }
    sockets.push_back(std::move(opened));
    return true;
}

bool HostSocket::BindService(std::string_view service)
{
    if (!IsInfrared() || !sockets.empty())
        return false;
    for (const std::vector<InfraredEndpoint>& place : Places(service)) {
        errno = 0;
        if (!BindPlace(place.front())) {
            // The next place is for those who may not have this one, not for those who come late.
            if (errno == EACCES)
                continue;
            return false;
        }
        for (size_t at = 1; at < place.size(); ++at)
            (void)BindPlace(place[at]);
        return true;
    }
    return false;
}

bool HostSocket::ConnectService(std::string_view service)
{
    if (!IsInfrared() || !sockets.empty())
        return false;
    for (const std::vector<InfraredEndpoint>& place : Places(service))
        for (const InfraredEndpoint& endpoint : place) {
            const HostEndpoint host = ReadEndpoint(endpoint);
            Descriptor opened = OpenFor(host);
            if (!opened.IsOpen())
                continue;
            sockets.push_back(std::move(opened));
            connected = ConnectHost(First(), host.Get(), host.length);
            if (connected) {
                SendAtOnce();
                return true;
            }
            sockets.clear();
        }
    return false;
}

bool HostSocket::GetPeerText(std::string* text) const
{
    sockaddr_storage host = {};
    socklen_t length = sizeof(host);
    if (!connected || getpeername(First(), reinterpret_cast<sockaddr*>(&host), &length) != 0)
        return false;
    char words[INET6_ADDRSTRLEN] = "";
    if (host.ss_family == AF_INET)
        inet_ntop(AF_INET, &reinterpret_cast<const sockaddr_in*>(&host)->sin_addr, words,
                  sizeof(words));
    else if (host.ss_family == AF_INET6)
        inet_ntop(AF_INET6, &reinterpret_cast<const sockaddr_in6*>(&host)->sin6_addr, words,
                  sizeof(words));
    *text = words;
    return true;
}

} // namespace tavrix::platform
