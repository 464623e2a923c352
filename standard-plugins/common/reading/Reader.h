// What every INPUT plugin is made of. Each keeps one constant `readerPlugin`; the exports stand
// once in ReaderExports.cpp and are compiled into each of them.
#pragma once

#include "standard-plugins/common/PluginInfo.h"

/// What GetImage hands on. `get` may be null; then every setting has its standard value.
struct ReadOrder {
    PluginStreamRecord* stream;
    TavrixImageHandle image;
    RasterFunctionTable* rasters;
    TavrixProgressCallback progress;
    TavrixMessageCallback message;
    TavrixGetPropertyCallback get;
};

struct ReaderPlugin {
    PluginTexts texts;
    /// Carries out GetImage on the worker thread: a result of the contract (PluginResult.h).
    int32_t (*read)(const ReadOrder& order);
    /// Reads the header alone and gives the picture's size as it will be shown.
    int32_t (*readSize)(PluginStreamRecord* stream, uint32_t* width, uint32_t* height);
    /// Carries out Configure where there is something to ask; null: PluginDone at once.
    int32_t (*configure)(TavrixWindow owner, TavrixPutPropertyCallback put,
                         TavrixGetPropertyCallback get);
};

extern const ReaderPlugin readerPlugin;
