#pragma once

#include "services/ServiceDirectory.h"

#include <vector>

namespace kestrin {

/// The services that come with the program, in their fixed order, built on first use. Any thread.
[[nodiscard]] const std::vector<ProviderDefinition>& bundledProviderDefinitions();

/// The services of this build: the ones that come with it, and added ones in any feed format that it can read.
class KnownServices : public ServiceDirectory {
public:
    [[nodiscard]] const std::vector<ProviderDefinition>& includedServices() const override {
        return bundledProviderDefinitions();
    }

    /// Throws a `CustomProviderURLPolicy::ValidationError` for a page that may not be contacted and a
    /// `CustomProviderStoreError` for a feed format that this build cannot read. A page on which the format has no
    /// endpoint gives a definition without any, which a check then tells.
    [[nodiscard]] ProviderDefinition definition(const CustomProviderDefinition& stored) const override;
};

} // namespace kestrin
