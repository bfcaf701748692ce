#pragma once

#include <string_view>

namespace kestrin {

/// Which page of the dashboard is showing.
enum class MonitorPage { sites, providers };

[[nodiscard]] constexpr std::string_view displayName(MonitorPage page) {
    return page == MonitorPage::sites ? "Sites" : "Services";
}

} // namespace kestrin
