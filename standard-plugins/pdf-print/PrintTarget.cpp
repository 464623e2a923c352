#include "standard-plugins/pdf-print/PrintTarget.h"

#include "standard-plugins/pdf-print/FileNames.h"

#include <string.h>

namespace
{

constexpr uint32_t highestNumber = 9999;

// Made only where nothing of the name is there, so whoever comes second gets another one.
bool KeepName(const TavrixChar* path)
{
    const HANDLE file =
        CreateFileW(path, GENERIC_WRITE, 0, nullptr, CREATE_NEW, FILE_ATTRIBUTE_NORMAL, nullptr);
    if (file == INVALID_HANDLE_VALUE)
        return false;
    (void)CloseHandle(file);
    return true;
}

bool IsTaken(const TavrixChar* path)
{
    return GetFileAttributesW(path) != INVALID_FILE_ATTRIBUTES;
}

} // namespace

bool ChooseTarget(PrintTarget* target, const PrintSettings& settings)
{
    *target = {};
    memcpy(target->path, settings.file, sizeof target->path);
    if (settings.mayReplace && IsTaken(target->path))
        return true;
    target->isKept = KeepName(target->path);
    for (uint32_t number = 2; !target->isKept && IsTaken(target->path); ++number) {
        if (number > highestNumber || !MakeNumberedPath(target->path, settings.file, number))
            return false;
        target->isNumbered = true;
        target->isKept = KeepName(target->path);
    }
    return target->isKept;
}

void GiveUpTarget(PrintTarget* target)
{
    if (target->isKept)
        (void)DeleteFileW(target->path);
    target->isKept = false;
}
