// What the host is told of the oil painting.
#include "standard-plugins/common/filtering/device/FilterDialog.h"
#include "standard-plugins/oil/OilIds.h"
#include "standard-plugins/oil/OilPainting.h"

namespace
{

enum { Radius, Levels, SettingCount };

const DialogSetting settings[SettingCount] = {
    {{PLUGIN_TEXT("OilRadius"), 1, 8, 3},
     SettingControl::Trackbar,
     ControlOilRadius,
     ControlOilRadiusNumber},
    {{PLUGIN_TEXT("OilLevels"), 4, mostOilLevels, 20},
     SettingControl::Trackbar,
     ControlOilLevels,
     ControlOilLevelsNumber},
};

OilPainting* PaintingOf(FilterContext* context)
{
    return static_cast<OilPainting*>(context->state);
}

uint32_t Reach(const uint32_t* values)
{
    return values[Radius];
}

bool Open(FilterContext* context)
{
    return OpenOilPainting(PaintingOf(context), context->width, context->values[Radius],
                           context->values[Levels]);
}

void Change(FilterContext* context, const FilterRows& rows, uint8_t* out)
{
    WriteOilRow(PaintingOf(context), rows, out);
}

void Close(FilterContext* context)
{
    CloseOilPainting(PaintingOf(context));
}

} // namespace

const FilterPlugin filterPlugin = {
    {
        PLUGIN_TEXT("TX_EFFECT"),
        {PLUGIN_TEXT("Oil Painting..."), PLUGIN_TEXT("油絵...")},
        PLUGIN_TEXT("1.0"),
        PLUGIN_TEXT("2026-11-22"),
        {PLUGIN_TEXT("Paints the picture or the selection in broad strokes of few tones."),
         PLUGIN_TEXT("画像や選択範囲を、少ない階調の太い筆で描いた油絵のようにします。")},
        nullptr,
        0,
    },
    {PLUGIN_TEXT("Oil Painting"), PLUGIN_TEXT("油絵")},
    {{DialogOilEnglish, DialogOilJapanese}, settings, SettingCount},
    {.stateBytes = sizeof(OilPainting),
     .reach = Reach,
     .open = Open,
     .change = Change,
     .close = Close},
    AskFilter,
    ControlOilPreview,
    PreviewSample::Middle,
    nullptr,
};
