#include "standard-plugins/avif-input/AvifRows.h"

#include "standard-plugins/common/frames/CodePointProfile.h"
#include "standard-plugins/common/PluginResult.h"

#include <stdlib.h>

namespace
{

constexpr uint32_t rowsAtOnce = 64;
// Even, as colour samples of half height want it.
constexpr uint32_t rowsBeside = 2;

// The profile of a picture that has code points only; 0 where they say nothing.
size_t MakeProfile(const AvifRows& rows, uint8_t* profile)
{
    const avifImage& frame = *rows.frame;
    const bool known = frame.colorPrimaries != AVIF_COLOR_PRIMARIES_UNKNOWN &&
                       frame.colorPrimaries != AVIF_COLOR_PRIMARIES_UNSPECIFIED;
    const bool plain = frame.transferCharacteristics == AVIF_TRANSFER_CHARACTERISTICS_UNKNOWN ||
                       frame.transferCharacteristics == AVIF_TRANSFER_CHARACTERISTICS_UNSPECIFIED;
    ColorCodePoints points = {};
    const avifColorPrimaries primaries =
        known ? frame.colorPrimaries : avifColorPrimaries{AVIF_COLOR_PRIMARIES_BT709};
    rows.library->findPrimaries(primaries, points.chromaticities);
    points.transfer = frame.transferCharacteristics;
    if (plain)
        points.transfer = AVIF_TRANSFER_CHARACTERISTICS_SRGB;
    return MakeCodePointProfile(points, profile);
}

bool OpenPixels(AvifRows* rows, const Background& ground)
{
    const avifImage& frame = *rows->frame;
    FrameForm form = {};
    form.layout = frame.alphaPlane ? ColorLayout::Rgba8 : ColorLayout::Rgb8;
    form.mostPixels = frame.width;
    form.profile = frame.icc.data;
    form.profileBytes = frame.icc.size;
    uint8_t made[mostCodePointProfileBytes];
    if (frame.icc.size == 0) {
        form.profile = made;
        form.profileBytes = MakeProfile(*rows, made);
    }
    return OpenFramePixels(&rows->pixels, form, ground);
}

bool MakeSlice(AvifRows* rows)
{
    avifRGBImage& slice = rows->slice;
    rows->library->setRgbDefaults(&slice, rows->frame);
    slice.depth = 8;
    slice.format = rows->frame->alphaPlane ? AVIF_RGB_FORMAT_RGBA : AVIF_RGB_FORMAT_RGB;
    slice.rowBytes = rows->frame->width * (rows->frame->alphaPlane ? 4 : 3);
    slice.pixels =
        static_cast<uint8_t*>(malloc(size_t{slice.rowBytes} * (rowsAtOnce + 2 * rowsBeside)));
    rows->row = static_cast<uint8_t*>(malloc(size_t{3} * rows->frame->width));
    rows->view = rows->library->createImage();
    return slice.pixels && rows->row && rows->view;
}

// Rows `first` to `end` of the frame, converted; null where the library cannot.
const uint8_t* ConvertSlice(AvifRows* rows, uint32_t first, uint32_t end)
{
    const avifCropRect part = {0, first, rows->frame->width, end - first};
    if (rows->library->setView(rows->view, rows->frame, &part) != AVIF_RESULT_OK)
        return nullptr;
    rows->slice.height = part.height;
    if (rows->library->convert(rows->view, &rows->slice) != AVIF_RESULT_OK)
        return nullptr;
    return rows->slice.pixels;
}

int32_t PutRow(AvifRows* rows, uint32_t y, const uint8_t* source)
{
    const avifCropRect& part = rows->geometry.part;
    const uint32_t samples = rows->frame->alphaPlane ? 4 : 3;
    StoreFramePixels(&rows->pixels, source + size_t{samples} * part.x, part.width, rows->row);
    return PutOrientedRow(&rows->oriented, y - part.y, rows->row) ? PluginDone
                                                                  : rows->oriented.lines->result;
}

// Rows `first` to `end` of the frame, those of the picture among them.
int32_t PutRun(AvifRows* rows, uint32_t first, uint32_t end, uint32_t count,
               FrameProgress* progress)
{
    const uint32_t above = first >= rowsBeside ? first - rowsBeside : 0;
    const uint32_t below = count - end >= rowsBeside ? end + rowsBeside : count;
    const uint8_t* slice = ConvertSlice(rows, above, below);
    if (!slice)
        return PluginFailed;
    const avifCropRect& part = rows->geometry.part;
    for (uint32_t y = first; y < end; ++y) {
        if (y < part.y || y - part.y >= part.height)
            continue;
        const int32_t result = PutRow(rows, y, slice + size_t{y - above} * rows->slice.rowBytes);
        if (result < 0)
            return result;
        if (!ReportFramePart(progress, y - part.y + 1, part.height))
            return PluginStopped;
    }
    return PluginDone;
}

} // namespace

int32_t OpenAvifRows(AvifRows* rows, const AvifLibrary& library, const avifImage& frame,
                     const Background& ground, LineWriter* lines)
{
    *rows = {};
    rows->library = &library;
    rows->frame = &frame;
    if (!FindAvifGeometry(library, frame, &rows->geometry))
        return PluginFailed;
    const avifCropRect& part = rows->geometry.part;
    if (!OpenPixels(rows, ground) || !MakeSlice(rows) ||
        !OpenOrientedLines(&rows->oriented, lines, part.width, part.height,
                           rows->geometry.orientation))
        return PluginNoMemory;
    return PluginDone;
}

int32_t PutAvifRows(AvifRows* rows, uint32_t count, FrameProgress* progress)
{
    const avifCropRect& part = rows->geometry.part;
    const uint32_t end = count < part.y + part.height ? count : part.y + part.height;
    for (uint32_t first = part.y / rowsAtOnce * rowsAtOnce; first < end; first += rowsAtOnce) {
        const uint32_t run = end - first < rowsAtOnce ? end - first : rowsAtOnce;
        const int32_t result = PutRun(rows, first, first + run, count, progress);
        if (result < 0)
            return result;
    }
    return FinishOrientedLines(&rows->oriented) ? PluginDone : rows->oriented.lines->result;
}

void CloseAvifRows(AvifRows* rows)
{
    CloseOrientedLines(&rows->oriented);
    CloseFramePixels(&rows->pixels);
    if (rows->view)
        rows->library->destroyImage(rows->view);
    free(rows->slice.pixels);
    free(rows->row);
    *rows = {};
}
