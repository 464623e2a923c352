// Where the picture lies on its page. Pure arithmetic in whole hundredths of a point, of which an
// inch has 7200, so that what is written has two decimals and no rounding of its own. The origin is
// the page's lower left corner, as in the file.
#pragma once

#include <stdint.h>

enum PaperKind : uint32_t {
    PaperA4,
    PaperA5,
    PaperA3,
    PaperLetter,
    PaperLegal,
    PaperOfPicture, // the picture at its resolution, and the margins around it
    PaperCount
};

enum PageOrientation : uint32_t {
    OrientationAutomatic, // as the picture lies; a square one stands
    OrientationPortrait,
    OrientationLandscape,
    OrientationCount
};

constexpr uint32_t largestMargin = 50; // millimetres; leaves room on every paper
constexpr uint32_t smallestResolution = 10;
constexpr uint32_t largestResolution = 2400;

/// What was chosen for the page, every field within its range.
struct PageSettings {
    uint32_t paper;       // PaperKind
    uint32_t orientation; // PageOrientation; without meaning for PaperOfPicture
    uint32_t margin;      // millimetres on each side, at most largestMargin
    /// The picture fills the page between the margins, enlarged where need be; else it has its real
    /// size. Without meaning for PaperOfPicture, which is always of the real size.
    bool fitsPage;
    uint32_t resolution; // pixels an inch at the real size
};

/// The page and the picture on it, in hundredths of a point. No side is 0.
struct PagePlace {
    uint32_t pageWidth;
    uint32_t pageHeight;
    uint32_t left;
    uint32_t bottom;
    uint32_t width;
    uint32_t height;
};

/// Places a picture of `width` by `height` pixels, each from 1 to 65,535, in the middle between the
/// margins with its own proportions. A real size that does not fit there is made smaller until it
/// does. The page of PaperOfPicture has sides from 3 to 14,400 points, as every reader takes them:
/// for more the picture is made smaller, for less the page larger.
PagePlace PlacePicture(const PageSettings& settings, uint32_t width, uint32_t height);
