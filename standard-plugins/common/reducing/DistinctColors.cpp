#include "standard-plugins/common/reducing/DistinctColors.h"

#include <string.h>

namespace
{

uint32_t SlotOf(const uint8_t* color)
{
    const uint32_t packed = static_cast<uint32_t>(color[0] << 16 | color[1] << 8 | color[2]);
    return packed * 2654435761u >> 22; // D. Knuth's multiplier; the upper ten bits
}

static_assert(distinctSlots == 1u << 10);

// The slot that names the colour, or the empty one where it belongs.
uint16_t* Find(DistinctColors* distinct, const uint8_t* color)
{
    for (uint32_t slot = SlotOf(color);; slot = (slot + 1) % distinctSlots) {
        uint16_t* entry = &distinct->slots[slot];
        if (*entry == 0 || memcmp(distinct->colors.colors[*entry - 1], color, 3) == 0)
            return entry;
    }
}

void NoteColor(DistinctColors* distinct, const uint8_t* color)
{
    uint16_t* entry = Find(distinct, color);
    if (*entry != 0)
        return;
    ReducedPalette* colors = &distinct->colors;
    if (colors->count == mostReducedColors) {
        distinct->tooMany = true;
        return;
    }
    memcpy(colors->colors[colors->count], color, 3);
    *entry = static_cast<uint16_t>(++colors->count);
}

} // namespace

void NoteColors(DistinctColors* distinct, const uint8_t* rgb, uint32_t width)
{
    for (uint32_t x = 0; x < width && !distinct->tooMany; ++x, rgb += 3)
        // Neighbours are often alike.
        if (x == 0 || memcmp(rgb, rgb - 3, 3) != 0)
            NoteColor(distinct, rgb);
}
