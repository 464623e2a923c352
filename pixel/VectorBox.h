// Averages over areas by vectors. Included by VectorRows.h.
//
// Weights have 28 bits, and numbers and weights of a multiplication 15: weights are taken apart
// into their low 15 bits and the high ones. Sums wrap at 32 bits.

namespace vector
{

VECTOR inline void StoreNumbers(u16* numbers, Lanes16 in)
{
    in.Store(reinterpret_cast<u8*>(numbers));
}

// Two vectors' numbers, of a vector of bytes.
struct Numbers {
    Lanes low;
    Lanes high;
};

VECTOR inline Numbers SumGroup(const u8* const* rows, u32 count, size_t offset)
{
    Numbers sums = {Lanes::Splat(0), Lanes::Splat(0)};
    for (u32 row = 0; row < count; ++row) {
        const Lanes bytes = Lanes::Load(rows[row] + offset);
        sums.low = Add(sums.low, WidenLow(bytes));
        sums.high = Add(sums.high, WidenHigh(bytes));
    }
    return sums;
}

// The four numbers of each of 8 bytes in each 16.
VECTOR inline void StoreGroups(u16* sums, Lanes first, Lanes between, Lanes last, Lanes rest)
{
    constexpr size_t distance = 16 * BoxGroups;
    const Lanes low = InterleaveLow(first, between);
    const Lanes lowLast = InterleaveLow(last, rest);
    StoreApart(sums, distance, InterleaveLowPairs(low, lowLast));
    StoreApart(sums + 8, distance, InterleaveHighPairs(low, lowLast));
    const Lanes high = InterleaveHigh(first, between);
    const Lanes highLast = InterleaveHigh(last, rest);
    StoreApart(sums + 16, distance, InterleaveLowPairs(high, highLast));
    StoreApart(sums + 24, distance, InterleaveHighPairs(high, highLast));
}

VECTOR inline void SumBlock(u16* sums, const BoxRows& rows, u32 half, size_t offset)
{
    const Numbers first = SumGroup(rows.groups[0], 1, offset);
    const Numbers between = SumGroup(rows.groups[1], half, offset);
    const Numbers last = SumGroup(rows.groups[2], rows.counts[2], offset);
    const Numbers rest = SumGroup(rows.groups[1] + half, rows.counts[1] - half, offset);
    StoreGroups(sums, first.low, between.low, last.low, rest.low);
    StoreGroups(sums + 8 * BoxGroups, first.high, between.high, last.high, rest.high);
}

VECTOR void SumRows(u16* sums, const BoxRows& rows, size_t offset, size_t bytes)
{
    constexpr size_t block = Lanes::Bytes;
    if (bytes < block)
        return plain::SumRows(sums, rows, offset, bytes);
    const u32 half = std::min(rows.counts[1], HalfBoxRows);
    for (size_t i = 0; i + block <= bytes; i += block)
        SumBlock(sums + BoxGroups * i, rows, half, offset + i);
    SumBlock(sums + BoxGroups * (bytes - block), rows, half, offset + bytes - block);
}

// The weights of some columns: four numbers a column, those of the groups of rows.
struct Weights {
    u64 low[BoxTilePixels];
    u64 high[BoxTilePixels];
};

VECTOR inline u64 FourOf(u32 first, u32 between, u32 last)
{
    return (first | between << 16) | u64{last | between << 16} << 32;
}

// Adds what the weights make in all rows to `sums`.
VECTOR inline void FillWeights(Weights* weights, u32* sums, const u32* covers, u32 count,
                               const BoxRows& rows)
{
    const u32 rowCovers[3] = {rows.covers[0], rows.covers[1], rows.covers[2]};
    const u32 between = rows.counts[1];
    for (u32 i = 0; i < count; ++i) {
        const u32 of[3] = {(covers[i] * rowCovers[0]) >> 4, (covers[i] * rowCovers[1]) >> 4,
                           (covers[i] * rowCovers[2]) >> 4};
        weights->low[i] = FourOf(of[0] & 0x7FFF, of[1] & 0x7FFF, of[2] & 0x7FFF);
        weights->high[i] = FourOf(of[0] >> 15, of[1] >> 15, of[2] >> 15);
        sums[i] += of[0] + of[1] * between + of[2];
    }
}

// All weights of the pixels of a tile.
struct TileWeights {
    Weights first;
    Weights unit; // of which only the first is there
    Weights last;
    u32 sums[BoxTilePixels];
    double reciprocals[BoxTilePixels]; // of the sums
};

// Two numbers of 32 bits without sign: 2^52 and the number, less 2^52.
VECTOR inline __m128d ToDoubles(const u32* numbers)
{
    const __m128i two = _mm_loadl_epi64(reinterpret_cast<const __m128i*>(numbers));
    return _mm_sub_pd(_mm_castsi128_pd(_mm_unpacklo_epi32(two, _mm_set1_epi32(0x43300000))),
                      _mm_set1_pd(4503599627370496.0));
}

// False where a pixel's weights make less than 2.
VECTOR inline bool FillTileWeights(TileWeights* weights, const BoxRows& rows,
                                   const BoxColumns& columns)
{
    const u32 count = (columns.count + 7) / 8 * 8;
    u32 unit = 0;
    FillWeights(&weights->unit, &unit, &columns.unit, 1, rows);
    for (u32 i = 0; i < count; ++i)
        weights->sums[i] = unit * columns.between[i];
    FillWeights(&weights->first, weights->sums, columns.firstCovers, count, rows);
    FillWeights(&weights->last, weights->sums, columns.lastCovers, count, rows);
    for (u32 i = 0; i < count; i += 2)
        _mm_storeu_pd(weights->reciprocals + i,
                      _mm_div_pd(_mm_set1_pd(1.0), ToDoubles(weights->sums + i)));
    return *std::min_element(weights->sums, weights->sums + columns.count) >= 2;
}

// Sums of products with the low bits of the weights and with the high ones.
struct Weighed {
    Column low;
    Column high;
};

VECTOR inline Weighed WeighColumn(Column numbers, const Weights& weights, u32 i)
{
    return {Weigh(numbers, Column::Repeat(weights.low + i)),
            Weigh(numbers, Column::Repeat(weights.high + i))};
}

VECTOR inline Weighed Add(const Weighed& a, const Weighed& b)
{
    return {AddSums(a.low, b.low), AddSums(a.high, b.high)};
}

// At least one column, whose sums fit into 15 bits.
VECTOR inline Column SumColumns(const u16* sums, u32 count)
{
    Column sum = Column::Load(sums);
    while (--count > 0) {
        sums += 3 * BoxGroups;
        sum = AddNumbers(sum, Column::Load(sums));
    }
    return sum;
}

// `most`: the columns whose sums fit into 15 bits.
VECTOR inline Weighed WeighPixel(const u16* sums, const TileWeights& weights,
                                 const BoxColumns& columns, u32 i, u32 most)
{
    constexpr size_t step = 3 * BoxGroups;
    const u16* at = sums + step * columns.first[i];
    const u16* const last = sums + step * columns.last[i];
    Weighed weighed = Add(WeighColumn(Column::Load(at), weights.first, i),
                          WeighColumn(Column::Load(last), weights.last, i));
    at += step;
    u32 count = columns.between[i];
    for (; count > most; count -= most, at += step * most)
        weighed = Add(weighed, WeighColumn(SumColumns(at, most), weights.unit, 0));
    if (count > 0)
        weighed = Add(weighed, WeighColumn(SumColumns(at, count), weights.unit, 0));
    return weighed;
}

// The low byte of each of four quotients; that of the fourth is of no account. The reciprocal and
// the product, rounded to 53 bits, move a quotient of 32 bits by less than the half that the sum
// has more does, which does not bring it up to a whole number.
VECTOR inline int Divide(const Weighed& weighed, const double* reciprocal)
{
    const Column sums = AddPairs(AddSums(weighed.low, ShiftSums<15>(weighed.high)));
    const __m128i bytes = _mm_setr_epi8(0, 4, 8, 12, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0);
    return _mm_cvtsi128_si32(_mm_shuffle_epi8(Scale(sums, reciprocal), bytes));
}

VECTOR void AverageColumns(u8* out, const u16* sums, const BoxRows& rows, const BoxColumns& columns)
{
    TileWeights weights;
    // The quotient by 1 may need all of 32 bits.
    if (!FillTileWeights(&weights, rows, columns))
        return plain::AverageColumns(out, sums, rows, columns);
    const u32 most = HalfBoxRows / std::clamp(rows.counts[1], u32{1}, HalfBoxRows);
    const u32 last = columns.count - 1;
    for (u32 i = 0; i <= last; ++i) {
        const Weighed weighed = WeighPixel(sums, weights, columns, i, most);
        const int pixel = Divide(weighed, weights.reciprocals + i);
        // The byte behind a pixel is the next one's, which comes over it.
        memcpy(out + size_t{3} * i, &pixel, i < last ? 4 : 3);
    }
}

} // namespace vector
