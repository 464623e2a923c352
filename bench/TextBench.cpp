// Text brought down from a bitmap of ink eight times as large and laid on a picture. Nobody else
// offers that, so that it stands beside its own plain loop.

#include "bench/Table.h"
#include "pixel/TextCoverage.h"

#include <bit>

namespace bench
{

namespace
{

constexpr u32 Seed = 61;
constexpr u32 Color = 0xC86432FF;
constexpr u8 Bytes[3] = {0x32, 0x64, 0xC8}; // as they lie in a pixel

// Of one row of the picture after the other, TextScale rows each.
struct Ink {
    size_t rowBytes;
    std::vector<u8> bits;

    const u8* RowsOf(u32 y) const { return bits.data() + TextScale * rowBytes * y; }
};

// Ink in every block, so that each pixel is blended.
Ink MakeInk(Size size)
{
    Ink ink = {(size_t{size.width} + 3) & ~size_t{3}, {}};
    ink.bits.resize(ink.rowBytes * TextScale * size.height);
    Noise(Seed).Fill(ink.bits.data(), ink.bits.size());
    return ink;
}

u8 Blended(const Ink& ink, u32 x, u32 y, u8 old, u32 channel)
{
    u32 coverage = 0;
    for (u32 row = 0; row < TextScale; ++row)
        coverage += static_cast<u32>(std::popcount(ink.RowsOf(y)[row * ink.rowBytes + x]));
    const u32 weight = coverage * ((Color & 255) + 1);
    return static_cast<u8>(((16384 - weight) * old + weight * Bytes[channel]) >> 14);
}

Work OurText(Size size)
{
    auto source = std::make_shared<Picture>(MakePicture(size, Seed));
    auto ink = std::make_shared<Ink>(MakeInk(size));
    RasterPointer raster = MakeRaster(*source);
    const std::vector<u8*> lines = LinesOf(*raster);
    return {[=] {
                for (u32 y = 0; y < size.height; ++y)
                    BlendTextRow(lines[y], ink->RowsOf(y), ink->rowBytes, size.width,
                                 BytesOf(Color));
            },
            [=] {
                return DifferenceFrom(PictureOf(*raster), [&](u32 x, u32 y, u8* pixel) {
                    for (u32 i = 0; i < 3; ++i)
                        pixel[i] = Blended(*ink, x, y, source->At(x, y)[i], i);
                });
            }};
}

Work PlainText(Size size)
{
    Work work = OurText(size);
    work.run = AtPlainLevel(work.run);
    return work;
}

} // namespace

void AddTexts()
{
    const Size size = Sizes[0];
    const std::string name = "Text/" + Name(size);
    AddOurs(name, [=] { return OurText(size); });
    AddPeer(name, "plain-loop", [=] { return PlainText(size); });
    AddLimit(name, size);
}

} // namespace bench
