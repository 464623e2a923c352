// The loops on rows that take 16 pixels at a time, for one instruction set. Included once by each
// source that defines one: VECTOR, the attribute by which a function is compiled for it, and in the
// namespace of that source
//
//     Wide                                 16 numbers of 16 bits
//     Widen(16 bytes), Narrow(Wide)        Narrow takes numbers up to 255
//     Splat(number)
//     Add, Subtract, Multiply (low half), MultiplyHigh (of numbers without sign), And
//     ShiftRight8, SignsOf                 all bits where a number is negative
//     Stripe, StripeOf, StoreStripe        32 pixels of 3 bytes
//
// What is left at a row's end is for the plain loops.

namespace vector
{

constexpr size_t Pixels = 16;
constexpr size_t Vectors = 3; // of 16 bytes in 16 pixels

VECTOR inline __m128i Load(const u8* bytes)
{
    return _mm_loadu_si128(reinterpret_cast<const __m128i*>(bytes));
}

VECTOR inline void Store(u8* bytes, __m128i vector)
{
    _mm_storeu_si128(reinterpret_cast<__m128i*>(bytes), vector);
}

VECTOR inline __m128i LoadEight(const u8* bytes)
{
    return _mm_loadl_epi64(reinterpret_cast<const __m128i*>(bytes));
}

// A byte for each of 16 pixels, three times.
VECTOR inline void Triple(__m128i bytes, __m128i* out)
{
    out[0] = _mm_shuffle_epi8(bytes, _mm_setr_epi8(0, 0, 0, 1, 1, 1, 2, 2, 2, 3, 3, 3, 4, 4, 4, 5));
    out[1] =
        _mm_shuffle_epi8(bytes, _mm_setr_epi8(5, 5, 6, 6, 6, 7, 7, 7, 8, 8, 8, 9, 9, 9, 10, 10));
    out[2] = _mm_shuffle_epi8(
        bytes, _mm_setr_epi8(10, 11, 11, 11, 12, 12, 12, 13, 13, 13, 14, 14, 14, 15, 15, 15));
}

// The first 12 bytes of each of four vectors, whose others are 0.
VECTOR inline void Join(const __m128i* twelves, __m128i* out)
{
    out[0] = _mm_or_si128(twelves[0], _mm_slli_si128(twelves[1], 12));
    out[1] = _mm_or_si128(_mm_srli_si128(twelves[1], 4), _mm_slli_si128(twelves[2], 8));
    out[2] = _mm_or_si128(_mm_srli_si128(twelves[2], 8), _mm_slli_si128(twelves[3], 4));
}

// Bytes of three channels over and over, as they lie in 16 pixels.
VECTOR inline void RepeatBytes(const ColorBytes& color, Wide* out)
{
    const __m128i one =
        _mm_setr_epi8(static_cast<char>(color.blue), static_cast<char>(color.green),
                      static_cast<char>(color.red), 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0);
    out[0] =
        Widen(_mm_shuffle_epi8(one, _mm_setr_epi8(0, 1, 2, 0, 1, 2, 0, 1, 2, 0, 1, 2, 0, 1, 2, 0)));
    out[1] =
        Widen(_mm_shuffle_epi8(one, _mm_setr_epi8(1, 2, 0, 1, 2, 0, 1, 2, 0, 1, 2, 0, 1, 2, 0, 1)));
    out[2] =
        Widen(_mm_shuffle_epi8(one, _mm_setr_epi8(2, 0, 1, 2, 0, 1, 2, 0, 1, 2, 0, 1, 2, 0, 1, 2)));
}

// The same of numbers.
VECTOR inline void Repeat(const u32* channels, Wide* out)
{
    alignas(32) u16 numbers[Pixels * 3];
    for (size_t i = 0; i < Pixels * 3; ++i)
        numbers[i] = static_cast<u16>(channels[i % 3]);
    for (size_t i = 0; i < Vectors; ++i)
        out[i] = LoadWide(numbers + 16 * i);
}

VECTOR void StoreRow24(u8* pixels, size_t count, const ColorBytes& color)
{
    constexpr size_t stripePixels = 32;
    const Stripe stripe = StripeOf(color);
    for (; count >= stripePixels; count -= stripePixels, pixels += 3 * stripePixels)
        StoreStripe(pixels, stripe);
    plain::StoreRow24(pixels, count, color);
}

VECTOR void BlendRow24(u8* pixels, size_t count, const ColorBlend& blend)
{
    Wide added[Vectors];
    Repeat(blend.added, added);
    const Wide kept = Splat(blend.kept);
    for (; count >= Pixels; count -= Pixels, pixels += 3 * Pixels)
        for (size_t i = 0; i < Vectors; ++i) {
            u8* const at = pixels + 16 * i;
            // At most 256 times 255.
            const Wide sum = Add(added[i], Multiply(kept, Widen(Load(at))));
            Store(at, Narrow(ShiftRight8(sum)));
        }
    plain::BlendRow24(pixels, count, blend);
}

VECTOR void InvertRow24(u8* pixels, size_t count)
{
    const __m128i ones = _mm_set1_epi8(-1);
    for (; count >= Pixels; count -= Pixels, pixels += 3 * Pixels)
        for (size_t i = 0; i < Vectors; ++i)
            Store(pixels + 16 * i, _mm_xor_si128(Load(pixels + 16 * i), ones));
    plain::InvertRow24(pixels, count);
}

// ((0x10000 - w) * old + w * color) >> 16 is old + (w * (color - old) >> 16), rounded down. Of a
// negative difference the product without sign is too large by w in its high half.
VECTOR inline Wide Approach(Wide old, Wide color, Wide weight)
{
    const Wide difference = Subtract(color, old);
    const Wide high = MultiplyHigh(weight, difference);
    return Add(old, Subtract(high, And(weight, SignsOf(difference))));
}

VECTOR inline void BlendSixteen(u8* pixels, __m128i cells, const Wide* wanted, Wide colorWeight)
{
    if (_mm_testz_si128(cells, cells))
        return;
    __m128i tripled[Vectors];
    Triple(cells, tripled);
    for (size_t i = 0; i < Vectors; ++i) {
        u8* const at = pixels + 16 * i;
        const Wide weight = Multiply(Widen(tripled[i]), colorWeight);
        Store(at, Narrow(Approach(Widen(Load(at)), wanted[i], weight)));
    }
}

VECTOR inline void BlendEight(u8* pixels, __m128i cells, const Wide* wanted, Wide colorWeight)
{
    __m128i tripled[Vectors];
    Triple(cells, tripled);
    const Wide weight = Multiply(Widen(tripled[0]), colorWeight);
    const __m128i first = Narrow(Approach(Widen(Load(pixels)), wanted[0], weight));
    u8* const rest = pixels + 16;
    const Wide restWeight = Multiply(Widen(tripled[1]), colorWeight);
    const __m128i second = Narrow(Approach(Widen(LoadEight(rest)), wanted[1], restWeight));
    Store(pixels, first);
    _mm_storel_epi64(reinterpret_cast<__m128i*>(rest), second);
}

// A cell of 0 leaves its pixel as it is: so a row's end is one more block that reaches back over
// pixels that are done.
alignas(16) constexpr u8 lastCells[2 * Pixels] = {
    0,   0,   0,   0,   0,   0,   0,   0,   0,   0,   0,   0,   0,   0,   0,   0,
    255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255};

VECTOR void BlendMaskRow24(u8* pixels, const u8* mask, size_t count, const ColorBytes& color)
{
    constexpr size_t half = Pixels / 2;
    if (count < half)
        return plain::BlendMaskRow24(pixels, mask, count, color);
    Wide wanted[Vectors];
    RepeatBytes(color, wanted);
    const Wide colorWeight = Splat(WeightOf(color));
    if (count < Pixels) {
        const size_t left = count - half;
        BlendEight(pixels, LoadEight(mask), wanted, colorWeight);
        BlendEight(pixels + 3 * left,
                   _mm_and_si128(LoadEight(mask + left), LoadEight(lastCells + half + left)),
                   wanted, colorWeight);
        return;
    }
    const u8* const end = mask + count;
    for (; mask + Pixels <= end; mask += Pixels, pixels += 3 * Pixels)
        BlendSixteen(pixels, Load(mask), wanted, colorWeight);
    const auto left = static_cast<size_t>(end - mask);
    BlendSixteen(pixels - 3 * (Pixels - left),
                 _mm_and_si128(Load(end - Pixels), Load(lastCells + left)), wanted, colorWeight);
}

// 16 pixels end for end.
VECTOR inline void Reverse(const __m128i* in, __m128i* out)
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

VECTOR inline void LoadPixels(const u8* pixels, __m128i* out)
{
    for (size_t i = 0; i < Vectors; ++i)
        out[i] = Load(pixels + 16 * i);
}

VECTOR inline void StoreReversed(u8* pixels, const __m128i* in)
{
    __m128i out[Vectors];
    Reverse(in, out);
    for (size_t i = 0; i < Vectors; ++i)
        Store(pixels + 16 * i, out[i]);
}

VECTOR void ReverseRow24(u8* pixels, size_t count)
{
    for (; count >= 2 * Pixels; count -= 2 * Pixels, pixels += 3 * Pixels) {
        u8* const right = pixels + 3 * (count - Pixels);
        __m128i first[Vectors];
        __m128i last[Vectors];
        LoadPixels(pixels, first);
        LoadPixels(right, last);
        StoreReversed(pixels, last);
        StoreReversed(right, first);
    }
    plain::ReverseRow24(pixels, count);
}

// (source * (alpha + 1) + old * (255 - alpha)) >> 8; the weights make 256.
VECTOR inline Wide Mix(Wide source, Wide old, Wide alpha)
{
    const Wide added = Multiply(source, Add(alpha, Splat(1)));
    return ShiftRight8(Add(added, Multiply(old, Subtract(Splat(255), alpha))));
}

VECTOR inline void MixPixels(u8* target, const __m128i* source, const __m128i* alpha)
{
    for (size_t i = 0; i < Vectors; ++i) {
        u8* const at = target + 16 * i;
        Store(at, Narrow(Mix(Widen(source[i]), Widen(Load(at)), Widen(alpha[i]))));
    }
}

VECTOR void CopyMaskedRow24(u8* target, const u8* source, const u8* mask, size_t count)
{
    for (; count >= Pixels;
         count -= Pixels, target += 3 * Pixels, source += 3 * Pixels, mask += Pixels) {
        __m128i colors[Vectors];
        __m128i alpha[Vectors];
        LoadPixels(source, colors);
        Triple(Load(mask), alpha);
        MixPixels(target, colors, alpha);
    }
    plain::CopyMaskedRow24(target, source, mask, count);
}

VECTOR void CompositeRow24(u8* target, const u8* source, size_t count)
{
    const __m128i colorBytes =
        _mm_setr_epi8(0, 1, 2, 4, 5, 6, 8, 9, 10, 12, 13, 14, -128, -128, -128, -128);
    const __m128i alphaBytes =
        _mm_setr_epi8(3, 3, 3, 7, 7, 7, 11, 11, 11, 15, 15, 15, -128, -128, -128, -128);
    for (; count >= Pixels; count -= Pixels, target += 3 * Pixels, source += 4 * Pixels) {
        __m128i colorTwelves[4];
        __m128i alphaTwelves[4];
        for (size_t i = 0; i < 4; ++i) {
            const __m128i four = Load(source + 16 * i);
            colorTwelves[i] = _mm_shuffle_epi8(four, colorBytes);
            alphaTwelves[i] = _mm_shuffle_epi8(four, alphaBytes);
        }
        __m128i colors[Vectors];
        __m128i alpha[Vectors];
        Join(colorTwelves, colors);
        Join(alphaTwelves, alpha);
        MixPixels(target, colors, alpha);
    }
    plain::CompositeRow24(target, source, count);
}

// The sum loses its low three bits, and is 255 where it does not fit into a byte.
VECTOR inline __m128i Dithered(__m128i value, __m128i threshold)
{
    const __m128i sum = _mm_add_epi8(value, threshold);
    const __m128i fits = _mm_cmpeq_epi8(sum, _mm_adds_epu8(value, threshold));
    const __m128i level = _mm_and_si128(sum, _mm_set1_epi8(~7));
    return _mm_blendv_epi8(_mm_set1_epi8(-1), level, fits);
}

VECTOR void DitherRow(u8* target, const u8* source, u32 columns, const u8* table, u32 y)
{
    __m128i thresholds[Vectors];
    alignas(16) u8 bytes[Pixels * 3];
    for (u32 i = 0; i < Pixels * 3; ++i)
        bytes[i] = DitherThreshold(i / 3, y);
    LoadPixels(bytes, thresholds);
    for (; columns >= Pixels; columns -= u32{Pixels}, target += 3 * Pixels, source += 3 * Pixels)
        for (size_t i = 0; i < Vectors; ++i)
            Store(target + 16 * i, Dithered(Load(source + 16 * i), thresholds[i]));
    plain::DitherRow(target, source, columns, table, y);
}

VECTOR void StretchBlocks(u8* target, const u8* source, const StretchColumns& columns)
{
    for (size_t i = 0; i < columns.blocks; ++i, target += 3 * StretchBlockPixels)
        Store(target,
              _mm_shuffle_epi8(Load(source + columns.offsets[i]), Load(columns.shuffles[i])));
}

// 12 bytes.
VECTOR inline void StoreFour(u8* target, __m128i pixels)
{
    const __m128i packed = _mm_shuffle_epi8(
        pixels, _mm_setr_epi8(0, 1, 2, 4, 5, 6, 8, 9, 10, 12, 13, 14, -128, -128, -128, -128));
    _mm_storel_epi64(reinterpret_cast<__m128i*>(target), packed);
    const int last = _mm_extract_epi32(packed, 2);
    memcpy(target + 8, &last, sizeof(last));
}

// Pixels as numbers of 32 bits, so that four rows of four change places as a matrix does.
VECTOR void CrossFour24(u8* const* targets, const u8* const* sources, size_t column, size_t count)
{
    const __m128i spread =
        _mm_setr_epi8(0, 1, 2, -128, 3, 4, 5, -128, 6, 7, 8, -128, 9, 10, 11, -128);
    for (size_t i = 0; i < count; i += 4) {
        __m128i rows[4];
        for (size_t n = 0; n < 4; ++n)
            rows[n] = _mm_shuffle_epi8(Load(sources[i + n] + 3 * column), spread);
        const __m128i low01 = _mm_unpacklo_epi32(rows[0], rows[1]);
        const __m128i low23 = _mm_unpacklo_epi32(rows[2], rows[3]);
        const __m128i high01 = _mm_unpackhi_epi32(rows[0], rows[1]);
        const __m128i high23 = _mm_unpackhi_epi32(rows[2], rows[3]);
        StoreFour(targets[0] + 3 * i, _mm_unpacklo_epi64(low01, low23));
        StoreFour(targets[1] + 3 * i, _mm_unpackhi_epi64(low01, low23));
        StoreFour(targets[2] + 3 * i, _mm_unpacklo_epi64(high01, high23));
        StoreFour(targets[3] + 3 * i, _mm_unpackhi_epi64(high01, high23));
    }
}

constexpr RowKernels vectorRows = {StoreRow24,   BlendRow24,      InvertRow24,    BlendMaskRow24,
                                   ReverseRow24, CopyMaskedRow24, CompositeRow24, DitherRow,
                                   CrossFour24,  StretchBlocks};

} // namespace vector
