#pragma once

#include "model/HistoryFileRevision.h"
#include "model/ProviderDefinition.h"
#include "state/ProviderHistoryProjection.h"

#include <optional>

namespace kestrin {

/// A status service with what its history says. The revision is that of the file the history was read from; absent
/// when there is no file, which compares like a revision of zeros.
struct ProviderSnapshot {
    ProviderDefinition provider;
    ProviderHistoryProjection history;
    std::optional<HistoryFileRevision> historyRevision;

    bool operator==(const ProviderSnapshot&) const = default;
};

} // namespace kestrin
