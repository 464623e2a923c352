#include "standard-plugins/common/reading/OrientedLines.h"

#include "standard-plugins/common/reading/ExifOrientation.h"

#include <stdlib.h>
#include <string.h>

namespace
{

constexpr size_t pixelBytes = 3;

bool IsMirrored(uint32_t orientation)
{
    return orientation == 2 || orientation == 3;
}

bool IsUpsideDown(uint32_t orientation)
{
    return orientation == 3 || orientation == 4;
}

void CopyPixel(uint8_t* target, const uint8_t* source)
{
    target[0] = source[0];
    target[1] = source[1];
    target[2] = source[2];
}

void CopyMirrored(uint8_t* target, const uint8_t* row, uint32_t width)
{
    for (uint32_t x = 0; x < width; ++x)
        CopyPixel(target + pixelBytes * (width - 1 - x), row + pixelBytes * x);
}

bool PutUpright(OrientedLines* oriented, uint32_t y, const uint8_t* row)
{
    const uint32_t target = IsUpsideDown(oriented->orientation) ? oriented->height - 1 - y : y;
    uint8_t* line = LockLine(oriented->lines, target);
    if (!line)
        return false;
    if (IsMirrored(oriented->orientation))
        CopyMirrored(line, row, oriented->width);
    else
        memcpy(line, row, pixelBytes * oriented->width);
    return UnlockLine(oriented->lines, target);
}

// The gathered rows from `first` on as pixels of line `y` of the picture.
void WriteColumn(const OrientedLines& oriented, uint32_t first, uint32_t y, uint8_t* line)
{
    // 5 and 6 keep the column's number as the line's; 7 and 8 count the columns from the right.
    const bool fromRight = oriented.orientation >= 7;
    const uint32_t column = fromRight ? oriented.width - 1 - y : y;
    const bool rowsFromRight = oriented.orientation == 6 || oriented.orientation == 7;
    const uint8_t* source = oriented.block + pixelBytes * column;
    for (uint32_t i = 0; i < oriented.gathered; ++i, source += pixelBytes * oriented.width) {
        const uint32_t row = first + i;
        const uint32_t x = rowsFromRight ? oriented.height - 1 - row : row;
        CopyPixel(line + pixelBytes * x, source);
    }
}

bool WriteBlock(OrientedLines* oriented, uint32_t first)
{
    for (uint32_t y = 0; y < oriented->width; ++y) {
        uint8_t* line = LockLine(oriented->lines, y);
        if (!line)
            return false;
        WriteColumn(*oriented, first, y, line);
        if (!UnlockLine(oriented->lines, y))
            return false;
    }
    oriented->gathered = 0;
    return true;
}

} // namespace

bool OpenOrientedLines(OrientedLines* oriented, LineWriter* lines, uint32_t width, uint32_t height,
                       uint32_t orientation)
{
    *oriented = {};
    oriented->lines = lines;
    oriented->width = width;
    oriented->height = height;
    oriented->orientation = orientation;
    if (!SwapsSides(orientation)) {
        SetLinesSize(lines, width, height);
        return true;
    }
    SetLinesSize(lines, height, width);
    oriented->block = static_cast<uint8_t*>(malloc(pixelBytes * width * blockRows));
    return oriented->block != nullptr;
}

bool PutOrientedRow(OrientedLines* oriented, uint32_t y, const uint8_t* row)
{
    if (!SwapsSides(oriented->orientation))
        return PutUpright(oriented, y, row);
    const size_t rowBytes = pixelBytes * oriented->width;
    memcpy(oriented->block + rowBytes * oriented->gathered, row, rowBytes);
    ++oriented->gathered;
    oriented->rowsDone = y + 1;
    return oriented->gathered < blockRows || WriteBlock(oriented, y + 1 - blockRows);
}

bool FinishOrientedLines(OrientedLines* oriented)
{
    return oriented->gathered == 0 || WriteBlock(oriented, oriented->rowsDone - oriented->gathered);
}

void CloseOrientedLines(OrientedLines* oriented)
{
    free(oriented->block);
    *oriented = {};
}
