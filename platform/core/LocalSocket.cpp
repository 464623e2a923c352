#include "platform/core/LocalSocket.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

namespace tavrix::platform
{

namespace
{

constexpr int Backlog = 128;

/// The address of a name in a folder, valid while this object lives.
class FolderAddress
{
public:
    FolderAddress(const std::string& path, const std::string& name)
        : folder(open(path.c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC | O_NOFOLLOW))
    {
        address.sun_family = AF_UNIX;
        const std::string through = "/proc/self/fd/" + std::to_string(folder.Get()) + "/" + name;
        valid = folder.IsOpen() && through.size() < sizeof address.sun_path;
        if (valid)
            std::memcpy(address.sun_path, through.c_str(), through.size() + 1);
    }
    bool IsValid() const { return valid; }
    int Folder() const { return folder.Get(); }
    const sockaddr* Get() const { return reinterpret_cast<const sockaddr*>(&address); }
    static constexpr socklen_t Size = sizeof(sockaddr_un);

private:
    Descriptor folder;
    sockaddr_un address = {};
    bool valid = false;
};

Descriptor MakeSocket(int flags)
{
    return Descriptor(socket(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC | flags, 0));
}

} // namespace

Descriptor ListenAs(const std::string& folder, const std::string& name)
{
    const std::string early = name + ".new";
    const FolderAddress address(folder, early);
    Descriptor listener = MakeSocket(SOCK_NONBLOCK);
    if (!address.IsValid() || !listener.IsOpen() ||
        bind(listener.Get(), address.Get(), FolderAddress::Size) != 0)
        return Descriptor();
    // Whoever sees the final name and finds nobody listening may take the process for dead.
    if (listen(listener.Get(), Backlog) != 0 ||
        renameat(address.Folder(), early.c_str(), address.Folder(), name.c_str()) != 0) {
        unlinkat(address.Folder(), early.c_str(), 0);
        return Descriptor();
    }
    return listener;
}

Descriptor ConnectTo(const std::string& folder, const std::string& name)
{
    const FolderAddress address(folder, name);
    Descriptor connection = MakeSocket(0);
    if (!address.IsValid() || !connection.IsOpen())
        return Descriptor();
    int result;
    do {
        result = connect(connection.Get(), address.Get(), FolderAddress::Size);
    } while (result != 0 && errno == EINTR);
    if (result != 0 || !PeerIsThisUser(connection.Get()))
        return Descriptor();
    return connection;
}

Listener FindListener(const std::string& folder, const std::string& name)
{
    const FolderAddress address(folder, name);
    const Descriptor connection = MakeSocket(SOCK_NONBLOCK);
    if (!address.IsValid() || !connection.IsOpen() ||
        connect(connection.Get(), address.Get(), FolderAddress::Size) == 0)
        return Listener::Alive;
    switch (errno) {
    case ECONNREFUSED:
        return Listener::Dead;
    case ENOENT:
        return Listener::Absent;
    default: // a queue that is full, say
        return Listener::Alive;
    }
}

bool PeerIsThisUser(int connection)
{
    ucred peer = {};
    socklen_t size = sizeof peer;
    return getsockopt(connection, SOL_SOCKET, SO_PEERCRED, &peer, &size) == 0 &&
           size == sizeof peer && peer.uid == geteuid();
}

} // namespace tavrix::platform
