#include "standard-plugins/common/filtering/FilterWindow.h"

#include <stdlib.h>
#include <string.h>

namespace
{

constexpr size_t pixelBytes = 3;

void RepeatPixel(uint8_t* target, const uint8_t* pixel, uint32_t count)
{
    for (; count > 0; --count, target += pixelBytes)
        memcpy(target, pixel, pixelBytes);
}

} // namespace

bool OpenFilterWindow(FilterWindow* window, uint32_t reach, uint32_t width, uint32_t height)
{
    *window = {};
    window->reach = reach;
    window->width = width;
    window->height = height;
    window->ringRows = 2 * reach + 1 < height ? 2 * reach + 1 : height;
    window->rowBytes = pixelBytes * (size_t{width} + 2 * size_t{reach});
    window->ring = static_cast<uint8_t*>(malloc(window->rowBytes * window->ringRows));
    window->pointers = static_cast<const uint8_t**>(malloc((2 * reach + 1) * sizeof(uint8_t*)));
    return window->ring && window->pointers;
}

void CloseFilterWindow(FilterWindow* window)
{
    free(window->ring);
    free(window->pointers);
    *window = {};
}

uint32_t LastRowInReach(uint32_t reach, uint32_t height, uint32_t y)
{
    return height - y > reach ? y + reach : height - 1;
}

void TakeFilterRow(FilterWindow* window, uint32_t y, const uint8_t* row)
{
    uint8_t* target = window->ring + window->rowBytes * (y % window->ringRows);
    const size_t side = pixelBytes * window->reach;
    const size_t inside = pixelBytes * window->width;
    RepeatPixel(target, row, window->reach);
    memcpy(target + side, row, inside);
    RepeatPixel(target + side + inside, row + inside - pixelBytes, window->reach);
}

FilterRows RowsAround(FilterWindow* window, uint32_t y)
{
    const uint32_t reach = window->reach;
    for (uint32_t i = 0; i <= 2 * reach; ++i) {
        uint32_t row = y + i < reach ? 0 : y + i - reach;
        if (row >= window->height)
            row = window->height - 1;
        window->pointers[i] =
            window->ring + window->rowBytes * (row % window->ringRows) + pixelBytes * reach;
    }
    return {window->pointers, reach, window->width, y};
}
