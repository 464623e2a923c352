#include "standard-plugins/levels/LevelsTable.h"

#include "standard-plugins/common/adjusting/ToneTables.h"

#include <math.h>

namespace
{

double Place(double value, double black, double white)
{
    if (value <= black)
        return 0;
    return value >= white ? 1 : (value - black) / (white - black);
}

} // namespace

void FillLevels(uint8_t table[256], const Levels& levels)
{
    const double black = levels.inputBlack;
    const double white = levels.inputWhite > levels.inputBlack ? levels.inputWhite : black + 1;
    const double low = levels.outputBlack;
    const double high = levels.outputWhite;
    const double exponent = plainGamma / static_cast<double>(levels.gamma);
    for (uint32_t value = 0; value < 256; ++value)
        table[value] = RoundedTone(low + (high - low) * pow(Place(value, black, white), exponent));
}
