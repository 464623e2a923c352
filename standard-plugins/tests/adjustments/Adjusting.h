// An adjustment against a function of the test's own: what should become of a colour.
#pragma once

#include "standard-plugins/tests/support/Changing.h"

#include <array>

namespace plugintest
{

/// Red, green, blue.
using Color = std::array<u8, 3>;
using ColorChange = std::function<Color(Color)>;

/// The nearest whole number, a half up, cut to 0 .. 255.
u8 Nearest(double value);
/// The same where the exact value is known to be a fraction with a small divisor, and a half may
/// lie a little beside where it should.
u8 NearestOfFraction(double value);
/// Every value of 0 to 255 in each colour, by different ways.
u8 Ramp(u32 x, u32 y, int channel);
/// A picture of a single colour.
Samples Flat(Color color);
/// The pictures that every adjustment is held against: the ramp, and wild ones of each width from 1
/// to 33.
struct Subject {
    u32 width;
    u32 height;
    Samples samples;
};
std::vector<Subject> Subjects();
/// What should come of a picture.
Pixels Changed(Pixels pixels, const ColorChange& change);
/// "3,2: 1 2 3 instead of 4 5 6" for the first pixel that differs; empty where all are alike.
std::string Difference(const Pixels& got, const Pixels& expected);
/// The values of one colour.
std::vector<u8> ChannelOf(const Pixels& pixels, u32 channel);

class AdjustTest : public ChangeTest<AdjustPlugin>
{
protected:
    Pixels Adjusted(u32 width, u32 height, const Samples& samples);
    /// What becomes of a single pixel that is the whole picture.
    Color Adjusted(Color color);
    /// Runs over all subjects.
    void ExpectEverywhere(const ColorChange& change);
    void ExpectNothingChanged();
};

} // namespace plugintest
