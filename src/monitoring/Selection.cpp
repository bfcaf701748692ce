#include "monitoring/Selection.h"

#include <algorithm>

namespace kestrin {

bool isShown(const std::string& siteID, std::span<const SiteSnapshot> snapshots) {
    return std::ranges::any_of(snapshots, [&](const SiteSnapshot& snapshot) { return snapshot.site.id == siteID; });
}

std::string reconciledSiteSelection(const std::string& selected,
    const std::optional<std::string>& previousActiveSiteID, const std::optional<std::string>& activeSiteID,
    std::span<const SiteSnapshot> snapshots) {
    const bool choiceChangedElsewhere = activeSiteID != previousActiveSiteID;
    if (!selected.empty() && !choiceChangedElsewhere && isShown(selected, snapshots)) return selected;
    if (activeSiteID && isShown(*activeSiteID, snapshots)) return *activeSiteID;
    return snapshots.empty() ? std::string() : snapshots.front().site.id;
}

std::string reconciledProviderSelection(const std::string& selected, std::span<const ProviderSnapshot> snapshots) {
    const bool isShown = std::ranges::any_of(
        snapshots, [&](const ProviderSnapshot& snapshot) { return snapshot.provider.id == selected; });
    if (isShown) return selected;
    return snapshots.empty() ? std::string() : snapshots.front().provider.id;
}

} // namespace kestrin
