#include "standard-plugins/webp-input/WebpLibrary.h"

#include "standard-plugins/common/PluginInfo.h"

bool OpenWebpLibrary(WebpLibrary* library)
{
    *library = {};
    HostLibrary& host = library->host;
    if (!OpenHostLibrary(&host, "libwebp.so.7", PLUGIN_TEXT("webp.dll")))
        return false;
    if (BindHostFunction(host, "WebPInitDecoderConfigInternal", &library->initialize) &&
        BindHostFunction(host, "WebPIDecode", &library->open) &&
        BindHostFunction(host, "WebPIUpdate", &library->update) &&
        BindHostFunction(host, "WebPIDecGetRGB", &library->rows) &&
        BindHostFunction(host, "WebPIDelete", &library->close) &&
        BindHostFunction(host, "WebPFreeDecBuffer", &library->freeRows))
        return true;
    CloseWebpLibrary(library);
    return false;
}

void CloseWebpLibrary(WebpLibrary* library)
{
    CloseHostLibrary(&library->host);
    *library = {};
}
