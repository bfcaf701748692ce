#include "monitoring/MonitoredTargets.h"

#include "destinations/WebsiteURLPolicy.h"

#include <algorithm>
#include <utility>

namespace kestrin {

namespace {

template <class Snapshots, class Matches>
const typename Snapshots::value_type* findSnapshot(const Snapshots& snapshots, Matches matches) {
    const auto found = std::ranges::find_if(snapshots, matches);
    return found == snapshots.end() ? nullptr : &*found;
}

NotificationTargetContext contextOf(const SiteDefinition& site, std::span<const SiteSnapshot> snapshots) {
    NotificationTargetContext context;
    context.key = {NotificationTargetKind::website, site.id};
    context.displayName = site.name;
    context.isEligible = site.enabled && isMonitorable(site);
    const auto* snapshot =
        findSnapshot(snapshots, [&](const SiteSnapshot& candidate) { return candidate.site.id == site.id; });
    if (snapshot && !snapshot->history.recentChecks.empty())
        context.currentOutcome = WebsiteOutcome{snapshot->history.recentChecks.back().up};
    return context;
}

NotificationTargetContext contextOf(
    const ProviderDefinition& service, bool isMonitored, std::span<const ProviderSnapshot> snapshots) {
    NotificationTargetContext context;
    context.key = {NotificationTargetKind::provider, service.id};
    context.displayName = service.name;
    context.isEligible = isMonitored;
    const auto* snapshot = findSnapshot(
        snapshots, [&](const ProviderSnapshot& candidate) { return candidate.provider.id == service.id; });
    if (snapshot && !snapshot->history.recentChecks.empty())
        context.currentOutcome = ProviderOutcome{snapshot->history.recentChecks.back().state};
    return context;
}

} // namespace

bool isMonitorable(const SiteDefinition& site) {
    try {
        (void)validatedWebsiteURL(site.url);
        return true;
    } catch (const WebsiteURLPolicy::ValidationError&) {
        return false;
    }
}

std::vector<SiteDefinition> monitoredSites(const SiteConfiguration& configuration) {
    std::vector<SiteDefinition> sites;
    std::ranges::copy_if(configuration.sites, std::back_inserter(sites),
        [](const SiteDefinition& site) { return site.enabled && isMonitorable(site); });
    return sites;
}

std::optional<std::string> configurationIssueOf(const SiteConfiguration& configuration) {
    for (const SiteDefinition& site : configuration.sites)
        if (site.enabled && !isMonitorable(site))
            return "“" + site.name + "” needs a public HTTPS URL. Open Settings to update it before monitoring.";
    return std::nullopt;
}

std::set<std::string> monitoredServiceIDs(const ServiceDirectory& directory,
    const ProviderStatusConfiguration& status, const CustomProviderConfiguration& added) {
    std::set<std::string> ids;
    if (!status.enabled) return ids;
    for (const ProviderDefinition& service : directory.includedServices())
        if (std::ranges::find(status.providerIDs, service.id) != status.providerIDs.end()) ids.insert(service.id);
    for (const CustomProviderDefinition& stored : added.providers)
        if (stored.enabled) ids.insert(stored.id);
    return ids;
}

TargetDescription describeTargets(const TargetSources& sources) {
    TargetDescription description;
    // A list made by hand may hold one id twice, but a key stands for one target: the first.
    std::set<std::string> described;
    for (const SiteDefinition& site : sources.configuration.sites)
        if (described.insert(site.id).second) description.contexts.push_back(contextOf(site, sources.sites));

    const ProviderStatusConfiguration& status = sources.configuration.providerStatus;
    const std::set<std::string> monitored = monitoredServiceIDs(sources.directory, status, sources.added);
    const auto describeService = [&](const ProviderDefinition& service) {
        description.contexts.push_back(contextOf(service, monitored.contains(service.id), sources.services));
    };
    for (const ProviderDefinition& service : sources.directory.includedServices())
        if (std::ranges::find(status.providerIDs, service.id) != status.providerIDs.end()) describeService(service);

    bool everyAddedServiceIsKnown = true;
    for (const CustomProviderDefinition& stored : sources.added.providers) {
        try {
            describeService(sources.directory.definition(stored));
        } catch (const MessageError&) {
            everyAddedServiceIsKnown = false;
        }
    }
    description.policy.hasValidConfiguration = sources.isSaved;
    description.policy.targetsAreReadable = sources.addedAreReadable && everyAddedServiceIsKnown;
    return description;
}

} // namespace kestrin
