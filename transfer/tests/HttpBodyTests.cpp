// The body as a stream.
#include "platform/core/TestHooks.h"
#include "transfer/tests/HttpTesting.h"

#include <atomic>
#include <thread>

using namespace tavrix::testing;
using tavrix::platform::SocketOperation;

namespace
{

std::string Pattern(size_t length)
{
    std::string bytes;
    for (size_t i = 0; i < length; ++i)
        bytes.push_back(static_cast<char>(i * 7 + i / 256));
    return bytes;
}

} // namespace

TEST(HttpBody, IsReadInAnyPortions)
{
    const std::string body = Pattern(5000);
    for (const u32 portion : {1u, 7u, 1000u, 5000u, 9000u}) {
        HttpServer server({Good(body)});
        HttpClient client;
        ASSERT_EQ((Opened{1, 200}), OpenUrl(client, UrlOf("/a")));
        std::string got;
        for (;;) {
            std::string piece(portion, '\0');
            u32 length = portion;
            ASSERT_EQ(1, client.Read(piece.data(), &length));
            got += piece.substr(0, length);
            if (length < portion)
                break;
        }
        EXPECT_EQ(body, got);
        char more = 0;
        u32 length = 1;
        EXPECT_EQ(1, client.Read(&more, &length)) << "the end stays the end";
        EXPECT_EQ(0u, length);
    }
}

TEST(HttpBody, AMegabyteComesWhole)
{
    const std::string body = Pattern(1 << 20);
    HttpServer server({Good(body)});
    HttpClient client;
    ASSERT_EQ((Opened{1, 200}), OpenUrl(client, UrlOf("/a")));
    EXPECT_TRUE(body == ReadBody(client));
    EXPECT_EQ(1 << 20, SizeTold(client));
}

TEST(HttpBody, OneReadWaitsForAllThatIsWanted)
{
    // Its second half is sent when the client has taken the first.
    const Scope scope;
    std::atomic<int> received{0};
    WireServer server(80, [&](Connection& connection, int) {
        const std::string head = "HTTP/1.0 200 OK\r\n\r\n";
        connection.ReadUntil("\n\n");
        connection.Write(head + "first ");
        while (received < static_cast<int>(head.size()) + 2 && connection.Pause(1)) {
        }
        connection.Write("second");
        connection.EndWriting();
        connection.ReadAll();
    });
    SetSocketFault([&](SocketOperation operation, int*) {
        received += operation == SocketOperation::Receive;
        return false;
    });
    HttpClient client;
    ASSERT_EQ((Opened{1, 200}), OpenUrl(client, UrlOf("/a")));
    char bytes[12];
    u32 length = 12;
    EXPECT_EQ(1, client.Read(bytes, &length));
    EXPECT_EQ("first second", std::string(bytes, length));
}

TEST(HttpBody, MayComeAByteAtATimeHeadAndAll)
{
    WireServer server(80, [](Connection& connection, int) {
        connection.ReadUntil("\n\n");
        for (const char byte : Good("slow body"))
            connection.Write(std::string(1, byte));
        connection.EndWriting();
        connection.ReadAll();
    });
    HttpClient client;
    ASSERT_EQ((Opened{1, 200}), OpenUrl(client, UrlOf("/a")));
    EXPECT_EQ("slow body", ReadBody(client));
}

TEST(HttpBody, GoesStraightIntoTheCallersBuffer)
{
    const Scope scope;
    HttpServer server({Good(Pattern(3000))});
    HttpClient client;
    std::vector<int> asked;
    SetSocketFault([&](SocketOperation operation, int* length) {
        if (operation == SocketOperation::Receive) {
            asked.push_back(*length);
            *length = std::min(*length, 1000);
        }
        return false;
    });
    ASSERT_EQ((Opened{1, 200}), OpenUrl(client, UrlOf("/a")));
    EXPECT_EQ(std::vector<int>(Good(Pattern(3000)).size() - 3000, 1), asked)
        << "the head a byte at a time, and none of the body with it";
    asked.clear();
    std::string body(5000, '\0');
    u32 length = 5000;
    EXPECT_EQ(1, client.Read(body.data(), &length));
    EXPECT_EQ(Pattern(3000), body.substr(0, length));
    ASSERT_LE(4u, asked.size());
    EXPECT_EQ(5000, asked.front());
    EXPECT_EQ(2000, asked.back());
}

TEST(HttpBody, ReadingNothingWaitsForNothing)
{
    WireServer server(80, [](Connection& connection, int) {
        connection.ReadUntil("\n\n");
        connection.Write("HTTP/1.0 200 OK\r\n\r\n");
        connection.ReadAll();
    });
    HttpClient client;
    ASSERT_EQ((Opened{1, 200}), OpenUrl(client, UrlOf("/a")));
    char byte = 'x';
    u32 length = 0;
    EXPECT_EQ(1, client.Read(&byte, &length));
    EXPECT_EQ(0u, length);
    EXPECT_EQ('x', byte);
}

TEST(HttpBody, TheToldLengthDoesNotLimitIt)
{
    HttpServer server({"HTTP/1.0 200 OK\r\nContent-Length: 3\r\n\r\nlonger",
                       "HTTP/1.0 200 OK\r\nContent-Length: 30\r\n\r\nshorter"});
    HttpClient client;
    ASSERT_EQ((Opened{1, 200}), OpenUrl(client, UrlOf("/a")));
    EXPECT_EQ(3, SizeTold(client));
    EXPECT_EQ("longer", ReadBody(client));
    ASSERT_EQ((Opened{1, 200}), OpenUrl(client, UrlOf("/a")));
    EXPECT_EQ(30, SizeTold(client));
    EXPECT_EQ("shorter", ReadBody(client));
}

TEST(HttpBody, WhatIsWrittenReachesTheServer)
{
    HttpServer server({Good("body")});
    HttpClient client;
    ASSERT_EQ((Opened{1, 200}), OpenUrl(client, UrlOf("/a")));
    u32 length = 5;
    EXPECT_EQ(1, client.Write("hello", &length));
    EXPECT_EQ(5u, length);
    EXPECT_EQ("body", ReadBody(client));
    EXPECT_EQ(1, client.Close());
    server.AwaitEnd(0);
    EXPECT_EQ(RequestFor("/a") + "hello", server.Request(0));
}

TEST(HttpBody, ReadingAndWritingBothMoveThePosition)
{
    HttpServer server({Good("0123456789"), "HTTP/1.0 206 OK\r\nContent-Length: 100\r\n\r\n"});
    HttpClient client;
    ASSERT_EQ((Opened{1, 200}), OpenUrl(client, UrlOf("/a")));
    char bytes[4];
    u32 length = 4;
    EXPECT_EQ(1, client.Read(bytes, &length));
    length = 3;
    EXPECT_EQ(1, client.Write("abc", &length));
    EXPECT_EQ(10, SizeTold(client));
    EXPECT_EQ(1, SeekTo(client, 0, 1));
    EXPECT_EQ(107, SizeTold(client)) << "what is left is counted from there";
}

TEST(HttpBody, AThreadMayWriteWhileAnotherReads)
{
    // The server gives back what it gets, so that neither can be done before the other.
    constexpr u32 Total = 1 << 18;
    WireServer server(80, [](Connection& connection, int number) {
        connection.ReadUntil("\n\n");
        connection.Write("HTTP/1.0 200 OK\r\nContent-Length: 1\r\n\r\n");
        for (u32 passed = 0; number == 0 && passed < Total;) {
            const std::string bytes = connection.Read(4096);
            if (bytes.empty())
                return;
            connection.Write(bytes);
            passed += static_cast<u32>(bytes.size());
        }
        connection.EndWriting();
        connection.ReadAll();
    });
    HttpClient client;
    ASSERT_EQ((Opened{1, 200}), OpenUrl(client, UrlOf("/a")));
    const std::string sent = Pattern(Total);
    std::thread writer([&] {
        for (u32 at = 0; at < Total; at += 1024) {
            u32 length = 1024;
            EXPECT_EQ(1, client.Write(sent.data() + at, &length));
        }
    });
    std::string got(Total, '\0');
    u32 length = 0;
    for (u32 at = 0; at < Total; at += length) {
        length = 1000 < Total - at ? 1000 : Total - at;
        ASSERT_EQ(1, client.Read(got.data() + at, &length));
        ASSERT_LT(0u, length);
    }
    writer.join();
    EXPECT_TRUE(sent == got);
    EXPECT_EQ(1, SeekTo(client, 0, 1));
    EXPECT_EQ(2 * Total + 1, SizeTold(client)) << "no step of either was lost";
}

TEST(HttpBody, PluginsReadItThroughARecord)
{
    HttpServer server({Good("body")});
    HttpClient client;
    ASSERT_EQ((Opened{1, 200}), OpenUrl(client, UrlOf("/a")));
    PluginStreamRecord record = {};
    EXPECT_EQ(-98, client.GetInterface(&record));
    record.size = sizeof(record);
    ASSERT_EQ(1, client.GetInterface(&record));
    uint64_t size = 0;
    EXPECT_EQ(1, record.getSize(record.handle, &size));
    EXPECT_EQ(4u, size);
    char bytes[8];
    u32 length = 8;
    EXPECT_EQ(1, record.read(record.handle, bytes, &length));
    EXPECT_EQ("body", std::string(bytes, length));
    EXPECT_EQ(1, client.Release());
}
