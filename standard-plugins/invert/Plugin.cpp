// What the host is told of inverting. It has nothing to set, and so no dialog.
#include "standard-plugins/common/filtering/Filter.h"
#include "standard-plugins/invert/InvertedRow.h"

namespace
{

void Change(FilterContext*, const FilterRows& rows, uint8_t* out)
{
    InvertRow(RowAt(rows, 0), rows.width, out);
}

} // namespace

const FilterPlugin filterPlugin = {
    {
        PLUGIN_TEXT("TX_ADJUST"),
        {PLUGIN_TEXT("Invert"), PLUGIN_TEXT("階調の反転")},
        PLUGIN_TEXT("1.0"),
        PLUGIN_TEXT("2026-11-22"),
        {PLUGIN_TEXT("Turns the picture or the selection into its negative."),
         PLUGIN_TEXT("画像や選択範囲の階調を反転し、ネガのようにします。")},
        nullptr,
        0,
    },
    {PLUGIN_TEXT("Invert"), PLUGIN_TEXT("階調の反転")},
    {{0, 0}, nullptr, 0},
    {.change = Change},
    nullptr,
    0,
    PreviewSample::Whole,
    nullptr,
};
