#include "SettingsText.h"

#include "foundation/tests/FailingAllocator.h"
#include "foundation/tests/TestFolder.h"
#include "settings/SettingsFile.h"

#include <gtest/gtest.h>

#include <string>

namespace
{

// A store over an empty file that no test saves.
struct Store {
    Store() { EXPECT_EQ(1, file.Load(folder.Path(u"s.ini").c_str())); }
    TestFolder folder;
    FailingAllocator allocator;
    SettingsFile file{&allocator};
};

std::u16string Repeated(char16_t character, size_t count)
{
    return std::u16string(count, character);
}

} // namespace

TEST(SettingsValue, TellsNewKeysFromReplacedOnes)
{
    Store store;
    EXPECT_EQ(3, store.file.SetUInt(u"S", u"k", 1));
    EXPECT_EQ(5, store.file.SetUInt(u"S", u"k", 2));
    EXPECT_EQ(5, store.file.SetText(u"S", u"k", u"x"));
    EXPECT_EQ(3, store.file.SetNarrowText(u"S", u"n", "x"));
    EXPECT_EQ(3, store.file.SetUInt(u"T", u"k", 1));
}

TEST(SettingsValue, SectionsKeepEqualKeysApart)
{
    Store store;
    ASSERT_EQ(3, store.file.SetUInt(u"S", u"k", 1));
    ASSERT_EQ(3, store.file.SetUInt(u"T", u"k", 2));
    u32 value = 0;
    EXPECT_EQ(1, store.file.GetUInt(u"S", u"k", &value));
    EXPECT_EQ(1u, value);
    EXPECT_EQ(1, store.file.GetUInt(u"T", u"k", &value));
    EXPECT_EQ(2u, value);
}

TEST(SettingsValue, ReadsEachType)
{
    Store store;
    ASSERT_EQ(3, store.file.SetNarrowText(u"S", u"k", "12"));
    u32 value = 0;
    // Narrow text is widened before it is stored, and so is a number here.
    EXPECT_EQ(1, store.file.GetUInt(u"S", u"k", &value));
    EXPECT_EQ(12u, value);
    const WCHAR* wide = nullptr;
    EXPECT_EQ(1, store.file.GetText(u"S", u"k", &wide));
    EXPECT_EQ(std::u16string(u"12"), wide);
    const char* narrow = nullptr;
    EXPECT_EQ(1, store.file.GetNarrowText(u"S", u"k", &narrow));
    EXPECT_STREQ("12", narrow);
}

TEST(SettingsValue, TellsWhyNothingIsFound)
{
    Store store;
    ASSERT_EQ(3, store.file.SetText(u"S", u"k", u"words"));
    u32 value = 5;
    EXPECT_EQ(-1, store.file.GetUInt(u"absent", u"k", &value));
    EXPECT_EQ(-10, store.file.GetUInt(u"S", u"absent", &value));
    EXPECT_EQ(-100, store.file.GetUInt(u"S", u"k", &value));
    EXPECT_EQ(5u, value);
    const WCHAR* wide = u"kept";
    const WCHAR* const before = wide;
    const char* narrow = "kept";
    const char* const narrowBefore = narrow;
    EXPECT_EQ(-10, store.file.GetText(u"S", u"absent", &wide));
    EXPECT_EQ(-10, store.file.GetNarrowText(u"S", u"absent", &narrow));
    EXPECT_EQ(before, wide);
    EXPECT_EQ(narrowBefore, narrow);
}

TEST(SettingsValue, ClosedIsTheWrongState)
{
    SettingsFile file;
    u32 value = 0;
    const WCHAR* wide = nullptr;
    const char* narrow = nullptr;
    Variant item{u"k", VariantUnsigned, 1};
    EXPECT_EQ(-3, file.SetValue(u"S", &item));
    EXPECT_EQ(-3, file.SetUInt(u"S", u"k", 1));
    EXPECT_EQ(-3, file.SetText(u"S", u"k", u"x"));
    EXPECT_EQ(-3, file.SetNarrowText(u"S", u"k", "x"));
    EXPECT_EQ(-3, file.GetValue(u"S", &item));
    EXPECT_EQ(-3, file.GetUInt(u"S", u"k", &value));
    EXPECT_EQ(-3, file.GetText(u"S", u"k", &wide));
    EXPECT_EQ(-3, file.GetNarrowText(u"S", u"k", &narrow));
}

TEST(SettingsValue, NullIsRefusedBeforeTheStateIsLookedAt)
{
    SettingsFile file;
    u32 value = 0;
    const WCHAR* wide = nullptr;
    const char* narrow = nullptr;
    Variant item{u"k", VariantUnsigned, 1};
    Variant nameless{nullptr, VariantUnsigned, 1};
    EXPECT_EQ(-4, file.SetValue(nullptr, &item));
    EXPECT_EQ(-4, file.SetValue(u"S", nullptr));
    EXPECT_EQ(-4, file.SetValue(u"S", &nameless));
    EXPECT_EQ(-4, file.SetUInt(nullptr, u"k", 1));
    EXPECT_EQ(-4, file.SetUInt(u"S", nullptr, 1));
    EXPECT_EQ(-4, file.SetText(nullptr, u"k", u"x"));
    EXPECT_EQ(-4, file.SetText(u"S", nullptr, u"x"));
    EXPECT_EQ(-4, file.SetText(u"S", u"k", nullptr));
    EXPECT_EQ(-4, file.SetNarrowText(nullptr, u"k", "x"));
    EXPECT_EQ(-4, file.SetNarrowText(u"S", nullptr, "x"));
    EXPECT_EQ(-4, file.SetNarrowText(u"S", u"k", nullptr));
    EXPECT_EQ(-4, file.GetValue(nullptr, &item));
    EXPECT_EQ(-4, file.GetValue(u"S", nullptr));
    EXPECT_EQ(-4, file.GetValue(u"S", &nameless));
    EXPECT_EQ(-4, file.GetUInt(nullptr, u"k", &value));
    EXPECT_EQ(-4, file.GetUInt(u"S", nullptr, &value));
    EXPECT_EQ(-4, file.GetUInt(u"S", u"k", nullptr));
    EXPECT_EQ(-4, file.GetText(nullptr, u"k", &wide));
    EXPECT_EQ(-4, file.GetText(u"S", nullptr, &wide));
    EXPECT_EQ(-4, file.GetText(u"S", u"k", nullptr));
    EXPECT_EQ(-4, file.GetNarrowText(nullptr, u"k", &narrow));
    EXPECT_EQ(-4, file.GetNarrowText(u"S", nullptr, &narrow));
    EXPECT_EQ(-4, file.GetNarrowText(u"S", u"k", nullptr));
}

TEST(SettingsValue, GetValueCopiesTypeAndValueBackAndLeavesTheName)
{
    Store store;
    ASSERT_EQ(3, store.file.SetUInt(u"S", u"k", 3));
    const std::u16string name = u"k";
    Variant item{name.c_str(), VariantSigned, 0};
    EXPECT_EQ(1, store.file.GetValue(u"S", &item));
    EXPECT_EQ(name.c_str(), item.name);
    EXPECT_EQ(VariantSigned, static_cast<int>(item.type));
    EXPECT_EQ(3u, item.value);
    item = {name.c_str(), VariantWide, 0};
    EXPECT_EQ(1, store.file.GetValue(u"S", &item));
    EXPECT_EQ(name.c_str(), item.name);
    EXPECT_EQ(std::u16string(u"3"), reinterpret_cast<const WCHAR*>(item.value));
}

TEST(SettingsValue, GetValueCopiesBackAlsoWhenItFails)
{
    Store store;
    ASSERT_EQ(3, store.file.SetUInt(u"S", u"k", 3));
    Variant item{u"absent", VariantSigned, 77};
    EXPECT_EQ(-10, store.file.GetValue(u"S", &item));
    EXPECT_EQ(0u, item.type);
    EXPECT_EQ(0u, item.value);
    item = {u"k", VariantSigned, 77};
    EXPECT_EQ(-1, store.file.GetValue(u"absent", &item));
    EXPECT_EQ(VariantSigned, static_cast<int>(item.type));
    EXPECT_EQ(77u, item.value);
}

TEST(SettingsValue, SetValueGivesThePropertyListsResult)
{
    Store store;
    f64 number = 1;
    Variant item{u"k", VariantDouble, reinterpret_cast<uintptr_t>(&number)};
    EXPECT_EQ(-99, store.file.SetValue(u"S", &item));
    item = {u"k", VariantWide, 0};
    EXPECT_EQ(-1, store.file.SetValue(u"S", &item));
    item = {u"k", VariantNone, 0};
    EXPECT_EQ(3, store.file.SetValue(u"S", &item));
    item = {u"k", VariantSigned, static_cast<u32>(-7)};
    EXPECT_EQ(5, store.file.SetValue(u"S", &item));
    i32 found = store.file.GetValue(u"S", &item);
    EXPECT_EQ(1, found);
    EXPECT_EQ(7u, item.value);
}

TEST(SettingsValue, ARefusedValueHasCountedItsSectionAllTheSame)
{
    Store store;
    const Variant item{u"k", 6, 0};
    EXPECT_EQ(-99, store.file.SetValue(u"S", &item));
    EXPECT_EQ(1, store.file.Save(nullptr));
    EXPECT_EQ(FileOf(u"[S]\r\n\r\n"), store.folder.Read("s.ini"));
}

TEST(SettingsValue, TheComposedNameIsCutAt2047Characters)
{
    Store store;
    // "S::" and 2,044 more.
    const std::u16string name = Repeated(u'k', 2044);
    ASSERT_EQ(3, store.file.SetUInt(u"S", (name + u"a").c_str(), 1));
    EXPECT_EQ(5, store.file.SetUInt(u"S", (name + u"b").c_str(), 2));
    u32 value = 0;
    EXPECT_EQ(1, store.file.GetUInt(u"S", name.c_str(), &value));
    EXPECT_EQ(2u, value);
    EXPECT_EQ(3, store.file.SetUInt(u"S", name.substr(1).c_str(), 3));
}

TEST(SettingsValue, AFullListRefusesNewKeys)
{
    Store store;
    for (int i = 0; i < 512; ++i) {
        const std::u16string name = u"n" + tavrix::testing::Wide(std::to_string(i));
        ASSERT_EQ(3, store.file.SetUInt(u"S", name.c_str(), 1));
    }
    EXPECT_EQ(-1, store.file.SetUInt(u"S", u"one more", 1));
    EXPECT_EQ(5, store.file.SetUInt(u"S", u"n0", 2));
}

TEST(SettingsValue, AFullListRefusesNewSectionsAndTheirKeys)
{
    Store store;
    for (int i = 0; i < 512; ++i) {
        const std::u16string section = u"n" + tavrix::testing::Wide(std::to_string(i));
        const Variant refused{u"k", 6, 0}; // the section is made, and no key
        ASSERT_EQ(-99, store.file.SetValue(section.c_str(), &refused));
    }
    EXPECT_EQ(-1, store.file.SetUInt(u"one more", u"k", 1));
    u32 value = 0;
    EXPECT_EQ(-1, store.file.GetUInt(u"one more", u"k", &value));
    EXPECT_EQ(3, store.file.SetUInt(u"n0", u"k", 1));
}

TEST(SettingsValue, WithoutMemoryForTheNameGivesNoMemory)
{
    Store store;
    ASSERT_EQ(3, store.file.SetUInt(u"S", u"k", 1));
    store.allocator.AllowOnly(0);
    EXPECT_EQ(-2, store.file.SetUInt(u"S", u"k", 2));
    u32 value = 5;
    EXPECT_EQ(-2, store.file.GetUInt(u"S", u"k", &value));
    EXPECT_EQ(5u, value);
    store.allocator.AllowAll();
    EXPECT_EQ(1, store.file.GetUInt(u"S", u"k", &value));
    EXPECT_EQ(1u, value);
}
