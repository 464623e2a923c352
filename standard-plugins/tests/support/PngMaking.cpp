#include "standard-plugins/tests/support/PngMaking.h"

#include <png.h>
#include <zlib.h>

#include <cstdlib>

namespace plugintest
{

namespace
{

void SetTransparency(png_structp png, png_infop info, const PngForm& form)
{
    if (form.transparency.empty())
        return;
    if (form.colorType == PNG_COLOR_TYPE_PALETTE) {
        std::vector<png_byte> alphas(form.transparency.begin(), form.transparency.end());
        png_set_tRNS(png, info, alphas.data(), static_cast<int>(alphas.size()), nullptr);
        return;
    }
    png_color_16 color = {};
    if (form.colorType == PNG_COLOR_TYPE_GRAY) {
        color.gray = form.transparency.at(0);
    } else {
        color.red = form.transparency.at(0);
        color.green = form.transparency.at(1);
        color.blue = form.transparency.at(2);
    }
    png_set_tRNS(png, info, nullptr, 0, &color);
}

} // namespace

int SampleCount(int colorType)
{
    switch (colorType) {
    case 2:
        return 3;
    case 4:
        return 2;
    case 6:
        return 4;
    default:
        return 1;
    }
}

std::string MakePng(const PngForm& form,
                    const std::function<uint32_t(uint32_t, uint32_t, int)>& sample)
{
    std::string file;
    png_structp png = png_create_write_struct(
        PNG_LIBPNG_VER_STRING, nullptr, [](png_structp, png_const_charp) { std::abort(); },
        [](png_structp, png_const_charp) {});
    png_infop info = png_create_info_struct(png);
    png_set_write_fn(
        png, &file,
        [](png_structp self, png_bytep bytes, size_t count) {
            static_cast<std::string*>(png_get_io_ptr(self))
                ->append(reinterpret_cast<char*>(bytes), count);
        },
        [](png_structp) {});
    png_set_IHDR(png, info, form.width, form.height, form.depth, form.colorType,
                 form.interlaced ? PNG_INTERLACE_ADAM7 : PNG_INTERLACE_NONE,
                 PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
    std::vector<png_color> colors;
    for (size_t i = 0; i + 2 < form.palette.size(); i += 3)
        colors.push_back({form.palette[i], form.palette[i + 1], form.palette[i + 2]});
    if (!colors.empty())
        png_set_PLTE(png, info, colors.data(), static_cast<int>(colors.size()));
    SetTransparency(png, info, form);
    png_set_compression_level(png, form.compression);
    png_write_info(png, info);
    png_set_packing(png);
    const int passes = png_set_interlace_handling(png);
    const int samples = SampleCount(form.colorType);
    std::vector<png_byte> row;
    for (int pass = 0; pass < passes; ++pass) {
        for (uint32_t y = 0; y < form.height; ++y) {
            if (form.sameRows && !row.empty()) {
                png_write_row(png, row.data());
                continue;
            }
            row.clear();
            for (uint32_t x = 0; x < form.width; ++x)
                for (int channel = 0; channel < samples; ++channel) {
                    const uint32_t value = sample(x, y, channel);
                    if (form.depth == 16)
                        row.push_back(static_cast<png_byte>(value >> 8));
                    row.push_back(static_cast<png_byte>(value));
                }
            png_write_row(png, row.data());
        }
    }
    png_write_end(png, nullptr);
    png_destroy_write_struct(&png, &info);
    return file;
}

const std::string& PngSignature()
{
    static const std::string signature("\x89PNG\r\n\x1a\n", 8);
    return signature;
}

std::string BigEndian(uint32_t number)
{
    return {static_cast<char>(number >> 24), static_cast<char>(number >> 16),
            static_cast<char>(number >> 8), static_cast<char>(number)};
}

std::string PngChunk(const std::string& name, const std::string& data)
{
    const std::string body = name + data;
    const auto sum =
        crc32(0, reinterpret_cast<const Bytef*>(body.data()), static_cast<uInt>(body.size()));
    return BigEndian(static_cast<uint32_t>(data.size())) + body +
           BigEndian(static_cast<uint32_t>(sum));
}

std::string PngHeader(uint32_t width, uint32_t height, int depth, int colorType, int interlace)
{
    std::string data = BigEndian(width) + BigEndian(height);
    data += {static_cast<char>(depth), static_cast<char>(colorType), 0, 0,
             static_cast<char>(interlace)};
    return PngChunk("IHDR", data);
}

std::string Deflate(const std::string& data, int level)
{
    uLongf size = compressBound(static_cast<uLong>(data.size()));
    std::string out(size, '\0');
    if (compress2(reinterpret_cast<Bytef*>(out.data()), &size,
                  reinterpret_cast<const Bytef*>(data.data()), static_cast<uLong>(data.size()),
                  level) != Z_OK)
        std::abort();
    out.resize(size);
    return out;
}

std::vector<PngPart> SplitPng(const std::string& file)
{
    std::vector<PngPart> parts;
    for (size_t at = 8; at + 12 <= file.size();) {
        uint32_t length = 0;
        for (size_t i = 0; i < 4; ++i)
            length = length << 8 | static_cast<uint8_t>(file[at + i]);
        parts.push_back({file.substr(at + 4, 4), file.substr(at + 8, length)});
        at += 12 + length;
    }
    return parts;
}

std::string JoinPng(const std::vector<PngPart>& parts)
{
    std::string file = PngSignature();
    for (const PngPart& part : parts)
        file += PngChunk(part.name, part.data);
    return file;
}

} // namespace plugintest
