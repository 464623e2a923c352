// The negative.

#include "platform/testing/WindowTesting.h"
#include "standard-plugins/tests/adjustments/Adjusting.h"

using namespace plugintest;

namespace
{

class InvertTest : public AdjustTest
{
protected:
    InvertTest() { Load("Invert.dll"); }
};

} // namespace

TEST_F(InvertTest, TurnsEveryValueOver)
{
    ExpectEverywhere([](Color color) {
        for (u8& value : color)
            value = static_cast<u8>(255 - value);
        return color;
    });
}

TEST_F(InvertTest, TwiceIsThePictureAsItWas)
{
    Raster image;
    Fill(&image, 33, 7, 24, Wild);
    EXPECT_EQ(Process(&image), 1);
    EXPECT_EQ(Process(&image), 1);
    EXPECT_TRUE(PixelsOf(&image) == PixelsOf(33, 7, Wild));
}

TEST_F(InvertTest, AsksNothing)
{
    Raster image;
    Fill(&image, 3, 7, 24, Wild);
    bool shown = false;
    tavrix::testing::OnModal([&shown](HWND dialog, bool) {
        shown = true;
        PostMessageW(dialog, WM_COMMAND, IDCANCEL, 0);
    });
    EXPECT_EQ(plugin.Configure(nullptr, &image, WriterCallbacks()), 1);
    tavrix::testing::OnModal(nullptr);
    EXPECT_FALSE(shown);
    EXPECT_TRUE(CurrentWriterHost().settings.empty());
}
