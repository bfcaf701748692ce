#pragma once

#include "model/WebURL.h"

#include <set>
#include <string>
#include <string_view>

namespace kestrin {

/// The port a request to the URL goes to: the written one, else 80 for "http" in any letter case, else 443.
[[nodiscard]] int effectivePort(const WebURL& url);

/// A website's host and its "www." twin, normalized: the two may redirect into each other, and nothing else does.
[[nodiscard]] std::set<std::string> equivalentHosts(std::string_view host);

/// The form in which whole endpoints are compared: the URL's text without its fragment.
[[nodiscard]] std::string normalizedEndpoint(const WebURL& url);

} // namespace kestrin
