// The functions of the library libjxl that are used here; open while a picture is read.
#pragma once

#include "standard-plugins/common/HostLibrary.h"

#include <jxl/decode.h>

struct JxlLibrary {
    HostLibrary host;
    decltype(&JxlDecoderCreate) create;
    decltype(&JxlDecoderDestroy) destroy;
    decltype(&JxlDecoderSubscribeEvents) subscribe;
    decltype(&JxlDecoderSetUnpremultiplyAlpha) setUnpremultiply;
    decltype(&JxlDecoderSetInput) setInput;
    decltype(&JxlDecoderReleaseInput) releaseInput;
    decltype(&JxlDecoderProcessInput) process;
    decltype(&JxlDecoderGetBasicInfo) getInfo;
    decltype(&JxlDecoderSetPreferredColorProfile) preferColors;
    decltype(&JxlDecoderGetICCProfileSize) profileSize;
    decltype(&JxlDecoderGetColorAsICCProfile) getProfile;
    decltype(&JxlDecoderSetImageOutCallback) setOutput;
    decltype(&JxlDecoderFlushImage) flush;
};

/// False, with nothing open, where it is not installed or lacks a function.
bool OpenJxl(JxlLibrary* library);
/// Also right for a record that is all zero.
void CloseJxl(JxlLibrary* library);
