// What the owner of an X server's clipboard offers, asked without waiting for it: the owner is
// another program, and the toolkit would wait five seconds for one that hangs. And its bytes, which
// are waited for as long as they keep coming. On a connection of its own, so that no event of the
// toolkit's is taken. User-interface thread.
#pragma once

#include <QByteArray>
#include <QObject>
#include <QStringList>

#include <xcb/xcb.h>

namespace tavrix::platform
{

class ClipboardTransfer;

class ClipboardOffer : public QObject
{
public:
    /// `watchedTypes` are the names of the types whose offers count.
    explicit ClipboardOffer(const QStringList& watchedTypes);
    ~ClipboardOffer() override;

    /// Asks the owner anew. Until it answers nothing is offered.
    void Ask();
    /// Waits for the answer, but not long; for questions that somebody stands behind. False when it
    /// has not come.
    bool Await(int milliseconds);
    /// Drops what the owner has told: there is another one now, who need not be asked.
    void Forget();
    /// Whether the owner offers one of the types, as far as it has told.
    bool IsThere() const { return !offered.isEmpty(); }
    /// Which of them, in the order of those watched.
    QStringList Offered() const;

    enum class Fetched { Done, Refused, OutOfTime };
    /// Fetches what the owner gives as `type`, one of those watched, in at most `largest` bytes:
    /// more count as refused. Waits for it, until the owner keeps still for some seconds or sends
    /// less than is worth waiting for. Throws std::bad_alloc.
    Fetched Fetch(const QString& type, size_t largest, QByteArray* bytes);

    /// Asks the desktop's clipboard manager to save what this process has on the clipboard. False
    /// when there is none, or no server.
    bool AskManager();
    /// Whether it has answered, well or ill.
    bool HasManagerAnswered();

private:
    void TakeEvents();
    void TakeAnswer(xcb_atom_t property);
    xcb_window_t MakeWindow(uint32_t events);
    void WaitForEvents(int milliseconds);
    void Abandon(xcb_window_t window);

    xcb_connection_t* server = nullptr;
    xcb_window_t root = 0;
    xcb_window_t window = 0;
    xcb_atom_t clipboard = 0;
    xcb_atom_t targets = 0;
    xcb_atom_t incr = 0;
    xcb_atom_t manager = 0;
    xcb_atom_t saveTargets = 0;
    QStringList typeNames;
    QList<xcb_atom_t> properties; // taken in turn, so that a late answer is told from the last one
    QList<xcb_atom_t> types;
    qsizetype turn = 0;
    bool waiting = false;
    bool managerAnswered = false;
    QList<xcb_atom_t> offered; // of the types
    ClipboardTransfer* transfer = nullptr;
    QList<xcb_window_t> abandoned;
};

} // namespace tavrix::platform
