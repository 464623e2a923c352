// Which handles are taken for pictures and palettes, in which call and on which thread; and when a
// thread counts as being inside a plugin.

#include "plugin/PluginObjects.h"

#include "foundation/ColorTable.h"
#include "image/Raster.h"
#include "platform/testing/Testing.h"
#include "plugin/FunctionTables.h"
#include "plugin/GuardedCall.h"
#include "plugin/PluginHeap.h"

#include <gtest/gtest.h>

#include <functional>
#include <random>
#include <thread>
#include <vector>

namespace
{

TavrixImageHandle ImageAt(uintptr_t address)
{
    return reinterpret_cast<TavrixImageHandle>(address);
}
TavrixPaletteHandle PaletteAt(uintptr_t address)
{
    return reinterpret_cast<TavrixPaletteHandle>(address);
}
uintptr_t AddressOf(const void* object)
{
    return reinterpret_cast<uintptr_t>(object);
}

/// A running call that was lent a picture and has made a picture and a palette.
class PluginHandles : public ::testing::Test
{
protected:
    PluginHandles()
    {
        Begin();
        EXPECT_EQ(MakePluginObject(&made), 1);
        EXPECT_EQ(MakePluginObject(&palette), 1);
        WriteRasterFunctions(&rasters);
        WritePaletteFunctions(&palettes);
    }
    ~PluginHandles() override { (void)DropHeap(); }

    void Begin()
    {
        EXPECT_EQ(MakeHeap(), 1);
        LendPluginImage(&lent);
    }

    tavrix::testing::Scope scope;
    Raster lent;
    Raster* made = nullptr;
    ColorTable* palette = nullptr;
    RasterFunctionTable rasters;
    PaletteFunctionTable palettes;
};

TEST_F(PluginHandles, AreFoundInTheirCall)
{
    EXPECT_EQ(FindPluginImage(ToHandle(&lent)), &lent);
    EXPECT_EQ(FindPluginImage(ToHandle(made)), made);
    EXPECT_EQ(FindPluginPalette(ToHandle(palette)), palette);
}

TEST_F(PluginHandles, AreRefusedWhenTheCallIsOver)
{
    EXPECT_EQ(DropHeap(), 1);
    for (int turn = 0; turn < 2; ++turn) {
        EXPECT_EQ(FindPluginImage(ToHandle(made)), nullptr);
        EXPECT_EQ(FindPluginPalette(ToHandle(palette)), nullptr);
        EXPECT_EQ(DestroyPluginObject(ToHandle(made)), -1);
        EXPECT_EQ(DestroyPluginObject(ToHandle(palette)), -1);
        EXPECT_EQ(FindPluginImage(ToHandle(&lent)), nullptr);
        EXPECT_EQ(MakeHeap(), 1); // and in the next call, to which nothing was lent
    }
}

TEST_F(PluginHandles, NullIsNoPictureThoughNothingWasLent)
{
    LendPluginImage(nullptr);
    EXPECT_EQ(FindPluginImage(nullptr), nullptr);
    EXPECT_EQ(FindPluginPalette(nullptr), nullptr);
    EXPECT_EQ(DestroyPluginObject(TavrixImageHandle{nullptr}), -1);
    EXPECT_EQ(DestroyPluginObject(TavrixPaletteHandle{nullptr}), -1);
}

TEST_F(PluginHandles, APaletteIsNoPictureAndAPictureNoPalette)
{
    const TavrixImageHandle image = ImageAt(AddressOf(palette));
    EXPECT_EQ(FindPluginImage(image), nullptr);
    EXPECT_EQ(FindPluginPalette(PaletteAt(AddressOf(made))), nullptr);
    EXPECT_EQ(FindPluginPalette(PaletteAt(AddressOf(&lent))), nullptr);
    TavrixImageHandle disguised = image;
    EXPECT_EQ(rasters.RasterDestroy(&disguised), -1);
    EXPECT_EQ(disguised, image);
    TavrixPaletteHandle other = PaletteAt(AddressOf(made));
    EXPECT_EQ(palettes.PaletteDestroy(&other), -1);
    EXPECT_EQ(rasters.RasterGetPalette(ToHandle(made), other), -1);
    EXPECT_EQ(rasters.RasterSetPalette(ToHandle(made), other), -1);
    EXPECT_EQ(palettes.PaletteCopy(ToHandle(palette), other), -4);
    EXPECT_EQ(FindPluginImage(ToHandle(made)), made);
    EXPECT_EQ(FindPluginPalette(ToHandle(palette)), palette);
}

TEST_F(PluginHandles, WhatIsMadeUpIsRefused)
{
    std::mt19937_64 random(4711);
    std::vector<uintptr_t> numbers = {1, 2, 8, 0x7FFFFFFF, UINTPTR_MAX, UINTPTR_MAX - 7};
    for (const uintptr_t object : {AddressOf(&lent), AddressOf(made), AddressOf(palette)})
        for (uintptr_t step : {1, 4, 8, 16, 64})
            numbers.insert(numbers.end(), {object + step, object - step});
    for (int i = 0; i < 1000; ++i)
        numbers.push_back(static_cast<uintptr_t>(random()));
    for (const uintptr_t number : numbers) {
        EXPECT_EQ(FindPluginImage(ImageAt(number)), nullptr) << number;
        EXPECT_EQ(FindPluginPalette(PaletteAt(number)), nullptr) << number;
        EXPECT_EQ(DestroyPluginObject(ImageAt(number)), -1) << number;
        EXPECT_EQ(DestroyPluginObject(PaletteAt(number)), -1) << number;
    }
}

TEST_F(PluginHandles, AreDestroyedOnce)
{
    EXPECT_EQ(DestroyPluginObject(ToHandle(made)), 1);
    EXPECT_EQ(DestroyPluginObject(ToHandle(made)), -1);
    EXPECT_EQ(FindPluginImage(ToHandle(made)), nullptr);
    TavrixPaletteHandle first = ToHandle(palette);
    TavrixPaletteHandle second = first;
    EXPECT_EQ(palettes.PaletteDestroy(&first), 1);
    EXPECT_EQ(first, nullptr);
    EXPECT_EQ(palettes.PaletteDestroy(&second), -1);
    EXPECT_EQ(second, ToHandle(palette));
}

TEST_F(PluginHandles, OnAnotherThreadNoFunctionDoesAnything)
{
    ASSERT_EQ(lent.Create(4, 3, 24, nullptr, nullptr), 1);
    const TavrixImageHandle image = ToHandle(&lent);
    const TavrixPaletteHandle colors = ToHandle(palette);
    std::thread([&] {
        TavrixImageHandle other = ToHandle(made);
        TavrixPaletteHandle otherColors = colors;
        TavrixImageHandle fresh = image;
        TavrixPaletteHandle freshColors = colors;
        RasterInfo info = {};
        info.size = sizeof(info);
        PaletteEntry entry = {1, 2, 3, 4};
        PaletteEntry* entries = nullptr;
        void* line = nullptr;
        u32 one = 1;
        u32 value = 0;
        EXPECT_EQ(PluginHeap(), nullptr);
        EXPECT_EQ(rasters.RasterCreate(&fresh), -2);
        EXPECT_EQ(fresh, nullptr);
        EXPECT_EQ(rasters.RasterDestroy(&other), -1);
        EXPECT_EQ(rasters.RasterAlloc(image, 9, 9, 24), -1);
        EXPECT_EQ(rasters.RasterFree(image), -1);
        EXPECT_EQ(rasters.RasterCopy(other, image), -1);
        EXPECT_EQ(rasters.RasterInsertLines(image, 0, &one), -1);
        EXPECT_EQ(rasters.RasterDeleteLines(image, 0, &one), -1);
        EXPECT_EQ(rasters.RasterSwapLines(image, 0, 1), -1);
        EXPECT_EQ(rasters.RasterGetInfo(image, &info), -1);
        EXPECT_EQ(rasters.RasterLockLines(image, 0, &line, &one), -1);
        EXPECT_EQ(rasters.RasterUnlockLines(image, 0, 1), -1);
        EXPECT_EQ(rasters.RasterGetPalette(image, nullptr), -1);
        EXPECT_EQ(rasters.RasterSetPalette(image, colors), -1);
        EXPECT_EQ(rasters.RasterStretch(image, image, 0, 0, 1, 1, 0, 0, 1, 1), -1);
        EXPECT_EQ(rasters.RasterGetPixel(image, 0, 0, &value), -1);
        EXPECT_EQ(rasters.RasterSetPixel(image, 0, 0, 0xFFFFFFFF), -1);
        EXPECT_EQ(palettes.PaletteCreate(&freshColors), -2);
        EXPECT_EQ(freshColors, nullptr);
        EXPECT_EQ(palettes.PaletteDestroy(&otherColors), -1);
        EXPECT_EQ(palettes.PaletteAlloc(colors, 2), -1);
        EXPECT_EQ(palettes.PaletteFree(colors), -1);
        EXPECT_EQ(palettes.PaletteCopy(colors, colors), -1);
        EXPECT_EQ(palettes.PaletteAddEntry(colors, 1, 2, 3, 4), -1);
        EXPECT_EQ(palettes.PaletteAddEntries(colors, &entry, 1), -1);
        EXPECT_EQ(palettes.PaletteSetEntries(colors, &entry, 1), -1);
        EXPECT_EQ(palettes.PaletteGetEntries(colors, nullptr), -1);
        EXPECT_EQ(palettes.PaletteGetPointer(colors, &entries), -1);
    }).join();
    u32 value = 0;
    EXPECT_EQ(rasters.RasterGetPixel(image, 0, 0, &value), 1);
    EXPECT_EQ(value, 0x000000FFu);
    EXPECT_EQ(FindPluginImage(ToHandle(made)), made);
    EXPECT_EQ(FindPluginPalette(colors), palette);
}

TEST_F(PluginHandles, ACallThatEndsOnAnotherThreadIsOverForBoth)
{
    std::thread([] { EXPECT_EQ(DropHeap(), 1); }).join();
    EXPECT_EQ(PluginHeap(), nullptr);
    EXPECT_EQ(FindPluginImage(ToHandle(made)), nullptr);
    EXPECT_EQ(DropHeap(), 0);
}

TEST_F(PluginHandles, ManyObjectsGoInAnyOrder)
{
    std::mt19937 random(8);
    std::vector<Raster*> pictures;
    std::vector<ColorTable*> tables;
    for (int i = 0; i < 200; ++i) {
        pictures.push_back(nullptr);
        tables.push_back(nullptr);
        ASSERT_EQ(MakePluginObject(&pictures.back()), 1);
        ASSERT_EQ(MakePluginObject(&tables.back()), 1);
    }
    while (pictures.size() > 20) {
        const size_t which = random() % pictures.size();
        EXPECT_EQ(DestroyPluginObject(ToHandle(pictures[which])), 1);
        EXPECT_EQ(DestroyPluginObject(ToHandle(tables[which])), 1);
        pictures.erase(pictures.begin() + static_cast<ptrdiff_t>(which));
        tables.erase(tables.begin() + static_cast<ptrdiff_t>(which));
        for (Raster* picture : pictures)
            ASSERT_EQ(FindPluginImage(ToHandle(picture)), picture);
    }
    EXPECT_EQ(DropHeap(), 1); // and what is left
}

// What a plugin's SetLanguage stands for here: any function of a plugin.
std::function<i32()> body;
i32 TAVRIX_CALL Body(u32)
{
    return body();
}

TEST(GuardedCall, AThreadIsInsideAPluginFromTheCallToItsEnd)
{
    EXPECT_FALSE(IsInPluginCall());
    body = [] { return IsInPluginCall() ? 5 : 6; };
    EXPECT_EQ(CallPlugin(Body, 0u), 5);
    EXPECT_FALSE(IsInPluginCall());
}

TEST(GuardedCall, ACallInsideACallEndsAloneAndTheOuterGoesOn)
{
    body = [] {
        body = [] { return 3; };
        EXPECT_EQ(CallPlugin(Body, 0u), 3);
        return IsInPluginCall() ? 5 : 6;
    };
    EXPECT_EQ(CallPlugin(Body, 0u), 5);
    EXPECT_FALSE(IsInPluginCall());
}

TEST(GuardedCall, AThreadOfThePluginIsNotInsideIt)
{
    body = [] {
        bool inside = true;
        std::thread([&] { inside = IsInPluginCall(); }).join();
        return inside ? 5 : 6;
    };
    EXPECT_EQ(CallPlugin(Body, 0u), 6);
}

TEST(GuardedCall, AnExceptionEndsTheCallAsAFailure)
{
    body = []() -> i32 { throw 1; };
    EXPECT_EQ(CallPlugin(Body, 0u), -1);
    EXPECT_FALSE(IsInPluginCall());
}

} // namespace
