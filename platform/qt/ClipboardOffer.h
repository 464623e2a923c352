// What the owner of an X server's clipboard offers, asked without waiting for it: the owner is
// another program, and the toolkit would wait five seconds for one that hangs. On a connection of
// its own, so that no event of the toolkit's is taken. User-interface thread.
#pragma once

#include <QObject>
#include <QStringList>

#include <xcb/xcb.h>

class QSocketNotifier;

namespace tavrix::platform
{

class ClipboardOffer : public QObject
{
public:
    /// `watchedTypes` are the names of the types whose offers count.
    explicit ClipboardOffer(const QStringList& watchedTypes);
    ~ClipboardOffer() override;

    /// Asks the owner anew. Until it answers nothing is offered.
    void Ask();
    /// Waits for the answer, but not long; for the first question, which somebody stands behind.
    void Await(int milliseconds);
    /// Whether the owner offers one of the types, as far as it has told.
    bool IsThere() const { return offered; }

private:
    void TakeEvents();
    void TakeAnswer(xcb_atom_t property);

    xcb_connection_t* server = nullptr;
    xcb_window_t window = 0;
    xcb_atom_t clipboard = 0;
    xcb_atom_t targets = 0;
    QList<xcb_atom_t> properties; // taken in turn, so that a late answer is told from the last one
    QList<xcb_atom_t> types;
    qsizetype turn = 0;
    bool waiting = false;
    bool offered = false;
};

} // namespace tavrix::platform
