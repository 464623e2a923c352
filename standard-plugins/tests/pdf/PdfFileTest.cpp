// The writer of objects, byte by byte: numbers, texts, the table at the end.

#include "standard-plugins/common/pdf/PdfFile.h"
#include "platform/testing/Faults.h"
#include "standard-plugins/common/PluginResult.h"
#include "standard-plugins/common/pdf/PdfImageRows.h"

#include <gtest/gtest.h>

#include <string>

namespace
{

/// Takes everything, or nothing from a number of bytes on.
struct Sink {
    std::string bytes;
    size_t room = ~size_t{0};
    int refused = 0;

    ByteSink Get()
    {
        return {this, [](void* self, const void* data, uint32_t count) {
                    auto* sink = static_cast<Sink*>(self);
                    if (sink->bytes.size() + count > sink->room) {
                        ++sink->refused;
                        return false;
                    }
                    sink->bytes.append(static_cast<const char*>(data), count);
                    return true;
                }};
    }
};

constexpr char head[] = "%PDF-1.4\n%\xE2\xE3\xCF\xD3\n"; // 15 bytes

class Written : public testing::Test
{
protected:
    Written() { StartPdf(&file, sink.Get()); }
    /// What was written since the last call.
    std::string Taken()
    {
        std::string taken = sink.bytes.substr(seen);
        seen = sink.bytes.size();
        return taken;
    }
    Sink sink;
    PdfFile file;
    size_t seen = 15;
};

std::string Text(PdfFile* file, Sink* sink, const char16_t* text)
{
    const size_t before = sink->bytes.size();
    PutString(file, text);
    return sink->bytes.substr(before);
}

} // namespace

TEST_F(Written, BeginsWithItsVersionAndBytesBeyondAscii)
{
    EXPECT_EQ(sink.bytes, head);
    EXPECT_EQ(file.length, 15u);
}

TEST_F(Written, NumbersHaveNoSignsPointsOrZerosInFront)
{
    for (const uint64_t number : {0ull, 7ull, 10ull, 65535ull, 9999999999ull})
        PutNumber(&file, number);
    EXPECT_EQ(Taken(), "0710655359999999999");
    PutDigits(&file, 42, 5);
    EXPECT_EQ(Taken(), "00042");
}

TEST_F(Written, LengthsAreInPointsWithTwoDecimals)
{
    struct {
        uint32_t hundredths;
        const char* text;
    } rows[] = {{0, "0.00"},
                {1, "0.01"},
                {99, "0.99"},
                {100, "1.00"},
                {59528, "595.28"},
                {1440000, "14400.00"},
                {100000000, "1000000.00"}};
    for (const auto& row : rows) {
        PutPoints(&file, row.hundredths);
        EXPECT_EQ(Taken(), row.text);
    }
}

TEST_F(Written, PlainTextStandsInParenthesesAndSavesItsOwn)
{
    EXPECT_EQ(Text(&file, &sink, u"boat.png"), "(boat.png)");
    EXPECT_EQ(Text(&file, &sink, u"a (b) \\ c"), "(a \\(b\\) \\\\ c)");
    EXPECT_EQ(Text(&file, &sink, u""), "()");
    EXPECT_EQ(Text(&file, &sink, u" ~"), "( ~)");
}

TEST_F(Written, OtherTextIsWrittenInTwoBytesACharacter)
{
    EXPECT_EQ(Text(&file, &sink, u"画"), "<FEFF753B>");
    EXPECT_EQ(Text(&file, &sink, u"é("), "<FEFF00E90028>");
    EXPECT_EQ(Text(&file, &sink, u"a\n"), "<FEFF0061000A>");
    EXPECT_EQ(Text(&file, &sink, u"\x7F"), "<FEFF007F>");
    EXPECT_EQ(Text(&file, &sink, u"\U0001F600"), "<FEFFD83DDE00>");
}

TEST_F(Written, HalfAPairBecomesTheMarkForWhatIsNoCharacter)
{
    const char16_t high[] = {0xD83D, u'x', 0};
    const char16_t low[] = {0xDE00, u'x', 0};
    const char16_t atEnd[] = {u'x', 0xD83D, 0};
    EXPECT_EQ(Text(&file, &sink, high), "<FEFFFFFD0078>");
    EXPECT_EQ(Text(&file, &sink, low), "<FEFFFFFD0078>");
    EXPECT_EQ(Text(&file, &sink, atEnd), "<FEFF0078FFFD>");
}

TEST_F(Written, TheTableTellsWhereEveryObjectBegins)
{
    BeginObject(&file, 2);
    PutText(&file, "(b)");
    EndObject(&file);
    BeginObject(&file, 1);
    PutText(&file, "(a)");
    EndObject(&file);
    (void)Taken();
    EXPECT_TRUE(FinishPdf(&file, 2, 1, 2));
    // 15 bytes, "2 0 obj\n" 8, "(b)" 3, "\nendobj\n" 8.
    EXPECT_EQ(Taken(), "xref\n0 3\n"
                       "0000000000 65535 f \n"
                       "0000000034 00000 n \n"
                       "0000000015 00000 n \n"
                       "trailer\n<< /Size 3 /Root 1 0 R /Info 2 0 R >>\n"
                       "startxref\n53\n%%EOF\n");
}

TEST_F(Written, OffsetsHaveTenDigits)
{
    file.length = 4294967296; // beyond what 32 bits hold
    BeginObject(&file, 1);
    EndObject(&file);
    file.length = 9999990000;
    BeginObject(&file, 2);
    EndObject(&file);
    EXPECT_TRUE(FinishPdf(&file, 2, 1, 2));
    const std::string end = Taken();
    EXPECT_NE(end.find("\n4294967296 00000 n \n9999990000 00000 n \n"), std::string::npos) << end;
    EXPECT_NE(end.find("startxref\n9999990016\n"), std::string::npos) << end;
}

TEST_F(Written, AFileBeyondTenDigitsFailsAndSaysWhy)
{
    file.length = 9999999990;
    PutText(&file, "123456789");
    EXPECT_FALSE(file.failed);
    PutText(&file, "x");
    EXPECT_TRUE(file.failed);
    EXPECT_TRUE(file.isTooLong);
    EXPECT_EQ(Taken(), "123456789");
    EXPECT_FALSE(FinishPdf(&file, 0, 1, 2));
}

TEST_F(Written, NothingIsWrittenBehindAFailure)
{
    sink.room = sink.bytes.size() + 3;
    PutText(&file, "abc");
    PutText(&file, "d");
    EXPECT_TRUE(file.failed);
    EXPECT_FALSE(file.isTooLong);
    sink.room = 1000;
    PutText(&file, "e");
    EXPECT_FALSE(FinishPdf(&file, 0, 1, 2));
    EXPECT_EQ(Taken(), "abc");
    EXPECT_EQ(sink.refused, 1);
}

TEST_F(Written, RowsAreDifferencesToTheLeftAndDeflated)
{
    PdfImageRows rows;
    ASSERT_EQ(OpenImageRows(&rows, &file, 3), PluginDone);
    const uint8_t first[] = {1, 2, 3, 11, 22, 33, 10, 0, 255};
    const uint8_t second[] = {255, 0, 128, 0, 0, 0, 0, 0, 0};
    EXPECT_TRUE(PutImageRow(&rows, first));
    EXPECT_TRUE(PutImageRow(&rows, second));
    EXPECT_TRUE(FinishImageRows(&rows));
    CloseImageRows(&rows);
    const std::string packed = Taken();
    uint8_t plain[64];
    uLongf length = sizeof plain;
    ASSERT_EQ(
        uncompress(plain, &length, reinterpret_cast<const Bytef*>(packed.data()), packed.size()),
        Z_OK);
    const std::vector<uint8_t> got(plain, plain + length);
    const std::vector<uint8_t> expected = {1, 1,   2, 3,   10, 20, 30,  255, 234, 222, //
                                           1, 255, 0, 128, 1,  0,  128, 0,   0,   0};
    EXPECT_EQ(got, expected);
}

TEST_F(Written, RowsThatNobodyTakesEndTheWork)
{
    PdfImageRows rows;
    ASSERT_EQ(OpenImageRows(&rows, &file, 1000), PluginDone);
    sink.room = sink.bytes.size();
    std::string noise(3000, '\0');
    uint32_t state = 1;
    int given = 0;
    for (; given < 100; ++given) {
        for (char& byte : noise)
            byte = static_cast<char>((state = state * 1103515245 + 12345) >> 16);
        if (!PutImageRow(&rows, reinterpret_cast<const uint8_t*>(noise.data())))
            break;
    }
    EXPECT_LT(given, 99);
    EXPECT_FALSE(FinishImageRows(&rows));
    CloseImageRows(&rows);
    EXPECT_EQ(sink.refused, 1);
}
