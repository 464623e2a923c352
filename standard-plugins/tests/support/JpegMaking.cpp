#include "standard-plugins/tests/support/JpegMaking.h"

#include <cstdio>
#include <cstdlib>

#include <jpeglib.h>

namespace plugintest
{

namespace
{

J_COLOR_SPACE GivenSpace(JpegColors colors)
{
    switch (colors) {
    case JpegColors::Grey:
        return JCS_GRAYSCALE;
    case JpegColors::YCbCr:
    case JpegColors::Rgb:
        return JCS_RGB;
    default:
        return JCS_CMYK;
    }
}

J_COLOR_SPACE StoredSpace(JpegColors colors)
{
    switch (colors) {
    case JpegColors::Grey:
        return JCS_GRAYSCALE;
    case JpegColors::YCbCr:
        return JCS_YCbCr;
    case JpegColors::Rgb:
        return JCS_RGB;
    case JpegColors::Cmyk:
        return JCS_CMYK;
    default:
        return JCS_YCCK;
    }
}

} // namespace

int ChannelCount(JpegColors colors)
{
    switch (colors) {
    case JpegColors::Grey:
        return 1;
    case JpegColors::YCbCr:
    case JpegColors::Rgb:
        return 3;
    default:
        return 4;
    }
}

std::string MakeJpeg(const JpegForm& form,
                     const std::function<uint8_t(uint32_t, uint32_t, int)>& sample)
{
    jpeg_compress_struct codec = {};
    jpeg_error_mgr errors;
    codec.err = jpeg_std_error(&errors);
    jpeg_create_compress(&codec);
    unsigned char* bytes = nullptr;
    unsigned long size = 0;
    jpeg_mem_dest(&codec, &bytes, &size);
    const int channels = ChannelCount(form.colors);
    codec.image_width = form.width;
    codec.image_height = form.height;
    codec.input_components = channels;
    codec.in_color_space = GivenSpace(form.colors);
    jpeg_set_defaults(&codec);
    jpeg_set_colorspace(&codec, StoredSpace(form.colors));
    jpeg_set_quality(&codec, form.quality, TRUE);
    if (!form.adobeMarker)
        codec.write_Adobe_marker = FALSE;
    codec.comp_info[0].h_samp_factor = form.across;
    codec.comp_info[0].v_samp_factor = form.down;
    if (form.colors == JpegColors::Ycck) { // black as fine as the first
        codec.comp_info[3].h_samp_factor = form.across;
        codec.comp_info[3].v_samp_factor = form.down;
    }
    codec.arith_code = form.arithmetic ? TRUE : FALSE;
    codec.restart_in_rows = form.restartRows;
    std::vector<jpeg_scan_info> scans;
    if (form.progressive) {
        jpeg_simple_progression(&codec);
    } else if (form.separateScans) {
        for (int i = 0; i < codec.num_components; ++i)
            scans.push_back({1, {i, 0, 0, 0}, 0, 63, 0, 0});
        codec.scan_info = scans.data();
        codec.num_scans = static_cast<int>(scans.size());
    }
    jpeg_start_compress(&codec, TRUE);
    std::vector<JSAMPLE> row(size_t{form.width} * static_cast<size_t>(channels));
    for (uint32_t y = 0; y < form.height; ++y) {
        size_t at = 0;
        for (uint32_t x = 0; x < form.width && !(form.sameRows && y > 0); ++x)
            for (int channel = 0; channel < channels; ++channel)
                row[at++] = sample(x, y, channel);
        JSAMPROW rows[1] = {row.data()};
        jpeg_write_scanlines(&codec, rows, 1);
    }
    jpeg_finish_compress(&codec);
    std::string file(reinterpret_cast<char*>(bytes), size);
    jpeg_destroy_compress(&codec);
    std::free(bytes);
    return file;
}

std::vector<uint8_t> ReferencePixels(const std::string& file, int channels)
{
    jpeg_decompress_struct codec = {};
    jpeg_error_mgr errors;
    codec.err = jpeg_std_error(&errors);
    jpeg_create_decompress(&codec);
    jpeg_mem_src(&codec, reinterpret_cast<const unsigned char*>(file.data()),
                 static_cast<unsigned long>(file.size()));
    jpeg_read_header(&codec, TRUE);
    codec.out_color_space = channels == 1 ? JCS_GRAYSCALE : channels == 3 ? JCS_RGB : JCS_CMYK;
    jpeg_start_decompress(&codec);
    std::vector<uint8_t> pixels(size_t{codec.output_width} * codec.output_height *
                                static_cast<size_t>(channels));
    while (codec.output_scanline < codec.output_height) {
        JSAMPROW rows[1] = {pixels.data() + size_t{codec.output_scanline} * codec.output_width *
                                                static_cast<size_t>(channels)};
        jpeg_read_scanlines(&codec, rows, 1);
    }
    jpeg_finish_decompress(&codec);
    jpeg_destroy_decompress(&codec);
    return pixels;
}

std::string JpegSegment(uint8_t marker, const std::string& data)
{
    const size_t length = data.size() + 2;
    return std::string{'\xff', static_cast<char>(marker), static_cast<char>(length >> 8),
                       static_cast<char>(length)} +
           data;
}

size_t SegmentSize(const std::string& file, size_t at)
{
    return 2u + (static_cast<size_t>(static_cast<uint8_t>(file.at(at + 2))) << 8 |
                 static_cast<uint8_t>(file.at(at + 3)));
}

size_t FindMarker(const std::string& file, uint8_t marker)
{
    for (size_t at = 2; at + 4 <= file.size(); at += SegmentSize(file, at)) {
        const auto found = static_cast<uint8_t>(file[at + 1]);
        if (found == marker)
            return at;
        if (found == 0xda)
            break;
    }
    return std::string::npos;
}

size_t FindFrame(const std::string& file)
{
    for (const uint8_t marker : {0xc0, 0xc1, 0xc2, 0xc9, 0xca})
        if (const size_t at = FindMarker(file, marker); at != std::string::npos)
            return at;
    std::abort();
}

std::string WithSize(std::string file, uint32_t width, uint32_t height)
{
    const size_t at = FindFrame(file);
    file[at + 5] = static_cast<char>(height >> 8);
    file[at + 6] = static_cast<char>(height);
    file[at + 7] = static_cast<char>(width >> 8);
    file[at + 8] = static_cast<char>(width);
    return file;
}

} // namespace plugintest
