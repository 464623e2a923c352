// Reads a PNG from a stream into the host's picture, a row at a time.
//
// An interlaced file brings its rows in seven passes. Each pass locks the lines it touches again
// and writes its own pixels into them, so that no copy of the picture is held: the picture, which
// the host may keep in files, is the only place where the passes meet.
//
// The decoder keeps two rows and the library's inflater, whatever the height. Chunks that do not
// bear on the pixels are skipped without being kept or inflated. A result of PluginDone means a
// whole and sound file to its very end; with any other the lines that were read stay in the
// picture.
#pragma once

#include "standard-plugins/common/reading/Reader.h"

int32_t ReadPngPicture(const ReadOrder& order);
/// The size alone; `stream` is read up to the picture's first data.
int32_t ReadPngSize(PluginStreamRecord* stream, uint32_t* width, uint32_t* height);
