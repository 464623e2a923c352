// Names of hosts, and the network's order of bytes.

#include "platform/core/SocketCalls.h"
#include "platform/core/ThreadEnding.h"

#include <unistd.h>

#include <cstring>

using namespace tavrix::platform;

namespace
{

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

int WINAPI gethostname(char* name, int length)
{
    if (name == nullptr || length <= 0)
        return SOCKET_ERROR;
    return gethostname(name, static_cast<size_t>(length));
}

hostent* WINAPI gethostbyname(const char* name)
{
    DWORD address = 0;
    const bool found = name != nullptr && !IsSocketFaulty(SocketOperation::Resolve) &&
                       ResolveHostName(name, &address);
    ThreadEnding::EndIfAsked();
    if (!found)
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
