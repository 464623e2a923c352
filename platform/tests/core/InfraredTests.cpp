// The infrared family over what stands for it: each form of TAVRIX_IR, and the device in range.

#include "platform/core/InfraredPlace.h"
#include "platform/core/TestHooks.h"
#include "platform/testing/Testing.h"
#include "SocketPlaces.h"

#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>

using tavrix::platform::InfraredPlaces;
using tavrix::platform::ReadInfraredPlaces;
using tavrix::testing::Connection;
using tavrix::testing::ConnectTo;
using tavrix::testing::ConnectToPath;
using tavrix::testing::FreshFolder;
using tavrix::testing::OwnAddress;

namespace
{

constexpr int InfraredFamily = 22;

/// The setting while it lives.
struct Setting {
    explicit Setting(const std::string& text) { setenv("TAVRIX_IR", text.c_str(), 1); }
    ~Setting() { unsetenv("TAVRIX_IR"); }
};

std::string OwnPlaceText()
{
    return "tcp:" + OwnAddress() + ":650";
}

/// An address of a service, byte by byte as the device has it.
struct Address {
    explicit Address(const std::string& service)
    {
        bytes[0] = InfraredFamily;
        std::memcpy(bytes + 6, service.c_str(), std::min<size_t>(service.size(), 25));
    }
    const sockaddr* Get() const { return reinterpret_cast<const sockaddr*>(bytes); }
    alignas(4) char bytes[32] = {};
};

int BindTo(SOCKET handle, const std::string& service = "OBEX")
{
    return bind(handle, Address(service).Get(), 32);
}

int ConnectTo(SOCKET handle, const std::string& service = "OBEX")
{
    return connect(handle, Address(service).Get(), 32);
}

struct InfraredSocket : OwnedSocket {
    InfraredSocket() : OwnedSocket(socket(InfraredFamily, SOCK_STREAM, 0)) {}
};

struct Devices {
    ULONG count = 0;
    unsigned char id[4] = {};
    char name[22] = {};
    char reserved[2] = {};
};

/// How many devices are in range; -1 when that cannot be told.
int Ask(SOCKET handle, Devices* devices)
{
    int length = sizeof(*devices);
    if (getsockopt(handle, 255, 16, reinterpret_cast<char*>(devices), &length) != 0)
        return -1;
    EXPECT_EQ(32, length);
    return static_cast<int>(devices->count);
}

/// Whether a service can be had there, and reaches a client.
bool Serves(const std::string& setting)
{
    const Setting place(setting);
    const InfraredSocket listener;
    if (BindTo(listener) != 0 || listen(listener, 2) != 0)
        return false;
    const InfraredSocket client;
    if (ConnectTo(client) != 0)
        return false;
    const OwnedSocket accepted(accept(listener, nullptr, nullptr));
    char text[2] = {};
    return send(client, "x", 1, 0) == 1 && recv(accepted, text, 1, 0) == 1 && text[0] == 'x';
}

/// A port of this machine to itself that is free just now.
std::string FreePort(ULONG address)
{
    const OwnedSocket probe;
    EXPECT_EQ(0, BindAt(probe, address, 0));
    return std::to_string(PortOf(probe));
}

} // namespace

TEST(InfraredPlaces, TheSettingIsReadInEachForm)
{
    struct Case {
        const char* setting;
        std::string places;
    };
    const Case cases[] = {
        {nullptr, "127.0.0.1:650 ::1:650 | 127.0.0.1:10650 ::1:10650 | "},
        {"tcp", "127.0.0.1:650 ::1:650 | 127.0.0.1:10650 ::1:10650 | "},
        {"tcp:7000", "127.0.0.1:7000 ::1:7000 | "},
        {"tcp:65535", "127.0.0.1:65535 ::1:65535 | "},
        {"tcp:127.1.2.3:650", "127.1.2.3:650 | "},
        {"tcp:[::1]:650", "::1:650 | "},
        {"unix:/tmp/x", "/tmp/x | "},
        {"unix:relative", "relative | "},
        {"", ""},
        {"tcp:", ""},
        {"tcp:0", ""},
        {"tcp:65536", ""},
        {"tcp:-1", ""},
        {"tcp:7000x", ""},
        {"tcp: 7000", ""},
        {"tcp::650", ""},
        {"tcp:[]:650", ""},
        {"tcp:127.0.0.1:", ""},
        {"unix:", ""},
        {"TCP", ""},
        {"tcpx", ""},
        {"irda", ""},
    };
    for (const Case& entry : cases) {
        std::string text;
        for (const auto& place : ReadInfraredPlaces(entry.setting)) {
            for (const auto& endpoint : place)
                text +=
                    (endpoint.path.empty() ? endpoint.address + ":" + std::to_string(endpoint.port)
                                           : endpoint.path) +
                    " ";
            text += "| ";
        }
        EXPECT_EQ(entry.places, text) << (entry.setting != nullptr ? entry.setting : "none");
    }
}

TEST(Infrared, AServiceReachesItsClientsInEveryForm)
{
    EXPECT_TRUE(Serves(OwnPlaceText()));
    EXPECT_TRUE(Serves("tcp:" + FreePort(0x7F000001)));
    EXPECT_TRUE(Serves("unix:" + FreshFolder() + "/infrared"));
    if (std::filesystem::exists("/proc/net/if_inet6")) {
        EXPECT_TRUE(Serves("tcp:[::1]:" + FreePort(0x7F000001)));
    }
}

TEST(Infrared, NonsenseLeavesTheDeviceWithoutIt)
{
    for (const char* setting : {"", "irda", "tcp:0", "tcp:host:650", "tcp:1.2.3:650",
                                "unix:", "unix:/no/such/folder/x"}) {
        const Setting place(setting);
        const InfraredSocket handle;
        ASSERT_NE(INVALID_SOCKET, handle) << "the family is known all the same";
        EXPECT_EQ(SOCKET_ERROR, BindTo(handle)) << setting;
        EXPECT_EQ(SOCKET_ERROR, listen(handle, 2));
        EXPECT_EQ(SOCKET_ERROR, ConnectTo(InfraredSocket())) << setting;
    }
}

TEST(Infrared, OnlyTheOneServiceHasAPlace)
{
    const Setting place(OwnPlaceText());
    for (const char* service : {"", "OBE", "obex", "OBEX ", "OBEX:IrXfer"})
        EXPECT_EQ(SOCKET_ERROR, BindTo(InfraredSocket(), service)) << service;
    const InfraredSocket handle;
    EXPECT_EQ(SOCKET_ERROR, bind(handle, Address("OBEX").Get(), 31));
    EXPECT_EQ(SOCKET_ERROR, bind(handle, nullptr, 32));
    EXPECT_EQ(SOCKET_ERROR, BindAt(handle, Own(), 0)) << "an internet address";
    EXPECT_EQ(SOCKET_ERROR, BindTo(OwnedSocket())) << "an internet socket";
    EXPECT_EQ(0, BindTo(handle));
    EXPECT_EQ(SOCKET_ERROR, BindTo(handle)) << "once is enough";
}

TEST(Infrared, OnePlaceHasOneListener)
{
    for (const std::string& setting : {OwnPlaceText(), "unix:" + FreshFolder() + "/infrared"}) {
        const Setting place(setting);
        {
            const InfraredSocket first;
            ASSERT_EQ(0, BindTo(first));
            ASSERT_EQ(0, listen(first, 2));
            EXPECT_EQ(SOCKET_ERROR, BindTo(InfraredSocket())) << setting;
            EXPECT_EQ(0, ConnectTo(InfraredSocket())) << "the first one still listens";
        }
        EXPECT_EQ(0, BindTo(InfraredSocket())) << setting;
    }
}

TEST(Infrared, OneWhoComesLateIsNoClientOfTheOneWhoListens)
{
    const Setting place("unix:" + FreshFolder() + "/infrared");
    const InfraredSocket listener;
    ASSERT_EQ(0, BindTo(listener));
    ASSERT_EQ(0, listen(listener, 2));
    EXPECT_EQ(SOCKET_ERROR, BindTo(InfraredSocket()));
    const DWORD milliseconds = 50;
    ASSERT_EQ(0, setsockopt(listener, SOL_SOCKET, SO_RCVTIMEO,
                            reinterpret_cast<const char*>(&milliseconds), sizeof(milliseconds)));
    EXPECT_EQ(INVALID_SOCKET, accept(listener, nullptr, nullptr));
}

TEST(Infrared, APathIsThisUsersAloneAndGoesWithItsListener)
{
    namespace fs = std::filesystem;
    const std::string path = FreshFolder() + "/infrared";
    const Setting place("unix:" + path);
    {
        const InfraredSocket listener;
        ASSERT_EQ(0, BindTo(listener));
        EXPECT_TRUE(fs::is_socket(path));
        EXPECT_EQ(fs::perms::owner_read | fs::perms::owner_write, fs::status(path).permissions());
        ASSERT_EQ(0, listen(listener, 2));
        EXPECT_TRUE(ConnectToPath(path).IsOpen());
    }
    EXPECT_FALSE(fs::exists(path));
}

TEST(Infrared, AFileThatADeadListenerLeftIsReplaced)
{
    namespace fs = std::filesystem;
    const std::string folder = FreshFolder();
    const std::string stale = folder + "/stale";
    {
        const Setting place("unix:" + folder + "/first");
        const InfraredSocket listener;
        ASSERT_EQ(0, BindTo(listener));
        ASSERT_EQ(0, listen(listener, 2));
        fs::create_hard_link(folder + "/first", stale);
    }
    ASSERT_TRUE(fs::is_socket(stale));
    const Setting place("unix:" + stale);
    EXPECT_EQ(SOCKET_ERROR, ConnectTo(InfraredSocket())) << "nobody is behind it";
    EXPECT_TRUE(Serves("unix:" + stale));
}

TEST(Infrared, AFileThatIsNoSocketIsLeftAlone)
{
    const std::string path = FreshFolder() + "/file";
    std::ofstream(path) << "text";
    const Setting place("unix:" + path);
    EXPECT_EQ(SOCKET_ERROR, BindTo(InfraredSocket()));
    std::string text;
    std::ifstream(path) >> text;
    EXPECT_EQ("text", text);
}

TEST(Infrared, APathThatIsTooLongIsRefused)
{
    const std::string folder = FreshFolder();
    const Setting place("unix:" + folder + "/" + std::string(200, 'x'));
    EXPECT_EQ(SOCKET_ERROR, BindTo(InfraredSocket()));
    EXPECT_EQ(SOCKET_ERROR, ConnectTo(InfraredSocket()));
    EXPECT_TRUE(std::filesystem::is_empty(folder));
}

TEST(Infrared, TheDeviceInRangeIsThePeerOfTheConnection)
{
    const Setting place(OwnPlaceText());
    const InfraredSocket listener;
    Devices devices;
    EXPECT_EQ(0, Ask(listener, &devices));
    ASSERT_EQ(0, BindTo(listener));
    ASSERT_EQ(0, listen(listener, 2));
    EXPECT_EQ(0, Ask(listener, &devices));
    const InfraredSocket client;
    EXPECT_EQ(0, Ask(client, &devices));
    ASSERT_EQ(0, ConnectTo(client));
    ASSERT_EQ(1, Ask(client, &devices));
    EXPECT_EQ(OwnAddress(), devices.name);
    EXPECT_NE(0, std::memcmp(devices.id, "\0\0\0\0", 4));
    const OwnedSocket accepted(accept(listener, nullptr, nullptr));
    ASSERT_EQ(1, Ask(accepted, &devices));
    EXPECT_EQ(0, std::strncmp("127.", devices.name, 4));
    EXPECT_EQ(0, Ask(listener, &devices)) << "the listener is in nobody's range";
}

TEST(Infrared, APeerOnAPathHasNoName)
{
    const std::string path = FreshFolder() + "/infrared";
    const Setting place("unix:" + path);
    const InfraredSocket listener;
    ASSERT_EQ(0, BindTo(listener));
    ASSERT_EQ(0, listen(listener, 2));
    const Connection client = ConnectToPath(path);
    const OwnedSocket accepted(accept(listener, nullptr, nullptr));
    Devices devices;
    ASSERT_EQ(1, Ask(accepted, &devices));
    EXPECT_STREQ("", devices.name);
}

TEST(Infrared, TheQuestionForDevicesNeedsRoomForOne)
{
    const InfraredSocket handle;
    char bytes[32] = {};
    int length = 31;
    EXPECT_EQ(SOCKET_ERROR, getsockopt(handle, 255, 16, bytes, &length));
    length = 32;
    EXPECT_EQ(SOCKET_ERROR, getsockopt(handle, 255, 17, bytes, &length));
    EXPECT_EQ(0, getsockopt(handle, 255, 16, bytes, &length));
}

TEST(Infrared, HasNoAddressOfTheInternets)
{
    const Setting place(OwnPlaceText());
    const InfraredSocket listener;
    ASSERT_EQ(0, BindTo(listener));
    ASSERT_EQ(0, listen(listener, 2));
    EXPECT_EQ(0, NameOf(listener).sin_family);
    const Connection client = ConnectTo(OwnAddress(), 650);
    sockaddr_in peer = {};
    int length = sizeof(peer);
    const OwnedSocket accepted(accept(listener, reinterpret_cast<sockaddr*>(&peer), &length));
    EXPECT_NE(INVALID_SOCKET, accepted);
    EXPECT_EQ(0, peer.sin_family) << "the record is left alone";
}

TEST(Infrared, NothingIsLeftOfSocketsThatNeverGotAPlace)
{
    const tavrix::platform::Holdings before = tavrix::platform::CountHoldings();
    {
        const Setting place("nonsense");
        const InfraredSocket handle;
        char text[2] = {};
        EXPECT_EQ(SOCKET_ERROR, send(handle, text, 1, 0));
        EXPECT_EQ(SOCKET_ERROR, recv(handle, text, 1, 0));
        EXPECT_EQ(SOCKET_ERROR, shutdown(handle, 2));
        EXPECT_EQ(INVALID_SOCKET, accept(handle, nullptr, nullptr));
    }
    EXPECT_TRUE(tavrix::platform::CountHoldings() == before);
}
