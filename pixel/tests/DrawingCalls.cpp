#include "DrawingCalls.h"

#include <cstring>

namespace
{

DrawingCalls* current = nullptr;

template <class Handle, class Make>
Handle Made(const char* word, const Make& make)
{
    if (current != nullptr && !current->Note(word))
        return nullptr;
    const Handle made = make();
    if (current != nullptr)
        current->names[static_cast<void*>(made)] = word;
    return made;
}

} // namespace

DrawingCalls::DrawingCalls()
{
    current = this;
}

DrawingCalls::~DrawingCalls()
{
    current = nullptr;
}

bool DrawingCalls::Note(const std::string& call)
{
    log.push_back(call);
    return call != fails;
}

extern "C" {

HDC __real_CreateCompatibleDC(HDC dc);
BOOL __real_DeleteDC(HDC dc);
HFONT __real_CreateFontIndirectW(const LOGFONTW* record);
HBRUSH __real_CreateSolidBrush(COLORREF color);
HBITMAP __real_CreateDIBSection(HDC dc, const BITMAPINFO* info, UINT usage, void** bits,
                                HANDLE section, DWORD offset);
HGDIOBJ __real_SelectObject(HDC dc, HGDIOBJ object);
BOOL __real_DeleteObject(HGDIOBJ object);
int __real_FillRect(HDC dc, const RECT* rectangle, HBRUSH brush);
COLORREF __real_SetTextColor(HDC dc, COLORREF color);
int __real_DrawTextW(HDC dc, LPCWSTR text, int count, RECT* place, UINT format);

HDC __wrap_CreateCompatibleDC(HDC dc)
{
    return Made<HDC>("context", [&] { return __real_CreateCompatibleDC(dc); });
}

BOOL __wrap_DeleteDC(HDC dc)
{
    if (current != nullptr)
        current->Note("delete " + current->names[static_cast<void*>(dc)]);
    return __real_DeleteDC(dc);
}

HFONT __wrap_CreateFontIndirectW(const LOGFONTW* record)
{
    if (current != nullptr)
        current->font = *record;
    return Made<HFONT>("font", [&] { return __real_CreateFontIndirectW(record); });
}

HBRUSH __wrap_CreateSolidBrush(COLORREF color)
{
    return Made<HBRUSH>("brush", [&] { return __real_CreateSolidBrush(color); });
}

HBITMAP __wrap_CreateDIBSection(HDC dc, const BITMAPINFO* info, UINT usage, void** bits,
                                HANDLE section, DWORD offset)
{
    const HBITMAP made = Made<HBITMAP>(
        "bitmap", [&] { return __real_CreateDIBSection(dc, info, usage, bits, section, offset); });
    if (current == nullptr)
        return made;
    current->header = info->bmiHeader;
    std::memcpy(current->colors, info->bmiColors, sizeof current->colors);
    current->ink = {};
    if (made != nullptr) {
        const i32 width = info->bmiHeader.biWidth;
        const size_t rowBytes = (static_cast<size_t>(width) + 31) / 32 * 4;
        current->ink = {width, info->bmiHeader.biHeight, rowBytes, static_cast<u8*>(*bits)};
        // A bitmap is anything until it is filled.
        std::memset(*bits, 0x5A, rowBytes * static_cast<size_t>(info->bmiHeader.biHeight));
    }
    return made;
}

HGDIOBJ __wrap_SelectObject(HDC dc, HGDIOBJ object)
{
    if (current == nullptr)
        return __real_SelectObject(dc, object);
    const auto made = current->names.find(object);
    const std::string word = made != current->names.end() ? made->second : "what was before";
    return current->Note("select " + word) ? __real_SelectObject(dc, object) : nullptr;
}

BOOL __wrap_DeleteObject(HGDIOBJ object)
{
    if (current != nullptr)
        current->Note("delete " + current->names[object]);
    return __real_DeleteObject(object);
}

int __wrap_FillRect(HDC dc, const RECT* rectangle, HBRUSH brush)
{
    if (current != nullptr)
        current->Note("fill");
    return __real_FillRect(dc, rectangle, brush);
}

COLORREF __wrap_SetTextColor(HDC dc, COLORREF color)
{
    if (current != nullptr)
        current->Note("colour " + std::to_string(color));
    return __real_SetTextColor(dc, color);
}

int __wrap_DrawTextW(HDC dc, LPCWSTR text, int count, RECT* place, UINT format)
{
    if (current == nullptr)
        return __real_DrawTextW(dc, text, count, place, format);
    current->Note("draw");
    std::u16string drawn = u"null";
    if (text != nullptr)
        drawn = count < 0 ? std::u16string(text) : std::u16string(text, static_cast<size_t>(count));
    current->letters.push_back({drawn, *place, format});
    return current->draw ? current->draw(current->ink, place, format) : 0;
}

} // extern "C"
