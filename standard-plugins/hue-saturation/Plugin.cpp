// What the host is told of hue and saturation.
#include "standard-plugins/common/filtering/device/FilterDialog.h"
#include "standard-plugins/hue-saturation/HslRow.h"
#include "standard-plugins/hue-saturation/HueSaturationIds.h"

namespace
{

enum { Hue, Saturation, Lightness, SettingCount };

// The settings hold no numbers below 0, so that the middle of each range changes nothing.
const DialogSetting settings[SettingCount] = {
    {{PLUGIN_TEXT("HueSaturationHue"), 0, 2 * mostHue, mostHue},
     SettingControl::Trackbar,
     ControlHue,
     ControlHueNumber,
     mostHue},
    {{PLUGIN_TEXT("HueSaturationSaturation"), 0, 2 * mostSaturation, mostSaturation},
     SettingControl::Trackbar,
     ControlSaturation,
     ControlSaturationNumber,
     mostSaturation},
    {{PLUGIN_TEXT("HueSaturationLightness"), 0, 2 * mostLightness, mostLightness},
     SettingControl::Trackbar,
     ControlLightness,
     ControlLightnessNumber,
     mostLightness},
};

int32_t SignedValue(const FilterContext& context, uint32_t setting)
{
    return static_cast<int32_t>(context.values[setting]) -
           static_cast<int32_t>(settings[setting].zero);
}

void Change(FilterContext* context, const FilterRows& rows, uint8_t* out)
{
    const HslChange change = {SignedValue(*context, Hue), SignedValue(*context, Saturation),
                              SignedValue(*context, Lightness)};
    ChangeHslRow(RowAt(rows, 0), rows.width, change, out);
}

} // namespace

const FilterPlugin filterPlugin = {
    {
        PLUGIN_TEXT("TX_ADJUST"),
        {PLUGIN_TEXT("Hue and Saturation..."), PLUGIN_TEXT("色相と彩度...")},
        PLUGIN_TEXT("1.0"),
        PLUGIN_TEXT("2026-11-22"),
        {PLUGIN_TEXT("Turns the colors of the picture or the selection, and makes them stronger, "
                     "weaker, lighter or darker."),
         PLUGIN_TEXT("画像や選択範囲の色相、彩度、明度を変えます。")},
        nullptr,
        0,
    },
    {PLUGIN_TEXT("Hue and Saturation"), PLUGIN_TEXT("色相と彩度")},
    {{DialogHueSaturationEnglish, DialogHueSaturationJapanese}, settings, SettingCount},
    {.change = Change},
    AskFilter,
    ControlPreview,
    PreviewSample::Whole,
    nullptr,
};
