// Prints that come to nothing: the user is told why in words, and the printer prints nothing.

#include "standard-plugins/tests/cups/CupsPrinting.h"

using namespace cupstest;
using namespace pdftest;

namespace
{

class CupsFailure : public CupsTest
{
protected:
    /// Answers the n-th report by something of the test's own.
    static inline std::function<i32(size_t)> answer;

    static PluginCallbacks AnsweringCallbacks()
    {
        PluginCallbacks callbacks = Callbacks();
        callbacks.progress = [](u32 done, u32 total) -> i32 {
            CurrentTold().progress.emplace_back(done, total);
            return answer(CurrentTold().progress.size());
        };
        return callbacks;
    }
    i32 PrintLarge()
    {
        Raster image;
        Fill(&image, 300, 2000, 24, Noise);
        const i32 result =
            plugin.Print(&image, nullptr, 0, 0, 0, 0, u"large", AnsweringCallbacks());
        image.UnlockAll();
        return result;
    }
};

constexpr const char* lostEnglish =
    "The connection to the printing system was lost; the picture was not printed.";
constexpr const char* lostJapanese =
    "印刷システムとの接続が切れたため、画像は印刷されませんでした。";

} // namespace

TEST_F(CupsFailure, ARefusalInTheMiddleCancelsTheJobAndNothingIsPrinted)
{
    PrintingSystem system;
    CurrentTold().refusedFrom = 50;
    EXPECT_EQ(Print(300, 2000, Noise), -9);
    EXPECT_EQ(CurrentTold().progress.size(), 51u);
    EXPECT_EQ(Complaint(), "") << "who gave up knows it";
    system.WaitForJobs();
    const std::vector<Job> jobs = system.Jobs();
    ASSERT_EQ(jobs.size(), 1u);
    EXPECT_EQ(jobs[0].state, "canceled");
    EXPECT_TRUE(system.Documents().empty());
    // The next one is printed as ever.
    CurrentTold() = {};
    EXPECT_EQ(Print(10, 10, Noise), 1) << Complaint();
    system.WaitForJobs();
    EXPECT_EQ(system.Jobs().size(), 2u);
    EXPECT_EQ(system.Documents().size(), 1u);
}

TEST_F(CupsFailure, AServerThatEndsInTheMiddleIsTold)
{
    for (const u32 language : {0u, 17u}) {
        PrintingSystem system;
        Load(language);
        CurrentTold() = {};
        answer = [&](size_t number) {
            if (number == 30)
                system.KillScheduler();
            return 1;
        };
        EXPECT_EQ(PrintLarge(), -1);
        EXPECT_EQ(Complaint(), language ? lostJapanese : lostEnglish);
        EXPECT_LT(CurrentTold().progress.back().first, 2000u) << "no line more than need be";
        EXPECT_TRUE(system.Documents().empty());
    }
}

TEST_F(CupsFailure, AServerThatEndsBehindTheLastLineIsTold)
{
    PrintingSystem system;
    answer = [&](size_t) {
        if (CurrentTold().progress.back().first == 2000)
            system.KillScheduler();
        return 1;
    };
    EXPECT_EQ(PrintLarge(), -1);
    EXPECT_EQ(Complaint(), lostEnglish);
}

TEST_F(CupsFailure, NoServerIsTold)
{
    setenv("CUPS_SERVER", ("127.0.0.1:" + std::to_string(FreePort())).c_str(), 1);
    ExpectComplaints("The printing system does not answer.", "印刷システムが応答しません。");
    EXPECT_TRUE(CurrentTold().progress.empty());
}

TEST_F(CupsFailure, AServerThatStaysSilentIsGivenUp)
{
    const SilentServer server;
    setenv("CUPS_SERVER", server.Name().c_str(), 1);
    ExpectComplaints("The printing system does not answer.", "印刷システムが応答しません。");
}

TEST_F(CupsFailure, APrinterThatIsGoneIsTold)
{
    PrintingSystem system;
    SetPrinter(u"Gone");
    ExpectComplaints("The printing system no longer has the printer that was chosen.",
                     "選択されたプリンタは印刷システムに登録されていません。");
    EXPECT_TRUE(system.Jobs().empty());
}

TEST_F(CupsFailure, NoPrinterIsLookedForInTheNetwork)
{
    // Whoever wants to look around there asks a daemon, over this bus.
    const SilentBus bus(Path("bus"));
    PrintingSystem system;
    EXPECT_EQ(Print(10, 10, Noise), 1) << Complaint();
    SetPrinter(u"Gone");
    EXPECT_EQ(Print(10, 10, Noise), -1);
    EXPECT_FALSE(bus.WasAsked());
}

TEST_F(CupsFailure, AServerWithoutPrintersIsTold)
{
    PrintingSystem system(std::vector<std::string>{});
    ExpectComplaints("The printing system has no printer.",
                     "印刷システムにプリンタが登録されていません。");
}

TEST_F(CupsFailure, AQueueThatTakesNoJobsIsTold)
{
    PrintingSystem system;
    system.RejectJobs("Real");
    ExpectComplaints("The printing system does not take the job.",
                     "印刷システムが印刷ジョブを受け付けません。");
    EXPECT_TRUE(system.Jobs().empty());
}

TEST_F(CupsFailure, APictureOfAnUnknownDepthIsToldBeforeAJobIsMade)
{
    PrintingSystem system;
    Raster image;
    Fill(&image, 3, 3, 16, Noise);
    EXPECT_EQ(Print(&image), -1);
    EXPECT_EQ(Complaint(), "Only pictures of 8, 24 and 32 bits a pixel can be written.");
    EXPECT_TRUE(system.Jobs().empty());
}

TEST_F(CupsFailure, NothingIsLeftOfAServerThatIsGoneWhenTheNextOneIsThere)
{
    setenv("CUPS_SERVER", ("127.0.0.1:" + std::to_string(FreePort())).c_str(), 1);
    EXPECT_EQ(Print(10, 10, Noise), -1);
    PrintingSystem system;
    CurrentTold() = {};
    EXPECT_EQ(Print(10, 10, Noise), 1) << Complaint();
    system.WaitForJobs();
    EXPECT_EQ(system.Documents().size(), 1u);
}
