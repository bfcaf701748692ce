#pragma once

#include "model/CustomProviderConfiguration.h"
#include "model/HistoryFileRevision.h"
#include "model/MessageError.h"
#include "model/SiteConfiguration.h"
#include "state/ProviderSnapshot.h"
#include "state/SiteSnapshot.h"

#include <map>
#include <optional>
#include <string>
#include <variant>
#include <vector>

namespace kestrin {

/// There is no "sites.json": a first run.
struct LoadedNotConfigured {
    HistoryFileRevision configurationRevision;
};

/// Everything was read, and neither configuration file moved meanwhile.
struct LoadedConfigured {
    SiteConfiguration configuration;
    HistoryFileRevision configurationRevision;
    CustomProviderConfiguration customProviderConfiguration;
    HistoryFileRevision customProviderRevision;
    std::optional<std::string> customProviderIssue;
    std::vector<SiteSnapshot> snapshots;
    std::vector<ProviderSnapshot> providerSnapshots;
};

/// What the user is told of a load that failed.
struct LoadFailed {
    std::string message;

    [[nodiscard]] static LoadFailed byCancellation() { return {"Kestrin stopped loading monitor data."}; }
};

/// Which of three worlds the disk is in.
using AppModelLoadResult = std::variant<LoadedNotConfigured, LoadedConfigured, LoadFailed>;

/// The state moved while it was read: the one error that earns a second attempt.
struct AppModelStateLoadError : MessageError {
    AppModelStateLoadError() : MessageError("Kestrin's configuration changed while it was being read.") {}
};

/// What the model believes to be on disk. Of two entries with one id the later wins.
struct ExpectedStateRevisions {
    HistoryFileRevision configuration;
    HistoryFileRevision customProviders;
    std::map<std::string, HistoryFileRevision> websites;
    std::map<std::string, HistoryFileRevision> providers;
};

} // namespace kestrin
