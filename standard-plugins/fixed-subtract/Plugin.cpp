// What the host is told of the reduction to a palette that is the same for every picture.
#include "standard-plugins/common/reducing/FixedPalettes.h"
#include "standard-plugins/common/subtracting/Subtractor.h"

namespace
{

void Fill(uint32_t choice, ReducedPalette* palette)
{
    FillFixedPalette(static_cast<FixedPalette>(choice), palette);
}

} // namespace

const SubtractPlugin subtractPlugin = {
    {
        PLUGIN_TEXT("TX_SUBTRACT"),
        {PLUGIN_TEXT("Fixed Palette"), PLUGIN_TEXT("固定パレット")},
        PLUGIN_TEXT("1.0"),
        PLUGIN_TEXT("2026-11-22"),
        {PLUGIN_TEXT("Reduces the picture to the web's 216 colours, 16 colours, greys, or black "
                     "and white."),
         PLUGIN_TEXT("Web の 216 色、標準 16 色、グレースケール、または白黒に減色します。")},
        nullptr,
        0,
    },
    {PLUGIN_TEXT("FixedSubtractDiffusion"), 0, 1, 1},
    {PLUGIN_TEXT("FixedSubtractPalette"), 0, static_cast<uint32_t>(FixedPalette::Count) - 1, 0},
    Fill,
};
