// The parser of compiled resources and the choice among their records.

#include "platform/core/Resources.h"

#include "platform/core/FileNames.h"

#include <algorithm>
#include <cstring>

namespace tavrix::platform
{

namespace
{

/// Reads forward through bytes of which the end is known. Past it everything is refused.
class Reader
{
public:
    Reader(const std::byte* begin, size_t size) : bytes(begin), end(size) {}

    size_t Position() const { return at; }

    template <class Number>
    bool Take(Number* number)
    {
        if (end - at < sizeof(Number))
            return false;
        std::memcpy(number, bytes + at, sizeof(Number));
        at += sizeof(Number);
        return true;
    }

    bool Skip(size_t count)
    {
        if (end - at < count)
            return false;
        at += count;
        return true;
    }

    /// 0xFFFF and a number, or a text with its final zero.
    bool TakeKey(ResourceKey* key)
    {
        WORD unit = 0;
        if (!Take(&unit))
            return false;
        if (unit == 0xFFFF)
            return Take(&key->number);
        std::u16string text;
        while (unit != 0) {
            text.push_back(unit);
            if (!Take(&unit))
                return false;
        }
        key->text = Folded(text);
        return true;
    }

private:
    const std::byte* bytes;
    size_t end;
    size_t at = 0;
};

constexpr size_t PaddingAt(size_t position)
{
    return (4 - position % 4) % 4;
}

/// The record at the beginning of `size` bytes and how many it takes with its padding; 0 when it
/// does not hold together.
size_t ParseRecord(const std::byte* begin, size_t size, ResourceRecord* record)
{
    Reader reader(begin, size);
    DWORD dataSize = 0;
    DWORD headerSize = 0;
    if (!reader.Take(&dataSize) || !reader.Take(&headerSize) || headerSize > size ||
        dataSize > size - headerSize)
        return 0;
    Reader header(begin, headerSize);
    DWORD version = 0;
    WORD flags = 0;
    if (!header.Skip(2 * sizeof(DWORD)) || !header.TakeKey(&record->type) ||
        !header.TakeKey(&record->name) || !header.Skip(PaddingAt(header.Position())) ||
        !header.Take(&version) || !header.Take(&flags) || !header.Take(&record->language))
        return 0;
    record->data = begin + headerSize;
    record->size = dataSize;
    const size_t used = size_t{headerSize} + dataSize;
    // The last record's padding may be missing.
    return std::min(used + PaddingAt(used), size);
}

} // namespace

std::vector<ResourceRecord> ParseResources(const std::byte* begin, const std::byte* end)
{
    std::vector<ResourceRecord> records;
    if (begin == nullptr || end <= begin)
        return records;
    size_t left = static_cast<size_t>(end - begin);
    while (left != 0) {
        ResourceRecord record;
        const size_t used = ParseRecord(begin, left, &record);
        if (used == 0)
            break;
        // The empty record that opens each file has type 0.
        if (record.type.number != 0 || !record.type.text.empty())
            records.push_back(std::move(record));
        begin += used;
        left -= used;
    }
    return records;
}

ResourceKey KeyOf(LPCWSTR name)
{
    ResourceKey key;
    if (IS_INTRESOURCE(name)) {
        key.number = static_cast<WORD>(reinterpret_cast<ULONG_PTR>(name));
        return key;
    }
    if (name[0] == '#' && name[1] != 0) {
        unsigned number = 0;
        const WCHAR* digit = name + 1;
        for (; *digit >= '0' && *digit <= '9' && number <= 0xFFFF; ++digit)
            number = number * 10 + static_cast<unsigned>(*digit - '0');
        if (*digit == 0 && number <= 0xFFFF) {
            key.number = static_cast<WORD>(number);
            return key;
        }
    }
    key.text = Folded(name);
    return key;
}

const ResourceRecord* ChooseResource(const std::vector<ResourceRecord>& records,
                                     const ResourceKey& type, const ResourceKey& name,
                                     LANGID language)
{
    constexpr LANGID FamilyBits = 0x3FF;
    const ResourceRecord* best = nullptr;
    int bestRank = -1;
    for (const ResourceRecord& record : records) {
        if (record.type != type || record.name != name)
            continue;
        const int rank = record.language == language                        ? 3
                         : record.language == 0                             ? 1
                         : ((record.language ^ language) & FamilyBits) == 0 ? 2
                                                                            : 0;
        if (rank > bestRank) {
            best = &record;
            bestRank = rank;
        }
    }
    return best;
}

} // namespace tavrix::platform
