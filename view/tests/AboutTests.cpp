// The dialog about the program over the real controls.

#include "view/tests/DialogTesting.h"

#include "platform/testing/core/TestPaths.h"

#include <fstream>
#include <regex>

using namespace dialogtest;

namespace
{

constexpr int Name = 1004;
constexpr int Address = 1007;

class About : public ::testing::Test
{
protected:
    About() { SetLanguage(1033); }

    int Show(const std::function<void(const Dialog&)>& script)
    {
        return Open([this] { frame.ShowAbout(); }, script);
    }

    Scope scope;
    PenFrame frame;
};

/// The version that the build is told, from the one place where it stands.
std::string BuildVersion()
{
    std::ifstream file(tavrix::testing::InSource("/CMakeLists.txt"));
    const std::regex pattern("project\\(Tavrix VERSION ([0-9.]+) .*");
    for (std::string line; std::getline(file, line);)
        if (std::smatch match; std::regex_match(line, match, pattern))
            return match[1];
    return "(none)";
}

} // namespace

TEST_F(About, ItTellsNameVersionPurposeLicenceAndAddressInBothLanguages)
{
    const auto words = [this](LANGID language) {
        SetLanguage(language);
        Texts texts;
        Show([&](const Dialog& dialog) {
            texts = {dialog.Caption(), dialog.Of(Name), dialog.Of(Address), dialog.Of(IDOK)};
            dialog.Close();
        });
        return texts;
    };
    const Text name = u"Tavrix " + Wide(BuildVersion());
    EXPECT_EQ(words(1033),
              (Texts{u"About Tavrix", name + u"\nShows and touches up pictures\nMIT licence",
                     u"https://tavrix.org/", u"OK"}));
    EXPECT_EQ(words(1041), (Texts{u"Tavrixについて",
                                  name + u"\n画像の閲覧とレタッチのためのプログラム\nMITライセンス",
                                  u"https://tavrix.org/", u"OK"}));
}

TEST_F(About, TheAddressCanBeCopiedAndNotChanged)
{
    Show([](const Dialog& dialog) {
        Pump(20);
        TypeKey(VK_TAB);
        EXPECT_EQ(GetFocus(), dialog.Control(Address));
        for (const int key : {0x41, VK_DELETE, VK_BACK})
            TypeKey(key);
        CommitText(u"あ");
        EXPECT_EQ(dialog.Of(Address), u"https://tavrix.org/");
        EXPECT_TRUE(IsWindowEnabled(dialog.Control(Address)));
        SendMessageW(dialog.Control(Address), EM_SETSEL, 0, -1);
        TypeKey('C', MK_CONTROL);
        Pump(20);
        dialog.Close();
    });
}

// Wood, canvas and sky of the picture that the program's windows have.
TEST_F(About, ItShowsTheProgramsIcon)
{
    Show([](const Dialog& dialog) {
        Pump(30);
        const Picture picture = WindowPixels(dialog.window);
        int wood = 0;
        for (const uint32_t pixel : picture.pixels)
            wood += pixel == 0x483018;
        EXPECT_GT(wood, 20);
        dialog.Close();
    });
}

TEST_F(About, EveryWayOutEndsItAndNoOtherCommand)
{
    for (const LANGID language : {LANGID{1033}, LANGID{1041}}) {
        SetLanguage(language);
        ExpectWaysOut([this] { frame.ShowAbout(); }, {0, 3, Name, Address, 0xFFFF});
    }
}

TEST_F(About, OkHasTheKeyboardFirst)
{
    Show([](const Dialog& dialog) {
        Pump(20);
        ExpectTabOrder(dialog, {IDOK, Address});
        TypeKey(VK_RETURN); // from the field, too
    });
}
