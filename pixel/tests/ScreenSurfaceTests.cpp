// Making a screen surface, from nothing and from a bitmap, and what Present refuses.

#include "pixel/tests/PlainDither.h"
#include "pixel/tests/PlainGrey.h"
#include "platform/testing/Faults.h"

using namespace tavrix::testing;

namespace
{

using Surface = PagingTest;

/// What the surface shows, pixel by pixel, as it would be painted.
std::vector<COLORREF> PixelsOf(const ScreenSurface& surface, u32 width, u32 height)
{
    std::vector<COLORREF> pixels;
    for (u32 y = 0; y < height; ++y)
        for (u32 x = 0; x < width; ++x)
            pixels.push_back(::GetPixel(surface.GetDC(), static_cast<int>(x), static_cast<int>(y)));
    return pixels;
}

/// Shows a picture, to see that the surface still works.
void ExpectWorking(ScreenSurface& surface, u32 width, u32 height)
{
    Twin picture(width, height, 24, 77);
    PlainSurface plain(width, height, 24);
    ASSERT_EQ(surface.Depth(), 24u);
    ASSERT_EQ(surface.Present(&picture.raster, 0), 1);
    ASSERT_EQ(PlainPresentColor(plain, picture.plain, 0), 1);
    const std::vector<u8> shown = BitsOf(surface);
    ASSERT_EQ(shown.size(), plain.bits.size());
    for (u32 y = 0; y < height; ++y)
        for (u32 x = 0; x < width * 3; ++x)
            ASSERT_EQ(shown[size_t{y} * plain.stride + x],
                      plain.bits[size_t{y} * plain.stride + x]);
}

} // namespace

TEST_F(Surface, ANewOneShowsNothing)
{
    ScreenSurface surface;
    Twin picture(4, 4, 24, 1);
    EXPECT_EQ(surface.GetDC(), nullptr);
    EXPECT_EQ(surface.Present(&picture.raster, 0), -3);
    EXPECT_EQ(surface.Present(&picture.raster, 1), -3);
    EXPECT_EQ(surface.Present(nullptr, 0), -4) << "null is looked at first";
    surface.Destroy();
}

TEST_F(Surface, IsABottomUpSectionWithRowsOfWholeWords)
{
    // A platform row is (width * depth + 31) / 32 * 4 bytes.
    for (u32 width = 1; width <= 40; ++width)
        for (const u32 depth : {2u, 24u}) {
            ScreenSurface surface;
            ASSERT_EQ(surface.Create(width, 3, depth), 1);
            EXPECT_EQ(surface.Depth(), depth);
            const BITMAP section = SectionOf(surface);
            EXPECT_EQ(section.bmWidth, static_cast<LONG>(width));
            EXPECT_EQ(section.bmHeight, 3);
            EXPECT_EQ(section.bmBitsPixel, depth);
            EXPECT_EQ(section.bmWidthBytes, static_cast<LONG>((width * depth + 31) / 32 * 4));
            // The memory's first row is the image's last.
            static_cast<u8*>(section.bmBits)[0] = 0xC0;
            EXPECT_NE(::GetPixel(surface.GetDC(), 0, 2), 0u);
            EXPECT_EQ(::GetPixel(surface.GetDC(), 0, 0), 0u);
        }
}

TEST_F(Surface, TheFourGreysAre0And128And192And255)
{
    ScreenSurface surface;
    ASSERT_EQ(surface.Create(4, 1, 2), 1);
    *static_cast<u8*>(SectionOf(surface).bmBits) = 0x1B; // levels 0, 1, 2, 3
    EXPECT_EQ(PixelsOf(surface, 4, 1),
              (std::vector<COLORREF>{0x000000, 0x808080, 0xC0C0C0, 0xFFFFFF}));
}

TEST_F(Surface, WhatItShowsIsPaintedUprightFromItsContext)
{
    Twin picture(5, 3, 24, 9);
    for (const u32 depth : {24u, 2u}) {
        ScreenSurface surface;
        ASSERT_EQ(surface.Create(7, 4, depth), 1);
        ASSERT_EQ(surface.Present(&picture.raster, 0), 1);
        u8* bits = nullptr;
        const HBITMAP window = MakeSection(7, 4, 24, &bits);
        DrawingContext context;
        ASSERT_EQ(context.CreateMemory(nullptr), 1);
        ASSERT_EQ(context.SelectBitmap(window), 1);
        ASSERT_TRUE(::BitBlt(context.Handle(), 0, 0, 7, 4, surface.GetDC(), 0, 0, SRCCOPY));
        const u8 greys[] = {0, 128, 192, 255};
        PlainSurface shown(7, 4, depth);
        shown.bits = BitsOf(surface);
        for (u32 y = 0; y < 4; ++y)
            for (u32 x = 0; x < 21; ++x) {
                const u8 painted = bits[(3 - y) * 24 + x];
                const bool isPicture = x < 15 && y < 3;
                const u8 color = isPicture ? picture.plain.Row(y)[x] : u8{0};
                ASSERT_EQ(painted, depth == 24 ? color : greys[shown.LevelAt(x / 3, y)]);
            }
        EXPECT_EQ(context.DeleteMemory(), 1);
        EXPECT_TRUE(::DeleteObject(window));
    }
}

TEST_F(Surface, OtherDepthsAreBadArgumentsAndLeaveTheOldSurface)
{
    ScreenSurface surface;
    for (const u32 depth : {0u, 1u, 4u, 8u, 16u, 32u, 0x80000018u})
        EXPECT_EQ(surface.Create(5, 4, depth), -4) << depth;
    EXPECT_EQ(surface.GetDC(), nullptr);
    ASSERT_EQ(surface.Create(5, 4, 24), 1);
    for (const u32 depth : {0u, 1u, 4u, 8u, 16u, 32u, 0x80000018u})
        EXPECT_EQ(surface.Create(7, 9, depth), -4) << depth;
    ExpectWorking(surface, 5, 4);
}

TEST_F(Surface, ASizeThatThePlatformRefusesFailsAndLeavesTheOldSurface)
{
    ScreenSurface surface;
    ASSERT_EQ(surface.Create(5, 4, 24), 1);
    for (const u32 depth : {2u, 24u}) {
        EXPECT_EQ(surface.Create(0, 4, depth), -1);
        EXPECT_EQ(surface.Create(4, 0, depth), -1);
        EXPECT_EQ(surface.Create(0x7FFFFFFF, 0x7FFFFFFF, depth), -1);
        // As a signed number that is a height of -2, a bitmap of two rows.
        EXPECT_EQ(surface.Create(4, 0xFFFFFFFE, depth), -1);
        EXPECT_EQ(surface.Create(0xFFFFFFFE, 4, depth), -1);
    }
    ExpectWorking(surface, 5, 4);
}

TEST_F(Surface, IsMadeAnewOverALiveOne)
{
    const auto held = tavrix::platform::CountHoldings();
    {
        ScreenSurface surface;
        ASSERT_EQ(surface.Create(5, 4, 24), 1);
        const auto one = tavrix::platform::CountHoldings();
        ASSERT_EQ(surface.Create(9, 2, 2), 1);
        EXPECT_EQ(surface.Depth(), 2u);
        EXPECT_EQ(BitsOf(surface), std::vector<u8>(8)) << "nothing of the old one shows";
        ASSERT_EQ(surface.Create(6, 3, 24), 1);
        EXPECT_EQ(BitsOf(surface), std::vector<u8>(60));
        EXPECT_EQ(tavrix::platform::CountHoldings().drawingObjects, one.drawingObjects);
        ExpectWorking(surface, 6, 3);
    }
    EXPECT_TRUE(tavrix::platform::CountHoldings() == held);
}

TEST_F(Surface, DestroyGivesEverythingBackAndMayComeTwice)
{
    const auto held = tavrix::platform::CountHoldings();
    Twin picture(4, 4, 24, 1);
    ScreenSurface surface;
    for (const u32 depth : {2u, 24u}) {
        ASSERT_EQ(surface.Create(5, 4, depth), 1);
        ASSERT_EQ(surface.Present(&picture.raster, 1), 1);
        surface.Destroy();
        EXPECT_EQ(surface.GetDC(), nullptr);
        EXPECT_EQ(surface.Present(&picture.raster, 1), -3);
        surface.Destroy();
    }
    picture.raster.Reset();
    EXPECT_EQ(tavrix::platform::CountHoldings().drawingObjects, held.drawingObjects);
    ASSERT_EQ(surface.Create(5, 4, 24), 1);
    ExpectWorking(surface, 5, 4);
}

TEST_F(Surface, AFailedSectionLeavesTheOldSurface)
{
    for (const u32 depth : {2u, 24u}) {
        i32 result = 0;
        ForEveryFault(
            FaultKind::Allocation,
            [&] {
                ScreenSurface surface;
                result = surface.Create(6, 5, depth);
                SetAllocationFault(nullptr);
                EXPECT_EQ(surface.Present(nullptr, 0), -4);
                if (result != 1) {
                    Twin picture(4, 4, 24, 1);
                    EXPECT_EQ(surface.Present(&picture.raster, 0), -3);
                }
            },
            [&](bool fired) { EXPECT_EQ(result, fired ? -1 : 1); });
        ScreenSurface surface;
        ASSERT_EQ(surface.Create(5, 4, 24), 1);
        {
            const ArmedFault fault(FaultKind::Allocation, 1, FaultReach::Onward);
            result = surface.Create(9, 9, depth);
        }
        EXPECT_EQ(result, -1);
        ExpectWorking(surface, 5, 4);
    }
}

TEST_F(Surface, ARasterOfAnotherDepthIsRefusedAndDrawsNothing)
{
    for (const u32 depth : {2u, 24u})
        for (const u32 rasterDepth : {8u, 16u, 32u})
            for (const u32 method : {0u, 1u, 2u}) {
                Twin picture(6, 4, rasterDepth, 3, Storage::Paging);
                SurfaceTwin shown(6, 4, depth, 4);
                const WithShortMemory memory;
                EXPECT_EQ(shown.surface.Present(&picture.raster, method), -1);
                shown.ExpectSame();
                EXPECT_TRUE(FilesIn(FirstFolder).empty()) << "no line was released";
                ExpectSame({&picture});
            }
}

TEST_F(Surface, ARasterThatWasNeverCreatedIsRefused)
{
    Raster raster;
    for (const u32 depth : {2u, 24u}) {
        SurfaceTwin shown(6, 4, depth, 4);
        EXPECT_EQ(shown.surface.Present(&raster, 0), -1);
        EXPECT_EQ(shown.surface.Present(nullptr, 0), -4);
        shown.ExpectSame();
    }
}

TEST_F(Surface, FromABitmapIsA24BitCopyOfIt)
{
    const auto held = tavrix::platform::CountHoldings();
    for (const u16 depth : {u16{24}, u16{32}}) {
        u8* bits = nullptr;
        const HBITMAP source = MakeSection(7, 3, depth, &bits);
        const size_t stride = depth == 24 ? 24 : 28;
        const size_t pixel = depth / 8;
        for (size_t at = 0; at < stride * 3; ++at)
            bits[at] = PatternByte(depth, 1, static_cast<u32>(at));
        ScreenSurface surface;
        ASSERT_EQ(surface.CreateFromBitmap(source), 1);
        EXPECT_EQ(surface.Depth(), 24u);
        const std::vector<u8> shown = BitsOf(surface);
        ASSERT_EQ(shown.size(), 24u * 3);
        for (size_t y = 0; y < 3; ++y)
            for (size_t x = 0; x < 7; ++x)
                for (size_t channel = 0; channel < 3; ++channel)
                    EXPECT_EQ(shown[y * 24 + x * 3 + channel],
                              bits[y * stride + x * pixel + channel]);
        // A copy: what becomes of the source no longer shows, and nothing holds it.
        bits[0] = static_cast<u8>(~bits[0]);
        EXPECT_EQ(BitsOf(surface), shown);
        EXPECT_TRUE(::DeleteObject(source));
        EXPECT_EQ(BitsOf(surface), shown);
        ExpectWorking(surface, 7, 3);
    }
    EXPECT_TRUE(tavrix::platform::CountHoldings() == held);
}

TEST_F(Surface, FromABitmapOfGreysTakesItsColours)
{
    ScreenSurface greys;
    ASSERT_EQ(greys.Create(4, 2, 2), 1);
    const BITMAP section = SectionOf(greys);
    static_cast<u8*>(section.bmBits)[0] = 0x1B;
    static_cast<u8*>(section.bmBits)[4] = 0xE4;
    // The greys' bitmap must be out of its context to go into another.
    const HBITMAP other = MakeSection(1, 1, 24);
    const HGDIOBJ source = ::SelectObject(greys.GetDC(), other);
    ScreenSurface surface;
    ASSERT_EQ(surface.CreateFromBitmap(static_cast<HBITMAP>(source)), 1);
    EXPECT_EQ(PixelsOf(surface, 4, 2), (std::vector<COLORREF>{0xFFFFFF, 0xC0C0C0, 0x808080, 0, 0,
                                                              0x808080, 0xC0C0C0, 0xFFFFFF}));
    EXPECT_EQ(::SelectObject(greys.GetDC(), source), other);
    EXPECT_TRUE(::DeleteObject(other));
}

TEST_F(Surface, FromNoBitmapIsRefused)
{
    ScreenSurface surface;
    EXPECT_EQ(surface.CreateFromBitmap(nullptr), -4);
    const HBITMAP gone = MakeSection(2, 2, 24);
    ASSERT_TRUE(::DeleteObject(gone));
    EXPECT_EQ(surface.CreateFromBitmap(gone), -1);
    EXPECT_EQ(surface.CreateFromBitmap(static_cast<HBITMAP>(::GetStockObject(WHITE_BRUSH))), -1);
    EXPECT_EQ(surface.GetDC(), nullptr);
    ASSERT_EQ(surface.Create(5, 4, 24), 1);
    EXPECT_EQ(surface.CreateFromBitmap(nullptr), -4);
    EXPECT_EQ(surface.CreateFromBitmap(gone), -1);
    ExpectWorking(surface, 5, 4);
}

TEST_F(Surface, FromABitmapThatAnotherContextHoldsIsMadeAndBlack)
{
    const HBITMAP source = MakeSection(2, 2, 24);
    DrawingContext holder;
    ASSERT_EQ(holder.CreateMemory(nullptr), 1);
    ASSERT_EQ(holder.SelectBitmap(source), 1);
    ScreenSurface surface;
    EXPECT_EQ(surface.CreateFromBitmap(source), 1);
    EXPECT_EQ(surface.Depth(), 24u);
    EXPECT_EQ(::GetPixel(surface.GetDC(), 1, 1), 0u);
    ASSERT_EQ(holder.DeleteMemory(), 1);
    EXPECT_EQ(surface.CreateFromBitmap(source), 1);
    EXPECT_TRUE(::DeleteObject(source));
}

TEST_F(Surface, FromABitmapWithoutMemoryGivesWhatMakingGives)
{
    const HBITMAP source = MakeSection(2, 2, 24);
    i32 result = 0;
    int refused = 0;
    ForEveryFault(
        FaultKind::Allocation,
        [&] {
            ScreenSurface surface;
            result = surface.CreateFromBitmap(source);
        },
        [&](bool fired) {
            EXPECT_TRUE(result == 1 || (fired && result == -1)) << result;
            refused += result < 0 ? 1 : 0;
        });
    EXPECT_GT(refused, 0) << "no fault reached the making of the surface";
    EXPECT_TRUE(::DeleteObject(source));
}
