// What the host is told of the threshold.
#include "standard-plugins/common/filtering/device/FilterDialog.h"
#include "standard-plugins/threshold/ThresholdIds.h"
#include "standard-plugins/threshold/ThresholdLevel.h"

namespace
{

enum { Level, Automatic, SettingCount };

const DialogSetting settings[SettingCount] = {
    {{PLUGIN_TEXT("ThresholdLevel"), leastLevel, mostLevel, 128},
     SettingControl::Trackbar,
     ControlLevel,
     ControlLevelNumber},
    {{PLUGIN_TEXT("ThresholdAutomatic"), 0, 1, 0}, SettingControl::Check, ControlAutomatic, 0},
};

struct Dividing {
    Histogram lumas;
    uint32_t level;
};

Dividing* DividingOf(FilterContext* context)
{
    return static_cast<Dividing*>(context->state);
}

bool NeedsLook(const uint32_t* values)
{
    return values[Automatic] != 0;
}

void Look(FilterContext* context, const uint8_t* row)
{
    CountLumas(&DividingOf(context)->lumas, row, context->width);
}

// Without a first pass the histogram is empty, and the level the user's.
void Settle(FilterContext* context)
{
    Dividing* dividing = DividingOf(context);
    dividing->level = DividingLevel(dividing->lumas, context->values[Level]);
}

void Change(FilterContext* context, const FilterRows& rows, uint8_t* out)
{
    DivideRow(RowAt(rows, 0), rows.width, DividingOf(context)->level, out);
}

} // namespace

const FilterPlugin filterPlugin = {
    {
        PLUGIN_TEXT("TX_ADJUST"),
        {PLUGIN_TEXT("Threshold..."), PLUGIN_TEXT("2 階調化...")},
        PLUGIN_TEXT("1.0"),
        PLUGIN_TEXT("2026-11-22"),
        {PLUGIN_TEXT("Makes each pixel of the picture or the selection black or white."),
         PLUGIN_TEXT("画像や選択範囲の各ピクセルを、境目の明るさで白か黒にします。")},
        nullptr,
        0,
    },
    {PLUGIN_TEXT("Threshold"), PLUGIN_TEXT("2 階調化")},
    {{DialogThresholdEnglish, DialogThresholdJapanese}, settings, SettingCount},
    {.stateBytes = sizeof(Dividing),
     .look = Look,
     .settle = Settle,
     .change = Change,
     .needsLook = NeedsLook},
    AskFilter,
    ControlPreview,
    PreviewSample::Whole,
    nullptr,
};
