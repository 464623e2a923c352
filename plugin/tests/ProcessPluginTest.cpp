// The calls of the two kinds that change a picture in place, EFFECT and ADJUST, with real libraries
// behind them.

#include "image/Raster.h"
#include "plugin/AdjustPlugin.h"
#include "plugin/EffectPlugin.h"
#include "plugin/FunctionTables.h"
#include "plugin/tests/Watched.h"

namespace
{

using plugintest::Callbacks;
using plugintest::CurrentTold;
using plugintest::Number;
using plugintest::PluginFolder;

struct Effects {
    using Plugin = EffectPlugin;
    static constexpr const char* Word = "EFFECT";
    static constexpr const char* Good = "good_effect";
};
struct Adjustments {
    using Plugin = AdjustPlugin;
    static constexpr const char* Word = "ADJUST";
    static constexpr const char* Good = "good_adjust";
};

template <typename Kind>
class ProcessPluginTest : public ::testing::Test
{
protected:
    ProcessPluginTest() { EXPECT_EQ(image.Create(3, 2, 24, nullptr, nullptr), 1); }
    ~ProcessPluginTest() override { EXPECT_EQ(PluginHeap(), nullptr); }

    void Load(const std::string& fixture)
    {
        std::filesystem::remove_all(folder.Host() / Kind::Word);
        folder.Put(fixture, fixture + ".dll", Kind::Word);
        ASSERT_EQ(plugin.ScanIn(folder.Device().c_str(), ForgetPaths), 1);
        ASSERT_EQ(plugin.LoadByIndex(0, 0), 1);
    }

    tavrix::testing::Scope scope;
    PluginFolder folder;
    typename Kind::Plugin plugin;
    Raster image;
};

using Kinds = ::testing::Types<Effects, Adjustments>;
TYPED_TEST_SUITE(ProcessPluginTest, Kinds);

void ExpectImageAndTables(Raster* image)
{
    EXPECT_EQ(Number(u"image"), reinterpret_cast<uintptr_t>(ToHandle(image)));
    EXPECT_EQ(Number(u"rasters' size"), sizeof(void*) == 8 ? 136u : 68u);
    EXPECT_EQ(Number(u"palettes' size"), sizeof(void*) == 8 ? 88u : 44u);
    EXPECT_EQ(Number(u"can make"), 1u);
    EXPECT_EQ(Number(u"knows picture"), 1u);
}

TYPED_TEST(ProcessPluginTest, ArgumentsArriveInTheirPlaces)
{
    this->Load(TypeParam::Good);
    EXPECT_EQ(this->plugin.Process(&this->image, Callbacks()), 22);
    ExpectImageAndTables(&this->image);
    EXPECT_EQ(CurrentTold().progress, (std::vector<std::pair<u32, u32>>{{1, 2}}));
    EXPECT_EQ(CurrentTold().messages, std::vector<std::u16string>{u"working"});
    EXPECT_EQ(CurrentTold().asked, std::vector<std::u16string>{u"asked"});
    u32 pixel = 0;
    EXPECT_EQ(this->image.GetPixel(0, 0, &pixel), 1);
    EXPECT_EQ(pixel, 0xFFFFFFFFu); // it was black
}

TYPED_TEST(ProcessPluginTest, ConfigureGetsOwnerPictureAndTables)
{
    this->Load(TypeParam::Good);
    const HWND owner = reinterpret_cast<HWND>(uintptr_t{0x4560});
    EXPECT_EQ(this->plugin.Configure(owner, &this->image, Callbacks()), 21);
    EXPECT_EQ(Number(u"owner"), 0x4560u);
    ExpectImageAndTables(&this->image);
    EXPECT_EQ(CurrentTold().messages, std::vector<std::u16string>{u"configured"});
    EXPECT_EQ(CurrentTold().asked, std::vector<std::u16string>{u"asked at configuring"});
}

TYPED_TEST(ProcessPluginTest, ThePluginMayGiveUpWhenTheUserDoes)
{
    this->Load(TypeParam::Good);
    const PluginCallbacks callbacks = Callbacks();
    CurrentTold().progressAnswer = -1;
    EXPECT_EQ(this->plugin.Process(&this->image, callbacks), -9);
    u32 pixel = 0;
    EXPECT_EQ(this->image.GetPixel(0, 0, &pixel), 1);
    EXPECT_EQ(pixel, 0x000000FFu);
}

using EffectPluginTest = ProcessPluginTest<Effects>;

TEST_F(EffectPluginTest, ThePictureMayComeBackAsAnother)
{
    struct Case {
        const char* fixture;
        u32 width, height, depth;
    };
    for (const Case& row : {Case{"effect_depth_8", 40, 30, 8}, Case{"effect_depth_16", 40, 30, 16},
                            Case{"effect_depth_32", 40, 30, 32}, Case{"effect_no_lines", 40, 0, 24},
                            Case{"effect_no_width", 0, 30, 24}, Case{"effect_other_size", 3, 2, 24},
                            Case{"effect_absurd_size", 0, 0, 0}, Case{"effect_odd_depth", 0, 0, 0},
                            Case{"effect_frees_picture", 0, 0, 0}}) {
        SCOPED_TRACE(row.fixture);
        ASSERT_EQ(image.Create(5, 4, 24, nullptr, nullptr), 1);
        Load(row.fixture);
        EXPECT_EQ(plugin.Process(&image, Callbacks()), 1);
        (void)image.UnlockAll();
        RasterInfo info = {};
        info.size = sizeof(info);
        ASSERT_EQ(image.GetInfo(&info), 1);
        EXPECT_EQ(info.width, row.width);
        EXPECT_EQ(info.height, row.height);
        EXPECT_EQ(info.depth, row.depth);
    }
}

} // namespace
