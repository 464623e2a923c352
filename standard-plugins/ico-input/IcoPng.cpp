#include "standard-plugins/ico-input/IcoPng.h"

#include "standard-plugins/common/PluginResult.h"
#include "standard-plugins/common/rows/device/TemporaryStream.h"

#include <png.h>

#include <setjmp.h>
#include <stdlib.h>

namespace
{

constexpr uint64_t toTheEnd = ~uint64_t{0};

// The library leaves its calls by a jump, so that everything lives here.
struct IcoPng {
    jmp_buf failure;
    RowReading* rows;
    Background ground;
    TemporaryStream part;
    png_structp png;
    png_infop info;
    /// Bytes of a pixel of the library's rows: three or four samples of one or two bytes.
    uint32_t samples;
    bool wide;
    uint8_t* source;
    uint32_t rowsDone;
};

[[noreturn]] void Leave(IcoPng* icon, int32_t result)
{
    (void)FailReading(icon->rows, result);
    longjmp(icon->failure, 1);
}

void OnError(png_structp png, png_const_charp)
{
    Leave(static_cast<IcoPng*>(png_get_error_ptr(png)), PluginFailed);
}

// While rows are read the library only warns of data that are not sound.
void OnWarning(png_structp png, png_const_charp)
{
    auto* icon = static_cast<IcoPng*>(png_get_error_ptr(png));
    if (icon->source)
        icon->rows->damaged = true;
}

void OnRead(png_structp png, png_bytep bytes, size_t count)
{
    auto* icon = static_cast<IcoPng*>(png_get_io_ptr(png));
    if (!ReadBytes(icon->rows, bytes, count))
        Leave(icon, PluginFailed);
}

void StartLibrary(IcoPng* icon)
{
    icon->png = png_create_read_struct(PNG_LIBPNG_VER_STRING, icon, OnError, OnWarning);
    if (!icon->png)
        Leave(icon, PluginNoMemory);
    icon->info = png_create_info_struct(icon->png);
    if (!icon->info)
        Leave(icon, PluginNoMemory);
    png_set_read_fn(icon->png, icon, OnRead);
    png_set_user_limits(icon->png, largestPictureSide, largestPictureSide);
    png_set_chunk_cache_max(icon->png, 128);
    png_set_chunk_malloc_max(icon->png, 8000000);
    // The library inflates only whole pieces of this size: what a file that breaks off holds beyond
    // the last is lost.
    png_set_compression_buffer_size(icon->png, 512);
    png_set_crc_action(icon->png, PNG_CRC_ERROR_QUIT, PNG_CRC_WARN_DISCARD);
    // -1 stands for every chunk but those that make the pixels.
    png_set_keep_unknown_chunks(icon->png, PNG_HANDLE_CHUNK_NEVER, nullptr, -1);
    png_read_info(icon->png, icon->info);
}

// Every colour type as red, green, blue and, where there is any, alpha.
void SetTransformations(IcoPng* icon)
{
    png_set_expand(icon->png);
    png_set_gray_to_rgb(icon->png);
    png_read_update_info(icon->png, icon->info);
    icon->samples = png_get_channels(icon->png, icon->info);
    icon->wide = png_get_bit_depth(icon->png, icon->info) == 16;
    if (icon->samples != 3 && icon->samples != 4)
        Leave(icon, PluginFailed);
    icon->source = static_cast<uint8_t*>(malloc(png_get_rowbytes(icon->png, icon->info)));
    if (!icon->source)
        Leave(icon, PluginNoMemory);
}

uint32_t SampleAt(const IcoPng& icon, const uint8_t* pixel, uint32_t number)
{
    return icon.wide ? static_cast<uint32_t>(pixel[2 * number]) << 8 | pixel[2 * number + 1]
                     : pixel[number];
}

void StorePixel(const IcoPng& icon, const uint8_t* pixel, uint8_t* bgr)
{
    const uint32_t highest = icon.wide ? 65535 : 255;
    const uint32_t alpha = icon.samples == 4 ? SampleAt(icon, pixel, 3) : highest;
    const uint8_t grounds[3] = {icon.ground.red, icon.ground.green, icon.ground.blue};
    for (uint32_t i = 0; i < 3; ++i) {
        const uint32_t sample = SampleAt(icon, pixel, i);
        bgr[2 - i] = icon.wide ? OverGround16(sample, alpha, grounds[i])
                               : OverGround8(sample, alpha, grounds[i]);
    }
}

// Where the pixels of a pass lie.
struct PassGrid {
    uint32_t startX;
    uint32_t startY;
    uint32_t stepX;
    uint32_t stepY;
    uint32_t columns;
    uint32_t rows;
};

PassGrid GridOfPass(const RowReading& rows, int pass)
{
    return {static_cast<uint32_t>(PNG_PASS_START_COL(pass)),
            static_cast<uint32_t>(PNG_PASS_START_ROW(pass)),
            static_cast<uint32_t>(PNG_PASS_COL_OFFSET(pass)),
            static_cast<uint32_t>(PNG_PASS_ROW_OFFSET(pass)),
            static_cast<uint32_t>(PNG_PASS_COLS(rows.width, pass)),
            static_cast<uint32_t>(PNG_PASS_ROWS(rows.height, pass))};
}

void StoreRow(IcoPng* icon, const PassGrid& grid, uint32_t y)
{
    LineWriter* lines = &icon->rows->lines;
    uint8_t* line = LockLine(lines, y);
    if (!line)
        Leave(icon, lines->result);
    const size_t step = size_t{icon->samples} * (icon->wide ? 2 : 1);
    for (uint32_t i = 0; i < grid.columns; ++i)
        StorePixel(*icon, icon->source + step * i,
                   line + size_t{3} * (grid.startX + i * grid.stepX));
    if (!UnlockLine(lines, y))
        Leave(icon, lines->result);
}

void ReadPass(IcoPng* icon, const PassGrid& grid)
{
    if (grid.columns == 0)
        return;
    for (uint32_t i = 0; i < grid.rows; ++i) {
        png_read_row(icon->png, icon->source, nullptr);
        StoreRow(icon, grid, grid.startY + i * grid.stepY);
        if (!ReportProgress(&icon->rows->progress, ++icon->rowsDone))
            Leave(icon, PluginFailed);
    }
}

uint32_t CountRows(const RowReading& rows, bool interlaced)
{
    if (!interlaced)
        return rows.height;
    uint32_t count = 0;
    for (int pass = 0; pass < PNG_INTERLACE_ADAM7_PASSES; ++pass) {
        const PassGrid grid = GridOfPass(rows, pass);
        count += grid.columns ? grid.rows : 0;
    }
    return count;
}

void ReadAll(IcoPng* icon)
{
    RowReading* rows = icon->rows;
    StartLibrary(icon);
    if (!StartRows(rows, png_get_image_width(icon->png, icon->info),
                   png_get_image_height(icon->png, icon->info), false))
        Leave(icon, rows->result);
    SetTransformations(icon);
    const bool interlaced = png_get_interlace_type(icon->png, icon->info) != PNG_INTERLACE_NONE;
    StartProgress(&rows->progress, rows->callback, CountRows(*rows, interlaced));
    if (interlaced)
        for (int pass = 0; pass < PNG_INTERLACE_ADAM7_PASSES; ++pass)
            ReadPass(icon, GridOfPass(*rows, pass));
    else
        ReadPass(icon, {0, 0, 1, 1, rows->width, rows->height});
    png_read_end(icon->png, nullptr);
}

bool RunLibrary(IcoPng* icon)
{
    if (setjmp(icon->failure) != 0)
        return false;
    ReadAll(icon);
    return true;
}

} // namespace

bool ReadIcoPng(RowReading* rows, TemporaryFile* file, const IcoPicture& picture,
                const Background& ground)
{
    auto* icon = static_cast<IcoPng*>(calloc(1, sizeof(IcoPng)));
    if (!icon)
        return FailReading(rows, PluginNoMemory);
    icon->rows = rows;
    icon->ground = ground;
    OpenTemporaryStream(&icon->part, file, picture.offset, toTheEnd);
    const bool read = SwitchStream(rows, &icon->part.record) && RunLibrary(icon);
    if (icon->png)
        png_destroy_read_struct(&icon->png, &icon->info, nullptr);
    // What the reading reads from lies in the record that goes now.
    CloseReader(&rows->reader);
    free(icon->source);
    free(icon);
    return read;
}
