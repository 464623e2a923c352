// Where a line of text may end. A line ends behind spaces, which hang beyond its edge and are not
// shown, and between signs of Chinese and Japanese, unless the one would then end a line that must
// not end it, or the other begin one. Knows signs alone: no font, no width. Positions count 16-bit
// units and never lie within a pair of surrogates or between a sign and its marks. Any thread.
#pragma once

#include "device/Base.h"

#include <cstddef>
#include <string_view>

namespace tavrix::platform
{

/// Where the sign at `at`, which is below the text's length, ends with all its marks. Of marks
/// without an end some two hundred count.
CE_API size_t SignEnd(std::u16string_view text, size_t at);

/// A stretch that stays on one line, and the spaces behind it.
struct Stretch {
    size_t shown; // its end without the spaces
    size_t end;   // where the next one begins
};

/// The stretch at `at`, which is below the text's length. Tabs and the wide space are spaces too.
/// At the beginning of a paragraph the spaces are a stretch by themselves, of which nothing is
/// shown.
CE_API Stretch NextStretch(std::u16string_view text, size_t at);

} // namespace tavrix::platform
