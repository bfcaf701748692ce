#pragma once

#include "model/CheckRecord.h"
#include "model/ProviderCheckRecord.h"
#include "model/ProviderDefinition.h"
#include "model/SiteConfiguration.h"
#include "tasks/Task.h"

#include <functional>
#include <vector>

namespace kestrin {

/// The checks that a cycle runs, injected so that the loop knows nothing of networks. Neither operation throws: the
/// failure of a target is told in its record. Both are awaited on the main thread and do their work elsewhere.
struct MonitoringCheckRunner {
    std::function<Task<std::vector<CheckRecord>>(std::vector<SiteDefinition>)> performSiteChecks;
    std::function<Task<std::vector<ProviderCheckRecord>>(std::vector<ProviderDefinition>)> performProviderChecks;
};

} // namespace kestrin
