#include "standard-plugins/common/frames/FrameProgress.h"

namespace
{

constexpr uint32_t wholeBar = 1000;
constexpr uint32_t streamShare = 300;
// Where the bytes have moved the bar by half of their share.
constexpr uint64_t halfwayBytes = 8u << 20;
constexpr uint64_t bytesBetweenReports = 1u << 20;

} // namespace

void StartFrameProgress(FrameProgress* progress, TavrixProgressCallback callback)
{
    *progress = {};
    StartProgress(&progress->throttle, callback, wholeBar);
}

bool ReportStreamBytes(FrameProgress* progress, uint64_t bytes)
{
    if (progress->refused)
        return false;
    progress->streamPart = static_cast<uint32_t>(streamShare * bytes / (bytes + halfwayBytes));
    const bool late = bytes - progress->bytesTold >= bytesBetweenReports;
    if (late)
        progress->bytesTold = bytes;
    progress->refused = late ? !ReportProgressNow(&progress->throttle, progress->streamPart)
                             : !ReportProgress(&progress->throttle, progress->streamPart);
    return !progress->refused;
}

bool ReportFramePart(FrameProgress* progress, uint64_t done, uint64_t total)
{
    if (progress->refused)
        return false;
    const uint64_t part = (wholeBar - progress->streamPart) * done / total;
    progress->refused =
        !ReportProgress(&progress->throttle, progress->streamPart + static_cast<uint32_t>(part));
    return !progress->refused;
}
