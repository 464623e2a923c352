// The functions of libtiff that are used here; open while a picture is read. While it is, the
// library prints nothing: the handlers that it has for files without their own are taken out, and
// put back.
#pragma once

#include "standard-plugins/common/HostLibrary.h"

#include <tiffio.h>

struct TiffLibrary {
    HostLibrary host;
    decltype(&TIFFOpenOptionsAlloc) makeOptions;
    decltype(&TIFFOpenOptionsFree) freeOptions;
    decltype(&TIFFOpenOptionsSetMaxSingleMemAlloc) limitMemory;
    decltype(&TIFFOpenOptionsSetErrorHandlerExtR) onError;
    decltype(&TIFFOpenOptionsSetWarningHandlerExtR) onWarning;
    decltype(&TIFFSetErrorHandler) setErrorHandler;
    decltype(&TIFFSetWarningHandler) setWarningHandler;
    decltype(&TIFFClientOpenExt) open;
    decltype(&TIFFClose) close;
    decltype(&TIFFGetField) get;
    decltype(&TIFFGetFieldDefaulted) getDefaulted;
    decltype(&TIFFSetField) set;
    decltype(&TIFFIsTiled) isTiled;
    decltype(&TIFFIsByteSwapped) isSwapped;
    decltype(&TIFFScanlineSize64) rowBytes;
    decltype(&TIFFReadScanline) readRow;
    decltype(&TIFFReadEncodedStrip) readStrip;
    decltype(&TIFFTileRowSize64) tileRowBytes;
    decltype(&TIFFTileSize64) tileBytes;
    decltype(&TIFFComputeTile) tileNumber;
    decltype(&TIFFReadEncodedTile) readTile;
    decltype(&TIFFGetStrileOffsetWithErr) stripOffset;
    decltype(&TIFFGetStrileByteCountWithErr) stripBytes;
    decltype(&TIFFReverseBits) reverseBits;
    decltype(&TIFFSwabArrayOfShort) swapShorts;
    decltype(&TIFFSwabArrayOfLong) swapLongs;
    decltype(&TIFFRGBAImageOK) canConvert;
    decltype(&TIFFReadRGBAStripExt) convertStrip;
    decltype(&TIFFReadRGBATileExt) convertTile;
    TIFFErrorHandler errorHandlerBefore;
    TIFFErrorHandler warningHandlerBefore;
};

/// False, with nothing open, where the library is missing or lacks one of them.
bool OpenTiffLibrary(TiffLibrary* library);
void CloseTiffLibrary(TiffLibrary* library);
