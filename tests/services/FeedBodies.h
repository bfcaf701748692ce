#pragma once

#include "destinations/URLSplitter.h"
#include "model/WebURL.h"

#include <stdexcept>
#include <string>

namespace kestrin {

/// A Statuspage document with a name and a time.
inline std::string statuspage(const std::string& indicator, const std::string& description) {
    return R"({"page":{"name":"Example Cloud","updated_at":"2026-01-31T08:00:00Z"},"status":{"indicator":")" +
           indicator + R"(","description":")" + description + R"("}})";
}

/// An Instatus document of a service that is up.
inline std::string instatus() {
    return R"({"page":{"name":"Example Cloud","status":"UP"}})";
}

/// A document of the Slack status API.
inline std::string slackFeed(const std::string& status) {
    return R"({"status":")" + status + R"(","date_updated":"2026-01-31T08:00:00-08:00"})";
}

inline WebURL webURL(const std::string& text) {
    auto url = splitURL(text);
    if (!url) throw std::invalid_argument("no URL: " + text);
    return *url;
}

} // namespace kestrin
