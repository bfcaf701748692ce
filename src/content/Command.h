#pragma once

#include <string>

namespace kestrin {

enum class CommandID { openDashboard, startOrStop, checkNow, openSettings, quit };

/// Something that the user can do, wherever it is offered: as a button, in a menu or by a key.
struct Command {
    CommandID id = CommandID::quit;
    std::string label;
    bool enabled = true;
    std::string reason; ///< why it is disabled, for the tooltip; empty when it is enabled

    bool operator==(const Command&) const = default;
};

} // namespace kestrin
