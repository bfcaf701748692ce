#pragma once

#include "model/HistoryFileRevision.h"
#include "model/ProviderDefinition.h"
#include "model/SiteConfiguration.h"
#include "state/ConfigurationLoadResult.h"
#include "state/FileRevision.h"
#include "state/HistoryPath.h"
#include "state/ProviderSnapshot.h"
#include "state/SiteSnapshot.h"

#include <filesystem>
#include <optional>
#include <set>
#include <stop_token>
#include <string>
#include <vector>

namespace kestrin {

/// Reads the configuration and the histories below one state directory. A plain value of one path, usable on any
/// thread; nothing is written, locked or remembered. Every error is a `MessageError` with what the user reads.
class StateReader {
public:
    explicit StateReader(std::filesystem::path rootURL);
    [[nodiscard]] const std::filesystem::path& rootURL() const { return rootURL_; }

    /// The revision of "sites.json": absent without a state directory, zeros without the file.
    [[nodiscard]] std::optional<HistoryFileRevision> configurationRevision() const;
    /// A file that decodes is configured, whatever it holds; validation is the caller's.
    [[nodiscard]] ConfigurationLoadResult loadConfiguration() const;
    /// Every safe site identifier in the configuration backups; files that do not decode are passed over.
    [[nodiscard]] std::set<std::string> knownBackupSiteIDs() const;
    /// The first "site-{n}" that is not in `used`, in no backup, and has no history file.
    [[nodiscard]] std::string nextAvailableSiteID(const std::set<std::string>& used) const;

    /// The present revision of a target's history file, zeros when there is none.
    [[nodiscard]] HistoryFileRevision historyRevision(HistoryKind kind, const std::string& id) const;
    /// The present revision of any file of the state directory.
    [[nodiscard]] HistoryFileRevision fileRevision(const std::filesystem::path& url, MissingFile missing) const;

    /// One snapshot for each target in list order; the first error in that order ends the whole read. A history
    /// that changes while it is read throws `HistoryReadError`; a stop request throws `CancellationError` before
    /// the next read. Two threads share the targets; the second one ends with the call.
    [[nodiscard]] std::vector<SiteSnapshot> loadSiteSnapshots(
        const std::vector<SiteDefinition>& sites, const std::stop_token& stop = {}) const;
    [[nodiscard]] std::vector<ProviderSnapshot> loadProviderSnapshots(
        const std::vector<ProviderDefinition>& providers, const std::stop_token& stop = {}) const;

    /// The same, where a history whose file still has the revision of the known snapshot of that target is taken
    /// over instead of read. Only snapshots that hold all of their file's lines may be given as known.
    [[nodiscard]] std::vector<SiteSnapshot> loadSiteSnapshots(const std::vector<SiteDefinition>& sites,
        const std::vector<SiteSnapshot>& known, const std::stop_token& stop = {}) const;
    [[nodiscard]] std::vector<ProviderSnapshot> loadProviderSnapshots(
        const std::vector<ProviderDefinition>& providers, const std::vector<ProviderSnapshot>& known,
        const std::stop_token& stop = {}) const;

private:
    std::filesystem::path rootURL_;
};

} // namespace kestrin
