// How the readers use what the host gives them, and what they leave behind.

#include "standard-plugins/tests/modern-readers/Formats.h"

#include "kit/check/ProcessState.h"

#include <filesystem>

using moderntest::EachFormat;
using moderntest::formats;
using plugintest::ByteStream;
using plugintest::Canvas;
using plugintest::CurrentHost;
using plugintest::Decode;
using plugintest::FirstDifference;
using plugintest::IsMapped;
using plugintest::MemoryInUse;
using plugintest::Pixel;
using plugintest::PluginLibrary;

namespace
{

INSTANTIATE_TEST_SUITE_P(Each, EachFormat, testing::ValuesIn(formats), moderntest::NameOfFormat);

} // namespace

TEST_P(EachFormat, TakesAStreamOfSingleBytesLikeAnyOther)
{
    const std::string file = Plain();
    ByteStream whole(file);
    Canvas expected;
    ASSERT_EQ(Decode(plugin, whole, expected), 1);
    for (const uint32_t most : {1u, 7u, 1000u}) {
        ByteStream stream(file, most);
        Canvas canvas;
        EXPECT_EQ(Decode(plugin, stream, canvas), 1);
        EXPECT_EQ(FirstDifference(canvas, expected.width, expected.height,
                                  [&](uint32_t x, uint32_t y) { return expected.At(x, y); }),
                  "")
            << most;
    }
}
