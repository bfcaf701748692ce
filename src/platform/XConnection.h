#pragma once

#include <cstdlib>
#include <memory>
#include <string>
#include <xcb/xcb.h>

namespace kestrin {

/// Qt's own connection to the X server; null on other platforms. Main thread.
[[nodiscard]] xcb_connection_t* xConnection();
/// The number of the screen that the display's name selects.
[[nodiscard]] int xScreenNumber();
/// The atom of that name, made if there was none; 0 when the server does not answer.
[[nodiscard]] xcb_atom_t xAtom(xcb_connection_t* connection, const std::string& name);

template <class Reply> [[nodiscard]] std::unique_ptr<Reply, decltype(&std::free)> ownedReply(Reply* reply) {
    return {reply, &std::free};
}

} // namespace kestrin
