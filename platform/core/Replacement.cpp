#include "platform/core/Replacement.h"

#include "platform/core/FileFaults.h"
#include "platform/core/FileNames.h"

#include <algorithm>
#include <cerrno>
#include <dirent.h>
#include <fcntl.h>
#include <unistd.h>

namespace tavrix::platform
{

namespace
{

constexpr std::string_view Prefix = ".tavrix-";
constexpr std::string_view Suffix = ".new";

bool AreDigits(std::string_view text)
{
    return !text.empty() &&
           std::all_of(text.begin(), text.end(), [](char c) { return c >= '0' && c <= '9'; });
}

std::string FolderOf(const std::string& path)
{
    return path.substr(0, path.rfind('/'));
}

int OpenFolder(const std::string& folder)
{
    return OpenHost(folder.empty() ? "/" : folder, O_RDONLY | O_DIRECTORY);
}

/// Whether the open file is a mount of its own, as one bound over another is: no other file can be
/// renamed to its name.
bool IsMount(int file)
{
    struct statx info {
    };
    return statx(file, "", AT_EMPTY_PATH, 0, &info) == 0 &&
           (info.stx_attributes_mask & info.stx_attributes & STATX_ATTR_MOUNT_ROOT) != 0;
}

/// Removes a hidden file of this user that no live process holds.
void ClearIfAbandoned(const std::string& path)
{
    Descriptor file;
    if (OpenRegular(path, O_RDWR | O_NOFOLLOW, 0, &file) != 0 &&
        OpenRegular(path, O_RDONLY | O_NOFOLLOW, 0, &file) != 0)
        return;
    struct stat info {
    };
    if (fstat(file.Get(), &info) == 0 && info.st_uid == geteuid() &&
        TakeLock(file.Get(), LOCK_EX | LOCK_NB) == HostLock::Held && StandsAt(path, file.Get()))
        unlink(path.c_str());
}

} // namespace

bool IsReplacementName(std::string_view name)
{
    if (!name.starts_with(Prefix) || !name.ends_with(Suffix) ||
        name.size() < Prefix.size() + Suffix.size())
        return false;
    name.remove_prefix(Prefix.size());
    name.remove_suffix(Suffix.size());
    const size_t middle = name.find('-');
    return middle != name.npos && AreDigits(name.substr(0, middle)) &&
           AreDigits(name.substr(middle + 1));
}

void ClearAbandonedReplacements(const std::string& folder)
{
    const int listed = OpenFolder(folder);
    DIR* listing = listed < 0 ? nullptr : fdopendir(listed);
    if (listing == nullptr)
        return;
    std::vector<std::string> names;
    while (const dirent* entry = readdir(listing))
        if (IsReplacementName(entry->d_name))
            names.emplace_back(entry->d_name);
    closedir(listing);
    for (const std::string& name : names)
        ClearIfAbandoned(folder + "/" + name);
}

// One replacement.

Replacement::Replacement(std::shared_ptr<Replacements> table) : owner(std::move(table)) {}

Replacement::~Replacement()
{
    // Reached with a hidden file only by one that did not get as far as being pending.
    if (!hidden.empty() && !isPending && IsOurs() && StandsAt(hidden, file.Get()))
        unlink(hidden.c_str());
}

int Replacement::MakeHidden(const std::string& folder, mode_t mode)
{
    if (IsDiskFull())
        return ENOSPC;
    static std::atomic<unsigned> number{0};
    // A name may be taken by what another process numbered alike (in a container) has there, and a
    // file may go before it is locked: then it was taken for an abandoned one.
    for (int attempt = 0; attempt < 1000; ++attempt) {
        const std::string path = folder + "/" + std::string(Prefix) + std::to_string(getpid()) +
                                 "-" + std::to_string(++number) + std::string(Suffix);
        Descriptor made(OpenHost(path, O_RDWR | O_CREAT | O_EXCL | O_NOFOLLOW, mode));
        if (!made.IsOpen()) {
            if (errno == EEXIST)
                continue;
            return errno;
        }
        if (TakeLock(made.Get(), LOCK_SH | LOCK_NB) == HostLock::Busy ||
            !StandsAt(path, made.Get()))
            continue;
        maker = getpid();
        hidden = path;
        file = std::move(made);
        return 0;
    }
    return EEXIST;
}

/// Takes on the permissions and the owner of the file that is to be replaced.
int Replacement::BeLike(const struct stat& old)
{
    struct stat info {
    };
    if (fstat(file.Get(), &info) != 0)
        return errno;
    if ((info.st_uid != old.st_uid || info.st_gid != old.st_gid) &&
        fchown(file.Get(), old.st_uid, old.st_gid) != 0)
        return errno;
    return fchmod(file.Get(), old.st_mode & 07777) == 0 ? 0 : errno;
}

/// Whether this process made it, and not one that it was forked from.
bool Replacement::IsOurs() const
{
    return maker == getpid();
}

void Replacement::Join()
{
    const std::lock_guard guard(owner->lock);
    ++writers;
}

void Replacement::NoteWrite(bool whole)
{
    if (!whole)
        hasFailed = true;
    isWritten = true;
}

int Replacement::Close()
{
    const std::lock_guard guard(owner->lock);
    --writers;
    if (writers != 0 || !isPending || !(isWritten || hasFailed) || !IsOurs())
        return 0;
    return Settle();
}

/// Renames the hidden file to its place once it is durable, or drops it.
int Replacement::Settle()
{
    int error = hasFailed ? EIO : 0;
    if (error == 0)
        error = IsFaulty(FileOperation::Sync, devicePath.c_str()) ? EIO : Sync(file.Get());
    if (error == 0 && IsFaulty(FileOperation::Rename, devicePath.c_str()))
        error = EIO;
    if (error == 0 && rename(hidden.c_str(), target.c_str()) != 0)
        error = errno;
    if (error != 0) {
        Drop();
        return error;
    }
    isPending = false;
    hidden.clear();
    // That the new name outlives a crash is the folder's matter. The file is whole either way, so
    // that a failure here changes nothing.
    if (!IsFaulty(FileOperation::SyncFolder, devicePath.c_str())) {
        const Descriptor folder(OpenFolder(FolderOf(target)));
        if (folder.IsOpen())
            (void)Sync(folder.Get());
    }
    owner->Remove(this);
    return 0;
}

void Replacement::Drop()
{
    isPending = false;
    if (IsOurs())
        unlink(hidden.c_str());
    hidden.clear();
    owner->Remove(this);
}

// All of them.

int Replacements::Begin(const std::string& shown, mode_t mode, const std::u16string& devicePath,
                        std::shared_ptr<Replacement>* begun)
{
    const std::lock_guard guard(lock);
    begun->reset();
    const auto made = std::make_shared<Replacement>(shared_from_this());
    pending.reserve(pending.size() + 1);
    made->devicePath = devicePath;
    int error = FollowLinks(shown, &made->target);
    if (error != 0)
        return error;
    Descriptor old;
    struct stat info {
    };
    // What may not be written may not be replaced either, though the host would allow it.
    error = OpenRegular(made->target, O_WRONLY, 0, &old);
    if (error == 0 && fstat(old.Get(), &info) != 0)
        error = errno;
    if (error != 0 && error != ENOENT)
        return error;
    made->hasOld = error == 0;
    if (made->hasOld && IsMount(old.Get())) {
        Forget(made->target);
        return 0;
    }
    const std::string folder = FolderOf(made->target);
    ClearAbandonedReplacements(folder);
    error = made->MakeHidden(folder, made->hasOld ? 0600 : mode);
    const bool isRefused = error == EACCES || error == EPERM || error == EROFS;
    if (error != 0 && !(made->hasOld && isRefused))
        return error;
    Forget(made->target);
    if (error != 0 || (made->hasOld && made->BeLike(info) != 0))
        return 0;
    made->shownFolder = Canonical(FolderOf(shown));
    const std::string name = shown.substr(shown.rfind('/') + 1);
    made->shown = shown;
    made->shownName = DeviceName(name).value_or(u"");
    made->isPending = true;
    pending.push_back(made);
    *begun = made;
    return 0;
}

/// The file begins anew: neither what is pending for it nor a refusal stands any more.
void Replacements::Forget(const std::string& target)
{
    for (const auto& earlier : std::vector(pending))
        if (earlier->target == target)
            earlier->Drop();
    refused.erase(target);
}

bool Replacements::IsIdle()
{
    const std::lock_guard guard(lock);
    return pending.empty();
}

std::shared_ptr<Replacement> Replacements::PendingOf(const std::string& shown)
{
    const std::lock_guard guard(lock);
    std::string target;
    if (pending.empty() || FollowLinks(shown, &target) != 0)
        return nullptr;
    for (const auto& each : pending)
        if (each->target == target && each->IsOurs())
            return each;
    return nullptr;
}

std::shared_ptr<Replacement> Replacements::PendingIn(const std::string& folder,
                                                     std::u16string_view name, std::string* shown)
{
    const std::lock_guard guard(lock);
    if (pending.empty())
        return nullptr;
    const std::string resolved = Canonical(folder);
    const std::u16string folded = Folded(name);
    for (const auto& each : pending) {
        if (each->shownFolder != resolved || Folded(each->shownName) != folded || !each->IsOurs())
            continue;
        *shown = each->shown;
        return each;
    }
    return nullptr;
}

std::vector<std::pair<std::u16string, std::shared_ptr<Replacement>>>
Replacements::NewIn(const std::string& folder)
{
    const std::lock_guard guard(lock);
    std::vector<std::pair<std::u16string, std::shared_ptr<Replacement>>> names;
    if (pending.empty())
        return names;
    const std::string resolved = Canonical(folder);
    for (const auto& each : pending)
        if (each->shownFolder == resolved && each->IsOurs())
            names.emplace_back(each->shownName, each);
    return names;
}

bool Replacements::IsAnyBelow(const std::string& folder)
{
    const std::lock_guard guard(lock);
    if (pending.empty())
        return false;
    const std::string start = Canonical(folder) + "/";
    return std::any_of(pending.begin(), pending.end(), [&start](const auto& each) {
        return each->target.starts_with(start) || (each->shownFolder + "/").starts_with(start);
    });
}

int Replacements::SettleNow(const std::shared_ptr<Replacement>& settled)
{
    const std::lock_guard guard(lock);
    return settled->isPending ? settled->Settle() : 0;
}

void Replacements::Drop(const std::shared_ptr<Replacement>& dropped)
{
    const std::lock_guard guard(lock);
    if (dropped->isPending)
        dropped->Drop();
}

void Replacements::GiveUp(const std::shared_ptr<Replacement>& given)
{
    const std::lock_guard guard(lock);
    given->hasFailed = true;
    if (given->writers == 0 && given->isPending)
        given->Drop();
}

void Replacements::Refuse(const std::string& shown, DWORD error)
{
    const std::lock_guard guard(lock);
    std::string target;
    if (FollowLinks(shown, &target) == 0)
        refused[target] = error;
}

void Replacements::Allow(const std::string& shown)
{
    const std::lock_guard guard(lock);
    std::string target;
    if (!refused.empty() && FollowLinks(shown, &target) == 0)
        refused.erase(target);
}

DWORD Replacements::RefusalOf(const std::string& shown)
{
    const std::lock_guard guard(lock);
    std::string target;
    if (refused.empty() || FollowLinks(shown, &target) != 0)
        return ERROR_SUCCESS;
    const auto found = refused.find(target);
    return found == refused.end() ? ERROR_SUCCESS : found->second;
}

void Replacements::Remove(const Replacement* settled)
{
    const auto found = std::find_if(pending.begin(), pending.end(),
                                    [settled](const auto& each) { return each.get() == settled; });
    if (found != pending.end())
        pending.erase(found);
}

void Replacements::End()
{
    const std::lock_guard guard(lock);
    while (!pending.empty()) {
        const std::shared_ptr<Replacement> last = pending.back();
        const bool isEmptyAndNew = !last->hasOld && !last->isWritten && !last->hasFailed;
        if (isEmptyAndNew && last->IsOurs() && RenameNew(last->hidden, last->target) == 0) {
            last->hidden.clear();
            last->isPending = false;
            pending.pop_back();
        } else {
            last->Drop();
        }
    }
    refused.clear();
}

} // namespace tavrix::platform
