#include "standard-plugins/curves/MonotoneCurve.h"

#include "standard-plugins/common/adjusting/ToneTables.h"

#include <math.h>

namespace
{

constexpr uint32_t pieces = curvePoints - 1;
// The squared radius of the circle in which the slopes keep a piece monotone.
constexpr double mostSquares = 9;

double WidthOf(uint32_t piece)
{
    return curveInputs[piece + 1] - curveInputs[piece];
}

double MeanSlope(double left, double right)
{
    return left * right > 0 ? (left + right) / 2 : 0;
}

void LimitSlopes(double* left, double* right, double line)
{
    if (line == 0) {
        *left = *right = 0;
        return;
    }
    const double a = *left / line;
    const double b = *right / line;
    const double squares = a * a + b * b;
    if (squares <= mostSquares)
        return;
    const double factor = 3 / sqrt(squares);
    *left = factor * a * line;
    *right = factor * b * line;
}

void FindSlopes(double slopes[curvePoints], const uint32_t outputs[curvePoints])
{
    double lines[pieces];
    for (uint32_t piece = 0; piece < pieces; ++piece)
        lines[piece] = (static_cast<double>(outputs[piece + 1]) - outputs[piece]) / WidthOf(piece);
    slopes[0] = lines[0];
    slopes[pieces] = lines[pieces - 1];
    for (uint32_t point = 1; point < pieces; ++point)
        slopes[point] = MeanSlope(lines[point - 1], lines[point]);
    for (uint32_t piece = 0; piece < pieces; ++piece)
        LimitSlopes(&slopes[piece], &slopes[piece + 1], lines[piece]);
}

struct CurveEnd {
    double output;
    double slope;
};

// The cubic between two points, at `t` from 0 to 1.
double Hermite(const CurveEnd& left, const CurveEnd& right, double width, double t)
{
    const double square = t * t;
    const double cube = square * t;
    return (2 * cube - 3 * square + 1) * left.output +
           (cube - 2 * square + t) * width * left.slope + (3 * square - 2 * cube) * right.output +
           (cube - square) * width * right.slope;
}

} // namespace

void FillCurve(uint8_t table[256], const uint32_t outputs[curvePoints])
{
    double slopes[curvePoints];
    FindSlopes(slopes, outputs);
    for (uint32_t piece = 0; piece < pieces; ++piece) {
        const CurveEnd left = {static_cast<double>(outputs[piece]), slopes[piece]};
        const CurveEnd right = {static_cast<double>(outputs[piece + 1]), slopes[piece + 1]};
        for (uint32_t value = curveInputs[piece]; value <= curveInputs[piece + 1]; ++value)
            table[value] = RoundedTone(Hermite(left, right, WidthOf(piece),
                                               (value - curveInputs[piece]) / WidthOf(piece)));
    }
}
