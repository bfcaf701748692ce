#pragma once

#include "http/HTTPHop.h"

#include <expected>
#include <stop_token>

namespace kestrin {

/// Makes one bounded HTTP request. It knows neither policies nor redirects: who calls it has judged the destination
/// and judges what comes back. Calls block the calling thread, may run on any number of threads at once and share
/// nothing with one another; a triggered stop token ends them within a moment.
class HTTPTransport {
public:
    virtual ~HTTPTransport() = default;

    [[nodiscard]] virtual std::expected<HTTPHopResponse, HTTPHopError> perform(
        const HTTPHopRequest& request, std::stop_token stop) = 0;
};

} // namespace kestrin
