#pragma once

#include "model/WebURL.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace kestrin {

/// A well-known service that the user may add. A suggestion only: which feed its page has is found out by the same
/// preview as for an address that was typed.
struct ServiceCatalogEntry {
    std::string id;
    std::string name;
    std::string category;
    std::vector<std::string> searchAliases; ///< other names under which it is looked for
    WebURL statusPageURL;

    bool operator==(const ServiceCatalogEntry&) const = default;
};

/// All suggestions in their fixed order, built on first use. Any thread.
[[nodiscard]] const std::vector<ServiceCatalogEntry>& serviceCatalog();

/// The suggestions whose name, category and aliases together contain every word of the query, in catalog order;
/// all of them for a query without words. Capitals do not matter, by the rules of the locale, which is the user's
/// own unless named. Any thread.
[[nodiscard]] std::vector<ServiceCatalogEntry> searchServiceCatalog(
    std::string_view query, const std::optional<std::string>& localeName = std::nullopt);

} // namespace kestrin
