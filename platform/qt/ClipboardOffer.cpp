#include "platform/qt/ClipboardOffer.h"

#include "platform/qt/ClipboardTransfer.h"
#include "platform/qt/ServerReply.h"

#include <QDeadlineTimer>
#include <QElapsedTimer>
#include <QSocketNotifier>

#include <poll.h>

namespace tavrix::platform
{
namespace
{

constexpr int PropertyCount = 8;
constexpr uint32_t LongestOffer = 4096; // types; more are no honest offer

// The first is longer, since the owner may make the bytes only now; in milliseconds.
constexpr int FirstPatience = 4000;
constexpr int NextPatience = 2000;
// Below this many bytes a millisecond nobody waits for the rest, once a fair while has passed.
constexpr qint64 FairWhile = 10000;
constexpr qint64 FairRate = 64;
// So many windows are kept for owners that were given up, who may write to theirs yet: many a
// program ends when the window that it writes to is gone.
constexpr qsizetype AbandonedCount = 8;

/// The server's numbers of names, asked for together.
QList<xcb_atom_t> Atoms(xcb_connection_t* server, const QStringList& names)
{
    QList<xcb_intern_atom_cookie_t> cookies;
    for (const QString& name : names) {
        const QByteArray bytes = name.toLatin1();
        cookies.append(
            xcb_intern_atom(server, 0, static_cast<uint16_t>(bytes.size()), bytes.data()));
    }
    QList<xcb_atom_t> atoms;
    for (const xcb_intern_atom_cookie_t cookie : cookies) {
        const Reply<xcb_intern_atom_reply_t> reply(xcb_intern_atom_reply(server, cookie, nullptr));
        atoms.append(reply != nullptr ? reply->atom : static_cast<xcb_atom_t>(XCB_ATOM_NONE));
    }
    return atoms;
}

} // namespace

ClipboardOffer::ClipboardOffer(const QStringList& watchedTypes) : typeNames(watchedTypes)
{
    int number = 0;
    server = xcb_connect(nullptr, &number);
    if (xcb_connection_has_error(server) != 0)
        return;
    xcb_screen_iterator_t screen = xcb_setup_roots_iterator(xcb_get_setup(server));
    for (; number > 0 && screen.rem > 1; --number)
        xcb_screen_next(&screen);
    root = screen.data->root;
    window = MakeWindow(XCB_EVENT_MASK_NO_EVENT);
    QStringList names = {QStringLiteral("CLIPBOARD"), QStringLiteral("TARGETS"),
                         QStringLiteral("INCR"), QStringLiteral("CLIPBOARD_MANAGER"),
                         QStringLiteral("SAVE_TARGETS")};
    const qsizetype before = names.size();
    for (int i = 0; i < PropertyCount; ++i)
        names.append(QStringLiteral("TAVRIX_OFFER_%1").arg(i));
    const QList<xcb_atom_t> atoms = Atoms(server, names + watchedTypes);
    clipboard = atoms[0];
    targets = atoms[1];
    incr = atoms[2];
    manager = atoms[3];
    saveTargets = atoms[4];
    properties = atoms.mid(before, PropertyCount);
    types = atoms.mid(before + PropertyCount);
    const auto* notifier =
        new QSocketNotifier(xcb_get_file_descriptor(server), QSocketNotifier::Read, this);
    connect(notifier, &QSocketNotifier::activated, this, [this] { TakeEvents(); });
}

ClipboardOffer::~ClipboardOffer()
{
    xcb_disconnect(server);
}

xcb_window_t ClipboardOffer::MakeWindow(uint32_t events)
{
    const xcb_window_t made = xcb_generate_id(server);
    xcb_create_window(server, 0, made, root, 0, 0, 1, 1, 0, XCB_WINDOW_CLASS_INPUT_ONLY,
                      XCB_COPY_FROM_PARENT, XCB_CW_EVENT_MASK, &events);
    return made;
}

void ClipboardOffer::Forget()
{
    offered.clear();
    waiting = false;
}

void ClipboardOffer::Ask()
{
    Forget();
    if (xcb_connection_has_error(server) != 0)
        return;
    waiting = true;
    turn = (turn + 1) % properties.size();
    xcb_convert_selection(server, window, clipboard, targets, properties[turn], XCB_CURRENT_TIME);
    xcb_flush(server);
}

bool ClipboardOffer::Await(int milliseconds)
{
    const bool asked = waiting;
    const QDeadlineTimer deadline(milliseconds);
    for (TakeEvents(); waiting && !deadline.hasExpired(); TakeEvents())
        WaitForEvents(static_cast<int>(deadline.remainingTime()));
    return asked && !waiting;
}

void ClipboardOffer::WaitForEvents(int milliseconds)
{
    pollfd watched{xcb_get_file_descriptor(server), POLLIN, 0};
    poll(&watched, 1, milliseconds);
}

QStringList ClipboardOffer::Offered() const
{
    QStringList names;
    for (qsizetype i = 0; i < types.size(); ++i)
        if (offered.contains(types[i]))
            names.append(typeNames[i]);
    return names;
}

ClipboardOffer::Fetched ClipboardOffer::Fetch(const QString& type, size_t largest,
                                              QByteArray* bytes)
{
    const qsizetype index = typeNames.indexOf(type);
    if (xcb_connection_has_error(server) != 0 || index < 0)
        return Fetched::Refused;
    const xcb_window_t place = MakeWindow(XCB_EVENT_MASK_PROPERTY_CHANGE);
    ClipboardTransfer current({server, place, clipboard, properties[0], incr}, types[index],
                              largest);
    struct Turn {
        ClipboardOffer& offer;
        ~Turn() { offer.transfer = nullptr; }
    } const ours{*this};
    transfer = &current;

    QElapsedTimer whole;
    whole.start();
    QDeadlineTimer patience(FirstPatience);
    size_t progress = 0;
    for (TakeEvents(); current.IsUnderWay(); TakeEvents()) {
        if (current.Progress() != progress) {
            progress = current.Progress();
            patience.setRemainingTime(NextPatience);
        }
        const bool slow = whole.elapsed() > FairWhile + current.Bytes().size() / FairRate;
        if (slow || patience.hasExpired() || xcb_connection_has_error(server) != 0)
            break;
        WaitForEvents(static_cast<int>(patience.remainingTime()));
    }
    if (current.Outcome() != ClipboardTransfer::State::Done &&
        current.Outcome() != ClipboardTransfer::State::Refused) {
        Abandon(place);
        return current.IsUnderWay() ? Fetched::OutOfTime : Fetched::Refused;
    }
    xcb_destroy_window(server, place);
    xcb_flush(server);
    if (current.Outcome() == ClipboardTransfer::State::Refused)
        return Fetched::Refused;
    *bytes = current.Bytes();
    return Fetched::Done;
}

void ClipboardOffer::Abandon(xcb_window_t place)
{
    abandoned.append(place);
    while (abandoned.size() > AbandonedCount)
        xcb_destroy_window(server, abandoned.takeFirst());
    xcb_flush(server);
}

bool ClipboardOffer::AskManager()
{
    managerAnswered = false;
    if (xcb_connection_has_error(server) != 0)
        return false;
    const Reply<xcb_get_selection_owner_reply_t> reply(
        xcb_get_selection_owner_reply(server, xcb_get_selection_owner(server, manager), nullptr));
    if (reply == nullptr || reply->owner == XCB_WINDOW_NONE)
        return false;
    xcb_convert_selection(server, window, manager, saveTargets, XCB_ATOM_NONE, XCB_CURRENT_TIME);
    xcb_flush(server);
    return true;
}

bool ClipboardOffer::HasManagerAnswered()
{
    TakeEvents();
    return managerAnswered || xcb_connection_has_error(server) != 0;
}

void ClipboardOffer::TakeEvents()
{
    while (const Reply<xcb_generic_event_t> event{xcb_poll_for_event(server)}) {
        if (transfer != nullptr)
            transfer->TakeEvent(*event);
        const auto* notify = reinterpret_cast<xcb_selection_notify_event_t*>(event.get());
        if (!IsEvent(*event, XCB_SELECTION_NOTIFY) || notify->requestor != window)
            continue;
        if (notify->selection == manager)
            managerAnswered = true;
        else
            TakeAnswer(notify->property);
    }
    // Else its descriptor would stay readable for good.
    if (xcb_connection_has_error(server) != 0) {
        waiting = false;
        for (auto* notifier : findChildren<QSocketNotifier*>())
            notifier->setEnabled(false);
    }
}

void ClipboardOffer::TakeAnswer(xcb_atom_t property)
{
    // Nobody owns the clipboard, or not for types: that says so of the last question at most.
    if (property == XCB_ATOM_NONE) {
        waiting = false;
        return;
    }
    const Reply<xcb_get_property_reply_t> reply(xcb_get_property_reply(
        server, xcb_get_property(server, 1, window, property, XCB_ATOM_ATOM, 0, LongestOffer),
        nullptr));
    if (property != properties[turn] || reply == nullptr)
        return;
    waiting = false;
    if (reply->format != 32)
        return;
    const auto* names = static_cast<const xcb_atom_t*>(xcb_get_property_value(reply.get()));
    const auto count =
        static_cast<uint32_t>(xcb_get_property_value_length(reply.get())) / sizeof(xcb_atom_t);
    for (uint32_t i = 0; i < count; ++i)
        if (names[i] != XCB_ATOM_NONE && types.contains(names[i]))
            offered.append(names[i]);
}

} // namespace tavrix::platform
