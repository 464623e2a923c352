// The pictures that plugins get to work on, good ones and such as a user can make but no author
// thinks of, and what a picture holds, to compare it with itself.
#pragma once

#include "image/Raster.h"

#include <string>
#include <vector>

namespace plugincheck
{

struct PictureShape {
    const char* words; // for sentences: "a picture of one pixel"
    u32 width;
    u32 height;
    u32 depth;
    u32 paletteEntries;
};

/// A picture that every plugin should manage: 24 bits, 37 x 23.
extern const PictureShape GoodShape;
/// One large enough that a user waits for it.
extern const PictureShape LargeShape;
/// The others; the first was never allocated (depth 0).
const std::vector<PictureShape>& OddShapes();

/// Fills the raster by a formula. False when the checker's own memory does not do.
bool MakePicture(Raster* raster, const PictureShape& shape);

/// What a picture holds: pixels without padding, size and palette.
struct PictureState {
    u32 width = 0;
    u32 height = 0;
    u32 depth = 0;
    std::vector<PaletteEntry> palette;
    u64 pixels = 0;       // a checksum
    bool readable = true; // false: some line could not be locked
    bool operator==(const PictureState& other) const;
};
/// Unlocks every line on the way.
PictureState StateOf(Raster* raster);
/// The state as one word, to compare it across processes.
std::string Fingerprint(const PictureState& state);

} // namespace plugincheck
