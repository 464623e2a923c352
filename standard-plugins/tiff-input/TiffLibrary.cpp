#include "standard-plugins/tiff-input/TiffLibrary.h"

#include "standard-plugins/common/PluginInfo.h"

namespace
{

bool BindOpening(TiffLibrary* library)
{
    const HostLibrary& host = library->host;
    return BindHostFunction(host, "TIFFOpenOptionsAlloc", &library->makeOptions) &&
           BindHostFunction(host, "TIFFOpenOptionsFree", &library->freeOptions) &&
           BindHostFunction(host, "TIFFOpenOptionsSetMaxSingleMemAlloc", &library->limitMemory) &&
           BindHostFunction(host, "TIFFOpenOptionsSetErrorHandlerExtR", &library->onError) &&
           BindHostFunction(host, "TIFFOpenOptionsSetWarningHandlerExtR", &library->onWarning) &&
           BindHostFunction(host, "TIFFSetErrorHandler", &library->setErrorHandler) &&
           BindHostFunction(host, "TIFFSetWarningHandler", &library->setWarningHandler) &&
           BindHostFunction(host, "TIFFClientOpenExt", &library->open) &&
           BindHostFunction(host, "TIFFClose", &library->close);
}

bool BindTags(TiffLibrary* library)
{
    const HostLibrary& host = library->host;
    return BindHostFunction(host, "TIFFGetField", &library->get) &&
           BindHostFunction(host, "TIFFGetFieldDefaulted", &library->getDefaulted) &&
           BindHostFunction(host, "TIFFSetField", &library->set) &&
           BindHostFunction(host, "TIFFIsTiled", &library->isTiled) &&
           BindHostFunction(host, "TIFFIsByteSwapped", &library->isSwapped);
}

bool BindData(TiffLibrary* library)
{
    const HostLibrary& host = library->host;
    return BindHostFunction(host, "TIFFScanlineSize64", &library->rowBytes) &&
           BindHostFunction(host, "TIFFReadScanline", &library->readRow) &&
           BindHostFunction(host, "TIFFReadEncodedStrip", &library->readStrip) &&
           BindHostFunction(host, "TIFFTileRowSize64", &library->tileRowBytes) &&
           BindHostFunction(host, "TIFFTileSize64", &library->tileBytes) &&
           BindHostFunction(host, "TIFFComputeTile", &library->tileNumber) &&
           BindHostFunction(host, "TIFFReadEncodedTile", &library->readTile) &&
           BindHostFunction(host, "TIFFGetStrileOffsetWithErr", &library->stripOffset) &&
           BindHostFunction(host, "TIFFGetStrileByteCountWithErr", &library->stripBytes) &&
           BindHostFunction(host, "TIFFReverseBits", &library->reverseBits) &&
           BindHostFunction(host, "TIFFSwabArrayOfShort", &library->swapShorts) &&
           BindHostFunction(host, "TIFFSwabArrayOfLong", &library->swapLongs) &&
           BindHostFunction(host, "TIFFRGBAImageOK", &library->canConvert) &&
           BindHostFunction(host, "TIFFReadRGBAStripExt", &library->convertStrip) &&
           BindHostFunction(host, "TIFFReadRGBATileExt", &library->convertTile);
}

} // namespace

bool OpenTiffLibrary(TiffLibrary* library)
{
    *library = {};
    if (!OpenHostLibrary(&library->host, "libtiff.so.6", PLUGIN_TEXT("tiff.dll")))
        return false;
    if (!BindOpening(library) || !BindTags(library) || !BindData(library)) {
        CloseHostLibrary(&library->host);
        *library = {};
        return false;
    }
    library->errorHandlerBefore = library->setErrorHandler(nullptr);
    library->warningHandlerBefore = library->setWarningHandler(nullptr);
    return true;
}

void CloseTiffLibrary(TiffLibrary* library)
{
    if (library->setErrorHandler && library->setWarningHandler) {
        (void)library->setErrorHandler(library->errorHandlerBefore);
        (void)library->setWarningHandler(library->warningHandlerBefore);
    }
    CloseHostLibrary(&library->host);
    *library = {};
}
