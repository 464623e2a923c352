// The plugins that reduce the colours of a picture, in the hands of the program's host.

#include "plugin/SubtractPlugin.h"
#include "standard-plugins/common/reducing/ColorReducer.h"
#include "standard-plugins/common/reducing/FixedPalettes.h"
#include "standard-plugins/common/reducing/PaletteSurvey.h"
#include "standard-plugins/tests/support/Changing.h"

#include <algorithm>
#include <memory>
#include <set>

using namespace plugintest;

namespace
{

constexpr u32 width = 61;
constexpr u32 height = 47;

class Subtraction : public ChangeTest<SubtractPlugin>
{
protected:
    i32 Subtract(Raster* image, u32 argument = 0)
    {
        CurrentWriterHost().progress.clear();
        CurrentWriterHost().messages.clear();
        const i32 result = plugin.SubtractImage(image, argument, WriterCallbacks());
        image->UnlockAll();
        return result;
    }
    void SetOptimal(u32 colors, u32 diffusion)
    {
        Set(u"OptimalSubtractColors", colors);
        Set(u"OptimalSubtractDiffusion", diffusion);
    }
    void SetFixed(u32 palette, u32 diffusion)
    {
        Set(u"FixedSubtractPalette", palette);
        Set(u"FixedSubtractDiffusion", diffusion);
    }
    /// What comes of the picture in a palette, by the pieces that have tests of their own.
    static Pixels Expected(const Pixels& before, const ReducedPalette& palette, bool diffuses)
    {
        auto reducer = std::make_unique<ColorReducer>();
        EXPECT_TRUE(OpenReducer(reducer.get(), palette, before.width, diffuses));
        Pixels after{before.width, before.height, {}};
        std::vector<u8> row(before.width);
        for (u32 y = 0; y < before.height; ++y) {
            ReduceRow(reducer.get(), before.bytes.data() + size_t{3} * before.width * y,
                      row.data());
            for (const u8 entry : row)
                after.bytes.insert(after.bytes.end(), palette.colors[entry],
                                   palette.colors[entry] + 3);
        }
        CloseReducer(reducer.get());
        return after;
    }
    static ReducedPalette OptimalPalette(const Pixels& picture, u32 most)
    {
        PaletteSurvey* survey = OpenPaletteSurvey();
        for (u32 y = 0; y < picture.height; ++y)
            SurveyRow(survey, picture.bytes.data() + size_t{3} * picture.width * y, picture.width);
        ReducedPalette palette = {};
        TakePalette(survey, most, &palette);
        ClosePaletteSurvey(survey);
        return palette;
    }
    static size_t CountColors(const Pixels& picture)
    {
        std::set<std::array<u8, 3>> colors;
        for (size_t i = 0; i < picture.bytes.size(); i += 3)
            colors.insert({picture.bytes[i], picture.bytes[i + 1], picture.bytes[i + 2]});
        return colors.size();
    }
    static double MeanSquare(const Pixels& a, const Pixels& b)
    {
        double sum = 0;
        for (size_t i = 0; i < a.bytes.size(); ++i)
            sum += (a.bytes[i] - b.bytes[i]) * (a.bytes[i] - b.bytes[i]);
        return sum / static_cast<double>(a.bytes.size());
    }
};

} // namespace

TEST_F(Subtraction, OptimalTakesThePaletteOfThePictureWithDiffusionAndWithout)
{
    Load("Optimal.dll");
    for (const u32 colors : {2u, 16u, 100u, 256u})
        for (const u32 diffusion : {0u, 1u})
            for (const Samples& samples : {Samples(Wild), Samples(Soft)}) {
                SetOptimal(colors, diffusion);
                Raster image;
                Fill(&image, width, height, 24, samples);
                const Pixels before = PixelsOf(width, height, samples);
                ASSERT_EQ(Subtract(&image), 1);
                const Pixels after = PixelsOf(&image);
                EXPECT_EQ(after, Expected(before, OptimalPalette(before, colors), diffusion != 0));
                EXPECT_LE(CountColors(after), colors);
                EXPECT_GE(CountColors(after), colors * 3 / 4);
            }
}

TEST_F(Subtraction, FixedTakesEachOfItsPalettes)
{
    Load("FixedPalette.dll");
    for (u32 number = 0; number < 5; ++number)
        for (const u32 diffusion : {0u, 1u}) {
            SetFixed(number, diffusion);
            Raster image;
            Fill(&image, width, height, 24, Soft);
            ReducedPalette palette;
            FillFixedPalette(static_cast<FixedPalette>(number), &palette);
            ASSERT_EQ(Subtract(&image), 1);
            EXPECT_EQ(PixelsOf(&image),
                      Expected(PixelsOf(width, height, Soft), palette, diffusion != 0))
                << number << " " << diffusion;
        }
}

TEST_F(Subtraction, RedStaysRedAndBlueStaysBlue)
{
    Load("FixedPalette.dll");
    SetFixed(1, 0);
    Raster image;
    Fill(&image, 3, 1, 24,
         [](u32 x, u32, int channel) -> u8 { return static_cast<int>(x) == channel ? 250 : 3; });
    ASSERT_EQ(Subtract(&image), 1);
    EXPECT_EQ(PixelsOf(&image).bytes, (std::vector<u8>{255, 0, 0, 0, 255, 0, 0, 0, 255}));
}

TEST_F(Subtraction, PictureOfFewColoursStaysAsItIs)
{
    Load("Optimal.dll");
    const Samples few = [](u32 x, u32 y, int channel) {
        return static_cast<u8>((x % 16 * 16 + y % 16) * (channel == 0 ? 1 : channel == 1 ? 7 : 13));
    };
    const Pixels before = PixelsOf(width, height, few);
    ASSERT_EQ(CountColors(before), 256u);
    for (const u32 diffusion : {0u, 1u}) {
        SetOptimal(256, diffusion);
        Raster image;
        Fill(&image, width, height, 24, few);
        ASSERT_EQ(Subtract(&image), 1);
        EXPECT_EQ(PixelsOf(&image), before);
    }
    SetOptimal(255, 0);
    Raster image;
    Fill(&image, width, height, 24, few);
    ASSERT_EQ(Subtract(&image), 1);
    EXPECT_LT(CountColors(PixelsOf(&image)), 256u);
}

TEST_F(Subtraction, PaletteOfThePictureIsNearerToItThanTheFixedOnes)
{
    Load("Optimal.dll");
    SetOptimal(216, 0);
    const Pixels before = PixelsOf(width, height, Soft);
    Raster image;
    Fill(&image, width, height, 24, Soft);
    ASSERT_EQ(Subtract(&image), 1);
    const double optimal = MeanSquare(PixelsOf(&image), before);
    Load("FixedPalette.dll");
    SetFixed(0, 0);
    Fill(&image, width, height, 24, Soft);
    ASSERT_EQ(Subtract(&image), 1);
    EXPECT_LT(optimal * 4, MeanSquare(PixelsOf(&image), before));
}

TEST_F(Subtraction, WithoutStoredSettingsItDiffusesAndTakesMostColoursAndWildOnesComeIntoRange)
{
    const auto run = [this](const char* file) {
        Load(file);
        Raster image;
        Fill(&image, width, height, 24, Wild);
        EXPECT_EQ(Subtract(&image), 1);
        return PixelsOf(&image);
    };
    const Pixels optimal = run("Optimal.dll");
    const Pixels fixed = run("FixedPalette.dll");
    SetOptimal(256, 1);
    SetFixed(0, 1);
    EXPECT_EQ(run("Optimal.dll"), optimal);
    EXPECT_EQ(run("FixedPalette.dll"), fixed);
    SetOptimal(4294967295u, 77);
    EXPECT_EQ(run("Optimal.dll"), optimal);
    SetOptimal(0, 1);
    EXPECT_EQ(CountColors(run("Optimal.dll")), 2u);
    SetFixed(1000, 1);
    EXPECT_EQ(CountColors(run("FixedPalette.dll")), 2u) << "black and white is the last";
}

TEST_F(Subtraction, ArgumentHasNoMeaning)
{
    Load("Optimal.dll");
    Pixels first;
    for (const u32 argument : {0u, 1u, 256u, 0xffffffffu}) {
        Raster image;
        Fill(&image, width, height, 24, Wild);
        ASSERT_EQ(Subtract(&image, argument), 1);
        if (first.bytes.empty())
            first = PixelsOf(&image);
        EXPECT_EQ(PixelsOf(&image), first) << argument;
    }
}

TEST_F(Subtraction, ThinPicturesAreReducedToo)
{
    for (const char* file : {"Optimal.dll", "FixedPalette.dll"}) {
        Load(file);
        for (const auto& [across, down] :
             {std::pair<u32, u32>{1, 1}, {1, 300}, {300, 1}, {2, 1}, {65535, 1}, {1, 65535}}) {
            Raster image;
            Fill(&image, across, down, 24, Wild);
            EXPECT_EQ(Subtract(&image), 1) << file << " " << across << " " << down;
            EXPECT_LE(CountColors(PixelsOf(&image)), 256u);
        }
    }
}

TEST_F(Subtraction, OtherDepthsAndEmptyPicturesAreRefusedInBothLanguages)
{
    for (const char* file : {"Optimal.dll", "FixedPalette.dll"})
        for (const u32 language : {9u, 17u}) {
            Load(file, language);
            for (const u32 depth : {8u, 16u, 32u}) {
                Raster image;
                ASSERT_EQ(image.Create(5, 4, depth, nullptr, nullptr), 1);
                EXPECT_EQ(Subtract(&image), -1);
                EXPECT_EQ(OnlyMessage(), language == 9
                                             ? u"Only pictures of 24 bits a pixel can be changed."
                                             : u"変更できるのは 24 ビットの画像だけです。");
            }
            Raster empty;
            EXPECT_EQ(Subtract(&empty), -1);
            EXPECT_EQ(CurrentWriterHost().messages.size(), 1u);
        }
}

TEST_F(Subtraction, RefusalOfEachReportEndsItAndInTheFirstPassThePictureIsAsItWas)
{
    for (const char* file : {"Optimal.dll", "FixedPalette.dll"}) {
        Load(file);
        Raster image;
        Fill(&image, width, height, 24, Wild);
        const Pixels before = PixelsOf(&image);
        CurrentWriterHost().refuseFrom = -1;
        ASSERT_EQ(Subtract(&image), 1);
        const auto reports = static_cast<int>(CurrentWriterHost().progress.size());
        ASSERT_GE(reports, 40);
        const auto told = CurrentWriterHost().progress;
        EXPECT_EQ(told.back().first, told.back().second);
        for (size_t i = 1; i < told.size(); ++i)
            EXPECT_GT(told[i].first, told[i - 1].first);
        const bool looksFirst = file == std::string("Optimal.dll");
        for (int refused = 0; refused < reports; ++refused) {
            Fill(&image, width, height, 24, Wild);
            CurrentWriterHost().refuseFrom = refused;
            EXPECT_EQ(Subtract(&image), -9) << refused;
            EXPECT_EQ(CurrentWriterHost().progress.size(), static_cast<size_t>(refused) + 1);
            if (looksFirst && told[static_cast<size_t>(refused)].first <= height) {
                EXPECT_EQ(PixelsOf(&image), before) << refused;
            }
        }
        EXPECT_TRUE(CurrentWriterHost().messages.empty());
    }
}

TEST_F(Subtraction, ProgressIsToldForEveryHundredthOfATallPicture)
{
    for (const char* file : {"Optimal.dll", "FixedPalette.dll"}) {
        Load(file);
        Raster image;
        Fill(&image, 7, 500, 24, Soft);
        ASSERT_EQ(Subtract(&image), 1);
        EXPECT_GE(CurrentWriterHost().progress.size(), 100u);
        EXPECT_LE(CurrentWriterHost().progress.size(), 101u);
    }
}

TEST_F(Subtraction, LineThatCannotBeHadIsAFailureWithASentence)
{
    for (const char* file : {"Optimal.dll", "FixedPalette.dll"})
        for (const u32 language : {9u, 17u})
            for (const int lines : {0, 1, 30}) {
                Load(file, language);
                PretendMemory(1000);
                Raster paged;
                Fill(&paged, width, height, 24, Wild);
                FailLineFilesFrom(lines);
                EXPECT_EQ(Subtract(&paged), -101) << lines;
                EXPECT_EQ(OnlyMessage(), language == 9 ? noLineText : noLineTextJapanese);
                tavrix::testing::Reset();
                PretendMemory(u64{1} << 30);
            }
}

TEST_F(Subtraction, PictureWhoseLinesLieInFilesBecomesTheSame)
{
    for (const char* file : {"Optimal.dll", "FixedPalette.dll"}) {
        Load(file);
        Raster image;
        Fill(&image, width, height, 24, Wild);
        ASSERT_EQ(Subtract(&image), 1);
        PretendMemory(1000);
        Raster paged;
        Fill(&paged, width, height, 24, Wild);
        EXPECT_EQ(Subtract(&paged), 1);
        PretendMemory(u64{1} << 30);
        EXPECT_EQ(PixelsOf(&paged), PixelsOf(&image));
    }
}

TEST_F(Subtraction, HoldsNoPictureBesideTheHosts)
{
    for (const char* file : {"Optimal.dll", "FixedPalette.dll"}) {
        Load(file);
        Raster image;
        Fill(&image, 2000, 1000, 24, Soft); // 6 MB
        MemoryPeak peak;
        CurrentWriterHost().onProgress = [&peak] { peak.Look(); };
        ASSERT_EQ(Subtract(&image), 1);
        CurrentWriterHost().onProgress = nullptr;
        EXPECT_GT(peak.Most(), 50u * 1024);
        EXPECT_LT(peak.Most(), 2u << 20);
    }
}
