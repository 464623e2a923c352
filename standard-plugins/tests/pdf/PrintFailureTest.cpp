// Prints that come to nothing: the user is told why in words, no file is left, and a file that was
// there is as it was.

#include "foundation/MemoryGauge.h"
#include "platform/testing/Faults.h"
#include "standard-plugins/common/PluginResult.h"
#include "standard-plugins/pdf-print/PdfPrinting.h"
#include "standard-plugins/tests/pdf/Printing.h"
#include "standard-plugins/tests/support/Canvas.h"

#include <filesystem>
#include <fstream>

using namespace pdftest;
using plugintest::Canvas;
using tavrix::platform::FileOperation;
using tavrix::testing::FaultKind;

namespace
{

constexpr SYSTEMTIME someTime = {.wYear = 2026,
                                 .wMonth = 11,
                                 .wDayOfWeek = 6,
                                 .wDay = 21,
                                 .wHour = 12,
                                 .wMinute = 0,
                                 .wSecond = 0,
                                 .wMilliseconds = 0};

class PrintFailure : public PrintTest
{
protected:
    using Names = std::vector<std::string>;

    PrintFailure()
    {
        SetFile("page.pdf");
        tavrix::testing::SetSystemTime(someTime);
    }

    /// What was told with the stop icon.
    static std::string Complaint()
    {
        std::string told;
        for (const Message& message : CurrentTold().messages)
            if (message.flags == MB_ICONHAND)
                told += tavrix::testing::Utf8(message.text.c_str());
        return told;
    }
    /// Prints in both languages and looks at the two sentences.
    void ExpectComplaints(const std::function<i32()>& print, i32 result, const char* english,
                          const char* japanese)
    {
        const std::pair<u32, const char*> languages[] = {{0, english}, {17, japanese}};
        for (const auto& [language, sentence] : languages) {
            CurrentTold().messages.clear();
            Load(language);
            EXPECT_EQ(print(), result);
            EXPECT_EQ(Complaint(), sentence);
        }
    }
    /// Every way in which a print can be refused a step of the file layer: each time the folder
    /// holds the old file or the whole new one, and the user knows which.
    void ExpectWholeOrOld(bool replaces,
                          const std::function<void(const std::function<void()>&)>& run)
    {
        const Colours& colours = Noise;
        ASSERT_EQ(Print(300, 200, colours), 1);
        const std::string whole = FileBytes(Path("page.pdf"));
        i32 result = 0;
        Raster image;
        Fill(&image, 300, 200, 24, colours);
        run([&] {
            std::filesystem::remove_all(folder);
            std::filesystem::create_directory(folder);
            if (replaces)
                WriteFile(Path("page.pdf"), "old");
            CurrentTold().numbers[u"PdfPrintReplace"] = replaces ? 1 : 0;
            CurrentTold().messages.clear();
            result = Print(&image);
            if (result > 0) {
                EXPECT_EQ(NamesIn(folder), Names{"page.pdf"});
                EXPECT_TRUE(FileBytes(Path("page.pdf")) == whole);
                EXPECT_EQ(Complaint(), "");
            } else {
                EXPECT_EQ(NamesIn(folder), replaces ? Names{"page.pdf"} : Names{});
                if (replaces) {
                    EXPECT_EQ(FileBytes(Path("page.pdf")), "old");
                }
                EXPECT_NE(Complaint(), "");
            }
        });
    }
};

/// The printer's own code in this program, where allocations and lines can be made to fail.
struct CanvasPrint {
    Canvas canvas;
    u32 width;
    u32 height;

    CanvasPrint(u32 w, u32 h) : width(w), height(h)
    {
        canvas.Table()->RasterAlloc(canvas.Handle(), w, h, 24);
        canvas.Table()->RasterGetInfo = [](TavrixImageHandle image, RasterInfo* info) -> int32_t {
            const auto* self = reinterpret_cast<Canvas*>(image);
            info->width = self->width;
            info->height = self->height;
            info->depth = self->depth;
            info->stride = self->stride;
            return 1;
        };
        canvas.Table()->RasterGetPalette = [](TavrixImageHandle, TavrixPaletteHandle) -> int32_t {
            return 0;
        };
    }
    i32 Run()
    {
        const PluginCallbacks callbacks = Callbacks();
        const i32 result =
            PrintPicture({canvas.Handle(), canvas.Table(), nullptr, u"title", callbacks.progress,
                          callbacks.message, callbacks.put, callbacks.get});
        canvas.UnlockAll();
        return result;
    }
};

} // namespace

TEST_F(PrintFailure, AbortLeavesNothingBehindWheneverItComes)
{
    for (const size_t report : {size_t{0}, size_t{1}, size_t{50}}) {
        CurrentTold().progress.clear();
        CurrentTold().refusedFrom = report;
        EXPECT_EQ(Print(300, 200, Noise), PluginStopped);
        EXPECT_EQ(CurrentTold().progress.size(), report + 1) << "no report behind the refusal";
        EXPECT_EQ(NamesIn(folder), Names{});
    }
    WriteFile(Path("page.pdf"), "old");
    CurrentTold().numbers[u"PdfPrintReplace"] = 1;
    EXPECT_EQ(Print(300, 200, Noise), PluginStopped);
    EXPECT_EQ(NamesIn(folder), Names{"page.pdf"});
    EXPECT_EQ(FileBytes(Path("page.pdf")), "old");
    EXPECT_EQ(Complaint(), "") << "the user knows";
}

TEST_F(PrintFailure, AbortAtTheLastLineLeavesNothingEither)
{
    ASSERT_EQ(Print(3, 7, Noise), 1);
    const size_t reports = CurrentTold().progress.size();
    std::filesystem::remove(Path("page.pdf"));
    CurrentTold().progress.clear();
    CurrentTold().refusedFrom = reports - 1;
    EXPECT_EQ(Print(3, 7, Noise), PluginStopped);
    EXPECT_EQ(NamesIn(folder), Names{});
}

TEST_F(PrintFailure, AbortIsHeardAtEachLineWhereLinesAreSlow)
{
    // A hundredth of the picture is ten lines; each line takes a second.
    CanvasPrint print(3, 1000);
    static int32_t (*lock)(TavrixImageHandle, int32_t, void**, uint32_t*);
    lock = print.canvas.Table()->RasterLockLines;
    tavrix::testing::SetTickCount(0xFFFFF000); // the count begins anew on the way
    print.canvas.Table()->RasterLockLines = [](TavrixImageHandle image, int32_t line, void** out,
                                               uint32_t* count) -> int32_t {
        tavrix::testing::SetTickCount(0xFFFFF000 + 1000 * static_cast<u32>(line + 1));
        return lock(image, line, out, count);
    };
    CurrentTold().refusedFrom = 6;
    EXPECT_EQ(print.Run(), PluginStopped);
    EXPECT_EQ(CurrentTold().progress.back(), (std::pair<u32, u32>{7, 1000}));
    EXPECT_EQ(NamesIn(folder), Names{});
}

TEST_F(PrintFailure, OneSlowLineIsReportedAndTheFastOnesByTheHundredth)
{
    CanvasPrint print(3, 1000);
    static int32_t (*lock)(TavrixImageHandle, int32_t, void**, uint32_t*);
    lock = print.canvas.Table()->RasterLockLines;
    tavrix::testing::SetTickCount(5000);
    print.canvas.Table()->RasterLockLines = [](TavrixImageHandle image, int32_t line, void** out,
                                               uint32_t* count) -> int32_t {
        tavrix::testing::SetTickCount(line < 15 ? 5000 : 6000);
        return lock(image, line, out, count);
    };
    EXPECT_EQ(print.Run(), 1);
    const auto& progress = CurrentTold().progress;
    EXPECT_EQ(progress.size(), 102u); // 0 to 100 hundredths, and line 16
    ASSERT_GE(progress.size(), 3u);
    EXPECT_EQ(progress[2].first, 16u);
}

TEST_F(PrintFailure, EveryStepOfTheFileMayFail)
{
    for (const bool replaces : {false, true})
        for (const FaultKind kind : {FaultKind::Create, FaultKind::Write, FaultKind::ShortWrite}) {
            const int last = replaces ? 1 : 0;
            SCOPED_TRACE(testing::Message() << "kind " << static_cast<int>(kind) << " " << last);
            std::filesystem::remove_all(folder);
            std::filesystem::create_directory(folder);
            ExpectWholeOrOld(replaces, [kind](const std::function<void()>& once) {
                EXPECT_GE(tavrix::testing::ForEveryFault(kind, once), 1u);
            });
        }
}

TEST_F(PrintFailure, TheFileMayNotReachTheDiskOrItsName)
{
    for (const bool replaces : {false, true})
        for (const FileOperation operation : {FileOperation::Sync, FileOperation::Rename}) {
            std::filesystem::remove_all(folder);
            std::filesystem::create_directory(folder);
            int fired = 0;
            ExpectWholeOrOld(replaces, [&](const std::function<void()>& once) {
                tavrix::testing::SetFileFault([&](FileOperation step, const WCHAR*, DWORD*) {
                    fired += step == operation;
                    return step == operation;
                });
                once();
                tavrix::testing::SetFileFault(nullptr);
            });
            EXPECT_GE(fired, 1) << static_cast<int>(operation);
        }
}

TEST_F(PrintFailure, EveryAllocationMayFail)
{
    CanvasPrint print(40, 30);
    i32 result = 0;
    const unsigned faults = tavrix::testing::ForEveryFault(
        FaultKind::Allocation,
        [&] {
            std::filesystem::remove_all(folder);
            std::filesystem::create_directory(folder);
            result = print.Run();
        },
        [&](bool) { EXPECT_EQ(NamesIn(folder), result > 0 ? Names{"page.pdf"} : Names{}); });
    EXPECT_GE(faults, 4u); // the record, the row, the packer's row, the file's buffer
}

TEST_F(PrintFailure, AFailedAllocationIsTold)
{
    CanvasPrint print(40, 30);
    for (unsigned number = 1; number <= 4; ++number) {
        CurrentTold().messages.clear();
        i32 result = 0;
        {
            const tavrix::testing::ArmedFault fault(FaultKind::Allocation, number,
                                                    tavrix::testing::FaultReach::Once);
            result = print.Run();
        }
        if (result > 0)
            std::filesystem::remove(Path("page.pdf"));
        else
            EXPECT_EQ(Complaint(), "There is not enough memory.");
    }
}

TEST_F(PrintFailure, EveryLockAndUnlockOfALineMayFail)
{
    for (const bool unlock : {false, true})
        for (int line = 0; line < 30; ++line) {
            CanvasPrint print(40, 30);
            (unlock ? print.canvas.failUnlockAfter : print.canvas.failLockAfter) = line;
            CurrentTold().messages.clear();
            EXPECT_EQ(print.Run(), PluginNoStorage) << line;
            EXPECT_EQ(NamesIn(folder), Names{}) << line;
            EXPECT_EQ(Complaint(), "A line of the picture cannot be had; memory or temporary space "
                                   "is short.");
        }
}

TEST_F(PrintFailure, ATallPictureTakesLittleMemory)
{
    // 65,535 lines of 300 bytes of noise are some 20 megabytes, as a file too.
    CanvasPrint print(100, 8);
    Canvas& canvas = print.canvas;
    canvas.forgets = true;
    canvas.Table()->RasterAlloc(canvas.Handle(), 100, 65535, 24);
    static int32_t (*lock)(TavrixImageHandle, int32_t, void**, uint32_t*);
    lock = canvas.Table()->RasterLockLines;
    canvas.Table()->RasterLockLines = [](TavrixImageHandle image, int32_t line, void** out,
                                         uint32_t* count) -> int32_t {
        const int32_t result = lock(image, line, out, count);
        for (u32 i = 0; i < 300; ++i)
            static_cast<uint8_t*>(*out)[i] = Noise(i, static_cast<u32>(line), 0);
        return result;
    };
    canvas.peak = {};
    ASSERT_EQ(print.Run(), 1);
    EXPECT_GT(std::filesystem::file_size(Path("page.pdf")), 19000000u);
    EXPECT_LT(canvas.peak.Most(), 512u * 1024);
    EXPECT_GT(canvas.peak.Most(), 64u * 1024) << "the buffer at least was looked at";
    EXPECT_EQ(canvas.mostLentAtOnce, 1u);
    ExpectSound(Path("page.pdf"));
}

TEST_F(PrintFailure, AFullDiskIsTold)
{
    ExpectComplaints(
        [&] {
            tavrix::testing::SetDiskSpace(20000);
            const i32 result = Print(300, 200, Noise);
            tavrix::testing::Reset();
            tavrix::testing::SetFreeMemory(1u << 30);
            return result;
        },
        -1, "The disk is full.", "ディスクの空き容量が不足しています。");
    EXPECT_EQ(NamesIn(folder), Names{});
}

TEST_F(PrintFailure, AFullDiskEndsTheWorkAtOnce)
{
    // Of 600,000 bytes the disk takes none, which shows when the first 65,536 go to it.
    tavrix::testing::SetFileFault([](FileOperation operation, const WCHAR*, DWORD* shortBy) {
        *shortBy = 0xFFFFFFFF;
        return operation == FileOperation::Write;
    });
    EXPECT_EQ(Print(200, 1000, Noise), -1);
    ASSERT_FALSE(CurrentTold().progress.empty());
    EXPECT_LT(CurrentTold().progress.back().first, 250u);
}

TEST_F(PrintFailure, AMissingFolderIsTold)
{
    SetFile("none/page.pdf");
    ExpectComplaints([&] { return Print(3, 3, Noise); }, -1, "The folder cannot be found.",
                     "フォルダが見つかりません。");
    EXPECT_EQ(NamesIn(folder), Names{});
}

TEST_F(PrintFailure, AFolderThatTakesNoFilesIsTold)
{
    // One that takes none from whoever runs this.
    CurrentTold().texts[u"PdfPrintFile"] = u"\\Computer\\sys\\page.pdf";
    ExpectComplaints([&] { return Print(3, 3, Noise); }, -1,
                     "The folder or the file is write-protected.",
                     "フォルダまたはファイルに書き込めません。");
}

TEST_F(PrintFailure, AFolderInTheFilesPlaceIsNotReplacedThoughTheUserAgreed)
{
    std::filesystem::create_directory(Path("page.pdf"));
    CurrentTold().numbers[u"PdfPrintReplace"] = 1;
    ExpectComplaints([&] { return Print(3, 3, Noise); }, -1,
                     "The folder or the file is write-protected.",
                     "フォルダまたはファイルに書き込めません。");
    EXPECT_EQ(NamesIn(folder), Names{"page.pdf"});
}

TEST_F(PrintFailure, APictureWithoutLinesOrOfAnUnknownDepthIsTold)
{
    ExpectComplaints(
        [&] {
            Raster empty;
            return Print(&empty);
        },
        -1, "The picture has no pixels.", "画像に画素がありません。");
    ExpectComplaints(
        [&] {
            Raster image;
            Fill(&image, 3, 3, 16, Noise);
            return Print(&image);
        },
        -1, "Only pictures of 8, 24 and 32 bits a pixel can be written.",
        "書き込めるのは 8、24、32 ビットの画像だけです。");
    EXPECT_EQ(NamesIn(folder), Names{});
}

TEST_F(PrintFailure, MissingArgumentsAreRefusedInSilence)
{
    CanvasPrint print(3, 3);
    const PluginCallbacks host = Callbacks();
    EXPECT_LT(PrintPicture({nullptr, print.canvas.Table(), nullptr, nullptr, host.progress,
                            host.message, host.put, host.get}),
              0);
    EXPECT_LT(PrintPicture({print.canvas.Handle(), nullptr, nullptr, nullptr, host.progress,
                            host.message, host.put, host.get}),
              0);
    EXPECT_TRUE(CurrentTold().messages.empty());
    EXPECT_EQ(NamesIn(folder), Names{});
}

TEST_F(PrintFailure, AHostWithoutCallbacksPrintsToTheDocuments)
{
    CanvasPrint print(3, 3);
    EXPECT_EQ(PrintPicture({print.canvas.Handle(), print.canvas.Table(), nullptr, nullptr, nullptr,
                            nullptr, nullptr, nullptr}),
              1);
    const std::string documents = tavrix::testing::HostPath(TEXT("\\My Documents"));
    ExpectSound(documents + "/Tavrix.pdf");
    std::filesystem::remove_all(documents);
}
