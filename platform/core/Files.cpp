// Making and opening files.

#include "platform/core/ErrorCodes.h"
#include "platform/core/FileFaults.h"
#include "platform/core/FileTree.h"
#include "platform/core/OpenFile.h"

#include <cerrno>
#include <fcntl.h>

using namespace tavrix::platform;

namespace
{

/// What a disposition asks for.
struct Opening {
    bool mustExist = false;
    bool mustBeNew = false;
    bool empties = false;
};

bool OpeningOf(DWORD disposition, Opening* opening)
{
    switch (disposition) {
    case CREATE_NEW:
        *opening = {false, true, false};
        return true;
    case CREATE_ALWAYS:
        *opening = {false, false, true};
        return true;
    case OPEN_EXISTING:
        *opening = {true, false, false};
        return true;
    case OPEN_ALWAYS:
        *opening = {false, false, false};
        return true;
    case TRUNCATE_EXISTING:
        *opening = {true, false, true};
        return true;
    default:
        return false;
    }
}

/// The host's flags for a file that need not be made.
int AccessFlags(DWORD access, const Opening& opening)
{
    const bool writes = (access & GENERIC_WRITE) != 0 || opening.empties;
    if (!writes && (access & GENERIC_READ) == 0)
        return O_PATH; // a probe, which needs no permission to read
    const bool reads = (access & GENERIC_READ) != 0;
    return (writes ? reads ? O_RDWR : O_WRONLY : O_RDONLY) | (opening.empties ? O_TRUNC : 0);
}

mode_t ModeOf(DWORD attributes)
{
    return (attributes & FILE_ATTRIBUTE_READONLY) != 0 ? 0444 : 0666;
}

/// Opens the file at a host path, or makes it where `exists` is false.
DWORD OpenAt(const std::string& host, bool exists, DWORD access, const Opening& opening,
             DWORD attributes, Descriptor* opened)
{
    int flags = AccessFlags(access, opening);
    if (!exists) {
        if (IsDiskFull())
            return ERROR_DISK_FULL;
        if (flags == O_PATH)
            flags = O_RDONLY;
        flags |= O_CREAT | (opening.mustBeNew ? O_EXCL : 0);
    }
    return DeviceError(OpenRegular(host, flags, ModeOf(attributes), opened));
}

/// A file right in a temporary folder: no look-up goes before, and the host's own answer decides.
DWORD OpenTemporary(FileTree& tree, const DevicePath& path, const std::string& host, DWORD access,
                    const Opening& opening, DWORD attributes, Descriptor* opened, bool* existed)
{
    if (!opening.mustBeNew) {
        const DWORD error = OpenAt(host, true, access, opening, attributes, opened);
        *existed = error == ERROR_SUCCESS;
        if (error != ERROR_FILE_NOT_FOUND || opening.mustExist)
            return error;
    }
    DWORD error = OpenAt(host, false, access, opening, attributes, opened);
    if (error != ERROR_FILE_NOT_FOUND)
        return error;
    std::string place;
    error = tree.PlaceToWrite(path, &place); // makes the folder
    return error != ERROR_SUCCESS ? error
                                  : OpenAt(place, false, access, opening, attributes, opened);
}

/// Any other file.
DWORD OpenFound(FileTree& tree, const DevicePath& path, DWORD access, const Opening& opening,
                DWORD attributes, Descriptor* opened, bool* existed)
{
    FoundFile found;
    DWORD error = tree.Find(path, &found);
    if (error != ERROR_SUCCESS && (error != ERROR_FILE_NOT_FOUND || opening.mustExist))
        return error;
    *existed = error == ERROR_SUCCESS;
    if (*existed && opening.mustBeNew)
        return ERROR_FILE_EXISTS;
    // Only a regular file is opened: a device may act on being opened alone.
    if (*existed && !found.IsRegular())
        return ERROR_ACCESS_DENIED;
    const bool writes = !*existed || opening.empties || (access & GENERIC_WRITE) != 0;
    if (!writes)
        return OpenAt(found.host, true, access, opening, attributes, opened);
    std::string place;
    error = tree.PlaceToWrite(path, &place);
    if (error != ERROR_SUCCESS)
        return error;
    // Looked for again: finding a place may have put another layer in front.
    if (*existed && tree.Find(path, &found) == ERROR_SUCCESS && !found.isWritten) {
        if (opening.empties)
            return OpenAt(place, false, access, opening, attributes, opened);
        error = DeviceError(CopyWhole(found.host, place));
        if (error != ERROR_SUCCESS)
            return error;
    }
    return OpenAt(place, *existed, access, opening, attributes, opened);
}

/// The whole call; `*existed` tells whether the file was there.
DWORD MakeOrOpen(LPCWSTR path, DWORD access, DWORD disposition, DWORD attributes, HANDLE* handle,
                 bool* existed)
{
    Opening opening;
    if (!OpeningOf(disposition, &opening) ||
        (disposition == TRUNCATE_EXISTING && (access & GENERIC_WRITE) == 0))
        return ERROR_INVALID_PARAMETER;
    DevicePath parsed;
    DWORD error = ParsePath(path, &parsed);
    if (error != ERROR_SUCCESS)
        return error;
    if (parsed.parts.empty())
        return ERROR_ACCESS_DENIED;
    if (parsed.endsInSeparator)
        return ERROR_INVALID_NAME;
    if (disposition == CREATE_NEW || disposition == CREATE_ALWAYS) {
        if (IsFaulty(FileOperation::Create, path))
            return ERROR_DISK_FULL;
    } else if (IsFaulty(FileOperation::Open, path)) {
        return ERROR_ACCESS_DENIED;
    }
    const std::shared_ptr<FileTree> tree = CurrentTree();
    Descriptor opened;
    const std::string temporary = tree->TemporaryFile(parsed);
    error = temporary.empty()
                ? OpenFound(*tree, parsed, access, opening, attributes, &opened, existed)
                : OpenTemporary(*tree, parsed, temporary, access, opening, attributes, &opened,
                                existed);
    if (error != ERROR_SUCCESS)
        return error;
    *handle = AddHandle(std::make_shared<OpenFile>(std::move(opened), access, path));
    return *handle != nullptr ? ERROR_SUCCESS : ERROR_NOT_ENOUGH_MEMORY;
}

} // namespace

HANDLE WINAPI CreateFileW(LPCWSTR path, DWORD access, DWORD, LPSECURITY_ATTRIBUTES,
                          DWORD disposition, DWORD attributes, HANDLE)
{
    return WithoutThrowing(INVALID_HANDLE_VALUE, [&] {
        HANDLE handle = nullptr;
        bool existed = false;
        const DWORD error = MakeOrOpen(path, access, disposition, attributes, &handle, &existed);
        if (error != ERROR_SUCCESS)
            SetLastError(error);
        else if (disposition == CREATE_ALWAYS || disposition == OPEN_ALWAYS)
            SetLastError(existed ? ERROR_ALREADY_EXISTS : ERROR_SUCCESS);
        return error == ERROR_SUCCESS ? handle : INVALID_HANDLE_VALUE;
    });
}
