// The kept files of the three formats come out as their names say: `good-` is read whole, and each
// of the others has its line here.

#include "standard-plugins/tests/library-readers/References.h"

#include <map>
#include <set>

using plugintest::BytesOf;
using plugintest::ByteStream;
using plugintest::Canvas;
using plugintest::CurrentHost;
using plugintest::Decode;
using plugintest::KeptFolder;
using plugintest::PluginLibrary;

namespace
{

constexpr uint32_t allLines = 20;

// The lines that are there at the least; -1: nothing is allocated.
using Outcomes = std::map<std::string, int>;

const Outcomes gifOutcomes = {
    {"empty.gif", -1},
    {"one-byte.gif", -1},
    {"magic-alone.gif", -1},
    {"really-an-error-page.gif", -1},
    {"really-gzip.gif", -1},
    {"really-a-png.gif", -1},
    {"end-block-missing.gif", allLines},
    {"screen-0x0.gif", -1},
    {"screen-65535x65535.gif", -1},
    {"frame-0-wide.gif", -1},
    {"frame-0-high.gif", -1},
    {"frame-and-screen-65535x65535.gif", -1}, // not even its first row comes
    {"frame-missing.gif", -1},
    {"code-size-0.gif", -1},
    {"code-size-9.gif", -1},
    {"code-size-12.gif", -1},
    {"code-size-255.gif", -1},
    {"code-that-nothing-defines.gif", -1},
    {"end-code-at-once.gif", -1},
    {"palette-missing.gif", -1},
    {"palette-index-beyond-the-palette.gif", allLines},
    {"unknown-block.gif", -1},
};

const Outcomes tiffOutcomes = {
    {"empty.tif", -1},
    {"one-byte.tif", -1},
    {"magic-alone.tif", -1},
    {"really-an-error-page.tif", -1},
    {"really-gzip.tif", -1},
    {"really-a-png.tif", -1},
    {"directory-is-its-own-next.tif", allLines},
    {"directory-beyond-the-end.tif", -1},
    {"next-directory-beyond-the-end.tif", allLines},
    {"directory-of-65535-entries.tif", -1},
    {"directory-without-entries.tif", -1},
    {"directories-in-a-ring.tif", -1},
    {"0-wide.tif", -1},
    {"0-high.tif", -1},
    {"65536-wide.tif", -1},
    {"4294967295-high.tif", -1},
    {"65535x65535-little-data.tif", -1},
    {"strip-count-4294967295.tif", -1},
    {"strip-offset-beyond-the-end.tif", -1},
    {"0-rows-a-strip.tif", -1},
    {"65535-samples.tif", -1},
    {"0-samples.tif", -1},
    {"compression-60000.tif", -1},
    {"photometric-9999.tif", -1},
    {"old-jpeg.tif", -1},
    {"tile-0-wide.tif", -1},
    {"tile-0-high.tif", -1},
    {"tile-4294967280-wide.tif", -1},
    {"tile-65536x65536.tif", -1},
    {"lzw-spoiled-from-the-third-strip.tif", 8},
    {"half.tif", -1}, // its directory lies at the end
};

const Outcomes webpOutcomes = {
    {"empty.webp", -1},
    {"one-byte.webp", -1},
    {"magic-alone.webp", -1},
    {"really-an-error-page.webp", -1},
    {"really-gzip.webp", -1},
    {"really-a-png.webp", -1},
    {"riff-alone.webp", -1},
    {"riff-is-a-sound.webp", -1},
    {"riff-too-long.webp", allLines},
    {"riff-too-short.webp", -1},
    {"riff-of-0-bytes.webp", -1},
    {"chunk-longer-than-the-file.webp", -1},
    {"half-lossy.webp", 0},
    {"half-lossless.webp", 0},
    {"lossy-0-wide.webp", -1},
    {"lossy-16383x16383-little-data.webp", -1},
    {"lossless-16384x16384-little-data.webp", -1},
    {"lossless-wrong-signature.webp", -1},
    {"canvas-16777216x16777216.webp", -1},
    {"canvas-65535x65535-for-a-small-frame.webp", -1},
    {"frame-beside-the-canvas.webp", -1},
    {"animation-without-frames.webp", -1},
    {"canvas-of-another-size.webp", -1},
    {"picture-missing.webp", -1},
    {"alpha-without-colours.webp", -1},
};

struct Format {
    const char* library;
    const char* folder;
    const Outcomes* outcomes;
};

const Format formats[] = {{"INPUT/GIF", "gif", &gifOutcomes},
                          {"INPUT/TIFF", "tiff", &tiffOutcomes},
                          {"INPUT/WebP", "webp", &webpOutcomes}};

// Rows of 65,535 pixels and the libraries' own state.
constexpr size_t mostMemory = 12u << 20;

class KeptFiles : public plugintest::ReaderTest, public testing::WithParamInterface<Format>
{
protected:
    void ExpectGood(const std::string& name)
    {
        ByteStream stream(BytesOf(KeptFolder(GetParam().folder) / name));
        Canvas canvas;
        EXPECT_EQ(Decode(plugin, stream, canvas), 1);
        ASSERT_GT(canvas.height, 0u);
        for (uint32_t y = 0; y < canvas.height; ++y)
            EXPECT_TRUE(canvas.WasWritten(y)) << y;
    }
    void ExpectBad(const std::string& name, int lines)
    {
        ByteStream stream(BytesOf(KeptFolder(GetParam().folder) / name));
        Canvas canvas;
        canvas.forgets = true; // only the reader's own memory counts
        EXPECT_LT(Decode(plugin, stream, canvas), 0);
        EXPECT_FALSE(canvas.askedTooMuch);
        EXPECT_LT(stream.peak.Most(), mostMemory);
        EXPECT_LT(canvas.peak.Most(), mostMemory);
        if (lines < 0) {
            EXPECT_EQ(canvas.allocations, 0);
        }
        for (int y = 0; y < lines; ++y)
            EXPECT_TRUE(canvas.WasWritten(static_cast<uint32_t>(y))) << y;
    }

    PluginLibrary plugin{GetParam().library};
};

INSTANTIATE_TEST_SUITE_P(Each, KeptFiles, testing::ValuesIn(formats),
                         [](const auto& entry) { return std::string(entry.param.folder); });

} // namespace

TEST_P(KeptFiles, ComeOutAsTheirNamesSay)
{
    std::set<std::string> listed;
    for (const auto& entry : *GetParam().outcomes)
        listed.insert(entry.first);
    for (const auto& entry : std::filesystem::directory_iterator(KeptFolder(GetParam().folder))) {
        const std::string name = entry.path().filename();
        SCOPED_TRACE(name);
        if (name.starts_with("good-")) {
            ExpectGood(name);
            continue;
        }
        EXPECT_EQ(listed.erase(name), 1u);
        ExpectBad(name, GetParam().outcomes->count(name) ? GetParam().outcomes->at(name) : 0);
    }
    EXPECT_TRUE(listed.empty()) << *listed.begin() << " is not there";
}

TEST_P(KeptFiles, OfOtherFormatsAreRefused)
{
    for (const char* other : {"gif", "tiff", "webp", "png", "jpeg"}) {
        if (other == std::string(GetParam().folder))
            continue;
        for (const auto& entry : std::filesystem::directory_iterator(KeptFolder(other))) {
            ByteStream stream(BytesOf(entry.path()));
            Canvas canvas;
            EXPECT_LT(Decode(plugin, stream, canvas), 0) << entry.path();
            EXPECT_EQ(canvas.allocations, 0) << entry.path();
        }
    }
}

TEST_P(KeptFiles, SurviveSingleByteChanges)
{
    // No expectation but the sanitizers', a bounded picture and an end.
    const std::map<std::string, std::vector<std::string>> files = {
        {"gif", {"good-interlaced.gif"}},
        {"tiff", {"good-tiles.tif", "good-fax.tif", "good-planes.tif"}},
        {"webp", {"good-alpha.webp", "good-lossless.webp", "good-animation.webp"}}};
    // The device's files make a decode of a TIFF slow.
    const size_t step = GetParam().folder == std::string("tiff") ? 5 : 1;
    for (const std::string& name : files.at(GetParam().folder)) {
        const std::string file = BytesOf(KeptFolder(GetParam().folder) / name);
        for (size_t at = 0; at < file.size(); at += step) {
            std::string changed = file;
            changed[at] = static_cast<char>(changed[at] ^ (at % 3 == 0   ? 0x01
                                                           : at % 3 == 1 ? 0x80
                                                                         : 0xff));
            ByteStream stream(changed);
            Canvas canvas;
            canvas.forgets = true;
            (void)Decode(plugin, stream, canvas);
            ASSERT_LE(uint64_t{canvas.stride} * canvas.height, uint64_t{1} << 28)
                << name << " at " << at;
        }
    }
}
