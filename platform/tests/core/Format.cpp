// wsprintfW.

#include "platform/testing/Testing.h"

#include <windows.h>

#include <gtest/gtest.h>

#include <memory>
#include <string>

namespace
{

using tavrix::testing::Scope;
using tavrix::testing::SetLanguage;

/// The text that a format gives, and that the count is its length.
template <class... Values>
std::u16string Formatted(const WCHAR* format, Values... values)
{
    const auto buffer = std::make_unique<WCHAR[]>(1024);
    const int length = wsprintfW(buffer.get(), format, values...);
    std::u16string text = buffer.get();
    EXPECT_EQ(static_cast<size_t>(length), text.size());
    return text;
}

TEST(Format, PagingFileNamesComeOutAsExpected)
{
    EXPECT_EQ(Formatted(TEXT("%s%06d.tmp"), TEXT("\\Temp\\"), 42), u"\\Temp\\000042.tmp");
    EXPECT_EQ(Formatted(TEXT("%s%06d.tmp"), TEXT("\\Temp\\"), 999999), u"\\Temp\\999999.tmp");
}

TEST(Format, NumbersInTheirFormsAndWidths)
{
    EXPECT_EQ(Formatted(TEXT("%d|%i|%u"), -5, 5, 4294967295u), u"-5|5|4294967295");
    EXPECT_EQ(Formatted(TEXT("%d"), -2147483647 - 1), u"-2147483648");
    EXPECT_EQ(Formatted(TEXT("%x %X %#x %#X"), 0xBEEF, 0xBEEF, 0xBEEF, 0xBEEF),
              u"beef BEEF 0xbeef 0XBEEF");
    EXPECT_EQ(Formatted(TEXT("[%5d][%-5d][%05d]"), 42, 42, 42), u"[   42][42   ][00042]");
    EXPECT_EQ(Formatted(TEXT("[%05d][%5d]"), -42, -42), u"[-0042][  -42]");
    EXPECT_EQ(Formatted(TEXT("[%2d]"), 12345), u"[12345]");
    EXPECT_EQ(Formatted(TEXT("[%.3d][%6.3d]"), 7, 7), u"[007][   007]");
    EXPECT_EQ(Formatted(TEXT("%ld %lu %lx"), -1, 1u, 255), u"-1 1 ff");
    EXPECT_EQ(Formatted(TEXT("%08X"), 0xABCu), u"00000ABC");
    EXPECT_EQ(Formatted(TEXT("%d"), 0), u"0");
}

TEST(Format, TextsAndCharacters)
{
    EXPECT_EQ(Formatted(TEXT("%s-%ls"), TEXT("a\u3042"), TEXT("b")), u"a\u3042-b");
    EXPECT_EQ(Formatted(TEXT("[%5s][%-5s][%.2s]"), TEXT("abc"), TEXT("abc"), TEXT("abc")),
              u"[  abc][abc  ][ab]");
    EXPECT_EQ(Formatted(TEXT("%c%c"), u'x', u'\u3042'), u"x\u3042");
    EXPECT_EQ(Formatted(TEXT("%S %hs"), "narrow", "too"), u"narrow too");
    EXPECT_EQ(Formatted(TEXT("%hc%C"), 'a', 'b'), u"ab");
    EXPECT_EQ(Formatted(TEXT("%s"), static_cast<const WCHAR*>(nullptr)), u"(null)");
    EXPECT_EQ(Formatted(TEXT("%S"), static_cast<const char*>(nullptr)), u"(null)");
}

TEST(Format, NarrowTextsGoThroughTheCodePageOfTheLanguage)
{
    const Scope scope;
    EXPECT_EQ(Formatted(TEXT("%S"), "\xE9"), u"\u00E9");
    SetLanguage(1041);
    EXPECT_EQ(Formatted(TEXT("%S"), "\x93\xFA"), u"\u65E5");
}

TEST(Format, APrecisionKeepsAnUnterminatedTextFromBeingReadFurther)
{
    const auto wide = std::make_unique<WCHAR[]>(3);
    wide[0] = wide[1] = wide[2] = u'w';
    EXPECT_EQ(Formatted(TEXT("%.3s"), static_cast<const WCHAR*>(wide.get())), u"www");
    const auto narrow = std::make_unique<char[]>(3);
    narrow[0] = narrow[1] = narrow[2] = 'n';
    EXPECT_EQ(Formatted(TEXT("%.3S"), static_cast<const char*>(narrow.get())), u"nnn");
}

TEST(Format, PercentSignsAndUnknownTypesStandForThemselves)
{
    EXPECT_EQ(Formatted(TEXT("100%%")), u"100%");
    EXPECT_EQ(Formatted(TEXT("%q")), u"q");
    EXPECT_EQ(Formatted(TEXT("end %")), u"end ");
    EXPECT_EQ(Formatted(TEXT("")), u"");
}

TEST(Format, NoMoreThan1024CharactersAreEverWritten)
{
    // The buffer is exactly as long as the interface promises, so that one more would be seen.
    const std::u16string longText(5000, u'x');
    EXPECT_EQ(Formatted(TEXT("%s"), longText.c_str()), std::u16string(1023, u'x'));
    EXPECT_EQ(Formatted(longText.c_str()), std::u16string(1023, u'x'));
    EXPECT_EQ(Formatted(TEXT("%99999d"), 1), std::u16string(1023, u' '));
    EXPECT_EQ(Formatted(TEXT("%S"), std::string(5000, 'y').c_str()), std::u16string(1023, u'y'));
}

} // namespace
