#include "bench/program/LibraryCodecs.h"

#include <cstdio>
#include <memory>
#include <vector>

#include <jpeglib.h>
#include <png.h>

namespace bench
{

namespace
{

struct FileEnd {
    void operator()(FILE* file) const { std::fclose(file); }
};
using File = std::unique_ptr<FILE, FileEnd>;

bool IsPng(const std::string& file)
{
    return file.ends_with(".png");
}

unsigned ColorAt(const unsigned char* row, unsigned x)
{
    return static_cast<unsigned>(row[3 * x] << 16 | row[3 * x + 1] << 8 | row[3 * x + 2]);
}

void Note(Places* places, const unsigned char* row, unsigned y)
{
    const unsigned aside = places->width / 8;
    const unsigned down = places->height / 8;
    const bool upper = y == down;
    if (!upper && y != places->height - 1 - down)
        return;
    places->colors[upper ? 0 : 2] = ColorAt(row, aside);
    places->colors[upper ? 1 : 3] = ColorAt(row, places->width - 1 - aside);
}

// An error of the library ends the bench: the files are its own.
Places ReadPng(FILE* file)
{
    png_structp png = png_create_read_struct(PNG_LIBPNG_VER_STRING, nullptr, nullptr, nullptr);
    png_infop info = png_create_info_struct(png);
    png_init_io(png, file);
    png_read_info(png, info);
    Places places;
    places.width = png_get_image_width(png, info);
    places.height = png_get_image_height(png, info);
    std::vector<unsigned char> row(png_get_rowbytes(png, info));
    for (unsigned y = 0; y < places.height; ++y) {
        png_read_row(png, row.data(), nullptr);
        Note(&places, row.data(), y);
    }
    png_destroy_read_struct(&png, &info, nullptr);
    return places;
}

Places ReadJpeg(FILE* file)
{
    jpeg_decompress_struct jpeg;
    jpeg_error_mgr errors;
    jpeg.err = jpeg_std_error(&errors);
    jpeg_create_decompress(&jpeg);
    jpeg_stdio_src(&jpeg, file);
    jpeg_read_header(&jpeg, TRUE);
    jpeg_start_decompress(&jpeg);
    Places places;
    places.width = jpeg.output_width;
    places.height = jpeg.output_height;
    std::vector<unsigned char> row(size_t{jpeg.output_width} * 3);
    while (jpeg.output_scanline < jpeg.output_height) {
        unsigned char* rows[1] = {row.data()};
        const unsigned y = jpeg.output_scanline;
        jpeg_read_scanlines(&jpeg, rows, 1);
        Note(&places, row.data(), y);
    }
    jpeg_finish_decompress(&jpeg);
    jpeg_destroy_decompress(&jpeg);
    return places;
}

using Row = std::function<const unsigned char*(unsigned y)>;

void WritePng(FILE* file, unsigned width, unsigned height, const Row& row)
{
    png_structp png = png_create_write_struct(PNG_LIBPNG_VER_STRING, nullptr, nullptr, nullptr);
    png_infop info = png_create_info_struct(png);
    png_init_io(png, file);
    png_set_IHDR(png, info, width, height, 8, PNG_COLOR_TYPE_RGB, PNG_INTERLACE_NONE,
                 PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
    png_set_compression_level(png, 1);
    png_set_filter(png, 0, PNG_FILTER_SUB);
    png_write_info(png, info);
    for (unsigned y = 0; y < height; ++y)
        png_write_row(png, row(y));
    png_write_end(png, info);
    png_destroy_write_struct(&png, &info);
}

void WriteJpeg(FILE* file, unsigned width, unsigned height, const Row& row)
{
    jpeg_compress_struct jpeg;
    jpeg_error_mgr errors;
    jpeg.err = jpeg_std_error(&errors);
    jpeg_create_compress(&jpeg);
    jpeg_stdio_dest(&jpeg, file);
    jpeg.image_width = width;
    jpeg.image_height = height;
    jpeg.input_components = 3;
    jpeg.in_color_space = JCS_RGB;
    jpeg_set_defaults(&jpeg);
    jpeg_set_quality(&jpeg, 90, TRUE);
    jpeg_start_compress(&jpeg, TRUE);
    for (unsigned y = 0; y < height; ++y) {
        JSAMPROW rows[1] = {const_cast<unsigned char*>(row(y))};
        jpeg_write_scanlines(&jpeg, rows, 1);
    }
    jpeg_finish_compress(&jpeg);
    jpeg_destroy_compress(&jpeg);
}

} // namespace

Places ReadByLibrary(const std::string& path)
{
    const File file(std::fopen(path.c_str(), "rb"));
    if (file == nullptr)
        return {};
    return IsPng(path) ? ReadPng(file.get()) : ReadJpeg(file.get());
}

bool WriteByLibrary(const std::string& path, unsigned width, unsigned height, const Row& row)
{
    File file(std::fopen(path.c_str(), "wb"));
    if (file == nullptr)
        return false;
    (IsPng(path) ? WritePng : WriteJpeg)(file.get(), width, height, row);
    return std::fclose(file.release()) == 0;
}

} // namespace bench
