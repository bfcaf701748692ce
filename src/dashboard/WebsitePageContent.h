#pragma once

#include "content/StateColor.h"
#include "dashboard/NoteContent.h"
#include "dashboard/ResponseChartContent.h"

#include <array>
#include <optional>
#include <string>
#include <vector>

namespace kestrin {

/// A small titled figure.
struct MetricValue {
    std::string title;
    std::string value;

    bool operator==(const MetricValue&) const = default;
};

struct SiteSummaryContent {
    std::string name;
    std::string url;
    std::string badge;
    StateColor badgeColor = StateColor::secondary;
    std::string lastChecked; ///< below the badge
    std::array<MetricValue, 3> metrics;

    bool operator==(const SiteSummaryContent&) const = default;
};

struct CheckRowContent {
    bool up = false; ///< green when it was up, otherwise red
    std::string result;
    std::string time;
    std::string duration;       ///< empty when it was not measured
    std::string accessibleName; ///< begins with whether the website was up
    std::string details;        ///< for the tooltip: moment, result, duration and addresses, a line each

    bool operator==(const CheckRowContent&) const = default;
};

struct IncidentRowContent {
    std::string symbol;
    StateColor color = StateColor::green;
    std::string word;
    std::string period;

    bool operator==(const IncidentRowContent&) const = default;
};

/// The page of the selected website.
struct WebsitePageContent {
    SiteSummaryContent summary;
    std::optional<NoteContent> operationError;
    ResponseChartContent chart;
    std::string checksTitle;
    std::vector<CheckRowContent> checks; ///< newest first
    std::string noChecks;                ///< in place of the rows when there are none
    std::string incidentsTitle;
    std::vector<IncidentRowContent> incidents;
    NoteContent noIncidents; ///< in place of the rows when there are none

    bool operator==(const WebsitePageContent&) const = default;
};

} // namespace kestrin
