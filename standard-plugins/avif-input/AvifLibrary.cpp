#include "standard-plugins/avif-input/AvifLibrary.h"

#include "standard-plugins/common/PluginInfo.h"

bool OpenAvif(AvifLibrary* library)
{
    *library = {};
    HostLibrary& host = library->host;
    if (!OpenHostLibrary(&host, "libavif.so.15", PLUGIN_TEXT("avif.dll")))
        return false;
    if (BindHostFunction(host, "avifDecoderCreate", &library->createDecoder) &&
        BindHostFunction(host, "avifDecoderDestroy", &library->destroyDecoder) &&
        BindHostFunction(host, "avifDecoderSetIO", &library->setSource) &&
        BindHostFunction(host, "avifDecoderParse", &library->parse) &&
        BindHostFunction(host, "avifDecoderNextImage", &library->nextImage) &&
        BindHostFunction(host, "avifDecoderDecodedRowCount", &library->decodedRows) &&
        BindHostFunction(host, "avifImageCreateEmpty", &library->createImage) &&
        BindHostFunction(host, "avifImageDestroy", &library->destroyImage) &&
        BindHostFunction(host, "avifImageSetViewRect", &library->setView) &&
        BindHostFunction(host, "avifRGBImageSetDefaults", &library->setRgbDefaults) &&
        BindHostFunction(host, "avifImageYUVToRGB", &library->convert) &&
        BindHostFunction(host, "avifCropRectConvertCleanApertureBox", &library->findCrop) &&
        BindHostFunction(host, "avifColorPrimariesGetValues", &library->findPrimaries))
        return true;
    CloseAvif(library);
    return false;
}

void CloseAvif(AvifLibrary* library)
{
    CloseHostLibrary(&library->host);
    *library = {};
}
