// The device's calls on sockets and threads, led through the test: it sees what is asked of the
// device byte by byte, and comes in between where two threads would have to meet by chance.
// Everything is still done by the device, unless a test says otherwise.
#pragma once

#include <winsock.h>

#include <atomic>
#include <functional>
#include <string>
#include <vector>

class SocketCalls
{
public:
    SocketCalls();
    ~SocketCalls();
    SocketCalls(const SocketCalls&) = delete;
    SocketCalls& operator=(const SocketCalls&) = delete;

    /// Calls in their order, in words: "WSAStartup 101", "bind 16 ...", with the bytes of addresses
    /// in hexadecimal. "taken" is behind an accept that gave a connection.
    std::vector<std::string> Log();
    /// The entries that begin with `word`, joined by "; ".
    std::string Entries(const std::string& word);

    /// Comes once before a thread is ended, on the thread that ends it.
    std::function<void(HANDLE thread)> beforeTerminate;
    /// Stands in for the answer about devices in range; what getsockopt answers.
    std::function<int(char* value, int* length)> devices;
    /// No event can be made.
    std::atomic<bool> failEvents{false};
    /// The handle that accept gave last.
    SOCKET accepted = INVALID_SOCKET;
    /// Looked at by Log while threads are about.
    std::vector<std::string> log;
};
