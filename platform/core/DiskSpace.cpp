// What is left on the disk under a folder.

#include "platform/core/ErrorCodes.h"
#include "platform/core/FileTree.h"
#include "platform/core/TestHooks.h"

#include <cerrno>
#include <string>
#include <sys/statvfs.h>

using namespace tavrix::platform;

namespace
{

/// Asks the host about a folder, or about the nearest one above it that exists: a mount is there
/// for the device before its folder is made at the first write.
int AskHost(std::string folder, struct statvfs* answer)
{
    while (statvfs(folder.empty() ? "/" : folder.c_str(), answer) != 0) {
        if (errno != ENOENT || folder.empty())
            return errno;
        folder.resize(folder.rfind('/'));
    }
    return 0;
}

void Answer(PULARGE_INTEGER out, unsigned long long bytes)
{
    if (out != nullptr)
        out->QuadPart = bytes;
}

} // namespace

BOOL WINAPI GetDiskFreeSpaceExW(LPCWSTR folder, PULARGE_INTEGER freeToCaller, PULARGE_INTEGER total,
                                PULARGE_INTEGER freeToAll)
{
    return WithoutThrowing(FALSE, [&] {
        const std::shared_ptr<FileTree> tree = CurrentTree();
        DevicePath parsed;
        FoundFile found;
        DWORD error = ParsePath(folder == nullptr ? u"\\" : folder, &parsed);
        if (error == ERROR_SUCCESS)
            error = tree->Find(parsed, &found);
        if (error != ERROR_SUCCESS)
            return FailWith(error);
        const std::string host = found.host.empty() ? tree->HostPath(parsed) : found.host;
        struct statvfs info {
        };
        if (const int hostError = AskHost(host, &info); hostError != 0)
            return FailWithHost(hostError);
        const unsigned long long unit = info.f_frsize;
        unsigned long long free = unit * info.f_bavail;
        unsigned long long freeToRoot = unit * info.f_bfree;
        TestHooks& hooks = Hooks();
        if (hooks.active) {
            const std::lock_guard guard(hooks.lock);
            if (hooks.diskSpace)
                free = freeToRoot = *hooks.diskSpace;
        }
        Answer(freeToCaller, free);
        Answer(total, unit * info.f_blocks);
        Answer(freeToAll, freeToRoot);
        return TRUE;
    });
}
