#include "pixel/PlainRows.h"

#include "pixel/OrderedDither.h"
#include "pixel/TextCoverage.h"

#include <algorithm>
#include <iterator>
#include <string.h>

namespace
{

template <u32 Step>
void BlendMaskRow(u8* pixels, const u8* mask, size_t count, const ColorBytes& color)
{
    const u32 colorWeight = WeightOf(color);
    const u32 blue = color.blue;
    const u32 green = color.green;
    const u32 red = color.red;
    for (size_t i = 0; i < count; ++i, pixels += Step) {
        const u32 weight = mask[i] * colorWeight;
        const u32 kept = 0x10000 - weight;
        pixels[0] = static_cast<u8>((kept * pixels[0] + weight * blue) >> 16);
        pixels[1] = static_cast<u8>((kept * pixels[1] + weight * green) >> 16);
        pixels[2] = static_cast<u8>((kept * pixels[2] + weight * red) >> 16);
    }
}

// The source's weight and the picture's make 256.
u8 Mix(u32 source, u32 old, u32 alpha)
{
    return static_cast<u8>((source * (alpha + 1) + old * (255 - alpha)) >> 8);
}

template <u32 Step>
void CompositeRow(u8* target, const u8* source, size_t count)
{
    for (size_t i = 0; i < count; ++i, target += Step, source += 4) {
        const u32 alpha = source[3];
        target[0] = Mix(source[0], target[0], alpha);
        target[1] = Mix(source[1], target[1], alpha);
        target[2] = Mix(source[2], target[2], alpha);
    }
}

constexpr u32 FullTextWeight = 64 * 256;
constexpr u32 TextWeightShift = 14;

void BlendTextPixel(u8* pixel, u32 weight, const ColorBytes& color)
{
    const u32 kept = FullTextWeight - weight;
    pixel[0] = static_cast<u8>((kept * pixel[0] + weight * color.blue) >> TextWeightShift);
    pixel[1] = static_cast<u8>((kept * pixel[1] + weight * color.green) >> TextWeightShift);
    pixel[2] = static_cast<u8>((kept * pixel[2] + weight * color.red) >> TextWeightShift);
}

void DitherPixel(u8* target, const u8* source, const u8* entries)
{
    target[0] = entries[source[0]];
    target[1] = entries[source[1]];
    target[2] = entries[source[2]];
}

// The weights of a column of that cover in each group of rows.
struct ColumnWeights {
    u32 of[3];

    ColumnWeights(u32 cover, const BoxRows& rows)
    {
        for (u32 group = 0; group < 3; ++group)
            of[group] = (cover * rows.covers[group]) >> 4;
    }
    // In all rows.
    u32 Sum(const BoxRows& rows) const { return of[0] + of[1] * rows.counts[1] + of[2]; }
};

// One channel of `count` columns.
u32 WeighColumns(const u16* sums, u32 count, const ColumnWeights& weights)
{
    u32 groups[3] = {};
    for (; count > 0; --count, sums += 3 * BoxGroups) {
        groups[0] += sums[0];
        groups[1] += u32{sums[1]} + sums[3];
        groups[2] += sums[2];
    }
    return weights.of[0] * groups[0] + weights.of[1] * groups[1] + weights.of[2] * groups[2];
}

void AveragePixel(u8* out, const u16* sums, const BoxRows& rows, const BoxColumns& columns, u32 i)
{
    const ColumnWeights first(columns.firstCovers[i], rows);
    const ColumnWeights unit(columns.unit, rows);
    const ColumnWeights last(columns.lastCovers[i], rows);
    const u32 between = columns.between[i];
    const u32 weights = first.Sum(rows) + unit.Sum(rows) * between + last.Sum(rows);
    const u16* const left = sums + size_t{3} * BoxGroups * columns.first[i];
    const u16* const right = sums + size_t{3} * BoxGroups * columns.last[i];
    for (u32 channel = 0; channel < 3 && weights != 0; ++channel) {
        const u32 at = channel * BoxGroups;
        const u32 weighed = WeighColumns(left + at, 1, first) +
                            WeighColumns(left + 3 * BoxGroups + at, between, unit) +
                            WeighColumns(right + at, 1, last);
        out[channel] = static_cast<u8>(weighed / weights);
    }
}

// Bytes side by side, of which a compiler takes several at a time where this is not taken apart.
[[gnu::noinline]] void AddRow(u16* sums, const u8* row, size_t bytes)
{
    for (size_t i = 0; i < bytes; ++i)
        sums[i] = static_cast<u16>(sums[i] + row[i]);
}

void SumGroup(u16* sums, const u8* const* rows, u32 count, size_t offset, size_t bytes)
{
    u16 added[3 * BoxTileColumns];
    for (size_t at = 0; at < bytes; at += std::size(added)) {
        const size_t run = std::min(bytes - at, std::size(added));
        std::fill_n(added, run, u16{0});
        for (u32 row = 0; row < count; ++row)
            AddRow(added, rows[row] + offset + at, run);
        for (size_t i = 0; i < run; ++i)
            sums[BoxGroups * (at + i)] = added[i];
    }
}

} // namespace

namespace plain
{

void StoreRow24(u8* pixels, size_t count, const ColorBytes& color)
{
    const u8 blue = color.blue;
    const u8 green = color.green;
    const u8 red = color.red;
    for (size_t i = 0; i < count; ++i, pixels += 3) {
        pixels[0] = blue;
        pixels[1] = green;
        pixels[2] = red;
    }
}

void BlendRow24(u8* pixels, size_t count, const ColorBlend& blend)
{
    const u32 blue = blend.added[0];
    const u32 green = blend.added[1];
    const u32 red = blend.added[2];
    const u32 kept = blend.kept;
    for (size_t i = 0; i < count; ++i, pixels += 3) {
        pixels[0] = static_cast<u8>((blue + kept * pixels[0]) >> 8);
        pixels[1] = static_cast<u8>((green + kept * pixels[1]) >> 8);
        pixels[2] = static_cast<u8>((red + kept * pixels[2]) >> 8);
    }
}

void InvertRow24(u8* pixels, size_t count)
{
    for (size_t i = 0; i < 3 * count; ++i)
        pixels[i] = static_cast<u8>(255 - pixels[i]);
}

void BlendMaskRows24(u8* const* pixels, const u8* const* masks, size_t rows, size_t count,
                     const ColorBytes& color)
{
    for (size_t i = 0; i < rows; ++i)
        BlendMaskRow<3>(pixels[i], masks[i], count, color);
}

void BlendMaskRow32(u8* pixels, const u8* mask, size_t count, const ColorBytes& color)
{
    BlendMaskRow<4>(pixels, mask, count, color);
}

void ReverseRow24(u8* pixels, size_t count)
{
    u8* right = pixels + 3 * count;
    for (size_t i = 0; i < count / 2; ++i, pixels += 3) {
        right -= 3;
        std::swap_ranges(pixels, pixels + 3, right);
    }
}

void CopyMaskedRow24(u8* target, const u8* source, const u8* mask, size_t count)
{
    for (size_t i = 0; i < count; ++i, target += 3, source += 3) {
        const u32 alpha = mask[i];
        target[0] = Mix(source[0], target[0], alpha);
        target[1] = Mix(source[1], target[1], alpha);
        target[2] = Mix(source[2], target[2], alpha);
    }
}

void CompositeRow24(u8* target, const u8* source, size_t count)
{
    CompositeRow<3>(target, source, count);
}

void CompositeRow32(u8* target, const u8* source, size_t count)
{
    CompositeRow<4>(target, source, count);
}

void DitherRow(u8* target, const u8* source, u32 columns, const u8* table, u32 y)
{
    const u8* const entries = table + (y % DitherSide) * DitherSide * DitherEntries;
    for (; columns >= DitherSide;
         columns -= DitherSide, target += 3 * DitherSide, source += 3 * DitherSide)
        for (u32 x = 0; x < DitherSide; ++x)
            DitherPixel(target + 3 * x, source + 3 * x, entries + x * DitherEntries);
    for (u32 x = 0; x < columns; ++x)
        DitherPixel(target + 3 * x, source + 3 * x, entries + x * DitherEntries);
}

void LumaRow24(u16* luma, const u8* source, size_t count)
{
    for (size_t i = 0; i < count; ++i, source += 3)
        luma[i] = static_cast<u16>((28 * source[0] + 151 * source[1] + 77 * source[2]) >> 8);
}

void BlendTextRow(u8* pixels, const u8* bits, size_t rowBytes, size_t count,
                  const ColorBytes& color)
{
    const u32 opacity = WeightOf(color);
    for (size_t i = 0; i < count; ++i)
        BlendTextPixel(pixels + 3 * i, TextCoverage(bits + i, rowBytes) * opacity, color);
}

void SumRows(u16* sums, const BoxRows& rows, size_t offset, size_t bytes)
{
    const u32 half = std::min(rows.counts[1], HalfBoxRows);
    SumGroup(sums, rows.groups[0], rows.counts[0], offset, bytes);
    SumGroup(sums + 1, rows.groups[1], half, offset, bytes);
    SumGroup(sums + 2, rows.groups[2], rows.counts[2], offset, bytes);
    SumGroup(sums + 3, rows.groups[1] + half, rows.counts[1] - half, offset, bytes);
}

void PlaceColumns(BoxColumns* columns, const BoxAxis& axis, u32 pixel, u32 count)
{
    PlaceBoxColumns(columns, axis, pixel, count);
}

void AverageColumns(u8* out, const u16* sums, const BoxRows& rows, const BoxColumns& columns)
{
    for (u32 i = 0; i < columns.count; ++i)
        AveragePixel(out + size_t{3} * i, sums, rows, columns, i);
}

void HalveRows24(u8* out, const u8* upper, const u8* lower, size_t count)
{
    for (size_t i = 0; i < count; ++i, out += 3, upper += 6, lower += 6)
        for (size_t channel = 0; channel < 3; ++channel)
            out[channel] = static_cast<u8>(
                (upper[channel] + upper[channel + 3] + lower[channel] + lower[channel + 3]) >> 2);
}

void CrossFour24(u8* const* targets, const u8* const* sources, size_t column, size_t count)
{
    for (size_t n = 0; n < 4; ++n)
        for (size_t i = 0; i < count; ++i)
            memcpy(targets[n] + 3 * i, sources[i] + 3 * (column + n), 3);
}

} // namespace plain
