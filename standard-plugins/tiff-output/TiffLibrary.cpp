#include "standard-plugins/tiff-output/TiffLibrary.h"

#include "standard-plugins/common/PluginInfo.h"

bool OpenTiffLibrary(TiffLibrary* library)
{
    *library = {};
    HostLibrary& host = library->host;
    if (!OpenHostLibrary(&host, "libtiff.so.6", PLUGIN_TEXT("tiff.dll")))
        return false;
    if (BindHostFunction(host, "TIFFOpenOptionsAlloc", &library->allocOptions) &&
        BindHostFunction(host, "TIFFOpenOptionsFree", &library->freeOptions) &&
        BindHostFunction(host, "TIFFOpenOptionsSetErrorHandlerExtR", &library->setErrorHandler) &&
        BindHostFunction(host, "TIFFOpenOptionsSetWarningHandlerExtR",
                         &library->setWarningHandler) &&
        BindHostFunction(host, "TIFFClientOpenExt", &library->open) &&
        BindHostFunction(host, "TIFFSetField", &library->setField) &&
        BindHostFunction(host, "TIFFWriteEncodedStrip", &library->writeStrip) &&
        BindHostFunction(host, "TIFFFlush", &library->flush) &&
        BindHostFunction(host, "TIFFCleanup", &library->cleanUp))
        return true;
    CloseTiffLibrary(library);
    return false;
}

void CloseTiffLibrary(TiffLibrary* library)
{
    CloseHostLibrary(&library->host);
    *library = {};
}
