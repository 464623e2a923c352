#include "foundation/tests/FailingAllocator.h"
#include "settings/PropertyList.h"

#include <gtest/gtest.h>

#include <string>

#include <windows.h>

namespace
{

std::u16string NameOf(int number)
{
    std::u16string name = u"n";
    for (char digit : std::to_string(number))
        name.push_back(static_cast<char16_t>(digit));
    return name;
}

void Fill(PropertyList& list)
{
    for (int i = 0; i < 512; ++i)
        ASSERT_EQ(3, list.SetUnsigned(NameOf(i).c_str(), static_cast<u32>(i)));
}

std::u16string WideOf(const PropertyList& list, const WCHAR* name)
{
    const WCHAR* text = nullptr;
    EXPECT_EQ(1, list.GetWide(name, &text));
    return text != nullptr ? text : u"(none)";
}

bool IsZeroed(const Variant& item)
{
    return item.name == nullptr && item.type == VariantNone && item.value == 0;
}

} // namespace

TEST(PropertyList, TellsNewEntriesFromReplacedOnes)
{
    PropertyList list;
    EXPECT_EQ(3, list.SetUnsigned(u"a", 1));
    EXPECT_EQ(5, list.SetUnsigned(u"a", 2));
    EXPECT_EQ(5, list.SetWide(u"a", u"x"));
    EXPECT_EQ(5, list.SetNarrow(u"a", "x"));
    EXPECT_EQ(5, list.SetEmpty(u"a"));
    EXPECT_EQ(5, list.SetSigned(u"a", 1));
    EXPECT_EQ(3, list.SetSigned(u"b", 1));
    EXPECT_EQ(3, list.SetWide(u"c", u"x"));
    EXPECT_EQ(3, list.SetNarrow(u"d", "x"));
    EXPECT_EQ(3, list.SetEmpty(u"e"));
    EXPECT_EQ(5, list.Count());
}

TEST(PropertyList, RefusesThe513thNameAndStillReplaces)
{
    PropertyList list;
    Fill(list);
    EXPECT_EQ(-1, list.SetUnsigned(u"one more", 1));
    EXPECT_EQ(-1, list.SetWide(u"one more", u"x"));
    EXPECT_EQ(-1, list.SetNarrow(u"one more", "x"));
    EXPECT_EQ(-1, list.SetEmpty(u"one more"));
    EXPECT_EQ(512, list.Count());
    EXPECT_EQ(5, list.SetUnsigned(u"n511", 9));
    u32 value = 0;
    EXPECT_EQ(1, list.GetUnsigned(u"n511", &value));
    EXPECT_EQ(9u, value);
}

TEST(PropertyList, ANumberReadsAsTextAndAsEitherNumber)
{
    PropertyList list;
    ASSERT_EQ(3, list.SetUnsigned(u"a", 7));
    EXPECT_EQ(u"7", WideOf(list, u"a"));
    i32 number = 0;
    EXPECT_EQ(1, list.GetSigned(u"a", &number));
    EXPECT_EQ(7, number);
    u32 natural = 0;
    EXPECT_EQ(1, list.GetUnsigned(u"a", &natural));
    EXPECT_EQ(7u, natural);
}

TEST(PropertyList, NumbersOfTenDigitsAreWrittenRight)
{
    PropertyList list;
    ASSERT_EQ(3, list.SetUnsigned(u"a", 4294967295u));
    EXPECT_EQ(u"4294967295", WideOf(list, u"a"));
    u32 value = 0;
    EXPECT_EQ(1, list.GetUnsigned(u"a", &value));
    EXPECT_EQ(4294967295u, value);
    ASSERT_EQ(3, list.SetSigned(u"b", -2147483647 - 1));
    EXPECT_EQ(u"-2147483648", WideOf(list, u"b"));
}

TEST(PropertyList, LosesTheSignOfANegativeNumber)
{
    PropertyList list;
    ASSERT_EQ(3, list.SetSigned(u"a", -7));
    EXPECT_EQ(u"-7", WideOf(list, u"a"));
    i32 value = 0;
    EXPECT_EQ(1, list.GetSigned(u"a", &value));
    EXPECT_EQ(7, value);
    u32 natural = 5;
    EXPECT_EQ(-100, list.GetUnsigned(u"a", &natural));
    EXPECT_EQ(5u, natural);
}

TEST(PropertyList, ATextWithALetterIsNoNumber)
{
    PropertyList list;
    ASSERT_EQ(3, list.SetWide(u"a", u"12x"));
    u32 value = 5;
    EXPECT_EQ(-100, list.GetUnsigned(u"a", &value));
    EXPECT_EQ(5u, value);
    EXPECT_EQ(u"12x", WideOf(list, u"a"));
}

TEST(PropertyList, AnEmptyTextReadsAsZero)
{
    PropertyList list;
    ASSERT_EQ(3, list.SetWide(u"a", u""));
    u32 value = 5;
    EXPECT_EQ(1, list.GetUnsigned(u"a", &value));
    EXPECT_EQ(0u, value);
    EXPECT_EQ(u"", WideOf(list, u"a"));
}

TEST(PropertyList, AnUnsignedReadSaturatesAt32Bits)
{
    PropertyList list;
    ASSERT_EQ(3, list.SetWide(u"a", u"99999999999"));
    u32 value = 5;
    EXPECT_EQ(1, list.GetUnsigned(u"a", &value));
    EXPECT_EQ(0xFFFFFFFFu, value);
}

TEST(PropertyList, ASignedReadTakesTheLow32Bits)
{
    PropertyList list;
    // 2^32 + 5, and 2^32 - 1.
    ASSERT_EQ(3, list.SetWide(u"a", u"4294967301"));
    ASSERT_EQ(3, list.SetWide(u"b", u"4294967295"));
    i32 value = 0;
    EXPECT_EQ(1, list.GetSigned(u"a", &value));
    EXPECT_EQ(5, value);
    EXPECT_EQ(1, list.GetSigned(u"b", &value));
    EXPECT_EQ(-1, value);
}

TEST(PropertyList, NarrowTextIsNoNumber)
{
    PropertyList list;
    ASSERT_EQ(3, list.SetNarrow(u"a", "12"));
    u32 natural = 5;
    i32 number = 5;
    EXPECT_EQ(-100, list.GetUnsigned(u"a", &natural));
    EXPECT_EQ(-100, list.GetSigned(u"a", &number));
    EXPECT_EQ(u"12", WideOf(list, u"a"));
}

TEST(PropertyList, TextIsKeptInBothWidths)
{
    PropertyList list;
    ASSERT_EQ(3, list.SetWide(u"w", u"wide"));
    ASSERT_EQ(3, list.SetNarrow(u"n", "narrow"));
    Variant item{u"w", VariantNarrow, 0};
    ASSERT_EQ(1, list.Get(&item));
    EXPECT_EQ(VariantNarrow, static_cast<int>(item.type));
    EXPECT_STREQ("wide", reinterpret_cast<const char*>(item.value));
    item = {u"n", VariantNarrow, 0};
    ASSERT_EQ(1, list.Get(&item));
    EXPECT_STREQ("narrow", reinterpret_cast<const char*>(item.value));
    item = {u"n", VariantWide, 0};
    ASSERT_EQ(1, list.Get(&item));
    EXPECT_EQ(std::u16string(u"narrow"), reinterpret_cast<const WCHAR*>(item.value));
}

TEST(PropertyList, ATextReadGivesTheEntrysOwnNameAndText)
{
    PropertyList list;
    ASSERT_EQ(3, list.SetWide(u"a", u"x"));
    const std::u16string asked = u"a";
    Variant one{asked.c_str(), VariantWide, 0};
    Variant two{asked.c_str(), VariantWide, 0};
    ASSERT_EQ(1, list.Get(&one));
    ASSERT_EQ(1, list.Get(&two));
    EXPECT_NE(asked.c_str(), one.name);
    EXPECT_EQ(one.name, two.name);
    EXPECT_EQ(one.value, two.value);
}

TEST(PropertyList, ANumberReadLeavesNameAndTypeAsTheCallerSetThem)
{
    PropertyList list;
    ASSERT_EQ(3, list.SetUnsigned(u"a", 3));
    const std::u16string asked = u"a";
    Variant item{asked.c_str(), VariantSigned, 77};
    ASSERT_EQ(1, list.Get(&item));
    EXPECT_EQ(asked.c_str(), item.name);
    EXPECT_EQ(VariantSigned, static_cast<int>(item.type));
    EXPECT_EQ(3u, item.value);
}

TEST(PropertyList, AFailedNumberReadLeavesTheValue)
{
    PropertyList list;
    ASSERT_EQ(3, list.SetWide(u"a", u"x"));
    Variant item{u"a", VariantUnsigned, 77};
    EXPECT_EQ(-100, list.Get(&item));
    EXPECT_EQ(77u, item.value);
}

TEST(PropertyList, AnEmptyEntryConvertsToNothing)
{
    PropertyList list;
    ASSERT_EQ(3, list.SetEmpty(u"a"));
    for (u32 type = 0; type <= 6; ++type) {
        Variant item{u"a", type, 77};
        EXPECT_EQ(-100, list.Get(&item)) << type;
        EXPECT_TRUE(IsZeroed(item)) << type;
    }
}

TEST(PropertyList, AskedForNothingTheRecordIsZeroed)
{
    PropertyList list;
    ASSERT_EQ(3, list.SetWide(u"a", u"x"));
    Variant item{u"a", VariantNone, 77};
    EXPECT_EQ(-100, list.Get(&item));
    EXPECT_TRUE(IsZeroed(item));
}

TEST(PropertyList, TextIsNoDoubleAndNoUnknownType)
{
    PropertyList list;
    ASSERT_EQ(3, list.SetWide(u"w", u"1"));
    ASSERT_EQ(3, list.SetNarrow(u"n", "1"));
    for (const WCHAR* name : {u"w", u"n"}) {
        Variant item{name, VariantDouble, 0};
        EXPECT_EQ(-100, list.Get(&item));
        item = {name, 6, 0};
        EXPECT_EQ(-100, list.Get(&item));
    }
}

TEST(PropertyList, AnUnknownNameZeroesAllButTheName)
{
    PropertyList list;
    const WCHAR* name = u"absent";
    Variant item{name, VariantWide, 77};
    EXPECT_EQ(-10, list.Get(&item));
    EXPECT_EQ(name, item.name);
    EXPECT_EQ(0u, item.type);
    EXPECT_EQ(0u, item.value);
    u32 natural = 5;
    i32 number = 5;
    const WCHAR* text = name;
    EXPECT_EQ(-10, list.GetUnsigned(name, &natural));
    EXPECT_EQ(-10, list.GetSigned(name, &number));
    EXPECT_EQ(-10, list.GetWide(name, &text));
    EXPECT_EQ(5u, natural);
    EXPECT_EQ(5, number);
    EXPECT_EQ(name, text);
}

TEST(PropertyList, NamesAreToldApartByCase)
{
    PropertyList list;
    EXPECT_EQ(3, list.SetUnsigned(u"a", 1));
    EXPECT_EQ(3, list.SetUnsigned(u"A", 2));
    u32 value = 0;
    EXPECT_EQ(1, list.GetUnsigned(u"a", &value));
    EXPECT_EQ(1u, value);
}

TEST(PropertyList, FindGivesThePlaceOrMinusOne)
{
    PropertyList list;
    ASSERT_EQ(3, list.SetEmpty(u"a"));
    ASSERT_EQ(3, list.SetEmpty(u"b"));
    i32 index = 9;
    EXPECT_EQ(1, list.Find(u"b", &index));
    EXPECT_EQ(1, index);
    EXPECT_EQ(0, list.Find(u"c", &index));
    EXPECT_EQ(-1, index);
    EXPECT_EQ(-4, list.Find(nullptr, &index));
    EXPECT_EQ(-4, list.Find(u"a", nullptr));
}

TEST(PropertyList, AReplacedEntryKeepsItsPlace)
{
    PropertyList list;
    ASSERT_EQ(3, list.SetWide(u"a", u"1"));
    ASSERT_EQ(3, list.SetWide(u"b", u"2"));
    ASSERT_EQ(5, list.SetNarrow(u"a", "3"));
    Variant item{nullptr, VariantWide, 0};
    ASSERT_EQ(1, list.GetAt(0, &item));
    EXPECT_EQ(std::u16string(u"a"), item.name);
    EXPECT_EQ(std::u16string(u"3"), reinterpret_cast<const WCHAR*>(item.value));
}

TEST(PropertyList, SetGoesByTheVariantsType)
{
    PropertyList list;
    Variant item{u"a", VariantUnsigned, 4000000000u};
    EXPECT_EQ(3, list.Set(&item));
    EXPECT_EQ(u"4000000000", WideOf(list, u"a"));
    item = {u"a", VariantSigned, static_cast<u32>(-7)};
    EXPECT_EQ(5, list.Set(&item));
    EXPECT_EQ(u"-7", WideOf(list, u"a"));
    item = {u"a", VariantWide, reinterpret_cast<uintptr_t>(u"wide")};
    EXPECT_EQ(5, list.Set(&item));
    EXPECT_EQ(u"wide", WideOf(list, u"a"));
    item = {u"a", VariantNarrow, reinterpret_cast<uintptr_t>("narrow")};
    EXPECT_EQ(5, list.Set(&item));
    EXPECT_EQ(u"narrow", WideOf(list, u"a"));
    item = {u"a", VariantNone, 0};
    EXPECT_EQ(5, list.Set(&item));
    item = {u"a", VariantWide, 0};
    EXPECT_EQ(-100, list.Get(&item));
}

TEST(PropertyList, SetRefusesOtherTypes)
{
    PropertyList list;
    f64 number = 1.5;
    Variant item{u"a", VariantDouble, reinterpret_cast<uintptr_t>(&number)};
    EXPECT_EQ(-99, list.Set(&item));
    item.type = 6;
    EXPECT_EQ(-99, list.Set(&item));
    EXPECT_EQ(0, list.Count());
}

TEST(PropertyList, SetAnswersFailedForNullWhereTheSettersAnswerBadArgument)
{
    PropertyList list;
    Variant item{nullptr, VariantUnsigned, 1};
    EXPECT_EQ(-1, list.Set(&item));
    item = {u"a", VariantWide, 0};
    EXPECT_EQ(-1, list.Set(&item));
    item = {u"a", VariantNarrow, 0};
    EXPECT_EQ(-1, list.Set(&item));
    EXPECT_EQ(-4, list.SetEmpty(nullptr));
    EXPECT_EQ(-4, list.SetUnsigned(nullptr, 1));
    EXPECT_EQ(-4, list.SetSigned(nullptr, 1));
    EXPECT_EQ(-4, list.SetWide(nullptr, u"x"));
    EXPECT_EQ(-4, list.SetWide(u"a", nullptr));
    EXPECT_EQ(-4, list.SetNarrow(nullptr, "x"));
    EXPECT_EQ(-4, list.SetNarrow(u"a", nullptr));
    EXPECT_EQ(-4, list.Set(nullptr));
    EXPECT_EQ(0, list.Count());
}

TEST(PropertyList, ReadsRefuseNull)
{
    PropertyList list;
    Variant item{nullptr, VariantWide, 0};
    u32 natural = 0;
    i32 number = 0;
    const WCHAR* text = nullptr;
    EXPECT_EQ(-4, list.Get(nullptr));
    EXPECT_EQ(-4, list.Get(&item));
    EXPECT_EQ(-4, list.GetUnsigned(nullptr, &natural));
    EXPECT_EQ(-4, list.GetUnsigned(u"a", nullptr));
    EXPECT_EQ(-4, list.GetSigned(nullptr, &number));
    EXPECT_EQ(-4, list.GetSigned(u"a", nullptr));
    EXPECT_EQ(-4, list.GetWide(nullptr, &text));
    EXPECT_EQ(-4, list.GetWide(u"a", nullptr));
    EXPECT_EQ(-4, list.GetAt(0, nullptr));
}

TEST(PropertyList, AWalkEndsBehindTheEntriesInUse)
{
    PropertyList list;
    ASSERT_EQ(3, list.SetUnsigned(u"a", 3));
    Variant item{nullptr, VariantUnsigned, 0};
    EXPECT_EQ(1, list.GetAt(0, &item));
    EXPECT_EQ(std::u16string(u"a"), item.name);
    EXPECT_EQ(3u, item.value);
    for (u32 index : {1u, 511u}) {
        item = {u"x", VariantUnsigned, 77};
        EXPECT_EQ(-100, list.GetAt(index, &item));
        EXPECT_TRUE(IsZeroed(item));
    }
    for (u32 index : {512u, 0xFFFFFFFFu}) {
        item = {u"x", VariantUnsigned, 77};
        EXPECT_EQ(-10, list.GetAt(index, &item));
        EXPECT_TRUE(IsZeroed(item));
    }
}

TEST(PropertyList, AnEmptyEntryEndsAWalkEarly)
{
    PropertyList list;
    ASSERT_EQ(3, list.SetUnsigned(u"a", 1));
    ASSERT_EQ(3, list.SetEmpty(u"b"));
    ASSERT_EQ(3, list.SetUnsigned(u"c", 3));
    Variant item{nullptr, VariantUnsigned, 77};
    EXPECT_EQ(-100, list.GetAt(1, &item));
    EXPECT_TRUE(IsZeroed(item));
}

TEST(PropertyList, ClearMakesRoomAgain)
{
    PropertyList list;
    Fill(list);
    EXPECT_EQ(1, list.Clear());
    EXPECT_EQ(0, list.Count());
    i32 index = 9;
    EXPECT_EQ(0, list.Find(u"n0", &index));
    EXPECT_EQ(3, list.SetEmpty(u"n0"));
}

TEST(PropertyList, AnEntryMayBeSetToItsOwnText)
{
    PropertyList list;
    ASSERT_EQ(3, list.SetWide(u"a", u"text"));
    const WCHAR* text = nullptr;
    ASSERT_EQ(1, list.GetWide(u"a", &text));
    EXPECT_EQ(5, list.SetWide(u"a", text));
    EXPECT_EQ(u"text", WideOf(list, u"a"));
}

TEST(PropertyList, GivesAllMemoryBack)
{
    FailingAllocator allocator;
    {
        PropertyList list(&allocator);
        ASSERT_EQ(3, list.SetWide(u"a", u"x"));
        ASSERT_EQ(5, list.SetNarrow(u"a", "y"));
        ASSERT_EQ(3, list.SetEmpty(u"b"));
        EXPECT_LT(0, allocator.Live());
        ASSERT_EQ(1, list.Clear());
        EXPECT_EQ(1, allocator.Live()) << "only the table is to be left";
        ASSERT_EQ(3, list.SetWide(u"a", u"x"));
    }
    EXPECT_EQ(0, allocator.Live());
}

TEST(PropertyList, WithoutItsTableAnswersByTheOperation)
{
    FailingAllocator allocator;
    allocator.AllowOnly(0);
    PropertyList list(&allocator);
    allocator.AllowAll();
    EXPECT_EQ(-1, list.Count());
    i32 index = 0;
    EXPECT_EQ(-2, list.Find(u"a", &index));
    EXPECT_EQ(-2, list.SetUnsigned(u"a", 1));
    EXPECT_EQ(-2, list.SetEmpty(u"a"));
    Variant item{u"a", VariantWide, 0};
    EXPECT_EQ(-2, list.Get(&item));
    EXPECT_EQ(-1, list.GetAt(0, &item));
    EXPECT_EQ(-10, list.GetAt(512, &item));
    EXPECT_EQ(-1, list.Clear());
    EXPECT_EQ(0, allocator.Live());
}

TEST(PropertyList, SurvivesMemoryThatRunsOutAtAnyPoint)
{
    // Such a failure is not reported; the list must stay whole, and nothing may be lost for good.
    for (int allowed = 0; allowed < 4; ++allowed) {
        FailingAllocator allocator;
        {
            PropertyList list(&allocator);
            ASSERT_EQ(3, list.SetWide(u"old", u"before"));
            allocator.AllowOnly(allowed);
            EXPECT_EQ(3, list.SetWide(u"new", u"text"));
            allocator.AllowOnly(allowed);
            EXPECT_EQ(5, list.SetNarrow(u"old", "after"));
            allocator.AllowAll();
            const WCHAR* text = nullptr;
            const i32 got = list.GetWide(u"new", &text);
            EXPECT_TRUE(got == 1 || got == -10 || got == -100) << got;
            if (got == 1) {
                EXPECT_EQ(std::u16string(u"text"), text);
            }
            EXPECT_EQ(5, list.SetWide(u"old", u"again"));
            EXPECT_EQ(u"again", WideOf(list, u"old"));
        }
        EXPECT_EQ(0, allocator.Live());
    }
}
