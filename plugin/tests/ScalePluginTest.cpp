// The call of a SCALE plugin, with a real library behind it.

#include "plugin/ScalePlugin.h"

#include "image/Raster.h"
#include "plugin/FunctionTables.h"
#include "plugin/tests/Watched.h"

namespace
{

using plugintest::Callbacks;
using plugintest::CurrentTold;
using plugintest::Number;
using plugintest::PluginFolder;

TEST(ScalePluginTest, ArgumentsArriveInTheirPlaces)
{
    const tavrix::testing::Scope scope;
    const PluginFolder folder;
    folder.Put("good_scale", "a.dll", "SCALE");
    ScalePlugin plugin;
    ASSERT_EQ(plugin.ScanIn(folder.Device().c_str(), ForgetPaths), 1);
    ASSERT_EQ(plugin.LoadByIndex(0, 0), 1);
    Raster image;
    ASSERT_EQ(image.Create(3, 2, 24, nullptr, nullptr), 1);
    EXPECT_EQ(plugin.ScaleImage(&image, 9, 8, Callbacks()), 22);
    EXPECT_EQ(Number(u"image"), reinterpret_cast<uintptr_t>(ToHandle(&image)));
    EXPECT_EQ(Number(u"rasters' size"), sizeof(void*) == 8 ? 136u : 68u);
    EXPECT_EQ(Number(u"palettes' size"), sizeof(void*) == 8 ? 88u : 44u);
    EXPECT_EQ(Number(u"word 1"), 9u);
    EXPECT_EQ(Number(u"word 2"), 8u);
    EXPECT_EQ(Number(u"can make"), 1u);
    EXPECT_EQ(Number(u"knows picture"), 1u);
    EXPECT_EQ(CurrentTold().progress, (std::vector<std::pair<u32, u32>>{{1, 2}}));
    EXPECT_EQ(CurrentTold().messages, std::vector<std::u16string>{u"working"});
    EXPECT_EQ(CurrentTold().asked, std::vector<std::u16string>{u"asked"});
    RasterInfo info = {};
    info.size = sizeof(info);
    ASSERT_EQ(image.GetInfo(&info), 1);
    EXPECT_EQ(info.width, 9u);
    EXPECT_EQ(info.height, 8u);
    EXPECT_EQ(PluginHeap(), nullptr);
}

} // namespace
