#include "tools/LetterPicture.h"

#include <fstream>
#include <iostream>
#include <map>
#include <sstream>

namespace
{

constexpr unsigned LargestSide = 1024;

bool ReadColor(std::istream& words, std::map<char, Color>* colors)
{
    char letter = 0;
    unsigned red = 0, green = 0, blue = 0, alpha = 0;
    if (!(words >> letter >> red >> green >> blue >> alpha))
        return false;
    (*colors)[letter] = {static_cast<uint8_t>(red), static_cast<uint8_t>(green),
                         static_cast<uint8_t>(blue), static_cast<uint8_t>(alpha)};
    return true;
}

bool ReadBlock(std::istream& words, std::istream& in, const std::map<char, Color>& colors,
               Block* block)
{
    if (!(words >> block->width))
        return false;
    if (!(words >> block->height))
        block->height = block->width;
    if (block->width == 0 || block->width > LargestSide || block->height == 0 ||
        block->height > LargestSide)
        return false;
    std::string row;
    for (unsigned y = 0; y < block->height; ++y) {
        if (!std::getline(in, row) || row.size() != block->width)
            return false;
        for (char letter : row) {
            const auto found = colors.find(letter);
            if (found == colors.end())
                return false;
            block->pixels.push_back(found->second);
        }
    }
    return true;
}

} // namespace

std::vector<Block> ReadBlocks(std::istream& in)
{
    std::map<char, Color> colors;
    std::vector<Block> blocks;
    std::string line;
    while (std::getline(in, line)) {
        std::istringstream words(line);
        std::string word;
        if (!(words >> word) || word[0] == '#')
            continue;
        if (word == "color") {
            if (!ReadColor(words, &colors))
                return {};
        } else if (word == "size") {
            blocks.emplace_back();
            if (!ReadBlock(words, in, colors, &blocks.back()))
                return {};
        } else {
            return {};
        }
    }
    return blocks;
}

int ConvertBlocks(const char* source, const char* target,
                  Bytes (*make)(const std::vector<Block>& blocks))
{
    std::ifstream in(source);
    const std::vector<Block> blocks = ReadBlocks(in);
    const Bytes bytes = blocks.empty() ? Bytes() : make(blocks);
    if (bytes.Size() == 0) {
        std::cerr << source << ": not such a picture drawn in letters\n";
        return 1;
    }
    std::ofstream out(target, std::ios::binary);
    out << bytes.Text();
    return out.flush() ? 0 : 1;
}
