#include "services/BetterStackFeed.h"

#include "services/FeedOutcome.h"
#include "services/ProviderAdapterParseError.h"
#include "text/ASCIICase.h"
#include "json/JSONReader.h"

#include <string_view>

namespace kestrin {

namespace {

ProviderState stateOfAggregate(std::string_view aggregate) {
    if (aggregate == "operational") return ProviderState::operational;
    if (aggregate == "degraded") return ProviderState::degraded;
    if (aggregate == "downtime") return ProviderState::outage;
    if (aggregate == "maintenance") return ProviderState::maintenance;
    return ProviderState::unknown;
}

} // namespace

BetterStackFeed BetterStackFeed::decode(const JSONValue& document) {
    const JSONReader reader(document);
    BetterStackFeed feed;
    const auto data = reader.optionalObject("data");
    if (!data) return feed;
    feed.data = Item{data->optionalString("type"), std::nullopt};
    if (const auto attributes = data->optionalObject("attributes")) {
        feed.data->attributes = Attributes{attributes->optionalString("company_name"),
            attributes->optionalString("aggregate_state"), attributes->optionalString("updated_at")};
    }
    return feed;
}

ParsedProviderStatus BetterStackFeed::outcome() const {
    if (!data) throw ProviderAdapterParseError(ProviderAdapterParseError::Kind::unrecognized);
    if (!data->attributes) return unknownOutcome({});
    const Attributes& attributes = *data->attributes;
    FeedOrigin origin{attributes.companyName, attributes.updatedAt};
    if (data->type != "status_page" || !attributes.aggregateState) return unknownOutcome(std::move(origin));
    const ProviderState state = stateOfAggregate(asciiLowercase(*attributes.aggregateState));
    return statedOutcome(std::move(origin), state, title(state));
}

} // namespace kestrin
