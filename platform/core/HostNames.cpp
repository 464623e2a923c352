// Host names and their addresses, by the host's resolver.

#include "platform/core/HostSocket.h"

#include <arpa/inet.h>
#include <netdb.h>
#include <netinet/in.h>
#include <sys/socket.h>

#include <cstring>

namespace tavrix::platform
{

bool ResolveHostName(const char* name, DWORD* address)
{
    // With "host:80", say, the resolver would go and ask the network in vain.
    static const char* const allowed =
        "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789.-_";
    if (name[0] == 0 || name[std::strspn(name, allowed)] != 0)
        return false;
    addrinfo wanted = {};
    wanted.ai_family = AF_INET;
    wanted.ai_socktype = SOCK_STREAM;
    addrinfo* found = nullptr;
    if (getaddrinfo(name, nullptr, &wanted, &found) != 0 || found == nullptr)
        return false;
    *address = ntohl(reinterpret_cast<const sockaddr_in*>(found->ai_addr)->sin_addr.s_addr);
    freeaddrinfo(found);
    return true;
}

} // namespace tavrix::platform
