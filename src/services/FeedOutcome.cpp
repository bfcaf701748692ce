#include "services/FeedOutcome.h"

#include "text/FeedText.h"

#include <utility>

namespace kestrin {

namespace {

constexpr std::size_t longestSummary = 160;
constexpr std::size_t longestPageName = 80;

} // namespace

ParsedProviderStatus statedOutcome(FeedOrigin origin, ProviderState state, std::string_view summary) {
    ParsedProviderStatus status;
    status.state = state;
    status.summary = cleanFeedText(summary, longestSummary);
    if (status.summary.empty()) status.summary = title(state);
    status.officialUpdatedAt = std::move(origin.officialUpdatedAt);
    if (origin.pageName) {
        std::string name = cleanFeedText(*origin.pageName, longestPageName);
        if (!name.empty()) status.pageName = std::move(name);
    }
    return status;
}

ParsedProviderStatus unknownOutcome(FeedOrigin origin) {
    return statedOutcome(std::move(origin), ProviderState::unknown, title(ProviderState::unknown));
}

} // namespace kestrin
