#include "standard-plugins/png-input/PngDecoder.h"

#include "standard-plugins/common/LineWriter.h"
#include "standard-plugins/common/PluginResult.h"
#include "standard-plugins/common/ProgressThrottle.h"
#include "standard-plugins/common/StreamReader.h"
#include "standard-plugins/png-input/PngColors.h"
#include "standard-plugins/png-input/PngPixels.h"
#include "standard-plugins/png-input/PngSettings.h"

#include <png.h>

#include <setjmp.h>
#include <stdlib.h>

namespace
{

// A colour profile is the largest that is kept; 4 MB are enough for those with tables.
constexpr png_alloc_size_t mostChunkBytes = 4u << 20;
const png_byte profileChunk[] = {'i', 'C', 'C', 'P', 0};

// One decode. The library leaves its calls by a jump when the data are broken, so everything lives
// here and not in local objects, and is given back in one place behind the jump's target.
struct PngDecode {
    jmp_buf failure;
    int32_t result;
    png_structp png;
    png_infop info;
    StreamReader reader;
    LineWriter lines;
    ProgressThrottle progress;
    PngPixels pixels;
    ColorConversion colors;
    uint32_t width;
    uint32_t height;
    bool interlaced;
    uint8_t* row;
    uint32_t rowsDone;
    // Rows are being read: a warning of this time means that the picture's data are not sound.
    bool readingRows;
    bool damaged;
};

[[noreturn]] void Leave(PngDecode* decode, int32_t result)
{
    decode->result = result;
    longjmp(decode->failure, 1);
}

void OnError(png_structp png, png_const_charp)
{
    Leave(static_cast<PngDecode*>(png_get_error_ptr(png)), PluginFailed);
}

void OnWarning(png_structp png, png_const_charp)
{
    auto* decode = static_cast<PngDecode*>(png_get_error_ptr(png));
    // The library only warns where the inflated data fail their checksum or do not end with the
    // last row. The rows stay, but such a file is not sound.
    if (decode->readingRows)
        decode->damaged = true;
}

void OnRead(png_structp png, png_bytep bytes, size_t count)
{
    auto* decode = static_cast<PngDecode*>(png_get_io_ptr(png));
    if (!ReadExactly(&decode->reader, bytes, count))
        Leave(decode, PluginFailed);
}

void StartLibrary(PngDecode* decode)
{
    decode->png = png_create_read_struct(PNG_LIBPNG_VER_STRING, decode, OnError, OnWarning);
    if (!decode->png)
        Leave(decode, PluginNoMemory);
    decode->info = png_create_info_struct(decode->png);
    if (!decode->info)
        Leave(decode, PluginNoMemory);
    png_set_read_fn(decode->png, decode, OnRead);
    png_set_user_limits(decode->png, largestPictureSide, largestPictureSide);
    png_set_chunk_cache_max(decode->png, 128);
    png_set_chunk_malloc_max(decode->png, mostChunkBytes);
    // The library inflates only whole pieces of this size: what a file that breaks off holds beyond
    // the last is lost.
    png_set_compression_buffer_size(decode->png, 512);
    png_set_crc_action(decode->png, PNG_CRC_ERROR_QUIT, PNG_CRC_WARN_DISCARD);
    // -1 stands for every chunk but those that make the pixels.
    png_set_keep_unknown_chunks(decode->png, PNG_HANDLE_CHUNK_NEVER, nullptr, -1);
    png_set_keep_unknown_chunks(decode->png, PNG_HANDLE_CHUNK_AS_DEFAULT, profileChunk, 1);
}

void ReadHeader(PngDecode* decode)
{
    png_read_info(decode->png, decode->info);
    decode->width = png_get_image_width(decode->png, decode->info);
    decode->height = png_get_image_height(decode->png, decode->info);
    decode->interlaced = png_get_interlace_type(decode->png, decode->info) != PNG_INTERLACE_NONE;
    if (!IsPictureSize(decode->width, decode->height))
        Leave(decode, PluginFailed);
}

void SetEntry(PngPixels& pixels, uint32_t index, uint8_t red, uint8_t green, uint8_t blue)
{
    pixels.table[index][0] = blue;
    pixels.table[index][1] = green;
    pixels.table[index][2] = red;
}

// The colours of a palette as the profile makes them; gives how many there are.
uint32_t CopyPalette(PngDecode* decode, uint8_t (*copy)[3])
{
    png_colorp colors = nullptr;
    int count = 0;
    (void)png_get_PLTE(decode->png, decode->info, &colors, &count);
    for (int i = 0; i < count; ++i) {
        copy[i][0] = colors[i].red;
        copy[i][1] = colors[i].green;
        copy[i][2] = colors[i].blue;
    }
    const auto entries = static_cast<uint32_t>(count);
    ConvertPngTable(decode->colors, copy, entries);
    return entries;
}

void PreparePalette(PngDecode* decode)
{
    png_bytep alphas = nullptr;
    int alphaCount = 0;
    (void)png_get_tRNS(decode->png, decode->info, &alphas, &alphaCount, nullptr);
    PngPixels& pixels = decode->pixels;
    const Background& ground = pixels.ground;
    uint8_t colors[256][3];
    pixels.layout = PngLayout::Table;
    pixels.tableCount = CopyPalette(decode, colors);
    for (uint32_t i = 0; i < pixels.tableCount; ++i) {
        const uint32_t alpha = alphas && i < static_cast<uint32_t>(alphaCount) ? alphas[i] : 255;
        SetEntry(pixels, i, OverGround8(colors[i][0], alpha, ground.red),
                 OverGround8(colors[i][1], alpha, ground.green),
                 OverGround8(colors[i][2], alpha, ground.blue));
    }
}

void PrepareGreyTable(PngDecode* decode, uint32_t depth)
{
    PngPixels& pixels = decode->pixels;
    const uint32_t highest = (1u << depth) - 1;
    uint8_t greys[256];
    pixels.layout = PngLayout::Table;
    pixels.tableCount = highest + 1;
    for (uint32_t level = 0; level <= highest; ++level)
        greys[level] = static_cast<uint8_t>(level * (255 / highest));
    ConvertPngGreys(decode->colors, greys, pixels.tableCount);
    for (uint32_t level = 0; level <= highest; ++level)
        if (pixels.hasKey && level == pixels.key[0])
            SetEntry(pixels, level, pixels.ground.red, pixels.ground.green, pixels.ground.blue);
        else
            SetEntry(pixels, level, greys[level], greys[level], greys[level]);
}

// The transparent colour of a file without alpha. Only the low bits of its words count where the
// samples have fewer than 16.
void PrepareKey(PngDecode* decode, bool isGrey, uint32_t depth)
{
    png_color_16p color = nullptr;
    if (!png_get_tRNS(decode->png, decode->info, nullptr, nullptr, &color) || !color)
        return;
    const auto mask = static_cast<uint16_t>((1u << depth) - 1);
    PngPixels& pixels = decode->pixels;
    pixels.hasKey = true;
    pixels.key[0] = (isGrey ? color->gray : color->red) & mask;
    pixels.key[1] = color->green & mask;
    pixels.key[2] = color->blue & mask;
}

// A profile moves the colours that a key is compared with, so that alpha stands for it then. A
// table looks at the file's own values.
bool KeyAsAlpha(PngDecode* decode)
{
    if (!decode->pixels.hasKey || !ConvertsColors(decode->colors))
        return false;
    png_set_tRNS_to_alpha(decode->png);
    decode->pixels.hasKey = false;
    return true;
}

PngLayout GreyLayout(PngDecode* decode)
{
    return KeyAsAlpha(decode) ? PngLayout::GreyAlpha16 : PngLayout::Grey16;
}

PngLayout ColorLayoutOf(PngDecode* decode, bool wide)
{
    if (KeyAsAlpha(decode))
        return wide ? PngLayout::Rgba16 : PngLayout::Rgba8;
    return wide ? PngLayout::Rgb16 : PngLayout::Rgb8;
}

void PreparePixels(PngDecode* decode)
{
    const uint32_t depth = png_get_bit_depth(decode->png, decode->info);
    const bool wide = depth == 16;
    OpenPngColors(&decode->colors, decode->png, decode->info);
    switch (png_get_color_type(decode->png, decode->info)) {
    case PNG_COLOR_TYPE_PALETTE:
        PreparePalette(decode);
        break;
    case PNG_COLOR_TYPE_GRAY:
        PrepareKey(decode, true, depth);
        if (wide)
            decode->pixels.layout = GreyLayout(decode);
        else
            PrepareGreyTable(decode, depth);
        break;
    case PNG_COLOR_TYPE_RGB:
        PrepareKey(decode, false, depth);
        decode->pixels.layout = ColorLayoutOf(decode, wide);
        break;
    case PNG_COLOR_TYPE_GRAY_ALPHA:
        decode->pixels.layout = wide ? PngLayout::GreyAlpha16 : PngLayout::GreyAlpha8;
        break;
    case PNG_COLOR_TYPE_RGB_ALPHA:
        decode->pixels.layout = wide ? PngLayout::Rgba16 : PngLayout::Rgba8;
        break;
    default:
        Leave(decode, PluginFailed);
    }
    png_set_packing(decode->png);
    png_read_update_info(decode->png, decode->info);
}

void MakeRow(PngDecode* decode)
{
    const size_t bytes = png_get_rowbytes(decode->png, decode->info);
    if (bytes != decode->width * BytesPerPixel(decode->pixels.layout))
        Leave(decode, PluginFailed);
    decode->row = static_cast<uint8_t*>(malloc(bytes));
    if (!decode->row)
        Leave(decode, PluginNoMemory);
}

// Where the pixels of a pass lie: every stepX-th column from startX, every stepY-th line.
struct PassGrid {
    uint32_t startX;
    uint32_t startY;
    uint32_t stepX;
    uint32_t stepY;
    uint32_t columns;
    uint32_t rows;
};

PassGrid WholePicture(const PngDecode* decode)
{
    return {0, 0, 1, 1, decode->width, decode->height};
}

PassGrid GridOfPass(const PngDecode* decode, int pass)
{
    const auto width = decode->width;
    const auto height = decode->height;
    return {static_cast<uint32_t>(PNG_PASS_START_COL(pass)),
            static_cast<uint32_t>(PNG_PASS_START_ROW(pass)),
            static_cast<uint32_t>(PNG_PASS_COL_OFFSET(pass)),
            static_cast<uint32_t>(PNG_PASS_ROW_OFFSET(pass)),
            static_cast<uint32_t>(PNG_PASS_COLS(width, pass)),
            static_cast<uint32_t>(PNG_PASS_ROWS(height, pass))};
}

void ReadPass(PngDecode* decode, const PassGrid& grid)
{
    if (grid.columns == 0)
        return;
    for (uint32_t i = 0; i < grid.rows; ++i) {
        // The row comes first: the picture is allocated only for a file that brings one.
        png_read_row(decode->png, decode->row, nullptr);
        ConvertPngRow(decode->colors, decode->pixels.layout, decode->row, grid.columns);
        const uint32_t y = grid.startY + i * grid.stepY;
        uint8_t* line = LockLine(&decode->lines, y);
        if (!line)
            Leave(decode, decode->lines.result);
        ConvertPixels(&decode->pixels, decode->row, grid.columns, line + size_t{3} * grid.startX,
                      size_t{3} * grid.stepX);
        if (!UnlockLine(&decode->lines, y))
            Leave(decode, decode->lines.result);
        if (!ReportProgress(&decode->progress, ++decode->rowsDone))
            Leave(decode, PluginFailed);
    }
}

uint32_t CountRows(const PngDecode* decode)
{
    if (!decode->interlaced)
        return decode->height;
    uint32_t rows = 0;
    for (int pass = 0; pass < PNG_INTERLACE_ADAM7_PASSES; ++pass) {
        const PassGrid grid = GridOfPass(decode, pass);
        rows += grid.columns ? grid.rows : 0;
    }
    return rows;
}

// Without the library's own interlace handling png_read_row gives the rows of each pass as they are
// in the file and passes over empty passes.
void ReadRows(PngDecode* decode)
{
    decode->readingRows = true;
    if (decode->interlaced) {
        for (int pass = 0; pass < PNG_INTERLACE_ADAM7_PASSES; ++pass)
            ReadPass(decode, GridOfPass(decode, pass));
    } else {
        ReadPass(decode, WholePicture(decode));
    }
    decode->readingRows = false;
}

void ReadAll(PngDecode* decode, TavrixProgressCallback progress)
{
    StartLibrary(decode);
    ReadHeader(decode);
    PreparePixels(decode);
    MakeRow(decode);
    SetLinesSize(&decode->lines, decode->width, decode->height);
    StartProgress(&decode->progress, progress, CountRows(decode));
    ReadRows(decode);
    // To the end chunk: a file that breaks off behind its last row is still a broken one.
    png_read_end(decode->png, nullptr);
    const bool sound = !decode->damaged && !decode->pixels.beyondTable;
    decode->result = sound ? PluginDone : PluginFailed;
}

void CloseDecode(PngDecode* decode)
{
    if (decode->png)
        png_destroy_read_struct(&decode->png, &decode->info, nullptr);
    CloseColorConversion(&decode->colors);
    free(decode->row);
    CloseReader(&decode->reader);
}

int32_t RunDecode(PngDecode* decode, const ReadOrder& order)
{
    decode->result = OpenReader(&decode->reader, order.stream);
    if (decode->result < 0)
        return decode->result;
    decode->result = OpenLines(&decode->lines, order.rasters, order.image);
    if (decode->result < 0)
        return decode->result;
    decode->pixels.ground = ReadBackground(pngBackground, order.get);
    if (setjmp(decode->failure) == 0)
        ReadAll(decode, order.progress);
    return decode->result;
}

int32_t RunHeader(PngDecode* decode, PluginStreamRecord* stream)
{
    decode->result = OpenReader(&decode->reader, stream);
    if (decode->result < 0)
        return decode->result;
    if (setjmp(decode->failure) == 0) {
        StartLibrary(decode);
        ReadHeader(decode);
        decode->result = PluginDone;
    }
    return decode->result;
}

} // namespace

int32_t ReadPngPicture(const ReadOrder& order)
{
    auto* decode = static_cast<PngDecode*>(calloc(1, sizeof(PngDecode)));
    if (!decode)
        return PluginNoMemory;
    const int32_t result = RunDecode(decode, order);
    CloseDecode(decode);
    free(decode);
    return result;
}

int32_t ReadPngSize(PluginStreamRecord* stream, uint32_t* width, uint32_t* height)
{
    auto* decode = static_cast<PngDecode*>(calloc(1, sizeof(PngDecode)));
    if (!decode)
        return PluginNoMemory;
    const int32_t result = RunHeader(decode, stream);
    *width = decode->width;
    *height = decode->height;
    CloseDecode(decode);
    free(decode);
    return result;
}
