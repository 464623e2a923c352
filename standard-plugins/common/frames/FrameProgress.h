// The progress of a reader whose library gives the picture only once most of the stream has come.
// The stream's length is not known: its bytes move the bar by less and less, at most to three
// tenths. What is left of the bar then belongs to the pixels. Plain data.
#pragma once

#include "standard-plugins/common/ProgressThrottle.h"

struct FrameProgress {
    ProgressThrottle throttle;
    /// Thousandths that the bytes of the stream have made.
    uint32_t streamPart;
    /// Bytes at the last report of them.
    uint64_t bytesTold;
    /// The user gave up; nobody is asked any more.
    bool refused;
};

/// `callback` may be null.
void StartFrameProgress(FrameProgress* progress, TavrixProgressCallback callback);
/// `bytes` of the stream have come. Reports each hundredth, and each megabyte where those are rare.
/// False when the user gave up, now or before.
bool ReportStreamBytes(FrameProgress* progress, uint64_t bytes);
/// `done` of `total` rows or pixels are in the picture. False as above.
bool ReportFramePart(FrameProgress* progress, uint64_t done, uint64_t total);
