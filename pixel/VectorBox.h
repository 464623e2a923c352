// Averages over areas by vectors. Included by VectorRows.h.

namespace vector
{

VECTOR inline void StoreNumbers(u16* numbers, Lanes16 in)
{
    in.Store(reinterpret_cast<u8*>(numbers));
}

VECTOR void SumRows(u16* sums, const u8* const* rows, u32 count, size_t offset, size_t bytes)
{
    constexpr size_t block = Lanes::Bytes / 2;
    size_t i = 0;
    for (; i + block <= bytes; i += block) {
        Lanes sum = Lanes::Splat(0);
        for (u32 row = 0; row < count; ++row)
            sum = Add(sum, Lanes::Widen(rows[row] + offset + i));
        sum.Store(reinterpret_cast<u8*>(sums + i));
    }
    plain::SumRows(sums + i, rows, count, offset + i, bytes - i);
}

// The sums and the weights, of which the second is that of one column between the ends.
struct Weighed {
    EndSums ends;
    __m128i between;
    __m128i weights;
};

VECTOR inline __m128i LoadNumbers(const u16* numbers)
{
    return _mm_loadu_si128(reinterpret_cast<const __m128i*>(numbers));
}

VECTOR inline __m128i SumFour(const u16* sums)
{
    return _mm_add_epi16(_mm_add_epi16(LoadNumbers(sums), LoadNumbers(sums + 3)),
                         _mm_add_epi16(LoadNumbers(sums + 6), LoadNumbers(sums + 9)));
}

// Blue, green and red of columns that follow one another, and a number of no account; in 16 bits
// where the sum of all bytes fits.
template <bool Fits>
VECTOR inline __m128i SumBetween(const u16* sums, u32 count)
{
    __m128i sum = _mm_setzero_si128();
    if constexpr (Fits) {
        for (; count >= 4; count -= 4, sums += 12)
            sum = _mm_add_epi16(sum, SumFour(sums));
        for (; count > 0; --count, sums += 3)
            sum = _mm_add_epi16(sum, LoadNumbers(sums));
        return _mm_cvtepu16_epi32(sum);
    }
    for (const u16* const end = sums + size_t{3} * count; sums != end; sums += 3)
        sum = _mm_add_epi32(sum, LoadSums(sums));
    return sum;
}

// Adds a group of rows. `covers`: those of the first column, of one between and of the last.
template <bool Fits>
VECTOR inline void WeighGroup(Weighed* weighed, const u16* sums, __m128i rowCover, __m128i covers,
                              const BoxColumns& columns, bool isBetween, __m128i rows)
{
    const __m128i weights = _mm_srli_epi32(_mm_mullo_epi32(covers, rowCover), 4);
    const u16* const first = sums + size_t{3} * columns.first;
    weighed->ends.Add(first, sums + size_t{3} * columns.last, weights);
    const __m128i between = SumBetween<Fits>(first + 3, columns.between);
    weighed->between =
        _mm_add_epi32(weighed->between, _mm_mullo_epi32(between, _mm_shuffle_epi32(weights, 0x55)));
    weighed->weights =
        _mm_add_epi32(weighed->weights, isBetween ? _mm_mullo_epi32(weights, rows) : weights);
}

// Two numbers of 32 bits without sign: 2^52 and the number, less 2^52.
VECTOR inline __m128d ToDoubles(__m128i numbers)
{
    const __m128i exponents = _mm_set1_epi32(0x43300000);
    return _mm_sub_pd(_mm_castsi128_pd(_mm_unpacklo_epi32(numbers, exponents)),
                      _mm_set1_pd(4503599627370496.0));
}

// The low word of each quotient, in the low half of the vector. A quotient of two numbers of 32
// bits, rounded to 53 bits, never comes up to a whole number that it is below.
VECTOR inline __m128i Divide(__m128i numbers, __m128d divisor)
{
    const __m128d whole = _mm_round_pd(_mm_div_pd(ToDoubles(numbers), divisor),
                                       _MM_FROUND_TO_ZERO | _MM_FROUND_NO_EXC);
    return _mm_castpd_si128(_mm_add_pd(whole, _mm_set1_pd(4503599627370496.0)));
}

// The sum of the weights, of which there are as many of columns between the ends as `counts` says.
VECTOR inline u32 SumWeights(__m128i weights, __m128i counts)
{
    const __m128i products = _mm_mullo_epi32(weights, counts);
    const __m128i pairs = _mm_add_epi32(products, _mm_unpackhi_epi64(products, products));
    return static_cast<u32>(_mm_cvtsi128_si32(_mm_add_epi32(pairs, _mm_srli_epi64(pairs, 32))));
}

// The covers of the groups of rows, each four times.
struct RowCovers {
    __m128i first;
    __m128i between;
    __m128i last; // 0 without such a row
    __m128i rows; // between
};

template <bool Fits>
VECTOR inline void AveragePixel(u8* out, const BoxSums& sums, const RowCovers& rows,
                                const BoxColumns& columns)
{
    const __m128i covers = _mm_loadu_si128(reinterpret_cast<const __m128i*>(columns.covers));
    Weighed weighed = {EndSums(), _mm_setzero_si128(), _mm_setzero_si128()};
    WeighGroup<Fits>(&weighed, sums.bytes[0], rows.first, covers, columns, false, rows.rows);
    WeighGroup<Fits>(&weighed, sums.bytes[1], rows.between, covers, columns, true, rows.rows);
    WeighGroup<Fits>(&weighed, sums.bytes[2], rows.last, covers, columns, false, rows.rows);
    const u32 weights =
        SumWeights(weighed.weights, _mm_setr_epi32(1, static_cast<int>(columns.between), 1, 0));
    if (weights == 0)
        return;
    const __m128i all = _mm_add_epi32(weighed.ends.Sums(), weighed.between);
    const __m128d divisor = _mm_set1_pd(static_cast<double>(weights));
    const __m128i two = Divide(all, divisor);
    const __m128i third = Divide(_mm_unpackhi_epi64(all, all), divisor);
    out[0] = static_cast<u8>(_mm_extract_epi8(two, 0));
    out[1] = static_cast<u8>(_mm_extract_epi8(two, 8));
    out[2] = static_cast<u8>(_mm_extract_epi8(third, 0));
}

template <bool Fits>
VECTOR inline void AveragePixels(u8* out, const BoxSums& sums, const BoxColumns* columns, u32 count)
{
    const RowCovers rows = {_mm_set1_epi32(static_cast<int>(sums.cover[0])),
                            _mm_set1_epi32(static_cast<int>(sums.cover[1])),
                            _mm_set1_epi32(sums.rows[2] > 0 ? static_cast<int>(sums.cover[2]) : 0),
                            _mm_set1_epi32(static_cast<int>(sums.rows[1]))};
    for (u32 i = 0; i < count; ++i, out += 3)
        AveragePixel<Fits>(out, sums, rows, columns[i]);
}

VECTOR void AverageColumns(u8* out, const BoxSums& sums, const BoxColumns* columns, u32 count)
{
    if (sums.samples <= 257)
        AveragePixels<true>(out, sums, columns, count);
    else
        AveragePixels<false>(out, sums, columns, count);
}

} // namespace vector
