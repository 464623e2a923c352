// Another program at an X server's clipboard, of the kinds that no honest tool plays:
//     clipboard-owner endless        offers image/png and sends pieces for ever
//     clipboard-owner stall|die N    the same, but keeps still or ends after N pieces
//     clipboard-owner drip           pieces of one byte
//     clipboard-owner huge           announces four thousand million bytes
//     clipboard-owner manager FILE   is the desktop's clipboard manager: writes the picture that it
//                                    is asked to save as image/png to the file
// Writes "ready" once it has what it wants, and then how many bytes it has sent so far.
#include <xcb/xcb.h>

#include <cstdlib>
#include <cstring>
#include <fstream>
#include <iostream>
#include <string>
#include <vector>

namespace
{

constexpr size_t PieceSize = 65536;

xcb_connection_t* server = nullptr;
xcb_window_t window = 0;
size_t sent = 0;
size_t pieces = 0;

xcb_atom_t Atom(const char* name)
{
    xcb_intern_atom_reply_t* reply = xcb_intern_atom_reply(
        server, xcb_intern_atom(server, 0, static_cast<uint16_t>(std::strlen(name)), name),
        nullptr);
    const xcb_atom_t atom = reply->atom;
    std::free(reply);
    return atom;
}

void Put(xcb_window_t target, xcb_atom_t property, xcb_atom_t type, uint8_t format, size_t count,
         const void* data)
{
    xcb_change_property(server, XCB_PROP_MODE_REPLACE, target, property, type, format,
                        static_cast<uint32_t>(count), data);
}

void Answer(const xcb_selection_request_event_t& request, xcb_atom_t property)
{
    xcb_selection_notify_event_t notify{};
    notify.response_type = XCB_SELECTION_NOTIFY;
    notify.time = request.time;
    notify.requestor = request.requestor;
    notify.selection = request.selection;
    notify.target = request.target;
    notify.property = property;
    xcb_send_event(server, 0, request.requestor, 0, reinterpret_cast<const char*>(&notify));
    xcb_flush(server);
}

void SendPiece(const std::string& mode, size_t last, xcb_window_t target, xcb_atom_t property)
{
    if (pieces == last) {
        if (mode == "die")
            std::exit(0);
        return;
    }
    const std::vector<char> bytes(mode == "drip" ? 1 : PieceSize, 'x');
    Put(target, property, Atom("image/png"), 8, bytes.size(), bytes.data());
    xcb_flush(server);
    sent += bytes.size();
    ++pieces;
    std::cout << sent << std::endl;
}

void Own(const std::string& mode, size_t last)
{
    const xcb_atom_t png = Atom("image/png");
    const xcb_atom_t targets = Atom("TARGETS");
    while (xcb_generic_event_t* event = xcb_wait_for_event(server)) {
        const int kind = event->response_type & 0x7F;
        if (kind == XCB_SELECTION_REQUEST) {
            const auto& request = *reinterpret_cast<xcb_selection_request_event_t*>(event);
            if (request.target == targets) {
                Put(request.requestor, request.property, XCB_ATOM_ATOM, 32, 1, &png);
                Answer(request, request.property);
            } else if (request.target == png) {
                const uint32_t wanted = XCB_EVENT_MASK_PROPERTY_CHANGE;
                xcb_change_window_attributes(server, request.requestor, XCB_CW_EVENT_MASK, &wanted);
                const uint32_t hint = mode == "huge" ? 0xF0000000u : 1000;
                Put(request.requestor, request.property, Atom("INCR"), 32, 1, &hint);
                Answer(request, request.property);
            } else {
                Answer(request, XCB_ATOM_NONE);
            }
        } else if (kind == XCB_PROPERTY_NOTIFY) {
            const auto& change = *reinterpret_cast<xcb_property_notify_event_t*>(event);
            if (change.state == XCB_PROPERTY_DELETE && change.window != window)
                SendPiece(mode, last, change.window, change.atom);
        }
        std::free(event);
    }
}

void Manage(const std::string& file)
{
    const xcb_atom_t property = Atom("SAVED");
    xcb_selection_request_event_t asked{};
    while (xcb_generic_event_t* event = xcb_wait_for_event(server)) {
        const int kind = event->response_type & 0x7F;
        if (kind == XCB_SELECTION_REQUEST) {
            asked = *reinterpret_cast<xcb_selection_request_event_t*>(event);
            if (asked.target == Atom("SAVE_TARGETS"))
                xcb_convert_selection(server, window, Atom("CLIPBOARD"), Atom("image/png"),
                                      property, XCB_CURRENT_TIME);
            else
                Answer(asked, XCB_ATOM_NONE);
            xcb_flush(server);
        } else if (kind == XCB_SELECTION_NOTIFY) {
            xcb_get_property_reply_t* reply =
                xcb_get_property_reply(server,
                                       xcb_get_property(server, 1, window, property,
                                                        XCB_GET_PROPERTY_TYPE_ANY, 0, 1 << 20),
                                       nullptr);
            std::ofstream(file, std::ios::binary)
                .write(static_cast<const char*>(xcb_get_property_value(reply)),
                       xcb_get_property_value_length(reply));
            std::free(reply);
            Answer(asked, asked.property);
            std::cout << "saved" << std::endl;
        }
        std::free(event);
    }
}

} // namespace

int main(int count, char** arguments)
{
    const std::string mode = count > 1 ? arguments[1] : "";
    server = xcb_connect(nullptr, nullptr);
    const xcb_screen_t* screen = xcb_setup_roots_iterator(xcb_get_setup(server)).data;
    window = xcb_generate_id(server);
    xcb_create_window(server, 0, window, screen->root, 0, 0, 1, 1, 0, XCB_WINDOW_CLASS_INPUT_ONLY,
                      XCB_COPY_FROM_PARENT, 0, nullptr);
    xcb_set_selection_owner(server, window,
                            Atom(mode == "manager" ? "CLIPBOARD_MANAGER" : "CLIPBOARD"),
                            XCB_CURRENT_TIME);
    xcb_flush(server);
    (void)Atom("READY"); // the server has got as far
    std::cout << "ready" << std::endl;
    if (mode == "manager")
        Manage(arguments[2]);
    else
        Own(mode, count > 2 ? static_cast<size_t>(std::atoi(arguments[2])) : SIZE_MAX);
    return 0;
}
