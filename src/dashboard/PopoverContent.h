#pragma once

#include "dashboard/StatusRow.h"
#include "monitoring/AppModel.h"
#include "text/LocaleFormats.h"

#include <optional>
#include <string>
#include <vector>

namespace kestrin {

/// A message that takes the place of the list.
struct PopoverPanel {
    std::string title;
    std::string description;
    bool operator==(const PopoverPanel&) const = default;
};

struct PopoverButton {
    std::string label;
    bool enabled = true;
    bool operator==(const PopoverButton&) const = default;
};

/// What the popover says, as a plain value: a view draws it and adds nothing of its own.
struct PopoverContent {
    std::string title;
    std::string subtitle;
    std::optional<PopoverPanel> panel;
    std::vector<std::string> notices; ///< what needs the user's attention, most pressing first
    std::vector<StatusRow> websites;  ///< in configuration order; empty while a panel shows
    std::vector<StatusRow> services;  ///< in the order of a run; empty while they are switched off
    PopoverButton startStop;
    bool startStopStops = false; ///< the button stops monitoring
    PopoverButton checkNow;
    PopoverButton quit;
    bool operator==(const PopoverContent&) const = default;
};

/// Computed anew from the model whenever it announces a change while the popover is open.
[[nodiscard]] PopoverContent popoverContent(const AppModel& model, const LocaleFormats& formats);

} // namespace kestrin
