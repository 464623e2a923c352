#include "transfer/HttpRequest.h"

#include "platform/testing/Faults.h"
#include "transfer/HttpCredentials.h"

#include <gtest/gtest.h>

#include <string>

using namespace tavrix::testing;

namespace
{

std::string Formatted(const HttpRequestParts& parts)
{
    DualString text;
    EXPECT_EQ(1, FormatRequest(parts, text));
    return Utf8(text.Get());
}

std::string Credentials(const std::u16string& user, const std::u16string& password)
{
    WCHAR encoded[256];
    EXPECT_EQ(1, EncodeCredentials(user.c_str(), password.c_str(), encoded));
    return Utf8(encoded);
}

} // namespace

TEST(HttpRequest, HasItsLinesInOrder)
{
    EXPECT_EQ("GET http://h/p HTTP/1.0\nHost: h\nRange: bytes=12-\n\n",
              Formatted({u"http://h/p", u"h", u"12", u"", u""}));
    EXPECT_EQ("GET http://h/p HTTP/1.0\nHost: h:81\nRange: bytes=0-\nA: 1\nB: 2\n"
              "Authorization: Basic Og==\n\n",
              Formatted({u"http://h/p", u"h:81", u"0", u"A: 1\nB: 2\n", u"Og=="}));
}

TEST(HttpRequest, TakesTheRoomItNeeds)
{
    const std::u16string path(4095, u'p'), host(1023, u'h'), extra(100000, u'e'), secret(255, u's');
    DualString text;
    ASSERT_EQ(
        1, FormatRequest({path.c_str(), host.c_str(), u"0", extra.c_str(), secret.c_str()}, text));
    EXPECT_EQ(u"GET " + path + u" HTTP/1.0\nHost: " + host + u"\nRange: bytes=0-\n" + extra +
                  u"Authorization: Basic " + secret + u"\n\n",
              text.Get());
}

TEST(HttpRequest, ExtraLinesAreThoseWithAText)
{
    DualString text;
    text.Assign(u"before");
    EXPECT_EQ(1, FormatExtraHeaders(nullptr, text));
    EXPECT_EQ(std::u16string(), text.Get());
    PropertyList list;
    EXPECT_EQ(1, FormatExtraHeaders(&list, text));
    EXPECT_EQ(std::u16string(), text.Get());
    ASSERT_EQ(3, list.SetWide(u"B", u"x y"));
    ASSERT_EQ(3, list.SetEmpty(u"None"));
    ASSERT_EQ(3, list.SetWide(u"A", u""));
    ASSERT_EQ(3, list.SetUnsigned(u"N", 7));
    EXPECT_EQ(1, FormatExtraHeaders(&list, text));
    EXPECT_EQ(std::u16string(u"B: x y\nA: \nN: 7\n"), text.Get());
}

TEST(HttpRequest, AFullListGoesOutWhole)
{
    PropertyList list;
    std::u16string expected;
    for (int i = 0; i < 512; ++i) {
        const std::u16string name = Wide("H" + std::to_string(i));
        ASSERT_EQ(3, list.SetWide(name.c_str(), u"v"));
        expected += name + u": v\n";
    }
    DualString text;
    EXPECT_EQ(1, FormatExtraHeaders(&list, text));
    EXPECT_EQ(expected, text.Get());
}

TEST(HttpRequest, BytesAreAsManyAsUnitsAndNeverMoreThanThereAre)
{
    const Scope scope;
    DualString text;
    const char* bytes = nullptr;
    u32 count = 77;
    EXPECT_EQ(1, RequestBytes(text, &bytes, &count));
    EXPECT_EQ(0u, count);

    SetLanguage(1041);
    text.Assign(u"a\u65e5b\u672cc");
    EXPECT_EQ(1, RequestBytes(text, &bytes, &count));
    EXPECT_EQ("a\x93\xfa"
              "b\x96",
              std::string(bytes, count));

    // Two units that the code page has one byte for.
    text.Assign(u"a\U0001F600b");
    EXPECT_EQ(1, RequestBytes(text, &bytes, &count));
    EXPECT_LE(count, std::string(bytes).size());
    EXPECT_EQ('a', bytes[0]);
    EXPECT_EQ('b', bytes[count - 1]);
}

TEST(HttpRequest, SurvivesEveryShortageOfMemory)
{
    i32 result = 0;
    std::string sent;
    ForEveryFault(
        FaultKind::Allocation,
        [&] {
            PropertyList list;
            const bool isListed = list.SetWide(u"A", u"1") > 0 && list.Count() == 1;
            DualString extra, text;
            const char* bytes = nullptr;
            u32 count = 0;
            result = isListed ? FormatExtraHeaders(&list, extra) : -2;
            if (result > 0)
                result = FormatRequest({u"http://h/", u"h", u"0", extra.Get(), u""}, text);
            if (result > 0)
                result = RequestBytes(text, &bytes, &count);
            sent = result > 0 ? std::string(bytes, count) : "";
        },
        [&](bool fired) {
            EXPECT_TRUE(result == 1 || (fired && result == -2)) << result;
            // The list itself loses a text without a word.
            const std::string lost = "GET http://h/ HTTP/1.0\nHost: h\nRange: bytes=0-\n";
            EXPECT_TRUE(sent.empty() || sent == lost + "A: 1\n\n" || (fired && sent == lost + "\n"))
                << sent;
            EXPECT_EQ(result == 1, !sent.empty());
        });
}

TEST(HttpCredentials, AreNameAndPasswordInBase64)
{
    // RFC 2617 section 2.
    EXPECT_EQ("QWxhZGRpbjpvcGVuIHNlc2FtZQ==", Credentials(u"Aladdin", u"open sesame"));
    EXPECT_EQ("Og==", Credentials(u"", u""));
    EXPECT_EQ("YTo=", Credentials(u"a", u""));
    EXPECT_EQ("OmI=", Credentials(u"", u"b"));
}

TEST(HttpCredentials, AreInTheDevicesCodePage)
{
    const Scope scope;
    SetLanguage(1041);
    EXPECT_EQ("k/o6lns=", Credentials(u"\u65e5", u"\u672c"));
    SetLanguage(1033);
    EXPECT_EQ("6Tr8", Credentials(u"\u00e9", u"\u00fc"));
}

TEST(HttpCredentials, LongOnesAreBrokenIntoLines)
{
    // Three bytes of 'i' are four characters, "aWlp".
    std::string line;
    while (line.size() < 76)
        line += "aWlp";
    EXPECT_EQ(line.substr(8) + "aWk6", Credentials(std::u16string(53, u'i'), u""));
    EXPECT_EQ(line.substr(4) + "aTpp\r\n", Credentials(std::u16string(55, u'i'), u"i"));
}

TEST(HttpCredentials, WhatIsBeyond255CharactersIsLost)
{
    std::string line;
    while (line.size() < 76)
        line += "aWlp";
    std::string whole;
    for (int i = 0; i < 6; ++i)
        whole += line + "\r\n";
    // 255 units of the name are more than enough.
    EXPECT_EQ(whole.substr(0, 255), Credentials(std::u16string(255, u'i'), u"secret"));
    EXPECT_EQ(whole.substr(0, 255),
              Credentials(std::u16string(255, u'i'), std::u16string(255, u'j')));
}

TEST(HttpCredentials, SurviveEveryShortageOfMemory)
{
    i32 result = 0;
    std::string text;
    ForEveryFault(
        FaultKind::Allocation,
        [&] {
            WCHAR encoded[256] = {u'?'};
            result = EncodeCredentials(u"Aladdin", u"open sesame", encoded);
            text = result > 0 ? Utf8(encoded) : "";
        },
        [&](bool fired) {
            EXPECT_TRUE(result == 1 || (fired && result == -2)) << result;
            EXPECT_EQ(result == 1 ? "QWxhZGRpbjpvcGVuIHNlc2FtZQ==" : "", text);
        });
}
