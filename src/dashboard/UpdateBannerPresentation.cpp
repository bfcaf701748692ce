#include "dashboard/UpdateBannerPresentation.h"

namespace kestrin {

std::optional<UpdateBannerContent> updateBanner(const UpdateObservation* update) {
    if (!update || !update->showsPopoverAvailability) return std::nullopt;
    return UpdateBannerContent{.symbol = "arrow.down.circle.fill",
        .title = "Kestrin " + update->version + " is available",
        .subtitle = "Open the download page",
        .trailingSymbol = "chevron.right",
        .accessibleLabel = "Update to Kestrin " + update->version + ", build " + std::to_string(update->build),
        .accessibleHint = "Opens the Kestrin download page in your default browser"};
}

} // namespace kestrin
