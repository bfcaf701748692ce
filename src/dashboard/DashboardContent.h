#pragma once

#include "dashboard/StatusRow.h"
#include "monitoring/AppModel.h"
#include "text/LocaleFormats.h"

#include <optional>
#include <string>
#include <vector>

namespace kestrin {

/// A message that takes the place of the list.
struct DashboardPanel {
    std::string title;
    std::string description;
    bool operator==(const DashboardPanel&) const = default;
};

struct DashboardButton {
    std::string label;
    bool enabled = true;
    bool operator==(const DashboardButton&) const = default;
};

/// What the popover says, as a plain value: a view draws it and adds nothing of its own.
struct DashboardContent {
    std::string title;
    std::string subtitle;
    std::optional<DashboardPanel> panel;
    std::vector<std::string> notices; ///< what needs the user's attention, most pressing first
    std::vector<StatusRow> websites;  ///< in configuration order; empty while a panel shows
    std::vector<StatusRow> services;  ///< in the order of a run; empty while they are switched off
    DashboardButton startStop;
    bool startStopStops = false; ///< the button stops monitoring
    DashboardButton checkNow;
    DashboardButton quit;
    bool operator==(const DashboardContent&) const = default;
};

/// Computed anew from the model whenever it announces a change while the popover is open.
[[nodiscard]] DashboardContent dashboardContent(const AppModel& model, const LocaleFormats& formats);

} // namespace kestrin
