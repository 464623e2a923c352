// What the host is told of the levels.
#include "standard-plugins/common/adjusting/ToneTables.h"
#include "standard-plugins/common/filtering/device/FilterDialog.h"
#include "standard-plugins/levels/LevelsIds.h"
#include "standard-plugins/levels/LevelsTable.h"

#include <string.h>

namespace
{

enum { InputBlack, InputWhite, Gamma, OutputBlack, OutputWhite, SettingCount };

const DialogSetting settings[SettingCount] = {
    {{PLUGIN_TEXT("LevelsInputBlack"), 0, 255, 0},
     SettingControl::Trackbar,
     ControlInputBlack,
     ControlInputBlackNumber},
    {{PLUGIN_TEXT("LevelsInputWhite"), 0, 255, 255},
     SettingControl::Trackbar,
     ControlInputWhite,
     ControlInputWhiteNumber},
    {{PLUGIN_TEXT("LevelsGamma"), leastGamma, mostGamma, plainGamma},
     SettingControl::Trackbar,
     ControlGamma,
     ControlGammaNumber,
     0,
     plainGamma},
    {{PLUGIN_TEXT("LevelsOutputBlack"), 0, 255, 0},
     SettingControl::Trackbar,
     ControlOutputBlack,
     ControlOutputBlackNumber},
    {{PLUGIN_TEXT("LevelsOutputWhite"), 0, 255, 255},
     SettingControl::Trackbar,
     ControlOutputWhite,
     ControlOutputWhiteNumber},
};

bool Open(FilterContext* context)
{
    auto* tables = static_cast<ToneTables*>(context->state);
    const uint32_t* values = context->values;
    FillLevels(tables->of[BlueByte], {values[InputBlack], values[InputWhite], values[Gamma],
                                      values[OutputBlack], values[OutputWhite]});
    memcpy(tables->of[GreenByte], tables->of[BlueByte], 256);
    memcpy(tables->of[RedByte], tables->of[BlueByte], 256);
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
        {PLUGIN_TEXT("Levels..."), PLUGIN_TEXT("レベル補正...")},
        PLUGIN_TEXT("1.0"),
        PLUGIN_TEXT("2026-11-22"),
        {PLUGIN_TEXT("Sets what is black and white in the picture or the selection, and between."),
         PLUGIN_TEXT("画像や選択範囲の黒点と白点、中間の明るさを決めます。")},
        nullptr,
        0,
    },
    {PLUGIN_TEXT("Levels"), PLUGIN_TEXT("レベル補正")},
    {{DialogLevelsEnglish, DialogLevelsJapanese}, settings, SettingCount},
    {.stateBytes = sizeof(ToneTables), .open = Open, .change = Change},
    AskFilter,
    ControlPreview,
    PreviewSample::Whole,
    nullptr,
};
