#include "standard-plugins/common/scaling/LineReducer.h"

#include <math.h>
#include <stdlib.h>
#include <string.h>

namespace
{

// A line of the source has a part in at most twice the kernel's reach of lines of the result, and
// in three more, since windows end at whole lines.
constexpr uint32_t summedLines = 10;
constexpr double pi = 3.14159265358979323846;

double Reach(ScaleKernel kernel)
{
    switch (kernel) {
    case ScaleKernel::Lanczos:
        return 3;
    case ScaleKernel::Bicubic:
        return 2;
    default:
        return 1;
    }
}

double Sinc(double x)
{
    return x == 0 ? 1 : sin(pi * x) / (pi * x);
}

double CatmullRom(double x)
{
    return x < 1 ? (1.5 * x - 2.5) * x * x + 1 : ((-0.5 * x + 2.5) * x - 4) * x + 2;
}

double Weight(ScaleKernel kernel, double distance)
{
    const double x = fabs(distance);
    if (x >= Reach(kernel))
        return 0;
    switch (kernel) {
    case ScaleKernel::Lanczos:
        return Sinc(x) * Sinc(x / 3);
    case ScaleKernel::Bicubic:
        return CatmullRom(x);
    default:
        return 1 - x;
    }
}

// What a line of the result needs of the source: the kernel about `middle`, stretched by `ratio`,
// over the positions `first` to `last`, which may lie outside the picture.
struct Window {
    ScaleKernel kernel;
    double middle;
    double ratio;
    int64_t first;
    int64_t last;
};

Window WindowOf(const LineReducer& reducer, uint32_t line)
{
    Window window = {};
    window.kernel = reducer.kernel;
    window.ratio = static_cast<double>(reducer.from) / reducer.to;
    window.middle = (line + 0.5) * window.ratio;
    const double reach = Reach(reducer.kernel) * window.ratio;
    window.first = static_cast<int64_t>(floor(window.middle - reach));
    window.last = static_cast<int64_t>(ceil(window.middle + reach));
    return window;
}

double WeightAt(const Window& window, int64_t position)
{
    return Weight(window.kernel,
                  (static_cast<double>(position) + 0.5 - window.middle) / window.ratio);
}

double WeightFrom(const Window& window, int64_t first, int64_t last)
{
    double sum = 0;
    for (int64_t position = first; position <= last; ++position)
        sum += WeightAt(window, position);
    return sum;
}

// The share of line y of the source, its mirrored places included.
double ShareOf(const Window& window, int64_t y, int64_t height)
{
    double share =
        WeightAt(window, y) + WeightAt(window, -1 - y) + WeightAt(window, 2 * height - 1 - y);
    if (y == height - 1)
        share += WeightFrom(window, window.first, -1 - height);
    if (y == 0)
        share += WeightFrom(window, 2 * height, window.last);
    return share;
}

uint32_t LastLineOf(const LineReducer& reducer, const Window& window)
{
    return window.last < reducer.from ? static_cast<uint32_t>(window.last) : reducer.from - 1;
}

double* SumsOf(const LineReducer& reducer, uint32_t line)
{
    return reducer.sums + size_t{3} * reducer.width * (line % summedLines);
}

void Add(const LineReducer& reducer, uint32_t line, double share, uint32_t left, uint32_t right,
         float* const planes[3])
{
    for (uint32_t plane = 0; plane < 3; ++plane) {
        double* sums = SumsOf(reducer, line) + size_t{plane} * reducer.width;
        for (uint32_t x = left; x < right; ++x)
            sums[x] += share * static_cast<double>(planes[plane][x]);
    }
}

bool HandOn(LineReducer* reducer, const Window& window, uint32_t left, uint32_t right)
{
    const size_t width = reducer->width;
    double* sums = SumsOf(*reducer, reducer->next);
    const double total = WeightFrom(window, window.first, window.last);
    float* const planes[3] = {reducer->line, reducer->line + width, reducer->line + 2 * width};
    for (uint32_t plane = 0; plane < 3; ++plane)
        for (uint32_t x = left; x < right; ++x)
            planes[plane][x] = static_cast<float>(sums[plane * width + x] / total);
    memset(sums, 0, 3 * width * sizeof *sums);
    return reducer->take(reducer->user, reducer->next++, left, right, planes);
}

} // namespace

uint64_t ReducerBytes(uint32_t width)
{
    return uint64_t{3} * width * (summedLines * sizeof(double) + sizeof(float));
}

bool OpenReducer(LineReducer* reducer, ScaleKernel kernel, uint32_t from, ZimgSize to,
                 LineCallback take, void* user)
{
    *reducer = {};
    reducer->kernel = kernel;
    reducer->from = from;
    reducer->to = to.height;
    reducer->width = to.width;
    reducer->take = take;
    reducer->user = user;
    reducer->sums =
        static_cast<double*>(calloc(size_t{3} * summedLines, to.width * sizeof(double)));
    reducer->line = static_cast<float*>(calloc(3, to.width * sizeof(float)));
    return reducer->sums && reducer->line;
}

void CloseReducer(LineReducer* reducer)
{
    free(reducer->sums);
    free(reducer->line);
    *reducer = {};
}

bool ReduceLine(void* user, uint32_t y, uint32_t left, uint32_t right, float* const planes[3])
{
    auto* reducer = static_cast<LineReducer*>(user);
    if (y == 0)
        reducer->next = 0;
    for (uint32_t line = reducer->next; line < reducer->to; ++line) {
        const Window window = WindowOf(*reducer, line);
        if (window.first > y)
            break;
        Add(*reducer, line, ShareOf(window, y, reducer->from), left, right, planes);
    }
    while (reducer->next < reducer->to) {
        const Window window = WindowOf(*reducer, reducer->next);
        if (LastLineOf(*reducer, window) > y)
            break;
        if (!HandOn(reducer, window, left, right))
            return false;
    }
    return true;
}
