#pragma once

#include "monitoring/MonitoringCheckRunner.h"

#include <chrono>
#include <cstddef>
#include <functional>

namespace kestrin {

inline constexpr std::size_t checksInFlightPerKind = 2;
inline constexpr std::chrono::milliseconds checkTimeout = std::chrono::seconds(15);

/// One check of one definition; a failure of the target is told in the record, never thrown.
using SiteCheck = std::function<Task<CheckRecord>(SiteDefinition, std::chrono::milliseconds)>;
using ProviderCheck = std::function<Task<ProviderCheckRecord>(ProviderDefinition, std::chrono::milliseconds)>;

/// The runner of the running program: at most two checks of each kind in flight, on `checkExecutor`, and results
/// sorted by identifier, so that the order of writing does not depend on which check ended first. Checks of a cycle
/// that was given up keep their places until they end. An absent check makes an empty list of every list.
MonitoringCheckRunner liveCheckRunner(Executor& checkExecutor, SiteCheck checkSite, ProviderCheck checkProvider);

} // namespace kestrin
