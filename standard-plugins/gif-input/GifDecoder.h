// Reads the first frame of a GIF from a stream into the host's picture, a row at a time.
//
// The picture is the logical screen. The frame lies on it at its place and is cut at its edges;
// around it and through its transparent index the user's background shows (settings GifInput...).
// The frame's own palette goes before the screen's. Rows of an interlaced frame go into their lines
// as they come, in four passes, and no picture is held.
//
// 1 is a frame that is sound to its end block: what follows it, other frames and the trailer, is
// not read. Codes behind the last pixel say nothing and are passed over. Negative are codes that
// nothing defines, indexes beyond the palette (they are shown black), data that end early and
// frames without a palette; the lines that are right stay.
#pragma once

#include "standard-plugins/common/reading/Background.h"
#include "standard-plugins/common/reading/Reader.h"

extern const BackgroundSettings gifBackground;

int32_t ReadGifPicture(const ReadOrder& order);
/// The size of the logical screen; `stream` is read up to its palette.
int32_t ReadGifSize(PluginStreamRecord* stream, uint32_t* width, uint32_t* height);
