// What the application markers of a JPEG tell of its pixels: how the camera was held (APP1 with
// "Exif", CIPA DC-008 4.5.4) and which colours they are (APP2 with "ICC_PROFILE", ICC.1:2010 annex
// B.4: pieces that are numbered from 1 and come in any order). All other markers are passed over as
// before, and nothing of them is kept. Broken ones change nothing.
//
// Plain data inside the reading's record; zeroed memory holds nothing.
#pragma once

#include <stddef.h>
#include <stdint.h>
#include <stdio.h> // the codec's header takes FILE as known

#include <jpeglib.h>

constexpr int mostProfilePieces = 255;

struct JpegMarkers {
    /// 1 to 8; 0 while no marker told.
    uint32_t orientation;
    /// Piece i + 1 of the profile; null where none came.
    uint8_t* pieces[mostProfilePieces];
    uint32_t lengths[mostProfilePieces];
    /// How many pieces the first one promised, and bytes so far.
    uint32_t pieceCount;
    uint32_t pieceBytes;
    /// The pieces contradict each other, or are too many bytes: no profile.
    bool spoiled;
};

/// Lets the codec hand both markers over to `markers`; between its making and its header.
void WatchMarkers(jpeg_decompress_struct* codec, JpegMarkers* markers);
/// The orientation, 1 without one.
uint32_t OrientationOf(const JpegMarkers& markers);
/// The whole profile in a block of its own, to be freed; null without a whole one or without
/// memory.
uint8_t* JoinProfile(const JpegMarkers& markers, size_t* bytes);
void FreeMarkers(JpegMarkers* markers);
