#include "standard-plugins/jpeg-input/DeviceFile.h"

#include <windows.h>

namespace
{

int32_t TAVRIX_CALL RefuseSize(void*, uint64_t*)
{
    return -1;
}

int32_t TAVRIX_CALL RefuseSeek(void*, const int64_t*, uint64_t*, uint32_t)
{
    return -1;
}

int32_t TAVRIX_CALL Read(void* handle, void* buffer, uint32_t* length)
{
    DWORD done = 0;
    const BOOL read = ReadFile(static_cast<HANDLE>(handle), buffer, *length, &done, nullptr);
    *length = done;
    return read ? 1 : -1;
}

int32_t TAVRIX_CALL RefuseWrite(void*, const void*, uint32_t*)
{
    return -1;
}

} // namespace

bool OpenDeviceFile(DeviceFile* file, const TavrixChar* path)
{
    *file = {};
    const HANDLE opened = CreateFileW(path, GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING,
                                      FILE_ATTRIBUTE_NORMAL, nullptr);
    if (opened == INVALID_HANDLE_VALUE)
        return false;
    file->file = opened;
    file->stream = {sizeof file->stream, opened, RefuseSize, RefuseSeek, Read, RefuseWrite};
    return true;
}

void CloseDeviceFile(DeviceFile* file)
{
    if (file->file)
        (void)CloseHandle(static_cast<HANDLE>(file->file));
    *file = {};
}
