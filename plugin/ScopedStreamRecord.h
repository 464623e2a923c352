// A stream's record for the time of one plugin call: opened when this object is made, given back to
// the stream when it goes, whatever the plugin did. The stream stays its owner's.
#pragma once

#include "foundation/Stream.h"

class ScopedStreamRecord
{
public:
    /// Null stands for a call without a stream.
    explicit ScopedStreamRecord(Stream* given) : stream(given), record()
    {
        record.size = sizeof(record);
        // Not looked at: the host hands over open streams only, and those always answer.
        if (stream != nullptr)
            (void)stream->GetInterface(&record);
    }
    ~ScopedStreamRecord()
    {
        if (stream != nullptr)
            (void)stream->Release();
    }
    ScopedStreamRecord(const ScopedStreamRecord&) = delete;
    ScopedStreamRecord& operator=(const ScopedStreamRecord&) = delete;

    /// What the plugin gets: null without a stream.
    PluginStreamRecord* Get() { return stream == nullptr ? nullptr : &record; }
    /// With a stream the path is not given, so that exactly one of the two is.
    const WCHAR* PathOrNull(const WCHAR* path) const { return stream == nullptr ? path : nullptr; }

private:
    Stream* stream;
    PluginStreamRecord record;
};
