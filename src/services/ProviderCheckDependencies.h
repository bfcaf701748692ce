#pragma once

#include "model/DNSResolution.h"
#include "probing/BackgroundResolver.h"
#include "probing/FreshHTTPClient.h"
#include "probing/SecureRequestPolicy.h"
#include "tasks/Task.h"

#include <functional>
#include <string>

namespace kestrin {

/// The two ways in which the check and the preview of a status service reach the network. Copies are cheap and work
/// alike. An operation may throw a `CancellationError`; whatever else it throws is a failure of the host or the
/// endpoint in question.
struct ProviderCheckDependencies {
    std::function<Task<DNSResolution>(std::string host)> resolveHost;
    std::function<Task<FreshHTTPResponse>(HTTPRequest request, SecureRequestPolicy policy)> fetch;
};

/// The real network.
[[nodiscard]] ProviderCheckDependencies liveProviderCheckDependencies(
    FreshHTTPClient client, BackgroundResolver resolver);

} // namespace kestrin
