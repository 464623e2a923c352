// Reads a JPEG XL from a stream into the host's picture: its first frame, turned as the file says.
//
// The stream is fed to the library in pieces, and the library hands over rows or parts of rows in
// any order, which go straight into the host's lines. Asked for floats it keeps some 3 bytes a
// pixel of a usual photograph and less of one without loss; asked for bytes it would keep the whole
// frame as floats. A turned picture, one with alpha and one whose rows come in passes are kept
// whole all the same. The library has no limit of its own, and what it takes does not go through
// the memory manager that it can be given. So 16 bytes a pixel and as many for each channel beside
// the colours are counted from the header and refused above a limit: 1,024 MB, or the megabytes of
// the setting `JxlInputMemory`. A hostile file can make the library take more than is counted.
//
// The library converts to sRGB where the file leaves it the choice; else the file's profile is
// applied here. Samples become bytes to the nearest; alpha is laid over the background. The black
// of a picture of four inks is left out.
//
// PluginDone means that the whole first frame came; what follows it is not read. Of a file that
// breaks off what the library can tell by then stays in the picture, coarse where only that came,
// with a negative result.
#pragma once

#include "standard-plugins/common/reading/Reader.h"

int32_t ReadJxlPicture(const ReadOrder& order);
/// The size alone; `stream` is read until the library knows it.
int32_t ReadJxlSize(PluginStreamRecord* stream, uint32_t* width, uint32_t* height);
int32_t AskJxlBackground(TavrixWindow owner, TavrixPutPropertyCallback put,
                         TavrixGetPropertyCallback get);
