#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace kestrin {

/// A URL taken apart. Absent and empty are told apart: "https://@host" has an empty user, "https://host" has none.
/// `host` is what is judged and contacted: no brackets around an IPv6 literal, letters outside ASCII converted.
struct WebURL {
    std::string text;   ///< the whole URL as it was given
    std::string scheme; ///< as written
    std::optional<std::string> user;
    std::optional<std::string> password;
    std::string host;
    std::optional<std::uint16_t> port; ///< the written port, 1 to 65535
    std::string path;                  ///< as written, empty or beginning with "/"
    std::optional<std::string> query;
    std::optional<std::string> fragment;

    bool operator==(const WebURL&) const = default;
};

} // namespace kestrin
