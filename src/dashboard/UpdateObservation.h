#pragma once

#include <cstdint>
#include <string>

namespace kestrin {

/// What the dashboard reads of the update controller.
struct UpdateObservation {
    bool showsPopoverAvailability = false;
    std::string version;    ///< of the newest known version that is not installed
    std::int64_t build = 0; ///< of the same

    bool operator==(const UpdateObservation&) const = default;
};

} // namespace kestrin
