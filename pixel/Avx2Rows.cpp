// The loops on rows for processors with AVX2.

#if defined(__x86_64__) || defined(__i386__)

#include "pixel/OrderedDither.h"
#include "pixel/PlainRows.h"
#include "pixel/RowKernels.h"
#include "pixel/StretchRow.h"

#include <immintrin.h>
#include <string.h>

#define VECTOR __attribute__((target("avx2")))

namespace
{

using Wide = __m256i;

VECTOR inline Wide LoadWide(const u16* numbers)
{
    return _mm256_loadu_si256(reinterpret_cast<const __m256i*>(numbers));
}

VECTOR inline Wide Widen(__m128i bytes)
{
    return _mm256_cvtepu8_epi16(bytes);
}

VECTOR inline __m128i Narrow(Wide wide)
{
    return _mm_packus_epi16(_mm256_castsi256_si128(wide), _mm256_extracti128_si256(wide, 1));
}

VECTOR inline Wide Splat(u32 number)
{
    return _mm256_set1_epi16(static_cast<short>(number));
}

VECTOR inline Wide Add(Wide a, Wide b)
{
    return _mm256_add_epi16(a, b);
}

VECTOR inline Wide Subtract(Wide a, Wide b)
{
    return _mm256_sub_epi16(a, b);
}

VECTOR inline Wide Multiply(Wide a, Wide b)
{
    return _mm256_mullo_epi16(a, b);
}

VECTOR inline Wide MultiplyHigh(Wide a, Wide b)
{
    return _mm256_mulhi_epu16(a, b);
}

VECTOR inline Wide And(Wide a, Wide b)
{
    return _mm256_and_si256(a, b);
}

VECTOR inline Wide ShiftRight8(Wide a)
{
    return _mm256_srli_epi16(a, 8);
}

VECTOR inline Wide SignsOf(Wide a)
{
    return _mm256_srai_epi16(a, 15);
}

// 32 pixels.
struct Stripe {
    __m256i vectors[3];
};

VECTOR inline Stripe StripeOf(const ColorBytes& color)
{
    u8 bytes[96];
    plain::StoreRow24(bytes, 32, color);
    Stripe stripe;
    for (int i = 0; i < 3; ++i)
        stripe.vectors[i] = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(bytes) + i);
    return stripe;
}

VECTOR inline void StoreStripe(u8* pixels, const Stripe& stripe)
{
    auto* at = reinterpret_cast<__m256i*>(pixels);
    for (int i = 0; i < 3; ++i)
        _mm256_storeu_si256(at + i, stripe.vectors[i]);
}

#include "pixel/VectorRows.h"

} // namespace

const RowKernels avx2Rows = vector::vectorRows;

#endif
