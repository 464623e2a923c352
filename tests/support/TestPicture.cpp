#include "tests/support/TestPicture.h"

#include "platform/testing/core/TestHome.h"

#include <QImage>

#include <filesystem>

namespace tavrix::testing
{

uint32_t TestColor(int x, int y)
{
    const auto red = static_cast<uint32_t>(x * 7 + y) % 255 + 1;
    const auto green = static_cast<uint32_t>(x + y * 5) % 255 + 1;
    const auto blue = static_cast<uint32_t>(x * 3 + y * 11) % 255 + 1;
    return red << 16 | green << 8 | blue;
}

uint32_t TestSquareColor(int x, int y)
{
    return TestColor(x / 16 * 16, y / 16 * 16);
}

std::string WriteTestJpeg(int width, int height, const std::string& name)
{
    QImage image(width, height, QImage::Format_RGB32);
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x)
            image.setPixel(x, y, 0xFF000000U | TestSquareColor(x, y));
    const std::string path = TestHome() + "/" + name;
    if (!image.save(QString::fromStdString(path), "JPEG", 100))
        std::abort();
    return path;
}

std::string WriteTestPng(int width, int height, const std::string& name)
{
    QImage image(width, height, QImage::Format_RGB32);
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x)
            image.setPixel(x, y, 0xFF000000U | TestColor(x, y));
    const std::string path = TestHome() + "/" + name;
    if (!image.save(QString::fromStdString(path), "PNG"))
        std::abort();
    return path;
}

uint32_t NoiseColor(int x, int y)
{
    const auto seed = (static_cast<uint32_t>(y) << 16 | static_cast<uint32_t>(x)) * 2654435761u;
    return (seed ^ seed >> 13) * 2246822519u >> 8;
}

std::string WriteNoisePng(int side, const std::string& name)
{
    QImage image(side, side, QImage::Format_RGB888);
    for (int y = 0; y < side; ++y) {
        uchar* pixel = image.scanLine(y);
        for (int x = 0; x < side; ++x)
            for (const int shift : {16, 8, 0})
                *pixel++ = static_cast<uchar>(NoiseColor(x, y) >> shift & 255);
    }
    const std::string path = TestHome() + "/" + name;
    // At this quality nothing is compressed.
    if (!image.save(QString::fromStdString(path), "PNG", 100))
        std::abort();
    return path;
}

std::string TruncateFile(const std::string& path, int numerator, int denominator)
{
    namespace fs = std::filesystem;
    const fs::path source(path);
    const fs::path target = source.parent_path() / ("cut-" + source.filename().string());
    fs::copy_file(source, target, fs::copy_options::overwrite_existing);
    fs::resize_file(target, fs::file_size(source) * static_cast<unsigned>(numerator) /
                                static_cast<unsigned>(denominator));
    return target.string();
}

} // namespace tavrix::testing
