// Reads a WebP from a stream into the host's picture.
//
// The library takes the data in pieces, and rows are shown as they come; but it gives no rows
// alone: its output is a whole picture of 3 or 4 bytes a pixel that it holds itself, and lossless
// data take 4 more. The format's sides end at 16,383, and the setting `WebpInputMemory` (megabytes,
// 512 without it) ends the sum earlier: a few hundred bytes of lossless data may stand for 268
// million pixels, and nothing in the header tells. A refusal names the setting. Of a lossy picture
// the header does tell, and one that promises more than its data could hold is refused at once.
//
// Of an animation the first frame is shown on its canvas; the background's colour in the file is
// passed over, as the format allows, and the user's (settings WebpInput...) lies behind whatever is
// transparent. EXIF data follow the picture: where the file's header announces them, the rows wait
// in the library until the orientation is known.
//
// 1 is a file that is sound to the end of its container, whose chunks are walked but not decoded
// behind the picture. Bytes behind that end are not read. Negative is everything else, with the
// rows that are right.
#pragma once

#include "standard-plugins/common/reading/Background.h"
#include "standard-plugins/common/reading/Reader.h"

extern const BackgroundSettings webpBackground;

int32_t ReadWebpPicture(const ReadOrder& order);
/// The size in the header, before the orientation, which stands at the end of the file.
int32_t ReadWebpSize(PluginStreamRecord* stream, uint32_t* width, uint32_t* height);
