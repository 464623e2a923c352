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

// `count` columns. Adds what the weights make in all rows to `sums`.
VECTOR inline void FillWeights(u64* low, u64* high, u32* sums, const u32* covers, u32 count,
                               const BoxRows& rows)
{
    const u32 rowCovers[3] = {rows.covers[0], rows.covers[1], rows.covers[2]};
    const u32 between = rows.counts[1];
    for (u32 i = 0; i < count; ++i) {
        const u32 of[3] = {(covers[i] * rowCovers[0]) >> 4, (covers[i] * rowCovers[1]) >> 4,
                           (covers[i] * rowCovers[2]) >> 4};
        low[i] = FourOf(of[0] & 0x7FFF, of[1] & 0x7FFF, of[2] & 0x7FFF);
        high[i] = FourOf(of[0] >> 15, of[1] >> 15, of[2] >> 15);
        sums[i] += of[0] + of[1] * between + of[2];
    }
}

// All weights of the pixels of a tile.
struct TileWeights {
    Weights first;
    Weights last;
    u64 unitLow;
    u64 unitHigh;
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
    u32 unit = 0;
    FillWeights(&weights->unitLow, &weights->unitHigh, &unit, &columns.unit, 1, rows);
    u32* const sums = weights->sums;
    const u32 count = (columns.count + 7) / 8 * 8;
    for (u32 i = 0; i < count; ++i)
        sums[i] = unit * columns.between[i];
    FillWeights(weights->first.low, weights->first.high, sums, columns.firstCovers, count, rows);
    FillWeights(weights->last.low, weights->last.high, sums, columns.lastCovers, count, rows);
    u32 least = 2;
    for (u32 i = 0; i < columns.count; ++i)
        least = std::min(least, sums[i]);
    for (u32 i = 0; i < count; i += 2)
        _mm_storeu_pd(weights->reciprocals + i, _mm_div_pd(_mm_set1_pd(1.0), ToDoubles(sums + i)));
    return least == 2;
}

// Two columns: weights' low bits and high ones, or sums of products with those.
struct Weighed {
    Column low;
    Column high;
};

VECTOR inline Weighed WeightsAt(const u64* low, const u64* high)
{
    return {Column::Repeat(low), Column::Repeat(high)};
}

VECTOR inline Weighed WeighColumn(Column numbers, const Weighed& weights)
{
    return {Weigh(numbers, weights.low), Weigh(numbers, weights.high)};
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

// What all columns between the ends have in common.
struct Between {
    Weighed weights;
    u32 most; // columns whose sums fit into 15 bits
};

VECTOR inline Weighed WeighBetween(const u16* sums, u32 count, const Between& between,
                                   Weighed weighed)
{
    for (; count > between.most; count -= between.most, sums += 3 * BoxGroups * between.most)
        weighed = Add(weighed, WeighColumn(SumColumns(sums, between.most), between.weights));
    if (count > 0)
        weighed = Add(weighed, WeighColumn(SumColumns(sums, count), between.weights));
    return weighed;
}

VECTOR inline Weighed WeighEnds(const u16* first, const u16* last, const TileWeights& weights,
                                u32 i)
{
    return Add(
        WeighColumn(Column::Load(first), WeightsAt(weights.first.low + i, weights.first.high + i)),
        WeighColumn(Column::Load(last), WeightsAt(weights.last.low + i, weights.last.high + i)));
}

// The low byte of each of four quotients; that of the fourth is of no account. A sum of 32 bits and
// a half, by the weights w, lies at least 1/2 / w from every whole number. The reciprocal and the
// product are each rounded to 53 bits, which moves it by less than 2^-19 / w.
VECTOR inline int Divide(const Weighed& weighed, const double* reciprocal)
{
    const Column sums = AddPairs(AddSums(weighed.low, ShiftSums<15>(weighed.high)));
    const __m128i bytes = _mm_setr_epi8(0, 4, 8, 12, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0);
    return _mm_cvtsi128_si32(_mm_shuffle_epi8(Scale(sums, reciprocal), bytes));
}

VECTOR void PlaceColumns(BoxColumns* columns, const BoxAxis& axis, u32 pixel, u32 count)
{
    PlaceBoxColumns(columns, axis, pixel, count);
}

// A pixel's bytes, and one of no account.
VECTOR inline int AveragePixel(const u16* sums, const TileWeights& weights,
                               const BoxColumns& columns, u32 i, const Between& between)
{
    constexpr size_t step = 3 * BoxGroups;
    const u16* const first = sums + step * columns.first[i];
    const u16* const last = sums + step * columns.last[i];
    const Weighed weighed =
        WeighBetween(first + step, columns.between[i], between, WeighEnds(first, last, weights, i));
    return Divide(weighed, weights.reciprocals + i);
}

VECTOR void AverageColumns(u8* out, const u16* sums, const BoxRows& rows, const BoxColumns& columns)
{
    TileWeights weights;
    // The quotient by 1 may need all of 32 bits.
    if (!FillTileWeights(&weights, rows, columns))
        return plain::AverageColumns(out, sums, rows, columns);
    const Between between = {WeightsAt(&weights.unitLow, &weights.unitHigh),
                             HalfBoxRows / std::clamp(rows.counts[1], u32{1}, HalfBoxRows)};
    const u32 last = columns.count - 1;
    for (u32 i = 0; i < last; ++i, out += 3) {
        const int pixel = AveragePixel(sums, weights, columns, i, between);
        memcpy(out, &pixel, 4); // the next pixel comes over the fourth byte
    }
    const int pixel = AveragePixel(sums, weights, columns, last, between);
    memcpy(out, &pixel, 3);
}

// Of four pixels' bytes in each 16 the sums of the first and the second, and of the others.
VECTOR inline Lanes AddPixelPairs(const u8* pixels)
{
    constexpr char no = -128; // gives 0
    const Lanes pairs =
        Lanes::Repeat(_mm_setr_epi8(0, 3, 1, 4, 2, 5, 6, 9, 7, 10, 8, 11, no, no, no, no));
    Lanes fours;
    LoadApart(pixels, 24, &fours);
    return AddNeighbours(Shuffle(fours, pairs));
}

VECTOR inline Lanes HalveFours(const u8* upper, const u8* lower)
{
    return ShiftRight<2>(Add(AddPixelPairs(upper), AddPixelPairs(lower)));
}

// Four pixels for each 16 bytes of a vector. Reads 4 bytes more of each row than they come from.
VECTOR inline void HalveBlock(u8* out, const u8* upper, const u8* lower)
{
    const Lanes sixes =
        Lanes::Repeat(_mm_setr_epi8(0, 1, 2, 3, 4, 5, 8, 9, 10, 11, 12, 13, 14, 14, 14, 14));
    const Lanes both = Narrow(HalveFours(upper, lower), HalveFours(upper + 12, lower + 12));
    StoreFours(out, Shuffle(both, sixes));
}

VECTOR void HalveRows24(u8* out, const u8* upper, const u8* lower, size_t count)
{
    constexpr size_t block = Lanes::Bytes / 4;
    if (count <= block)
        return plain::HalveRows24(out, upper, lower, count);
    const size_t last = count - 1; // whose bytes the block before it reads
    for (size_t i = 0; i + block <= last; i += block)
        HalveBlock(out + 3 * i, upper + 6 * i, lower + 6 * i);
    const size_t i = last - block;
    HalveBlock(out + 3 * i, upper + 6 * i, lower + 6 * i);
    plain::HalveRows24(out + 3 * last, upper + 6 * last, lower + 6 * last, 1);
}

} // namespace vector
