// What the host is told of the mosaic.
#include "standard-plugins/common/filtering/device/FilterDialog.h"
#include "standard-plugins/mosaic/BlockAverages.h"
#include "standard-plugins/mosaic/MosaicIds.h"

namespace
{

enum { Size, SettingCount };

const DialogSetting settings[SettingCount] = {
    {{PLUGIN_TEXT("MosaicSize"), 2, 64, 8},
     SettingControl::Trackbar,
     ControlBlockSize,
     ControlBlockSizeNumber},
};

BlockAverages* AveragesOf(FilterContext* context)
{
    return static_cast<BlockAverages*>(context->state);
}

// Down to the last row of a block from its first.
uint32_t Reach(const uint32_t* values)
{
    return values[Size] - 1;
}

bool Open(FilterContext* context)
{
    return OpenBlockAverages(AveragesOf(context), context->width, context->height,
                             context->values[Size]);
}

void Take(FilterContext* context, uint32_t y, const uint8_t* row)
{
    TakeBlockRow(AveragesOf(context), y, row);
}

void Change(FilterContext* context, const FilterRows& rows, uint8_t* out)
{
    WriteBlockRow(AveragesOf(context), rows.y, out);
}

void Close(FilterContext* context)
{
    CloseBlockAverages(AveragesOf(context));
}

} // namespace

const FilterPlugin filterPlugin = {
    {
        PLUGIN_TEXT("TX_EFFECT"),
        {PLUGIN_TEXT("Mosaic..."), PLUGIN_TEXT("モザイク...")},
        PLUGIN_TEXT("1.0"),
        PLUGIN_TEXT("2026-11-22"),
        {PLUGIN_TEXT("Lays the picture or the selection in square blocks of one colour."),
         PLUGIN_TEXT("画像や選択範囲を、一色の四角いブロックで表します。")},
        nullptr,
        0,
    },
    {PLUGIN_TEXT("Mosaic"), PLUGIN_TEXT("モザイク")},
    {{DialogMosaicEnglish, DialogMosaicJapanese}, settings, SettingCount},
    {.stateBytes = sizeof(BlockAverages),
     .reach = Reach,
     .open = Open,
     .take = Take,
     .change = Change,
     .close = Close},
    AskFilter,
    ControlMosaicPreview,
    PreviewSample::Middle,
    nullptr,
};
