#include "standard-plugins/common/pdf/PageGeometry.h"

namespace
{

constexpr uint64_t inch = 7200;
constexpr uint64_t shortestPageSide = 3 * 100;
constexpr uint64_t longestPageSide = 14400 * 100;

struct Size {
    uint64_t width;
    uint64_t height;
};

// Portrait, in the order of PaperKind: 210 x 297, 148 x 210 and 297 x 420 millimetres, 8.5 x 11 and
// 8.5 x 14 inches.
const Size papers[] = {
    {59528, 84189}, {41953, 59528}, {84189, 119055}, {61200, 79200}, {61200, 100800},
};

uint64_t Divide(uint64_t value, uint64_t by)
{
    return (2 * value + by) / (2 * by);
}

uint64_t AtLeastOne(uint64_t value)
{
    return value > 0 ? value : 1;
}

Size FitInto(const Size& room, uint64_t width, uint64_t height)
{
    if (width * room.height >= height * room.width)
        return {room.width, AtLeastOne(Divide(room.width * height, width))};
    return {AtLeastOne(Divide(room.height * width, height)), room.height};
}

bool IsWithin(const Size& size, const Size& room)
{
    return size.width <= room.width && size.height <= room.height;
}

Size PageOf(const PageSettings& settings, uint32_t width, uint32_t height)
{
    const Size upright = papers[settings.paper];
    const bool lies = settings.orientation == OrientationLandscape ||
                      (settings.orientation == OrientationAutomatic && width > height);
    return lies ? Size{upright.height, upright.width} : upright;
}

uint64_t PageSideAround(uint64_t side, uint64_t margin)
{
    const uint64_t page = side + 2 * margin;
    return page > shortestPageSide ? page : shortestPageSide;
}

PagePlace Centred(const Size& page, const Size& picture)
{
    return {static_cast<uint32_t>(page.width),
            static_cast<uint32_t>(page.height),
            static_cast<uint32_t>((page.width - picture.width) / 2),
            static_cast<uint32_t>((page.height - picture.height) / 2),
            static_cast<uint32_t>(picture.width),
            static_cast<uint32_t>(picture.height)};
}

} // namespace

PagePlace PlacePicture(const PageSettings& settings, uint32_t width, uint32_t height)
{
    const uint64_t margin = Divide(uint64_t{settings.margin} * inch * 10, 254);
    const bool ofPicture = settings.paper == PaperOfPicture;
    const Size largest = {longestPageSide, longestPageSide};
    const Size page = ofPicture ? largest : PageOf(settings, width, height);
    const Size room = {page.width - 2 * margin, page.height - 2 * margin};
    Size picture = {AtLeastOne(Divide(width * inch, settings.resolution)),
                    AtLeastOne(Divide(height * inch, settings.resolution))};
    if (!IsWithin(picture, room) || (settings.fitsPage && !ofPicture))
        picture = FitInto(room, width, height);
    if (!ofPicture)
        return Centred(page, picture);
    const Size around = {PageSideAround(picture.width, margin),
                         PageSideAround(picture.height, margin)};
    return Centred(around, picture);
}
