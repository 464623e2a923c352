// The calls of a PRINT plugin, with a real library behind them.

#include "plugin/PrintPlugin.h"

#include "image/Raster.h"
#include "plugin/FunctionTables.h"
#include "plugin/tests/Watched.h"

namespace
{

using plugintest::Callbacks;
using plugintest::CurrentTold;
using plugintest::Number;
using plugintest::PluginFolder;

class PrintPluginTest : public ::testing::Test
{
protected:
    PrintPluginTest()
    {
        EXPECT_EQ(image.Create(3, 2, 24, nullptr, nullptr), 1);
        folder.Put("good_print", "a.dll", "PRINT");
        EXPECT_EQ(plugin.ScanIn(folder.Device().c_str(), ForgetPaths), 1);
        EXPECT_EQ(plugin.LoadByIndex(0, 0), 1);
    }
    ~PrintPluginTest() override { EXPECT_EQ(PluginHeap(), nullptr); }

    tavrix::testing::Scope scope;
    PluginFolder folder;
    PrintPlugin plugin;
    Raster image;
    const HWND owner = reinterpret_cast<HWND>(uintptr_t{0x4560});
};

TEST_F(PrintPluginTest, ArgumentsArriveInTheirPlaces)
{
    const WCHAR* title = u"Tavrix -image-";
    EXPECT_EQ(plugin.Print(&image, owner, 11, 22, 33, 44, title, Callbacks()), 22);
    EXPECT_EQ(Number(u"image"), reinterpret_cast<uintptr_t>(ToHandle(&image)));
    EXPECT_EQ(Number(u"rasters' size"), sizeof(void*) == 8 ? 136u : 68u);
    EXPECT_EQ(Number(u"palettes' size"), sizeof(void*) == 8 ? 88u : 44u);
    EXPECT_EQ(Number(u"owner"), 0x4560u);
    EXPECT_EQ(Number(u"word 1"), 11u);
    EXPECT_EQ(Number(u"word 2"), 22u);
    EXPECT_EQ(Number(u"word 3"), 33u);
    EXPECT_EQ(Number(u"word 4"), 44u);
    EXPECT_EQ(Number(u"title"), reinterpret_cast<uintptr_t>(title));
    EXPECT_EQ(Number(u"can make"), 1u);
    EXPECT_EQ(Number(u"knows picture"), 1u);
    EXPECT_EQ(CurrentTold().progress, (std::vector<std::pair<u32, u32>>{{1, 2}}));
    EXPECT_EQ(CurrentTold().messages, std::vector<std::u16string>{u"working"});
    EXPECT_EQ(CurrentTold().asked, std::vector<std::u16string>{u"asked"});
}

TEST_F(PrintPluginTest, ConfigureGetsTheOwnerAndThreeCallbacksButNeitherPictureNorTables)
{
    EXPECT_EQ(plugin.Configure(owner, Callbacks()), 21);
    EXPECT_EQ(Number(u"owner"), 0x4560u);
    EXPECT_EQ(Number(u"image"), 0u);
    EXPECT_EQ(Number(u"rasters"), 0u);
    EXPECT_EQ(CurrentTold().messages, std::vector<std::u16string>{u"configured"});
    EXPECT_EQ(CurrentTold().asked, std::vector<std::u16string>{u"asked at configuring"});
    EXPECT_TRUE(CurrentTold().heapAtMessage);
}

TEST_F(PrintPluginTest, ThePluginMayGiveUpWhenTheUserDoes)
{
    const PluginCallbacks callbacks = Callbacks();
    CurrentTold().progressAnswer = -1;
    EXPECT_EQ(plugin.Print(&image, owner, 0, 0, 0, 0, u"", callbacks), -9);
}

} // namespace
