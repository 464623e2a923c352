#include "transfer/HttpHead.h"

#include "foundation/MemoryStream.h"
#include "foundation/tests/LineSources.h"
#include "platform/testing/Faults.h"

#include <gtest/gtest.h>

#include <map>
#include <string>
#include <vector>

using namespace tavrix::testing;

namespace
{

using Headers = std::vector<std::pair<std::string, std::string>>;

Headers AllOf(const PropertyList& list)
{
    Headers all;
    Variant entry{nullptr, VariantWide, 0};
    for (u32 i = 0; list.GetAt(i, &entry) > 0; ++i) {
        all.emplace_back(Utf8(entry.name), Utf8(reinterpret_cast<const WCHAR*>(entry.value)));
        entry.type = VariantWide;
    }
    return all;
}

struct Head {
    i32 result = 0;
    i32 fields = 0;
    u32 status = 0;
    Headers headers;
    std::string body;
};

Head HeadOf(std::string text)
{
    MemoryStream source;
    EXPECT_EQ(1, source.Open(text.data(), static_cast<u32>(text.size()), 1, nullptr));
    PropertyList headers;
    HttpHead head = {77, 77, 77};
    Head all;
    all.result = ReadHttpHead(&source, headers, head);
    all.fields = head.fields;
    all.status = head.status;
    all.headers = AllOf(headers);
    all.body = ReadText(source, static_cast<u32>(text.size()));
    return all;
}

} // namespace

TEST(HttpHead, ReadsStatusAndHeadersAndLeavesTheBody)
{
    const Head head = HeadOf("HTTP/1.0 200 OK\r\nContent-Type: image/png\r\nContent-Length: 4\r\n"
                             "\r\nbody");
    EXPECT_EQ(1, head.result);
    EXPECT_EQ(3, head.fields);
    EXPECT_EQ(200u, head.status);
    EXPECT_EQ((Headers{{"Content-Type", "image/png"}, {"Content-Length", "4"}}), head.headers);
    EXPECT_EQ("body", head.body);
}

TEST(HttpHead, LinesMayEndInABareLineFeed)
{
    const Head head = HeadOf("HTTP/1.1 206 Partial\nA: 1\nB: 2\r\n\n\nbody");
    EXPECT_EQ(206u, head.status);
    EXPECT_EQ((Headers{{"A", "1"}, {"B", "2"}}), head.headers);
    EXPECT_EQ("\nbody", head.body);
}

TEST(HttpHead, AStatusLineIsLookedAtUpTo64Bytes)
{
    const std::string line63 = "HTTP/1.0 200 " + std::string(50, 'x');
    Head head = HeadOf(line63 + "\nA: 1\n\nbody");
    EXPECT_EQ((Headers{{"A", "1"}}), head.headers);
    EXPECT_EQ("body", head.body);

    head = HeadOf(line63 + "y\nA: 1\n\nbody");
    EXPECT_EQ(200u, head.status);
    EXPECT_EQ(Headers(), head.headers) << "an empty line follows one of just 64 bytes";
    EXPECT_EQ("A: 1\n\nbody", head.body);

    head = HeadOf(line63 + "yz\nA: 1\n\nbody");
    EXPECT_EQ(200u, head.status);
    EXPECT_EQ(Headers(), head.headers) << "the rest is a header line without a colon";
    EXPECT_EQ("A: 1\n\nbody", head.body);

    head = HeadOf(line63 + "yB: 2\nA: 1\n\nbody");
    EXPECT_EQ((Headers{{"B", "2"}, {"A", "1"}}), head.headers);

    head = HeadOf("HTTP/1.0" + std::string(55, ' ') + "200\n\nbody");
    EXPECT_EQ(3, head.fields) << "one digit is in";
    EXPECT_EQ(2u, head.status);
    EXPECT_EQ("\nbody", head.body);
}

TEST(HttpHead, AStatusLineThatCannotBeReadTellsHowFar)
{
    const struct {
        const char* text;
        i32 fields;
    } cases[] = {{"", -1},        {"\r\n\r\n", -1},   {"\nA: 1\n\n", -1},
                 {"HT\n", -1},    {"garbage\n\n", 0}, {"HTTP/x.0 200\n\n", 0},
                 {"HTTP/1\n", 1}, {"HTTP/1.0\n", 2},  {"HTTP/1.0 OK\n", 2}};
    for (const auto& one : cases) {
        const Head head = HeadOf(one.text);
        EXPECT_EQ(1, head.result) << one.text;
        EXPECT_EQ(one.fields, head.fields) << one.text;
        EXPECT_EQ(0u, head.status) << one.text;
    }
}

TEST(HttpHead, AnUnreadableStatusLineIsFollowedByHeadersAllTheSame)
{
    const Head head = HeadOf("garbage\nLocation: http://x/\n\nbody");
    EXPECT_EQ(0, head.fields);
    EXPECT_EQ((Headers{{"Location", "http://x/"}}), head.headers);
}

TEST(HttpHead, AHeaderIsCutAtItsFirstColonAndLosesSpacesAlone)
{
    const Head head = HeadOf("HTTP/1.0 200\nA:1\nB:   2 \nC:\t3\nD : 4\n E: 5\nF: g:h\nG:\nH:  \n"
                             ": nameless\n\n");
    EXPECT_EQ((Headers{{"A", "1"},
                       {"B", "2 "},
                       {"C", "\t3"},
                       {"D ", "4"},
                       {" E", "5"},
                       {"F", "g:h"},
                       {"G", ""},
                       {"H", ""},
                       {"", "nameless"}}),
              head.headers);
}

TEST(HttpHead, NamesAreKeptAsSpelledAndTheLastOfOneNameCounts)
{
    const Head head = HeadOf("HTTP/1.0 200\nX: 1\nx: 2\nX: 3\n\n");
    EXPECT_EQ((Headers{{"X", "3"}, {"x", "2"}}), head.headers);
}

TEST(HttpHead, ALineWithoutAColonEndsTheHead)
{
    const Head head = HeadOf("HTTP/1.0 200\nA: 1\nnothing\nB: 2\n\nbody");
    EXPECT_EQ(1, head.result);
    EXPECT_EQ((Headers{{"A", "1"}}), head.headers);
    EXPECT_EQ("B: 2\n\nbody", head.body);
}

TEST(HttpHead, AZeroByteEndsALinesText)
{
    using namespace std::string_literals;
    Head head = HeadOf("HTTP/1.0 20\0000\nA: 1\0002\n\nbody"s);
    EXPECT_EQ(20u, head.status);
    EXPECT_EQ((Headers{{"A", "1"}}), head.headers);
    EXPECT_EQ("body", head.body);
    head = HeadOf("HTTP/1.0 200\nA\0: 1\nB: 2\n\nbody"s);
    EXPECT_EQ(Headers(), head.headers);
    EXPECT_EQ("B: 2\n\nbody", head.body);
}

TEST(HttpHead, AHeaderLineIsSplitAt1024Bytes)
{
    const std::string start = "A: ";
    // The rest without a colon ends the head, and stays out of the body.
    std::string value(1024 - start.size(), 'v');
    Head head = HeadOf("HTTP/1.0 200\n" + start + value + "tail\nB: 2\n\nbody");
    EXPECT_EQ((Headers{{"A", value}}), head.headers);
    EXPECT_EQ("B: 2\n\nbody", head.body);

    head = HeadOf("HTTP/1.0 200\n" + start + value + "T: tail\nB: 2\n\nbody");
    EXPECT_EQ((Headers{{"A", value}, {"T", "tail"}, {"B", "2"}}), head.headers);

    head = HeadOf("HTTP/1.0 200\n" + start + value + "\nB: 2\n\nbody");
    EXPECT_EQ((Headers{{"A", value}}), head.headers) << "an empty line follows";
    EXPECT_EQ("B: 2\n\nbody", head.body);

    value.pop_back();
    head = HeadOf("HTTP/1.0 200\n" + start + value + "\nB: 2\n\nbody");
    EXPECT_EQ((Headers{{"A", value}, {"B", "2"}}), head.headers);

    head = HeadOf("HTTP/1.0 200\n" + start + value + "\r\nB: 2\n\nbody");
    EXPECT_EQ((Headers{{"A", value + "\r"}}), head.headers) << "its line feed was not seen";
    EXPECT_EQ("B: 2\n\nbody", head.body);
}

TEST(HttpHead, ALineOf64KilobytesIsReadInPieces)
{
    // Every piece has its colon.
    std::string line;
    while (line.size() < 65536)
        line += "n" + std::to_string(line.size() / 1024) + ":" + std::string(1024, '.');
    line.resize(65536);
    const Head head = HeadOf("HTTP/1.0 200\n" + line + "\nbody");
    size_t pieces = 0;
    for (size_t at = 0; at < line.size(); at += 1024)
        pieces += line.substr(at, 1024).find(':') != std::string::npos;
    EXPECT_EQ(64u, pieces);
    EXPECT_EQ(1, head.result);
    EXPECT_EQ("body", head.body) << "the last piece is followed by an empty line";
    ASSERT_FALSE(head.headers.empty());
    EXPECT_EQ("n0", head.headers.front().first);
}

TEST(HttpHead, Of600HeadersTheListTakes512)
{
    std::string text = "HTTP/1.0 200\n";
    for (int i = 0; i < 600; ++i)
        text += "H" + std::to_string(i) + ": " + std::to_string(i * 3) + "\n";
    const Head head = HeadOf(text + "H511: again\n\nbody");
    EXPECT_EQ(1, head.result);
    ASSERT_EQ(512u, head.headers.size());
    EXPECT_EQ("H0", head.headers.front().first);
    EXPECT_EQ("H511", head.headers.back().first);
    EXPECT_EQ("again", head.headers.back().second) << "what is in the list can be replaced";
    EXPECT_EQ("body", head.body);
}

TEST(HttpHead, TextIsThatOfTheDevicesCodePage)
{
    const Scope scope;
    SetLanguage(1041);
    Head head = HeadOf("HTTP/1.0 200\nX: \x93\xfa\x96\x7b\n\n");
    EXPECT_EQ((Headers{{"X", "\u65e5\u672c"}}), head.headers);
    SetLanguage(1033);
    head = HeadOf("HTTP/1.0 200\nX: caf\xe9\n\n");
    EXPECT_EQ((Headers{{"X", "caf\u00e9"}}), head.headers);
}

TEST(HttpHead, AHeadCutAtAnyByteGivesWhatWasInIt)
{
    const std::string text = "HTTP/1.0 200 OK\r\nAb: 12\r\nC: 3\r\n\r\n";
    const size_t first = text.find("Ab"), second = text.find("C:");
    for (size_t cut = 0; cut <= text.size(); ++cut) {
        for (const End end : {End::Empty, End::Failure}) {
            TextStream source(text.substr(0, cut), end);
            PropertyList headers;
            HttpHead head = {77, 77, 77};
            EXPECT_EQ(1, ReadHttpHead(&source, headers, head)) << cut;
            EXPECT_EQ(cut < 6 ? -1 : cut < 8 ? 1 : cut < 10 ? 2 : 3, head.fields) << cut;
            const std::string digits =
                cut < 10 ? "0" : text.substr(9, std::min<size_t>(cut - 9, 3));
            EXPECT_EQ(std::stoul(digits), head.status) << cut;
            EXPECT_EQ(end == End::Failure && cut < text.size(), head.isBroken == 1) << cut;

            // A failure drops the line that it cuts; an end does not, and leaves its CR.
            Headers expected;
            const auto add = [&](size_t start, size_t colon, size_t feed) {
                if (cut > feed || (end == End::Empty && cut > colon)) {
                    const size_t value = std::min(colon + 2, cut);
                    const size_t stop = cut > feed ? feed - 1 : cut;
                    expected.emplace_back(text.substr(start, colon - start),
                                          text.substr(value, stop - value));
                }
            };
            add(first, first + 2, second - 1);
            add(second, second + 1, text.size() - 3);
            EXPECT_EQ(expected, AllOf(headers)) << cut;
        }
    }
}

TEST(HttpHead, AStreamThatFailedOnceIsNotReadOn)
{
    struct Stumbling final : public Stream {
        i32 Read(void* buffer, u32* length) override
        {
            if (++reads == failing)
                return Failed;
            *static_cast<char*>(buffer) = text[next++];
            *length = 1;
            return Done;
        }
        i32 GetName(WCHAR*, i32) override { return Failed; }
        i32 GetSize(u64*) override { return Failed; }
        i32 Seek(const i64*, u64*, u32) override { return Failed; }
        i32 Write(const void*, u32*) override { return Failed; }
        i32 Close() override { return Done; }

        const std::string text = "HTTP/1.0 200 :\nA: 1\nB: 2\n\n";
        size_t next = 0;
        int reads = 0, failing = 0;
    };
    for (const int failing : {1, 14, 15, 16, 21, 26}) {
        Stumbling source;
        source.failing = failing;
        PropertyList headers;
        HttpHead head = {77, 77, 77};
        EXPECT_EQ(1, ReadHttpHead(&source, headers, head));
        EXPECT_EQ(1, head.isBroken) << failing;
        EXPECT_EQ(failing, source.reads);
        EXPECT_EQ(failing > 20 ? 1 + (failing > 25) : 0, headers.Count()) << failing;
    }
}

TEST(HttpHead, TakesNoMoreThanAByteAtATime)
{
    TextStream source("HTTP/1.0 200\nA: 1\n\nbody", End::Empty);
    PropertyList headers;
    HttpHead head;
    EXPECT_EQ(1, ReadHttpHead(&source, headers, head));
    EXPECT_EQ(1u, source.asked);
    EXPECT_EQ(source.text.size() - 4, source.position);
}

TEST(HttpHead, TheListIsNotCleared)
{
    PropertyList headers;
    ASSERT_EQ(3, headers.SetWide(u"Old", u"1"));
    TextStream source("HTTP/1.0 200\nA: 1\n\n", End::Empty);
    HttpHead head;
    EXPECT_EQ(1, ReadHttpHead(&source, headers, head));
    EXPECT_EQ((Headers{{"Old", "1"}, {"A", "1"}}), AllOf(headers));
}

TEST(HttpHead, HeaderLinesTellALineWithoutAColon)
{
    const struct {
        const char* text;
        End end;
        i32 result;
    } cases[] = {{"A: 1\n\n", End::Empty, 1},
                 {"A: 1\n", End::Empty, 1},
                 {"A: 1\nx\n", End::Empty, -1},
                 {"A: 1\n", End::Failure, -1},
                 {"A: 1\nB: 2", End::Failure, -1}};
    for (const auto& one : cases) {
        TextStream source(one.text, one.end);
        LineReader reader(nullptr, 7);
        ASSERT_EQ(1, reader.Attach(&source));
        PropertyList headers;
        EXPECT_EQ(one.result, ReadHeaderLines(reader, headers)) << one.text;
        EXPECT_EQ((Headers{{"A", "1"}}), AllOf(headers)) << one.text;
    }
}

TEST(HttpHead, SurvivesEveryShortageOfMemory)
{
    i32 result = 0;
    HttpHead head = {};
    const std::map<std::string, std::string> sent = {{"A", "1"}, {"Location", "http://x/"}};
    ForEveryFault(
        FaultKind::Allocation,
        [&] {
            char text[] = "HTTP/1.0 302\nA: 1\nLocation: http://x/\n\nbody";
            MemoryStream source;
            ASSERT_EQ(1, source.Open(text, sizeof(text) - 1, 1, nullptr));
            PropertyList headers;
            result = ReadHttpHead(&source, headers, head);
            // Nothing is there under a wrong name or with a wrong value.
            const WCHAR* value = nullptr;
            i32 index = 0;
            EXPECT_LT(headers.Find(u"", &index), 1);
            for (const auto& [name, expected] : sent) {
                const bool isThere = headers.GetWide(Wide(name).c_str(), &value) > 0;
                EXPECT_EQ(expected, isThere ? Utf8(value) : expected);
            }
        },
        [&](bool fired) {
            EXPECT_TRUE(result == -2 || result == 1) << result;
            EXPECT_TRUE(fired || result == 1);
            EXPECT_TRUE(result != 1 || head.status == 302) << head.status;
        });
}
