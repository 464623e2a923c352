#include "standard-plugins/webp-input/WebpBitstream.h"

namespace
{

constexpr uint32_t sideBits = 0x3fff;
constexpr uint32_t macroblockSide = 16;
constexpr uint64_t leastBitsPerMacroblock = 2;

uint32_t Blocks(uint32_t pixels)
{
    return (pixels + macroblockSide - 1) / macroblockSide;
}

bool ReadLossless(const uint8_t* bytes, WebpBitstream* bitstream)
{
    constexpr uint8_t signature = 0x2f;
    if (bytes[0] != signature)
        return false;
    const uint32_t bits =
        bytes[1] | uint32_t{bytes[2]} << 8 | uint32_t{bytes[3]} << 16 | uint32_t{bytes[4]} << 24;
    bitstream->width = (bits & sideBits) + 1;
    bitstream->height = (bits >> 14 & sideBits) + 1;
    bitstream->hasAlpha = (bits >> 28 & 1) != 0;
    return true;
}

bool ReadLossy(const uint8_t* bytes, uint64_t chunkBytes, WebpBitstream* bitstream)
{
    const bool isKeyFrame = (bytes[0] & 1) == 0;
    if (!isKeyFrame || bytes[3] != 0x9d || bytes[4] != 0x01 || bytes[5] != 0x2a)
        return false;
    bitstream->width = (bytes[6] | uint32_t{bytes[7]} << 8) & sideBits;
    bitstream->height = (bytes[8] | uint32_t{bytes[9]} << 8) & sideBits;
    const uint64_t blocks = uint64_t{Blocks(bitstream->width)} * Blocks(bitstream->height);
    return blocks > 0 && chunkBytes * 8 >= blocks * leastBitsPerMacroblock;
}

} // namespace

bool ReadBitstreamStart(const uint8_t* bytes, uint64_t chunkBytes, bool lossless,
                        WebpBitstream* bitstream)
{
    *bitstream = {};
    bitstream->lossless = lossless;
    return lossless ? ReadLossless(bytes, bitstream) : ReadLossy(bytes, chunkBytes, bitstream);
}
