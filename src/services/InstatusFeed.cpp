#include "services/InstatusFeed.h"

#include "services/FeedOutcome.h"
#include "services/FeedWords.h"
#include "services/ProviderAdapterParseError.h"
#include "json/JSONReader.h"

namespace kestrin {

namespace {

bool isComplete(const InstatusFeed::Incident& incident) {
    return incident.name && incident.impact &&
           saysOneOf(incident.status, {"investigating", "identified", "monitoring", "resolved"});
}

bool isLive(const InstatusFeed::Incident& incident) {
    return !says(incident.status, "resolved");
}

bool hasKnownImpact(const InstatusFeed::Incident& incident) {
    return saysOneOf(incident.impact, {"majoroutage", "partialoutage", "minoroutage", "degradedperformance"});
}

bool isComplete(const InstatusFeed::Maintenance& maintenance) {
    return maintenance.name && saysOneOf(maintenance.status, {"notstartedyet", "inprogress", "completed"});
}

ParsedProviderStatus maintenanceOutcome(const std::vector<InstatusFeed::Maintenance>& all, FeedOrigin origin) {
    if (all.empty())
        return statedOutcome(std::move(origin), ProviderState::maintenance, title(ProviderState::maintenance));
    for (const auto& maintenance : all)
        if (!isComplete(maintenance)) return unknownOutcome(std::move(origin));
    for (const auto& maintenance : all)
        if (says(maintenance.status, "inprogress"))
            return statedOutcome(std::move(origin), ProviderState::maintenance, *maintenance.name);
    return unknownOutcome(std::move(origin));
}

} // namespace

InstatusFeed InstatusFeed::decode(const JSONValue& document) {
    const JSONReader reader(document);
    InstatusFeed feed;
    if (const auto page = reader.optionalObject("page"))
        feed.page = Page{page->optionalString("name"), page->optionalString("status")};
    for (const JSONReader& incident : reader.optionalObjects("activeIncidents"))
        feed.activeIncidents.push_back({incident.optionalString("name"), incident.optionalString("status"),
            incident.optionalString("impact")});
    for (const JSONReader& maintenance : reader.optionalObjects("activeMaintenances"))
        feed.activeMaintenances.push_back(
            {maintenance.optionalString("name"), maintenance.optionalString("status")});
    return feed;
}

ParsedProviderStatus InstatusFeed::outcome() const {
    if (!page) throw ProviderAdapterParseError(ProviderAdapterParseError::Kind::unrecognized);
    FeedOrigin origin{page->name, std::nullopt};

    const Incident* first = nullptr;
    auto state = ProviderState::degraded;
    for (const Incident& incident : activeIncidents) {
        if (!isComplete(incident)) return unknownOutcome(std::move(origin));
        if (!isLive(incident)) continue;
        if (!hasKnownImpact(incident)) return unknownOutcome(std::move(origin));
        if (first == nullptr) first = &incident;
        // A partial outage leaves most of the service standing, so it is a degradation.
        if (says(incident.impact, "majoroutage")) state = ProviderState::outage;
    }

    if (says(page->status, "up") && first == nullptr)
        return statedOutcome(std::move(origin), ProviderState::operational, title(ProviderState::operational));
    if (saysOneOf(page->status, {"hasissues", "undermaintenance"}) && first != nullptr)
        return statedOutcome(std::move(origin), state, *first->name);
    if (says(page->status, "undermaintenance")) return maintenanceOutcome(activeMaintenances, std::move(origin));
    return unknownOutcome(std::move(origin));
}

} // namespace kestrin
