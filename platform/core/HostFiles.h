// The few things that the file layer does with host paths in more than one place. Functions that
// can fail answer the host's error number, 0 for success.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <sys/file.h>
#include <sys/stat.h>
#include <sys/types.h>

namespace tavrix::platform
{

/// A host descriptor that is closed at the end of its scope.
class Descriptor
{
public:
    explicit Descriptor(int descriptor = -1) : number(descriptor) {}
    Descriptor(Descriptor&& other) noexcept : number(other.Release()) {}
    Descriptor& operator=(Descriptor&& other) noexcept;
    ~Descriptor();
    int Get() const { return number; }
    bool IsOpen() const { return number >= 0; }
    int Release();

private:
    int number;
};

/// open() that is not given up for a signal; always O_CLOEXEC. Negative on failure, `errno` set.
int OpenHost(const std::string& path, int flags, mode_t mode = 0);
/// Opens a file if it is a regular one. EISDIR, ENXIO or the host's error otherwise; never waits
/// for the other end of a FIFO.
int OpenRegular(const std::string& path, int flags, mode_t mode, Descriptor* opened);

/// Reads or writes at a position until all is done, the file ends or an error comes; answers what
/// was done and leaves the error, or 0, in `*error`.
size_t ReadAt(int file, void* bytes, size_t length, off_t position, int* error);
size_t WriteAt(int file, const void* bytes, size_t length, off_t position, int* error);

/// Makes a folder and what is missing above it, each with mode 0700; a folder that is there is left
/// as it is.
int MakeFolders(const std::string& path);
bool IsHostFolder(const std::string& path);
/// Copies a file's bytes to a new file of that name, which appears under it once it is whole. What
/// stands there already wins. The copy may be written by its owner.
int CopyWhole(const std::string& from, const std::string& to);
/// Renames without replacing what stands under the new name; EEXIST when something does.
int RenameNew(const std::string& from, const std::string& to);
/// Makes what was written to a file, or the names of a folder, outlive a crash of the host. Where
/// the file system knows no such thing that counts as done.
int Sync(int file);
/// The whole text of a file, at most 1 MiB; empty when it cannot be read.
std::string FileText(const std::string& path);
/// The path made absolute from the current folder, with "." and double "/" dropped and ".." left.
std::string AbsolutePath(std::string_view path);
/// The path with every link resolved; empty when it does not exist.
std::string Canonical(const std::string& path);
/// The file that an absolute path leads to, with every link resolved; it need not exist, but its
/// folder must. A link that leads nowhere gives the path that it leads to.
int FollowLinks(const std::string& path, std::string* file);

enum class HostLock { Held, Busy, Unsupported };
/// flock(): `kind` is LOCK_SH or LOCK_EX, with LOCK_NB for an answer at once. The lock goes with
/// the last descriptor of this opening.
HostLock TakeLock(int file, int kind);
/// Whether an open file or folder still stands under its path, which is not followed as a link.
bool StandsAt(const std::string& path, int file);

} // namespace tavrix::platform
