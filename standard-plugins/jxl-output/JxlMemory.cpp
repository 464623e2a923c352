#include "standard-plugins/jxl-output/JxlMemory.h"

namespace
{

constexpr uint64_t bytesBesides = 32u << 20;
constexpr uint32_t thoroughEffort = 8;

uint64_t BytesAPixel(const JxlChoice& choice)
{
    if (choice.effort >= thoroughEffort)
        return choice.lossless ? 160 : 320;
    return choice.lossless ? 100 : 72;
}

} // namespace

uint64_t JxlMemoryNeeded(uint32_t width, uint32_t height, const JxlChoice& choice)
{
    return bytesBesides + BytesAPixel(choice) * width * height;
}
