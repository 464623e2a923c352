// Files that break off, are broken or are something else: the answer is negative, nothing is
// allocated for what is not there, and what came stays.

#include "standard-plugins/tests/modern-readers/Boxes.h"
#include "standard-plugins/tests/modern-readers/Formats.h"

#include <algorithm>
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

// Bits of a JPEG XL's header, the lowest of each byte first. (ISO/IEC 18181-1, 9.2 and annex D.)
class JxlBits
{
public:
    void Put(uint32_t value, int bits)
    {
        for (int i = 0; i < bits; ++i, ++count) {
            if (count % 8 == 0)
                bytes += '\0';
            bytes.back() = static_cast<char>(bytes.back() | (value >> i & 1) << count % 8);
        }
    }
    /// One side less one, in 30 bits.
    void PutSide(uint32_t side)
    {
        Put(3, 2);
        Put(side - 1, 30);
    }
    std::string bytes;

private:
    int count = 0;
};

// A picture of the standard's own colours, or an animation of such, whose frame is none.
std::string JxlOfSize(uint32_t width, uint32_t height, bool animated)
{
    JxlBits bits;
    bits.Put(0, 1);
    bits.PutSide(height);
    bits.Put(0, 3); // no ratio
    bits.PutSide(width);
    bits.Put(!animated, 1); // all as it is by itself
    if (animated) {
        bits.Put(1, 1);     // more fields
        bits.Put(0, 3 + 2); // orientation 1, no other size, no preview
        bits.Put(1, 1);     // an animation,
        bits.Put(0, 6 + 1); // a hundred ticks a second, without an end
        bits.Put(0, 3 + 1); // 8 bits, in 16 all the way
        bits.Put(0, 2);     // nothing but colours
        bits.Put(7, 3);     // by the standard's space, colours and brightness
        bits.Put(0, 2);     // nothing unknown
    }
    bits.Put(1, 1); // the standard's sums
    return "\xff\x0a" + bits.bytes + std::string(5000, '\x5a');
}

} // namespace

TEST_P(BrokenFormat, HasTheOutcomeOfTheTableForEveryKeptFile)
{
    const std::string extension = std::string(".") + GetParam().extension;
    auto missing = std::count_if(outcomes.begin(), outcomes.end(), [&](const auto& entry) {
        return entry.first.ends_with(extension);
    });
    EXPECT_GT(missing, 5);
    for (const auto& entry :
         std::filesystem::directory_iterator(moderntest::InputFolder(GetParam()))) {
        const std::string name = entry.path().filename();
        if (name.starts_with("good-"))
            continue;
        const auto found = outcomes.find(name);
        ASSERT_NE(found, outcomes.end()) << name << " has no line in the table";
        --missing;
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
    EXPECT_EQ(missing, 0) << "files of the table that are not kept";
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

TEST_P(BrokenFormat, SurvivesSingleByteChanges)
{
    // No expectation but the sanitizers', a bounded picture and an end. In every byte of the start,
    // where the headers are, and here and there behind it.
    const std::string file = moderntest::Input(
        GetParam(), GetParam().name == std::string("Jxl") ? "good-lossy" : GetParam().plain);
    constexpr size_t startBytes = 150;
    const size_t step = file.size() / 200 + 1;
    for (size_t at = 0; at < file.size(); at += at < startBytes ? 1 : step) {
        std::string changed = file;
        changed[at] = static_cast<char>(changed[at] ^ (at % 3 == 0   ? 0x01
                                                       : at % 3 == 1 ? 0x80
                                                                     : 0xff));
        ByteStream stream(changed);
        Canvas canvas;
        canvas.forgets = true;
        (void)Decode(plugin, stream, canvas);
        ASSERT_LE(uint64_t{canvas.stride} * canvas.height, uint64_t{1} << 28) << at;
        ASSERT_LT(canvas.peak.Most(), size_t{1} << 30) << at;
    }
}

TEST_P(BrokenFormat, ReadsOnPastGarbageBehindThePicture)
{
    ByteStream stream(Plain() + std::string(1000, '\0'));
    Canvas canvas;
    EXPECT_EQ(Decode(plugin, stream, canvas), 1);
}

TEST_P(BrokenFormat, RefusesEverySizeThatTheFileCannotHold)
{
    const auto expectRefused = [&](const std::string& file, const std::string& what) {
        ByteStream stream(file);
        Canvas canvas;
        EXPECT_LT(Decode(plugin, stream, canvas), 0) << what;
        EXPECT_EQ(canvas.allocations, 0) << what;
        EXPECT_LT(canvas.peak.Most(), 64u << 20) << what;
    };
    for (const auto& [width, height] : {std::pair{65500u, 65500u},
                                        {65535u, 65535u},
                                        {17000u, 17000u},
                                        {10000000u, 1u},
                                        {1u, 10000000u},
                                        {1u << 30, 1u << 30}}) {
        const std::string size = std::to_string(width) + "x" + std::to_string(height);
        if (GetParam().name == std::string("Jxl")) {
            for (const bool animated : {false, true}) {
                expectRefused(JxlOfSize(width, height, animated), size);
                // Of sizes that a picture can have the memory is reckoned, and the user told.
                EXPECT_EQ(CurrentHost().messages.size(), std::max(width, height) < 65536 ? 1u : 0u)
                    << size;
            }
            continue;
        }
        expectRefused(moderntest::WithSize(Plain(), width, height), size);
        if (GetParam().name == std::string("Avif")) {
            const std::string sequence = moderntest::Input(GetParam(), "good-sequence");
            expectRefused(moderntest::WithSize(sequence, width, height), "animated " + size);
        }
    }
}

TEST(ModernReadersBroken, JxlHeadersOfThisTestTellTheirSize)
{
    const PluginLibrary plugin("INPUT/JXL");
    for (const bool animated : {false, true}) {
        ByteStream stream(JxlOfSize(65500, 65499, animated));
        RasterInfo info = {};
        info.size = sizeof info;
        EXPECT_EQ(plugin.getImageInfo(nullptr, &stream.record, &info), 1) << animated;
        EXPECT_EQ(info.width, 65500u);
        EXPECT_EQ(info.height, 65499u);
    }
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
