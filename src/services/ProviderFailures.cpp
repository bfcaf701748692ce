#include "services/ProviderFailures.h"

#include <algorithm>
#include <utility>

namespace kestrin {

void ProviderFailures::add(std::string line, std::optional<ProviderFailureCategory> category) {
    lines_.push_back(std::move(line));
    if (category) categories_.push_back(*category);
}

std::string ProviderFailures::joined(std::string_view separator) const {
    std::string text;
    for (const std::string& line : lines_) {
        if (!text.empty()) text += separator;
        text += line;
    }
    return text;
}

std::optional<ProviderFailureCategory> ProviderFailures::dominant(
    std::span<const ProviderFailureCategory> order) const {
    for (const ProviderFailureCategory category : order)
        if (std::ranges::find(categories_, category) != categories_.end()) return category;
    return std::nullopt;
}

} // namespace kestrin
