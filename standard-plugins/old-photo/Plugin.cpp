// What the host is told of old photographs.
#include "standard-plugins/common/filtering/device/FilterDialog.h"
#include "standard-plugins/old-photo/OldPhotoIds.h"
#include "standard-plugins/old-photo/SepiaTone.h"

namespace
{

enum { Sepia, Corners, SettingCount };

const DialogSetting settings[SettingCount] = {
    {{PLUGIN_TEXT("OldPhotoSepia"), 0, 100, 100},
     SettingControl::Trackbar,
     ControlSepia,
     ControlSepiaNumber},
    {{PLUGIN_TEXT("OldPhotoCorners"), 0, 100, 30},
     SettingControl::Trackbar,
     ControlCorners,
     ControlCornersNumber},
};

bool Open(FilterContext* context)
{
    *static_cast<SepiaTone*>(context->state) = {context->values[Sepia], context->values[Corners],
                                                context->width, context->height};
    return true;
}

void Change(FilterContext* context, const FilterRows& rows, uint8_t* out)
{
    ToneRow(*static_cast<const SepiaTone*>(context->state), rows.y, out);
}

} // namespace

const FilterPlugin filterPlugin = {
    {
        PLUGIN_TEXT("TX_EFFECT"),
        {PLUGIN_TEXT("Old Photo..."), PLUGIN_TEXT("古い写真...")},
        PLUGIN_TEXT("1.0"),
        PLUGIN_TEXT("2026-11-22"),
        {PLUGIN_TEXT(
             "Gives the picture or the selection the brown of an old photograph and dark corners."),
         PLUGIN_TEXT("画像や選択範囲を、セピア色で四隅の暗い古い写真のようにします。")},
        nullptr,
        0,
    },
    {PLUGIN_TEXT("Old Photo"), PLUGIN_TEXT("古い写真")},
    {{DialogOldPhotoEnglish, DialogOldPhotoJapanese}, settings, SettingCount},
    {.stateBytes = sizeof(SepiaTone), .open = Open, .change = Change},
    AskFilter,
    ControlOldPhotoPreview,
    PreviewSample::Whole,
    nullptr,
};
