// What is left of a list when memory is short.
#include "platform/testing/Faults.h"
#include "settings/PropertyList.h"

#include <gtest/gtest.h>

#include <string>

using namespace tavrix::testing;

TEST(PropertyFaults, WithoutAnAllocatorAnswersNoMemory)
{
    ArmedFault fault(FaultKind::Allocation, 1, FaultReach::Onward);
    PropertyList list;
    fault.Disarm();
    EXPECT_EQ(-1, list.Count());
    i32 index = 0;
    EXPECT_EQ(-2, list.Clear());
    EXPECT_EQ(-2, list.Find(u"a", &index));
    EXPECT_EQ(-1, index);
    EXPECT_EQ(-4, list.SetEmpty(nullptr)) << "null is looked at first";
    EXPECT_EQ(-2, list.SetEmpty(u"a"));
    EXPECT_EQ(-2, list.SetUnsigned(u"a", 1));
    EXPECT_EQ(-2, list.SetSigned(u"a", 1));
    EXPECT_EQ(-2, list.SetWide(u"a", u"x"));
    EXPECT_EQ(-2, list.SetNarrow(u"a", "x"));
    Variant item{u"a", VariantWide, 77};
    EXPECT_EQ(-2, list.Get(&item));
    EXPECT_EQ(-1, list.GetAt(0, &item));
    EXPECT_EQ(-10, list.GetAt(512, &item));
    EXPECT_EQ(nullptr, item.name);
    EXPECT_EQ(0u, item.type);
    EXPECT_EQ(0u, item.value);
}

TEST(PropertyFaults, ATextThatMemoryWasLackingForIsNotToldAndHasNoValue)
{
    PropertyList list;
    ASSERT_EQ(3, list.SetWide(u"a", u"before"));
    {
        ArmedFault fault(FaultKind::Allocation, 1, FaultReach::Onward);
        EXPECT_EQ(5, list.SetWide(u"a", u"after"));
    }
    for (u32 type : {1u, 2u, 3u, 4u}) {
        Variant item{u"a", type, 77};
        EXPECT_EQ(-100, list.Get(&item)) << type;
        EXPECT_EQ(77u, item.value) << type;
    }
    {
        ArmedFault fault(FaultKind::Allocation, 1, FaultReach::Onward);
        EXPECT_EQ(3, list.SetWide(u"new", u"text"));
    }
    EXPECT_EQ(1, list.Count()) << "an entry without a name would stop every search";
    i32 index = 0;
    EXPECT_EQ(0, list.Find(u"new", &index));
}

TEST(PropertyFaults, OneWidthOfATextMayBeLackingAlone)
{
    PropertyList list;
    {
        // The wide copy, the bytes, and then the name.
        ArmedFault fault(FaultKind::Allocation, 2, FaultReach::Once);
        EXPECT_EQ(3, list.SetWide(u"a", u"12"));
    }
    const WCHAR* text = nullptr;
    EXPECT_EQ(1, list.GetWide(u"a", &text));
    EXPECT_EQ(std::u16string(u"12"), text);
    u32 number = 0;
    EXPECT_EQ(1, list.GetUnsigned(u"a", &number));
    EXPECT_EQ(12u, number);
    Variant item{u"a", VariantNarrow, 77};
    EXPECT_EQ(-100, list.Get(&item));
    EXPECT_EQ(77u, item.value);
}

TEST(PropertyFaults, SurvivesEveryShortageOfMemory)
{
    ForEveryFault(FaultKind::Allocation, [] {
        PropertyList list;
        for (int round = 0; round < 2; ++round) {
            for (const WCHAR* name : {u"a", u"b"}) {
                const i32 results[] = {list.SetUnsigned(name, 7), list.SetSigned(name, -7),
                                       list.SetEmpty(name), list.SetNarrow(name, "12"),
                                       list.SetWide(name, u"12")};
                for (i32 result : results)
                    EXPECT_TRUE(result == 3 || result == 5 || result == -2) << result;
                u32 number = 12;
                const i32 got = list.GetUnsigned(name, &number);
                EXPECT_TRUE(got == 1 || got == -2 || got == -10 || got == -100) << got;
                EXPECT_EQ(12u, number);
            }
            i32 index = 0;
            const i32 found = list.Find(u"b", &index);
            EXPECT_TRUE(found == 1 || found == 0 || found == -2) << found;
            const i32 cleared = list.Clear();
            EXPECT_TRUE(cleared == 1 || cleared == -1 || cleared == -2) << cleared;
        }
    });
}
