// Showing a raster on a surface of depth 2: error diffusion into four greys.

#include "pixel/tests/PlainGrey.h"
#include "platform/testing/Faults.h"

#include <handheld.h>

using namespace tavrix::testing;

namespace
{

using GreyDiffusion = PagingTest;

constexpr LONG AfterThem = 0x5EED; // stands behind the numbers that a frame should take

/// Numbers whose low bytes run through all values; what stands above them must not matter.
std::vector<LONG> Noise(u32 seed, size_t count)
{
    std::mt19937 random(seed);
    std::vector<LONG> numbers(count);
    for (LONG& number : numbers)
        number = static_cast<LONG>(random());
    return numbers;
}

void Arm(std::vector<LONG> numbers, size_t taken)
{
    numbers.resize(taken);
    numbers.push_back(AfterThem);
    SetRandom(numbers);
}

/// Result and bits as the formula's, and one random number taken for each pixel.
void ExpectAsFormula(SurfaceTwin& shown, Twin& picture, const std::vector<LONG>& numbers,
                     u32 method = 0)
{
    size_t taken = 0;
    const i32 expected = PlainPresentGrey(shown.plain, picture.plain, numbers, &taken);
    Arm(numbers, taken);
    EXPECT_EQ(shown.surface.Present(&picture.raster, method), expected);
    EXPECT_EQ(::Random(), AfterThem) << "one number for each pixel that is drawn";
    shown.ExpectSame();
}

/// The levels of one row of greys, each pixel's byte the same in all channels.
std::vector<u32> LevelsOf(const std::vector<u8>& greys, const std::vector<LONG>& numbers)
{
    const u32 width = static_cast<u32>(greys.size());
    Twin picture(width, 1, 24, 1);
    Rows rows(1, std::vector<u8>(picture.plain.stride));
    for (u32 x = 0; x < width * 3; ++x)
        rows[0][x] = greys[x / 3];
    picture.SetRows(rows);
    ScreenSurface surface;
    EXPECT_EQ(surface.Create(width, 1, 2), 1);
    SetRandom(numbers);
    EXPECT_EQ(surface.Present(&picture.raster, 0), 1);
    PlainSurface read(width, 1, 2);
    read.bits = BitsOf(surface);
    std::vector<u32> levels;
    for (u32 x = 0; x < width; ++x)
        levels.push_back(read.LevelAt(x, 0));
    return levels;
}

using Levels = std::vector<u32>;

u32 LevelOf(u8 grey, LONG number)
{
    return LevelsOf({grey}, {number})[0];
}

} // namespace

TEST_F(GreyDiffusion, TheTopBandBeginsAt196AndNotAt192)
{
    EXPECT_EQ(LevelOf(0, 0), 0u);
    EXPECT_EQ(LevelOf(63, 0), 0u);
    EXPECT_EQ(LevelOf(64, 0), 1u);
    EXPECT_EQ(LevelOf(127, 0), 1u);
    EXPECT_EQ(LevelOf(128, 0), 2u);
    EXPECT_EQ(LevelOf(192, 0), 2u);
    EXPECT_EQ(LevelOf(195, 0), 2u);
    EXPECT_EQ(LevelOf(196, 0), 3u);
    EXPECT_EQ(LevelOf(255, 0), 3u);
}

TEST_F(GreyDiffusion, TheNoiseIsTheSignedLowByteOver32TowardsZero)
{
    // The lowest grey that is no longer black is 64 plus the noise.
    const auto threshold = [](LONG number) {
        for (u32 grey = 0; grey < 256; ++grey)
            if (LevelOf(static_cast<u8>(grey), number) != 0)
                return static_cast<i32>(grey) - 64;
        return 999;
    };
    EXPECT_EQ(threshold(0), 0);
    EXPECT_EQ(threshold(31), 0);
    EXPECT_EQ(threshold(32), 1);
    EXPECT_EQ(threshold(127), 3);
    EXPECT_EQ(threshold(128), -4);
    EXPECT_EQ(threshold(129), -3); // -127 / 32, towards zero
    EXPECT_EQ(threshold(224), -1); // -32
    EXPECT_EQ(threshold(225), 0);  // -31
    EXPECT_EQ(threshold(255), 0);
    EXPECT_EQ(threshold(0x7FFFFF80), -4);
    EXPECT_EQ(threshold(0x7FFFFF1F), 0);
}

TEST_F(GreyDiffusion, ErrorsAreCarriedUnclamped)
{
    // 66 with noise 3 is black and leaves 66; 7/16 of it make the next 255 a 283, which leaves 28;
    // that makes the 186 a 198. Cut to 255 it would have stayed 186, below the top band.
    EXPECT_EQ(LevelsOf({66, 255, 186}, {127, 0, 0}), (Levels{0, 3, 3}));
    // 196 is the top band and leaves -59, which makes the 0 a -25; 7/16 of that is -10.9, cut
    // towards zero, and 74 becomes 64. Cut to 0 it would have left nothing.
    EXPECT_EQ(LevelsOf({196, 0, 74}, {0, 0, 0}), (Levels{3, 0, 1}));
    EXPECT_EQ(LevelsOf({196, 0, 73}, {0, 0, 0}), (Levels{3, 0, 0}));
}

TEST_F(GreyDiffusion, LumaWeighsGreenMostAndBlueLeast)
{
    const auto level = [](u8 blue, u8 green, u8 red) {
        Twin picture(1, 1, 24, 1);
        picture.SetRows({{blue, green, red, 0}});
        ScreenSurface surface;
        EXPECT_EQ(surface.Create(1, 1, 2), 1);
        SetRandom({0});
        EXPECT_EQ(surface.Present(&picture.raster, 0), 1);
        return BitsOf(surface)[0] >> 6;
    };
    EXPECT_EQ(level(255, 0, 0), 0);   // 27
    EXPECT_EQ(level(0, 255, 0), 2);   // 150
    EXPECT_EQ(level(0, 0, 255), 1);   // 76
    EXPECT_EQ(level(0, 255, 151), 2); // (151 * 255 + 77 * 151) >> 8 = 195
    EXPECT_EQ(level(0, 255, 152), 3); // 196
    EXPECT_EQ(level(0, 0, 212), 0);   // 63
    EXPECT_EQ(level(0, 0, 213), 1);   // 64
}

TEST_F(GreyDiffusion, TheFirstPixelStandsInTheTopTwoBits)
{
    EXPECT_EQ(LevelsOf({255, 0, 0, 0, 255}, {0, 0, 0, 0, 0}), (Levels{3, 0, 0, 0, 3}));
    Twin picture(5, 1, 24, 1);
    Rows rows(1, std::vector<u8>(16));
    for (u32 channel = 0; channel < 3; ++channel)
        rows[0][channel] = rows[0][12 + channel] = 255;
    picture.SetRows(rows);
    ScreenSurface surface;
    ASSERT_EQ(surface.Create(5, 1, 2), 1);
    SetRandom({0, 0, 0, 0, 0});
    ASSERT_EQ(surface.Present(&picture.raster, 0), 1);
    EXPECT_EQ(BitsOf(surface), (std::vector<u8>{0xC0, 0xC0, 0, 0}));
}

TEST_F(GreyDiffusion, EveryGreyMeetsEveryNoise)
{
    // A row a noise, a column a grey, and a black picture's worth of errors between them.
    Twin picture(256, 256, 24, 1);
    Rows rows(256, std::vector<u8>(picture.plain.stride));
    std::vector<LONG> numbers;
    for (u32 y = 0; y < 256; ++y)
        for (u32 x = 0; x < 256; ++x) {
            for (u32 channel = 0; channel < 3; ++channel)
                rows[y][x * 3 + channel] = static_cast<u8>(x);
            numbers.push_back(static_cast<LONG>(y | x << 8 | y << 20));
        }
    picture.SetRows(rows);
    SurfaceTwin shown(256, 256, 2, 2);
    ExpectAsFormula(shown, picture, numbers);
}

TEST_F(GreyDiffusion, EveryWidthIsAsTheFormulaSays)
{
    for (u32 width = 1; width <= 33; ++width) {
        Twin picture(width, 7, 24, width);
        picture.SetRows(RandomRows(width, 7, picture.plain.stride));
        SurfaceTwin shown(width, 7, 2, width);
        ExpectAsFormula(shown, picture, Noise(width, 7 * width));
    }
}

TEST_F(GreyDiffusion, SizesThatDifferMeetAtTheTopLeft)
{
    Places places(72);
    for (int round = 0; round < 60; ++round) {
        Twin picture(1 + places.Below(80), 1 + places.Below(12), 24, places.Below(99));
        picture.SetRows(RandomRows(places.Word(), picture.plain.height, picture.plain.stride));
        SurfaceTwin shown(1 + places.Below(80), 1 + places.Below(12), 2, places.Below(99));
        ExpectAsFormula(shown, picture, Noise(places.Word(), 80 * 12));
    }
    Twin picture(1000, 9, 24, 3);
    SurfaceTwin shown(257, 20, 2, 4);
    ExpectAsFormula(shown, picture, Noise(5, 257 * 9));
}

TEST_F(GreyDiffusion, ADrawnRowIsClearedWholeAndTheRowsBelowKeepTheirFrame)
{
    Twin picture(3, 2, 24, 5);
    picture.SetRows(Rows(2, std::vector<u8>(picture.plain.stride, 255)));
    SurfaceTwin shown(40, 4, 2, 6); // 12 bytes a row
    const std::vector<u8> before = BitsOf(shown.surface);
    SetRandom({0, 0, 0, 0, 0, 0});
    ASSERT_EQ(shown.surface.Present(&picture.raster, 0), 1);
    const std::vector<u8> after = BitsOf(shown.surface);
    ASSERT_EQ(after.size(), 48u);
    for (size_t at = 0; at < 24; ++at)
        EXPECT_EQ(after[at], before[at]) << "a row below, byte " << at;
    for (size_t at = 24; at < 48; ++at)
        EXPECT_EQ(after[at], at % 12 == 0 ? 0xFC : 0) << "byte " << at;
}

TEST_F(GreyDiffusion, TheMethodIsNotLookedAt)
{
    Twin picture(9, 4, 24, 7);
    for (const u32 method : {0u, 1u, 2u, 0xFFFFFFFFu}) {
        SurfaceTwin shown(9, 4, 2, 8);
        ExpectAsFormula(shown, picture, Noise(9, 36), method);
    }
}

TEST_F(GreyDiffusion, NoTwoFramesAreAlike)
{
    Twin picture(64, 64, 24, 1);
    picture.SetRows(Rows(64, std::vector<u8>(picture.plain.stride, 96)));
    ScreenSurface surface;
    ASSERT_EQ(surface.Create(64, 64, 2), 1);
    ASSERT_EQ(surface.Present(&picture.raster, 0), 1);
    const std::vector<u8> first = BitsOf(surface);
    ASSERT_EQ(surface.Present(&picture.raster, 0), 1);
    EXPECT_NE(BitsOf(surface), first);
}

TEST_F(GreyDiffusion, TheRowsOfAPagingPictureAreReleasedOneByOne)
{
    // The line files draw their names from the same numbers, so all of them make the same noise.
    std::vector<LONG> numbers;
    for (LONG at = 0; at < 2000; ++at)
        numbers.push_back(at << 8 | 0x60);
    for (const u32 height : {2u, 5u, 9u}) {
        Twin picture(13, height, 24, height, Storage::Paging);
        SurfaceTwin shown(11, 6, 2, 3);
        const WithShortMemory memory;
        SetRandom(numbers);
        EXPECT_EQ(shown.surface.Present(&picture.raster, 0), 1);
        size_t taken = 0;
        EXPECT_EQ(PlainPresentGrey(shown.plain, picture.plain, numbers, &taken), 1);
        shown.ExpectSame();
        ExpectSame({&picture});
    }
}

TEST_F(GreyDiffusion, ARefusedLineEndsTheFrameBeforeItsRowIsCleared)
{
    for (u32 line = 0; line < 6; ++line) {
        Twin picture(10, 6, 24, line, Storage::Paging);
        SurfaceTwin shown(12, 5, 2, line);
        picture.Refuse(line);
        const std::vector<LONG> numbers = Noise(line, 50);
        size_t taken = 0;
        EXPECT_EQ(PlainPresentGrey(shown.plain, picture.plain, numbers, &taken), line < 5 ? -2 : 1);
        Arm(numbers, taken);
        EXPECT_EQ(shown.surface.Present(&picture.raster, 0), line < 5 ? -2 : 1);
        EXPECT_EQ(::Random(), AfterThem);
        shown.ExpectSame();
        ExpectSame({&picture});
    }
}

TEST_F(GreyDiffusion, WithoutMemoryForTheErrorsNothingIsDrawn)
{
    Twin picture(7, 3, 24, 1);
    SurfaceTwin shown(7, 3, 2, 2);
    const std::vector<u8> before = shown.plain.bits;
    void* const bits = SectionOf(shown.surface).bmBits;
    const std::vector<LONG> numbers = Noise(3, 21);
    i32 result = 0;
    ForEveryFault(
        FaultKind::Allocation,
        [&] {
            shown.plain.bits = before;
            std::memcpy(bits, before.data(), before.size());
            SetRandom(numbers);
            result = shown.surface.Present(&picture.raster, 0);
        },
        [&](bool fired) {
            EXPECT_EQ(result, fired ? -2 : 1);
            size_t taken = 0;
            if (result == 1)
                (void)PlainPresentGrey(shown.plain, picture.plain, numbers, &taken);
            shown.ExpectSame();
            ExpectSame({&picture});
        });
}
