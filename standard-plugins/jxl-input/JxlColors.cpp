#include "standard-plugins/jxl-input/JxlColors.h"

#include <stdlib.h>

namespace
{

constexpr size_t mostProfileBytes = 4u << 20;

void PreferSrgb(const JxlLibrary& library, JxlDecoder* decoder, const JxlBasicInfo& info)
{
    JxlColorEncoding srgb = {};
    srgb.color_space = info.num_color_channels == 1 ? JXL_COLOR_SPACE_GRAY : JXL_COLOR_SPACE_RGB;
    srgb.white_point = JXL_WHITE_POINT_D65;
    srgb.primaries = JXL_PRIMARIES_SRGB;
    srgb.transfer_function = JXL_TRANSFER_FUNCTION_SRGB;
    srgb.rendering_intent = JXL_RENDERING_INTENT_PERCEPTUAL;
    // Where it is refused the profile below tells what comes instead.
    (void)library.preferColors(decoder, &srgb);
}

} // namespace

void ChooseJxlColors(JxlColors* colors, const JxlLibrary& library, JxlDecoder* decoder,
                     const JxlBasicInfo& info)
{
    *colors = {};
    if (!info.uses_original_profile)
        PreferSrgb(library, decoder, info);
    size_t bytes = 0;
    if (library.profileSize(decoder, nullptr, JXL_COLOR_PROFILE_TARGET_DATA, &bytes) !=
            JXL_DEC_SUCCESS ||
        bytes == 0 || bytes > mostProfileBytes)
        return;
    colors->profile = static_cast<uint8_t*>(malloc(bytes));
    if (colors->profile && library.getProfile(decoder, nullptr, JXL_COLOR_PROFILE_TARGET_DATA,
                                              colors->profile, bytes) == JXL_DEC_SUCCESS)
        colors->bytes = bytes;
}

void FreeJxlColors(JxlColors* colors)
{
    free(colors->profile);
    *colors = {};
}
