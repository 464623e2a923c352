#include "standard-plugins/common/reducing/PaletteMatcher.h"

#include <string.h>

namespace
{

constexpr int cellSide = 16;

uint32_t Distance(const uint8_t* a, const uint8_t* b)
{
    const int red = a[0] - b[0];
    const int green = a[1] - b[1];
    const int blue = a[2] - b[2];
    return static_cast<uint32_t>(red * red + green * green + blue * blue);
}

// Squared distances of an entry from the nearest and the farthest colour of a cell.
struct Bounds {
    uint32_t least;
    uint32_t most;
};

Bounds BoundsOf(const uint8_t* entry, const uint8_t* rgb)
{
    Bounds bounds = {0, 0};
    for (int i = 0; i < 3; ++i) {
        const int low = rgb[i] / cellSide * cellSide;
        const int below = low - entry[i];
        const int above = entry[i] - (low + cellSide - 1);
        const int near = below > 0 ? below : above > 0 ? above : 0;
        const int far = below > above ? below + cellSide - 1 : above + cellSide - 1;
        bounds.least += static_cast<uint32_t>(near * near);
        bounds.most += static_cast<uint32_t>(far * far);
    }
    return bounds;
}

void FindCandidates(PaletteMatcher* matcher, uint32_t cell, const uint8_t* rgb)
{
    const ReducedPalette& palette = matcher->palette;
    uint32_t limit = 0xffffffff;
    for (uint32_t i = 0; i < palette.count; ++i) {
        const uint32_t most = BoundsOf(palette.colors[i], rgb).most;
        limit = most < limit ? most : limit;
    }
    uint32_t count = 0;
    for (uint32_t i = 0; i < palette.count && count <= mostCandidates; ++i) {
        if (BoundsOf(palette.colors[i], rgb).least > limit)
            continue;
        if (count < mostCandidates)
            matcher->candidates[cell][count] = static_cast<uint8_t>(i);
        ++count;
    }
    matcher->counts[cell] = static_cast<uint8_t>(count);
}

uint8_t SearchAll(const ReducedPalette& palette, const uint8_t* rgb)
{
    uint32_t best = 0;
    uint32_t distance = Distance(palette.colors[0], rgb);
    for (uint32_t i = 1; i < palette.count; ++i) {
        const uint32_t other = Distance(palette.colors[i], rgb);
        if (other < distance) {
            distance = other;
            best = i;
        }
    }
    return static_cast<uint8_t>(best);
}

uint8_t SearchCell(const PaletteMatcher& matcher, uint32_t cell, const uint8_t* rgb)
{
    const uint8_t* numbers = matcher.candidates[cell];
    uint8_t best = numbers[0];
    uint32_t distance = Distance(matcher.palette.colors[best], rgb);
    for (uint32_t i = 1; i < matcher.counts[cell]; ++i) {
        const uint32_t other = Distance(matcher.palette.colors[numbers[i]], rgb);
        if (other < distance) {
            distance = other;
            best = numbers[i];
        }
    }
    return best;
}

} // namespace

void PrepareMatcher(PaletteMatcher* matcher, const ReducedPalette& palette)
{
    matcher->palette = palette;
    memset(matcher->counts, 0, sizeof matcher->counts);
}

uint8_t NearestEntry(PaletteMatcher* matcher, const uint8_t* rgb)
{
    const auto cell =
        static_cast<uint32_t>(rgb[0] / cellSide << 8 | rgb[1] / cellSide << 4 | rgb[2] / cellSide);
    if (matcher->counts[cell] == 0)
        FindCandidates(matcher, cell, rgb);
    return matcher->counts[cell] > mostCandidates ? SearchAll(matcher->palette, rgb)
                                                  : SearchCell(*matcher, cell, rgb);
}
