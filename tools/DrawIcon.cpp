// Makes the program's icon files from its drawing in paths:
//   draw-icon SOURCE.svg TARGET.png SIZE       one size
//   draw-icon SOURCE.svg TARGET.ico SIZE...    the device's, with each size
//   draw-icon SOURCE.svg TARGET.svg SIZE       as paths; TARGET-symbolic.svg: those of one colour

#include "tools/IconFile.h"
#include "tools/VectorPicture.h"

#include <png.h>

#include <cstdlib>
#include <fstream>
#include <iostream>
#include <iterator>

namespace
{

constexpr unsigned LargestSize = 1024;

bool EndsWith(const std::string& text, const std::string& end)
{
    return text.size() >= end.size() &&
           text.compare(text.size() - end.size(), end.size(), end) == 0;
}

bool WriteFile(const std::string& path, const std::string& bytes)
{
    std::ofstream out(path, std::ios::binary);
    out << bytes;
    return !bytes.empty() && out.flush();
}

bool WritePng(const std::string& path, const Block& block)
{
    std::vector<uint8_t> bytes;
    for (const Color& color : block.pixels)
        bytes.insert(bytes.end(), {color.red, color.green, color.blue, color.alpha});
    png_image image{};
    image.version = PNG_IMAGE_VERSION;
    image.width = block.width;
    image.height = block.height;
    image.format = PNG_FORMAT_RGBA;
    return png_image_write_to_file(&image, path.c_str(), 0, bytes.data(), 0, nullptr) != 0;
}

bool WriteTarget(const VectorPicture& picture, const std::string& target,
                 const std::vector<unsigned>& sizes)
{
    if (EndsWith(target, ".png"))
        return WritePng(target, DrawVectorPicture(picture, sizes[0]));
    if (EndsWith(target, ".svg"))
        return WriteFile(target,
                         WriteVectorPicture(picture, EndsWith(target, "-symbolic.svg"), sizes[0]));
    std::vector<Block> squares;
    for (unsigned size : sizes)
        squares.push_back(DrawVectorPicture(picture, size));
    return WriteFile(target, IconOf(squares).Text());
}

} // namespace

int main(int argc, char** argv)
{
    std::vector<unsigned> sizes;
    for (int i = 3; i < argc; ++i)
        sizes.push_back(static_cast<unsigned>(std::strtoul(argv[i], nullptr, 10)));
    for (unsigned size : sizes) {
        if (size == 0 || size > LargestSize)
            sizes.clear();
    }
    if (sizes.empty()) {
        std::cerr << "usage: draw-icon SOURCE.svg TARGET.png|.ico|.svg SIZE...\n";
        return 2;
    }
    std::ifstream in(argv[1]);
    const VectorPicture picture =
        ReadVectorPicture(std::string(std::istreambuf_iterator<char>(in), {}));
    if (picture.side <= 0) {
        std::cerr << argv[1] << ": not such a picture drawn in paths\n";
        return 1;
    }
    if (!WriteTarget(picture, argv[2], sizes)) {
        std::cerr << argv[2] << ": cannot be written\n";
        return 1;
    }
    return 0;
}
