// Reads the first page of a TIFF into the host's picture.
//
// The format jumps about in its file, so that the stream is copied to a temporary file first, which
// goes when the picture is read. Rows come as TiffRows.h says; a picture in strips takes a few rows
// and the compressed bytes of one strip, one in tiles a row of them. The tag of the orientation and
// a colour profile are followed; transparent parts lie over the user's background (settings
// TiffInput...).
//
// 1 is a page whose rows all came without a complaint of the library, in a file whose chain of
// directories ends. Negative is everything else, with the rows that came before; so are pages that
// cannot be shown in full, such as signed samples, inks other than the four, and JPEG of the old
// kind.
#pragma once

#include "standard-plugins/common/reading/Background.h"
#include "standard-plugins/common/reading/Reader.h"

extern const BackgroundSettings tiffBackground;

int32_t ReadTiffPicture(const ReadOrder& order);
/// The size as it will be shown; the whole stream is copied for it.
int32_t ReadTiffSize(PluginStreamRecord* stream, uint32_t* width, uint32_t* height);
