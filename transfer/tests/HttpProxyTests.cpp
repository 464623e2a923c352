// Asking through another server.
#include "platform/core/TestHooks.h"
#include "transfer/tests/HttpTesting.h"

using namespace tavrix::testing;
using tavrix::platform::SocketOperation;

namespace
{

i32 UseProxy(HttpClient& client, const HttpServer& proxy)
{
    return client.SetProxy(Wide(OwnAddress()).c_str(), proxy.Port());
}

} // namespace

TEST(HttpProxy, IsAskedForTheWholeAddress)
{
    HttpServer proxy({Good("body")}, 0);
    HttpClient client;
    ASSERT_EQ(1, UseProxy(client, proxy));
    EXPECT_EQ((Opened{1, 200}), OpenUrl(client, u"http://pictures.invalid:81/a?b"));
    EXPECT_EQ("GET http://pictures.invalid:81/a?b HTTP/1.0\nHost: pictures.invalid:81\n"
              "Range: bytes=0-\n\n",
              proxy.Request(0));
    EXPECT_EQ("body", ReadBody(client));
}

TEST(HttpProxy, IsAskedForAnyKindOfAddress)
{
    HttpServer proxy({Good("")}, 0);
    HttpClient client;
    ASSERT_EQ(1, UseProxy(client, proxy));
    EXPECT_EQ((Opened{1, 200}), OpenUrl(client, u"see FTP://host"));
    EXPECT_EQ("GET see FTP://host HTTP/1.0\nHost: host\nRange: bytes=0-\n\n", proxy.Request(0))
        << "the whole of it";
    EXPECT_EQ((Opened{1, 200}), OpenUrl(client, u"://h/http://x/"));
    EXPECT_EQ("GET ://h/http://x/ HTTP/1.0\nHost: h\nRange: bytes=0-\n\n", proxy.Request(1));
    EXPECT_EQ((Opened{-1, 77}), OpenUrl(client, u"http:/x"));
}

TEST(HttpProxy, AnsweringWithALocationIsFollowedThroughIt)
{
    HttpServer proxy({MovedTo("https://b.invalid/c"), Good("body")}, 0);
    HttpClient client;
    ASSERT_EQ(1, UseProxy(client, proxy));
    EXPECT_EQ((Opened{1, 200}), OpenUrl(client, u"http://a.invalid/"));
    EXPECT_EQ("GET https://b.invalid/c HTTP/1.0\nHost: b.invalid\nRange: bytes=0-\n\n",
              proxy.Request(1));
}

TEST(HttpProxy, SeekingAsksItToo)
{
    HttpServer proxy({Good("body")}, 0);
    HttpClient client;
    ASSERT_EQ(1, UseProxy(client, proxy));
    ASSERT_EQ((Opened{1, 200}), OpenUrl(client, u"http://a.invalid/x"));
    EXPECT_EQ(1, SeekTo(client, 34));
    EXPECT_EQ("GET http://a.invalid/x HTTP/1.0\nHost: a.invalid\nRange: bytes=3-\n\n",
              proxy.Request(1));
}

TEST(HttpProxy, GivenUpLeavesNoServerToSeekOnAlsoWhereOneWasAskedBefore)
{
    HttpServer before({Good("before")});
    HttpServer proxy({Good("body")}, 0);
    HttpClient client;
    ASSERT_EQ((Opened{1, 200}), OpenUrl(client, UrlOf("/x")));
    ASSERT_EQ(1, UseProxy(client, proxy));
    ASSERT_EQ((Opened{1, 200}), OpenUrl(client, u"http://a.invalid/x"));
    ASSERT_EQ(1, client.ClearProxy());
    EXPECT_EQ(-1, SeekTo(client, 0));
    EXPECT_EQ(1, before.Count());
    EXPECT_EQ(1, proxy.Count());
}

TEST(HttpProxy, StaysWithTheClient)
{
    HttpServer proxy({Good("body")}, 0);
    HttpClient client;
    ASSERT_EQ(1, UseProxy(client, proxy));
    EXPECT_EQ(1, client.Reset());
    EXPECT_EQ((Opened{1, 200}), OpenUrl(client, u"http://a.invalid/x"));
    EXPECT_EQ((Opened{1, 200}), OpenUrl(client, u"http://b.invalid/x"));
    EXPECT_EQ(2, proxy.Count());
}

TEST(HttpProxy, MayBeANameAndAPortOfMoreBits)
{
    HttpServer proxy({Good("body")}, 0);
    HttpClient client;
    const std::u16string name = Wide(std::to_string(OwnAddressNumber()));
    ASSERT_EQ(1, client.SetProxy(name.c_str(), 0x50000 + proxy.Port()));
    EXPECT_EQ((Opened{1, 200}), OpenUrl(client, u"http://a.invalid/x"));
}

TEST(HttpProxy, NullIsRefusedAndANameForNothingLeavesNone)
{
    const Scope scope;
    HttpClient client;
    EXPECT_EQ(-4, client.SetProxy(nullptr, 80));
    EXPECT_EQ(0, client.ClearProxy());
    ASSERT_EQ(1, client.SetProxy(u"127.0.0.1", 80));
    EXPECT_EQ(-4, client.SetProxy(nullptr, 80));
    SetSocketFault(
        [](SocketOperation operation, int*) { return operation == SocketOperation::Resolve; });
    EXPECT_EQ(-1, client.SetProxy(u"nowhere.invalid", 80));
    EXPECT_EQ(0, client.ClearProxy()) << "the one before is gone";
}

TEST(HttpProxy, CanBeLeft)
{
    HttpServer server({Good("direct")});
    HttpClient client;
    ASSERT_EQ(1, client.SetProxy(u"127.0.0.1", 1));
    EXPECT_EQ(1, client.ClearProxy());
    EXPECT_EQ(0, client.ClearProxy());
    EXPECT_EQ((Opened{1, 200}), OpenUrl(client, UrlOf("/a")));
    EXPECT_EQ("direct", ReadBody(client));
}

TEST(HttpProxy, LeavingItWhileOpenMakesThePathASlash)
{
    HttpServer server({Good("body")});
    HttpClient client;
    ASSERT_EQ((Opened{1, 200}), OpenUrl(client, UrlOf("/a/b")));
    ASSERT_EQ(1, client.SetProxy(u"127.0.0.1", 1));
    EXPECT_EQ(1, client.ClearProxy());
    EXPECT_EQ(1, SeekTo(client, 2));
    EXPECT_EQ("GET / HTTP/1.0\nHost: " + OwnAddress() + "\nRange: bytes=2-\n\n", server.Request(1));
    // And now it has none behind its first characters.
    ASSERT_EQ(1, client.SetProxy(u"127.0.0.1", 1));
    EXPECT_EQ(1, client.ClearProxy());
    EXPECT_EQ(1, SeekTo(client, 2));
    EXPECT_EQ(server.Request(1), server.Request(2));
}

TEST(HttpProxy, AnotherProxyWhileOpenLeavesTheOneBefore)
{
    HttpServer server({Good("body")});
    HttpServer proxy({Good("body")}, 0);
    HttpClient client;
    ASSERT_EQ((Opened{1, 200}), OpenUrl(client, UrlOf("/a/b")));
    ASSERT_EQ(1, client.SetProxy(u"127.0.0.1", 1));
    ASSERT_EQ(1, UseProxy(client, proxy));
    EXPECT_EQ(1, SeekTo(client, 0));
    EXPECT_EQ("GET / HTTP/1.0\nHost: " + OwnAddress() + "\nRange: bytes=0-\n\n", proxy.Request(0));
}

TEST(HttpProxy, LeavingItKeepsAPathWithoutASlashAndThatOfAClosedClient)
{
    HttpServer server({Good("body")});
    HttpClient client;
    ASSERT_EQ((Opened{1, 200}), OpenUrl(client, UrlOf("")));
    ASSERT_EQ(1, client.SetProxy(u"127.0.0.1", 1));
    EXPECT_EQ(1, client.ClearProxy());
    EXPECT_EQ(1, SeekTo(client, 0));
    EXPECT_EQ(RequestFor(""), server.Request(1));

    ASSERT_EQ((Opened{1, 200}), OpenUrl(client, UrlOf("/a/b")));
    EXPECT_EQ(1, client.Close());
    ASSERT_EQ(1, client.SetProxy(u"127.0.0.1", 1));
    EXPECT_EQ(1, client.ClearProxy());
    WCHAR name[8];
    EXPECT_EQ(1, client.GetName(name, 8));
    EXPECT_EQ(std::u16string(u"b"), name);
}

TEST(HttpProxy, WithoutItThereIsNoAddressToAskAgain)
{
    HttpServer proxy({Good("body")}, 0);
    HttpClient client;
    ASSERT_EQ(1, UseProxy(client, proxy));
    ASSERT_EQ((Opened{1, 200}), OpenUrl(client, u"http://a.invalid/x"));
    EXPECT_EQ(1, client.ClearProxy());
    const Scope scope;
    int tries = 0;
    SetSocketFault([&](SocketOperation operation, int*) {
        tries += operation == SocketOperation::Connect;
        return false;
    });
    EXPECT_EQ(-1, client.Reconnect());
    EXPECT_EQ(0, tries);
    ExpectClosed(client);
}

TEST(HttpProxy, NobodyAtItsAddressFails)
{
    unsigned short port = 0;
    {
        HttpServer proxy({Good("")}, 0);
        port = proxy.Port();
    }
    HttpClient client;
    ASSERT_EQ(1, client.SetProxy(Wide(OwnAddress()).c_str(), port));
    EXPECT_EQ((Opened{-1, 77}), OpenUrl(client, u"http://a.invalid/x"));
    ExpectClosed(client);
}
