// What the host is told of the grain.
#include "standard-plugins/common/filtering/device/FilterDialog.h"
#include "standard-plugins/noise/Grain.h"
#include "standard-plugins/noise/NoiseIds.h"

namespace
{

enum { Amount, Kind, Colours, SettingCount };

const DialogSetting settings[SettingCount] = {
    {{PLUGIN_TEXT("NoiseAmount"), 1, 100, 10},
     SettingControl::Trackbar,
     ControlNoiseAmount,
     ControlNoiseAmountNumber},
    {{PLUGIN_TEXT("NoiseKind"), 0, 1, 0}, SettingControl::Choice, ControlEven, 0},
    {{PLUGIN_TEXT("NoiseColours"), 0, 1, 1}, SettingControl::Check, ControlNoiseColours, 0},
};

bool Open(FilterContext* context)
{
    *static_cast<Grain*>(context->state) = {context->values[Amount], context->values[Kind] != 0,
                                            context->values[Colours] != 0};
    return true;
}

void Change(FilterContext* context, const FilterRows& rows, uint8_t* out)
{
    AddGrain(*static_cast<const Grain*>(context->state), rows.y, rows.width, out);
}

} // namespace

const FilterPlugin filterPlugin = {
    {
        PLUGIN_TEXT("TX_EFFECT"),
        {PLUGIN_TEXT("Noise..."), PLUGIN_TEXT("ノイズ...")},
        PLUGIN_TEXT("1.0"),
        PLUGIN_TEXT("2026-11-22"),
        {PLUGIN_TEXT("Adds grain to the picture or the selection."),
         PLUGIN_TEXT("画像や選択範囲にざらつきを加えます。")},
        nullptr,
        0,
    },
    {PLUGIN_TEXT("Noise"), PLUGIN_TEXT("ノイズ")},
    {{DialogNoiseEnglish, DialogNoiseJapanese}, settings, SettingCount},
    {.stateBytes = sizeof(Grain), .open = Open, .change = Change},
    AskFilter,
    ControlNoisePreview,
    PreviewSample::Middle,
    nullptr,
};
