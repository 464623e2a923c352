#include "standard-plugins/webp-output/WebPEncoder.h"

#include "standard-plugins/common/device/OutputFile.h"
#include "standard-plugins/common/PictureReader.h"
#include "standard-plugins/common/ProgressThrottle.h"
#include "standard-plugins/webp-output/WebPLibrary.h"
#include "standard-plugins/webp-output/WebPMemory.h"

#include <stdlib.h>

namespace
{

const BilingualText missingText = {
    PLUGIN_TEXT("The library libwebp, which writes WebP pictures, is not installed."),
    PLUGIN_TEXT("WebP 画像の書き込みに必要なライブラリ libwebp がインストールされていません。")};
const BilingualText tooWideText = {
    PLUGIN_TEXT("A WebP picture holds at most 16,383 pixels a side."),
    PLUGIN_TEXT("WebP 画像の 1 辺は最大 16,383 画素です。")};
const BilingualText tooLargeText = {
    PLUGIN_TEXT("A WebP of this picture takes more memory than allowed. The setting "
                "WebpOutputMemory holds the limit in megabytes."),
    PLUGIN_TEXT("この画像の WebP は許可された量を超えるメモリを必要とします。"
                "設定 WebpOutputMemory が上限 (MB) です。")};

// The progress that both halves of the work have: the rows, and the library's hundredths.
constexpr uint32_t halfOfWork = 100;

struct WebPWriting {
    WriteProblem problem;
    // A sentence in place of the problem's own.
    const BilingualText* text;
    WebPLibrary library;
    WebPChoice choice;
    PictureReader picture;
    OutputFile output;
    ProgressThrottle progress;
    WebPConfig config;
    WebPPicture copy;
    uint8_t* row;
};

bool Fail(WebPWriting* encode, WriteProblem problem, const BilingualText* text = nullptr)
{
    if (encode->problem == WriteProblem::None) {
        encode->problem = problem;
        encode->text = text;
    }
    return false;
}

int OnWrite(const uint8_t* bytes, size_t count, const WebPPicture* copy)
{
    auto* encode = static_cast<WebPWriting*>(copy->custom_ptr);
    return WriteOutput(&encode->output, bytes, count) || Fail(encode, encode->output.problem);
}

int OnProgress(int percent, const WebPPicture* copy)
{
    auto* encode = static_cast<WebPWriting*>(copy->user_data);
    // The library goes on reporting for a while; who gave up is not asked again.
    if (encode->problem != WriteProblem::None)
        return 0;
    const uint32_t done = percent < 0 ? 0 : static_cast<uint32_t>(percent);
    return ReportProgress(&encode->progress,
                          halfOfWork + (done < halfOfWork ? done : halfOfWork)) ||
           Fail(encode, WriteProblem::Stopped);
}

uint64_t Limit(const WebPChoice& choice)
{
    return uint64_t{choice.megabytes} << 20;
}

bool Configure(WebPWriting* encode)
{
    const WebPLibrary& library = encode->library;
    const WebPChoice& choice = encode->choice;
    WebPConfig* config = &encode->config;
    if (!library.initConfig(config, WEBP_PRESET_DEFAULT, static_cast<float>(choice.quality),
                            WEBP_ENCODER_ABI_VERSION))
        return Fail(encode, WriteProblem::Codec);
    config->method = static_cast<int>(choice.effort);
    const PictureReader& picture = encode->picture;
    config->low_memory = WebPMemoryOfQuickWay(picture.width, picture.height) > Limit(choice);
    // The library's levels of lossless compression run from 0 to 9.
    if (choice.lossless && !library.setLossless(config, static_cast<int>(choice.effort * 3 / 2)))
        return Fail(encode, WriteProblem::Codec);
    return library.validateConfig(config) || Fail(encode, WriteProblem::Codec);
}

bool MakeCopy(WebPWriting* encode)
{
    WebPPicture* copy = &encode->copy;
    if (!encode->library.initPicture(copy, WEBP_ENCODER_ABI_VERSION))
        return Fail(encode, WriteProblem::Codec);
    copy->use_argb = 1;
    copy->width = static_cast<int>(encode->picture.width);
    copy->height = static_cast<int>(encode->picture.height);
    copy->writer = OnWrite;
    copy->custom_ptr = encode;
    copy->progress_hook = OnProgress;
    copy->user_data = encode;
    return encode->library.allocPicture(copy) || Fail(encode, WriteProblem::Memory);
}

void PutRow(WebPWriting* encode, uint32_t y)
{
    const WebPPicture& copy = encode->copy;
    uint32_t* argb = copy.argb + static_cast<size_t>(copy.argb_stride) * y;
    const uint8_t* rgb = encode->row;
    for (uint32_t x = 0; x < encode->picture.width; ++x, rgb += 3)
        argb[x] = 0xff000000u | static_cast<uint32_t>(rgb[0] << 16 | rgb[1] << 8 | rgb[2]);
}

bool FillCopy(WebPWriting* encode)
{
    const uint32_t height = encode->picture.height;
    for (uint32_t y = 0; y < height; ++y) {
        if (!ReadRow(&encode->picture, y, encode->row))
            return Fail(encode, encode->picture.problem);
        PutRow(encode, y);
        if (!ReportProgress(&encode->progress, (y + 1) * halfOfWork / height))
            return Fail(encode, WriteProblem::Stopped);
    }
    return true;
}

bool EncodeCopy(WebPWriting* encode)
{
    WebPPicture* copy = &encode->copy;
    if (encode->library.encode(&encode->config, copy))
        return true;
    // What the hooks noted is there already.
    const bool isMemory = copy->error_code == VP8_ENC_ERROR_OUT_OF_MEMORY ||
                          copy->error_code == VP8_ENC_ERROR_BITSTREAM_OUT_OF_MEMORY;
    return Fail(encode, isMemory ? WriteProblem::Memory : WriteProblem::Codec);
}

bool Finish(WebPWriting* encode)
{
    if (!ReportProgress(&encode->progress, 2 * halfOfWork))
        return Fail(encode, WriteProblem::Stopped);
    return FinishOutput(&encode->output) || Fail(encode, encode->output.problem);
}

bool RefuseLarge(WebPWriting* encode)
{
    const PictureReader& picture = encode->picture;
    if (picture.width > mostWebPSide || picture.height > mostWebPSide)
        return Fail(encode, WriteProblem::Size, &tooWideText);
    return WebPMemoryNeeded(picture.width, picture.height, encode->choice) <=
               Limit(encode->choice) ||
           Fail(encode, WriteProblem::Memory, &tooLargeText);
}

// Everything that can fail before the first row is read. Nothing is made on the disk for a picture
// that cannot be written.
bool Open(WebPWriting* encode, const WriteOrder& order)
{
    if (!OpenPicture(&encode->picture, order.rasters, order.palettes, order.image))
        return Fail(encode, encode->picture.problem);
    if (!RefuseLarge(encode))
        return false;
    if (!OpenWebPLibrary(&encode->library))
        return Fail(encode, WriteProblem::Missing, &missingText);
    encode->row = static_cast<uint8_t*>(malloc(RowBytes(encode->picture)));
    if (!encode->row)
        return Fail(encode, WriteProblem::Memory);
    return OpenOutput(&encode->output, order.path, order.stream) ||
           Fail(encode, encode->output.problem);
}

bool WriteAll(WebPWriting* encode, const WriteOrder& order)
{
    StartProgress(&encode->progress, order.progress, 2 * halfOfWork);
    return Configure(encode) && MakeCopy(encode) && FillCopy(encode) && EncodeCopy(encode) &&
           Finish(encode);
}

void Close(WebPWriting* encode)
{
    if (encode->library.freePicture)
        encode->library.freePicture(&encode->copy);
    CloseWebPLibrary(&encode->library);
    free(encode->row);
    CloseOutput(&encode->output);
}

} // namespace

WriteOutcome WriteWebPPicture(const WriteOrder& order, const WebPChoice& choice)
{
    auto* encode = static_cast<WebPWriting*>(calloc(1, sizeof(WebPWriting)));
    if (!encode)
        return {WriteProblem::Memory, nullptr};
    encode->choice = choice;
    (void)(Open(encode, order) && WriteAll(encode, order));
    Close(encode);
    const WriteOutcome outcome = {encode->problem, encode->text};
    free(encode);
    return outcome;
}
