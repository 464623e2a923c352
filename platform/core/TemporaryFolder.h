// The private host folders of a run. `TemporaryFolder` is what the device calls \Temp: one folder
// for all processes of one user, so that they see each other's files as on the device, held by each
// of them through a lock that the host drops with the process, however that ends. Whoever finds
// itself alone with a folder clears it: the last process at its end, and a starting one what a
// crash left behind. Only files of the program's own naming are cleared, so that what a person
// saved there stays. `RunFolder` belongs to one process and takes what cannot be written where it
// belongs.
#pragma once

#include "platform/core/HostFiles.h"

#include <mutex>
#include <string>
#include <string_view>
#include <sys/types.h>
#include <vector>

namespace tavrix::platform
{

/// Whether a name is one that the program gives to a paging file: six digits and ".tmp", or any
/// name that ends in ".swp".
bool IsPagingName(std::string_view name);

class TemporaryFolder
{
public:
    /// Takes part in the user's folder below the first of `bases` that allows one, and clears there
    /// what no live process holds.
    explicit TemporaryFolder(const std::vector<std::string>& bases);
    ~TemporaryFolder() { Leave(); }
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;

    /// The host path; empty when no base allowed a folder.
    const std::string& Path() const { return path; }
    /// Gives the folder up, and clears it when no other process holds it. Does nothing in a process
    /// that was forked from the one that made this object, nor a second time.
    void Leave();

private:
    bool TakePart(const std::string& base);
    bool Make(const std::string& base);

    std::string path;
    Descriptor folder; // holds the lock
    bool locks = true; // false: the file system has no locks and the folder is ours alone
    pid_t owner;
};

class RunFolder
{
public:
    explicit RunFolder(std::vector<std::string> possibleBases) : bases(std::move(possibleBases)) {}
    ~RunFolder() { Remove(); }
    RunFolder(const RunFolder&) = delete;
    RunFolder& operator=(const RunFolder&) = delete;

    /// The host path, made at the first call; empty when no base allows a folder.
    std::string Path();
    /// Removes it with all that it holds.
    void Remove();

private:
    std::mutex lock;
    std::vector<std::string> bases;
    std::string path;
    Descriptor folder;
    pid_t owner = 0;
};

} // namespace tavrix::platform
