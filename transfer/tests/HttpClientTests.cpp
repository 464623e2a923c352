// What a client tells of itself, open and closed.
#include "transfer/tests/HttpTesting.h"

using namespace tavrix::testing;

TEST(HttpClient, TheSizeIsWhatTheServerTellsInDigits)
{
    const struct {
        const char* header;
        i64 size;
    } cases[] = {{"Content-Length: 12", 12},
                 {"Content-Length:    012", 12},
                 {"Content-Length:", 0},
                 {"Content-Length: 12 ", -1},
                 {"Content-Length:\t12", -1},
                 {"Content-Length: -12", -1},
                 {"Content-Length: +12", -1},
                 {"Content-Length: 12.0", -1},
                 {"Content-Length: twelve", -1},
                 {"content-length: 12", -1},
                 {"Content-length: 12", -1},
                 {"Content-Length : 12", -1},
                 {"Content-Length: 4294967295", 4294967295},
                 {"Content-Length: 4294967296", 4294967295},
                 {"Content-Length: 9999999999999", 4294967295},
                 {"Content-Length: 5\r\nContent-Length: 6", 6},
                 {"Content-Length: 5\r\nContent-Length: x", -1},
                 {"Other: 12", -1}};
    std::vector<std::string> answers;
    for (const auto& one : cases)
        answers.push_back("HTTP/1.0 200 OK\r\n" + std::string(one.header) + "\r\n\r\n");
    HttpServer server(answers);
    HttpClient client;
    for (const auto& one : cases) {
        ASSERT_EQ((Opened{1, 200}), OpenUrl(client, UrlOf("/a")));
        EXPECT_EQ(one.size, SizeTold(client)) << one.header;
    }
}

TEST(HttpClient, HeadersCanBeAskedForWhileOpen)
{
    HttpServer server({"HTTP/1.0 200 OK\r\nContent-Type: image/png\r\nAge: 12\r\n\r\n"});
    HttpClient client;
    Variant query{u"Content-Type", VariantWide, 0};
    EXPECT_EQ(-1, client.GetHeader(&query));
    ASSERT_EQ((Opened{1, 200}), OpenUrl(client, UrlOf("/a")));
    ASSERT_EQ(1, client.GetHeader(&query));
    EXPECT_EQ("image/png", Utf8(reinterpret_cast<const WCHAR*>(query.value)));
    query = {u"Age", VariantUnsigned, 0};
    ASSERT_EQ(1, client.GetHeader(&query));
    EXPECT_EQ(12u, query.value);
    query = {u"age", VariantUnsigned, 0};
    EXPECT_EQ(-10, client.GetHeader(&query));
    EXPECT_EQ(-4, client.GetHeader(nullptr));
    EXPECT_EQ(1, client.Close());
    query = {u"Age", VariantUnsigned, 0};
    EXPECT_EQ(-1, client.GetHeader(&query));
}

TEST(HttpClient, TheNameIsWhatFollowsTheLastSlash)
{
    const struct {
        const char* rest;
        const char* name; // null for the host
    } cases[] = {{"/dir/a.png", "a.png"},
                 {"/a.png?x=1&y", "a.png"},
                 {"/a?b/c.png?d", "c.png"},
                 {"/dir/", ""},
                 {"/?x", ""},
                 {"", nullptr}};
    HttpServer server({Good("")});
    HttpClient client;
    WCHAR name[32] = {u'?', 0};
    EXPECT_EQ(-1, client.GetName(name, 32)) << "there is no address yet";
    EXPECT_EQ(-4, client.GetName(nullptr, 32));
    EXPECT_EQ(-4, client.GetName(name, 0));
    for (const auto& one : cases) {
        ASSERT_EQ((Opened{1, 200}), OpenUrl(client, UrlOf(one.rest)));
        EXPECT_EQ(1, client.GetName(name, 32));
        EXPECT_EQ(one.name != nullptr ? one.name : OwnAddress(), Utf8(name)) << one.rest;
    }
    ASSERT_EQ((Opened{1, 200}), OpenUrl(client, UrlOf("/abcdef")));
    EXPECT_EQ(0, client.GetName(name, 4));
    EXPECT_EQ("abc", Utf8(name));
    EXPECT_EQ(1, client.Close());
    EXPECT_EQ(1, client.GetName(name, 32)) << "and stays after the end";
    EXPECT_EQ("abcdef", Utf8(name));
}

TEST(HttpClient, AClientThatIsNotOpenHasNothing)
{
    HttpClient client;
    ExpectClosed(client);
    EXPECT_EQ(std::u16string(), client.GetUrl());
    EXPECT_EQ(1, client.Reset());
    EXPECT_EQ(1, client.Close());
    ExpectClosed(client);
}

TEST(HttpClient, NullIsRefusedOpenOrNot)
{
    HttpServer server({Good("body")});
    HttpClient client;
    for (int round = 0; round < 2; ++round) {
        u32 length = 4;
        char byte = 0;
        EXPECT_EQ(-4, client.Read(&byte, nullptr));
        EXPECT_EQ(-4, client.Read(nullptr, &length));
        EXPECT_EQ(-4, client.Write(&byte, nullptr));
        EXPECT_EQ(-4, client.Write(nullptr, &length));
        EXPECT_EQ(4u, length);
        EXPECT_EQ(-4, client.GetSize(nullptr));
        EXPECT_EQ(-4, client.Seek(nullptr, nullptr, 0));
        const Opened opened = OpenUrl(client, UrlOf("/"));
        EXPECT_EQ((Opened{1, 200}), opened);
    }
    EXPECT_EQ("body", ReadBody(client));
}

TEST(HttpClient, CloseEndsTheConnection)
{
    HttpServer server({Good("body")});
    HttpClient client;
    ASSERT_EQ((Opened{1, 200}), OpenUrl(client, UrlOf("/a")));
    EXPECT_EQ(1, client.Close());
    server.AwaitEnd(0);
    ExpectClosed(client);
    EXPECT_EQ(UrlOf("/a"), client.GetUrl()) << "the address stays";
}

TEST(HttpClient, TheEndOfTheClientEndsTheConnection)
{
    HttpServer server({Good("body")});
    {
        HttpClient client;
        ASSERT_EQ((Opened{1, 200}), OpenUrl(client, UrlOf("/a")));
    }
    server.AwaitEnd(0);
}
