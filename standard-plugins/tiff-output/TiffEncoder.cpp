#include "standard-plugins/tiff-output/TiffEncoder.h"

#include "standard-plugins/common/device/OutputFile.h"
#include "standard-plugins/common/PictureReader.h"
#include "standard-plugins/common/ProgressThrottle.h"
#include "standard-plugins/tiff-output/TiffLayout.h"
#include "standard-plugins/tiff-output/TiffLibrary.h"

#include <stdio.h>
#include <stdlib.h>

namespace
{

const BilingualText missingText = {
    PLUGIN_TEXT("The library libtiff, which writes TIFF pictures, is not installed."),
    PLUGIN_TEXT("TIFF 画像の書き込みに必要なライブラリ libtiff がインストールされていません。")};

// Dots an inch, which the format asks for and a picture does not know.
constexpr double resolution = 72;

struct TiffEncode {
    WriteProblem problem;
    TiffLibrary library;
    TIFFOpenOptions* options;
    TIFF* tiff;
    TiffChoice choice;
    PictureReader picture;
    OutputFile output;
    // Where the library's next bytes go.
    uint64_t place;
    ProgressThrottle progress;
    uint8_t* strip;
};

bool Fail(TiffEncode* encode, WriteProblem problem)
{
    if (encode->problem == WriteProblem::None)
        encode->problem = problem;
    return false;
}

// What the library says, unless the output knows better why it said so.
bool Check(TiffEncode* encode, bool succeeded)
{
    if (encode->output.problem != WriteProblem::None)
        return Fail(encode, encode->output.problem);
    return succeeded || Fail(encode, WriteProblem::Codec);
}

int OnMessage(TIFF*, void*, const char*, const char*, va_list)
{
    return 1; // nobody else is told
}

tmsize_t OnRead(thandle_t, void*, tmsize_t)
{
    return -1;
}

// The library begins a directory at an even offset, leaves its place empty, and fills it when it
// has written what the directory's entries name.
bool FillGap(TiffEncode* encode)
{
    constexpr uint8_t zeros[1024] = {};
    OutputFile* output = &encode->output;
    if (encode->place <= output->position)
        return true;
    const uint64_t gap = encode->place - output->position;
    return gap <= sizeof zeros && WriteOutput(output, zeros, static_cast<size_t>(gap));
}

bool Put(TiffEncode* encode, const uint8_t* bytes, size_t count)
{
    OutputFile* output = &encode->output;
    if (!FillGap(encode))
        return false;
    const uint64_t behind = output->position - encode->place;
    const size_t old = behind < count ? static_cast<size_t>(behind) : count;
    return (old == 0 || OverwriteOutput(output, encode->place, bytes, old)) &&
           (old == count || WriteOutput(output, bytes + old, count - old));
}

// A file that was given up gets nothing more, whatever the library still wants to write.
tmsize_t OnWrite(thandle_t handle, void* bytes, tmsize_t count)
{
    auto* encode = static_cast<TiffEncode*>(handle);
    if (encode->problem != WriteProblem::None || count < 0 ||
        !Put(encode, static_cast<const uint8_t*>(bytes), static_cast<size_t>(count)))
        return -1;
    encode->place += static_cast<uint64_t>(count);
    return count;
}

toff_t OnSeek(thandle_t handle, toff_t offset, int origin)
{
    auto* encode = static_cast<TiffEncode*>(handle);
    if (origin == SEEK_CUR)
        offset += encode->place;
    else if (origin == SEEK_END)
        offset += encode->output.position;
    encode->place = offset;
    return offset;
}

int OnClose(thandle_t)
{
    return 0;
}

toff_t OnSize(thandle_t handle)
{
    return static_cast<TiffEncode*>(handle)->output.position;
}

int OnMap(thandle_t, void**, toff_t*)
{
    return 0;
}

void OnUnmap(thandle_t, void*, toff_t) {}

bool Compresses(const TiffEncode& encode)
{
    return encode.choice.compression != TiffCompression::None;
}

bool StartLibrary(TiffEncode* encode)
{
    const TiffLibrary& library = encode->library;
    encode->options = library.allocOptions();
    if (!encode->options)
        return Fail(encode, WriteProblem::Memory);
    library.setErrorHandler(encode->options, OnMessage, nullptr);
    library.setWarningHandler(encode->options, OnMessage, nullptr);
    const PictureReader& picture = encode->picture;
    const bool isBig = NeedsBigTiff(picture.width, picture.height, Compresses(*encode));
    encode->tiff = library.open("TIFF", isBig ? "wl8" : "wl", encode, OnRead, OnWrite, OnSeek,
                                OnClose, OnSize, OnMap, OnUnmap, encode->options);
    return encode->tiff || Check(encode, false);
}

uint16_t SchemeOf(TiffCompression compression)
{
    switch (compression) {
    case TiffCompression::PackBits:
        return COMPRESSION_PACKBITS;
    case TiffCompression::Lzw:
        return COMPRESSION_LZW;
    case TiffCompression::Deflate:
        return COMPRESSION_ADOBE_DEFLATE;
    default:
        return COMPRESSION_NONE;
    }
}

bool SetCompression(TiffEncode* encode)
{
    const TiffCompression compression = encode->choice.compression;
    const auto set = encode->library.setField;
    if (!set(encode->tiff, TIFFTAG_COMPRESSION, SchemeOf(compression)))
        return false;
    const bool predicts = encode->choice.predictor && (compression == TiffCompression::Lzw ||
                                                       compression == TiffCompression::Deflate);
    return !predicts || set(encode->tiff, TIFFTAG_PREDICTOR, PREDICTOR_HORIZONTAL);
}

bool SetFields(TiffEncode* encode)
{
    const PictureReader& picture = encode->picture;
    const auto set = encode->library.setField;
    TIFF* tiff = encode->tiff;
    return Check(encode, set(tiff, TIFFTAG_IMAGEWIDTH, picture.width) &&
                             set(tiff, TIFFTAG_IMAGELENGTH, picture.height) &&
                             set(tiff, TIFFTAG_BITSPERSAMPLE, 8) &&
                             set(tiff, TIFFTAG_SAMPLESPERPIXEL, 3) &&
                             set(tiff, TIFFTAG_PHOTOMETRIC, PHOTOMETRIC_RGB) &&
                             set(tiff, TIFFTAG_PLANARCONFIG, PLANARCONFIG_CONTIG) &&
                             set(tiff, TIFFTAG_ORIENTATION, ORIENTATION_TOPLEFT) &&
                             set(tiff, TIFFTAG_XRESOLUTION, resolution) &&
                             set(tiff, TIFFTAG_YRESOLUTION, resolution) &&
                             set(tiff, TIFFTAG_RESOLUTIONUNIT, RESUNIT_INCH) &&
                             set(tiff, TIFFTAG_ROWSPERSTRIP, RowsPerStrip(picture.width)) &&
                             SetCompression(encode));
}

// Reads the rows from `first` on that a strip takes; their number, or 0 on a failure.
uint32_t FillStrip(TiffEncode* encode, uint32_t first)
{
    PictureReader* picture = &encode->picture;
    const uint32_t most = RowsPerStrip(picture->width);
    uint32_t rows = 0;
    for (; rows < most && first + rows < picture->height; ++rows) {
        if (!ReadRow(picture, first + rows, encode->strip + rows * RowBytes(*picture))) {
            Fail(encode, picture->problem);
            return 0;
        }
        if (!ReportProgress(&encode->progress, first + rows + 1)) {
            Fail(encode, WriteProblem::Stopped);
            return 0;
        }
    }
    return rows;
}

bool WriteStrips(TiffEncode* encode)
{
    uint32_t number = 0;
    for (uint32_t y = 0; y < encode->picture.height; ++number) {
        const uint32_t rows = FillStrip(encode, y);
        if (rows == 0)
            return false;
        const auto bytes = static_cast<tmsize_t>(rows * RowBytes(encode->picture));
        if (!Check(encode,
                   encode->library.writeStrip(encode->tiff, number, encode->strip, bytes) == bytes))
            return false;
        y += rows;
    }
    return true;
}

bool WriteAll(TiffEncode* encode, const WriteOrder& order)
{
    StartProgress(&encode->progress, order.progress, encode->picture.height);
    return StartLibrary(encode) && SetFields(encode) && WriteStrips(encode) &&
           Check(encode, encode->library.flush(encode->tiff) != 0);
}

// Everything that can fail before the first row is read. Nothing is made on the disk for a picture
// that cannot be written.
bool Open(TiffEncode* encode, const WriteOrder& order)
{
    PictureReader* picture = &encode->picture;
    if (!OpenPicture(picture, order.rasters, order.palettes, order.image))
        return Fail(encode, picture->problem);
    if (!order.path && order.stream)
        return Fail(encode, WriteProblem::Stream);
    if (!OpenTiffLibrary(&encode->library))
        return Fail(encode, WriteProblem::Missing);
    encode->strip =
        static_cast<uint8_t*>(malloc(RowsPerStrip(picture->width) * RowBytes(*picture)));
    if (!encode->strip)
        return Fail(encode, WriteProblem::Memory);
    return OpenOutput(&encode->output, order.path, order.stream) ||
           Fail(encode, encode->output.problem);
}

// The library gives its record back, and with it whatever it still wants to write.
void CloseLibrary(TiffEncode* encode)
{
    if (encode->tiff)
        encode->library.cleanUp(encode->tiff);
    if (encode->options)
        encode->library.freeOptions(encode->options);
    CloseTiffLibrary(&encode->library);
    encode->tiff = nullptr;
    encode->options = nullptr;
}

} // namespace

WriteOutcome WriteTiffPicture(const WriteOrder& order, const TiffChoice& choice)
{
    auto* encode = static_cast<TiffEncode*>(calloc(1, sizeof(TiffEncode)));
    if (!encode)
        return {WriteProblem::Memory, nullptr};
    encode->choice = choice;
    const bool isWhole = Open(encode, order) && WriteAll(encode, order);
    CloseLibrary(encode);
    if (isWhole && !FinishOutput(&encode->output))
        Fail(encode, encode->output.problem);
    CloseOutput(&encode->output);
    free(encode->strip);
    const WriteProblem problem = encode->problem;
    free(encode);
    return {problem, problem == WriteProblem::Missing ? &missingText : nullptr};
}
