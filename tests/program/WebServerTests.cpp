// Pictures from web servers that have nothing to do with the program, by the dialog and the keys,
// to the screen.

#include "tests/program/WirePictures.h"

#include <filesystem>
#include <fstream>

using namespace wirepictures;
namespace fs = std::filesystem;

namespace
{

constexpr int Width = 100;
constexpr int Height = 80;
constexpr int LargeSide = 1024;

/// The pages of the server, below the test's home.
std::string MakeSite()
{
    const std::string site = TestHome() + "/site";
    fs::create_directories(site + "/sub folder");
    WriteTestPng(Width, Height, "site/picture.png");
    WriteTestPng(Width, Height, "site/png-by-name.jpg");
    WriteTestPng(Width, Height, "site/picture.zzz");
    WriteTestPng(Width, Height, "site/sub folder/a b.png");
    WriteTestJpeg(Width, Height, "site/picture.jpg");
    WriteNoisePng(LargeSide, "site/large.png");
    return site;
}

/// Nothing outside the test's home, one process, in the foreground.
std::string NginxSettings(const std::string& site)
{
    const std::string home = TestHome();
    const std::string work = home + "/nginx-work";
    fs::create_directories(work);
    std::string text = "user root root;\ndaemon off;\nmaster_process off;\npid " + home +
                       "/nginx.pid;\nerror_log " + home +
                       "/nginx-error.log;\nevents {}\nhttp {\naccess_log off;\n";
    for (const char* use : {"client_body", "proxy", "fastcgi", "uwsgi", "scgi"})
        text += std::string(use) + "_temp_path " + work + "/" + use + ";\n";
    const std::string own = "http://" + OwnAddress();
    text += "server {\nlisten " + OwnAddress() + ":80;\nroot '" + site +
            "';\nlocation = /moved.png { return 302 " + own +
            "/again.png; }\nlocation = " + "/again.png { return 301 " + own +
            "/picture.png; }\n}\n}\n";
    const std::string path = home + "/nginx.conf";
    std::ofstream(path) << text;
    return path;
}

} // namespace

TEST(WebServers, PicturesComeFromNginxByTheirAddressesAndByReload)
{
    Scope scope;
    SetLanguage(1033);
    InstallBundledPlugins();
    HideToolWindows();
    const std::string settings = NginxSettings(MakeSite());
    const std::string log = TestHome() + "/nginx-error.log";
    const Daemon server("/usr/sbin/nginx", {"-p", TestHome(), "-e", log, "-c", settings}, 80);
    Person person;
    RunProgram(u"", [&](MainFrame& frame) {
        person.Visit(frame, "/picture.png");
        ExpectPicture(frame, Width, Height, Png);
        ExpectSeen(frame, Width, Height, Png);
        person.Visit(frame, "/picture.jpg");
        ExpectPicture(frame, Width, Height, Jpeg);
        ExpectSeen(frame, Width, Height, Jpeg);
        person.Visit(frame, "/moved.png");
        ExpectPicture(frame, Width, Height, Png);
        EXPECT_GT(fs::file_size(TestHome() + "/site/large.png"), 3000000u);
        person.Visit(frame, "/large.png");
        ExpectPicture(frame, LargeSide, LargeSide, Formula{NoiseColor});
        person.Visit(frame, "/sub%20folder/a%20b.png");
        ExpectPicture(frame, Width, Height, Png);
        EXPECT_EQ(person.headlines.size(), 5u);
        // Read again, when the page has changed.
        WriteTestPng(50, 40, "site/sub folder/a b.png");
        SendMessageW(frame.window, WM_COMMAND, CommandReloadOpened, 0);
        ExpectPicture(frame, 50, 40, Png);
        EXPECT_EQ(person.headlines.size(), 6u);
        EXPECT_TRUE(StatusTexts().empty());
        EXPECT_TRUE(person.TakeBoxes().empty());
    });
}

TEST(WebServers, WhatNginxHasNotOrHasUnderAnotherNameIsTold)
{
    Scope scope;
    SetLanguage(1033);
    InstallBundledPlugins();
    const std::string settings = NginxSettings(MakeSite());
    const std::string log = TestHome() + "/nginx-error.log";
    const Daemon server("/usr/sbin/nginx", {"-p", TestHome(), "-e", log, "-c", settings}, 80);
    Person person;
    RunProgram(u"", [&](MainFrame& frame) {
        using Texts = std::vector<std::u16string>;
        person.Visit(frame, "/missing.png");
        EXPECT_EQ(StatusTexts(), Texts{notReadable});
        EXPECT_TRUE(person.TakeBoxes().empty());
        person.Visit(frame, "/picture.zzz");
        EXPECT_EQ(person.TakeBoxes(), Texts{u"ERROR: Unknown File Format"});
        EXPECT_EQ(person.headlines.size(), 1u);
        person.Visit(frame, "/picture.png");
        ExpectPicture(frame, Width, Height, Png);
        EXPECT_EQ(person.headlines.size(), 2u);
        // Read by the plugin of its name, which is not the one of what it holds.
        SetLanguage(1041);
        person.Visit(frame, "/png-by-name.jpg");
        EXPECT_EQ(person.headlines.size(), 3u);
        EXPECT_EQ(StatusTexts(), (Texts{notReadable, u"画像ファイルがロードできません。ファイルが"
                                                     u"壊れているか未対応の画像形式です。"}));
        EXPECT_TRUE(person.TakeBoxes().empty());
    });
}

TEST(WebServers, PicturesComeFromLighttpdByTheirAddresses)
{
    Scope scope;
    SetLanguage(1041);
    InstallBundledPlugins();
    const std::string settings = TestHome() + "/lighttpd.conf";
    // By itself it takes no line that ends in LF alone.
    std::ofstream(settings) << "server.document-root = \"" + MakeSite() + "\"\nserver.bind = \"" +
                                   OwnAddress() +
                                   "\"\nserver.port = 80\n"
                                   "server.http-parseopts = (\"header-strict\" => \"disable\")\n"
                                   "mimetype.assign = (\".png\" => \"image/png\")\n";
    const Daemon server("/usr/sbin/lighttpd", {"-D", "-f", settings}, 80);
    Person person;
    RunProgram(u"", [&](MainFrame& frame) {
        person.Visit(frame, "/picture.png");
        ExpectPicture(frame, Width, Height, Png);
        person.Visit(frame, "/picture.jpg");
        ExpectPicture(frame, Width, Height, Jpeg);
        person.Visit(frame, "/large.png");
        ExpectPicture(frame, LargeSide, LargeSide, Formula{NoiseColor});
        EXPECT_TRUE(StatusTexts().empty());
        person.Visit(frame, "/missing.png");
        EXPECT_EQ(StatusTexts().size(), 1u);
        EXPECT_TRUE(person.TakeBoxes().empty());
    });
}

// This server takes the address, and lines that end in LF alone, but not where a range is asked for
// in such a line.
TEST(WebServers, AServerThatRefusesTheRequestGivesAPictureThatCannotBeRead)
{
    Scope scope;
    SetLanguage(1033);
    InstallBundledPlugins();
    const Daemon server("/usr/bin/webfsd",
                        {"-F", "-4", "-i", OwnAddress(), "-p", "80", "-r", MakeSite()}, 80);
    Person person;
    RunProgram(u"", [&](MainFrame& frame) {
        person.Visit(frame, "/picture.png");
        EXPECT_EQ(StatusTexts(), std::vector<std::u16string>{notReadable});
        EXPECT_TRUE(person.TakeBoxes().empty());
        EXPECT_EQ(frame.imagePresent, 1u);
    });
}
