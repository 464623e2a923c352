// What the host is told of the edges.
#include "standard-plugins/common/filtering/device/FilterDialog.h"
#include "standard-plugins/edges/EdgesIds.h"
#include "standard-plugins/edges/Gradient.h"

namespace
{

enum { Strength, Ground, Colours, SettingCount };

const DialogSetting settings[SettingCount] = {
    {{PLUGIN_TEXT("EdgesStrength"), 10, 1000, 100},
     SettingControl::Trackbar,
     ControlEdgesStrength,
     ControlEdgesStrengthNumber},
    {{PLUGIN_TEXT("EdgesGround"), 0, 1, 0}, SettingControl::Choice, ControlDarkGround, 0},
    {{PLUGIN_TEXT("EdgesColours"), 0, 1, 0}, SettingControl::Check, ControlEdgesColours, 0},
};

uint32_t Reach(const uint32_t*)
{
    return 1;
}

bool Open(FilterContext* context)
{
    auto* gradient = static_cast<Gradient*>(context->state);
    gradient->lightGround = context->values[Ground] != 0;
    gradient->inColour = context->values[Colours] != 0;
    OpenGradient(gradient, context->values[Strength]);
    return true;
}

void Change(FilterContext* context, const FilterRows& rows, uint8_t* out)
{
    WriteGradientRow(*static_cast<const Gradient*>(context->state), rows, out);
}

} // namespace

const FilterPlugin filterPlugin = {
    {
        PLUGIN_TEXT("TX_EFFECT"),
        {PLUGIN_TEXT("Edges..."), PLUGIN_TEXT("輪郭抽出...")},
        PLUGIN_TEXT("1.0"),
        PLUGIN_TEXT("2026-11-22"),
        {PLUGIN_TEXT("Shows the edges of the picture or the selection as lines."),
         PLUGIN_TEXT("画像や選択範囲の輪郭を線で表します。")},
        nullptr,
        0,
    },
    {PLUGIN_TEXT("Edges"), PLUGIN_TEXT("輪郭抽出")},
    {{DialogEdgesEnglish, DialogEdgesJapanese}, settings, SettingCount},
    {.stateBytes = sizeof(Gradient), .reach = Reach, .open = Open, .change = Change},
    AskFilter,
    ControlEdgesPreview,
    PreviewSample::Middle,
    nullptr,
};
