#pragma once

#include <string_view>

namespace kestrin::historyKeys {

// The keys of a line of a history file, for the side that writes and the side that reads.
inline constexpr std::string_view timestamp = "timestamp";
inline constexpr std::string_view siteID = "site_id";
inline constexpr std::string_view url = "url";
inline constexpr std::string_view dnsOK = "dns_ok";
inline constexpr std::string_view ips = "ips";
inline constexpr std::string_view httpStatus = "http_status";
inline constexpr std::string_view elapsedMS = "elapsed_ms";
inline constexpr std::string_view up = "up";
inline constexpr std::string_view error = "error";
inline constexpr std::string_view providerID = "provider_id";
inline constexpr std::string_view endpoint = "endpoint";
inline constexpr std::string_view state = "state";
inline constexpr std::string_view summary = "summary";
inline constexpr std::string_view officialUpdatedAt = "official_updated_at";
inline constexpr std::string_view failureCategory = "failure_category";

} // namespace kestrin::historyKeys
