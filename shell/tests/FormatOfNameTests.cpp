// What a file's name tells about its format.

#include "shell/FormatOfName.h"

#include "platform/testing/Testing.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

using namespace tavrix::testing;

namespace
{

std::u16string Complete(const WCHAR* patterns, const std::u16string& name, u32 capacity = 4096)
{
    FormatList formats;
    EXPECT_EQ(formats.Add(0, u"before", u"*.before"), Done);
    EXPECT_EQ(formats.Add(0, u"it", patterns), Done);
    std::vector<WCHAR> buffer(capacity + 16, 0xA5A5);
    std::copy_n(name.c_str(), name.size() + 1, buffer.data());
    CompleteExtension(formats, 1, buffer.data(), capacity);
    for (size_t i = capacity; i < buffer.size(); ++i)
        EXPECT_EQ(buffer[i], 0xA5A5);
    return buffer.data();
}

} // namespace

TEST(CompleteExtension, ANameThatFitsStandsWhateverTheCaseOfItsExtension)
{
    EXPECT_EQ(Complete(u"*.jpg;*.jpeg", u"\\HOLIDAY.JPEG"), u"\\HOLIDAY.JPEG");
    EXPECT_EQ(Complete(u"*.jpg;*.jpeg", u"\\holiday.jpg"), u"\\holiday.jpg");
    EXPECT_EQ(Complete(u"*.JPG", u"\\holiday.jpg"), u"\\holiday.jpg");
}

TEST(CompleteExtension, ANameWithoutAPointGetsTheFirstOfTwoExtensionsWithItsPoint)
{
    EXPECT_EQ(Complete(u"*.jpg;*.jpeg", u"\\holiday"), u"\\holiday.jpg");
    EXPECT_EQ(Complete(u"*.png", u"\\holiday"), u"\\holiday.png");
    EXPECT_EQ(Complete(u"*.png", u"\\holiday.bmp"), u"\\holiday.bmp.png");
}

TEST(CompleteExtension, TheExtensionsLettersAnywhereInTheNameWillDo)
{
    EXPECT_EQ(Complete(u"*.png", u"\\my pngs\\holiday"), u"\\my pngs\\holiday");
    EXPECT_EQ(Complete(u"*.png", u"\\PNGs.old\\holiday.bmp"), u"\\PNGs.old\\holiday.bmp");
    EXPECT_EQ(Complete(u"*.png", u"\\holiday.png.bak"), u"\\holiday.png.bak");
    EXPECT_EQ(Complete(u"*.jpg;*.jpeg", u"\\jpeg\\holiday"), u"\\jpeg\\holiday");
}

TEST(CompleteExtension, OfThreePatternsTwoAreAppendedWithTheSemicolonBetweenThem)
{
    EXPECT_EQ(Complete(u"*.jpg;*.jpeg;*.jfif", u"\\holiday"), u"\\holiday.jpg;*.jpeg");
    EXPECT_EQ(Complete(u"*.a1;*.b2;*.c3;*.d4", u"\\x"), u"\\x.a1;*.b2;*.c3");
}

// Patterns without a point are looked for as they stand, star and all, so that only the name's end
// is left to tell.
TEST(CompleteExtension, ANameThatEndsWithTheExtensionIsNotGivenItTwice)
{
    EXPECT_EQ(Complete(u"x", u"\\nothing"), u"\\nothing") << "the star is all there is";
    EXPECT_EQ(Complete(u"*aab", u"\\aaab"), u"\\aaab");
    EXPECT_EQ(Complete(u"*aab", u"\\aaabaaab"), u"\\aaabaaabaab") << "only its first place counts";
    EXPECT_EQ(Complete(u"*aab", u"\\b"), u"\\baab");
}

TEST(CompleteExtension, FormatsWithoutPatternsOrOutOfTheListLeaveTheName)
{
    EXPECT_EQ(Complete(u"", u"\\holiday"), u"\\holiday");
    FormatList formats;
    WCHAR name[16] = u"\\holiday";
    CompleteExtension(formats, 0, name, 16);
    CompleteExtension(formats, 5000, name, 16);
    EXPECT_EQ(std::u16string(name), u"\\holiday");
}

TEST(CompleteExtension, WhatHasNoRoomIsCutAtTheBuffersEnd)
{
    for (u32 capacity = 9; capacity <= 16; ++capacity)
        EXPECT_EQ(Complete(u"*.jpeg", u"\\holiday", capacity),
                  std::u16string(u"\\holiday.jpeg").substr(0, capacity - 1))
            << capacity;
}

TEST(CompleteExtension, WithoutMemoryForTheSearchAFittingNameStands)
{
    const Scope scope;
    FormatList formats;
    ASSERT_EQ(formats.Add(0, u"it", u"*.png"), Done);
    WCHAR name[32] = u"\\holiday.png";
    SetAllocationFault([](SIZE_T) { return true; });
    CompleteExtension(formats, 0, name, 32);
    EXPECT_EQ(std::u16string(name), u"\\holiday.png");
}

TEST(FindPluginOfName, TheFirstFormatThatHoldsTheExtensionDecides)
{
    FormatList formats;
    ASSERT_EQ(formats.Add(4, u"a", u"*.tiff;*.bmp"), Done);
    ASSERT_EQ(formats.Add(5, u"b", u"*.bmp;*.JPG"), Done);
    const struct {
        const WCHAR* name;
        i32 result;
        i32 plugin;
    } rows[] = {
        {u"\\x.bmp", Done, 4},     {u"\\x.BMP", Done, 4},
        {u"\\x.jpg", Done, 5},     {u"\\x.tif", Done, 4},
        {u"\\x.t", Done, 4},       {u"\\x.jpeg", NothingDone, 9},
        {u"\\x", NothingDone, 9},  {u"\\x.jpg.old", NothingDone, 9},
        {u"\\x.", Done, 4},        {u"\\f.bmp\\x", NothingDone, 9},
        {u"\\x.old.bmp", Done, 4}, {u"\\f.old\\x.jpg", Done, 5},
        {u"", NothingDone, 9},
    };
    for (const auto& row : rows) {
        i32 plugin = 9;
        EXPECT_EQ(FindPluginOfName(formats, row.name, &plugin), row.result) << Utf8(row.name);
        EXPECT_EQ(plugin, row.plugin) << Utf8(row.name);
    }
}
