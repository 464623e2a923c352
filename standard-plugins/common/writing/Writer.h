// What every OUTPUT plugin is made of. Each keeps one constant `writerPlugin`; the exports stand
// once in WriterExports.cpp and are compiled into each of them.
#pragma once

#include "standard-plugins/common/SettingsDialog.h"
#include "standard-plugins/common/WriteProblem.h"

/// What PutImage hands on. Of path and stream exactly one is not null.
struct WriteOrder {
    const TavrixChar* path;
    PluginStreamRecord* stream;
    TavrixImageHandle image;
    RasterFunctionTable* rasters;
    PaletteFunctionTable* palettes;
    TavrixProgressCallback progress;
    TavrixMessageCallback message;
    TavrixGetPropertyCallback get;
    /// The dialog's settings, in its order.
    const uint32_t* values;
};

/// What came of it, with a sentence of the format's own or null for the problem's.
struct WriteOutcome {
    WriteProblem problem;
    const BilingualText* text;
};

struct WriterPlugin {
    PluginTexts texts;
    /// What Configure shows; without settings it goes on at once.
    SettingsDialog dialog;
    /// Writes the picture and gives back everything, on the worker thread. The exports tell the
    /// user the sentence. WriteProblem::Size, the sides that a format can hold, needs one of its
    /// own.
    WriteOutcome (*write)(const WriteOrder& order);
};

extern const WriterPlugin writerPlugin;
