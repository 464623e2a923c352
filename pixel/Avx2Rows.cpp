// The loops on rows for processors with AVX2.

#if defined(__x86_64__) || defined(__i386__)

#include "pixel/BoxRow.h"
#include "pixel/OrderedDither.h"
#include "pixel/PlainRows.h"
#include "pixel/RowKernels.h"
#include "pixel/StretchRow.h"
#include "pixel/TextCoverage.h"
#include "pixel/VectorConstants.h"

#include <algorithm>
#include <immintrin.h>
#include <string.h>

#define VECTOR __attribute__((target("avx2")))

namespace
{

#include "pixel/VectorLanes.h"

namespace vector
{

// As Lanes16 and what goes with it.
struct Lanes32 {
    enum : size_t { Bytes = 32 };
    __m256i v;

    static VECTOR Lanes32 Load(const u8* bytes)
    {
        return {_mm256_loadu_si256(reinterpret_cast<const __m256i*>(bytes))};
    }
    static VECTOR Lanes32 LoadNumbers(const u16* numbers)
    {
        return {_mm256_loadu_si256(reinterpret_cast<const __m256i*>(numbers))};
    }
    static VECTOR Lanes32 LoadSixteen(const u8* bytes) { return Repeat(Lanes16::Load(bytes).v); }
    static VECTOR Lanes32 Repeat(__m128i sixteen) { return {_mm256_broadcastsi128_si256(sixteen)}; }
    static VECTOR Lanes32 Splat(u32 number)
    {
        return {_mm256_set1_epi16(static_cast<short>(number))};
    }
    static VECTOR Lanes32 SplatByte(u32 byte)
    {
        return {_mm256_set1_epi8(static_cast<char>(byte))};
    }
    static VECTOR Lanes32 Widen(const u8* bytes)
    {
        return {_mm256_cvtepu8_epi16(Lanes16::Load(bytes).v)};
    }
    VECTOR void Store(u8* bytes) const
    {
        _mm256_storeu_si256(reinterpret_cast<__m256i*>(bytes), v);
    }
    VECTOR bool IsZero() const { return _mm256_testz_si256(v, v) != 0; }
};

using Lanes = Lanes32;

VECTOR inline Lanes32 Add(Lanes32 a, Lanes32 b)
{
    return {_mm256_add_epi16(a.v, b.v)};
}

VECTOR inline Lanes32 AddBytes(Lanes32 a, Lanes32 b)
{
    return {_mm256_add_epi8(a.v, b.v)};
}

VECTOR inline Lanes32 AddBytesUpTo255(Lanes32 a, Lanes32 b)
{
    return {_mm256_adds_epu8(a.v, b.v)};
}

VECTOR inline Lanes32 Subtract(Lanes32 a, Lanes32 b)
{
    return {_mm256_sub_epi16(a.v, b.v)};
}

VECTOR inline Lanes32 Multiply(Lanes32 a, Lanes32 b)
{
    return {_mm256_mullo_epi16(a.v, b.v)};
}

VECTOR inline Lanes32 MultiplyHigh(Lanes32 a, Lanes32 b)
{
    return {_mm256_mulhi_epu16(a.v, b.v)};
}

VECTOR inline Lanes32 MultiplyHighSigned(Lanes32 a, Lanes32 b)
{
    return {_mm256_mulhi_epi16(a.v, b.v)};
}

VECTOR inline Lanes32 And(Lanes32 a, Lanes32 b)
{
    return {_mm256_and_si256(a.v, b.v)};
}

VECTOR inline Lanes32 Or(Lanes32 a, Lanes32 b)
{
    return {_mm256_or_si256(a.v, b.v)};
}

VECTOR inline Lanes32 Xor(Lanes32 a, Lanes32 b)
{
    return {_mm256_xor_si256(a.v, b.v)};
}

template <int Bits>
VECTOR inline Lanes32 ShiftLeft(Lanes32 a)
{
    return {_mm256_slli_epi16(a.v, Bits)};
}

template <int Bits>
VECTOR inline Lanes32 ShiftRight(Lanes32 a)
{
    return {_mm256_srli_epi16(a.v, Bits)};
}

VECTOR inline Lanes32 SignsOf(Lanes32 a)
{
    return {_mm256_srai_epi16(a.v, 15)};
}

VECTOR inline Lanes32 EqualBytes(Lanes32 a, Lanes32 b)
{
    return {_mm256_cmpeq_epi8(a.v, b.v)};
}

VECTOR inline Lanes32 Choose(Lanes32 a, Lanes32 b, Lanes32 choice)
{
    return {_mm256_blendv_epi8(a.v, b.v, choice.v)};
}

VECTOR inline Lanes32 Shuffle(Lanes32 bytes, Lanes32 indices)
{
    return {_mm256_shuffle_epi8(bytes.v, indices.v)};
}

VECTOR inline Lanes32 WidenLow(Lanes32 bytes)
{
    return {_mm256_unpacklo_epi8(bytes.v, _mm256_setzero_si256())};
}

VECTOR inline Lanes32 WidenHigh(Lanes32 bytes)
{
    return {_mm256_unpackhi_epi8(bytes.v, _mm256_setzero_si256())};
}

VECTOR inline Lanes32 InterleaveLow(Lanes32 a, Lanes32 b)
{
    return {_mm256_unpacklo_epi16(a.v, b.v)};
}

VECTOR inline Lanes32 InterleaveHigh(Lanes32 a, Lanes32 b)
{
    return {_mm256_unpackhi_epi16(a.v, b.v)};
}

VECTOR inline Lanes32 InterleaveLowPairs(Lanes32 a, Lanes32 b)
{
    return {_mm256_unpacklo_epi32(a.v, b.v)};
}

VECTOR inline Lanes32 InterleaveHighPairs(Lanes32 a, Lanes32 b)
{
    return {_mm256_unpackhi_epi32(a.v, b.v)};
}

VECTOR inline Lanes32 AddNeighbours(Lanes32 bytes)
{
    return {_mm256_maddubs_epi16(bytes.v, _mm256_set1_epi8(1))};
}

VECTOR inline Lanes32 Narrow(Lanes32 a, Lanes32 b)
{
    return {_mm256_packus_epi16(a.v, b.v)};
}

VECTOR inline void LoadApart(const u8* bytes, size_t distance, Lanes32* out)
{
    out->v = _mm256_inserti128_si256(_mm256_castsi128_si256(Lanes16::Load(bytes).v),
                                     Lanes16::Load(bytes + distance).v, 1);
}

VECTOR inline void StoreApart(u16* numbers, size_t distance, Lanes32 in)
{
    _mm_storeu_si128(reinterpret_cast<__m128i*>(numbers), _mm256_castsi256_si128(in.v));
    _mm_storeu_si128(reinterpret_cast<__m128i*>(numbers + distance),
                     _mm256_extracti128_si256(in.v, 1));
}

// As Column16 and what goes with it.
struct Column {
    __m256i v;

    static VECTOR Column Load(const u16* numbers) { return {Lanes32::LoadNumbers(numbers).v}; }
    static VECTOR Column Repeat(const u64* four)
    {
        return {_mm256_set1_epi64x(static_cast<long long>(*four))};
    }
};

VECTOR inline Column AddNumbers(Column a, Column b)
{
    return {_mm256_add_epi16(a.v, b.v)};
}

VECTOR inline Column AddSums(Column a, Column b)
{
    return {_mm256_add_epi32(a.v, b.v)};
}

VECTOR inline Column Weigh(Column numbers, Column weights)
{
    return {_mm256_madd_epi16(numbers.v, weights.v)};
}

template <int Bits>
VECTOR inline Column ShiftSums(Column a)
{
    return {_mm256_slli_epi32(a.v, Bits)};
}

VECTOR inline Column AddPairs(Column a)
{
    return {_mm256_add_epi32(a.v, _mm256_srli_epi64(a.v, 32))};
}

VECTOR inline __m128i Scale(Column sums, const double* factor)
{
    const __m256i exponents = _mm256_set1_epi32(0x43300000);
    const __m256d exact = _mm256_castsi256_pd(_mm256_blend_epi32(sums.v, exponents, 0xAA));
    const __m256d halfMore = _mm256_sub_pd(exact, _mm256_set1_pd(4503599627370495.5));
    return _mm256_cvttpd_epi32(_mm256_mul_pd(halfMore, _mm256_broadcast_sd(factor)));
}

// May read 8 bytes more.
VECTOR inline void LoadFours(const u8* pixels, Lanes32* out)
{
    const __m256i eight = Lanes32::Load(pixels).v;
    out->v = _mm256_permutevar8x32_epi32(eight, _mm256_setr_epi32(0, 1, 2, 0, 3, 4, 5, 0));
}

VECTOR inline void StoreFours(u8* pixels, Lanes32 fours)
{
    const __m256i eight =
        _mm256_permutevar8x32_epi32(fours.v, _mm256_setr_epi32(0, 1, 2, 4, 5, 6, 0, 0));
    _mm_storeu_si128(reinterpret_cast<__m128i*>(pixels), _mm256_castsi256_si128(eight));
    _mm_storel_epi64(reinterpret_cast<__m128i*>(pixels + 16), _mm256_extracti128_si256(eight, 1));
}

} // namespace vector

#include "pixel/VectorRows.h"

} // namespace

const RowKernels avx2Rows = vector::vectorRows;

#endif
