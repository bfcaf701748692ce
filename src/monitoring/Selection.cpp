#include "monitoring/Selection.h"

#include <algorithm>

namespace kestrin {

std::string reconciledSiteSelection(const std::string& selected,
    const std::optional<std::string>& previousActiveSiteID, const std::optional<std::string>& activeSiteID,
    std::span<const SiteSnapshot> snapshots) {
    const auto isShown = [&](const std::string& id) {
        return std::ranges::any_of(snapshots, [&](const SiteSnapshot& snapshot) { return snapshot.site.id == id; });
    };
    const bool choiceChangedElsewhere = activeSiteID != previousActiveSiteID;
    if (!selected.empty() && !choiceChangedElsewhere && isShown(selected)) return selected;
    if (activeSiteID && isShown(*activeSiteID)) return *activeSiteID;
    return snapshots.empty() ? std::string() : snapshots.front().site.id;
}

std::string reconciledProviderSelection(const std::string& selected, std::span<const ProviderSnapshot> snapshots) {
    const bool isShown = std::ranges::any_of(
        snapshots, [&](const ProviderSnapshot& snapshot) { return snapshot.provider.id == selected; });
    if (isShown) return selected;
    return snapshots.empty() ? std::string() : snapshots.front().provider.id;
}

} // namespace kestrin
