// The functions of the library libheif that are used here; open while a picture is read.
#pragma once

#include "standard-plugins/common/HostLibrary.h"

#include <libheif/heif.h>

struct HeifLibrary {
    HostLibrary host;
    decltype(&heif_init) init;
    decltype(&heif_deinit) deinit;
    decltype(&heif_context_alloc) createContext;
    decltype(&heif_context_free) freeContext;
    decltype(&heif_context_set_maximum_image_size_limit) limitSize;
    decltype(&heif_context_set_max_decoding_threads) limitThreads;
    decltype(&heif_context_read_from_reader) read;
    decltype(&heif_context_get_primary_image_handle) findPrimary;
    decltype(&heif_image_handle_release) releaseHandle;
    decltype(&heif_image_handle_get_width) width;
    decltype(&heif_image_handle_get_height) height;
    decltype(&heif_image_handle_has_alpha_channel) hasAlpha;
    decltype(&heif_image_handle_is_premultiplied_alpha) isPremultiplied;
    decltype(&heif_image_handle_get_luma_bits_per_pixel) lumaBits;
    decltype(&heif_image_handle_get_raw_color_profile_size) profileBytes;
    decltype(&heif_image_handle_get_raw_color_profile) getProfile;
    decltype(&heif_image_handle_get_nclx_color_profile) getCodePoints;
    decltype(&heif_image_get_nclx_color_profile) getCodedPoints;
    decltype(&heif_nclx_color_profile_free) freeCodePoints;
    decltype(&heif_decoding_options_alloc) createOptions;
    decltype(&heif_decoding_options_free) freeOptions;
    decltype(&heif_decode_image) decode;
    decltype(&heif_image_get_plane_readonly) plane;
    decltype(&heif_image_get_width) imageWidth;
    decltype(&heif_image_get_height) imageHeight;
    decltype(&heif_image_get_decoding_warnings) warnings;
    decltype(&heif_image_release) releaseImage;
};

/// False, with nothing open, where it is not installed or lacks a function.
bool OpenHeif(HeifLibrary* library);
/// Also right for a record that is all zero.
void CloseHeif(HeifLibrary* library);
