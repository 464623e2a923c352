// What the host is told of the white balance.
#include "standard-plugins/common/filtering/device/FilterDialog.h"
#include "standard-plugins/white-balance/WhiteBalanceIds.h"
#include "standard-plugins/white-balance/WhiteGains.h"

namespace
{

enum { Red, Green, Blue, Automatic, SettingCount };

// White at first, as any grey would be: nothing is changed.
const DialogSetting settings[SettingCount] = {
    {{PLUGIN_TEXT("WhiteBalanceRed"), 0, 255, 255},
     SettingControl::Trackbar,
     ControlRed,
     ControlRedNumber},
    {{PLUGIN_TEXT("WhiteBalanceGreen"), 0, 255, 255},
     SettingControl::Trackbar,
     ControlGreen,
     ControlGreenNumber},
    {{PLUGIN_TEXT("WhiteBalanceBlue"), 0, 255, 255},
     SettingControl::Trackbar,
     ControlBlue,
     ControlBlueNumber},
    {{PLUGIN_TEXT("WhiteBalanceAutomatic"), 0, 1, 0}, SettingControl::Check, ControlAutomatic, 0},
};

struct Balancing {
    Histogram histograms[PixelBytes];
    ToneTables tables;
};

Balancing* BalancingOf(FilterContext* context)
{
    return static_cast<Balancing*>(context->state);
}

bool NeedsLook(const uint32_t* values)
{
    return values[Automatic] != 0;
}

void Look(FilterContext* context, const uint8_t* row)
{
    CountColors(BalancingOf(context)->histograms, row, context->width);
}

void Settle(FilterContext* context)
{
    Balancing* balancing = BalancingOf(context);
    const uint32_t* values = context->values;
    const Light point = {{LightOf(values[Blue]), LightOf(values[Green]), LightOf(values[Red])}};
    FillWhiteBalance(&balancing->tables,
                     values[Automatic] ? MeanLight(balancing->histograms) : point);
}

void Change(FilterContext* context, const FilterRows& rows, uint8_t* out)
{
    ApplyTones(BalancingOf(context)->tables, rows, out);
}

bool Pick(uint32_t* values, const uint8_t* pixel)
{
    values[Red] = pixel[RedByte];
    values[Green] = pixel[GreenByte];
    values[Blue] = pixel[BlueByte];
    values[Automatic] = 0;
    return true;
}

} // namespace

const FilterPlugin filterPlugin = {
    {
        PLUGIN_TEXT("TX_ADJUST"),
        {PLUGIN_TEXT("White Balance..."), PLUGIN_TEXT("ホワイトバランス...")},
        PLUGIN_TEXT("1.0"),
        PLUGIN_TEXT("2026-11-22"),
        {PLUGIN_TEXT("Takes a color cast out of the picture or the selection."),
         PLUGIN_TEXT("画像や選択範囲の色かぶりを取り除きます。")},
        nullptr,
        0,
    },
    {PLUGIN_TEXT("White Balance"), PLUGIN_TEXT("ホワイトバランス")},
    {{DialogWhiteBalanceEnglish, DialogWhiteBalanceJapanese}, settings, SettingCount},
    {.stateBytes = sizeof(Balancing),
     .look = Look,
     .settle = Settle,
     .change = Change,
     .needsLook = NeedsLook},
    AskFilter,
    ControlPreview,
    PreviewSample::Whole,
    Pick,
};
