#include "platform/qt/ClipboardTransfer.h"

#include "platform/qt/ServerReply.h"

#include <algorithm>

namespace tavrix::platform
{
namespace
{

constexpr uint32_t WordsAtOnce = 1u << 18;
// The announced size is a hint that may be any number, and is made room for as far as it costs
// nothing.
constexpr qsizetype LargestHint = 1 << 24;

} // namespace

ClipboardTransfer::ClipboardTransfer(const Place& where, xcb_atom_t type, size_t most)
    : place(where), largest(most)
{
    xcb_convert_selection(place.server, place.window, place.clipboard, type, place.property,
                          XCB_CURRENT_TIME);
    xcb_flush(place.server);
}

void ClipboardTransfer::TakeEvent(const xcb_generic_event_t& event)
{
    if (const auto* notify = reinterpret_cast<const xcb_selection_notify_event_t*>(&event);
        IsEvent(event, XCB_SELECTION_NOTIFY) && notify->requestor == place.window) {
        if (state == State::Asked)
            TakeAnswer(notify->property);
    } else if (const auto* change = reinterpret_cast<const xcb_property_notify_event_t*>(&event);
               IsEvent(event, XCB_PROPERTY_NOTIFY) && change->window == place.window) {
        // The word of the first property comes before the answer and is part of it.
        if (state == State::InPieces && change->state == XCB_PROPERTY_NEW_VALUE &&
            change->atom == place.property)
            TakePiece();
    }
}

void ClipboardTransfer::TakeAnswer(xcb_atom_t answer)
{
    ++steps;
    state = State::Refused;
    if (answer != place.property)
        return;
    const Reply<xcb_get_property_reply_t> reply(
        xcb_get_property_reply(place.server,
                               xcb_get_property(place.server, 0, place.window, place.property,
                                                XCB_GET_PROPERTY_TYPE_ANY, 0, 1),
                               nullptr));
    if (reply == nullptr)
        return;
    if (reply->type != place.incr) {
        if (Append())
            state = State::Done;
        return;
    }
    if (xcb_get_property_value_length(reply.get()) >= 4) {
        const uint32_t hint = *static_cast<const uint32_t*>(xcb_get_property_value(reply.get()));
        if (hint > largest) {
            state = State::TooLarge;
            return;
        }
        bytes.reserve(std::min<qsizetype>(hint, LargestHint));
    }
    // By this the owner knows that the first piece may come.
    xcb_delete_property(place.server, place.window, place.property);
    xcb_flush(place.server);
    state = State::InPieces;
}

void ClipboardTransfer::TakePiece()
{
    ++steps;
    const qsizetype before = bytes.size();
    if (!Append())
        return;
    if (bytes.size() == before)
        state = State::Done;
    xcb_flush(place.server);
}

bool ClipboardTransfer::Append()
{
    uint32_t left = 1;
    for (uint32_t at = 0; left != 0; at += WordsAtOnce) {
        // The last read deletes the property, whereupon the owner sends the next piece.
        const Reply<xcb_get_property_reply_t> reply(
            xcb_get_property_reply(place.server,
                                   xcb_get_property(place.server, 1, place.window, place.property,
                                                    XCB_GET_PROPERTY_TYPE_ANY, at, WordsAtOnce),
                                   nullptr));
        if (reply == nullptr || (reply->format != 8 && reply->format != 0)) {
            state = State::Refused;
            return false;
        }
        const auto length = static_cast<size_t>(xcb_get_property_value_length(reply.get()));
        left = reply->bytes_after;
        if (length + left > largest - static_cast<size_t>(bytes.size())) {
            state = State::TooLarge;
            return false;
        }
        bytes.append(static_cast<const char*>(xcb_get_property_value(reply.get())),
                     static_cast<qsizetype>(length));
    }
    return true;
}

} // namespace tavrix::platform
