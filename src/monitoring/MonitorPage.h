#pragma once

#include <optional>
#include <string_view>

namespace kestrin {

/// Which page of the dashboard is showing.
enum class MonitorPage { sites, providers };

[[nodiscard]] constexpr std::string_view displayName(MonitorPage page) {
    return page == MonitorPage::sites ? "Sites" : "Services";
}

/// The page of a raw name, "sites" or "providers".
[[nodiscard]] constexpr std::optional<MonitorPage> monitorPageNamed(std::string_view rawName) {
    if (rawName == "sites") return MonitorPage::sites;
    if (rawName == "providers") return MonitorPage::providers;
    return std::nullopt;
}

} // namespace kestrin
