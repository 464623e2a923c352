// A socket of the device on the host's: internet sockets as they are, and infrared ones carried by
// another stream transport (InfraredPlace.h). The host's socket never blocks; calls wait in one
// place, from which closing the socket and ending the thread bring them back. An end that was asked
// for shows as a failure; the caller then ends the thread.
//
// Safe from any thread. A socket lives until its handle and its last user are gone. No header of
// the host's sockets comes with this one.
#pragma once

#include "platform/core/HandleTable.h"
#include "platform/core/HostFiles.h"
#include "platform/core/InfraredPlace.h"

#include <atomic>
#include <mutex>
#include <string>
#include <string_view>
#include <vector>

namespace tavrix::platform
{

/// In host order.
struct InternetAddress {
    DWORD address = 0;
    WORD port = 0;
};

enum class SocketOption {
    ReuseAddress,
    KeepAlive,
    Linger, // as the device has it: low word on or off, high word seconds
    SendBuffer,
    ReceiveBuffer,
    SendTimeout, // milliseconds, 0 for none
    ReceiveTimeout,
    IsStream // to be asked only
};

class HostSocket final : public KernelObject
{
public:
    enum class Family { Internet, Infrared };

    /// Empty when the host has no more.
    static std::shared_ptr<HostSocket> Create(Family family, bool stream);
    ~HostSocket() override;

    // Each false, or as told, on failure.

    bool Bind(const InternetAddress& address);
    bool BindService(std::string_view service);
    bool Connect(const InternetAddress& address);
    bool ConnectService(std::string_view service);
    bool Listen(int backlog);
    /// Empty on failure. `peer` may be null and is left alone by an infrared socket.
    std::shared_ptr<HostSocket> Accept(InternetAddress* peer);
    /// The bytes sent, fewer than `length` only after a time-out; negative on failure.
    int Send(const char* bytes, int length);
    /// The bytes received, 0 at the end of the peer; negative on failure.
    int Receive(char* bytes, int length, bool peek);
    /// 0 receiving, 1 sending, 2 both.
    bool Shutdown(int how);
    bool GetLocalAddress(InternetAddress* address) const;
    bool SetOption(SocketOption option, DWORD value);
    bool GetOption(SocketOption option, DWORD* value) const;
    /// The peer of an infrared socket in words, empty where the transport does not tell; false
    /// when there is none.
    bool GetPeerText(std::string* text) const;
    bool IsInfrared() const { return family == Family::Infrared; }

    /// Ends every call that waits on it and all that follow. The host's socket goes with the last
    /// user.
    void Close();

private:
    enum { MostSockets = 2 };
    enum class Wait { Ready, TimedOut, Over };

    HostSocket(Family socketFamily, bool isStream) : family(socketFamily), stream(isStream) {}
    /// Until one of the host's sockets can be used for `events`, at most so long (0: for ever).
    Wait Await(short events, DWORD milliseconds) const;
    bool ConnectHost(int socket, const void* address, unsigned length) const;
    void SendAtOnce() const;
    bool BindPlace(const InfraredEndpoint& endpoint);
    int First() const { return sockets.empty() ? -1 : sockets.front().Get(); }

    const Family family;
    const bool stream;
    // More than one only where an infrared service listens on several addresses. Not changed once
    // the socket listens or is connected.
    std::vector<Descriptor> sockets;
    Descriptor closing; // readable once closed
    std::atomic<bool> closed{false};
    std::atomic<bool> listening{false};
    std::atomic<bool> connected{false};
    std::atomic<bool> broken{false}; // an error was received, and nothing comes behind it
    std::atomic<DWORD> sendTimeout{0};
    std::atomic<DWORD> receiveTimeout{0};
    std::string boundPath; // a file that goes with the listener
};

/// The first address of the host of that name, in host order. Names that no host can have are
/// refused without asking anybody. May wait for the network.
bool ResolveHostName(const char* name, DWORD* address);

} // namespace tavrix::platform
