#include "platform/tests/qt/TextPicture.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>

namespace tavrix::test
{

TextPicture::TextPicture(int wide, int signedHeight, int depth)
    : width(wide), height(std::abs(signedHeight))
{
    struct {
        BITMAPINFOHEADER header{};
        RGBQUAD colors[256] = {};
    } info;
    info.header.biSize = sizeof(BITMAPINFOHEADER);
    info.header.biWidth = wide;
    info.header.biHeight = signedHeight;
    info.header.biPlanes = 1;
    info.header.biBitCount = static_cast<WORD>(depth);
    if (depth == 1)
        info.colors[0] = {255, 255, 255, 0};
    else if (depth < 24)
        for (unsigned i = 0; i < (1u << depth); ++i)
            info.colors[i] = {static_cast<BYTE>(i), static_cast<BYTE>(i), static_cast<BYTE>(i), 0};
    bitmap = CreateDIBSection(nullptr, reinterpret_cast<const BITMAPINFO*>(&info), DIB_RGB_COLORS,
                              &bits, nullptr, 0);
    size = static_cast<size_t>((wide * depth + 31) / 32 * 4) * static_cast<size_t>(height);
    dc = CreateCompatibleDC(nullptr);
    SelectObject(dc, bitmap);
    ground = GetPixel(dc, 0, 0);
}

TextPicture::~TextPicture()
{
    DeleteDC(dc);
    DeleteObject(font);
    DeleteObject(bitmap);
}

void TextPicture::Use(LONG lineHeight, const WCHAR* face, LONG weight)
{
    LOGFONTW record{};
    record.lfHeight = lineHeight;
    record.lfWeight = weight;
    record.lfCharSet = DEFAULT_CHARSET;
    const size_t length = std::min<size_t>(std::char_traits<char16_t>::length(face), 31);
    std::copy_n(face, length, record.lfFaceName);
    const HFONT made = CreateFontIndirectW(&record);
    SelectObject(dc, made);
    DeleteObject(font);
    font = made;
}

int TextPicture::Draw(const std::u16string& text, UINT format)
{
    return Draw(text, format, {0, 0, width, height});
}

int TextPicture::Draw(const std::u16string& text, UINT format, RECT rectangle)
{
    return DrawTextW(dc, text.data(), static_cast<int>(text.size()), &rectangle, format);
}

RECT TextPicture::Measure(const std::u16string& text, UINT format, int roomWidth)
{
    RECT rectangle{0, 0, roomWidth, 0};
    DrawTextW(dc, text.data(), static_cast<int>(text.size()), &rectangle, format | DT_CALCRECT);
    return rectangle;
}

bool TextPicture::IsSet(int x, int y) const
{
    return GetPixel(dc, x, y) != ground;
}

Ink TextPicture::Find() const
{
    return Find({0, 0, width, height});
}

Ink TextPicture::Find(const RECT& part) const
{
    Ink ink{part.right, part.bottom, part.left, part.top, 0};
    for (int y = part.top; y < part.bottom; ++y)
        for (int x = part.left; x < part.right; ++x)
            if (IsSet(x, y)) {
                ink.left = std::min(ink.left, x);
                ink.top = std::min(ink.top, y);
                ink.right = std::max(ink.right, x + 1);
                ink.bottom = std::max(ink.bottom, y + 1);
                ++ink.count;
            }
    return ink.count != 0 ? ink : Ink{};
}

std::string TextPicture::Rows() const
{
    std::string rows;
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x)
            rows += IsSet(x, y) ? '#' : '.';
        rows += '\n';
    }
    return rows;
}

void TextPicture::Clear()
{
    std::memset(bits, 0, size);
}

} // namespace tavrix::test
