// Options of sockets, time-outs, own addresses, names of hosts and the order of bytes.

#include "DeviceThread.h"
#include "platform/testing/Testing.h"
#include "SocketPlaces.h"

#include <cstring>
#include <fstream>

using tavrix::platform::SocketOperation;
using tavrix::testing::Connection;
using tavrix::testing::Scope;
using tavrix::testing::SetSocketFault;

namespace
{

int Set(SOCKET handle, int name, DWORD value)
{
    return setsockopt(handle, SOL_SOCKET, name, reinterpret_cast<const char*>(&value),
                      sizeof(value));
}

/// How often the host's resolver was asked.
std::atomic<int> questions{0};

constexpr DWORD Refused = 0xDEADBEEF;

DWORD Get(SOCKET handle, int name)
{
    DWORD value = 0;
    int length = sizeof(value);
    if (getsockopt(handle, SOL_SOCKET, name, reinterpret_cast<char*>(&value), &length) != 0)
        return Refused;
    EXPECT_EQ(4, length);
    return value;
}

/// The address that a name stands for, in host order; 0 when it stands for none.
ULONG AddressOf(const char* name)
{
    const hostent* const host = gethostbyname(name);
    if (host == nullptr)
        return 0;
    EXPECT_EQ(AF_INET, host->h_addrtype);
    EXPECT_EQ(4, host->h_length);
    EXPECT_STREQ(name, host->h_name);
    EXPECT_EQ(nullptr, host->h_aliases[0]);
    EXPECT_EQ(nullptr, host->h_addr_list[1]);
    ULONG address = 0;
    std::memcpy(&address, host->h_addr_list[0], 4);
    return ntohl(address);
}

} // namespace

extern "C" {

int __real_getaddrinfo(const char* name, const char* service, const void* hints, void* found);

int __wrap_getaddrinfo(const char* name, const char* service, const void* hints, void* found)
{
    ++questions;
    return __real_getaddrinfo(name, service, hints, found);
}

} // extern "C"

TEST(SocketOptions, ComeBackAsTheyWereSet)
{
    OwnedSocket handle;
    for (const int name : {SO_KEEPALIVE, SO_REUSEADDR}) {
        EXPECT_EQ(0u, Get(handle, name)) << name;
        EXPECT_EQ(0, Set(handle, name, 1));
        EXPECT_EQ(1u, Get(handle, name)) << name;
        EXPECT_EQ(0, Set(handle, name, 0));
        EXPECT_EQ(0u, Get(handle, name)) << name;
    }
    for (const int name : {SO_SNDTIMEO, SO_RCVTIMEO}) {
        EXPECT_EQ(0u, Get(handle, name)) << name;
        EXPECT_EQ(0, Set(handle, name, 123456));
        EXPECT_EQ(123456u, Get(handle, name)) << name;
    }
    EXPECT_EQ(0, Set(handle, SO_SNDTIMEO, 5));
    EXPECT_EQ(123456u, Get(handle, SO_RCVTIMEO)) << "the two are no one";
    for (const int name : {SO_SNDBUF, SO_RCVBUF}) {
        EXPECT_EQ(0, Set(handle, name, 20000));
        EXPECT_EQ(20000u, Get(handle, name)) << name;
    }
    // On or off in the low half, seconds in the high one.
    EXPECT_EQ(0u, Get(handle, SO_LINGER) & 0xFFFF);
    EXPECT_EQ(0, Set(handle, SO_LINGER, 1 | 7 << 16));
    EXPECT_EQ(1u | 7u << 16, Get(handle, SO_LINGER));
    EXPECT_EQ(DWORD{SOCK_STREAM}, Get(handle, SO_TYPE));
    EXPECT_EQ(DWORD{SOCK_DGRAM}, Get(OwnedSocket(SOCK_DGRAM), SO_TYPE));
}

TEST(SocketOptions, ThatAreUnknownOrTooShortAreRefused)
{
    OwnedSocket handle;
    char value[4] = {1, 0, 0, 0};
    int length = 4;
    EXPECT_EQ(SOCKET_ERROR, Set(handle, 0x7777, 1));
    EXPECT_EQ(Refused, Get(handle, 0x7777));
    EXPECT_EQ(SOCKET_ERROR, Set(handle, SO_TYPE, SOCK_DGRAM)) << "only to be asked for";
    EXPECT_EQ(SOCKET_ERROR, setsockopt(handle, 255, 16, value, 4)) << "no infrared here";
    EXPECT_EQ(SOCKET_ERROR, getsockopt(handle, 255, 16, value, &length));
    EXPECT_EQ(SOCKET_ERROR, setsockopt(handle, SOL_SOCKET, SO_KEEPALIVE, value, 3));
    EXPECT_EQ(SOCKET_ERROR, setsockopt(handle, SOL_SOCKET, SO_KEEPALIVE, nullptr, 4));
    EXPECT_EQ(SOCKET_ERROR, getsockopt(handle, SOL_SOCKET, SO_KEEPALIVE, nullptr, &length));
    EXPECT_EQ(SOCKET_ERROR, getsockopt(handle, SOL_SOCKET, SO_KEEPALIVE, value, nullptr));
    length = 3;
    EXPECT_EQ(SOCKET_ERROR, getsockopt(handle, SOL_SOCKET, SO_KEEPALIVE, value, &length));
    EXPECT_EQ(0u, Get(handle, SO_KEEPALIVE));
}

TEST(SocketOptions, LingeringForNoTimeResetsTheConnection)
{
    OwnPair pair;
    EXPECT_EQ(0, Set(pair.handle, SO_LINGER, 1));
    EXPECT_TRUE(pair.peer.Write("unread"));
    EXPECT_EQ(0, closesocket(pair.handle));
    EXPECT_TRUE(Eventually([&pair] { return !pair.peer.Write("x"); }));
}

TEST(SocketOptions, AReceiveTimeOutEndsTheWaitForData)
{
    OwnPair pair;
    ASSERT_EQ(0, Set(pair.handle, SO_RCVTIMEO, 60));
    char text[4] = {};
    const DWORD start = GetTickCount();
    EXPECT_EQ(SOCKET_ERROR, recv(pair.handle, text, 4, 0));
    EXPECT_GE(GetTickCount() - start, 59u);
    EXPECT_TRUE(pair.peer.Write("a"));
    ASSERT_EQ(0, Set(pair.handle, SO_RCVTIMEO, 0));
    EXPECT_EQ(1, recv(pair.handle, text, 4, 0)) << "the connection is none the worse";
}

TEST(SocketOptions, AReceiveTimeOutEndsTheWaitForAConnection)
{
    OwnListener listener;
    ASSERT_EQ(0, Set(listener.handle, SO_RCVTIMEO, 60));
    const DWORD start = GetTickCount();
    EXPECT_EQ(INVALID_SOCKET, accept(listener.handle, nullptr, nullptr));
    EXPECT_GE(GetTickCount() - start, 59u);
    const Connection client = listener.Client();
    EXPECT_NE(INVALID_SOCKET, OwnedSocket(accept(listener.handle, nullptr, nullptr)));
}

TEST(SocketOptions, ASendTimeOutTellsWhatWasSentAndFailsWhereNothingWas)
{
    OwnPair pair;
    ASSERT_EQ(0, Set(pair.handle, SO_SNDTIMEO, 60));
    const std::string much(32 << 20, 'x');
    const int length = static_cast<int>(much.size());
    const int first = send(pair.handle, much.data(), length, 0);
    EXPECT_GT(first, 0);
    EXPECT_LT(first, length);
    // The host may find some more room before there is none.
    size_t all = static_cast<size_t>(first);
    DWORD start = 0;
    for (int sent = first; sent != SOCKET_ERROR;) {
        start = GetTickCount();
        sent = send(pair.handle, much.data(), length, 0);
        all += sent > 0 ? static_cast<size_t>(sent) : 0;
    }
    EXPECT_GE(GetTickCount() - start, 59u);
    EXPECT_EQ(all, pair.peer.ReadExactly(all).size());
}

TEST(SocketNames, ASocketKnowsItsOwnAddress)
{
    OwnedSocket handle;
    ASSERT_EQ(0, BindAt(handle, Own(), 0));
    const sockaddr_in own = NameOf(handle);
    EXPECT_EQ(AF_INET, own.sin_family);
    EXPECT_EQ(Own(), ntohl(own.sin_addr.S_un.S_addr));
    EXPECT_NE(0, own.sin_port);
    EXPECT_EQ(std::string(8, '\0'), std::string(own.sin_zero, 8));
    sockaddr_in other = {};
    int length = sizeof(other);
    EXPECT_EQ(SOCKET_ERROR, getsockname(handle, nullptr, &length));
    EXPECT_EQ(SOCKET_ERROR, getsockname(handle, reinterpret_cast<sockaddr*>(&other), nullptr));
    length = 15;
    EXPECT_EQ(SOCKET_ERROR, getsockname(handle, reinterpret_cast<sockaddr*>(&other), &length));
    EXPECT_EQ(0, other.sin_family);
}

TEST(SocketNames, AConnectedSocketGotAnAddressOfItsOwn)
{
    OwnListener listener;
    OwnedSocket client;
    ASSERT_EQ(0, ConnectAt(client, Own(), listener.port));
    EXPECT_EQ(127u, ntohl(NameOf(client).sin_addr.S_un.S_addr) >> 24);
    EXPECT_NE(0, PortOf(client));
    EXPECT_NE(listener.port, PortOf(client));
}

TEST(HostNames, StandForAddresses)
{
    EXPECT_EQ(0x7F000001u, AddressOf("localhost"));
    EXPECT_EQ(0x7F000001u, AddressOf("127.0.0.1"));
    EXPECT_EQ(0x7F010203u, AddressOf("127.1.2.3"));
}

TEST(HostNames, ThatNoHostCanHaveStandForNothingAndNobodyIsAsked)
{
    EXPECT_NE(nullptr, gethostbyname("localhost"));
    const int before = questions;
    EXPECT_NE(0, before);
    for (const char* name : {"", "host:8080", "127.0.0.1:80", "local host", "local/host", "[::1]",
                             "host\n", "h\x82\xA0st", "*", "user@localhost"})
        EXPECT_EQ(nullptr, gethostbyname(name)) << name;
    EXPECT_EQ(nullptr, gethostbyname(nullptr));
    EXPECT_EQ(before, questions);
}

TEST(HostNames, AreNotFoundWhereATestLetsItFail)
{
    const Scope scope;
    SetSocketFault(
        [](SocketOperation operation, int*) { return operation == SocketOperation::Resolve; });
    EXPECT_EQ(nullptr, gethostbyname("localhost"));
}

TEST(HostNames, EachThreadHasARecordOfItsOwn)
{
    const hostent* const mine = gethostbyname("127.1.2.3");
    ASSERT_NE(nullptr, mine);
    DeviceThread other([mine] {
        const hostent* const its = gethostbyname("127.4.5.6");
        return its != nullptr && its != mine ? DWORD{1} : DWORD{0};
    });
    EXPECT_EQ(1u, other.ExitCode());
    EXPECT_STREQ("127.1.2.3", mine->h_name);
    EXPECT_EQ(0, std::memcmp(mine->h_addr_list[0], "\x7F\1\2\3", 4));
}

TEST(HostNames, ThisMachineHasOne)
{
    std::string expected;
    std::getline(std::ifstream("/proc/sys/kernel/hostname"), expected);
    char name[256] = {};
    EXPECT_EQ(0, gethostname(name, 256));
    EXPECT_EQ(expected, name);
    EXPECT_EQ(SOCKET_ERROR, gethostname(name, 1));
    EXPECT_EQ(SOCKET_ERROR, gethostname(name, 0));
    EXPECT_EQ(SOCKET_ERROR, gethostname(name, -1));
    EXPECT_EQ(SOCKET_ERROR, gethostname(static_cast<char*>(nullptr), 8));
}

TEST(NetworkOrder, IsMostSignificantByteFirst)
{
    const ULONG wide = htonl(0x01020304);
    EXPECT_EQ(0, std::memcmp(&wide, "\1\2\3\4", 4));
    EXPECT_EQ(0x01020304u, ntohl(wide));
    const USHORT narrow = htons(0x0102);
    EXPECT_EQ(0, std::memcmp(&narrow, "\1\2", 2));
    EXPECT_EQ(0x0102, ntohs(narrow));
}

TEST(SocketsStart, TellsTheVersion)
{
    WSADATA data;
    std::memset(&data, 0xFF, sizeof(data));
    EXPECT_EQ(0, WSAStartup(0x0101, &data));
    EXPECT_EQ(0x0101, data.wVersion);
    EXPECT_EQ(0x0101, data.wHighVersion);
    EXPECT_EQ(0, data.szDescription[0]);
    EXPECT_NE(0, WSAStartup(0x0101, nullptr));
    EXPECT_EQ(0, WSACleanup());
}
