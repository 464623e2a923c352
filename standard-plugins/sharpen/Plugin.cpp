// What the host is told of sharpening.
#include "standard-plugins/common/filtering/device/FilterDialog.h"
#include "standard-plugins/sharpen/SharpenIds.h"
#include "standard-plugins/sharpen/UnsharpMask.h"

namespace
{

enum { Amount, Radius, Threshold, SettingCount };

// The radius in tenths of a pixel.
const DialogSetting settings[SettingCount] = {
    {{PLUGIN_TEXT("SharpenAmount"), 0, 500, 100},
     SettingControl::Trackbar,
     ControlAmount,
     ControlAmountNumber},
    {{PLUGIN_TEXT("SharpenRadius"), 1, 250, 10},
     SettingControl::Trackbar,
     ControlSharpenRadius,
     ControlSharpenRadiusNumber,
     0,
     10},
    {{PLUGIN_TEXT("SharpenThreshold"), 0, 255, 0},
     SettingControl::Trackbar,
     ControlThreshold,
     ControlThresholdNumber},
};

UnsharpMask* MaskOf(FilterContext* context)
{
    return static_cast<UnsharpMask*>(context->state);
}

uint32_t Reach(const uint32_t* values)
{
    return GaussianReach(values[Radius]);
}

bool Open(FilterContext* context)
{
    UnsharpMask* mask = MaskOf(context);
    mask->amount = static_cast<int32_t>(context->values[Amount]);
    mask->threshold = static_cast<int32_t>(context->values[Threshold]);
    return OpenUnsharpMask(mask, context->width, context->height, context->values[Radius]);
}

void Take(FilterContext* context, uint32_t y, const uint8_t* row)
{
    TakeUnsharpRow(MaskOf(context), y, row);
}

void Change(FilterContext* context, const FilterRows& rows, uint8_t* out)
{
    WriteUnsharpRow(MaskOf(context), rows.y, out);
}

void Close(FilterContext* context)
{
    CloseUnsharpMask(MaskOf(context));
}

} // namespace

const FilterPlugin filterPlugin = {
    {
        PLUGIN_TEXT("TX_EFFECT"),
        {PLUGIN_TEXT("Sharpen..."), PLUGIN_TEXT("シャープ...")},
        PLUGIN_TEXT("1.0"),
        PLUGIN_TEXT("2026-11-22"),
        {PLUGIN_TEXT("Sharpens the picture or the selection by an unsharp mask."),
         PLUGIN_TEXT("アンシャープマスクで画像や選択範囲をくっきりさせます。")},
        nullptr,
        0,
    },
    {PLUGIN_TEXT("Sharpen"), PLUGIN_TEXT("シャープ")},
    {{DialogSharpenEnglish, DialogSharpenJapanese}, settings, SettingCount},
    {.stateBytes = sizeof(UnsharpMask),
     .reach = Reach,
     .open = Open,
     .take = Take,
     .change = Change,
     .close = Close},
    AskFilter,
    ControlSharpenPreview,
    PreviewSample::Middle,
    nullptr,
};
