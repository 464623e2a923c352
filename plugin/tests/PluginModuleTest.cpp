// How the plugins of a kind are found, loaded, asked and unloaded.

#include "plugin/InputPlugin.h"
#include "plugin/OutputPlugin.h"
#include "plugin/tests/Fixtures.h"

namespace
{

using plugintest::DevicePath;
using plugintest::IsMapped;
using plugintest::Library;
using plugintest::PluginFolder;
using plugintest::ProgramPlugins;
using tavrix::testing::Utf8;

std::string FileOf(const WCHAR* path)
{
    const std::string text = Utf8(path);
    return text.substr(text.rfind('\\') + 1);
}

std::vector<std::string> FilesOf(const PluginModule& module)
{
    std::vector<std::string> files;
    for (u32 i = 0; module.Path(i) != nullptr; ++i)
        files.push_back(FileOf(module.Path(i)));
    return files;
}

std::string Text(PluginModule& module, u32 index)
{
    WCHAR text[64] = {};
    return module.Info(index, text, 64) > 0 ? Utf8(text) : "(none)";
}

class PluginModuleTest : public ::testing::Test
{
protected:
    tavrix::testing::Scope scope;
    PluginFolder folder;
    InputPlugin plugin;
};

TEST_F(PluginModuleTest, StartsWithNothingFoundAndNothingLoaded)
{
    WCHAR text[8] = {};
    EXPECT_EQ(plugin.Count(), -1);
    EXPECT_EQ(plugin.Current(), -1);
    EXPECT_FALSE(plugin.IsLoaded());
    EXPECT_EQ(plugin.Path(0), nullptr);
    EXPECT_EQ(plugin.LoadByIndex(0, 0), -1);
    EXPECT_EQ(plugin.Info(0, text, 8), -3);
    EXPECT_EQ(plugin.Unload(), 1);
}

TEST_F(PluginModuleTest, AMissingFolderGivesNoPluginAndNoCount)
{
    EXPECT_EQ(plugin.ScanIn(folder.Device().c_str(), KeepPaths), 0);
    EXPECT_EQ(plugin.Count(), -1);
    EXPECT_EQ(plugin.LoadByIndex(0, 0), -1);
    EXPECT_EQ(plugin.LoadByIndex(0xFFFFFFFF, 0), -1);
}

TEST_F(PluginModuleTest, AnEmptyFolderGivesNoPluginAndNoCount)
{
    std::filesystem::create_directories(folder.Host() / "INPUT");
    EXPECT_EQ(plugin.ScanIn(folder.Device().c_str(), KeepPaths), 0);
    EXPECT_EQ(plugin.Count(), -1);
    EXPECT_EQ(plugin.LoadByIndex(0, 0), -1);
}

TEST_F(PluginModuleTest, AFolderWithoutALibraryOfTheKindHasACountOfNone)
{
    folder.PutText("X.DLL");
    EXPECT_EQ(plugin.ScanIn(folder.Device().c_str(), KeepPaths), 0);
    EXPECT_EQ(plugin.Count(), 0);
    EXPECT_EQ(plugin.LoadByIndex(0, 0), -1);
}

TEST_F(PluginModuleTest, WhatIsNoPluginOfTheKindTakesNoIndex)
{
    folder.Put("good", "a.dll");
    folder.PutText("B.DLL");
    folder.Put("kind_OUTPUT", "c.dll");
    folder.Put("no_exports", "d.dll");
    folder.Put("zero_identity", "e.dll");
    folder.Put("small_letters", "f.dll");
    folder.Put("longer_identity", "g.dll");
    folder.Put("throws_identity", "h.dll");
    folder.Put("many_formats", "I.Dll");
    folder.PutText("j.txt");
    folder.PutText("k.dll.txt");
    EXPECT_EQ(plugin.ScanIn(folder.Device().c_str(), KeepPaths), 2);
    EXPECT_EQ(plugin.Count(), 2);
    EXPECT_EQ(FilesOf(plugin), (std::vector<std::string>{"a.dll", "I.Dll"}));
    ASSERT_EQ(plugin.LoadByIndex(1, 0), 1);
    EXPECT_EQ(plugin.Current(), 1);
    EXPECT_EQ(Text(plugin, 1), "Many");
    EXPECT_EQ(plugin.LoadByIndex(2, 0), -1);
}

TEST_F(PluginModuleTest, AFolderMayEndInABackslashOrNot)
{
    folder.Put("good", "a.dll");
    EXPECT_EQ(plugin.ScanIn((folder.Device() + u"\\").c_str(), ForgetPaths), 1);
    EXPECT_EQ(Utf8(plugin.Path(0)), Utf8((folder.Device() + u"\\INPUT\\a.dll").c_str()));
    EXPECT_EQ(plugin.ScanIn(folder.Device().c_str(), ForgetPaths), 1);
    EXPECT_EQ(Utf8(plugin.Path(0)), Utf8((folder.Device() + u"\\INPUT\\a.dll").c_str()));
}

TEST_F(PluginModuleTest, AScanAddsToWhatIsKnownOrForgetsIt)
{
    folder.Put("good", "a.dll");
    PluginFolder second;
    second.Put("nameless", "b.dll");
    EXPECT_EQ(plugin.ScanIn(folder.Device().c_str(), KeepPaths), 1);
    EXPECT_EQ(plugin.ScanIn(second.Device().c_str(), KeepPaths), 2);
    EXPECT_EQ(FilesOf(plugin), (std::vector<std::string>{"a.dll", "b.dll"}));
    EXPECT_EQ(plugin.ScanIn(second.Device().c_str(), KeepPaths), 3);
    EXPECT_EQ(plugin.ScanIn(second.Device().c_str(), ForgetPaths), 1);
    EXPECT_EQ(plugin.Count(), 1);
    EXPECT_EQ(FilesOf(plugin), std::vector<std::string>{"b.dll"});
}

TEST_F(PluginModuleTest, AScanThatFindsNoFileLeavesTheCountAlone)
{
    folder.Put("good", "a.dll");
    const PluginFolder empty;
    ASSERT_EQ(plugin.ScanIn(folder.Device().c_str(), KeepPaths), 1);
    EXPECT_EQ(plugin.ScanIn(empty.Device().c_str(), ForgetPaths), 0);
    EXPECT_EQ(plugin.Count(), 1);
    // The path that the count still promises is gone, and loading it fails cleanly.
    EXPECT_EQ(plugin.LoadByIndex(0, 0), -1);
    EXPECT_EQ(plugin.Current(), -1);
}

TEST_F(PluginModuleTest, APathTooLongForTheDeviceIsPassedOver)
{
    const std::u16string deep(250, u'd');
    EXPECT_EQ(plugin.ScanIn((u"\\" + deep).c_str(), KeepPaths), 0);
    EXPECT_EQ(plugin.ScanIn((u"\\" + deep + deep).c_str(), KeepPaths), 0);
    EXPECT_EQ(plugin.ScanIn(nullptr, KeepPaths), -4);
    EXPECT_EQ(plugin.Count(), -1);
}

TEST_F(PluginModuleTest, TheProgramsPluginsLieBelowItsOwnFolder)
{
    const PluginFolder own = ProgramPlugins();
    own.Put("good", "a.dll");
    EXPECT_EQ(plugin.Scan(nullptr, KeepPaths), 1);
    EXPECT_EQ(Utf8(plugin.Path(0)), "\\Program Files\\Tavrix\\PLUGINS\\INPUT\\a.dll");
    OutputPlugin output;
    EXPECT_EQ(output.Scan(nullptr, KeepPaths), 0);
}

TEST_F(PluginModuleTest, TheLastLibraryProbedStaysLoadedUntilTheNextUse)
{
    folder.Put("good", "stays-loaded.dll");
    ASSERT_EQ(plugin.ScanIn(folder.Device().c_str(), KeepPaths), 1);
    EXPECT_TRUE(plugin.IsLoaded());
    EXPECT_TRUE(IsMapped("stays-loaded.dll"));
    EXPECT_EQ(plugin.Unload(), 1);
    EXPECT_FALSE(plugin.IsLoaded());
    EXPECT_FALSE(IsMapped("stays-loaded.dll"));
}

TEST_F(PluginModuleTest, ProbeGivesWhatThePluginAnswered)
{
    EXPECT_EQ(plugin.Probe(DevicePath(Library("good")).c_str(), u"TX", u"INPUT"), 1);
    EXPECT_EQ(plugin.Probe(DevicePath(Library("zero_identity")).c_str(), u"TX", u"INPUT"), 0);
    EXPECT_EQ(plugin.Probe(DevicePath(Library("good")).c_str(), u"TX", u"OUTPUT"), -1);
    EXPECT_EQ(plugin.Probe(DevicePath(Library("good")).c_str(), u"XX", u"INPUT"), -1);
    EXPECT_EQ(plugin.Probe(DevicePath(Library("no_exports")).c_str(), u"TX", u"INPUT"), -1);
    EXPECT_EQ(plugin.Probe(u"\\nowhere.dll", u"TX", u"INPUT"), -1);
}

TEST_F(PluginModuleTest, AFailedLoadDoesNotAnswerWithThePluginBefore)
{
    ASSERT_EQ(plugin.Probe(DevicePath(Library("good")).c_str(), u"TX", u"INPUT"), 1);
    EXPECT_EQ(plugin.Probe(u"\\nowhere.dll", u"TX", u"INPUT"), -1);
    EXPECT_EQ(Text(plugin, 1), "(none)");
}

TEST_F(PluginModuleTest, LoadingTakesTheLibraryBeforeOut)
{
    folder.Put("good", "first.dll");
    folder.Put("many_formats", "second.dll");
    ASSERT_EQ(plugin.ScanIn(folder.Device().c_str(), KeepPaths), 2);
    ASSERT_EQ(plugin.LoadByIndex(0, 0), 1);
    EXPECT_EQ(Text(plugin, 1), "Sample");
    ASSERT_EQ(plugin.LoadByIndex(1, 0), 1);
    EXPECT_EQ(Text(plugin, 1), "Many");
    EXPECT_FALSE(IsMapped("first.dll"));
    EXPECT_EQ(plugin.LoadLibraryFile(nullptr), -1);
    EXPECT_EQ(plugin.LoadLibraryFile(u"\\nowhere.dll"), -1);
    EXPECT_FALSE(IsMapped("second.dll"));
}

TEST_F(PluginModuleTest, UnloadKeepsTheIndexOfTheLastLoad)
{
    folder.Put("good", "a.dll");
    ASSERT_EQ(plugin.ScanIn(folder.Device().c_str(), KeepPaths), 1);
    ASSERT_EQ(plugin.LoadByIndex(0, 0), 1);
    EXPECT_EQ(plugin.Unload(), 1);
    EXPECT_EQ(plugin.Current(), 0);
    EXPECT_EQ(Text(plugin, 1), "(none)");
}

TEST_F(PluginModuleTest, ALibraryThatHasGoneSinceTheScanFailsToLoad)
{
    folder.Put("good", "a.dll");
    folder.Put("good", "b.dll");
    ASSERT_EQ(plugin.ScanIn(folder.Device().c_str(), KeepPaths), 2);
    ASSERT_EQ(plugin.LoadByIndex(0, 0), 1);
    std::filesystem::remove(folder.Host() / "INPUT/b.dll");
    EXPECT_EQ(plugin.LoadByIndex(1, 0), -1);
    EXPECT_EQ(plugin.Current(), -1);
    EXPECT_FALSE(plugin.IsLoaded());
}

TEST_F(PluginModuleTest, PluginsAreToldOfJapaneseOnly)
{
    folder.Put("good", "a.dll");
    ASSERT_EQ(plugin.ScanIn(folder.Device().c_str(), KeepPaths), 1);
    tavrix::testing::SetLanguage(1033);
    ASSERT_EQ(plugin.LoadByIndex(0, 0), 1);
    EXPECT_EQ(Text(plugin, 2), "00"); // what SetLanguage was called with
    EXPECT_EQ(Text(plugin, 1), "Sample");
    tavrix::testing::SetLanguage(1041);
    ASSERT_EQ(plugin.LoadByIndex(0, 0), 1);
    EXPECT_EQ(Text(plugin, 2), "17");
    EXPECT_EQ(Text(plugin, 1), "見本");
    ASSERT_EQ(plugin.LoadByIndex(0, 9), 1);
    EXPECT_EQ(Text(plugin, 2), "09");
}

TEST_F(PluginModuleTest, ProbingDoesNotSetALanguage)
{
    tavrix::testing::SetLanguage(1041);
    ASSERT_EQ(plugin.Probe(DevicePath(Library("good")).c_str(), u"TX", u"INPUT"), 1);
    EXPECT_EQ(Text(plugin, 2), "00");
}

TEST_F(PluginModuleTest, InfoTerminatesWhatAPluginDoesNot)
{
    ASSERT_EQ(plugin.Probe(DevicePath(Library("unterminated")).c_str(), u"TX", u"INPUT"), 1);
    WCHAR text[6] = {u'#', u'#', u'#', u'#', u'#', u'#'};
    EXPECT_EQ(plugin.Info(1, text, 5), 1);
    EXPECT_EQ(Utf8(text), "bbbb");
    EXPECT_EQ(text[5], u'#');
    EXPECT_EQ(plugin.Info(1, nullptr, 5), -4);
    EXPECT_EQ(plugin.Info(1, text, 0), -4);
}

TEST_F(PluginModuleTest, ExceptionsOutOfAnExportAreFailures)
{
    folder.Put("throws", "throws-and-goes.dll");
    ASSERT_EQ(plugin.ScanIn(folder.Device().c_str(), KeepPaths), 1);
    tavrix::testing::SetLanguage(1041); // its SetLanguage throws, too
    ASSERT_EQ(plugin.LoadByIndex(0, 0), 1);
    WCHAR text[8] = {};
    EXPECT_EQ(plugin.Info(1, text, 8), -1);
    EXPECT_EQ(plugin.Info(2, text, 8), -1);
    EXPECT_EQ(plugin.Unload(), 1);
    EXPECT_FALSE(IsMapped("throws-and-goes.dll"));
}

} // namespace
