// Turns blocks drawn in letters into a bitmap: make-bitmap FORM SOURCE.txt TARGET
//
// FORM is "bmp" for a bitmap file of the one block, 24 bits; "strip" for the bare pixels of all
// blocks side by side, 24 bits, lines from the top; "stack" for those of all blocks one above the
// other, 32 bits. Bare lines have no padding, so the strip's width in bytes is a multiple of 4.

#include "tools/LetterPicture.h"

#include <cstring>
#include <iostream>

namespace
{

Bytes FileOf(const std::vector<Block>& blocks)
{
    if (blocks.size() != 1)
        return {};
    const Block& block = blocks[0];
    const uint32_t stride = (block.width * 3 + 3) & ~3U;
    constexpr uint32_t HeaderBytes = 14 + 40;
    Bytes file;
    file.Put('B', 1);
    file.Put('M', 1);
    file.Put(HeaderBytes + stride * block.height, 4);
    file.Put(0, 4);
    file.Put(HeaderBytes, 4);
    file.Put(40, 4);
    file.Put(block.width, 4);
    file.Put(block.height, 4);
    file.Put(1, 2);
    file.Put(24, 2);
    file.Put(0, 4);
    file.Put(stride * block.height, 4);
    for (int i = 0; i < 4; ++i)
        file.Put(0, 4);
    for (unsigned y = block.height; y-- > 0;) {
        for (unsigned x = 0; x < block.width; ++x)
            file.PutPixel(block.At(x, y), 24);
        file.Put(0, stride - block.width * 3);
    }
    return file;
}

Bytes StripOf(const std::vector<Block>& blocks)
{
    Bytes pixels;
    for (unsigned y = 0; y < blocks[0].height; ++y)
        for (const Block& block : blocks) {
            if (block.height != blocks[0].height)
                return {};
            for (unsigned x = 0; x < block.width; ++x)
                pixels.PutPixel(block.At(x, y), 24);
        }
    return pixels;
}

Bytes StackOf(const std::vector<Block>& blocks)
{
    Bytes pixels;
    for (const Block& block : blocks) {
        if (block.width != blocks[0].width)
            return {};
        for (const Color& pixel : block.pixels)
            pixels.PutPixel(pixel, 32);
    }
    return pixels;
}

struct Form {
    const char* name;
    Bytes (*make)(const std::vector<Block>& blocks);
};

constexpr Form forms[] = {{"bmp", FileOf}, {"strip", StripOf}, {"stack", StackOf}};

} // namespace

int main(int argc, char** argv)
{
    if (argc == 4)
        for (const Form& form : forms)
            if (std::strcmp(form.name, argv[1]) == 0)
                return ConvertBlocks(argv[2], argv[3], form.make);
    std::cerr << "usage: make-bitmap bmp|strip|stack SOURCE.txt TARGET\n";
    return 2;
}
