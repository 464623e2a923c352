// What the host is told of the curves.
#include "standard-plugins/common/adjusting/ToneTables.h"
#include "standard-plugins/common/filtering/device/FilterDialog.h"
#include "standard-plugins/curves/CurvesIds.h"
#include "standard-plugins/curves/MonotoneCurve.h"

namespace
{

// The outputs at the points come first.
enum { Channel = curvePoints, SettingCount };

enum : uint32_t { AllChannels, RedChannel, GreenChannel, BlueChannel };

const DialogSetting settings[SettingCount] = {
    {{PLUGIN_TEXT("Curves0"), 0, 255, 0}, SettingControl::Trackbar, ControlAt0, ControlAt0Number},
    {{PLUGIN_TEXT("Curves64"), 0, 255, 64},
     SettingControl::Trackbar,
     ControlAt64,
     ControlAt64Number},
    {{PLUGIN_TEXT("Curves128"), 0, 255, 128},
     SettingControl::Trackbar,
     ControlAt128,
     ControlAt128Number},
    {{PLUGIN_TEXT("Curves192"), 0, 255, 192},
     SettingControl::Trackbar,
     ControlAt192,
     ControlAt192Number},
    {{PLUGIN_TEXT("Curves255"), 0, 255, 255},
     SettingControl::Trackbar,
     ControlAt255,
     ControlAt255Number},
    {{PLUGIN_TEXT("CurvesChannel"), AllChannels, BlueChannel, AllChannels},
     SettingControl::Choice,
     ControlAllChannels,
     0},
};

bool IsMeant(uint32_t byte, uint32_t channel)
{
    constexpr uint32_t channels[PixelBytes] = {BlueChannel, GreenChannel, RedChannel};
    return channel == AllChannels || channel == channels[byte];
}

bool Open(FilterContext* context)
{
    auto* tables = static_cast<ToneTables*>(context->state);
    for (uint32_t byte = 0; byte < PixelBytes; ++byte)
        FillCurve(tables->of[byte],
                  IsMeant(byte, context->values[Channel]) ? context->values : curveInputs);
    return true;
}

void Change(FilterContext* context, const FilterRows& rows, uint8_t* out)
{
    ApplyTones(*static_cast<const ToneTables*>(context->state), rows, out);
}

} // namespace

const FilterPlugin filterPlugin = {
    {
        PLUGIN_TEXT("TX_ADJUST"),
        {PLUGIN_TEXT("Curves..."), PLUGIN_TEXT("トーンカーブ...")},
        PLUGIN_TEXT("1.0"),
        PLUGIN_TEXT("2026-11-22"),
        {PLUGIN_TEXT("Bends the tones of the picture or the selection by a curve of five points."),
         PLUGIN_TEXT("画像や選択範囲の明暗を、5 点を通る曲線で調整します。")},
        nullptr,
        0,
    },
    {PLUGIN_TEXT("Curves"), PLUGIN_TEXT("トーンカーブ")},
    {{DialogCurvesEnglish, DialogCurvesJapanese}, settings, SettingCount},
    {.stateBytes = sizeof(ToneTables), .open = Open, .change = Change},
    AskFilter,
    ControlPreview,
    PreviewSample::Whole,
    nullptr,
};
