#include <windows.h>

#include "platform/core/Gdi.h"
#include "platform/testing/Testing.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <random>
#include <thread>
#include <vector>

namespace
{

struct Info {
    BITMAPINFOHEADER header{};
    RGBQUAD colors[256] = {};
    Info(int width, int height, int depth)
    {
        header.biSize = sizeof(BITMAPINFOHEADER);
        header.biWidth = width;
        header.biHeight = height;
        header.biPlanes = 1;
        header.biBitCount = static_cast<WORD>(depth);
        for (unsigned i = 0; i < 256; ++i)
            colors[i] = {static_cast<BYTE>(i * 3), static_cast<BYTE>(i * 5),
                         static_cast<BYTE>(255 - i), 0};
    }
    const BITMAPINFO* Get() const { return reinterpret_cast<const BITMAPINFO*>(this); }
};

// A section in a memory context. Negative height: top-down.
class Section
{
public:
    Section(int width, int signedHeight, int depth) : Section(Info(width, signedHeight, depth)) {}
    explicit Section(const Info& info)
    {
        bitmap = CreateDIBSection(nullptr, info.Get(), DIB_RGB_COLORS, &memory, nullptr, 0);
        dc = CreateCompatibleDC(nullptr);
        before = SelectObject(dc, bitmap);
        stride = (info.header.biWidth * info.header.biBitCount + 31) / 32 * 4;
        height = std::abs(info.header.biHeight);
        bottomUp = info.header.biHeight > 0;
    }
    ~Section()
    {
        SelectObject(dc, before);
        DeleteDC(dc);
        DeleteObject(bitmap);
    }
    BYTE* Row(int y) const
    {
        return static_cast<BYTE*>(memory) + (bottomUp ? height - 1 - y : y) * stride;
    }
    void SetPixel24(int x, int y, COLORREF color) const
    {
        BYTE* pixel = Row(y) + x * 3;
        pixel[0] = static_cast<BYTE>(color >> 16);
        pixel[1] = static_cast<BYTE>(color >> 8);
        pixel[2] = static_cast<BYTE>(color);
    }
    HBITMAP bitmap = nullptr;
    HDC dc = nullptr;
    HGDIOBJ before = nullptr;
    void* memory = nullptr;
    int stride = 0;
    int height = 0;
    bool bottomUp = false;
};

constexpr COLORREF NoPixel = 0xFFFFFFFFu;

} // namespace

TEST(GdiSections, RowsAreStoredFromTheBottomUpWithAPositiveHeight)
{
    const Section up(3, 2, 24);
    ASSERT_NE(up.bitmap, nullptr);
    auto* bytes = static_cast<BYTE*>(up.memory);
    bytes[0] = 1; // blue of the lower left pixel
    bytes[1] = 2;
    bytes[2] = 3;
    EXPECT_EQ(GetPixel(up.dc, 0, 1), RGB(3, 2, 1));
    EXPECT_EQ(GetPixel(up.dc, 0, 0), RGB(0, 0, 0));

    const Section down(3, -2, 24);
    static_cast<BYTE*>(down.memory)[0] = 9;
    EXPECT_EQ(GetPixel(down.dc, 0, 0), RGB(0, 0, 9));
}

TEST(GdiSections, RowsTakeWholeWordsOfFourBytes)
{
    BITMAP record{};
    const Section odd(3, 5, 24);
    ASSERT_EQ(GetObjectW(odd.bitmap, sizeof(record), &record), static_cast<int>(sizeof(record)));
    EXPECT_EQ(record.bmWidthBytes, 12);
    EXPECT_EQ(record.bmWidth, 3);
    EXPECT_EQ(record.bmHeight, 5);
    EXPECT_EQ(record.bmBitsPixel, 24);
    EXPECT_EQ(record.bmPlanes, 1);
    EXPECT_EQ(record.bmBits, odd.memory);
    const Section grey(17, -5, 2);
    GetObjectW(grey.bitmap, sizeof(record), &record);
    EXPECT_EQ(record.bmWidthBytes, 8);
    EXPECT_EQ(record.bmHeight, 5);
    const Section mono(33, 1, 1);
    GetObjectW(mono.bitmap, sizeof(record), &record);
    EXPECT_EQ(record.bmWidthBytes, 8);
}

TEST(GdiSections, GetObjectWantsRoomForTheWholeRecord)
{
    const Section section(2, 2, 24);
    BITMAP record{};
    EXPECT_EQ(GetObjectW(section.bitmap, sizeof(record) - 1, &record), 0);
    EXPECT_EQ(GetObjectW(section.bitmap, 0, nullptr), static_cast<int>(sizeof(record)));
    EXPECT_EQ(GetObjectW(nullptr, sizeof(record), &record), 0);
    EXPECT_EQ(GetObjectW(&record, sizeof(record), &record), 0);
}

TEST(GdiSections, PixelsOfTwoBitsComeFromTheHighBitsDownThroughTheColours)
{
    const Section section(5, -1, 2);
    section.Row(0)[0] = 0b00011011;
    section.Row(0)[1] = 0b11000000;
    const Info info(5, -1, 2);
    for (int x = 0; x < 4; ++x) {
        const RGBQUAD& color = info.colors[x];
        EXPECT_EQ(GetPixel(section.dc, x, 0), RGB(color.rgbRed, color.rgbGreen, color.rgbBlue));
    }
    EXPECT_EQ(GetPixel(section.dc, 4, 0), RGB(252, 15, 9));
}

TEST(GdiSections, PixelsOfOneBitComeFromTheHighBitDown)
{
    Info info(9, -1, 1);
    info.colors[0] = {0, 0, 0, 0};
    info.colors[1] = {255, 255, 255, 0};
    const Section section(info);
    section.Row(0)[0] = 0x80;
    section.Row(0)[1] = 0x80;
    for (int x = 0; x < 9; ++x)
        EXPECT_EQ(GetPixel(section.dc, x, 0), x == 0 || x == 8 ? RGB(255, 255, 255) : 0u) << x;
}

TEST(GdiSections, WhatCannotBeMadeGivesNullAndNoBits)
{
    void* bits = &bits;
    const auto make = [&bits](const Info& info, UINT usage = DIB_RGB_COLORS) {
        bits = &bits;
        return CreateDIBSection(nullptr, info.Get(), usage, &bits, nullptr, 0);
    };
    EXPECT_EQ(CreateDIBSection(nullptr, nullptr, 0, &bits, nullptr, 0), nullptr);
    EXPECT_EQ(make(Info(0, 5, 24)), nullptr);
    EXPECT_EQ(bits, nullptr);
    EXPECT_EQ(make(Info(-3, 5, 24)), nullptr);
    EXPECT_EQ(make(Info(5, 0, 24)), nullptr);
    EXPECT_EQ(make(Info(5, 5, 3)), nullptr);
    EXPECT_EQ(make(Info(5, 5, 24), 1), nullptr);
    Info packed(5, 5, 24);
    packed.header.biCompression = 1;
    EXPECT_EQ(make(packed), nullptr);
    Info shortHeader(5, 5, 24);
    shortHeader.header.biSize = 12;
    EXPECT_EQ(make(shortHeader), nullptr);
    // 2^31 pixels each way would wrap around in 32 bits, and in 64 as well.
    EXPECT_EQ(make(Info(0x7FFFFFFF, 0x7FFFFFFF, 24)), nullptr);
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_NOT_ENOUGH_MEMORY));
    EXPECT_EQ(make(Info(5, -0x7FFFFFFF - 1, 24)), nullptr);
}

TEST(GdiSections, AFailingAllocationGivesNull)
{
    const tavrix::testing::Scope scope;
    tavrix::testing::SetAllocationFault([](SIZE_T) { return true; });
    const Info info(4, 4, 24);
    void* bits = nullptr;
    EXPECT_EQ(CreateDIBSection(nullptr, info.Get(), DIB_RGB_COLORS, &bits, nullptr, 0), nullptr);
}

TEST(GdiObjects, ABitmapIsInOneContextAtATimeAndStaysWhileSelected)
{
    const Section section(2, 2, 24);
    EXPECT_NE(section.before, nullptr);
    const HDC other = CreateCompatibleDC(nullptr);
    EXPECT_EQ(SelectObject(other, section.bitmap), nullptr);
    EXPECT_FALSE(DeleteObject(section.bitmap));
    EXPECT_EQ(SelectObject(section.dc, section.bitmap), section.bitmap);
    EXPECT_EQ(SelectObject(section.dc, section.before), section.bitmap);
    EXPECT_EQ(SelectObject(other, section.bitmap), section.before);
    EXPECT_TRUE(DeleteDC(other));
    EXPECT_EQ(SelectObject(section.dc, section.bitmap), section.before)
        << "deleting a context lets its bitmap go";
}

TEST(GdiObjects, CallsWithStaleHandlesFail)
{
    const HBRUSH brush = CreateSolidBrush(RGB(1, 2, 3));
    const HDC dc = CreateCompatibleDC(nullptr);
    EXPECT_TRUE(DeleteObject(brush));
    EXPECT_FALSE(DeleteObject(brush));
    EXPECT_FALSE(DeleteObject(nullptr));
    EXPECT_EQ(SelectObject(dc, brush), nullptr);
    EXPECT_EQ(SelectObject(dc, nullptr), nullptr);
    EXPECT_EQ(ReleaseDC(nullptr, dc), 0) << "a memory context is deleted, not released";
    EXPECT_TRUE(DeleteDC(dc));
    EXPECT_FALSE(DeleteDC(dc));
    EXPECT_EQ(SelectObject(dc, GetStockObject(BLACK_BRUSH)), nullptr);
    EXPECT_EQ(CreateCompatibleDC(dc), nullptr);
    EXPECT_EQ(GetPixel(dc, 0, 0), NoPixel);
    const RECT area{0, 0, 1, 1};
    EXPECT_EQ(FillRect(dc, &area, static_cast<HBRUSH>(GetStockObject(BLACK_BRUSH))), 0);
    EXPECT_FALSE(BitBlt(dc, 0, 0, 1, 1, dc, 0, 0, SRCCOPY));
}

TEST(GdiObjects, StockObjectsSurviveDeletionAndKeepTheirHandles)
{
    const HGDIOBJ black = GetStockObject(BLACK_BRUSH);
    ASSERT_NE(black, nullptr);
    EXPECT_TRUE(DeleteObject(black));
    EXPECT_EQ(GetStockObject(BLACK_BRUSH), black);
    const Section section(1, 1, 24);
    const RECT area{0, 0, 1, 1};
    EXPECT_EQ(FillRect(section.dc, &area, static_cast<HBRUSH>(GetStockObject(WHITE_BRUSH))), 1);
    EXPECT_EQ(GetPixel(section.dc, 0, 0), RGB(255, 255, 255));
    EXPECT_EQ(FillRect(section.dc, &area, static_cast<HBRUSH>(black)), 1);
    EXPECT_EQ(GetPixel(section.dc, 0, 0), RGB(0, 0, 0));
    EXPECT_EQ(GetStockObject(99), nullptr);
    EXPECT_EQ(GetStockObject(-1), nullptr);
}

TEST(GdiObjects, TheScreensContextNeedsNoToolkit)
{
    const HDC dc = GetDC(nullptr);
    ASSERT_NE(dc, nullptr);
    EXPECT_FALSE(DeleteDC(dc));
    EXPECT_NE(CreateCompatibleDC(dc), nullptr);
    EXPECT_EQ(ReleaseDC(nullptr, dc), 1);
    EXPECT_EQ(ReleaseDC(nullptr, dc), 0);
    EXPECT_EQ(GetDC(reinterpret_cast<HWND>(0x40)), nullptr);
}

TEST(GdiFill, TheRectanglesRightAndBottomAreNotFilledAndItIsClipped)
{
    const Section section(6, 4, 24);
    const HBRUSH brush = CreateSolidBrush(RGB(10, 20, 30));
    const RECT area{-5, 1, 3, 3};
    EXPECT_EQ(FillRect(section.dc, &area, brush), 1);
    for (int y = 0; y < 4; ++y)
        for (int x = 0; x < 6; ++x)
            EXPECT_EQ(GetPixel(section.dc, x, y),
                      x < 3 && y >= 1 && y < 3 ? RGB(10, 20, 30) : RGB(0, 0, 0))
                << x << ' ' << y;
    const RECT huge{-0x7FFFFFFF - 1, -0x7FFFFFFF - 1, 0x7FFFFFFF, 0x7FFFFFFF};
    EXPECT_EQ(FillRect(section.dc, &huge, brush), 1);
    EXPECT_EQ(GetPixel(section.dc, 5, 3), RGB(10, 20, 30));
    const RECT inverted{3, 3, 1, 1};
    EXPECT_EQ(FillRect(section.dc, &inverted, brush), 1);
    EXPECT_EQ(FillRect(section.dc, nullptr, brush), 0);
    EXPECT_EQ(FillRect(section.dc, &area, nullptr), 0);
    DeleteObject(brush);
}

TEST(GdiFill, OfIndexedPixelsExactlyThoseOfTheRectangleAreFilled)
{
    constexpr int Width = 37;
    const COLORREF before = RGB(255, 0, 0); // the sections' entry 0
    for (const int depth : {1, 2, 4, 8}) {
        const int index = depth == 1 ? 1 : (1 << depth) - 2;
        const COLORREF color =
            RGB((255 - index) & 255, index * 5 & 255, index * 3 & 255); // and that one
        const HBRUSH brush = CreateSolidBrush(color);
        for (int left = 0; left <= Width; ++left)
            for (int right = left; right <= Width; ++right) {
                const Section section(Width, 3, depth);
                const RECT area{left, 1, right, 2};
                EXPECT_EQ(FillRect(section.dc, &area, brush), 1);
                for (int y = 0; y < 3; ++y)
                    for (int x = 0; x < Width; ++x)
                        ASSERT_EQ(GetPixel(section.dc, x, y),
                                  y == 1 && x >= left && x < right ? color : before)
                            << depth << ": " << left << " to " << right << ", " << x << ' ' << y;
            }
        DeleteObject(brush);
    }
}

TEST(GdiFill, TheHollowBrushPaintsNothing)
{
    const Section section(2, 2, 24);
    const RECT area{0, 0, 2, 2};
    FillRect(section.dc, &area, static_cast<HBRUSH>(GetStockObject(WHITE_BRUSH)));
    EXPECT_EQ(FillRect(section.dc, &area, static_cast<HBRUSH>(GetStockObject(NULL_BRUSH))), 1);
    EXPECT_EQ(GetPixel(section.dc, 1, 1), RGB(255, 255, 255));
}

TEST(GdiBitBlt, RandomTransfersAreThoseOfOnePixelAfterTheOther)
{
    std::mt19937 random(42);
    const auto pick = [&random](int from, int to) {
        return std::uniform_int_distribution<int>(from, to)(random);
    };
    const int depths[] = {1, 2, 4, 8, 24, 32};
    for (int round = 0; round < 400; ++round) {
        const int sourceDepth = depths[pick(0, 5)];
        const int targetDepth = pick(0, 1) == 0 ? 24 : 32;
        const int width = pick(1, 33);
        const int height = pick(1, 9);
        const Section source(width, pick(0, 1) == 0 ? height : -height, sourceDepth);
        const Section target(pick(1, 33), pick(0, 1) == 0 ? 7 : -7, targetDepth);
        for (int y = 0; y < height; ++y)
            for (int i = 0; i < source.stride; ++i)
                source.Row(y)[i] = static_cast<BYTE>(pick(0, 255));
        BITMAP shape{};
        GetObjectW(target.bitmap, sizeof(shape), &shape);
        const int x = pick(-20, 20);
        const int y = pick(-6, 6);
        const int w = pick(-2, 40);
        const int h = pick(-2, 12);
        const int fromX = pick(-20, 20);
        const int fromY = pick(-6, 6);
        ASSERT_TRUE(BitBlt(target.dc, x, y, w, h, source.dc, fromX, fromY, SRCCOPY));
        for (int ty = 0; ty < shape.bmHeight; ++ty)
            for (int tx = 0; tx < shape.bmWidth; ++tx) {
                const int sx = fromX + tx - x;
                const int sy = fromY + ty - y;
                const bool inside = tx >= x && tx < x + w && ty >= y && ty < y + h && sx >= 0 &&
                                    sx < width && sy >= 0 && sy < height;
                ASSERT_EQ(GetPixel(target.dc, tx, ty), inside ? GetPixel(source.dc, sx, sy) : 0u)
                    << "round " << round << " at " << tx << ' ' << ty;
            }
    }
}

TEST(GdiBitBlt, WithinOnePictureAnOverlapMovesWhole)
{
    for (const auto& [dx, dy] : {std::pair{1, 0}, {-1, 0}, {0, 1}, {0, -1}, {2, 1}, {-2, -1}}) {
        const Section section(8, 8, 24);
        for (int y = 0; y < 8; ++y)
            for (int x = 0; x < 8; ++x)
                section.SetPixel24(x, y, RGB(x, y, 7));
        ASSERT_TRUE(BitBlt(section.dc, 2 + dx, 2 + dy, 4, 4, section.dc, 2, 2, SRCCOPY));
        for (int y = 2; y < 6; ++y)
            for (int x = 2; x < 6; ++x)
                ASSERT_EQ(GetPixel(section.dc, x + dx, y + dy), RGB(x, y, 7)) << dx << ' ' << dy;
    }
}

TEST(GdiBitBlt, ANarrowPictureTakesTheNearestOfItsColours)
{
    Info info(2, 1, 2);
    info.colors[0] = {0, 0, 0, 0};
    info.colors[1] = {85, 85, 85, 0};
    info.colors[2] = {170, 170, 170, 0};
    info.colors[3] = {255, 255, 255, 0};
    const Section grey(info);
    const Section source(2, 1, 24);
    source.SetPixel24(0, 0, RGB(90, 80, 100));
    source.SetPixel24(1, 0, RGB(250, 240, 255));
    ASSERT_TRUE(BitBlt(grey.dc, 0, 0, 2, 1, source.dc, 0, 0, SRCCOPY));
    EXPECT_EQ(grey.Row(0)[0], 0b01110000);
}

TEST(GdiBitBlt, ExtremeArgumentsTouchNothingOutside)
{
    const Section source(4, 4, 24);
    const Section target(4, 4, 24);
    constexpr int Most = 0x7FFFFFFF;
    constexpr int Least = -Most - 1;
    for (const int x : {Least, -1, 0, Most})
        for (const int width : {Least, 0, Most})
            for (const int from : {Least, -1, 0, Most})
                EXPECT_TRUE(BitBlt(target.dc, x, x, width, width, source.dc, from, from, SRCCOPY));
    EXPECT_TRUE(BitBlt(target.dc, Most, Most, Most, Most, nullptr, 0, 0, BLACKNESS));
}

TEST(GdiBitBlt, BlackAndWhiteNeedNoSourceAndOtherOperationsAreRefused)
{
    const Section target(3, 3, 24);
    EXPECT_TRUE(BitBlt(target.dc, 1, 1, 1, 1, nullptr, 0, 0, WHITENESS));
    EXPECT_EQ(GetPixel(target.dc, 1, 1), RGB(255, 255, 255));
    EXPECT_EQ(GetPixel(target.dc, 2, 1), RGB(0, 0, 0));
    EXPECT_TRUE(BitBlt(target.dc, 0, 0, 3, 3, nullptr, 0, 0, BLACKNESS));
    EXPECT_EQ(GetPixel(target.dc, 1, 1), RGB(0, 0, 0));
    EXPECT_FALSE(BitBlt(target.dc, 0, 0, 3, 3, nullptr, 0, 0, SRCCOPY));
    EXPECT_FALSE(BitBlt(target.dc, 0, 0, 3, 3, target.dc, 0, 0, 0x00EE0086));
    EXPECT_EQ(GetPixel(target.dc, 3, 0), NoPixel);
    EXPECT_EQ(GetPixel(target.dc, 0, -1), NoPixel);
}

TEST(GdiBitBlt, ThreadsDrawIntoSectionsOfTheirOwn)
{
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i)
        threads.emplace_back([i] {
            for (int round = 0; round < 50; ++round) {
                const Section a(16, 16, 24);
                const Section b(16, 16, 32);
                a.SetPixel24(3, 3, RGB(i, round, 1));
                BitBlt(b.dc, 0, 0, 16, 16, a.dc, 0, 0, SRCCOPY);
                EXPECT_EQ(GetPixel(b.dc, 3, 3), RGB(i, round, 1));
            }
        });
    for (std::thread& thread : threads)
        thread.join();
}

TEST(GdiFonts, AFontIsReadBackAsItWasAskedForUntilItIsDeleted)
{
    LOGFONTW record{};
    record.lfHeight = -17;
    record.lfWeight = FW_BOLD;
    record.lfItalic = 1;
    record.lfCharSet = SHIFTJIS_CHARSET;
    for (WCHAR& unit : record.lfFaceName)
        unit = 'x';
    EXPECT_EQ(CreateFontIndirectW(nullptr), nullptr);
    const HFONT font = CreateFontIndirectW(&record);
    ASSERT_NE(font, nullptr);
    EXPECT_EQ(GetObjectW(font, 0, nullptr), static_cast<int>(sizeof(LOGFONTW)));
    LOGFONTW read{};
    EXPECT_EQ(GetObjectW(font, static_cast<int>(sizeof(read)) - 1, &read), 0);
    EXPECT_EQ(GetObjectW(font, static_cast<int>(sizeof(read)), &read),
              static_cast<int>(sizeof(read)));
    EXPECT_EQ(read.lfHeight, -17);
    EXPECT_EQ(read.lfWeight, FW_BOLD);
    EXPECT_EQ(read.lfItalic, 1);
    EXPECT_EQ(read.lfCharSet, SHIFTJIS_CHARSET);
    EXPECT_EQ(std::u16string(read.lfFaceName), std::u16string(LF_FACESIZE - 1, u'x'))
        << "a face that fills its field has an end all the same";
    EXPECT_TRUE(DeleteObject(font));
    EXPECT_FALSE(DeleteObject(font));
    EXPECT_EQ(GetObjectW(font, static_cast<int>(sizeof(read)), &read), 0);

    const HGDIOBJ stock = GetStockObject(SYSTEM_FONT);
    EXPECT_EQ(GetObjectW(stock, static_cast<int>(sizeof(read)), &read),
              static_cast<int>(sizeof(read)));
    EXPECT_EQ(read.lfWeight, FW_NORMAL);
    EXPECT_EQ(read.lfFaceName[0], 0);
    EXPECT_TRUE(DeleteObject(stock)) << "which does nothing";
    EXPECT_EQ(GetStockObject(SYSTEM_FONT), stock);
}

TEST(GdiText, TheColourIsBlackAtFirstAndEachContextsOwn)
{
    const HDC one = CreateCompatibleDC(nullptr);
    const HDC other = CreateCompatibleDC(nullptr);
    EXPECT_EQ(SetTextColor(one, RGB(1, 2, 3)), RGB(0, 0, 0));
    EXPECT_EQ(SetTextColor(one, 0xFF040506), RGB(1, 2, 3));
    EXPECT_EQ(SetTextColor(one, 0), COLORREF{0x040506}) << "three bytes alone";
    EXPECT_EQ(SetTextColor(other, 0), RGB(0, 0, 0));
    DeleteDC(one);
    DeleteDC(other);
    EXPECT_EQ(SetTextColor(one, 0), CLR_INVALID);
    EXPECT_EQ(SetTextColor(nullptr, 0), CLR_INVALID);
}

TEST(GdiText, WithoutAToolkitNothingIsDrawnAndNoFontIsThere)
{
    const Section section(64, 32, 24);
    RECT room{0, 0, 64, 32};
    EXPECT_EQ(DrawTextW(section.dc, TEXT("x"), -1, &room, DT_LEFT), 0);
    EXPECT_EQ(DrawTextW(section.dc, TEXT("x"), -1, &room, DT_CALCRECT), 0);
    EXPECT_EQ(room.right, 64);
    const auto take = [](const LOGFONTW*, const TEXTMETRICW*, DWORD, LPARAM) -> int { return 1; };
    EXPECT_EQ(EnumFontFamiliesW(section.dc, nullptr, take, 0), 0);
}

TEST(GdiText, AMaskColoursThePixelsOfItsBitsAlone)
{
    // Eleven pixels: bits 0, 3, 7, 8, 10, and ones beyond the edge that count for nothing.
    const uint8_t mask[2][4] = {{0x91, 0xBF, 0xFF, 0xFF}, {0, 0x1F, 0, 0}};
    const std::vector<int> inside{0, 3, 7, 8, 10};
    for (const int depth : {1, 2, 4, 8, 24, 32})
        for (const int height : {4, -4}) {
            const Section section(11, height, depth);
            // Of an indexed picture the second entry.
            const COLORREF wanted = depth >= 24 ? RGB(9, 200, 77) : RGB(254, 5, 3);
            std::memset(section.memory, 0, static_cast<size_t>(section.stride * 4));
            const COLORREF ground = GetPixel(section.dc, 0, 0);
            tavrix::platform::Surface surface =
                static_cast<const tavrix::platform::Bitmap&>(
                    *tavrix::platform::FindGdiObject(section.bitmap))
                    .surface;
            tavrix::platform::PaintMask(surface, 1, 2, &mask[0][0], 4, wanted);
            for (int y = 0; y < 4; ++y)
                for (int x = 0; x < 11; ++x) {
                    const bool set =
                        y == 1 && std::find(inside.begin(), inside.end(), x) != inside.end();
                    EXPECT_EQ(GetPixel(section.dc, x, y), set ? wanted : ground)
                        << depth << " " << x << " " << y;
                }
            // The bits beyond the edge of a row stay as they are.
            const int last = (11 * depth + 7) / 8;
            for (int i = last; i < section.stride; ++i)
                EXPECT_EQ(section.Row(1)[i], 0);
        }
}

TEST(GdiText, AMaskTakesBitsAwayWhereTheColourIsThatOfTheFirstEntry)
{
    Info info(9, 1, 1);
    info.colors[0] = {255, 255, 255, 0};
    info.colors[1] = {0, 0, 0, 0};
    const Section section(info);
    std::memset(section.memory, 0xFF, 4);
    const uint8_t mask[4] = {0x81, 0xFF, 0xFF, 0xFF};
    const tavrix::platform::Surface surface = static_cast<const tavrix::platform::Bitmap&>(
                                                  *tavrix::platform::FindGdiObject(section.bitmap))
                                                  .surface;
    tavrix::platform::PaintMask(surface, 0, 1, mask, 4, RGB(200, 200, 200));
    EXPECT_EQ(section.Row(0)[0], 0x7E);
    EXPECT_EQ(section.Row(0)[1], 0x7F) << "one pixel, and what pads the row";
}
