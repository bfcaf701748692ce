#pragma once

#include "model/ProviderDefinition.h"
#include "model/ProviderState.h"
#include "services/ProviderCheckDependencies.h"
#include "tasks/Task.h"

#include <chrono>
#include <string>

namespace kestrin {

/// What a status page says now, before anything is saved: enough to show it and to add it.
struct CustomProviderPreview {
    std::string name;                             ///< the feed's own, else the host
    ProviderState state = ProviderState::unknown; ///< never `unknown` in a preview that was given
    std::string summary;
    WebURL statusPageURL; ///< as it was typed, without the white space around it
    WebURL endpoint;      ///< the one that answered
    ProviderAdapterIdentity adapter;

    bool operator==(const CustomProviderPreview&) const = default;
};

/// Tests the address of a status page: may it be contacted, which feed does it have, what does that say? Writes
/// nothing. Throws a `ProviderPreviewError` unless a feed gives a known state, and a `CancellationError` as soon as
/// a wait ends after a cancellation. The probes share `timeout` evenly, with three seconds at least for each. Any
/// thread.
[[nodiscard]] Task<CustomProviderPreview> previewCustomProvider(
    std::string input, ProviderCheckDependencies dependencies, std::chrono::milliseconds timeout);

} // namespace kestrin
