#include "tools/IconFile.h"

namespace
{

/// A bitmap header of twice the height, the pixels from the bottom, and a mask that is all zero:
/// the alpha channel says what shows.
Bytes ImageOf(const Block& square)
{
    Bytes image;
    image.Put(40, 4);
    image.Put(square.width, 4);
    image.Put(square.height * 2, 4);
    image.Put(1, 2);
    image.Put(32, 2);
    for (int i = 0; i < 6; ++i)
        image.Put(0, 4);
    for (unsigned y = square.height; y-- > 0;)
        for (unsigned x = 0; x < square.width; ++x)
            image.PutPixel(square.At(x, y), 32);
    const unsigned maskStride = (square.width + 31) / 32 * 4;
    for (unsigned i = 0; i < maskStride * square.height; ++i)
        image.Put(0, 1);
    return image;
}

} // namespace

Bytes IconOf(const std::vector<Block>& squares)
{
    Bytes icon;
    icon.Put(0, 2);
    icon.Put(1, 2);
    icon.Put(static_cast<uint32_t>(squares.size()), 2);
    uint32_t offset = 6 + 16 * static_cast<uint32_t>(squares.size());
    std::vector<Bytes> images;
    for (const Block& square : squares) {
        if (square.width != square.height || square.width > 256)
            return {};
        images.push_back(ImageOf(square));
        icon.Put(square.width & 255U, 1); // 256 is written as 0
        icon.Put(square.height & 255U, 1);
        icon.Put(0, 2);
        icon.Put(1, 2);
        icon.Put(32, 2);
        icon.Put(images.back().Size(), 4);
        icon.Put(offset, 4);
        offset += images.back().Size();
    }
    for (const Bytes& image : images)
        icon.Put(image);
    return icon;
}
