// A compiled resource file of any bytes: the records, against the format written out once more over
// offsets, and the choice among them.
#include "platform/core/Resources.h"
#include "fuzz/Entry.h"

#include <algorithm>
#include <optional>
#include <vector>

using namespace tavrix::platform;

namespace
{

struct Key {
    unsigned number = 0;
    std::u16string text;
    bool IsNothing() const { return number == 0 && text.empty(); }
};

struct Record {
    Key type;
    Key name;
    unsigned language = 0;
    size_t data = 0;
    size_t size = 0;
};

size_t Padded(size_t length)
{
    return (length + 3) / 4 * 4;
}

class File
{
public:
    File(const uint8_t* first, size_t count) : bytes(first), size(count) {}

    std::vector<Record> Records() const
    {
        std::vector<Record> records;
        for (size_t at = 0; size - at >= 8;) {
            const size_t data = Number(at, 4);
            const size_t header = Number(at + 4, 4);
            if (header > size - at || data > size - at - header)
                break;
            size_t next = at + 8;
            const std::optional<Key> type = KeyAt(&next, at + header);
            const std::optional<Key> name = type ? KeyAt(&next, at + header) : std::nullopt;
            next = at + Padded(next - at);
            // Behind the names: version, memory flags, language.
            if (!name || next + 8 > at + header)
                break;
            if (!type->IsNothing())
                records.push_back({*type, *name, Number(next + 6, 2), at + header, data});
            at += std::min(Padded(header + data), size - at);
        }
        return records;
    }

private:
    unsigned Number(size_t at, size_t count) const
    {
        unsigned number = 0;
        while (count-- > 0)
            number = number << 8 | bytes[at + count];
        return number;
    }

    std::optional<Key> KeyAt(size_t* next, size_t end) const
    {
        Key key;
        for (bool isFirst = true;; isFirst = false) {
            if (*next + 2 > end)
                return std::nullopt;
            const unsigned unit = Number(*next, 2);
            *next += 2;
            if (isFirst && unit == 0xFFFF) {
                if (*next + 2 > end)
                    return std::nullopt;
                key.number = Number(*next, 2);
                *next += 2;
                return key;
            }
            if (unit == 0)
                return key;
            key.text.push_back(static_cast<char16_t>(unit));
        }
    }

    const uint8_t* bytes;
    size_t size;
};

/// Names are kept without regard to case; of the texts only that of ASCII is looked at.
bool IsSame(const ResourceKey& got, const Key& expected)
{
    const auto isOtherUnit = [](char16_t left, char16_t right) {
        const auto small = [](char16_t unit) {
            return unit >= u'A' && unit <= u'Z' ? unit - u'A' + u'a' : int{unit};
        };
        return left < 0x80 && right < 0x80 && small(left) != small(right);
    };
    return got.number == expected.number && got.text.size() == expected.text.size() &&
           std::equal(got.text.begin(), got.text.end(), expected.text.begin(),
                      [&](char16_t left, char16_t right) { return !isOtherUnit(left, right); });
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    const std::byte* const bytes = reinterpret_cast<const std::byte*>(data);
    const std::vector<ResourceRecord> got = ParseResources(bytes, bytes + size);
    const std::vector<Record> expected = File(data, size).Records();
    Require(got.size() == expected.size(), "how many records hold together");
    for (size_t i = 0; i < got.size(); ++i) {
        Require(IsSame(got[i].type, expected[i].type), "the type");
        Require(IsSame(got[i].name, expected[i].name), "the name");
        Require(got[i].language == expected[i].language, "the language");
        Require(got[i].data == bytes + expected[i].data, "where the data begins");
        Require(got[i].size == expected[i].size, "how long it is");

        const auto first = std::find_if(got.begin(), got.end(), [&](const ResourceRecord& other) {
            return other.type == got[i].type && other.name == got[i].name &&
                   other.language == got[i].language;
        });
        Require(ChooseResource(got, got[i].type, got[i].name, got[i].language) == &*first,
                "of several the first in the language wanted");
    }
    return 0;
}
