// A stream record over bytes of the test. It counts what a plugin does with it: a reader may only
// read.
#pragma once

#include "standard-plugins/tests/support/MemoryInUse.h"

#include <tavrix/plugin.h>

#include <cstring>
#include <string>

namespace plugintest
{

struct ByteStream {
    explicit ByteStream(std::string contents, uint32_t mostAtOnce = 0xffffffffu)
        : bytes(std::move(contents)), most(mostAtOnce)
    {
        record.size = sizeof record;
        record.handle = this;
        record.getSize = [](void* self, uint64_t*) -> int32_t {
            ++static_cast<ByteStream*>(self)->sizesAsked;
            return -1;
        };
        record.seek = [](void* self, const int64_t*, uint64_t*, uint32_t) -> int32_t {
            ++static_cast<ByteStream*>(self)->seeks;
            return -1;
        };
        record.read = [](void* self, void* buffer, uint32_t* length) -> int32_t {
            return static_cast<ByteStream*>(self)->Read(buffer, length);
        };
        record.write = [](void*, const void*, uint32_t*) -> int32_t { return -1; };
    }
    ByteStream(const ByteStream&) = delete;
    ByteStream& operator=(const ByteStream&) = delete;

    int32_t Read(void* buffer, uint32_t* length)
    {
        ++reads;
        peak.Look();
        if (failsAtEnd && at == bytes.size()) {
            *length = 0;
            return -1;
        }
        uint64_t run = *length < most ? *length : most;
        const uint64_t left = bytes.size() - at + garbageBehind;
        if (run > left)
            run = left;
        for (uint64_t i = 0; i < run; ++i) {
            char byte = '\x55';
            if (at < bytes.size())
                byte = bytes[at++];
            else
                --garbageBehind;
            static_cast<char*>(buffer)[i] = byte;
        }
        given += run;
        *length = static_cast<uint32_t>(run);
        return 1;
    }

    PluginStreamRecord record = {};
    std::string bytes;
    /// The most that one read gives.
    uint32_t most;
    /// Bytes 0x55 that follow, made as they are read.
    uint64_t garbageBehind = 0;
    /// The end is a failure of read and not a read of nothing.
    bool failsAtEnd = false;

    size_t at = 0;
    uint64_t given = 0;
    int reads = 0;
    int seeks = 0;
    int sizesAsked = 0;
    MemoryPeak peak;
};

} // namespace plugintest
