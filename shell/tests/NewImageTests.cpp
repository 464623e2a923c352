// New, from the command to the pixels: what it offers, what it makes, and pictures beyond all
// memory.

#include "shell/DibSize.h"
#include "shell/tests/SizingTesting.h"

using namespace sizingtest;

namespace
{

constexpr u32 AllWhite = 0xFFFFFF;

u32 White(int, int)
{
    return AllWhite;
}

/// A clip of that size, as copying makes it.
void MakeClip(MainFrame& frame, u32 width, u32 height)
{
    frame.clipAllocator = new HeapAllocator;
    frame.clipImage = new Raster(frame.clipAllocator);
    ASSERT_EQ(frame.clipImage->Create(width, height, 24, nullptr, nullptr), Done);
}

/// Puts a black picture on the clipboard.
void OfferDib(MainFrame& frame, LONG width, LONG height)
{
    BITMAPINFOHEADER header = {};
    header.biSize = sizeof header;
    header.biWidth = width;
    header.biHeight = height;
    header.biPlanes = 1;
    header.biBitCount = 24;
    const LONG stride = (width * 3 + 3) / 4 * 4;
    const HLOCAL block =
        LocalAlloc(LPTR, sizeof header + static_cast<SIZE_T>(stride * std::abs(height)));
    ASSERT_NE(block, nullptr);
    memcpy(block, &header, sizeof header);
    ASSERT_TRUE(OpenClipboard(frame.window));
    EmptyClipboard();
    ASSERT_EQ(SetClipboardData(CF_DIB, block), block);
    CloseClipboard();
}

void ExpectOffered(MainFrame& frame, Sizer& sizer, const std::u16string& width,
                   const std::u16string& height)
{
    sizer.end = IDCANCEL;
    sizer.width.clear();
    sizer.height.clear();
    Send(frame, NewCommand);
    ASSERT_FALSE(sizer.offered.empty());
    EXPECT_EQ(sizer.offered.back().width, width);
    EXPECT_EQ(sizer.offered.back().height, height);
}

} // namespace

TEST(NewImage, AWhitePictureOfThatSizeTakesTheOldOnesPlaceAndItsNames)
{
    UndoAndNoToolWindows();
    InstallFixture("resizing", "SCALE");
    Sizer sizer;
    RunOnPicture([&](MainFrame& frame) {
        Send(frame, FirstEffect);
        SetPaths(frame, u"\\one.png", u"\\two.png");
        frame.inputPlugin = 3;
        frame.scrollX = 1234;
        Select(frame, 1, 2, 3, 4);
        sizer.Enter(33, 21);
        Send(frame, NewCommand);
        EXPECT_EQ(sizer.offered.back().width, u"60");
        EXPECT_EQ(sizer.offered.back().height, u"50");
        ExpectPixels(frame, 33, 21, White);
        ExpectOnScreen(frame, 33, 21);
        EXPECT_EQ(Opened(frame), u"");
        EXPECT_EQ(Saved(frame), u"");
        EXPECT_EQ(frame.selectionActive, 0u);
        EXPECT_TRUE(IsGray(frame.editMenu, 40074)) << "Deselect";
        EXPECT_EQ(frame.inputPlugin, 3) << "it stays";
        EXPECT_TRUE(sizer.TakeBoxes().empty());
        // No snapshot is taken: what Undo has is the state before the effect.
        EXPECT_TRUE(CanUndo(frame));
        ExpectPicture(frame.undoImage);
    });
}

TEST(NewImage, FromNothingItMakesThePictureAndItsMenus)
{
    HideToolWindows();
    InstallFixture("quick");
    InstallFixture("resizing", "SCALE");
    Sizer sizer;
    EXPECT_EQ(RunProgram(u"", {[&](MainFrame& frame) {
                                   sizer.Enter(1, 1);
                                   EXPECT_TRUE(IsGray(frame.saveMenu, 40004));
                                   EXPECT_TRUE(IsGray(frame.imageMenu, 40005));
                                   TypeKey('N', MK_CONTROL);
                               },
                               [&](MainFrame& frame) {
                                   ASSERT_EQ(sizer.offered.size(), 1u);
                                   EXPECT_EQ(sizer.offered[0].width, u"0");
                                   EXPECT_EQ(sizer.offered[0].height, u"0");
                                   ExpectPixels(frame, 1, 1, White);
                                   EXPECT_EQ(frame.imagePresent, 1u);
                                   frame.FetchMenus();
                                   EXPECT_FALSE(IsGray(frame.saveMenu, 40004));
                                   EXPECT_FALSE(IsGray(frame.imageMenu, 40005));
                                   EXPECT_FALSE(IsGray(frame.editMenu, 40056));
                               }}),
              0);
}

TEST(NewImage, ANumberOfNothingAndACancelChangeNothing)
{
    Sizer sizer;
    RunOnPicture([&](MainFrame& frame) {
        SetPaths(frame, u"\\one.png", u"\\two.png");
        Select(frame, 1, 2, 3, 4);
        sizer.Enter(0, 20);
        Send(frame, NewCommand);
        sizer.Enter(20, 0);
        Send(frame, NewCommand);
        sizer.Enter(20, 20);
        sizer.end = IDCANCEL;
        Send(frame, NewCommand);
        EXPECT_EQ(sizer.offered.size(), 3u);
        ExpectPicture(*frame.image);
        EXPECT_EQ(Opened(frame), u"\\one.png");
        EXPECT_EQ(Saved(frame), u"\\two.png");
        EXPECT_EQ(frame.selectionActive, 1u);
    });
}

TEST(NewImage, EveryChoiceOfGroundGivesWhite)
{
    Sizer sizer;
    RunOnPicture([&](MainFrame& frame) {
        for (const int button : {1066, 1067, 1068}) {
            sizer.before = [button](HWND dialog) { ClickControl(dialog, button); };
            sizer.Enter(3, 2);
            Send(frame, NewCommand);
            ExpectPixels(frame, 3, 2, White);
        }
    });
}

TEST(NewImage, APictureFittedToTheWindowIsFittedAnew)
{
    Sizer sizer;
    RunOnPicture([&](MainFrame& frame) {
        Send(frame, FitCommand);
        sizer.Enter(1280, 10);
        Send(frame, NewCommand);
        EXPECT_EQ(frame.zoom, 2.0);
        EXPECT_EQ(frame.zoomCommand, FitCommand);
    });
}

TEST(NewImage, TheMemoryClipsSizeIsOfferedBeforeTheClipboardsAndThatBeforeThePictures)
{
    Sizer sizer;
    RunOnPicture([&](MainFrame& frame) {
        ExpectOffered(frame, sizer, u"60", u"50");
        OfferDib(frame, 17, 9);
        ExpectOffered(frame, sizer, u"17", u"9");
        OfferDib(frame, 17, -12); // its lines run downwards
        ExpectOffered(frame, sizer, u"17", u"12");
        MakeClip(frame, 123, 45);
        ExpectOffered(frame, sizer, u"123", u"45");
        frame.ClearMemory();
        ExpectOffered(frame, sizer, u"17", u"12");
        // What is offered is made, without a word of the person.
        sizer.end = IDOK;
        Send(frame, NewCommand);
        ExpectPixels(frame, 17, 12, White);
    });
}

// The clipboard here takes whole pictures only; others need not.
TEST(NewImage, OfAHeaderTheSizeIsReadAsFarAsTheBlockGoes)
{
    const struct {
        LONG width;
        LONG height;
        size_t bytes;
        i32 result;
        u32 readWidth;
        u32 readHeight;
    } rows[] = {
        {17, 9, 40, Done, 17, 9},   {17, -9, 4000, Done, 17, 9},
        {0, 0, 40, Done, 0, 0},     {17, 9, 39, Failed, 1, 2},
        {-17, 9, 40, Failed, 1, 2}, {0x7FFFFFFF, -0x7FFFFFFF - 1, 40, Done, 0x7FFFFFFF, 0x80000000},
    };
    ASSERT_EQ(sizeof(BITMAPINFOHEADER), 40u);
    for (const auto& row : rows) {
        BITMAPINFOHEADER header = {};
        header.biSize = sizeof header;
        header.biWidth = row.width;
        header.biHeight = row.height;
        // No more than it says is there: what lies behind it is not the reader's.
        std::vector<u8> block(row.bytes);
        memcpy(block.data(), &header, std::min(row.bytes, sizeof header));
        u32 width = 1;
        u32 height = 2;
        EXPECT_EQ(ReadDibSize(block.data(), row.bytes, &width, &height), row.result);
        EXPECT_EQ(width, row.readWidth) << row.bytes;
        EXPECT_EQ(height, row.readHeight) << row.bytes;
    }
}

TEST(NewImage, ReloadOfAPictureThatHasNoSourceMakesANewOne)
{
    HideToolWindows();
    Sizer sizer;
    RunOnPicture([&](MainFrame& frame) {
        frame.inputPlugin = -1;
        frame.openedPath[0] = 0;
        sizer.Enter(8, 9);
        Send(frame, ReloadOpenedCommand);
        ExpectPixels(frame, 8, 9, White);
        ASSERT_EQ(frame.image->SetPixel(3, 3, 0x123456FF), Done);
        sizer.width.clear();
        sizer.height.clear();
        Send(frame, ReloadOpenedCommand);
        EXPECT_EQ(sizer.offered.back().width, u"8");
        EXPECT_EQ(sizer.offered.back().height, u"9");
        ExpectPixels(frame, 8, 9, White);
        // A plugin that is remembered has another road.
        frame.inputPlugin = 0;
        Send(frame, ReloadOpenedCommand);
        EXPECT_EQ(sizer.offered.size(), 2u);
    });
}

// What is asked for cannot be had; the program lives on and the next picture is a good one.
TEST(NewImage, APictureBeyondAllMemoryIsSurvivedByTheViewTheToolsAndTheRest)
{
    UndoAndNoToolWindows();
    InstallFixture("resizing", "SCALE");
    InstallWriter("Writer.www");
    Sizer sizer;
    RunOnPicture([&](MainFrame& frame) {
        const struct {
            u32 width;
            u32 height;
        } sizes[] = {{4000000000u, 3}, {3, 4000000000u}, {1000, 900}};
        for (const auto& size : sizes) {
            SCOPED_TRACE(size.width);
            // No line finds room. What the hook reports does not shrink, so that a size which the
            // snapshot below could really be asked for has to be a small one.
            SetFreeMemory(0xA0000);
            MemoryGauge::Sample();
            sizer.Enter(size.width, size.height);
            sizer.end = IDOK;
            Send(frame, NewCommand);
            EXPECT_EQ(frame.imagePresent, 1u);
            for (const u32 zoom : {40025u, 40018u, 40023u, FitCommand})
                Send(frame, zoom);
            for (const u32 tool : {40125u, 40105u, 40119u, 40126u, 40129u, 40161u}) {
                Send(frame, tool);
                SendMessageW(frame.window, WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(300, 200));
                SendMessageW(frame.window, WM_MOUSEMOVE, MK_LBUTTON, MAKELPARAM(340, 260));
                SendMessageW(frame.window, WM_LBUTTONUP, 0, MAKELPARAM(340, 260));
            }
            Send(frame, 40056);
            Send(frame, 40074);
            // The fixtures ask for every line that there is said to be.
            const bool few = size.height <= 100000;
            if (few) {
                Send(frame, FirstEffect);
                Send(frame, FirstAdjust);
            }
            Send(frame, UndoCommand);
            sizer.Enter(5, 5);
            sizer.end = IDCANCEL;
            Send(frame, ResolutionCommand);
            Send(frame, SizeCommand);
            if (few) {
                sizer.choices.push_back(Choose(u"broken.www", 0));
                Send(frame, SaveCommand);
            }
            (void)sizer.TakeBoxes();
            // A canvas of a good size has the whole of what is asked.
            SetFreeMemory(64u << 20);
            MemoryGauge::Sample();
            sizer.end = IDOK;
            Send(frame, SizeCommand);
            EXPECT_EQ(InfoOf(*frame.image).width, 5u);
            EXPECT_EQ(InfoOf(*frame.image).height, 5u);
        }
        sizer.Enter(9, 8);
        Send(frame, NewCommand);
        Send(frame, 40018);
        ExpectPixels(frame, 9, 8, White);
        ExpectOnScreen(frame, 9, 8);
    });
}
