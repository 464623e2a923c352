// What the host is told of the Gaussian blur.
#include "standard-plugins/common/filtering/Filter.h"
#include "standard-plugins/common/gaussian/GaussianRows.h"
#include "standard-plugins/common/PluginResult.h"
#include "standard-plugins/gaussian-blur/BlurDialog.h"
#include "standard-plugins/gaussian-blur/GaussianBlurIds.h"

namespace
{

// Two pixels at first.
const DialogSetting radius = {{PLUGIN_TEXT("GaussianBlurRadius"), leastRadius, mostRadius, 20},
                              SettingControl::Trackbar,
                              0,
                              0};

GaussianRows* RowsOf(FilterContext* context)
{
    return static_cast<GaussianRows*>(context->state);
}

uint32_t Reach(const uint32_t* values)
{
    return GaussianReach(values[0]);
}

bool Open(FilterContext* context)
{
    return OpenGaussianRows(RowsOf(context), context->width, context->height, context->values[0]);
}

void Take(FilterContext* context, uint32_t y, const uint8_t* row)
{
    TakeRow(RowsOf(context), y, row);
}

void Change(FilterContext* context, const FilterRows& rows, uint8_t* out)
{
    WriteRow(RowsOf(context), rows.y, out);
}

void Close(FilterContext* context)
{
    FreeGaussianRows(RowsOf(context));
}

int32_t Ask(TavrixWindow owner, TavrixImageHandle image, RasterFunctionTable* rasters,
            TavrixPutPropertyCallback put, TavrixGetPropertyCallback get)
{
    if (!put || !get)
        return PluginBadArgument;
    uint32_t tenths = ReadSetting(radius.setting, get);
    const int32_t result = AskRadius(&tenths, filterPlugin.caption, owner, image, rasters);
    if (result != PluginDone)
        return result;
    return StoreSetting(radius.setting, tenths, put) ? PluginDone : PluginFailed;
}

} // namespace

const FilterPlugin filterPlugin = {
    {
        PLUGIN_TEXT("TX_EFFECT"),
        {PLUGIN_TEXT("Gaussian Blur..."), PLUGIN_TEXT("ガウスぼかし...")},
        PLUGIN_TEXT("1.1"),
        PLUGIN_TEXT("2026-11-22"),
        {PLUGIN_TEXT("Blurs the picture or the selection softly, by a radius in pixels."),
         PLUGIN_TEXT("画像や選択範囲を、指定した半径で滑らかにぼかします。")},
        nullptr,
        0,
    },
    {PLUGIN_TEXT("Gaussian Blur"), PLUGIN_TEXT("ガウスぼかし")},
    {{0, 0}, &radius, 1},
    {.stateBytes = sizeof(GaussianRows),
     .reach = Reach,
     .open = Open,
     .take = Take,
     .change = Change,
     .close = Close},
    Ask,
    ControlBlurPreview,
    PreviewSample::Middle,
    nullptr,
};
