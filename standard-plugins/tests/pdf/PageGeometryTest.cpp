// Where pictures lie on their pages, by hand-typed tables in hundredths of a point.

#include "standard-plugins/common/pdf/PageGeometry.h"

#include <gtest/gtest.h>

namespace
{

constexpr uint32_t A4 = PaperA4;
constexpr uint32_t Automatic = OrientationAutomatic;
constexpr uint32_t Portrait = OrientationPortrait;
constexpr uint32_t Landscape = OrientationLandscape;
constexpr bool Fit = true;
constexpr bool Real = false;

struct Row {
    const char* what;
    PageSettings settings; // paper, orientation, margin, fits, resolution
    uint32_t width;
    uint32_t height;
    PagePlace place; // page width and height, left, bottom, width, height
};

const Row rows[] = {
    // Fitted: one side fills the page between the margins, the other follows.
    {"upright", {A4, Automatic, 10, Fit, 96}, 600, 800, {59528, 84189, 2835, 6189, 53858, 71811}},
    {"lying", {A4, Automatic, 10, Fit, 96}, 800, 600, {84189, 59528, 6189, 2835, 71811, 53858}},
    {"square", {A4, Automatic, 0, Fit, 96}, 500, 500, {59528, 84189, 0, 12330, 59528, 59528}},
    {"forced up", {A4, Portrait, 10, Fit, 96}, 800, 600, {59528, 84189, 2835, 21897, 53858, 40394}},
    {"forced down",
     {A4, Landscape, 10, Fit, 96},
     600,
     800,
     {84189, 59528, 21897, 2835, 40394, 53858}},
    {"A5", {PaperA5, Automatic, 10, Fit, 96}, 9, 9, {41953, 59528, 2835, 11622, 36283, 36283}},
    {"A3", {PaperA3, Automatic, 25, Fit, 96}, 300, 200, {119055, 84189, 7087, 7134, 104881, 69921}},
    {"Letter",
     {PaperLetter, Portrait, 10, Fit, 96},
     1000,
     1,
     {61200, 79200, 2835, 39572, 55530, 56}},
    {"Legal",
     {PaperLegal, Automatic, 50, Fit, 96},
     1,
     1000,
     {61200, 100800, 30564, 14173, 72, 72454}},
    {"one pixel", {A4, Portrait, 10, Fit, 96}, 1, 1, {59528, 84189, 2835, 15165, 53858, 53858}},
    {"widest", {A4, Automatic, 0, Fit, 96}, 65535, 1, {84189, 59528, 0, 29763, 84189, 1}},
    {"tallest", {A4, Automatic, 0, Fit, 96}, 1, 65535, {59528, 84189, 29763, 0, 1, 84189}},
    {"largest", {A4, Automatic, 0, Fit, 10}, 65535, 65535, {59528, 84189, 0, 12330, 59528, 59528}},
    // The real size, 7200 hundredths an inch, while it fits.
    {"1 x 2 inches",
     {A4, Portrait, 10, Real, 96},
     96,
     192,
     {59528, 84189, 26164, 34894, 7200, 14400}},
    {"1 point", {A4, Portrait, 10, Real, 72}, 1, 1, {59528, 84189, 29714, 42044, 100, 100}},
    {"smallest", {A4, Portrait, 0, Real, 2400}, 1, 1, {59528, 84189, 29762, 42093, 3, 3}},
    {"10 x 4 inches",
     {A4, Automatic, 10, Real, 150},
     1500,
     600,
     {84189, 59528, 6094, 15364, 72000, 28800}},
    {"too large",
     {A4, Portrait, 10, Real, 96},
     8000,
     6000,
     {59528, 84189, 2835, 21897, 53858, 40394}},
    // The page is made for the picture; orientation and fit mean nothing.
    {"10 x 5 inches",
     {PaperOfPicture, Automatic, 0, Real, 96},
     960,
     480,
     {72000, 36000, 0, 0, 72000, 36000}},
    {"margins around",
     {PaperOfPicture, Landscape, 10, Fit, 96},
     96,
     192,
     {12870, 20070, 2835, 2835, 7200, 14400}},
    {"smaller than a page can be",
     {PaperOfPicture, Automatic, 0, Real, 96},
     1,
     1,
     {300, 300, 112, 112, 75, 75}},
    {"a thread",
     {PaperOfPicture, Automatic, 0, Real, 2400},
     1,
     65535,
     {300, 196605, 148, 0, 3, 196605}},
    {"larger than a page can be",
     {PaperOfPicture, Automatic, 10, Real, 10},
     65535,
     65535,
     {1440000, 1440000, 2835, 2835, 1434330, 1434330}},
    {"wider than a page can be",
     {PaperOfPicture, Automatic, 0, Real, 10},
     65535,
     10,
     {1440000, 300, 0, 40, 1440000, 220}},
    {"higher by a point",
     {PaperOfPicture, Automatic, 0, Real, 72},
     14400,
     14401,
     {1439900, 1440000, 0, 0, 1439900, 1440000}},
};

} // namespace

TEST(PageGeometry, PutsPicturesWhereTheTableSays)
{
    for (const Row& row : rows) {
        const PagePlace got = PlacePicture(row.settings, row.width, row.height);
        EXPECT_EQ(got.pageWidth, row.place.pageWidth) << row.what;
        EXPECT_EQ(got.pageHeight, row.place.pageHeight) << row.what;
        EXPECT_EQ(got.left, row.place.left) << row.what;
        EXPECT_EQ(got.bottom, row.place.bottom) << row.what;
        EXPECT_EQ(got.width, row.place.width) << row.what;
        EXPECT_EQ(got.height, row.place.height) << row.what;
    }
}

TEST(PageGeometry, KeepsEveryPictureBetweenTheMargins)
{
    const uint32_t sides[] = {1, 2, 17, 640, 4000, 65535};
    for (uint32_t paper = 0; paper < PaperCount; ++paper)
        for (uint32_t margin = 0; margin <= largestMargin; margin += 25)
            for (const bool fits : {true, false})
                for (const uint32_t resolution : {10u, 96u, 2400u})
                    for (const uint32_t width : sides)
                        for (const uint32_t height : sides) {
                            const PagePlace place = PlacePicture(
                                {paper, Automatic, margin, fits, resolution}, width, height);
                            // 720 hundredths of a point are 2.54 millimetres.
                            const uint32_t least = (margin * 720000 - 127000) / 25400;
                            EXPECT_GE(place.left, margin ? least : 0u);
                            EXPECT_GE(place.bottom, margin ? least : 0u);
                            EXPECT_LE(place.left * 2 + place.width, place.pageWidth);
                            EXPECT_LE(place.bottom * 2 + place.height, place.pageHeight);
                            EXPECT_GE(place.width, 1u);
                            EXPECT_GE(place.height, 1u);
                            EXPECT_LE(place.pageWidth, 1440000u);
                            EXPECT_GE(place.pageHeight, 300u);
                        }
}
