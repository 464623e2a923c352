#include "platform/core/FileNames.h"

#include <clocale>
#include <cwctype>

namespace tavrix::platform
{

namespace
{

constexpr char32_t LastCodePoint = 0x10FFFF;

bool IsHighSurrogate(char32_t unit)
{
    return unit >= 0xD800 && unit <= 0xDBFF;
}
bool IsLowSurrogate(char32_t unit)
{
    return unit >= 0xDC00 && unit <= 0xDFFF;
}

void AppendUtf8(std::string* bytes, char32_t character)
{
    const auto add = [bytes](char32_t byte) { bytes->push_back(static_cast<char>(byte)); };
    if (character < 0x80) {
        add(character);
    } else if (character < 0x800) {
        add(0xC0 | character >> 6);
        add(0x80 | (character & 0x3F));
    } else if (character < 0x10000) {
        add(0xE0 | character >> 12);
        add(0x80 | (character >> 6 & 0x3F));
        add(0x80 | (character & 0x3F));
    } else {
        add(0xF0 | character >> 18);
        add(0x80 | (character >> 12 & 0x3F));
        add(0x80 | (character >> 6 & 0x3F));
        add(0x80 | (character & 0x3F));
    }
}

/// The character that begins at `*position`, which moves behind it; nothing for a sequence that is
/// cut, longer than needed, a surrogate or past the last code point.
std::optional<char32_t> NextUtf8(std::string_view bytes, size_t* position)
{
    const auto first = static_cast<unsigned char>(bytes[(*position)++]);
    if (first < 0x80)
        return first;
    const int following = first >= 0xF0 ? 3 : first >= 0xE0 ? 2 : 1;
    if (first < 0xC2 || first > 0xF4)
        return std::nullopt;
    char32_t character = first & (0x3Fu >> following);
    for (int i = 0; i < following; ++i) {
        if (*position == bytes.size())
            return std::nullopt;
        const auto next = static_cast<unsigned char>(bytes[(*position)++]);
        if ((next & 0xC0) != 0x80)
            return std::nullopt;
        character = character << 6 | (next & 0x3Fu);
    }
    const char32_t smallest = following == 1 ? 0x80 : following == 2 ? 0x800 : 0x10000;
    if (character < smallest || character > LastCodePoint || IsHighSurrogate(character) ||
        IsLowSurrogate(character))
        return std::nullopt;
    return character;
}

/// The host's character classes for all of Unicode, whatever locale the process runs in; null where
/// the host has no such locale, and then only ASCII is folded.
locale_t UnicodeLocale()
{
    static const locale_t locale = newlocale(LC_CTYPE_MASK, "C.UTF-8", nullptr);
    return locale;
}

WCHAR FoldedUnit(WCHAR unit)
{
    if (unit < 0x80)
        return unit >= 'A' && unit <= 'Z' ? static_cast<WCHAR>(unit + ('a' - 'A')) : unit;
    const locale_t locale = UnicodeLocale();
    if (locale == nullptr || IsHighSurrogate(unit) || IsLowSurrogate(unit))
        return unit;
    const std::wint_t folded = towlower_l(unit, locale);
    return folded <= 0xFFFF ? static_cast<WCHAR>(folded) : unit;
}

bool FitsPlainly(std::u16string_view name, std::u16string_view pattern)
{
    size_t at = 0;
    size_t want = 0;
    size_t star = pattern.npos; // behind the last `*` that was met
    size_t retry = 0;           // where the run of that `*` ends so far
    while (at < name.size()) {
        if (want < pattern.size() && pattern[want] == u'*') {
            star = ++want;
            retry = at;
        } else if (want < pattern.size() && (pattern[want] == u'?' || pattern[want] == name[at])) {
            ++want;
            ++at;
        } else if (star != pattern.npos) {
            want = star;
            at = ++retry;
        } else {
            return false;
        }
    }
    while (want < pattern.size() && pattern[want] == u'*')
        ++want;
    return want == pattern.size();
}

} // namespace

std::optional<std::string> HostName(std::u16string_view name)
{
    std::string bytes;
    bytes.reserve(name.size() + 8);
    for (size_t i = 0; i < name.size(); ++i) {
        char32_t character = name[i];
        if (IsHighSurrogate(character)) {
            if (i + 1 == name.size() || !IsLowSurrogate(name[i + 1]))
                return std::nullopt;
            character = 0x10000 + ((character - 0xD800) << 10) + (name[++i] - 0xDC00u);
        } else if (IsLowSurrogate(character)) {
            return std::nullopt;
        }
        AppendUtf8(&bytes, character);
    }
    return bytes;
}

std::optional<std::u16string> DeviceName(std::string_view bytes)
{
    std::u16string name;
    name.reserve(bytes.size());
    for (size_t position = 0; position < bytes.size();) {
        const std::optional<char32_t> character = NextUtf8(bytes, &position);
        if (!character)
            return std::nullopt;
        if (*character < 0x10000) {
            name.push_back(static_cast<WCHAR>(*character));
        } else {
            name.push_back(static_cast<WCHAR>(0xD800 + ((*character - 0x10000) >> 10)));
            name.push_back(static_cast<WCHAR>(0xDC00 + ((*character - 0x10000) & 0x3FF)));
        }
    }
    return name;
}

std::u16string Folded(std::u16string_view name)
{
    std::u16string folded(name);
    for (WCHAR& unit : folded)
        unit = FoldedUnit(unit);
    return folded;
}

bool FitsPattern(std::u16string_view foldedName, std::u16string_view foldedPattern)
{
    if (FitsPlainly(foldedName, foldedPattern))
        return true;
    return foldedPattern.ends_with(u".*") &&
           FitsPlainly(foldedName, foldedPattern.substr(0, foldedPattern.size() - 2));
}

DWORD ParsePath(LPCWSTR path, DevicePath* parsed)
{
    if (path == nullptr || *path == 0)
        return ERROR_PATH_NOT_FOUND;
    size_t length = 0;
    while (path[length] != 0)
        if (++length == MAX_PATH)
            return ERROR_PATH_NOT_FOUND;
    const std::u16string_view text(path, length);
    parsed->parts.clear();
    parsed->endsInSeparator = text.back() == u'\\' || text.back() == u'/';
    for (size_t begin = 0; begin <= text.size();) {
        size_t end = text.find_first_of(u"\\/", begin);
        if (end == text.npos)
            end = text.size();
        const std::u16string_view part = text.substr(begin, end - begin);
        if (part == u"..") {
            if (!parsed->parts.empty())
                parsed->parts.pop_back();
        } else if (!part.empty() && part != u".") {
            if (!HostName(part))
                return ERROR_INVALID_NAME;
            parsed->parts.emplace_back(part);
        }
        begin = end + 1;
    }
    return ERROR_SUCCESS;
}

} // namespace tavrix::platform
