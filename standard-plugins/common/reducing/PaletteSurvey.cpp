#include "standard-plugins/common/reducing/PaletteSurvey.h"

#include <stdlib.h>

PaletteSurvey* OpenPaletteSurvey()
{
    return static_cast<PaletteSurvey*>(calloc(1, sizeof(PaletteSurvey)));
}

void SurveyRow(PaletteSurvey* survey, const uint8_t* rgb, uint32_t width)
{
    NoteColors(&survey->distinct, rgb, width);
    CountColors(&survey->moments, rgb, width);
}

void TakePalette(PaletteSurvey* survey, uint32_t most, ReducedPalette* palette)
{
    if (!survey->distinct.tooMany && survey->distinct.colors.count <= most)
        *palette = survey->distinct.colors;
    else
        MakeOptimalPalette(&survey->moments, most, palette);
}

void ClosePaletteSurvey(PaletteSurvey* survey)
{
    free(survey);
}
