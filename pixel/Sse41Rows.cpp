// The loops on rows for processors with SSE 4.1.

#if defined(__x86_64__) || defined(__i386__)

#include "pixel/OrderedDither.h"
#include "pixel/PlainRows.h"
#include "pixel/RowKernels.h"
#include "pixel/StretchRow.h"

#include <immintrin.h>
#include <string.h>

#define VECTOR __attribute__((target("sse4.1")))

namespace
{

struct Wide {
    __m128i low;
    __m128i high;
};

VECTOR inline Wide LoadWide(const u16* numbers)
{
    const auto* at = reinterpret_cast<const __m128i*>(numbers);
    return {_mm_loadu_si128(at), _mm_loadu_si128(at + 1)};
}

VECTOR inline Wide Widen(__m128i bytes)
{
    return {_mm_cvtepu8_epi16(bytes), _mm_unpackhi_epi8(bytes, _mm_setzero_si128())};
}

VECTOR inline __m128i Narrow(Wide wide)
{
    return _mm_packus_epi16(wide.low, wide.high);
}

VECTOR inline Wide Splat(u32 number)
{
    const __m128i all = _mm_set1_epi16(static_cast<short>(number));
    return {all, all};
}

VECTOR inline Wide Add(Wide a, Wide b)
{
    return {_mm_add_epi16(a.low, b.low), _mm_add_epi16(a.high, b.high)};
}

VECTOR inline Wide Subtract(Wide a, Wide b)
{
    return {_mm_sub_epi16(a.low, b.low), _mm_sub_epi16(a.high, b.high)};
}

VECTOR inline Wide Multiply(Wide a, Wide b)
{
    return {_mm_mullo_epi16(a.low, b.low), _mm_mullo_epi16(a.high, b.high)};
}

VECTOR inline Wide MultiplyHigh(Wide a, Wide b)
{
    return {_mm_mulhi_epu16(a.low, b.low), _mm_mulhi_epu16(a.high, b.high)};
}

VECTOR inline Wide And(Wide a, Wide b)
{
    return {_mm_and_si128(a.low, b.low), _mm_and_si128(a.high, b.high)};
}

VECTOR inline Wide ShiftRight8(Wide a)
{
    return {_mm_srli_epi16(a.low, 8), _mm_srli_epi16(a.high, 8)};
}

VECTOR inline Wide SignsOf(Wide a)
{
    return {_mm_srai_epi16(a.low, 15), _mm_srai_epi16(a.high, 15)};
}

// 16 pixels, twice.
struct Stripe {
    __m128i vectors[3];
};

VECTOR inline Stripe StripeOf(const ColorBytes& color)
{
    u8 bytes[48];
    plain::StoreRow24(bytes, 16, color);
    Stripe stripe;
    for (int i = 0; i < 3; ++i)
        stripe.vectors[i] = _mm_loadu_si128(reinterpret_cast<const __m128i*>(bytes) + i);
    return stripe;
}

VECTOR inline void StoreStripe(u8* pixels, const Stripe& stripe)
{
    auto* at = reinterpret_cast<__m128i*>(pixels);
    for (int i = 0; i < 6; ++i)
        _mm_storeu_si128(at + i, stripe.vectors[i % 3]);
}

#include "pixel/VectorRows.h"

} // namespace

const RowKernels sse41Rows = vector::vectorRows;

#endif
