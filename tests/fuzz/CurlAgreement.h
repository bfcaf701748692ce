#pragma once

#include "model/WebURL.h"

#include <string>

namespace kestrin {

/// Compares an accepted HTTPS URL with what libcurl makes of it, filled by parts as a request fills it and read
/// from the whole text. Returns what they disagree on; empty when both see the same destination. A host whose last
/// label is a number is left out of the second comparison: that parser rewrites it, which is why requests are
/// filled by parts.
[[nodiscard]] std::string disagreementWithCurl(const WebURL& url);

/// Compares what a reference at `base` leads to with what libcurl makes of the same reference. References with
/// letters outside ASCII are left out, because their hosts are converted by other rules there, and so are hosts as
/// above.
[[nodiscard]] std::string disagreementWithCurl(
    const WebURL& base, const std::string& reference, const WebURL& target);

} // namespace kestrin
