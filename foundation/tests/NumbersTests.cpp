#include "foundation/Numbers.h"

#include <gtest/gtest.h>

#include <limits>

namespace
{

constexpr f64 Infinity = std::numeric_limits<f64>::infinity();
constexpr f64 NotANumber = std::numeric_limits<f64>::quiet_NaN();

} // namespace

TEST(ParseUnsigned, ReadsDigits)
{
    u64 value = 9;
    EXPECT_EQ(1, ParseUnsigned(u"4294967296", &value));
    EXPECT_EQ(4294967296u, value);
    EXPECT_EQ(1, ParseUnsigned("007", &value));
    EXPECT_EQ(7u, value);
}

TEST(ParseUnsigned, ReadsAnEmptyTextAsZero)
{
    u64 value = 9;
    EXPECT_EQ(1, ParseUnsigned(u"", &value));
    EXPECT_EQ(0u, value);
}

TEST(ParseUnsigned, RefusesAnythingElseAndLeavesZero)
{
    for (const WCHAR* text : {u"12a", u"-1", u"+1", u" 1", u"1 ", u"1.0", u"\uff11"}) {
        u64 value = 9;
        EXPECT_EQ(-1, ParseUnsigned(text, &value));
        EXPECT_EQ(0u, value);
    }
    u64 value = 9;
    EXPECT_EQ(-1, ParseUnsigned(static_cast<const WCHAR*>(nullptr), &value));
    EXPECT_EQ(0u, value);
    EXPECT_EQ(-1, ParseUnsigned("1", nullptr));
}

TEST(ParseUnsigned, WrapsIn64Bits)
{
    u64 value = 9;
    EXPECT_EQ(1, ParseUnsigned(u"18446744073709551617", &value));
    EXPECT_EQ(1u, value);
}

TEST(ParseSigned, DropsTheSign)
{
    u64 value = 9;
    EXPECT_EQ(1, ParseSigned(u"-12", &value));
    EXPECT_EQ(12u, value);
    EXPECT_EQ(1, ParseSigned("-12", &value));
    EXPECT_EQ(12u, value);
    EXPECT_EQ(1, ParseSigned(u"12", &value));
    EXPECT_EQ(12u, value);
}

TEST(ParseSigned, ReadsALoneSignAsZero)
{
    u64 value = 9;
    EXPECT_EQ(1, ParseSigned(u"-", &value));
    EXPECT_EQ(0u, value);
}

TEST(ParseSigned, RefusesOtherCharacters)
{
    for (const char* text : {"12a", "--1", "+1", "1-"}) {
        u64 value = 9;
        EXPECT_EQ(-1, ParseSigned(text, &value));
        EXPECT_EQ(0u, value);
    }
    u64 value = 9;
    EXPECT_EQ(-1, ParseSigned(static_cast<const char*>(nullptr), &value));
    EXPECT_EQ(-1, ParseSigned(u"1", nullptr));
}

TEST(Truncate, GoesTowardsZero)
{
    EXPECT_EQ(1, TruncateToSigned(1.9));
    EXPECT_EQ(-1, TruncateToSigned(-1.9));
    EXPECT_EQ(0, TruncateToSigned(-0.9));
    EXPECT_EQ(1u, TruncateToUnsigned(1.9));
    EXPECT_EQ(4294967294u, TruncateToUnsigned(4294967294.5));
}

TEST(Truncate, SaturatesAtTheEndsOfTheType)
{
    EXPECT_EQ(2147483647, TruncateToSigned(2147483648.0));
    EXPECT_EQ(2147483647, TruncateToSigned(Infinity));
    EXPECT_EQ(-2147483647 - 1, TruncateToSigned(-2147483649.0));
    EXPECT_EQ(-2147483647 - 1, TruncateToSigned(-Infinity));
    EXPECT_EQ(4294967295u, TruncateToUnsigned(4294967296.0));
    EXPECT_EQ(4294967295u, TruncateToUnsigned(Infinity));
    EXPECT_EQ(0u, TruncateToUnsigned(-1.0));
    EXPECT_EQ(0u, TruncateToUnsigned(-Infinity));
}

TEST(Truncate, GivesZeroForNotANumber)
{
    EXPECT_EQ(0, TruncateToSigned(NotANumber));
    EXPECT_EQ(0u, TruncateToUnsigned(NotANumber));
    EXPECT_EQ(0, RoundToSigned(NotANumber));
    EXPECT_EQ(0u, RoundToUnsigned(NotANumber));
}

TEST(Round, RoundsHalvesUpAboveZero)
{
    EXPECT_EQ(1, RoundToSigned(0.5));
    EXPECT_EQ(0, RoundToSigned(0.49));
    EXPECT_EQ(2, RoundToSigned(1.5));
    EXPECT_EQ(1u, RoundToUnsigned(0.5));
    EXPECT_EQ(3u, RoundToUnsigned(3.25));
}

TEST(Round, IsReversedBelowZero)
{
    EXPECT_EQ(-1, RoundToSigned(-0.2));
    EXPECT_EQ(-2, RoundToSigned(-1.2));
    EXPECT_EQ(-1, RoundToSigned(-1.7));
    EXPECT_EQ(-2, RoundToSigned(-1.5));
    EXPECT_EQ(-3, RoundToSigned(-3.0));
}

TEST(Round, SaturatesAtTheEndsOfTheType)
{
    EXPECT_EQ(2147483647, RoundToSigned(2147483647.5));
    EXPECT_EQ(2147483647, RoundToSigned(1e300));
    EXPECT_EQ(-2147483647 - 1, RoundToSigned(-2147483648.2));
    EXPECT_EQ(4294967295u, RoundToUnsigned(4294967295.5));
    EXPECT_EQ(0u, RoundToUnsigned(-0.2));
    EXPECT_EQ(0u, RoundToUnsigned(-5.0));
}
