// The blends of rows by vectors: every loop that weighs a pixel against another. Included by
// VectorRows.h.

namespace vector
{

// The even and the odd bytes of a vector, as numbers.
template <typename L>
struct Halves {
    L even;
    L odd;
};

template <typename L>
VECTOR inline Halves<L> Split(L bytes)
{
    return {And(bytes, L::LoadNumbers(vectorConstants.evenBytes)), ShiftRight<8>(bytes)};
}

// Of numbers up to 255.
template <typename L>
VECTOR inline L Merge(const Halves<L>& halves)
{
    return Or(halves.even, ShiftLeft<8>(halves.odd));
}

// Of the high bytes.
template <typename L>
VECTOR inline L MergeHigh(const Halves<L>& halves)
{
    return Or(ShiftRight<8>(halves.even),
              And(halves.odd, L::LoadNumbers(vectorConstants.oddBytes)));
}

// Where the cells of a block's n-th vector begin, so that those of each of its 16 bytes are among
// 16 cells.
template <typename L>
constexpr size_t FirstCell(size_t n)
{
    return L::Bytes == 16 ? 0 : 8 * n;
}

// Indices that bring the cell of each byte's pixel to its number.
template <typename L>
struct CellIndices {
    alignas(L::Bytes) u8 even[Vectors][L::Bytes];
    alignas(L::Bytes) u8 odd[Vectors][L::Bytes];
};

template <typename L>
constexpr CellIndices<L> MakeCellIndices()
{
    constexpr u8 none = 128;
    CellIndices<L> indices = {};
    for (size_t n = 0; n < Vectors; ++n)
        for (size_t i = 0; i < L::Bytes; i += 2) {
            const size_t byte = L::Bytes * n + i;
            indices.even[n][i] = static_cast<u8>(byte / 3 - FirstCell<L>(n));
            indices.odd[n][i] = static_cast<u8>((byte + 1) / 3 - FirstCell<L>(n));
            indices.even[n][i + 1] = none;
            indices.odd[n][i + 1] = none;
        }
    return indices;
}

template <typename L>
constexpr CellIndices<L> cellIndices = MakeCellIndices<L>();

// A cell a pixel, for the N-th vector of a block whose cells begin at `cells`.
template <typename L, size_t N>
VECTOR inline Halves<L> CellsOf(const u8* cells)
{
    const L sixteen = L::LoadSixteen(cells + FirstCell<L>(N));
    return {Shuffle(sixteen, L::Load(cellIndices<L>.even[N])),
            Shuffle(sixteen, L::Load(cellIndices<L>.odd[N]))};
}

// Three numbers as they stand in the even bytes of a vector that begins with the first, second or
// third channel; the odd bytes of it have the next. No array, which would be kept in memory.
template <typename L>
struct Channels {
    L first;
    L second;
    L third;

    template <size_t Channel>
    VECTOR L From() const
    {
        if constexpr (Channel % 3 == 0)
            return first;
        else if constexpr (Channel % 3 == 1)
            return second;
        else
            return third;
    }

    template <size_t N>
    VECTOR Halves<L> Of() const
    {
        return {From<L::Bytes * N>(), From<L::Bytes * N + 1>()};
    }
};

// Indices that make such vectors of three numbers.
template <typename L>
struct ChannelIndices {
    alignas(L::Bytes) u8 from[3][L::Bytes];
};

template <typename L>
constexpr ChannelIndices<L> MakeChannelIndices()
{
    ChannelIndices<L> indices = {};
    for (size_t first = 0; first < 3; ++first)
        for (size_t i = 0; i < L::Bytes; ++i)
            indices.from[first][i] = static_cast<u8>((first + i / 2 * 2) % 3 * 2 + i % 2);
    return indices;
}

template <typename L>
constexpr ChannelIndices<L> channelIndices = MakeChannelIndices<L>();

template <typename L>
VECTOR inline Channels<L> RepeatChannels(u32 blue, u32 green, u32 red)
{
    const L three = L::Repeat(_mm_setr_epi16(static_cast<short>(blue), static_cast<short>(green),
                                             static_cast<short>(red), 0, 0, 0, 0, 0));
    const auto& from = channelIndices<L>.from;
    return {Shuffle(three, L::Load(from[0])), Shuffle(three, L::Load(from[1])),
            Shuffle(three, L::Load(from[2]))};
}

template <typename L>
VECTOR inline void StoreBlock(u8* bytes, const L* in)
{
    for (size_t n = 0; n < Vectors; ++n)
        in[n].Store(bytes + L::Bytes * n);
}

// `make.Begin(pixel)` makes ready for the block that begins at that pixel; false where it stays.
// `make.At<N>(pixel, bytes)` is what the block's N-th vector, at `bytes`, becomes.
template <typename L, size_t First, typename Make>
VECTOR inline void MakeBlock(Make& make, size_t pixel, const u8* bytes, L* out)
{
    if constexpr (First < 1)
        out[0] = make.template At<0>(pixel, bytes);
    if constexpr (First < 2)
        out[1] = make.template At<1>(pixel, bytes + L::Bytes);
    out[2] = make.template At<2>(pixel, bytes + 2 * L::Bytes);
}

// For a row of a block or more. What whole blocks leave over are vectors, from the First on, of one
// more that ends with the row; it reaches back over pixels of the one before, and is made first, of
// what they were.
template <typename L, size_t First, typename Make>
VECTOR inline void DrawBlocksAndEnd(u8* pixels, size_t count, Make& make)
{
    const size_t lastPixel = count - L::Bytes;
    L last[Vectors] = {};
    const bool changes = First < Vectors && make.Begin(lastPixel);
    if constexpr (First < Vectors)
        if (changes)
            MakeBlock<L, First>(make, lastPixel, pixels + 3 * lastPixel, last);
    for (size_t pixel = 0; pixel + L::Bytes <= count; pixel += L::Bytes)
        if (make.Begin(pixel)) {
            L made[Vectors];
            MakeBlock<L, 0>(make, pixel, pixels + 3 * pixel, made);
            StoreBlock(pixels + 3 * pixel, made);
        }
    if (changes)
        for (size_t n = First; n < Vectors; ++n)
            last[n].Store(pixels + 3 * lastPixel + L::Bytes * n);
}

template <typename L, typename Make>
VECTOR inline void DrawBlocks(u8* pixels, size_t count, Make& make)
{
    const size_t left = count % L::Bytes;
    if (left == 0)
        DrawBlocksAndEnd<L, 3>(pixels, count, make);
    else if (3 * left <= L::Bytes)
        DrawBlocksAndEnd<L, 2>(pixels, count, make);
    else if (3 * left <= 2 * L::Bytes)
        DrawBlocksAndEnd<L, 1>(pixels, count, make);
    else
        DrawBlocksAndEnd<L, 0>(pixels, count, make);
}

template <typename L>
struct BlendInk {
    Channels<L> added;
    L kept;

    VECTOR bool Begin(size_t) const { return true; }

    // At most 256 times 255.
    VECTOR L Weigh(L old, L plus) const { return Add(plus, Multiply(kept, old)); }

    template <size_t N>
    VECTOR L At(size_t, const u8* bytes) const
    {
        const Halves<L> old = Split(L::Load(bytes));
        const Halves<L> plus = added.template Of<N>();
        return MergeHigh<L>({Weigh(old.even, plus.even), Weigh(old.odd, plus.odd)});
    }
};

VECTOR void BlendRow24(u8* pixels, size_t count, const ColorBlend& blend)
{
    if (count < Lanes::Bytes)
        return plain::BlendRow24(pixels, count, blend);
    BlendInk<Lanes> ink = {RepeatChannels<Lanes>(blend.added[0], blend.added[1], blend.added[2]),
                           Lanes::Splat(blend.kept)};
    DrawBlocks<Lanes>(pixels, count, ink);
}

// What a mask's row paints with. ((0x10000 - w) * old + w * color) >> 16 is
// old + (w * (color - old) >> 16), rounded down; of a negative difference the product without sign
// is too large by w in its high half. An opaque colour's w is 256 times the cell, which makes it
// ((256 - cell) * old + cell * color) >> 8.
template <typename L, bool IsOpaque>
struct MaskInk {
    Channels<L> wanted;
    L colorWeight;

    VECTOR L Approach(L old, L color, L cell) const
    {
        const L weight = Multiply(cell, colorWeight);
        const L difference = Subtract(color, old);
        const L high = MultiplyHigh(weight, difference);
        return Add(old, Subtract(high, And(weight, SignsOf(difference))));
    }

    VECTOR L Weigh(L old, L color, L cell) const
    {
        const L kept = Subtract(L::LoadNumbers(vectorConstants.weights), cell);
        return Add(Multiply(cell, color), Multiply(kept, old));
    }

    VECTOR L Blend(L bytes, const Halves<L>& cells, const Halves<L>& colors) const
    {
        const Halves<L> old = Split(bytes);
        if constexpr (IsOpaque)
            return MergeHigh<L>(
                {Weigh(old.even, colors.even, cells.even), Weigh(old.odd, colors.odd, cells.odd)});
        return Merge<L>({Approach(old.even, colors.even, cells.even),
                         Approach(old.odd, colors.odd, cells.odd)});
    }
};

template <typename L, bool IsOpaque>
VECTOR inline MaskInk<L, IsOpaque> MaskInkOf(const ColorBytes& color)
{
    return {RepeatChannels<L>(color.blue, color.green, color.red), L::Splat(WeightOf(color))};
}

template <typename L, bool IsOpaque>
struct MaskedBlock {
    MaskInk<L, IsOpaque> ink;
    const u8* mask;

    VECTOR bool Begin(size_t pixel) const { return !L::Load(mask + pixel).IsZero(); }

    template <size_t N>
    VECTOR L At(size_t pixel, const u8* bytes) const
    {
        return ink.Blend(L::Load(bytes), CellsOf<L, N>(mask + pixel), ink.wanted.template Of<N>());
    }
};

// Of the first 16 bytes and of the last 16 of 8 pixels and more, each with 8 cells.
alignas(16) constexpr u8 firstCells[2][16] = {
    {0, 128, 0, 128, 1, 128, 2, 128, 2, 128, 3, 128, 4, 128, 4, 128},
    {0, 128, 1, 128, 1, 128, 2, 128, 3, 128, 3, 128, 4, 128, 5, 128}};
alignas(16) constexpr u8 lastCells[2][16] = {
    {2, 128, 3, 128, 4, 128, 4, 128, 5, 128, 6, 128, 6, 128, 7, 128},
    {3, 128, 3, 128, 4, 128, 5, 128, 5, 128, 6, 128, 7, 128, 7, 128}};

VECTOR inline Halves<Lanes16> EightCells(const u8* cells, const u8 (&indices)[2][16])
{
    const Lanes16 eight = {_mm_loadl_epi64(reinterpret_cast<const __m128i*>(cells))};
    return {Shuffle(eight, Lanes16::Load(indices[0])), Shuffle(eight, Lanes16::Load(indices[1]))};
}

// 8 to 10 pixels: their first 16 bytes and their last.
template <bool IsOpaque>
VECTOR inline void BlendEnds(const u8* pixels, const u8* mask, size_t count,
                             const MaskInk<Lanes16, IsOpaque>& ink, Lanes16* out)
{
    const Channels<Lanes16>& wanted = ink.wanted;
    out[0] = ink.Blend(Lanes16::Load(pixels), EightCells(mask, firstCells),
                       {wanted.first, wanted.second});
    out[1] = ink.Blend(Lanes16::Load(pixels + 3 * count - 16),
                       EightCells(mask + count - 8, lastCells), {wanted.third, wanted.first});
}

template <bool IsOpaque>
VECTOR inline void BlendFew(u8* pixels, const u8* mask, size_t count,
                            const MaskInk<Lanes16, IsOpaque>& ink)
{
    u64 first = 0;
    u64 last = 0;
    memcpy(&first, mask, sizeof(first));
    memcpy(&last, mask + count - 8, sizeof(last));
    if ((first | last) == 0)
        return;
    // One piece, or the first 8 pixels and the last 8.
    const size_t piece = count <= 10 ? count : 8;
    Lanes16 made[4];
    BlendEnds(pixels, mask, piece, ink, made);
    if (piece < count) {
        u8* const behind = pixels + 3 * (count - 8);
        BlendEnds(behind, mask + count - 8, 8, ink, made + 2);
        made[2].Store(behind);
        made[3].Store(behind + 8);
    }
    made[0].Store(pixels);
    made[1].Store(pixels + 3 * piece - 16);
}

// Nothing here is copied once it is made: what is copied is kept in memory.
template <typename L, bool IsOpaque>
VECTOR inline void BlendManyRows(u8* const* pixels, const u8* const* masks, size_t rows,
                                 size_t count, const ColorBytes& color)
{
    MaskedBlock<L, IsOpaque> block = {MaskInkOf<L, IsOpaque>(color), nullptr};
    for (size_t i = 0; i < rows; ++i) {
        block.mask = masks[i];
        DrawBlocks<L>(pixels[i], count, block);
    }
}

template <bool IsOpaque>
VECTOR inline void BlendMaskRows(u8* const* pixels, const u8* const* masks, size_t rows,
                                 size_t count, const ColorBytes& color)
{
    if (count >= Lanes::Bytes)
        return BlendManyRows<Lanes, IsOpaque>(pixels, masks, rows, count, color);
    if (count >= Lanes16::Bytes)
        return BlendManyRows<Lanes16, IsOpaque>(pixels, masks, rows, count, color);
    const auto ink = MaskInkOf<Lanes16, IsOpaque>(color);
    for (size_t i = 0; i < rows; ++i)
        BlendFew(pixels[i], masks[i], count, ink);
}

VECTOR void BlendMaskRows24(u8* const* pixels, const u8* const* masks, size_t rows, size_t count,
                            const ColorBytes& color)
{
    if (count < 8)
        plain::BlendMaskRows24(pixels, masks, rows, count, color);
    else if (color.alpha == 255)
        BlendMaskRows<true>(pixels, masks, rows, count, color);
    else
        BlendMaskRows<false>(pixels, masks, rows, count, color);
}

// (source * (alpha + 1) + old * (255 - alpha)) >> 8; the weights make 256. In the high bytes.
template <typename L>
VECTOR inline L Mix(L source, L old, L alpha)
{
    const L added = Add(Multiply(source, alpha), source);
    return Add(added, Multiply(old, Subtract(L::LoadNumbers(vectorConstants.evenBytes), alpha)));
}

template <typename L>
VECTOR inline L MixBytes(const Halves<L>& source, L bytes, const Halves<L>& alpha)
{
    const Halves<L> old = Split(bytes);
    return MergeHigh<L>(
        {Mix(source.even, old.even, alpha.even), Mix(source.odd, old.odd, alpha.odd)});
}

template <typename L>
struct MaskedCopy {
    const u8* source;
    const u8* mask;

    VECTOR bool Begin(size_t) const { return true; }

    template <size_t N>
    VECTOR L At(size_t pixel, const u8* bytes) const
    {
        const L colors = L::Load(source + 3 * pixel + L::Bytes * N);
        return MixBytes(Split(colors), L::Load(bytes), CellsOf<L, N>(mask + pixel));
    }
};

VECTOR void CopyMaskedRow24(u8* target, const u8* source, const u8* mask, size_t count)
{
    if (count < Lanes::Bytes)
        return plain::CopyMaskedRow24(target, source, mask, count);
    MaskedCopy<Lanes> copy = {source, mask};
    DrawBlocks<Lanes>(target, count, copy);
}

// Bytes of four pixels of 4 bytes as numbers: colours as they lie in 12 bytes, and the alpha of
// each.
alignas(16) constexpr u8 compositeIndices[4][16] = {
    {0, 128, 2, 128, 5, 128, 8, 128, 10, 128, 13, 128, 128, 128, 128, 128},
    {1, 128, 4, 128, 6, 128, 9, 128, 12, 128, 14, 128, 128, 128, 128, 128},
    {3, 128, 3, 128, 7, 128, 11, 128, 11, 128, 15, 128, 128, 128, 128, 128},
    {3, 128, 7, 128, 7, 128, 11, 128, 15, 128, 15, 128, 128, 128, 128, 128}};

VECTOR void CompositeRow24(u8* target, const u8* source, size_t count)
{
    constexpr size_t pixels = Lanes::Bytes / 4;
    Lanes indices[4];
    for (size_t i = 0; i < 4; ++i)
        indices[i] = Lanes::LoadSixteen(compositeIndices[i]);
    // Some pixels behind the block may be read.
    for (; count >= pixels + 3; count -= pixels, target += 3 * pixels, source += 4 * pixels) {
        const Lanes colors = Lanes::Load(source);
        Lanes old;
        LoadFours(target, &old);
        StoreFours(target,
                   MixBytes<Lanes>({Shuffle(colors, indices[0]), Shuffle(colors, indices[1])}, old,
                                   {Shuffle(colors, indices[2]), Shuffle(colors, indices[3])}));
    }
    plain::CompositeRow24(target, source, count);
}

// How many bits are set in each byte.
template <typename L>
VECTOR inline L CountBits(L bytes)
{
    const L counts = L::Repeat(_mm_setr_epi8(0, 1, 1, 2, 1, 2, 2, 3, 1, 2, 2, 3, 2, 3, 3, 4));
    const L low = L::SplatByte(15);
    return AddBytes(Shuffle(counts, And(bytes, low)),
                    Shuffle(counts, And(ShiftRight<4>(bytes), low)));
}

// ((16384 - w) * old + w * color) >> 14 is old + (w * (color - old) >> 14), rounded down.
template <typename L>
struct TextBlock {
    const u8* bits;
    size_t rowBytes;
    Channels<L> wanted;
    L opacity;
    u8* coverage; // of the block's pixels

    VECTOR bool Begin(size_t pixel)
    {
        L sum = L::Splat(0);
        for (size_t row = 0; row < TextScale; ++row)
            sum = AddBytes(sum, CountBits(L::Load(bits + row * rowBytes + pixel)));
        sum.Store(coverage);
        return !sum.IsZero();
    }

    VECTOR L Approach(L old, L color, L cell) const
    {
        return Add(old,
                   MultiplyHighSigned(Multiply(cell, opacity), ShiftLeft<2>(Subtract(color, old))));
    }

    template <size_t N>
    VECTOR L At(size_t, const u8* bytes) const
    {
        const Halves<L> old = Split(L::Load(bytes));
        const Halves<L> cells = CellsOf<L, N>(coverage);
        const Halves<L> color = wanted.template Of<N>();
        return Merge<L>(
            {Approach(old.even, color.even, cells.even), Approach(old.odd, color.odd, cells.odd)});
    }
};

VECTOR void BlendTextRow(u8* pixels, const u8* bits, size_t rowBytes, size_t count,
                         const ColorBytes& color)
{
    if (count < Lanes::Bytes)
        return plain::BlendTextRow(pixels, bits, rowBytes, count, color);
    u8 coverage[Lanes::Bytes];
    TextBlock<Lanes> block = {bits, rowBytes,
                              RepeatChannels<Lanes>(color.blue, color.green, color.red),
                              Lanes::Splat(WeightOf(color)), coverage};
    DrawBlocks<Lanes>(pixels, count, block);
}

} // namespace vector
