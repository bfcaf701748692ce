#include "platform/Compositing.h"

#include "platform/XConnection.h"

namespace kestrin {

bool windowsMayBeTransparent() {
    xcb_connection_t* connection = xConnection();
    if (!connection) return false;
    // The manager of a screen owns this selection; the convention is that of the window managers.
    const xcb_atom_t selection = xAtom(connection, "_NET_WM_CM_S" + std::to_string(xScreenNumber()));
    const auto cookie = xcb_get_selection_owner(connection, selection);
    const auto reply = ownedReply(xcb_get_selection_owner_reply(connection, cookie, nullptr));
    return reply && reply->owner != XCB_WINDOW_NONE;
}

} // namespace kestrin
