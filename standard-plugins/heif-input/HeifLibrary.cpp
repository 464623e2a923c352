#include "standard-plugins/heif-input/HeifLibrary.h"

#include "standard-plugins/common/PluginInfo.h"

namespace
{

bool BindContext(HeifLibrary* library)
{
    const HostLibrary& host = library->host;
    return BindHostFunction(host, "heif_init", &library->init) &&
           BindHostFunction(host, "heif_deinit", &library->deinit) &&
           BindHostFunction(host, "heif_context_alloc", &library->createContext) &&
           BindHostFunction(host, "heif_context_free", &library->freeContext) &&
           BindHostFunction(host, "heif_context_set_maximum_image_size_limit",
                            &library->limitSize) &&
           BindHostFunction(host, "heif_context_set_max_decoding_threads",
                            &library->limitThreads) &&
           BindHostFunction(host, "heif_context_read_from_reader", &library->read) &&
           BindHostFunction(host, "heif_context_get_primary_image_handle", &library->findPrimary);
}

bool BindHandle(HeifLibrary* library)
{
    const HostLibrary& host = library->host;
    return BindHostFunction(host, "heif_image_handle_release", &library->releaseHandle) &&
           BindHostFunction(host, "heif_image_handle_get_width", &library->width) &&
           BindHostFunction(host, "heif_image_handle_get_height", &library->height) &&
           BindHostFunction(host, "heif_image_handle_has_alpha_channel", &library->hasAlpha) &&
           BindHostFunction(host, "heif_image_handle_is_premultiplied_alpha",
                            &library->isPremultiplied) &&
           BindHostFunction(host, "heif_image_handle_get_luma_bits_per_pixel",
                            &library->lumaBits) &&
           BindHostFunction(host, "heif_image_handle_get_raw_color_profile_size",
                            &library->profileBytes) &&
           BindHostFunction(host, "heif_image_handle_get_raw_color_profile",
                            &library->getProfile) &&
           BindHostFunction(host, "heif_image_handle_get_nclx_color_profile",
                            &library->getCodePoints) &&
           BindHostFunction(host, "heif_image_get_nclx_color_profile", &library->getCodedPoints) &&
           BindHostFunction(host, "heif_nclx_color_profile_free", &library->freeCodePoints);
}

bool BindImage(HeifLibrary* library)
{
    const HostLibrary& host = library->host;
    return BindHostFunction(host, "heif_decoding_options_alloc", &library->createOptions) &&
           BindHostFunction(host, "heif_decoding_options_free", &library->freeOptions) &&
           BindHostFunction(host, "heif_decode_image", &library->decode) &&
           BindHostFunction(host, "heif_image_get_plane_readonly", &library->plane) &&
           BindHostFunction(host, "heif_image_get_width", &library->imageWidth) &&
           BindHostFunction(host, "heif_image_get_height", &library->imageHeight) &&
           BindHostFunction(host, "heif_image_get_decoding_warnings", &library->warnings) &&
           BindHostFunction(host, "heif_image_release", &library->releaseImage);
}

} // namespace

bool OpenHeif(HeifLibrary* library)
{
    *library = {};
    if (!OpenHostLibrary(&library->host, "libheif.so.1", PLUGIN_TEXT("heif.dll")))
        return false;
    if (BindContext(library) && BindHandle(library) && BindImage(library) &&
        library->init(nullptr).code == heif_error_Ok)
        return true;
    CloseHostLibrary(&library->host);
    *library = {};
    return false;
}

void CloseHeif(HeifLibrary* library)
{
    if (library->deinit)
        library->deinit();
    CloseHostLibrary(&library->host);
    *library = {};
}
