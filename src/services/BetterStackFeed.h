#pragma once

#include "services/ParsedProviderStatus.h"
#include "json/JSONValue.h"

#include <optional>
#include <string>

namespace kestrin {

/// A Better Stack "index.json": {data{type, attributes{company_name, aggregate_state, updated_at}}}. What it
/// includes besides, which makes it up to a hundred kilobytes large, is not looked at. It has no sentence on its
/// state, so the summary is the state's title. Any thread. Source: "/index.json" of any Better Stack status page.
struct BetterStackFeed {
    struct Attributes {
        std::optional<std::string> companyName;
        std::optional<std::string> aggregateState;
        std::optional<std::string> updatedAt;
    };
    struct Item {
        std::optional<std::string> type;
        std::optional<Attributes> attributes;
    };

    std::optional<Item> data;

    /// Throws `JSONError` for a value of the wrong type.
    [[nodiscard]] static BetterStackFeed decode(const JSONValue& document);
    /// Throws `unrecognized` without data. Data of another type than "status_page", written exactly so, or without
    /// a known aggregate state gives the state `unknown`.
    [[nodiscard]] ParsedProviderStatus outcome() const;
};

} // namespace kestrin
