// What is done to files and folders by name: attributes, deleting, moving, copying, folders.

#include "platform/core/ErrorCodes.h"
#include "platform/core/FileFaults.h"
#include "platform/core/FileTree.h"
#include "platform/core/FindData.h"
#include "platform/core/HostFiles.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <unistd.h>

using namespace tavrix::platform;

namespace
{

constexpr mode_t AnyoneWrites = 0222;

/// A path that must exist: its parts and what stands there. `hold` as in FileTree::FindAndHold.
DWORD FindExisting(FileTree& tree, LPCWSTR path, DevicePath* parsed, FoundFile* found,
                   Replacements::Hold* hold)
{
    DWORD error = ParsePath(path, parsed);
    if (error != ERROR_SUCCESS)
        return error;
    error = tree.FindAndHold(*parsed, found, hold);
    // A separator at the end says that a folder is meant.
    if (error == ERROR_SUCCESS && parsed->endsInSeparator && !found->IsFolder())
        return ERROR_PATH_NOT_FOUND;
    return error;
}

DWORD HostResult(int result)
{
    return result == 0 ? ERROR_SUCCESS : DeviceError(errno);
}

/// Runs an operation on the tree and answers for it as the interface does.
template <class Operation>
BOOL Answer(Operation operation)
{
    return WithoutThrowing(FALSE, [&] {
        const DWORD error = operation(*CurrentTree());
        return error == ERROR_SUCCESS ? TRUE : FailWith(error);
    });
}

bool IsSame(const struct stat& a, const struct stat& b)
{
    return a.st_dev == b.st_dev && a.st_ino == b.st_ino;
}

/// Whether a later layer of the same mount has the name too, so that it would show again once it is
/// gone from the first.
bool StandsBelow(FileTree& tree, const DevicePath& path, const FoundFile& found)
{
    return tree.CountLayersWith(path) > (found.isWritten ? 1u : 0u);
}

DWORD Delete(FileTree& tree, LPCWSTR path)
{
    DevicePath parsed;
    FoundFile found;
    Replacements::Hold hold;
    const std::string paging = tree.PagingFile(path);
    if (!paging.empty() && unlink(paging.c_str()) == 0)
        return ERROR_SUCCESS;
    if (ParsePath(path, &parsed) == ERROR_SUCCESS && !parsed.endsInSeparator) {
        const std::string temporary = tree.TemporaryFile(parsed);
        if (!temporary.empty() && unlink(temporary.c_str()) == 0)
            return ERROR_SUCCESS;
    }
    const DWORD error = FindExisting(tree, path, &parsed, &found, &hold);
    if (error != ERROR_SUCCESS)
        return error;
    if (found.isFixed || found.IsFolder() || !found.isWritten ||
        (found.info.st_mode & AnyoneWrites) == 0)
        return ERROR_ACCESS_DENIED;
    const int result = unlink(found.host.c_str());
    // A pending file goes with what it was to replace, if anything stood there.
    if (found.pending != nullptr && (result == 0 || errno == ENOENT)) {
        tree.Replaced().Drop(found.pending);
        return ERROR_SUCCESS;
    }
    return HostResult(result);
}

/// Copies the bytes of an open file to another one, asking the tests' fault for each block.
DWORD CopyBytes(int from, int to, LPCWSTR fromPath, LPCWSTR toPath)
{
    std::vector<char> block(256 * 1024);
    int error = 0;
    for (off_t position = 0;;) {
        if (IsFaulty(FileOperation::Read, fromPath))
            return DeviceError(EIO);
        const size_t got = ReadAt(from, block.data(), block.size(), position, &error);
        if (error != 0)
            return DeviceError(error);
        if (got == 0)
            return ERROR_SUCCESS;
        if (IsFaulty(FileOperation::Write, toPath))
            return ERROR_DISK_FULL;
        WriteAt(to, block.data(), got, position, &error);
        if (error != 0)
            return DeviceError(error);
        position += static_cast<off_t>(got);
    }
}

/// Copies to a file that is replaced once the copy is whole, and else stays as it was.
DWORD CopyToReplacement(int from, Replacement& replacement, LPCWSTR fromPath, LPCWSTR toPath,
                        Replacements::Hold* hold)
{
    replacement.Join();
    hold->unlock();
    const DWORD error = CopyBytes(from, replacement.File(), fromPath, toPath);
    replacement.NoteWrite(error == ERROR_SUCCESS);
    const int hostError = replacement.Close();
    return error != ERROR_SUCCESS ? error : DeviceError(hostError);
}

DWORD Copy(FileTree& tree, LPCWSTR from, LPCWSTR to, bool failIfExists)
{
    DevicePath source;
    DevicePath target;
    FoundFile found;
    FoundFile there;
    Replacements::Hold hold;
    DWORD error = FindExisting(tree, from, &source, &found, &hold);
    if (error == ERROR_SUCCESS)
        error = ParsePath(to, &target);
    if (error != ERROR_SUCCESS)
        return error;
    if (!found.IsRegular())
        return ERROR_ACCESS_DENIED;
    error = tree.FindAndHold(target, &there, &hold);
    const bool exists = error == ERROR_SUCCESS;
    if (!exists && error != ERROR_FILE_NOT_FOUND)
        return error;
    if (exists && failIfExists)
        return ERROR_FILE_EXISTS;
    if (target.endsInSeparator || (exists && !there.IsRegular()))
        return ERROR_ACCESS_DENIED;
    // A file copied onto itself, by whatever name, would be emptied before it is read.
    if (exists && IsSame(found.info, there.info))
        return ERROR_SHARING_VIOLATION;
    if (IsFaulty(FileOperation::Open, from))
        return ERROR_ACCESS_DENIED;
    if (IsFaulty(FileOperation::Create, to))
        return ERROR_DISK_FULL;
    std::string place;
    error = tree.PlaceToWrite(target, &place);
    if (error != ERROR_SUCCESS)
        return error;
    Descriptor input;
    Descriptor output;
    std::shared_ptr<Replacement> replacement;
    const mode_t mode = found.info.st_mode & 0777;
    int hostError = OpenRegular(found.Bytes(), O_RDONLY, 0, &input);
    if (hostError == 0 && there.isReplaced && !failIfExists)
        hostError = tree.Replaced().Begin(place, mode, to, &replacement);
    if (hostError == 0 && replacement == nullptr)
        hostError = OpenRegular(place, O_WRONLY | O_CREAT | O_TRUNC | (failIfExists ? O_EXCL : 0),
                                mode, &output);
    if (hostError != 0)
        return DeviceError(hostError);
    if (replacement != nullptr)
        return CopyToReplacement(input.Get(), *replacement, from, to, &hold);
    error = CopyBytes(input.Get(), output.Get(), from, to);
    if (error != ERROR_SUCCESS)
        unlink(place.c_str());
    return error;
}

/// The host path of the new name when a file is only spelled anew.
std::string Respelled(const std::string& host, const DevicePath& path)
{
    return host.substr(0, host.rfind('/') + 1) + HostName(path.parts.back()).value_or("");
}

DWORD Move(FileTree& tree, LPCWSTR from, LPCWSTR to)
{
    DevicePath source;
    DevicePath target;
    FoundFile found;
    FoundFile there;
    Replacements::Hold hold;
    DWORD error = FindExisting(tree, from, &source, &found, &hold);
    if (error == ERROR_SUCCESS)
        error = ParsePath(to, &target);
    if (error != ERROR_SUCCESS)
        return error;
    if (found.isFixed || !found.isWritten || (found.IsFolder() && StandsBelow(tree, source, found)))
        return ERROR_ACCESS_DENIED;
    // As a folder in which a file is open.
    if (found.isReplaced && found.IsFolder() && tree.Replaced().IsAnyBelow(found.host))
        return ERROR_ACCESS_DENIED;
    error = tree.FindAndHold(target, &there, &hold);
    const bool isRespelled = error == ERROR_SUCCESS && !there.isFixed && there.host == found.host;
    if (error == ERROR_SUCCESS && !isRespelled)
        return ERROR_ALREADY_EXISTS;
    if (!isRespelled && error != ERROR_FILE_NOT_FOUND)
        return error;
    std::string place;
    error = isRespelled ? ERROR_SUCCESS : tree.PlaceToWrite(target, &place);
    // What moves is the file as this process sees it.
    if (error == ERROR_SUCCESS && found.pending != nullptr)
        error = DeviceError(tree.Replaced().SettleNow(found.pending));
    if (error != ERROR_SUCCESS)
        return error;
    if (isRespelled) {
        const std::string respelled = Respelled(found.host, target);
        return HostResult(rename(found.host.c_str(), respelled.c_str()));
    }
    if (there.isReplaced)
        tree.Replaced().Allow(place);
    const int result = RenameNew(found.host, place);
    if (result == EEXIST)
        return ERROR_ALREADY_EXISTS;
    if (result != EXDEV || !found.IsRegular())
        return DeviceError(result);
    // Another file system: the device moves files there, and folders not.
    error = DeviceError(CopyWhole(found.host, place));
    return error != ERROR_SUCCESS ? error : HostResult(unlink(found.host.c_str()));
}

DWORD MakeFolder(FileTree& tree, LPCWSTR path)
{
    DevicePath parsed;
    FoundFile found;
    DWORD error = ParsePath(path, &parsed);
    if (error != ERROR_SUCCESS)
        return error;
    error = tree.Find(parsed, &found);
    if (error == ERROR_SUCCESS)
        return ERROR_ALREADY_EXISTS;
    if (error != ERROR_FILE_NOT_FOUND)
        return error;
    if (IsFaulty(FileOperation::Create, path))
        return ERROR_DISK_FULL;
    std::string place;
    error = tree.PlaceToWrite(parsed, &place);
    if (error != ERROR_SUCCESS)
        return error;
    error = HostResult(mkdir(place.c_str(), 0777));
    return error == ERROR_FILE_EXISTS ? ERROR_ALREADY_EXISTS : error;
}

DWORD RemoveFolder(FileTree& tree, LPCWSTR path)
{
    DevicePath parsed;
    FoundFile found;
    Replacements::Hold hold;
    const DWORD error = FindExisting(tree, path, &parsed, &found, &hold);
    if (error != ERROR_SUCCESS)
        return error;
    if (found.isFixed || !found.IsFolder() || !found.isWritten || StandsBelow(tree, parsed, found))
        return ERROR_ACCESS_DENIED;
    struct stat itself {
    };
    // A link to a folder goes, and what it points to stays.
    if (lstat(found.host.c_str(), &itself) == 0 && S_ISLNK(itself.st_mode))
        return HostResult(unlink(found.host.c_str()));
    // What a killed process left there shows in no listing.
    if (found.isReplaced)
        ClearAbandonedReplacements(found.host);
    return HostResult(rmdir(found.host.c_str()));
}

} // namespace

DWORD WINAPI GetFileAttributesW(LPCWSTR path)
{
    return WithoutThrowing(INVALID_FILE_ATTRIBUTES, [&] {
        DevicePath parsed;
        FoundFile found;
        const std::shared_ptr<FileTree> tree = CurrentTree();
        Replacements::Hold hold;
        const DWORD error = FindExisting(*tree, path, &parsed, &found, &hold);
        if (error != ERROR_SUCCESS) {
            SetLastError(error);
            return INVALID_FILE_ATTRIBUTES;
        }
        return AttributesOf(parsed.parts.empty() ? u"" : parsed.parts.back(), found.info);
    });
}

BOOL WINAPI DeleteFileW(LPCWSTR path)
{
    return Answer([&](FileTree& tree) { return Delete(tree, path); });
}

BOOL WINAPI MoveFileW(LPCWSTR from, LPCWSTR to)
{
    return Answer([&](FileTree& tree) { return Move(tree, from, to); });
}

BOOL WINAPI CopyFileW(LPCWSTR from, LPCWSTR to, BOOL failIfExists)
{
    return Answer([&](FileTree& tree) { return Copy(tree, from, to, failIfExists != FALSE); });
}

BOOL WINAPI CreateDirectoryW(LPCWSTR path, LPSECURITY_ATTRIBUTES)
{
    return Answer([&](FileTree& tree) { return MakeFolder(tree, path); });
}

BOOL WINAPI RemoveDirectoryW(LPCWSTR path)
{
    return Answer([&](FileTree& tree) { return RemoveFolder(tree, path); });
}
