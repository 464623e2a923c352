// What the host is told of the automatic levels.
#include "standard-plugins/auto-levels/AutoLevelsIds.h"
#include "standard-plugins/auto-levels/StretchedTones.h"
#include "standard-plugins/common/filtering/device/FilterDialog.h"

namespace
{

enum { Clip, PerChannel, SettingCount };

// A tenth of a percent at first.
const DialogSetting settings[SettingCount] = {
    {{PLUGIN_TEXT("AutoLevelsClip"), 0, mostClip, 10},
     SettingControl::Trackbar,
     ControlClip,
     ControlClipNumber,
     0,
     100},
    {{PLUGIN_TEXT("AutoLevelsPerChannel"), 0, 1, 1}, SettingControl::Check, ControlPerChannel, 0},
};

struct Stretching {
    Histogram histograms[PixelBytes];
    ToneTables tables;
};

Stretching* StretchingOf(FilterContext* context)
{
    return static_cast<Stretching*>(context->state);
}

void Look(FilterContext* context, const uint8_t* row)
{
    CountColors(StretchingOf(context)->histograms, row, context->width);
}

void StretchAlike(Stretching* stretching, uint32_t clip)
{
    Histogram all = {};
    for (const Histogram& histogram : stretching->histograms)
        for (uint32_t value = 0; value < 256; ++value)
            all.counts[value] += histogram.counts[value];
    for (uint8_t(&table)[256] : stretching->tables.of)
        FillStretch(table, all, clip);
}

void Settle(FilterContext* context)
{
    Stretching* stretching = StretchingOf(context);
    const uint32_t clip = context->values[Clip];
    if (!context->values[PerChannel])
        StretchAlike(stretching, clip);
    else
        for (uint32_t byte = 0; byte < PixelBytes; ++byte)
            FillStretch(stretching->tables.of[byte], stretching->histograms[byte], clip);
}

void Change(FilterContext* context, const FilterRows& rows, uint8_t* out)
{
    ApplyTones(StretchingOf(context)->tables, rows, out);
}

} // namespace

const FilterPlugin filterPlugin = {
    {
        PLUGIN_TEXT("TX_ADJUST"),
        {PLUGIN_TEXT("Automatic Levels..."), PLUGIN_TEXT("自動レベル補正...")},
        PLUGIN_TEXT("1.0"),
        PLUGIN_TEXT("2026-11-22"),
        {PLUGIN_TEXT("Stretches the tones of the picture or the selection from black to white."),
         PLUGIN_TEXT("画像や選択範囲の階調を、黒から白まで自動的に広げます。")},
        nullptr,
        0,
    },
    {PLUGIN_TEXT("Automatic Levels"), PLUGIN_TEXT("自動レベル補正")},
    {{DialogAutoLevelsEnglish, DialogAutoLevelsJapanese}, settings, SettingCount},
    {.stateBytes = sizeof(Stretching), .look = Look, .settle = Settle, .change = Change},
    AskFilter,
    ControlPreview,
    PreviewSample::Whole,
    nullptr,
};
