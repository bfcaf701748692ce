#pragma once

#include "dashboard/ServicesPageContent.h"
#include "state/ProviderSnapshot.h"
#include "text/LocaleFormats.h"

namespace kestrin {

/// What the dashboard says of one status service.
[[nodiscard]] ServiceRowContent serviceRow(const ProviderSnapshot& snapshot, const LocaleFormats& formats);

} // namespace kestrin
