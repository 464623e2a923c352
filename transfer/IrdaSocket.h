// A socket of the infrared family: it is bound and reached by a service's name instead of a number.
// Addresses and the list of devices are laid out as the device reads them.
#pragma once

#include "transfer/Socket.h"

/// Bytes of a service's name, zero padded. Who passes a name passes a buffer of that size.
inline constexpr u32 ServiceNameSize = 25;

class IrdaSocket final : public Socket
{
public:
    IrdaSocket();
    /// Takes over an accepted handle.
    explicit IrdaSocket(SOCKET accepted);

    // BadArgument for null.

    [[nodiscard]] i32 Bind(const char* serviceName);
    /// `deviceId` has 4 bytes.
    [[nodiscard]] i32 Connect(const u8* deviceId, const char* serviceName);
    /// With a backlog of 2.
    [[nodiscard]] i32 Listen();
    /// The caller deletes the new object.
    [[nodiscard]] i32 Accept(IrdaSocket** accepted);
    /// Else as Socket::AcceptAsync.
    [[nodiscard]] i32 AcceptAsync(SOCKET* accepted);

    /// The first device in range: its 4 bytes of id, and its name, at most `capacity` - 1
    /// characters. NothingDone when there is none; the name is then left alone. BadArgument for
    /// null and for a capacity of 0.
    [[nodiscard]] i32 GetFirstDevice(u8* deviceId, WCHAR* name, u32 capacity);
    /// The same without the id. On a connected socket the first device is the peer.
    [[nodiscard]] i32 GetPeerName(WCHAR* name, u32 capacity);
};
