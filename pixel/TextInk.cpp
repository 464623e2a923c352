#include "pixel/TextInk.h"

#include "foundation/BoundedText.h"

#include <limits.h>

namespace
{

struct InkFormat {
    BITMAPINFOHEADER header;
    RGBQUAD colors[2];
};

} // namespace

HFONT MakeTextFont(const WCHAR* name, i32 weight, u32 height)
{
    LOGFONTW record = {};
    record.lfHeight = static_cast<i32>(height);
    record.lfWeight = weight;
    record.lfCharSet = DEFAULT_CHARSET;
    if (name != nullptr)
        (void)CopyText(record.lfFaceName, LF_FACESIZE, name);
    return ::CreateFontIndirectW(&record);
}

HBITMAP MakeInkBitmap(i64 width, i64 height, u8** bits)
{
    *bits = nullptr;
    if (width < 1 || height < 1 || width > INT_MAX || height > INT_MAX)
        return nullptr;
    InkFormat format = {};
    format.header.biSize = sizeof(BITMAPINFOHEADER);
    format.header.biWidth = static_cast<i32>(width);
    format.header.biHeight = static_cast<i32>(height);
    format.header.biPlanes = 1;
    format.header.biBitCount = 1;
    format.header.biCompression = BI_RGB;
    format.colors[0] = {255, 255, 255, 0};
    void* pixels = nullptr;
    const HBITMAP bitmap = ::CreateDIBSection(nullptr, reinterpret_cast<const BITMAPINFO*>(&format),
                                              DIB_RGB_COLORS, &pixels, nullptr, 0);
    *bits = static_cast<u8*>(pixels);
    return bitmap;
}
