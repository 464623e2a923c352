// PNG files for the tests: sound ones through the reference library, broken ones chunk by chunk.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace plugintest
{

struct PngForm {
    uint32_t width = 1;
    uint32_t height = 1;
    /// As in the file: 0 grey, 2 colour, 3 palette, 4 grey with alpha, 6 colour with alpha.
    int colorType = 2;
    int depth = 8;
    bool interlaced = false;
    /// Palette entries red, green, blue; the tRNS chunk's words: alphas, a grey level or a colour.
    std::vector<uint8_t> palette = {};
    std::vector<uint16_t> transparency = {};
    int compression = 6;
    /// Every row is the first one: for large files in little time.
    bool sameRows = false;
};

/// Samples a pixel of the colour type.
int SampleCount(int colorType);
/// A whole file; `sample(x, y, channel)` gives the numbers, from 0 to 2^depth - 1.
std::string MakePng(const PngForm& form,
                    const std::function<uint32_t(uint32_t, uint32_t, int)>& sample);

const std::string& PngSignature();
/// Length, name, data and checksum.
std::string PngChunk(const std::string& name, const std::string& data);
std::string PngHeader(uint32_t width, uint32_t height, int depth, int colorType, int interlace = 0);
/// A zlib stream.
std::string Deflate(const std::string& data, int level = 6);
/// The file's chunks without the signature; joined again by JoinPng.
struct PngPart {
    std::string name;
    std::string data;
};
std::vector<PngPart> SplitPng(const std::string& file);
std::string JoinPng(const std::vector<PngPart>& parts);
std::string BigEndian(uint32_t number);

} // namespace plugintest
