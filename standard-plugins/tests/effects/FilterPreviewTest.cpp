// What a filter's dialog takes of a picture and draws: which pixels, in which proportions; and the
// rows that a filter sees at a time.

#include "standard-plugins/common/filtering/device/FilterPreview.h"
#include "platform/testing/Faults.h"
#include "standard-plugins/common/filtering/FilterWindow.h"
#include "standard-plugins/tests/effects/StrictPicture.h"

using namespace effecttest;
using tavrix::testing::FaultKind;
using tavrix::testing::ForEveryFault;

namespace
{

// Tells its place in red and green.
u8 Place(u32 x, u32 y, int channel)
{
    return static_cast<u8>(channel == 0 ? x : channel == 1 ? y : 200);
}

void Invert(FilterContext*, const FilterRows& rows, uint8_t* out)
{
    for (u32 i = 0; i < 3 * rows.width; ++i)
        out[i] = static_cast<u8>(255 - RowAt(rows, 0)[i]);
}

class Preview : public testing::Test
{
protected:
    ~Preview() override
    {
        FreePreview(&preview);
        tavrix::testing::Reset();
    }
    void Take(u32 width, u32 height, SIZE place, PreviewSample sample)
    {
        FreePreview(&preview);
        canvas = StrictPicture(width, height, Place);
        TakePreview(&preview, place, sample, canvas->Handle(), canvas->Table());
        canvas->UnlockAll();
    }
    /// The place in the picture of a pixel of the preview.
    std::pair<u32, u32> Source(u32 x, u32 y) const
    {
        const u8* pixel = preview.before + size_t{3} * (size_t{preview.width} * y + x);
        EXPECT_EQ(pixel[0], 200);
        return {pixel[2], pixel[1]};
    }
    void ExpectSize(u32 width, u32 height) const
    {
        EXPECT_EQ(preview.width, width);
        EXPECT_EQ(preview.height, height);
    }

    tavrix::testing::Scope scope;
    std::unique_ptr<Canvas> canvas;
    FilterPreview preview = {};
};

using Pair = std::pair<u32, u32>;

} // namespace

TEST_F(Preview, MiddleIsTakenPixelByPixel)
{
    Take(200, 150, {40, 30}, PreviewSample::Middle);
    ExpectSize(40, 30);
    for (u32 y = 0; y < 30; ++y)
        for (u32 x = 0; x < 40; ++x)
            ASSERT_EQ(Source(x, y), Pair(80 + x, 60 + y));
    Take(5, 150, {40, 30}, PreviewSample::Middle);
    ExpectSize(5, 30);
    EXPECT_EQ(Source(0, 0), Pair(0, 60));
    Take(200, 3, {40, 30}, PreviewSample::Middle);
    ExpectSize(40, 3);
    EXPECT_EQ(Source(39, 2), Pair(119, 2));
}

TEST_F(Preview, WholePictureKeepsItsProportions)
{
    Take(200, 100, {40, 30}, PreviewSample::Whole);
    ExpectSize(40, 20);
    // The middle of each five pixels, from edge to edge.
    for (u32 y = 0; y < 20; ++y)
        for (u32 x = 0; x < 40; ++x)
            ASSERT_EQ(Source(x, y), Pair(5 * x + 2, 5 * y + 2));
    Take(50, 250, {40, 30}, PreviewSample::Whole);
    ExpectSize(6, 30);
    Take(250, 1, {40, 30}, PreviewSample::Whole);
    ExpectSize(40, 1);
    Take(1, 250, {40, 30}, PreviewSample::Whole);
    ExpectSize(1, 30);
    EXPECT_EQ(Source(0, 29), Pair(0, 245));
    Take(41, 30, {40, 30}, PreviewSample::Whole);
    ExpectSize(40, 29);
}

TEST_F(Preview, SmallPictureIsTakenAsItIs)
{
    for (const PreviewSample sample : {PreviewSample::Middle, PreviewSample::Whole}) {
        Take(40, 30, {40, 30}, sample);
        ExpectSize(40, 30);
        EXPECT_EQ(Source(39, 29), Pair(39, 29));
        Take(1, 1, {40, 30}, sample);
        ExpectSize(1, 1);
        EXPECT_EQ(Source(0, 0), Pair(0, 0));
    }
}

TEST_F(Preview, ShowsWhatTheFilterMakesAndKeepsWhatWas)
{
    Take(9, 7, {40, 30}, PreviewSample::Middle);
    EXPECT_EQ(memcmp(preview.before, preview.after, 3 * 9 * 7), 0) << "at first as it is";
    const u32 values[1] = {};
    for (int round = 0; round < 2; ++round) {
        ChangePreview(&preview, {.change = Invert}, values);
        for (u32 i = 0; i < 3 * 9 * 7; ++i)
            ASSERT_EQ(preview.after[i], 255 - preview.before[i]);
        EXPECT_EQ(Source(8, 6), Pair(8, 6));
    }
}

TEST_F(Preview, PixelsArePickedInTheMiddleOfThePlaceAlone)
{
    Take(10, 6, {40, 30}, PreviewSample::Middle);
    const RECT place = {100, 50, 140, 80};
    const auto at = [&](LONG x, LONG y) { return PreviewPixelAt(preview, place, {x, y}); };
    EXPECT_EQ(at(115, 62), preview.before);
    EXPECT_EQ(at(124, 67), preview.before + size_t{3} * 59);
    for (const POINT point : {POINT{114, 62}, {115, 61}, {125, 67}, {124, 68}, {0, 0}, {-9, 900}})
        EXPECT_EQ(at(point.x, point.y), nullptr) << point.x << "," << point.y;
    FreePreview(&preview);
    EXPECT_EQ(at(120, 65), nullptr);
}

TEST_F(Preview, IsDrawnInTheMiddleOfAGreyGround)
{
    Take(11, 6, {40, 30}, PreviewSample::Middle);
    BITMAPINFO info = {};
    info.bmiHeader.biSize = sizeof info.bmiHeader;
    info.bmiHeader.biWidth = 60;
    info.bmiHeader.biHeight = 40;
    info.bmiHeader.biPlanes = 1;
    info.bmiHeader.biBitCount = 24;
    void* bits = nullptr;
    const HBITMAP bitmap = CreateDIBSection(nullptr, &info, DIB_RGB_COLORS, &bits, nullptr, 0);
    const HDC dc = CreateCompatibleDC(nullptr);
    const HGDIOBJ old = SelectObject(dc, bitmap);
    DrawPreview(preview, dc, {10, 5, 50, 35});
    EXPECT_EQ(GetPixel(dc, 9, 5), RGB(0, 0, 0)) << "beside its place";
    EXPECT_EQ(GetPixel(dc, 10, 5), RGB(128, 128, 128));
    EXPECT_EQ(GetPixel(dc, 49, 34), RGB(128, 128, 128));
    for (int y = 0; y < 6; ++y)
        for (int x = 0; x < 11; ++x)
            ASSERT_EQ(GetPixel(dc, 24 + x, 17 + y), RGB(x, y, 200)) << x << "," << y;
    FreePreview(&preview);
    DrawPreview(preview, dc, {10, 5, 50, 35});
    EXPECT_EQ(GetPixel(dc, 26, 19), RGB(128, 128, 128)) << "an empty one is ground alone";
    SelectObject(dc, old);
    DeleteDC(dc);
    DeleteObject(bitmap);
}

TEST_F(Preview, IsEmptyWithoutAPictureATableOrAPlace)
{
    canvas = StrictPicture(9, 7, Place);
    const auto take = [this](SIZE place, bool image, bool table) {
        preview.width = 99;
        TakePreview(&preview, place, PreviewSample::Whole, image ? canvas->Handle() : nullptr,
                    table ? canvas->Table() : nullptr);
        EXPECT_EQ(preview.width, 0u);
        const u32 values[1] = {};
        ChangePreview(&preview, {.change = Invert}, values);
    };
    take({0, 10}, true, true);
    take({10, 0}, true, true);
    take({10, 10}, false, true);
    take({10, 10}, true, false);
    canvas->depth = 8;
    take({10, 10}, true, true);
    canvas->depth = 24;
    for (int call = 0; call < 7; ++call) {
        canvas->failLockAfter = call;
        take({10, 10}, true, true);
        canvas->UnlockAll();
    }
    canvas->failLockAfter = -1;
    canvas->failUnlockAfter = 3;
    take({10, 10}, true, true);
    canvas->UnlockAll();
}

TEST_F(Preview, ShortageOfMemoryLeavesItEmptyOrAsItWas)
{
    canvas = StrictPicture(9, 7, Place);
    const u32 values[1] = {};
    const unsigned fired = ForEveryFault(FaultKind::Allocation, [&] {
        TakePreview(&preview, {20, 20}, PreviewSample::Middle, canvas->Handle(), canvas->Table());
        canvas->UnlockAll();
        ChangePreview(&preview, {.change = Invert}, values);
        EXPECT_TRUE(preview.width == 9 || (preview.width == 0 && !preview.before));
        FreePreview(&preview);
    });
    EXPECT_EQ(fired, 3u) << "both pictures and the filter's state";
}

TEST(FilterWindow, HoldsRowsWithTheirEdgesRepeated)
{
    for (u32 height = 1; height <= 8; ++height)
        for (const u32 reach : {1u, 2u, 3u, 7u, 12u}) {
            const u32 width = 3;
            FilterWindow window;
            ASSERT_TRUE(OpenFilterWindow(&window, reach, width, height));
            EXPECT_LE(window.ringRows, std::min(2 * reach + 1, height));
            u32 taken = 0;
            for (u32 y = 0; y < height; ++y) {
                const u32 last = LastRowInReach(reach, height, y);
                ASSERT_EQ(last, std::min(y + reach, height - 1));
                for (; taken <= last; ++taken) {
                    const u32 t = taken;
                    const u8 row[9] = {u8(t * 10),     0, 1, u8(t * 10 + 1), 2, 3,
                                       u8(t * 10 + 2), 4, 5};
                    TakeFilterRow(&window, taken, row);
                }
                const FilterRows rows = RowsAround(&window, y);
                const int span = static_cast<int>(reach);
                for (int j = -span; j <= span; ++j)
                    for (int i = -span; i < static_cast<int>(width) + span; ++i) {
                        const int row =
                            std::clamp(static_cast<int>(y) + j, 0, static_cast<int>(height) - 1);
                        const int pixel = std::clamp(i, 0, 2);
                        ASSERT_EQ(RowAt(rows, j)[3 * i], row * 10 + pixel);
                        ASSERT_EQ(RowAt(rows, j)[3 * i + 2], 2 * pixel + 1);
                    }
            }
            CloseFilterWindow(&window);
            EXPECT_EQ(window.ring, nullptr);
        }
}
