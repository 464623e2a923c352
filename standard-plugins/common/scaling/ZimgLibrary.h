// The functions of the library zimg that are used here; opened while a picture is scaled.
#pragma once

#include "standard-plugins/common/HostLibrary.h"

#include <zimg.h>

struct ZimgLibrary {
    HostLibrary host;
    decltype(&zimg_image_format_default) formatDefault;
    decltype(&zimg_graph_builder_params_default) paramsDefault;
    decltype(&zimg_filter_graph_build) build;
    decltype(&zimg_filter_graph_free) free;
    decltype(&zimg_filter_graph_get_tmp_size) workSize;
    decltype(&zimg_filter_graph_get_input_buffering) inputLines;
    decltype(&zimg_filter_graph_get_output_buffering) outputLines;
    decltype(&zimg_select_buffer_mask) bufferMask;
    decltype(&zimg_filter_graph_process) process;
    decltype(&zimg_clear_last_error) clearError;
};

/// False, with nothing open, where it is not installed or lacks a function.
bool OpenZimg(ZimgLibrary* library);
/// Also right for a record that is all zero.
void CloseZimg(ZimgLibrary* library);
