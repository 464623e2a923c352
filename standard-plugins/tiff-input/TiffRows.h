// Rows of samples as they lie in a TIFF, one after the other from the top.
//
// Strips are read by the row, small ones of Deflate as a whole, which the library does faster,
// unless one is broken. Samples in planes of their own have an opening of the file each, so that
// every decoder goes forward only. Uncompressed strips are read from the file directly, since the
// library would take a strip whole; of compressed ones it holds the compressed bytes of one. Tiles
// are held a row of them at a time. Colours that the library converts are held a strip or a row of
// tiles at a time, which may be the whole picture. All of it stays under mostTiffBytes.
#pragma once

#include "standard-plugins/tiff-input/TiffImage.h"

struct TiffRows {
    const TiffLibrary* library;
    TemporaryFile* bytes;
    const TiffImage* image;
    /// The opening that the image was read from, and those of the other planes. The first of these
    /// takes over where a strip could not be read as a whole.
    TiffFile* first;
    TiffFile others[mostTiffSamples];
    /// Of one row: a plane's bytes, and the bytes of all its planes with some behind them that a
    /// reader of single bits may look at.
    uint64_t planeBytes;
    uint8_t* row;
    /// A strip that is read as a whole; null where strips are read by the row.
    uint8_t* strip;
    /// A row of tiles or a converted strip: lines of `blockLineBytes`, the planes one after the
    /// other, and how many lines there are; from line `blockStart` of the picture on.
    uint8_t* block;
    uint64_t blockLineBytes;
    uint32_t blockLines;
    uint32_t blockStart;
    bool hasBlock;
    /// One tile, or one converted strip or tile.
    uint8_t* piece;
    uint64_t pieceBytes;
};

/// The results of the contract: PluginNoMemory for pictures that ask for more than is allowed.
int32_t OpenTiffRows(TiffRows* rows, TiffFile* first, const TiffImage* image);
/// Fills `rows->row`; rows come in order from 0. False where the data are not there or not right.
bool ReadTiffRow(TiffRows* rows, uint32_t y);
/// Whether the library complained since the opening.
bool IsTroubled(const TiffRows& rows);
void CloseTiffRows(TiffRows* rows);
