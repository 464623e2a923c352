// The functions of the library giflib that are used here.
#pragma once

#include "standard-plugins/common/HostLibrary.h"

#include <gif_lib.h>

struct GifLibrary {
    HostLibrary host;
    decltype(&EGifOpen) open;
    decltype(&EGifCloseFile) close;
    decltype(&EGifPutScreenDesc) putScreen;
    decltype(&EGifPutImageDesc) putImage;
    decltype(&EGifPutLine) putLine;
    decltype(&GifMakeMapObject) makeMap;
    decltype(&GifFreeMapObject) freeMap;
};

/// False, with nothing open, where it is not installed or lacks a function.
bool OpenGifLibrary(GifLibrary* library);
/// Also right for a record that is all zero.
void CloseGifLibrary(GifLibrary* library);
