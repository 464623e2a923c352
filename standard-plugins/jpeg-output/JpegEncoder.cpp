#include "standard-plugins/jpeg-output/JpegEncoder.h"

#include "standard-plugins/common/PictureReader.h"
#include "standard-plugins/common/PluginResult.h"
#include "standard-plugins/common/ProgressThrottle.h"
#include "standard-plugins/jpeg-output/JpegWriting.h"

#include <stdlib.h>

namespace
{

// What the codec may take beside the coefficients.
constexpr uint32_t besidesMegabytes = 16;
constexpr uint32_t finestQuality = 90;
constexpr int components = 3;

const BilingualText captionText = {PLUGIN_TEXT("JPEG writer"), PLUGIN_TEXT("JPEG 書き込み")};
const BilingualText tooWideText = {
    PLUGIN_TEXT("A JPEG picture holds at most 65,500 pixels a side."),
    PLUGIN_TEXT("JPEG 画像の 1 辺は最大 65,500 画素です。")};
const BilingualText tooLargeText = {
    PLUGIN_TEXT("A progressive JPEG of this picture takes more memory than allowed. The setting "
                "JpegOutputMemory holds the limit in megabytes."),
    PLUGIN_TEXT("この画像のプログレッシブ JPEG は許可された量を超えるメモリを必要とします。"
                "設定 JpegOutputMemory が上限 (MB) です。")};

// One encode; what the codec's jump must not lose.
struct JpegEncode {
    JpegWriting writing; // first, so that the codec's user data leads here
    jpeg_progress_mgr monitor;
    JpegChoice choice;
    PictureReader picture;
    ProgressThrottle progress;
    uint8_t* row;
    // The rows are in, and the scans of a progressive file are being written.
    bool scanning;
    // A sentence in place of the problem's own.
    const BilingualText* text;
};

struct Factors {
    int across;
    int down;
};

// How many pixels a colour has on each side.
Factors FactorsOf(const JpegChoice& choice)
{
    switch (choice.sampling) {
    case ChromaSampling::Every444:
        return {1, 1};
    case ChromaSampling::Two422:
        return {2, 1};
    case ChromaSampling::Four420:
        return {2, 2};
    default:
        return choice.quality >= finestQuality ? Factors{1, 1} : Factors{2, 2};
    }
}

// Blocks of 8 by 8 of all three components. The colours' counts follow the whole picture's.
uint64_t CoefficientBytes(const PictureReader& picture, const Factors& factors)
{
    const auto units = [](uint32_t side, int factor) {
        const uint64_t unit = 8u * static_cast<uint32_t>(factor);
        return (side + unit - 1) / unit;
    };
    const uint64_t blocksAUnit = static_cast<uint32_t>(factors.across * factors.down + 2);
    return units(picture.width, factors.across) * units(picture.height, factors.down) *
           blocksAUnit * sizeof(JBLOCK);
}

WriteProblem RefuseLarge(JpegEncode* encode)
{
    const PictureReader& picture = encode->picture;
    if (picture.width > JPEG_MAX_DIMENSION || picture.height > JPEG_MAX_DIMENSION) {
        encode->text = &tooWideText;
        return WriteProblem::Size;
    }
    const uint64_t limit = static_cast<uint64_t>(encode->choice.megabytes) << 20;
    if (encode->choice.progressive &&
        CoefficientBytes(picture, FactorsOf(encode->choice)) > limit) {
        encode->text = &tooLargeText;
        return WriteProblem::Memory;
    }
    return WriteProblem::None;
}

// Called by the codec for each row of blocks. The rows of a progressive file are the first half of
// the work and its scans the second.
void OnCodecProgress(j_common_ptr common)
{
    auto* encode = static_cast<JpegEncode*>(common->client_data);
    if (!encode->scanning)
        return;
    const jpeg_progress_mgr& monitor = encode->monitor;
    const uint64_t height = encode->picture.height;
    const auto passes = static_cast<uint64_t>(monitor.total_passes);
    const auto before = static_cast<uint64_t>(monitor.completed_passes);
    const auto limit = static_cast<uint64_t>(monitor.pass_limit);
    if (passes == 0 || limit == 0)
        return;
    const uint64_t done =
        (before * limit + static_cast<uint64_t>(monitor.pass_counter)) * height / (passes * limit);
    if (!ReportProgress(&encode->progress, static_cast<uint32_t>(height + done)))
        LeaveWriting(&encode->writing, WriteProblem::Stopped);
}

void ChooseSampling(jpeg_compress_struct* codec, const Factors& factors)
{
    codec->comp_info[0].h_samp_factor = factors.across;
    codec->comp_info[0].v_samp_factor = factors.down;
    for (int i = 1; i < components; ++i) {
        codec->comp_info[i].h_samp_factor = 1;
        codec->comp_info[i].v_samp_factor = 1;
    }
}

void StartCodec(JpegEncode* encode)
{
    jpeg_compress_struct* codec = &encode->writing.codec;
    jpeg_create_compress(codec);
    codec->dest = &encode->writing.destination;
    encode->monitor.progress_monitor = OnCodecProgress;
    codec->progress = &encode->monitor;
    codec->mem->max_memory_to_use =
        static_cast<long>(static_cast<uint64_t>(encode->choice.megabytes + besidesMegabytes) << 20);
    codec->image_width = encode->picture.width;
    codec->image_height = encode->picture.height;
    codec->input_components = components;
    // The library takes the host's order as it is.
    codec->in_color_space = encode->picture.depth == 24 ? JCS_EXT_BGR : JCS_RGB;
    jpeg_set_defaults(codec);
    jpeg_set_quality(codec, static_cast<int>(encode->choice.quality), TRUE);
    codec->dct_method = JDCT_ISLOW;
    ChooseSampling(codec, FactorsOf(encode->choice));
    if (encode->choice.progressive)
        jpeg_simple_progression(codec);
    jpeg_start_compress(codec, TRUE);
}

void WriteRows(JpegEncode* encode)
{
    jpeg_compress_struct* codec = &encode->writing.codec;
    while (codec->next_scanline < codec->image_height) {
        const uint32_t y = codec->next_scanline;
        const bool read = codec->in_color_space == JCS_EXT_BGR
                              ? ReadHostRow(&encode->picture, y, encode->row)
                              : ReadRow(&encode->picture, y, encode->row);
        if (!read)
            LeaveWriting(&encode->writing, encode->picture.problem);
        JSAMPROW row = encode->row;
        if (jpeg_write_scanlines(codec, &row, 1) != 1)
            LeaveWriting(&encode->writing, WriteProblem::Codec);
        if (!ReportProgress(&encode->progress, y + 1))
            LeaveWriting(&encode->writing, WriteProblem::Stopped);
    }
}

void WriteAll(JpegEncode* encode, const WriteOrder& order)
{
    const uint32_t height = encode->picture.height;
    StartCodec(encode);
    StartProgress(&encode->progress, order.progress,
                  encode->choice.progressive ? 2 * height : height);
    WriteRows(encode);
    encode->scanning = encode->choice.progressive;
    jpeg_finish_compress(&encode->writing.codec);
    if (encode->choice.progressive && !ReportProgress(&encode->progress, 2 * height))
        LeaveWriting(&encode->writing, WriteProblem::Stopped);
    if (!FinishOutput(&encode->writing.output))
        LeaveWriting(&encode->writing, encode->writing.output.problem);
}

// Everything that can fail before the codec is there. Nothing is made on the disk for a picture
// that cannot be written.
WriteProblem Open(JpegEncode* encode, const WriteOrder& order)
{
    if (!OpenPicture(&encode->picture, order.rasters, order.palettes, order.image))
        return encode->picture.problem;
    const WriteProblem refused = RefuseLarge(encode);
    if (refused != WriteProblem::None)
        return refused;
    encode->row = static_cast<uint8_t*>(malloc(RowBytes(encode->picture)));
    if (!encode->row)
        return WriteProblem::Memory;
    OutputFile* output = &encode->writing.output;
    return OpenOutput(output, order.path, order.stream) ? WriteProblem::None : output->problem;
}

WriteProblem Run(JpegEncode* encode, const WriteOrder& order)
{
    JpegWriting* writing = &encode->writing;
    BindWriting(writing);
    writing->problem = Open(encode, order);
    if (writing->problem == WriteProblem::None && setjmp(writing->failure) == 0)
        WriteAll(encode, order);
    return writing->problem;
}

} // namespace

WriteOutcome WriteJpegPicture(const WriteOrder& order, const JpegChoice& choice)
{
    auto* encode = static_cast<JpegEncode*>(calloc(1, sizeof(JpegEncode)));
    if (!encode)
        return {WriteProblem::Memory, nullptr};
    encode->choice = choice;
    const WriteOutcome outcome = {Run(encode, order), encode->text};
    CloseWriting(&encode->writing);
    free(encode->row);
    free(encode);
    return outcome;
}
