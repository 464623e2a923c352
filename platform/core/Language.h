// Which of its two languages the device speaks.
#pragma once

#include <windows.h>

namespace tavrix::platform
{

constexpr LANGID LanguageEnglish = 1033;
constexpr LANGID LanguageJapanese = 1041;

/// The language that these settings of the host ask for: `wanted` ("ja" or "en") if it is one of
/// the two, else the first locale name that is neither null nor empty, Japanese when it begins with
/// "ja". Each argument may be null.
LANGID LanguageFor(const char* wanted, const char* allCategories, const char* messages,
                   const char* lang);

} // namespace tavrix::platform
