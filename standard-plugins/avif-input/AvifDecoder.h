// Reads an AVIF from a stream into the host's picture: the primary picture, or the first of a
// sequence.
//
// The stream is copied to a temporary file (AvifSource). The library decodes the frame as a whole
// and holds it, in the form it is coded in: 1 to 8 bytes a pixel. That is computed from the header
// and refused above a limit: 1,024 MB, or the megabytes of the setting `AvifInputMemory`. The size
// that the boxes tell is then the largest that the decoder inside may make. From there rows are
// converted some at a time, so that no second picture exists.
//
// The coded colours become sRGB through the file's profile or, without one, its code points
// (CodePointProfile.h). 10 and 12 bits become 8, to the nearest; alpha is laid over the background.
//
// PluginDone means that the whole picture came. Of a picture of tiles that breaks off the rows of
// the tiles before the break stay, with a negative result; of any other none.
#pragma once

#include "standard-plugins/common/reading/Reader.h"

int32_t ReadAvifPicture(const ReadOrder& order);
/// The size alone; the stream is read to its end.
int32_t ReadAvifSize(PluginStreamRecord* stream, uint32_t* width, uint32_t* height);
int32_t AskAvifBackground(TavrixWindow owner, TavrixPutPropertyCallback put,
                          TavrixGetPropertyCallback get);
