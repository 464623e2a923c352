// The part of a filter's dialog that shows the preview: takes the pixels when the dialog has come
// up, runs the filter over them each time its values change, and draws what came of it. For
// FilterDialog, and for a plugin with a dialog of its own. Plain data; zeroed memory is one that
// shows nothing yet. User-interface thread: inside Configure alone.
#pragma once

#include "standard-plugins/common/filtering/device/FilterPreview.h"

struct FilterPane {
    /// The picture, which is only looked at; both may be null, and then nothing is shown.
    TavrixImageHandle image;
    RasterFunctionTable* rasters;
    FilterPreview preview;
    bool taken;
};

/// Shows what the filter makes with `values`, in the place of FilterPlugin::previewControl.
void FollowValues(FilterPane* pane, HWND dialog, const uint32_t* values);
/// Carries out WM_PAINT of the dialog.
void PaintPane(const FilterPane& pane, HWND dialog);
/// The pixel as it was at a point of the dialog; null where none is shown.
const uint8_t* PanePixelAt(const FilterPane& pane, HWND dialog, POINT point);
void FreePane(FilterPane* pane);
