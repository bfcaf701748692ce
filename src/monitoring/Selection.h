#pragma once

#include "state/ProviderSnapshot.h"
#include "state/SiteSnapshot.h"

#include <optional>
#include <span>
#include <string>

namespace kestrin {

[[nodiscard]] bool isShown(const std::string& siteID, std::span<const SiteSnapshot> snapshots);

/// The website to select after a load. The user's selection stays while it exists, unless the stored choice was
/// changed by somebody else since the load before; then, and when it is gone, the stored choice is taken, or else
/// the first website, or else "" for none.
[[nodiscard]] std::string reconciledSiteSelection(const std::string& selected,
    const std::optional<std::string>& previousActiveSiteID, const std::optional<std::string>& activeSiteID,
    std::span<const SiteSnapshot> snapshots);

/// The service to select after a load: the same while it exists, or else the first, or else "".
[[nodiscard]] std::string reconciledProviderSelection(
    const std::string& selected, std::span<const ProviderSnapshot> snapshots);

} // namespace kestrin
