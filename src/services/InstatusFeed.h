#pragma once

#include "services/ParsedProviderStatus.h"
#include "json/JSONValue.h"

#include <optional>
#include <string>
#include <vector>

namespace kestrin {

/// An Instatus "summary.json": {page{name, status}, activeIncidents[{name, status, impact}],
/// activeMaintenances[{name, status}]}. Either list may be absent, which counts as empty. The page's status and the
/// lists are written independently and have been seen to disagree; then the state is `unknown`. Any thread.
/// Source: Instatus' help page on the public summary API.
struct InstatusFeed {
    struct Page {
        std::optional<std::string> name;
        std::optional<std::string> status;
    };
    struct Incident {
        std::optional<std::string> name;
        std::optional<std::string> status;
        std::optional<std::string> impact;
    };
    struct Maintenance {
        std::optional<std::string> name;
        std::optional<std::string> status;
    };

    std::optional<Page> page;
    std::vector<Incident> activeIncidents;
    std::vector<Maintenance> activeMaintenances;

    /// Throws `JSONError` for a value of the wrong type.
    [[nodiscard]] static InstatusFeed decode(const JSONValue& document);
    /// Throws `unrecognized` without a page. An incident outranks a maintenance, the first live incident names the
    /// state, and one incident of any live ones is enough to make it an outage.
    [[nodiscard]] ParsedProviderStatus outcome() const;
};

} // namespace kestrin
