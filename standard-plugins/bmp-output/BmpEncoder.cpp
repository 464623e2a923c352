#include "standard-plugins/bmp-output/BmpEncoder.h"

#include "standard-plugins/common/device/OutputFile.h"
#include "standard-plugins/common/PictureReader.h"
#include "standard-plugins/common/ProgressThrottle.h"

#include <stdlib.h>

namespace
{

constexpr uint32_t headerBytes = 14 + 40;
constexpr uint32_t pixelsPerMetre = 2835;

struct BmpEncode {
    PictureReader picture;
    OutputFile output;
    ProgressThrottle progress;
    /// The row with its filling.
    uint8_t* row;
    uint32_t rowBytes;
    uint32_t pixelBytes;
};

void Put32(uint8_t* at, uint32_t number)
{
    for (uint32_t i = 0; i < 4; ++i)
        at[i] = static_cast<uint8_t>(number >> (8 * i));
}

void SwapRedAndBlue(uint8_t* row, uint32_t width)
{
    for (uint32_t x = 0; x < width; ++x, row += 3) {
        const uint8_t red = row[0];
        row[0] = row[2];
        row[2] = red;
    }
}

WriteProblem Measure(BmpEncode* encode)
{
    encode->rowBytes = (3 * encode->picture.width + 3) & ~3u;
    const uint64_t pixelBytes = uint64_t{encode->rowBytes} * encode->picture.height;
    if (pixelBytes + headerBytes > 0xffffffffu)
        return WriteProblem::Size;
    encode->pixelBytes = static_cast<uint32_t>(pixelBytes);
    return WriteProblem::None;
}

bool WriteHeader(BmpEncode* encode)
{
    uint8_t header[headerBytes] = {'B', 'M'};
    Put32(header + 2, headerBytes + encode->pixelBytes);
    Put32(header + 10, headerBytes);
    Put32(header + 14, 40);
    Put32(header + 18, encode->picture.width);
    Put32(header + 22, encode->picture.height);
    header[26] = 1;  // plane
    header[28] = 24; // bits
    Put32(header + 34, encode->pixelBytes);
    Put32(header + 38, pixelsPerMetre);
    Put32(header + 42, pixelsPerMetre);
    return WriteOutput(&encode->output, header, sizeof header);
}

WriteProblem WriteRows(BmpEncode* encode, TavrixProgressCallback progress)
{
    const uint32_t height = encode->picture.height;
    StartProgress(&encode->progress, progress, height);
    for (uint32_t done = 0; done < height; ++done) {
        if (!ReadRow(&encode->picture, height - 1 - done, encode->row))
            return encode->picture.problem;
        SwapRedAndBlue(encode->row, encode->picture.width);
        if (!WriteOutput(&encode->output, encode->row, encode->rowBytes))
            return encode->output.problem;
        if (!ReportProgress(&encode->progress, done + 1))
            return WriteProblem::Stopped;
    }
    return WriteProblem::None;
}

// Nothing is made on the disk for a picture that cannot be written.
WriteProblem Run(BmpEncode* encode, const WriteOrder& order)
{
    if (!OpenPicture(&encode->picture, order.rasters, order.palettes, order.image))
        return encode->picture.problem;
    const WriteProblem measured = Measure(encode);
    if (measured != WriteProblem::None)
        return measured;
    encode->row = static_cast<uint8_t*>(calloc(1, encode->rowBytes));
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

WriteProblem WriteBmpPicture(const WriteOrder& order)
{
    auto* encode = static_cast<BmpEncode*>(calloc(1, sizeof(BmpEncode)));
    if (!encode)
        return WriteProblem::Memory;
    const WriteProblem problem = Run(encode, order);
    CloseOutput(&encode->output);
    free(encode->row);
    free(encode);
    return problem;
}
