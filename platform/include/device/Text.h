// The few wide-text functions of the C run time that the interface's headers bring along, for the
// device's 16-bit characters (the host's own versions of these names take 32-bit ones).
// Included through <windows.h> only.
#pragma once

#include "device/Base.h"

#ifdef __cplusplus

#include <wchar.h>

inline size_t wcslen(const WCHAR* text)
{
    size_t length = 0;
    while (text[length] != 0)
        ++length;
    return length;
}

inline int wcscmp(const WCHAR* a, const WCHAR* b)
{
    while (*a != 0 && *a == *b) {
        ++a;
        ++b;
    }
    return *a < *b ? -1 : *a > *b ? 1 : 0;
}

inline const WCHAR* wcschr(const WCHAR* text, WCHAR character)
{
    for (;; ++text) {
        if (*text == character)
            return text;
        if (*text == 0)
            return nullptr;
    }
}

inline const WCHAR* wcsrchr(const WCHAR* text, WCHAR character)
{
    const WCHAR* found = nullptr;
    for (;; ++text) {
        if (*text == character)
            found = text;
        if (*text == 0)
            return found;
    }
}

#endif
