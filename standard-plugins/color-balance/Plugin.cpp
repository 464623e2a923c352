// What the host is told of the colour balance.
#include "standard-plugins/color-balance/BalanceTables.h"
#include "standard-plugins/color-balance/ColorBalanceIds.h"
#include "standard-plugins/common/filtering/device/FilterDialog.h"

namespace
{

// Three for each colour: shadows, midtones, highlights.
enum { RedTones, GreenTones = 3, BlueTones = 6, KeepLuma = 9, SettingCount };

// The settings hold no numbers below 0, so that 100 changes nothing.
constexpr uint32_t unchanged = mostBalance;

constexpr DialogSetting Tones(const TavrixChar* key, int control, int number)
{
    return {
        {key, 0, 2 * unchanged, unchanged}, SettingControl::Trackbar, control, number, unchanged};
}

const DialogSetting settings[SettingCount] = {
    Tones(PLUGIN_TEXT("ColorBalanceRedShadows"), ControlRedShadows, ControlRedShadowsNumber),
    Tones(PLUGIN_TEXT("ColorBalanceRedMidtones"), ControlRedMidtones, ControlRedMidtonesNumber),
    Tones(PLUGIN_TEXT("ColorBalanceRedHighlights"), ControlRedHighlights,
          ControlRedHighlightsNumber),
    Tones(PLUGIN_TEXT("ColorBalanceGreenShadows"), ControlGreenShadows, ControlGreenShadowsNumber),
    Tones(PLUGIN_TEXT("ColorBalanceGreenMidtones"), ControlGreenMidtones,
          ControlGreenMidtonesNumber),
    Tones(PLUGIN_TEXT("ColorBalanceGreenHighlights"), ControlGreenHighlights,
          ControlGreenHighlightsNumber),
    Tones(PLUGIN_TEXT("ColorBalanceBlueShadows"), ControlBlueShadows, ControlBlueShadowsNumber),
    Tones(PLUGIN_TEXT("ColorBalanceBlueMidtones"), ControlBlueMidtones, ControlBlueMidtonesNumber),
    Tones(PLUGIN_TEXT("ColorBalanceBlueHighlights"), ControlBlueHighlights,
          ControlBlueHighlightsNumber),
    {{PLUGIN_TEXT("ColorBalanceKeepLightness"), 0, 1, 1},
     SettingControl::Check,
     ControlKeepLightness,
     0},
};

ToneBalance BalanceOf(const uint32_t* tones)
{
    return {static_cast<int32_t>(tones[0]) - mostBalance,
            static_cast<int32_t>(tones[1]) - mostBalance,
            static_cast<int32_t>(tones[2]) - mostBalance};
}

bool Open(FilterContext* context)
{
    auto* tables = static_cast<ToneTables*>(context->state);
    FillBalance(tables->of[RedByte], BalanceOf(context->values + RedTones));
    FillBalance(tables->of[GreenByte], BalanceOf(context->values + GreenTones));
    FillBalance(tables->of[BlueByte], BalanceOf(context->values + BlueTones));
    return true;
}

void Change(FilterContext* context, const FilterRows& rows, uint8_t* out)
{
    const auto& tables = *static_cast<const ToneTables*>(context->state);
    if (context->values[KeepLuma])
        BalanceRowKeepingLuma(tables, RowAt(rows, 0), rows.width, out);
    else
        ApplyTones(tables, rows, out);
}

} // namespace

const FilterPlugin filterPlugin = {
    {
        PLUGIN_TEXT("TX_ADJUST"),
        {PLUGIN_TEXT("Color Balance..."), PLUGIN_TEXT("カラーバランス...")},
        PLUGIN_TEXT("1.0"),
        PLUGIN_TEXT("2026-11-22"),
        {PLUGIN_TEXT("Shifts the colors of the dark, middle and light tones of the picture or the "
                     "selection."),
         PLUGIN_TEXT("画像や選択範囲の色合いを、暗部、中間部、明部に分けて調整します。")},
        nullptr,
        0,
    },
    {PLUGIN_TEXT("Color Balance"), PLUGIN_TEXT("カラーバランス")},
    {{DialogColorBalanceEnglish, DialogColorBalanceJapanese}, settings, SettingCount},
    {.stateBytes = sizeof(ToneTables), .open = Open, .change = Change},
    AskFilter,
    ControlPreview,
    PreviewSample::Whole,
    nullptr,
};
