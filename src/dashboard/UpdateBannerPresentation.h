#pragma once

#include "dashboard/DashboardContent.h"
#include "dashboard/UpdateObservation.h"

#include <optional>

namespace kestrin {

/// The banner above the header; absent without an update controller and while it does not ask for one.
[[nodiscard]] std::optional<UpdateBannerContent> updateBanner(const UpdateObservation* update);

} // namespace kestrin
