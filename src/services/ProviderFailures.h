#pragma once

#include "model/ProviderState.h"

#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace kestrin {

/// What went wrong at the endpoints of one check or preview, in the order in which they were tried.
class ProviderFailures {
public:
    /// A line without a category says something that does not count when the failure is named.
    void add(std::string line, std::optional<ProviderFailureCategory> category);

    [[nodiscard]] std::string joined(std::string_view separator) const;

    /// The first of `order` that was added.
    [[nodiscard]] std::optional<ProviderFailureCategory> dominant(
        std::span<const ProviderFailureCategory> order) const;

private:
    std::vector<std::string> lines_;
    std::vector<ProviderFailureCategory> categories_;
};

} // namespace kestrin
