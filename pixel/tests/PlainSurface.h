// A screen surface and its plain twin: the bytes of a bottom-up bitmap, padding included. The
// formulas of showing are written out on the twin; afterwards every byte must be the same.
#pragma once

#include "pixel/ScreenSurface.h"
#include "pixel/tests/Twin.h"

/// The plain side. Image row y stands in bitmap row height - y - 1.
struct PlainSurface {
    PlainSurface(u32 theWidth, u32 theHeight, u32 theDepth)
        : width(theWidth), height(theHeight), depth(theDepth),
          stride(theDepth == 24 ? (3 * (theWidth + 1)) & ~3u
                                : ((theWidth * 2 + 31) >> 3) & 0x1FFFFFFCu),
          bits(size_t{stride} * theHeight)
    {
    }

    u8* Row(u32 y) { return bits.data() + size_t{height - y - 1} * stride; }
    /// The level of a pixel at depth 2.
    u32 LevelAt(u32 x, u32 y) { return Row(y)[x >> 2] >> (6 - (x & 3) * 2) & 3u; }

    u32 width;
    u32 height;
    u32 depth;
    u32 stride;
    std::vector<u8> bits;
};

inline HBITMAP MakeSection(u32 width, u32 height, u16 depth, u8** bits = nullptr)
{
    BITMAPINFO info = {};
    info.bmiHeader.biSize = sizeof(BITMAPINFOHEADER);
    info.bmiHeader.biWidth = static_cast<LONG>(width);
    info.bmiHeader.biHeight = static_cast<LONG>(height);
    info.bmiHeader.biPlanes = 1;
    info.bmiHeader.biBitCount = depth;
    void* made = nullptr;
    const HBITMAP bitmap = ::CreateDIBSection(nullptr, &info, DIB_RGB_COLORS, &made, nullptr, 0);
    EXPECT_NE(bitmap, nullptr);
    if (bits != nullptr)
        *bits = static_cast<u8*>(made);
    return bitmap;
}

/// The surface's bitmap. It shows itself when another takes its place for a moment.
inline BITMAP SectionOf(const ScreenSurface& surface)
{
    BITMAP record = {};
    const HBITMAP other = MakeSection(1, 1, 24);
    const HGDIOBJ held = ::SelectObject(surface.GetDC(), other);
    EXPECT_EQ(::GetObjectW(held, sizeof(record), &record), static_cast<int>(sizeof(record)));
    EXPECT_EQ(::SelectObject(surface.GetDC(), held), other);
    EXPECT_TRUE(::DeleteObject(other));
    return record;
}

/// Every byte of the surface's bitmap in the order of its memory.
inline std::vector<u8> BitsOf(const ScreenSurface& surface)
{
    const BITMAP section = SectionOf(surface);
    const u8* bits = static_cast<const u8*>(section.bmBits);
    return {bits, bits + static_cast<size_t>(section.bmWidthBytes) *
                             static_cast<size_t>(section.bmHeight)};
}

/// Both sides with the same left-overs of an earlier frame in every byte.
struct SurfaceTwin {
    SurfaceTwin(u32 width, u32 height, u32 depth, u32 seed) : plain(width, height, depth)
    {
        EXPECT_EQ(surface.Create(width, height, depth), 1);
        const BITMAP section = SectionOf(surface);
        EXPECT_EQ(section.bmWidth, static_cast<LONG>(width));
        EXPECT_EQ(section.bmHeight, static_cast<LONG>(height));
        EXPECT_EQ(section.bmBitsPixel, depth);
        EXPECT_EQ(section.bmWidthBytes, static_cast<LONG>(plain.stride));
        for (size_t at = 0; at < plain.bits.size(); ++at)
            plain.bits[at] = PatternByte(seed, static_cast<u32>(at / 7), static_cast<u32>(at));
        std::memcpy(section.bmBits, plain.bits.data(), plain.bits.size());
    }

    void ExpectSame()
    {
        const std::vector<u8> shown = BitsOf(surface);
        ASSERT_EQ(shown.size(), plain.bits.size());
        for (size_t at = 0; at < shown.size(); ++at)
            ASSERT_EQ(shown[at], plain.bits[at])
                << "image row " << plain.height - 1 - at / plain.stride << " byte "
                << at % plain.stride;
    }

    ScreenSurface surface;
    PlainSurface plain;
};

/// Rows of random bytes with every value in them.
inline Rows RandomRows(u32 seed, u32 height, u32 stride)
{
    std::mt19937 random(seed);
    Rows rows(height, std::vector<u8>(stride));
    for (std::vector<u8>& row : rows)
        for (u8& byte : row)
            byte = static_cast<u8>(random());
    return rows;
}
