#pragma once

#include "dashboard/ServicesPageContent.h"
#include "state/ProviderSnapshot.h"
#include "text/LocaleFormats.h"

#include <optional>
#include <span>
#include <string>

namespace kestrin {

/// What the page of the status services shows; `snapshots` is not empty, or a panel takes its place. `issue` is
/// what is wrong with the added services.
[[nodiscard]] ServicesPageContent servicesPage(std::span<const ProviderSnapshot> snapshots,
    const std::optional<std::string>& issue, const LocaleFormats& formats);

} // namespace kestrin
