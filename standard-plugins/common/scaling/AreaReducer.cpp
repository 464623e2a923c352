#include "standard-plugins/common/scaling/AreaReducer.h"

#include <stdlib.h>
#include <string.h>

namespace
{

// How much two stretches have in common; the second does not begin behind the end of the first.
uint64_t Common(uint64_t first, uint64_t end, uint64_t otherFirst, uint64_t otherEnd)
{
    const uint64_t from = first > otherFirst ? first : otherFirst;
    const uint64_t to = end < otherEnd ? end : otherEnd;
    return to > from ? to - from : 0;
}

// One row in the width of the result: at most 255 times 65,535.
void SumAcross(const AreaSides& sides, const uint8_t* row, uint32_t* across)
{
    for (uint32_t j = 0; j < sides.toWidth; ++j, across += 3) {
        const uint64_t first = uint64_t{j} * sides.fromWidth;
        const uint64_t end = first + sides.fromWidth;
        across[0] = across[1] = across[2] = 0;
        for (uint64_t i = first / sides.toWidth; i * sides.toWidth < end; ++i) {
            const uint64_t at = i * sides.toWidth;
            const auto share = static_cast<uint32_t>(Common(first, end, at, at + sides.toWidth));
            for (uint32_t byte = 0; byte < 3; ++byte)
                across[byte] += share * row[3 * i + byte];
        }
    }
}

bool HandOn(AreaReducer* reducer)
{
    const AreaSides& sides = reducer->sides;
    const uint64_t area = uint64_t{sides.fromWidth} * sides.fromHeight;
    const size_t values = size_t{3} * sides.toWidth;
    for (size_t i = 0; i < values; ++i)
        reducer->line[i] = static_cast<uint8_t>((2 * reducer->sums[i] + area) / (2 * area));
    memset(reducer->sums, 0, values * sizeof *reducer->sums);
    return reducer->take(reducer->user, reducer->next++, reducer->line);
}

} // namespace

bool OpenAreaReducer(AreaReducer* reducer, const AreaSides& sides, AreaLineCallback take,
                     void* user)
{
    *reducer = {};
    reducer->sides = sides;
    reducer->take = take;
    reducer->user = user;
    const size_t values = size_t{3} * sides.toWidth;
    reducer->across = static_cast<uint32_t*>(calloc(values, sizeof(uint32_t)));
    reducer->sums = static_cast<uint64_t*>(calloc(values, sizeof(uint64_t)));
    reducer->line = static_cast<uint8_t*>(calloc(values, 1));
    return reducer->across && reducer->sums && reducer->line;
}

void CloseAreaReducer(AreaReducer* reducer)
{
    free(reducer->across);
    free(reducer->sums);
    free(reducer->line);
    *reducer = {};
}

bool ReduceAreaLine(AreaReducer* reducer, uint32_t y, const uint8_t* row)
{
    const AreaSides& sides = reducer->sides;
    const uint64_t top = uint64_t{y} * sides.toHeight;
    const uint64_t bottom = top + sides.toHeight;
    SumAcross(sides, row, reducer->across);
    while (reducer->next < sides.toHeight) {
        const uint64_t first = uint64_t{reducer->next} * sides.fromHeight;
        const uint64_t end = first + sides.fromHeight;
        const uint64_t share = Common(first, end, top, bottom);
        for (size_t i = 0; i < size_t{3} * sides.toWidth; ++i)
            reducer->sums[i] += share * reducer->across[i];
        if (end > bottom)
            return true;
        if (!HandOn(reducer))
            return false;
    }
    return true;
}
