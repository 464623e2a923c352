// A stream's record for the time of one plugin call: opened when this object is made, given back to
// the stream when it goes, whatever the plugin did. The stream stays its owner's.
//
// The plugin gets a record of its own, whose handle is a number that no other call has. A handle
// that it kept from an earlier call reaches nothing, though the stream of then is long gone; and
// what it does to the record is lost on the host. One call with a stream runs at a time. Within the
// call a thread of the plugin may read as well: the streams leave it to their users to take turns.
#pragma once

#include "foundation/Stream.h"

class ScopedStreamRecord
{
public:
    /// Null stands for a call without a stream.
    explicit ScopedStreamRecord(Stream* given);
    ~ScopedStreamRecord();
    ScopedStreamRecord(const ScopedStreamRecord&) = delete;
    ScopedStreamRecord& operator=(const ScopedStreamRecord&) = delete;

    /// What the plugin gets: null without a stream.
    PluginStreamRecord* Get() { return stream == nullptr ? nullptr : &record; }
    /// With a stream the path is not given, so that exactly one of the two is.
    const WCHAR* PathOrNull(const WCHAR* path) const { return stream == nullptr ? path : nullptr; }

private:
    Stream* stream;
    PluginStreamRecord streams; // as the stream filled it
    PluginStreamRecord record;  // as the plugin gets it
};
