#include "standard-plugins/png-output/PngEncoder.h"

#include "standard-plugins/common/device/OutputFile.h"
#include "standard-plugins/common/PictureReader.h"
#include "standard-plugins/common/PluginResult.h"
#include "standard-plugins/common/ProgressThrottle.h"

#include <png.h>

#include <setjmp.h>
#include <stdlib.h>

namespace
{

// One encode. The library leaves its calls by a jump when something fails, so everything lives here
// and not in local objects, and is given back in one place behind the jump's target.
struct PngEncode {
    jmp_buf failure;
    WriteProblem problem;
    png_structp png;
    png_infop info;
    PngChoice choice;
    PictureReader picture;
    OutputFile output;
    ProgressThrottle progress;
    uint8_t* row;
    uint32_t rowsDone;
};

[[noreturn]] void Leave(PngEncode* encode, WriteProblem problem)
{
    encode->problem = problem;
    longjmp(encode->failure, 1);
}

void OnError(png_structp png, png_const_charp)
{
    auto* encode = static_cast<PngEncode*>(png_get_error_ptr(png));
    // Memory that failed has been noted on the way here.
    Leave(encode, encode->problem != WriteProblem::None ? encode->problem : WriteProblem::Codec);
}

void OnWarning(png_structp, png_const_charp) {}

png_voidp OnAllocate(png_structp png, png_alloc_size_t bytes)
{
    void* block = malloc(bytes);
    auto* encode = static_cast<PngEncode*>(png_get_mem_ptr(png));
    if (!block && encode)
        encode->problem = WriteProblem::Memory;
    return block;
}

void OnFree(png_structp, png_voidp block)
{
    free(block);
}

void OnWrite(png_structp png, png_bytep bytes, size_t count)
{
    auto* encode = static_cast<PngEncode*>(png_get_io_ptr(png));
    if (!WriteOutput(&encode->output, bytes, count))
        Leave(encode, encode->output.problem);
}

void OnFlush(png_structp) {}

void StartLibrary(PngEncode* encode)
{
    encode->png = png_create_write_struct_2(PNG_LIBPNG_VER_STRING, encode, OnError, OnWarning,
                                            encode, OnAllocate, OnFree);
    if (!encode->png)
        Leave(encode, WriteProblem::Memory);
    encode->info = png_create_info_struct(encode->png);
    if (!encode->info)
        Leave(encode, WriteProblem::Memory);
    png_set_write_fn(encode->png, encode, OnWrite, OnFlush);
}

void WriteHeader(PngEncode* encode)
{
    const PictureReader& picture = encode->picture;
    png_set_IHDR(encode->png, encode->info, picture.width, picture.height, 8, PNG_COLOR_TYPE_RGB,
                 encode->choice.interlaced ? PNG_INTERLACE_ADAM7 : PNG_INTERLACE_NONE,
                 PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
    png_set_compression_level(encode->png, static_cast<int>(encode->choice.compression));
    // Filters only serve the compressor.
    if (encode->choice.compression == 0)
        png_set_filter(encode->png, PNG_FILTER_TYPE_BASE, PNG_FILTER_NONE);
    png_write_info(encode->png, encode->info);
}

bool IsInPass(uint32_t y, int pass, bool interlaced)
{
    return !interlaced || PNG_ROW_IN_INTERLACE_PASS(y, pass);
}

uint32_t CountRows(uint32_t height, int passes)
{
    if (passes == 1)
        return height;
    uint32_t rows = 0;
    for (int pass = 0; pass < passes; ++pass)
        rows += PNG_PASS_ROWS(height, pass);
    return rows;
}

void WriteRow(PngEncode* encode, uint32_t y)
{
    if (!ReadRow(&encode->picture, y, encode->row))
        Leave(encode, encode->picture.problem);
    png_write_row(encode->png, encode->row);
    if (!ReportProgress(&encode->progress, ++encode->rowsDone))
        Leave(encode, WriteProblem::Stopped);
}

void WriteRows(PngEncode* encode, const WriteOrder& order)
{
    const int passes = png_set_interlace_handling(encode->png);
    StartProgress(&encode->progress, order.progress, CountRows(encode->picture.height, passes));
    for (int pass = 0; pass < passes; ++pass)
        for (uint32_t y = 0; y < encode->picture.height; ++y) {
            if (IsInPass(y, pass, encode->choice.interlaced))
                WriteRow(encode, y);
            else
                // The library counts the rows that a pass leaves out and does not look at them.
                png_write_row(encode->png, encode->row);
        }
}

void WriteAll(PngEncode* encode, const WriteOrder& order)
{
    StartLibrary(encode);
    WriteHeader(encode);
    WriteRows(encode, order);
    png_write_end(encode->png, nullptr);
    if (!FinishOutput(&encode->output))
        Leave(encode, encode->output.problem);
}

// Everything that can fail before the library is there. Nothing is made on the disk for a picture
// that cannot be written.
WriteProblem Open(PngEncode* encode, const WriteOrder& order)
{
    if (!OpenPicture(&encode->picture, order.rasters, order.palettes, order.image))
        return encode->picture.problem;
    encode->row = static_cast<uint8_t*>(malloc(RowBytes(encode->picture)));
    if (!encode->row)
        return WriteProblem::Memory;
    return OpenOutput(&encode->output, order.path, order.stream) ? WriteProblem::None
                                                                 : encode->output.problem;
}

WriteProblem Run(PngEncode* encode, const WriteOrder& order)
{
    encode->problem = Open(encode, order);
    if (encode->problem == WriteProblem::None && setjmp(encode->failure) == 0)
        WriteAll(encode, order);
    return encode->problem;
}

void Close(PngEncode* encode)
{
    if (encode->png)
        png_destroy_write_struct(&encode->png, &encode->info);
    free(encode->row);
    CloseOutput(&encode->output);
}

} // namespace

WriteProblem WritePngPicture(const WriteOrder& order, const PngChoice& choice)
{
    auto* encode = static_cast<PngEncode*>(calloc(1, sizeof(PngEncode)));
    if (!encode)
        return WriteProblem::Memory;
    encode->choice = choice;
    const WriteProblem problem = Run(encode, order);
    Close(encode);
    free(encode);
    return problem;
}
