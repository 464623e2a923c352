#include "standard-plugins/avif-input/AvifGeometry.h"

#include "standard-plugins/common/LineWriter.h"

namespace
{

// By quarter turns against the clock, each without a mirror, top and bottom exchanged, left and
// right exchanged.
constexpr uint8_t orientations[4][3] = {{1, 4, 2}, {8, 5, 7}, {3, 2, 4}, {6, 7, 5}};

uint32_t FindTurn(const avifImage& image)
{
    const uint32_t turns = image.transformFlags & AVIF_TRANSFORM_IROT ? image.irot.angle & 3u : 0;
    const uint32_t mirror =
        image.transformFlags & AVIF_TRANSFORM_IMIR ? 1 + (image.imir.mode & 1u) : 0;
    return orientations[turns][mirror];
}

bool Lies(const avifCropRect& part, const avifImage& image)
{
    return part.width >= 1 && part.height >= 1 && part.x < image.width && part.y < image.height &&
           part.width <= image.width - part.x && part.height <= image.height - part.y;
}

} // namespace

bool FindAvifGeometry(const AvifLibrary& library, const avifImage& image, AvifGeometry* geometry)
{
    geometry->part = {0, 0, image.width, image.height};
    geometry->orientation = FindTurn(image);
    if (image.transformFlags & AVIF_TRANSFORM_CLAP) {
        avifDiagnostics ignored;
        avifCropRect part;
        if (library.findCrop(&part, &image.clap, image.width, image.height, image.yuvFormat,
                             &ignored) &&
            Lies(part, image))
            geometry->part = part;
    }
    return IsPictureSize(image.width, image.height);
}
