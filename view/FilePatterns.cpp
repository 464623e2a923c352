#include "view/FilePatterns.h"

#include "foundation/BoundedText.h"
#include "foundation/TextCompare.h"
#include "foundation/TextSearch.h"

namespace
{

constexpr WCHAR Separator = TEXT(';');

u32 LengthOf(const WCHAR* text)
{
    u32 length = 0;
    (void)TextLength(text, &length);
    return length;
}

bool FitsItem(const WCHAR* extension, u32 length, const PatternItem& item)
{
    // The whole item counts: ".jpg" does not fit "*.jpgx".
    return item.length == length + 1 && CompareNoCase(item.text + 1, extension, length) == 0;
}

bool FitsAny(const WCHAR* extension, const WCHAR* patterns)
{
    const u32 length = LengthOf(extension);
    PatternItems items(patterns);
    for (PatternItem item; items.Next(&item);) {
        if (FitsItem(extension, length, item))
            return true;
    }
    return false;
}

/// What stands behind the "*" of the first item, up to its end; null when there is none.
const WCHAR* AddedExtension(const WCHAR* patterns)
{
    PatternItem item;
    if (!PatternItems(patterns).Next(&item))
        return nullptr;
    for (u32 i = 0; i < item.length; ++i) {
        if (item.text[i] == TEXT('*'))
            return item.text + i + 1;
    }
    return nullptr;
}

} // namespace

bool FilterPairs::Next(FilterPair* pair)
{
    if (next == nullptr || *next == 0)
        return false;
    pair->description = next;
    pair->patterns = next + LengthOf(next) + 1;
    // Two zeros end the run here too: what lies behind them is nobody's.
    next = *pair->patterns != 0 ? pair->patterns + LengthOf(pair->patterns) + 1 : nullptr;
    return true;
}

const WCHAR* PatternsOfPair(const WCHAR* filter, i32 number)
{
    FilterPairs pairs(filter);
    FilterPair pair;
    for (i32 i = 0; pairs.Next(&pair); ++i) {
        if (i == number)
            return pair.patterns;
    }
    return nullptr;
}

void JoinPatterns(const WCHAR* filter, WCHAR* out, u32 capacity)
{
    if (capacity == 0)
        return;
    out[0] = 0;
    FilterPairs pairs(filter);
    for (FilterPair pair; pairs.Next(&pair);) {
        if (out[0] != 0)
            (void)AppendText(out, capacity, TEXT(";"));
        (void)AppendText(out, capacity, pair.patterns);
    }
}

bool PatternItems::Next(PatternItem* item)
{
    if (next == nullptr)
        return false;
    while (*next == Separator)
        ++next;
    if (*next == 0)
        return false;
    const WCHAR* end = next;
    while (*end != 0 && *end != Separator)
        ++end;
    *item = {next, static_cast<u32>(end - next)};
    next = end;
    return true;
}

bool ComesAgain(const PatternItem& item)
{
    PatternItems later(item.text + item.length);
    for (PatternItem other; later.Next(&other);) {
        if (other.length == item.length && CompareNoCase(other.text, item.text, item.length) == 0)
            return true;
    }
    return false;
}

i32 MakeNameFit(WCHAR* name, u32 capacity, const WCHAR* patterns, ForeignExtension foreign)
{
    const u32 length = LengthOf(name);
    if (length == 0 || name[length - 1] == TEXT('\\'))
        return NothingDone;
    // Meant as it stands: a "." in the name of a folder before the file's counts as any other.
    const WCHAR* dot = nullptr;
    const bool hasExtension = FindLastChar(name, TEXT('.'), &dot) > 0;
    if (hasExtension && FitsAny(dot, patterns))
        return NothingDone;
    const WCHAR* added = AddedExtension(patterns);
    if (added == nullptr)
        return NothingDone;
    const bool isCut = hasExtension && foreign == ForeignExtension::Replace;
    if (isCut)
        name[dot - name] = 0;
    (void)AppendText(name, capacity, added, Separator);
    return isCut || (*added != 0 && *added != Separator) ? Done : NothingDone;
}
