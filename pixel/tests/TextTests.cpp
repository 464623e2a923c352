// Text laid over pixels: its steps, and what each of them leaves.

#include "AreaSweep.h"
#include "DrawingCalls.h"
#include "PlainText.h"
#include "platform/testing/Faults.h"

#include "pixel/TextCoverage.h"

namespace
{

using Calls = std::vector<std::string>;
using tavrix::platform::CountHoldings;
using tavrix::testing::FaultKind;
using tavrix::testing::ForEveryFault;

constexpr u32 Size = 10;
constexpr u32 WordBreak = 16;
constexpr const WCHAR* Face = TEXT("Some Face");
constexpr i64 LargestNumber = 0x7FFFFFFF;

class TextTest : public PagingTest
{
protected:
    // The system's own drawing objects come with the first use of any, and stay.
    TextTest() { (void)::GetStockObject(SYSTEM_FONT); }

    i32 Draw(Raster& raster, u32 color, PixelRect at)
    {
        return raster.DrawTextSmooth(TEXT("text"), color, Face, at.left, at.top, at.right,
                                     at.bottom, Size, WordBreak);
    }
    void InkEverywhere()
    {
        calls.draw = [](const DrawingCalls::Ink& ink, RECT*, UINT) {
            std::memset(ink.bytes, 0xFF, ink.rowBytes * static_cast<size_t>(ink.height));
            return 1;
        };
    }
    /// Bytes by a formula: none, some and all bits.
    void SomeInk(u32 seed)
    {
        calls.draw = [seed](const DrawingCalls::Ink& ink, RECT*, UINT) {
            Put(seed, ink.bytes, ink.rowBytes * static_cast<size_t>(ink.height));
            return 1;
        };
    }
    static void Put(u32 seed, u8* bytes, size_t count)
    {
        std::mt19937 random(seed);
        for (size_t i = 0; i < count; ++i) {
            const u32 word = random();
            const u32 kind = word >> 30;
            bytes[i] = static_cast<u8>(kind == 0 ? 0 : kind == 1 ? 255 : word);
        }
    }

    DrawingCalls calls;
};

/// A bitmap that cannot be: too large for its header or for the platform, or of no pixels.
bool CannotBe(i64 width, i64 height)
{
    return width < 1 || height < 1 || width > LargestNumber || height > LargestNumber ||
           (width + 31) / 32 * 4 > LargestNumber / height;
}

/// What the whole drawing of a text with ink of that seed does.
i32 PlainDraw(PlainRaster& plain, u32 color, PixelRect at, u32 seed, void (*put)(u32, u8*, size_t))
{
    PlainInk ink;
    ink.width = 8 * (i64{at.right} - at.left + 1);
    ink.height = 8 * (i64{at.bottom} - at.top + 1);
    if (CannotBe(ink.width, ink.height))
        return Failed;
    ink.bytes.resize(ink.RowBytes() * static_cast<size_t>(ink.height));
    put(seed, ink.bytes.data(), ink.bytes.size());
    PlainLayText(plain, ink, color, at);
    return Done;
}

/// Which pixels of a drawing on black have ink, '#'.
Picture InkOf(Raster& raster)
{
    return Changed(raster, 0);
}

} // namespace

TEST_F(TextTest, EqualsItsFormulaEverywhere)
{
    SomeInk(1);
    SweepAreas([this](Raster& raster, u32 color, PixelRect at) { return Draw(raster, color, at); },
               [](PlainRaster& plain, u32 color, PixelRect at) {
                   return PlainDraw(plain, color, at, 1, Put);
               },
               81);
}

TEST_F(TextTest, EqualsItsFormulaWhileLinesGoToFiles)
{
    SomeInk(2);
    SweepPagedAreas(
        [this](Raster& raster, u32 color, PixelRect at) { return Draw(raster, color, at); },
        [](PlainRaster& plain, u32 color, PixelRect at) {
            return PlainDraw(plain, color, at, 2, Put);
        },
        82);
}

TEST_F(TextTest, ALineThatDoesNotComeEndsTheDrawingWithTheLinesBelowDoneAndIsNotTold)
{
    SomeInk(3);
    SweepRefusedAreas(
        [this](Raster& raster, u32 color, PixelRect at) { return Draw(raster, color, at); },
        [](PlainRaster& plain, u32 color, PixelRect at) {
            return PlainDraw(plain, color, at, 3, Put);
        },
        83);
    for (const std::string call : {"context", "font", "bitmap", "brush"})
        EXPECT_EQ(std::count(calls.log.begin(), calls.log.end(), call),
                  std::count(calls.log.begin(), calls.log.end(), "delete " + call))
            << call;
}

TEST_F(TextTest, ALostLineEndsTheDrawing)
{
    InkEverywhere();
    Twin twin(4, 3, 24, 5);
    const Rows before = twin.plain.rows;
    AddLostLines(twin, 1);
    EXPECT_EQ(Draw(twin.raster, 0xFFFFFFFF, {0, 0, 3, 3}), Done);
    for (i32 y = 0; y < 3; ++y)
        EXPECT_EQ(RowOf(twin.raster, y), before[static_cast<size_t>(y)]) << y;
}

TEST_F(TextTest, TheNumbersThatArithmeticGoesWrongOnAreSurvived)
{
    // Corners of which no bitmap that is large can come.
    constexpr i32 Least = -0x7FFFFFFF - 1;
    constexpr i32 Most = 0x7FFFFFFF;
    SomeInk(4);
    Twin twin(4, 3, 24, 5);
    for (const i32 left : {Least, Least + 1, -1, 0, 3, Most - 1, Most})
        for (const i32 across : {Least, -1, 0, 1, 5, Most})
            for (const i32 top : {Least, Least + 1, -1, 0, 2, Most - 1, Most})
                for (const i32 down : {Least, -1, 0, 1, 5, Most}) {
                    const auto sum = [](i32 a, i32 b) {
                        return static_cast<i32>(std::clamp(i64{a} + b, i64{Least}, i64{Most}));
                    };
                    const PixelRect at = {left, top, sum(left, across), sum(top, down)};
                    EXPECT_EQ(Draw(twin.raster, 0x12345670, at),
                              PlainDraw(twin.plain, 0x12345670, at, 4, Put))
                        << Tell(at);
                }
    ExpectSame({&twin});
}

TEST_F(TextTest, TheStepsComeInTheirOrder)
{
    Raster raster;
    ASSERT_EQ(raster.Create(20, 20, 24, nullptr, nullptr), 1);
    EXPECT_EQ(Draw(raster, 0xFF, {2, 3, 11, 7}), Done);
    EXPECT_EQ(calls.log,
              (Calls{"context", "font", "select font", "bitmap", "select bitmap", "colour 0",
                     "brush", "fill", "draw", "select what was before", "select what was before",
                     "delete context", "delete bitmap", "delete font", "delete brush"}));
    ASSERT_EQ(calls.letters.size(), 1u);
    EXPECT_EQ(calls.letters[0].text, u"text");
    EXPECT_EQ(calls.letters[0].format, WordBreak);
    const RECT& place = calls.letters[0].place;
    EXPECT_EQ((Bytes{static_cast<u32>(place.left), static_cast<u32>(place.top),
                     static_cast<u32>(place.right), static_cast<u32>(place.bottom)}),
              (Bytes{0, 0, 80, 40}));
}

TEST_F(TextTest, TheFontIsPlainEightTimesAsLargeAndOfTheNamedFace)
{
    Raster raster;
    ASSERT_EQ(raster.Create(20, 20, 24, nullptr, nullptr), 1);
    EXPECT_EQ(Draw(raster, 0xFF, {2, 3, 11, 7}), Done);
    LOGFONTW expected = {};
    expected.lfHeight = 80;
    expected.lfWeight = 400;
    expected.lfCharSet = 1;
    std::u16string(Face).copy(expected.lfFaceName, LF_FACESIZE);
    EXPECT_EQ(std::memcmp(&calls.font, &expected, sizeof expected), 0);
}

TEST_F(TextTest, AFacesNameIsCutAt31Characters)
{
    Raster raster;
    ASSERT_EQ(raster.Create(4, 4, 24, nullptr, nullptr), 1);
    for (const size_t length : {30u, 31u, 32u, 100u}) {
        const std::u16string name(length, u'字');
        EXPECT_EQ(raster.DrawTextSmooth(TEXT("a"), 255, name.c_str(), 0, 0, 3, 3, 10, 16), Done);
        EXPECT_EQ(std::u16string(calls.font.lfFaceName),
                  std::u16string(std::min<size_t>(length, 31), u'字'));
    }
}

TEST_F(TextTest, TheLargeBitmapIsBottomUpWithInkForOnes)
{
    Raster raster;
    ASSERT_EQ(raster.Create(20, 20, 24, nullptr, nullptr), 1);
    EXPECT_EQ(Draw(raster, 0xFF, {2, 3, 11, 7}), Done);
    EXPECT_EQ(calls.header.biSize, 40u);
    EXPECT_EQ(calls.header.biWidth, 80);
    EXPECT_EQ(calls.header.biHeight, 40);
    EXPECT_EQ(calls.header.biPlanes, 1);
    EXPECT_EQ(calls.header.biBitCount, 1);
    EXPECT_EQ(calls.header.biCompression, 0u);
    const auto word = [](const RGBQUAD& color) {
        return Bytes{color.rgbRed, color.rgbGreen, color.rgbBlue};
    };
    EXPECT_EQ(word(calls.colors[0]), (Bytes{255, 255, 255}));
    EXPECT_EQ(word(calls.colors[1]), (Bytes{0, 0, 0}));
}

TEST_F(TextTest, BeforeTheLettersThereIsNoInk)
{
    for (i32 width = 1; width <= 9; ++width) {
        std::vector<u8> found;
        calls.draw = [&found](const DrawingCalls::Ink& ink, RECT*, UINT) {
            found = ink.All();
            return 1;
        };
        Raster raster;
        ASSERT_EQ(raster.Create(20, 20, 24, nullptr, nullptr), 1);
        EXPECT_EQ(Draw(raster, 0xFF, {0, 0, width - 1, 1}), Done);
        // Beyond the bitmap's width a row holds anything.
        const size_t rowBytes = static_cast<size_t>(width + 3) / 4 * 4;
        ASSERT_EQ(found.size(), rowBytes * 16);
        for (size_t i = 0; i < found.size(); ++i) {
            if (i % rowBytes < static_cast<size_t>(width)) {
                EXPECT_EQ(found[i], 0) << width << ": " << i;
            }
        }
    }
}

TEST_F(TextTest, WhatCannotBeMadeFailsAndEverythingMadeBeforeIsDeleted)
{
    const auto held = CountHoldings();
    const struct {
        const char* call;
        Calls deleted;
    } rows[] = {
        {"context", {}},
        {"font", {"delete context"}},
        {"select font", {"delete context", "delete font"}},
        {"bitmap", {"delete context", "delete font"}},
        {"select bitmap", {"delete context", "delete font", "delete bitmap"}},
        {"brush", {"delete context", "delete font", "delete bitmap"}},
    };
    Twin twin(8, 6, 24, 5);
    for (const auto& row : rows) {
        InkEverywhere();
        calls.log.clear();
        calls.fails = row.call;
        EXPECT_EQ(Draw(twin.raster, 0xFFFFFFFF, {1, 1, 5, 4}), Failed) << row.call;
        Calls deleted;
        for (const std::string& call : calls.log) {
            EXPECT_NE(call, "draw") << row.call;
            if (call.starts_with("delete"))
                deleted.push_back(call);
        }
        EXPECT_EQ(deleted, row.deleted) << row.call;
        EXPECT_EQ(CountHoldings().drawingObjects, held.drawingObjects) << row.call;
    }
    calls.fails.clear();
    ExpectSame({&twin});
    EXPECT_EQ(Draw(twin.raster, 0xFFFFFFFF, {1, 1, 5, 4}), Done) << "nothing stands in its way";
    EXPECT_EQ(PixelOf(twin.raster, 1, 1), (Bytes{255, 255, 255}));
}

TEST_F(TextTest, AfterEachDrawingNothingIsHeld)
{
    const auto held = CountHoldings();
    Raster raster;
    ASSERT_EQ(raster.Create(9, 9, 24, nullptr, nullptr), 1);
    for (const PixelRect at : {PixelRect{0, 0, 8, 8}, PixelRect{0, 0, 8, 9}, PixelRect{5, 5, 4, 8},
                               PixelRect{-20, -20, -10, -10}, PixelRect{20, 20, 30, 30}}) {
        (void)Draw(raster, 0xFFFFFFFF, at);
        EXPECT_EQ(CountHoldings().drawingObjects, held.drawingObjects) << Tell(at);
    }
}

TEST_F(TextTest, CornersOutOfOrderAndSizesOfNoBitmapFail)
{
    InkEverywhere();
    Twin twin(8, 6, 24, 5);
    for (const PixelRect at :
         {PixelRect{5, 1, 4, 3}, PixelRect{1, 4, 3, 3}, PixelRect{7, 5, 0, 0},
          // So far out of order that the difference comes round.
          PixelRect{0x7FFFFFFF, 0, -0x7FFFFFFF - 1, 0}, PixelRect{0, 0x7FFFFFFF, 0, -0x7FFFFFFF},
          PixelRect{0, 0, 0x10000000, 0}, PixelRect{0, 0, 0, 0x10000000},
          PixelRect{0, 0, 0x0FFFFFFE, 8}, PixelRect{0, 0, 0x7FFFFFFF, 0x7FFFFFFF},
          PixelRect{-0x7FFFFFFF, -0x7FFFFFFF, 0x7FFFFFFF, 0x7FFFFFFF}}) {
        EXPECT_EQ(Draw(twin.raster, 0xFFFFFFFF, at), Failed) << Tell(at);
        EXPECT_TRUE(calls.letters.empty()) << Tell(at);
    }
    ExpectSame({&twin});
}

TEST_F(TextTest, ARegionThatReachesBelowTheRasterDrawsNothingAndThatIsDone)
{
    InkEverywhere();
    Twin twin(8, 6, 24, 5);
    EXPECT_EQ(Draw(twin.raster, 0xFFFFFFFF, {0, 0, 7, 6}), Done) << "its bottom is the height";
    EXPECT_EQ(Draw(twin.raster, 0xFFFFFFFF, {0, 0, 7, 7}), Done);
    EXPECT_EQ(Draw(twin.raster, 0xFFFFFFFF, {0, 6, 7, 9}), Done);
    ExpectSame({&twin});
    EXPECT_EQ(calls.letters.size(), 3u);
    EXPECT_EQ(Draw(twin.raster, 0xFFFFFFFF, {0, 0, 7, 5}), Done);
    EXPECT_EQ(PixelOf(twin.raster, 7, 5), (Bytes{255, 255, 255}));
}

TEST_F(TextTest, ARegion3PixelsWiderThanTheRasterIsCutThereAndTheLettersKeepTheirShape)
{
    SomeInk(7);
    Raster narrow;
    Raster wide;
    ASSERT_EQ(narrow.Create(8, 6, 24, nullptr, nullptr), 1);
    ASSERT_EQ(wide.Create(11, 6, 24, nullptr, nullptr), 1);
    EXPECT_EQ(Draw(narrow, 0xFFFFFFFF, {2, 1, 10, 4}), Done);
    EXPECT_EQ(Draw(wide, 0xFFFFFFFF, {2, 1, 10, 4}), Done);
    for (u32 y = 0; y < 6; ++y)
        for (u32 x = 0; x < 8; ++x)
            EXPECT_EQ(PixelOf(narrow, x, y), PixelOf(wide, x, y)) << x << ", " << y;
    EXPECT_EQ(calls.letters[0].place.right, 72) << "the bitmap is the region's";
}

TEST_F(TextTest, ANegativeLeftOrTopDrawsThePartInside)
{
    // A mark at the region's pixel (2, 1).
    calls.draw = [](const DrawingCalls::Ink& ink, RECT*, UINT) {
        for (i32 y = 8; y < 16; ++y)
            for (i32 x = 16; x < 24; ++x)
                ink.Set(x, y);
        return 1;
    };
    const auto drawn = [this](PixelRect at) {
        Raster raster;
        EXPECT_EQ(raster.Create(4, 3, 24, nullptr, nullptr), 1);
        EXPECT_EQ(Draw(raster, 0xFFFFFFFF, at), Done);
        return InkOf(raster);
    };
    EXPECT_EQ(drawn({0, 0, 3, 2}), (Picture{"....", "..#.", "...."}));
    EXPECT_EQ(drawn({-2, 0, 3, 2}), (Picture{"....", "#...", "...."}));
    EXPECT_EQ(drawn({-3, 0, 3, 2}), (Picture{"....", "....", "...."}));
    EXPECT_EQ(drawn({0, -1, 3, 2}), (Picture{"..#.", "....", "...."}));
    EXPECT_EQ(drawn({1, 0, 9, 2}), (Picture{"....", "...#", "...."}));
    EXPECT_EQ(drawn({-2, -1, 3, 2}), (Picture{"#...", "....", "...."}));
    EXPECT_EQ(drawn({-9, -9, -1, -1}), (Picture{"....", "....", "...."}));
}

TEST_F(TextTest, TheFirstRowsOfTheBitmapAreTheBottomLine)
{
    calls.draw = [](const DrawingCalls::Ink& ink, RECT*, UINT) {
        ink.bytes[0] = 1; // the lowest row of all, the eighth pixel
        return 1;
    };
    Raster raster;
    ASSERT_EQ(raster.Create(3, 3, 24, nullptr, nullptr), 1);
    EXPECT_EQ(Draw(raster, 0xFFFFFFFF, {1, 0, 2, 1}), Done);
    EXPECT_EQ(InkOf(raster), (Picture{"...", ".#.", "..."}));
    EXPECT_EQ(PixelOf(raster, 1, 1), (Bytes{3, 3, 3})); // 256 * 255 / 16384
}

TEST_F(TextTest, Opacity255OnAFullBlockGivesExactlyTheColour)
{
    InkEverywhere();
    Twin twin(8, 6, 24, 5);
    EXPECT_EQ(Draw(twin.raster, 0x0180FEFF, {0, 0, 7, 5}), Done);
    for (u32 y = 0; y < 6; ++y)
        for (u32 x = 0; x < 8; ++x)
            EXPECT_EQ(PixelOf(twin.raster, x, y), (Bytes{0xFE, 0x80, 0x01}));
}

TEST_F(TextTest, AnEmptyBlockLeavesThePixelToTheBit)
{
    Twin twin(256, 2, 24, 0);
    Rows rows(2, std::vector<u8>(twin.plain.stride));
    for (size_t i = 0; i < rows[0].size(); ++i)
        rows[0][i] = rows[1][i] = static_cast<u8>(i / 3);
    twin.SetRows(rows);
    for (const u32 color : {0xFFFFFFFFu, 0x123456FFu, 0x00000000u})
        EXPECT_EQ(Draw(twin.raster, color, {0, 0, 255, 1}), Done);
    ExpectSame({&twin});
}

TEST_F(TextTest, Opacity0OnAFullBlockIsOnePartIn256)
{
    u8 pixel[3] = {0, 100, 255};
    u8 bits[8];
    std::memset(bits, 0xFF, sizeof bits);
    BlendTextRow(pixel, bits, 1, 1, BytesOf(0xFFFFFF00));
    EXPECT_EQ(pixel[0], 0);   // 255 / 256
    EXPECT_EQ(pixel[1], 100); // (255 * 100 + 255) / 256
    EXPECT_EQ(pixel[2], 255);
    u8 dark[3] = {255, 128, 0};
    BlendTextRow(dark, bits, 1, 1, BytesOf(0));
    EXPECT_EQ(dark[0], 254);
    EXPECT_EQ(dark[1], 127);
    EXPECT_EQ(dark[2], 0);
}

TEST_F(TextTest, ATextThatDrawsNoInkIsDoneAndChangesNothing)
{
    Twin twin(8, 6, 24, 5);
    for (const WCHAR* text :
         {TEXT("\n"), TEXT(""), TEXT("   "), static_cast<const WCHAR*>(nullptr)})
        EXPECT_EQ(twin.raster.DrawTextSmooth(text, 0xFFFFFFFF, Face, 0, 0, 7, 5, 10, 16), Done);
    ASSERT_EQ(calls.letters.size(), 3u) << "no text is not drawn at all";
    EXPECT_EQ(calls.letters[0].text, u"\n");
    ExpectSame({&twin});
}

TEST_F(TextTest, WithoutAFacesNameTheFontHasNone)
{
    Raster raster;
    ASSERT_EQ(raster.Create(8, 6, 24, nullptr, nullptr), 1);
    EXPECT_EQ(raster.DrawTextSmooth(TEXT("a"), 255, nullptr, 0, 0, 7, 5, 0, 16), Done);
    EXPECT_EQ(calls.font.lfFaceName[0], 0);
    EXPECT_EQ(calls.font.lfHeight, 0);
}

TEST_F(TextTest, TheFormatGoesOnAsItIs)
{
    Raster raster;
    ASSERT_EQ(raster.Create(8, 6, 24, nullptr, nullptr), 1);
    for (const u32 format : {0u, 16u, 37u, 0xFFFFFFFFu}) {
        EXPECT_EQ(raster.DrawTextSmooth(TEXT("a"), 255, Face, 0, 0, 7, 5, 10, format), Done);
        EXPECT_EQ(calls.letters.back().format, format);
    }
}

TEST_F(TextTest, ARasterWithoutPixelsTakesNothing)
{
    InkEverywhere();
    Raster raster;
    EXPECT_EQ(Draw(raster, 0xFFFFFFFF, {0, 0, 0, 0}), Done);
    EXPECT_EQ(Draw(raster, 0xFFFFFFFF, {-5, -5, -1, -1}), Done);
    EXPECT_EQ(Draw(raster, 0xFFFFFFFF, {-5, -5, 5, 5}), Done);
}

TEST_F(TextTest, NoFaultOfMemoryOrFilesBreaksItOrLeavesAnythingBehind)
{
    for (const FaultKind kind : {FaultKind::Allocation, FaultKind::Create, FaultKind::Write,
                                 FaultKind::ShortWrite, FaultKind::Read}) {
        i32 result = Done;
        bool drew = false;
        InkEverywhere();
        ForEveryFault(
            kind,
            [&] {
                result = Done;
                calls.log.clear();
                PlentyOfMemory();
                Raster raster;
                drew = raster.Create(9, 4, 24, FirstFolder, SecondFolder) == Done;
                if (!drew)
                    return;
                ShortMemory();
                for (int turn = 0; turn < 2 && result == Done; ++turn)
                    result = Draw(raster, 0xFF8040FF, {0, 0, 8, 3});
                PlentyOfMemory();
            },
            [&](bool fired) { EXPECT_TRUE(result == Done || (fired && result == Failed)); });
    }
}

TEST(TextCoverage, CountsTheBitsOfEightBytesThatFarApart)
{
    for (u32 byte = 0; byte < 256; ++byte) {
        u32 bits = 0;
        for (u32 bit = 0; bit < 8; ++bit)
            bits += byte >> bit & 1;
        for (const size_t rowBytes : {1u, 4u, 12u})
            for (size_t row = 0; row < 8; ++row) {
                std::vector<u8> block(8 * rowBytes, 0xFF);
                for (size_t i = 0; i < 8; ++i)
                    block[i * rowBytes] = 0;
                block[row * rowBytes] = static_cast<u8>(byte);
                EXPECT_EQ(TextCoverage(block.data(), rowBytes), bits);
            }
    }
    EXPECT_EQ(TextCoverage(std::vector<u8>(8, 0xFF).data(), 1), 64u);
}

TEST(TextCoverage, EqualsItsFormulaForEveryCoverageEveryOpacityAndEveryOldByte)
{
    constexpr size_t Pixels = 86; // of three bytes: every old one once
    for (u32 coverage = 0; coverage <= 64; ++coverage) {
        std::vector<u8> bits(8 * Pixels);
        for (size_t x = 0; x < Pixels; ++x)
            for (u32 i = 0; i < coverage; ++i)
                bits[(i + x) % 8 * Pixels + x] |= static_cast<u8>(1 << i / 8);
        for (u32 opacity = 0; opacity < 256; ++opacity) {
            const u32 color = (opacity * 0x01030507u ^ coverage << 9) << 8 | opacity;
            u8 pixels[3 * Pixels];
            for (size_t i = 0; i < sizeof pixels; ++i)
                pixels[i] = static_cast<u8>(i);
            BlendTextRow(pixels, bits.data(), Pixels, Pixels, BytesOf(color));
            const PlainColor split(color);
            for (size_t i = 0; i < sizeof pixels; ++i)
                ASSERT_EQ(pixels[i],
                          PlainTextByte(static_cast<u8>(i), split.c[i % 3], coverage, opacity))
                    << coverage << ' ' << opacity << ' ' << i;
        }
    }
}
