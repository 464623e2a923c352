#include "standard-plugins/ico-input/IcoDirectory.h"

#include "standard-plugins/common/PluginResult.h"

#include <string.h>

namespace
{

constexpr uint32_t markBytes = 6;
constexpr uint32_t entryBytes = 16;
constexpr uint8_t pngSignature[8] = {0x89, 'P', 'N', 'G', '\r', '\n', 0x1a, '\n'};

uint32_t Big32(const uint8_t* bytes)
{
    return static_cast<uint32_t>(bytes[0]) << 24 | static_cast<uint32_t>(bytes[1]) << 16 |
           static_cast<uint32_t>(bytes[2]) << 8 | bytes[3];
}

// Signature, then the header chunk: its length, its name, width, height, depth, colour type.
bool LookAtPng(const uint8_t* bytes, IcoPicture* picture)
{
    constexpr uint32_t samples[7] = {1, 0, 3, 1, 2, 0, 4};
    const uint32_t colorType = bytes[25];
    picture->isPng = true;
    picture->width = Big32(bytes + 16);
    picture->height = Big32(bytes + 20);
    picture->bits = colorType < 7 ? bytes[24] * samples[colorType] : 0;
    return memcmp(bytes + 12, "IHDR", 4) == 0;
}

// The mask's height is counted with the picture's.
bool LookAtBitmap(const uint8_t* bytes, IcoPicture* picture)
{
    picture->isPng = false;
    if (Little32(bytes) == 12) {
        picture->width = Little16(bytes + 4);
        picture->height = Little16(bytes + 6) / 2;
        picture->bits = Little16(bytes + 10);
        return true;
    }
    const uint32_t height = Little32(bytes + 8);
    picture->width = Little32(bytes + 4);
    picture->height = (height > 0x80000000u ? 0u - height : height) / 2;
    picture->bits = Little16(bytes + 14);
    return Little32(bytes) >= 16;
}

bool LookAtPicture(TemporaryFile* file, IcoPicture* picture)
{
    uint8_t bytes[26];
    if (ReadTemporaryFile(file, picture->offset, bytes, sizeof bytes) != sizeof bytes)
        return false;
    const bool isPng = memcmp(bytes, pngSignature, sizeof pngSignature) == 0;
    const bool known = isPng ? LookAtPng(bytes, picture) : LookAtBitmap(bytes, picture);
    return known && IsPictureSize(picture->width, picture->height);
}

bool IsBetter(const IcoPicture& picture, const IcoPicture& best)
{
    const uint64_t area = uint64_t{picture.width} * picture.height;
    const uint64_t bestArea = uint64_t{best.width} * best.height;
    return area != bestArea ? area > bestArea : picture.bits > best.bits;
}

// A picture in the directory itself is none. One that reaches over the file's end shows what of it
// is there.
bool LookAtEntry(TemporaryFile* file, uint32_t number, IcoDirectory* directory, IcoPicture* picture)
{
    uint8_t entry[entryBytes];
    *picture = {};
    if (ReadTemporaryFile(file, uint64_t{number} * entryBytes, entry, entryBytes) != entryBytes)
        return false;
    const uint64_t bytes = Little32(entry + 8);
    const uint64_t offset = Little32(entry + 12);
    if (offset < markBytes + uint64_t{directory->count} * entryBytes)
        return false;
    if (offset + bytes > file->size + markBytes)
        directory->broken = true;
    picture->offset = offset - markBytes;
    return LookAtPicture(file, picture);
}

} // namespace

bool ReadIcoMark(RowReading* rows, IcoDirectory* directory)
{
    uint8_t mark[markBytes];
    *directory = {};
    if (!ReadBytes(rows, mark, sizeof mark))
        return false;
    const uint32_t kind = Little16(mark + 2);
    directory->count = Little16(mark + 4);
    return (Little16(mark) == 0 && (kind == 1 || kind == 2) && directory->count > 0) ||
           FailReading(rows, PluginFailed);
}

bool FindBestPicture(TemporaryFile* file, IcoDirectory* directory)
{
    for (uint32_t i = 0; i < directory->count; ++i) {
        IcoPicture picture;
        if (!LookAtEntry(file, i, directory, &picture))
            directory->broken = true;
        else if (IsBetter(picture, directory->best))
            directory->best = picture;
    }
    return directory->best.width > 0;
}
