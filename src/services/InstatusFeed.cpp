#include "services/InstatusFeed.h"

#include "services/FeedOutcome.h"
#include "services/ProviderAdapterParseError.h"
#include "json/JSONReader.h"

#include <algorithm>
#include <initializer_list>
#include <string_view>

namespace kestrin {

namespace {

char uppercase(char letter) {
    return letter >= 'a' && letter <= 'z' ? static_cast<char>(letter - 'a' + 'A') : letter;
}

/// Whether the text is the name, which has capitals only, in any case of A to Z.
bool says(const std::optional<std::string>& text, std::string_view name) {
    return text && std::ranges::equal(*text, name, {}, uppercase);
}

bool saysOneOf(const std::optional<std::string>& text, std::initializer_list<std::string_view> names) {
    return std::ranges::any_of(names, [&](std::string_view name) { return says(text, name); });
}

bool isComplete(const InstatusFeed::Incident& incident) {
    return incident.name && incident.impact &&
           saysOneOf(incident.status, {"INVESTIGATING", "IDENTIFIED", "MONITORING", "RESOLVED"});
}

bool isLive(const InstatusFeed::Incident& incident) {
    return !says(incident.status, "RESOLVED");
}

bool hasKnownImpact(const InstatusFeed::Incident& incident) {
    return saysOneOf(incident.impact, {"MAJOROUTAGE", "PARTIALOUTAGE", "MINOROUTAGE", "DEGRADEDPERFORMANCE"});
}

bool isComplete(const InstatusFeed::Maintenance& maintenance) {
    return maintenance.name && saysOneOf(maintenance.status, {"NOTSTARTEDYET", "INPROGRESS", "COMPLETED"});
}

ParsedProviderStatus maintenanceOutcome(const std::vector<InstatusFeed::Maintenance>& all, FeedOrigin origin) {
    if (all.empty())
        return statedOutcome(std::move(origin), ProviderState::maintenance, title(ProviderState::maintenance));
    for (const auto& maintenance : all)
        if (!isComplete(maintenance)) return unknownOutcome(std::move(origin));
    for (const auto& maintenance : all)
        if (says(maintenance.status, "INPROGRESS"))
            return statedOutcome(std::move(origin), ProviderState::maintenance, *maintenance.name);
    return unknownOutcome(std::move(origin));
}

} // namespace

InstatusFeed InstatusFeed::decode(const JSONValue& document) {
    const JSONReader reader(document);
    InstatusFeed feed;
    if (const auto page = reader.optionalObject("page"))
        feed.page = Page{page->optionalString("name"), page->optionalString("status")};
    for (const JSONReader& incident : optionalObjects(document, "activeIncidents"))
        feed.activeIncidents.push_back({incident.optionalString("name"), incident.optionalString("status"),
            incident.optionalString("impact")});
    for (const JSONReader& maintenance : optionalObjects(document, "activeMaintenances"))
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
        if (says(incident.impact, "MAJOROUTAGE")) state = ProviderState::outage;
    }

    if (says(page->status, "UP") && first == nullptr)
        return statedOutcome(std::move(origin), ProviderState::operational, title(ProviderState::operational));
    if (saysOneOf(page->status, {"HASISSUES", "UNDERMAINTENANCE"}) && first != nullptr)
        return statedOutcome(std::move(origin), state, *first->name);
    if (says(page->status, "UNDERMAINTENANCE")) return maintenanceOutcome(activeMaintenances, std::move(origin));
    return unknownOutcome(std::move(origin));
}

} // namespace kestrin
