// The first pass over a picture: every row is shown to it once, and then it has the palette. A
// picture of no more colours than were asked for keeps them as they are; for another one the
// palette is made (ColorMoments). Holds 1.4 MB, whatever the picture's size.
#pragma once

#include "standard-plugins/common/reducing/ColorMoments.h"
#include "standard-plugins/common/reducing/DistinctColors.h"

struct PaletteSurvey {
    DistinctColors distinct;
    ColorMoments moments;
};

/// Null without memory; give it back with ClosePaletteSurvey.
PaletteSurvey* OpenPaletteSurvey();
/// A row of `width` pixels of red, green and blue.
void SurveyRow(PaletteSurvey* survey, const uint8_t* rgb, uint32_t width);
/// Behind all rows, at least one of one pixel; once. `most` is 1 to mostReducedColors.
void TakePalette(PaletteSurvey* survey, uint32_t most, ReducedPalette* palette);
/// Null is nothing.
void ClosePaletteSurvey(PaletteSurvey* survey);
