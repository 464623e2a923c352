// The device's file tree: which host file stands behind a device path. One table of mounts, the
// longest that a path begins with holds:
//
//     \                       the user's home folder
//     \Computer               the host's root
//     \Program Files\Tavrix   $XDG_DATA_HOME/tavrix over the folder of the program's file
//     \Application Data\Tavrix  $XDG_CONFIG_HOME/tavrix
//     \My Documents           the user's documents folder
//     \Temp                   the private folder of TemporaryFolder.h
//     \Storage Card           $TAVRIX_STORAGE_CARD, with its Temp; absent without the variable
//
// A mount has one host folder or several, called layers: writes go to the first, reads find the
// first layer that has the name. A file that is only in a later layer is copied up before it is
// written, and cannot be deleted. Names are tried as spelled, then without regard to case, except
// in the two temporary folders, which see thousands of files come and go.
//
// On the mount of the settings a file that is made always-new is replaced once it is whole
// (Replacement.h). Until then this process finds the hidden file in its place.
//
// A tree is safe from any thread. The one of the process is made at the first use, before main if
// need be, and is never destroyed; its private folders are given up when the process ends.
#pragma once

#include "platform/core/FileNames.h"
#include "platform/core/FolderLookup.h"
#include "platform/core/Replacement.h"
#include "platform/core/Surroundings.h"
#include "platform/core/TemporaryFolder.h"

#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <sys/stat.h>

namespace tavrix::platform
{

/// What stands under a device path.
struct FoundFile {
    std::string host; // empty for a folder that only the mount table makes
    struct stat info {
    };                       // of what a link points to
    bool isFixed = false;    // a mount or the way to one: not to be removed, moved or replaced
    bool isWritten = false;  // lies in the layer that takes the mount's writes
    bool isReplaced = false; // lies on a mount whose files are replaced; told of a missing one too
    /// What stands in for the file for this process. `info` is then of that, and `host` need not
    /// exist.
    std::shared_ptr<Replacement> pending;
    /// Where its bytes are.
    const std::string& Bytes() const { return pending != nullptr ? pending->Hidden() : host; }
    bool IsFolder() const { return S_ISDIR(info.st_mode); }
    bool IsRegular() const { return S_ISREG(info.st_mode); }
};

/// One name of a folder's listing.
struct ListedFile {
    std::u16string name;
    struct stat info {
    };
};

class FileTree
{
public:
    explicit FileTree(const Surroundings& surroundings);
    ~FileTree() { replacements->End(); }
    FileTree(const FileTree&) = delete;
    FileTree& operator=(const FileTree&) = delete;

    /// What stands under a path. ERROR_SUCCESS, ERROR_FILE_NOT_FOUND, ERROR_PATH_NOT_FOUND when the
    /// folder above it is missing too, or what the host reports.
    DWORD Find(const DevicePath& path, FoundFile* found);

    /// Find, and where the mount's files are replaced `hold` then keeps what was found from being
    /// replaced or given up meanwhile.
    DWORD FindAndHold(const DevicePath& path, FoundFile* found, Replacements::Hold* hold);

    /// The host path under which a file or folder may be written or made, which need not exist: in
    /// the writable layer, which is made if it is missing, with the folders above it. The spelling
    /// is that of the name that is there already, if any. ERROR_PATH_NOT_FOUND when the folder
    /// above is missing, ERROR_ACCESS_DENIED for a mount itself.
    DWORD PlaceToWrite(const DevicePath& path, std::string* host);

    /// The files of a folder that `wanted` takes (asked with the folded name), by name without
    /// regard to case. Names that have no device form are left out, and links that lead nowhere.
    DWORD List(const DevicePath& folder,
               const std::function<bool(std::u16string_view folded)>& wanted,
               std::vector<ListedFile>* files);

    /// In how many layers of its mount a path exists.
    size_t CountLayersWith(const DevicePath& path) const;

    /// The name by which a listing shows what Find has found.
    std::u16string NameOf(const DevicePath& path, const FoundFile& found) const;

    /// The host path of a file right in a temporary folder, where a name means one file only and
    /// needs no look-up; empty for every other path.
    std::string TemporaryFile(const DevicePath& path) const;
    /// The same of a path as paging spells it: a temporary folder's own path and the name of a
    /// paging file behind it. Empty for every other spelling, which is to be parsed.
    std::string PagingFile(LPCWSTR path) const;

    /// The host path of what stands under a path, or where a file of that name would be written;
    /// empty when it has none. Makes nothing.
    std::string HostPath(const DevicePath& path);

    /// Device paths under which a host path may appear, the one with the longest host folder first.
    std::vector<std::u16string> PossibleDevicePaths(const std::string& host);

    /// The replacements on the mount of the settings.
    Replacements& Replaced() { return *replacements; }
    /// A file could not be opened for writing, with `error`. Where files are replaced nothing that
    /// was meant for it must then reach the old one: what is pending is dropped, and with
    /// `madeAnew`, where the file should have been made always-new, it is not written in place
    /// until that succeeds. Does nothing on other mounts.
    void CouldNotWrite(const DevicePath& path, bool madeAnew, DWORD error);

    /// Ends what is pending and gives up the private folders. What happens in them afterwards
    /// fails.
    void Leave();

private:
    struct Mount {
        std::u16string path;               // "\Program Files\Tavrix"; empty for the root
        std::vector<std::u16string> parts; // its parts, folded
        std::vector<std::string> layers;
        bool isTemporary = false;   // names are taken as spelled
        bool isListed = true;       // shows in the listing of the folder above it
        bool goesElsewhere = false; // unwritable: writes go to the run's own folder
        bool isElsewhere = false;   // they do
        bool isReplaced = false;    // what is made always-new there is replaced once it is whole
    };
    struct Route {
        Mount* mount = nullptr;
        std::vector<std::u16string> rest;
    };

    Mount& Add(std::u16string_view path, std::vector<std::string> layers);
    Route RouteOf(const DevicePath& path) const;
    bool IsUsersTemp(const std::vector<std::u16string>& rest) const;
    bool LeadsToMount(const DevicePath& path, const Mount** exact) const;
    std::vector<std::string> LayersOf(const Mount& mount) const;
    DWORD FindBelow(const Route& route, FoundFile* found) const;
    bool FindPending(const std::string& layer, const Route& route, Spelling spelling,
                     FoundFile* found) const;
    void TakePending(std::shared_ptr<Replacement> pending, FoundFile* found) const;
    void ListPending(const std::string& folder,
                     const std::function<bool(std::u16string_view folded)>& wanted,
                     std::map<std::u16string, std::map<std::u16string, struct stat>>* names) const;
    DWORD MakeWritable(Mount& mount);
    DWORD MakeFolderAbove(const Route& route, std::string* folder);

    Surroundings surroundings;
    const std::shared_ptr<Replacements> replacements = std::make_shared<Replacements>();
    TemporaryFolder temporary;
    RunFolder run;
    mutable std::mutex lock;                    // guards the layers
    std::vector<std::unique_ptr<Mount>> mounts; // longest first
    Mount* root = nullptr;
    Mount* temp = nullptr;
};

/// The tree of this process.
std::shared_ptr<FileTree> CurrentTree();
/// Replaces it by one made from other surroundings; tests only.
void ReplaceTree(const Surroundings& surroundings);

} // namespace tavrix::platform
