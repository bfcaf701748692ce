#pragma once

#include "services/ParsedProviderStatus.h"
#include "json/JSONValue.h"

#include <optional>
#include <string>
#include <vector>

namespace kestrin {

/// The Slack status API, version 2, "current": {status, date_updated, active_incidents[{title, type, status}]}. The
/// list may be absent, which counts as empty; incidents announced for later stand in it too. Any thread.
/// Source: Slack's page "Slack status API" for developers. Its identifiers are text in one place and numbers in
/// another, which is why they are not read.
struct SlackFeed {
    struct Incident {
        std::optional<std::string> title;
        std::optional<std::string> type;
        std::optional<std::string> status;
    };

    std::optional<std::string> status;
    std::optional<std::string> dateUpdated;
    std::vector<Incident> activeIncidents;

    /// Throws `JSONError` for a value of the wrong type.
    [[nodiscard]] static SlackFeed decode(const JSONValue& document);
    /// Throws `unrecognized` without a status. A status that the incidents do not bear out gives `unknown`.
    [[nodiscard]] ParsedProviderStatus outcome() const;
};

} // namespace kestrin
