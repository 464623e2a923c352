// What an X server sends, which is its reader's to free.
#pragma once

#include <cstdlib>
#include <memory>

#include <xcb/xcb.h>

namespace tavrix::platform
{

struct FreeReply {
    void operator()(void* reply) const { std::free(reply); }
};
template <class T>
using Reply = std::unique_ptr<T, FreeReply>;

/// Whether an event is of that kind, sent by the server or by another program.
inline bool IsEvent(const xcb_generic_event_t& event, uint8_t kind)
{
    return (event.response_type & 0x7F) == kind;
}

} // namespace tavrix::platform
