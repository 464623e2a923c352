// The conversion itself, on entries that no operation of a list makes.
#include "settings/PropertyList.h"

#include <gtest/gtest.h>

namespace
{

WCHAR entryName[] = u"entry";

PropertyEntry DoubleEntry(f64* value)
{
    PropertyEntry entry{};
    entry.name = entryName;
    entry.type = VariantDouble;
    entry.doubleValue = value;
    return entry;
}

} // namespace

TEST(PropertyConvert, ADoubleIsTruncated)
{
    f64 number = -2.75;
    const PropertyEntry entry = DoubleEntry(&number);
    Variant out{u"asked", VariantSigned, 0};
    EXPECT_EQ(1, PropertyList::Convert(&out, entry));
    EXPECT_EQ(-2, static_cast<i32>(static_cast<u32>(out.value)));
    EXPECT_EQ(entryName, out.name);
    EXPECT_EQ(VariantSigned, static_cast<int>(out.type));
    number = 2.75;
    out = {u"asked", VariantUnsigned, 0};
    EXPECT_EQ(1, PropertyList::Convert(&out, entry));
    EXPECT_EQ(2u, out.value);
    EXPECT_EQ(entryName, out.name);
}

TEST(PropertyConvert, ADoubleBeyondTheTypeSaturates)
{
    f64 number = 1e20;
    const PropertyEntry entry = DoubleEntry(&number);
    Variant out{u"asked", VariantUnsigned, 0};
    EXPECT_EQ(1, PropertyList::Convert(&out, entry));
    EXPECT_EQ(0xFFFFFFFFu, out.value);
    out = {u"asked", VariantSigned, 0};
    EXPECT_EQ(1, PropertyList::Convert(&out, entry));
    EXPECT_EQ(0x7FFFFFFFu, out.value);
    number = -1.0;
    out = {u"asked", VariantUnsigned, 5};
    EXPECT_EQ(1, PropertyList::Convert(&out, entry));
    EXPECT_EQ(0u, out.value);
}

TEST(PropertyConvert, ADoubleIsGivenByPointer)
{
    f64 number = 0.5;
    Variant out{u"asked", VariantDouble, 0};
    EXPECT_EQ(1, PropertyList::Convert(&out, DoubleEntry(&number)));
    EXPECT_EQ(reinterpret_cast<uintptr_t>(&number), out.value);
    EXPECT_EQ(entryName, out.name);
}

TEST(PropertyConvert, ADoubleIsNoText)
{
    f64 number = 0.5;
    for (u32 type : {3u, 4u, 6u}) {
        Variant out{u"asked", type, 77};
        EXPECT_EQ(-1, PropertyList::Convert(&out, DoubleEntry(&number)));
        EXPECT_EQ(77u, out.value);
    }
}

TEST(PropertyConvert, AStoredNumberFailsThoughItFillsTheRecord)
{
    PropertyEntry entry{};
    entry.name = entryName;
    entry.type = VariantUnsigned;
    Variant out{u"asked", VariantSigned, 77};
    EXPECT_EQ(-1, PropertyList::Convert(&out, entry));
    EXPECT_EQ(entryName, out.name);
    EXPECT_EQ(VariantUnsigned, static_cast<int>(out.type));
    out = {u"asked", VariantWide, 77};
    EXPECT_EQ(-1, PropertyList::Convert(&out, entry));
    EXPECT_EQ(77u, out.value);
}

TEST(PropertyConvert, OtherStoredTypesAreUnknown)
{
    for (u32 type : {2u, 6u, 100u}) {
        PropertyEntry entry{};
        entry.type = type;
        Variant out{u"asked", VariantWide, 0};
        EXPECT_EQ(-99, PropertyList::Convert(&out, entry));
    }
}

TEST(PropertyConvert, NothingOnEitherSideZeroesTheRecord)
{
    f64 number = 0.5;
    Variant out{u"asked", VariantNone, 77};
    EXPECT_EQ(-1, PropertyList::Convert(&out, DoubleEntry(&number)));
    EXPECT_EQ(nullptr, out.name);
    EXPECT_EQ(0u, out.value);
    out = {u"asked", VariantWide, 77};
    EXPECT_EQ(-1, PropertyList::Convert(&out, PropertyEntry{}));
    EXPECT_EQ(nullptr, out.name);
    EXPECT_EQ(0u, out.type);
    EXPECT_EQ(0u, out.value);
}
