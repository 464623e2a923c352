// What the host is told of the relief.
#include "standard-plugins/common/filtering/device/FilterDialog.h"
#include "standard-plugins/emboss/EmbossIds.h"
#include "standard-plugins/emboss/Relief.h"

namespace
{

enum { Light, Strength, Colours, SettingCount };

// At first the light comes from the upper left.
const DialogSetting settings[SettingCount] = {
    {{PLUGIN_TEXT("EmbossLight"), 0, lightDirections - 1, 7},
     SettingControl::Choice,
     ControlLightAbove,
     0},
    {{PLUGIN_TEXT("EmbossStrength"), 0, 500, 100},
     SettingControl::Trackbar,
     ControlEmbossStrength,
     ControlEmbossStrengthNumber},
    {{PLUGIN_TEXT("EmbossColours"), 0, 1, 0}, SettingControl::Check, ControlKeepColours, 0},
};

uint32_t Reach(const uint32_t*)
{
    return 1;
}

bool Open(FilterContext* context)
{
    auto* relief = static_cast<Relief*>(context->state);
    relief->light = context->values[Light];
    relief->strength = static_cast<int32_t>(context->values[Strength]);
    relief->keepsColours = context->values[Colours] != 0;
    return OpenRelief(relief, context->width);
}

void Change(FilterContext* context, const FilterRows& rows, uint8_t* out)
{
    WriteReliefRow(*static_cast<const Relief*>(context->state), rows, out);
}

void Close(FilterContext* context)
{
    CloseRelief(static_cast<Relief*>(context->state));
}

} // namespace

const FilterPlugin filterPlugin = {
    {
        PLUGIN_TEXT("TX_EFFECT"),
        {PLUGIN_TEXT("Emboss..."), PLUGIN_TEXT("エンボス...")},
        PLUGIN_TEXT("1.0"),
        PLUGIN_TEXT("2026-11-22"),
        {PLUGIN_TEXT("Makes a relief of the picture or the selection, lit from a side."),
         PLUGIN_TEXT("画像や選択範囲を、一方から光を当てた浮き彫りにします。")},
        nullptr,
        0,
    },
    {PLUGIN_TEXT("Emboss"), PLUGIN_TEXT("エンボス")},
    {{DialogEmbossEnglish, DialogEmbossJapanese}, settings, SettingCount},
    {.stateBytes = sizeof(Relief), .reach = Reach, .open = Open, .change = Change, .close = Close},
    AskFilter,
    ControlEmbossPreview,
    PreviewSample::Middle,
    nullptr,
};
