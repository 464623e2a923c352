// Text between code pages and 16-bit characters. Expected bytes are typed from the code charts.

#include "platform/testing/Testing.h"
#include "platform/tests/core/CodePageText.h"

#include <windows.h>

#include <gtest/gtest.h>

#include <cstring>
#include <memory>
#include <string>

namespace
{

using tavrix::testing::Scope;
using tavrix::testing::SetLanguage;

using tavrix::tests::Decoded;
using tavrix::tests::Encoded;
using tavrix::tests::Japanese;
using tavrix::tests::Western;

struct Pair {
    UINT codePage;
    const char* bytes;
    const WCHAR* text;
};

TEST(Text, CharactersOfEachPageGoThereAndBack)
{
    const Pair pairs[] = {
        {CP_UTF8, "plain", TEXT("plain")},
        {CP_UTF8, "\xC3\xA9", TEXT("\u00E9")},
        {CP_UTF8, "\xE6\x97\xA5\xE6\x9C\xAC", TEXT("\u65E5\u672C")},
        {CP_UTF8, "\xF0\x9F\x98\x80", TEXT("\U0001F600")},
        {CP_UTF8, "\x7F\xC2\x80\xDF\xBF\xE0\xA0\x80\xEF\xBF\xBD",
         TEXT("\x7F\x80\u07FF\u0800\uFFFD")},
        {Japanese, "\x93\xFA\x96\x7B", TEXT("\u65E5\u672C")},
        {Japanese, "C:\\\xB1\x8A\xBF", TEXT("C:\\\uFF71\u6F22")},
        {Japanese, "\x83\x5C~", TEXT("\u30BD~")}, // its second byte is that of a backslash
        {Japanese, "\x87\x40", TEXT("\u2460")},
        {Western, "\xE9\x80\xFF", TEXT("\u00E9\u20AC\u00FF")},
        {Western, "\x81\x8D\x8F\x90\x9D", TEXT("\u0081\u008D\u008F\u0090\u009D")},
    };
    for (const Pair& pair : pairs) {
        EXPECT_EQ(Decoded(pair.codePage, pair.bytes), pair.text) << pair.bytes;
        EXPECT_EQ(Encoded(pair.codePage, pair.text), pair.bytes) << pair.bytes;
    }
}

TEST(Text, TheAnsiPageIsThatOfTheLanguage)
{
    const Scope scope;
    SetLanguage(1041);
    EXPECT_EQ(Decoded(CP_ACP, "\xB1"), u"\uFF71");
    EXPECT_EQ(Encoded(CP_ACP, u"\u65E5"), "\x93\xFA");
    // Any other language, a Japanese one of another country among them, has the western page.
    for (const LANGID other : {1033, 0, 17, 1042}) {
        SetLanguage(other);
        EXPECT_EQ(Decoded(CP_ACP, "\xB1"), u"\u00B1");
        EXPECT_EQ(Encoded(CP_ACP, u"\u65E5"), "?");
    }
}

TEST(Text, ALengthOfMinusOneTakesTheFinalZeroAlong)
{
    for (const UINT codePage : {UINT{CP_ACP}, UINT{CP_UTF8}, Japanese}) {
        WCHAR text[8];
        EXPECT_EQ(MultiByteToWideChar(codePage, 0, "abc", -1, text, 8), 4);
        EXPECT_EQ(std::u16string(text, 4), std::u16string(u"abc\0", 4));
        EXPECT_EQ(MultiByteToWideChar(codePage, 0, "", -1, text, 8), 1);
        char bytes[8];
        EXPECT_EQ(WideCharToMultiByte(codePage, 0, TEXT("abc"), -1, bytes, 8, nullptr, nullptr), 4);
        EXPECT_EQ(std::string(bytes, 4), std::string("abc\0", 4));
    }
    WCHAR text[8];
    EXPECT_EQ(MultiByteToWideChar(Japanese, 0, "\x93\xFA", -1, text, 8), 2);
    EXPECT_EQ(text[1], 0);
    EXPECT_EQ(WideCharToMultiByte(CP_UTF8, 0, TEXT("\u65E5"), -1, nullptr, 0, nullptr, nullptr), 4);
}

TEST(Text, ALengthGivenAddsNoZeroAndKeepsThoseInside)
{
    WCHAR text[6] = {u'#', u'#', u'#', u'#', u'#', u'#'};
    EXPECT_EQ(MultiByteToWideChar(CP_ACP, 0, "a\0b", 3, text, 6), 3);
    EXPECT_EQ(std::u16string(text, 6), std::u16string(u"a\0b###", 6));
    EXPECT_EQ(Decoded(CP_UTF8, std::string("\xC3\xA9\0z", 4)), std::u16string(u"\u00E9\0z", 3));
    EXPECT_EQ(Encoded(Japanese, std::u16string(u"\u65E5\0z", 3)), std::string("\x93\xFA\0z", 4));
}

TEST(Text, ABufferTooSmallFailsAndIsNeverLeft)
{
    const auto three = std::make_unique<WCHAR[]>(3);
    for (const char* bytes : {"abcd", "ab\xC3\xA9z", "\xF0\x9F\x98\x80\xF0\x9F\x98\x80"}) {
        SetLastError(0);
        EXPECT_EQ(
            MultiByteToWideChar(CP_UTF8, 0, bytes, static_cast<int>(strlen(bytes)), three.get(), 3),
            0);
        EXPECT_EQ(GetLastError(), ERROR_INSUFFICIENT_BUFFER);
    }
    const auto narrow = std::make_unique<char[]>(3);
    for (const WCHAR* text : {TEXT("abcd"), TEXT("\u65E5\u672C"), TEXT("ab\u65E5")}) {
        SetLastError(0);
        EXPECT_EQ(WideCharToMultiByte(Japanese, 0, text, static_cast<int>(wcslen(text)),
                                      narrow.get(), 3, nullptr, nullptr),
                  0);
        EXPECT_EQ(GetLastError(), ERROR_INSUFFICIENT_BUFFER);
    }
    // An exact fit without its final zero is too small as well.
    EXPECT_EQ(MultiByteToWideChar(CP_ACP, 0, "abc", -1, three.get(), 3), 0);
    EXPECT_EQ(MultiByteToWideChar(CP_ACP, 0, "abc", 3, three.get(), 3), 3);
}

TEST(Text, WhatAPageLacksBecomesTheDefaultCharacter)
{
    EXPECT_EQ(Encoded(Western, u"a\u65E5b"), "a?b");
    EXPECT_EQ(Encoded(Japanese, u"\u00FC"), "?");
    // Each half of a pair, also of those that are there to be ignored.
    EXPECT_EQ(Encoded(Japanese, u"\U0001F600"), "??");
    EXPECT_EQ(Encoded(Japanese, u"a\U000E0041z"), "a??z");
    EXPECT_EQ(Encoded(Western, u"a\U000E0041z"), "a??z");
    // Halves alone, in the wrong order, and at the end of a text.
    for (const UINT codePage : {Japanese, Western}) {
        EXPECT_EQ(Encoded(codePage, {u'a', WCHAR{0xD83D}}), "a?");
        EXPECT_EQ(Encoded(codePage, {WCHAR{0xD83D}, u'a'}), "?a");
        EXPECT_EQ(Encoded(codePage, {WCHAR{0xDE00}, WCHAR{0xD83D}, u'a'}), "??a");
    }
    char bytes[8] = {};
    BOOL used = FALSE;
    EXPECT_EQ(WideCharToMultiByte(Western, 0, TEXT("\u65E5x"), 2, bytes, 8, "_", &used), 2);
    EXPECT_STREQ(bytes, "_x");
    EXPECT_TRUE(used);
    EXPECT_EQ(WideCharToMultiByte(Western, 0, TEXT("\u00E9x"), 2, bytes, 8, "_", &used), 2);
    EXPECT_FALSE(used);
    used = TRUE;
    EXPECT_EQ(WideCharToMultiByte(Western, 0, TEXT("plain"), 5, bytes, 8, "_", &used), 5);
    EXPECT_FALSE(used);
}

TEST(Text, WhatIsNoUtf8BecomesReplacementCharacters)
{
    EXPECT_EQ(Decoded(CP_UTF8, "a\xFF"
                               "b"),
              u"a\uFFFD"
              u"b");
    EXPECT_EQ(Decoded(CP_UTF8, "\x80"), u"\uFFFD");
    // The beginning of a character counts as one, wherever it is cut.
    EXPECT_EQ(Decoded(CP_UTF8, "\xE6\x97"), u"\uFFFD");
    EXPECT_EQ(Decoded(CP_UTF8, "\xE6\x97z"), u"\uFFFDz");
    EXPECT_EQ(Decoded(CP_UTF8, "\xF0\x9F\x98"), u"\uFFFD");
    // Forms that are too long, halves of pairs and what lies past the last character count by byte.
    EXPECT_EQ(Decoded(CP_UTF8, "\xC0\x80"), u"\uFFFD\uFFFD");
    EXPECT_EQ(Decoded(CP_UTF8, "\xE0\x80\x80"), u"\uFFFD\uFFFD\uFFFD");
    EXPECT_EQ(Decoded(CP_UTF8, "\xED\xA0\x80"), u"\uFFFD\uFFFD\uFFFD");
    EXPECT_EQ(Decoded(CP_UTF8, "\xF4\x90\x80\x80"), u"\uFFFD\uFFFD\uFFFD\uFFFD");
    EXPECT_EQ(Decoded(CP_UTF8, "\xF8\x88\x80\x80\x80"), u"\uFFFD\uFFFD\uFFFD\uFFFD\uFFFD");
}

TEST(Text, AHalfOfAPairHasNoFormInUtf8)
{
    EXPECT_EQ(Encoded(CP_UTF8, std::u16string(1, WCHAR{0xD83D})), "\xEF\xBF\xBD");
    EXPECT_EQ(Encoded(CP_UTF8, std::u16string({WCHAR{0xDE00}, WCHAR{'a'}})), "\xEF\xBF\xBD"
                                                                             "a");
    EXPECT_EQ(Encoded(CP_UTF8, std::u16string({WCHAR{0xD83D}, WCHAR{'a'}})), "\xEF\xBF\xBD"
                                                                             "a");
}

TEST(Text, WhatIsNoJapaneseTextIsReplacedAndTheRestIsKept)
{
    // A first byte without its second at the end of the text, which may be the final zero.
    EXPECT_EQ(Decoded(Japanese, "a\x93"), u"a\u30FB");
    EXPECT_EQ(Decoded(Japanese, "\x93\xFA\x93"), u"\u65E5\u30FB");
    EXPECT_EQ(Decoded(Japanese, std::string("a\x93\0", 3)), std::u16string(u"a\u30FB\0", 3));
    // A second byte that is none stands for itself.
    EXPECT_EQ(Decoded(Japanese, "\x81\x20z"), u"\u30FB z");
    EXPECT_EQ(Decoded(Japanese, "\x81\x7Fz"), u"\u30FB\x7Fz");
    // A pair that is not assigned is one character, and the next one begins behind it.
    EXPECT_EQ(Decoded(Japanese, "\x85\x9F\x93\xFA"), u"\u30FB\u65E5");
    EXPECT_EQ(Decoded(Japanese, "\x85\x40@"), u"\u30FB@");
}

TEST(Text, AFlagMakesInvalidBytesAnError)
{
    WCHAR text[8];
    EXPECT_EQ(MultiByteToWideChar(CP_UTF8, 8, "\xFF", 1, text, 8), 0);
    EXPECT_EQ(GetLastError(), 1113u);
    EXPECT_EQ(MultiByteToWideChar(CP_UTF8, 8, "\xC3\xA9", 2, text, 8), 1);
    // A byte that stands for a control character is none that is invalid.
    EXPECT_EQ(MultiByteToWideChar(Western, 8, "\x81", 1, text, 8), 1);
    EXPECT_EQ(MultiByteToWideChar(Japanese, 8, "\x93\xFA", 2, text, 8), 1);
    text[0] = u'#';
    EXPECT_EQ(MultiByteToWideChar(Japanese, 8, "a\x93", 2, text, 8), 0);
    EXPECT_EQ(text[0], u'#');
}

TEST(Text, LongTextsAreWholeAtEveryLength)
{
    // Around the sizes of the pieces in which the converter works.
    for (const size_t length :
         {255u, 256u, 257u, 341u, 342u, 511u, 512u, 513u, 1023u, 1025u, 9000u}) {
        std::u16string text;
        std::string utf8;
        std::string japanese;
        for (size_t at = 0; at < length; ++at) {
            text += at % 7 == 3 ? u'a' : u'\u65E5';
            utf8 += at % 7 == 3 ? "a" : "\xE6\x97\xA5";
            japanese += at % 7 == 3 ? "a" : "\x93\xFA";
        }
        EXPECT_EQ(Decoded(CP_UTF8, utf8), text);
        EXPECT_EQ(Encoded(CP_UTF8, text), utf8);
        EXPECT_EQ(Decoded(Japanese, japanese), text);
        EXPECT_EQ(Encoded(Japanese, text), japanese);
    }
}

TEST(Text, BadArgumentsAreRefused)
{
    WCHAR text[4];
    char bytes[4] = "abc";
    const auto refused = [](int result) {
        const bool invalid = GetLastError() == ERROR_INVALID_PARAMETER;
        SetLastError(0);
        return result == 0 && invalid;
    };
    SetLastError(0);
    EXPECT_TRUE(refused(MultiByteToWideChar(CP_ACP, 0, nullptr, 1, text, 4)));
    EXPECT_TRUE(refused(MultiByteToWideChar(CP_ACP, 0, bytes, 0, text, 4)));
    EXPECT_TRUE(refused(MultiByteToWideChar(CP_ACP, 0, bytes, 3, nullptr, 4)));
    EXPECT_TRUE(refused(MultiByteToWideChar(CP_ACP, 0, bytes, 3, text, -1)));
    EXPECT_TRUE(refused(MultiByteToWideChar(9999, 0, bytes, 3, text, 4)));
    EXPECT_TRUE(
        refused(MultiByteToWideChar(CP_ACP, 0, bytes, 3, reinterpret_cast<WCHAR*>(bytes), 2)));
    EXPECT_TRUE(refused(WideCharToMultiByte(CP_ACP, 0, nullptr, 1, bytes, 4, nullptr, nullptr)));
    EXPECT_TRUE(refused(WideCharToMultiByte(CP_ACP, 0, TEXT("a"), 0, bytes, 4, nullptr, nullptr)));
    EXPECT_TRUE(
        refused(WideCharToMultiByte(CP_ACP, 0, TEXT("a"), 1, nullptr, 4, nullptr, nullptr)));
    EXPECT_TRUE(refused(WideCharToMultiByte(9999, 0, TEXT("a"), 1, bytes, 4, nullptr, nullptr)));
    BOOL used = FALSE;
    EXPECT_TRUE(refused(WideCharToMultiByte(CP_UTF8, 0, TEXT("a"), 1, bytes, 4, "?", nullptr)));
    EXPECT_TRUE(refused(WideCharToMultiByte(CP_UTF8, 0, TEXT("a"), 1, bytes, 4, nullptr, &used)));
}

} // namespace
