// Reads a JPEG from a stream into the host's picture, a line at a time.
//
// A baseline file is decoded as it arrives; the decoder keeps one row of blocks, whatever the
// height. A file of several scans (progressive files are) can be decoded only from the coefficients
// of the whole picture. What they take is computed from the header and refused above a limit: 512
// MB, or the number of megabytes under `JpegInputMemory` in the settings.
//
// PluginDone means a whole and sound file to its very end. With any other result the lines that
// were read stay in the picture: of a baseline file that breaks off the lines before the break, of
// a progressive one the whole picture as coarse as it had become. Warnings that lose no pixel, such
// as stray bytes between two markers, change nothing.
#pragma once

#include "standard-plugins/common/reading/Reader.h"

/// Rows are turned as the camera was held and converted to sRGB where the file has a profile.
int32_t ReadJpegPicture(const ReadOrder& order);
/// The same at 1/`divisor` of the size (1, 2, 4, 8), rounded up, which takes a fraction of the
/// time: the codec computes only that many points of each block.
int32_t ReadSmallJpeg(const ReadOrder& order, uint32_t divisor);
/// The size alone, as the picture is turned; `stream` is read up to the first scan.
int32_t ReadJpegSize(PluginStreamRecord* stream, uint32_t* width, uint32_t* height);
