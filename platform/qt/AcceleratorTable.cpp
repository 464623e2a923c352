#include "platform/qt/AcceleratorTable.h"

#include "platform/qt/ByteReader.h"

namespace tavrix::platform
{
namespace
{

constexpr size_t EntrySize = 8;
constexpr WORD IsVirtualKey = 0x01;
constexpr WORD WithShift = 0x04;
constexpr WORD WithControl = 0x08;
constexpr WORD WithAlt = 0x10;
constexpr WORD LastEntry = 0x80;

} // namespace

std::optional<std::vector<Accelerator>> ParseAccelerators(const void* bytes, size_t size)
{
    if (bytes == nullptr)
        return std::nullopt;
    std::vector<Accelerator> table;
    ByteReader reader(bytes, size);
    while (reader.Left() >= EntrySize) {
        const WORD flags = reader.Word();
        Accelerator entry;
        entry.virtualKey = (flags & IsVirtualKey) != 0;
        entry.modifiers = {(flags & WithShift) != 0, (flags & WithControl) != 0,
                           (flags & WithAlt) != 0};
        entry.key = reader.Word();
        entry.command = reader.Word();
        reader.Word();
        table.push_back(entry);
        if ((flags & LastEntry) != 0)
            break;
    }
    if (table.empty())
        return std::nullopt;
    return table;
}

const Accelerator* FindVirtualKey(const std::vector<Accelerator>& table, WORD key,
                                  const KeyModifiers& modifiers)
{
    for (const Accelerator& entry : table) {
        if (entry.virtualKey && entry.key == key && entry.modifiers == modifiers)
            return &entry;
    }
    return nullptr;
}

const Accelerator* FindCharacter(const std::vector<Accelerator>& table, WORD character, bool alt)
{
    for (const Accelerator& entry : table) {
        if (!entry.virtualKey && entry.key == character && entry.modifiers.alt == alt)
            return &entry;
    }
    return nullptr;
}

} // namespace tavrix::platform
