#include "standard-plugins/jxl-output/JxlEncoder.h"

#include "standard-plugins/common/device/OutputFile.h"
#include "standard-plugins/common/PictureReader.h"
#include "standard-plugins/common/ProgressThrottle.h"
#include "standard-plugins/jxl-output/JxlLibrary.h"
#include "standard-plugins/jxl-output/JxlMemory.h"

#include <stdlib.h>

namespace
{

const BilingualText missingText = {
    PLUGIN_TEXT("The library libjxl, which writes JPEG XL pictures, is not installed."),
    PLUGIN_TEXT("JPEG XL 画像の書き込みに必要なライブラリ libjxl がインストールされていません。")};
const BilingualText tooLargeText = {
    PLUGIN_TEXT("A JPEG XL of this picture takes more memory than allowed. The setting "
                "JxlOutputMemory holds the limit in megabytes."),
    PLUGIN_TEXT("この画像の JPEG XL は許可された量を超えるメモリを必要とします。"
                "設定 JxlOutputMemory が上限 (MB) です。")};

constexpr uint32_t channels = 3;
// The progress that both halves of the work have: the rows, and the library's.
constexpr uint32_t halfOfWork = 100;
constexpr size_t blockBytes = 64 * 1024;

struct JxlEncode {
    WriteProblem problem;
    // A sentence in place of the problem's own.
    const BilingualText* text;
    JxlLibrary library;
    ::JxlEncoder* encoder;
    JxlChoice choice;
    PictureReader picture;
    OutputFile output;
    ProgressThrottle progress;
    // Turns of the library's work so far.
    uint32_t turns;
    // Null again when the encoder has taken its own numbers from them.
    uint8_t* pixels;
    uint8_t* block;
};

bool Fail(JxlEncode* encode, WriteProblem problem, const BilingualText* text = nullptr)
{
    if (encode->problem == WriteProblem::None) {
        encode->problem = problem;
        encode->text = text;
    }
    return false;
}

// What the library says, unless the reason is known already.
bool Check(JxlEncode* encode, bool succeeded)
{
    return (succeeded && encode->problem == WriteProblem::None) ||
           Fail(encode, WriteProblem::Codec);
}

// The number of turns is the library's own affair; these were counted for a frame.
uint32_t ExpectedTurns(const JxlChoice& choice)
{
    if (choice.lossless)
        return 12;
    return choice.effort < 8 ? 20 : 45;
}

// Nobody is asked again who has refused.
void TellTurn(JxlEncode* encode, uint32_t piece, uint32_t pieces)
{
    const uint32_t turns = ExpectedTurns(encode->choice);
    const uint64_t done =
        halfOfWork * (encode->turns * uint64_t{pieces} + piece) / (uint64_t{turns} * pieces);
    const uint32_t most = halfOfWork - 1; // the last one is for the end
    if (encode->problem == WriteProblem::None &&
        !ReportProgress(&encode->progress,
                        halfOfWork + (done < most ? static_cast<uint32_t>(done) : most)))
        (void)Fail(encode, WriteProblem::Stopped);
}

// Between two turns of the encoding itself, where the library was seen to end in order.
bool EndsAtOnce(const JxlEncode& encode)
{
    return encode.choice.lossless && !encode.pixels && encode.problem != WriteProblem::None;
}

JxlParallelRetCode OnTurn(void* self, void* work, JxlParallelRunInit init,
                          JxlParallelRunFunction run, uint32_t first, uint32_t end)
{
    auto* encode = static_cast<JxlEncode*>(self);
    if (EndsAtOnce(*encode))
        return JXL_PARALLEL_RET_RUNNER_ERROR;
    const JxlParallelRetCode begun = init(work, 1);
    if (begun != 0)
        return begun;
    for (uint32_t piece = first; piece < end; ++piece) {
        run(work, piece, 0);
        TellTurn(encode, piece - first + 1, end - first);
    }
    ++encode->turns;
    return 0;
}

bool Describe(JxlEncode* encode)
{
    const JxlLibrary& library = encode->library;
    JxlBasicInfo info;
    library.initInfo(&info);
    info.xsize = encode->picture.width;
    info.ysize = encode->picture.height;
    info.bits_per_sample = 8;
    info.num_color_channels = channels;
    info.uses_original_profile = encode->choice.lossless ? JXL_TRUE : JXL_FALSE;
    JxlColorEncoding colors;
    library.makeSrgb(&colors, JXL_FALSE);
    return Check(encode, library.setInfo(encode->encoder, &info) == JXL_ENC_SUCCESS &&
                             library.setColors(encode->encoder, &colors) == JXL_ENC_SUCCESS);
}

float DistanceOf(uint32_t quality)
{
    return quality >= 99 ? 0.1f : static_cast<float>(100 - quality) / 10;
}

JxlEncoderFrameSettings* MakeSettings(JxlEncode* encode)
{
    const JxlLibrary& library = encode->library;
    const JxlChoice& choice = encode->choice;
    JxlEncoderFrameSettings* settings = library.createSettings(encode->encoder, nullptr);
    if (!settings ||
        library.setOption(settings, JXL_ENC_FRAME_SETTING_EFFORT, choice.effort) != JXL_ENC_SUCCESS)
        return nullptr;
    const JxlEncoderStatus set = choice.lossless
                                     ? library.setLossless(settings, JXL_TRUE)
                                     : library.setDistance(settings, DistanceOf(choice.quality));
    return set == JXL_ENC_SUCCESS ? settings : nullptr;
}

// The encoder has taken numbers of its own from the pixels when this is done.
bool GiveFrame(JxlEncode* encode)
{
    const JxlEncoderFrameSettings* settings = MakeSettings(encode);
    if (!settings)
        return Check(encode, false);
    const JxlPixelFormat format = {channels, JXL_TYPE_UINT8, JXL_NATIVE_ENDIAN, 0};
    const size_t bytes = RowBytes(encode->picture) * encode->picture.height;
    const bool taken =
        encode->library.addFrame(settings, &format, encode->pixels, bytes) == JXL_ENC_SUCCESS;
    free(encode->pixels);
    encode->pixels = nullptr;
    encode->library.closeInput(encode->encoder);
    return Check(encode, taken);
}

bool StartLibrary(JxlEncode* encode)
{
    const JxlLibrary& library = encode->library;
    encode->encoder = library.create(nullptr);
    if (!encode->encoder)
        return Fail(encode, WriteProblem::Memory);
    return Check(encode, library.setRunner(encode->encoder, OnTurn, encode) == JXL_ENC_SUCCESS) &&
           Describe(encode);
}

bool FillPixels(JxlEncode* encode)
{
    const uint32_t height = encode->picture.height;
    for (uint32_t y = 0; y < height; ++y) {
        if (!ReadRow(&encode->picture, y, encode->pixels + y * RowBytes(encode->picture)))
            return Fail(encode, encode->picture.problem);
        if (!ReportProgress(&encode->progress, (y + 1) * halfOfWork / height))
            return Fail(encode, WriteProblem::Stopped);
    }
    return true;
}

bool WriteFrame(JxlEncode* encode)
{
    JxlEncoderStatus status = JXL_ENC_NEED_MORE_OUTPUT;
    while (status == JXL_ENC_NEED_MORE_OUTPUT) {
        uint8_t* next = encode->block;
        size_t room = blockBytes;
        status = encode->library.processOutput(encode->encoder, &next, &room);
        if (!Check(encode, status != JXL_ENC_ERROR))
            return false;
        if (!WriteOutput(&encode->output, encode->block, blockBytes - room))
            return Fail(encode, encode->output.problem);
    }
    return true;
}

bool WriteAll(JxlEncode* encode, const WriteOrder& order)
{
    StartProgress(&encode->progress, order.progress, 2 * halfOfWork);
    if (!StartLibrary(encode) || !FillPixels(encode) || !GiveFrame(encode) || !WriteFrame(encode))
        return false;
    if (!ReportProgress(&encode->progress, 2 * halfOfWork))
        return Fail(encode, WriteProblem::Stopped);
    return FinishOutput(&encode->output) || Fail(encode, encode->output.problem);
}

// What the library is going to take has to be there now, as far as that can be seen: it cannot do
// without.
bool RefuseLarge(JxlEncode* encode)
{
    const PictureReader& picture = encode->picture;
    const uint64_t needed = JxlMemoryNeeded(picture.width, picture.height, encode->choice);
    if (needed > uint64_t{encode->choice.megabytes} << 20)
        return Fail(encode, WriteProblem::Memory, &tooLargeText);
    void* trial =
        static_cast<size_t>(needed) == needed ? malloc(static_cast<size_t>(needed)) : nullptr;
    free(trial);
    return trial || Fail(encode, WriteProblem::Memory);
}

// Everything that can fail before the first row is read. Nothing is made on the disk for a picture
// that cannot be written.
bool Open(JxlEncode* encode, const WriteOrder& order)
{
    PictureReader* picture = &encode->picture;
    if (!OpenPicture(picture, order.rasters, order.palettes, order.image))
        return Fail(encode, picture->problem);
    if (!RefuseLarge(encode))
        return false;
    if (!OpenJxlLibrary(&encode->library))
        return Fail(encode, WriteProblem::Missing, &missingText);
    encode->pixels = static_cast<uint8_t*>(malloc(RowBytes(*picture) * picture->height));
    encode->block = static_cast<uint8_t*>(malloc(blockBytes));
    if (!encode->pixels || !encode->block)
        return Fail(encode, WriteProblem::Memory);
    return OpenOutput(&encode->output, order.path, order.stream) ||
           Fail(encode, encode->output.problem);
}

void Close(JxlEncode* encode)
{
    if (encode->encoder)
        encode->library.destroy(encode->encoder);
    CloseJxlLibrary(&encode->library);
    free(encode->pixels);
    free(encode->block);
    CloseOutput(&encode->output);
}

} // namespace

WriteOutcome WriteJxlPicture(const WriteOrder& order, const JxlChoice& choice)
{
    auto* encode = static_cast<JxlEncode*>(calloc(1, sizeof(JxlEncode)));
    if (!encode)
        return {WriteProblem::Memory, nullptr};
    encode->choice = choice;
    (void)(Open(encode, order) && WriteAll(encode, order));
    Close(encode);
    const WriteOutcome outcome = {encode->problem, encode->text};
    free(encode);
    return outcome;
}
