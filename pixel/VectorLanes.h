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

/// Four numbers of 16 bits as ones of 32.
VECTOR inline __m128i LoadSums(const u16* sums)
{
    return _mm_cvtepu16_epi32(_mm_loadl_epi64(reinterpret_cast<const __m128i*>(sums)));
}

/// Sums of four numbers of each of two columns, weighed by the first and the third weight.
struct EndSums16 {
    __m128i sums;

    VECTOR EndSums16() : sums(_mm_setzero_si128()) {}
    VECTOR void Add(const u16* first, const u16* last, __m128i weights)
    {
        const __m128i one = _mm_mullo_epi32(LoadSums(first), _mm_shuffle_epi32(weights, 0));
        const __m128i other = _mm_mullo_epi32(LoadSums(last), _mm_shuffle_epi32(weights, 0xAA));
        sums = _mm_add_epi32(sums, _mm_add_epi32(one, other));
    }
    VECTOR __m128i Sums() const { return sums; }
};

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
