#include "services/StatuspageFeed.h"

#include "services/FeedOutcome.h"
#include "services/ProviderAdapterParseError.h"
#include "text/ASCIICase.h"
#include "json/JSONReader.h"

#include <string_view>

namespace kestrin {

namespace {

ProviderState stateOfIndicator(std::string_view indicator) {
    if (indicator == "none" || indicator == "operational") return ProviderState::operational;
    if (indicator == "minor" || indicator == "degraded") return ProviderState::degraded;
    if (indicator == "major" || indicator == "critical" || indicator == "outage") return ProviderState::outage;
    if (indicator == "maintenance") return ProviderState::maintenance;
    return ProviderState::unknown;
}

} // namespace

StatuspageFeed StatuspageFeed::decode(const JSONValue& document) {
    const JSONReader reader(document);
    StatuspageFeed feed;
    if (const auto page = reader.optionalObject("page"))
        feed.page = Page{page->optionalString("updated_at"), page->optionalString("name")};
    if (const auto status = reader.optionalObject("status"))
        feed.status = Status{status->optionalString("indicator"), status->optionalString("description")};
    return feed;
}

ParsedProviderStatus StatuspageFeed::outcome() const {
    if (!page || !status) throw ProviderAdapterParseError(ProviderAdapterParseError::Kind::unrecognized);
    FeedOrigin origin{page->name, page->updatedAt};
    if (!status->indicator || !status->description) return unknownOutcome(std::move(origin));
    const ProviderState state = stateOfIndicator(asciiLowercase(*status->indicator));
    return statedOutcome(std::move(origin), state, *status->description);
}

} // namespace kestrin
