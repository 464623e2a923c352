#include "standard-plugins/tiff-input/TiffFile.h"

#include <stdio.h>
#include <string.h>

namespace
{

TiffFile* Of(thandle_t handle)
{
    return static_cast<TiffFile*>(handle);
}

tmsize_t OnRead(thandle_t handle, void* buffer, tmsize_t count)
{
    TiffFile* file = Of(handle);
    if (count <= 0)
        return 0;
    const size_t got =
        ReadTemporaryFile(file->bytes, file->position, buffer, static_cast<size_t>(count));
    file->position += got;
    return static_cast<tmsize_t>(got);
}

tmsize_t OnWrite(thandle_t, void*, tmsize_t)
{
    return 0;
}

toff_t OnSeek(thandle_t handle, toff_t offset, int origin)
{
    TiffFile* file = Of(handle);
    if (origin == SEEK_SET)
        file->position = offset;
    else
        file->position = offset + (origin == SEEK_CUR ? file->position : file->bytes->size);
    return file->position;
}

int OnClose(thandle_t)
{
    return 0;
}

toff_t OnSize(thandle_t handle)
{
    return Of(handle)->bytes->size;
}

// 1: nobody else is told.
int OnTrouble(TIFF*, void* self, const char*, const char* format, va_list)
{
    // Data of before 1988, which are read all the same.
    constexpr char harmless[] = "Old-style LZW codes";
    constexpr char lost[] = "IO error during reading of";
    auto* file = static_cast<TiffFile*>(self);
    if (!format || strncmp(format, harmless, sizeof harmless - 1) != 0)
        file->troubled = true;
    if (format && strncmp(format, lost, sizeof lost - 1) == 0)
        file->lostTag = true;
    return 1;
}

// Where the numbers of a directory lie, classic or big.
struct DirectoryForm {
    bool bigEnd;
    size_t countBytes;
    size_t entryBytes;
    size_t offsetBytes;
    uint64_t first;
};

uint64_t Number(const uint8_t* bytes, size_t count, bool bigEnd)
{
    uint64_t number = 0;
    for (size_t i = 0; i < count; ++i)
        number = number << 8 | bytes[bigEnd ? i : count - 1 - i];
    return number;
}

bool ReadNumber(TemporaryFile* file, const DirectoryForm& form, uint64_t offset, size_t count,
                uint64_t* number)
{
    uint8_t bytes[8];
    if (ReadTemporaryFile(file, offset, bytes, count) < count)
        return false;
    *number = Number(bytes, count, form.bigEnd);
    return true;
}

bool ReadForm(TemporaryFile* file, DirectoryForm* form)
{
    uint8_t start[4];
    if (ReadTemporaryFile(file, 0, start, sizeof start) < sizeof start || !IsTiffStart(start))
        return false;
    form->bigEnd = start[0] == 'M';
    const bool big = Number(start + 2, 2, form->bigEnd) == TIFF_VERSION_BIG;
    form->countBytes = big ? 8 : 2;
    form->entryBytes = big ? 20 : 12;
    form->offsetBytes = big ? 8 : 4;
    return ReadNumber(file, *form, form->offsetBytes, form->offsetBytes, &form->first);
}

} // namespace

bool OpenTiffFile(TiffFile* file, const TiffLibrary* library, TemporaryFile* bytes)
{
    *file = {library, bytes, 0, nullptr, false, false};
    TIFFOpenOptions* options = library->makeOptions();
    if (!options)
        return false;
    library->limitMemory(options, static_cast<tmsize_t>(mostTiffBytes));
    library->onError(options, OnTrouble, file);
    library->onWarning(options, OnTrouble, file);
    // Read, not mapped, strips as they are.
    file->tiff = library->open("", "rmc", file, OnRead, OnWrite, OnSeek, OnClose, OnSize, nullptr,
                               nullptr, options);
    library->freeOptions(options);
    return file->tiff != nullptr;
}

void CloseTiffFile(TiffFile* file)
{
    if (file->tiff)
        file->library->close(file->tiff);
    *file = {};
}

bool AreDirectoriesSound(TemporaryFile* bytes)
{
    constexpr uint32_t mostDirectories = 65535;
    DirectoryForm form = {};
    if (!ReadForm(bytes, &form))
        return false;
    uint64_t at = form.first;
    for (uint32_t i = 0; i < mostDirectories; ++i) {
        uint64_t count = 0;
        if (!ReadNumber(bytes, form, at, form.countBytes, &count) ||
            count > bytes->size / form.entryBytes ||
            !ReadNumber(bytes, form, at + form.countBytes + count * form.entryBytes,
                        form.offsetBytes, &at))
            return false;
        if (at == 0)
            return true;
    }
    return false;
}

uint16_t WrittenTag(TemporaryFile* bytes, uint16_t tag, uint16_t standard)
{
    constexpr uint64_t mostEntries = 65535;
    DirectoryForm form = {};
    uint64_t count = 0;
    if (!ReadForm(bytes, &form) || !ReadNumber(bytes, form, form.first, form.countBytes, &count))
        return standard;
    uint64_t at = form.first + form.countBytes;
    for (uint64_t i = 0; i < count && i < mostEntries; ++i, at += form.entryBytes) {
        uint64_t name = 0;
        uint64_t value = 0;
        if (!ReadNumber(bytes, form, at, 2, &name))
            return standard;
        // Behind its type and the count of its values.
        if (name == tag && ReadNumber(bytes, form, at + 4 + form.offsetBytes, 2, &value))
            return static_cast<uint16_t>(value);
    }
    return standard;
}

bool IsTiffStart(const uint8_t* bytes)
{
    const bool bigEnd = bytes[0] == 'M' && bytes[1] == 'M';
    if (!bigEnd && (bytes[0] != 'I' || bytes[1] != 'I'))
        return false;
    const uint64_t version = Number(bytes + 2, 2, bigEnd);
    return version == TIFF_VERSION_CLASSIC || version == TIFF_VERSION_BIG;
}
