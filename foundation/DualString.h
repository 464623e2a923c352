// A wide string with a cached 8-bit copy in the device's ANSI code page. Neither text is ever null:
// the empty string stands for both.
#pragma once

#include "foundation/Types.h"

#include <windows.h>

class DualString
{
public:
    DualString();
    ~DualString();
    DualString(const DualString&) = delete;
    DualString& operator=(const DualString&) = delete;

    /// Back to the empty text. Frees both copies.
    void Clear();
    /// The text; owned by this object, valid until the next change.
    const WCHAR* Get() const { return wide; }
    /// Takes a copy of `text`; null gives the empty text.
    void Assign(const WCHAR* text);
    /// Takes `text` converted from the ANSI code page; null gives the empty text.
    void AssignNarrow(const char* text);
    /// The text in the ANSI code page, converted anew; valid until the next call.
    const char* GetNarrow();

private:
    WCHAR* wide;
    [[maybe_unused]] u32 reserved; // always 0
    char* narrow;
};
