#include "platform/testing/WindowTesting.h"
#include "platform/tests/qt/TestWindow.h"

#include <gtest/gtest.h>

namespace hand = tavrix::testing;
namespace test = tavrix::test;
using tavrix::test::TestWindow;

namespace
{

constexpr COLORREF Marked = RGB(10, 200, 30);
constexpr uint32_t MarkedPixel = 0x0AC81E;

void FillWith(HDC dc, const RECT& area, COLORREF color)
{
    const HBRUSH brush = CreateSolidBrush(color);
    FillRect(dc, &area, brush);
    DeleteObject(brush);
}

// A window that keeps what each WM_PAINT was about.
struct PaintLog {
    std::vector<RECT> areas;
    test::Handler Handler()
    {
        return [this](HWND window, UINT message, WPARAM, LPARAM) -> std::optional<LRESULT> {
            if (message != WM_PAINT)
                return std::nullopt;
            PAINTSTRUCT paint;
            BeginPaint(window, &paint);
            areas.push_back(paint.rcPaint);
            EndPaint(window, &paint);
            return 0;
        };
    }
};

} // namespace

TEST(Painting, AShownWindowIsPaintedOnceAndWhole)
{
    PaintLog log;
    const TestWindow window(log.Handler());
    hand::Pump(50);
    ASSERT_EQ(log.areas.size(), 1u);
    EXPECT_EQ(log.areas[0].right, 640);
    EXPECT_EQ(log.areas[0].bottom, 480);
    EXPECT_EQ(window.Count(WM_ERASEBKGND), 1u);
    EXPECT_EQ(hand::ScreenPixels().At(320, 240), 0u) << "the class's black brush";
}

TEST(Painting, InvalidRectanglesAddUpToOneMessage)
{
    PaintLog log;
    const TestWindow window(log.Handler());
    hand::Pump(20);
    log.areas.clear();
    const RECT first{10, 10, 20, 20};
    const RECT second{100, 5, 110, 15};
    InvalidateRect(window.handle, &first, FALSE);
    InvalidateRect(window.handle, &second, FALSE);
    hand::Pump(30);
    ASSERT_EQ(log.areas.size(), 1u);
    EXPECT_EQ(log.areas[0].left, 10);
    EXPECT_EQ(log.areas[0].top, 5);
    EXPECT_EQ(log.areas[0].right, 110);
    EXPECT_EQ(log.areas[0].bottom, 20);
    EXPECT_EQ(window.Count(WM_ERASEBKGND), 1u) << "nobody asked for the background again";
}

TEST(Painting, ValidatingTakesTheMessageBackWhollyOrInPart)
{
    PaintLog log;
    const TestWindow window(log.Handler());
    hand::Pump(20);
    log.areas.clear();
    InvalidateRect(window.handle, nullptr, FALSE);
    ValidateRect(window.handle, nullptr);
    EXPECT_FALSE(GetUpdateRect(window.handle, nullptr, FALSE));
    const RECT wide{0, 0, 100, 10};
    const RECT left{0, 0, 60, 10};
    InvalidateRect(window.handle, &wide, FALSE);
    ValidateRect(window.handle, &left);
    RECT rest{};
    EXPECT_TRUE(GetUpdateRect(window.handle, &rest, FALSE));
    EXPECT_EQ(rest.left, 60);
    EXPECT_EQ(rest.right, 100);
    hand::Pump(30);
    EXPECT_EQ(log.areas.size(), 1u);
}

TEST(Painting, UpdateWindowPaintsAtOnceAndOnlyWhenNeeded)
{
    PaintLog log;
    const TestWindow window(log.Handler());
    hand::Pump(20);
    log.areas.clear();
    UpdateWindow(window.handle);
    EXPECT_TRUE(log.areas.empty());
    InvalidateRect(window.handle, nullptr, FALSE);
    UpdateWindow(window.handle);
    EXPECT_EQ(log.areas.size(), 1u);
}

TEST(Painting, AHiddenWindowGetsNoPaintUntilItIsShown)
{
    PaintLog log;
    const TestWindow window(log.Handler(), 0);
    InvalidateRect(window.handle, nullptr, TRUE);
    hand::Pump(30);
    EXPECT_TRUE(log.areas.empty());
    ShowWindow(window.handle, SW_SHOW);
    hand::Pump(30);
    EXPECT_EQ(log.areas.size(), 1u);
}

TEST(Painting, PaintComesAfterEveryOtherMessageButBeforeTimers)
{
    const TestWindow window;
    hand::Pump(20);
    SetTimer(window.handle, 1, 1, nullptr);
    Sleep(5);
    InvalidateRect(window.handle, nullptr, FALSE);
    PostMessageW(window.handle, WM_USER, 0, 0);
    MSG message;
    std::vector<UINT> order;
    while (order.size() < 3 && GetMessageW(&message, nullptr, 0, 0)) {
        order.push_back(message.message);
        DispatchMessageW(&message);
    }
    KillTimer(window.handle, 1);
    EXPECT_EQ(order, (std::vector<UINT>{WM_USER, WM_PAINT, WM_TIMER}));
}

TEST(Painting, DrawingOutsideAPaintMessageStaysAndCausesNone)
{
    PaintLog log;
    const TestWindow window(log.Handler());
    hand::Pump(20);
    log.areas.clear();
    const HDC dc = GetDC(window.handle);
    FillWith(dc, {5, 6, 8, 9}, Marked);
    EXPECT_EQ(GetPixel(dc, 5, 6), Marked);
    EXPECT_EQ(ReleaseDC(window.handle, dc), 1);
    hand::Pump(30);
    EXPECT_TRUE(log.areas.empty());
    const hand::Picture screen = hand::ScreenPixels();
    EXPECT_EQ(screen.At(5, 6), MarkedPixel);
    EXPECT_EQ(screen.At(7, 8), MarkedPixel);
    EXPECT_EQ(screen.At(8, 8), 0u);
    EXPECT_EQ(screen.At(7, 9), 0u);
}

TEST(Painting, APictureBlittedWhileTheWindowIsBeingMadeIsThereWhenItIsShown)
{
    const TestWindow window(
        [](HWND handle, UINT message, WPARAM, LPARAM) -> std::optional<LRESULT> {
            if (message == WM_CREATE) {
                const HDC dc = GetDC(handle);
                FillWith(dc, {0, 0, 640, 480}, Marked);
                ReleaseDC(handle, dc);
                ValidateRect(handle, nullptr);
            } else if (message == WM_ERASEBKGND) {
                return 1;
            }
            return std::nullopt;
        });
    EXPECT_EQ(hand::ScreenPixels().At(639, 479), MarkedPixel);
    hand::Pump(30);
    EXPECT_EQ(hand::ScreenPixels().At(639, 479), MarkedPixel);
}

TEST(Painting, ABottomUpSectionReachesTheScreenUpright)
{
    const TestWindow window;
    hand::Pump(20);
    BITMAPINFO info{};
    info.bmiHeader.biSize = sizeof(BITMAPINFOHEADER);
    info.bmiHeader.biWidth = 16;
    info.bmiHeader.biHeight = 8;
    info.bmiHeader.biPlanes = 1;
    info.bmiHeader.biBitCount = 24;
    void* bits = nullptr;
    const HBITMAP bitmap = CreateDIBSection(nullptr, &info, DIB_RGB_COLORS, &bits, nullptr, 0);
    const HDC memory = CreateCompatibleDC(nullptr);
    const HGDIOBJ before = SelectObject(memory, bitmap);
    auto* bytes = static_cast<BYTE*>(bits);
    for (int row = 0; row < 8; ++row) // row 0 in memory is the lowest
        for (int x = 0; x < 16; ++x) {
            bytes[row * 48 + x * 3] = static_cast<BYTE>(x);
            bytes[row * 48 + x * 3 + 1] = static_cast<BYTE>(7 - row);
            bytes[row * 48 + x * 3 + 2] = 200;
        }
    const HDC dc = GetDC(window.handle);
    EXPECT_TRUE(BitBlt(dc, 100, 50, 16, 8, memory, 0, 0, SRCCOPY));
    // Partly outside on the right and below.
    EXPECT_TRUE(BitBlt(dc, 630, 475, 16, 8, memory, 0, 0, SRCCOPY));
    ReleaseDC(window.handle, dc);
    const hand::Picture screen = hand::ScreenPixels();
    for (int y = 0; y < 8; ++y)
        for (int x = 0; x < 16; ++x)
            ASSERT_EQ(screen.At(100 + x, 50 + y),
                      0xC80000u | static_cast<uint32_t>(y) << 8 | static_cast<uint32_t>(x));
    EXPECT_EQ(screen.At(639, 479), 0xC80409u);
    SelectObject(memory, before);
    DeleteDC(memory);
    DeleteObject(bitmap);
}

TEST(Painting, DrawingOnAControlLiesOverItUntilItIsInvalidated)
{
    const TestWindow window;
    const HWND control = CreateWindowExW(0, TEXT("STATIC"), TEXT(""), WS_CHILD | WS_VISIBLE, 20, 20,
                                         40, 30, window.handle, nullptr, nullptr, nullptr);
    ASSERT_NE(control, nullptr);
    hand::Pump(30);
    const uint32_t own = hand::ScreenPixels().At(30, 30);
    ASSERT_NE(own, MarkedPixel);
    const HDC dc = GetDC(control);
    FillWith(dc, {0, 0, 20, 30}, Marked);
    ReleaseDC(control, dc);
    hand::Pump(30);
    EXPECT_EQ(hand::ScreenPixels().At(39, 30), MarkedPixel);
    EXPECT_EQ(hand::ScreenPixels().At(41, 30), own);
    InvalidateRect(control, nullptr, TRUE);
    hand::Pump(30);
    EXPECT_EQ(hand::ScreenPixels().At(30, 30), own);
}

TEST(Painting, AWindowThatNeverValidatesKeepsNoOtherFromPainting)
{
    const TestWindow stubborn([](HWND, UINT message, WPARAM, LPARAM) -> std::optional<LRESULT> {
        if (message == WM_PAINT)
            return 0;
        return std::nullopt;
    });
    PaintLog log;
    const TestWindow other(log.Handler(), WS_POPUP | WS_VISIBLE, 10, 10, 20, 20, stubborn.handle);
    MSG message;
    for (int i = 0; i < 200 && log.areas.empty(); ++i)
        if (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE))
            DispatchMessageW(&message);
    EXPECT_EQ(log.areas.size(), 1u);
}

TEST(Painting, TheScreensContextReadsWhatIsSeenAndTakesNoDrawing)
{
    const TestWindow window;
    hand::Pump(20);
    HDC dc = GetDC(window.handle);
    FillWith(dc, {0, 0, 4, 4}, Marked);
    ReleaseDC(window.handle, dc);
    dc = GetDC(nullptr);
    EXPECT_EQ(GetPixel(dc, 2, 2), Marked);
    const RECT area{0, 0, 1, 1};
    EXPECT_EQ(FillRect(dc, &area, static_cast<HBRUSH>(GetStockObject(WHITE_BRUSH))), 0);
    ReleaseDC(nullptr, dc);
}
