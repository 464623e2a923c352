// What all effects have in common in the program's hands: pictures whose lines lie in files,
// failures, a user who gives up, pictures that are none of theirs.

#include "standard-plugins/tests/effects/Effects.h"

using namespace effecttest;

namespace
{

struct Effect {
    const char* file;
    const char16_t* caption;
    const char16_t* japaneseCaption;
};

const Effect effects[] = {
    {"GaussianBlur", u"Gaussian Blur", u"ガウスぼかし"},
    {"Sharpen", u"Sharpen", u"シャープ"},
    {"Emboss", u"Emboss", u"エンボス"},
    {"Edges", u"Edges", u"輪郭抽出"},
    {"Mosaic", u"Mosaic", u"モザイク"},
    {"Median", u"Median", u"メディアン"},
    {"Noise", u"Noise", u"ノイズ"},
    {"OldPhoto", u"Old Photo", u"古い写真"},
    {"Oil", u"Oil Painting", u"油絵"},
    {"Posterise", u"Posterise", u"ポスタリゼーション"},
};

void PrintTo(const Effect& effect, std::ostream* out)
{
    *out << effect.file;
}

std::string NameOf(const testing::TestParamInfo<Effect>& info)
{
    return info.param.file;
}

class EveryEffect : public EffectTest, public testing::WithParamInterface<Effect>
{
protected:
    EveryEffect() { LoadIn(9); }

    void LoadIn(u32 language) { Load(std::string(GetParam().file) + ".dll", language); }
};

INSTANTIATE_TEST_SUITE_P(All, EveryEffect, testing::ValuesIn(effects), NameOf);

} // namespace

TEST_P(EveryEffect, ChangesAPicture)
{
    EXPECT_FALSE(Apply(40, 30, Wild) == PixelsOf(40, 30, Wild));
    EXPECT_EQ(CurrentWriterHost().progress.back(), (std::pair<uint32_t, uint32_t>(30, 30)));
}

TEST_P(EveryEffect, MakesTheSameOfAPictureWhoseLinesLieInFiles)
{
    const Pixels whole = Apply(37, 60, Wild);
    PretendMemory(1000);
    Raster paged;
    Fill(&paged, 37, 60, 24, Wild);
    EXPECT_GT(LineFiles(), 50u);
    EXPECT_EQ(Process(&paged), 1);
    EXPECT_GT(LineFiles(), 50u) << "no more than a line stays in memory";
    ExpectSame(PixelsOf(&paged), whole, "paged");
}

TEST_P(EveryEffect, RefusalLeavesTheLinesThatAreDoneAndThoseThatAreNot)
{
    const Pixels whole = Apply(20, 100, Wild);
    const Pixels before = PixelsOf(20, 100, Wild);
    for (const int refused : {0, 1, 40, 98}) {
        Raster image;
        Fill(&image, 20, 100, 24, Wild);
        CurrentWriterHost().refuseFrom = refused;
        EXPECT_EQ(Process(&image), -9);
        EXPECT_TRUE(CurrentWriterHost().messages.empty()) << "he knows";
        const Pixels after = PixelsOf(&image);
        const u32 done = CurrentWriterHost().progress.back().first;
        for (u32 y = 0; y < 100; ++y)
            for (u32 x = 0; x < 20; ++x)
                ASSERT_EQ(after.At(x, y, 0), (y < done ? whole : before).At(x, y, 0)) << y;
    }
}

TEST_P(EveryEffect, LineThatCannotBeHadIsToldInBothLanguages)
{
    for (const u32 language : {9u, 17u})
        for (const int attempt : {0, 1, 50}) {
            LoadIn(language);
            PretendMemory(1000);
            Raster paged;
            Fill(&paged, 30, 60, 24, Wild);
            FailLineFilesFrom(attempt);
            EXPECT_EQ(Process(&paged), -101) << attempt;
            tavrix::testing::SetFileFault(nullptr);
            EXPECT_EQ(OnlyMessage(), language == 17 ? noLineTextJapanese : noLineText);
            EXPECT_EQ(CurrentWriterHost().captions.back(),
                      language == 17 ? GetParam().japaneseCaption : GetParam().caption);
            EXPECT_EQ(CurrentWriterHost().messageFlags.back(), 16u);
        }
}

TEST_P(EveryEffect, OtherDepthsAndPicturesWithoutPixelsAreRefusedUntouched)
{
    for (const u32 depth : {8u, 16u, 32u}) {
        Raster image;
        ASSERT_EQ(image.Create(9, 7, depth, nullptr, nullptr), 1);
        const auto fill = [&image](bool check) {
            for (i32 y = 0; y < 7; ++y) {
                u8* line = nullptr;
                ASSERT_EQ(image.LockLines(y, &line, nullptr), 1);
                for (u32 i = 0; i < 9; ++i) {
                    if (check) {
                        EXPECT_EQ(line[i], static_cast<u8>(37 * i + static_cast<u32>(y)));
                    }
                    line[i] = static_cast<u8>(37 * i + static_cast<u32>(y));
                }
                image.ReleaseLines(y, 1, 0);
            }
        };
        fill(false);
        EXPECT_EQ(Process(&image), -1);
        EXPECT_EQ(OnlyMessage(), u"Only pictures of 24 bits a pixel can be changed.");
        fill(true);
    }
    Raster empty;
    EXPECT_EQ(Process(&empty), -1);
    EXPECT_EQ(OnlyMessage(), u"The picture has no pixels.");
}

TEST_P(EveryEffect, TakesTheTallestTheWidestAndTheSmallestPicture)
{
    for (const auto& [width, height] : {std::pair{1u, 1u}, {1u, 3000u}, {3000u, 1u}, {2u, 2u}}) {
        Raster image;
        Fill(&image, width, height, 24, Patchy);
        EXPECT_EQ(Process(&image), 1) << width << "x" << height;
        EXPECT_EQ(PixelsOf(&image).bytes.size(), size_t{3} * width * height);
    }
}

TEST_P(EveryEffect, HoldsABandOfRowsAlone)
{
    Raster image;
    Fill(&image, 300, 1500, 24, [](u32 x, u32 y, int) { return static_cast<u8>(x + y); });
    MemoryPeak peak;
    CurrentWriterHost().onProgress = [&peak] { peak.Look(); };
    EXPECT_EQ(Process(&image), 1);
    EXPECT_LT(peak.Most(), 200'000u) << "the picture has 1,350,000 bytes";
}
