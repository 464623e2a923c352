#include "standard-plugins/gif-output/GifEncoder.h"

#include "standard-plugins/common/device/OutputFile.h"
#include "standard-plugins/common/PictureReader.h"
#include "standard-plugins/common/ProgressThrottle.h"
#include "standard-plugins/common/reducing/ColorReducer.h"
#include "standard-plugins/common/reducing/PaletteSurvey.h"
#include "standard-plugins/gif-output/GifLibrary.h"

#include <stddef.h>
#include <stdlib.h>

namespace
{

const BilingualText missingText = {
    PLUGIN_TEXT("The library giflib, which writes GIF pictures, is not installed."),
    PLUGIN_TEXT("GIF 画像の書き込みに必要なライブラリ giflib がインストールされていません。")};

struct GifPass {
    uint32_t first;
    uint32_t step;
};
constexpr GifPass wholePicture[] = {{0, 1}};
constexpr GifPass interlacedPasses[] = {{0, 8}, {4, 8}, {2, 4}, {1, 2}};

struct GifEncode {
    WriteProblem problem;
    GifLibrary library;
    GifFileType* file;
    ColorMapObject* map;
    GifChoice choice;
    PictureReader picture;
    OutputFile output;
    ProgressThrottle progress;
    uint32_t rowsDone;
    PaletteSurvey* survey;
    ColorReducer reducer;
    uint8_t* row;
    uint8_t* indexes;
};

bool Fail(GifEncode* encode, WriteProblem problem)
{
    if (encode->problem == WriteProblem::None)
        encode->problem = problem;
    return false;
}

// What the library says, unless the output knows better why it said so.
bool Check(GifEncode* encode, bool succeeded)
{
    if (encode->output.problem != WriteProblem::None)
        return Fail(encode, encode->output.problem);
    return succeeded || Fail(encode, WriteProblem::Codec);
}

int OnWrite(GifFileType* file, const GifByteType* bytes, int count)
{
    auto* encode = static_cast<GifEncode*>(file->UserData);
    return WriteOutput(&encode->output, bytes, static_cast<size_t>(count)) ? count : 0;
}

bool StepOn(GifEncode* encode)
{
    return ReportProgress(&encode->progress, ++encode->rowsDone) ||
           Fail(encode, WriteProblem::Stopped);
}

bool TakeRow(GifEncode* encode, uint32_t y)
{
    return ReadRow(&encode->picture, y, encode->row) || Fail(encode, encode->picture.problem);
}

bool IsIn(const GifPass& pass, uint32_t y)
{
    return y % pass.step == pass.first;
}

// Whether the row has to be read in this pass, be it only for those below it.
bool IsRead(const GifEncode& encode, const GifPass& pass, uint32_t y)
{
    return encode.choice.diffuses || IsIn(pass, y);
}

bool WriteRow(GifEncode* encode, const GifPass& pass, uint32_t y)
{
    if (!TakeRow(encode, y))
        return false;
    ReduceRow(&encode->reducer, encode->row, encode->indexes);
    if (IsIn(pass, y) &&
        !Check(encode, encode->library.putLine(encode->file, encode->indexes,
                                               static_cast<int>(encode->picture.width)) == GIF_OK))
        return false;
    return StepOn(encode);
}

bool WritePass(GifEncode* encode, const GifPass& pass)
{
    RestartReducer(&encode->reducer);
    for (uint32_t y = 0; y < encode->picture.height; ++y)
        if (IsRead(*encode, pass, y) && !WriteRow(encode, pass, y))
            return false;
    return true;
}

struct Passes {
    const GifPass* passes;
    uint32_t count;
};

Passes PassesOf(const GifChoice& choice)
{
    return choice.interlaced ? Passes{interlacedPasses, 4} : Passes{wholePicture, 1};
}

bool WriteRows(GifEncode* encode)
{
    const Passes all = PassesOf(encode->choice);
    for (uint32_t i = 0; i < all.count; ++i)
        if (!WritePass(encode, all.passes[i]))
            return false;
    return true;
}

// Rows that are read, in the first look and in all passes.
uint32_t CountRows(const GifEncode& encode)
{
    const uint32_t height = encode.picture.height;
    const uint32_t passes =
        encode.choice.diffuses ? PassesOf(encode.choice).count : 1; // else each row once
    return height * (1 + passes);
}

bool FindPalette(GifEncode* encode, ReducedPalette* palette)
{
    encode->survey = OpenPaletteSurvey();
    if (!encode->survey)
        return Fail(encode, WriteProblem::Memory);
    for (uint32_t y = 0; y < encode->picture.height; ++y) {
        if (!TakeRow(encode, y))
            return false;
        SurveyRow(encode->survey, encode->row, encode->picture.width);
        if (!StepOn(encode))
            return false;
    }
    TakePalette(encode->survey, encode->choice.colors, palette);
    ClosePaletteSurvey(encode->survey);
    encode->survey = nullptr;
    return true;
}

// At least two: the format knows no palette of one.
int BitsOf(uint32_t count)
{
    int bits = 1;
    while (1u << bits < count)
        ++bits;
    return bits;
}

bool MakeMap(GifEncode* encode)
{
    const ReducedPalette& palette = encode->reducer.palette;
    GifColorType colors[mostReducedColors] = {};
    for (uint32_t i = 0; i < palette.count; ++i)
        colors[i] = {palette.colors[i][0], palette.colors[i][1], palette.colors[i][2]};
    encode->map = encode->library.makeMap(1 << BitsOf(palette.count), colors);
    return encode->map || Fail(encode, WriteProblem::Memory);
}

bool WriteHeader(GifEncode* encode)
{
    const GifLibrary& library = encode->library;
    const auto width = static_cast<int>(encode->picture.width);
    const auto height = static_cast<int>(encode->picture.height);
    int error = 0;
    encode->file = library.open(encode, OnWrite, &error);
    if (!encode->file)
        return Fail(encode, WriteProblem::Memory);
    return Check(encode,
                 library.putScreen(encode->file, width, height, 8, 0, encode->map) == GIF_OK) &&
           Check(encode, library.putImage(encode->file, 0, 0, width, height,
                                          encode->choice.interlaced, nullptr) == GIF_OK);
}

// The library writes the end of the file when it is closed, and gives everything back in any case.
bool CloseFile(GifEncode* encode)
{
    GifFileType* file = encode->file;
    encode->file = nullptr;
    int error = 0;
    return !file || Check(encode, encode->library.close(file, &error) == GIF_OK);
}

bool WriteAll(GifEncode* encode, const WriteOrder& order)
{
    StartProgress(&encode->progress, order.progress, CountRows(*encode));
    ReducedPalette palette;
    if (!FindPalette(encode, &palette))
        return false;
    if (!OpenReducer(&encode->reducer, palette, encode->picture.width, encode->choice.diffuses))
        return Fail(encode, WriteProblem::Memory);
    return MakeMap(encode) && WriteHeader(encode) && WriteRows(encode) && CloseFile(encode) &&
           (FinishOutput(&encode->output) || Fail(encode, encode->output.problem));
}

// Everything that can fail before the first row is read. Nothing is made on the disk for a picture
// that cannot be written.
bool Open(GifEncode* encode, const WriteOrder& order)
{
    if (!OpenPicture(&encode->picture, order.rasters, order.palettes, order.image))
        return Fail(encode, encode->picture.problem);
    if (!OpenGifLibrary(&encode->library))
        return Fail(encode, WriteProblem::Missing);
    encode->row = static_cast<uint8_t*>(malloc(RowBytes(encode->picture)));
    encode->indexes = static_cast<uint8_t*>(malloc(encode->picture.width));
    if (!encode->row || !encode->indexes)
        return Fail(encode, WriteProblem::Memory);
    return OpenOutput(&encode->output, order.path, order.stream) ||
           Fail(encode, encode->output.problem);
}

void Close(GifEncode* encode)
{
    (void)CloseFile(encode);
    if (encode->map)
        encode->library.freeMap(encode->map);
    CloseGifLibrary(&encode->library);
    ClosePaletteSurvey(encode->survey);
    CloseReducer(&encode->reducer);
    free(encode->row);
    free(encode->indexes);
    CloseOutput(&encode->output);
}

} // namespace

WriteOutcome WriteGifPicture(const WriteOrder& order, const GifChoice& choice)
{
    auto* encode = static_cast<GifEncode*>(calloc(1, sizeof(GifEncode)));
    if (!encode)
        return {WriteProblem::Memory, nullptr};
    encode->choice = choice;
    (void)(Open(encode, order) && WriteAll(encode, order));
    Close(encode);
    const WriteProblem problem = encode->problem;
    free(encode);
    return {problem, problem == WriteProblem::Missing ? &missingText : nullptr};
}
