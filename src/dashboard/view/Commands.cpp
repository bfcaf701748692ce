#include "dashboard/view/Commands.h"

#include <algorithm>
#include <stdexcept>

namespace kestrin {

const Command& command(const DashboardContent& content, CommandID id) {
    const auto found = std::ranges::find(content.commands, id, &Command::id);
    if (found == content.commands.end()) throw std::logic_error("A command of the dashboard is missing.");
    return *found;
}

} // namespace kestrin
