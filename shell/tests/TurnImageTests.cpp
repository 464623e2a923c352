// Reversing and turning the picture, from the command to the pixels.

#include "shell/tests/FlowTesting.h"

#include <algorithm>

using namespace flowtest;

namespace
{

constexpr u32 Half = 40045;
constexpr u32 Clockwise = 40047;
constexpr u32 CounterClockwise = 40048;
constexpr u32 Horizontal = 40050;
constexpr u32 Vertical = 40051;
constexpr u32 turns[] = {Half, Clockwise, CounterClockwise, Horizontal, Vertical};

struct Place {
    int x;
    int y;
};

bool IsQuarter(u32 command)
{
    return command == Clockwise || command == CounterClockwise;
}

/// Where the pixel at (x, y) of the turned picture was; width and height are the old ones.
Place Origin(u32 command, int x, int y, int width, int height)
{
    switch (command) {
    case Half:
        return {width - 1 - x, height - 1 - y};
    case Clockwise: // the mirror about the rising diagonal
        return {width - 1 - y, height - 1 - x};
    case CounterClockwise:
        return {width - 1 - y, x};
    case Horizontal:
        return {width - 1 - x, y};
    default:
        return {x, height - 1 - y};
    }
}

/// A picture of the test's colours in place of the one there is.
void Paint(MainFrame& frame, int width, int height, u32 depth = 24)
{
    ASSERT_EQ(frame.image->Create(static_cast<u32>(width), static_cast<u32>(height), depth, nullptr,
                                  nullptr),
              Done);
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x)
            ASSERT_EQ(frame.image->SetPixel(x, y, TestColor(x, y) << 8 | 0xFF), Done);
    frame.image->UnlockAll();
}

void ExpectTurned(Raster& raster, u32 command, int width, int height)
{
    SCOPED_TRACE(::testing::Message() << command << ", " << width << " x " << height);
    const RasterInfo info = InfoOf(raster);
    const int newWidth = IsQuarter(command) ? height : width;
    const int newHeight = IsQuarter(command) ? width : height;
    ASSERT_EQ(info.width, static_cast<u32>(newWidth));
    ASSERT_EQ(info.height, static_cast<u32>(newHeight));
    ASSERT_EQ(info.depth, 24u);
    for (int y = 0; y < newHeight; ++y)
        for (int x = 0; x < newWidth; ++x) {
            const Place from = Origin(command, x, y, width, height);
            ASSERT_EQ(PixelOf(raster, x, y), TestColor(from.x, from.y)) << x << ", " << y;
        }
}

/// Makes `line` of the picture one that is lost: no name is left for its file.
void Lose(Raster& image, i32 line)
{
    SetRandom({7});
    ASSERT_EQ(image.ReleaseLines(line == 0 ? 1 : 0, 1, 1), Done);
    SetRandom(std::vector<LONG>(101, 7));
    ASSERT_EQ(image.ReleaseLines(line, 1, 1), NothingDone);
}

void SetMemory(unsigned long long bytes)
{
    SetFreeMemory(bytes);
    MemoryGauge::Sample();
}

} // namespace

TEST(TurnImage, EachCommandMovesEveryPixelToItsPlace)
{
    RunOnPicture([](MainFrame& frame) {
        const Answering answering;
        for (const u32 command : turns) {
            const int sizes[][2] = {{1, 1}, {1, 7}, {7, 1}, {2, 2},
                                    {3, 5}, {4, 3}, {8, 6}, {61, 67}};
            for (const auto& size : sizes) {
                ASSERT_NO_FATAL_FAILURE(Paint(frame, size[0], size[1]));
                Send(frame, command);
                ExpectTurned(*frame.image, command, size[0], size[1]);
            }
        }
        EXPECT_TRUE(answering.Boxes().empty());
    });
}

TEST(TurnImage, ThePictureFromAFileIsTurnedOnTheScreenTheSelectionStaysAndNothingCanBeUndone)
{
    WriteSettings(u"[Tavrix]\r\nEnableUndo=1\r\nShowToolbox=0\r\nShowColorbox=0\r\n");
    RunOnPicture(std::vector<Step>{[](MainFrame& frame) {
        const Answering answering;
        Select(frame, 3.5, 4, 9, 10.25);
        frame.RedrawView();
        for (const u32 command : turns) {
            ASSERT_NO_FATAL_FAILURE(Paint(frame, PictureWidth, PictureHeight));
            frame.scrollX = 1234;
            frame.scrollY = 4321;
            Send(frame, command);
            ExpectTurned(*frame.image, command, PictureWidth, PictureHeight);
            const int width = IsQuarter(command) ? PictureHeight : PictureWidth;
            const int height = IsQuarter(command) ? PictureWidth : PictureHeight;
            EXPECT_EQ(frame.scrollX, -(640 - width) * 0.5) << command;
            EXPECT_EQ(frame.scrollY, -(frame.viewHeight - height) * 0.5) << command;
            const int left = (640 - width) / 2;
            const int top =
                static_cast<int>(frame.clientOriginY) + static_cast<int>(-frame.scrollY);
            const Place from = Origin(command, width - 3, height - 2, PictureWidth, PictureHeight);
            EXPECT_EQ(ScreenPixels().At(left + width - 3, top + height - 2),
                      TestColor(from.x, from.y))
                << command;
        }
        EXPECT_EQ(frame.selectionActive, 1u);
        EXPECT_EQ(frame.selectionLeft, 3.5);
        EXPECT_EQ(frame.selectionTop, 4);
        EXPECT_EQ(frame.selectionRight, 9);
        EXPECT_EQ(frame.selectionBottom, 10.25);
        EXPECT_FALSE(HasSnapshot(frame));
        EXPECT_FALSE(CanUndo(frame));
        EXPECT_TRUE(answering.Boxes().empty());
    }});
}

TEST(TurnImage, AnOlderSnapshotStaysAndComesBack)
{
    SwitchUndoOn();
    RunOnPicture([](MainFrame& frame) {
        const Answering answering;
        Send(frame, FirstEffect);
        Send(frame, Half);
        ExpectPicture(frame.undoImage);
        Send(frame, 40205);
        ExpectPicture(*frame.image);
    });
}

TEST(TurnImage, OnlyAQuarterAsksWhetherMemoryIsEnough)
{
    Scope scope;
    RunOnPicture([](MainFrame& frame) {
        const u64 need = u64{PictureHeight} * 180; // lines of 60 * 3 bytes and no padding
        for (const u32 command : turns) {
            SetFreeMemory(need);
            const Answering answering(IDNO);
            Send(frame, command);
            EXPECT_EQ(answering.Boxes().size(), IsQuarter(command) ? 1u : 0u) << command;
            SetFreeMemory(64u << 20);
        }
        ExpectPicture(*frame.image); // half, horizontal and vertical make the picture again
        for (const LANGID language : {LANGID{1033}, LANGID{1041}})
            for (const u32 command : {Clockwise, CounterClockwise}) {
                SetLanguage(language);
                for (const int answer : {IDNO, IDCANCEL}) {
                    SetFreeMemory(need);
                    const Answering answering(answer);
                    Send(frame, command);
                    ExpectOneBox(
                        frame, answering,
                        language == 1033
                            ? u"Physical memory available might be not enough. Enforce the process?"
                            : u"作業用メモリが足りない可能性があります。強行しますか？",
                        language == 1033 ? u"confirm" : u"確認", 52);
                    ExpectPicture(*frame.image);
                }
                SetFreeMemory(need);
                const Answering answering(IDYES);
                Send(frame, command);
                EXPECT_EQ(answering.Boxes().size(), 1u);
                ExpectTurned(*frame.image, command, PictureWidth, PictureHeight);
                ASSERT_NO_FATAL_FAILURE(Paint(frame, PictureWidth, PictureHeight));
                SetFreeMemory(need + 1);
                const Answering none(IDNO);
                Send(frame, command);
                EXPECT_TRUE(none.Boxes().empty());
                SetFreeMemory(64u << 20);
                ExpectTurned(*frame.image, command, PictureWidth, PictureHeight);
                ASSERT_NO_FATAL_FAILURE(Paint(frame, PictureWidth, PictureHeight));
            }
    });
}

TEST(TurnImage, TheNeedOfAQuarterIsHeightTimesStrideAndNotWidth)
{
    Scope scope;
    RunOnPicture([](MainFrame& frame) {
        // 2 by 100: lines of 8 bytes; turned, lines of 300.
        ASSERT_NO_FATAL_FAILURE(Paint(frame, 2, 100));
        SetFreeMemory(800);
        const Answering asked(IDNO);
        Send(frame, CounterClockwise);
        EXPECT_EQ(asked.Boxes().size(), 1u);
        SetFreeMemory(801);
        Send(frame, CounterClockwise);
        EXPECT_EQ(asked.Boxes().size(), 1u);
        SetFreeMemory(64u << 20);
        ExpectTurned(*frame.image, CounterClockwise, 2, 100);
    });
}

TEST(TurnImage, WithoutMemoryForTheOtherPictureBothLanguagesTellAndThePictureStays)
{
    Scope scope;
    RunOnPicture([](MainFrame& frame) {
        const auto before = tavrix::platform::CountHoldings();
        const auto expectTold = [&](const std::function<void()>& spoil) {
            for (const LANGID language : {LANGID{1033}, LANGID{1041}})
                for (const u32 command : {Clockwise, CounterClockwise}) {
                    SetLanguage(language);
                    spoil();
                    const Answering answering(IDYES);
                    Send(frame, command);
                    SetAllocationFault(nullptr);
                    SetMemory(64u << 20);
                    ExpectOneBox(frame, answering,
                                 language == 1033 ? u"Failed to create a temporary DIB."
                                                  : u"作業用DIBの確保に失敗しました。",
                                 language == 1033 ? u"ERROR" : u"エラー", 16);
                    ExpectPicture(*frame.image);
                }
        };
        expectTold([] { SetAllocationFault([](SIZE_T size) { return size == sizeof(Raster); }); });
        // Its lines: 60 of 152 bytes.
        expectTold([] { SetAllocationFault([](SIZE_T size) { return size == 152; }); });
        // The gauge is below the reserve, and the question's figure above the need.
        expectTold([] { SetMemory(0xA0000 + 100); });
        EXPECT_EQ(tavrix::platform::CountHoldings().heaps, before.heaps);
    });
}

TEST(TurnImage, ALineThatWillNotLockIsToldInBothLanguagesAndTheFlowGoesOn)
{
    Scope scope;
    RunOnPicture([](MainFrame& frame) {
        for (const u32 command : {Horizontal, Half})
            for (const LANGID language : {LANGID{1033}, LANGID{1041}})
                for (const int lost : {0, 3, 48}) {
                    SetLanguage(language);
                    ASSERT_EQ(frame.image->Create(PictureWidth, PictureHeight, 24, TEXT("\\Temp\\"),
                                                  nullptr),
                              Done);
                    for (int y = 0; y < PictureHeight; ++y)
                        for (int x = 0; x < PictureWidth; ++x)
                            ASSERT_EQ(frame.image->SetPixel(x, y, TestColor(x, y) << 8), Done);
                    frame.image->UnlockAll();
                    ASSERT_NO_FATAL_FAILURE(Lose(*frame.image, lost));
                    frame.scrollX = 1234;
                    const Answering answering;
                    Send(frame, command);
                    ExpectOneBox(frame, answering,
                                 language == 1033
                                     ? u"Available memory or temporary storage is low. The image "
                                       u"might be damaged."
                                     : u"メモリ、および作業用ストレージが不足しました。リロードを行"
                                       u"ってください。",
                                 language == 1033 ? u"ERROR" : u"エラー", 16);
                    EXPECT_EQ(frame.scrollX, -(640 - PictureWidth) * 0.5) << "the view starts anew";
                    // Lines before the lost one are reversed, those behind it are not; the half
                    // turn then has changed their order.
                    for (int y = 0; y < PictureHeight; ++y) {
                        if (y == lost)
                            continue;
                        const int at = command == Half ? PictureHeight - 1 - y : y;
                        for (int x = 0; x < PictureWidth; ++x)
                            ASSERT_EQ(PixelOf(*frame.image, x, at),
                                      TestColor(y < lost ? PictureWidth - 1 - x : x, y))
                                << x << ", " << at;
                    }
                }
    });
}

TEST(TurnImage, AQuarterThatFailsOnALineIsToldInBothLanguagesAndLeavesThePicture)
{
    Scope scope;
    RunOnPicture([](MainFrame& frame) {
        const auto before = tavrix::platform::CountHoldings();
        for (const u32 command : {Clockwise, CounterClockwise})
            for (const LANGID language : {LANGID{1033}, LANGID{1041}}) {
                SetLanguage(language);
                ASSERT_EQ(
                    frame.image->Create(PictureWidth, PictureHeight, 24, TEXT("\\Temp\\"), nullptr),
                    Done);
                for (int y = 0; y < PictureHeight; ++y)
                    for (int x = 0; x < PictureWidth; ++x)
                        ASSERT_EQ(frame.image->SetPixel(x, y, TestColor(x, y) << 8), Done);
                frame.image->UnlockAll();
                ASSERT_NO_FATAL_FAILURE(Lose(*frame.image, 20));
                frame.scrollX = 1234;
                const Answering answering;
                Send(frame, command);
                ExpectOneBox(frame, answering,
                             language == 1033
                                 ? u"Available physical and logical memory is low. Reload and "
                                   u"recover the image, which might be broken."
                                 : u"作業用メモリが足りません。再読み込みを行って壊れた画像を回復し"
                                   u"てください。",
                             language == 1033 ? u"ERROR" : u"エラー", 16);
                EXPECT_EQ(InfoOf(*frame.image).width, u32{PictureWidth});
                for (int y = 0; y < PictureHeight; ++y)
                    for (int x = 0; x < PictureWidth && y != 20; ++x)
                        ASSERT_EQ(PixelOf(*frame.image, x, y), TestColor(x, y));
                EXPECT_EQ(frame.scrollX, 1234) << "no second step";
                EXPECT_EQ(tavrix::platform::CountHoldings().heaps, before.heaps)
                    << "the other picture is gone";
            }
    });
}

TEST(TurnImage, OfBillionsOfLinesThatAreNotThereNoneIsWaitedFor)
{
    Scope scope;
    SetLanguage(1033);
    RunOnPicture([](MainFrame& frame) {
        for (const u32 height : {2000000000u, 4000000000u, 4294967295u}) {
            SetMemory(0xA0000); // no line finds room
            ASSERT_LT(frame.image->Create(3, height, 24, nullptr, nullptr), Done);
            SetMemory(64u << 20);
            ASSERT_EQ(InfoOf(*frame.image).height, height);
            for (const u32 command : {Vertical, Horizontal, Half}) {
                const Answering answering;
                Send(frame, command);
                EXPECT_EQ(answering.Boxes().size(), command == Vertical ? 0u : 1u);
            }
        }
    });
}

TEST(TurnImage, APictureOnFilesIsReversedThere)
{
    Scope scope;
    RunOnPicture([](MainFrame& frame) {
        const Answering answering(IDYES);
        ASSERT_EQ(frame.image->Create(PictureWidth, PictureHeight, 24, TEXT("\\Temp\\"), nullptr),
                  Done);
        for (int y = 0; y < PictureHeight; ++y)
            for (int x = 0; x < PictureWidth; ++x)
                ASSERT_EQ(frame.image->SetPixel(x, y, TestColor(x, y) << 8), Done);
        frame.image->UnlockAll();
        SetMemory(0);
        Send(frame, Half);
        EXPECT_GE(LinesInFiles(), size_t{PictureHeight - 2});
        EXPECT_TRUE(answering.Boxes().empty());
        SetMemory(64u << 20);
        ExpectTurned(*frame.image, Half, PictureWidth, PictureHeight);
    });
}

TEST(TurnImage, PicturesOfOtherDepthsAreSurvived)
{
    RunOnPicture([](MainFrame& frame) {
        const Answering answering;
        for (const u32 depth : {8u, 16u, 32u})
            for (const u32 command : turns) {
                ASSERT_EQ(frame.image->Create(33, 21, depth, nullptr, nullptr), Done);
                Send(frame, command);
                EXPECT_EQ(InfoOf(*frame.image).width, IsQuarter(command) ? 21u : 33u);
                EXPECT_EQ(InfoOf(*frame.image).depth, depth);
            }
        EXPECT_TRUE(answering.Boxes().empty());
    });
}

TEST(TurnImage, WithoutAPictureNothingIsTurnedAndAQuarterTellsSo)
{
    Scope scope;
    SetLanguage(1033);
    InstallPlugin(tavrix::testing::InBuild("/bin/PLUGINS/INPUT/PNG.dll"));
    RunProgram(u"", [](MainFrame& frame) {
        for (const u32 command : turns) {
            const Answering answering;
            Send(frame, command);
            if (IsQuarter(command))
                ExpectOneBox(frame, answering, u"Failed to create a temporary DIB.", u"ERROR", 16);
            else
                EXPECT_TRUE(answering.Boxes().empty()) << command;
            EXPECT_EQ(InfoOf(*frame.image).depth, 0u);
        }
    });
}
