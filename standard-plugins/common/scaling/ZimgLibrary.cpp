#include "standard-plugins/common/scaling/ZimgLibrary.h"

#include "standard-plugins/common/PluginInfo.h"

bool OpenZimg(ZimgLibrary* library)
{
    *library = {};
    HostLibrary& host = library->host;
    if (!OpenHostLibrary(&host, "libzimg.so.2", PLUGIN_TEXT("z.dll")))
        return false;
    if (BindHostFunction(host, "zimg_image_format_default", &library->formatDefault) &&
        BindHostFunction(host, "zimg_graph_builder_params_default", &library->paramsDefault) &&
        BindHostFunction(host, "zimg_filter_graph_build", &library->build) &&
        BindHostFunction(host, "zimg_filter_graph_free", &library->free) &&
        BindHostFunction(host, "zimg_filter_graph_get_tmp_size", &library->workSize) &&
        BindHostFunction(host, "zimg_filter_graph_get_input_buffering", &library->inputLines) &&
        BindHostFunction(host, "zimg_filter_graph_get_output_buffering", &library->outputLines) &&
        BindHostFunction(host, "zimg_select_buffer_mask", &library->bufferMask) &&
        BindHostFunction(host, "zimg_filter_graph_process", &library->process) &&
        BindHostFunction(host, "zimg_clear_last_error", &library->clearError))
        return true;
    CloseZimg(library);
    return false;
}

void CloseZimg(ZimgLibrary* library)
{
    CloseHostLibrary(&library->host);
    *library = {};
}
