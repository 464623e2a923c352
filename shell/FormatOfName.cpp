#include "shell/FormatOfName.h"

#include "foundation/BoundedText.h"
#include "foundation/TextFind.h"
#include "foundation/TextSearch.h"

namespace
{

constexpr u32 PatternCapacity = 2048; // characters of what a plugin can answer

/// Meant: it is cut at the last ";" and not at the first. Of one or two patterns that leaves the
/// first one's extension, of three the first two with the ";" between them.
void GetExtensionToAppend(const WCHAR* patterns, WCHAR* extension)
{
    // The star in front of the point does not count.
    (void)CopyText(extension, PatternCapacity, patterns[0] != 0 ? patterns + 1 : patterns);
    const WCHAR* last = nullptr;
    if (FindLastChar(extension, TEXT(';'), &last) >= Done)
        extension[last - extension] = 0;
}

/// Meant: only the first place counts, so that a name that holds the text twice, the second time at
/// its end, does not end with it.
bool EndsWithFirst(const WCHAR* name, const WCHAR* extension)
{
    const WCHAR* place = nullptr;
    u32 length = 0;
    if (FindText(name, extension, &place) < Done)
        return false;
    (void)TextLength(extension, &length);
    return place[length] == 0;
}

} // namespace

i32 FindPluginOfName(const FormatList& formats, const WCHAR* name, i32* plugin)
{
    const WCHAR* extension = nullptr;
    if (FindLastChar(name, TEXT('.'), &extension) < Done)
        return NothingDone;
    for (u32 i = 0; i < formats.Count(); ++i) {
        const WCHAR* patterns = formats.GetPatterns(i);
        if (patterns != nullptr && FindTextNoCase(patterns, extension) >= Done)
            return formats.GetPluginIndex(i, plugin);
    }
    return NothingDone;
}

void CompleteExtension(const FormatList& formats, u32 index, WCHAR* name, u32 capacity)
{
    const WCHAR* patterns = formats.GetPatterns(index);
    // Meant: an extension anywhere in the name will do, in the name of a folder too.
    if (patterns == nullptr || formats.MatchExtension(index, name) >= Done)
        return;
    WCHAR extension[PatternCapacity];
    GetExtensionToAppend(patterns, extension);
    if (!EndsWithFirst(name, extension))
        (void)AppendText(name, capacity, extension);
}
