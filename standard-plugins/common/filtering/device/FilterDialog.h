// The dialog of an EFFECT or ADJUST plugin: its settings, and a small preview drawn from the
// picture's own pixels, changed by the plugin's own arithmetic each time a setting changes. The
// picture itself is only looked at. User-interface thread: inside Configure alone.
#pragma once

#include "standard-plugins/common/filtering/Filter.h"

/// Carries out Configure for `filterPlugin`, with the results of AskSettings. Where there is no
/// picture of 24 bits to look at or no memory for the preview, its place stays empty and the dialog
/// works without.
int32_t AskFilter(TavrixWindow owner, TavrixImageHandle image, RasterFunctionTable* rasters,
                  TavrixPutPropertyCallback put, TavrixGetPropertyCallback get);
