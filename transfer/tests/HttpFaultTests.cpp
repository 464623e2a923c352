// What goes wrong: memory, the device's sockets, and the other end at every byte.
#include "platform/testing/Faults.h"
#include "transfer/tests/HttpTesting.h"

#include <atomic>

using namespace tavrix::testing;
using tavrix::platform::SocketOperation;

namespace
{

i32 GiveName(const WCHAR*, WCHAR* user, WCHAR* password, u32)
{
    user[0] = u'a';
    password[0] = u'b';
    return 1;
}

/// One answer after the other, by what is asked for, so that it does not matter where a run before
/// has ended.
void ServeTour(Connection& connection, int)
{
    const std::string request = connection.ReadUntil("\n\n");
    if (request.find("/start ") != std::string::npos)
        connection.Write(MovedTo("http://" + OwnAddress() + "/locked"));
    else if (request.find("/moved ") != std::string::npos)
        connection.Write(MovedTo("http://" + OwnAddress() + "/open"));
    else if (request.find("/locked ") != std::string::npos &&
             request.find("Authorization: Basic YTpi\n") == std::string::npos &&
             request.find("bytes=0-") != std::string::npos)
        connection.Write("HTTP/1.0 401 No\r\nWWW-Authenticate: Basic realm=\"x\"\r\n\r\n");
    else
        connection.Write(Good("0123456789"));
    connection.EndWriting();
    connection.ReadAll();
}

struct Tour {
    Opened opened;
    std::string body;
    i32 seek = 77;
    std::string again;
};

Tour MakeTour(const std::string& start, bool seeks)
{
    Tour tour;
    PropertyList extra;
    (void)extra.SetWide(u"X", u"1");
    HttpClient client;
    (void)client.SetAuthCallback(GiveName, 0);
    tour.opened = OpenUrl(client, UrlOf(start), &extra);
    if (tour.opened.result != 1) {
        ExpectClosed(client);
        return tour;
    }
    tour.body = ReadBody(client);
    if (!seeks)
        return tour;
    tour.seek = SeekTo(client, 5);
    tour.again = ReadBody(client);
    return tour;
}

/// Bytes of the body, and whether the reading failed.
bool IsStartOf(const std::string& got, const std::string& whole)
{
    const std::string end = "failed";
    const bool isFailed = got.size() >= end.size() && got.ends_with(end);
    return whole.starts_with(isFailed ? got.substr(0, got.size() - end.size()) : got);
}

} // namespace

TEST(HttpFaults, SurvivesEveryShortageOfMemory)
{
    WireServer server(80, ServeTour);
    Tour tour;
    ForEveryFault(
        FaultKind::Allocation, [&] { tour = MakeTour("/start", true); },
        [&](bool fired) {
            const i32 result = tour.opened.result;
            // A header whose text is lost for want of memory is as one that is not there: then the
            // redirect or the refusal counts as it stands.
            EXPECT_TRUE(result == 1 || (fired && (result == -1 || result == -2 || result == 3)))
                << result;
            EXPECT_TRUE(IsStartOf(tour.body, "0123456789")) << tour.body;
            EXPECT_TRUE(IsStartOf(tour.again, "0123456789")) << tour.again;
            if (!fired) {
                EXPECT_EQ((Opened{1, 200}), tour.opened);
                EXPECT_EQ("0123456789", tour.body);
                EXPECT_EQ(1, tour.seek);
                EXPECT_EQ("0123456789", tour.again);
            }
        });
}

TEST(HttpFaults, SurvivesEveryFailureOfASocket)
{
    WireServer server(80, ServeTour);
    Tour tour;
    // Two short ways: each is gone as often as it has calls.
    for (const bool seeks : {false, true}) {
        ForEveryFault(
            FaultKind::Socket, [&] { tour = MakeTour(seeks ? "/open" : "/moved", seeks); },
            [&](bool fired) {
                const i32 result = tour.opened.result;
                EXPECT_TRUE(result == 1 || (fired && result <= 3)) << result;
                EXPECT_TRUE(IsStartOf(tour.body, "0123456789")) << tour.body;
                EXPECT_TRUE(IsStartOf(tour.again, "0123456789")) << tour.again;
                if (!fired) {
                    EXPECT_EQ((Opened{1, 200}), tour.opened);
                    EXPECT_EQ("0123456789", tour.body);
                    EXPECT_EQ(seeks ? 1 : 77, tour.seek);
                    EXPECT_EQ(seeks ? "0123456789" : "", tour.again);
                }
            });
    }
}

TEST(HttpFaults, WithoutAnythingAClientIsNoneAndSaysSo)
{
    ArmedFault fault(FaultKind::Allocation, 1, FaultReach::Onward);
    HttpClient client;
    u16 status = 77;
    EXPECT_EQ(-4, client.Open(nullptr, &status, nullptr));
    EXPECT_EQ(-2, client.Open(u"http://127.0.0.1/", &status, nullptr));
    EXPECT_EQ(77, status);
    EXPECT_EQ(std::u16string(), client.GetUrl()) << "nothing was changed";
    EXPECT_EQ(-2, client.SetProxy(u"name.invalid", 1));
    ExpectClosed(client);
    EXPECT_EQ(1, client.Reset());
    fault.Disarm();
    EXPECT_EQ(1, client.Reset());
}

TEST(HttpFaults, AConnectionThatCannotBeReplacedEndsTheClient)
{
    HttpServer server({Good("body")});
    HttpClient client;
    ASSERT_EQ((Opened{1, 200}), OpenUrl(client, UrlOf("/a")));
    ArmedFault fault(FaultKind::Allocation, 1, FaultReach::Onward);
    EXPECT_EQ(-2, client.Reconnect());
    ExpectClosed(client);
    u16 status = 77;
    EXPECT_EQ(-2, client.Open(u"http://127.0.0.1/", &status, nullptr));
    fault.Disarm();
    EXPECT_EQ(1, client.Reset());
    EXPECT_EQ((Opened{1, 200}), OpenUrl(client, UrlOf("/a"))) << "after Reset there is one again";
}

TEST(HttpFaults, AConnectionThatCannotBeHadForARedirectEndsTheOpen)
{
    HttpServer server({MovedTo("http://" + OwnAddress() + "/b"), Good("body")});
    HttpClient client;
    // The first is the one of the Open, the second the redirect's.
    int connections = 0;
    SetAllocationFault(
        [&connections](SIZE_T size) { return size == sizeof(SocketStream) && ++connections == 2; });
    EXPECT_EQ((Opened{-2, 77}), OpenUrl(client, UrlOf("/a")));
    SetAllocationFault(nullptr);
    EXPECT_EQ(1, server.Count());
    ExpectClosed(client);
    EXPECT_EQ((Opened{1, 200}), OpenUrl(client, UrlOf("/a")));
}

TEST(HttpFaults, ARequestThatGoesOutInPiecesIsWhole)
{
    const Scope scope;
    for (const int most : {1, 2, 50}) {
        HttpServer server({Good("body")});
        HttpClient client;
        SetSocketFault([most](SocketOperation operation, int* length) {
            if (operation == SocketOperation::Send)
                *length = std::min(*length, most);
            return false;
        });
        EXPECT_EQ((Opened{1, 200}), OpenUrl(client, UrlOf("/a")));
        EXPECT_EQ(RequestFor("/a"), server.Request(0));
        EXPECT_EQ("body", ReadBody(client));
    }
}

TEST(HttpFaults, ARequestThatStaysHalfSentFails)
{
    const Scope scope;
    for (const bool isNothing : {false, true}) {
        HttpServer server({Good("body")});
        HttpClient client;
        int sends = 0;
        SetSocketFault([&](SocketOperation operation, int* length) {
            if (operation != SocketOperation::Send)
                return false;
            *length = ++sends == 1 ? 10 : 0;
            return sends > 1 && !isNothing;
        });
        EXPECT_EQ((Opened{-1, 77}), OpenUrl(client, UrlOf("/a")));
        ExpectClosed(client);
        SetSocketFault(nullptr);
    }
}

TEST(HttpFaults, AServerThatOnlyClosesIsUnreadable)
{
    WireServer server(80, [](Connection& connection, int) { connection.ReadUntil("\n\n"); });
    HttpClient client;
    EXPECT_EQ((Opened{-1, 77}), OpenUrl(client, UrlOf("/a")));
    ExpectClosed(client);
}

TEST(HttpFaults, AServerThatEndsAfterAnyByteGivesWhatWasThere)
{
    const std::string answer = "HTTP/1.0 200 OK\r\nContent-Length: 4\r\n\r\nbody";
    const size_t body = answer.size() - 4, digit = answer.find(": 4"), header = answer.find(':');
    std::vector<std::string> answers;
    for (size_t cut = 0; cut <= answer.size(); ++cut)
        answers.push_back(answer.substr(0, cut));
    HttpServer server(answers);
    HttpClient client;
    for (size_t cut = 0; cut <= answer.size(); ++cut) {
        SCOPED_TRACE(cut);
        // "HTTP/1.0 2" is an answer, if a short one.
        const Opened expected = cut < 6    ? Opened{-1, 77}
                                : cut < 8  ? Opened{1, 77}
                                : cut < 10 ? Opened{2, 77}
                                : cut < 12 ? Opened{3, static_cast<u16>(cut == 10 ? 2 : 20)}
                                           : Opened{1, 200};
        EXPECT_EQ(expected, OpenUrl(client, UrlOf("/a")));
        if (expected.status != 200) {
            ExpectClosed(client);
            continue;
        }
        // Without its digit the length is an empty text, which is 0; its CR is none.
        const bool isCrAlone = cut == answer.find("\r\n\r\n") + 1;
        EXPECT_EQ(cut <= header || isCrAlone ? -1 : cut <= digit + 2 ? 0 : 4, SizeTold(client));
        EXPECT_EQ(cut > body ? answer.substr(body, cut - body) : "", ReadBody(client));
    }
}

TEST(HttpFaults, AServerThatResetsAfterAnyByteIsSeenNoLaterThanInTheBody)
{
    const Scope scope;
    const std::string answer = "HTTP/1.0 200 OK\r\nContent-Length: 4\r\n\r\nbody";
    const size_t body = answer.size() - 4;
    std::atomic<int> received{0};
    // Resets when the client waits for the byte behind the last one: what is on its way would be
    // lost otherwise.
    WireServer server(80, [&](Connection& connection, int number) {
        connection.ReadUntil("\n\n");
        const size_t count = static_cast<size_t>(number);
        connection.Write(answer.substr(0, count));
        while (received <= number && connection.Pause(1)) {
        }
        connection.Reset();
    });
    SetSocketFault([&](SocketOperation operation, int* length) {
        if (operation == SocketOperation::Receive) {
            *length = std::min(*length, 1);
            ++received;
        }
        return false;
    });
    HttpClient client;
    for (size_t cut = 0; cut <= answer.size(); ++cut) {
        SCOPED_TRACE(cut);
        received = 0;
        const Opened expected = cut < 6    ? Opened{-1, 77}
                                : cut < 8  ? Opened{1, 77}
                                : cut < 10 ? Opened{2, 77}
                                : cut < 12 ? Opened{3, static_cast<u16>(cut == 10 ? 2 : 20)}
                                           : Opened{1, 200};
        EXPECT_EQ(expected, OpenUrl(client, UrlOf("/a")));
        if (expected.status != 200) {
            ExpectClosed(client);
            continue;
        }
        EXPECT_EQ(cut < body - 2 ? -1 : 4, SizeTold(client)) << "a line that is cut is none";
        EXPECT_EQ((cut > body ? answer.substr(body, cut - body) : "") + "failed", ReadBody(client));
    }
}

TEST(HttpFaults, AHeadOf600LinesAndOneOf64KilobytesAreTaken)
{
    std::string head = "HTTP/1.0 200 OK\r\n";
    for (int i = 0; i < 600; ++i)
        head += "H" + std::to_string(i) + ": " + std::to_string(i) + "\r\n";
    HttpServer server({head + "Content-Length: 4\r\n\r\nbody",
                       "HTTP/1.0 200 OK\r\nLong: " + std::string(65536, ':') +
                           "\r\nContent-Length: 4\r\n\r\nbody"});
    HttpClient client;
    EXPECT_EQ((Opened{1, 200}), OpenUrl(client, UrlOf("/a")));
    EXPECT_EQ(-1, SizeTold(client)) << "the length had no room in the list";
    EXPECT_EQ("body", ReadBody(client));
    EXPECT_EQ((Opened{1, 200}), OpenUrl(client, UrlOf("/b")));
    EXPECT_EQ(4, SizeTold(client));
    EXPECT_EQ("body", ReadBody(client));
}
