#include "platform/qt/ClipboardOffer.h"

#include <QDeadlineTimer>
#include <QSocketNotifier>

#include <cstdlib>
#include <memory>
#include <poll.h>

namespace tavrix::platform
{
namespace
{

constexpr int PropertyCount = 8;
constexpr uint32_t LongestOffer = 4096; // types; more are no honest offer

struct Free {
    void operator()(void* reply) const { std::free(reply); }
};
template <class T>
using Reply = std::unique_ptr<T, Free>;

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

ClipboardOffer::ClipboardOffer(const QStringList& watchedTypes)
{
    int number = 0;
    server = xcb_connect(nullptr, &number);
    if (xcb_connection_has_error(server) != 0)
        return;
    xcb_screen_iterator_t screen = xcb_setup_roots_iterator(xcb_get_setup(server));
    for (; number > 0 && screen.rem > 1; --number)
        xcb_screen_next(&screen);
    window = xcb_generate_id(server);
    xcb_create_window(server, 0, window, screen.data->root, 0, 0, 1, 1, 0,
                      XCB_WINDOW_CLASS_INPUT_ONLY, XCB_COPY_FROM_PARENT, 0, nullptr);
    QStringList names = {QStringLiteral("CLIPBOARD"), QStringLiteral("TARGETS")};
    for (int i = 0; i < PropertyCount; ++i)
        names.append(QStringLiteral("TAVRIX_OFFER_%1").arg(i));
    const QList<xcb_atom_t> atoms = Atoms(server, names + watchedTypes);
    clipboard = atoms[0];
    targets = atoms[1];
    properties = atoms.mid(2, PropertyCount);
    types = atoms.mid(2 + PropertyCount);
    const auto* notifier =
        new QSocketNotifier(xcb_get_file_descriptor(server), QSocketNotifier::Read, this);
    connect(notifier, &QSocketNotifier::activated, this, [this] { TakeEvents(); });
}

ClipboardOffer::~ClipboardOffer()
{
    xcb_disconnect(server);
}

void ClipboardOffer::Ask()
{
    offered = false;
    waiting = false;
    if (xcb_connection_has_error(server) != 0)
        return;
    waiting = true;
    turn = (turn + 1) % properties.size();
    xcb_convert_selection(server, window, clipboard, targets, properties[turn], XCB_CURRENT_TIME);
    xcb_flush(server);
}

void ClipboardOffer::Await(int milliseconds)
{
    const QDeadlineTimer deadline(milliseconds);
    for (TakeEvents(); waiting && !deadline.hasExpired(); TakeEvents()) {
        pollfd watched{xcb_get_file_descriptor(server), POLLIN, 0};
        poll(&watched, 1, static_cast<int>(deadline.remainingTime()));
    }
}

void ClipboardOffer::TakeEvents()
{
    while (const Reply<xcb_generic_event_t> event{xcb_poll_for_event(server)}) {
        if ((event->response_type & 0x7F) != XCB_SELECTION_NOTIFY)
            continue;
        const auto* notify = reinterpret_cast<xcb_selection_notify_event_t*>(event.get());
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
        offered = offered || (names[i] != XCB_ATOM_NONE && types.contains(names[i]));
}

} // namespace tavrix::platform
