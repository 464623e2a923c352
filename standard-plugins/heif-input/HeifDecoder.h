// Reads the primary picture of a HEIF file, as cameras write them, from a stream into the host's
// picture.
//
// The stream is copied to a temporary file (HeifSource). The library decodes the picture as a
// whole, cut out and turned as the file says, and holds it up to twice: 6 to 16 bytes a pixel. That
// is computed from the header and refused above a limit: 1,024 MB, or the megabytes of the setting
// `HeifInputMemory`. Only the boxes' word is known for it: what is coded inside a hostile file may
// make the decoder of the library take more.
//
// The coded colours become sRGB through the file's profile or, without one, its code points
// (CodePointProfile.h). More than 8 bits are cut to 8 by the library; alpha is laid over the
// background.
//
// PluginDone means that the whole picture came without a warning of the library. With warnings the
// picture stays, and the result is negative; of a file that breaks off nothing is shown.
#pragma once

#include "standard-plugins/common/reading/Reader.h"

int32_t ReadHeifPicture(const ReadOrder& order);
/// The size alone; the stream is read to its end.
int32_t ReadHeifSize(PluginStreamRecord* stream, uint32_t* width, uint32_t* height);
int32_t AskHeifBackground(TavrixWindow owner, TavrixPutPropertyCallback put,
                          TavrixGetPropertyCallback get);
