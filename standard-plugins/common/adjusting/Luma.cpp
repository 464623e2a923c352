#include "standard-plugins/common/adjusting/Luma.h"

namespace
{

struct Weights {
    uint32_t blue;
    uint32_t green;
    uint32_t red;
    uint32_t sum;
};

constexpr Weights weights[] = {{114, 587, 299, 1000}, {722, 7152, 2126, 10000}, {1, 1, 1, 3}};

} // namespace

uint8_t LumaOf(const uint8_t* pixel, LumaKind kind)
{
    const Weights& each = weights[static_cast<uint8_t>(kind)];
    const uint32_t total = each.blue * pixel[0] + each.green * pixel[1] + each.red * pixel[2];
    return static_cast<uint8_t>((2 * total + each.sum) / (2 * each.sum));
}
