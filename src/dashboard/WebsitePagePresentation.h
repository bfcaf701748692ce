#pragma once

#include "dashboard/WebsitePageContent.h"
#include "state/Incident.h"
#include "state/SiteSnapshot.h"
#include "text/LocaleFormats.h"

#include <optional>
#include <string>

namespace kestrin {

/// What the page of a website shows. `operationError` is what the last cycle could not do.
[[nodiscard]] WebsitePageContent websitePage(
    const SiteSnapshot& snapshot, const std::optional<std::string>& operationError, const LocaleFormats& formats);

/// A run of failures with the period that it covers.
[[nodiscard]] IncidentRowContent incidentRow(const Incident& incident, const LocaleFormats& formats);

} // namespace kestrin
