#pragma once

#include "state/ProviderSnapshot.h"
#include "state/SiteSnapshot.h"

#include <vector>

namespace kestrin {

/// Histories in memory that hold every line of their files up to their revisions. A load takes them over without
/// reading a byte where the files still have these revisions.
struct KnownHistories {
    std::vector<SiteSnapshot> sites;
    std::vector<ProviderSnapshot> services;
};

} // namespace kestrin
