#include "standard-plugins/common/frames/device/FrameSource.h"

#include "standard-plugins/common/PluginResult.h"

namespace
{

bool OnCopied(void* self, uint64_t bytes)
{
    return ReportStreamBytes(static_cast<FrameProgress*>(self), bytes);
}

} // namespace

int32_t OpenFrameSource(FrameSource* source, PluginStreamRecord* stream, FrameProgress* progress,
                        bool (*looksRight)(const uint8_t* bytes))
{
    *source = {};
    const int32_t opened = OpenReader(&source->reader, stream);
    if (opened < 0)
        return opened;
    if (!FillReader(&source->reader))
        return PluginFailed;
    const uint32_t first = source->reader.filled;
    if (first >= enoughBytes && !looksRight(source->reader.buffer))
        return PluginFailed;
    return CopyToTemporaryFile(&source->file, &source->reader, progress ? OnCopied : nullptr,
                               progress);
}

void CloseFrameSource(FrameSource* source)
{
    CloseTemporaryFile(&source->file);
    CloseReader(&source->reader);
}
