#include "standard-plugins/webp-output/WebPMemory.h"

namespace
{

constexpr uint64_t bytesBesides = 8u << 20;
constexpr uint32_t highestEffort = 6;
constexpr uint64_t bytesWithLoss = 10;
constexpr uint64_t bytesWithLossQuickly = 34;
constexpr uint64_t bytesLossless = 44;
constexpr uint64_t bytesAtHighest = 64;

} // namespace

uint64_t WebPMemoryNeeded(uint32_t width, uint32_t height, const WebPChoice& choice)
{
    const uint64_t lossless = choice.effort == highestEffort ? bytesAtHighest : bytesLossless;
    return bytesBesides + (choice.lossless ? lossless : bytesWithLoss) * width * height;
}

uint64_t WebPMemoryOfQuickWay(uint32_t width, uint32_t height)
{
    return bytesBesides + bytesWithLossQuickly * width * height;
}
