// The functions of giflib that are used here; open while a picture is read.
#pragma once

#include "standard-plugins/common/HostLibrary.h"

#include <gif_lib.h>

struct GifLibrary {
    HostLibrary host;
    decltype(&DGifOpen) open;
    decltype(&DGifCloseFile) close;
    decltype(&DGifGetRecordType) recordType;
    decltype(&DGifGetImageDesc) imageHeader;
    decltype(&DGifGetExtension) extension;
    decltype(&DGifGetExtensionNext) extensionNext;
    decltype(&DGifGetLine) line;
};

/// False, with nothing open, where the library is missing or lacks one of them.
bool OpenGifLibrary(GifLibrary* library);
void CloseGifLibrary(GifLibrary* library);
