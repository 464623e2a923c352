// The stream as pieces for the library's decoder. What the decoder has not taken of a piece comes
// again in front of the next one; it is a few bytes. Plain data; zeroed memory is a closed one.
#pragma once

#include "standard-plugins/common/StreamReader.h"
#include "standard-plugins/jxl-input/JxlLibrary.h"

constexpr uint32_t jxlPieceBytes = 16 * 1024;
constexpr uint32_t mostJxlRest = 4 * 1024;

struct JxlSource {
    StreamReader reader;
    /// Bytes that came so far.
    uint64_t bytes;
    uint32_t held;
    uint8_t piece[mostJxlRest + jxlPieceBytes];
};

/// Hands the next piece to the decoder, which asked for more. False at the end of the stream.
bool FeedJxl(JxlSource* source, const JxlLibrary& library, JxlDecoder* decoder);
