#include "services/SlackFeed.h"

#include "services/FeedOutcome.h"
#include "services/FeedWords.h"
#include "services/ProviderAdapterParseError.h"
#include "json/JSONReader.h"

#include <algorithm>
#include <string_view>

namespace kestrin {

namespace {

constexpr const char* pageName = "Slack";
constexpr std::string_view allWell = "All Systems Operational";

bool isComplete(const SlackFeed::Incident& incident) {
    return incident.title && !incident.title->empty() &&
           saysOneOf(incident.type, {"incident", "notice", "outage"}) &&
           saysOneOf(incident.status, {"active", "resolved", "completed", "cancelled", "scheduled"});
}

} // namespace

SlackFeed SlackFeed::decode(const JSONValue& document) {
    const JSONReader reader(document);
    SlackFeed feed;
    feed.status = reader.optionalString("status");
    feed.dateUpdated = reader.optionalString("date_updated");
    for (const JSONReader& incident : reader.optionalObjects("active_incidents"))
        feed.activeIncidents.push_back(
            {incident.optionalString("title"), incident.optionalString("type"), incident.optionalString("status")});
    return feed;
}

ParsedProviderStatus SlackFeed::outcome() const {
    if (!status) throw ProviderAdapterParseError(ProviderAdapterParseError::Kind::unrecognized);
    FeedOrigin origin{pageName, dateUpdated};

    const Incident* first = nullptr;
    auto state = ProviderState::degraded;
    for (const Incident& incident : activeIncidents) {
        if (!isComplete(incident)) return unknownOutcome(std::move(origin));
        if (!says(incident.status, "active")) continue;
        if (first == nullptr) first = &incident;
        if (says(incident.type, "outage")) state = ProviderState::outage;
    }

    if (first != nullptr) {
        if (!says(status, "active")) return unknownOutcome(std::move(origin));
        return statedOutcome(std::move(origin), state, *first->title);
    }
    // Slack calls itself active also while nothing but future work is announced.
    const bool announcedOnly = !activeIncidents.empty() &&
                               std::ranges::all_of(activeIncidents,
                                   [](const Incident& incident) { return says(incident.status, "scheduled"); });
    if (says(status, "ok") || (says(status, "active") && announcedOnly))
        return statedOutcome(std::move(origin), ProviderState::operational, allWell);
    return unknownOutcome(std::move(origin));
}

} // namespace kestrin
