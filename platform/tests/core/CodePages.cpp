// The two code pages of the device, character by character, and conversions into every capacity.

#include "platform/tests/core/CodePageText.h"

#include <windows.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <memory>
#include <string>
#include <thread>
#include <vector>

namespace
{

using tavrix::tests::Decoded;
using tavrix::tests::Encoded;
using tavrix::tests::Japanese;
using tavrix::tests::Western;

/// What the western page has from 0x80 to 0x9F, typed from its chart; below and above it each byte
/// stands for the character of the same number.
constexpr WCHAR WesternRows[] = {
    0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, // 80
    0x02C6, 0x2030, 0x0160, 0x2039, 0x0152, 0x008D, 0x017D, 0x008F, // 88
    0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022, 0x2013, 0x2014, // 90
    0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178, // 98
};

WCHAR WesternCharacter(unsigned byte)
{
    return byte >= 0x80 && byte < 0xA0 ? WesternRows[byte - 0x80] : static_cast<WCHAR>(byte);
}

TEST(CodePages, EveryWesternByteGoesThereAndBack)
{
    std::string all;
    std::u16string expected;
    for (unsigned byte = 0; byte < 256; ++byte) {
        const std::string bytes(1, static_cast<char>(byte));
        const std::u16string text(1, WesternCharacter(byte));
        EXPECT_EQ(Decoded(Western, bytes), text) << byte;
        EXPECT_EQ(Encoded(Western, text), bytes) << byte;
        all += bytes;
        expected += text;
    }
    EXPECT_EQ(Decoded(Western, all), expected);
    EXPECT_EQ(Encoded(Western, expected), all);
}

TEST(CodePages, EveryOtherCharacterIsNoWesternOne)
{
    const std::u16string western = Decoded(Western, [] {
        std::string all;
        for (unsigned byte = 0; byte < 256; ++byte)
            all += static_cast<char>(byte);
        return all;
    }());
    for (unsigned unit = 0x80; unit < 0x10000; ++unit) {
        const WCHAR character = static_cast<WCHAR>(unit);
        if (western.find(character) == std::u16string::npos) {
            ASSERT_EQ(Encoded(Western, std::u16string(1, character)), "?") << unit;
        }
    }
}

struct Pair {
    const char* bytes;
    WCHAR character;
};

// Typed from the code chart, and looked up in Python: bytes.fromhex("8160").decode("cp932").
TEST(CodePages, JapaneseCharactersAreThoseOfTheDevicesPage)
{
    const Pair pairs[] = {
        {"\x5C", 0x005C}, // a backslash and no yen sign
        {"\x7E", 0x007E}, // a tilde and no overline
        {"\xA1", 0xFF61}, // the half-width ones, from the full stop
        {"\xA6", 0xFF66},     {"\xB1", 0xFF71},     {"\xDD", 0xFF9D},
        {"\xDF", 0xFF9F},     // to the voiced sound mark
        {"\x81\x40", 0x3000}, // the wide blank
        {"\x81\x5F", 0xFF3C}, // the wide backslash
        {"\x81\x60", 0xFF5E}, // the wide tilde, where others have the wave dash
        {"\x81\x61", 0x2225}, {"\x81\x7C", 0xFF0D}, {"\x81\x91", 0xFFE0},
        {"\x81\x92", 0xFFE1}, {"\x81\xCA", 0xFFE2}, {"\x81\xBE", 0x222A},
        {"\x81\xE6", 0x2235}, {"\x82\xA0", 0x3042}, {"\x83\x41", 0x30A2},
        {"\x83\x94", 0x30F4}, {"\x95\x5C", 0x8868}, // its second byte is that of a backslash
        {"\x88\x9F", 0x4E9C}, {"\x9F\xFC", 0x6ECC}, {"\xE0\x40", 0x6F3E},
        {"\xEA\xA4", 0x7199}, // the last of the standard's
        {"\x87\x40", 0x2460}, // a maker's extensions: circled numbers
        {"\x87\x54", 0x2160}, {"\x87\x5F", 0x3349}, {"\x87\x82", 0x2116},
        {"\x87\x84", 0x2121}, {"\x87\x8A", 0x3231}, {"\xFA\x40", 0x2170}, // another maker's
        {"\xFA\x55", 0xFFE4}, {"\xFA\x56", 0xFF07}, {"\xFA\x57", 0xFF02},
        {"\xFA\x5C", 0x7E8A}, {"\xFC\x4B", 0x9ED1}, // the last character of all
        {"\xF0\x40", 0xE000},                       // the user's own
        {"\xF9\xFC", 0xE757},
    };
    for (const Pair& pair : pairs) {
        const std::u16string text(1, pair.character);
        EXPECT_EQ(Decoded(Japanese, pair.bytes), text) << unsigned{pair.character};
        EXPECT_EQ(Encoded(Japanese, text), pair.bytes) << unsigned{pair.character};
    }
}

TEST(CodePages, CharactersThatTheJapanesePageHasTwiceGoBackToOnePlace)
{
    const struct {
        const char* bytes;
        WCHAR character;
        const char* back;
    } doubles[] = {
        {"\x87\x90", 0x2252, "\x81\xE0"}, // the standard's place before a maker's
        {"\x87\x9A", 0x2235, "\x81\xE6"},
        {"\xFA\x54", 0xFFE2, "\x81\xCA"},
        {"\xFA\x4A", 0x2160, "\x87\x54"}, // the first maker's signs before the second's
        {"\xFA\x58", 0x3231, "\x87\x8A"},
        {"\xED\x40", 0x7E8A, "\xFA\x5C"}, // and its copies of the second's last
        {"\xEE\xFA", 0xFFE4, "\xFA\x55"},
        {"\xEE\xFC", 0xFF02, "\xFA\x57"},
    };
    for (const auto& each : doubles) {
        const std::u16string text(1, each.character);
        EXPECT_EQ(Decoded(Japanese, each.bytes), text) << unsigned{each.character};
        EXPECT_EQ(Encoded(Japanese, text), each.back) << unsigned{each.character};
    }
}

TEST(CodePages, LikenessesOfJapaneseCharactersAreWrittenAsThose)
{
    const Pair likenesses[] = {
        {"\x81\x60", 0x301C}, // the wave dash
        {"\x81\x61", 0x2016}, {"\x81\x7C", 0x2212}, {"\x81\x91", 0x00A2}, {"\x81\x92", 0x00A3},
        {"\x81\xCA", 0x00AC}, {"\x81\x5C", 0x2014}, {"\x5C", 0x00A5},     {"\x7E", 0x203E},
    };
    for (const Pair& pair : likenesses)
        EXPECT_EQ(Encoded(Japanese, std::u16string(1, pair.character)), pair.bytes);
    // What the page has itself, and in its own places.
    EXPECT_EQ(Decoded(Japanese, "\x81\x5C"), u"\u2015");
}

TEST(CodePages, FiveLoneJapaneseBytesGoThereAndBack)
{
    const Pair pairs[] = {
        {"\x80", 0x0080}, {"\xA0", 0xF8F0}, {"\xFD", 0xF8F1}, {"\xFE", 0xF8F2}, {"\xFF", 0xF8F3}};
    for (const Pair& pair : pairs) {
        const std::string bytes = std::string("a") + pair.bytes + "\x93\xFA";
        const std::u16string text = {u'a', pair.character, u'\u65E5'};
        EXPECT_EQ(Decoded(Japanese, bytes), text);
        EXPECT_EQ(Encoded(Japanese, text), bytes);
        WCHAR out[8];
        EXPECT_EQ(MultiByteToWideChar(Japanese, 8, pair.bytes, 1, out, 8), 1);
        BOOL used = TRUE;
        char back[8];
        EXPECT_EQ(WideCharToMultiByte(Japanese, 0, &pair.character, 1, back, 8, nullptr, &used), 1);
        EXPECT_FALSE(used);
    }
}

/// FNV-1a, byte by byte.
class Sum
{
public:
    void Add(unsigned byte) { value = (value ^ byte) * 0x100000001B3; }
    std::uint64_t value = 0xCBF29CE484222325;
};

// The expected sum is Python's: over the two bytes, low one first, of each bytes([a,
// b]).decode("cp932") in the order of the loops, 0x30FB for those that it refuses.
TEST(CodePages, EveryJapanesePairIsWhatAnotherProgramSays)
{
    Sum sum;
    std::string all;
    std::u16string expected;
    for (unsigned lead = 0x81; lead <= 0xFC; ++lead) {
        if (lead >= 0xA0 && lead < 0xE0)
            continue;
        for (unsigned trail = 0x40; trail <= 0xFC; ++trail) {
            if (trail == 0x7F)
                continue;
            const std::string bytes = {static_cast<char>(lead), static_cast<char>(trail)};
            const std::u16string text = Decoded(Japanese, bytes);
            ASSERT_EQ(text.size(), 1u) << lead << " " << trail;
            sum.Add(text[0] & 0xFFu);
            sum.Add(text[0] >> 8);
            all += bytes;
            expected += text;
        }
    }
    EXPECT_EQ(sum.value, 0xF9FCCE84517FC484u);
    // All in one call is the same as one by one.
    EXPECT_EQ(Decoded(Japanese, all), expected);
}

// The expected sum is from Python's table of the pairs, turned round: of the places of a character
// the one in the standard's rows, else in row 0x87, else in rows 0xFA to 0xFC; with the likenesses
// above, and "?" for the rest.
TEST(CodePages, EveryCharacterIsWrittenInJapaneseAsAnotherProgramSays)
{
    Sum sum;
    std::u16string all;
    std::string expected;
    for (unsigned unit = 0; unit < 0x10000; ++unit) {
        if (unit >= 0xD800 && unit < 0xE000)
            continue;
        const std::u16string text(1, static_cast<WCHAR>(unit));
        const std::string bytes = Encoded(Japanese, text);
        all += text;
        expected += bytes;
        if (unit == 0xA5 || unit == 0x2014 || unit == 0x203E)
            continue;
        for (const char byte : bytes)
            sum.Add(static_cast<unsigned char>(byte));
    }
    EXPECT_EQ(sum.value, 0xB6B8CC7E7BBEF727u);
    EXPECT_EQ(Encoded(Japanese, all), expected);
}

/// Converts into blocks of every size up to two more than are needed.
void ExpectDecodedAtEveryCapacity(UINT codePage, const std::string& bytes)
{
    const std::u16string whole = Decoded(codePage, bytes);
    const auto source = std::make_unique<char[]>(bytes.size());
    bytes.copy(source.get(), bytes.size());
    for (size_t capacity = 0; capacity < whole.size() + 3; ++capacity) {
        const auto text = std::make_unique<WCHAR[]>(capacity);
        std::fill_n(text.get(), capacity, u'#');
        SetLastError(0);
        const int result =
            MultiByteToWideChar(codePage, 0, source.get(), static_cast<int>(bytes.size()),
                                text.get(), static_cast<int>(capacity));
        const bool fits = capacity == 0 || capacity >= whole.size();
        EXPECT_EQ(result, fits ? static_cast<int>(whole.size()) : 0);
        EXPECT_EQ(GetLastError(), fits ? 0u : DWORD{ERROR_INSUFFICIENT_BUFFER});
        std::u16string expected = whole;
        expected.resize(capacity, u'#');
        EXPECT_EQ(std::u16string(text.get(), capacity), expected);
    }
}

void ExpectEncodedAtEveryCapacity(UINT codePage, const std::u16string& text)
{
    const std::string whole = Encoded(codePage, text);
    const auto source = std::make_unique<WCHAR[]>(text.size());
    text.copy(source.get(), text.size());
    for (size_t capacity = 0; capacity < whole.size() + 3; ++capacity) {
        const auto bytes = std::make_unique<char[]>(capacity);
        std::fill_n(bytes.get(), capacity, '#');
        SetLastError(0);
        const int result =
            WideCharToMultiByte(codePage, 0, source.get(), static_cast<int>(text.size()),
                                bytes.get(), static_cast<int>(capacity), nullptr, nullptr);
        const bool fits = capacity == 0 || capacity >= whole.size();
        EXPECT_EQ(result, fits ? static_cast<int>(whole.size()) : 0);
        EXPECT_EQ(GetLastError(), fits ? 0u : DWORD{ERROR_INSUFFICIENT_BUFFER});
        std::string expected = whole;
        expected.resize(capacity, '#');
        EXPECT_EQ(std::string(bytes.get(), capacity), expected);
    }
}

TEST(CodePages, NoCapacityIsEverOverrun)
{
    const std::string zeros("\x93\xFA\0z\0", 5);
    for (const UINT codePage : {Japanese, Western, UINT{CP_UTF8}, UINT{CP_ACP}}) {
        for (const std::string& bytes :
             {std::string("plain"), std::string("\x93\xFA\x96\x7B"), std::string("a\xB1\x93"),
              std::string("\xE6\x97\xA5\xE6\x97"), std::string("\xFF\xFE\x80"),
              std::string("\xF0\x9F\x98\x80z"), std::string("\x85\x9F\x85"), zeros})
            ExpectDecodedAtEveryCapacity(codePage, bytes);
        for (const std::u16string& text :
             {std::u16string(u"plain"), std::u16string(u"\u65E5\u672C\uFF71"),
              std::u16string(u"\u00E9\U0001F600z"), std::u16string({u'a', WCHAR{0xD83D}}),
              std::u16string({WCHAR{0xDE00}, u'\u65E5'}), std::u16string(u"\u65E5\0z\0", 4)})
            ExpectEncodedAtEveryCapacity(codePage, text);
    }
}

TEST(CodePages, AReplacementOfTwoBytesStaysInsideEveryCapacity)
{
    for (size_t capacity = 1; capacity < 6; ++capacity) {
        const auto bytes = std::make_unique<char[]>(capacity);
        const int result = WideCharToMultiByte(Japanese, 0, TEXT("\u00FC\u00FC"), 2, bytes.get(),
                                               static_cast<int>(capacity), "\x81\x40", nullptr);
        EXPECT_EQ(result, capacity < 4 ? 0 : 4);
    }
}

TEST(CodePages, ATextOfAMillionCharactersIsWhole)
{
    constexpr size_t Length = 1000000;
    std::u16string text(Length, u'\u65E5');
    std::string bytes;
    for (size_t at = 0; at < Length; ++at) {
        const bool isBad = at % 1000 == 999;
        if (isBad)
            text[at] = 0xD83D;
        bytes += isBad ? "?" : "\x93\xFA";
    }
    EXPECT_TRUE(Encoded(Japanese, text) == bytes);
    for (size_t at = 0; at < Length; ++at) {
        if (at % 1000 == 999)
            text[at] = u'?';
    }
    EXPECT_TRUE(Decoded(Japanese, bytes) == text);
    EXPECT_TRUE(Encoded(Western, text) == std::string(Length, '?'));
}

TEST(CodePages, LongTextsOfNothingThatCanBeConvertedAreWhole)
{
    // The sanitizer walks over the whole rest for each of them, or there could be more.
    constexpr size_t Length = 50000;
    EXPECT_TRUE(Encoded(Japanese, std::u16string(Length, u'\u00FC')) == std::string(Length, '?'));
    EXPECT_TRUE(Decoded(Japanese, std::string(Length, '\x80')) == std::u16string(Length, u'\x80'));
    EXPECT_TRUE(Decoded(CP_UTF8, std::string(Length, '\x80')) == std::u16string(Length, u'\uFFFD'));
    EXPECT_EQ(Encoded(CP_UTF8, std::u16string(Length, WCHAR{0xD83D})).size(), 3 * Length);
}

TEST(CodePages, ThreadsDoNotDisturbEachOther)
{
    std::vector<std::thread> threads;
    for (int number = 0; number < 4; ++number) {
        threads.emplace_back([number] {
            const UINT codePage = number % 2 == 0 ? Japanese : Western;
            const std::u16string text(700, number % 2 == 0 ? u'\u65E5' : u'\u20AC');
            for (int round = 0; round < 200; ++round)
                EXPECT_EQ(Decoded(codePage, Encoded(codePage, text)), text);
        });
    }
    for (std::thread& thread : threads)
        thread.join();
}

} // namespace
