#include "foundation/Numbers.h"

#include "foundation/tests/Widths.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>

namespace
{

constexpr f64 Infinity = std::numeric_limits<f64>::infinity();
constexpr f64 NotANumber = std::numeric_limits<f64>::quiet_NaN();

template <class Char>
struct Parse : ::testing::Test {
    /// What is parsed; 0 must be left where the text is refused.
    static u64 Unsigned(std::string_view text, i32 expectedResult = 1)
    {
        u64 value = 9;
        EXPECT_EQ(expectedResult, ParseUnsigned(Cells<Char>(text), &value)) << text;
        return value;
    }
    static u64 Signed(std::string_view text, i32 expectedResult = 1)
    {
        u64 value = 9;
        EXPECT_EQ(expectedResult, ParseSigned(Cells<Char>(text), &value)) << text;
        return value;
    }
    static f64 Real(std::string_view text)
    {
        f64 value = 9;
        EXPECT_EQ(1, ParseReal(Cells<Char>(text), &value)) << text;
        return value;
    }
};

} // namespace

TYPED_TEST_SUITE(Parse, Widths);

TYPED_TEST(Parse, UnsignedReadsDigits)
{
    EXPECT_EQ(4294967296u, this->Unsigned("4294967296"));
    EXPECT_EQ(7u, this->Unsigned("007"));
    EXPECT_EQ(1234567890u, this->Unsigned("1234567890"));
    EXPECT_EQ(18446744073709551615u, this->Unsigned("18446744073709551615"));
}

TYPED_TEST(Parse, UnsignedReadsAnEmptyTextAsZero)
{
    EXPECT_EQ(0u, this->Unsigned(""));
}

TYPED_TEST(Parse, UnsignedRefusesAnythingElseAndLeavesZero)
{
    for (const char* text : {"12a", "-1", "+1", " 1", "1 ", "1.0", "/", ":", "1\xB2", "-"})
        EXPECT_EQ(0u, this->Unsigned(text, -1));
}

TYPED_TEST(Parse, UnsignedWrapsIn64Bits)
{
    EXPECT_EQ(1u, this->Unsigned("18446744073709551617"));
    // 10^64 is a multiple of 2^64.
    EXPECT_EQ(5u, this->Unsigned("1" + std::string(63, '0') + "5"));
}

TYPED_TEST(Parse, SignedDropsTheSign)
{
    EXPECT_EQ(12u, this->Signed("-12"));
    EXPECT_EQ(12u, this->Signed("12"));
    EXPECT_EQ(0u, this->Signed("-0"));
}

TYPED_TEST(Parse, SignedReadsALoneSignAndNothingAsZero)
{
    EXPECT_EQ(0u, this->Signed("-"));
    EXPECT_EQ(0u, this->Signed(""));
}

TYPED_TEST(Parse, SignedRefusesOtherCharactersAndLeavesZero)
{
    for (const char* text : {"12a", "--1", "+1", "1-", " -1", "- 1", "-1.0"})
        EXPECT_EQ(0u, this->Signed(text, -1));
}

TYPED_TEST(Parse, NullIsRefusedAndLeavesZero)
{
    Cells<TypeParam> text("1");
    const TypeParam* const none = nullptr;
    u64 value = 9;
    EXPECT_EQ(-1, ParseUnsigned(none, &value));
    EXPECT_EQ(0u, value);
    value = 9;
    EXPECT_EQ(-1, ParseSigned(none, &value));
    EXPECT_EQ(0u, value);
    f64 real = 9;
    EXPECT_EQ(-1, ParseReal(none, &real));
    EXPECT_EQ(0.0, real);
    EXPECT_EQ(-1, ParseUnsigned(text.Get(), nullptr));
    EXPECT_EQ(-1, ParseSigned(text.Get(), nullptr));
    EXPECT_EQ(-1, ParseReal(text.Get(), nullptr));
    EXPECT_EQ(-1, ParseSigned(none, nullptr));
}

TYPED_TEST(Parse, RealReadsDigitsAndAPoint)
{
    EXPECT_EQ(1.25, this->Real("1.25"));
    EXPECT_EQ(0.0, this->Real(""));
    EXPECT_EQ(0.0, this->Real("."));
    EXPECT_EQ(0.5, this->Real(".5"));
    EXPECT_EQ(5.0, this->Real("5."));
    EXPECT_EQ(12345.0, this->Real("12345"));
}

TYPED_TEST(Parse, RealTakesEachCharacterForADigit)
{
    EXPECT_EQ(59.0, this->Real("1a"));  // 10 and the 49 of the letter
    EXPECT_EQ(-28.0, this->Real("-2")); // no sign but the digit -3
    EXPECT_EQ(-16.0, this->Real(" "));
    EXPECT_EQ(4.9, this->Real(".a"));
    EXPECT_EQ(185.0, this->Real("\xE9")); // 233 - 48, with no sign
}

TYPED_TEST(Parse, RealPassesOverFurtherPoints)
{
    EXPECT_EQ(this->Real("1.25"), this->Real("1.2.5"));
    EXPECT_EQ(this->Real("1.25"), this->Real("1..25"));
}

TYPED_TEST(Parse, RealMultipliesBy01AsOftenAsTheDigitIsBehindThePoint)
{
    // Three multiplications of 3 by 0.1 round elsewhere than 0.003 does.
    EXPECT_EQ(3 * 0.1 * 0.1 * 0.1, this->Real(".003"));
    EXPECT_NE(0.003, this->Real(".003"));
    std::mt19937 random(7);
    for (int round = 0; round < 5000; ++round) {
        std::string text;
        f64 expected = 0;
        for (u32 i = random() % 12; i > 0; --i) {
            const u32 digit = random() % 10;
            text += static_cast<char>('0' + digit);
            expected = expected * 10 + digit;
        }
        text += '.';
        const u32 places = random() % 12;
        for (u32 k = 1; k <= places; ++k) {
            const u32 digit = random() % 10;
            text += static_cast<char>('0' + digit);
            f64 part = digit;
            for (u32 times = 0; times < k; ++times)
                part = part * 0.1;
            expected += part;
        }
        ASSERT_EQ(expected, this->Real(text)) << text;
    }
}

TYPED_TEST(Parse, RealOfVeryManyDigitsEndsSoon)
{
    EXPECT_EQ(Infinity, this->Real(std::string(100000, '9')));
    EXPECT_NEAR(1.0 / 9, this->Real("." + std::string(100000, '1')), 1e-15);
}

TEST(ParseWide, OtherDigitsOfUnicodeAreNone)
{
    u64 value = 9;
    EXPECT_EQ(-1, ParseUnsigned(u"\uFF11", &value));
    EXPECT_EQ(0u, value);
    // Equal in the low byte alone.
    EXPECT_EQ(-1, ParseUnsigned(u"\u0131", &value));
    f64 real = 9;
    EXPECT_EQ(1, ParseReal(u"\u65E5", &real));
    EXPECT_EQ(26037.0, real); // 0x65E5 - 48
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
    EXPECT_EQ(0, RoundToSigned(0.0));
    EXPECT_EQ(1, RoundToSigned(0.5));
    EXPECT_EQ(0, RoundToSigned(0.49));
    EXPECT_EQ(2, RoundToSigned(1.5));
    EXPECT_EQ(2, RoundToSigned(2.49));
    EXPECT_EQ(3, RoundToSigned(2.5));
    EXPECT_EQ(1u, RoundToUnsigned(0.5));
    EXPECT_EQ(0u, RoundToUnsigned(0.25));
    EXPECT_EQ(3u, RoundToUnsigned(3.25));
    EXPECT_EQ(4u, RoundToUnsigned(3.75));
    EXPECT_EQ(3000000001u, RoundToUnsigned(3000000000.5));
}

TEST(Round, IsReversedBelowZero)
{
    EXPECT_EQ(-1, RoundToSigned(-0.2));
    EXPECT_EQ(0, RoundToSigned(-0.7));
    EXPECT_EQ(-2, RoundToSigned(-1.2));
    EXPECT_EQ(-1, RoundToSigned(-1.7));
    EXPECT_EQ(-2, RoundToSigned(-1.5));
    EXPECT_EQ(-1, RoundToSigned(-1.75));
}

TEST(Round, KeepsWholeNumbers)
{
    // The rest of a whole number is 0, below zero as well.
    EXPECT_EQ(-3, RoundToSigned(-3.0));
    EXPECT_EQ(0, RoundToSigned(-0.0));
    EXPECT_EQ(2147483647, RoundToSigned(2147483647.0));
    EXPECT_EQ(-2147483647 - 1, RoundToSigned(-2147483648.0));
    EXPECT_EQ(4294967295u, RoundToUnsigned(4294967295.0));
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
