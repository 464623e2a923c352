// One opening of a TIFF by the library, over the temporary file that holds its bytes. Several may
// be open over one: each has a position and a decoder of its own.
#pragma once

#include "standard-plugins/common/device/TemporaryFile.h"
#include "standard-plugins/tiff-input/TiffLibrary.h"

/// At most this much for a single thing that the library holds: a strip's compressed bytes, a tile.
constexpr uint64_t mostTiffBytes = 256u << 20;

struct TiffFile {
    const TiffLibrary* library;
    TemporaryFile* bytes;
    uint64_t position;
    TIFF* tiff;
    /// The library found something wrong since this was set to false last.
    bool troubled;
    /// A tag's value lies behind the file's end, so that the library did without the tag.
    bool lostTag;
};

/// Reads the first directory. False where there is none that the library takes. The record stays
/// where it is until it is closed.
bool OpenTiffFile(TiffFile* file, const TiffLibrary* library, TemporaryFile* bytes);
/// Also right for one that is all zero.
void CloseTiffFile(TiffFile* file);
/// Whether the chain of directories ends within the file, after 65,535 of them at the most. Each is
/// passed over by its count alone.
bool AreDirectoriesSound(TemporaryFile* bytes);
/// The number in a 16-bit tag of the first directory as the file has it, whatever the library makes
/// of it; `standard` where it has none.
uint16_t WrittenTag(TemporaryFile* bytes, uint16_t tag, uint16_t standard);
/// Whether four bytes begin a TIFF, of either byte order, classic or big.
bool IsTiffStart(const uint8_t* bytes);
