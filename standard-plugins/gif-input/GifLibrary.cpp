#include "standard-plugins/gif-input/GifLibrary.h"

#include "standard-plugins/common/PluginInfo.h"

bool OpenGifLibrary(GifLibrary* library)
{
    *library = {};
    HostLibrary& host = library->host;
    if (!OpenHostLibrary(&host, "libgif.so.7", PLUGIN_TEXT("gif.dll")))
        return false;
    if (BindHostFunction(host, "DGifOpen", &library->open) &&
        BindHostFunction(host, "DGifCloseFile", &library->close) &&
        BindHostFunction(host, "DGifGetRecordType", &library->recordType) &&
        BindHostFunction(host, "DGifGetImageDesc", &library->imageHeader) &&
        BindHostFunction(host, "DGifGetExtension", &library->extension) &&
        BindHostFunction(host, "DGifGetExtensionNext", &library->extensionNext) &&
        BindHostFunction(host, "DGifGetLine", &library->line))
        return true;
    CloseGifLibrary(library);
    return false;
}

void CloseGifLibrary(GifLibrary* library)
{
    CloseHostLibrary(&library->host);
    *library = {};
}
