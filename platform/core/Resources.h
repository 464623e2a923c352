// The compiled resource format: records one after the other, each with a type, a name, a language
// and data. The parser takes bytes and gives records that point into them.
#pragma once

#include <windows.h>

#include <cstddef>
#include <string>
#include <vector>

namespace tavrix::platform
{

/// A type or a name: a number, or a text (then `text` is not empty). Type and name are keys of
/// their own, so that a menu and an icon may share a number.
struct ResourceKey {
    WORD number = 0;
    std::u16string text; // as FoldName leaves it

    friend bool operator==(const ResourceKey&, const ResourceKey&) = default;
};

struct ResourceRecord {
    ResourceKey type;
    ResourceKey name;
    LANGID language = 0; // 0: neutral
    const std::byte* data = nullptr;
    DWORD size = 0;
};

/// The records of a compiled resource file, in its order; those before the first that does not hold
/// together. Never looks outside `begin` .. `end`.
std::vector<ResourceRecord> ParseResources(const std::byte* begin, const std::byte* end);

/// What a caller names: MAKEINTRESOURCE, "#123" or a text.
ResourceKey KeyOf(LPCWSTR name);

/// Of several records of one type and name the one for `language`: of that language, else of its
/// family, else neutral, else the first. Null when there is none.
const ResourceRecord* ChooseResource(const std::vector<ResourceRecord>& records,
                                     const ResourceKey& type, const ResourceKey& name,
                                     LANGID language);

/// Forgets a module's resources.
void ForgetResources(HINSTANCE instance);

} // namespace tavrix::platform
