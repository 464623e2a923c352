#include "standard-plugins/heif-input/HeifColors.h"

#include "standard-plugins/common/frames/CodePointProfile.h"

#include <stdlib.h>

namespace
{

constexpr size_t mostProfileBytes = 4u << 20;

bool MakeRoom(HeifColors* colors, size_t bytes)
{
    colors->profile = static_cast<uint8_t*>(malloc(bytes));
    colors->bytes = colors->profile ? bytes : 0;
    return colors->profile != nullptr;
}

void MakeProfile(HeifColors* colors, const heif_color_profile_nclx& nclx)
{
    ColorCodePoints points = {{nclx.color_primary_red_x, nclx.color_primary_red_y,
                               nclx.color_primary_green_x, nclx.color_primary_green_y,
                               nclx.color_primary_blue_x, nclx.color_primary_blue_y,
                               nclx.color_primary_white_x, nclx.color_primary_white_y},
                              nclx.transfer_characteristics};
    if (points.transfer == heif_transfer_characteristic_unspecified)
        points.transfer = heif_transfer_characteristic_IEC_61966_2_1;
    if (MakeRoom(colors, mostCodePointProfileBytes))
        colors->bytes = MakeCodePointProfile(points, colors->profile);
}

} // namespace

void ReadHeifColors(HeifColors* colors, const HeifLibrary& library,
                    const heif_image_handle* picture, const heif_image* image)
{
    *colors = {};
    const size_t bytes = library.profileBytes(picture);
    if (bytes > 0) {
        if (bytes <= mostProfileBytes && MakeRoom(colors, bytes) &&
            library.getProfile(picture, colors->profile).code != heif_error_Ok)
            colors->bytes = 0;
        return;
    }
    heif_color_profile_nclx* nclx = nullptr;
    const bool told = library.getCodePoints(picture, &nclx).code == heif_error_Ok && nclx;
    if (told || (library.getCodedPoints(image, &nclx).code == heif_error_Ok && nclx)) {
        MakeProfile(colors, *nclx);
        library.freeCodePoints(nclx);
    }
}

void FreeHeifColors(HeifColors* colors)
{
    free(colors->profile);
    *colors = {};
}
