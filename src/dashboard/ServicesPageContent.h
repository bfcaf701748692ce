#pragma once

#include "content/StateColor.h"
#include "dashboard/NoteContent.h"

#include <optional>
#include <string>
#include <vector>

namespace kestrin {

struct ServicesSummaryContent {
    std::string symbol;
    StateColor color = StateColor::secondary;
    std::string title;
    std::string subtitle;
    std::string state; ///< the overall state in capitals

    bool operator==(const ServicesSummaryContent&) const = default;
};

/// One report in the strip of a service.
struct StatusBlock {
    StateColor color = StateColor::secondary;
    bool isOperational = false; ///< every other state has a tick below its block
    std::string details;        ///< for the tooltip: moment, state, summary and duration, a line each

    bool operator==(const StatusBlock&) const = default;
};

struct ServiceRowContent {
    std::string id;
    std::string symbol;
    StateColor color = StateColor::secondary;
    std::string name;
    std::string state;
    std::string summary;
    std::string historyTitle;           ///< empty without records
    std::vector<StatusBlock> history;   ///< oldest first, at most 24
    std::string historyAccessibleLabel; ///< empty without records
    std::string noHistory;              ///< below the plain block without records, otherwise empty
    std::optional<std::string> failure;
    std::string lastChecked;
    std::string linkText;
    std::string linkSymbol;
    std::string linkURL;

    bool operator==(const ServiceRowContent&) const = default;
};

/// The page of the status services.
struct ServicesPageContent {
    std::optional<NoteContent> issue;
    ServicesSummaryContent summary;
    std::string groupTitle;
    std::vector<ServiceRowContent> services;
    NoteContent note;

    bool operator==(const ServicesPageContent&) const = default;
};

} // namespace kestrin
