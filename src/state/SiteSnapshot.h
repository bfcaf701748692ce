#pragma once

#include "model/HistoryFileRevision.h"
#include "model/SiteConfiguration.h"
#include "state/SiteHistoryProjection.h"

#include <optional>

namespace kestrin {

/// A website with what its history says. The revision is that of the file the history was read from; absent when
/// there is no file, which compares like a revision of zeros.
struct SiteSnapshot {
    SiteDefinition site;
    SiteHistoryProjection history;
    std::optional<HistoryFileRevision> historyRevision;

    bool operator==(const SiteSnapshot&) const = default;
};

} // namespace kestrin
