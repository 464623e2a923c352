// The functions of the library libwebp that are used here.
#pragma once

#include "standard-plugins/common/HostLibrary.h"

#include <webp/encode.h>

struct WebPLibrary {
    HostLibrary host;
    decltype(&WebPConfigInitInternal) initConfig;
    decltype(&WebPConfigLosslessPreset) setLossless;
    decltype(&WebPValidateConfig) validateConfig;
    decltype(&WebPPictureInitInternal) initPicture;
    decltype(&WebPPictureAlloc) allocPicture;
    decltype(&WebPPictureFree) freePicture;
    decltype(&WebPEncode) encode;
};

/// False, with nothing open, where it is not installed or lacks a function.
bool OpenWebPLibrary(WebPLibrary* library);
/// Also right for a record that is all zero.
void CloseWebPLibrary(WebPLibrary* library);
