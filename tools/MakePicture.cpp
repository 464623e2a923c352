// Paints a harbour at dusk of any size, row by row: make-picture WIDTH HEIGHT TARGET.png|TARGET.jpg
//
// The sample picture and the big inputs of the benchmarks come from here, so that none has to be
// stored or fetched. Smooth gradients, hard edges and a little grain make it as hard to pack as a
// photograph, roughly.

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include <jpeglib.h>
#include <png.h>

namespace
{

struct Color {
    double red, green, blue;
};

Color Mix(Color a, Color b, double t)
{
    t = std::clamp(t, 0.0, 1.0);
    return {a.red + (b.red - a.red) * t, a.green + (b.green - a.green) * t,
            a.blue + (b.blue - a.blue) * t};
}

/// A cheap scatter of the coordinates, from 0 to 255.
unsigned Grain(unsigned x, unsigned y)
{
    unsigned value = x * 374761393U + y * 668265263U;
    value = (value ^ (value >> 13)) * 1274126177U;
    return (value ^ (value >> 16)) & 255U;
}

struct Scene {
    unsigned width, height;
    std::vector<double> farHills, nearHills; // height above the horizon, in picture heights

    Scene(unsigned w, unsigned h) : width(w), height(h), farHills(w), nearHills(w)
    {
        for (unsigned x = 0; x < w; ++x) {
            const double u = static_cast<double>(x) / w;
            farHills[x] = 0.09 + 0.05 * std::sin(7.1 * u + 0.8) + 0.02 * std::sin(23.0 * u);
            nearHills[x] =
                0.02 + 0.07 * std::max(0.0, std::sin(4.6 * u + 3.4)) + 0.006 * std::sin(71.0 * u);
        }
    }

    Color At(unsigned x, unsigned y) const
    {
        const double aspect = static_cast<double>(width) / height;
        const double u = static_cast<double>(x) / width;
        const double v = static_cast<double>(y) / height;
        const double horizon = 0.58;
        const Color top{38, 52, 110}, middle{196, 112, 120}, low{252, 204, 128};
        const double sun = std::hypot((u - 0.68) * aspect, v - 0.46);
        if (v < horizon) {
            const double above = horizon - v;
            if (above < nearHills[x])
                return Mix({46, 44, 60}, {70, 58, 70}, above / 0.09);
            if (above < farHills[x])
                return Mix({150, 98, 112}, {104, 84, 116}, above / 0.16);
            Color sky = v < 0.3 ? Mix(top, middle, v / 0.3) : Mix(middle, low, (v - 0.3) / 0.28);
            if (sun < 0.055)
                return {255, 244, 214};
            return Mix({255, 232, 176}, sky, sun / 0.5);
        }
        const double depth = (v - horizon) / (1 - horizon);
        Color sea = Mix({226, 168, 132}, {24, 40, 72}, std::sqrt(depth));
        const double wave =
            std::sin(60.0 / (depth + 0.08) + 9.0 * std::sin(40.0 * u / (depth + 0.2)));
        const double path = std::exp(-std::pow((u - 0.68) * aspect / (0.05 + 0.28 * depth), 2.0));
        sea = Mix(sea, {255, 226, 164}, 0.75 * path * (0.55 + 0.45 * wave));
        sea = Mix(sea, {12, 20, 40}, 0.12 * (1 + wave) * depth);
        return BoatOver(sea, (u - 0.3) * aspect, v - 0.74);
    }

    static Color BoatOver(Color behind, double x, double y)
    {
        const double half = 0.13 - 0.55 * y;
        if (y > 0 && y < 0.05 && std::fabs(x) < half)
            return y < 0.014 ? Color{232, 226, 214} : Color{96, 32, 30};
        if (y <= 0 && y > -0.25) {
            if (std::fabs(x) < 0.004)
                return {40, 30, 28};
            if (x > 0.008 && x < 0.1 * (1 + y / 0.25))
                return {244, 238, 224};
            if (x < -0.008 && x > -0.075 * (1 + y / 0.22) && y > -0.22)
                return {222, 208, 190};
        }
        return behind;
    }

    void Row(unsigned y, uint8_t* out) const
    {
        for (unsigned x = 0; x < width; ++x) {
            const Color color = At(x, y);
            const double grain = (Grain(x, y) - 127.5) / 40.0;
            const double channels[3] = {color.red, color.green, color.blue};
            for (double channel : channels)
                *out++ = static_cast<uint8_t>(std::clamp(channel + grain, 0.0, 255.0));
        }
    }
};

bool WritePng(const Scene& scene, FILE* file)
{
    png_structp png = png_create_write_struct(PNG_LIBPNG_VER_STRING, nullptr, nullptr, nullptr);
    png_infop info = png_create_info_struct(png);
    std::vector<uint8_t> row(size_t{scene.width} * 3);
    if (setjmp(png_jmpbuf(png)))
        return false;
    png_init_io(png, file);
    png_set_IHDR(png, info, scene.width, scene.height, 8, PNG_COLOR_TYPE_RGB, PNG_INTERLACE_NONE,
                 PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
    png_set_compression_level(png, 1);
    png_set_filter(png, 0, PNG_FILTER_SUB);
    png_write_info(png, info);
    for (unsigned y = 0; y < scene.height; ++y) {
        scene.Row(y, row.data());
        png_write_row(png, row.data());
    }
    png_write_end(png, info);
    png_destroy_write_struct(&png, &info);
    return true;
}

bool WriteJpeg(const Scene& scene, FILE* file)
{
    jpeg_compress_struct jpeg;
    jpeg_error_mgr errors;
    jpeg.err = jpeg_std_error(&errors);
    jpeg_create_compress(&jpeg);
    jpeg_stdio_dest(&jpeg, file);
    jpeg.image_width = scene.width;
    jpeg.image_height = scene.height;
    jpeg.input_components = 3;
    jpeg.in_color_space = JCS_RGB;
    jpeg_set_defaults(&jpeg);
    jpeg_set_quality(&jpeg, 90, TRUE);
    jpeg_start_compress(&jpeg, TRUE);
    std::vector<uint8_t> row(size_t{scene.width} * 3);
    for (unsigned y = 0; y < scene.height; ++y) {
        scene.Row(y, row.data());
        uint8_t* rows[1] = {row.data()};
        jpeg_write_scanlines(&jpeg, rows, 1);
    }
    jpeg_finish_compress(&jpeg);
    jpeg_destroy_compress(&jpeg);
    return true;
}

} // namespace

int main(int argc, char** argv)
{
    const long width = argc == 4 ? std::atol(argv[1]) : 0;
    const long height = argc == 4 ? std::atol(argv[2]) : 0;
    if (width < 1 || height < 1 || width > 65535 || height > 65535) {
        std::fputs("usage: make-picture WIDTH HEIGHT TARGET.png|TARGET.jpg\n", stderr);
        return 2;
    }
    const std::string target = argv[3];
    FILE* file = std::fopen(target.c_str(), "wb");
    if (file == nullptr) {
        std::perror(argv[3]);
        return 1;
    }
    const Scene scene(static_cast<unsigned>(width), static_cast<unsigned>(height));
    const bool written = target.ends_with(".png") ? WritePng(scene, file) : WriteJpeg(scene, file);
    return std::fclose(file) == 0 && written ? 0 : 1;
}
