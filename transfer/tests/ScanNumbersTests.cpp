#include "transfer/ScanNumbers.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <memory>
#include <random>
#include <string>
#include <vector>

namespace
{

/// The number of fields, and the fields.
using Scanned = std::vector<i64>;

Scanned Filled(i32 count, const u32* fields)
{
    Scanned all = {count};
    for (i32 i = 0; i < count; ++i)
        all.push_back(fields[i]);
    return all;
}

Scanned Address(const std::string& text)
{
    // A block of just its size, so that a read beyond is seen.
    const auto cells = std::make_unique<WCHAR[]>(text.size() + 1);
    for (size_t i = 0; i < text.size(); ++i)
        cells[i] = static_cast<unsigned char>(text[i]);
    u32 fields[4] = {};
    const i32 count = ScanAddress(cells.get(), fields);
    return Filled(count, fields);
}

Scanned Status(const std::string& text)
{
    const auto cells = std::make_unique<char[]>(text.size() + 1);
    text.copy(cells.get(), text.size());
    u32 fields[3] = {};
    const i32 count = ScanStatusLine(cells.get(), fields);
    return Filled(count, fields);
}

} // namespace

TEST(ScanNumbers, ReadsAnAddressAndNothingBehindIt)
{
    EXPECT_EQ(Scanned({4, 127, 0, 0, 1}), Address("127.0.0.1"));
    EXPECT_EQ(Scanned({4, 10, 20, 30, 40}), Address("10.20.30.40:8080"));
    EXPECT_EQ(Scanned({4, 1, 2, 3, 4}), Address("1.2.3.4.example.com"));
    EXPECT_EQ(Scanned({4, 256, 1000, 0, 4294967295}), Address("256.1000.00.4294967295"));
}

TEST(ScanNumbers, TellsHowManyFieldsThereWere)
{
    EXPECT_EQ(Scanned({-1}), Address(""));
    EXPECT_EQ(Scanned({-1}), Address(" \t\n\v\f\r"));
    EXPECT_EQ(Scanned({0}), Address("example.com"));
    EXPECT_EQ(Scanned({0}), Address("."));
    EXPECT_EQ(Scanned({1, 1}), Address("1"));
    EXPECT_EQ(Scanned({1, 1}), Address("1."));
    EXPECT_EQ(Scanned({1, 1}), Address("1 .2.3.4"));
    EXPECT_EQ(Scanned({2, 1, 2}), Address("1.2..4"));
    EXPECT_EQ(Scanned({3, 1, 2, 3}), Address("1.2.3.x"));
    EXPECT_EQ(Scanned({3, 1, 2, 3}), Address("1.2.3-4"));
}

TEST(ScanNumbers, SpaceInFrontOfANumberAndASignAreAllowed)
{
    EXPECT_EQ(Scanned({4, 1, 2, 3, 4}), Address(" 1.\t2.\n3.\v\f\r4"));
    EXPECT_EQ(Scanned({4, 1, 2, 3, 4}), Address("+1.+2. +3.+4"));
    EXPECT_EQ(Scanned({4, 4294967295, 0, 4294967294, 4}), Address("-1.-0.-2.4"));
    EXPECT_EQ(Scanned({0}), Address("--1.2.3.4"));
    EXPECT_EQ(Scanned({0}), Address("+-1.2.3.4"));
    EXPECT_EQ(Scanned({0}), Address("- 1.2.3.4"));
    EXPECT_EQ(Scanned({0}), Address("-"));
    EXPECT_EQ(Scanned({1, 1}), Address("1.-"));
}

TEST(ScanNumbers, ANumberIsTakenModulo32Bits)
{
    EXPECT_EQ(Scanned({4, 0, 1, 4294967295, 0}),
              Address("4294967296.4294967297.8589934591.18446744073709551616"));
    EXPECT_EQ(Scanned({1, 4294967295}), Address("-4294967297"));
}

TEST(ScanNumbers, ReadsAStatusLine)
{
    EXPECT_EQ(Scanned({3, 1, 0, 200}), Status("HTTP/1.0 200 OK"));
    EXPECT_EQ(Scanned({3, 1, 1, 404}), Status("HTTP/1.1 404"));
    EXPECT_EQ(Scanned({3, 1, 1, 200}), Status("HTTP/1.1+200")) << "no space is needed";
    EXPECT_EQ(Scanned({2, 1, 1200}), Status("HTTP/1.1200"));
    EXPECT_EQ(Scanned({3, 1, 1, 0}), Status("HTTP/ 1. 1 \t +0x"));
    EXPECT_EQ(Scanned({2, 1, 1}), Status("HTTP/1.1"));
    EXPECT_EQ(Scanned({2, 1, 1}), Status("HTTP/1.1 OK"));
    EXPECT_EQ(Scanned({1, 2}), Status("HTTP/2 200"));
    EXPECT_EQ(Scanned({1, 1}), Status("HTTP/1."));
}

TEST(ScanNumbers, ALineThatEndsBeforeItsFirstNumberIsNoneAtAll)
{
    for (const char* line : {"", "H", "HT", "HTTP", "HTTP/", "HTTP/  "})
        EXPECT_EQ(Scanned({-1}), Status(line)) << line;
    for (const char* line :
         {"http/1.0 200", " HTTP/1.0 200", "HTTX", "HTTP/x", "ICY 200", "HTTP/-"})
        EXPECT_EQ(Scanned({0}), Status(line)) << line;
}

TEST(ScanNumbers, AgreesWithTheCLibraryOnGeneratedTexts)
{
    // Pieces of whole texts and what breaks them; numbers that fit a long of any size.
    const std::vector<std::string> pieces = {"HTTP/", "HTTP", "/",  ".", " ",   "\t",
                                             "+",     "-",    "1",  "0", "200", "42",
                                             "x",     "",     "\n", "H", "1.1", "."};
    std::mt19937 numbers(22);
    int whole = 0;
    for (int round = 0; round < 20000; ++round) {
        const char* const starts[] = {"", "HTTP/", "1.2.3.", "HTTP/1.0 "};
        std::string text = starts[round % 4];
        for (unsigned count = numbers() % 10; count > 0; --count)
            text += pieces[numbers() % pieces.size()];
        if (text.find_first_of("0123456789") + 9 < text.find_last_of("0123456789"))
            continue;

        unsigned fields[4] = {};
        i32 count = std::sscanf(text.c_str(), "%u.%u.%u.%u", &fields[0], &fields[1], &fields[2],
                                &fields[3]);
        EXPECT_EQ(Filled(count, fields), Address(text)) << text;
        whole += count == 4;
        count = std::sscanf(text.c_str(), "HTTP/%u.%u %u", &fields[0], &fields[1], &fields[2]);
        EXPECT_EQ(Filled(count, fields), Status(text)) << text;
        whole += count == 3;
    }
    EXPECT_GT(whole, 100) << "texts that are well formed are among them";
}
