#include "foundation/Language.h"

bool IsJapanese()
{
    return GetSystemDefaultLangID() == 1041;
}

const WCHAR* InLanguage(const WCHAR* english, const WCHAR* japanese)
{
    return IsJapanese() ? japanese : english;
}
