// A picture with text for tests: a memory context with a section of its own, its font, and where
// the ink is.
#pragma once

#include <windows.h>

#include <string>
#include <vector>

namespace tavrix::test
{

/// The pixels that are not of the ground.
struct Ink {
    int left = 0;
    int top = 0;
    int right = 0; // behind the last
    int bottom = 0;
    int count = 0;
    int Width() const { return right - left; }
    int Height() const { return bottom - top; }
};

class TextPicture
{
public:
    /// All pixels 0: white in a picture of one bit, whose entries are white and black; black in
    /// deeper ones. A negative height: rows from the top.
    TextPicture(int width, int signedHeight, int depth);
    ~TextPicture();
    TextPicture(const TextPicture&) = delete;
    TextPicture& operator=(const TextPicture&) = delete;

    /// The font of what is drawn from now on.
    void Use(LONG height, const WCHAR* face = TEXT("DejaVu Sans"), LONG weight = FW_NORMAL);
    /// DrawTextW into the whole picture, and into a rectangle.
    int Draw(const std::u16string& text, UINT format);
    int Draw(const std::u16string& text, UINT format, RECT rectangle);
    /// The rectangle after DT_CALCRECT from one of that width at (0, 0).
    RECT Measure(const std::u16string& text, UINT format, int roomWidth = 0);

    bool IsSet(int x, int y) const;
    /// Of a part of the picture; all of it without one.
    Ink Find() const;
    Ink Find(const RECT& part) const;
    /// Every pixel, '#' where there is ink, a line each.
    std::string Rows() const;
    void Clear();

    HDC dc = nullptr;
    void* bits = nullptr;
    size_t size = 0;
    const int width;
    const int height;

private:
    HBITMAP bitmap = nullptr;
    HFONT font = nullptr;
    COLORREF ground = 0;
};

} // namespace tavrix::test
