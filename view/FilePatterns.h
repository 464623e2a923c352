// The texts that the file dialog filters by. A filter text is a run of pairs, a description and its
// patterns, each ended by a zero and the whole by an empty text, wherever in a pair it stands. A
// patterns text is a run of items joined with ";"; items without a character are passed over
// everywhere. Nothing here knows a window. All texts stay their owner's.
#pragma once

#include "foundation/Result.h"

#include <windows.h>

/// One filter of a filter text.
struct FilterPair {
    const WCHAR* description;
    const WCHAR* patterns; // empty when the text ends behind the description
};

/// Walks the pairs of a filter text from the first.
class FilterPairs
{
public:
    /// Null is a text without pairs.
    explicit FilterPairs(const WCHAR* filter) : next(filter) {}
    /// False, with `*pair` as it was, behind the last.
    bool Next(FilterPair* pair);

private:
    const WCHAR* next; // null at the end
};

/// The patterns of the pair with a number from 0; null when there is none.
const WCHAR* PatternsOfPair(const WCHAR* filter, i32 number);

/// Writes the patterns of all pairs, joined with ";", and cuts them at the last cell.
void JoinPatterns(const WCHAR* filter, WCHAR* out, u32 capacity);

/// One item of a patterns text, inside that text.
struct PatternItem {
    const WCHAR* text;
    u32 length;
};

/// Walks the items of a patterns text from the first.
class PatternItems
{
public:
    /// Null is a text without items.
    explicit PatternItems(const WCHAR* patterns) : next(patterns) {}
    /// False, with `*item` as it was, behind the last.
    bool Next(PatternItem* item);

private:
    const WCHAR* next;
};

/// Whether the same item, without regard to case, comes again further on in its text: a folder that
/// is searched for the last of equal items alone lists no file twice.
bool ComesAgain(const PatternItem& item);

/// What becomes of a name whose extension fits none of the patterns.
enum class ForeignExtension { Keep, Replace };

/// Makes a name fit a filter. The extension is the text from the name's last "."; it fits an item
/// that reads the same, without regard to case, from its second character on. Where none fits, the
/// first item's text behind its "*" is added, with Replace in place of the extension: with "*.jpg"
/// "a.b" becomes "a.b.jpg", or "a.jpg". Done when the name has changed; NothingDone for one that
/// fits, is empty or ends in "\", and where the first item has no "*". `capacity` counts characters
/// with the final zero; what does not fit is cut.
i32 MakeNameFit(WCHAR* name, u32 capacity, const WCHAR* patterns, ForeignExtension foreign);
