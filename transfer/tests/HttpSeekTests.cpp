// Seeking, which asks the server again.
#include "transfer/tests/HttpTesting.h"

#include <limits>

using namespace tavrix::testing;

namespace
{

constexpr i64 Most = std::numeric_limits<i64>::max();
constexpr i64 Least = std::numeric_limits<i64>::min();

std::string Partial(unsigned length)
{
    return "HTTP/1.0 206 Part\r\nContent-Length: " + std::to_string(length) + "\r\n\r\n" +
           std::string(length < 1000 ? length : 0, 'p');
}

} // namespace

TEST(HttpSeek, AsksWithTheFirstDigitOfThePositionAlone)
{
    HttpServer server({Good("body"), Partial(10)});
    HttpClient client;
    ASSERT_EQ((Opened{1, 200}), OpenUrl(client, UrlOf("/a")));
    EXPECT_EQ(1, SeekTo(client, 12345));
    EXPECT_EQ("GET http://" + OwnAddress() + "/a HTTP/1.0\nHost: " + OwnAddress() +
                  "\nRange: bytes=1-\n\n",
              server.Request(1));
    EXPECT_EQ(12345 + 10, SizeTold(client)) << "the position itself is kept";
    EXPECT_EQ("pppppppppp", ReadBody(client));
}

TEST(HttpSeek, KeepsTheExtraLines)
{
    HttpServer server({Good("body")});
    PropertyList extra;
    ASSERT_EQ(3, extra.SetWide(u"Referer", u"http://x/"));
    HttpClient client;
    ASSERT_EQ((Opened{1, 200}), OpenUrl(client, UrlOf("/a"), &extra));
    EXPECT_EQ(1, extra.Clear());
    EXPECT_EQ(1, SeekTo(client, 0));
    EXPECT_EQ(RequestFor("/a", "0", "Referer: http://x/\n"), server.Request(1));
}

TEST(HttpSeek, EveryOriginMovesThePosition)
{
    // The client has read 4 of 100 bytes. Afterwards 1000 bytes more are told.
    const struct {
        i64 offset;
        u32 origin;
        const char* digit;
        i64 position;
    } cases[] = {{0, 0, "0", 0},
                 {7, 0, "7", 7},
                 {98, 0, "9", 98},
                 {500, 0, "5", 500},
                 {-1, 0, "0", 0},
                 {Least, 0, "0", 0},
                 {0, 1, "4", 4},
                 {20, 1, "2", 24},
                 {-3, 1, "1", 1},
                 {-4, 1, "0", 0},
                 {-5, 1, "0", 0},
                 {Least, 1, "0", 0},
                 {0, 2, "9", 99},
                 {-10, 2, "8", 89},
                 {-99, 2, "0", 0},
                 {-100, 2, "0", 0},
                 {Least, 2, "0", 0},
                 {5, 2, "1", 104},
                 {33, 3, "4", 4},
                 {33, 0xFFFFFFFF, "4", 4},
                 {0x100000000, 0, "0", 0x100000000},
                 {0x500000007, 0, "7", 0x500000007},
                 {0x0FFFFFFFF, 0, "4", 0xFFFFFFFF}};
    for (const auto& one : cases) {
        SCOPED_TRACE(::testing::Message() << one.offset << " from " << one.origin);
        HttpServer server({"HTTP/1.0 200 OK\r\nContent-Length: 100\r\n\r\nbody", Partial(1000)});
        HttpClient client;
        ASSERT_EQ((Opened{1, 200}), OpenUrl(client, UrlOf("/a")));
        EXPECT_EQ("body", ReadBody(client));
        u64 newPosition = 77;
        EXPECT_EQ(1, client.Seek(&one.offset, &newPosition, one.origin));
        EXPECT_EQ(77u, newPosition) << "it is never told";
        EXPECT_EQ(RequestFor("/a", one.digit), server.Request(1));
        EXPECT_EQ(one.position + 1000, SizeTold(client));
    }
}

TEST(HttpSeek, APositionStaysWithinItsBits)
{
    HttpServer server({Good("body"), Partial(1)});
    HttpClient client;
    ASSERT_EQ((Opened{1, 200}), OpenUrl(client, UrlOf("/a")));
    EXPECT_EQ(1, SeekTo(client, Most));
    EXPECT_EQ(RequestFor("/a", "4"), server.Request(1)) << "4294967295 in 32 bits";
    u64 size = 0;
    EXPECT_EQ(1, client.GetSize(&size));
    EXPECT_EQ(0x8000000000000000, size);
    EXPECT_EQ(1, SeekTo(client, Most - 1, 1));
    EXPECT_EQ(RequestFor("/a", "4"), server.Request(2)) << "4294967293";
    EXPECT_EQ(1, client.GetSize(&size));
    EXPECT_EQ(0xFFFFFFFFFFFFFFFE, size);
    // An end that would be beyond is none that is known.
    EXPECT_EQ(-1, SeekTo(client, Most, 1));
    EXPECT_EQ(-1, SizeTold(client));
    EXPECT_EQ("p", ReadBody(client)) << "but the client is open";
    EXPECT_EQ(-1, SeekTo(client, Most, 1));
    EXPECT_EQ(1, SeekTo(client, Least, 1));
    EXPECT_EQ(1, client.GetSize(&size));
    EXPECT_EQ(0x8000000000000000, size) << "2^64 - 1 - 2^63 + 1";
}

TEST(HttpSeek, FromAnUnknownEndNothingIsAsked)
{
    HttpServer server({"HTTP/1.0 200 OK\r\n\r\nbody"});
    HttpClient client;
    ASSERT_EQ((Opened{1, 200}), OpenUrl(client, UrlOf("/a")));
    EXPECT_EQ(-1, SeekTo(client, 0, 2));
    EXPECT_EQ("body", ReadBody(client));
    EXPECT_EQ(1, server.Count());
}

TEST(HttpSeek, AnEndThatIsUnknownAfterwardsFailsWithTheClientOpen)
{
    HttpServer server({Good("body"), "HTTP/1.0 206 Part\r\n\r\nrest"});
    HttpClient client;
    ASSERT_EQ((Opened{1, 200}), OpenUrl(client, UrlOf("/a")));
    EXPECT_EQ(-1, SeekTo(client, 2));
    EXPECT_EQ(-1, SizeTold(client));
    EXPECT_EQ("rest", ReadBody(client));
}

TEST(HttpSeek, AWholeAnswerIsTakenAsItComes)
{
    HttpServer server({Good("0123456789")});
    HttpClient client;
    ASSERT_EQ((Opened{1, 200}), OpenUrl(client, UrlOf("/a")));
    EXPECT_EQ(1, SeekTo(client, 5));
    EXPECT_EQ(15, SizeTold(client));
    EXPECT_EQ("0123456789", ReadBody(client));
}

TEST(HttpSeek, TheOldConnectionAndItsHeadersAreGone)
{
    HttpServer server({"HTTP/1.0 200 OK\r\nOld: 1\r\n\r\n", Partial(1)});
    HttpClient client;
    ASSERT_EQ((Opened{1, 200}), OpenUrl(client, UrlOf("/a")));
    EXPECT_EQ(1, SeekTo(client, 0));
    server.AwaitEnd(0);
    Variant query{u"Old", VariantWide, 0};
    EXPECT_EQ(-10, client.GetHeader(&query));
}

TEST(HttpSeek, ReconnectAsksFromWhereTheStreamIs)
{
    HttpServer server({Good("0123456789"), Partial(6)});
    HttpClient client;
    EXPECT_EQ(-1, client.Reconnect());
    ASSERT_EQ((Opened{1, 200}), OpenUrl(client, UrlOf("/a")));
    char bytes[4];
    u32 length = 4;
    ASSERT_EQ(1, client.Read(bytes, &length));
    EXPECT_EQ(1, client.Reconnect());
    EXPECT_EQ(RequestFor("/a", "4"), server.Request(1));
    EXPECT_EQ(10, SizeTold(client));
    EXPECT_EQ("pppppp", ReadBody(client));
}

TEST(HttpSeek, AnotherAnswerThanAGoodOneEndsTheClient)
{
    const std::string location = "Location: http://" + OwnAddress() + "/b\r\n";
    const struct {
        std::string answer;
        i32 reconnect, seek;
    } cases[] = {{"HTTP/1.0 404 No\r\nContent-Length: 5\r\n\r\n", 3, -1},
                 {"HTTP/1.0 302 Found\r\n" + location + "\r\n", 3, -1},
                 {"HTTP/1.0 401 No\r\nWWW-Authenticate: Basic realm=\"x\"\r\n\r\n", 3, -1},
                 {"HTTP/1.0 416 Range\r\n\r\n", 3, -1},
                 {"HTTP/1.0\r\n\r\n", 2, -1},
                 {"HTTP/1\r\n\r\n", 1, -1},
                 {"garbage\r\n\r\n", 0, -1},
                 {"", -1, -1}};
    for (const auto& one : cases) {
        SCOPED_TRACE(one.answer);
        for (const bool seeks : {false, true}) {
            HttpServer server({Good("body"), one.answer});
            HttpClient client;
            ASSERT_EQ(1, client.SetAuthCallback(
                             [](const WCHAR*, WCHAR*, WCHAR*, u32) -> i32 {
                                 ADD_FAILURE() << "nobody is asked for a password";
                                 return 0;
                             },
                             0));
            ASSERT_EQ((Opened{1, 200}), OpenUrl(client, UrlOf("/a")));
            EXPECT_EQ(seeks ? one.seek : one.reconnect,
                      seeks ? SeekTo(client, 1) : client.Reconnect());
            ExpectClosed(client);
            EXPECT_EQ(2, server.Count()) << "nobody is followed";
        }
    }
}

TEST(HttpSeek, AGoodAnswerWithALocationIsAGoodAnswer)
{
    HttpServer server({Good("body"), "HTTP/1.0 200 OK\r\nContent-Length: 4\r\nLocation: http://" +
                                         OwnAddress() + "/b\r\n\r\nrest"});
    HttpClient client;
    ASSERT_EQ((Opened{1, 200}), OpenUrl(client, UrlOf("/a")));
    EXPECT_EQ(1, SeekTo(client, 0));
    EXPECT_EQ("rest", ReadBody(client));
    EXPECT_EQ(UrlOf("/a"), client.GetUrl());
}

TEST(HttpSeek, AServerThatIsGoneEndsTheClient)
{
    HttpClient client;
    {
        HttpServer server({Good("body")});
        ASSERT_EQ((Opened{1, 200}), OpenUrl(client, UrlOf("/a")));
    }
    EXPECT_EQ(-1, SeekTo(client, 1));
    ExpectClosed(client);
}
