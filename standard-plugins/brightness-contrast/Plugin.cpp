// What the host is told of brightness and contrast.
#include "standard-plugins/brightness-contrast/BrightnessContrastIds.h"
#include "standard-plugins/brightness-contrast/ToneTable.h"
#include "standard-plugins/common/filtering/device/FilterDialog.h"

namespace
{

enum { Brightness, Contrast, SettingCount };

// The settings hold no numbers below 0, so that 100 stands for a picture left as it is.
constexpr uint32_t unchanged = mostTone;

const DialogSetting settings[SettingCount] = {
    {{PLUGIN_TEXT("BrightnessContrastBrightness"), 0, 2 * unchanged, unchanged},
     SettingControl::Trackbar,
     ControlBrightness,
     ControlBrightnessNumber,
     unchanged},
    {{PLUGIN_TEXT("BrightnessContrastContrast"), 0, 2 * unchanged, unchanged},
     SettingControl::Trackbar,
     ControlContrast,
     ControlContrastNumber,
     unchanged},
};

struct Tones {
    uint8_t table[256];
};

int32_t ToneOf(const FilterContext& context, uint32_t setting)
{
    return static_cast<int32_t>(context.values[setting]) - mostTone;
}

bool OpenTones(FilterContext* context)
{
    FillToneTable(static_cast<Tones*>(context->state)->table, ToneOf(*context, Brightness),
                  ToneOf(*context, Contrast));
    return true;
}

void ChangeTones(FilterContext* context, const FilterRows& rows, uint8_t* out)
{
    const uint8_t* table = static_cast<const Tones*>(context->state)->table;
    const uint8_t* row = RowAt(rows, 0);
    for (uint32_t i = 0; i < 3 * rows.width; ++i)
        out[i] = table[row[i]];
}

} // namespace

const FilterPlugin filterPlugin = {
    {
        PLUGIN_TEXT("TX_ADJUST"),
        {PLUGIN_TEXT("Brightness and Contrast..."), PLUGIN_TEXT("明るさとコントラスト...")},
        PLUGIN_TEXT("1.1"),
        PLUGIN_TEXT("2026-11-22"),
        {PLUGIN_TEXT("Makes the picture or the selection brighter or darker, flatter or sharper."),
         PLUGIN_TEXT("画像や選択範囲の明るさとコントラストを変えます。")},
        nullptr,
        0,
    },
    {PLUGIN_TEXT("Brightness and Contrast"), PLUGIN_TEXT("明るさとコントラスト")},
    {{DialogBrightnessEnglish, DialogBrightnessJapanese}, settings, SettingCount},
    {.stateBytes = sizeof(Tones), .open = OpenTones, .change = ChangeTones},
    AskFilter,
    ControlPreview,
    PreviewSample::Whole,
    nullptr,
};
