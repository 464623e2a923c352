#include "settings/SettingsLine.h"

namespace
{

bool IsBlank(WCHAR character)
{
    return character == TEXT(' ') || character == TEXT('\t');
}

WCHAR* BehindBlanks(WCHAR* text)
{
    while (IsBlank(*text))
        ++text;
    return text;
}

SettingsLine ParseSection(WCHAR* name)
{
    // Blanks inside the brackets belong to the name; what follows them is passed over.
    WCHAR* end = name;
    while (*end != 0 && *end != TEXT(']'))
        ++end;
    if (*end == 0)
        return {SettingsLineKind::Broken, nullptr, nullptr};
    *end = 0;
    return {SettingsLineKind::Section, name, nullptr};
}

SettingsLine ParseKey(WCHAR* name)
{
    // A name may be empty: a line that begins with "=" is a key.
    WCHAR* end = name;
    while (*end != 0 && *end != TEXT('=') && !IsBlank(*end))
        ++end;
    WCHAR* equals = BehindBlanks(end);
    if (*equals != TEXT('='))
        return {SettingsLineKind::Nothing, nullptr, nullptr};
    WCHAR* value = BehindBlanks(equals + 1);
    *end = 0;
    // Blanks at the end of a value are part of it.
    return {SettingsLineKind::Key, name, *value != 0 ? value : nullptr};
}

} // namespace

SettingsLine ParseSettingsLine(WCHAR* line)
{
    WCHAR* start = BehindBlanks(line);
    if (*start == 0 || *start == TEXT(';'))
        return {SettingsLineKind::Nothing, nullptr, nullptr};
    if (*start == TEXT('['))
        return ParseSection(start + 1);
    return ParseKey(start);
}
