// What the host is told of the levels of a poster.
#include "standard-plugins/common/filtering/device/FilterDialog.h"
#include "standard-plugins/posterise/LevelTable.h"
#include "standard-plugins/posterise/PosteriseIds.h"

namespace
{

enum { Levels, SettingCount };

const DialogSetting settings[SettingCount] = {
    {{PLUGIN_TEXT("PosteriseLevels"), 2, 64, 6},
     SettingControl::Trackbar,
     ControlPosteriseLevels,
     ControlPosteriseLevelsNumber},
};

struct Levelling {
    uint8_t table[256];
};

bool Open(FilterContext* context)
{
    FillLevelTable(static_cast<Levelling*>(context->state)->table, context->values[Levels]);
    return true;
}

void Change(FilterContext* context, const FilterRows& rows, uint8_t* out)
{
    const uint8_t* table = static_cast<const Levelling*>(context->state)->table;
    const uint8_t* row = RowAt(rows, 0);
    for (uint32_t i = 0; i < 3 * rows.width; ++i)
        out[i] = table[row[i]];
}

} // namespace

const FilterPlugin filterPlugin = {
    {
        PLUGIN_TEXT("TX_EFFECT"),
        {PLUGIN_TEXT("Posterise..."), PLUGIN_TEXT("ポスタリゼーション...")},
        PLUGIN_TEXT("1.0"),
        PLUGIN_TEXT("2026-11-22"),
        {PLUGIN_TEXT("Leaves few levels of each colour in the picture or the selection."),
         PLUGIN_TEXT("画像や選択範囲の各色の階調を減らします。")},
        nullptr,
        0,
    },
    {PLUGIN_TEXT("Posterise"), PLUGIN_TEXT("ポスタリゼーション")},
    {{DialogPosteriseEnglish, DialogPosteriseJapanese}, settings, SettingCount},
    {.stateBytes = sizeof(Levelling), .open = Open, .change = Change},
    AskFilter,
    ControlPosterisePreview,
    PreviewSample::Whole,
    nullptr,
};
