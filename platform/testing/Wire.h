// Peers on the loopback network for tests that speak over real sockets: a server that a test
// scripts, a client, and an address that no other process of the test run uses, so that the ports
// that a protocol prescribes can be had by many tests at once. Where those ports are taken on this
// machine or may not be bound, the process goes into a network of its own before its main begins.
//
// Written on the host's sockets alone, so that nothing of what is tested is on both ends.
#pragma once

#include <atomic>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <thread>

namespace tavrix::testing
{

/// An address 127.x.y.z that belongs to this process of a test run.
const std::string& OwnAddress();
/// The same in host order.
unsigned long OwnAddressNumber();

/// One end of a connection. Reading waits until bytes or the end have come, or `stop` was asked
/// for.
class Connection
{
public:
    explicit Connection(int descriptor = -1, const std::atomic<bool>* stop = nullptr);
    Connection(Connection&& other) noexcept;
    Connection& operator=(Connection&& other) noexcept;
    ~Connection() { Close(); }

    bool IsOpen() const { return descriptor >= 0; }
    /// Up to `most` bytes; empty at the end of the other side, after an error and when stopped.
    std::string Read(size_t most);
    /// Fewer bytes only where Read gave none.
    std::string ReadExactly(size_t count);
    /// Up to and with the first `ending`.
    std::string ReadUntil(std::string_view ending);
    /// All that comes until the other side ends.
    std::string ReadAll();
    /// False when the other side takes no more.
    bool Write(std::string_view bytes);
    /// Waits, but no longer than until stopped. False when stopped.
    bool Pause(unsigned milliseconds);
    /// The other side sees an end, and can still be read.
    void EndWriting();
    void Close();
    /// The other side sees an error.
    void Reset();

private:
    bool Await(short events);

    int descriptor;
    const std::atomic<bool>* stop;
};

/// A connection to a port of the loopback network, closed when nobody listens there.
Connection ConnectTo(const std::string& address, unsigned short port);
/// The same to a socket in the file system.
Connection ConnectToPath(const std::string& path);

/// Listens on OwnAddress() and serves one connection after the other with `serve` on a thread of
/// its own, which gets the number of the connection, from 0. Ends with the object, whatever
/// `serve` waits for.
class WireServer
{
public:
    using Serve = std::function<void(Connection& connection, int number)>;

    /// Port 0 stands for any free one. Fails the test when the port cannot be had.
    WireServer(unsigned short port, Serve serve);
    ~WireServer();
    WireServer(const WireServer&) = delete;
    WireServer& operator=(const WireServer&) = delete;

    unsigned short Port() const { return port; }
    /// Connections that were taken so far.
    int Count() const { return count; }

private:
    void Run();

    int listener = -1;
    unsigned short port = 0;
    Serve serve;
    std::atomic<bool> stop{false};
    std::atomic<int> count{0};
    std::thread thread;
};

} // namespace tavrix::testing
