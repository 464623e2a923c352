#include "platform/qt/WindowManager.h"

#include <QGuiApplication>

#include <cstdlib>
#include <memory>
#include <string_view>

#include <xcb/xcb.h>

namespace tavrix::platform
{

bool IsUnmanagedDisplay()
{
#if QT_CONFIG(xcb)
    // The headless platform, too, answers with this interface where it knows of an X server.
    if (QGuiApplication::platformName() != QLatin1String("xcb"))
        return false;
    const auto* x11 = qApp->nativeInterface<QNativeInterface::QX11Application>();
    if (x11 == nullptr)
        return false;
    struct Free {
        void operator()(void* reply) const { std::free(reply); }
    };
    // A manager that knows the common rules marks the root window so.
    constexpr std::string_view Mark = "_NET_SUPPORTING_WM_CHECK";
    xcb_connection_t* server = x11->connection();
    const std::unique_ptr<xcb_intern_atom_reply_t, Free> atom(xcb_intern_atom_reply(
        server, xcb_intern_atom(server, 1, Mark.size(), Mark.data()), nullptr));
    if (atom == nullptr || atom->atom == XCB_ATOM_NONE)
        return true;
    const xcb_window_t root = xcb_setup_roots_iterator(xcb_get_setup(server)).data->root;
    const std::unique_ptr<xcb_get_property_reply_t, Free> mark(xcb_get_property_reply(
        server, xcb_get_property(server, 0, root, atom->atom, XCB_ATOM_WINDOW, 0, 1), nullptr));
    return mark == nullptr || mark->type == XCB_ATOM_NONE;
#else
    return false;
#endif
}

} // namespace tavrix::platform
