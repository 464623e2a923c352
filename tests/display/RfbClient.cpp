#include "RfbClient.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace
{

enum : uint8_t { SetPixelFormat = 0, SetEncodings = 2, AskUpdate = 3, PointerEvent = 5 };
enum : uint8_t { Update = 0, ColorMap = 1, Bell = 2, CutText = 3 };

[[noreturn]] void Fail(const std::string& what)
{
    std::fprintf(stderr, "rfb-client: %s\n", what.c_str());
    std::exit(1);
}

void Append(std::vector<uint8_t>& bytes, uint32_t value, int count)
{
    for (int shift = 8 * (count - 1); shift >= 0; shift -= 8)
        bytes.push_back(static_cast<uint8_t>(value >> shift));
}

} // namespace

RfbClient::RfbClient(int port)
{
    sockaddr_in address = {};
    address.sin_family = AF_INET;
    address.sin_port = htons(static_cast<uint16_t>(port));
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socket = ::socket(AF_INET, SOCK_STREAM, 0);
    if (connect(socket, reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0)
        Fail("no server at port " + std::to_string(port));
    Greet();
    AskForPixels(false);
}

RfbClient::~RfbClient()
{
    close(socket);
}

bool RfbClient::Read(void* to, size_t count)
{
    auto* at = static_cast<uint8_t*>(to);
    while (count > 0 && !closed) {
        const ssize_t got = recv(socket, at, count, 0);
        if (got <= 0)
            closed = true;
        else {
            at += got;
            count -= static_cast<size_t>(got);
        }
    }
    return !closed;
}

void RfbClient::Write(const std::vector<uint8_t>& bytes)
{
    if (send(socket, bytes.data(), bytes.size(), MSG_NOSIGNAL) !=
        static_cast<ssize_t>(bytes.size()))
        closed = true;
}

uint32_t RfbClient::Number(int bytes)
{
    uint8_t read[4] = {};
    uint32_t value = 0;
    if (Read(read, static_cast<size_t>(bytes)))
        for (int i = 0; i < bytes; ++i)
            value = value << 8 | read[i];
    return value;
}

// The version, no security, one's own pixel format and the raw encoding alone.
void RfbClient::Greet()
{
    constexpr size_t VersionLength = 12;
    constexpr uint8_t NoSecurity = 1;
    char version[VersionLength + 1] = {};
    if (!Read(version, VersionLength) || std::memcmp(version, "RFB 003.", 8) != 0)
        Fail("no framebuffer server answers");
    const bool old = std::strcmp(version, "RFB 003.003\n") == 0;
    const char* own = old ? "RFB 003.003\n" : "RFB 003.008\n";
    Write({own, own + VersionLength});
    if (old) {
        if (Number(4) != NoSecurity)
            Fail("the server wants a password");
    } else {
        std::vector<uint8_t> kinds(Number(1));
        if (!Read(kinds.data(), kinds.size()) ||
            std::memchr(kinds.data(), NoSecurity, kinds.size()) == nullptr)
            Fail("the server wants a password");
        Write({NoSecurity});
        if (Number(4) != 0)
            Fail("the server does not let anybody in");
    }
    Write({1}); // others may watch
    width = static_cast<int>(Number(2));
    height = static_cast<int>(Number(2));
    std::vector<uint8_t> rest(16);
    (void)Read(rest.data(), rest.size());
    rest.resize(Number(4)); // the server's name
    (void)Read(rest.data(), rest.size());
    if (closed)
        Fail("the server went away");
    pixels.resize(size_t(width) * size_t(height) * 3);
    // 32 bits, little-endian: blue, green, red, nothing.
    Write({SetPixelFormat, 0, 0, 0, 32, 24, 0, 1, 0, 255, 0, 255, 0, 255, 16, 8, 0, 0, 0, 0});
    Write({SetEncodings, 0, 0, 1, 0, 0, 0, 0});
}

void RfbClient::AskForPixels(bool changesOnly)
{
    std::vector<uint8_t> bytes = {AskUpdate, static_cast<uint8_t>(changesOnly), 0, 0, 0, 0};
    Append(bytes, static_cast<uint32_t>(width), 2);
    Append(bytes, static_cast<uint32_t>(height), 2);
    Write(bytes);
}

void RfbClient::Point(int x, int y, bool down)
{
    std::vector<uint8_t> bytes = {PointerEvent, static_cast<uint8_t>(down)};
    Append(bytes, static_cast<uint32_t>(x), 2);
    Append(bytes, static_cast<uint32_t>(y), 2);
    Write(bytes);
}

bool RfbClient::TakeRectangle()
{
    const size_t left = Number(2);
    const size_t top = Number(2);
    const size_t across = Number(2);
    const size_t down = Number(2);
    if (Number(4) != 0 && !closed)
        Fail("a rectangle that is not raw");
    if (closed || left + across > size_t(width) || top + down > size_t(height))
        return false;
    std::vector<uint8_t> row(across * 4);
    for (size_t y = top; y < top + down; ++y) {
        if (!Read(row.data(), row.size()))
            return false;
        uint8_t* to = pixels.data() + (y * size_t(width) + left) * 3;
        for (size_t x = 0; x < across; ++x, to += 3) {
            const uint8_t rgb[3] = {row[4 * x + 2], row[4 * x + 1], row[4 * x]};
            changed |= std::memcmp(to, rgb, 3) != 0;
            std::memcpy(to, rgb, 3);
        }
    }
    return true;
}

bool RfbClient::TakeMessage()
{
    changed = false;
    switch (Number(1)) {
    case Update: {
        (void)Number(1);
        uint32_t count = Number(2);
        while (count-- > 0 && TakeRectangle())
            continue;
        AskForPixels(true);
        break;
    }
    case ColorMap:
        Fail("colours of a map");
    case Bell:
        break;
    case CutText: {
        (void)Number(3);
        std::vector<uint8_t> text(Number(4));
        (void)Read(text.data(), text.size());
        break;
    }
    default:
        if (!closed)
            Fail("an unknown message");
    }
    return !closed;
}

void RfbClient::Rest(int milliseconds)
{
    using Clock = std::chrono::steady_clock;
    const auto quiet = std::chrono::milliseconds(milliseconds);
    Clock::time_point end = Clock::now() + quiet;
    while (!closed && Clock::now() < end) {
        const auto left = std::chrono::ceil<std::chrono::milliseconds>(end - Clock::now());
        pollfd wait = {socket, POLLIN, 0};
        if (poll(&wait, 1, static_cast<int>(left.count())) <= 0)
            return;
        if (TakeMessage() && changed)
            end = Clock::now() + quiet;
    }
}
