// The replacing of a file at a stroke: the one call by which the program puts a finished file in
// the place of another.

#include "platform/core/ErrorCodes.h"
#include "platform/core/FileFaults.h"
#include "platform/core/FileTree.h"
#include "platform/core/HostFiles.h"

#include <handheld.h>

#include <atomic>
#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <unistd.h>
#include <vector>

using namespace tavrix::platform;

namespace
{

constexpr mode_t PermissionBits = 07777;

std::string FolderOf(const std::string& host)
{
    const size_t slash = host.rfind('/');
    return slash == 0 ? "/" : host.substr(0, slash);
}

/// One file that is to take the place of another. Host errors are the host's numbers.
struct Exchange {
    LPCWSTR sourcePath; // as the program gave them, for the tests' faults
    LPCWSTR targetPath;
    std::string source;
    std::string target; // every link resolved; need not exist
    bool hasOld = false;
    struct stat old {
    }; // of the target, where it exists
};

int FailAt(FileOperation operation, LPCWSTR path, int error)
{
    return IsFaulty(operation, path) ? error : 0;
}

int SyncFolder(const std::string& folder)
{
    const Descriptor opened(OpenHost(folder, O_RDONLY | O_DIRECTORY));
    return opened.IsOpen() ? Sync(opened.Get()) : errno;
}

/// Renames a file to the target once it is durable. The folders follow: that the names outlive a
/// crash of the host changes nothing for who looks now, so that a failure there is none here.
int TakePlace(const Exchange& exchange, const std::string& from, int opened)
{
    int error = FailAt(FileOperation::Sync, exchange.targetPath, EIO);
    if (error == 0)
        error = Sync(opened);
    if (error == 0)
        error = FailAt(FileOperation::Rename, exchange.targetPath, EIO);
    if (error == 0 && rename(from.c_str(), exchange.target.c_str()) != 0)
        error = errno;
    if (error != 0)
        return error;
    if (FailAt(FileOperation::SyncFolder, exchange.targetPath, EIO) == 0) {
        (void)SyncFolder(FolderOf(exchange.target));
        if (FolderOf(exchange.source) != FolderOf(exchange.target))
            (void)SyncFolder(FolderOf(exchange.source));
    }
    return 0;
}

/// Gives an open file the owner and the permissions of the old one. An owner that cannot be kept is
/// given up, and with it the bits that lend the owner's rights.
int BeLike(const struct stat& old, int file)
{
    struct stat info {
    };
    if (fstat(file, &info) != 0)
        return errno;
    const bool keepsOwner = (info.st_uid == old.st_uid && info.st_gid == old.st_gid) ||
                            fchown(file, old.st_uid, old.st_gid) == 0;
    const mode_t mode = old.st_mode & (keepsOwner ? PermissionBits : mode_t{0777});
    return (info.st_mode & PermissionBits) == mode || fchmod(file, mode) == 0 ? 0 : errno;
}

int OpenToSync(const std::string& host, Descriptor* opened)
{
    const int error = OpenRegular(host, O_RDONLY | O_NOFOLLOW, 0, opened);
    return error == EACCES ? OpenRegular(host, O_WRONLY | O_NOFOLLOW, 0, opened) : error;
}

/// Within one file system: the source itself moves. EXDEV where it cannot.
int MoveOver(const Exchange& exchange)
{
    Descriptor file;
    int error = OpenToSync(exchange.source, &file);
    if (error != 0)
        return error;
    struct stat before {
    };
    struct stat folder {
    };
    if (fstat(file.Get(), &before) != 0 || stat(FolderOf(exchange.target).c_str(), &folder) != 0)
        return errno;
    if (before.st_dev != folder.st_dev)
        return EXDEV;
    if (exchange.hasOld)
        error = BeLike(exchange.old, file.Get());
    if (error == 0)
        error = TakePlace(exchange, exchange.source, file.Get());
    if (error != 0 && exchange.hasOld) {
        if (fchown(file.Get(), before.st_uid, before.st_gid) != 0)
            errno = 0; // it never was another's
        (void)fchmod(file.Get(), before.st_mode & PermissionBits);
    }
    return error;
}

/// Copies the bytes of the source, asking the tests' fault and disk for each block.
int CopyBytes(const Exchange& exchange, int from, int to)
{
    std::vector<char> block(256 * 1024);
    int error = 0;
    for (off_t position = 0;;) {
        if (IsFaulty(FileOperation::Read, exchange.sourcePath))
            return EIO;
        const size_t got = ReadAt(from, block.data(), block.size(), position, &error);
        if (error != 0 || got == 0)
            return error;
        if (IsFaulty(FileOperation::Write, exchange.targetPath) || TakeDiskSpace(got) < got)
            return ENOSPC;
        WriteAt(to, block.data(), got, position, &error);
        if (error != 0)
            return error;
        position += static_cast<off_t>(got);
    }
}

/// Makes a hidden file beside the target, under a name that no listing shows.
int MakeBeside(const Exchange& exchange, std::string* path, Descriptor* made)
{
    if (IsFaulty(FileOperation::Create, exchange.targetPath) || IsDiskFull())
        return ENOSPC;
    static std::atomic<unsigned> number{0};
    // Numbers from the top, so that they do not meet those of the settings' replacements.
    constexpr unsigned Top = 4000000000u;
    const std::string start = exchange.target.substr(0, exchange.target.rfind('/')) + "/.tavrix-" +
                              std::to_string(getpid()) + "-";
    for (int attempt = 0; attempt < 1000; ++attempt) {
        *path = start + std::to_string(Top - ++number) + ".new";
        *made = Descriptor(OpenHost(*path, O_RDWR | O_CREAT | O_EXCL | O_NOFOLLOW, 0600));
        if (made->IsOpen()) {
            // As long as it is locked nobody takes it for an abandoned one.
            (void)TakeLock(made->Get(), LOCK_SH | LOCK_NB);
            return 0;
        }
        if (errno != EEXIST)
            return errno;
    }
    return EEXIST;
}

/// Between file systems, and where the source is a link, whose name says nothing of the file: a
/// copy beside the target takes its place, and the source goes.
int CopyOver(const Exchange& exchange)
{
    // A source that could not be removed afterwards would leave two files of one content.
    if (access(FolderOf(exchange.source).c_str(), W_OK) != 0)
        return errno;
    Descriptor from;
    int error = OpenRegular(exchange.source, O_RDONLY, 0, &from);
    if (error != 0)
        return error;
    struct stat info {
    };
    if (fstat(from.Get(), &info) != 0)
        return errno;
    std::string beside;
    Descriptor to;
    error = MakeBeside(exchange, &beside, &to);
    if (error != 0)
        return error;
    error = CopyBytes(exchange, from.Get(), to.Get());
    if (error == 0)
        error = exchange.hasOld ? BeLike(exchange.old, to.Get())
                : fchmod(to.Get(), info.st_mode & mode_t{0777}) == 0 ? 0
                                                                     : errno;
    if (error == 0)
        error = TakePlace(exchange, beside, to.Get());
    if (error != 0) {
        unlink(beside.c_str());
        return error;
    }
    // The target stands; a source that stays all the same is no reason to say that it does not.
    (void)unlink(exchange.source.c_str());
    (void)SyncFolder(FolderOf(exchange.source));
    return 0;
}

bool IsLink(const std::string& host)
{
    struct stat info {
    };
    return lstat(host.c_str(), &info) == 0 && S_ISLNK(info.st_mode);
}

/// Finds both files and refuses what cannot be exchanged. ERROR_SUCCESS with the settings'
/// replacements held still, where either lies among them.
DWORD Prepare(FileTree& tree, Exchange* exchange, FoundFile* found, FoundFile* there,
              std::string* place, Replacements::Hold* hold)
{
    DevicePath from;
    DevicePath to;
    DWORD error = ParsePath(exchange->sourcePath, &from);
    if (error == ERROR_SUCCESS)
        error = ParsePath(exchange->targetPath, &to);
    if (error != ERROR_SUCCESS)
        return error;
    error = tree.FindAndHold(from, found, hold);
    if (error != ERROR_SUCCESS)
        return error;
    if (from.endsInSeparator || found->isFixed || !found->IsRegular() || !found->isWritten)
        return ERROR_ACCESS_DENIED;
    error = tree.FindAndHold(to, there, hold);
    exchange->hasOld = error == ERROR_SUCCESS;
    if (error != ERROR_SUCCESS && error != ERROR_FILE_NOT_FOUND)
        return error;
    if (to.endsInSeparator || to.parts.empty() ||
        (exchange->hasOld && (there->isFixed || !there->IsRegular())))
        return ERROR_ACCESS_DENIED;
    // Of two names of one file neither can take the other's place.
    if (exchange->hasOld && found->info.st_dev == there->info.st_dev &&
        found->info.st_ino == there->info.st_ino)
        return ERROR_SHARING_VIOLATION;
    return tree.PlaceToWrite(to, place);
}

DWORD Replace(FileTree& tree, LPCWSTR target, LPCWSTR source)
{
    Exchange exchange{source, target, {}, {}};
    FoundFile found;
    FoundFile there;
    std::string place;
    Replacements::Hold hold;
    DWORD error = Prepare(tree, &exchange, &found, &there, &place, &hold);
    if (error != ERROR_SUCCESS)
        return error;
    int hostError = FollowLinks(place, &exchange.target);
    if (hostError != 0)
        return hostError == ENOENT ? ERROR_PATH_NOT_FOUND : DeviceError(hostError);
    exchange.source = found.host;
    exchange.old = there.info;
    // As every copy of what lies in a later layer, it may be written by its owner.
    if (!there.isWritten)
        exchange.old.st_mode |= S_IRUSR | S_IWUSR;
    // What may not be written may not be replaced either, though the host would allow it.
    Descriptor old;
    hostError = OpenRegular(exchange.target, O_WRONLY, 0, &old);
    if (hostError != 0 && hostError != ENOENT)
        return DeviceError(hostError);
    old = Descriptor();
    if (IsFaulty(FileOperation::Open, source))
        return ERROR_ACCESS_DENIED;
    // What is exchanged are the files as this process sees them.
    hostError = found.pending != nullptr ? tree.Replaced().SettleNow(found.pending) : 0;
    if (hostError == 0)
        hostError = IsLink(exchange.source) ? EXDEV : MoveOver(exchange);
    if (hostError == EXDEV)
        hostError = CopyOver(exchange);
    if (hostError != 0)
        return DeviceError(hostError);
    if (there.pending != nullptr)
        tree.Replaced().Drop(there.pending);
    if (there.isReplaced)
        tree.Replaced().Allow(place);
    return ERROR_SUCCESS;
}

} // namespace

BOOL WINAPI DeleteAndRenameFile(LPCWSTR target, LPCWSTR source)
{
    return WithoutThrowing(FALSE, [&] {
        const DWORD error = Replace(*CurrentTree(), target, source);
        return error == ERROR_SUCCESS ? TRUE : FailWith(error);
    });
}
