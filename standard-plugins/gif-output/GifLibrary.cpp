#include "standard-plugins/gif-output/GifLibrary.h"

#include "standard-plugins/common/PluginInfo.h"

bool OpenGifLibrary(GifLibrary* library)
{
    *library = {};
    HostLibrary& host = library->host;
    if (!OpenHostLibrary(&host, "libgif.so.7", PLUGIN_TEXT("gif.dll")))
        return false;
    if (BindHostFunction(host, "EGifOpen", &library->open) &&
        BindHostFunction(host, "EGifCloseFile", &library->close) &&
        BindHostFunction(host, "EGifPutScreenDesc", &library->putScreen) &&
        BindHostFunction(host, "EGifPutImageDesc", &library->putImage) &&
        BindHostFunction(host, "EGifPutLine", &library->putLine) &&
        BindHostFunction(host, "GifMakeMapObject", &library->makeMap) &&
        BindHostFunction(host, "GifFreeMapObject", &library->freeMap))
        return true;
    CloseGifLibrary(library);
    return false;
}

void CloseGifLibrary(GifLibrary* library)
{
    CloseHostLibrary(&library->host);
    *library = {};
}
