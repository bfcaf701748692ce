#include "dashboard/ResponseHistoryPresentation.h"

#include "dashboard/CheckTexts.h"

#include <algorithm>

namespace kestrin {

namespace {

std::int64_t heightOf(const CheckRecord& check, std::int64_t failureHeight) {
    constexpr std::int64_t shortest = ResponseHistoryPresentation::shortestBarMS;
    if (!check.up) return failureHeight;
    return std::max(check.elapsedMS.value_or(shortest), shortest);
}

} // namespace

ResponseHistoryPresentation ResponseHistoryPresentation::of(const SiteHistoryProjection& history) {
    const auto& checks = history.recentChecks;
    const std::size_t count = std::min(checks.size(), maximumBars);
    const auto first = checks.end() - static_cast<std::ptrdiff_t>(count);

    std::int64_t failureHeight = shortestBarMS;
    for (auto check = first; check != checks.end(); ++check)
        if (check->up) failureHeight = std::max(failureHeight, check->elapsedMS.value_or(shortestBarMS));

    ResponseHistoryPresentation presentation;
    presentation.bars.reserve(count);
    for (auto check = first; check != checks.end(); ++check)
        presentation.bars.push_back({.position = static_cast<double>(presentation.bars.size()),
            .check = *check,
            .plottedValue = heightOf(*check, failureHeight)});
    return presentation;
}

ResponseChartContent responseChart(const ResponseHistoryPresentation& presentation, const LocaleFormats& formats) {
    ResponseChartContent chart;
    chart.title = "Recent response history";
    chart.noChecks = "No checks recorded yet.";
    chart.successfulLabel = "Successful";
    chart.failedLabel = "Failed";
    for (const ResponseHistoryPresentation::Bar& bar : presentation.bars)
        chart.bars.push_back({.position = bar.position,
            .plottedValue = bar.plottedValue,
            .up = bar.check.up,
            .details = detailsText(bar.check, formats)});

    const auto count = static_cast<std::int64_t>(chart.bars.size());
    const std::int64_t successes = std::ranges::count_if(chart.bars, &ChartBar::up);
    // A chart of one bar is as wide as its slot, and so is one without any.
    chart.domainEnd = std::max(0.5, static_cast<double>(count) - 0.5);
    const std::string lastChecks = "Last " + formats.integer(count) + " checks";
    chart.countLabel = lastChecks;
    chart.accessibleLabel = lastChecks + ": " + formats.integer(successes) + " successful, " +
                            formats.integer(count - successes) + " failed.";
    return chart;
}

} // namespace kestrin
