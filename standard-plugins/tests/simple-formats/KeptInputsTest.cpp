// The kept files, each with its outcome and how many of its lines are good.

#include "standard-plugins/tests/simple-formats/Pictures.h"

#include <gtest/gtest.h>

#include <set>

#include "platform/testing/core/TestPaths.h"

using namespace plugintest;

namespace
{

/// Good files are read whole with 1. Of the others the result is negative, and `lines` lines are
/// there; where it is 0 no picture was asked for.
struct Input {
    const char* name;
    bool good = true;
    uint32_t lines = 0;
};

struct Format {
    const char* plugin;
    const char* folder;
    std::vector<Input> inputs;
};

constexpr bool bad = false;

const Format formats[] = {
    {"INPUT/BMP",
     "bmp",
     {{"good-24-bits.bmp"},
      {"good-24-bits-from-the-top.bmp"},
      {"good-8-bits.bmp"},
      {"good-core-header-1-bit.bmp"},
      {"good-run-lengths.bmp"},
      {"good-masks-of-10-bits-and-alpha.bmp"},
      {"good-claims-no-length.bmp"},
      {"good-profile-behind-the-pixels.bmp"},
      {"empty.bmp", bad},
      {"one-byte.bmp", bad},
      {"mark-alone.bmp", bad},
      {"really-an-error-page.bmp", bad},
      {"really-gzip.bmp", bad},
      {"really-a-png.bmp", bad},
      {"height-minus-2147483648.bmp", bad},
      {"width-0.bmp", bad},
      {"height-0.bmp", bad},
      {"width-65536.bmp", bad},
      {"height-65536.bmp", bad},
      {"size-65535x65535-little-data.bmp", bad},
      {"size-65535x65535-some-rows-of-1-bit.bmp", bad, 2},
      {"bits-0.bmp", bad},
      {"bits-17.bmp", bad},
      {"planes-0.bmp", bad},
      {"header-of-13-bytes.bmp", bad},
      {"header-of-4294967295-bytes.bmp", bad},
      {"embedded-jpeg.bmp", bad},
      {"embedded-png.bmp", bad},
      {"compression-7.bmp", bad},
      {"pixels-beyond-the-end.bmp", bad},
      {"pixels-in-the-header.bmp", bad},
      {"masks-with-gaps.bmp", bad},
      {"last-row-missing.bmp", bad, 7},
      {"last-byte-missing.bmp", bad, 7},
      {"palette-of-4294967295.bmp", bad},
      {"index-beyond-the-palette.bmp", bad, 8},
      {"runs-move-over-the-edge.bmp", bad, 3},
      {"runs-move-over-the-top.bmp", bad, 3},
      {"runs-beyond-a-row.bmp", bad, 8},
      {"runs-without-an-end.bmp", bad, 8},
      {"runs-break-off.bmp", bad, 4},
      {"runs-of-24-bits-in-a-header-of-40.bmp", bad}}},
    {"INPUT/PNM",
     "pnm",
     {{"good-raw-grey.pnm"},
      {"good-plain-colour.pnm"},
      {"good-raw-bits.pnm"},
      {"good-grey-with-alpha-of-16-bits.pnm"},
      {"good-second-picture-behind.pnm"},
      {"empty.pnm", bad},
      {"one-byte.pnm", bad},
      {"mark-alone.pnm", bad},
      {"really-an-error-page.pnm", bad},
      {"really-gzip.pnm", bad},
      {"really-a-png.pnm", bad},
      {"width-4294967296.pnm", bad},
      {"width-99999999999999999999.pnm", bad},
      {"width-65536.pnm", bad},
      {"width-0.pnm", bad},
      {"height-0.pnm", bad},
      {"width-negative.pnm", bad},
      {"maxval-missing.pnm", bad},
      {"maxval-0.pnm", bad},
      {"maxval-65536.pnm", bad},
      {"sample-beyond-maxval.pnm", bad, 4},
      {"plain-sample-beyond-maxval.pnm", bad, 1},
      {"plain-sample-of-70000.pnm", bad, 1},
      {"plain-letters.pnm", bad, 1},
      {"plain-bit-2.pnm", bad, 1},
      {"size-65535x65535-little-data.pnm", bad},
      {"size-65535x65535-some-rows-of-bits.pnm", bad, 2},
      {"comment-without-an-end.pnm", bad},
      {"type-unknown.pnm", bad},
      {"type-and-depth-disagree.pnm", bad},
      {"depth-missing.pnm", bad},
      {"header-without-an-end.pnm", bad},
      {"last-byte-missing.pnm", bad, 5}}},
    {"INPUT/TGA",
     "tga",
     {{"good-colour.tga"},
      {"good-colour-from-the-bottom-right.tga"},
      {"good-runs.tga"},
      {"good-map.tga"},
      {"good-footer-behind.tga"},
      {"empty.tga", bad},
      {"one-byte.tga", bad},
      {"mark-alone.tga", bad},
      {"really-an-error-page.tga", bad},
      {"really-gzip.tga", bad},
      {"really-a-png.tga", bad},
      {"map-of-65535-entries-of-1-bit.tga", bad},
      {"map-of-65535-entries-missing.tga", bad},
      {"map-of-0-entries.tga", bad},
      {"map-missing.tga", bad},
      {"index-beyond-the-map.tga", bad, 8},
      {"index-before-the-map.tga", bad, 8},
      {"type-0.tga", bad},
      {"type-32.tga", bad},
      {"bits-17.tga", bad},
      {"interleaved.tga", bad},
      {"width-0.tga", bad},
      {"height-0.tga", bad},
      {"size-65535x65535-little-data.tga", bad},
      {"size-65535x65535-some-rows.tga", bad, 2},
      {"runs-past-the-end.tga", bad, 8},
      {"runs-break-off.tga", bad, 7},
      {"last-byte-missing.tga", bad, 7}}},
    {"INPUT/PCX",
     "pcx",
     {{"good-colour.pcx"},
      {"good-256-colours.pcx"},
      {"good-16-colours-in-planes.pcx"},
      {"good-not-coded.pcx"},
      {"empty.pcx", bad},
      {"one-byte.pcx", bad},
      {"mark-alone.pcx", bad},
      {"really-an-error-page.pcx", bad},
      {"really-gzip.pcx", bad},
      {"really-a-png.pcx", bad},
      {"version-1.pcx", bad},
      {"version-6.pcx", bad},
      {"encoding-2.pcx", bad},
      {"bits-3.pcx", bad},
      {"planes-0.pcx", bad},
      {"planes-255.pcx", bad},
      {"planes-shorter-than-a-row.pcx", bad},
      {"planes-of-0-bytes.pcx", bad},
      {"right-before-left.pcx", bad},
      {"size-65536x8.pcx", bad},
      {"size-65535x65535-little-data.pcx", bad},
      {"size-65535x65535-some-rows.pcx", bad, 2},
      {"palette-missing.pcx", bad, 8},
      {"palette-broken-off.pcx", bad, 8},
      {"palette-and-no-pixels.pcx", bad},
      {"runs-past-the-end.pcx", bad, 8},
      {"runs-break-off.pcx", bad, 2}}},
    {"INPUT/ICO",
     "ico",
     {{"good-bitmap.ico"},
      {"good-cursor.ico"},
      {"good-png.ico"},
      {"good-bitmap-and-larger-png.ico"},
      {"good-255-entries-of-one-picture.ico"},
      {"good-sizes-disagree.ico"},
      {"empty.ico", bad},
      {"one-byte.ico", bad},
      {"mark-alone.ico", bad},
      {"really-an-error-page.ico", bad},
      {"really-gzip.ico", bad},
      {"really-a-png.ico", bad},
      {"entry-beyond-the-end.ico", bad},
      {"entry-in-the-directory.ico", bad},
      {"entry-at-4294967295.ico", bad},
      {"entry-of-4294967295-bytes.ico", bad, 16},
      {"one-of-two-entries-beyond-the-end.ico", bad, 16},
      {"no-entries.ico", bad},
      {"directory-broken-off.ico", bad},
      {"height-odd.ico", bad},
      {"height-0.ico", bad},
      {"bits-17.ico", bad},
      {"run-lengths.ico", bad},
      {"size-65535x65535-little-data.ico", bad},
      {"mask-missing.ico", bad, 16},
      {"mask-broken-off.ico", bad, 16},
      {"pixels-broken-off.ico", bad, 6},
      {"png-65536-wide.ico", bad},
      {"png-data-spoiled.ico", bad, 12},
      {"png-broken-off.ico", bad}}},
};

void PrintTo(const Format& format, std::ostream* out)
{
    *out << format.folder;
}

class SimpleKeptInputs : public testing::TestWithParam<Format>
{
protected:
    SimpleKeptInputs() { CurrentHost() = {}; }
    static std::filesystem::path Folder(const char* format)
    {
        return std::filesystem::path(tavrix::testing::InSource("/tests/inputs")) / format;
    }
    tavrix::testing::Scope scope;
    PluginLibrary plugin{GetParam().plugin};
};

INSTANTIATE_TEST_SUITE_P(Each, SimpleKeptInputs, testing::ValuesIn(formats),
                         [](const auto& entry) { return std::string(entry.param.folder); });

uint32_t CountWritten(const Canvas& canvas)
{
    uint32_t count = 0;
    for (uint32_t y = 0; y < canvas.height; ++y)
        count += canvas.WasWritten(y);
    return count;
}

} // namespace

TEST_P(SimpleKeptInputs, ComeOutAsTheirNamesSay)
{
    std::set<std::string> expected;
    for (const Input& input : GetParam().inputs) {
        SCOPED_TRACE(input.name);
        expected.insert(input.name);
        ByteStream stream(FileBytes(Folder(GetParam().folder) / input.name));
        Canvas canvas;
        canvas.forgets = true;
        const int32_t result = Decode(plugin, stream, canvas);
        if (input.good) {
            EXPECT_EQ(result, 1);
            EXPECT_GT(canvas.height, 0u);
            EXPECT_EQ(CountWritten(canvas), canvas.height);
        } else {
            EXPECT_LT(result, 0);
            EXPECT_EQ(CountWritten(canvas), input.lines);
            EXPECT_EQ(canvas.allocations, input.lines > 0 ? 1 : 0);
        }
        // Never more than 64 million pixels for a few rows, and rows alone in the decoder.
        EXPECT_LE(uint64_t{canvas.width} * canvas.height, uint64_t{64} << 20);
        EXPECT_LT(stream.peak.Most(), 2u << 20);
        EXPECT_LT(canvas.peak.Most(), 2u << 20);
    }
    std::set<std::string> kept;
    for (const auto& entry : std::filesystem::directory_iterator(Folder(GetParam().folder)))
        kept.insert(entry.path().filename());
    EXPECT_EQ(kept, expected);
    for (const Input& input : GetParam().inputs)
        EXPECT_EQ(std::string(input.name).starts_with("good-"), input.good) << input.name;
}

TEST_P(SimpleKeptInputs, OfOtherFormatsAreRefusedWithoutAPicture)
{
    for (const char* other : {"bmp", "pnm", "tga", "pcx", "ico", "jpeg", "png"}) {
        if (other == std::string(GetParam().folder))
            continue;
        for (const auto& entry : std::filesystem::directory_iterator(Folder(other))) {
            ByteStream stream(FileBytes(entry.path()));
            Canvas canvas;
            EXPECT_LT(Decode(plugin, stream, canvas), 0) << entry.path();
            EXPECT_EQ(canvas.allocations, 0) << entry.path();
        }
    }
}

TEST_P(SimpleKeptInputs, SurviveEverySingleByteChange)
{
    // No expectation but the sanitizers', a bounded picture and an end.
    for (const Input& input : GetParam().inputs) {
        const std::string file = FileBytes(Folder(GetParam().folder) / input.name);
        if (!input.good || file.size() > 2000)
            continue;
        for (size_t at = 0; at < file.size(); ++at)
            for (const uint8_t change : {0x01, 0x80, 0xff}) {
                std::string changed = file;
                changed[at] = static_cast<char>(changed[at] ^ change);
                ByteStream stream(changed);
                Canvas canvas;
                canvas.forgets = true;
                (void)Decode(plugin, stream, canvas);
                ASSERT_LE(uint64_t{canvas.width} * canvas.height, uint64_t{64} << 20)
                    << input.name << " at " << at;
            }
    }
}
