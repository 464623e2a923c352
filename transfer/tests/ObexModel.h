// What a receiver takes from the packets of an object, written out once more without care for
// speed, and what it told and delivered, in a form that can be compared. Needs no test library.
#pragma once

#include "foundation/Stream.h"
#include "transfer/ObexPacket.h"

#include <string>
#include <string_view>
#include <vector>

namespace obextest
{

/// One event of the callback.
struct Told {
    u32 event = 0;
    std::u16string name = {}; // of events 2 and 16
    u32 received = 0;         // of event 32
    u32 length = 0;
    bool operator==(const Told&) const = default;
};

/// The callback's context: keeps what it is told.
struct Listener {
    std::vector<Told> told;

    static i32 Hear(u32 event, void* argument, void* context)
    {
        Told one = {event};
        if (event == 2 || event == 16)
            one.name = static_cast<const char16_t*>(argument);
        if (event == 32) {
            one.received = static_cast<const u32*>(argument)[0];
            one.length = static_cast<const u32*>(argument)[1];
        }
        static_cast<Listener*>(context)->told.push_back(one);
        return -1; // which nobody looks at
    }
};

/// A destination that keeps what it is given. It gives nothing back and cannot be moved about.
class Sink : public Stream
{
public:
    std::string bytes;
    i32 result = Done;      // of every write
    u32 taken = 0xFFFFFFFF; // of each write at most
    unsigned writes = 0;

    i32 GetName(WCHAR*, i32) override { return Failed; }
    i32 GetSize(u64*) override { return Failed; }
    i32 Seek(const i64*, u64*, u32) override { return Failed; }
    i32 Read(void*, u32*) override { return Failed; }
    i32 Close() override { return Failed; }
    i32 Write(const void* buffer, u32* length) override
    {
        ++writes;
        if (result >= 0) {
            *length = *length < taken ? *length : taken;
            bytes.append(static_cast<const char*>(buffer), *length);
        } else {
            *length = 0;
        }
        return result;
    }
};

/// The plain twin of ParseObexPut. It keeps its object over several packets.
class Model
{
public:
    std::string object;
    std::vector<Told> told;

    /// What ParseObexPut has to answer.
    i32 Put(std::string_view payload)
    {
        left = payload;
        while (!left.empty()) {
            const unsigned identifier = Take(1);
            if (identifier == 0x01) {
                if (!TakeName())
                    return Done;
            } else if (identifier == 0x48 || identifier == 0x49) {
                if (left.size() < 2)
                    return Failed;
                const size_t size = Take(2);
                if (size < 3 || size > 509)
                    return NothingDone;
                const std::string_view data = left.substr(0, size - 3);
                left.remove_prefix(data.size());
                object += data;
                told.push_back({32, {}, static_cast<u32>(object.size()), length});
                if (data.size() < size - 3)
                    return Done;
            } else if (identifier == 0xC3) {
                if (left.size() < 4)
                    return Done;
                length = Take(4);
            } else if (!Skip(identifier)) {
                return Done;
            }
        }
        return Done;
    }

private:
    u32 Take(size_t count)
    {
        u32 value = 0;
        for (size_t i = 0; i < count; ++i)
            value = value << 8 | static_cast<unsigned char>(left[i]);
        left.remove_prefix(count);
        return value;
    }

    bool TakeName()
    {
        if (left.size() < 2)
            return false;
        const size_t size = Take(2);
        const size_t units = size < 3 ? 0 : (size - 3) / 2;
        std::u16string name;
        while (name.size() < units && left.size() >= 2)
            name.push_back(static_cast<char16_t>(Take(2)));
        const bool whole = name.size() == units;
        told.push_back({16, name.c_str()});
        return whole;
    }

    bool Skip(unsigned identifier)
    {
        switch (identifier >> 6) {
        case 0:
            while (left.size() >= 2)
                if (Take(2) == 0)
                    return true;
            return false;
        case 1:
            return false;
        default: {
            const size_t size = identifier >> 6 == 2 ? 1 : 4;
            if (left.size() < size)
                return false;
            left.remove_prefix(size);
            return true;
        }
        }
    }

    std::string_view left;
    u32 length = 0;
};

} // namespace obextest
