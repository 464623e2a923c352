// Open files: reading, writing, the position and the size.

#include "platform/core/ErrorCodes.h"
#include "platform/core/FileFaults.h"
#include "platform/core/OpenFile.h"

#include <algorithm>
#include <cerrno>
#include <limits>
#include <unistd.h>

using namespace tavrix::platform;

namespace
{

constexpr DWORD NegativeSeek = 131; // the public number for a position before the file's begin

/// The file behind a handle, its last error set when there is none.
std::shared_ptr<OpenFile> FileOf(HANDLE handle)
{
    std::shared_ptr<OpenFile> file = FindObjectAs<OpenFile>(handle);
    if (file == nullptr)
        SetLastError(ERROR_INVALID_HANDLE);
    return file;
}

DWORD LowWord(int64_t value)
{
    return static_cast<DWORD>(static_cast<uint64_t>(value));
}
DWORD HighWord(int64_t value)
{
    return static_cast<DWORD>(static_cast<uint64_t>(value) >> 32);
}

bool SizeOf(const OpenFile& file, int64_t* size)
{
    struct stat info {
    };
    if (fstat(file.file.Get(), &info) != 0) {
        SetLastError(DeviceError(errno));
        return false;
    }
    *size = info.st_size;
    return true;
}

/// How many of the bytes to be written at the position fit on the disk.
DWORD FittingOf(const OpenFile& file, DWORD length)
{
    struct stat info {
    };
    if (!Hooks().active || fstat(file.file.Get(), &info) != 0)
        return length;
    const int64_t end = file.position + length;
    const int64_t growth = std::clamp<int64_t>(end - info.st_size, 0, length);
    const auto fitting = TakeDiskSpace(static_cast<unsigned long long>(growth));
    return length - static_cast<DWORD>(growth) + static_cast<DWORD>(fitting);
}

} // namespace

BOOL WINAPI ReadFile(HANDLE handle, LPVOID buffer, DWORD length, LPDWORD done,
                     LPOVERLAPPED overlapped)
{
    if (done != nullptr)
        *done = 0;
    const std::shared_ptr<OpenFile> file = FileOf(handle);
    if (file == nullptr)
        return FALSE;
    if (done == nullptr || overlapped != nullptr || (buffer == nullptr && length != 0))
        return FailWith(ERROR_INVALID_PARAMETER);
    if (!file->canRead)
        return FailWith(ERROR_ACCESS_DENIED);
    DWORD missing = 0;
    if (IsFaulty(FileOperation::Read, file->path.c_str(), &missing) && missing == 0)
        return FailWithHost(EIO);
    const DWORD wanted = length - std::min(length, missing);
    const std::lock_guard guard(file->lock);
    int error = 0;
    const size_t got = ReadAt(file->file.Get(), buffer, wanted, file->position, &error);
    file->position += static_cast<int64_t>(got);
    *done = static_cast<DWORD>(got);
    return error == 0 || got != 0 ? TRUE : FailWithHost(error);
}

BOOL WINAPI WriteFile(HANDLE handle, LPCVOID buffer, DWORD length, LPDWORD done,
                      LPOVERLAPPED overlapped)
{
    if (done != nullptr)
        *done = 0;
    const std::shared_ptr<OpenFile> file = FileOf(handle);
    if (file == nullptr)
        return FALSE;
    if (done == nullptr || overlapped != nullptr || (buffer == nullptr && length != 0))
        return FailWith(ERROR_INVALID_PARAMETER);
    if (!file->canWrite)
        return FailWith(ERROR_ACCESS_DENIED);
    DWORD missing = 0;
    const bool isFaulty = IsFaulty(FileOperation::Write, file->path.c_str(), &missing);
    const DWORD wanted = isFaulty ? length - std::min(length, std::max(missing, 1u)) : length;
    const std::lock_guard guard(file->lock);
    int error = 0;
    const size_t put =
        WriteAt(file->file.Get(), buffer, FittingOf(*file, wanted), file->position, &error);
    file->position += static_cast<int64_t>(put);
    *done = static_cast<DWORD>(put);
    if (length != 0)
        file->NoteWrite(put == length);
    if (put == length)
        return TRUE;
    // A full disk takes what fits: the call succeeds with a short count, and fails when it took
    // nothing at all.
    SetLastError(error != 0 ? DeviceError(error) : ERROR_DISK_FULL);
    return put != 0 ? TRUE : FALSE;
}

DWORD WINAPI SetFilePointer(HANDLE handle, LONG distance, PLONG distanceHigh, DWORD origin)
{
    const std::shared_ptr<OpenFile> file = FileOf(handle);
    if (file == nullptr)
        return INVALID_SET_FILE_POINTER;
    const std::lock_guard guard(file->lock);
    int64_t base = 0;
    if (origin == FILE_CURRENT) {
        base = file->position;
    } else if (origin == FILE_END) {
        if (!SizeOf(*file, &base))
            return INVALID_SET_FILE_POINTER;
    } else if (origin != FILE_BEGIN) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return INVALID_SET_FILE_POINTER;
    }
    const int64_t offset =
        distanceHigh == nullptr
            ? distance
            : static_cast<int64_t>(static_cast<uint64_t>(static_cast<uint32_t>(*distanceHigh))
                                       << 32 |
                                   static_cast<uint32_t>(distance));
    int64_t position = 0;
    if (__builtin_add_overflow(base, offset, &position) ||
        (distanceHigh == nullptr && position > std::numeric_limits<uint32_t>::max())) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return INVALID_SET_FILE_POINTER;
    }
    if (position < 0) {
        SetLastError(NegativeSeek);
        return INVALID_SET_FILE_POINTER;
    }
    file->position = position;
    if (distanceHigh != nullptr)
        *distanceHigh = static_cast<LONG>(HighWord(position));
    // The low word of a good position may look like the failure; the last error tells them apart.
    if (LowWord(position) == INVALID_SET_FILE_POINTER)
        SetLastError(ERROR_SUCCESS);
    return LowWord(position);
}

BOOL WINAPI SetEndOfFile(HANDLE handle)
{
    const std::shared_ptr<OpenFile> file = FileOf(handle);
    if (file == nullptr)
        return FALSE;
    if (!file->canWrite)
        return FailWith(ERROR_ACCESS_DENIED);
    const std::lock_guard guard(file->lock);
    int result = 0;
    do {
        result = ftruncate(file->file.Get(), file->position);
    } while (result != 0 && errno == EINTR);
    const int error = errno;
    file->NoteWrite(result == 0);
    return result == 0 ? TRUE : FailWithHost(error);
}

BOOL WINAPI FlushFileBuffers(HANDLE handle)
{
    const std::shared_ptr<OpenFile> file = FileOf(handle);
    if (file == nullptr)
        return FALSE;
    if (!file->canWrite)
        return FailWith(ERROR_ACCESS_DENIED);
    int result = 0;
    do {
        result = fsync(file->file.Get());
    } while (result != 0 && errno == EINTR);
    const int error = errno;
    // The host tells each failure once, and nobody would hear of this one again.
    if (result != 0)
        file->NoteWrite(false);
    return result == 0 ? TRUE : FailWithHost(error);
}

DWORD WINAPI GetFileSize(HANDLE handle, LPDWORD sizeHigh)
{
    const std::shared_ptr<OpenFile> file = FileOf(handle);
    int64_t size = 0;
    if (file == nullptr || !SizeOf(*file, &size))
        return INVALID_FILE_SIZE;
    if (sizeHigh != nullptr)
        *sizeHigh = HighWord(size);
    if (LowWord(size) == INVALID_FILE_SIZE)
        SetLastError(ERROR_SUCCESS);
    return LowWord(size);
}
