#include "foundation/NumberText.h"

#include "foundation/tests/Widths.h"

#include <gtest/gtest.h>

#include <limits>
#include <random>
#include <string>

namespace
{

constexpr i32 LowestSigned = std::numeric_limits<i32>::min();
constexpr i64 LowestSigned64 = std::numeric_limits<i64>::min();

template <class Char>
struct Format : ::testing::Test {
    /// The text in a buffer of just the size that the number needs by the rule.
    template <class Number>
    static std::basic_string<Char> Whole(i32 (*format)(Number, Char*, u32), Number value)
    {
        for (u32 capacity = 3; capacity < 40; ++capacity) {
            Cells<Char> cells(capacity, '#');
            const i32 result = format(value, cells, capacity);
            if (result == 1) {
                // n characters, the final zero, and a cell that is never used.
                EXPECT_EQ(capacity, cells.UpToZero().size() + 2);
                EXPECT_EQ('#', cells.All()[capacity - 1]);
                return cells.UpToZero();
            }
            EXPECT_EQ(-1, result);
        }
        ADD_FAILURE() << "no capacity is enough for " << value;
        return {};
    }
    static std::basic_string<Char> Unsigned(u32 value) { return Whole<u32>(FormatUnsigned, value); }
    static std::basic_string<Char> Signed(i32 value) { return Whole<i32>(FormatSigned, value); }
    static std::basic_string<Char> Unsigned64(u64 value)
    {
        return Whole<u64>(FormatUnsigned64, value);
    }
    static std::basic_string<Char> Signed64(i64 value) { return Whole<i64>(FormatSigned64, value); }
};

/// The digits of a 32-bit number by the steps, in 64 bits with every wrap written out.
std::string Steps32(u64 value)
{
    constexpr u64 Wrap = 0x100000000;
    u64 last = 1;
    u64 product = 10;
    u64 power = 0;
    while (power == 0) {
        if (product <= last)
            power = last;
        else if (value < product)
            power = product / 10;
        last = product;
        product = product * 10 % Wrap;
    }
    std::string text;
    u64 rest = value;
    for (; power > 0; power /= 10) {
        u64 digit = 0;
        for (; rest >= power; rest -= power)
            ++digit;
        text += static_cast<char>('0' + digit);
    }
    return text;
}

/// Numbers of every size, those around the powers of ten and of two among them.
u64 AnyNumber(std::mt19937_64& random)
{
    const u64 number = random() >> (random() % 64);
    switch (random() % 4) {
    case 0: {
        u64 power = 1;
        for (u64 i = random() % 20; i > 0; --i)
            power *= 10;
        return power + random() % 3 - 1;
    }
    case 1:
        return (u64{1} << (random() % 64)) + random() % 3 - 1;
    default:
        return number;
    }
}

/// What is expected of each capacity: at most two less characters than it has cells.
template <class Char>
void ExpectAtEveryCapacity(const std::string& number, auto format)
{
    EXPECT_EQ(-1, format(static_cast<Char*>(nullptr), 30));
    EXPECT_EQ(-1, format(static_cast<Char*>(nullptr), 1));
    for (u32 capacity = 0; capacity < number.size() + 4; ++capacity) {
        Cells<Char> cells(capacity, '#');
        const i32 result = format(cells.Get(), capacity);
        std::string expected(capacity, '#');
        i32 expectedResult = -1;
        if (capacity == 1) {
            expectedResult = 0;
        } else if (capacity >= number.size() + 2) {
            expectedResult = 1;
            expected.replace(0, number.size() + 1, number + '\0');
        } else if (capacity > 1) {
            expected.replace(0, capacity - 2, number.substr(0, capacity - 2));
            expected[capacity - 1] = 0;
        }
        EXPECT_EQ(expectedResult, result) << number << " in " << capacity;
        EXPECT_EQ(Text<Char>(expected), cells.All()) << number << " in " << capacity;
    }
}

} // namespace

TYPED_TEST_SUITE(Format, Widths);

TYPED_TEST(Format, WritesNumbersOfUpToNineDigits)
{
    EXPECT_EQ(Text<TypeParam>("0"), this->Unsigned(0));
    EXPECT_EQ(Text<TypeParam>("7"), this->Unsigned(7));
    EXPECT_EQ(Text<TypeParam>("10"), this->Unsigned(10));
    EXPECT_EQ(Text<TypeParam>("105"), this->Unsigned(105));
    EXPECT_EQ(Text<TypeParam>("100000000"), this->Unsigned(100000000));
    EXPECT_EQ(Text<TypeParam>("999999999"), this->Unsigned(999999999));
    EXPECT_EQ(Text<TypeParam>("-999999999"), this->Signed(-999999999));
    EXPECT_EQ(Text<TypeParam>("-1"), this->Signed(-1));
    EXPECT_EQ(Text<TypeParam>("0"), this->Signed(0));
    EXPECT_EQ(Text<TypeParam>("42"), this->Signed(42));
}

TYPED_TEST(Format, NumbersOfTenDigitsComeOutWrong)
{
    EXPECT_EQ(Text<TypeParam>("709186972"), this->Unsigned(1000000000));
    EXPECT_EQ(Text<TypeParam>("3045934808"), this->Unsigned(4294967295));
    // The ":" is the character behind "9".
    EXPECT_EQ(Text<TypeParam>(":00000007"), this->Unsigned(1410065407));
    EXPECT_EQ(Text<TypeParam>("1000000000"), this->Unsigned(1410065408));
    EXPECT_EQ(Text<TypeParam>("709186972"), this->Signed(1000000000));
    EXPECT_EQ(Text<TypeParam>("-709186972"), this->Signed(-1000000000));
    EXPECT_EQ(Text<TypeParam>("-:00000007"), this->Signed(-1410065407));
}

TYPED_TEST(Format, TheLowestNumbersAreWrittenAsTheirMagnitudes)
{
    EXPECT_EQ(Text<TypeParam>("-9223372036854775808"), this->Signed64(LowestSigned64));
    // As FormatUnsigned writes 2147483648, which has ten digits.
    EXPECT_EQ(Text<TypeParam>("1522967410"), this->Unsigned(2147483648));
    EXPECT_EQ(Text<TypeParam>("-1522967410"), this->Signed(LowestSigned));
}

TYPED_TEST(Format, SixtyFourBitsAreEnoughForEveryNumber)
{
    EXPECT_EQ(Text<TypeParam>("0"), this->Unsigned64(0));
    EXPECT_EQ(Text<TypeParam>("1000000000"), this->Unsigned64(1000000000));
    EXPECT_EQ(Text<TypeParam>("4294967295"), this->Unsigned64(4294967295));
    EXPECT_EQ(Text<TypeParam>("9999999999999999999"), this->Unsigned64(9999999999999999999u));
    EXPECT_EQ(Text<TypeParam>("10000000000000000000"), this->Unsigned64(10000000000000000000u));
    EXPECT_EQ(Text<TypeParam>("18446744073709551615"), this->Unsigned64(18446744073709551615u));
    EXPECT_EQ(Text<TypeParam>("9223372036854775807"), this->Signed64(9223372036854775807));
    EXPECT_EQ(Text<TypeParam>("-1000000000"), this->Signed64(-1000000000));
    EXPECT_EQ(Text<TypeParam>("-5"), this->Signed64(-5));
}

TYPED_TEST(Format, NeedsTwoCellsMoreThanTheNumberHasDigits)
{
    TypeParam text[5] = {'#', '#', '#', '#', '#'};
    EXPECT_EQ(-1, FormatUnsigned(123, text, 4));
    EXPECT_EQ('1', text[0]);
    EXPECT_EQ('2', text[1]);
    EXPECT_EQ('#', text[2]);
    EXPECT_EQ(0, text[3]);
    EXPECT_EQ('#', text[4]);
    EXPECT_EQ(1, FormatUnsigned(123, text, 5));
    EXPECT_EQ(Text<TypeParam>("123"), text);
}

TYPED_TEST(Format, ZeroNeedsThreeCells)
{
    TypeParam text[3] = {'#', '#', '#'};
    EXPECT_EQ(-1, FormatUnsigned(0, text, 2));
    EXPECT_EQ('#', text[0]);
    EXPECT_EQ(0, text[1]);
    EXPECT_EQ(1, FormatUnsigned(0, text, 3));
    EXPECT_EQ(Text<TypeParam>("0"), text);
}

TYPED_TEST(Format, EveryCapacityFollowsTheRule)
{
    using Char = TypeParam;
    const auto unsignedForm = [](Char* text, u32 capacity) {
        return FormatUnsigned(12345, text, capacity);
    };
    ExpectAtEveryCapacity<Char>("12345", unsignedForm);
    const auto signedForm = [](Char* text, u32 capacity) {
        return FormatSigned(-678, text, capacity);
    };
    ExpectAtEveryCapacity<Char>("-678", signedForm);
    const auto unsigned64Form = [](Char* text, u32 capacity) {
        return FormatUnsigned64(18446744073709551615u, text, capacity);
    };
    ExpectAtEveryCapacity<Char>("18446744073709551615", unsigned64Form);
    const auto signed64Form = [](Char* text, u32 capacity) {
        return FormatSigned64(-9223372036854775807, text, capacity);
    };
    ExpectAtEveryCapacity<Char>("-9223372036854775807", signed64Form);
}

TYPED_TEST(Format, ThirtyTwoBitsFollowTheStepsForManyNumbers)
{
    std::mt19937_64 random(32);
    for (int round = 0; round < 20000; ++round) {
        const u32 value = static_cast<u32>(AnyNumber(random));
        ASSERT_EQ(Text<TypeParam>(Steps32(value)), this->Unsigned(value)) << value;
        const i32 number = static_cast<i32>(value);
        const std::string expected =
            number < 0 ? "-" + Steps32(static_cast<u64>(-static_cast<i64>(number)))
                       : Steps32(value);
        ASSERT_EQ(Text<TypeParam>(expected), this->Signed(number)) << number;
        if (value < 1000000000) {
            ASSERT_EQ(Text<TypeParam>(std::to_string(value)), this->Unsigned(value));
        }
    }
}

TYPED_TEST(Format, SixtyFourBitsAgreeWithTheLibraryForManyNumbers)
{
    std::mt19937_64 random(64);
    for (int round = 0; round < 20000; ++round) {
        const u64 value = AnyNumber(random);
        ASSERT_EQ(Text<TypeParam>(std::to_string(value)), this->Unsigned64(value));
        const i64 number = static_cast<i64>(value);
        ASSERT_EQ(Text<TypeParam>(std::to_string(number)), this->Signed64(number));
    }
}
