// What the host is told of the reduction to colours that are made for the picture.
#include "standard-plugins/common/subtracting/Subtractor.h"

const SubtractPlugin subtractPlugin = {
    {
        PLUGIN_TEXT("TX_SUBTRACT"),
        {PLUGIN_TEXT("Optimal Colours"), PLUGIN_TEXT("最適な色")},
        PLUGIN_TEXT("1.0"),
        PLUGIN_TEXT("2026-11-22"),
        {PLUGIN_TEXT("Reduces the picture to the 2 to 256 colours that suit it best."),
         PLUGIN_TEXT("画像に最も合う 2 ～ 256 色に減色します。")},
        nullptr,
        0,
    },
    {PLUGIN_TEXT("OptimalSubtractDiffusion"), 0, 1, 1},
    {PLUGIN_TEXT("OptimalSubtractColors"), 2, mostReducedColors, mostReducedColors},
    nullptr,
};
