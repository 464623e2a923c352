// Pictures pushed by clients of the object exchange protocol that have nothing to do with the
// program, by the command, to the screen.

#include "tests/program/WirePictures.h"

#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <cstdio>
#include <filesystem>
#include <thread>

using namespace wirepictures;
namespace fs = std::filesystem;

namespace
{

constexpr int Width = 100;
constexpr int Height = 80;

const std::u16string receiving = u"Loading an object from IrDA...";
const std::u16string loading = u"Loading an image...";

/// The own end of a listener as the host's table of sockets writes it: each word of the address in
/// the machine's order.
std::string OwnEnd()
{
    const unsigned long address = OwnAddressNumber();
    char text[32];
    std::snprintf(text, sizeof text, "%02lX%02lX%02lX%02lX:028A", address & 255, address >> 8 & 255,
                  address >> 16 & 255, address >> 24);
    return text;
}

/// A client that starts in the test's home, as soon as somebody listens there.
class Client
{
public:
    Client(const std::string& table, const std::string& ownEnd, const std::string& command)
        : process({"-c", "until grep -q ' " + ownEnd + " 0*:0000 0A ' /proc/self/net/" + table +
                             "; do sleep 0.02; done; cd '" + TestHome() + "'; " + command},
                  {{"LC_ALL", "C.UTF-8"}}, "/bin/sh")
    {
    }
    /// What it said.
    std::string Output() { return process.Wait().output; }

private:
    BackgroundProcess process;
};

Client Push(const std::string& command)
{
    return Client("tcp", OwnEnd(), command);
}

/// The loopback address itself has the port once only: one test at a time, whoever runs it. The
/// name is given back when the process ends.
class RegisteredPort
{
public:
    RegisteredPort() : lock(socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0))
    {
        const char name[] = "\0tavrix tests at port 650";
        sockaddr_un address = {};
        address.sun_family = AF_UNIX;
        std::copy_n(name, sizeof name, address.sun_path);
        const auto length = static_cast<socklen_t>(offsetof(sockaddr_un, sun_path) + sizeof name);
        while (bind(lock, reinterpret_cast<const sockaddr*>(&address), length) != 0)
            std::this_thread::sleep_for(std::chrono::milliseconds(50));
    }
    ~RegisteredPort() { close(lock); }
    RegisteredPort(const RegisteredPort&) = delete;
    RegisteredPort& operator=(const RegisteredPort&) = delete;

private:
    int lock;
};

void Receive(MainFrame& frame)
{
    SendMessageW(frame.window, WM_COMMAND, CommandOpenIrObex, 0);
}

class ObexClients : public ::testing::Test
{
protected:
    ObexClients()
    {
        SetLanguage(1033);
        InstallBundledPlugins();
        HideToolWindows();
        WriteTestPng(Width, Height);
        WriteTestJpeg(Width, Height);
        setenv("TAVRIX_IR", ("tcp:" + OwnAddress() + ":650").c_str(), 1);
    }
    /// Every object came, and nothing was told of any.
    void ExpectNoWord(size_t objects)
    {
        std::vector<std::u16string> expected;
        for (size_t i = 0; i < objects; ++i) {
            expected.push_back(receiving);
            expected.push_back(loading);
        }
        EXPECT_EQ(person.headlines, expected);
        EXPECT_TRUE(person.TakeBoxes().empty());
    }

    Scope scope;
    Person person;
};

} // namespace

TEST_F(ObexClients, WhatObexftpSendsIsShownAlsoUnderAJapaneseName)
{
    WriteTestPng(500, 400, "large.png");
    const auto send = [](const std::string& name, const std::string& file) {
        return Push("obexftp -n " + OwnAddress() + ":650 -U none -H -S -o '" + name + "' -p " +
                    file);
    };
    RunProgram(u"", [&](MainFrame& frame) {
        {
            Client client = send("日本語の写真.png", "picture.png");
            Receive(frame);
            ExpectPicture(frame, Width, Height, Png);
            ExpectSeen(frame, Width, Height, Png);
        }
        {
            Client client = send("写真.jpg", "picture.jpg");
            Receive(frame);
            ExpectPicture(frame, Width, Height, Jpeg);
            ExpectSeen(frame, Width, Height, Jpeg);
        }
        {
            Client client = send("large.png", "large.png");
            Receive(frame);
            ExpectPicture(frame, 500, 400, Png);
        }
        ExpectNoWord(3);
        EXPECT_EQ(frame.openedPath[0], 0);
    });
}

TEST_F(ObexClients, AnObjectOfFiftyMegabytesIsShown)
{
    constexpr int Side = 4096;
    EXPECT_GT(fs::file_size(WriteNoisePng(Side, "fifty.png")), 50000000u);
    RunProgram(u"", [&](MainFrame& frame) {
        Client client =
            Push("obexftp -n " + OwnAddress() + ":650 -U none -H -S -p fifty.png 2>/dev/null");
        Receive(frame);
        ExpectPicture(frame, Side, Side, Formula{NoiseColor});
        ExpectNoWord(1);
    });
}

// Of a name 63 characters count, of three bytes each in the client's own text.
TEST_F(ObexClients, TheCharactersOfAJapaneseNameAreCountedAndNotTheirBytes)
{
    const auto send = [](size_t characters) {
        std::string name;
        for (size_t i = 4; i < characters; ++i)
            name += "名";
        return Push("obexftp -n " + OwnAddress() + ":650 -U none -H -S -o " + name +
                    ".jpg -p picture.jpg");
    };
    RunProgram(u"", [&](MainFrame& frame) {
        {
            Client client = send(63);
            Receive(frame);
            ExpectPicture(frame, Width, Height, Jpeg);
            ExpectNoWord(1);
        }
        {
            SetLanguage(1041);
            Client client = send(67);
            Receive(frame);
            EXPECT_EQ(person.TakeBoxes(),
                      std::vector<std::u16string>{u"ERROR: 不明なフォーマットです。"});
            ExpectPicture(frame, Width, Height, Jpeg);
        }
    });
}

// The last packet has a body that is not called its end, and a header of the client's own.
TEST_F(ObexClients, WhatObexTcpSendsIsShown)
{
    RunProgram(u"", [&](MainFrame& frame) {
        for (const char* file : {"picture.png", "picture.jpg"}) {
            Client client = Push("obex_tcp " + std::string(file) + " " + OwnAddress());
            Receive(frame);
            if (std::string(file) == "picture.png")
                ExpectPicture(frame, Width, Height, Png);
            else
                ExpectPicture(frame, Width, Height, Jpeg);
            EXPECT_NE(client.Output().find("PUT successful"), std::string::npos);
        }
        ExpectNoWord(2);
    });
}

// The program listens where it does by itself, at both addresses; the client asks for the one of
// version 6, and sends the length before the name, or a name alone.
TEST_F(ObexClients, WhatObexTestSendsToTheRegisteredPortIsShown)
{
    const RegisteredPort port;
    unsetenv("TAVRIX_IR");
    const auto send = [](const std::string& lines) {
        return Client("tcp6", "0*1000000:028A", "printf '" + lines + "' | obex_test -i");
    };
    RunProgram(u"", [&](MainFrame& frame) {
        {
            Client client = send("c\\np\\npicture.png\\nput.png\\nd\\nq\\n");
            Receive(frame);
            ExpectPicture(frame, Width, Height, Png);
            EXPECT_NE(client.Output().find("PUT successful"), std::string::npos);
        }
        {
            Client client = send("c\\nx\\npicture.jpg\\nd\\nq\\n");
            Receive(frame);
            ExpectPicture(frame, Width, Height, Jpeg);
        }
        ExpectNoWord(2);
    });
}

// The other address, by a client that is told it.
TEST_F(ObexClients, WhatObexftpSendsToTheRegisteredPortIsShown)
{
    const RegisteredPort port;
    unsetenv("TAVRIX_IR");
    RunProgram(u"", [&](MainFrame& frame) {
        Client client("tcp", "0100007F:028A",
                      "obexftp -n 127.0.0.1:650 -U none -H -S -p picture.png");
        Receive(frame);
        ExpectPicture(frame, Width, Height, Png);
        ExpectNoWord(1);
    });
}
