// Which buttons a message box has and what stands on them, in both languages. No toolkit, any
// thread.
#pragma once

#include <windows.h>

#include <string>
#include <vector>

namespace tavrix::platform
{

inline constexpr UINT BoxTextId = 0xFFFF;
inline constexpr UINT BoxIconId = 0xFFFE;

struct BoxButton {
    UINT id = 0;
    std::u16string caption;
};

bool IsJapanese(LANGID language);
/// The buttons from left to right. An unknown type counts as a single OK, so that no box is without
/// a way out.
CE_API std::vector<BoxButton> BoxButtons(UINT flags, LANGID language);
/// Whether Esc answers the box: it has a Cancel, or just an OK.
CE_API bool EscapeAnswers(UINT flags);

} // namespace tavrix::platform
