#include "platform/core/ErrorCodes.h"

#include <cerrno>

namespace tavrix::platform
{

namespace
{

// Public numbers that nothing above the platform looks at by name.
constexpr DWORD TooManyOpenFiles = 4;
constexpr DWORD NotSameDevice = 17;
constexpr DWORD GeneralFailure = 31;

} // namespace

DWORD DeviceError(int hostError)
{
    switch (hostError) {
    case 0:
        return ERROR_SUCCESS;
    case ENOENT:
        return ERROR_FILE_NOT_FOUND;
    case ENOTDIR:
    case ELOOP:
        return ERROR_PATH_NOT_FOUND;
    case EMFILE:
    case ENFILE:
        return TooManyOpenFiles;
    case EACCES:
    case EPERM:
    case EROFS:
    case EISDIR:
    case ETXTBSY:
    case ENXIO:
    case ENODEV:
        return ERROR_ACCESS_DENIED;
    case EBADF:
        return ERROR_INVALID_HANDLE;
    case ENOMEM:
        return ERROR_NOT_ENOUGH_MEMORY;
    case EXDEV:
        return NotSameDevice;
    case EBUSY:
        return ERROR_SHARING_VIOLATION;
    case EEXIST:
        return ERROR_FILE_EXISTS;
    case EINVAL:
        return ERROR_INVALID_PARAMETER;
    case ENOSPC:
    case EDQUOT:
    case EFBIG:
        return ERROR_DISK_FULL;
    case ENAMETOOLONG:
    case EILSEQ:
        return ERROR_INVALID_NAME;
    case ENOTEMPTY:
        return ERROR_DIR_NOT_EMPTY;
    default:
        return GeneralFailure;
    }
}

BOOL FailWithHost(int hostError)
{
    return FailWith(DeviceError(hostError));
}

BOOL FailWith(DWORD error)
{
    SetLastError(error);
    return FALSE;
}

} // namespace tavrix::platform
