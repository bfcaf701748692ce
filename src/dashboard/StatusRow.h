#pragma once

#include "state/ProviderSnapshot.h"
#include "state/SiteSnapshot.h"
#include "text/LocaleFormats.h"

#include <string>

namespace kestrin {

/// One line of the popover, of a website or of a status service. Every text is ready to be shown.
struct StatusRow {
    std::string name;
    std::string stateText;   ///< the state in words
    std::string lastResult;  ///< what the last check saw or read, or that there was none
    std::string lastChecked; ///< when that was and how long it took; of a website without a check empty
    bool operator==(const StatusRow&) const = default;
};

[[nodiscard]] StatusRow websiteStatusRow(const SiteSnapshot& snapshot, const LocaleFormats& formats);
[[nodiscard]] StatusRow serviceStatusRow(const ProviderSnapshot& snapshot, const LocaleFormats& formats);

} // namespace kestrin
