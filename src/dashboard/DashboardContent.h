#pragma once

#include "monitoring/AppModel.h"
#include "text/LocaleFormats.h"

#include <optional>
#include <string>
#include <vector>

namespace kestrin {

/// One website's line in the popover. Every text is ready to be shown.
struct WebsiteRow {
    enum class State { Up, Down, NoData, Disabled };

    std::string name;
    State state = State::NoData;
    std::string stateText;   ///< the state in words
    std::string lastResult;  ///< what the last check saw; "No checks" when there was none
    std::string lastChecked; ///< when that was and how long it took; empty without a check
    bool operator==(const WebsiteRow&) const = default;
};

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
    std::vector<WebsiteRow> websites; ///< in configuration order; empty while a panel shows
    DashboardButton startStop;
    bool startStopStops = false; ///< the button stops monitoring
    DashboardButton checkNow;
    DashboardButton quit;
    bool operator==(const DashboardContent&) const = default;
};

/// Computed anew from the model whenever it announces a change while the popover is open.
[[nodiscard]] DashboardContent dashboardContent(const AppModel& model, const LocaleFormats& formats);

/// One row, for a website with its history.
[[nodiscard]] WebsiteRow websiteRow(const SiteSnapshot& snapshot, const LocaleFormats& formats);

} // namespace kestrin
