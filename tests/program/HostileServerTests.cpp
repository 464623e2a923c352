// A web server that does to the whole program whatever a server can do: it dawdles, breaks off,
// lies, babbles and says nothing. Whatever comes, the program goes on and opens the next picture.

#include "tests/program/WirePictures.h"

#include <fstream>
#include <iterator>

using namespace wirepictures;

namespace
{

constexpr int Width = 33;
constexpr int Height = 21;
constexpr const char* PlainHead = "HTTP/1.0 200 OK\r\nContent-Type: image/png\r\n\r\n";

std::string FileBytes(const std::string& path)
{
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

const std::string& PictureBytes()
{
    static const std::string bytes = FileBytes(WriteTestPng(Width, Height, "wire.png"));
    return bytes;
}

/// Serves what a test's `serve` does under any path but "/good.png", which is the picture.
WireServer::Serve With(std::function<void(Connection&)> serve)
{
    return [serve](Connection& connection, int) {
        const std::string request = connection.ReadUntil("\n\n");
        if (request.find("/good.png") == request.npos)
            serve(connection);
        else
            connection.Write(PlainHead + PictureBytes());
    };
}

using Texts = std::vector<std::u16string>;

void ExpectTheNextPictureOpens(MainFrame& frame, Person& person)
{
    const size_t told = StatusTexts().size();
    person.Visit(frame, "/good.png");
    EXPECT_TRUE(person.TakeBoxes().empty());
    EXPECT_EQ(StatusTexts().size(), told);
    ExpectPicture(frame, Width, Height, Png);
}

/// Visits a page of the server's, looks at what came of it, and then opens the next picture.
void Visit(const std::function<void(Connection&)>& serve, const std::string& page,
           const std::function<void(MainFrame&, Person&)>& look)
{
    HideToolWindows();
    InstallBundledPlugins();
    (void)PictureBytes();
    const WireServer server(80, With(serve));
    Person person;
    EXPECT_EQ(RunProgram(u"",
                         [&](MainFrame& frame) {
                             person.Visit(frame, page);
                             look(frame, person);
                             ExpectTheNextPictureOpens(frame, person);
                         }),
              0);
}

/// A picture that does not come is told as a broken file is.
void ExpectABrokenPicture(const std::function<void(Connection&)>& serve)
{
    Visit(serve, "/bad.png", [](MainFrame&, Person& person) {
        EXPECT_TRUE(person.TakeBoxes().empty());
        EXPECT_EQ(StatusTexts(), Texts{notReadable});
    });
}

/// A picture that comes after all.
void ExpectAPicture(const std::function<void(Connection&)>& serve)
{
    Visit(serve, "/odd.png", [](MainFrame& frame, Person& person) {
        EXPECT_TRUE(person.TakeBoxes().empty());
        EXPECT_TRUE(StatusTexts().empty());
        ExpectPicture(frame, Width, Height, Png);
    });
}

/// An end before there is a picture to decode.
void ExpectNoConnection(const std::function<void(Connection&)>& serve)
{
    Visit(serve, "/none.png", [](MainFrame& frame, Person& person) {
        EXPECT_EQ(person.TakeBoxes(), Texts{u"ERROR: Connection Failure"});
        EXPECT_TRUE(person.headlines.empty());
        EXPECT_EQ(frame.imagePresent, 0u);
    });
}

} // namespace

TEST(HostileServer, ThatClosesHalfWayIsToldAsABrokenPicture)
{
    ExpectABrokenPicture([](Connection& connection) {
        connection.Write(PlainHead + PictureBytes().substr(0, PictureBytes().size() / 2));
    });
}

TEST(HostileServer, ThatResetsHalfWayIsToldAsABrokenPicture)
{
    ExpectABrokenPicture([](Connection& connection) {
        connection.Write(PlainHead + PictureBytes().substr(0, PictureBytes().size() / 2));
        // The program has begun to decode by then.
        connection.Pause(500);
        connection.Reset();
    });
}

TEST(HostileServer, ThatSendsOneByteASecondIsWaitedForWhileTheWindowLives)
{
    HideToolWindows();
    InstallBundledPlugins();
    (void)PictureBytes();
    const WireServer server(80, With([](Connection& connection) {
                                connection.Write(PlainHead);
                                for (size_t at = 0; at < 10; ++at) {
                                    connection.Write(PictureBytes().substr(at, 1));
                                    if (!connection.Pause(1000))
                                        return;
                                }
                                connection.Write(PictureBytes().substr(10));
                            }));
    Person person;
    const auto visit = [&person](MainFrame& frame) {
        // A timer is served while the worker waits.
        static unsigned beats;
        beats = 0;
        const UINT_PTR timer =
            SetTimer(nullptr, 0, 100, [](HWND, UINT, UINT_PTR, DWORD) { ++beats; });
        person.Visit(frame, "/slow.png");
        KillTimer(nullptr, timer);
        EXPECT_TRUE(person.TakeBoxes().empty());
        EXPECT_TRUE(StatusTexts().empty());
        EXPECT_GE(ProgressDialogTime(), 9000u);
        EXPECT_GE(beats, 10u);
        ExpectPicture(frame, Width, Height, Png);
    };
    EXPECT_EQ(RunProgram(u"", visit), 0);
}

TEST(HostileServer, ThatSendsEveryByteAloneGivesThePictureAsItIs)
{
    ExpectAPicture([](Connection& connection) {
        for (const char byte : PlainHead + PictureBytes())
            if (!connection.Write({&byte, 1}))
                return;
    });
}

TEST(HostileServer, WhoseHeaderLineOf64KilobytesHasNoPointsLosesItsHeadToTheBody)
{
    // Cut into pieces of 1024 bytes: the second has no ":" and ends the head.
    ExpectABrokenPicture([](Connection& connection) {
        connection.Write("HTTP/1.0 200 OK\r\nX-Long: " + std::string(65536, 'a') + "\r\n\r\n" +
                         PictureBytes());
    });
}

TEST(HostileServer, WhoseHeaderLineOf64KilobytesIsFullOfPointsGivesThePicture)
{
    ExpectAPicture([](Connection& connection) {
        std::string line = "X-Long: ";
        while (line.size() <= 65536)
            line += "abc:";
        connection.Write("HTTP/1.0 200 OK\r\n" + line + "\r\n\r\n" + PictureBytes());
    });
}

TEST(HostileServer, WithTenThousandHeadersGivesThePicture)
{
    ExpectAPicture([](Connection& connection) {
        std::string head = "HTTP/1.0 200 OK\r\n";
        for (int number = 0; number < 10000; ++number)
            head += "X-" + std::to_string(number) + ": " + std::to_string(number) + "\r\n";
        connection.Write(head + "\r\n" + PictureBytes());
    });
}

TEST(HostileServer, ThatSaysNothingHoldsTheProgramUntilItCloses)
{
    ExpectNoConnection([](Connection& connection) { connection.Pause(2000); });
}

TEST(HostileServer, ThatResetsAtOnceIsAConnectionFailure)
{
    ExpectNoConnection([](Connection& connection) { connection.Reset(); });
}

TEST(HostileServer, ThatEndsInItsFirstWordIsAConnectionFailure)
{
    ExpectNoConnection([](Connection& connection) { connection.Write("HTT"); });
}

TEST(HostileServer, ThatEndsBehindItsVersionIsToldAsABrokenPicture)
{
    // Two numbers could be read, and that is no negative result.
    ExpectABrokenPicture([](Connection& connection) { connection.Write("HTTP/1.0\r\n"); });
}

TEST(HostileServer, ThatLiesAboutTheLengthGivesThePicture)
{
    ExpectAPicture([](Connection& connection) {
        connection.Write("HTTP/1.0 200 OK\r\nContent-Length: 7\r\n\r\n" + PictureBytes());
    });
}

TEST(HostileServer, ThatTellsALengthBeyondAllNumbersGivesThePicture)
{
    ExpectAPicture([](Connection& connection) {
        connection.Write("HTTP/1.0 200 OK\r\nContent-Length: 99999999999999999999999\r\n\r\n" +
                         PictureBytes());
    });
}

TEST(HostileServer, ThatSendsMoreThanThePictureIsLeftWithTheRest)
{
    ExpectAPicture([](Connection& connection) {
        connection.Write(PlainHead + PictureBytes());
        // Without end, until nobody listens any more.
        while (connection.Write(std::string(65536, 'z')))
            ;
    });
}

TEST(HostileServer, ThatSendsBodiesOfNoiseIsToldAsABrokenPicture)
{
    ExpectABrokenPicture([](Connection& connection) {
        std::string noise;
        uint32_t state = 12345;
        for (int at = 0; at < 100000; ++at) {
            state = state * 1664525 + 1013904223;
            noise += static_cast<char>(state >> 24);
        }
        connection.Write(PlainHead + noise);
    });
}

TEST(HostileServer, ThatSendsZerosInItsHeadDoesNoHarm)
{
    using namespace std::string_literals;
    ExpectABrokenPicture([](Connection& connection) {
        connection.Write("HTTP/1.0 200 OK\r\n\0\0\0\0: x\r\nA\0B: c\r\n"s + std::string(300, '\0') +
                         "\r\n\r\n");
    });
}

TEST(HostileServer, IsToldOfInJapaneseToo)
{
    SetLanguage(1041);
    Visit([](Connection& connection) { connection.Write(std::string(PlainHead) + "no picture"); },
          "/bad.png",
          [](MainFrame&, Person& person) {
              EXPECT_TRUE(person.TakeBoxes().empty());
              EXPECT_EQ(StatusTexts(),
                        Texts{u"画像ファイルがロードできません。ファイルが壊れているか"
                              u"未対応の画像形式です。"});
          });
}
