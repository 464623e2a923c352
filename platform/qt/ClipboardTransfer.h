// One type's bytes on their way from the owner of an X server's clipboard, whole or in pieces.
// Takes events and never waits; how long is waited is its user's business. User-interface thread.
#pragma once

#include <QByteArray>

#include <xcb/xcb.h>

namespace tavrix::platform
{

class ClipboardTransfer
{
public:
    enum class State {
        Asked,
        InPieces,
        Done,
        Refused, // the owner does not give it
        TooLarge
    };
    /// What a transfer goes by. The window is the transfer's own and wants word of its properties.
    struct Place {
        xcb_connection_t* server;
        xcb_window_t window;
        xcb_atom_t clipboard;
        xcb_atom_t property;
        xcb_atom_t incr; // the type that announces pieces
    };

    /// Asks for `type`; more than `largest` bytes are not taken.
    ClipboardTransfer(const Place& place, xcb_atom_t type, size_t largest);

    /// Events of other windows are let alone.
    void TakeEvent(const xcb_generic_event_t& event);
    bool IsUnderWay() const { return state == State::Asked || state == State::InPieces; }
    State Outcome() const { return state; }
    /// Grows with whatever comes.
    size_t Progress() const { return steps; }
    const QByteArray& Bytes() const { return bytes; }

private:
    void TakeAnswer(xcb_atom_t answer);
    void TakePiece();
    bool Append();

    const Place place;
    const size_t largest;
    State state = State::Asked;
    size_t steps = 0;
    QByteArray bytes;
};

} // namespace tavrix::platform
