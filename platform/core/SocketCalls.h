// What the sources of the device's socket calls share: handles, faults, results.
#pragma once

#include "platform/core/HostSocket.h"
#include "platform/core/TestHooks.h"

#include <winsock.h>

namespace tavrix::platform
{

/// Empty for what is no socket.
std::shared_ptr<HostSocket> FindSocket(SOCKET socket);

/// Whether a test lets the call fail. `length` may be lowered where there is one.
bool IsSocketFaulty(SocketOperation operation, int* length = nullptr);

/// What a call on a socket answers, 0 for success.
inline int AsSocketResult(bool succeeded)
{
    return succeeded ? 0 : SOCKET_ERROR;
}

} // namespace tavrix::platform
