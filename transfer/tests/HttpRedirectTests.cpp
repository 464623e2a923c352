// Locations, and where they lead.
#include "transfer/tests/HttpTesting.h"

using namespace tavrix::testing;

TEST(HttpRedirect, ARedirectIsFollowed)
{
    HttpServer server({MovedTo("http://" + OwnAddress() + "/b/c.png"), Good("body")});
    PropertyList extra;
    ASSERT_EQ(3, extra.SetWide(u"X", u"1"));
    HttpClient client;
    EXPECT_EQ((Opened{1, 200}), OpenUrl(client, UrlOf("/a"), &extra));
    EXPECT_EQ(RequestFor("/a", "0", "X: 1\n"), server.Request(0));
    EXPECT_EQ(RequestFor("/b/c.png", "0", "X: 1\n"), server.Request(1));
    EXPECT_EQ(UrlOf("/b/c.png"), client.GetUrl());
    Variant query{u"Location", VariantWide, 0};
    EXPECT_EQ(-10, client.GetHeader(&query)) << "the headers are those of the last answer";
    EXPECT_EQ("body", ReadBody(client));
}

TEST(HttpRedirect, ALocationIsFollowedWhateverTheAnswer)
{
    const std::string location = "\r\nLocation: http://" + OwnAddress() + "/next\r\n\r\nbody";
    HttpServer server({"HTTP/1.0 200 OK" + location, "HTTP/1.0 404 No" + location,
                       "HTTP/1.0 401 No" + location, "garbage" + location, location.substr(0),
                       Good("")});
    HttpClient client;
    EXPECT_EQ((Opened{1, 200}), OpenUrl(client, UrlOf("/")));
    EXPECT_EQ(6, server.Count());
}

TEST(HttpRedirect, AStatusThatWasRedirectedIsNotTold)
{
    HttpServer server({MovedTo("http://" + OwnAddress() + "/next"), "garbage\n\n"});
    HttpClient client;
    EXPECT_EQ((Opened{0, 77}), OpenUrl(client, UrlOf("/")));
}

TEST(HttpRedirect, ALocationInSmallLettersIsNotFollowed)
{
    HttpServer server({"HTTP/1.0 302 Found\r\nlocation: http://" + OwnAddress() + "/b\r\n\r\n"});
    HttpClient client;
    EXPECT_EQ((Opened{3, 302}), OpenUrl(client, UrlOf("/a")));
    EXPECT_EQ(1, server.Count());
}

TEST(HttpRedirect, ARelativeLocationFailsWithTheConnectionGivenUp)
{
    HttpServer server({MovedTo("/other")});
    HttpClient client;
    EXPECT_EQ((Opened{-1, 77}), OpenUrl(client, UrlOf("/a")));
    server.AwaitEnd(0);
    EXPECT_EQ(std::u16string(u"/other"), client.GetUrl());
    ExpectClosed(client);
    EXPECT_EQ((Opened{-1, 77}), OpenUrl(client, UrlOf("/a"))) << "it can be opened again";
    EXPECT_EQ(2, server.Count());
}

TEST(HttpRedirect, AnEmptyLocationIsAnAddressToo)
{
    HttpServer server({"HTTP/1.0 200 OK\r\nLocation:\r\n\r\n"});
    HttpClient client;
    EXPECT_EQ((Opened{-1, 77}), OpenUrl(client, UrlOf("/a")));
}

TEST(HttpRedirect, RedirectsAreFollowedAsLongAsTheServerGoesOn)
{
    std::vector<std::string> answers(120, MovedTo("http://" + OwnAddress() + "/again"));
    answers.push_back(Good("at last"));
    HttpServer server(answers);
    HttpClient client;
    EXPECT_EQ((Opened{1, 200}), OpenUrl(client, UrlOf("/a")));
    EXPECT_EQ(121, server.Count());
    EXPECT_EQ(RequestFor("/again"), server.Request(120));
    EXPECT_EQ("at last", ReadBody(client));
}

TEST(HttpRedirect, ALocationMayFillItsLine)
{
    // With its CR the line has 1,023 bytes, the most that is not cut.
    const std::string start = "Location: http://" + OwnAddress() + "/";
    const std::string rest = "/" + std::string(1022 - start.size(), 'y');
    HttpServer server({MovedTo("http://" + OwnAddress() + rest), Good("")});
    HttpClient client;
    EXPECT_EQ((Opened{1, 200}), OpenUrl(client, UrlOf("/a")));
    EXPECT_EQ(RequestFor(rest), server.Request(1));
}

TEST(HttpRedirect, ARedirectInACircleGoesOnUntilTheServerEnds)
{
    const std::string there = MovedTo("http://" + OwnAddress() + "/b");
    std::vector<std::string> answers(60, there);
    answers.push_back("");
    HttpServer server(answers);
    HttpClient client;
    EXPECT_EQ((Opened{-1, 77}), OpenUrl(client, UrlOf("/a")));
    EXPECT_EQ(61, server.Count());
    ExpectClosed(client);
}
