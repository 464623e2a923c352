#include "standard-plugins/pnm-output/PnmEncoder.h"

#include "standard-plugins/common/device/OutputFile.h"
#include "standard-plugins/common/PictureReader.h"
#include "standard-plugins/common/ProgressThrottle.h"

#include <stdlib.h>

namespace
{

struct PnmEncode {
    PictureReader picture;
    OutputFile output;
    ProgressThrottle progress;
    uint8_t* row;
    bool plain;
};

/// Text that grows at its end.
struct Text {
    char characters[80];
    size_t length;
};

void Append(Text* text, char character)
{
    text->characters[text->length++] = character;
}

// At most five digits.
void AppendNumber(Text* text, uint32_t number)
{
    uint32_t unit = 10000;
    while (unit > 1 && number / unit == 0)
        unit /= 10;
    for (; unit > 0; unit /= 10)
        Append(text, static_cast<char>('0' + number / unit % 10));
}

bool WriteText(PnmEncode* encode, const Text& text)
{
    return WriteOutput(&encode->output, text.characters, text.length);
}

bool WriteHeader(PnmEncode* encode)
{
    Text text = {};
    Append(&text, 'P');
    Append(&text, encode->plain ? '3' : '6');
    Append(&text, '\n');
    AppendNumber(&text, encode->picture.width);
    Append(&text, ' ');
    AppendNumber(&text, encode->picture.height);
    Append(&text, '\n');
    AppendNumber(&text, 255);
    Append(&text, '\n');
    return WriteText(encode, text);
}

// Five pixels of at most 12 characters make 60.
bool WritePlainRow(PnmEncode* encode)
{
    constexpr uint32_t pixelsPerLine = 5;
    const uint32_t width = encode->picture.width;
    const uint8_t* samples = encode->row;
    for (uint32_t first = 0; first < width; first += pixelsPerLine) {
        Text text = {};
        for (uint32_t x = first; x < width && x < first + pixelsPerLine; ++x)
            for (uint32_t i = 0; i < 3; ++i) {
                if (text.length > 0)
                    Append(&text, ' ');
                AppendNumber(&text, *samples++);
            }
        Append(&text, '\n');
        if (!WriteText(encode, text))
            return false;
    }
    return true;
}

WriteProblem WriteRows(PnmEncode* encode, TavrixProgressCallback progress)
{
    StartProgress(&encode->progress, progress, encode->picture.height);
    for (uint32_t y = 0; y < encode->picture.height; ++y) {
        if (!ReadRow(&encode->picture, y, encode->row))
            return encode->picture.problem;
        const bool written =
            encode->plain ? WritePlainRow(encode)
                          : WriteOutput(&encode->output, encode->row, RowBytes(encode->picture));
        if (!written)
            return encode->output.problem;
        if (!ReportProgress(&encode->progress, y + 1))
            return WriteProblem::Stopped;
    }
    return WriteProblem::None;
}

// Nothing is made on the disk for a picture that cannot be written.
WriteProblem Run(PnmEncode* encode, const WriteOrder& order)
{
    if (!OpenPicture(&encode->picture, order.rasters, order.palettes, order.image))
        return encode->picture.problem;
    encode->row = static_cast<uint8_t*>(malloc(RowBytes(encode->picture)));
    if (!encode->row)
        return WriteProblem::Memory;
    if (!OpenOutput(&encode->output, order.path, order.stream) || !WriteHeader(encode))
        return encode->output.problem;
    const WriteProblem written = WriteRows(encode, order.progress);
    if (written != WriteProblem::None)
        return written;
    return FinishOutput(&encode->output) ? WriteProblem::None : encode->output.problem;
}

} // namespace

WriteProblem WritePnmPicture(const WriteOrder& order, bool plain)
{
    auto* encode = static_cast<PnmEncode*>(calloc(1, sizeof(PnmEncode)));
    if (!encode)
        return WriteProblem::Memory;
    encode->plain = plain;
    const WriteProblem problem = Run(encode, order);
    CloseOutput(&encode->output);
    free(encode->row);
    free(encode);
    return problem;
}
