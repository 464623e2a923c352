// Pictures printed on a printer of another maker, and what the printing system and the printer say
// of the jobs.

#include "standard-plugins/tests/cups/CupsPrinting.h"

#include <thread>

using namespace cupstest;
using namespace pdftest;

namespace
{

class CupsPrint : public CupsTest
{
protected:
    /// The only job, in its end.
    Job OnlyJob() const
    {
        system.WaitForJobs();
        const std::vector<Job> jobs = system.Jobs();
        EXPECT_EQ(jobs.size(), 1u);
        return jobs.empty() ? Job() : jobs[0];
    }
    void ExpectPrinted(u32 width, u32 height, const Colours& colours) const
    {
        EXPECT_EQ(Complaint(), "");
        EXPECT_EQ(OnlyJob().state, "completed");
        const std::string pdf = Document(system);
        ExpectSound(pdf);
        EXPECT_EQ(Difference(pdf, width, height, colours), "");
    }
    std::string PageSize() const { return InfoOf(Document(system), "Page size"); }

    PrintingSystem system;
};

class CupsPrinters : public CupsTest
{
};

uint8_t Red(u32, u32, u32 channel)
{
    return channel == 0 ? 255 : 0;
}

} // namespace

TEST_F(CupsPrint, APictureArrivesBitForBitOnASoundPageOfTheDefaultPrinter)
{
    ASSERT_EQ(Print(333, 217, Noise, u"boat.png"), 1) << Complaint();
    ExpectPrinted(333, 217, Noise);
    EXPECT_EQ(PageSize(), "841.89 x 595.28 pts (A4)");
    EXPECT_EQ(InfoOf(Document(system), "Title"), "boat.png");
    const Job job = OnlyJob();
    EXPECT_EQ(job.name, "boat.png");
    EXPECT_EQ(job.copies, "1");
    EXPECT_EQ(job.media, "iso_a4_210x297mm");
    ASSERT_EQ(CurrentTold().messages.size(), 1u);
    EXPECT_EQ(CurrentTold().messages[0].text, u"Printing on Real");
    EXPECT_EQ(CurrentTold().messages[0].caption, u"Printer");
    EXPECT_NE(system.PrinterLog().find("media (keyword) iso_a4_210x297mm"), std::string::npos)
        << system.PrinterLog();
}

TEST_F(CupsPrint, APictureThatStandsIsPrintedUpright)
{
    ASSERT_EQ(Print(60, 80, Red), 1) << Complaint();
    EXPECT_EQ(PageSize(), "595.28 x 841.89 pts (A4)");
    EXPECT_EQ(OnlyJob().name, "Tavrix") << "a job without a title has the program's";
}

TEST_F(CupsPrint, LandscapeOnAnotherPaperIsTold)
{
    SetNumber(u"Orientation", 2);
    SetNumber(u"Paper", 4);
    ASSERT_EQ(Print(60, 80, Noise), 1) << Complaint();
    ExpectPrinted(60, 80, Noise);
    EXPECT_EQ(PageSize(), "1008 x 612 pts");
    EXPECT_EQ(OnlyJob().media, "na_legal_8.5x14in");
}

TEST_F(CupsPrint, TheRealSizeIsOnThePaper)
{
    SetNumber(u"Fit", 0);
    SetNumber(u"Resolution", 48);
    SetNumber(u"Paper", 3);
    ASSERT_EQ(Print(96, 192, Red), 1) << Complaint();
    const std::string pdf = Document(system);
    // 2 by 4 inches in the middle of 612 by 792 points. Drawn with one pixel a point, an edge also
    // covers the pixels that it touches.
    const Ran drawn = Shell("pdftoppm -r 72 " + Quoted(pdf) +
                            " | convert ppm:- -fuzz 20% -format '%@ %w %h' info:");
    int width = 0, height = 0, left = 0, top = 0, pageWidth = 0, pageHeight = 0;
    ASSERT_EQ(std::sscanf(drawn.output.c_str(), "%dx%d+%d+%d %d %d", &width, &height, &left, &top,
                          &pageWidth, &pageHeight),
              6)
        << drawn.output;
    EXPECT_NEAR(width, 144, 1);
    EXPECT_NEAR(height, 288, 1);
    EXPECT_NEAR(left, 234, 1);
    EXPECT_NEAR(top, 252, 1);
    EXPECT_EQ(pageWidth, 612);
    EXPECT_EQ(pageHeight, 792);
    EXPECT_NE(system.PrinterLog().find("print-scaling (keyword) none"), std::string::npos);
}

TEST_F(CupsPrint, CopiesAreAskedOfThePrinter)
{
    SetNumber(u"Copies", 12);
    ASSERT_EQ(Print(10, 10, Noise), 1) << Complaint();
    EXPECT_EQ(OnlyJob().copies, "12");
    EXPECT_NE(system.PrinterLog().find("copies (integer) 12"), std::string::npos);
}

TEST_F(CupsPrint, AJapaneseTitleNamesTheJobAndTheDocument)
{
    ASSERT_EQ(Print(10, 10, Noise, u"港の写真 (2).jpg"), 1) << Complaint();
    EXPECT_EQ(OnlyJob().name, "港の写真 (2).jpg");
    EXPECT_EQ(InfoOf(Document(system), "Title"), "港の写真 (2).jpg");
}

TEST_F(CupsPrint, ALongTitleIsCutBetweenTwoCharactersForTheJobAlone)
{
    const std::u16string title(200, u'港');
    ASSERT_EQ(Print(10, 10, Noise, title.c_str()), 1) << Complaint();
    const std::string name = OnlyJob().name;
    EXPECT_EQ(name, tavrix::testing::Utf8(title.substr(0, 85).c_str())) << name.size();
    EXPECT_EQ(InfoOf(Document(system), "Title"), tavrix::testing::Utf8(title.c_str()));
}

TEST_F(CupsPrint, EightBitsArePrintedAsGreys)
{
    Raster image;
    Fill(&image, 40, 30, 8, Noise);
    ASSERT_EQ(Print(&image), 1) << Complaint();
    ExpectPrinted(40, 30, [](u32 x, u32 y, u32) { return Noise(x, y, 0); });
}

TEST_F(CupsPrint, ThirtyTwoBitsArePrintedWithoutTheirFourthByte)
{
    Raster image;
    Fill(&image, 19, 6, 32, Noise);
    ASSERT_EQ(Print(&image), 1) << Complaint();
    ExpectPrinted(19, 6, Noise);
}

TEST_F(CupsPrint, AWildSettingIsBroughtIntoItsRange)
{
    for (const char16_t* name :
         {u"Paper", u"Orientation", u"Margin", u"Fit", u"Resolution", u"Copies"})
        SetNumber(name, 0xFFFFFFFF);
    ASSERT_EQ(Print(10, 10, Noise), 1) << Complaint();
    EXPECT_EQ(OnlyJob().copies, "99");
    EXPECT_EQ(OnlyJob().media, "na_legal_8.5x14in");
}

TEST_F(CupsPrint, LinesAreReportedAndTheLastOneToo)
{
    ASSERT_EQ(Print(10, 250, Red), 1) << Complaint();
    const auto& progress = CurrentTold().progress;
    ASSERT_GE(progress.size(), 100u);
    EXPECT_EQ(progress.back(), (std::pair<u32, u32>{250, 250}));
}

TEST_F(CupsPrint, NoThreadIsLeft)
{
    const size_t before = Threads();
    ASSERT_EQ(Print(10, 10, Red), 1) << Complaint();
    EXPECT_EQ(Threads(), before);
}

// The library has a thread clean up for it when it ends, which the host's worker does long after
// the plugin was unloaded.
TEST_F(CupsPrint, AThreadThatPrintedEndsInPeaceAfterTheUnload)
{
    std::thread worker([this] {
        EXPECT_EQ(Print(10, 10, Noise), 1) << Complaint();
        plugin.Unload();
    });
    worker.join();
    EXPECT_EQ(OnlyJob().state, "completed");
}

TEST_F(CupsPrinters, TheChosenOneOfSeveralIsPrintedOn)
{
    PrintingSystem system({"Default", "Other"});
    SetPrinter(u"Other");
    ASSERT_EQ(Print(10, 10, Noise), 1) << Complaint();
    ASSERT_FALSE(CurrentTold().messages.empty());
    EXPECT_EQ(CurrentTold().messages[0].text, u"Printing on Other");
    EXPECT_EQ(system.JobsOf("Other").size(), 1u);
    EXPECT_TRUE(system.JobsOf("Default").empty());
}
