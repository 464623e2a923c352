// The pictures that the program carries: sizes, layouts and the strip's background, by numbers
// typed by hand.

#include "resources/Ids.h"
#include "tests/support/Program.h"

#include <gtest/gtest.h>

#include <set>
#include <string>
#include <vector>

using namespace tavrix::testing;

namespace
{

struct Bytes {
    const unsigned char* data = nullptr;
    size_t size = 0;
};

Bytes Find(UINT id, const WCHAR* type)
{
    RegisterProgramResources();
    HMODULE module = GetModuleHandleW(nullptr);
    HRSRC found = FindResourceW(module, MAKEINTRESOURCEW(id), type);
    if (found == nullptr)
        return {};
    return {static_cast<const unsigned char*>(LockResource(LoadResource(module, found))),
            SizeofResource(module, found)};
}

int Word(const Bytes& bytes, size_t at)
{
    return bytes.data[at] | bytes.data[at + 1] << 8;
}

constexpr size_t StripStride = 540; // 180 pixels of three bytes
constexpr size_t CellSide = 20;
constexpr size_t Cells = 9;

/// The pixels of a cell, row by row.
std::string Cell(const Bytes& strip, size_t cell)
{
    std::string pixels;
    for (size_t y = 0; y < CellSide; ++y)
        pixels.append(reinterpret_cast<const char*>(strip.data) + y * StripStride +
                          cell * CellSide * 3,
                      CellSide * 3);
    return pixels;
}

} // namespace

TEST(Pictures, TheToolStripHoldsNineDifferentCellsOnTheToolWindowsColour)
{
    const Bytes strip = Find(135, TEXT("binary"));
    ASSERT_EQ(strip.size, 10800u);
    std::set<std::string> cells;
    for (size_t cell = 0; cell < Cells; ++cell) {
        const std::string pixels = Cell(strip, cell);
        EXPECT_EQ(pixels.substr(0, 3), "\xD8\xE9\xEC") << cell;
        size_t drawn = 0;
        for (size_t i = 0; i < pixels.size(); i += 3)
            drawn += pixels.substr(i, 3) != "\xD8\xE9\xEC" ? 1 : 0;
        EXPECT_GT(drawn, 30u) << cell;
        EXPECT_LT(drawn, CellSide * CellSide) << cell;
        cells.insert(pixels);
    }
    EXPECT_EQ(cells.size(), Cells);
}

TEST(Pictures, TheTwoMarkersStandOneAboveTheOtherAndLeaveTheirCornersOut)
{
    const Bytes markers = Find(124, TEXT("binary"));
    ASSERT_EQ(markers.size, 21u * 48 * 4);
    for (size_t first : {size_t{0}, size_t{24}}) {
        size_t seen = 0;
        for (size_t y = first; y < first + 24; ++y) {
            EXPECT_EQ(markers.data[(y * 21 + 20) * 4 + 3], 0) << "the last column is never drawn";
            for (size_t x = 0; x < 21; ++x)
                seen += markers.data[(y * 21 + x) * 4 + 3] != 0 ? 1 : 0;
        }
        EXPECT_GT(seen, 100u);
        EXPECT_EQ(markers.data[first * 21 * 4 + 3], 0);
    }
    EXPECT_NE(std::string(reinterpret_cast<const char*>(markers.data), 21 * 24 * 4),
              std::string(reinterpret_cast<const char*>(markers.data) + 21 * 24 * 4, 21 * 24 * 4));
}

TEST(Pictures, TheToolWindowsBitmapsHaveTheSizesOfTheirPlaces)
{
    struct {
        UINT id;
        int width;
        int height;
    } const bitmaps[] = {{130, 44, 11}, {138, 22, 20}, {145, 44, 11}};
    for (const auto& bitmap : bitmaps) {
        const Bytes bytes = Find(bitmap.id, RT_BITMAP);
        ASSERT_GT(bytes.size, 40u) << bitmap.id;
        EXPECT_EQ(Word(bytes, 4), bitmap.width) << bitmap.id;
        EXPECT_EQ(Word(bytes, 8), bitmap.height) << bitmap.id;
        EXPECT_EQ(Word(bytes, 14), 24) << bitmap.id;
    }
}

TEST(Pictures, TheIconsOfListsAndTreesAreThere)
{
    for (UINT id : {115u, 116u, 117u, 118u, 119u, 165u}) {
        const Bytes group = Find(id, RT_GROUP_ICON);
        ASSERT_GE(group.size, 20u) << id;
        EXPECT_EQ(group.data[6], 16) << id; // the first image's width
    }
}
