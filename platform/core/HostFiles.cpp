#include "platform/core/HostFiles.h"

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <unistd.h>
#include <vector>

namespace tavrix::platform
{

Descriptor& Descriptor::operator=(Descriptor&& other) noexcept
{
    if (this != &other) {
        if (IsOpen())
            close(number);
        number = other.Release();
    }
    return *this;
}

Descriptor::~Descriptor()
{
    if (IsOpen())
        close(number);
}

int Descriptor::Release()
{
    const int released = number;
    number = -1;
    return released;
}

int OpenHost(const std::string& path, int flags, mode_t mode)
{
    int file = -1;
    do {
        file = open(path.c_str(), flags | O_CLOEXEC, mode);
    } while (file < 0 && errno == EINTR);
    return file;
}

int OpenRegular(const std::string& path, int flags, mode_t mode, Descriptor* opened)
{
    // Without O_NONBLOCK the opening of a FIFO waits for its other end.
    Descriptor file(OpenHost(path, flags | O_NONBLOCK | O_NOCTTY, mode));
    if (!file.IsOpen())
        return errno;
    // What has just been made is regular.
    const bool isNew = (flags & (O_CREAT | O_EXCL)) == (O_CREAT | O_EXCL);
    struct stat info {
    };
    if (!isNew && fstat(file.Get(), &info) != 0)
        return errno;
    if (!isNew && !S_ISREG(info.st_mode))
        return S_ISDIR(info.st_mode) ? EISDIR : ENXIO;
    *opened = std::move(file);
    return 0;
}

size_t ReadAt(int file, void* bytes, size_t length, off_t position, int* error)
{
    size_t done = 0;
    *error = 0;
    while (done < length) {
        const ssize_t got = pread(file, static_cast<char*>(bytes) + done, length - done,
                                  position + static_cast<off_t>(done));
        if (got > 0) {
            done += static_cast<size_t>(got);
        } else if (got == 0) {
            break;
        } else if (errno != EINTR) {
            *error = errno;
            break;
        }
    }
    return done;
}

size_t WriteAt(int file, const void* bytes, size_t length, off_t position, int* error)
{
    size_t done = 0;
    *error = 0;
    while (done < length) {
        const ssize_t put = pwrite(file, static_cast<const char*>(bytes) + done, length - done,
                                   position + static_cast<off_t>(done));
        if (put > 0) {
            done += static_cast<size_t>(put);
        } else if (put == 0) {
            *error = ENOSPC;
            break;
        } else if (errno != EINTR) {
            *error = errno;
            break;
        }
    }
    return done;
}

bool IsHostFolder(const std::string& path)
{
    struct stat info {
    };
    return stat(path.empty() ? "/" : path.c_str(), &info) == 0 && S_ISDIR(info.st_mode);
}

int MakeFolders(const std::string& path)
{
    if (path.empty() || IsHostFolder(path))
        return 0;
    const int above = MakeFolders(path.substr(0, path.rfind('/')));
    if (above != 0)
        return above;
    if (mkdir(path.c_str(), 0700) == 0)
        return 0;
    const int error = errno;
    // Another process or thread may have made it meanwhile.
    return error == EEXIST && IsHostFolder(path) ? 0 : error;
}

int CopyWhole(const std::string& from, const std::string& to)
{
    Descriptor source;
    int error = OpenRegular(from, O_RDONLY, 0, &source);
    if (error != 0)
        return error;
    struct stat info {
    };
    if (fstat(source.Get(), &info) != 0)
        return errno;
    std::string passing = to.substr(0, to.rfind('/')) + "/.tavrix-XXXXXX";
    const Descriptor copy(mkostemp(passing.data(), O_CLOEXEC));
    if (!copy.IsOpen())
        return errno;
    std::vector<char> block(256 * 1024);
    for (off_t position = 0; error == 0;) {
        const size_t got = ReadAt(source.Get(), block.data(), block.size(), position, &error);
        if (error != 0 || got == 0)
            break;
        WriteAt(copy.Get(), block.data(), got, position, &error);
        position += static_cast<off_t>(got);
    }
    if (error == 0 && fchmod(copy.Get(), (info.st_mode & 0777) | S_IRUSR | S_IWUSR) != 0)
        error = errno;
    if (error == 0 && link(passing.c_str(), to.c_str()) != 0 && errno != EEXIST) {
        // File systems without hard links.
        error = rename(passing.c_str(), to.c_str()) == 0 ? 0 : errno;
    }
    unlink(passing.c_str());
    return error;
}

int RenameNew(const std::string& from, const std::string& to)
{
    if (renameat2(AT_FDCWD, from.c_str(), AT_FDCWD, to.c_str(), RENAME_NOREPLACE) == 0)
        return 0;
    if (errno != EINVAL && errno != ENOSYS)
        return errno;
    // File systems that know no such renaming.
    struct stat info {
    };
    if (lstat(to.c_str(), &info) == 0)
        return EEXIST;
    return rename(from.c_str(), to.c_str()) == 0 ? 0 : errno;
}

int Sync(int file)
{
    int result = 0;
    do {
        result = fsync(file);
    } while (result != 0 && errno == EINTR);
    return result == 0 || errno == EINVAL || errno == ENOTSUP || errno == ENOSYS ? 0 : errno;
}

std::string FileText(const std::string& path)
{
    Descriptor file;
    if (OpenRegular(path, O_RDONLY, 0, &file) != 0)
        return {};
    std::string text(1024 * 1024, '\0');
    int error = 0;
    text.resize(ReadAt(file.Get(), text.data(), text.size(), 0, &error));
    return error == 0 ? text : std::string();
}

std::string AbsolutePath(std::string_view path)
{
    std::string whole;
    if (!path.starts_with('/')) {
        std::vector<char> current(65536);
        if (getcwd(current.data(), current.size()) != nullptr)
            whole = current.data();
        whole += '/';
    }
    whole += path;
    std::string cleaned;
    for (size_t begin = 0; begin < whole.size();) {
        const size_t end = std::min(whole.find('/', begin), whole.size());
        const std::string part = whole.substr(begin, end - begin);
        if (!part.empty() && part != ".")
            cleaned += '/' + part;
        begin = end + 1;
    }
    return cleaned.empty() ? "/" : cleaned;
}

std::string Canonical(const std::string& path)
{
    char* resolved = realpath(path.empty() ? "/" : path.c_str(), nullptr);
    std::string canonical = resolved != nullptr ? resolved : "";
    std::free(resolved);
    return canonical;
}

int FollowLinks(const std::string& path, std::string* file)
{
    constexpr int MostLinks = 40; // as the host counts
    std::string next = path;
    for (int links = 0; links <= MostLinks; ++links) {
        const size_t slash = next.rfind('/');
        const std::string name = next.substr(slash + 1);
        if (name.empty() || name == "." || name == "..")
            return ENOENT;
        std::string folder = Canonical(next.substr(0, slash));
        if (folder.empty())
            return errno;
        if (folder == "/")
            folder.clear();
        next = folder + "/" + name;
        std::vector<char> text(PATH_MAX);
        const ssize_t length = readlink(next.c_str(), text.data(), text.size());
        if (length < 0) {
            if (errno != EINVAL && errno != ENOENT)
                return errno;
            *file = std::move(next);
            return 0;
        }
        const std::string link(text.data(), static_cast<size_t>(length));
        next = link.starts_with('/') ? link : folder + "/" + link;
    }
    return ELOOP;
}

HostLock TakeLock(int file, int kind)
{
    int result = 0;
    do {
        result = flock(file, kind);
    } while (result != 0 && errno == EINTR);
    if (result == 0)
        return HostLock::Held;
    return errno == EWOULDBLOCK ? HostLock::Busy : HostLock::Unsupported;
}

bool StandsAt(const std::string& path, int file)
{
    struct stat opened {
    };
    struct stat named {
    };
    return fstat(file, &opened) == 0 && lstat(path.c_str(), &named) == 0 &&
           opened.st_dev == named.st_dev && opened.st_ino == named.st_ino;
}

} // namespace tavrix::platform
