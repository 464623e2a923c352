// What each road of opening changes of the frame and the settings, and what it leaves: a row for
// each road, a column for each thing.

#include "shell/tests/WireTesting.h"

using namespace wiretest;

namespace
{

struct Road {
    const char* name;
    std::function<void(MainFrame&, Surfer&)> take;
    std::u16string opened; // behind it
    i32 plugin;
    u32 filter;
    u32 configures;
    std::u16string address = u"http://kept/";
};

constexpr u32 FilterBefore = 1;
constexpr i32 PluginBefore = 2;

} // namespace

// Plugin 0 is Alpha with format 0, 1 is Beta with 1, 2 is Gamma with 2.
TEST(Roads, EachChangesWhatItsRowSaysAndNothingElse)
{
    Scope scope;
    SetLanguage(1033);
    InstallReader("Alpha.aaa");
    InstallReader("Beta.bbb");
    InstallReader("Gamma.ccc");
    MakeSource("before.ccc", 'b');
    MakeSource("new.aaa", 'n');
    MakeSource("saved.bbb", 's');
    Site site;
    site.Set("/new.aaa", Answer("w"));
    const std::string infrared = UseInfraredPath();
    const auto command = [](u32 id, std::optional<Choice> choice) {
        return [id, choice](MainFrame& frame, Surfer& person) {
            if (choice)
                person.choices.push_back(*choice);
            Send(frame, id);
        };
    };
    const Road roads[] = {
        {"Open", command(OpenCommand, Choose(u"new.aaa", 0)), u"\\new.aaa", 0, 0, 1},
        {"Open, all files", command(OpenCommand, Choose(u"new.aaa", -1)), u"\\new.aaa", 0,
         4294967295u, 1},
        {"the command line", [](MainFrame& frame, Surfer&) { frame.OpenFile(u"\\new.aaa"); },
         u"\\new.aaa", 0, 4294967295u, 1},
        {"a hand-over", [](MainFrame& frame, Surfer&) { HandOver(frame, u"\\new.aaa"); },
         u"\\new.aaa", 0, 4294967295u, 1},
        {"Open As", command(FirstOpenAs, Choose(u"new.aaa")), u"\\new.aaa", PluginBefore,
         FilterBefore, 1},
        {"Reload opened", command(ReloadOpenedCommand, {}), u"\\before.ccc", PluginBefore,
         FilterBefore, 0},
        {"Reload saved", command(ReloadSavedCommand, {}), u"\\saved.bbb", 1, FilterBefore, 1},
        {"URL",
         [](MainFrame& frame, Surfer& person) {
             person.visits.push_back(AddressOf("/new.aaa"));
             Send(frame, UrlCommand);
         },
         u"\\before.ccc", 0, FilterBefore, 1, AddressOf("/new.aaa")},
        {"URL reload",
         [](MainFrame& frame, Surfer&) {
             frame.settings->SetText(TEXT("Tavrix"), TEXT("LastURL"),
                                     AddressOf("/new.aaa").c_str());
             frame.openedPath[0] = 0;
             Send(frame, ReloadOpenedCommand);
         },
         u"", 0, FilterBefore, 1, AddressOf("/new.aaa")},
        {"IrOBEX",
         [&](MainFrame& frame, Surfer&) {
             const Sender sender(infrared, PushOf(u"new.aaa", "i"));
             Send(frame, IrObexCommand);
         },
         u"\\before.ccc", 0, FilterBefore, 1},
    };
    Surfer person;
    RunProgram(u"", [&](MainFrame& frame) {
        u32 runs = 0;
        for (const Road& road : roads) {
            SetPaths(frame, u"\\before.ccc", u"\\saved.bbb");
            frame.inputPlugin = PluginBefore;
            frame.settings->SetText(TEXT("Tavrix"), TEXT("LastURL"), TEXT("http://kept/"));
            frame.settings->SetUInt(TEXT("Tavrix"), TEXT("DefOpenPlugin"), FilterBefore);
            Ask(frame, TEXT("ReadConfigures"), 0);
            person.choices.clear();
            road.take(frame, person);
            EXPECT_EQ(Opened(frame), road.opened) << road.name;
            EXPECT_EQ(frame.inputPlugin, road.plugin) << road.name;
            EXPECT_EQ(Setting(frame, TEXT("DefOpenPlugin")), road.filter) << road.name;
            EXPECT_EQ(Stored(frame, TEXT("ReadConfigures")), road.configures) << road.name;
            EXPECT_EQ(Stored(frame, TEXT("ReadRuns")), ++runs) << road.name;
            EXPECT_EQ(Saved(frame), u"\\saved.bbb") << road.name;
            const WCHAR* address = nullptr;
            EXPECT_EQ(frame.settings->GetText(TEXT("Tavrix"), TEXT("LastURL"), &address), Done);
            EXPECT_EQ(std::u16string(address), road.address) << road.name;
        }
        EXPECT_TRUE(person.TakeBoxes().empty());
    });
}

// A picture's whole way: opened, changed, saved, and what was saved read again.
TEST(Roads, APictureThatWasOpenedChangedAndSavedComesBackByItsReloads)
{
    Scope scope;
    SetLanguage(1033);
    InstallReader("Alpha.aaa");
    InstallWriter("Pa.aaa");
    InstallFixture("inverting", "EFFECT");
    MakeSource("one.aaa", 'o');
    Person person;
    RunProgram(u"", [&](MainFrame& frame) {
        person.choices.push_back(Choose(u"one.aaa", 0));
        Send(frame, OpenCommand);
        ExpectRead(frame, 'o');
        Send(frame, FirstEffect);
        const std::string inverted(1, static_cast<char>(255 - 'o'));
        ExpectRead(frame, inverted[0]);
        (void)person.TakeBoxes(); // the fixture of the effect asks nothing
        person.choices.push_back(Choose(u"two.aaa", 0));
        Send(frame, SaveCommand);
        EXPECT_EQ(FileBytes("two.aaa").substr(0, 1), inverted);
        Send(frame, ReloadOpenedCommand);
        ExpectRead(frame, 'o');
        EXPECT_EQ(Opened(frame), u"\\one.aaa");
        Send(frame, ReloadSavedCommand);
        ExpectRead(frame, inverted[0]);
        EXPECT_EQ(Opened(frame), u"\\two.aaa");
        EXPECT_TRUE(person.TakeBoxes().empty());
    });
}
