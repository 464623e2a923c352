// Sockets by which processes of one user on one machine meet in a folder. They carry whole packets:
// one is one request or one answer, and never comes in pieces. Who listens is alive: the host ends
// that with the process, however it ends.
//
// Names of any length work: the host's limit on the path of a socket is met by going through a
// descriptor of the folder. Safe from any thread.
#pragma once

#include "platform/core/HostFiles.h"

#include <string>

namespace tavrix::platform
{

/// Listens under `name` in `folder`, without blocking. The name appears only once somebody
/// listens. Not open when the host refuses.
Descriptor ListenAs(const std::string& folder, const std::string& name);

/// Connects to who listens under `name` in `folder`. Not open when nobody does, or when it is
/// another user's process.
Descriptor ConnectTo(const std::string& folder, const std::string& name);

enum class Listener { Alive, Dead, Absent };
/// Whether anybody listens under the name: Dead when the name is left from a process that is gone.
/// Never blocks. What cannot be found out counts as Alive.
Listener FindListener(const std::string& folder, const std::string& name);

/// Whether the process at the other end belongs to this user.
bool PeerIsThisUser(int connection);

} // namespace tavrix::platform
