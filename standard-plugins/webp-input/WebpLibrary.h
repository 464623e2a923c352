// The functions of libwebp that are used here; open while a picture is read.
#pragma once

#include "standard-plugins/common/HostLibrary.h"

#include <webp/decode.h>

struct WebpLibrary {
    HostLibrary host;
    decltype(&WebPInitDecoderConfigInternal) initialize;
    decltype(&WebPIDecode) open;
    decltype(&WebPIUpdate) update;
    decltype(&WebPIDecGetRGB) rows;
    decltype(&WebPIDelete) close;
    decltype(&WebPFreeDecBuffer) freeRows;
};

/// False, with nothing open, where the library is missing or lacks one of them.
bool OpenWebpLibrary(WebpLibrary* library);
void CloseWebpLibrary(WebpLibrary* library);
