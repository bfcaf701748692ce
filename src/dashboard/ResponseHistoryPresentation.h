#pragma once

#include "dashboard/ResponseChartContent.h"
#include "model/CheckRecord.h"
#include "state/SiteHistoryProjection.h"
#include "text/LocaleFormats.h"

#include <cstddef>
#include <cstdint>
#include <vector>

namespace kestrin {

/// The bars of a website's response history. A failed check has no response time of its own and yet must stand out,
/// so its bar is as tall as the tallest success. A plain value.
struct ResponseHistoryPresentation {
    static constexpr std::size_t maximumBars = 30;
    /// The floor under every bar and under the scale.
    static constexpr std::int64_t shortestBarMS = 50;

    struct Bar {
        double position = 0; ///< the bar's index, which identifies it
        CheckRecord check;
        std::int64_t plottedValue = 0; ///< height in milliseconds of display scale

        bool operator==(const Bar&) const = default;
    };
    std::vector<Bar> bars; ///< oldest first

    [[nodiscard]] static ResponseHistoryPresentation of(const SiteHistoryProjection& history);

    bool operator==(const ResponseHistoryPresentation&) const = default;
};

/// The chart with all that is written around it.
[[nodiscard]] ResponseChartContent responseChart(
    const ResponseHistoryPresentation& presentation, const LocaleFormats& formats);

} // namespace kestrin
