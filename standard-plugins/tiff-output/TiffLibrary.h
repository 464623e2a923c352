// The functions of the library libtiff that are used here.
#pragma once

#include "standard-plugins/common/HostLibrary.h"

#include <tiffio.h>

struct TiffLibrary {
    HostLibrary host;
    decltype(&TIFFOpenOptionsAlloc) allocOptions;
    decltype(&TIFFOpenOptionsFree) freeOptions;
    decltype(&TIFFOpenOptionsSetErrorHandlerExtR) setErrorHandler;
    decltype(&TIFFOpenOptionsSetWarningHandlerExtR) setWarningHandler;
    decltype(&TIFFClientOpenExt) open;
    decltype(&TIFFSetField) setField;
    decltype(&TIFFWriteEncodedStrip) writeStrip;
    decltype(&TIFFFlush) flush;
    decltype(&TIFFCleanup) cleanUp;
};

/// False, with nothing open, where it is not installed or lacks a function.
bool OpenTiffLibrary(TiffLibrary* library);
/// Also right for a record that is all zero.
void CloseTiffLibrary(TiffLibrary* library);
