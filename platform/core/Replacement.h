// Files that are replaced as a whole. On the mount of the settings a file that is made always-new
// is not emptied: what is written goes to a hidden file beside it, and takes its place once it is
// whole, so that neither a crash nor a full disk leaves half of it behind.
//
// The way of a replacement: `Replacements::Begin` makes the hidden file. It stays pending, and this
// process sees it as the file, until the last handle that writes to it closes after a write. Then
// it is made durable and renamed, or dropped if anything of the writing had failed. After that the
// name is an ordinary file again. What is still pending when the tree ends is dropped, but an empty
// file where there was none is put there.
//
// A hidden file is locked by the process that made it as long as that lives. Whoever begins a
// replacement in a folder clears there what a killed process left.
//
// Safe from any thread. A forked child touches no replacement of its parent.
#pragma once

#include "platform/core/HostFiles.h"

#include <windows.h>

#include <atomic>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>
#include <vector>

namespace tavrix::platform
{

/// Whether a host name is that of a hidden file: ".tavrix-", two numbers with "-" between, ".new".
bool IsReplacementName(std::string_view name);

/// Removes the hidden files of this user in a host folder that no live process holds.
void ClearAbandonedReplacements(const std::string& folder);

class Replacements;

/// One hidden file. Made by Replacements::Begin alone.
class Replacement
{
public:
    explicit Replacement(std::shared_ptr<Replacements> owner);
    ~Replacement();
    Replacement(const Replacement&) = delete;
    Replacement& operator=(const Replacement&) = delete;

    /// Where its bytes are while it is pending.
    const std::string& Hidden() const { return hidden; }
    /// The open hidden file, for reading and writing.
    int File() const { return file.Get(); }

    /// One more handle may write to it; each ends with Close.
    void Join();
    /// Something was written, or should have been. One write that is not whole drops the lot.
    void NoteWrite(bool whole);
    /// A handle that may write closes. The last one after a write settles the replacement: 0 when
    /// it stands in its place or goes on pending, else the host's error, and it is dropped.
    int Close();

private:
    friend class Replacements;

    int MakeHidden(const std::string& folder, mode_t mode);
    int BeLike(const struct stat& old);
    int Settle();
    void Drop();
    bool IsOurs() const;

    const std::shared_ptr<Replacements> owner;
    std::u16string devicePath; // for the tests' faults
    std::string target;        // the file to be replaced, all links resolved
    std::string shownFolder;   // the folder that shows it, links resolved
    std::u16string shownName;
    std::string shown; // folder and name as the host spells it
    std::string hidden;
    Descriptor file; // holds the lock
    pid_t maker = 0;
    bool hasOld = false; // a file stood there when this began
    bool isPending = false;
    unsigned writers = 0;
    std::atomic<bool> isWritten{false};
    std::atomic<bool> hasFailed{false};
};

/// The pending replacements of one file tree.
class Replacements : public std::enable_shared_from_this<Replacements>
{
public:
    using Hold = std::unique_lock<std::recursive_mutex>;

    bool IsIdle();

    /// As long as it is held no replacement begins, settles or goes.
    Hold HoldStill() { return Hold(lock); }

    /// Begins the replacement of the file at a host path, which need not exist; `mode` is for a new
    /// one. A pending one of the same file is dropped, and handles that are open on it write into
    /// the void. 0, or the host's error. 0 and null: the file can only be written in place, since
    /// its folder takes no files of ours, its owner could not be kept, or it is a mount itself.
    int Begin(const std::string& shown, mode_t mode, const std::u16string& devicePath,
              std::shared_ptr<Replacement>* begun);

    /// What is pending for a file that stands at a host path; null for none.
    std::shared_ptr<Replacement> PendingOf(const std::string& shown);
    /// What is pending under a name (in any case) of a host folder where no such file stands. Gives
    /// the path that it will have.
    std::shared_ptr<Replacement> PendingIn(const std::string& folder, std::u16string_view name,
                                           std::string* shown);
    /// The names under which a host folder shows pending files that are not there yet.
    std::vector<std::pair<std::u16string, std::shared_ptr<Replacement>>>
    NewIn(const std::string& folder);
    /// Whether anything below a host folder is pending.
    bool IsAnyBelow(const std::string& folder);

    /// Puts a pending file where it belongs before its last close, as it stands; drops it if one
    /// of its writes had failed.
    int SettleNow(const std::shared_ptr<Replacement>& pending);
    void Drop(const std::shared_ptr<Replacement>& pending);
    /// Drops it, at the last close if handles are open on it.
    void GiveUp(const std::shared_ptr<Replacement>& pending);

    /// Keeps a file from being written in place: its replacement failed to begin, and the writes
    /// meant for it would mix with the old bytes. Begin ends that, and Allow, for a file that is
    /// another one now.
    void Refuse(const std::string& shown, DWORD error);
    void Allow(const std::string& shown);
    /// The error by which it was refused; ERROR_SUCCESS for a file that was not.
    DWORD RefusalOf(const std::string& shown);

    /// Ends everything that is pending.
    void End();

private:
    friend class Replacement;

    void Forget(const std::string& target);
    void Remove(const Replacement* settled);

    std::recursive_mutex lock; // guards all that is not atomic here and in the replacements
    std::vector<std::shared_ptr<Replacement>> pending;
    std::map<std::string, DWORD> refused; // by the file's path, links resolved
};

} // namespace tavrix::platform
