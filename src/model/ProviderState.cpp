#include "model/ProviderState.h"

#include <array>
#include <utility>

namespace kestrin {

namespace {

constexpr std::array<std::pair<ProviderState, std::string_view>, 5> stateNames = {{
    {ProviderState::operational, "operational"},
    {ProviderState::degraded, "degraded"},
    {ProviderState::outage, "outage"},
    {ProviderState::maintenance, "maintenance"},
    {ProviderState::unknown, "unknown"},
}};

constexpr std::array<std::pair<ProviderFailureCategory, std::string_view>, 6> categoryNames = {{
    {ProviderFailureCategory::unreachable, "unreachable"},
    {ProviderFailureCategory::unsafeDestination, "unsafe_destination"},
    {ProviderFailureCategory::unsupportedFormat, "unsupported_format"},
    {ProviderFailureCategory::changedSchema, "changed_schema"},
    {ProviderFailureCategory::unavailable, "unavailable"},
    {ProviderFailureCategory::malformed, "malformed"},
}};

template <class Table, class Value> std::string_view nameIn(const Table& table, Value value) {
    for (const auto& [candidate, name] : table)
        if (candidate == value) return name;
    std::unreachable();
}

template <class Value, class Table> std::optional<Value> valueIn(const Table& table, std::string_view name) {
    for (const auto& [value, candidate] : table)
        if (candidate == name) return value;
    return std::nullopt;
}

} // namespace

std::string_view persistedName(ProviderState state) {
    return nameIn(stateNames, state);
}
std::string_view persistedName(ProviderFailureCategory category) {
    return nameIn(categoryNames, category);
}

std::optional<ProviderState> providerStateNamed(std::string_view name) {
    return valueIn<ProviderState>(stateNames, name);
}

std::optional<ProviderFailureCategory> providerFailureCategoryNamed(std::string_view name) {
    return valueIn<ProviderFailureCategory>(categoryNames, name);
}

std::string_view title(ProviderState state) {
    switch (state) {
    case ProviderState::operational:
        return "Operational";
    case ProviderState::degraded:
        return "Degraded";
    case ProviderState::outage:
        return "Outage";
    case ProviderState::maintenance:
        return "Maintenance";
    case ProviderState::unknown:
        return "Unknown";
    }
    std::unreachable();
}

} // namespace kestrin
