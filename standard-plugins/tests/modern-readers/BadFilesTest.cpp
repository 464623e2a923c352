// Files that break off, are broken or are something else: the answer is negative, nothing is
// allocated for what is not there, and what came stays.

#include "standard-plugins/tests/modern-readers/Formats.h"

#include <cstdlib>
#include <filesystem>
#include <map>

using moderntest::EachFormat;
using moderntest::Format;
using moderntest::formats;
using plugintest::ByteStream;
using plugintest::Canvas;
using plugintest::CurrentHost;
using plugintest::Decode;
using plugintest::PluginLibrary;

namespace
{

enum class Outcome {
    Read,    // with 1
    Refused, // negative, and no picture was asked for
    Broken   // negative; what the library could tell of it may be there

};

const std::map<std::string, Outcome> outcomes = {
    {"empty.avif", Outcome::Refused},
    {"one-byte.avif", Outcome::Refused},
    {"type-box-alone.avif", Outcome::Refused},
    {"really-a-png.avif", Outcome::Refused},
    {"really-an-error-page.avif", Outcome::Refused},
    {"really-gzip.avif", Outcome::Refused},
    {"boxes-longer-than-the-file.avif", Outcome::Refused},
    // The coded data have no checksum: what is spoiled makes other pixels.
    {"data-spoiled.avif", Outcome::Read},
    {"grid-of-65536-tiles.avif", Outcome::Refused},
    {"grid-of-65535x65535.avif", Outcome::Refused},
    {"size-17000x17000.avif", Outcome::Refused},
    {"size-65536x53.avif", Outcome::Refused},
    {"size-75x65536.avif", Outcome::Refused},
    {"size-0x53.avif", Outcome::Refused},
    {"size-75x0.avif", Outcome::Refused},
    {"size-4294967295x4294967295.avif", Outcome::Refused},
    // The coded size counts.
    {"size-76x53.avif", Outcome::Read},
    {"size-60x40.avif", Outcome::Refused},
    {"large-flat.avif", Outcome::Read},
    {"profile-broken.avif", Outcome::Read},
    {"empty.jxl", Outcome::Refused},
    {"one-byte.jxl", Outcome::Refused},
    {"signature-alone.jxl", Outcome::Refused},
    {"container-signature-alone.jxl", Outcome::Refused},
    {"really-a-png.jxl", Outcome::Refused},
    {"really-an-error-page.jxl", Outcome::Refused},
    {"really-gzip.jxl", Outcome::Refused},
    {"data-spoiled.jxl", Outcome::Broken},
    {"size-8192x8192.jxl", Outcome::Refused},
    {"size-65536-wide.jxl", Outcome::Refused},
    {"large-flat.jxl", Outcome::Read},
    {"empty.heic", Outcome::Refused},
    {"one-byte.heic", Outcome::Refused},
    {"type-box-alone.heic", Outcome::Refused},
    {"really-a-png.heic", Outcome::Refused},
    {"really-an-error-page.heic", Outcome::Refused},
    {"really-gzip.heic", Outcome::Refused},
    {"boxes-longer-than-the-file.heic", Outcome::Refused},
    // The coded data have no checksum: what is spoiled makes other pixels.
    {"data-spoiled.heic", Outcome::Read},
    {"size-17000x17000.heic", Outcome::Refused},
    {"size-65536x53.heic", Outcome::Refused},
    {"size-75x65536.heic", Outcome::Refused},
    {"size-0x53.heic", Outcome::Refused},
    {"size-75x0.heic", Outcome::Refused},
    {"size-4294967295x4294967295.heic", Outcome::Refused},
    // The coded size counts.
    {"size-76x53.heic", Outcome::Read},
    // The coded size counts.
    {"size-60x40.heic", Outcome::Read},
    {"large-flat.heic", Outcome::Read},
    {"profile-broken.heic", Outcome::Read},
};

class BrokenFormat : public EachFormat
{
};

INSTANTIATE_TEST_SUITE_P(Each, BrokenFormat, testing::ValuesIn(formats), moderntest::NameOfFormat);

// The rows of `part` that differ from those of `whole`, of those that were written.
uint32_t RowsThatDiffer(const Canvas& part, const Canvas& whole)
{
    uint32_t rows = 0;
    for (uint32_t y = 0; y < part.height; ++y) {
        bool differs = false;
        for (uint32_t x = 0; part.WasWritten(y) && x < part.width; ++x)
            differs = differs || !(part.At(x, y) == whole.At(x, y));
        rows += differs;
    }
    return rows;
}

} // namespace

TEST_P(BrokenFormat, HasTheOutcomeOfTheTableForEveryKeptFile)
{
    size_t seen = 0;
    for (const auto& entry :
         std::filesystem::directory_iterator(moderntest::InputFolder(GetParam()))) {
        const std::string name = entry.path().filename();
        if (name.starts_with("good-"))
            continue;
        const auto found = outcomes.find(name);
        ASSERT_NE(found, outcomes.end()) << name << " has no line in the table";
        ++seen;
        for (const uint32_t most : {0xffffffffu, 1u}) {
            ByteStream stream(moderntest::Contents(entry.path()), most);
            Canvas canvas;
            const int32_t result = Decode(plugin, stream, canvas);
            EXPECT_EQ(result > 0, found->second == Outcome::Read) << name << ": " << result;
            if (found->second == Outcome::Refused) {
                EXPECT_EQ(canvas.allocations, 0) << name;
            }
            EXPECT_LT(canvas.peak.Most(), 64u << 20) << name;
        }
    }
    EXPECT_GT(seen, 5u);
}

TEST_P(BrokenFormat, IsNegativeForEveryFileThatBreaksOff)
{
    const std::string file = Plain();
    for (size_t part = 0; part < 16; ++part) {
        ByteStream stream(file.substr(0, file.size() * part / 16));
        Canvas canvas;
        EXPECT_LT(Decode(plugin, stream, canvas), 0) << part;
        ByteStream again(file.substr(0, file.size() * part / 16));
        again.failsAtEnd = true;
        Canvas other;
        EXPECT_LT(Decode(plugin, again, other), 0) << part;
    }
    ByteStream almost(file.substr(0, file.size() - 1));
    Canvas canvas;
    EXPECT_LT(Decode(plugin, almost, canvas), 0);
}

TEST_P(BrokenFormat, ReadsOnPastGarbageBehindThePicture)
{
    ByteStream stream(Plain() + std::string(1000, '\0'));
    Canvas canvas;
    EXPECT_EQ(Decode(plugin, stream, canvas), 1);
}

TEST(ModernReadersBroken, AvifOfTilesKeepsTheRowsBeforeTheBreak)
{
    PluginLibrary plugin("INPUT/AVIF");
    CurrentHost() = {};
    const std::string file = moderntest::Input(formats[0], "good-grid");
    ByteStream sound(file);
    Canvas whole;
    ASSERT_EQ(Decode(plugin, sound, whole), 1);
    ByteStream stream(file.substr(0, file.size() - 100));
    Canvas canvas;
    EXPECT_LT(Decode(plugin, stream, canvas), 0);
    ASSERT_EQ(canvas.height, whole.height);
    EXPECT_TRUE(canvas.WasWritten(63));
    EXPECT_FALSE(canvas.WasWritten(191));
    // The last row beside the break is read without the colours below it.
    EXPECT_LE(RowsThatDiffer(canvas, whole), 1u);
}

TEST(ModernReadersBroken, JxlShowsCoarselyWhatCameBeforeTheBreak)
{
    PluginLibrary plugin("INPUT/JXL");
    CurrentHost() = {};
    const std::string file = moderntest::Input(formats[1], "good-groups");
    ByteStream sound(file);
    Canvas whole;
    ASSERT_EQ(Decode(plugin, sound, whole), 1);
    ByteStream stream(file.substr(0, file.size() * 3 / 4));
    Canvas canvas;
    EXPECT_LT(Decode(plugin, stream, canvas), 0);
    ASSERT_EQ(canvas.height, whole.height);
    double error = 0;
    for (uint32_t y = 0; y < whole.height; ++y)
        for (uint32_t x = 0; x < whole.width; ++x)
            error += std::abs(canvas.At(x, y).green - whole.At(x, y).green);
    EXPECT_LT(error / (whole.height * whole.width), 12);
    EXPECT_TRUE(canvas.WasWritten(whole.height - 1));
}

TEST(ModernReadersBroken, HeifReadsAPictureOfTilesAndRefusesOneThatPromisesTooMany)
{
    // The containers are of one family, and so are their grids.
    PluginLibrary plugin("INPUT/HEIF");
    CurrentHost() = {};
    const std::string file = moderntest::Input(formats[0], "good-grid");
    const auto expected = moderntest::Decoded(file, "heic", formats[2].reference);
    ASSERT_GT(expected.width, 0u);
    ByteStream sound(file);
    Canvas whole;
    EXPECT_EQ(Decode(plugin, sound, whole), 1);
    EXPECT_EQ(moderntest::LargestStep(whole, expected), 0);
    for (const char* name : {"grid-of-65536-tiles", "grid-of-65535x65535"}) {
        ByteStream stream(moderntest::Input(formats[0], name));
        Canvas canvas;
        EXPECT_LT(Decode(plugin, stream, canvas), 0) << name;
        EXPECT_EQ(canvas.allocations, 0) << name;
    }
}

TEST(ModernReadersBroken, ShowsThePixelsAsTheyAreWhereTheProfileIsBroken)
{
    for (const Format* format : {&formats[0], &formats[2]}) {
        PluginLibrary plugin(format->plugin);
        CurrentHost() = {};
        const auto plain = moderntest::Decoded(moderntest::Input(*format, "good-profile"),
                                               format->extension, format->reference);
        ByteStream stream(moderntest::Input(*format, "profile-broken"));
        Canvas canvas;
        EXPECT_EQ(Decode(plugin, stream, canvas), 1) << format->name;
        EXPECT_EQ(moderntest::LargestStep(canvas, plain), 0) << format->name;
    }
}
