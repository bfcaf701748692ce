#include "monitoring/LoadedState.h"

#include "monitoring/MonitoredTargets.h"

#include <algorithm>
#include <iterator>
#include <variant>

namespace kestrin {

namespace {

constexpr std::int64_t shortestIntervalSeconds = 60;

const std::string& idOf(const SiteSnapshot& snapshot) {
    return snapshot.site.id;
}

const std::string& idOf(const ProviderSnapshot& snapshot) {
    return snapshot.provider.id;
}

template <class Snapshot> auto find(std::vector<Snapshot>& snapshots, const std::string& id) {
    return std::ranges::find_if(snapshots, [&](const Snapshot& candidate) { return idOf(candidate) == id; });
}

LoadedState stateOf(LoadedNotConfigured loaded) {
    LoadedState state;
    state.configuration = SiteConfiguration();
    state.configurationRevision = loaded.configurationRevision;
    state.isFirstRun = true;
    return state;
}

// An empty dashboard, rather than data that nobody can vouch for; and without a configuration nothing is checked.
LoadedState stateOf(LoadFailed failed) {
    LoadedState state;
    state.loadError = std::move(failed.message);
    return state;
}

LoadedState stateOf(LoadedConfigured loaded) {
    LoadedState state;
    state.configurationIssue = configurationIssueOf(loaded.configuration);
    state.configuration = std::move(loaded.configuration);
    state.configurationRevision = loaded.configurationRevision;
    state.customProviderConfiguration = std::move(loaded.customProviderConfiguration);
    state.customProviderRevision = loaded.customProviderRevision;
    state.customProviderIssue = std::move(loaded.customProviderIssue);
    state.snapshots = std::move(loaded.snapshots);
    state.providerSnapshots = std::move(loaded.providerSnapshots);
    return state;
}

template <class Snapshot>
std::vector<Snapshot> completeOf(const std::vector<Snapshot>& snapshots, HistoryKind kind,
    const std::set<std::pair<HistoryKind, std::string>>& incomplete) {
    std::vector<Snapshot> complete;
    std::ranges::copy_if(snapshots, std::back_inserter(complete),
        [&](const Snapshot& snapshot) { return !incomplete.contains({kind, idOf(snapshot)}); });
    return complete;
}

template <class Snapshot>
std::map<std::string, HistoryFileRevision> revisionsOf(const std::vector<Snapshot>& snapshots) {
    std::map<std::string, HistoryFileRevision> revisions;
    for (const Snapshot& snapshot : snapshots)
        revisions[idOf(snapshot)] = snapshot.historyRevision.value_or(HistoryFileRevision());
    return revisions;
}

} // namespace

LoadedState LoadedState::from(AppModelLoadResult result, std::chrono::system_clock::time_point loadedAt) {
    LoadedState state = std::visit([](auto& loaded) { return stateOf(std::move(loaded)); }, result);
    state.loadedAt = loadedAt;
    return state;
}

bool LoadedState::providerStatusEnabled() const {
    return configuration && configuration->providerStatus.enabled;
}

std::int64_t LoadedState::intervalSeconds() const {
    const std::int64_t configured =
        configuration ? configuration->intervalSeconds : SiteConfiguration().intervalSeconds;
    return std::max(configured, shortestIntervalSeconds);
}

std::optional<std::string> LoadedState::activeSiteID() const {
    return configuration ? configuration->activeSiteID : std::nullopt;
}

std::span<const SiteSnapshot> LoadedState::visibleSnapshots() const {
    if (!configuration) return {};
    return snapshots;
}

bool LoadedState::showsService(const std::string& id) const {
    return std::ranges::any_of(
        providerSnapshots, [&](const ProviderSnapshot& candidate) { return idOf(candidate) == id; });
}

CycleTargets LoadedState::targets() const {
    CycleTargets targets;
    if (configuration) targets.sites = monitoredSites(*configuration);
    if (providerStatusEnabled())
        std::ranges::transform(
            providerSnapshots, std::back_inserter(targets.services), &ProviderSnapshot::provider);
    return targets;
}

std::set<std::string> LoadedState::monitoredServices(const ServiceDirectory& directory) const {
    if (!configuration) return {};
    return monitoredServiceIDs(directory, configuration->providerStatus, customProviderConfiguration);
}

KnownHistories LoadedState::knownHistories() const {
    return {.sites = completeOf(snapshots, HistoryKind::Website, incompleteHistories),
        .services = completeOf(providerSnapshots, HistoryKind::Provider, incompleteHistories)};
}

ExpectedStateRevisions LoadedState::expectedRevisions() const {
    return {.configuration = configurationRevision,
        .customProviders = customProviderRevision,
        .websites = revisionsOf(snapshots),
        .providers = revisionsOf(providerSnapshots)};
}

bool LoadedState::take(const CheckRecord& record, const HistoryAppend& append) {
    const auto snapshot = find(snapshots, record.siteID);
    if (snapshot == snapshots.end()) return false;
    if (snapshot->historyRevision.value_or(HistoryFileRevision()) != append.before)
        incompleteHistories.emplace(HistoryKind::Website, record.siteID);
    snapshot->history.append(record);
    snapshot->historyRevision = append.after;
    return true;
}

bool LoadedState::take(const ProviderCheckRecord& record, const HistoryAppend& append) {
    const auto snapshot = find(providerSnapshots, record.providerID);
    if (snapshot == providerSnapshots.end()) return false;
    if (snapshot->historyRevision.value_or(HistoryFileRevision()) != append.before)
        incompleteHistories.emplace(HistoryKind::Provider, record.providerID);
    snapshot->history.append(record);
    snapshot->historyRevision = append.after;
    return true;
}

} // namespace kestrin
