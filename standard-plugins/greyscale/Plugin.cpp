// What the host is told of the conversion to grey.
#include "standard-plugins/common/filtering/device/FilterDialog.h"
#include "standard-plugins/greyscale/GreyRow.h"
#include "standard-plugins/greyscale/GreyscaleIds.h"

namespace
{

const DialogSetting luma = {{PLUGIN_TEXT("GreyscaleLuma"), static_cast<uint32_t>(LumaKind::Rec601),
                             static_cast<uint32_t>(LumaKind::Average),
                             static_cast<uint32_t>(LumaKind::Rec601)},
                            SettingControl::Choice,
                            ControlLuma601,
                            0};

void Change(FilterContext* context, const FilterRows& rows, uint8_t* out)
{
    GreyRow(RowAt(rows, 0), rows.width, static_cast<LumaKind>(context->values[0]), out);
}

} // namespace

const FilterPlugin filterPlugin = {
    {
        PLUGIN_TEXT("TX_ADJUST"),
        {PLUGIN_TEXT("Greyscale..."), PLUGIN_TEXT("グレースケール...")},
        PLUGIN_TEXT("1.0"),
        PLUGIN_TEXT("2026-11-22"),
        {PLUGIN_TEXT("Takes the colors out of the picture or the selection."),
         PLUGIN_TEXT("画像や選択範囲から色を取り除き、灰色の濃淡にします。")},
        nullptr,
        0,
    },
    {PLUGIN_TEXT("Greyscale"), PLUGIN_TEXT("グレースケール")},
    {{DialogGreyscaleEnglish, DialogGreyscaleJapanese}, &luma, 1},
    {.change = Change},
    AskFilter,
    ControlPreview,
    PreviewSample::Whole,
    nullptr,
};
