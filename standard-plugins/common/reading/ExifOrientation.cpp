#include "standard-plugins/common/reading/ExifOrientation.h"

namespace
{

constexpr uint32_t orientationTag = 0x0112;
constexpr uint32_t shortType = 3;
constexpr uint32_t longType = 4;
constexpr size_t entryBytes = 12;
constexpr size_t headerBytes = 8;

struct Bytes {
    const uint8_t* at;
    size_t count;
    bool bigEnd;

    uint32_t Word(size_t offset) const
    {
        return bigEnd ? uint32_t{at[offset]} << 8 | at[offset + 1]
                      : uint32_t{at[offset + 1]} << 8 | at[offset];
    }
    uint32_t Long(size_t offset) const
    {
        return bigEnd ? Word(offset) << 16 | Word(offset + 2)
                      : Word(offset + 2) << 16 | Word(offset);
    }
};

uint32_t OrientationOfEntry(const Bytes& bytes, size_t entry)
{
    const uint32_t type = bytes.Word(entry + 2);
    if (bytes.Long(entry + 4) != 1 || (type != shortType && type != longType))
        return plainOrientation;
    const uint32_t value = type == shortType ? bytes.Word(entry + 8) : bytes.Long(entry + 8);
    return value >= 1 && value <= 8 ? value : plainOrientation;
}

} // namespace

uint32_t FindOrientation(const uint8_t* bytes, size_t count)
{
    if (!bytes || count < headerBytes)
        return plainOrientation;
    const bool bigEnd = bytes[0] == 'M' && bytes[1] == 'M';
    if (!bigEnd && (bytes[0] != 'I' || bytes[1] != 'I'))
        return plainOrientation;
    const Bytes data = {bytes, count, bigEnd};
    const uint32_t directory = data.Long(4);
    if (data.Word(2) != 42 || directory > count - 2)
        return plainOrientation;
    const uint32_t entries = data.Word(directory);
    size_t entry = size_t{directory} + 2;
    for (uint32_t i = 0; i < entries && count - entry >= entryBytes; ++i, entry += entryBytes)
        if (data.Word(entry) == orientationTag)
            return OrientationOfEntry(data, entry);
    return plainOrientation;
}
