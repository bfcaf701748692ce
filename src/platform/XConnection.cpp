#include "platform/XConnection.h"

#include <QGuiApplication>

namespace kestrin {

xcb_connection_t* xConnection() {
    const auto* x11 = qGuiApp->nativeInterface<QNativeInterface::QX11Application>();
    return x11 ? x11->connection() : nullptr;
}

int xScreenNumber() {
    char* host = nullptr;
    int display = 0;
    int screen = 0;
    if (xcb_parse_display(nullptr, &host, &display, &screen)) std::free(host);
    return screen;
}

xcb_atom_t xAtom(xcb_connection_t* connection, const std::string& name) {
    const auto cookie = xcb_intern_atom(connection, false, static_cast<std::uint16_t>(name.size()), name.data());
    const auto reply = ownedReply(xcb_intern_atom_reply(connection, cookie, nullptr));
    return reply ? reply->atom : xcb_atom_t{XCB_ATOM_NONE};
}

} // namespace kestrin
