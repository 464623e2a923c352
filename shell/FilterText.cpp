#include "shell/FilterText.h"

#include "foundation/TextSearch.h"

#include <string.h>

namespace
{

/// An empty text would end the run for the dialog, and with it the formats of all later plugins. In
/// its place stands a text of no patterns.
const WCHAR* PatternsOf(const FormatList& formats, u32 index)
{
    const WCHAR* patterns = formats.GetPatterns(index);
    return patterns != nullptr && patterns[0] != 0 ? patterns : TEXT(";");
}

u32 Copy(WCHAR* target, const WCHAR* source, u32 length)
{
    memcpy(target, source, length * sizeof(WCHAR));
    return length + 1; // what was cleared holds the zero
}

} // namespace

void BuildFilterText(WCHAR* text, u32 capacity, const FormatList& formats, i32 plugin)
{
    if (text == nullptr || capacity == 0)
        return;
    memset(text, 0, capacity * sizeof(WCHAR));
    u32 end = 0;
    for (u32 i = 0; i < formats.Count(); ++i) {
        i32 owner = EveryPlugin;
        if (formats.GetPluginIndex(i, &owner) < Done || (plugin != EveryPlugin && owner != plugin))
            continue;
        const WCHAR* const patterns = PatternsOf(formats, i);
        u32 descriptionLength = 0;
        u32 patternsLength = 0;
        (void)TextLength(formats.GetDescription(i), &descriptionLength);
        (void)TextLength(patterns, &patternsLength);
        // Both texts with their zeros, and the zero that ends the run. A format that came in half
        // would be a filter that shows nothing.
        if (u64{descriptionLength} + patternsLength + 3 > capacity - end)
            return;
        end += Copy(text + end, formats.GetDescription(i), descriptionLength);
        end += Copy(text + end, patterns, patternsLength);
    }
}
