#include "transfer/IrdaSocket.h"

#include <cstring>
#include <new>

namespace
{

enum : i32 { InfraredFamily = 22, Backlog = 2, InfraredLevel = 255, EnumerateDevices = 16 };
enum : u32 { DeviceIdSize = 4, DeviceNameSize = 22 };

// As the device reads it.
struct InfraredAddress {
    u16 family;
    u8 deviceId[DeviceIdSize]; // zero for the own side
    char serviceName[ServiceNameSize];
    u8 padding;
};
static_assert(sizeof(InfraredAddress) == 32);

// What the device tells of its surroundings, as far as the first of what it has found.
struct DeviceList {
    u32 count;
    u8 id[DeviceIdSize];
    u8 name[DeviceNameSize];
    u8 reserved[2];
};
static_assert(sizeof(DeviceList) == 32);

InfraredAddress MakeAddress(const u8* deviceId, const char* serviceName)
{
    InfraredAddress address = {};
    address.family = InfraredFamily;
    if (deviceId != nullptr)
        std::memcpy(address.deviceId, deviceId, sizeof(address.deviceId));
    std::memcpy(address.serviceName, serviceName, sizeof(address.serviceName));
    return address;
}

} // namespace

IrdaSocket::IrdaSocket() : Socket(InfraredFamily, SOCK_STREAM, 0) {}

IrdaSocket::IrdaSocket(SOCKET accepted) : Socket(accepted) {}

i32 IrdaSocket::Bind(const char* serviceName)
{
    if (serviceName == nullptr)
        return BadArgument;
    const InfraredAddress address = MakeAddress(nullptr, serviceName);
    return Socket::Bind(reinterpret_cast<const sockaddr*>(&address), sizeof(address));
}

i32 IrdaSocket::Connect(const u8* deviceId, const char* serviceName)
{
    if (deviceId == nullptr || serviceName == nullptr)
        return BadArgument;
    const InfraredAddress address = MakeAddress(deviceId, serviceName);
    return Socket::Connect(reinterpret_cast<const sockaddr*>(&address), sizeof(address));
}

i32 IrdaSocket::Listen()
{
    return Socket::Listen(Backlog);
}

i32 IrdaSocket::Accept(IrdaSocket** accepted)
{
    if (accepted == nullptr)
        return BadArgument;
    *accepted = nullptr;
    SOCKET connection = INVALID_SOCKET;
    if (AcceptHandle(nullptr, nullptr, &connection) < 0)
        return Failed;
    *accepted = new (std::nothrow) IrdaSocket(connection);
    if (*accepted != nullptr)
        return Done;
    (void)closesocket(connection);
    return Failed;
}

i32 IrdaSocket::AcceptAsync(SOCKET* accepted)
{
    if (accepted == nullptr)
        return BadArgument;
    return Socket::AcceptAsync(nullptr, nullptr, accepted);
}

i32 IrdaSocket::GetFirstDevice(u8* deviceId, WCHAR* name, u32 capacity)
{
    if (deviceId == nullptr || name == nullptr || capacity == 0)
        return BadArgument;
    DeviceList devices = {};
    i32 length = sizeof(devices);
    const i32 result = GetOption(InfraredLevel, EnumerateDevices, &devices, &length);
    if (result < 0)
        return result;
    if (devices.count == 0)
        return NothingDone;
    std::memcpy(deviceId, devices.id, sizeof(devices.id));
    u32 i = 0;
    for (; i < capacity - 1 && i < DeviceNameSize && devices.name[i] != 0; ++i)
        name[i] = devices.name[i];
    name[i] = 0;
    return Done;
}

i32 IrdaSocket::GetPeerName(WCHAR* name, u32 capacity)
{
    u8 deviceId[DeviceIdSize];
    return GetFirstDevice(deviceId, name, capacity);
}
