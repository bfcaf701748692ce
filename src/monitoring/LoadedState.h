#pragma once

#include "model/CheckRecord.h"
#include "model/ProviderCheckRecord.h"
#include "monitoring/AppModelLoadResult.h"
#include "monitoring/CycleTargets.h"
#include "monitoring/KnownHistories.h"
#include "services/ServiceDirectory.h"
#include "state/HistoryAppend.h"
#include "state/HistoryPath.h"

#include <chrono>
#include <cstdint>
#include <optional>
#include <set>
#include <span>
#include <string>
#include <utility>
#include <vector>

namespace kestrin {

/// Everything that the last load of the state directory gave. A load replaces it as a whole; in between, only lines
/// and choices that the program itself has written are added. Made by default, it is the state before any load.
struct LoadedState {
    std::optional<SiteConfiguration> configuration; ///< absent until a load succeeds and after one that failed
    HistoryFileRevision configurationRevision;
    CustomProviderConfiguration customProviderConfiguration;
    HistoryFileRevision customProviderRevision;
    std::vector<SiteSnapshot> snapshots; ///< in configuration order
    std::vector<ProviderSnapshot> providerSnapshots;
    std::optional<std::string> loadError;
    std::optional<std::string> configurationIssue;
    std::optional<std::string> customProviderIssue;
    std::optional<std::chrono::system_clock::time_point> loadedAt; ///< absent before the first load has ended
    bool isFirstRun = false;
    /// Whose snapshots lack a line of another program, though their revisions are those of the files.
    std::set<std::pair<HistoryKind, std::string>> incompleteHistories;

    bool operator==(const LoadedState&) const = default;

    /// What a load that ended at `loadedAt` has given.
    [[nodiscard]] static LoadedState from(
        AppModelLoadResult result, std::chrono::system_clock::time_point loadedAt);

    [[nodiscard]] bool providerStatusEnabled() const;
    /// From the end of one cycle to the beginning of the next: 60 at least.
    [[nodiscard]] std::int64_t intervalSeconds() const;
    [[nodiscard]] std::optional<std::string> activeSiteID() const;
    /// The snapshots, but none without a configuration.
    [[nodiscard]] std::span<const SiteSnapshot> visibleSnapshots() const;
    [[nodiscard]] bool showsService(const std::string& id) const;
    /// The websites and services to check, none without a configuration.
    [[nodiscard]] CycleTargets targets() const;
    /// The ids of the services whose results count.
    [[nodiscard]] std::set<std::string> monitoredServices(const ServiceDirectory& directory) const;

    /// The histories that a load may take over: all but the incomplete ones.
    [[nodiscard]] KnownHistories knownHistories() const;
    [[nodiscard]] ExpectedStateRevisions expectedRevisions() const;

    /// Takes a line that the program has just appended into the snapshot of its target. False without a snapshot.
    [[nodiscard]] bool take(const CheckRecord& record, const HistoryAppend& append);
    [[nodiscard]] bool take(const ProviderCheckRecord& record, const HistoryAppend& append);
};

} // namespace kestrin
