// Files that break off or are broken: the answer is negative, the good lines stay, nothing is
// allocated for what is not there.

#include "standard-plugins/tests/support/Decoding.h"
#include "standard-plugins/tests/support/JpegMaking.h"
#include "standard-plugins/tests/support/PngMaking.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <set>

#include "platform/testing/core/TestPaths.h"

using plugintest::ByteStream;
using plugintest::Canvas;
using plugintest::CurrentHost;
using plugintest::Decode;
using plugintest::JpegColors;
using plugintest::JpegForm;
using plugintest::MakeJpeg;
using plugintest::MakePng;
using plugintest::Pixel;
using plugintest::PluginLibrary;
using plugintest::PngForm;

namespace
{

enum class Outcome {
    Good,    // read whole
    Refused, // negative, and no picture was asked for
    Broken   // negative, with the lines that were good
};

struct Input {
    const char* name;
    Outcome outcome;
    /// Lines that are written at the least (Broken).
    uint32_t lines = 0;
    /// The kept file that holds the same pixels (Good).
    const char* twin = nullptr;
};

const Input jpegInputs[] = {
    {"good-baseline.jpg", Outcome::Good},
    {"good-progressive.jpg", Outcome::Good, 0, "good-baseline.jpg"},
    {"good-grey.jpg", Outcome::Good},
    {"good-four-inks.jpg", Outcome::Good},
    {"good-arithmetic.jpg", Outcome::Good, 0, "good-baseline.jpg"},
    {"good-10000-comments.jpg", Outcome::Good, 0, "good-baseline.jpg"},
    {"good-10000-restart-markers-in-the-header.jpg", Outcome::Good, 0, "good-baseline.jpg"},
    {"good-10000-line-count-markers.jpg", Outcome::Good, 0, "good-baseline.jpg"},
    {"good-stray-bytes-between-markers.jpg", Outcome::Good, 0, "good-baseline.jpg"},
    {"good-standard-huffman-tables-left-out.jpg", Outcome::Good, 0, "good-baseline.jpg"},
    {"good-restart-marker-with-a-wrong-number.jpg", Outcome::Good, 0, "good-baseline.jpg"},
    {"good-garbage-behind.jpg", Outcome::Good, 0, "good-baseline.jpg"},
    {"good-second-picture-behind.jpg", Outcome::Good, 0, "good-baseline.jpg"},
    {"empty.jpg", Outcome::Refused},
    {"one-byte.jpg", Outcome::Refused},
    {"start-mark-alone.jpg", Outcome::Refused},
    {"size-65500x65500-in-5-kilobytes.jpg", Outcome::Refused},
    {"size-65500x65500-progressive.jpg", Outcome::Refused},
    {"size-65535x65535.jpg", Outcome::Refused},
    {"size-0-wide.jpg", Outcome::Refused},
    {"size-0-high.jpg", Outcome::Refused},
    {"size-65500x65500-some-lines.jpg", Outcome::Broken, 16},
    {"scan-before-frame.jpg", Outcome::Refused},
    {"frame-missing.jpg", Outcome::Refused},
    {"quantisation-tables-missing.jpg", Outcome::Refused},
    {"huffman-table-overfull.jpg", Outcome::Refused},
    {"segment-of-length-1.jpg", Outcome::Refused},
    {"sampling-factor-0.jpg", Outcome::Refused},
    {"twelve-bits.jpg", Outcome::Refused},
    {"lossless-frame.jpg", Outcome::Refused},
    // The last two lines of a row of blocks wait for the colours of the next row.
    {"data-cut-and-end-mark-behind.jpg", Outcome::Broken, 14},
    {"data-missing.jpg", Outcome::Refused},
    {"end-mark-missing.jpg", Outcome::Broken, 16},
    {"restart-marker-missing.jpg", Outcome::Broken, 48},
    {"restart-markers-out-of-order.jpg", Outcome::Broken, 48},
    {"progressive-of-1000-scans.jpg", Outcome::Refused},
    {"really-a-png.jpg", Outcome::Refused},
    {"really-an-error-page.jpg", Outcome::Refused},
    {"really-gzip.jpg", Outcome::Refused},
};

const Input pngInputs[] = {
    {"good-colour.png", Outcome::Good},
    {"good-interlaced.png", Outcome::Good, 0, "good-colour.png"},
    {"good-16-bits-with-alpha.png", Outcome::Good, 0, "good-colour.png"},
    {"good-data-in-chunks-of-one-byte.png", Outcome::Good, 0, "good-colour.png"},
    {"good-compressed-text-of-32-megabytes.png", Outcome::Good, 0, "good-colour.png"},
    {"good-international-text-of-32-megabytes.png", Outcome::Good, 0, "good-colour.png"},
    {"good-colour-profile-of-32-megabytes.png", Outcome::Good, 0, "good-colour.png"},
    {"good-text-with-bad-checksum.png", Outcome::Good, 0, "good-colour.png"},
    {"empty.png", Outcome::Refused},
    {"one-byte.png", Outcome::Refused},
    {"signature-alone.png", Outcome::Refused},
    {"header-2147483647x2147483647.png", Outcome::Refused},
    {"header-4294967295-wide.png", Outcome::Refused},
    {"header-0x0.png", Outcome::Refused},
    {"header-0-high.png", Outcome::Refused},
    {"header-65536-wide.png", Outcome::Refused},
    {"header-65536-high.png", Outcome::Refused},
    {"header-10000000x1.png", Outcome::Refused},
    {"header-65535x65535-little-data.png", Outcome::Refused},
    {"header-65535x65535-some-rows.png", Outcome::Broken, 39},
    {"header-bad-checksum.png", Outcome::Refused},
    {"header-depth-3.png", Outcome::Refused},
    {"header-colour-type-5.png", Outcome::Refused},
    {"header-interlace-2.png", Outcome::Refused},
    {"header-twice.png", Outcome::Refused},
    {"header-missing.png", Outcome::Refused},
    {"data-shorter-than-declared.png", Outcome::Broken, 9},
    {"data-longer-than-declared.png", Outcome::Broken, 20},
    {"data-chunk-bad-checksum.png", Outcome::Broken, 19},
    {"data-bad-adler.png", Outcome::Broken, 19},
    {"data-not-zlib.png", Outcome::Refused},
    {"data-empty-chunk.png", Outcome::Refused},
    {"data-missing.png", Outcome::Refused},
    {"data-filter-9-in-row-10.png", Outcome::Broken, 10},
    {"data-spoiled-in-the-middle.png", Outcome::Broken, 3},
    {"data-chunk-length-2147483648.png", Outcome::Refused},
    {"end-chunk-missing.png", Outcome::Broken, 20},
    {"palette-index-beyond-the-palette.png", Outcome::Broken, 20},
    {"palette-missing.png", Outcome::Refused},
    {"palette-of-7-bytes.png", Outcome::Refused},
    {"transparency-longer-than-the-palette.png", Outcome::Good}, // the chunk alone is dropped
    {"critical-chunk-unknown.png", Outcome::Refused},
    {"chunk-name-not-letters.png", Outcome::Refused},
    {"really-a-jpeg.png", Outcome::Refused},
    {"really-an-error-page.png", Outcome::Refused},
    {"really-gzip.png", Outcome::Refused},
};

std::filesystem::path Folder(const char* format)
{
    return std::filesystem::path(tavrix::testing::InSource("/tests/inputs")) / format;
}

std::string FileBytes(const std::filesystem::path& path)
{
    std::ifstream in(path, std::ios::binary);
    EXPECT_TRUE(in) << path;
    return {std::istreambuf_iterator<char>(in), {}};
}

// What a decoder may take for itself here: rows of 65,535 pixels and the libraries' own state.
constexpr size_t mostMemory = 12u << 20;

void ExpectOutcome(const PluginLibrary& plugin, const Input& input, const std::string& bytes)
{
    SCOPED_TRACE(input.name);
    CurrentHost() = {};
    ByteStream stream(bytes);
    Canvas canvas;
    canvas.forgets = true; // only the decoder's own memory counts
    const int32_t result = Decode(plugin, stream, canvas);
    EXPECT_FALSE(canvas.askedTooMuch);
    EXPECT_LT(stream.peak.Most(), mostMemory);
    EXPECT_LT(canvas.peak.Most(), mostMemory);
    switch (input.outcome) {
    case Outcome::Good:
        EXPECT_EQ(result, 1);
        ASSERT_GT(canvas.height, 0u);
        for (uint32_t y = 0; y < canvas.height; ++y)
            EXPECT_TRUE(canvas.WasWritten(y)) << y;
        break;
    case Outcome::Refused:
        EXPECT_LT(result, 0);
        EXPECT_EQ(canvas.allocations, 0);
        break;
    case Outcome::Broken:
        EXPECT_LT(result, 0);
        for (uint32_t y = 0; y < input.lines; ++y)
            EXPECT_TRUE(canvas.WasWritten(y)) << y;
        break;
    }
}

void ExpectSamePixels(const PluginLibrary& plugin, const std::filesystem::path& file,
                      const std::filesystem::path& twin)
{
    ByteStream stream(FileBytes(file));
    ByteStream twinStream(FileBytes(twin));
    Canvas canvas;
    Canvas twinCanvas;
    ASSERT_EQ(Decode(plugin, stream, canvas), 1);
    ASSERT_EQ(Decode(plugin, twinStream, twinCanvas), 1);
    EXPECT_EQ(
        plugintest::FirstDifference(canvas, twinCanvas.width, twinCanvas.height,
                                    [&](uint32_t x, uint32_t y) { return twinCanvas.At(x, y); }),
        "")
        << file;
}

template <size_t Count>
void ExpectOutcomes(const char* library, const char* format, const Input (&inputs)[Count])
{
    PluginLibrary plugin(library);
    std::set<std::string> expected;
    for (const Input& input : inputs) {
        expected.insert(input.name);
        ExpectOutcome(plugin, input, FileBytes(Folder(format) / input.name));
        if (input.twin)
            ExpectSamePixels(plugin, Folder(format) / input.name, Folder(format) / input.twin);
    }
    std::set<std::string> kept;
    for (const auto& entry : std::filesystem::directory_iterator(Folder(format)))
        kept.insert(entry.path().filename());
    EXPECT_EQ(kept, expected);
}

uint8_t Smooth(uint32_t x, uint32_t y, int channel)
{
    return static_cast<uint8_t>(x * 3 + y * 2 + static_cast<uint32_t>(channel) * 50);
}

// A decode of the whole file, to compare the lines of a part with.
struct Whole {
    Canvas canvas;
    explicit Whole(const PluginLibrary& plugin, const std::string& file)
    {
        ByteStream stream(file);
        EXPECT_EQ(Decode(plugin, stream, canvas), 1);
    }
};

bool SameLine(const Canvas& a, const Canvas& b, uint32_t y)
{
    for (uint32_t x = 0; x < a.width; ++x)
        if (!(a.At(x, y) == b.At(x, y)))
            return false;
    return true;
}

enum class Lines { ComeInOrder, ComeInPasses };

// Every sixteenth of the file, with both ways in which a stream can end: negative, and what was
// written before the break is what the whole file gives.
void ExpectPartsBroken(const PluginLibrary& plugin, const std::string& file, Lines lines,
                       const std::string& what)
{
    Whole whole(plugin, file);
    uint32_t most = 0;
    for (size_t part = 0; part < 16; ++part)
        for (const bool failsAtEnd : {false, true}) {
            SCOPED_TRACE(what + ", part " + std::to_string(part));
            ByteStream stream(file.substr(0, file.size() * part / 16));
            stream.failsAtEnd = failsAtEnd;
            Canvas canvas;
            EXPECT_LT(Decode(plugin, stream, canvas), 0);
            if (canvas.height == 0)
                continue;
            EXPECT_EQ(canvas.width, whole.canvas.width);
            EXPECT_EQ(canvas.height, whole.canvas.height);
            if (lines == Lines::ComeInPasses)
                continue;
            uint32_t good = 0;
            while (good < canvas.height && canvas.WasWritten(good)) {
                EXPECT_TRUE(SameLine(canvas, whole.canvas, good)) << good;
                ++good;
            }
            for (uint32_t y = good; y < canvas.height; ++y)
                EXPECT_FALSE(canvas.WasWritten(y)) << y;
            EXPECT_GE(good, most); // more of the file never gives fewer lines
            most = good;
        }
    if (lines == Lines::ComeInOrder) {
        EXPECT_GT(most, whole.canvas.height * 3 / 4) << what;
    }
}

} // namespace

TEST(KeptInputs, JpegFilesComeOutAsTheirNamesSay)
{
    ExpectOutcomes("INPUT/JPEG", "jpeg", jpegInputs);
}

TEST(KeptInputs, PngFilesComeOutAsTheirNamesSay)
{
    ExpectOutcomes("INPUT/PNG", "png", pngInputs);
}

TEST(KeptInputs, EveryFileIsRefusedByTheOtherReader)
{
    PluginLibrary jpeg("INPUT/JPEG");
    PluginLibrary png("INPUT/PNG");
    for (const char* format : {"jpeg", "png"})
        for (const auto& entry : std::filesystem::directory_iterator(Folder(format))) {
            ByteStream stream(FileBytes(entry.path()));
            Canvas canvas;
            const bool isJpeg = format == std::string("jpeg");
            EXPECT_LT(Decode(isJpeg ? png : jpeg, stream, canvas), 0) << entry.path();
            EXPECT_EQ(canvas.allocations, 0) << entry.path();
        }
}

TEST(KeptInputs, EverySingleByteChangeIsSurvived)
{
    // No expectation but the sanitizers', a bounded picture and an end.
    CurrentHost() = {};
    const auto spoilAll = [](const char* library, const std::filesystem::path& path) {
        PluginLibrary plugin(library);
        const std::string file = FileBytes(path);
        for (size_t at = 0; at < file.size(); ++at)
            for (const uint8_t change : {0x01, 0x80, 0xff}) {
                std::string changed = file;
                changed[at] = static_cast<char>(changed[at] ^ change);
                ByteStream stream(changed);
                Canvas canvas;
                canvas.forgets = true;
                (void)Decode(plugin, stream, canvas);
                ASSERT_LE(uint64_t{canvas.stride} * canvas.height, uint64_t{1} << 28)
                    << path << " at " << at;
            }
    };
    spoilAll("INPUT/JPEG", Folder("jpeg") / "good-grey.jpg");
    spoilAll("INPUT/JPEG", Folder("jpeg") / "good-progressive.jpg");
    spoilAll("INPUT/PNG", Folder("png") / "good-colour.png");
    spoilAll("INPUT/PNG", Folder("png") / "good-interlaced.png");
}

TEST(PngReaderBroken, KeepsTheGoodLinesOfAFileThatBreaksOff)
{
    PluginLibrary plugin("INPUT/PNG");
    const auto rough = [](uint32_t x, uint32_t y, int channel) -> uint32_t {
        return ((x * 2654435761u) ^ (y * 40503u) ^ static_cast<uint32_t>(channel * 977)) >> 7 & 255;
    };
    for (const int type : {0, 2, 4, 6}) {
        PngForm form = {.width = 70, .height = 64, .colorType = type};
        ExpectPartsBroken(plugin, MakePng(form, rough), Lines::ComeInOrder,
                          "type " + std::to_string(type));
        form.interlaced = true;
        ExpectPartsBroken(plugin, MakePng(form, rough), Lines::ComeInPasses,
                          "interlaced type " + std::to_string(type));
    }
}

TEST(PngReaderBroken, KeepsTheRowsOfThePassesThatCame)
{
    // Three quarters of an interlaced file: the first five passes are whole, so every second line
    // has its even columns.
    PluginLibrary plugin("INPUT/PNG");
    const auto rough = [](uint32_t x, uint32_t y, int channel) -> uint32_t {
        return ((x * 2654435761u) ^ (y * 40503u) ^ static_cast<uint32_t>(channel * 977)) >> 7 & 255;
    };
    const std::string file =
        MakePng({.width = 64, .height = 64, .interlaced = true, .compression = 0}, rough);
    Whole whole(plugin, file);
    ByteStream stream(file.substr(0, file.size() * 3 / 8));
    Canvas canvas;
    EXPECT_LT(Decode(plugin, stream, canvas), 0);
    ASSERT_EQ(canvas.height, 64u);
    for (uint32_t y = 0; y < 64; y += 4)
        for (uint32_t x = 0; x < 64; x += 2)
            EXPECT_EQ(canvas.At(x, y), whole.canvas.At(x, y)) << x << "," << y;
}

TEST(PngReaderBroken, SkipsAHundredThousandTextChunks)
{
    PluginLibrary plugin("INPUT/PNG");
    CurrentHost() = {};
    const std::string sound = MakePng({.width = 9, .height = 9}, Smooth);
    const std::string chunk = plugintest::PngChunk("tEXt", std::string("Comment\0hello", 13));
    std::string flood;
    for (int i = 0; i < 100000; ++i)
        flood += chunk;
    ByteStream stream(sound.substr(0, 33) + flood + sound.substr(33));
    Canvas canvas;
    EXPECT_EQ(Decode(plugin, stream, canvas), 1);
    EXPECT_LT(stream.peak.Most(), 1u << 20);
}

TEST(PngReaderBroken, NeverInflatesWhatIsNoPixel)
{
    // A gigabyte of text in a megabyte.
    PluginLibrary plugin("INPUT/PNG");
    CurrentHost() = {};
    const std::string bomb = plugintest::Deflate(std::string(size_t{1} << 30, ' '), 9);
    const std::string sound = MakePng({.width = 9, .height = 9}, Smooth);
    std::string chunks;
    chunks += plugintest::PngChunk("zTXt", std::string("Comment\0\0", 9) + bomb);
    chunks += plugintest::PngChunk("iTXt", std::string("Comment\0\1\0\0\0", 12) + bomb);
    chunks += plugintest::PngChunk("iCCP", std::string("profile\0\0", 9) + bomb);
    ByteStream stream(sound.substr(0, 33) + chunks + sound.substr(33));
    Canvas canvas;
    EXPECT_EQ(Decode(plugin, stream, canvas), 1);
    EXPECT_LT(stream.peak.Most(), 1u << 20);
}

TEST(PngReaderBroken, ReadsPicturesOfTheGreatestSideAndNoGreater)
{
    PluginLibrary plugin("INPUT/PNG");
    CurrentHost() = {};
    const auto dark = [](uint32_t, uint32_t, int) { return 0u; };
    for (const bool wide : {true, false}) {
        PngForm form = {.colorType = 0, .depth = 1};
        (wide ? form.width : form.height) = 65535;
        ByteStream good(MakePng(form, dark));
        Canvas canvas;
        EXPECT_EQ(Decode(plugin, good, canvas), 1);
        EXPECT_EQ(canvas.width, form.width);
        EXPECT_EQ(canvas.height, form.height);
        (wide ? form.width : form.height) = 65536;
        ByteStream large(MakePng(form, dark));
        Canvas untouched;
        EXPECT_LT(Decode(plugin, large, untouched), 0);
        EXPECT_EQ(untouched.allocations, 0);
    }
}

TEST(JpegReaderBroken, KeepsTheGoodLinesOfAFileThatBreaksOff)
{
    PluginLibrary plugin("INPUT/JPEG");
    const auto rough = [](uint32_t x, uint32_t y, int channel) {
        return static_cast<uint8_t>(((x * 2654435761u) ^ (y * 40503u)) >> (7 + channel));
    };
    for (const JpegColors colors : {JpegColors::Grey, JpegColors::YCbCr, JpegColors::Cmyk}) {
        const int fine = colors == JpegColors::YCbCr ? 2 : 1;
        const JpegForm form = {
            .width = 70, .height = 256, .colors = colors, .across = fine, .down = fine};
        ExpectPartsBroken(plugin, MakeJpeg(form, rough), Lines::ComeInOrder,
                          "space " + std::to_string(static_cast<int>(colors)));
    }
}

TEST(JpegReaderBroken, ShowsAProgressiveFileThatBreaksOffAsCoarseAsItCame)
{
    PluginLibrary plugin("INPUT/JPEG");
    const JpegForm form = {.width = 128, .height = 128, .progressive = true};
    const std::string file = MakeJpeg(form, Smooth);
    ExpectPartsBroken(plugin, file, Lines::ComeInPasses, "progressive");
    Whole whole(plugin, file);
    ByteStream stream(file.substr(0, file.size() * 7 / 8));
    Canvas canvas;
    EXPECT_LT(Decode(plugin, stream, canvas), 0);
    ASSERT_EQ(canvas.height, 128u);
    double error = 0;
    for (uint32_t y = 0; y < 128; ++y)
        for (uint32_t x = 0; x < 128; ++x)
            error += std::abs(canvas.At(x, y).green - whole.canvas.At(x, y).green);
    EXPECT_LT(error / (128 * 128), 12);
    EXPECT_TRUE(canvas.WasWritten(127));
}

TEST(JpegReaderBroken, ShowsAProgressiveFileThatBreaksOffInACommentBetweenItsScans)
{
    PluginLibrary plugin("INPUT/JPEG");
    std::string file = MakeJpeg({.width = 64, .height = 64, .progressive = true}, Smooth);
    const size_t scan = plugintest::FindMarker(file, 0xda);
    const size_t tables = file.find("\xff\xc4", scan); // of the second scan
    ASSERT_NE(tables, std::string::npos);
    for (const size_t kept : {4u, 5u, 500u}) {
        const std::string comment = plugintest::JpegSegment(0xfe, std::string(1001, 'c'));
        ByteStream stream(file.substr(0, tables) + comment.substr(0, kept));
        Canvas canvas;
        EXPECT_LT(Decode(plugin, stream, canvas), 0);
        EXPECT_EQ(canvas.height, 64u);
        EXPECT_TRUE(canvas.WasWritten(63));
    }
}

TEST(JpegReaderBroken, RefusesAProgressiveFileOfWhichNoScanCame)
{
    PluginLibrary plugin("INPUT/JPEG");
    const std::string file = MakeJpeg({.width = 512, .height = 512, .progressive = true}, Smooth);
    ByteStream stream(file.substr(0, plugintest::FindMarker(file, 0xda) + 14));
    Canvas canvas;
    EXPECT_LT(Decode(plugin, stream, canvas), 0);
    EXPECT_EQ(canvas.allocations, 0);
}

TEST(JpegReaderBroken, LeavesAGigabyteOfGarbageBehindThePictureUnread)
{
    PluginLibrary plugin("INPUT/JPEG");
    for (const bool progressive : {false, true}) {
        ByteStream stream(
            MakeJpeg({.width = 60, .height = 60, .progressive = progressive}, Smooth));
        stream.garbageBehind = uint64_t{1} << 30;
        Canvas canvas;
        EXPECT_EQ(Decode(plugin, stream, canvas), 1);
        EXPECT_LT(stream.given, 1u << 18);
    }
}

TEST(JpegReaderBroken, SkipsSegmentsThatReachOverTheBuffer)
{
    PluginLibrary plugin("INPUT/JPEG");
    std::string file = MakeJpeg({.width = 60, .height = 60}, Smooth);
    for (int i = 0; i < 20; ++i)
        file.insert(2, plugintest::JpegSegment(0xe5, std::string(65533, '\xff')));
    for (const uint32_t most : {0xffffffffu, 1000u, 7u}) {
        ByteStream stream(file, most);
        Canvas canvas;
        EXPECT_EQ(Decode(plugin, stream, canvas), 1);
    }
    // And one that reaches over the end of the file.
    ByteStream stream(file.substr(0, 100000));
    Canvas canvas;
    EXPECT_LT(Decode(plugin, stream, canvas), 0);
    EXPECT_EQ(canvas.allocations, 0);
}
