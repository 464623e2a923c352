// The loops on rows by vectors, for one instruction set. Included once by each source that defines
// one, after VectorLanes.h: VECTOR, the attribute by which a function is compiled for it, and in
// the namespace `vector` the type Lanes, of the longest vectors that it has.
//
// What is left at a row's end is for the plain loops, or for one more block that reaches back.

#include "pixel/VectorBlends.h"
#include "pixel/VectorBox.h"

namespace vector
{

template <typename L>
VECTOR inline void LoadBlock(const u8* bytes, L* out)
{
    for (size_t n = 0; n < Vectors; ++n)
        out[n] = L::Load(bytes + L::Bytes * n);
}

// Indices that repeat a pixel's bytes, from the first, the second or the third on.
struct PixelIndices {
    alignas(Lanes::Bytes) u8 from[3][Lanes::Bytes];
};

constexpr PixelIndices MakePixelIndices()
{
    PixelIndices indices = {};
    for (size_t first = 0; first < 3; ++first)
        for (size_t i = 0; i < Lanes::Bytes; ++i)
            indices.from[first][i] = static_cast<u8>((first + i) % 3);
    return indices;
}

constexpr PixelIndices pixelIndices = MakePixelIndices();

// What lies in a row of one colour from byte `first` on.
VECTOR inline void LoadColor(const Lanes* stripes, size_t first, Lanes* out)
{
    for (size_t n = 0; n < Vectors; ++n)
        out[n] = stripes[(first + Lanes::Bytes * n) % 3];
}

VECTOR void StoreRow24(u8* pixels, size_t count, const ColorBytes& color)
{
    constexpr size_t block = Vectors * Lanes::Bytes;
    if (count < Lanes::Bytes)
        return plain::StoreRow24(pixels, count, color);
    const Lanes pixel =
        Lanes::Repeat(_mm_cvtsi32_si128(color.blue | color.green << 8 | color.red << 16));
    Lanes stripes[3];
    for (size_t first = 0; first < 3; ++first)
        stripes[first] = Shuffle(pixel, Lanes::Load(pixelIndices.from[first]));
    Lanes first[Vectors];
    LoadColor(stripes, 0, first);
    u8* const end = pixels + 3 * count;
    StoreBlock(pixels, first);
    // Vectors at addresses of their own size, so that none lies across two lines of the cache.
    const size_t skipped = -reinterpret_cast<uintptr_t>(pixels) % Lanes::Bytes;
    Lanes aligned[Vectors];
    LoadColor(stripes, skipped, aligned);
    for (u8* at = pixels + skipped; at + block <= end; at += block)
        StoreBlock(at, aligned);
    StoreBlock(end - block, first);
}

template <typename L>
struct Inverse {
    VECTOR bool Begin(size_t) const { return true; }

    template <size_t N>
    VECTOR L At(size_t, const u8* bytes) const
    {
        return Xor(L::Load(bytes), L::SplatByte(255));
    }
};

VECTOR void InvertRow24(u8* pixels, size_t count)
{
    if (count < Lanes::Bytes)
        return plain::InvertRow24(pixels, count);
    Inverse<Lanes> inverse;
    DrawBlocks<Lanes>(pixels, count, inverse);
}

// 16 pixels end for end.
VECTOR inline void ReversePixels(const __m128i* in, __m128i* out)
{
    constexpr char no = -128; // gives 0
    out[0] = _mm_or_si128(_mm_shuffle_epi8(in[2], _mm_setr_epi8(13, 14, 15, 10, 11, 12, 7, 8, 9, 4,
                                                                5, 6, 1, 2, 3, no)),
                          _mm_shuffle_epi8(in[1], _mm_setr_epi8(no, no, no, no, no, no, no, no, no,
                                                                no, no, no, no, no, no, 14)));
    out[1] = _mm_or_si128(
        _mm_or_si128(_mm_shuffle_epi8(in[1], _mm_setr_epi8(15, no, 11, 12, 13, 8, 9, 10, 5, 6, 7, 2,
                                                           3, 4, no, 0)),
                     _mm_shuffle_epi8(in[2], _mm_setr_epi8(no, 0, no, no, no, no, no, no, no, no,
                                                           no, no, no, no, no, no))),
        _mm_shuffle_epi8(
            in[0], _mm_setr_epi8(no, no, no, no, no, no, no, no, no, no, no, no, no, no, 15, no)));
    out[2] = _mm_or_si128(_mm_shuffle_epi8(in[0], _mm_setr_epi8(no, 12, 13, 14, 9, 10, 11, 6, 7, 8,
                                                                3, 4, 5, 0, 1, 2)),
                          _mm_shuffle_epi8(in[1], _mm_setr_epi8(1, no, no, no, no, no, no, no, no,
                                                                no, no, no, no, no, no, no)));
}

VECTOR inline void LoadReversed(const u8* pixels, Lanes16* out)
{
    __m128i in[Vectors];
    for (size_t n = 0; n < Vectors; ++n)
        in[n] = Lanes16::Load(pixels + 16 * n).v;
    __m128i reversed[Vectors];
    ReversePixels(in, reversed);
    for (size_t n = 0; n < Vectors; ++n)
        out[n].v = reversed[n];
}

VECTOR void ReverseRow24(u8* pixels, size_t count)
{
    constexpr size_t block = Lanes16::Bytes;
    for (; count >= 2 * block; count -= 2 * block, pixels += 3 * block) {
        u8* const right = pixels + 3 * (count - block);
        Lanes16 first[Vectors];
        Lanes16 last[Vectors];
        LoadReversed(pixels, first);
        LoadReversed(right, last);
        StoreBlock(pixels, last);
        StoreBlock(right, first);
    }
    plain::ReverseRow24(pixels, count);
}

// The sum loses its low three bits, and is 255 where it does not fit into a byte.
VECTOR inline Lanes Dithered(Lanes value, Lanes threshold)
{
    const Lanes sum = AddBytes(value, threshold);
    const Lanes fits = EqualBytes(sum, AddBytesUpTo255(value, threshold));
    return Choose(Lanes::SplatByte(255), And(sum, Lanes::SplatByte(~7u)), fits);
}

// The thresholds of a block's bytes in each row of the matrix.
struct BlockThresholds {
    alignas(Lanes::Bytes) u8 rows[DitherSide][Vectors * Lanes::Bytes];
};

constexpr BlockThresholds MakeThresholds()
{
    BlockThresholds thresholds = {};
    for (u32 y = 0; y < DitherSide; ++y)
        for (u32 i = 0; i < Vectors * Lanes::Bytes; ++i)
            thresholds.rows[y][i] = DitherThreshold(i / 3, y);
    return thresholds;
}

constexpr BlockThresholds blockThresholds = MakeThresholds();

VECTOR void DitherRow(u8* target, const u8* source, u32 columns, const u8* table, u32 y)
{
    constexpr size_t block = Vectors * Lanes::Bytes;
    Lanes thresholds[Vectors];
    LoadBlock(blockThresholds.rows[y % DitherSide], thresholds);
    for (; columns >= Lanes::Bytes; columns -= u32{Lanes::Bytes}, target += block, source += block)
        for (size_t n = 0; n < Vectors; ++n)
            Dithered(Lanes::Load(source + Lanes::Bytes * n), thresholds[n])
                .Store(target + Lanes::Bytes * n);
    plain::DitherRow(target, source, columns, table, y);
}

// One channel of 8 pixels as numbers.
VECTOR inline Lanes16 ChannelOf(Lanes16 first, Lanes16 second, const u8 (&indices)[2][16])
{
    return Or(Shuffle(first, Lanes16::Load(indices[0])),
              Shuffle(second, Lanes16::Load(indices[1])));
}

// Of the 16 bytes from the first pixel on, and of those from byte 8 on.
alignas(16) constexpr u8 planeIndices[3][2][16] = {
    {{0, 128, 3, 128, 6, 128, 9, 128, 128, 128, 128, 128, 128, 128, 128, 128},
     {128, 128, 128, 128, 128, 128, 128, 128, 4, 128, 7, 128, 10, 128, 13, 128}},
    {{1, 128, 4, 128, 7, 128, 10, 128, 128, 128, 128, 128, 128, 128, 128, 128},
     {128, 128, 128, 128, 128, 128, 128, 128, 5, 128, 8, 128, 11, 128, 14, 128}},
    {{2, 128, 5, 128, 8, 128, 11, 128, 128, 128, 128, 128, 128, 128, 128, 128},
     {128, 128, 128, 128, 128, 128, 128, 128, 6, 128, 9, 128, 12, 128, 15, 128}}};

// At most 256 times 255.
VECTOR void LumaRow24(u16* luma, const u8* source, size_t count)
{
    constexpr size_t block = 8;
    for (; count >= block; count -= block, source += 3 * block, luma += block) {
        const Lanes16 first = Lanes16::Load(source);
        const Lanes16 second = Lanes16::Load(source + 8);
        const Lanes16 blue = ChannelOf(first, second, planeIndices[0]);
        const Lanes16 green = ChannelOf(first, second, planeIndices[1]);
        const Lanes16 red = ChannelOf(first, second, planeIndices[2]);
        const Lanes16 sum =
            Add(Add(Multiply(blue, Lanes16::Splat(28)), Multiply(green, Lanes16::Splat(151))),
                Multiply(red, Lanes16::Splat(77)));
        StoreNumbers(luma, ShiftRight<8>(sum));
    }
    plain::LumaRow24(luma, source, count);
}

VECTOR void StretchBlocks(u8* target, const u8* source, const StretchColumns& columns)
{
    for (size_t i = 0; i < columns.blocks; ++i, target += 3 * StretchBlockPixels)
        Shuffle(Lanes16::Load(source + columns.offsets[i]), Lanes16::Load(columns.shuffles[i]))
            .Store(target);
}

// Four pixels of 4 bytes, without the last byte of each.
VECTOR inline void StorePacked(u8* target, __m128i pixels)
{
    StoreFours(target,
               Lanes16{_mm_shuffle_epi8(pixels, _mm_setr_epi8(0, 1, 2, 4, 5, 6, 8, 9, 10, 12, 13,
                                                              14, -128, -128, -128, -128))});
}

// Pixels as numbers of 32 bits, so that four rows of four change places as a matrix does.
VECTOR void CrossFour24(u8* const* targets, const u8* const* sources, size_t column, size_t count)
{
    const __m128i spread =
        _mm_setr_epi8(0, 1, 2, -128, 3, 4, 5, -128, 6, 7, 8, -128, 9, 10, 11, -128);
    for (size_t i = 0; i < count; i += 4) {
        __m128i rows[4];
        for (size_t n = 0; n < 4; ++n)
            rows[n] = _mm_shuffle_epi8(Lanes16::Load(sources[i + n] + 3 * column).v, spread);
        const __m128i low01 = _mm_unpacklo_epi32(rows[0], rows[1]);
        const __m128i low23 = _mm_unpacklo_epi32(rows[2], rows[3]);
        const __m128i high01 = _mm_unpackhi_epi32(rows[0], rows[1]);
        const __m128i high23 = _mm_unpackhi_epi32(rows[2], rows[3]);
        StorePacked(targets[0] + 3 * i, _mm_unpacklo_epi64(low01, low23));
        StorePacked(targets[1] + 3 * i, _mm_unpackhi_epi64(low01, low23));
        StorePacked(targets[2] + 3 * i, _mm_unpacklo_epi64(high01, high23));
        StorePacked(targets[3] + 3 * i, _mm_unpackhi_epi64(high01, high23));
    }
}

constexpr RowKernels vectorRows = {StoreRow24,     BlendRow24,      InvertRow24,    BlendMaskRows24,
                                   ReverseRow24,   CopyMaskedRow24, CompositeRow24, DitherRow,
                                   LumaRow24,      BlendTextRow,    PlaceColumns,   SumRows,
                                   AverageColumns, HalveRows24,     CrossFour24,    StretchBlocks};

} // namespace vector
