#include "view/ResizeCalculator.h"

#include "foundation/Numbers.h"

#include <cmath>

namespace
{

f64 RoundHalfUp(f64 value)
{
    const f64 whole = std::floor(value);
    return value - whole >= 0.5 ? whole + 1.0 : whole;
}

} // namespace

void TypeSize(ResizeCalculator& calculator, const ResizeSide& side, f64 value)
{
    const u32 base = calculator.*side.base;
    if (calculator.*side.unit == ResizeCalculator::Percent)
        calculator.*side.scale = value * 0.01;
    else if (base != 0)
        calculator.*side.scale = RoundHalfUp(value) / base;
}

void KeepAspect(ResizeCalculator& calculator, const ResizeSide& side)
{
    const f64 scale = calculator.*side.scale;
    calculator.scaleX = scale;
    calculator.scaleY = scale;
}

u32 SizeToShow(ResizeCalculator& calculator, const ResizeSide& side)
{
    const f64 scale = calculator.*side.scale;
    const u32 shown = calculator.*side.unit == ResizeCalculator::Percent
                          ? TruncateToUnsigned(RoundHalfUp(scale * 100))
                          : WantedSize(calculator, side);
    calculator.*side.value = shown;
    return shown;
}

u32 WantedSize(const ResizeCalculator& calculator, const ResizeSide& side)
{
    return TruncateToUnsigned(RoundHalfUp(calculator.*side.base * (calculator.*side.scale)));
}
