#include "foundation/DualString.h"

namespace
{

// What every empty string points at. Told from owned text by address, never freed, never written.
WCHAR emptyWide[1];
char emptyNarrow[1];

void FreeWide(WCHAR* text)
{
    if (text != emptyWide)
        GlobalFree(text);
}

void FreeNarrow(char* text)
{
    if (text != emptyNarrow)
        GlobalFree(text);
}

WCHAR* CopyWide(const WCHAR* text)
{
    SIZE_T cells = 1;
    while (text[cells - 1] != 0)
        ++cells;
    WCHAR* copy = static_cast<WCHAR*>(GlobalAlloc(GPTR, cells * sizeof(WCHAR)));
    for (SIZE_T i = 0; copy != nullptr && i < cells; ++i)
        copy[i] = text[i];
    return copy;
}

WCHAR* Widen(const char* text)
{
    const int cells = MultiByteToWideChar(CP_ACP, 0, text, -1, nullptr, 0);
    if (cells <= 0)
        return nullptr;
    // One cell more than asked for, so that the text ends in a zero whatever the conversion does.
    WCHAR* wide =
        static_cast<WCHAR*>(GlobalAlloc(GPTR, (static_cast<SIZE_T>(cells) + 1) * sizeof(WCHAR)));
    if (wide != nullptr)
        MultiByteToWideChar(CP_ACP, 0, text, -1, wide, cells);
    return wide;
}

char* Narrowed(const WCHAR* text)
{
    const int cells = WideCharToMultiByte(CP_ACP, 0, text, -1, nullptr, 0, nullptr, nullptr);
    if (cells <= 0)
        return nullptr;
    char* narrow = static_cast<char*>(GlobalAlloc(GPTR, static_cast<SIZE_T>(cells) + 1));
    if (narrow != nullptr)
        WideCharToMultiByte(CP_ACP, 0, text, -1, narrow, cells, nullptr, nullptr);
    return narrow;
}

} // namespace

DualString::DualString() : wide(emptyWide), reserved(0), narrow(emptyNarrow) {}

DualString::~DualString()
{
    Clear();
}

void DualString::Clear()
{
    FreeWide(wide);
    FreeNarrow(narrow);
    wide = emptyWide;
    narrow = emptyNarrow;
}

void DualString::Assign(const WCHAR* text)
{
    // Copied before the old text goes, which may be the very text that is assigned.
    WCHAR* copy = text != nullptr ? CopyWide(text) : nullptr;
    Clear();
    if (copy != nullptr)
        wide = copy;
}

void DualString::AssignNarrow(const char* text)
{
    WCHAR* copy = text != nullptr ? Widen(text) : nullptr;
    Clear();
    if (copy != nullptr)
        wide = copy;
}

const char* DualString::GetNarrow()
{
    FreeNarrow(narrow);
    narrow = Narrowed(wide);
    if (narrow == nullptr)
        narrow = emptyNarrow;
    return narrow;
}
