// Vectors of 16 bytes under names that those of 32 have too, so that a loop is written once for
// both. Included by each source that defines VECTOR, the attribute by which a function is compiled
// for its instruction set.
//
// A Lanes type has as many pixels in a block as bytes in a vector, so that a block is 3 vectors.
// Numbers are of 16 bits: Split makes two vectors of them of one of bytes, Merge goes back.

namespace vector
{

constexpr size_t Vectors = 3; // in a block

struct Lanes16 {
    enum : size_t { Bytes = 16 };
    __m128i v;

    static VECTOR Lanes16 Load(const u8* bytes)
    {
        return {_mm_loadu_si128(reinterpret_cast<const __m128i*>(bytes))};
    }
    static VECTOR Lanes16 LoadNumbers(const u16* numbers)
    {
        return {_mm_loadu_si128(reinterpret_cast<const __m128i*>(numbers))};
    }
    /// 16 bytes, in each 16 of the vector.
    static VECTOR Lanes16 LoadSixteen(const u8* bytes) { return Load(bytes); }
    static VECTOR Lanes16 Repeat(__m128i sixteen) { return {sixteen}; }
    static VECTOR Lanes16 Splat(u32 number) { return {_mm_set1_epi16(static_cast<short>(number))}; }
    static VECTOR Lanes16 SplatByte(u32 byte) { return {_mm_set1_epi8(static_cast<char>(byte))}; }
    /// Half as many bytes as numbers.
    static VECTOR Lanes16 Widen(const u8* bytes)
    {
        return {_mm_cvtepu8_epi16(_mm_loadl_epi64(reinterpret_cast<const __m128i*>(bytes)))};
    }
    VECTOR void Store(u8* bytes) const { _mm_storeu_si128(reinterpret_cast<__m128i*>(bytes), v); }
    VECTOR bool IsZero() const { return _mm_testz_si128(v, v) != 0; }
};

VECTOR inline Lanes16 Add(Lanes16 a, Lanes16 b)
{
    return {_mm_add_epi16(a.v, b.v)};
}

VECTOR inline Lanes16 AddBytes(Lanes16 a, Lanes16 b)
{
    return {_mm_add_epi8(a.v, b.v)};
}

/// Stops at 255.
VECTOR inline Lanes16 AddBytesUpTo255(Lanes16 a, Lanes16 b)
{
    return {_mm_adds_epu8(a.v, b.v)};
}

VECTOR inline Lanes16 Subtract(Lanes16 a, Lanes16 b)
{
    return {_mm_sub_epi16(a.v, b.v)};
}

/// The low halves.
VECTOR inline Lanes16 Multiply(Lanes16 a, Lanes16 b)
{
    return {_mm_mullo_epi16(a.v, b.v)};
}

/// The high halves of numbers without sign.
VECTOR inline Lanes16 MultiplyHigh(Lanes16 a, Lanes16 b)
{
    return {_mm_mulhi_epu16(a.v, b.v)};
}

/// The high halves of numbers with sign: rounded down.
VECTOR inline Lanes16 MultiplyHighSigned(Lanes16 a, Lanes16 b)
{
    return {_mm_mulhi_epi16(a.v, b.v)};
}

VECTOR inline Lanes16 And(Lanes16 a, Lanes16 b)
{
    return {_mm_and_si128(a.v, b.v)};
}

VECTOR inline Lanes16 Or(Lanes16 a, Lanes16 b)
{
    return {_mm_or_si128(a.v, b.v)};
}

VECTOR inline Lanes16 Xor(Lanes16 a, Lanes16 b)
{
    return {_mm_xor_si128(a.v, b.v)};
}

template <int Bits>
VECTOR inline Lanes16 ShiftLeft(Lanes16 a)
{
    return {_mm_slli_epi16(a.v, Bits)};
}

template <int Bits>
VECTOR inline Lanes16 ShiftRight(Lanes16 a)
{
    return {_mm_srli_epi16(a.v, Bits)};
}

/// All bits of a number that is negative, else none.
VECTOR inline Lanes16 SignsOf(Lanes16 a)
{
    return {_mm_srai_epi16(a.v, 15)};
}

VECTOR inline Lanes16 EqualBytes(Lanes16 a, Lanes16 b)
{
    return {_mm_cmpeq_epi8(a.v, b.v)};
}

/// Bytes of `a` where the top bit of `choice` is clear, else of `b`.
VECTOR inline Lanes16 Choose(Lanes16 a, Lanes16 b, Lanes16 choice)
{
    return {_mm_blendv_epi8(a.v, b.v, choice.v)};
}

/// Each 16 bytes by themselves; an index with its top bit set gives 0.
VECTOR inline Lanes16 Shuffle(Lanes16 bytes, Lanes16 indices)
{
    return {_mm_shuffle_epi8(bytes.v, indices.v)};
}

/// The first and the last 8 of each 16 bytes as numbers.
VECTOR inline Lanes16 WidenLow(Lanes16 bytes)
{
    return {_mm_unpacklo_epi8(bytes.v, _mm_setzero_si128())};
}

VECTOR inline Lanes16 WidenHigh(Lanes16 bytes)
{
    return {_mm_unpackhi_epi8(bytes.v, _mm_setzero_si128())};
}

/// The first and the last half of each 16 bytes, numbers or pairs of them in turn.
VECTOR inline Lanes16 InterleaveLow(Lanes16 a, Lanes16 b)
{
    return {_mm_unpacklo_epi16(a.v, b.v)};
}

VECTOR inline Lanes16 InterleaveHigh(Lanes16 a, Lanes16 b)
{
    return {_mm_unpackhi_epi16(a.v, b.v)};
}

VECTOR inline Lanes16 InterleaveLowPairs(Lanes16 a, Lanes16 b)
{
    return {_mm_unpacklo_epi32(a.v, b.v)};
}

VECTOR inline Lanes16 InterleaveHighPairs(Lanes16 a, Lanes16 b)
{
    return {_mm_unpackhi_epi32(a.v, b.v)};
}

/// Sums of two bytes.
VECTOR inline Lanes16 AddNeighbours(Lanes16 bytes)
{
    return {_mm_maddubs_epi16(bytes.v, _mm_set1_epi8(1))};
}

/// Of each 16 bytes the numbers up to 255 of `a` and those of `b`.
VECTOR inline Lanes16 Narrow(Lanes16 a, Lanes16 b)
{
    return {_mm_packus_epi16(a.v, b.v)};
}

/// Each 16 bytes, `distance` bytes from the ones before.
VECTOR inline void LoadApart(const u8* bytes, size_t, Lanes16* out)
{
    *out = Lanes16::Load(bytes);
}

/// Each 16 bytes, `distance` numbers from the ones before.
VECTOR inline void StoreApart(u16* numbers, size_t, Lanes16 in)
{
    in.Store(reinterpret_cast<u8*>(numbers));
}

/// Four numbers of each of the three bytes of a column, and of a fourth one of no account; also
/// two sums of 32 bits, or one in the low half of 64.
struct Column16 {
    __m128i left;
    __m128i right;

    static VECTOR Column16 Load(const u16* numbers)
    {
        return {Lanes16::LoadNumbers(numbers).v, Lanes16::LoadNumbers(numbers + 8).v};
    }
    static VECTOR Column16 Repeat(const u64* four)
    {
        const __m128i weights =
            _mm_castpd_si128(_mm_loaddup_pd(reinterpret_cast<const double*>(four)));
        return {weights, weights};
    }
};

VECTOR inline Column16 AddNumbers(Column16 a, Column16 b)
{
    return {_mm_add_epi16(a.left, b.left), _mm_add_epi16(a.right, b.right)};
}

VECTOR inline Column16 AddSums(Column16 a, Column16 b)
{
    return {_mm_add_epi32(a.left, b.left), _mm_add_epi32(a.right, b.right)};
}

/// Two sums of two products of numbers with sign, for each byte.
VECTOR inline Column16 Weigh(Column16 numbers, Column16 weights)
{
    return {_mm_madd_epi16(numbers.left, weights.left),
            _mm_madd_epi16(numbers.right, weights.right)};
}

template <int Bits>
VECTOR inline Column16 ShiftSums(Column16 a)
{
    return {_mm_slli_epi32(a.left, Bits), _mm_slli_epi32(a.right, Bits)};
}

/// The second sum comes to the first.
VECTOR inline Column16 AddPairs(Column16 a)
{
    return AddSums(a, {_mm_srli_epi64(a.left, 32), _mm_srli_epi64(a.right, 32)});
}

/// Two numbers of 32 bits without sign, in the low halves of 64, times a factor; the sums have a
/// half more: 2^52 and the number, less 2^52 and the half. Whole parts, below 2^31.
VECTOR inline __m128i ScaleTwo(__m128i sums, __m128d factor)
{
    const __m128i exponents = _mm_set1_epi32(0x43300000);
    const __m128d exact = _mm_castsi128_pd(_mm_blend_epi16(sums, exponents, 0xCC));
    return _mm_cvttpd_epi32(_mm_mul_pd(_mm_sub_pd(exact, _mm_set1_pd(4503599627370495.5)), factor));
}

VECTOR inline __m128i Scale(Column16 sums, const double* factor)
{
    const __m128d both = _mm_loaddup_pd(factor);
    return _mm_unpacklo_epi64(ScaleTwo(sums.left, both), ScaleTwo(sums.right, both));
}

/// Four pixels in each 16 bytes, of which the last 4 are anything. May read 4 bytes more.
VECTOR inline void LoadFours(const u8* pixels, Lanes16* out)
{
    *out = Lanes16::Load(pixels);
}

/// The first 12 of each 16 bytes, one after the other.
VECTOR inline void StoreFours(u8* pixels, Lanes16 fours)
{
    _mm_storel_epi64(reinterpret_cast<__m128i*>(pixels), fours.v);
    const int last = _mm_extract_epi32(fours.v, 2);
    memcpy(pixels + 8, &last, sizeof(last));
}

} // namespace vector
