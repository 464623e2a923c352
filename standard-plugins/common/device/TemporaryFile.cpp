#include "standard-plugins/common/device/TemporaryFile.h"

#include "standard-plugins/common/PluginInfo.h"
#include "standard-plugins/common/PluginResult.h"

#include <handheld.h>

#include <string.h>

namespace
{

constexpr TavrixChar folder[] = PLUGIN_TEXT("\\Temp");
constexpr TavrixChar pathStart[] = PLUGIN_TEXT("\\Temp\\~tavrix");
constexpr size_t startLength = sizeof pathStart / sizeof *pathStart - 1;
constexpr size_t digitCount = 7;
constexpr int attempts = 1000;

void NameFile(TemporaryFile* file, uint32_t number)
{
    constexpr uint32_t digitValues = 36;
    memcpy(file->path, pathStart, sizeof pathStart);
    for (size_t i = startLength + digitCount; i > startLength; --i, number /= digitValues)
        file->path[i - 1] =
            static_cast<TavrixChar>(number % digitValues < 10 ? '0' + number % digitValues
                                                              : 'a' + number % digitValues - 10);
    file->path[startLength + digitCount] = 0;
}

bool MakeFile(TemporaryFile* file)
{
    // A device without the folder gets it; with it this changes nothing.
    (void)CreateDirectoryW(folder, nullptr);
    const auto first = static_cast<uint32_t>(Random());
    for (uint32_t i = 0; i < attempts; ++i) {
        NameFile(file, first + i);
        file->file = CreateFileW(file->path, GENERIC_READ | GENERIC_WRITE, 0, nullptr, CREATE_NEW,
                                 FILE_ATTRIBUTE_NORMAL, nullptr);
        if (file->file != INVALID_HANDLE_VALUE)
            return true;
        const DWORD error = GetLastError();
        if (error != ERROR_FILE_EXISTS && error != ERROR_ALREADY_EXISTS)
            break;
    }
    *file = {};
    return false;
}

bool WriteAll(TemporaryFile* file, const uint8_t* bytes, uint32_t count)
{
    while (count > 0) {
        DWORD done = 0;
        if (!WriteFile(file->file, bytes, count, &done, nullptr) || done == 0 || done > count)
            return false;
        bytes += done;
        count -= done;
        file->size += done;
    }
    return true;
}

bool CopyAll(TemporaryFile* file, StreamReader* reader, bool (*mayGoOn)(void*, uint64_t),
             void* self)
{
    do {
        if (!WriteAll(file, reader->buffer + reader->taken, reader->filled - reader->taken))
            return false;
        reader->taken = reader->filled;
        if (mayGoOn && !mayGoOn(self, file->size))
            return false;
    } while (FillReader(reader));
    file->position = file->size;
    return true;
}

bool GoTo(TemporaryFile* file, uint64_t offset)
{
    if (file->position == offset)
        return true;
    auto high = static_cast<LONG>(offset >> 32);
    const auto low = static_cast<LONG>(static_cast<uint32_t>(offset));
    constexpr DWORD failed = 0xffffffffu;
    if (SetFilePointer(file->file, low, &high, FILE_BEGIN) == failed &&
        GetLastError() != ERROR_SUCCESS)
        return false;
    file->position = offset;
    return true;
}

} // namespace

int32_t CopyToTemporaryFile(TemporaryFile* file, StreamReader* reader,
                            bool (*mayGoOn)(void* self, uint64_t bytes), void* self)
{
    *file = {};
    if (!MakeFile(file))
        return PluginFailed;
    if (CopyAll(file, reader, mayGoOn, self))
        return PluginDone;
    CloseTemporaryFile(file);
    return PluginFailed;
}

size_t ReadTemporaryFile(TemporaryFile* file, uint64_t offset, void* buffer, size_t count)
{
    if (offset >= file->size || !GoTo(file, offset))
        return 0;
    auto* bytes = static_cast<uint8_t*>(buffer);
    size_t got = 0;
    while (got < count) {
        constexpr size_t mostAtOnce = size_t{1} << 30;
        const size_t wanted = count - got < mostAtOnce ? count - got : mostAtOnce;
        DWORD done = 0;
        if (!ReadFile(file->file, bytes + got, static_cast<DWORD>(wanted), &done, nullptr) ||
            done == 0 || done > wanted)
            break;
        got += done;
        file->position += done;
    }
    return got;
}

void CloseTemporaryFile(TemporaryFile* file)
{
    if (file->file && file->file != INVALID_HANDLE_VALUE) {
        (void)CloseHandle(file->file);
        (void)DeleteFileW(file->path);
    }
    *file = {};
}
