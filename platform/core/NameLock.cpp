#include "platform/core/NameLock.h"

#include <fcntl.h>
#include <unistd.h>

#include <cctype>
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <thread>

namespace tavrix::platform
{

namespace
{

constexpr off_t ExistenceByte = 0;
constexpr off_t OwnerByte = 1;

// Locks of the open file description: they end with the descriptor, and a second descriptor of this
// process does not disturb them.
bool Lock(int file, off_t byte, short type)
{
    struct flock range = {};
    range.l_type = type;
    range.l_whence = SEEK_SET;
    range.l_start = byte;
    range.l_len = 1;
    return fcntl(file, F_OFD_SETLK, &range) == 0;
}

/// A short file name for any text: the letters of its beginning for whoever looks, and a hash.
std::string FileNameFor(const std::string& name)
{
    uint64_t hash = 0xCBF29CE484222325u;
    std::string readable;
    for (const char character : name) {
        hash = (hash ^ static_cast<unsigned char>(character)) * 0x100000001B3u;
        if (readable.size() < 32 && std::isalnum(static_cast<unsigned char>(character)) != 0)
            readable.push_back(character);
    }
    char digits[24];
    std::snprintf(digits, sizeof digits, "%016llx", static_cast<unsigned long long>(hash));
    return readable + "-" + digits + ".lock";
}

} // namespace

std::unique_ptr<NameLock> NameLock::Open(const std::string& folder, const std::string& name,
                                         bool own, bool* existed)
{
    const std::string path = folder + "/" + FileNameFor(name);
    const int file = open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW, 0600);
    if (file < 0)
        return nullptr;
    std::unique_ptr<NameLock> lock(new NameLock(file));
    // Who gets the exclusive lock is the only one that has the thing. It turns into a shared lock
    // in one step of the host.
    if (Lock(file, ExistenceByte, F_WRLCK)) {
        *existed = false;
        if (own && !lock->TryOwn())
            return nullptr;
        return Lock(file, ExistenceByte, F_RDLCK) ? std::move(lock) : nullptr;
    }
    *existed = true;
    // Refused only while another process is between those two steps; that it stays there (stopped
    // by a debugger, say) must not hang this one.
    for (int attempt = 0; attempt < 1000; ++attempt) {
        if (Lock(file, ExistenceByte, F_RDLCK))
            return lock;
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    return lock;
}

NameLock::~NameLock()
{
    close(file);
}

bool NameLock::TryOwn()
{
    return Lock(file, OwnerByte, F_WRLCK);
}

void NameLock::Disown()
{
    (void)Lock(file, OwnerByte, F_UNLCK);
}

} // namespace tavrix::platform
