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

/// What opening a file gives.
struct Opened {
    Replacements::Hold hold; // until the handle stands
    Descriptor file;
    std::shared_ptr<Replacement> replacement; // the file is one that is to replace another
    bool existed = false;
};

/// What is asked for.
struct Request {
    LPCWSTR given;
    DevicePath path; // parsed for all but paging files
    DWORD access;
    Opening opening;
    DWORD attributes;
};

/// A file right in a temporary folder: no look-up goes before, and the host's own answer decides.
DWORD OpenTemporary(FileTree& tree, const Request& request, const std::string& host, Opened* opened)
{
    const Opening& opening = request.opening;
    const auto openAt = [&](const std::string& at, bool exists) {
        return OpenAt(at, exists, request.access, opening, request.attributes, &opened->file);
    };
    if (!opening.mustBeNew) {
        const DWORD error = openAt(host, true);
        opened->existed = error == ERROR_SUCCESS;
        if (error != ERROR_FILE_NOT_FOUND || opening.mustExist)
            return error;
    }
    DWORD error = openAt(host, false);
    if (error != ERROR_FILE_NOT_FOUND)
        return error;
    DevicePath path;
    std::string place;
    error = ParsePath(request.given, &path);
    if (error == ERROR_SUCCESS)
        error = tree.PlaceToWrite(path, &place); // makes the folder
    return error != ERROR_SUCCESS ? error : openAt(place, false);
}

/// A file to be written where files are replaced: begins a replacement or joins one that is
/// pending. ERROR_SUCCESS with nothing opened where the file is to be opened as any other.
DWORD OpenReplaced(Replacements& replacements, const Request& request, const FoundFile& found,
                   const std::string& place, Opened* opened)
{
    const Opening& opening = request.opening;
    if (opening.empties && !opening.mustExist) {
        const int error = replacements.Begin(place, ModeOf(request.attributes), request.given,
                                             &opened->replacement);
        if (error != 0 || opened->replacement == nullptr)
            return DeviceError(error);
        opened->file = Descriptor(fcntl(opened->replacement->File(), F_DUPFD_CLOEXEC, 0));
        return opened->file.IsOpen() ? ERROR_SUCCESS : DeviceError(errno);
    }
    if (found.pending != nullptr) {
        opened->replacement = found.pending;
        return OpenAt(found.Bytes(), true, request.access, opening, request.attributes,
                      &opened->file);
    }
    if (opened->existed)
        return opening.empties ? ERROR_SUCCESS : replacements.RefusalOf(place);
    replacements.Allow(place);
    return ERROR_SUCCESS;
}

/// Any other file.
DWORD OpenFound(FileTree& tree, const Request& request, Opened* opened)
{
    const auto& [given, path, access, opening, attributes] = request;
    FoundFile found;
    DWORD error = tree.FindAndHold(path, &found, &opened->hold);
    if (error != ERROR_SUCCESS && (error != ERROR_FILE_NOT_FOUND || opening.mustExist))
        return error;
    const bool existed = error == ERROR_SUCCESS;
    opened->existed = existed;
    if (existed && opening.mustBeNew)
        return ERROR_FILE_EXISTS;
    // Only a regular file is opened: a device may act on being opened alone.
    if (existed && !found.IsRegular())
        return ERROR_ACCESS_DENIED;
    const bool writes = !existed || opening.empties || (access & GENERIC_WRITE) != 0;
    if (!writes)
        return OpenAt(found.Bytes(), true, access, opening, attributes, &opened->file);
    std::string place;
    error = tree.PlaceToWrite(path, &place);
    if (error == ERROR_SUCCESS && found.isReplaced)
        error = OpenReplaced(tree.Replaced(), request, found, place, opened);
    if (error != ERROR_SUCCESS || opened->file.IsOpen())
        return error;
    // Looked for again: finding a place may have put another layer in front.
    if (existed && tree.Find(path, &found) == ERROR_SUCCESS && !found.isWritten) {
        if (opening.empties)
            return OpenAt(place, false, access, opening, attributes, &opened->file);
        error = DeviceError(CopyWhole(found.host, place));
        if (error != ERROR_SUCCESS)
            return error;
    }
    return OpenAt(place, existed, access, opening, attributes, &opened->file);
}

/// Opens the file and gives it a handle; `*existed` tells whether it was there.
DWORD Carry(FileTree& tree, const Request& request, const std::string& temporary, HANDLE* handle,
            bool* existed)
{
    const bool makes =
        request.opening.mustBeNew || (request.opening.empties && !request.opening.mustExist);
    if (IsFaulty(makes ? FileOperation::Create : FileOperation::Open, request.given))
        return makes ? ERROR_DISK_FULL : ERROR_ACCESS_DENIED;
    Opened opened;
    const DWORD error = temporary.empty() ? OpenFound(tree, request, &opened)
                                          : OpenTemporary(tree, request, temporary, &opened);
    if (error != ERROR_SUCCESS)
        return error;
    *existed = opened.existed;
    *handle = AddHandle(std::make_shared<OpenFile>(std::move(opened.file), request.access,
                                                   request.given, opened.replacement));
    return *handle != nullptr ? ERROR_SUCCESS : ERROR_NOT_ENOUGH_MEMORY;
}

DWORD ParseFilePath(LPCWSTR path, DevicePath* parsed)
{
    const DWORD error = ParsePath(path, parsed);
    if (error != ERROR_SUCCESS)
        return error;
    if (parsed->parts.empty())
        return ERROR_ACCESS_DENIED;
    return parsed->endsInSeparator ? ERROR_INVALID_NAME : ERROR_SUCCESS;
}

/// The whole call; `*existed` tells whether the file was there.
DWORD MakeOrOpen(LPCWSTR path, DWORD access, DWORD disposition, DWORD attributes, HANDLE* handle,
                 bool* existed)
{
    Request request{path, {}, access, {}, attributes};
    if (!OpeningOf(disposition, &request.opening) ||
        (disposition == TRUNCATE_EXISTING && (access & GENERIC_WRITE) == 0))
        return ERROR_INVALID_PARAMETER;
    const std::shared_ptr<FileTree> tree = CurrentTree();
    std::string temporary = tree->PagingFile(path);
    if (temporary.empty()) {
        const DWORD error = ParseFilePath(path, &request.path);
        if (error != ERROR_SUCCESS)
            return error;
        temporary = tree->TemporaryFile(request.path);
    }
    const DWORD error = WithoutThrowing(DWORD{ERROR_NOT_ENOUGH_MEMORY}, [&] {
        return Carry(*tree, request, temporary, handle, existed);
    });
    const bool isAlwaysNew = disposition == CREATE_ALWAYS;
    const bool opensToWrite = disposition != CREATE_NEW && (access & GENERIC_WRITE) != 0;
    if (error != ERROR_SUCCESS && temporary.empty() && (isAlwaysNew || opensToWrite))
        tree->CouldNotWrite(request.path, isAlwaysNew, error);
    return error;
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
