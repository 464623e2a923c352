// What every EFFECT and ADJUST plugin is made of: an arithmetic that turns rows into rows
// (FilterWork), and what the user is told and asked (FilterPlugin). Each keeps one constant
// `filterPlugin`; the exports stand once in FilterExports.cpp, the way over the picture in
// FilterRun, and both are compiled into each of them. The dialog's preview runs the same arithmetic
// over a small picture, so that it shows what will be.
#pragma once

#include "standard-plugins/common/PluginInfo.h"
#include "standard-plugins/common/SettingsDialog.h"

#include <stddef.h>

/// One run over a picture. `state` is FilterWork::stateBytes of zeros at first.
struct FilterContext {
    /// The settings, in the dialog's order, each within its range.
    const uint32_t* values;
    uint32_t width;
    uint32_t height;
    void* state;
};

/// Rows y - reach to y + reach of the picture as it was before, pixels of blue, green and red. What
/// lies beyond an edge has the colour of the nearest pixel inside: of each row `reach` pixels left
/// of the first and right of the last may be read too.
struct FilterRows {
    const uint8_t* const* rows; // rows[0] is y - reach
    uint32_t reach;
    uint32_t width;
    uint32_t y;
};

/// Row y + offset, from -reach to reach; pixel x at 3 * x, x from -reach to width - 1 + reach.
inline const uint8_t* RowAt(const FilterRows& rows, int32_t offset)
{
    return rows.rows[static_cast<int32_t>(rows.reach) + offset];
}

/// All pointers but `change` may be null. Nothing here may leave its call by a jump.
struct FilterWork {
    size_t stateBytes = 0;
    /// How far a pixel's result looks, in pixels; null: 0.
    uint32_t (*reach)(const uint32_t* values) = nullptr;
    /// Prepares tables. False without memory; `close` is called all the same.
    bool (*open)(FilterContext* context) = nullptr;
    /// A first pass: every row once, in order, before any is changed.
    void (*look)(FilterContext* context, const uint8_t* row) = nullptr;
    /// Behind the first pass.
    void (*settle)(FilterContext* context) = nullptr;
    /// For a filter that keeps what it needs of the rows itself: gets row `y` as it was, in order
    /// from 0, up to y + reach before `change` of y. Then no rows are kept for `change`, whose
    /// `rows.rows` is null.
    void (*take)(FilterContext* context, uint32_t y, const uint8_t* row) = nullptr;
    /// Fills row `rows.y`, in order from 0. With reach 0 `out` is the row itself; otherwise it lies
    /// elsewhere.
    void (*change)(FilterContext* context, const FilterRows& rows, uint8_t* out) = nullptr;
    /// Gives back what the state holds; called once, also when `open` failed.
    void (*close)(FilterContext* context) = nullptr;
    /// Whether these settings need the first pass; null: always, where there is a `look`. Without
    /// it `settle` is called all the same.
    bool (*needsLook)(const uint32_t* values) = nullptr;
};

/// What a preview shows: the middle of the picture, pixel by pixel, or all of it made small.
enum class PreviewSample : uint8_t { Middle, Whole };

struct FilterPlugin {
    PluginTexts texts;
    /// Over what the user is told.
    BilingualText caption;
    SettingsDialog dialog;
    FilterWork work;
    /// AskFilter (common/filtering/device) where there is something to set, else null.
    int32_t (*configure)(TavrixWindow owner, TavrixImageHandle image, RasterFunctionTable* rasters,
                         TavrixPutPropertyCallback put, TavrixGetPropertyCallback get);
    /// The control that marks the preview's place in the dialog; not visible.
    int previewControl;
    PreviewSample sample;
    /// The user touched a pixel (blue, green, red, as it was) of the preview; changes `values` and
    /// gives true. Null: touching does nothing.
    bool (*pick)(uint32_t* values, const uint8_t* pixel);
};

extern const FilterPlugin filterPlugin;
