#include "standard-plugins/tests/support/PngMaking.h"
#include "tests/inputs/MakeInputs.h"

using plugintest::BigEndian;
using plugintest::Deflate;
using plugintest::JoinPng;
using plugintest::MakePng;
using plugintest::PngChunk;
using plugintest::PngForm;
using plugintest::PngHeader;
using plugintest::PngPart;
using plugintest::PngSignature;
using plugintest::SplitPng;

namespace
{

constexpr uint32_t width = 24;
constexpr uint32_t height = 20;

// The picture of every file here that can be read: red, green and blue of a pixel.
uint32_t Sample(uint32_t x, uint32_t y, int channel)
{
    return (x * 9 + y * 5 + static_cast<uint32_t>(channel) * 67) & 255;
}

std::string Sound()
{
    return MakePng({.width = width, .height = height}, Sample);
}

// The rows as they stand in the zlib stream, none of them filtered.
std::string PlainRows()
{
    std::string rows;
    for (uint32_t y = 0; y < height; ++y) {
        rows += '\0';
        for (uint32_t x = 0; x < width; ++x)
            for (int channel = 0; channel < 3; ++channel)
                rows += static_cast<char>(Sample(x, y, channel));
    }
    return rows;
}

std::string AroundData(const std::string& header, const std::string& compressed)
{
    return PngSignature() + header + PngChunk("IDAT", compressed) + PngChunk("IEND", "");
}

std::string WithData(const std::string& compressed)
{
    return AroundData(PngHeader(width, height, 8, 2), compressed);
}

// The sound file with a chunk behind its header.
std::string WithChunk(const std::string& chunk)
{
    const std::string sound = Sound();
    const size_t behindHeader = 8 + 25;
    return sound.substr(0, behindHeader) + chunk + sound.substr(behindHeader);
}

std::string WithHeader(const std::string& header)
{
    return PngSignature() + header + Sound().substr(8 + 25);
}

std::string Spoiled(std::string chunk)
{
    chunk.back() = static_cast<char>(chunk.back() ^ 1);
    return chunk;
}

void MakeSizes(const KeepInput& keep)
{
    keep("header-2147483647x2147483647.png", WithHeader(PngHeader(0x7fffffff, 0x7fffffff, 8, 2)));
    keep("header-4294967295-wide.png", WithHeader(PngHeader(0xffffffff, 1, 8, 2)));
    keep("header-0x0.png", WithHeader(PngHeader(0, 0, 8, 2)));
    keep("header-0-high.png", WithHeader(PngHeader(width, 0, 8, 2)));
    keep("header-65536-wide.png", WithHeader(PngHeader(65536, 1, 8, 2)));
    keep("header-65536-high.png", WithHeader(PngHeader(1, 65536, 8, 2)));
    keep("header-65535x65535-little-data.png", WithHeader(PngHeader(65535, 65535, 8, 2)));
    // 65,535 lines claimed and a few dozen there: the first rows are sound.
    keep("header-65535x65535-some-rows.png",
         AroundData(PngHeader(65535, 65535, 1, 0), Deflate(std::string(8193 * 40, '\0'), 9)));
    keep("header-10000000x1.png", WithHeader(PngHeader(10000000, 1, 8, 2)));
}

void MakeHeaders(const KeepInput& keep)
{
    keep("header-bad-checksum.png", WithHeader(Spoiled(PngHeader(width, height, 8, 2))));
    keep("header-depth-3.png", WithHeader(PngHeader(width, height, 3, 2)));
    keep("header-colour-type-5.png", WithHeader(PngHeader(width, height, 8, 5)));
    keep("header-interlace-2.png", WithHeader(PngHeader(width, height, 8, 2, 2)));
    keep("header-twice.png", WithChunk(PngHeader(width, height, 8, 2)));
    keep("header-missing.png", PngSignature() + Sound().substr(8 + 25));
}

void MakeData(const KeepInput& keep)
{
    const std::string rows = PlainRows();
    const std::string compressed = Deflate(rows);
    keep("data-shorter-than-declared.png", WithData(Deflate(rows.substr(0, rows.size() / 2))));
    keep("data-longer-than-declared.png", WithData(Deflate(rows + rows)));
    keep("data-chunk-bad-checksum.png", PngSignature() + PngHeader(width, height, 8, 2) +
                                            Spoiled(PngChunk("IDAT", compressed)) +
                                            PngChunk("IEND", ""));
    keep("data-bad-adler.png", WithData(Spoiled(compressed)));
    keep("data-not-zlib.png", WithData(std::string(200, 'x')));
    keep("data-empty-chunk.png", WithData(""));
    keep("data-missing.png",
         PngSignature() + PngHeader(width, height, 8, 2) + PngChunk("IEND", ""));
    std::string badFilter = rows;
    badFilter[size_t{10} * (1 + width * 3)] = 9;
    keep("data-filter-9-in-row-10.png", WithData(Deflate(badFilter)));
    std::string zeroed = compressed;
    for (size_t i = zeroed.size() / 2; i < zeroed.size() / 2 + 8; ++i)
        zeroed[i] = '\xff';
    keep("data-spoiled-in-the-middle.png", WithData(zeroed));
    const std::string chunk = PngChunk("IDAT", compressed);
    keep("data-chunk-length-2147483648.png", PngSignature() + PngHeader(width, height, 8, 2) +
                                                 BigEndian(0x80000000u) + chunk.substr(4));
    keep("end-chunk-missing.png",
         PngSignature() + PngHeader(width, height, 8, 2) + PngChunk("IDAT", compressed));
    std::string pieces;
    for (const char byte : compressed)
        pieces += PngChunk("IDAT", std::string(1, byte)) + PngChunk("IDAT", "");
    keep("good-data-in-chunks-of-one-byte.png",
         PngSignature() + PngHeader(width, height, 8, 2) + pieces + PngChunk("IEND", ""));
}

void MakePalettes(const KeepInput& keep)
{
    const PngForm form = {
        .width = width, .height = height, .colorType = 3, .palette = {255, 0, 0, 0, 0, 255}};
    const auto index = [](uint32_t x, uint32_t y, int) { return (x + y) & 1; };
    std::vector<PngPart> parts = SplitPng(MakePng(form, index));
    keep("palette-index-beyond-the-palette.png", [&] {
        std::string rows;
        for (uint32_t y = 0; y < height; ++y)
            rows += std::string(1, '\0') + std::string(width, y == 5 ? '\x07' : '\x01');
        std::vector<PngPart> changed = parts;
        for (PngPart& part : changed)
            if (part.name == "IDAT")
                part.data = Deflate(rows);
        return JoinPng(changed);
    }());
    std::vector<PngPart> changed = parts;
    std::erase_if(changed, [](const PngPart& part) { return part.name == "PLTE"; });
    keep("palette-missing.png", JoinPng(changed));
    changed = parts;
    for (PngPart& part : changed)
        if (part.name == "PLTE")
            part.data += "x";
    keep("palette-of-7-bytes.png", JoinPng(changed));
    changed = parts;
    changed.insert(changed.begin() + 2, {"tRNS", std::string(300, '\0')});
    keep("transparency-longer-than-the-palette.png", JoinPng(changed));
}

void MakeChunks(const KeepInput& keep)
{
    // 32 MB of text in 32 KB, in each of the chunks that hold compressed data.
    const std::string bomb = Deflate(std::string(32u << 20, ' '), 9);
    keep("good-compressed-text-of-32-megabytes.png",
         WithChunk(PngChunk("zTXt", std::string("Comment\0\0", 9) + bomb)));
    keep("good-international-text-of-32-megabytes.png",
         WithChunk(PngChunk("iTXt", std::string("Comment\0\1\0\0\0", 12) + bomb)));
    keep("good-colour-profile-of-32-megabytes.png",
         WithChunk(PngChunk("iCCP", std::string("profile\0\0", 9) + bomb)));
    keep("good-text-with-bad-checksum.png",
         WithChunk(Spoiled(PngChunk("tEXt", std::string("Comment\0text", 12)))));
    keep("critical-chunk-unknown.png", WithChunk(PngChunk("ABCD", "what is this")));
    keep("chunk-name-not-letters.png", WithChunk(PngChunk("\x01\x02\x03\x04", "")));
}

} // namespace

void MakePngInputs(const KeepInput& keep)
{
    keep("good-colour.png", Sound());
    keep("good-interlaced.png",
         MakePng({.width = width, .height = height, .interlaced = true}, Sample));
    keep("good-16-bits-with-alpha.png",
         MakePng({.width = width, .height = height, .colorType = 6, .depth = 16},
                 [](uint32_t x, uint32_t y, int channel) {
                     return channel == 3 ? 65535u : Sample(x, y, channel) * 257;
                 }));
    keep("empty.png", "");
    keep("one-byte.png", "\x89");
    keep("signature-alone.png", PngSignature());
    MakeSizes(keep);
    MakeHeaders(keep);
    MakeData(keep);
    MakePalettes(keep);
    MakeChunks(keep);
    keep("really-a-jpeg.png",
         std::string("\xff\xd8\xff\xe0\x00\x10JFIF\x00\x01\x01", 13) + std::string(400, '\x11'));
    keep("really-an-error-page.png", "<!DOCTYPE html>\n<html><head><title>404 Not Found</title>"
                                     "</head><body><h1>Not Found</h1></body></html>\n");
    keep("really-gzip.png", std::string("\x1f\x8b\x08\x00\x00\x00\x00\x00\x02\x03", 10) +
                                Deflate("not a picture").substr(2));
}
