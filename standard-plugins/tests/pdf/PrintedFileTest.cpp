// Printed files as other programs read them: the form, the picture bit for bit, the paper, the
// title, and where on the page the picture lies.

#include "standard-plugins/tests/pdf/Printing.h"

#include "foundation/MemoryGauge.h"

using namespace pdftest;

namespace
{

class PrintedFile : public PrintTest
{
protected:
    PrintedFile() { SetFile("page.pdf"); }

    void SetNumber(const std::u16string& name, u32 value)
    {
        CurrentTold().numbers[u"PdfPrint" + name] = value;
    }
    /// Prints over what was printed before.
    i32 PrintAgain(u32 width, u32 height, const Colours& colours, const WCHAR* title = nullptr)
    {
        SetNumber(u"Replace", 1);
        return Print(width, height, colours, title);
    }
    /// Where the page is not white, in points from its top left corner. A page is drawn with two
    /// pixels a point, of which an edge covers those that it cuts and those that it touches.
    void ExpectDrawn(double left, double top, double right, double bottom)
    {
        const Ran ran = Shell("pdftoppm -r 144 " + Quoted(pdf) +
                              " | convert ppm:- -bordercolor white -border 1 -fuzz 20% "
                              "-format '%@' info:");
        int width = 0;
        int height = 0;
        int x = 0;
        int y = 0;
        ASSERT_EQ(std::sscanf(ran.output.c_str(), "%dx%d+%d+%d", &width, &height, &x, &y), 4)
            << ran.output;
        EXPECT_NEAR((x - 1) / 2.0, left, 0.5);
        EXPECT_NEAR((y - 1) / 2.0, top, 0.5);
        EXPECT_NEAR((x - 1 + width) / 2.0, right, 0.5);
        EXPECT_NEAR((y - 1 + height) / 2.0, bottom, 0.5);
    }
    std::string PageSize() { return InfoOf(pdf, "Page size"); }

    std::string pdf = Path("page.pdf");
};

uint8_t Red(u32, u32, u32 channel)
{
    return channel == 0 ? 255 : 0;
}

} // namespace

TEST_F(PrintedFile, GivesBackPicturesOfEveryNarrowWidthBitForBit)
{
    for (u32 width = 1; width <= 17; ++width) {
        ASSERT_EQ(PrintAgain(width, 5, Noise), 1) << width;
        ExpectSound(pdf);
        EXPECT_EQ(Difference(pdf, width, 5, Noise), "") << width;
    }
}

TEST_F(PrintedFile, GivesBackOnePixelOneColumnOneLineAndALargePicture)
{
    const u32 sizes[][2] = {{1, 1}, {1, 300}, {300, 1}, {643, 481}, {2, 5000}, {12000, 5}};
    for (const auto& size : sizes) {
        ASSERT_EQ(PrintAgain(size[0], size[1], Noise), 1) << size[0];
        ExpectSound(pdf);
        EXPECT_EQ(Difference(pdf, size[0], size[1], Noise), "") << size[0] << "x" << size[1];
    }
}

TEST_F(PrintedFile, GivesBackSmoothColours)
{
    const Colours smooth = [](u32 x, u32 y, u32 channel) {
        return static_cast<uint8_t>(channel == 0 ? x : channel == 1 ? y : x + y);
    };
    ASSERT_EQ(Print(256, 256, smooth), 1);
    ExpectSound(pdf);
    EXPECT_EQ(Difference(pdf, 256, 256, smooth), "");
    // Of 196,608 bytes: every row but for its first pixel repeats one difference.
    EXPECT_LT(FileBytes(pdf).size(), 8000u);
}

TEST_F(PrintedFile, HoldsOneDeflatedPictureOfThreeTimesEightBits)
{
    ASSERT_EQ(Print(31, 7, Noise), 1);
    const std::string list = Shell("pdfimages -list " + Quoted(pdf)).output;
    std::istringstream lines(list.substr(list.rfind("---") + 4));
    std::vector<std::string> words;
    for (std::string word; lines >> word;)
        words.push_back(word);
    ASSERT_GE(words.size(), 11u) << list;
    const std::vector<std::string> first(words.begin(), words.begin() + 10);
    EXPECT_EQ(first, (std::vector<std::string>{"1", "0", "image", "31", "7", "rgb", "3", "8",
                                               "image", "no"}))
        << list;
    EXPECT_EQ(words.size() % 16, 0u) << "more than one picture:\n" << list;
}

TEST_F(PrintedFile, ShowsThirtyTwoBitsWithoutTheirFourthByte)
{
    Raster image;
    Fill(&image, 19, 6, 32, Noise);
    ASSERT_EQ(Print(&image), 1);
    ExpectSound(pdf);
    EXPECT_EQ(Difference(pdf, 19, 6, Noise), "");
}

TEST_F(PrintedFile, ShowsEightBitsAsGreysWithoutAPalette)
{
    Raster image;
    Fill(&image, 40, 30, 8, Noise);
    ASSERT_EQ(Print(&image), 1);
    ExpectSound(pdf);
    EXPECT_EQ(Difference(pdf, 40, 30, [](u32 x, u32 y, u32) { return Noise(x, y, 0); }), "");
}

TEST_F(PrintedFile, IsTheSameForAPictureWhoseLinesLieInFiles)
{
    Raster image;
    tavrix::testing::SetFreeMemory(1000);
    MemoryGauge::Sample();
    Fill(&image, 53, 71, 24, Noise);
    ASSERT_EQ(Print(&image), 1);
    tavrix::testing::SetFreeMemory(1u << 30);
    MemoryGauge::Sample();
    EXPECT_EQ(Difference(pdf, 53, 71, Noise), "");
}

TEST_F(PrintedFile, BearsTheTitleOfTheJob)
{
    const std::pair<const WCHAR*, const char*> titles[] = {
        {u"boat.png", "boat.png"},
        {u"a (1) \\ b).jpg", "a (1) \\ b).jpg"},
        {u"港の写真 (2).jpg", "港の写真 (2).jpg"},
        {u"Caf\u00e9 \U0001F600", "Caf\u00e9 \U0001F600"},
    };
    for (const auto& [title, read] : titles) {
        ASSERT_EQ(PrintAgain(3, 3, Red, title), 1);
        ExpectSound(pdf);
        EXPECT_EQ(InfoOf(pdf, "Title"), read);
    }
    for (const WCHAR* title : {static_cast<const WCHAR*>(nullptr), u""}) {
        ASSERT_EQ(PrintAgain(3, 3, Red, title), 1);
        ExpectSound(pdf);
        EXPECT_EQ(InfoOf(pdf, "Title"), "(none)");
    }
}

TEST_F(PrintedFile, TellsItsProducerAndWhenItWasMade)
{
    tavrix::testing::SetSystemTime({.wYear = 2026,
                                    .wMonth = 2,
                                    .wDayOfWeek = 0,
                                    .wDay = 3,
                                    .wHour = 4,
                                    .wMinute = 5,
                                    .wSecond = 6,
                                    .wMilliseconds = 7});
    ASSERT_EQ(Print(3, 3, Red), 1);
    EXPECT_EQ(InfoOf(pdf, "Producer"), "Tavrix");
    EXPECT_EQ(InfoOf(pdf, "CreationDate"), "2026-02-03T04:05:06Z");
    EXPECT_EQ(InfoOf(pdf, "Pages"), "1");
    EXPECT_EQ(InfoOf(pdf, "PDF version"), "1.4");
}

TEST_F(PrintedFile, IsOnThePaperThatWasChosen)
{
    const char* upright[] = {
        "595.28 x 841.89 pts (A4)", "419.53 x 595.28 pts", "841.89 x 1190.55 pts (A3)",
        "612 x 792 pts (letter)",   "612 x 1008 pts",      "72 x 144 pts"};
    const char* lying[] = {
        "841.89 x 595.28 pts (A4)", "595.28 x 419.53 pts", "1190.55 x 841.89 pts (A3)",
        "792 x 612 pts (letter)",   "1008 x 612 pts",      "144 x 72 pts"};
    SetNumber(u"Margin", 0);
    for (u32 paper = 0; paper < 6; ++paper) {
        SetNumber(u"Paper", paper);
        ASSERT_EQ(PrintAgain(96, 192, Red), 1);
        EXPECT_EQ(PageSize(), upright[paper]);
        ExpectSound(pdf);
        ASSERT_EQ(PrintAgain(192, 96, Red), 1);
        EXPECT_EQ(PageSize(), lying[paper]);
    }
}

TEST_F(PrintedFile, StandsOnA4WithMarginsOfTenMillimetresWithoutSettings)
{
    ASSERT_EQ(PrintAgain(600, 800, Red), 1);
    EXPECT_EQ(PageSize(), "595.28 x 841.89 pts (A4)");
    // 28.35 points on each side; what is left over, in halves above and below.
    ExpectDrawn(28.35, 61.89, 566.93, 780.00);
    ASSERT_EQ(PrintAgain(800, 600, Red), 1);
    EXPECT_EQ(PageSize(), "841.89 x 595.28 pts (A4)");
    ExpectDrawn(61.89, 28.35, 780.00, 566.93);
}

TEST_F(PrintedFile, LiesAsItIsToldWhateverThePictureIs)
{
    SetNumber(u"Orientation", 1);
    ASSERT_EQ(PrintAgain(800, 600, Red), 1);
    EXPECT_EQ(PageSize(), "595.28 x 841.89 pts (A4)");
    ExpectDrawn(28.35, 218.97, 566.93, 622.91);
    SetNumber(u"Orientation", 2);
    ASSERT_EQ(PrintAgain(600, 800, Red), 1);
    EXPECT_EQ(PageSize(), "841.89 x 595.28 pts (A4)");
    ExpectDrawn(218.97, 28.35, 622.91, 566.93);
}

TEST_F(PrintedFile, HasItsRealSizeInTheMiddleOfThePage)
{
    SetNumber(u"Fit", 0);
    SetNumber(u"Resolution", 48);
    SetNumber(u"Paper", 3);
    ASSERT_EQ(PrintAgain(96, 192, Red), 1); // 2 by 4 inches on 612 by 792 points
    ExpectDrawn(234, 252, 378, 540);
    SetNumber(u"Margin", 50); // the middle stays where it is
    ASSERT_EQ(PrintAgain(96, 192, Red), 1);
    ExpectDrawn(234, 252, 378, 540);
    SetNumber(u"Resolution", 10); // 9.6 by 19.2 inches: smaller, until it fits
    ASSERT_EQ(PrintAgain(96, 192, Red), 1);
    ExpectDrawn(178.87, 141.73, 433.13, 650.27);
}

TEST_F(PrintedFile, ShowsThePictureUprightWithItsOwnColours)
{
    // Four quarters: red and green above blue and cyan.
    const Colours quarters = [](u32 x, u32 y, u32 channel) -> uint8_t {
        const int quarter = static_cast<int>(x / 8 + 2 * (y / 8));
        const uint8_t colours[4][3] = {{255, 0, 0}, {0, 255, 0}, {0, 0, 255}, {0, 255, 255}};
        return colours[quarter][channel];
    };
    SetNumber(u"Paper", 5);
    SetNumber(u"Margin", 0);
    SetNumber(u"Resolution", 10);
    ASSERT_EQ(Print(16, 16, quarters), 1);
    const Ran ran = Shell("pdftoppm -r 10 " + Quoted(pdf) + " | convert ppm:- -depth 8 rgb:-");
    ASSERT_EQ(ran.output.size(), 16u * 16 * 3);
    for (const u32 y : {3u, 12u})
        for (const u32 x : {3u, 12u})
            for (u32 channel = 0; channel < 3; ++channel)
                EXPECT_EQ(static_cast<uint8_t>(ran.output[(y * 16 + x) * 3 + channel]),
                          quarters(x, y, channel))
                    << x << "," << y;
}

TEST_F(PrintedFile, WildSettingsAreBroughtIntoTheirRange)
{
    for (const char16_t* name :
         {u"Paper", u"Orientation", u"Margin", u"Fit", u"Resolution", u"Replace"})
        SetNumber(name, 0xFFFFFFFF);
    ASSERT_EQ(Print(240, 240, Red), 1); // the picture's own size at 2400, within 50 millimetres
    ExpectSound(pdf);
    EXPECT_EQ(PageSize(), "290.66 x 290.66 pts"); // 7.2 and twice 141.73
    for (const char16_t* name : {u"Paper", u"Orientation", u"Margin", u"Fit", u"Resolution"})
        SetNumber(name, 0);
    ASSERT_EQ(PrintAgain(720, 100, Red), 1); // A4, 72 inches wide at 10: smaller
    EXPECT_EQ(PageSize(), "841.89 x 595.28 pts (A4)");
}

TEST_F(PrintedFile, ReportsItsLinesAndEndsWithTheLast)
{
    ASSERT_EQ(Print(10, 250, Red), 1);
    const auto& progress = CurrentTold().progress;
    ASSERT_GE(progress.size(), 100u);
    EXPECT_LE(progress.size(), 250u);
    EXPECT_EQ(progress.back(), (std::pair<u32, u32>{250, 250}));
    for (size_t i = 1; i < progress.size(); ++i)
        EXPECT_GT(progress[i].first, progress[i - 1].first);
}
