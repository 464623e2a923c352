// What the host is told of the median.
#include "standard-plugins/common/filtering/device/FilterDialog.h"
#include "standard-plugins/median/MedianIds.h"
#include "standard-plugins/median/SlidingMedian.h"

namespace
{

enum { Radius, SettingCount };

const DialogSetting settings[SettingCount] = {
    {{PLUGIN_TEXT("MedianRadius"), 1, 10, 1},
     SettingControl::Trackbar,
     ControlMedianRadius,
     ControlMedianRadiusNumber},
};

uint32_t Reach(const uint32_t* values)
{
    return values[Radius];
}

void Change(FilterContext*, const FilterRows& rows, uint8_t* out)
{
    WriteMedianRow(rows, out);
}

} // namespace

const FilterPlugin filterPlugin = {
    {
        PLUGIN_TEXT("TX_EFFECT"),
        {PLUGIN_TEXT("Median..."), PLUGIN_TEXT("メディアン...")},
        PLUGIN_TEXT("1.0"),
        PLUGIN_TEXT("2026-11-22"),
        {PLUGIN_TEXT("Takes specks out of the picture or the selection and keeps its edges."),
         PLUGIN_TEXT("輪郭を保ちながら、画像や選択範囲の小さな斑点を取り除きます。")},
        nullptr,
        0,
    },
    {PLUGIN_TEXT("Median"), PLUGIN_TEXT("メディアン")},
    {{DialogMedianEnglish, DialogMedianJapanese}, settings, SettingCount},
    {.reach = Reach, .change = Change},
    AskFilter,
    ControlMedianPreview,
    PreviewSample::Middle,
    nullptr,
};
