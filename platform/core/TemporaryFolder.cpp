#include "platform/core/TemporaryFolder.h"

#include <algorithm>
#include <cerrno>
#include <dirent.h>
#include <fcntl.h>
#include <ftw.h>
#include <unistd.h>

namespace tavrix::platform
{

namespace
{

/// How the private folders of this user begin.
std::string NamePrefix()
{
    return "tavrix-" + std::to_string(geteuid());
}

/// Opens a folder if it is one, not a link to one, and belongs to this user; private from then on.
Descriptor OpenOwn(const std::string& path)
{
    Descriptor folder(OpenHost(path, O_RDONLY | O_DIRECTORY | O_NOFOLLOW));
    struct stat info {
    };
    if (!folder.IsOpen() || fstat(folder.Get(), &info) != 0 || info.st_uid != geteuid())
        return Descriptor();
    if ((info.st_mode & 0777) != 0700 && fchmod(folder.Get(), 0700) != 0)
        return Descriptor();
    return folder;
}

std::vector<std::string> NamesIn(int folder)
{
    std::vector<std::string> names;
    // A descriptor of its own: closing the listing closes what it was opened on.
    DIR* listing = fdopendir(openat(folder, ".", O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (listing == nullptr)
        return names;
    while (const dirent* entry = readdir(listing))
        names.emplace_back(entry->d_name);
    closedir(listing);
    return names;
}

void ClearPagingFiles(int folder)
{
    for (const std::string& name : NamesIn(folder)) {
        struct stat info {
        };
        if (IsPagingName(name) && fstatat(folder, name.c_str(), &info, AT_SYMLINK_NOFOLLOW) == 0 &&
            S_ISREG(info.st_mode))
            unlinkat(folder, name.c_str(), 0);
    }
}

/// Clears every private folder of this user below `base` that no live process holds.
void ClearAbandoned(const std::string& base)
{
    const Descriptor listed(OpenHost(base.empty() ? "/" : base, O_RDONLY | O_DIRECTORY));
    if (!listed.IsOpen())
        return;
    for (const std::string& name : NamesIn(listed.Get())) {
        const std::string prefix = NamePrefix();
        if (name != prefix && !name.starts_with(prefix + "-"))
            continue;
        const std::string path = base + "/" + name;
        const Descriptor folder = OpenOwn(path);
        if (!folder.IsOpen() || TakeLock(folder.Get(), LOCK_EX | LOCK_NB) != HostLock::Held ||
            !StandsAt(path, folder.Get()))
            continue;
        ClearPagingFiles(folder.Get());
        rmdir(path.c_str()); // fails, as it is meant to, while something else lies in it
    }
}

int RemoveEntry(const char* path, const struct stat*, int, FTW*)
{
    remove(path);
    return 0;
}

} // namespace

bool IsPagingName(std::string_view name)
{
    if (name.ends_with(".swp"))
        return true;
    return name.size() == 10 && name.ends_with(".tmp") &&
           std::all_of(name.begin(), name.begin() + 6, [](char c) { return c >= '0' && c <= '9'; });
}

TemporaryFolder::TemporaryFolder(const std::vector<std::string>& bases) : owner(getpid())
{
    for (const std::string& base : bases) {
        ClearAbandoned(base);
        if (TakePart(base) || Make(base))
            return;
    }
}

/// Joins the folder that all processes of the user share.
bool TemporaryFolder::TakePart(const std::string& base)
{
    const std::string shared = base + "/" + NamePrefix();
    for (int attempt = 0; attempt < 100; ++attempt) {
        if (mkdir(shared.c_str(), 0700) != 0 && errno != EEXIST)
            return false;
        Descriptor opened = OpenOwn(shared);
        if (!opened.IsOpen()) {
            if (errno == ENOENT)
                continue; // removed in between by its last holder
            return false;
        }
        if (TakeLock(opened.Get(), LOCK_SH) != HostLock::Held)
            return false;
        if (StandsAt(shared, opened.Get())) {
            path = shared;
            folder = std::move(opened);
            return true;
        }
    }
    return false;
}

/// Makes a folder for this process alone: where somebody else sits on the shared name, or where the
/// file system knows no locks.
bool TemporaryFolder::Make(const std::string& base)
{
    std::string own = base + "/" + NamePrefix() + "-XXXXXX";
    if (mkdtemp(own.data()) == nullptr)
        return false;
    folder = OpenOwn(own);
    if (!folder.IsOpen()) {
        rmdir(own.c_str());
        return false;
    }
    locks = TakeLock(folder.Get(), LOCK_SH) == HostLock::Held;
    if (!StandsAt(own, folder.Get())) { // a starting process took it for an abandoned one
        folder = Descriptor();
        return false;
    }
    path = own;
    return true;
}

void TemporaryFolder::Leave()
{
    if (!folder.IsOpen())
        return;
    const Descriptor leaving = std::move(folder);
    // A forked child shares the lock with its parent and must not clear the parent's files.
    if (getpid() != owner)
        return;
    if (locks && TakeLock(leaving.Get(), LOCK_EX | LOCK_NB) != HostLock::Held)
        return;
    if (!StandsAt(path, leaving.Get()))
        return;
    ClearPagingFiles(leaving.Get());
    rmdir(path.c_str());
}

std::string RunFolder::Path()
{
    const std::lock_guard guard(lock);
    for (const std::string& base : bases) {
        if (!path.empty())
            break;
        std::string own = base + "/" + NamePrefix() + "-run-XXXXXX";
        if (mkdtemp(own.data()) == nullptr)
            continue;
        path = own;
        owner = getpid();
        folder = OpenOwn(own);
        if (folder.IsOpen())
            (void)TakeLock(folder.Get(), LOCK_SH);
    }
    return path;
}

void RunFolder::Remove()
{
    const std::lock_guard guard(lock);
    if (path.empty() || owner != getpid())
        return;
    nftw(path.c_str(), RemoveEntry, 16, FTW_DEPTH | FTW_PHYS);
    folder = Descriptor();
    path.clear();
    bases.clear();
}

} // namespace tavrix::platform
