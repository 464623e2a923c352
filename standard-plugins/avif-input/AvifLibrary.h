// The functions of the library libavif that are used here; open while a picture is read.
#pragma once

#include "standard-plugins/common/HostLibrary.h"

#include <avif/avif.h>

struct AvifLibrary {
    HostLibrary host;
    decltype(&avifDecoderCreate) createDecoder;
    decltype(&avifDecoderDestroy) destroyDecoder;
    decltype(&avifDecoderSetIO) setSource;
    decltype(&avifDecoderParse) parse;
    decltype(&avifDecoderNextImage) nextImage;
    decltype(&avifDecoderDecodedRowCount) decodedRows;
    decltype(&avifImageCreateEmpty) createImage;
    decltype(&avifImageDestroy) destroyImage;
    decltype(&avifImageSetViewRect) setView;
    decltype(&avifRGBImageSetDefaults) setRgbDefaults;
    decltype(&avifImageYUVToRGB) convert;
    decltype(&avifCropRectConvertCleanApertureBox) findCrop;
    decltype(&avifColorPrimariesGetValues) findPrimaries;
};

/// False, with nothing open, where it is not installed or lacks a function.
bool OpenAvif(AvifLibrary* library);
/// Also right for a record that is all zero.
void CloseAvif(AvifLibrary* library);
