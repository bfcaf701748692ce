#pragma once

#include <optional>
#include <string>
#include <vector>

namespace kestrin {

/// What a name resolution gave: numeric addresses, sorted as text, without duplicates.
struct DNSResolution {
    bool ok = false;
    std::vector<std::string> ips;
    std::optional<std::string> error;

    bool operator==(const DNSResolution&) const = default;
};

} // namespace kestrin
