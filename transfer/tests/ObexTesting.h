// What the tests of the receiver share: bytes typed as on the wire, and a whole exchange with a
// client on a thread of its own.
#pragma once

#include "platform/testing/Testing.h"
#include "platform/testing/Wire.h"
#include "transfer/ObexServer.h"
#include "transfer/tests/ObexModel.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <cstdlib>
#include <ostream>
#include <thread>

namespace obextest
{

using namespace tavrix::testing;

/// "82 00 03" as three bytes.
inline std::string Hex(std::string_view text)
{
    std::string bytes;
    int digits = 0;
    unsigned value = 0;
    for (const char character : text) {
        if (character == ' ')
            continue;
        value = value << 4 |
                static_cast<unsigned>(character <= '9' ? character - '0' : character - 'A' + 10);
        if (++digits % 2 == 0) {
            bytes.push_back(static_cast<char>(value));
            value = 0;
        }
    }
    EXPECT_EQ(digits % 2, 0) << text;
    return bytes;
}

/// The other way round, for comparing and for reading.
inline std::string HexOf(std::string_view bytes)
{
    std::string text;
    for (const char byte : bytes) {
        char digits[4];
        std::snprintf(digits, sizeof digits, "%02X", static_cast<unsigned char>(byte));
        text += (text.empty() ? "" : " ") + std::string(digits);
    }
    return text;
}

/// A packet of that opcode, its length counted.
inline std::string Packet(unsigned opcode, const std::string& payload)
{
    const size_t length = payload.size() + 3;
    return std::string{static_cast<char>(opcode), static_cast<char>(length >> 8),
                       static_cast<char>(length)} +
           payload;
}

/// A Body (or End of Body) header with its data.
inline std::string Body(const std::string& data, unsigned identifier = 0x48)
{
    return Packet(identifier, data); // which has the same form
}

inline Told Waiting()
{
    return {1};
}
/// The network calls this peer by its address.
inline Told Found(const std::u16string& name = u"127.0.0.1")
{
    return {2, name};
}
inline Told Name(const std::u16string& name)
{
    return {16, name};
}
inline Told Progress(u32 received, u32 length = 0)
{
    return {32, {}, received, length};
}
inline Told Finished()
{
    return {240};
}

inline void PrintTo(const Told& told, std::ostream* out)
{
    *out << "event " << told.event << " '" << Utf8(told.name.c_str()) << "' " << told.received
         << " of " << told.length;
}

/// Lets the service be found at this process' own address.
inline void UseOwnAddress()
{
    setenv("TAVRIX_IR", ("tcp:" + OwnAddress() + ":650").c_str(), 1);
}

using Script = std::function<void(Connection& client)>;

/// A client on a thread of its own: connects as soon as somebody listens, acts, and closes. Ends
/// without having acted when the object goes first.
class Client
{
public:
    explicit Client(Script script)
        : thread([this, script = std::move(script)] {
              while (!over) {
                  Connection connection = ConnectTo(OwnAddress(), 650);
                  if (connection.IsOpen()) {
                      script(connection);
                      return;
                  }
                  std::this_thread::sleep_for(std::chrono::milliseconds(1));
              }
          })
    {
    }
    ~Client()
    {
        over = true;
        thread.join();
    }
    Client(const Client&) = delete;
    Client& operator=(const Client&) = delete;

private:
    std::atomic<bool> over{false};
    std::thread thread;
};

inline constexpr u32 LongTime = 600; // seconds that a test never takes

/// What came of an exchange.
struct Outcome {
    i32 result = 0;
    std::string object;
    std::vector<Told> told;
};

/// Receives from a client of that script.
inline Outcome Receive(ObexServer& server, Script script, u32 timeoutSeconds = LongTime)
{
    UseOwnAddress();
    Client client(std::move(script));
    Sink sink;
    Listener listener;
    const i32 result = server.Receive(&sink, timeoutSeconds, Listener::Hear, &listener);
    return {result, sink.bytes, listener.told};
}

inline Outcome Receive(Script script)
{
    ObexServer server;
    return Receive(server, std::move(script));
}

/// One packet of the server, in digits; what there was of it when the link went.
inline std::string Answer(Connection& client)
{
    std::string bytes = client.ReadExactly(3);
    if (bytes.size() == 3)
        bytes +=
            client.ReadExactly(static_cast<size_t>(static_cast<unsigned char>(bytes[1])) * 256 +
                               static_cast<unsigned char>(bytes[2]) - 3);
    return HexOf(bytes);
}

/// Sends a packet and gives what is answered.
inline std::string Ask(Connection& client, const std::string& packet)
{
    return client.Write(packet) ? Answer(client) : "not sent";
}

/// What still comes until the server closes, in digits.
inline std::string Rest(Connection& client)
{
    return HexOf(client.ReadAll());
}

using Events = std::vector<Told>;

// A CONNECT of version 1.0 with packets of 1,024 bytes, and its answer.
inline const char Connect[] = "80 00 07 10 00 04 00";
inline const char Connected[] = "A0 00 07 10 00 02 00";
inline const char Continue[] = "90 00 03";
inline const char Success[] = "A0 00 03";
// A name "a.png".
inline const char NameHeader[] = "01 00 0F 00 61 00 2E 00 70 00 6E 00 67 00 00";

} // namespace obextest
