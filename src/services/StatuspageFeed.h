#pragma once

#include "services/ParsedProviderStatus.h"
#include "json/JSONValue.h"

#include <optional>
#include <string>

namespace kestrin {

/// An Atlassian Statuspage "status.json" or "summary.json": {page{name, updated_at}, status{indicator,
/// description}}. Other makers of status pages serve the same shape. Its makers document the indicators none,
/// minor, major and critical; maintenance is served as well, and the plain names of the states by others. Any
/// thread. Source: the page "/api/v2" of any Statuspage site.
struct StatuspageFeed {
    struct Page {
        std::optional<std::string> updatedAt;
        std::optional<std::string> name;
    };
    struct Status {
        std::optional<std::string> indicator;
        std::optional<std::string> description;
    };

    std::optional<Page> page;
    std::optional<Status> status;

    /// Throws `JSONError` for a value of the wrong type.
    [[nodiscard]] static StatuspageFeed decode(const JSONValue& document);
    /// Throws `unrecognized` without a page or a status. An indicator that is not known gives the state `unknown`
    /// with the description for a summary.
    [[nodiscard]] ParsedProviderStatus outcome() const;
};

} // namespace kestrin
