// Copying to the desktop's clipboard and pasting from it: bytes held against the walks from byte to
// byte, and what is told when something is missing.

#include "shell/tests/FlowTesting.h"

#include <cstring>
#include <limits>
#include <random>

using namespace flowtest;

namespace
{

constexpr u32 Copy = 40194;
constexpr u32 Paste = 40195;
constexpr int FormatList = 1110;
constexpr i64 HeaderSize = 40;

using Block = std::vector<u8>;

/// Answers the format dialog as a person does, and any box with OK.
struct Choosing : Answering {
    explicit Choosing(int row)
    {
        OnModal([this, row](HWND dialog, bool box) {
            if (box) {
                EndDialog(dialog, IDOK);
                return;
            }
            ++dialogs;
            first = static_cast<int>(SendDlgItemMessageW(dialog, FormatList, LB_GETCURSEL, 0, 0));
            if (onDialog)
                onDialog();
            SendDlgItemMessageW(dialog, FormatList, LB_SETCURSEL, static_cast<WPARAM>(row), 0);
            SendMessageW(dialog, WM_COMMAND, row < 0 ? IDCANCEL : IDOK, 0);
        });
    }
    int dialogs = 0;
    int first = -2; // the row that was chosen at first
    std::function<void()> onDialog;
};

i64 StrideOf(i64 width)
{
    return (3 * (width + 1)) & ~i64{3};
}

Block LineOf(Raster& raster, i64 line)
{
    u8* row = nullptr;
    if (raster.LockLines(static_cast<i32>(line), &row, nullptr) < Done)
        return {};
    const Block bytes(row, row + InfoOf(raster).stride);
    raster.ReleaseLines(static_cast<i32>(line), 1, 0);
    return bytes;
}

/// Whether byte `at` of a line may be touched: any inside it, at other depths than 24 those of
/// whole pixels.
bool MayTouch(i64 at, i64 stride, u32 depth)
{
    return at >= 0 && at < (depth == 24 ? stride : stride - stride % 3);
}

/// The rows of the block, byte by byte in the order of the walk.
Block PlainRows(MainFrame& frame)
{
    const RasterInfo info = InfoOf(*frame.image);
    const bool selected = frame.selectionActive != 0;
    const i64 left = selected ? static_cast<i64>(frame.selectionLeft) : 0;
    const i64 top = selected ? static_cast<i64>(frame.selectionTop) : 0;
    const i64 right = selected ? static_cast<i64>(frame.selectionRight) : info.width;
    const i64 bottom = selected ? static_cast<i64>(frame.selectionBottom) : info.height;
    const i64 width = selected ? right - left + 1 : info.width;
    const i64 height = selected ? bottom - top + 1 : info.height;
    Block rows(static_cast<size_t>(StrideOf(width) * height));
    for (i64 y = top; y <= bottom; ++y) {
        const Block line = LineOf(*frame.image, y);
        if (line.empty())
            continue;
        for (i64 x = left; x <= right; ++x)
            for (i64 byte = 0; byte < 3; ++byte) {
                const i64 from = 3 * x + byte;
                const i64 to = (height - 1 - (y - top)) * StrideOf(width) + 3 * (x - left) + byte;
                if (MayTouch(from, static_cast<i64>(line.size()), info.depth) && to >= 0 &&
                    to < static_cast<i64>(rows.size()))
                    rows[static_cast<size_t>(to)] = line[static_cast<size_t>(from)];
            }
    }
    return rows;
}

/// The picture's lines after the paste of a block, byte by byte.
std::vector<Block> PlainPaste(MainFrame& frame, const Block& block)
{
    BITMAPINFOHEADER header = {};
    std::memcpy(&header, block.data(), sizeof header);
    const RasterInfo info = InfoOf(*frame.image);
    std::vector<Block> lines;
    for (u32 y = 0; y < info.height; ++y)
        lines.push_back(LineOf(*frame.image, y));
    const i64 x0 = static_cast<i64>(frame.selectionLeft);
    const i64 y0 = static_cast<i64>(frame.selectionTop);
    const i64 x1 =
        static_cast<i64>(std::min(frame.selectionLeft + header.biWidth - 1, frame.selectionRight));
    const i64 y1 =
        static_cast<i64>(std::min(frame.selectionTop + header.biHeight - 1, frame.selectionBottom));
    for (i64 y = y0; y <= y1 && y < info.height; ++y) {
        const i64 source = i64{header.biHeight} - y - 1;
        if (source < 0 || source >= header.biHeight)
            continue;
        for (i64 byte = 0; byte < 3 * (x1 - x0 + 1); ++byte) {
            const u64 from = static_cast<u64>(HeaderSize + byte) +
                             static_cast<u64>(source) * static_cast<u64>(StrideOf(header.biWidth));
            const i64 to = 3 * x0 + byte;
            if (byte < StrideOf(header.biWidth) && from < block.size() &&
                MayTouch(to, info.stride, info.depth))
                lines[static_cast<size_t>(y)][static_cast<size_t>(to)] = block[from];
        }
    }
    return lines;
}

/// What the clipboard holds as a block.
Block OnClipboard()
{
    Block block;
    EXPECT_TRUE(OpenClipboard(nullptr));
    const HANDLE handle = GetClipboardData(CF_DIB);
    if (handle != nullptr) {
        const u8* bytes = static_cast<const u8*>(GlobalLock(handle));
        block.assign(bytes, bytes + GlobalSize(handle));
        GlobalUnlock(handle);
    }
    EXPECT_TRUE(CloseClipboard());
    return block;
}

void ExpectHeader(const Block& block, i32 width, i32 height)
{
    BITMAPINFOHEADER header = {};
    ASSERT_GE(block.size(), sizeof header);
    std::memcpy(&header, block.data(), sizeof header);
    EXPECT_EQ(header.biSize, 40u);
    EXPECT_EQ(header.biWidth, width);
    EXPECT_EQ(header.biHeight, height);
    EXPECT_EQ(header.biPlanes, 1);
    EXPECT_EQ(header.biBitCount, 24);
    EXPECT_EQ(header.biCompression, 0u);
    EXPECT_EQ(header.biSizeImage, static_cast<DWORD>(StrideOf(width) * height));
    EXPECT_EQ(header.biXPelsPerMeter, 0);
    EXPECT_EQ(header.biYPelsPerMeter, 0);
    EXPECT_EQ(header.biClrUsed, 0u);
    EXPECT_EQ(header.biClrImportant, 0u);
}

/// Copies as a DIB; what came is what the walk makes.
void ExpectCopied(MainFrame& frame, i32 width, i32 height)
{
    const Choosing choosing(0);
    Send(frame, Copy);
    EXPECT_EQ(choosing.dialogs, 1);
    EXPECT_TRUE(choosing.Boxes().empty());
    const Block block = OnClipboard();
    ExpectHeader(block, width, height);
    ASSERT_EQ(block.size(), static_cast<size_t>(HeaderSize + StrideOf(width) * height));
    const Block rows(block.begin() + HeaderSize, block.end());
    EXPECT_TRUE(rows == PlainRows(frame)) << width << " x " << height;
}

/// A picture whose lines have bytes of every kind, in their padding too.
void Fill(Raster& image, u32 width, u32 height, u32 depth)
{
    ASSERT_EQ(image.Create(width, height, depth, nullptr, nullptr), Done);
    for (u32 y = 0; y < height; ++y) {
        u8* row = nullptr;
        ASSERT_EQ(image.LockLines(static_cast<i32>(y), &row, nullptr), Done);
        for (u32 x = 0; x < InfoOf(image).stride; ++x)
            row[x] = static_cast<u8>(1 + (y * 67 + x * 13) % 255);
    }
    image.UnlockAll();
}

/// A block of 24 bits with bytes of every kind behind its header.
Block MakeBlock(i32 width, i32 height, WORD depth = 24)
{
    BITMAPINFOHEADER header = {};
    header.biSize = sizeof header;
    header.biWidth = width;
    header.biHeight = height;
    header.biPlanes = 1;
    header.biBitCount = depth;
    const i64 stride = (i64{width} * depth + 31) / 32 * 4;
    Block block(static_cast<size_t>(HeaderSize + stride * std::abs(height)));
    std::memcpy(block.data(), &header, sizeof header);
    for (size_t i = HeaderSize; i < block.size(); ++i)
        block[i] = static_cast<u8>(255 - i * 31 % 251);
    return block;
}

/// Puts a block on the clipboard and tells where it lies there.
u8* Offer(MainFrame& frame, const Block& block)
{
    const HGLOBAL handle = GlobalAlloc(GPTR, block.size());
    std::memcpy(static_cast<void*>(handle), block.data(), block.size());
    EXPECT_TRUE(OpenClipboard(nullptr));
    EXPECT_TRUE(EmptyClipboard());
    EXPECT_NE(SetClipboardData(CF_DIB, handle), nullptr);
    EXPECT_TRUE(CloseClipboard());
    SendMessageW(frame.window, WM_TIMER, 2, 0);
    EXPECT_EQ(frame.clipboardHasImage, 1u);
    return static_cast<u8*>(static_cast<void*>(handle));
}

/// Pastes what is on the clipboard; the lines are what the walk makes.
void ExpectPasted(MainFrame& frame, const Block& block)
{
    const std::vector<Block> expected = PlainPaste(frame, block);
    const Answering answering;
    Send(frame, Paste);
    EXPECT_TRUE(answering.Boxes().empty());
    EXPECT_FALSE(CloseClipboard()) << "it is closed again";
    for (size_t y = 0; y < expected.size(); ++y)
        ASSERT_TRUE(LineOf(*frame.image, static_cast<i64>(y)) == expected[y]) << "line " << y;
}

u32 Remembered(MainFrame& frame)
{
    u32 value = 77; // none
    (void)frame.settings->GetUInt(TEXT("Tavrix"), TEXT("Clipboard"), &value);
    return value;
}

void ExpectPasteError(MainFrame& frame)
{
    for (const LANGID language : {LANGID{1033}, LANGID{1041}}) {
        SetLanguage(language);
        Answering answering;
        answering.onBox = [] { EXPECT_FALSE(CloseClipboard()) << "it is closed by then"; };
        Send(frame, Paste);
        ExpectOneBox(frame, answering,
                     language == 1033
                         ? u"Failed to paste image from clipboard. Not enough memory "
                           u"or unsupported image format."
                         : u"クリップボードから貼り付けができません。メモリが不足している"
                           u"か、フォーマットに互換性がありません。",
                     language == 1033 ? u"ERROR" : u"エラー", 16);
    }
}

} // namespace

TEST(ClipboardCopy, TheSelectionsRowsStandFromTheBottomUpBehindTheHeader)
{
    RunOnPicture([](MainFrame& frame) {
        Select(frame, 3.9, 7.5, 5.1, 9.99); // 3 by 3: rows of 12 bytes
        ExpectCopied(frame, 3, 3);
        const Block block = OnClipboard();
        ASSERT_EQ(block.size(), 40u + 3 * 12);
        for (int row = 0; row < 3; ++row)
            for (int x = 0; x < 3; ++x) {
                const u8* pixel = block.data() + 40 + row * 12 + x * 3;
                EXPECT_EQ(u32{pixel[2]} << 16 | u32{pixel[1]} << 8 | pixel[0],
                          TestColor(3 + x, 9 - row));
            }
        ExpectPicture(*frame.image);
        EXPECT_EQ(frame.selectionActive, 1u);
    });
}

TEST(ClipboardCopy, IsTheWalkForPicturesAndSelectionsOfAllSizes)
{
    RunOnPicture([](MainFrame& frame) {
        for (const u32 depth : {24u, 32u, 8u, 16u})
            for (const u32 width : {1u, 2u, 3u, 4u, 5u, 8u, 13u})
                for (const u32 height : {1u, 2u, 7u}) {
                    SCOPED_TRACE(::testing::Message() << depth);
                    ASSERT_NO_FATAL_FAILURE(Fill(*frame.image, width, height, depth));
                    frame.selectionActive = 0;
                    // The corners that a selection left are no matter here.
                    frame.selectionLeft = 2;
                    frame.selectionTop = 1;
                    ExpectCopied(frame, static_cast<i32>(width), static_cast<i32>(height));
                }
        std::mt19937 random(5);
        for (const u32 depth : {24u, 32u, 8u}) {
            ASSERT_NO_FATAL_FAILURE(Fill(*frame.image, 14, 9, depth));
            for (int i = 0; i < 25; ++i) {
                const f64 left = random() % 13 + 0.25;
                const f64 top = random() % 8 + 0.75;
                const f64 right = left + random() % 6; // over the edge at times
                const f64 bottom = top + random() % 6;
                Select(frame, left, top, right, bottom);
                ExpectCopied(frame, static_cast<i32>(right) - static_cast<i32>(left) + 1,
                             static_cast<i32>(bottom) - static_cast<i32>(top) + 1);
            }
        }
    });
}

// With 32 bits a line goes on behind the pixel that is one too many, whose bytes come into the row
// of the line before, which is there already.
TEST(ClipboardCopy, ThePixelTooManyOfAWiderLineLiesOverTheRowBehindIt)
{
    RunOnPicture([](MainFrame& frame) {
        ASSERT_NO_FATAL_FAILURE(Fill(*frame.image, 4, 2, 32));
        const Choosing choosing(0);
        Send(frame, Copy);
        const Block block = OnClipboard();
        ASSERT_EQ(block.size(), 40u + 2 * 12);
        const Block first = LineOf(*frame.image, 0);
        const Block second = LineOf(*frame.image, 1);
        EXPECT_EQ(Block(block.begin() + 40, block.begin() + 55),
                  Block(second.begin(), second.begin() + 15));
        EXPECT_EQ(Block(block.begin() + 55, block.end()),
                  Block(first.begin() + 3, first.begin() + 12));
    });
}

TEST(ClipboardCopy, ALineThatWillNotLockIsPassedOver)
{
    Scope scope;
    RunOnPicture([](MainFrame& frame) {
        ASSERT_EQ(frame.image->Create(5, 4, 24, TEXT("\\Temp\\"), nullptr), Done);
        frame.image->FillAll(0x112233FF);
        frame.image->UnlockAll();
        SetRandom({7});
        ASSERT_EQ(frame.image->ReleaseLines(0, 1, 1), Done);
        SetRandom(std::vector<LONG>(101, 7));
        ASSERT_EQ(frame.image->ReleaseLines(1, 1, 1), NothingDone);
        ExpectCopied(frame, 5, 4);
        const Block block = OnClipboard();
        EXPECT_EQ(block[40 + 2 * 16], 0) << "line 1";
        EXPECT_EQ(block[40 + 3 * 16], 0x33) << "line 0";
        EXPECT_EQ(block[40], 0x33) << "line 3";
    });
}

TEST(ClipboardCopy, TheBitmapHasTheSameRows)
{
    RunOnPicture([](MainFrame& frame) {
        const Choosing choosing(1);
        for (const bool selected : {false, true}) {
            ASSERT_NO_FATAL_FAILURE(Fill(*frame.image, 13, 7, 24));
            if (selected)
                Select(frame, 2, 1, 9, 5);
            const Block rows = PlainRows(frame);
            Send(frame, Copy);
            EXPECT_TRUE(IsClipboardFormatAvailable(CF_BITMAP));
            EXPECT_FALSE(IsClipboardFormatAvailable(CF_DIB));
            ASSERT_TRUE(OpenClipboard(nullptr));
            BITMAP bitmap = {};
            EXPECT_NE(GetObjectW(GetClipboardData(CF_BITMAP), sizeof bitmap, &bitmap), 0);
            EXPECT_EQ(bitmap.bmWidth, selected ? 8 : 13);
            EXPECT_EQ(bitmap.bmHeight, selected ? 5 : 7);
            EXPECT_EQ(bitmap.bmBitsPixel, 24);
            ASSERT_NE(bitmap.bmBits, nullptr);
            EXPECT_EQ(std::memcmp(bitmap.bmBits, rows.data(), rows.size()), 0);
            EXPECT_TRUE(CloseClipboard());
        }
        EXPECT_TRUE(choosing.Boxes().empty());
    });
}

TEST(ClipboardCopy, TheFormatIsRememberedAndAClosedDialogIsAnUnexpectedErrorInBothLanguages)
{
    Scope scope;
    RunOnPicture([](MainFrame& frame) {
        EXPECT_EQ(Remembered(frame), 77u);
        {
            const Choosing closing(-1);
            Send(frame, Copy);
            EXPECT_EQ(closing.first, 0);
        }
        EXPECT_EQ(Remembered(frame), 77u);
        {
            const Choosing bitmap(1);
            Send(frame, Copy);
            EXPECT_EQ(bitmap.first, 0);
        }
        EXPECT_EQ(Remembered(frame), 1u);
        EXPECT_TRUE(IsClipboardFormatAvailable(CF_BITMAP));
        for (const LANGID language : {LANGID{1033}, LANGID{1041}}) {
            SetLanguage(language);
            const Choosing closing(-1);
            Send(frame, Copy);
            EXPECT_EQ(closing.first, 1);
            ExpectOneBox(frame, closing, u"UNEXPECTED ERROR", u"ERROR", 16);
            EXPECT_EQ(Remembered(frame), 1u);
            EXPECT_TRUE(IsClipboardFormatAvailable(CF_BITMAP)) << "it is left alone";
        }
        {
            const Choosing dib(0);
            Send(frame, Copy);
            EXPECT_EQ(dib.first, 1);
        }
        EXPECT_EQ(Remembered(frame), 0u);
        // A number that no row has: none is chosen.
        ASSERT_GT(frame.settings->SetUInt(TEXT("Tavrix"), TEXT("Clipboard"), 5), 0);
        const Choosing none(9);
        Send(frame, Copy);
        EXPECT_EQ(none.first, -1);
        ExpectOneBox(frame, none, u"UNEXPECTED ERROR", u"ERROR", 16);
        EXPECT_EQ(Remembered(frame), 5u);
    });
}

TEST(ClipboardCopy, WithoutABlockThereIsNotEnoughMemoryInBothLanguages)
{
    Scope scope;
    RunOnPicture([](MainFrame& frame) {
        for (const LANGID language : {LANGID{1033}, LANGID{1041}}) {
            SetLanguage(language);
            Choosing choosing(0);
            choosing.onDialog = [] {
                SetAllocationFault([](SIZE_T size) { return size == 40 + 50 * 180; });
            };
            Send(frame, Copy);
            SetAllocationFault(nullptr);
            ExpectOneBox(frame, choosing,
                         language == 1033 ? u"Not enough memory." : u"メモリが不足しています。",
                         language == 1033 ? u"ERROR" : u"エラー", 16);
            EXPECT_TRUE(OnClipboard().empty());
        }
        // More than a block can have.
        SetLanguage(1033);
        const f64 far = std::numeric_limits<f64>::infinity();
        Select(frame, 0, 0, far, far);
        const Choosing choosing(0);
        Send(frame, Copy);
        ExpectOneBox(frame, choosing, u"Not enough memory.", u"ERROR", 16);
    });
}

TEST(ClipboardCopy, WhatTheClipboardRefusesIsToldInBothLanguagesAndFreed)
{
    Scope scope;
    RunOnPicture([](MainFrame& frame) {
        const auto expectRefused = [&](int row, const std::function<void()>& spoil) {
            for (const LANGID language : {LANGID{1033}, LANGID{1041}}) {
                SetLanguage(language);
                const auto before = tavrix::platform::CountHoldings();
                Choosing choosing(row);
                choosing.onDialog = spoil;
                Send(frame, Copy);
                SetAllocationFault(nullptr);
                ExpectOneBox(frame, choosing,
                             language == 1033 ? u"Failed to copy image to clipboard."
                                              : u"クリップボードへコピーができません。",
                             language == 1033 ? u"ERROR" : u"エラー", 16);
                const auto after = tavrix::platform::CountHoldings();
                EXPECT_LT(after.heapBytes, before.heapBytes + 50 * 180) << "the block is freed";
                EXPECT_EQ(after.drawingObjects, before.drawingObjects);
            }
        };
        ASSERT_TRUE(OpenClipboard(nullptr)); // somebody else's
        for (const int row : {0, 1})
            expectRefused(row, {});
        EXPECT_TRUE(CloseClipboard());
        // No bitmap.
        expectRefused(1, [] { SetAllocationFault([](SIZE_T size) { return size == 50 * 180; }); });
        EXPECT_FALSE(CloseClipboard()) << "it is closed again";
    });
}

TEST(ClipboardCopy, AnotherPictureThatComesWhileTheDialogIsOpenIsReadInsideItsLines)
{
    RunOnPicture([](MainFrame& frame) {
        for (const int row : {0, 1})
            for (const bool selected : {false, true}) {
                Choosing choosing(row);
                if (selected)
                    Select(frame, 1, 1, 40, 40);
                choosing.onDialog = [&frame] {
                    ASSERT_EQ(frame.image->Create(3, 2, 24, nullptr, nullptr), Done);
                };
                Send(frame, Copy);
                EXPECT_TRUE(choosing.Boxes().empty());
                ASSERT_EQ(frame.image->Create(60, 50, 24, nullptr, nullptr), Done);
            }
    });
}

TEST(ClipboardPaste, WithoutAnOfferNothingHappensAndWithoutASelectionBothLanguagesTell)
{
    Scope scope;
    RunOnPicture([](MainFrame& frame) {
        frame.clipboardHasImage = 0;
        {
            const Answering answering;
            Send(frame, Paste);
            EXPECT_TRUE(answering.Boxes().empty());
        }
        Offer(frame, MakeBlock(10, 10));
        Select(frame, 1, 1, 5, 5);
        frame.Deselect();
        for (const LANGID language : {LANGID{1033}, LANGID{1041}}) {
            SetLanguage(language);
            const Answering answering;
            Send(frame, Paste);
            ExpectOneBox(frame, answering,
                         language == 1033 ? u"Coordinates to paste must be pointed."
                                          : u"貼り付ける座標が指定されていません",
                         language == 1033 ? u"ERROR" : u"エラー", 16);
        }
        ExpectPicture(*frame.image);
    });
}

TEST(ClipboardPaste, TheTopLeftOfThePictureComesIntoASmallerSelection)
{
    SwitchUndoOn();
    RunOnPicture([](MainFrame& frame) {
        const Block block = MakeBlock(10, 10);
        Offer(frame, block);
        Select(frame, 0, 0, 3, 3);
        const Answering answering;
        Send(frame, Paste);
        for (int y = 0; y < PictureHeight; ++y)
            for (int x = 0; x < PictureWidth; ++x) {
                const u8* pixel = block.data() + 40 + (9 - y) * 32 + 3 * x;
                ASSERT_EQ(PixelOf(*frame.image, x, y),
                          x < 4 && y < 4 ? u32{pixel[2]} << 16 | u32{pixel[1]} << 8 | pixel[0]
                                         : TestColor(x, y));
            }
        EXPECT_TRUE(answering.Boxes().empty());
        EXPECT_FALSE(CanUndo(frame));
        EXPECT_FALSE(HasSnapshot(frame));
        EXPECT_EQ(frame.selectionActive, 1u);
    });
}

// Meant: its lines are counted from the picture's top, so that the upper ones are passed over and
// none is left for the lower ones.
TEST(ClipboardPaste, LineByLineItLiesOnThePicturesOwnLines)
{
    RunOnPicture([](MainFrame& frame) {
        const Block block = MakeBlock(10, 10);
        Offer(frame, block);
        Select(frame, 20, 6, 59, 49);
        const Answering answering;
        Send(frame, Paste);
        for (int y = 0; y < PictureHeight; ++y)
            for (int x = 0; x < PictureWidth; ++x) {
                const u8* pixel = block.data() + 40 + (9 - y) * 32 + 3 * (x - 20);
                ASSERT_EQ(PixelOf(*frame.image, x, y),
                          x >= 20 && x < 30 && y >= 6 && y < 10
                              ? u32{pixel[2]} << 16 | u32{pixel[1]} << 8 | pixel[0]
                              : TestColor(x, y));
            }
    });
}

TEST(ClipboardPaste, IsTheWalkForBlocksAndSelectionsOfAllSizes)
{
    RunOnPicture([](MainFrame& frame) {
        std::mt19937 random(9);
        for (const u32 depth : {24u, 32u, 8u, 16u})
            for (int i = 0; i < 40; ++i) {
                SCOPED_TRACE(::testing::Message() << depth << ", " << i);
                const u32 width = 1 + random() % 14;
                const u32 height = 1 + random() % 9;
                ASSERT_NO_FATAL_FAILURE(Fill(*frame.image, width, height, depth));
                const Block block = MakeBlock(1 + static_cast<i32>(random() % 9),
                                              1 + static_cast<i32>(random() % 12));
                Offer(frame, block);
                const f64 left = random() % (width + 2) + random() % 4 * 0.25;
                const f64 top = random() % (height + 2) + random() % 4 * 0.25;
                Select(frame, left, top, left + random() % 9, top + random() % 9);
                ExpectPasted(frame, block);
            }
    });
}

TEST(ClipboardPaste, ABlockThatIsNotWhatItsHeaderSaysIsReadInsideItself)
{
    RunOnPicture([](MainFrame& frame) {
        const struct {
            i32 width;
            i32 height;
        } rows[] = {{10, 500},
                    {500, 10},
                    {10, -10},
                    {-10, 10},
                    {0, 10},
                    {10, 0},
                    {10, 30},
                    {11, 10},
                    {0x7FFFFFFF, 0x7FFFFFFF},
                    {-1, 10},
                    {static_cast<i32>(0x80000000), 10},
                    {10, static_cast<i32>(0x80000000)}};
        for (const auto& row : rows) {
            SCOPED_TRACE(::testing::Message() << row.width << " x " << row.height);
            ASSERT_NO_FATAL_FAILURE(Fill(*frame.image, 60, 50, 24));
            Block block = MakeBlock(10, 10);
            u8* const there = Offer(frame, block);
            for (u8* bytes : {block.data(), there}) {
                std::memcpy(bytes + 4, &row.width, 4);
                std::memcpy(bytes + 8, &row.height, 4);
            }
            Select(frame, 0, 0, 59, 49);
            ExpectPasted(frame, block);
            Select(frame, 3, 2, 20, 20);
            ExpectPasted(frame, block);
        }
    });
}

TEST(ClipboardPaste, ATopDownBlockPastesNothingAndSaysNothing)
{
    RunOnPicture([](MainFrame& frame) {
        Offer(frame, MakeBlock(10, -10));
        Select(frame, 0, 0, 59, 49);
        const Answering answering;
        Send(frame, Paste);
        EXPECT_TRUE(answering.Boxes().empty());
        ExpectPicture(*frame.image);
    });
}

TEST(ClipboardPaste, OtherDepthsABitmapNoDataAndABusyClipboardAreTheErrorInBothLanguages)
{
    Scope scope;
    RunOnPicture([](MainFrame& frame) {
        Select(frame, 0, 0, 9, 9);
        for (const WORD depth : {WORD{16}, WORD{32}}) {
            Offer(frame, MakeBlock(10, 10, depth));
            ExpectPasteError(frame);
        }
        // A bitmap raises the flag, too.
        {
            const Choosing choosing(1);
            Send(frame, Copy);
            SendMessageW(frame.window, WM_TIMER, 2, 0);
            ASSERT_EQ(frame.clipboardHasImage, 1u);
            EXPECT_TRUE(choosing.Boxes().empty());
        }
        ExpectPasteError(frame);
        // Nothing any more, before the next poll.
        ASSERT_TRUE(OpenClipboard(nullptr));
        EXPECT_TRUE(EmptyClipboard());
        EXPECT_TRUE(CloseClipboard());
        ExpectPasteError(frame);
        Offer(frame, MakeBlock(10, 10));
        ASSERT_TRUE(OpenClipboard(nullptr)); // somebody else's
        for (const LANGID language : {LANGID{1033}, LANGID{1041}}) {
            SetLanguage(language);
            const Answering answering;
            Send(frame, Paste);
            EXPECT_EQ(answering.Boxes().size(), 1u);
        }
        EXPECT_TRUE(CloseClipboard()) << "left to whoever has it";
        ExpectPicture(*frame.image);
    });
}

TEST(ClipboardPaste, ALineThatWillNotLockIsPassedOver)
{
    Scope scope;
    RunOnPicture([](MainFrame& frame) {
        ASSERT_EQ(frame.image->Create(5, 4, 24, TEXT("\\Temp\\"), nullptr), Done);
        frame.image->FillAll(0x112233FF);
        frame.image->UnlockAll();
        SetRandom({7});
        ASSERT_EQ(frame.image->ReleaseLines(0, 1, 1), Done);
        SetRandom(std::vector<LONG>(101, 7));
        ASSERT_EQ(frame.image->ReleaseLines(1, 1, 1), NothingDone);
        const Block block = MakeBlock(5, 4);
        Offer(frame, block);
        Select(frame, 0, 0, 4, 3);
        const Answering answering;
        Send(frame, Paste);
        EXPECT_TRUE(answering.Boxes().empty());
        for (const int y : {0, 2, 3})
            EXPECT_EQ(LineOf(*frame.image, y)[0], block[static_cast<size_t>(40 + (3 - y) * 16)]);
    });
}

TEST(ClipboardClip, CornersThatNoDragLeavesAreSurvived)
{
    RunOnPicture([](MainFrame& frame) {
        const f64 far = std::numeric_limits<f64>::infinity();
        const f64 rows[][4] = {{29, 34, 10, 20},   {-5, -5, 4, 4},         {70, 70, 80, 80},
                               {-far, 0, far, 10}, {far, far, -far, -far}, {0, -far, 4, far},
                               {0, 0, -1, 2e9},    {0, 0, far, far},       {-9, 3, -2, 9}};
        for (const auto& row : rows) {
            Offer(frame, MakeBlock(10, 10));
            Select(frame, row[0], row[1], row[2], row[3]);
            for (const int format : {0, 1}) {
                const Choosing choosing(format);
                Send(frame, Paste);
                Send(frame, Copy);
            }
        }
    });
}

TEST(ClipboardClip, WithoutAPictureNothingIsHarmed)
{
    InstallPlugin(tavrix::testing::InBuild("/bin/PLUGINS/INPUT/PNG.dll"));
    RunProgram(u"", [](MainFrame& frame) {
        Send(frame, 40056); // the key selects from 0 to -1
        for (const int active : {1, 0})
            for (const int row : {0, 1, -1}) {
                frame.selectionActive = static_cast<u32>(active);
                const Choosing choosing(row);
                Send(frame, Copy);
                EXPECT_EQ(choosing.dialogs, 1);
            }
        Offer(frame, MakeBlock(10, 10));
        Send(frame, 40056);
        const Answering answering;
        Send(frame, Paste);
        EXPECT_TRUE(answering.Boxes().empty());
        EXPECT_EQ(InfoOf(*frame.image).depth, 0u);
    });
}
