#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace kestrin {

struct ChartBar {
    double position = 0;           ///< the centre of its slot, which is 1 wide
    std::int64_t plottedValue = 0; ///< height in milliseconds of display scale
    bool up = false;
    std::string details; ///< for the tooltip: moment, result, duration and addresses, a line each

    bool operator==(const ChartBar&) const = default;
};

/// The bars of the last checks, oldest first, with all that is written around them.
struct ResponseChartContent {
    std::string title;
    std::vector<ChartBar> bars;
    double domainStart = -0.5;
    double domainEnd = 0.5;
    std::string successfulLabel;
    std::string failedLabel;
    std::string countLabel;
    std::string noChecks; ///< in place of the chart when there are no bars
    std::string accessibleLabel;

    bool operator==(const ResponseChartContent&) const = default;
};

} // namespace kestrin
