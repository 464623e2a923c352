#include "standard-plugins/common/reducing/ColorMoments.h"

namespace
{

// Cells above `low` and up to `high` on each axis.
struct Box {
    uint32_t low[3];
    uint32_t high[3];
    // What a division could gain; 0 for a box that cannot be divided.
    double spread;
};

constexpr uint32_t strides[3] = {momentSide * momentSide, momentSide, 1};

void Add(ColorMoment* to, const ColorMoment& other)
{
    to->count += other.count;
    for (int i = 0; i < 3; ++i)
        to->sum[i] += other.sum[i];
    to->squares += other.squares;
}

// Wraps around meanwhile and comes out right.
void Subtract(ColorMoment* from, const ColorMoment& other)
{
    from->count -= other.count;
    for (int i = 0; i < 3; ++i)
        from->sum[i] -= other.sum[i];
    from->squares -= other.squares;
}

// Afterwards each cell holds the moments of all cells that are nowhere above it.
void SumUp(ColorMoments* moments)
{
    for (const uint32_t stride : strides)
        for (uint32_t cell = stride; cell < momentCells; ++cell)
            // The border's cells are zero and stay so.
            if (cell / stride % momentSide != 0)
                Add(&moments->cells[cell], moments->cells[cell - stride]);
}

ColorMoment MomentOf(const ColorMoments& moments, const Box& box)
{
    ColorMoment all = {};
    for (uint32_t corner = 0; corner < 8; ++corner) {
        uint32_t cell = 0;
        uint32_t lows = 0;
        for (uint32_t axis = 0; axis < 3; ++axis) {
            const bool isLow = (corner >> axis & 1) != 0;
            cell += (isLow ? box.low : box.high)[axis] * strides[axis];
            lows += isLow;
        }
        if (lows % 2 == 0)
            Add(&all, moments.cells[cell]);
        else
            Subtract(&all, moments.cells[cell]);
    }
    return all;
}

// |sum|^2 / n
double WeightOf(const ColorMoment& moment)
{
    double squared = 0;
    for (const uint64_t sum : moment.sum)
        squared += static_cast<double>(sum) * static_cast<double>(sum);
    return squared / static_cast<double>(moment.count);
}

double SpreadOf(const ColorMoments& moments, const Box& box)
{
    const ColorMoment moment = MomentOf(moments, box);
    return moment.count == 0 ? 0 : static_cast<double>(moment.squares) - WeightOf(moment);
}

struct Cut {
    uint32_t axis;
    // The last layer of the lower part.
    uint32_t place;
    double gain;
};

void TryAxis(const ColorMoments& moments, const Box& box, uint32_t axis, Cut* best)
{
    const ColorMoment whole = MomentOf(moments, box);
    Box lower = box;
    for (uint32_t place = box.low[axis] + 1; place < box.high[axis]; ++place) {
        lower.high[axis] = place;
        const ColorMoment below = MomentOf(moments, lower);
        ColorMoment above = whole;
        Subtract(&above, below);
        if (below.count == 0 || above.count == 0)
            continue;
        const double gain = WeightOf(below) + WeightOf(above);
        if (gain > best->gain)
            *best = {axis, place, gain};
    }
}

// The upper part goes into `rest`. False where all pixels lie in one layer of each axis.
bool Divide(const ColorMoments& moments, Box* box, Box* rest)
{
    Cut best = {0, 0, -1};
    for (uint32_t axis = 0; axis < 3; ++axis)
        TryAxis(moments, *box, axis, &best);
    if (best.gain < 0)
        return false;
    *rest = *box;
    rest->low[best.axis] = best.place;
    box->high[best.axis] = best.place;
    box->spread = SpreadOf(moments, *box);
    rest->spread = SpreadOf(moments, *rest);
    return true;
}

Box* Widest(Box* boxes, uint32_t count)
{
    Box* widest = boxes;
    for (uint32_t i = 1; i < count; ++i)
        if (boxes[i].spread > widest->spread)
            widest = boxes + i;
    return widest;
}

void SetMean(const ColorMoment& moment, uint8_t* color)
{
    for (int i = 0; i < 3; ++i)
        color[i] = static_cast<uint8_t>((moment.sum[i] + moment.count / 2) / moment.count);
}

} // namespace

void CountColors(ColorMoments* moments, const uint8_t* rgb, uint32_t width)
{
    for (uint32_t x = 0; x < width; ++x, rgb += 3) {
        uint32_t cell = 0;
        uint32_t squares = 0;
        for (uint32_t i = 0; i < 3; ++i) {
            cell += ((rgb[i] >> 3) + 1u) * strides[i];
            squares += static_cast<uint32_t>(rgb[i] * rgb[i]);
        }
        ColorMoment* moment = &moments->cells[cell];
        ++moment->count;
        for (int i = 0; i < 3; ++i)
            moment->sum[i] += rgb[i];
        moment->squares += squares;
    }
}

void MakeOptimalPalette(ColorMoments* moments, uint32_t most, ReducedPalette* palette)
{
    SumUp(moments);
    constexpr uint32_t last = momentSide - 1;
    Box boxes[mostReducedColors] = {{{0, 0, 0}, {last, last, last}, 0}};
    boxes[0].spread = SpreadOf(*moments, boxes[0]);
    uint32_t count = 1;
    while (count < most) {
        Box* widest = Widest(boxes, count);
        if (widest->spread <= 0)
            break;
        if (Divide(*moments, widest, boxes + count))
            ++count;
        else
            widest->spread = 0;
    }
    for (uint32_t i = 0; i < count; ++i)
        SetMean(MomentOf(*moments, boxes[i]), palette->colors[i]);
    palette->count = count;
}
